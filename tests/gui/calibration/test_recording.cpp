// SPDX-License-Identifier: GPL-3.0-or-later
//
// The straight road of a recording: technician and working standard are given,
// every point is captured, the dialog asks for the kind of data.
#include <QRadioButton>
#include <QtTest>

#include <qwt_scale_div.h>

#include "calibration/savetypedialog.h"
#include "gui/frame/heldmutex.h"
#include "gui/frame/testwindow.h"
#include "host/operations.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString DIALOG = QStringLiteral("Record Calibration Data");
const QString GREEN = QStringLiteral("background-color: rgb(0,255,0)");
const QString YELLOW = QStringLiteral("background-color: rgb(255, 255, 127)");
const QString ORANGE = QStringLiteral("background-color: rgb(255,170,0)");
const QString RED = QStringLiteral("background-color: rgb(255, 78, 78)");
const QString READY = QStringLiteral("background-color: rgb(126,232,255)");
const QString IDLE = QStringLiteral("background-color: rgb(238, 238,238)");
} // namespace

class Recording : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void dialog_form_data();
    void dialog_form();
    void nothing_chosen_records_nothing();
    void names_are_asked_for_first_data();
    void names_are_asked_for_first();
    void cancelled_dialog_records_nothing();
    void recordings_data();
    void recordings();
    void new_correlation_rewrites_the_table();
    void plot_is_replotted_then_scaled_by_itself_data();
    void plot_is_replotted_then_scaled_by_itself();
    void recording_takes_no_lock();

private:
    bool capture_all(double error);
    void press_record(const char *choice, const QString &comment, BoxAnswerer *answerer);
    static bool is_time(const QString &text)
    {
        return QDateTime::fromString(text, QStringLiteral("MM/dd/yyyy hh:mm:ss")).isValid();
    }

    std::unique_ptr<TestWindow> m_it;
};

void Recording::init()
{
    m_it->bind_afresh(1);
    m_it->form->txtTechnicianName->setText(QStringLiteral("J. Doe"));
    m_it->form->txtCalibrationQIE->setText(QStringLiteral("DWT-12"));
    *g_ws_block = WS_BLOCK();
}

// Three points whose reference is that many kPa off what the table says.
bool Recording::capture_all(double error)
{
    for (int i = 0; i < 3; ++i) {
        const double mv = 2500.0 * i + 100.0;
        if (!m_it->capture(i, mv, mv * 0.02 + error))
            return false;
    }
    return g_captured_points == 3;
}

void Recording::press_record(const char *choice, const QString &comment, BoxAnswerer *answerer)
{
    answerer->expect_dialog(DIALOG, [choice, comment](QDialog *dialog) {
        dialog->findChild<QRadioButton *>(QLatin1String(choice))->setChecked(true);
        dialog->findChild<QLineEdit *>(QStringLiteral("txtComment"))->setText(comment);
        dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))->click();
    });
    m_it->form->btnRecordData->click();
}

void Recording::dialog_form_data()
{
    const auto row = test_columns<QString, QString, QString>("class_name", "property", "text");
    row("groupBox", "QGroupBox", "title", "What type of data is this?");
    row("label_2", "QLabel", "text", "Select One");
    row("rbAsFound", "QRadioButton", "text", "As-Found Data");
    row("label_3", "QLabel", "text",
        "Collected before performing any service or adjustments to assess the data quality that "
        "the customer was experiencing.");
    row("rbAfterService", "QRadioButton", "text", "After-Service Data");
    row("label_4", "QLabel", "text",
        "Collected after performing maintenance, repairs or adjustments that could change the "
        "readings.  For Example, after rotating dyno bearings.");
    row("rbVerification", "QRadioButton", "text", "Verification Data");
    row("label_5", "QLabel", "text",
        "Collected after a calibration adjustment to verify that the adjusted calibration meets "
        "the requirements.");
    row("rbNewCorrelation", "QRadioButton", "text", "New Correlation");
    row("label_6", "QLabel", "text", "Change in calibration method or curve fit.");
    row("lblComment", "QLabel", "text", "Description:");
    row("txtComment", "QLineEdit", "text", "");
    row("btnRecord", "QPushButton", "text", "Record");
    row("btnCancel", "QPushButton", "text", "Cancel");
}

void Recording::dialog_form()
{
    QFETCH(QString, class_name);
    QFETCH(QString, property);
    const SaveTypeDialog dialog(m_it->window, 0);
    QCOMPARE(dialog.windowTitle(), DIALOG);
    const auto *part = dialog.findChild<QWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(part != nullptr);
    QCOMPARE(QString::fromLatin1(part->metaObject()->className()), class_name);
    QTEST(part->property(property.toLatin1().constData()).toString(), "text");
    if (class_name == QLatin1String("QLabel")) {
        QCOMPARE(part->font().family(), QStringLiteral("Sans Serif"));
        QCOMPARE(part->font().pointSize(), 12);
    }
}

void Recording::nothing_chosen_records_nothing()
{
    QVERIFY(capture_all(0.0));
    BoxAnswerer answerer;
    bool stayed = false;
    answerer.expect_dialog(DIALOG, [&stayed](QDialog *dialog) {
        dialog->findChild<QPushButton *>(QStringLiteral("btnRecord"))->click();
        stayed = dialog->isVisible();
        dialog->findChild<QPushButton *>(QStringLiteral("btnCancel"))->click();
    });
    m_it->form->btnRecordData->click();
    QVERIFY(stayed);
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/one.save")));
}

void Recording::names_are_asked_for_first_data()
{
    const auto row = test_columns<QString, QString>("technician", "standard");
    row("no working standard", "J. Doe", "");
    row("no technician", "", "DWT-12");
    row("neither", "", "");
}

void Recording::names_are_asked_for_first()
{
    QFETCH(QString, technician);
    QFETCH(QString, standard);
    m_it->form->txtTechnicianName->setText(technician);
    m_it->form->txtCalibrationQIE->setText(standard);
    m_it->form->lblNextStep->setText(QStringLiteral("advice"));
    m_it->form->lblNextStep->setStyleSheet(READY);
    BoxAnswerer answerer;
    answerer.expect(
        QStringLiteral("Information"),
        QStringLiteral(
            "Please enter the Technician Name and Working Standard before Recording data."));
    m_it->form->btnRecordData->click();
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(answerer.met().first().buttons, QStringList{"OK"});
    QCOMPARE(m_it->form->lblNextStep->text(), QString()); // already cleared
    QCOMPARE(m_it->form->lblNextStep->styleSheet(),
             QStringLiteral("background-color: rgb(255,252,239)"));
}

void Recording::cancelled_dialog_records_nothing()
{
    QVERIFY(capture_all(0.0));
    m_it->form->lblNextStep->setText(QStringLiteral("advice"));
    BoxAnswerer answerer;
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        dialog->findChild<QRadioButton *>(QStringLiteral("rbAsFound"))->setChecked(true);
        dialog->findChild<QPushButton *>(QStringLiteral("btnCancel"))->click();
    });
    m_it->form->btnRecordData->click();
    QCOMPARE(m_it->form->txtAsFound->text(), QString());
    QCOMPARE(m_it->form->lblNextStep->text(), QString());
    QCOMPARE(g_captured_points, 3);
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/one.save")));
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled());
}

void Recording::recordings_data()
{
    const auto row = test_columns<QByteArray, QString, int, double, QString>(
        "choice", "box", "save_type", "error", "colour");
    row("as found, out of tolerance", "rbAsFound", "txtAsFound", 3, 1.5, ORANGE);
    row("after service, significantly out", "rbAfterService", "txtAfterService", 5, 3.0, RED);
    row("verification, no adjustment needed", "rbVerification", "txtVerificationData", 6, 0.0,
        GREEN);
    row("verification, out of adjustment", "rbVerification", "txtVerificationData", 6, 0.5, YELLOW);
}

void Recording::recordings()
{
    QFETCH(QByteArray, choice);
    QFETCH(QString, box);
    QFETCH(int, save_type);
    QFETCH(double, error);
    const QByteArray table = read_file(QStringLiteral("/cell/tables/one.tbl"));
    if (save_type == SAVE_VERIFICATION) // the calibration has been updated before
        m_it->form->txtAdjustCalibration->setText(QStringLiteral("01/02/2024 03:04:05"));
    QVERIFY(capture_all(error));
    BoxAnswerer answerer;
    press_record(choice.constData(), QStringLiteral("as seen"), &answerer);
    QCOMPARE(answerer.met().size(), 1);

    const auto *stamped = m_it->window->findChild<QLineEdit *>(box);
    QVERIFY2(is_time(stamped->text()), qPrintable(stamped->text()));
    QTEST(stamped->styleSheet(), "colour");
    QVERIFY(m_it->form->btnReuseCalibration->isEnabled());
    QVERIFY(m_it->form->btnAdjustCalibration->isEnabled());

    QCOMPARE(g_captured_points, 0);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(m_it->window->row(i)->caption(), QStringLiteral("Capture"));
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), IDLE);
    QCOMPARE(QString::fromUtf8(g_cfg->table.qie), QStringLiteral("DWT-12"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.verified_by), QStringLiteral("J. Doe"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.cal_comment), QStringLiteral("as seen"));
    QCOMPARE(int(g_cfg->table.last_save_type), save_type);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(TestWindow::records_in(QStringLiteral("/cell/tables/one.save")), 1);
    QVERIFY(read_file(QStringLiteral("/cell/tables/one.save"))
                .contains("save_type " + QByteArray::number(save_type)));
    QCOMPARE(read_file(QStringLiteral("/cell/tables/one.tbl")), table);
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/one.old")));
}

void Recording::new_correlation_rewrites_the_table()
{
    const QByteArray former = read_file(QStringLiteral("/cell/tables/one.tbl"));
    QVERIFY(capture_all(0.5));
    m_it->form->txtNewCorrelation->setStyleSheet(QString());
    const QString adjust = m_it->form->btnAdjustCalibration->styleSheet();
    BoxAnswerer answerer;
    press_record("rbNewCorrelation", QString(), &answerer);
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(is_time(m_it->form->txtNewCorrelation->text()));
    QCOMPARE(QString::fromUtf8(g_ws_block->new_correlation_time),
             m_it->form->txtNewCorrelation->text());
    QCOMPARE(m_it->form->txtNewCorrelation->styleSheet(), QString());
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled()); // idle panel: they stay disabled
    QVERIFY(!m_it->form->btnReuseCalibration->isEnabled());
    QCOMPARE(m_it->form->btnAdjustCalibration->styleSheet(), adjust);
    QCOMPARE(m_it->form->lblNextStep->text(), QString());
    QCOMPARE(QString::fromUtf8(g_cfg->table.cal_comment), QString());
    QCOMPARE(TestWindow::records_in(QStringLiteral("/cell/tables/one.save")), 1);
    QCOMPARE(read_file(QStringLiteral("/cell/tables/one.old")), former);
    TABLE_RECORD table = {};
    QCOMPARE(read_table("/cell/tables/one.tbl", &table) & 0xffff, 0);
    QCOMPARE(table.poly[0].x[1], 2600.0);
    QCOMPARE(table.poly[0].y[1], 52.5);
    QCOMPARE(table.last_save_type, uint16_t(SAVE_NEW_CORRELATION));
    QCOMPARE(g_captured_points, 0);
}

void Recording::plot_is_replotted_then_scaled_by_itself_data()
{
    QTest::addColumn<bool>("recorded");
    QTest::newRow("Cancel") << false;
    QTest::newRow("As-Found recorded") << true;
}

// Whatever the result. The scale that was set takes effect with the replot, and
// is given up behind it.
void Recording::plot_is_replotted_then_scaled_by_itself()
{
    QFETCH(bool, recorded);
    QVERIFY(capture_all(0.0));
    QwtPlot *const plot = m_it->form->dataPlot;
    plot->setAxisAutoScale(QwtPlot::xBottom);
    plot->setAxisAutoScale(QwtPlot::yLeft);
    plot->replot();
    HeldMutex held(m_it.get()); // no tick replots it
    for (const int axis : {int(QwtPlot::xBottom), int(QwtPlot::yLeft)}) {
        plot->setAxisScale(axis, -7.0, -6.0);
        QVERIFY(plot->axisScaleDiv(axis).lowerBound() != -7.0);
    }
    BoxAnswerer answerer;
    if (recorded) {
        press_record("rbAsFound", QString(), &answerer);
    } else {
        answerer.expect_dialog(DIALOG, [](QDialog *dialog) { dialog->reject(); });
        m_it->form->btnRecordData->click();
    }
    held.release();
    QCOMPARE(m_it->form->txtAsFound->text().isEmpty(), !recorded);
    for (const int axis : {int(QwtPlot::xBottom), int(QwtPlot::yLeft)}) {
        QCOMPARE(plot->axisScaleDiv(axis).lowerBound(), -7.0);
        QVERIFY(plot->axisAutoScale(axis));
    }
}

// Another thread holds it, as a pass would, from the press to the record's end.
void Recording::recording_takes_no_lock()
{
    QVERIFY(capture_all(0.0));
    HeldMutex held(m_it.get());
    BoxAnswerer answerer;
    press_record("rbAsFound", QString(), &answerer);
    QVERIFY(held.release());
    QCOMPARE(TestWindow::records_in(QStringLiteral("/cell/tables/one.save")), 1);
    QVERIFY(is_time(m_it->form->txtAsFound->text()));
}

WINDOW_TEST(Recording);
#include "test_recording.moc"
