// SPDX-License-Identifier: GPL-3.0-or-later
//
// The unit catalogue over the host's memory, and the keyword that it starts
// from.
#include <cstring>
#include <memory>

#include <QtTest>

#include "host/exports.h"
#include "host/operations.h"
#include "sensor/unitcatalogue.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"
#include "support/unitmemory.h"

namespace
{

template <std::size_t Size> void set_text(char (&field)[Size], const char *text)
{
    qstrncpy(field, text, Size);
}

// What load_unit_lists puts out.
struct Start {
    int16_t category = -7;
    int16_t row = -7;
};

Start load(ZERL_CFG *cfg)
{
    Start start;
    load_unit_lists(cfg, &start.category, &start.row);
    return start;
}

} // namespace

extern "C" int32_t link_to_memory(int32_t id, void **address)
{
    return link_in_front(id, address);
}

class UnitLists : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { m_memory.reset(); }
    void category_by_code_data();
    void category_by_code();
    void names_of_the_categories();
    void entries_keep_their_order_and_point_into_the_memory();
    void list_ends_at_the_first_blank_keyword_data();
    void list_ends_at_the_first_blank_keyword();
    void last_letter_of_a_full_field_counts();
    void seven_hundred_records_without_a_blank_one();
    void keywords_without_terminator();
    void without_the_memory_each_list_is_empty();
    void memory_that_the_host_does_not_link();
    void built_once();
    void start_keyword_data();
    void start_keyword();
    void keyword_of_16_characters();
    void looking_up_data();
    void looking_up();
    void a_list_that_is_none();
    void nothing_picked_is_logged();

private:
    std::unique_ptr<ZERL_CFG> m_cfg;
    std::unique_ptr<UnitMemory> m_memory;
};

void UnitLists::initTestCase()
{
    require_private_cell();
    QCOMPARE(units_init_access(1) & 0xffff, 0);
}

void UnitLists::init()
{
    m_cfg = std::make_unique<ZERL_CFG>();
    m_memory = std::make_unique<UnitMemory>();
}

void UnitLists::category_by_code_data()
{
    test_columns<int, int>("code", "category");
    const auto row = [](int code, int category) { QTest::addRow("%d", code) << code << category; };
    row(-1, 0);
    row(0, 0);
    row(99, 0);
    row(100, 1);
    row(199, 1);
    row(200, 3);
    row(699, 3);
    row(700, 2);
    row(799, 2);
    row(800, 3);
    row(2147483647, 3);
}

void UnitLists::category_by_code()
{
    QFETCH(int, code);
    QFETCH(int, category);
    m_memory->add(code, "UNIT");
    QVERIFY(m_memory->publish());
    load(m_cfg.get());
    for (int list = 0; list < UNIT_CATEGORIES; ++list)
        QCOMPARE(int(m_cfg->unit_counts[list]), list == category ? 1 : 0);
    QCOMPARE(unit_list(m_cfg.get(), category), QByteArrayList({"UNIT"}));
}

void UnitLists::names_of_the_categories()
{
    QVERIFY(m_memory->publish());
    load(m_cfg.get());
    QCOMPARE(m_cfg->unit_category_names[0], "Temperature");
    QCOMPARE(m_cfg->unit_category_names[1], "Pressure");
    QCOMPARE(m_cfg->unit_category_names[2], "Time");
    QCOMPARE(m_cfg->unit_category_names[3], "Other");
}

void UnitLists::entries_keep_their_order_and_point_into_the_memory()
{
    m_memory->add(300, "A");
    m_memory->add(150, "B");
    m_memory->add(710, "C");
    m_memory->add(900, "D");
    m_memory->add(5, "E");
    m_memory->add(101, "F");
    QVERIFY(m_memory->publish());
    load(m_cfg.get());
    QCOMPARE(unit_list(m_cfg.get(), 0), QByteArrayList({"E"}));
    QCOMPARE(unit_list(m_cfg.get(), 1), QByteArrayList({"B", "F"}));
    QCOMPARE(unit_list(m_cfg.get(), 2), QByteArrayList({"C"}));
    QCOMPARE(unit_list(m_cfg.get(), 3), QByteArrayList({"A", "D"}));
    QCOMPARE(static_cast<const void *>(m_cfg->unit_names[3][1]),
             static_cast<const void *>(Unit_mem[3].keyword));
    QCOMPARE(m_cfg->units_loaded, uint16_t(1));
}

void UnitLists::list_ends_at_the_first_blank_keyword_data()
{
    QTest::addColumn<QByteArray>("keyword");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("a blank") << QByteArray(" ");
    QTest::newRow("16 blanks, with letters behind the field") << QByteArray(16, ' ');
}

void UnitLists::list_ends_at_the_first_blank_keyword()
{
    QFETCH(QByteArray, keyword);
    m_memory->add(100, "BEFORE");
    m_memory->add(100, keyword);
    m_memory->add(100, "BEHIND");
    m_memory->put_in_place();
    load(m_cfg.get());
    QCOMPARE(unit_list(m_cfg.get(), UNITS_PRESSURE), QByteArrayList({"BEFORE"}));
    QCOMPARE(int(m_cfg->unit_counts[UNITS_OTHER]), 0);
}

void UnitLists::last_letter_of_a_full_field_counts()
{
    m_memory->add(100, QByteArray(15, ' ') + "K");
    m_memory->add(100, "BEHIND");
    m_memory->put_in_place();
    load(m_cfg.get());
    QCOMPARE(unit_list(m_cfg.get(), UNITS_PRESSURE),
             QByteArrayList({QByteArray(15, ' ') + "K", "BEHIND"}));
}

void UnitLists::seven_hundred_records_without_a_blank_one()
{
    for (int i = 0; i < 705; ++i)
        m_memory->add(150, "U" + QByteArray::number(i));
    QVERIFY(m_memory->publish()); // and goes on behind the 700
    load(m_cfg.get());
    QCOMPARE(int(m_cfg->unit_counts[UNITS_PRESSURE]), 700);
    QCOMPARE(unit_list(m_cfg.get(), UNITS_PRESSURE).last(), QByteArray("U699"));
    for (const int list : {UNITS_TEMPERATURE, UNITS_TIME, UNITS_OTHER})
        QCOMPARE(int(m_cfg->unit_counts[list]), 0);

    // And one that ends there.
    m_memory->put_in_place();
    const auto other = std::make_unique<ZERL_CFG>();
    load(other.get());
    QCOMPARE(int(other->unit_counts[UNITS_PRESSURE]), 700);
    QCOMPARE(unit_list(other.get(), UNITS_PRESSURE).last(), QByteArray("U699"));
}

void UnitLists::keywords_without_terminator()
{
    for (int i = 0; i < UNIT_RECORDS; ++i)
        m_memory->add(150, QByteArray::number(100000 + i) + QByteArray(10, 'K'));
    m_memory->put_in_place();
    set_text(m_cfg->table.sensor_units, "100699KKKKKKKKKK");
    const Start start = load(m_cfg.get());
    const QByteArrayList names = unit_list(m_cfg.get(), UNITS_PRESSURE);
    QCOMPARE(names.size(), 700);
    QCOMPARE(names.first(), QByteArray("100000KKKKKKKKKK"));
    QCOMPARE(names.last(), QByteArray("100699KKKKKKKKKK"));
    QCOMPARE(int(start.category), 1);
    QCOMPARE(int(start.row), 699);
    int16_t category = -7;
    int16_t row = -7;
    QVERIFY(find_unit(m_cfg.get(), &category, &row, "100003KKKKKKKKKK"));
    QCOMPARE(int(row), 3);
    // What stands behind the field plays no part.
    QVERIFY(!find_unit(m_cfg.get(), &category, &row, "100003KKKKKKKKKKR"));
    QVERIFY(!find_unit(m_cfg.get(), &category, &row, "100003KKKKKKKKKKRRRR"));
}

void UnitLists::without_the_memory_each_list_is_empty()
{
    const HostLog log;
    set_text(m_cfg->table.sensor_units, "kPa");
    const Start start = load(m_cfg.get());
    for (int list = 0; list < UNIT_CATEGORIES; ++list) {
        QCOMPARE(int(m_cfg->unit_counts[list]), 1);
        QCOMPARE(unit_list(m_cfg.get(), list), QByteArrayList({" <empty>"}));
    }
    QCOMPARE(m_cfg->unit_category_names[3], "Other");
    QCOMPARE(int(start.category), 0);
    QCOMPARE(int(start.row), 0);
    QCOMPARE(m_cfg->value_units, "");
    QCOMPARE(log.texts(),
             QStringList("Unable to link to Units shared memory.\nThe Units list will be "
                         "unavailable"));
    QCOMPARE(log.entries().first().severity, 1);
    QCOMPARE(m_cfg->units_loaded, uint16_t(1));
}

void UnitLists::memory_that_the_host_does_not_link()
{
    m_memory->add(100, "kPa");
    m_memory->add(101, QByteArray(16, 'K'));
    QVERIFY(m_memory->publish());
    load(m_cfg.get());
    QCOMPARE(unit_list(m_cfg.get(), UNITS_PRESSURE), QByteArrayList({" <empty>"}));
}

void UnitLists::built_once()
{
    m_memory->add(100, "FIRST");
    QVERIFY(m_memory->publish());
    load(m_cfg.get());
    m_memory->add(100, "LATER");
    QVERIFY(m_memory->publish());
    load(m_cfg.get());
    QCOMPARE(unit_list(m_cfg.get(), UNITS_PRESSURE), QByteArrayList({"FIRST"}));

    // Without the memory once, without it for the session.
    const auto other = std::make_unique<ZERL_CFG>();
    hostsim::withdraw_memory(MEMORY_UNITS);
    load(other.get());
    QVERIFY(m_memory->publish());
    const HostLog log;
    load(other.get());
    QCOMPARE(unit_list(other.get(), UNITS_PRESSURE), QByteArrayList({" <empty>"}));
    QCOMPARE(log.texts(), QStringList());
}

void UnitLists::start_keyword_data()
{
    const auto row = test_columns<int, QByteArray, QByteArray, int, int, QByteArray>(
        "override", "table_units", "sensor_units", "category", "row", "value_units");
    row("the table's units with the override", 1, "PSI", "SEC", 1, 1, "PSI");
    row("the sensor's units without it", 0, "PSI", "SEC", 2, 0, "SEC");
    row("blanks and line ends go", 0, "", " PSI \n ", 1, 1, "PSI");
    row("empty sensor units: category 0, row 0", 0, "PSI", "", 0, 0, "");
    row("blank sensor units", 0, "PSI", "  ", 0, 0, "");
    row("empty table units", 1, "", "PSI", 0, 0, "");
    row("in no list", 0, "PSI", "FURLONG", 0, 0, "");
    row("longer than the entry", 0, "PSI", "PSIA", 0, 0, "");
    row("in another case", 0, "PSI", "psi", 0, 0, "");
    row("the beginning of an entry stays as it is", 0, "PSI", "kP", 1, 0, "kP");
}

void UnitLists::start_keyword()
{
    QFETCH(int, override);
    QFETCH(QByteArray, table_units);
    QFETCH(QByteArray, sensor_units);
    m_memory->add(1, "DEG_F");
    m_memory->add(100, "kPa");
    m_memory->add(101, "PSI");
    m_memory->add(700, "SEC");
    QVERIFY(m_memory->publish());
    m_cfg->value_units_override = static_cast<uint16_t>(override);
    set_text(m_cfg->table_units, table_units);
    set_text(m_cfg->table.sensor_units, sensor_units);
    set_text(m_cfg->value_units, "before");
    const Start start = load(m_cfg.get());
    QTEST(int(start.category), "category");
    QTEST(int(start.row), "row");
    QTEST(QByteArray(m_cfg->value_units), "value_units");
    QCOMPARE(QByteArray(m_cfg->table_units), table_units);
    QCOMPARE(QByteArray(m_cfg->table.sensor_units), sensor_units);
}

// A record's field that a keyword of 16 bytes fills to the last is bounded.
void UnitLists::keyword_of_16_characters()
{
    m_memory->add(100, "ABCDEFGHIJKLMNOP");
    m_memory->put_in_place();
    std::memcpy(m_cfg->table.sensor_units, "ABCDEFGHIJKLMNOP", sizeof m_cfg->table.sensor_units);
    std::memset(m_cfg->table.table_name, 'T', sizeof m_cfg->table.table_name);
    const Start start = load(m_cfg.get());
    QCOMPARE(m_cfg->value_units, "ABCDEFGHIJKLMNO");
    QCOMPARE(int(start.category), 1);
    QCOMPARE(int(start.row), 0);
    QCOMPARE(unit_list(m_cfg.get(), 1), QByteArrayList({"ABCDEFGHIJKLMNOP"}));
}

void UnitLists::looking_up_data()
{
    const auto row = test_columns<QByteArray, int, int>("keyword", "category", "row");
    row("whole", "deg_F", 0, 1);
    row("a beginning finds the first that has it", "deg", 0, 0);
    row("prefix of a longer keyword that stands before it", "IN", 1, 0);
    row("times before others", "M", 2, 0);
    row("others last", "Me", 3, 0);
    row("the first of two alike", "M", 2, 0);
    row("empty is not found", "", -7, -7);
    row("case counts", "DEG", -7, -7);
    row("longer than every entry", "deg_FF", -7, -7);
    row("a blank in front", " deg_F", -7, -7);
}

void UnitLists::looking_up()
{
    QFETCH(QByteArray, keyword);
    m_memory->add(250, "Meter");
    m_memory->add(250, "IN");
    m_memory->add(700, "MIN");
    m_memory->add(701, "M");
    m_memory->add(100, "IN_HG");
    m_memory->add(2, "deg_C");
    m_memory->add(1, "deg_F");
    m_memory->put_in_place();
    load(m_cfg.get());
    Start found;
    const bool is_found = find_unit(m_cfg.get(), &found.category, &found.row, keyword);
    QCOMPARE(is_found, found.category != -7);
    QTEST(int(found.category), "category");
    QTEST(int(found.row), "row");
}

void UnitLists::a_list_that_is_none()
{
    QVERIFY(m_memory->publish());
    load(m_cfg.get());
    QCOMPARE(unit_list(m_cfg.get(), -1), QByteArrayList());
    QCOMPARE(unit_list(m_cfg.get(), 4), QByteArrayList());
}

void UnitLists::nothing_picked_is_logged()
{
    const HostLog log;
    set_text(m_cfg->value_units, "PSI");
    QVERIFY(unit_is_picked(m_cfg.get()));
    QCOMPARE(log.texts(), QStringList());
    m_cfg->value_units[0] = '\0';
    QVERIFY(!unit_is_picked(m_cfg.get()));
    QCOMPARE(log.texts(), QStringList("Error: No units selected for table."));
    QCOMPARE(log.entries().first().severity, 1);
}

LOOP_TEST(UnitLists);
#include "test_unitcatalogue.moc"
