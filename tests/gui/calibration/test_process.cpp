// SPDX-License-Identifier: GPL-3.0-or-later
//
// The process panel: what resets it, and when a recording is ready.
#include <QtTest>

#include "calibration/zerl_util.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

class Process : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init() { m_it->bind_afresh(0); }
    void reset_empties_boxes_and_greys_buttons();
    void reset_keeps_the_last_time_of_a_new_correlation();
    void reset_with_fresh_rows();
    void reset_follows_the_point_states_data();
    void reset_follows_the_point_states();
    void readiness_data();
    void readiness();
    void fresh_channel_cannot_be_adjusted();
    void captions_cleared_after_a_step();

private:
    void fill_boxes();
    QList<QLineEdit *> boxes() const
    {
        return {m_it->form->txtAsFound, m_it->form->txtAfterService,
                m_it->form->txtAdjustCalibration, m_it->form->txtVerificationData,
                m_it->form->txtNewCorrelation};
    }

    std::unique_ptr<TestWindow> m_it;
};

void Process::fill_boxes()
{
    for (QLineEdit *box : boxes()) {
        box->setText(QStringLiteral("01/02/2024 03:04:05"));
        box->setStyleSheet(QStringLiteral("background-color: yellow"));
    }
    for (char(*copy)[80] : {&g_ws_block->as_found_time, &g_ws_block->after_service_time,
                            &g_ws_block->adjust_calibration_time, &g_ws_block->verification_time,
                            &g_ws_block->new_correlation_time})
        qstrncpy(*copy, "01/02/2024 03:04:05", sizeof *copy);
}

void Process::reset_empties_boxes_and_greys_buttons()
{
    fill_boxes();
    for (QPushButton *button : {m_it->form->btnAdjustCalibration, m_it->form->btnReuseCalibration,
                                m_it->form->btnRecordData}) {
        button->setEnabled(true);
        button->setStyleSheet(QLatin1String(STYLE_READY));
    }
    g_cfg->table.worst_status = 3;
    reset_process_view(m_it->window, true);
    for (const QLineEdit *box : boxes())
        QCOMPARE(box->text(), QString());
    for (const QLineEdit *box : {m_it->form->txtAsFound, m_it->form->txtAfterService,
                                 m_it->form->txtAdjustCalibration, m_it->form->txtVerificationData})
        QCOMPARE(box->styleSheet(), QStringLiteral("background-color: white"));
    // The last one never gets a colour, and keeps what it has.
    QCOMPARE(m_it->form->txtNewCorrelation->styleSheet(),
             QStringLiteral("background-color: yellow"));
    m_it->form->txtNewCorrelation->setStyleSheet(QString());
    for (const QPushButton *button : {m_it->form->btnAdjustCalibration,
                                      m_it->form->btnReuseCalibration, m_it->form->btnRecordData})
        QCOMPARE(button->styleSheet(), QStringLiteral("background-color: rgb(238, 238,238)"));
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled());
    QVERIFY(!m_it->form->btnReuseCalibration->isEnabled());
    QVERIFY(m_it->form->btnRecordData->isEnabled());
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
}

void Process::reset_keeps_the_last_time_of_a_new_correlation()
{
    fill_boxes();
    reset_process_view(m_it->window, false);
    QCOMPARE(QString::fromUtf8(g_ws_block->as_found_time), QString());
    QCOMPARE(QString::fromUtf8(g_ws_block->after_service_time), QString());
    QCOMPARE(QString::fromUtf8(g_ws_block->adjust_calibration_time), QString());
    QCOMPARE(QString::fromUtf8(g_ws_block->verification_time), QString());
    QCOMPARE(QString::fromUtf8(g_ws_block->new_correlation_time),
             QStringLiteral("01/02/2024 03:04:05"));
    QCOMPARE(m_it->form->txtNewCorrelation->text(), QString());
    m_it->form->txtNewCorrelation->setStyleSheet(QString());
}

void Process::reset_with_fresh_rows()
{
    for (int i = 0; i < MAX_POINTS; ++i) {
        m_it->window->row(i)->set_value_style(QLatin1String(STYLE_READY));
        m_it->window->row(i)->set_caption(QStringLiteral("Undo"));
        m_it->window->row(i)->status = 3;
        m_it->window->row(i)->set_children_visible(true);
        g_cfg->table.point_state[i] = POINT_CAPTURED;
    }
    reset_process_view(m_it->window, true);
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(m_it->window->row(i)->value_style(), QStringLiteral("background-color: white"));
        QCOMPARE(m_it->window->row(i)->caption(), QStringLiteral("Capture"));
        QCOMPARE(m_it->window->row(i)->caption_style(),
                 QStringLiteral("background-color: rgb(126,232,255)"));
        QCOMPARE(m_it->window->row(i)->status, uint16_t(0));
    }
    QCOMPARE(m_it->rows_shown(), 5);
}

void Process::reset_follows_the_point_states_data()
{
    const auto row = test_columns<int, QString, QString, QString, int>(
        "point_state", "value_style", "caption", "caption_style", "status");
    const QString kept = QStringLiteral("background-color: rgb(255,170,0)");
    const QString ready = QStringLiteral("background-color: rgb(126,232,255)");
    const QString idle = QStringLiteral("background-color: rgb(238, 238,238)");
    row("as in the table", 0, kept, "Capture", ready, 0);
    row("new", 1, "background-color: white", "Capture New", ready, 0);
    row("captured", 2, kept, "Undo", idle, 1);
}

void Process::reset_follows_the_point_states()
{
    QFETCH(int, point_state);
    QFETCH(QString, value_style);
    QFETCH(QString, caption);
    QFETCH(QString, caption_style);
    QFETCH(int, status);
    for (const int i : {0, 63}) {
        PointInfo *const row = m_it->window->row(i);
        row->set_value_style(QStringLiteral("background-color: rgb(255,170,0)"));
        row->set_caption(QStringLiteral("neither"));
        row->status = 2;
        row->previous_status = 1;
        g_cfg->table.point_state[i] = point_state;
    }
    reset_process_view(m_it->window, false);
    for (const int i : {0, 63}) {
        const PointInfo *row = m_it->window->row(i);
        QCOMPARE(row->value_style(), value_style);
        QCOMPARE(row->caption(), caption);
        QCOMPARE(row->caption_style(), caption_style);
        QCOMPARE(int(row->status), status);
    }
}

void Process::readiness_data()
{
    const auto row = test_columns<int, int, int, bool, bool>("points", "captured", "type", "ready",
                                                             "regression");
    row("none captured", 5, 0, int(TABLE_INTERP), false, false);
    row("one missing", 5, 4, int(TABLE_POLY), false, false);
    row("all captured, INTERP", 5, 5, int(TABLE_INTERP), true, false);
    row("all captured, POLY", 5, 5, int(TABLE_POLY), true, true);
    row("all captured, POLY_RANGE", 5, 5, int(TABLE_POLY_RANGE), true, false);
    row("more than all", 5, 6, int(TABLE_INTERP), true, false);
}

void Process::readiness()
{
    QFETCH(int, points);
    QFETCH(int, captured);
    QFETCH(int, type);
    QFETCH(bool, ready);
    g_num_points = static_cast<int16_t>(points);
    g_captured_points = captured;
    g_cfg->table.table_type = static_cast<uint16_t>(type);
    // An action can be told enabled only while its menu is.
    m_it->form->menuStatistics->setEnabled(!ready);
    m_it->form->btnGenerateLineRpt->setEnabled(!ready);
    m_it->form->actionCal_Statistics_Chart->setEnabled(!ready);
    m_it->form->actionPoint_Statistics->setEnabled(false);
    m_it->form->btnRecordData->setStyleSheet(QString());
    update_record_ready(m_it->window);
    QCOMPARE(m_it->form->btnRecordData->styleSheet(),
             ready ? QLatin1String(STYLE_READY) : QLatin1String(STYLE_IDLE));
    QVERIFY(m_it->form->btnRecordData->isEnabled());
    QCOMPARE(m_it->form->menuStatistics->isEnabled(), ready);
    QCOMPARE(m_it->form->btnGenerateLineRpt->isEnabled(), ready);
    QVERIFY(m_it->form->btnGenerateLineRpt->isHidden());
    QTEST(m_it->form->actionCal_Statistics_Chart->isEnabled(), "regression");
    QCOMPARE(m_it->form->actionPoint_Statistics->isEnabled(), ready);
}

void Process::fresh_channel_cannot_be_adjusted()
{
    const BoxAnswerer answerer;
    m_it->form->btnAdjustCalibration->click();
    m_it->form->btnReuseCalibration->click();
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(m_it->form->txtAdjustCalibration->text(), QString());
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/zero.save")));
}

void Process::captions_cleared_after_a_step()
{
    m_it->window->row(0)->set_caption(QStringLiteral("Undo"));
    g_captured_points = 3;
    m_it->form->btnRecordData->setStyleSheet(QLatin1String(STYLE_READY));
    ::clear_row_captions(m_it->window);
    QCOMPARE(m_it->window->row(0)->caption(), QStringLiteral("Capture"));
    QCOMPARE(m_it->window->row(0)->caption_style(), QLatin1String(STYLE_READY));
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_IDLE));
}

WINDOW_TEST(Process);
#include "test_process.moc"
