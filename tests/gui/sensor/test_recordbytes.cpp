// SPDX-License-Identifier: GPL-3.0-or-later
//
// Texts of a record, and keywords of the host, whose bytes are not UTF-8. What a
// dialog shows of them cannot be turned back, so what was not edited stays as it
// was, byte for byte, and counts as unchanged.
#include <memory>
#include <string>

#include <QListWidget>
#include <QtTest>

#include "gui/sensor/tableinformation.h"
#include "host/operations.h"
#include "hostsim/runtime/unitcatalogue.h"
#include "sensor/tablevalueunitsdialog.h"
#include "sensor/unitcatalogue.h"
#include "support/testmain.h"

namespace
{

// Two keywords that look alike when they are shown.
const QByteArray ONE_UNIT = QByteArrayLiteral("\xb0PSI");
const QByteArray OTHER_UNIT = QByteArrayLiteral("\xb1PSI");
const QString UNITS_DIALOG = QStringLiteral("Table Value Units");

// The field of the record behind a widget.
char *field_of(const QString &widget)
{
    TABLE_RECORD &table = g_cfg->table;
    if (widget == QLatin1String("txtDescription"))
        return table.description;
    if (widget == QLatin1String("txtSerialNumber"))
        return table.sensor_serial_no;
    return widget == QLatin1String("txtSensorMfgModel") ? table.sensor_model : table.sensor_units;
}

void pick_pressure(QDialog *dialog, const QByteArray &keyword)
{
    part<QListWidget>(*dialog, "lstUnitCategory")->setCurrentRow(UNITS_PRESSURE);
    const int row = unit_list(g_cfg, UNITS_PRESSURE).indexOf(keyword);
    QVERIFY(row >= 0);
    part<QListWidget>(*dialog, "lstUnitType")->setCurrentRow(row);
    press(*dialog, "btnOK");
}

void widgets_and_bytes()
{
    const auto row = test_columns<QString, QByteArray>("widget", "bytes");
    row("description", "txtDescription",
        "Oil temp \xb0"
        "C");
    row("description cut within a character", "txtDescription", "Modell f\xc3");
    row("description that begins with a byte order mark", "txtDescription", "\xef\xbb\xbfOil");
    row("serial number", "txtSerialNumber", "N\xb0 7");
    row("model", "txtSensorMfgModel", "\xff\xfe");
    row("units", "btnSensorUnits", ONE_UNIT);
}

} // namespace

class RecordBytes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { hostsim::withdraw_unit_catalogue(); }
    void init() { m_boxes = std::make_unique<SessionBoxes>(); }
    void cleanup() { m_boxes.reset(); }
    void ok_leaves_what_was_not_edited_data() { widgets_and_bytes(); }
    void ok_leaves_what_was_not_edited();
    void cancel_has_nothing_to_warn_of_data() { widgets_and_bytes(); }
    void cancel_has_nothing_to_warn_of();
    void ok_beside_an_edit();
    void typed_text_takes_the_place_of_the_bytes();
    void refused_units_come_back();
    void picked_keyword_of_the_sensor();
    void picked_keyword_of_the_table();
    void units_dialog_opens_on_the_keyword();

private:
    std::unique_ptr<SessionBoxes> m_boxes;
};

void RecordBytes::initTestCase()
{
    std::string units = hostsim::default_unit_catalogue_text();
    units += "\n" + ONE_UNIT.toStdString() + " 190 pressure 1000 Pa\n";
    units += OTHER_UNIT.toStdString() + " 191 pressure 2000 Pa\n";
    QVERIFY(hostsim::publish_unit_catalogue(units));
    QCOMPARE(units_init_access(1) & 0xffff, 0);
    fresh_session();
}

void RecordBytes::ok_leaves_what_was_not_edited()
{
    QFETCH(QString, widget);
    QFETCH(QByteArray, bytes);
    qstrcpy(field_of(widget), bytes);
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->said(), QStringList());
    QVERIFY(!dialog.isVisible());
    QCOMPARE(QByteArray(field_of(widget)), bytes);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

void RecordBytes::cancel_has_nothing_to_warn_of()
{
    QFETCH(QString, widget);
    QFETCH(QByteArray, bytes);
    qstrcpy(field_of(widget), bytes);
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    press(dialog, "btnCancel");
    QCOMPARE(m_boxes->said(), QStringList());
    QVERIFY(!dialog.isVisible());
    QCOMPARE(QByteArray(field_of(widget)), bytes);
}

void RecordBytes::ok_beside_an_edit()
{
    set_text(g_cfg->table.description, " \xb0"
                                       "C ");
    ConfigDialog2 dialog(nullptr, false, 0);
    type(dialog, "txtSerialNumber", QString::fromUtf8("N\xc2\xb0 8"));
    m_boxes->expect_title("Clearing Calibration Data");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(g_cfg->table.description, "\xb0"
                                       "C"); // trimmed as ever
    QCOMPARE(g_cfg->table.sensor_serial_no, "N\xc2\xb0 8");
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void RecordBytes::typed_text_takes_the_place_of_the_bytes()
{
    set_text(g_cfg->table.description, "Oil temp \xb0"
                                       "C");
    ConfigDialog2 dialog(nullptr, false, 0);
    type(dialog, "txtDescription", "Oil temp");
    m_boxes->expect_title("Clearing Calibration Data");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(g_cfg->table.description, "Oil temp");
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void RecordBytes::refused_units_come_back()
{
    set_text(g_cfg->table.sensor_units, ONE_UNIT);
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    show_on(dialog, "btnSensorUnits", "none");
    m_boxes->expect_title("Invalid Sensor Range UNITS");
    press(dialog, "btnOk");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->met().size(), 1);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(QByteArray(g_cfg->table.sensor_units), ONE_UNIT);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

void RecordBytes::picked_keyword_of_the_sensor()
{
    set_text(g_cfg->table.sensor_units, ONE_UNIT);
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    m_boxes->expect_dialog(UNITS_DIALOG, [](QDialog *units) { pick_pressure(units, OTHER_UNIT); });
    press(dialog, "btnSensorUnits");
    QCOMPARE(QByteArray(g_cfg->value_units), OTHER_UNIT);
    QCOMPARE(QByteArray(g_cfg->table_units), OTHER_UNIT);
    QCOMPARE(text_of(dialog, "btnSensorUnits"), QString::fromUtf8(OTHER_UNIT));
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("   50.00"));
    // A second choice converts from the keyword that is on the button now.
    m_boxes->expect_dialog(UNITS_DIALOG, [](QDialog *units) { pick_pressure(units, "kPa"); });
    press(dialog, "btnSensorUnits");
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("  100.00"));
    m_boxes->expect_dialog(UNITS_DIALOG, [](QDialog *units) { pick_pressure(units, OTHER_UNIT); });
    press(dialog, "btnSensorUnits");
    m_boxes->expect_title("Clearing Calibration Data");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(QByteArray(g_cfg->table.sensor_units), OTHER_UNIT);
    QCOMPARE(g_cfg->table.sensor_range_max, 50.0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void RecordBytes::picked_keyword_of_the_table()
{
    units_for_table = 1;
    units_for_sensor = 0;
    TableValueUnitsDialog dialog(nullptr);
    pick_pressure(&dialog, OTHER_UNIT);
    QCOMPARE(QByteArray(g_cfg->value_units), OTHER_UNIT);
    QCOMPARE(QByteArray(g_cfg->table_units), OTHER_UNIT);
}

void RecordBytes::units_dialog_opens_on_the_keyword()
{
    set_text(g_cfg->table.sensor_units, OTHER_UNIT);
    units_for_table = 0;
    units_for_sensor = 1;
    const TableValueUnitsDialog dialog(nullptr);
    QCOMPARE(part<QListWidget>(dialog, "lstUnitType")->currentRow(),
             unit_list(g_cfg, UNITS_PRESSURE).indexOf(OTHER_UNIT));
    QCOMPARE(QByteArray(g_cfg->value_units), OTHER_UNIT);
    // Picked by hand where nothing was selected, it is the keyword too.
    auto *const units = part<QListWidget>(dialog, "lstUnitType");
    QListWidgetItem *const item = units->currentItem();
    units->setCurrentItem(item, QItemSelectionModel::Clear);
    g_cfg->value_units[0] = '\0';
    item->setSelected(true);
    QCOMPARE(QByteArray(g_cfg->value_units), OTHER_UNIT);
}

WINDOW_TEST(RecordBytes);
#include "test_recordbytes.moc"
