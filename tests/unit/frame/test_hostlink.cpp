// SPDX-License-Identifier: GPL-3.0-or-later
//
// The link to the host, over memories that the test publishes itself.
#include <cstring>
#include <dlfcn.h>

#include <QtTest>

#include "frame/hostlink.h"
#include "hostsim/runtime/memoryheader.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/recorder.h"
#include "support/testmain.h"

namespace
{

constexpr int COUNT = 7;

// In the order in which they are attached, each with what its failure says.
struct Memory {
    int32_t id;
    const char *name;
    const char *message;
};
const Memory MEMORIES[COUNT] = {
    {6, "AI_REAL", "Vornax must be running\nUnable to get AI_REAL memory"},
    {5, "MILLIVOLTS", "Vornax must be running\nUnable to get MILLIVOLTS memory"},
    {1, "System Attributes", "Vornax must be running\nUnable to get System Attributes memory"},
    {3, "AI_TRANSFER", "Vornax must be running\nUnable get AI_TRANSFER memory"},
    {60, "SCHEDULER", "Vornax must be running\nUnable to get SCHEDULER memory"},
    {31, "DISPLAY_STRINGS", "Vornax must be running\nUnable to get DISPLAY_STRINGS memory"},
    {35, "CAL_TABLES", "Vornax must be running\nUnable to get CAL_TABLES memory"},
};

// The program's pointers in that order.
QVector<const void *> pointers()
{
    return {Ai_real, Mv, Sys_attr, g_ai_transfer, Sched_attr, g_display_strings, g_cal_tables};
}

void fill_with_id(void *payload, void *context)
{
    std::memset(payload, *static_cast<const int32_t *>(context), 64);
}

// A memory whose first bytes hold its number.
void publish(int32_t id)
{
    QVERIFY(hostsim::publish_memory(id, 4096, fill_with_id, &id) != nullptr);
}

void publish_all()
{
    for (const Memory &memory : MEMORIES)
        publish(memory.id);
}

bool variable_withdrawn = false;

} // namespace

// Stands before the runtime's own: a host may take a variable away between the
// two calls.
extern "C" void *get_vrbl_adr(VARIABLE_ID id)
{
    static const auto real =
        reinterpret_cast<decltype(&get_vrbl_adr)>(dlsym(RTLD_NEXT, "get_vrbl_adr"));
    return variable_withdrawn ? nullptr : real(id);
}

class HostLink : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void all_memories_are_attached();
    void attaching_stops_at_the_first_that_fails_data();
    void attaching_stops_at_the_first_that_fails();
    void one_missing_among_all_data() { attaching_stops_at_the_first_that_fails_data(); }
    void one_missing_among_all();
    void host_not_running();
    void pointers_stay_when_a_memory_is_gone();
    void nothing_is_released();
    void memories_published_anew_are_attached_anew();
    void variable_is_found();
    void variable_that_does_not_exist();
    void variable_withdrawn_between_the_two_calls();
    void catalogue_of_700_units_without_a_blank_one();
    void symbols_for_the_runtime_data();
    void symbols_for_the_runtime();
    void values_for_the_runtime();
};

void HostLink::initTestCase()
{
    require_private_cell();
    QVERIFY(Ai_real == nullptr && Mv == nullptr && Sys_attr == nullptr && Sched_attr == nullptr);
}

void HostLink::init()
{
    Ai_real = nullptr;
    Mv = nullptr;
    Sys_attr = nullptr;
    g_ai_transfer = nullptr;
    Sched_attr = nullptr;
    g_display_strings = nullptr;
    g_cal_tables = nullptr;
    g_cal_tables_base = nullptr;
    variable_withdrawn = false;
    clear_recorded();
}

void HostLink::cleanup()
{
    for (const Memory &memory : MEMORIES)
        hostsim::withdraw_memory(memory.id);
    hostsim::withdraw_memory(hostsim::MEMORY_VARIABLES);
    hostsim::withdraw_memory(MEMORY_UNITS);
    QCOMPARE(published_memories(), QStringList());
}

void HostLink::all_memories_are_attached()
{
    publish_all();
    QCOMPARE(attach_host_memories(), 0);
    const QVector<const void *> attached = pointers();
    for (int i = 0; i < COUNT; ++i) {
        QVERIFY2(attached[i] != nullptr, MEMORIES[i].name);
        QCOMPARE(int{*static_cast<const uint8_t *>(attached[i])}, MEMORIES[i].id);
    }
    QCOMPARE(g_cal_tables_base, g_cal_tables);
    QCOMPARE(information_texts(), QStringList());
}

void HostLink::attaching_stops_at_the_first_that_fails_data()
{
    QTest::addColumn<int>("published");
    for (int i = 0; i < COUNT; ++i)
        QTest::newRow(MEMORIES[i].name) << i;
}

// Only the memories before it are there: what comes behind is missing as well,
// and is not asked for.
void HostLink::attaching_stops_at_the_first_that_fails()
{
    QFETCH(int, published);
    for (int i = 0; i < published; ++i)
        publish(MEMORIES[i].id);
    QCOMPARE(attach_host_memories(), -1);
    QCOMPARE(information_texts(), QStringList(MEMORIES[published].message));
    const QVector<const void *> attached = pointers();
    for (int i = 0; i < COUNT; ++i)
        QCOMPARE(attached[i] != nullptr, i < published);
    QVERIFY(g_cal_tables_base == nullptr);
}

void HostLink::one_missing_among_all()
{
    QFETCH(int, published);
    publish_all();
    hostsim::withdraw_memory(MEMORIES[published].id);
    QCOMPARE(attach_host_memories(), -1);
    QCOMPARE(information_texts(), QStringList(MEMORIES[published].message));
    const QVector<const void *> attached = pointers();
    for (int i = 0; i < COUNT; ++i)
        QCOMPARE(attached[i] != nullptr, i < published);
}

void HostLink::host_not_running()
{
    const int32_t result = attach_host_memories();
    QCOMPARE(result & 0xffff, 65535);
    QCOMPARE(information_texts(),
             QStringList("Vornax must be running\nUnable to get AI_REAL memory"));
}

void HostLink::pointers_stay_when_a_memory_is_gone()
{
    publish_all();
    QCOMPARE(attach_host_memories(), 0);
    const QVector<const void *> before = pointers();
    const void *const base = g_cal_tables_base;
    hostsim::withdraw_memory(MEMORY_MILLIVOLTS);
    QCOMPARE(attach_host_memories(), -1);
    QCOMPARE(pointers(), before);
    QCOMPARE(g_cal_tables_base, base);
}

void HostLink::nothing_is_released()
{
    publish_all();
    QCOMPARE(attach_host_memories(), 0);
    const QVector<const void *> attached = pointers();
    for (const Memory &memory : MEMORIES)
        hostsim::withdraw_memory(memory.id);
    QCOMPARE(attach_host_memories(), -1);
    for (int i = 0; i < COUNT; ++i)
        QCOMPARE(int{*static_cast<const uint8_t *>(attached[i])}, MEMORIES[i].id);
}

void HostLink::memories_published_anew_are_attached_anew()
{
    publish_all();
    QCOMPARE(attach_host_memories(), 0);
    const QVector<const void *> before = pointers();
    publish(MEMORY_CAL_TABLES);
    QCOMPARE(attach_host_memories(), 0);
    QCOMPARE(pointers().mid(0, COUNT - 1), before.mid(0, COUNT - 1));
    QVERIFY(g_cal_tables != before.last());
    QCOMPARE(g_cal_tables_base, g_cal_tables);
}

void HostLink::variable_is_found()
{
    const auto fill = [](void *payload, void *) {
        auto *entries = static_cast<hostsim::VariableEntry *>(payload);
        qstrncpy(entries[0].name, "BAROMETER", sizeof entries[0].name);
        qstrncpy(entries[1].name, "CELL_TEMP", sizeof entries[1].name);
        VARIABLE_RECORD record = {};
        record.value = 72.5;
        std::memcpy(entries[1].record, &record, sizeof record);
    };
    QVERIFY(hostsim::publish_memory(hostsim::MEMORY_VARIABLES, 3 * sizeof(hostsim::VariableEntry),
                                    fill, nullptr) != nullptr);
    const HostLog log;
    void *address = nullptr;
    QCOMPARE(find_var_address("CELL_TEMP", &address), 1);
    QVERIFY(address != nullptr);
    QCOMPARE(static_cast<const VARIABLE_RECORD *>(address)->value, 72.5);
    QCOMPARE(log.texts(), QStringList());
}

void HostLink::variable_that_does_not_exist()
{
    QVERIFY(hostsim::publish_memory(hostsim::MEMORY_VARIABLES, 3 * sizeof(hostsim::VariableEntry),
                                    nullptr, nullptr) != nullptr);
    VARIABLE_ID id = {};
    const int32_t code = find_variable("NO_SUCH", &id);
    QVERIFY((code & 0xffff) != 0);
    const HostLog log;
    int here = 0;
    void *address = &here;
    QCOMPARE(find_var_address("NO_SUCH", &address), 0);
    QCOMPARE(address, static_cast<void *>(&here));
    const QVector<LoggedEntry> entries = log.entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].text, QString("Can't find variable <NO_SUCH>"));
    QCOMPARE(entries[0].severity, 1);
    QCOMPARE(entries[0].code, code);
    QCOMPARE(entries[0].source, QString("hostlink.cpp"));
}

void HostLink::variable_withdrawn_between_the_two_calls()
{
    const auto fill = [](void *payload, void *) {
        auto *entry = static_cast<hostsim::VariableEntry *>(payload);
        qstrncpy(entry->name, "CELL_TEMP", sizeof entry->name);
    };
    QVERIFY(hostsim::publish_memory(hostsim::MEMORY_VARIABLES, 2 * sizeof(hostsim::VariableEntry),
                                    fill, nullptr) != nullptr);
    variable_withdrawn = true;
    const HostLog log;
    int here = 0;
    void *address = &here;
    QCOMPARE(find_var_address("CELL_TEMP", &address), 0);
    QCOMPARE(address, static_cast<void *>(&here));
    QCOMPARE(log.texts(), QStringList("Can't find variable <CELL_TEMP>"));
}

void HostLink::catalogue_of_700_units_without_a_blank_one()
{
    const auto fill = [](void *payload, void *) {
        auto *records = static_cast<UNIT_RECORD *>(payload);
        for (int i = 0; i < UNIT_RECORDS; ++i)
            std::snprintf(records[i].keyword, sizeof records[i].keyword, "UNIT%d", i);
    };
    QVERIFY(hostsim::publish_memory(MEMORY_UNITS, UNIT_RECORDS * sizeof(UNIT_RECORD), fill,
                                    nullptr) != nullptr);
    void *address = nullptr;
    QVERIFY(link_to_memory(43, &address) != 0);
    QCOMPARE(static_cast<const void *>(Unit_mem), static_cast<const void *>(address));
    QCOMPARE(QByteArray(Unit_mem[699].keyword), QByteArray("UNIT699"));
}

void HostLink::symbols_for_the_runtime_data()
{
    QTest::addColumn<void *>("address");
    QTest::newRow("Ai_real") << static_cast<void *>(&Ai_real);
    QTest::newRow("Mv") << static_cast<void *>(&Mv);
    QTest::newRow("Sys_attr") << static_cast<void *>(&Sys_attr);
    QTest::newRow("Sched_attr") << static_cast<void *>(&Sched_attr);
    QTest::newRow("Override_enable") << static_cast<void *>(&Override_enable);
    QTest::newRow("Spec_file_line_count") << static_cast<void *>(&Spec_file_line_count);
    QTest::newRow("VORNAX_VER") << static_cast<void *>(&VORNAX_VER);
}

void HostLink::symbols_for_the_runtime()
{
    QTEST(dlsym(RTLD_DEFAULT, QTest::currentDataTag()), "address");
}

void HostLink::values_for_the_runtime()
{
    QCOMPARE(Override_enable, int16_t{0});
    QCOMPARE(Spec_file_line_count, int16_t{0});
    QCOMPARE(QByteArray(VORNAX_VER), QByteArray("$Version: E-7.0.27   $"));
}

LOOP_TEST(HostLink);
#include "test_hostlink.moc"
