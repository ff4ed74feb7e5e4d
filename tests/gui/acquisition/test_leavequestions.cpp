// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is asked before a channel with work in progress is left, and what
// becomes of the work.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/processquestions.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString TIME = QStringLiteral("01/02/2024 03:04:05");
} // namespace

class LeaveQuestions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void dirty_is_noticed_by_asking();
    void cancel_with_three_captured_points();
    void cancel_of_an_incomplete_calibration_keeps_the_process_boxes();

private:
    static void expect_cancelled(BoxAnswerer *answerer, const char *mark);

    std::unique_ptr<TestWindow> m_it;
};

void LeaveQuestions::expect_cancelled(BoxAnswerer *answerer, const char *mark)
{
    const AskedQuestion &asked = asked_question(mark);
    answerer->expect(asked.title, asked.text, QStringLiteral("Cancel"));
}

void LeaveQuestions::dirty_is_noticed_by_asking()
{
    m_it->bind_afresh(0);
    g_cfg->unsaved_flag = 0;
    g_cfg->table_dirty = 1;
    BoxAnswerer answerer;
    expect_cancelled(&answerer, "L3");
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
    expect_cancelled(&answerer, "L1");
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
    expect_cancelled(&answerer, "L2");
    m_it->pick(1);
    QCOMPARE(m_it->form->txtAsFound->text(), TIME);
    QVERIFY(m_it->form->btnAdjustCalibration->isEnabled());
    QCOMPARE(m_it->form->lblNextStep->text(), QStringLiteral("advice"));
    QCOMPARE(m_it->rows_shown(), 5);
}

// Agreed to lose the points: the calibration that is incomplete as well, and the
// table that is modified, are not asked about.
WINDOW_TEST(LeaveQuestions);
#include "test_leavequestions.moc"
