// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtTest>

#include <cstring>

#include "child.h"
#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"
#include "support/testmain.h"

using namespace hostsim;

namespace
{

struct Table {
    QList<QByteArray> names;
    double first_value;
};

// The values count on from the first; every unit is DEG_F.
void fill_table(void *payload, void *context)
{
    const auto *table = static_cast<const Table *>(context);
    auto *entries = static_cast<VariableEntry *>(payload);
    for (int i = 0; i < table->names.size(); ++i) {
        const QByteArray &name = table->names[i];
        memcpy(entries[i].name, name.constData(), static_cast<std::size_t>(name.size()));
        VARIABLE_RECORD record{};
        record.value = table->first_value + i;
        strcpy(record.units, "DEG_F");
        memcpy(entries[i].record, &record, sizeof record);
    }
}

bool publish(QList<QByteArray> names, double first_value = 0.0, int room = -1)
{
    Table table{std::move(names), first_value};
    const auto entries = static_cast<std::size_t>(room < 0 ? table.names.size() : room);
    return publish_memory(MEMORY_VARIABLES, entries * sizeof(VariableEntry), fill_table, &table) !=
           nullptr;
}

const VARIABLE_RECORD *look_up(const char *name)
{
    VARIABLE_ID id;
    memset(&id, 0xEE, sizeof id);
    if (find_variable(name, &id) != 0)
        return nullptr;
    return static_cast<const VARIABLE_RECORD *>(get_vrbl_adr(id));
}

} // namespace

class Variables : public QObject
{
    Q_OBJECT

private slots:
    void init() { withdraw_memory(MEMORY_VARIABLES); }
    void cleanupTestCase() { init(); }
    void found_by_name();
    void not_found_data();
    void not_found();
    void without_a_cell_nothing_is_found();
    void a_failed_search_leaves_the_id_alone();
    void the_list_ends_at_a_blank_name();
    void a_name_may_fill_its_field();
    void the_address_shows_the_present_value();
    void an_id_outlives_a_new_table();
    void foreign_ids_have_no_address();
};

void Variables::found_by_name()
{
    QVERIFY(publish({"ROOM_TEMP", "BAROMETER", "HUMIDITY"}, 70.0));
    const VARIABLE_RECORD *record = look_up("BAROMETER");
    QVERIFY(record != nullptr);
    QCOMPARE(record->value, 71.0);
    QCOMPARE(record->units, "DEG_F");
    QCOMPARE(look_up("HUMIDITY")->value, 72.0);
    QCOMPARE(reinterpret_cast<std::uintptr_t>(record) % alignof(double), std::uintptr_t(0));
}

void Variables::not_found_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("another name") << QByteArray("DEW_POINT");
    QTest::newRow("a beginning") << QByteArray("ROOM");
    QTest::newRow("more than the name") << QByteArray("ROOM_TEMP2");
    QTest::newRow("other case") << QByteArray("room_temp");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("blank") << QByteArray("  ");
    QTest::newRow("longer than a name field") << QByteArray(200, 'x');
}

void Variables::not_found()
{
    QFETCH(QByteArray, name);
    QVERIFY(publish({"ROOM_TEMP"}, 0.0, 4));
    VARIABLE_ID id;
    QVERIFY((find_variable(name.constData(), &id) & 0xFFFF) != 0);
    QVERIFY(find_variable(nullptr, &id) != 0);
    QVERIFY(find_variable("ROOM_TEMP", nullptr) != 0);
}

void Variables::without_a_cell_nothing_is_found()
{
    VARIABLE_ID id;
    QVERIFY((find_variable("ROOM_TEMP", &id) & 0xFFFF) != 0);
}

void Variables::a_failed_search_leaves_the_id_alone()
{
    QVERIFY(publish({"ROOM_TEMP"}));
    VARIABLE_ID id;
    memset(&id, 0xEE, sizeof id);
    VARIABLE_ID before = id;
    QVERIFY(find_variable("OTHER", &id) != 0);
    QVERIFY(memcmp(&id, &before, sizeof id) == 0);
}

void Variables::the_list_ends_at_a_blank_name()
{
    QVERIFY(publish({"ONE", "", "THREE"}));
    QVERIFY(look_up("ONE") != nullptr);
    QVERIFY(look_up("THREE") == nullptr);
    QVERIFY(publish({"ONE", "   ", "THREE"}));
    QVERIFY(look_up("THREE") == nullptr);
    QVERIFY(publish({}, 0.0, 0));
    QVERIFY(look_up("ONE") == nullptr);
}

void Variables::a_name_may_fill_its_field()
{
    QVERIFY(publish({QByteArray(80, 'n'), "LAST"}));
    QVERIFY(look_up(QByteArray(80, 'n').constData()) != nullptr);
    QVERIFY(look_up(QByteArray(79, 'n').constData()) == nullptr);
    QVERIFY(look_up(QByteArray(81, 'n').constData()) == nullptr);
    QVERIFY(look_up("LAST") != nullptr);
}

void Variables::the_address_shows_the_present_value()
{
    QVERIFY(publish({"ROOM_TEMP"}, 70.0));
    const VARIABLE_RECORD *record = look_up("ROOM_TEMP");
    QCOMPARE(in_child([] {
                 auto *entry =
                     static_cast<VariableEntry *>(map_memory(MEMORY_VARIABLES, true, nullptr));
                 const double value = 75.5;
                 memcpy(entry->record, &value, sizeof value);
                 return 0;
             }),
             0);
    QCOMPARE(record->value, 75.5);
    QVERIFY(look_up("ROOM_TEMP") == record);
}

void Variables::an_id_outlives_a_new_table()
{
    QVERIFY(publish({"ROOM_TEMP"}, 70.0));
    VARIABLE_ID id;
    QCOMPARE(find_variable("ROOM_TEMP", &id), 0);
    QVERIFY(publish({"OTHER", "ROOM_TEMP"}, 80.0));
    const auto *former = static_cast<const VARIABLE_RECORD *>(get_vrbl_adr(id));
    QVERIFY(former != nullptr);
    QCOMPARE(former->value, 70.0);
    QCOMPARE(look_up("ROOM_TEMP")->value, 81.0);
    withdraw_memory(MEMORY_VARIABLES);
    QCOMPARE(get_vrbl_adr(id), static_cast<const void *>(former));
}

void Variables::foreign_ids_have_no_address()
{
    VARIABLE_ID id{};
    QVERIFY(get_vrbl_adr(id) == nullptr);
    memset(&id, 0xFF, sizeof id);
    QVERIFY(get_vrbl_adr(id) == nullptr);
    QVERIFY(publish({"ROOM_TEMP"}));
    QCOMPARE(find_variable("ROOM_TEMP", &id), 0);
    memset(id.bytes + 4, 0x7F, 4);
    QVERIFY(get_vrbl_adr(id) == nullptr);
}

PLAIN_TEST(Variables);
#include "test_variables.moc"
