// SPDX-License-Identifier: GPL-3.0-or-later
//
// The fields of a touch screen cell in the program's own windows: which pad each
// opens, and that the text that comes back runs the field's own slots, with
// their boxes.
#include <QDoubleValidator>
#include <QIntValidator>
#include <QtTest>

#include "calibration/savetypedialog.h"
#include "gui/frame/testwindow.h"
#include "gui/input/touchscreen.h"
#include "sensor/configdialog2.h"
#include "support/testmain.h"

using namespace touchscreen;

namespace
{
const QString TABLE_INFO = QStringLiteral("Transducer Calibration Configuration");
const QString RECORD = QStringLiteral("Record Calibration Data");
const QString COUNT_BOX = QStringLiteral("Invalid Calibration Points");
const QString COUNT_TEXT = QStringLiteral("A invalid value for Calibration Points was entered\n\n"
                                          "Please reenter a Calibration Points value between 2 "
                                          "and 64");
} // namespace

class Owners : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void device_of_the_window();
    void field_opens_its_pad_data();
    void field_opens_its_pad();
    void field_that_is_not_served_data();
    void field_that_is_not_served();
    void only_a_double_tap_is_handed_over();
    void disabled_field_opens_no_pad();
    void names_are_taken();
    void count_takes_effect();
    void refused_count_is_told();
    void averaging_time_takes_effect();
    void refused_averaging_time_is_told();
    void whole_number_with_a_period_cannot_leave_the_pad();
    void reference_goes_to_the_table();
    void row_starts_the_pad_with_its_number();
    void padded_reference_is_corrected_with_a_real_keyboard();
    void padded_limit_is_corrected_with_a_real_keyboard();
    void escape_leaves_the_reference();
    void description_goes_into_the_record();
    void limits_are_judged_at_ok();
    void sensor_texts_are_taken();
    void dialog_that_goes_while_its_pad_is_open();
    void strange_descriptions_data();
    void strange_descriptions();
    void pads_outlast_many_openings();

private:
    QWidget *pad(bool numbers) const
    {
        return numbers ? static_cast<QWidget *>(g_input_device->numpad) : g_input_device->keyboard;
    }
    // Works with the field in the window or dialog that it stands in.
    void with_field(const QString &owner, const QString &name,
                    const std::function<void(QLineEdit *)> &work);
    // What the pad is given for the field.
    void enter(QLineEdit *field, const QString &keys, bool numbers);
    bool both_closed() const { return !pad(true)->isVisible() && !pad(false)->isVisible(); }

    std::unique_ptr<TestWindow> m_it;
};

void Owners::initTestCase()
{
    g_touch_input = true;
    m_it = std::make_unique<TestWindow>();
}

void Owners::init()
{
    const BoxAnswerer answerer;
    m_it->bind_afresh(0);
    m_it->form->txtTechnicianName->setText(QStringLiteral("J. Doe"));
    m_it->form->txtCalibrationQIE->setText(QStringLiteral("DWT-12"));
    m_it->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_it->window));
}

void Owners::with_field(const QString &owner, const QString &name,
                        const std::function<void(QLineEdit *)> &work)
{
    if (owner == QLatin1String("MainWindow")) {
        work(m_it->window->findChild<QLineEdit *>(name));
        return;
    }
    if (owner == QLatin1String("PointInfo")) {
        work(m_it->window->row(2)->findChild<QLineEdit *>(name));
        return;
    }
    BoxAnswerer answerer;
    const auto visit = [&](QDialog *dialog) { work(dialog->findChild<QLineEdit *>(name)); };
    if (owner == QLatin1String("ConfigDialog2")) {
        answerer.expect_dialog(TABLE_INFO, visit);
        m_it->form->actionTable_Info->trigger();
        return;
    }
    answerer.expect_title(QStringLiteral("Warning"), QStringLiteral("Yes"));
    answerer.expect_dialog(RECORD, visit);
    m_it->form->btnRecordData->click();
}

void Owners::enter(QLineEdit *field, const QString &keys, bool numbers)
{
    double_tap(field);
    QVERIFY(pad(numbers)->isVisible());
    tap_keys(pad(numbers),
             QStringLiteral("clear ") + keys + QLatin1String(numbers ? " enter" : " rshift_2"));
    QVERIFY(both_closed());
}

void Owners::device_of_the_window()
{
    QVERIFY(g_input_device != nullptr);
    QCOMPARE(g_input_device->owner_name, QStringLiteral("MainWindow"));
    QCOMPARE(m_it->window->objectName(), QStringLiteral("MainWindow"));
    QVERIFY(both_closed());
}

void Owners::field_opens_its_pad_data()
{
    // by_tap: exactly three levels below the window
    const auto add = test_columns<QString, bool, bool>("owner", "numbers", "by_tap");
    const auto row = [&](const char *owner, const char *field, bool numbers, bool by_tap) {
        add(field, owner, numbers, by_tap);
    };
    row("MainWindow", "txtCalibrationQIE", false, true);
    row("MainWindow", "txtTechnicianName", false, true);
    row("MainWindow", "txtNumPoints", true, false);
    row("MainWindow", "txtAveragingTime", true, false);
    row("PointInfo", "txtCurrentValue", true, false);
    row("SaveTypeDialog", "txtComment", false, false);
    row("ConfigDialog2", "txtLowerRangeLimit", true, true);
    row("ConfigDialog2", "txtUpperRangeLimit", true, true);
    row("ConfigDialog2", "txtSensorMfgModel", false, true);
    row("ConfigDialog2", "txtSerialNumber", false, true);
    row("ConfigDialog2", "txtDescription", false, true);
}

void Owners::field_opens_its_pad()
{
    QFETCH(QString, owner);
    QFETCH(bool, numbers);
    QFETCH(bool, by_tap);
    bool worked = false;
    with_field(owner, QString::fromLatin1(QTest::currentDataTag()), [&](QLineEdit *field) {
        QCOMPARE(field->property("keyboard"), QVariant(true));
        QVERIFY(!field->property("numpad").isValid());
        QCOMPARE(panel_event(g_input_device, field), by_tap);
        QCOMPARE(pad(numbers)->isVisible(), by_tap);
        QVERIFY(!pad(!numbers)->isVisible());
        pad(numbers)->close();

        if (field->text().isEmpty())
            field->setText(QStringLiteral("word"));
        const QString text = field->text();
        field->deselect();
        double_tap(field);
        QVERIFY(pad(numbers)->isVisible());
        QVERIFY(!pad(!numbers)->isVisible());
        QCOMPARE(g_input_device->target.data(), field);
        QCOMPARE(shown(pad(numbers)), text.trimmed());
        QVERIFY(field->hasSelectedText()); // the double tap reaches the field as well
        tap_keys(pad(numbers), QStringLiteral("5 escape"));
        QVERIFY(both_closed());
        QCOMPARE(field->text(), text);
        QCOMPARE(field->window()->focusWidget(), field);
        worked = true;
    });
    QVERIFY(worked);
}

void Owners::field_that_is_not_served_data()
{
    QTest::addColumn<int>("dummy");
    for (const char *name : {"txtAsFound", "txtAfterService", "txtAdjustCalibration",
                             "txtVerificationData", "txtNewCorrelation"})
        QTest::newRow(name) << 0;
}

void Owners::field_that_is_not_served()
{
    auto *const field =
        m_it->window->findChild<QLineEdit *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(!field->property("keyboard").isValid());
    QVERIFY(!panel_event(g_input_device, field));
    double_tap(field);
    QVERIFY(both_closed());
}

void Owners::only_a_double_tap_is_handed_over()
{
    tap(m_it->form->txtCalibrationQIE);
    QVERIFY(both_closed());
    tap(m_it->window->row(0)->value_field());
    QVERIFY(both_closed());
}

void Owners::disabled_field_opens_no_pad()
{
    QLineEdit *const field = m_it->window->row(0)->value_field();
    field->setEnabled(false);
    m_it->form->txtTechnicianName->setEnabled(false);
    double_tap(field);
    QVERIFY(both_closed());
    QVERIFY(panel_event(g_input_device, m_it->form->txtTechnicianName)); // swallowed
    QVERIFY(both_closed());
    field->setEnabled(true);
    m_it->form->txtTechnicianName->setEnabled(true);
}

void Owners::names_are_taken()
{
    enter(m_it->form->txtTechnicianName, QStringLiteral("lshift a period space lshift b e e"),
          false);
    QCOMPARE(m_it->form->txtTechnicianName->text(), QStringLiteral("A. Bee"));
    QVERIFY(!m_it->form->txtTechnicianName->hasFocus());
}

void Owners::count_takes_effect()
{
    const BoxAnswerer answerer;
    enter(m_it->form->txtNumPoints, QStringLiteral("1 2"), true);
    QCOMPARE(g_num_points, int16_t(12));
    QCOMPARE(m_it->rows_shown(), 12);
    QCOMPARE(m_it->window->row(11)->caption(), QStringLiteral("Capture New"));
}

// The field is emptied, and in a cell with a touch screen that is a count as
// well.
void Owners::refused_count_is_told()
{
    BoxAnswerer answerer;
    answerer.expect(COUNT_BOX, COUNT_TEXT);
    answerer.expect(COUNT_BOX, COUNT_TEXT);
    enter(m_it->form->txtNumPoints, QStringLiteral("6 5"), true);
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->txtNumPoints->text(), QString());
    QCOMPARE(m_it->rows_shown(), 5);
}

void Owners::averaging_time_takes_effect()
{
    const BoxAnswerer answerer;
    enter(m_it->form->txtAveragingTime, QStringLiteral("3 0"), true);
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(300));
    enter(m_it->form->txtAveragingTime, QStringLiteral("5"), true);
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(50));
    m_it->form->txtAveragingTime->setText(QStringLiteral("10"));
}

void Owners::refused_averaging_time_is_told()
{
    BoxAnswerer answerer;
    answerer.expect(QStringLiteral("Wrong Value Entered"),
                    QStringLiteral("The entered Averaging Time must be between 5 and 30 seconds"));
    enter(m_it->form->txtAveragingTime, QStringLiteral("3 1"), true);
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->txtAveragingTime->text(), QStringLiteral("10"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(100));
}

void Owners::whole_number_with_a_period_cannot_leave_the_pad()
{
    double_tap(m_it->form->txtNumPoints);
    tap_keys(pad(true), QStringLiteral("1 0 period"));
    QCOMPARE(shown(pad(true)), QStringLiteral("10."));
    QVERIFY(!key(pad(true), QStringLiteral("enter"))->isEnabled());
    tap_keys(pad(true), QStringLiteral("5 enter"));
    QVERIFY(pad(true)->isVisible());
    tap_key(pad(true), QStringLiteral("escape"));
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("5"));
}

void Owners::reference_goes_to_the_table()
{
    g_cfg->table_dirty = 1;
    enter(m_it->window->row(1)->value_field(), QStringLiteral("2 6 period 7 5 10"), true);
    QCOMPARE(m_it->window->row(1)->value_field()->text(), QStringLiteral("-26.75"));
    QCOMPARE(g_cfg->long_current.y[1], -26.75);
    QCOMPARE(g_cfg->table.poly[0].y[1], -26.75);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

void Owners::row_starts_the_pad_with_its_number()
{
    QLineEdit *const field = m_it->window->row(0)->value_field();
    field->setText(QStringLiteral("  12.5 "));
    double_tap(field);
    QCOMPARE(shown(pad(true)), QStringLiteral("12.5"));
    tap_keys(pad(true), QStringLiteral("7"));
    QCOMPARE(shown(pad(true)), QStringLiteral("7"));
    tap_key(pad(true), QStringLiteral("escape"));
}

// The window writes the value with blanks before it. Letters stay out, and
// Return finishes the edit.
void Owners::padded_reference_is_corrected_with_a_real_keyboard()
{
    QLineEdit *const field = m_it->window->row(1)->value_field();
    const QString written = field->text();
    QVERIFY2(written.startsWith(QLatin1Char(' ')), qPrintable(written));
    const double before = g_cfg->long_current.y[1];
    QVERIFY(before != 0.0);
    field->setFocus();
    QTRY_VERIFY(field->hasFocus());
    field->end(false);
    hardware_keys("a7b-x");
    QCOMPARE(field->text(), written + QLatin1Char('7'));
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Return);
    const double value = (written + QLatin1Char('7')).toDouble();
    QVERIFY(value != before);
    QCOMPARE(g_cfg->long_current.y[1], value);
    QCOMPARE(g_cfg->table.poly[0].y[1], value);
}

void Owners::padded_limit_is_corrected_with_a_real_keyboard()
{
    bool worked = false;
    with_field(QStringLiteral("ConfigDialog2"), QStringLiteral("txtLowerRangeLimit"),
               [&](QLineEdit *field) {
                   QVERIFY(QTest::qWaitForWindowActive(field->window()));
                   const QString written = field->text();
                   QVERIFY2(written.startsWith(QLatin1Char(' ')), qPrintable(written));
                   field->setFocus();
                   QTRY_VERIFY(field->hasFocus());
                   field->end(false);
                   hardware_keys("a7b-x");
                   QCOMPARE(field->text(), written + QLatin1Char('7'));
                   QVERIFY(field->hasAcceptableInput());
                   worked = true;
               });
    QVERIFY(worked);
}

void Owners::escape_leaves_the_reference()
{
    QLineEdit *const field = m_it->window->row(1)->value_field();
    const double before = g_cfg->table.poly[0].y[1];
    const QString text = field->text();
    double_tap(field);
    tap_keys(pad(true), QStringLiteral("9 9 escape"));
    QCOMPARE(field->text(), text);
    QCOMPARE(g_cfg->table.poly[0].y[1], before);
}

void Owners::description_goes_into_the_record()
{
    with_field(QStringLiteral("SaveTypeDialog"), QStringLiteral("txtComment"),
               [&](QLineEdit *field) {
                   tap(field->window()->findChild<QWidget *>(QStringLiteral("rbAsFound")));
                   enter(field, QStringLiteral("lshift o i l lshift 1"), false);
                   QCOMPARE(field->text(), QStringLiteral("Oil!"));
                   tap(field->window()->findChild<QWidget *>(QStringLiteral("btnRecord")));
               });
    QCOMPARE(QString::fromUtf8(g_cfg->table.cal_comment), QStringLiteral("Oil!"));
    QVERIFY(!m_it->form->txtAsFound->text().isEmpty());
}

void Owners::limits_are_judged_at_ok()
{
    BoxAnswerer answerer;
    answerer.expect_dialog(TABLE_INFO, [&](QDialog *dialog) {
        auto *const lower = dialog->findChild<QLineEdit *>(QStringLiteral("txtLowerRangeLimit"));
        enter(lower, QStringLiteral("2 0 0 period 5"), true);
        QCOMPARE(lower->text(), QStringLiteral("200.5"));
        tap(dialog->findChild<QWidget *>(QStringLiteral("btnOk")));
        QVERIFY(dialog->isVisible());
        QCOMPARE(lower->text().trimmed(), QStringLiteral("0.00"));
        tap(dialog->findChild<QWidget *>(QStringLiteral("btnCancel")));
    });
    answerer.expect(QStringLiteral("Invalid Sensor Range Limit VALUES"),
                    QStringLiteral("The entered value for the Sensor Range Lower Limit cannot be "
                                   "more than the Sensor Range Upper Limit value\n\n"
                                   "Please reenter the Limit Values."));
    m_it->form->actionTable_Info->trigger();
    QCOMPARE(answerer.remaining(), 0);
}

void Owners::sensor_texts_are_taken()
{
    BoxAnswerer answerer;
    answerer.expect_dialog(TABLE_INFO, [&](QDialog *dialog) {
        for (const char *name : {"txtSensorMfgModel", "txtSerialNumber", "txtDescription"})
            enter(dialog->findChild<QLineEdit *>(QLatin1String(name)),
                  QStringLiteral("lshift s n dash 7"), false);
        tap(dialog->findChild<QWidget *>(QStringLiteral("btnOk")));
    });
    answerer.expect_title(QStringLiteral("Clearing Calibration Data"));
    m_it->form->actionTable_Info->trigger();
    QCOMPARE(QString::fromUtf8(g_cfg->table.sensor_model), QStringLiteral("Sn-7"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.sensor_serial_no), QStringLiteral("Sn-7"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.description), QStringLiteral("Sn-7"));
    QCOMPARE(m_it->form->lblSerialNumber->text(), QStringLiteral("Sn-7"));
}

// The field is gone, and with a limit its validator.
void Owners::dialog_that_goes_while_its_pad_is_open()
{
    for (const bool numbers : {true, false}) {
        with_field(QStringLiteral("ConfigDialog2"),
                   QLatin1String(numbers ? "txtUpperRangeLimit" : "txtDescription"),
                   [&](QLineEdit *field) { double_tap(field); });
        QVERIFY(g_input_device->target.isNull());
        QVERIFY(pad(numbers)->isVisible());
        tap_keys(pad(numbers), QStringLiteral("clear 5 period 6 enter"));
        QVERIFY(both_closed());
    }
    QCOMPARE(g_cfg->table.sensor_range_max, 100.0);
    // And the next field is served as ever.
    enter(m_it->window->row(0)->value_field(), QStringLiteral("8"), true);
    QCOMPARE(g_cfg->long_current.y[0], 8.0);
}

void Owners::strange_descriptions_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("long") << QString(100000, 'x');
    QTest::newRow("line feeds") << "first\nsecond\n";
    QTest::newRow("from right to left") << QString::fromUtf8("مرحبا بالعالم");
    QTest::newRow("a tab") << "a\tb";
}

// Every record so written is verified when the tables are restored.
void Owners::strange_descriptions()
{
    QFETCH(QString, text);
    with_field(QStringLiteral("SaveTypeDialog"), QStringLiteral("txtComment"),
               [&](QLineEdit *field) {
                   tap(field->window()->findChild<QWidget *>(QStringLiteral("rbAsFound")));
                   field->setText(text);
                   double_tap(field);
                   tap_keys(pad(false), QStringLiteral("rshift_2"));
                   QCOMPARE(field->text(), text.trimmed().left(32767));
                   tap(field->window()->findChild<QWidget *>(QStringLiteral("btnRecord")));
               });
    const QByteArray kept(
        g_cfg->table.cal_comment,
        static_cast<int>(qstrnlen(g_cfg->table.cal_comment, sizeof g_cfg->table.cal_comment)));
    QVERIFY(!kept.isEmpty());
    QVERIFY(text.trimmed().toUtf8().startsWith(kept));
    QCOMPARE(TestWindow::records_in(TestWindow::table_path(QStringLiteral("zero"), ".save")), 1);
}

void Owners::pads_outlast_many_openings()
{
    const BoxAnswerer answerer;
    for (int i = 0; i < 50; ++i) {
        enter(m_it->window->row(0)->value_field(), QString::number(i % 10), true);
        enter(m_it->form->txtTechnicianName, QStringLiteral("a"), false);
    }
    QCOMPARE(g_cfg->long_current.y[0], 9.0);
    QCOMPARE(m_it->form->txtTechnicianName->text(), QStringLiteral("a"));
}

WINDOW_TEST(Owners);
#include "test_owners.moc"
