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
const QString CAUTION = QStringLiteral("background-color: yellow");
} // namespace

class Recording : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void dialog_form_data();
    void dialog_form();
    void dialog_opens_with_nothing_chosen();
    void nothing_chosen_records_nothing();
    void names_are_asked_for_first_data();
    void names_are_asked_for_first();
    void cancelled_dialog_records_nothing();
    void recordings_data();
    void recordings();
    void first_as_found_needs_no_description();
    void as_found_box_of_a_service_without_it();
    void new_correlation_rewrites_the_table();
    void description_is_cut_to_its_field();
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

void Recording::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
}

void Recording::cleanupTestCase()
{
    m_it.reset();
}

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
    QTest::addColumn<QString>("class_name");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("text");
    QTest::newRow("groupBox") << "QGroupBox"
                              << "title"
                              << "What type of data is this?";
    QTest::newRow("label_2") << "QLabel"
                             << "text"
                             << "Select One";
    QTest::newRow("rbAsFound") << "QRadioButton"
                               << "text"
                               << "As-Found Data";
    QTest::newRow("label_3")
        << "QLabel"
        << "text"
        << "Collected before performing any service or adjustments to assess the data quality that "
           "the customer was experiencing.";
    QTest::newRow("rbAfterService") << "QRadioButton"
                                    << "text"
                                    << "After-Service Data";
    QTest::newRow("label_4")
        << "QLabel"
        << "text"
        << "Collected after performing maintenance, repairs or adjustments that could change the "
           "readings.  For Example, after rotating dyno bearings.";
    QTest::newRow("rbVerification") << "QRadioButton"
                                    << "text"
                                    << "Verification Data";
    QTest::newRow("label_5")
        << "QLabel"
        << "text"
        << "Collected after a calibration adjustment to verify that the adjusted calibration meets "
           "the requirements.";
    QTest::newRow("rbNewCorrelation") << "QRadioButton"
                                      << "text"
                                      << "New Correlation";
    QTest::newRow("label_6") << "QLabel"
                             << "text"
                             << "Change in calibration method or curve fit.";
    QTest::newRow("lblComment") << "QLabel"
                                << "text"
                                << "Description:";
    QTest::newRow("txtComment") << "QLineEdit"
                                << "text"
                                << "";
    QTest::newRow("btnRecord") << "QPushButton"
                               << "text"
                               << "Record";
    QTest::newRow("btnCancel") << "QPushButton"
                               << "text"
                               << "Cancel";
}

void Recording::dialog_form()
{
    QFETCH(QString, class_name);
    QFETCH(QString, property);
    QFETCH(QString, text);
    const SaveTypeDialog dialog(m_it->window, 0);
    QCOMPARE(dialog.windowTitle(), DIALOG);
    const auto *part = dialog.findChild<QWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(part != nullptr);
    QCOMPARE(QString::fromLatin1(part->metaObject()->className()), class_name);
    QCOMPARE(part->property(property.toLatin1().constData()).toString(), text);
    if (class_name == QLatin1String("QLabel")) {
        QCOMPARE(part->font().family(), QStringLiteral("Sans Serif"));
        QCOMPARE(part->font().pointSize(), 12);
    }
}

void Recording::dialog_opens_with_nothing_chosen()
{
    const SaveTypeDialog dialog(m_it->window, 0);
    const auto choices = dialog.findChildren<QRadioButton *>();
    QCOMPARE(choices.size(), 4);
    for (const QRadioButton *choice : choices)
        QVERIFY(!choice->isChecked());
    MetBox met;
    met.flags = dialog.windowFlags();
    QVERIFY(BoxAnswerer::has_title_bar_only(met));
    QVERIFY(!dialog.findChild<QLineEdit *>(QStringLiteral("txtComment"))
                 ->property("keyboard")
                 .isValid());
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
    QTest::addColumn<QString>("technician");
    QTest::addColumn<QString>("standard");
    QTest::newRow("no working standard") << "J. Doe"
                                         << "";
    QTest::newRow("no technician") << ""
                                   << "DWT-12";
    QTest::newRow("neither") << ""
                             << "";
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
    QTest::addColumn<QByteArray>("choice");
    QTest::addColumn<QString>("box");
    QTest::addColumn<int>("save_type");
    QTest::addColumn<double>("error");
    QTest::addColumn<QString>("colour");
    QTest::addColumn<QString>("reuse");
    QTest::addColumn<QString>("adjust");
    QTest::addColumn<QString>("advice");
    const struct {
        const char *name;
        const char *choice;
        const char *box;
        int save_type;
        double error;
        QString colour;
        QString reuse;
        QString adjust;
        const char *advice;
    } rows[] = {
        {"as found, no adjustment needed", "rbAsFound", "txtAsFound", 3, 0.0, GREEN, READY, IDLE,
         ""},
        {"as found, out of adjustment", "rbAsFound", "txtAsFound", 3, 0.5, YELLOW, IDLE, READY, ""},
        {"as found, out of tolerance", "rbAsFound", "txtAsFound", 3, 1.5, ORANGE, IDLE, IDLE,
         "<font color='red'>Channel is out of tolerance,<br>perform service and capture new "
         "data</font>"},
        {"as found, significantly out", "rbAsFound", "txtAsFound", 3, 3.0, RED, IDLE, IDLE,
         "<font color='red'>Channel is out of tolerance,<br>perform service and capture new "
         "data</font>"},
        {"after service, no adjustment needed", "rbAfterService", "txtAfterService", 5, 0.0, GREEN,
         READY, CAUTION,
         "<font color='red'>If channel or sensor hardware was changed,<br>adjust calibration "
         "rather "
         "than re-use.</font>"},
        {"after service, out of adjustment", "rbAfterService", "txtAfterService", 5, 0.5, YELLOW,
         IDLE, READY, ""},
        {"after service, out of tolerance", "rbAfterService", "txtAfterService", 5, 1.5, ORANGE,
         IDLE, CAUTION,
         "<font color='red'>If shift in calibration is expected due to<br>service performed, "
         "adjust "
         "calibration</font>"},
        {"after service, significantly out", "rbAfterService", "txtAfterService", 5, 3.0, RED, IDLE,
         CAUTION,
         "<font color='red'>If shift in calibration is expected due to<br>service performed, "
         "adjust "
         "calibration</font>"},
        {"verification, no adjustment needed", "rbVerification", "txtVerificationData", 6, 0.0,
         GREEN, IDLE, IDLE, "<font color='red'>Channel is within expected range</font>"},
        {"verification, out of adjustment", "rbVerification", "txtVerificationData", 6, 0.5, YELLOW,
         IDLE, IDLE, "<font color='red'>Channel is outside of expected range</font>"},
        {"verification, out of tolerance", "rbVerification", "txtVerificationData", 6, 1.5, ORANGE,
         IDLE, IDLE,
         "<font color='red'>Channel is out of tolerance,<br>perform service and capture new "
         "data.</font>"},
        {"verification, significantly out", "rbVerification", "txtVerificationData", 6, 3.0, RED,
         IDLE, IDLE,
         "<font color='red'>Channel is out of tolerance,<br>perform service and capture new "
         "data.</font>"},
    };
    for (const auto &row : rows)
        QTest::newRow(row.name) << QByteArray(row.choice) << QString::fromLatin1(row.box)
                                << row.save_type << row.error << row.colour << row.reuse
                                << row.adjust << QString::fromLatin1(row.advice);
}

void Recording::recordings()
{
    QFETCH(QByteArray, choice);
    QFETCH(QString, box);
    QFETCH(int, save_type);
    QFETCH(double, error);
    QFETCH(QString, colour);
    QFETCH(QString, reuse);
    QFETCH(QString, adjust);
    QFETCH(QString, advice);
    const QByteArray table = read_file(QStringLiteral("/cell/tables/one.tbl"));
    if (save_type == SAVE_VERIFICATION) // the calibration has been updated before
        m_it->form->txtAdjustCalibration->setText(QStringLiteral("01/02/2024 03:04:05"));
    QVERIFY(capture_all(error));
    BoxAnswerer answerer;
    press_record(choice.constData(), QStringLiteral("as seen"), &answerer);
    QCOMPARE(answerer.met().size(), 1);

    const auto *stamped = m_it->window->findChild<QLineEdit *>(box);
    QVERIFY2(is_time(stamped->text()), qPrintable(stamped->text()));
    QCOMPARE(stamped->styleSheet(), colour);
    const char *const copy = save_type == SAVE_AS_FOUND        ? g_ws_block->as_found_time
                             : save_type == SAVE_AFTER_SERVICE ? g_ws_block->after_service_time
                                                               : g_ws_block->verification_time;
    QCOMPARE(QString::fromUtf8(copy), stamped->text());
    QCOMPARE(m_it->form->btnReuseCalibration->styleSheet(), reuse);
    QCOMPARE(m_it->form->btnAdjustCalibration->styleSheet(), adjust);
    QVERIFY(m_it->form->btnReuseCalibration->isEnabled());
    QVERIFY(m_it->form->btnAdjustCalibration->isEnabled());
    QCOMPARE(m_it->form->lblNextStep->text(), advice);

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

void Recording::first_as_found_needs_no_description()
{
    QVERIFY(capture_all(0.0));
    BoxAnswerer answerer;
    press_record("rbAsFound", QString(), &answerer);
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(is_time(m_it->form->txtAsFound->text()));
    QCOMPARE(QString::fromUtf8(g_cfg->table.cal_comment), QString());
}

void Recording::as_found_box_of_a_service_without_it()
{
    QVERIFY(capture_all(0.5));
    BoxAnswerer answerer;
    press_record("rbAfterService", QStringLiteral("bearings rotated"), &answerer);
    QCOMPARE(m_it->form->txtAsFound->text(), QStringLiteral("N/A"));
    QCOMPARE(m_it->form->txtAsFound->styleSheet(), RED);
    QCOMPARE(QString::fromUtf8(g_ws_block->as_found_time), QStringLiteral("N/A"));
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

void Recording::description_is_cut_to_its_field()
{
    QVERIFY(capture_all(0.0));
    BoxAnswerer answerer;
    press_record("rbAsFound", QString(100, QLatin1Char('x')), &answerer);
    QCOMPARE(QString::fromUtf8(g_cfg->table.cal_comment), QString(79, QLatin1Char('x')));
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
