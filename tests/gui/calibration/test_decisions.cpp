// SPDX-License-Identifier: GPL-3.0-or-later
//
// The straight road of a decision: data is recorded, and the calibration is
// adjusted or kept. Files, panel, rebuild and the rows judged anew.
#include <QRadioButton>
#include <QtTest>

#include "frame/hostlink.h"
#include "gui/frame/testwindow.h"
#include "host/operations.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString GREEN = QStringLiteral("background-color: rgb(0,255,0)");
const QString IDLE = QStringLiteral("background-color: rgb(238, 238,238)");
const QString SAVE = QStringLiteral("/cell/tables/one.save");
const QString TBL = QStringLiteral("/cell/tables/one.tbl");
const QString OLD = QStringLiteral("/cell/tables/one.old");
} // namespace

class Decisions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void adjust_after_as_found_out_of_adjustment();
    void second_adjustment_appends_a_whole_table_to_the_history();
    void reuse_after_as_found_with_nothing_to_adjust();
    void reuse_keeps_the_former_points_and_the_new_extent();
    void rebuilt_tables_are_attached();

private:
    bool record(const char *choice, double error);
    void check_tail(const QString &time_box_colour);

    std::unique_ptr<TestWindow> m_it;
};

void Decisions::init()
{
    m_it->bind_afresh(1);
    m_it->form->txtTechnicianName->setText(QStringLiteral("J. Doe"));
    m_it->form->txtCalibrationQIE->setText(QStringLiteral("DWT-12"));
    *g_ws_block = WS_BLOCK();
}

// Captures the three points, each that many kPa off, and records them.
bool Decisions::record(const char *choice, double error)
{
    for (int i = 0; i < 3; ++i) {
        const double mv = 2500.0 * i + 100.0;
        if (!m_it->capture(i, mv, mv * 0.02 + error))
            return false;
    }
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Record Calibration Data"), [choice](QDialog *dialog) {
        dialog->findChild<QRadioButton *>(QLatin1String(choice))->setChecked(true);
        dialog->findChild<QLineEdit *>(QStringLiteral("txtComment"))->setText("why");
        dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))->click();
    });
    m_it->form->btnRecordData->click();
    return answerer.met().size() == 1 && g_captured_points == 0;
}

// What both decisions leave in the window.
void Decisions::check_tail(const QString &time_box_colour)
{
    const QString time = m_it->form->txtAdjustCalibration->text();
    QVERIFY2(QDateTime::fromString(time, QStringLiteral("MM/dd/yyyy hh:mm:ss")).isValid(),
             qPrintable(time));
    QCOMPARE(m_it->form->txtAdjustCalibration->styleSheet(), time_box_colour);
    QCOMPARE(QString::fromUtf8(g_ws_block->adjust_calibration_time), time);
    for (const QPushButton *button :
         {m_it->form->btnAdjustCalibration, m_it->form->btnReuseCalibration}) {
        QCOMPARE(button->styleSheet(), IDLE);
        QVERIFY(button->isEnabled());
    }
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), IDLE);
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(g_cfg->channel, int16_t(1));
    QVERIFY(std::memcmp(&g_cfg->long_previous, &g_cfg->long_current, sizeof(LONG_TABLE)) == 0);
    QCOMPARE(QString::fromUtf8(g_cfg->table.qie), QStringLiteral("DWT-12"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.verified_by), QStringLiteral("J. Doe"));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(m_it->window->row(i)->caption(), QStringLiteral("Capture"));
}

void Decisions::adjust_after_as_found_out_of_adjustment()
{
    const QByteArray former = read_file(TBL);
    QVERIFY(record("rbAsFound", 0.5));
    const BoxAnswerer answerer;
    m_it->form->btnAdjustCalibration->click();
    QVERIFY(answerer.met().isEmpty()); // no question
    check_tail(GREEN);
    QCOMPARE(m_it->form->txtAfterService->text(), QStringLiteral("N/A"));
    QCOMPARE(m_it->form->txtAfterService->styleSheet(), GREEN);
    QCOMPARE(QString::fromUtf8(g_ws_block->after_service_time), QStringLiteral("N/A"));

    QCOMPARE(TestWindow::records_in(SAVE), 2);
    QVERIFY(read_file(SAVE).contains("save_type 3"));
    QVERIFY(read_file(SAVE).contains("save_type 7"));
    QCOMPARE(read_file(OLD), former);
    TABLE_RECORD table = {};
    QCOMPARE(read_table("/cell/tables/one.tbl", &table) & 0xffff, 0);
    QCOMPARE(table.poly[0].num_points, int16_t(3));
    for (int i = 0; i < 3; ++i) {
        const double mv = 2500.0 * i + 100.0;
        QCOMPARE(table.poly[0].x[i], mv);
        QCOMPARE(table.poly[0].y[i], mv * 0.02 + 0.5);
        // Judged against the table just written.
        QCOMPARE(m_it->window->row(i)->status, uint16_t(0));
        QCOMPARE(m_it->window->row(i)->value_style(), GREEN);
        QCOMPARE(g_cfg->long_current.x[i], mv);
    }
    QCOMPARE(table.last_save_type, uint16_t(SAVE_ADJUSTED));
    QCOMPARE(table.y_min, 2.5);
    QCOMPARE(table.y_max, 102.5);
}

void Decisions::second_adjustment_appends_a_whole_table_to_the_history()
{
    const QByteArray first = read_file(TBL);
    QVERIFY(record("rbAfterService", 0.5));
    m_it->form->btnAdjustCalibration->click();
    const QByteArray second = read_file(TBL);
    QVERIFY(second != first);
    m_it->form->btnAdjustCalibration->click(); // once more, with what the archive left
    QCOMPARE(read_file(OLD), first + second);
    QCOMPARE(TestWindow::records_in(SAVE), 3);
}

void Decisions::reuse_after_as_found_with_nothing_to_adjust()
{
    const QByteArray table = read_file(TBL);
    QVERIFY(record("rbAsFound", 0.0));
    const BoxAnswerer answerer;
    m_it->form->btnReuseCalibration->click();
    QVERIFY(answerer.met().isEmpty());
    check_tail(GREEN);
    QCOMPARE(m_it->form->txtAfterService->text(), QStringLiteral("N/A"));
    QCOMPARE(m_it->form->txtAfterService->styleSheet(), GREEN);
    QCOMPARE(TestWindow::records_in(SAVE), 2);
    QVERIFY(read_file(SAVE).contains("save_type 8"));
    QCOMPARE(read_file(TBL), table);
    QVERIFY(!QFile::exists(OLD));
    // The panel does not tell the two decisions apart; its label is the same.
    QCOMPARE(m_it->form->label_11->text(), QStringLiteral("Table Updated"));
}

void Decisions::reuse_keeps_the_former_points_and_the_new_extent()
{
    QVERIFY(record("rbAfterService", 0.2));
    m_it->form->btnReuseCalibration->click();
    // Read back from the archive: the former points.
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(g_cfg->long_current.x[i], 2500.0 * i);
        QCOMPARE(g_cfg->long_current.y[i], 50.0 * i);
    }
    QCOMPARE(g_cfg->table.y_min, 100.0 * 0.02 + 0.2);
    QCOMPARE(g_cfg->table.y_max, 5100.0 * 0.02 + 0.2);
}

// The rebuild publishes the tables anew; the program's pointer follows with the
// next rebuild at the latest, since nobody waits for the first.
void Decisions::rebuilt_tables_are_attached()
{
    const void *const before = g_cal_tables;
    QVERIFY(record("rbAfterService", 0.5));
    m_it->form->btnAdjustCalibration->click();
    QTRY_VERIFY_WITH_TIMEOUT(get_shrd_mem(MEMORY_CAL_TABLES, 0) != before, DEADLINE_MS);
    QCOMPARE(attach_host_memories(), 0);
    QVERIFY(g_cal_tables != before);
    QCOMPARE(g_cal_tables, g_cal_tables_base);
}

WINDOW_TEST(Decisions);
#include "test_decisions.moc"
