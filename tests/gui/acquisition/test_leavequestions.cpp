// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is asked before a channel with work in progress is left, and what
// becomes of the work.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString NOT_RECORDED = QStringLiteral("Captured Points Not Recorded");
const QString NOT_RECORDED_TEXT =
    QStringLiteral("Captured points have not been recorded.\n\nClick OK to leave this channel "
                   "anyway or Cancel to return and record data.");
const QString INCOMPLETE = QStringLiteral("Incomplete Calibration");
const QString INCOMPLETE_TEXT =
    QStringLiteral("The calibration is incomplete.\n\nClick OK to leave this channel anyway or "
                   "Cancel to return and complete the calibration.");
const QString MODIFIED = QStringLiteral("Table Information Modified");
const QString MODIFIED_TEXT = QStringLiteral(
    "The table information has been modified and will not be saved without updating the "
    "calibration table.\n\nClick OK to leave this channel anyway or Cancel to return and update "
    "the calibration.");
const QString TIME = QStringLiteral("01/02/2024 03:04:05");
} // namespace

class LeaveQuestions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void question_data();
    void question();
    void dirty_is_noticed_by_asking();
    void cancel_with_three_captured_points();
    void cancel_of_an_incomplete_calibration_keeps_the_process_boxes();
    void the_first_box_is_the_only_one();

private:
    std::unique_ptr<TestWindow> m_it;
};

void LeaveQuestions::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
}

void LeaveQuestions::cleanupTestCase()
{
    m_it.reset();
}

void LeaveQuestions::question_data()
{
    QTest::addColumn<int>("captured");
    QTest::addColumn<bool>("dirty");
    QTest::addColumn<QString>("as_found");
    QTest::addColumn<QString>("after_service");
    QTest::addColumn<QString>("updated");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing done: no question") << 0 << false << ""
                                               << ""
                                               << ""
                                               << ""
                                               << "";
    QTest::newRow("captured and dirty") << 1 << true << ""
                                        << ""
                                        << "" << NOT_RECORDED << NOT_RECORDED_TEXT;
    QTest::newRow("captured and not dirty: no question") << 1 << false << ""
                                                         << ""
                                                         << ""
                                                         << ""
                                                         << "";
    QTest::newRow("captured and dirty after an update")
        << 1 << true << TIME << TIME << TIME << NOT_RECORDED << NOT_RECORDED_TEXT;
    QTest::newRow("as found recorded, not updated") << 0 << false << TIME << ""
                                                    << "" << INCOMPLETE << INCOMPLETE_TEXT;
    QTest::newRow("after service recorded, not updated")
        << 0 << false << "" << TIME << "" << INCOMPLETE << INCOMPLETE_TEXT;
    QTest::newRow("incomplete comes before modified") << 0 << true << TIME << ""
                                                      << "" << INCOMPLETE << INCOMPLETE_TEXT;
    QTest::newRow("recorded and updated: no question") << 0 << false << TIME << "" << TIME << ""
                                                       << "";
    QTest::newRow("table modified, nothing captured") << 0 << true << ""
                                                      << ""
                                                      << "" << MODIFIED << MODIFIED_TEXT;
    QTest::newRow("table modified after an update: no question") << 0 << true << ""
                                                                 << "" << TIME << ""
                                                                 << "";
}

// Cancel puts the combo back and reads the old channel again; OK goes on.
void LeaveQuestions::question()
{
    QFETCH(int, captured);
    QFETCH(bool, dirty);
    QFETCH(QString, as_found);
    QFETCH(QString, after_service);
    QFETCH(QString, updated);
    QFETCH(QString, title);
    QFETCH(QString, text);
    m_it->bind_afresh(0);
    const auto set_up = [&] {
        g_captured_points = captured;
        g_cfg->table_dirty = dirty ? 1 : 0;
        m_it->form->txtAsFound->setText(as_found);
        m_it->form->txtAfterService->setText(after_service);
        m_it->form->txtAdjustCalibration->setText(updated);
        m_it->form->lblNextStep->setText(QStringLiteral("advice"));
        m_it->form->lblNextStep->setStyleSheet(QLatin1String(STYLE_IDLE));
    };
    BoxAnswerer answerer;
    if (!title.isEmpty()) {
        set_up();
        g_cfg->long_current.y[0] = 77.0;
        answerer.expect(title, text, QStringLiteral("Cancel"));
        m_it->pick(1);
        QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(0));
        QCOMPARE(g_cfg->channel, int16_t(0));
        QCOMPARE(g_cfg->long_current.y[0], 0.0); // read again
        QCOMPARE(g_captured_points, 0);
        QCOMPARE(m_it->form->lblNextStep->text(), QStringLiteral("advice"));
        const MetBox &box = answerer.met().first();
        QCOMPARE(box.default_button, QStringLiteral("Cancel"));
        QCOMPARE(box.buttons.size(), 2);
        QVERIFY(BoxAnswerer::has_title_bar_only(box));
        answerer.expect(title, text, QStringLiteral("OK"));
    }
    set_up();
    m_it->pick(1);
    QCOMPARE(g_cfg->channel, int16_t(1));
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(1));
    QCOMPARE(m_it->form->lblNextStep->text(), QString());
    QCOMPARE(m_it->form->lblNextStep->styleSheet(),
             QStringLiteral("background-color: rgb(255,252,239)"));
    QCOMPARE(answerer.met().size(), title.isEmpty() ? 0 : 2);
}

void LeaveQuestions::dirty_is_noticed_by_asking()
{
    m_it->bind_afresh(0);
    g_cfg->unsaved_flag = 0;
    g_cfg->table_dirty = 1;
    BoxAnswerer answerer;
    answerer.expect(MODIFIED, MODIFIED_TEXT, QStringLiteral("Cancel"));
    m_it->pick(1);
    QCOMPARE(g_cfg->unsaved_flag, uint16_t(1));
}

// The recount finds the three coloured rows; reading the channel again then
// drops them, although the rows keep their captions.
void LeaveQuestions::cancel_with_three_captured_points()
{
    m_it->bind_afresh(0);
    for (int i = 0; i < 3; ++i)
        QVERIFY(m_it->capture(i, 1250.0 * i + 3.0, 25.0 * i + 0.06));
    QCOMPARE(g_captured_points, 3);
    QCOMPARE(g_cfg->long_current.x[1], 1253.0);
    const QString coloured = m_it->window->row(1)->value_style();
    QVERIFY(coloured != QLatin1String(STYLE_WHITE));
    g_captured_points = 9; // so that the recount shows

    BoxAnswerer answerer;
    QVector<int> counts;
    answerer.expect(NOT_RECORDED, NOT_RECORDED_TEXT, QStringLiteral("Cancel"));
    // This form of the signal comes ahead of the one that the slot is on: away
    // from the channel, and back to it behind the recount.
    QObject probe;
    connect(m_it->form->cboCurrentChannel, QOverload<int>::of(&QComboBox::currentIndexChanged),
            &probe, [&counts](int) { counts += g_captured_points; });
    m_it->pick(1);
    QCOMPARE(counts, (QVector<int>{9, 3}));
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_cfg->channel, int16_t(0));
    QCOMPARE(g_cfg->long_current.x[1], 1250.0);
    QCOMPARE(g_cfg->long_current.y[1], 25.0);
    QCOMPARE(m_it->window->row(1)->value_field()->text(), QStringLiteral(" 25.0000"));
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_it->window->row(i)->caption(), QStringLiteral("Undo"));
        QCOMPARE(m_it->window->row(i)->value_style(), QLatin1String(STYLE_WHITE));
        QCOMPARE(m_it->window->row(i)->saved_style, coloured);
    }
    QCOMPARE(m_it->window->row(3)->saved_style, QLatin1String(STYLE_WHITE));
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

// A revert binds without resetting the process view.
void LeaveQuestions::cancel_of_an_incomplete_calibration_keeps_the_process_boxes()
{
    m_it->bind_afresh(0);
    m_it->form->txtAsFound->setText(TIME);
    m_it->form->btnAdjustCalibration->setEnabled(true);
    m_it->form->lblNextStep->setText(QStringLiteral("advice"));
    BoxAnswerer answerer;
    answerer.expect(INCOMPLETE, INCOMPLETE_TEXT, QStringLiteral("Cancel"));
    m_it->pick(1);
    QCOMPARE(m_it->form->txtAsFound->text(), TIME);
    QVERIFY(m_it->form->btnAdjustCalibration->isEnabled());
    QCOMPARE(m_it->form->lblNextStep->text(), QStringLiteral("advice"));
    QCOMPARE(m_it->rows_shown(), 5);
}

// Agreed to lose the points: the calibration that is incomplete as well, and the
// table that is modified, are not asked about.
void LeaveQuestions::the_first_box_is_the_only_one()
{
    m_it->bind_afresh(0);
    g_captured_points = 2;
    g_cfg->table_dirty = 1;
    m_it->form->txtAsFound->setText(TIME);
    BoxAnswerer answerer;
    answerer.expect(NOT_RECORDED, NOT_RECORDED_TEXT, QStringLiteral("OK"));
    m_it->pick(1);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(g_cfg->channel, int16_t(1));
}

WINDOW_TEST(LeaveQuestions);
#include "test_leavequestions.moc"
