// SPDX-License-Identifier: GPL-3.0-or-later
//
// A cell whose channel 0 is not active: before the first binding there is no
// channel to go back to.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

namespace
{

const QString INCOMPLETE = QStringLiteral("Incomplete Calibration");
const QString NO_CHANNEL = QStringLiteral("Please select a valid channel number and name");

QByteArray without_channel_0()
{
    return R"(
channel 0
  label "Away"
  units kPa
  table away
  active inactive
  record INTERP
  points 0:0 5000:100
  sensor kPa 0 100 MODEL0 SERIAL0
channel 1
  label "Channel One"
  units kPa
  table one
  record INTERP
  points 0:0 2500:50 5000:100
  sensor kPa 0 100 MODEL1 SERIAL1
)";
}

} // namespace

// The steps follow one another.
class NoChannel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(without_channel_0()); }
    void cleanupTestCase() { m_it.reset(); }
    void cancel_without_a_former_channel_leaves_the_list_blank();
    void first_line_behind_the_blank_is_refused_and_leaves_it_blank();
    void same_channel_can_be_picked_again();

private:
    std::unique_ptr<TestWindow> m_it;
};

// As-Found was recorded before any channel was picked.
void NoChannel::cancel_without_a_former_channel_leaves_the_list_blank()
{
    m_it->form->txtAsFound->setText(QStringLiteral("01/02/2024 03:04:05"));
    BoxAnswerer answerer;
    answerer.expect_title(INCOMPLETE, QStringLiteral("Cancel"));
    m_it->pick(1);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), -1);
    QCOMPARE(m_it->form->cboCurrentChannel->currentText(), QString());
    QCOMPARE(g_cfg->channel, int16_t(0));
    QCOMPARE(QByteArray(g_cfg->table.table_name), QByteArray());
    QCOMPARE(m_it->rows_shown(), 0);
    QVERIFY(!m_it->window->monitor()->isRunning());
}

// It is told, and told again by the list on its way back.
void NoChannel::first_line_behind_the_blank_is_refused_and_leaves_it_blank()
{
    BoxAnswerer answerer;
    answerer.expect(QString(), NO_CHANNEL);
    answerer.expect(QString(), NO_CHANNEL);
    m_it->pick_none();
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), -1);
}

void NoChannel::same_channel_can_be_picked_again()
{
    BoxAnswerer answerer;
    answerer.expect_title(INCOMPLETE, QStringLiteral("OK"));
    m_it->pick(1);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(g_cfg->channel, int16_t(1));
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(1));
    QCOMPARE(m_it->form->lblTableName->text(), QStringLiteral("one"));
    QCOMPARE(m_it->rows_shown(), 3);
}

WINDOW_TEST(NoChannel);
#include "test_nochannel.moc"
