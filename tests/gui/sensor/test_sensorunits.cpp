// SPDX-License-Identifier: GPL-3.0-or-later
//
// The units button of the table information: limits follow the units picked, the
// record waits for OK, and what Cancel does not put back.
#include <memory>

#include <QListWidget>
#include <QtTest>

#include "host/operations.h"
#include "sensor/tablevalueunitsdialog.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "support/testmain.h"
#include "tableinformation.h"

namespace
{

const QString UNITS_DIALOG = QStringLiteral("Table Value Units");
const QString CLEARING = QStringLiteral("Clearing Calibration Data");
constexpr double KPA_PER_PSI = 6.894757293168361;

// Picks a unit in whichever category it stands.
bool pick(QDialog *dialog, const QString &keyword)
{
    auto *const categories = part<QListWidget>(*dialog, "lstUnitCategory");
    auto *const units = part<QListWidget>(*dialog, "lstUnitType");
    for (int i = 0; i < categories->count(); ++i) {
        categories->setCurrentRow(i);
        const auto found = units->findItems(keyword, Qt::MatchExactly);
        if (found.isEmpty())
            continue;
        units->setCurrentItem(found.first());
        return true;
    }
    return false;
}

} // namespace

class SensorUnits : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_cell.reset(); }
    void init();
    void cleanup() { m_boxes.reset(); }
    void without_the_hosts_unit_memory();
    void cell_starts();
    void opens_for_the_sensor_on_its_units();
    void limits_follow_the_units_data();
    void limits_follow_the_units();
    void limits_as_typed_and_units_as_shown_are_converted();
    void unlike_units_leave_the_limits_and_are_refused_by_ok();
    void cancelled_choice_changes_nothing();
    void nothing_picked_is_logged_and_changes_nothing();
    void units_chosen_then_cancel();
    void units_chosen_then_ok_converts_the_extremes_as_if_in_them();
    void choosing_the_same_units_is_no_change();

private:
    // Presses the units button and picks the unit in the dialog that opens.
    void choose(const QDialog &dialog, const QString &keyword);

    std::unique_ptr<TestCell> m_cell;
    std::unique_ptr<SessionBoxes> m_boxes;
};

void SensorUnits::initTestCase()
{
    require_private_cell();
    clear_cell();
    QCOMPARE(units_init_access(1) & 0xffff, 0);
}

void SensorUnits::init()
{
    m_boxes = std::make_unique<SessionBoxes>();
    g_cfg->table.y_min = 5.0;
    g_cfg->table.y_max = 95.0;
    units_for_table = 7;
    units_for_sensor = 7;
}

void SensorUnits::choose(const QDialog &dialog, const QString &keyword)
{
    m_boxes->expect_dialog(UNITS_DIALOG, [keyword](QDialog *units) {
        QVERIFY2(pick(units, keyword), qPrintable(keyword));
        press(*units, "btnOK");
    });
    press(dialog, "btnSensorUnits");
    QCOMPARE(m_boxes->remaining(), 0);
}

// Each list then holds one entry that is no unit.
void SensorUnits::without_the_hosts_unit_memory()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    choose(dialog, QStringLiteral(" <empty>"));
    QCOMPARE(text_of(dialog, "btnSensorUnits"), QString(" <empty>"));
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("  100.00"));
    m_boxes->expect("Invalid Sensor Range UNITS",
                    "The Sensor Range Units ( <empty>) are not compatible with the table units "
                    "(kPa).\n\nPlease reselect the Sensor Range Units.");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(text_of(dialog, "btnSensorUnits"), QString("kPa"));
}

void SensorUnits::cell_starts()
{
    m_cell = std::make_unique<TestCell>(TestCell::simple_description());
    QVERIFY2(m_cell->start(), qPrintable(m_cell->error()));
}

void SensorUnits::opens_for_the_sensor_on_its_units()
{
    set_text(g_cfg->table.sensor_units, "PSI");
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    m_boxes->expect_dialog(UNITS_DIALOG, [&](QDialog *units) {
        QCOMPARE(units_for_table, uint8_t(0));
        QCOMPARE(units_for_sensor, uint8_t(1));
        QCOMPARE(units->parentWidget(), static_cast<QWidget *>(&dialog));
        QCOMPARE(part<QListWidget>(*units, "lstUnitCategory")->currentItem()->text(),
                 QString("Pressure"));
        QCOMPARE(part<QListWidget>(*units, "lstUnitType")->currentItem()->text(), QString("PSI"));
    });
    press(dialog, "btnSensorUnits");
    QCOMPARE(m_boxes->remaining(), 0);
}

void SensorUnits::limits_follow_the_units_data()
{
    const auto row = test_columns<QByteArray, double, double, QString, QString, QString>(
        "from", "min", "max", "to", "lower", "upper");
    row("pressure", QByteArray("kPa"), 0.0, 100.0, "PSI", "    0.00", "   14.50");
    row("temperature, with its zero point", QByteArray("DEG_C"), -40.0, 100.0, "DEG_F", "  -40.00",
        "  212.00");
    row("a limit that is no number", QByteArray("kPa"), qQNaN(), 100.0, "PSI", "     nan",
        "   14.50");
}

void SensorUnits::limits_follow_the_units()
{
    QFETCH(QByteArray, from);
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(QString, to);
    set_text(g_cfg->table.sensor_units, from);
    set_text(g_cfg->table.eng_units, from);
    g_cfg->table.sensor_range_min = min;
    g_cfg->table.sensor_range_max = max;
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    const TABLE_RECORD before = g_cfg->table;
    choose(dialog, to);
    QTEST(text_of(dialog, "txtLowerRangeLimit"), "lower");
    QTEST(text_of(dialog, "txtUpperRangeLimit"), "upper");
    QCOMPARE(text_of(dialog, "btnSensorUnits"), to);
    QCOMPARE(QString(g_cfg->table_units), to); // at once
    // Nothing goes into the table before OK.
    QVERIFY(std::memcmp(&before, &g_cfg->table, sizeof before) == 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QVERIFY(dialog.isVisible());
}

void SensorUnits::limits_as_typed_and_units_as_shown_are_converted()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    type(dialog, "txtLowerRangeLimit", "low"); // reads as 0
    type(dialog, "txtUpperRangeLimit", " 200 ");
    choose(dialog, "PSI");
    QCOMPARE(text_of(dialog, "txtLowerRangeLimit"), QString("    0.00"));
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("   29.01"));
    // A second choice starts from the units and limits that are shown now.
    choose(dialog, "kPa");
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("  200.02"));
    QCOMPARE(QString(g_cfg->table_units), QString("kPa"));
}

void SensorUnits::unlike_units_leave_the_limits_and_are_refused_by_ok()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    type(dialog, "txtUpperRangeLimit", "250");
    choose(dialog, "DEG_F");
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("  250.00"));
    QCOMPARE(text_of(dialog, "btnSensorUnits"), QString("DEG_F"));
    m_boxes->expect("Invalid Sensor Range UNITS",
                    "The Sensor Range Units (DEG_F) are not compatible with the table units "
                    "(kPa).\n\nPlease reselect the Sensor Range Units.");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(text_of(dialog, "btnSensorUnits"), QString("kPa"));
    QCOMPARE(QString(g_cfg->table_units), QString("DEG_F"));
}

void SensorUnits::cancelled_choice_changes_nothing()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    type(dialog, "txtUpperRangeLimit", "250");
    m_boxes->expect_dialog(UNITS_DIALOG, [](QDialog *units) {
        QVERIFY(pick(units, "PSI"));
        press(*units, "btnCancel");
    });
    const HostLog log;
    press(dialog, "btnSensorUnits");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("250"));
    QCOMPARE(text_of(dialog, "btnSensorUnits"), QString("kPa"));
    QCOMPARE(QString(g_cfg->table_units), QString("kPa"));
    QCOMPARE(log.texts(), QStringList());
}

void SensorUnits::nothing_picked_is_logged_and_changes_nothing()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    type(dialog, "txtUpperRangeLimit", "250");
    m_boxes->expect_dialog(UNITS_DIALOG, [](QDialog *units) {
        part<QListWidget>(*units, "lstUnitCategory")->setCurrentRow(3);
        press(*units, "btnOK");
    });
    const HostLog log;
    press(dialog, "btnSensorUnits");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(log.texts(), QStringList("Error: No units selected for table."));
    QCOMPARE(log.entries().first().severity, 1);
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("250"));
    QCOMPARE(text_of(dialog, "btnSensorUnits"), QString("kPa"));
    QCOMPARE(QString(g_cfg->table_units), QString("kPa"));
}

void SensorUnits::units_chosen_then_cancel()
{
    {
        ConfigDialog2 dialog(nullptr, false, 0);
        dialog.show();
        choose(dialog, "PSI");
        m_boxes->expect("Changes Lost",
                        "Changes made to the Calibration Configuration will be lost.");
        press(dialog, "btnCancel");
        QCOMPARE(m_boxes->remaining(), 0);
    }
    // The fields are discarded, and the table's units stay as they were picked.
    QCOMPARE(QString(g_cfg->table.sensor_units), QString("kPa"));
    QCOMPARE(g_cfg->table.sensor_range_max, 100.0);
    QCOMPARE(g_cfg->table.y_max, 95.0);
    QCOMPARE(QString(g_cfg->table_units), QString("PSI"));
    // So the next form shows the extremes in them.
    ConfigDialog2 again(nullptr, false, 0);
    QCOMPARE(text_of(again, "lblMaximumText"), QString("   13.78"));
    QCOMPARE(text_of(again, "lblCalibrationUnitsText"), QString("kPa"));
    QCOMPARE(text_of(again, "btnSensorUnits"), QString("kPa"));
}

void SensorUnits::units_chosen_then_ok_converts_the_extremes_as_if_in_them()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    choose(dialog, "PSI");
    m_boxes->expect_title(CLEARING);
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    const TABLE_RECORD &table = g_cfg->table;
    QCOMPARE(QString(table.sensor_units), QString("PSI"));
    QCOMPARE(QString(table.eng_units), QString("kPa"));
    QCOMPARE(table.sensor_range_max, 14.5);
    QCOMPARE(table.oot_tol, 0.01 * 14.5 * KPA_PER_PSI); // in the table's units
    QCOMPARE(table.y_min, 5.0 * KPA_PER_PSI);
    QCOMPARE(table.y_max, 95.0 * KPA_PER_PSI);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QCOMPARE(QString(g_cfg->table_units), QString("PSI"));
    // Shown again they look as before: one conversion undoes the other.
    ConfigDialog2 again(nullptr, false, 0);
    QCOMPARE(text_of(again, "lblMaximumText"), QString("   95.00"));
}

void SensorUnits::choosing_the_same_units_is_no_change()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    choose(dialog, "kPa");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->said(), QStringList(UNITS_DIALOG + ": "));
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_cfg->table.y_max, 95.0);
}

WINDOW_TEST(SensorUnits);
#include "test_sensorunits.moc"
