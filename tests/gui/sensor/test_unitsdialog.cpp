// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog in which a unit is picked, over units memories of the test's own.
#include <memory>

#include <QGroupBox>
#include <QListWidget>
#include <QtTest>

#include "gui/sensor/tableinformation.h"
#include "host/operations.h"
#include "sensor/tablevalueunitsdialog.h"
#include "sensor/unitcatalogue.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"
#include "support/unitmemory.h"

namespace
{

QListWidget *categories(const QDialog &dialog)
{
    return part<QListWidget>(dialog, "lstUnitCategory");
}

QListWidget *units(const QDialog &dialog)
{
    return part<QListWidget>(dialog, "lstUnitType");
}

QStringList listed(const QListWidget *list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts.append(list->item(i)->text());
    return texts;
}

void click_row(QListWidget *list, int row)
{
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                      list->visualItemRect(list->item(row)).center());
}

void set_mode(bool for_table)
{
    units_for_table = for_table ? 1 : 0;
    units_for_sensor = for_table ? 0 : 1;
}

} // namespace

extern "C" int32_t link_to_memory(int32_t id, void **address)
{
    return link_in_front(id, address);
}

class UnitsDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { m_memory.reset(); }
    void form();
    void opens_at_the_present_unit_data();
    void opens_at_the_present_unit();
    void mode_is_taken_from_the_flag_for_the_table();
    void unit_is_picked();
    void category_lists_its_units_and_nothing_is_picked();
    void focus_picks_nothing();
    void unit_in_no_list_selects_nothing();
    void first_row_can_be_picked_when_nothing_is_selected_data();
    void first_row_can_be_picked_when_nothing_is_selected();
    void beginning_of_a_keyword_becomes_the_keyword();
    void ok_data();
    void ok();
    void cancel_keeps_the_tables_units();
    void opening_overwrites_what_was_picked_last();
    void seven_hundred_units();
    void memory_missing();
    void keywords_without_terminator();

private:
    std::unique_ptr<UnitMemory> m_memory;
};

void UnitsDialog::initTestCase()
{
    require_private_cell();
    QCOMPARE(units_init_access(1) & 0xffff, 0);
}

// kPa in table and sensor.
void UnitsDialog::init()
{
    fresh_session();
    set_mode(true);
    m_memory = std::make_unique<UnitMemory>();
    m_memory->add(1, "DEG_F");
    m_memory->add(2, "DEG_C");
    m_memory->add(100, "PSI");
    m_memory->add(101, "kPa");
    m_memory->add(102, "IN_HG");
    m_memory->add(300, "LB-FT");
    m_memory->add(301, "PCT");
    m_memory->add(700, "SEC");
    m_memory->put_in_place();
}

void UnitsDialog::form()
{
    TableValueUnitsDialog dialog(nullptr);
    QCOMPARE(dialog.windowTitle(), QString("Table Value Units"));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox")->title(), QString("Unit Category"));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox_2")->title(), QString("Unit Type"));
    QCOMPARE(listed(categories(dialog)), QStringList({"Temperature", "Pressure", "Time", "Other"}));
    QCOMPARE(categories(dialog)->parentWidget(), part<QGroupBox>(dialog, "groupBox"));
    QCOMPARE(units(dialog)->parentWidget(), part<QGroupBox>(dialog, "groupBox_2"));
    QCOMPARE(part<QPushButton>(dialog, "btnOK")->text(), QString("OK"));
    QCOMPARE(part<QPushButton>(dialog, "btnCancel")->text(), QString("Cancel"));
}

void UnitsDialog::opens_at_the_present_unit_data()
{
    const auto row = test_columns<bool, QByteArray, QByteArray, int, int>(
        "for_table", "table_units", "sensor_units", "category", "row");
    row("table", true, QByteArray("kPa"), QByteArray("SEC"), 1, 1);
    row("sensor", false, QByteArray("kPa"), QByteArray("SEC"), 2, 0);
    row("table, first list", true, QByteArray("DEG_C"), QByteArray("SEC"), 0, 1);
    row("sensor, last list", false, QByteArray("kPa"), QByteArray("PCT"), 3, 1);
}

void UnitsDialog::opens_at_the_present_unit()
{
    QFETCH(bool, for_table);
    QFETCH(QByteArray, table_units);
    QFETCH(QByteArray, sensor_units);
    set_text(g_cfg->table_units, table_units);
    set_text(g_cfg->table.sensor_units, sensor_units);
    set_mode(for_table);
    TableValueUnitsDialog dialog(nullptr);
    const QByteArray present = for_table ? table_units : sensor_units;
    QTEST(categories(dialog)->currentRow(), "category");
    QTEST(units(dialog)->currentRow(), "row");
    QVERIFY(units(dialog)->currentItem()->isSelected());
    QCOMPARE(units(dialog)->currentItem()->text(), QString(present));
    const QByteArrayList keywords = unit_list(g_cfg, categories(dialog)->currentRow());
    QCOMPARE(listed(units(dialog)).join(' ').toUtf8(), keywords.join(' '));
    QCOMPARE(QByteArray(g_cfg->value_units), present);
    QCOMPARE(g_cfg->value_units_override, uint16_t(for_table ? 1 : 0));
}

void UnitsDialog::mode_is_taken_from_the_flag_for_the_table()
{
    for (const uint8_t for_sensor : {uint8_t(0), uint8_t(1)}) {
        units_for_sensor = for_sensor; // read by nobody
        units_for_table = 1;
        TableValueUnitsDialog table(nullptr);
        QCOMPARE(g_cfg->value_units_override, uint16_t(1));
        units_for_table = 0;
        TableValueUnitsDialog sensor(nullptr);
        QCOMPARE(g_cfg->value_units_override, uint16_t(0));
    }
}

void UnitsDialog::unit_is_picked()
{
    TableValueUnitsDialog dialog(nullptr);
    dialog.show();
    click_row(units(dialog), 2);
    QCOMPARE(g_cfg->value_units, "IN_HG");
    QTest::keyClick(units(dialog), Qt::Key_Up);
    QCOMPARE(g_cfg->value_units, "kPa");
    click_row(categories(dialog), 0);
    click_row(units(dialog), 0);
    QCOMPARE(g_cfg->value_units, "DEG_F");
}

void UnitsDialog::category_lists_its_units_and_nothing_is_picked()
{
    TableValueUnitsDialog dialog(nullptr);
    QCOMPARE(listed(units(dialog)), QStringList({"PSI", "kPa", "IN_HG"}));
    QCOMPARE(g_cfg->value_units, "kPa");
    const QVector<QStringList> lists = {
        {"DEG_F", "DEG_C"}, {"PSI", "kPa", "IN_HG"}, {"SEC"}, {"LB-FT", "PCT"}};
    for (int category : {3, 2, 0, 1}) {
        units(dialog)->setCurrentRow(0);
        QVERIFY(g_cfg->value_units[0] != '\0');
        categories(dialog)->setCurrentRow(category);
        QCOMPARE(listed(units(dialog)), lists[category]);
        QCOMPARE(g_cfg->value_units, "");
        QCOMPARE(units(dialog)->currentRow(), -1);
    }
}

// A list that gets the focus makes its first row the current one by itself.
void UnitsDialog::focus_picks_nothing()
{
    TableValueUnitsDialog dialog(nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    categories(dialog)->setFocus();
    categories(dialog)->setCurrentRow(3);
    QTest::keyClick(categories(dialog), Qt::Key_Tab);
    QVERIFY(units(dialog)->hasFocus());
    QCOMPARE(g_cfg->value_units, "");
    QVERIFY(units(dialog)->selectedItems().isEmpty());
    QTest::keyClick(units(dialog), Qt::Key_Down);
    QCOMPARE(g_cfg->value_units, "LB-FT");
    QVERIFY(units(dialog)->currentItem()->isSelected());
}

void UnitsDialog::unit_in_no_list_selects_nothing()
{
    for (const char *keyword : {"", "FURLONG"}) {
        set_text(g_cfg->table.sensor_units, keyword);
        set_mode(false);
        TableValueUnitsDialog dialog(nullptr);
        QCOMPARE(categories(dialog)->currentRow(), 0);
        QCOMPARE(listed(units(dialog)), QStringList({"DEG_F", "DEG_C"}));
        QCOMPARE(units(dialog)->currentRow(), 0);
        QVERIFY(units(dialog)->selectedItems().isEmpty());
        QCOMPARE(g_cfg->value_units, "");
    }
}

void UnitsDialog::first_row_can_be_picked_when_nothing_is_selected_data()
{
    QTest::addColumn<bool>("by_mouse");
    QTest::newRow("by mouse") << true;
    QTest::newRow("by key") << false;
}

void UnitsDialog::first_row_can_be_picked_when_nothing_is_selected()
{
    QFETCH(bool, by_mouse);
    set_text(g_cfg->table_units, "");
    TableValueUnitsDialog dialog(nullptr);
    dialog.show();
    if (by_mouse)
        click_row(units(dialog), 0);
    else
        QTest::keyClick(units(dialog), Qt::Key_Space);
    QCOMPARE(units(dialog)->selectedItems().size(), 1);
    QCOMPARE(g_cfg->value_units, "DEG_F");
}

void UnitsDialog::beginning_of_a_keyword_becomes_the_keyword()
{
    set_text(g_cfg->table_units, "DEG");
    TableValueUnitsDialog dialog(nullptr);
    QCOMPARE(units(dialog)->currentRow(), 0);
    QCOMPARE(g_cfg->value_units, "DEG_F");
}

void UnitsDialog::ok_data()
{
    const auto row = test_columns<bool, bool, QByteArray>("for_table", "picked", "table_units");
    row("table", true, true, QByteArray("IN_HG"));
    row("table, nothing picked", true, false, QByteArray(""));
    row("sensor", false, true, QByteArray("kPa"));
    row("sensor, nothing picked", false, false, QByteArray("kPa"));
}

void UnitsDialog::ok()
{
    QFETCH(bool, for_table);
    QFETCH(bool, picked);
    set_mode(for_table);
    TableValueUnitsDialog dialog(nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog("Table Value Units", [picked](QDialog *open) {
        categories(*open)->setCurrentRow(2);
        categories(*open)->setCurrentRow(1);
        if (picked)
            units(*open)->setCurrentRow(2);
        press(*open, "btnOK");
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QTEST(QByteArray(g_cfg->table_units), "table_units");
    QCOMPARE(QByteArray(g_cfg->value_units), QByteArray(picked ? "IN_HG" : ""));
    QCOMPARE(g_cfg->table.sensor_units, "kPa");
    QCOMPARE(g_cfg->table.eng_units, "kPa");
}

void UnitsDialog::cancel_keeps_the_tables_units()
{
    TableValueUnitsDialog dialog(nullptr);
    BoxAnswerer answerer;
    answerer.expect_dialog("Table Value Units", [](QDialog *open) {
        units(*open)->setCurrentRow(2);
        press(*open, "btnCancel");
    });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    QCOMPARE(g_cfg->table_units, "kPa");
    QCOMPARE(g_cfg->value_units, "IN_HG"); // survives
}

void UnitsDialog::opening_overwrites_what_was_picked_last()
{
    set_text(g_cfg->value_units, "IN_HG");
    TableValueUnitsDialog dialog(nullptr);
    QCOMPARE(g_cfg->value_units, "kPa");
}

void UnitsDialog::seven_hundred_units()
{
    UnitMemory memory;
    for (int i = 0; i < UNIT_RECORDS; ++i)
        memory.add(200, "UNIT_" + QByteArray::number(i));
    memory.put_in_place();
    set_text(g_cfg->table_units, "UNIT_699");
    TableValueUnitsDialog dialog(nullptr);
    dialog.show();
    QCOMPARE(units(dialog)->count(), 700);
    QCOMPARE(categories(dialog)->currentRow(), 3);
    QCOMPARE(units(dialog)->currentRow(), 699);
    QCOMPARE(g_cfg->value_units, "UNIT_699");
    units(dialog)->setCurrentRow(0);
    QCOMPARE(g_cfg->value_units, "UNIT_0");
    categories(dialog)->setCurrentRow(0);
    QCOMPARE(units(dialog)->count(), 0);
    QCOMPARE(g_cfg->value_units, "");
    categories(dialog)->setCurrentRow(3);
    QCOMPARE(units(dialog)->count(), 700);
}

void UnitsDialog::memory_missing()
{
    m_memory.reset();
    const HostLog log;
    TableValueUnitsDialog dialog(nullptr);
    for (int category = 0; category < 4; ++category) {
        categories(dialog)->setCurrentRow(category);
        QCOMPARE(listed(units(dialog)), QStringList(" <empty>"));
    }
    QCOMPARE(g_cfg->value_units, "");
    units(dialog)->setCurrentRow(0);
    QCOMPARE(g_cfg->value_units, " <empty>");
    press(dialog, "btnOK");
    QCOMPARE(g_cfg->table_units, " <empty>");

    // Its blank goes when it is looked for, and then it stands in no list.
    TableValueUnitsDialog again(nullptr);
    QVERIFY(units(again)->selectedItems().isEmpty());
    QCOMPARE(g_cfg->value_units, "");
    QCOMPARE(log.count("Unable to link to Units shared memory.\n"
                       "The Units list will be unavailable"),
             1);
}

void UnitsDialog::keywords_without_terminator()
{
    UnitMemory memory;
    for (int i = 0; i < UNIT_RECORDS; ++i)
        memory.add(100, QByteArray::number(100000 + i) + QByteArray(10, 'K'));
    memory.put_in_place();
    TableValueUnitsDialog dialog(nullptr);
    categories(dialog)->setCurrentRow(1);
    QCOMPARE(units(dialog)->count(), 700);
    QCOMPARE(units(dialog)->item(699)->text(), QString("100699KKKKKKKKKK"));
    units(dialog)->setCurrentRow(699);
    QCOMPARE(g_cfg->value_units, "100699KKKKKKKKK"); // 15 of its 16
    press(dialog, "btnOK");
    QCOMPARE(g_cfg->table_units, "100699KKKKKKKKK");

    TableValueUnitsDialog again(nullptr);
    QCOMPARE(units(again)->currentRow(), 699);
}

WINDOW_TEST(UnitsDialog);
#include "test_unitsdialog.moc"
