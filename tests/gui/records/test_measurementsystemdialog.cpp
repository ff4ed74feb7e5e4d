// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog of the measurement system under test.
#include <QtTest>

#include "frame/line_rpt.h"
#include "gui/sensor/tableinformation.h"
#include "records/measurementsystem.h"
#include "records/measurementsystemdialog.h"
#include "support/testmain.h"

namespace
{

const char *const FIELDS[] = {"txtValRangeMin", "txtValRangeMax", "txtMinExpVal", "txtMaxExpVal"};

const QString TITLE = "Measurement System Under Test Data";
const QString GUARD = "Values must be entered in all fields";

QStringList shown(const QDialog &dialog)
{
    QStringList texts;
    for (const char *field : FIELDS)
        texts.append(part<QLineEdit>(dialog, field)->text());
    return texts;
}

QList<double> stored()
{
    return {g_env->validation_nominal_range_min, g_env->validation_nominal_range_max,
            g_env->min_expected_val, g_env->max_expected_val};
}

QList<double> reported()
{
    return {g_line_rpt.validation_nominal_range_min, g_line_rpt.validation_nominal_range_max,
            g_line_rpt.min_expected_val, g_line_rpt.max_expected_val};
}

const QList<double> FORMER = {11, 12, 13, 14};

void type_all(const QDialog &dialog, const QStringList &texts)
{
    for (int i = 0; i < texts.size(); ++i)
        part<QLineEdit>(dialog, FIELDS[i])->setText(texts[i]);
}

} // namespace

class SystemDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void form();
    void flags();
    void starts_from_the_table_data();
    void starts_from_the_table();
    void units_as_long_as_their_field_are_not_cut();
    void opening_stores_nothing();
    void unchanged_values_are_confirmed_as_shown();
    void empty_field_data();
    void empty_field();
    void text_that_is_no_number_data();
    void text_that_is_no_number();
    void emptiness_is_looked_at_first();
    void minimum_above_maximum_passes();
    void escape_stores_nothing();
    void enter_in_a_field_is_ok();
};

void SystemDialog::init()
{
    fresh_session();
    g_cfg->table.y_min = -5;
    g_cfg->table.y_max = 250;
    *g_env = {FORMER[0], FORMER[1], FORMER[2], FORMER[3]};
    g_line_rpt = {};
    g_line_rpt.validation_nominal_range_min = FORMER[0];
    g_line_rpt.validation_nominal_range_max = FORMER[1];
    g_line_rpt.min_expected_val = FORMER[2];
    g_line_rpt.max_expected_val = FORMER[3];
}

void SystemDialog::form()
{
    const MeasurementSystemDialog dialog(nullptr);
    QCOMPARE(dialog.windowTitle(), TITLE);
    const char *const labels[] = {"label", "label_2", "label_3", "label_4"};
    const char *const texts[] = {"Validation Nominal Range Min:", "Validation Nominal Range Max:",
                                 "Min Expected Val:", "Max Expected Val:"};
    for (int i = 0; i < 4; ++i) {
        const auto *const label = part<QLabel>(dialog, labels[i]);
        QCOMPARE(label->text(), QString(texts[i]));
        QCOMPARE(label->buddy(), part<QLineEdit>(dialog, FIELDS[i]));
    }
    QCOMPARE(dialog.findChildren<QLineEdit *>().size(), 4);
    const auto buttons = dialog.findChildren<QPushButton *>();
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons[0]->objectName(), QString("btnOK"));
    QCOMPARE(buttons[0]->text(), QString("OK"));
    QVERIFY(buttons[0]->isDefault());
}

void SystemDialog::flags()
{
    const MeasurementSystemDialog dialog(nullptr);
    // The toolkit adds the menu that a minimise button stands in; there is no close button.
    QCOMPARE(dialog.windowFlags(), Qt::Dialog | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                                       Qt::WindowSystemMenuHint);
}

void SystemDialog::starts_from_the_table_data()
{
    const auto row =
        test_columns<double, double, QString, QStringList>("y_min", "y_max", "units", "texts");
    row("whole numbers", -5.0, 250.0, "kPa", QStringList({"-5", "250", "-5", "250"}));
    row("six digits", 0.123456789, 1234567.8, "DEG_F",
        QStringList({"0.123457", "1.23457e+06", "0.123457", "1.23457e+06"}));
    row("no channel yet", 0.0, 0.0, "", QStringList({"0", "0", "0", "0"}));
    row("units that look like a tag", 0.0, 1.0, "<b>kPa</b>", QStringList({"0", "1", "0", "1"}));
}

void SystemDialog::starts_from_the_table()
{
    QFETCH(double, y_min);
    QFETCH(double, y_max);
    QFETCH(QString, units);
    g_cfg->table.y_min = y_min;
    g_cfg->table.y_max = y_max;
    set_text(g_cfg->table.eng_units, units.toUtf8());
    const MeasurementSystemDialog dialog(nullptr);
    QTEST(shown(dialog), "texts");
    for (const char *label : {"txtUnits1", "txtUnits2", "txtUnits3", "txtUnits4"}) {
        QCOMPARE(part<QLabel>(dialog, label)->text(), units);
        QCOMPARE(part<QLabel>(dialog, label)->textFormat(), Qt::PlainText);
    }
}

void SystemDialog::units_as_long_as_their_field_are_not_cut()
{
    set_text(g_cfg->table.eng_units, "WWWWWWWWWWWWWWW");
    MeasurementSystemDialog dialog(nullptr);
    dialog.show();
    for (const char *name : {"txtUnits1", "txtUnits2", "txtUnits3", "txtUnits4"}) {
        const auto *const label = part<QLabel>(dialog, name);
        QVERIFY(label->width() >= label->sizeHint().width());
        QVERIFY(dialog.rect().contains(label->geometry()));
    }
}

void SystemDialog::opening_stores_nothing()
{
    const MeasurementSystemDialog dialog(nullptr);
    QCOMPARE(stored(), FORMER);
    QCOMPARE(reported(), FORMER);
}

void SystemDialog::unchanged_values_are_confirmed_as_shown()
{
    g_cfg->table.y_min = -0.00123456789;
    g_cfg->table.y_max = 1234.56789;
    MeasurementSystemDialog dialog(nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [](QDialog *open) { press(*open, "btnOK"); });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(stored(), QList<double>({-0.00123457, 1234.57, -0.00123457, 1234.57}));
    QCOMPARE(reported(), stored());
    QCOMPARE(g_cfg->table.y_max, 1234.56789);
}

void SystemDialog::empty_field_data()
{
    QTest::addColumn<int>("empty");
    for (int i = 0; i < 4; ++i)
        QTest::newRow(FIELDS[i]) << i;
}

void SystemDialog::empty_field()
{
    QFETCH(int, empty);
    MeasurementSystemDialog dialog(nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [&](QDialog *open) {
        type_all(*open, {"1", "2", "3", "4"});
        part<QLineEdit>(*open, FIELDS[empty])->clear();
        answerer.expect(QString(), GUARD);
        press(*open, "btnOK");
        QVERIFY(open->isVisible());
        QCOMPARE(stored(), FORMER);
        QCOMPARE(reported(), FORMER);
    });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    const MetBox &box = answerer.met().last();
    QVERIFY(is_ok_box(box));
    QCOMPARE(box.icon, QMessageBox::Warning);
}

void SystemDialog::text_that_is_no_number_data()
{
    const auto row = test_columns<int, QList<double>>("field", "values");
    row("first", EXPECTED_RANGE_MIN, QList<double>{0, 12, 13, 14});
    row("second", EXPECTED_RANGE_MAX, QList<double>{1, 0, 13, 14});
    row("third: the last keeps its former value", EXPECTED_MIN, QList<double>{1, 2, 0, 14});
    row("fourth", EXPECTED_MAX, QList<double>{1, 2, 3, 0});
}

void SystemDialog::text_that_is_no_number()
{
    QFETCH(int, field);
    QFETCH(QList<double>, values);
    MeasurementSystemDialog dialog(nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [&](QDialog *open) {
        type_all(*open, {"1", "2", "3", "4"});
        part<QLineEdit>(*open, FIELDS[field])->setText("abc");
        answerer.expect(QString(), invalid_value_text(static_cast<ExpectedValue>(field)));
        press(*open, "btnOK");
        QVERIFY(open->isVisible());
        QCOMPARE(part<QLineEdit>(*open, FIELDS[field])->text(), QString("abc"));
        QCOMPARE(stored(), values);
        QCOMPARE(reported(), values);
        part<QLineEdit>(*open, FIELDS[field])->setText("9.5");
        press(*open, "btnOK");
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QList<double> mended = {1, 2, 3, 4};
    mended[field] = 9.5;
    QCOMPARE(stored(), mended);
    QCOMPARE(reported(), mended);
    const MetBox &box = answerer.met().last();
    QVERIFY(is_ok_box(box));
    QCOMPARE(box.icon, QMessageBox::Warning);
}

void SystemDialog::emptiness_is_looked_at_first()
{
    MeasurementSystemDialog dialog(nullptr);
    type_all(dialog, {"abc", "2", "3", ""});
    BoxAnswerer answerer;
    answerer.expect(QString(), GUARD);
    press(dialog, "btnOK");
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(stored(), FORMER);
}

void SystemDialog::minimum_above_maximum_passes()
{
    MeasurementSystemDialog dialog(nullptr);
    type_all(dialog, {"100", "-100", "7", "7"});
    press(dialog, "btnOK");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(stored(), QList<double>({100, -100, 7, 7}));
}

void SystemDialog::escape_stores_nothing()
{
    MeasurementSystemDialog dialog(nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [](QDialog *open) {
        type_all(*open, {"1", "2", "3", "4"});
        QTest::keyClick(open, Qt::Key_Escape);
        QVERIFY(!open->isVisible());
    });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    QCOMPARE(stored(), FORMER);
    QCOMPARE(reported(), FORMER);
}

void SystemDialog::enter_in_a_field_is_ok()
{
    MeasurementSystemDialog dialog(nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog(TITLE, [](QDialog *open) {
        type_all(*open, {"1", "2", "3", "4"});
        QTest::keyClick(part<QLineEdit>(*open, "txtMinExpVal"), Qt::Key_Return);
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(stored(), QList<double>({1, 2, 3, 4}));
}

WINDOW_TEST(SystemDialog);
#include "test_measurementsystemdialog.moc"
