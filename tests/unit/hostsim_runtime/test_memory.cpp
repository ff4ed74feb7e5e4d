// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDir>
#include <QtTest>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include "child.h"
#include "host/exports.h"
#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"
#include "logreader.h"
#include "support/testmain.h"

using namespace hostsim;

namespace
{

constexpr int ID = MEMORY_MILLIVOLTS;

void fill_with(void *payload, void *context)
{
    *static_cast<double *>(payload) = *static_cast<double *>(context);
}

// Publishes one number, in this process.
void *publish(double value, std::size_t size = sizeof(double))
{
    return publish_memory(ID, size, fill_with, &value);
}

double value_of(const void *payload)
{
    return *static_cast<const double *>(payload);
}

// An object of the memory's name with any bytes in it.
void make_object(const QByteArray &bytes)
{
    char name[64];
    memory_object_name(ID, name, sizeof name);
    shm_unlink(name);
    const int file = shm_open(name, O_CREAT | O_EXCL | O_RDWR, 0600);
    QVERIFY(file >= 0);
    const auto size = static_cast<std::size_t>(bytes.size());
    const ssize_t written = write(file, bytes.constData(), size);
    close(file);
    QCOMPARE(written, static_cast<ssize_t>(size));
}

QByteArray memory_bytes(const MemoryHeader &header, int payload)
{
    return QByteArray(reinterpret_cast<const char *>(&header), sizeof header) +
           QByteArray(payload, 'p');
}

MemoryHeader header_of(int payload)
{
    MemoryHeader header{};
    header.magic = MEMORY_MAGIC;
    header.version = MEMORY_VERSION;
    header.id = ID;
    header.payload_size = static_cast<std::uint64_t>(payload);
    return header;
}

QStringList objects()
{
    return QDir(QStringLiteral("/dev/shm")).entryList(QDir::Files | QDir::Hidden);
}

void fill_units(void *payload, void *context)
{
    auto *records = static_cast<UNIT_RECORD *>(payload);
    for (int i = 0; i < *static_cast<int *>(context); ++i)
        strcpy(records[i].keyword, "PSI");
}

} // namespace

class Memory : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        clear_log();
        for (const int id : {ID, int(MEMORY_UNITS), int(MEMORY_CAL_TABLES)})
            withdraw_memory(id);
    }
    void initTestCase()
    {
        // Stands for whoever handles the signal in the program.
        signal(SIGBUS, [](int) { _exit(43); });
    }
    void cleanupTestCase();
    void nothing_published_is_null();
    void published_by_another_process();
    void header_is_as_declared();
    void readers_cannot_write();
    void writers_and_readers_share();
    void the_same_memory_keeps_its_address();
    void published_anew_it_is_another();
    void withdrawn_it_is_gone_but_mapped();
    void left_by_a_dead_publisher_it_counts_as_none();
    void lives_with_another_memory();
    void death_while_sampling_is_logged_once();
    void memory_cut_short_is_survived_data();
    void memory_cut_short_is_survived();
    void faults_elsewhere_go_to_the_former_handler();
    void count_beyond_the_records_leads_to_inactive_channels();
    void former_run_time_tables_are_let_go();
    void new_memories_are_zero();
    void fill_runs_before_it_can_be_seen();
    void unsound_objects_are_refused_data();
    void unsound_objects_are_refused();
    void a_publisher_without_room_says_so();
    void link_fills_pointer_and_catalogue();
    void link_answers_for_other_memories();
    void catalogue_must_end_within_its_memory_data();
    void catalogue_must_end_within_its_memory();
};

void Memory::cleanupTestCase()
{
    init();
    QCOMPARE(objects(), QStringList());
}

void Memory::nothing_published_is_null()
{
    QVERIFY(get_shrd_mem(ID, 0) == nullptr);
    std::size_t size = 77;
    QVERIFY(map_memory(ID, true, &size) == nullptr);
    QCOMPARE(size, std::size_t(0));
    QVERIFY(log_lines().isEmpty());
}

void Memory::published_by_another_process()
{
    LivingChild cell([] { return publish(12.5) != nullptr; });
    QVERIFY(cell.done());
    const void *payload = get_shrd_mem(ID, 0);
    QVERIFY(payload != nullptr);
    QCOMPARE(value_of(payload), 12.5);
    QCOMPARE(objects(), QStringList(QStringLiteral("vornax.5")));
    QCOMPARE(in_child([] {
                 withdraw_memory(ID);
                 return 0;
             }),
             0);
    QVERIFY(get_shrd_mem(ID, 0) == nullptr);
    QCOMPARE(value_of(payload), 12.5);
}

void Memory::header_is_as_declared()
{
    QVERIFY(publish(1.0, 432) != nullptr);
    QFile object(QStringLiteral("/dev/shm/vornax.5"));
    QVERIFY(object.open(QIODevice::ReadOnly));
    const QByteArray bytes = object.readAll();
    QCOMPARE(bytes.size(), 64 + 432);
    QVERIFY(bytes.startsWith("VORXMEM1"));
    const MemoryHeader expected = header_of(432);
    QVERIFY(memcmp(bytes.constData(), &expected, sizeof expected) == 0);
    QCOMPARE(object.permissions() & QFile::WriteOther, QFile::Permissions());
}

void Memory::readers_cannot_write()
{
    QVERIFY(publish(1.0) != nullptr);
    const int status = in_child([] {
        signal(SIGSEGV, [](int) { _exit(42); });
        *static_cast<volatile double *>(get_shrd_mem(ID, 0)) = 2.0;
        return 0;
    });
    QCOMPARE(status, 42);
    QCOMPARE(value_of(get_shrd_mem(ID, 0)), 1.0);
}

void Memory::writers_and_readers_share()
{
    QVERIFY(publish(1.0) != nullptr);
    const void *reader = get_shrd_mem(ID, 0);
    QCOMPARE(in_child([] {
                 std::size_t size = 0;
                 void *payload = map_memory(ID, true, &size);
                 if (payload == nullptr || size != sizeof(double))
                     return 1;
                 *static_cast<double *>(payload) = -3.0;
                 return 0;
             }),
             0);
    QCOMPARE(value_of(reader), -3.0);
}

void Memory::the_same_memory_keeps_its_address()
{
    void *published = publish(1.0);
    QCOMPARE(map_memory(ID, true, nullptr), published);
    void *first = get_shrd_mem(ID, 0);
    QVERIFY(first != nullptr);
    QCOMPARE(get_shrd_mem(ID, 0), first);
    QCOMPARE(get_shrd_mem(ID, 1), first);
}

void Memory::published_anew_it_is_another()
{
    QVERIFY(publish(1.0) != nullptr);
    const void *former = get_shrd_mem(ID, 0);
    const LivingChild cell([] { return publish(2.0, 4096) != nullptr; });
    QVERIFY(cell.done());
    const void *present = get_shrd_mem(ID, 0);
    QVERIFY(present != nullptr && present != former);
    QCOMPARE(value_of(former), 1.0);
    QCOMPARE(value_of(present), 2.0);
    QCOMPARE(objects(), QStringList(QStringLiteral("vornax.5")));
}

void Memory::withdrawn_it_is_gone_but_mapped()
{
    QVERIFY(publish(1.0) != nullptr);
    const void *payload = get_shrd_mem(ID, 0);
    withdraw_memory(ID);
    withdraw_memory(ID);
    QVERIFY(get_shrd_mem(ID, 0) == nullptr);
    QCOMPARE(value_of(payload), 1.0);
    QVERIFY(publish(2.0) != nullptr);
    QVERIFY(get_shrd_mem(ID, 0) != payload);
}

void Memory::left_by_a_dead_publisher_it_counts_as_none()
{
    LivingChild cell([] { return publish(4.0) != nullptr; });
    const void *payload = get_shrd_mem(ID, 0);
    QVERIFY(payload != nullptr);
    cell.kill();
    QCOMPARE(objects(), QStringList(QStringLiteral("vornax.5")));
    clear_log();
    void *pointer = this;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(get_shrd_mem(ID, 0) == nullptr);
        QCOMPARE(link_to_memory(ID, &pointer), 0);
    }
    QCOMPARE(pointer, static_cast<void *>(this));
    QCOMPARE(value_of(payload), 4.0); // who had it keeps it
    QCOMPARE(log_lines().size(), 1);
    QCOMPARE(log_entries().value(0).code, static_cast<int>(LogCode::HostLost));
    QVERIFY(publish(5.0) != nullptr);
    QCOMPARE(value_of(get_shrd_mem(ID, 0)), 5.0);
}

// As the run-time tables, which a program of the cell's publishes and ends.
void Memory::lives_with_another_memory()
{
    LivingChild cell([] { return publish(4.0) != nullptr; });
    QCOMPARE(in_child([] {
                 return publish_memory(MEMORY_CAL_TABLES, 64, nullptr, nullptr, ID) != nullptr ? 0
                                                                                               : 1;
             }),
             0);
    QVERIFY(get_shrd_mem(MEMORY_CAL_TABLES, 0) != nullptr);
    cell.kill();
    QVERIFY(get_shrd_mem(MEMORY_CAL_TABLES, 0) == nullptr);
}

void Memory::death_while_sampling_is_logged_once()
{
    LivingChild cell([] { return publish(4.0) != nullptr; });
    const void *payload = get_shrd_mem(ID, 0);
    QVERIFY(payload != nullptr);
    STAT_RECORD statistics = {};
    FIFO_RECORD fifo = {};
    const auto passes = [&] {
        xy_acquire_from_fifo(&statistics, &fifo, &fifo);
        return log_lines().size();
    };
    clear_log();
    QCOMPARE(passes(), 0);
    cell.kill();
    QTRY_COMPARE_WITH_TIMEOUT(passes(), 1, 60000);
    QVERIFY(log_entries()[0].text.find("the host is lost") == 0);
    QVERIFY(get_shrd_mem(ID, 0) == nullptr);
    QCOMPARE(log_lines().size(), 1);
    QCOMPARE(value_of(payload), 4.0);
}

void Memory::memory_cut_short_is_survived_data()
{
    test_columns<int, int>("id", "left");
    for (const int id : {1, 3, 5, 6, 31, 43}) {
        for (const int left : {0, 64, 5000, 8192})
            QTest::addRow("memory %d, %d bytes left", id, left) << id << left;
    }
}

// What was there goes on to be read, and the host counts as lost.
void Memory::memory_cut_short_is_survived()
{
    QFETCH(int, id);
    QFETCH(int, left);
    constexpr std::size_t size = 20000;
    const auto fill = [](void *payload, void *) { memset(payload, 'k', size); };
    void *own = publish_memory(id, size, fill, nullptr);
    const auto *payload = static_cast<const char *>(get_shrd_mem(id, 0));
    QVERIFY(own != nullptr && payload != nullptr);
    clear_log();
    char path[64];
    snprintf(path, sizeof path, "/dev/shm/vornax.%d", id);
    QCOMPARE(truncate(path, left), 0);
    QCOMPARE(QByteArray(payload, size).size(), int(size)); // reads it all
    memset(own, 'w', size);                                // the cell survives it as well
    QVERIFY(get_shrd_mem(id, 0) == nullptr);
    const QByteArray read(payload, size);
    // Of the readings a page that is still there may have been written to.
    for (int at = 0; at < read.size(); ++at)
        QVERIFY(read[at] == 'k' || (read[at] == 'w' && at + 64 < left));
    const QList<LogEntry> entries = log_entries();
    QVERIFY(!entries.isEmpty());
    QCOMPARE(entries[0].code, static_cast<int>(LogCode::HostLost));
    QCOMPARE(entries[0].text,
             "the host is lost: shared memory " + std::string(path + 8) + " was cut short");
    const int told = entries.size();
    watch_host();
    QCOMPARE(log_lines().size(), told);
    withdraw_memory(id);
}

void Memory::faults_elsewhere_go_to_the_former_handler()
{
    QVERIFY(publish(1.0) != nullptr);
    QVERIFY(get_shrd_mem(ID, 0) != nullptr);
    QCOMPARE(in_child([] {
                 const int file = shm_open("/foreign", O_CREAT | O_RDWR, 0600);
                 shm_unlink("/foreign");
                 const void *base = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0);
                 return *static_cast<const volatile char *>(base) == 0 ? 1 : 2;
             }),
             43);
}

void Memory::count_beyond_the_records_leads_to_inactive_channels()
{
    constexpr int records = 26;
    const auto activate = [](void *payload, void *) {
        for (int n = 0; n < records; ++n)
            static_cast<AI_REAL_RECORD *>(payload)[n].active = 1;
    };
    QVERIFY(publish_memory(MEMORY_AI_REAL, records * sizeof(AI_REAL_RECORD), activate, nullptr) !=
            nullptr);
    QVERIFY(publish(7.0, records * sizeof(MV_RECORD)) != nullptr);
    auto *attributes = static_cast<SYS_ATTR_RECORD *>(
        publish_memory(MEMORY_SYS_ATTR, sizeof(SYS_ATTR_RECORD), nullptr, nullptr));
    QVERIFY(attributes != nullptr);
    attributes->channel_count = records;
    const auto *channels = static_cast<const AI_REAL_RECORD *>(get_shrd_mem(MEMORY_AI_REAL, 0));
    const auto *readings = static_cast<const MV_RECORD *>(get_shrd_mem(ID, 0));
    QVERIFY(channels != nullptr && readings != nullptr);
    QVERIFY(get_shrd_mem(MEMORY_SYS_ATTR, 0) != nullptr);
    QVERIFY(log_lines().isEmpty());
    attributes->channel_count = 32767; // long after the memories were attached
    int active = 0;
    for (int n = 0; n < attributes->channel_count; ++n)
        active += channels[n].active + (n < records || readings[n].mv == 0.0 ? 0 : 1);
    QCOMPARE(active, records);
    QVERIFY(get_shrd_mem(MEMORY_SYS_ATTR, 0) != nullptr);
    QTRY_COMPARE_WITH_TIMEOUT((watch_host(), log_lines().size()), 1, 60000);
    QVERIFY(log_entries()[0].text.find("channel_count is 32767, and shared memory /vornax.") == 0);
    for (const int id : {int(MEMORY_AI_REAL), int(MEMORY_SYS_ATTR)})
        withdraw_memory(id);
}

// Else a day of rebuilds would fill the address space.
void Memory::former_run_time_tables_are_let_go()
{
    const void *former = nullptr;
    for (char build = 1; build <= 20; ++build) {
        const auto fill = [](void *payload, void *context) {
            memset(payload, *static_cast<char *>(context), 167000);
        };
        const LivingChild cell(
            [&] { return publish_memory(MEMORY_CAL_TABLES, 167000, fill, &build) != nullptr; });
        const void *tables = get_shrd_mem(MEMORY_CAL_TABLES, 0);
        QVERIFY(tables != nullptr);
        QCOMPARE(static_cast<const char *>(tables)[166999], build);
        if (former != nullptr)
            QCOMPARE(static_cast<const char *>(former)[166999], char(build - 1));
        former = tables;
    }
    QFile maps(QStringLiteral("/proc/self/maps"));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    QVERIFY(maps.readAll().count("/dev/shm/vornax.35") <= 2);
}

void Memory::new_memories_are_zero()
{
    const void *payload = publish_memory(ID, 10000, nullptr, nullptr);
    QVERIFY(payload != nullptr);
    QCOMPARE(QByteArray(static_cast<const char *>(payload), 10000), QByteArray(10000, '\0'));
    QVERIFY(publish_memory(ID, 0, nullptr, nullptr) != nullptr);
    QVERIFY(get_shrd_mem(ID, 0) != nullptr);
}

void Memory::fill_runs_before_it_can_be_seen()
{
    bool seen = true;
    const auto look = [](void *, void *context) {
        *static_cast<bool *>(context) = get_shrd_mem(ID, 0) != nullptr;
    };
    QVERIFY(publish_memory(ID, 8, look, &seen) != nullptr);
    QVERIFY(!seen);
    QVERIFY(get_shrd_mem(ID, 0) != nullptr);
}

void Memory::unsound_objects_are_refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    MemoryHeader header = header_of(8);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("shorter than a header") << memory_bytes(header, 0).left(63);
    QTest::newRow("shorter than its header says") << memory_bytes(header, 7);
    QTest::newRow("longer than its header says") << memory_bytes(header, 9);
    QTest::newRow("nothing but a header that promises more") << memory_bytes(header, 0);
    header.magic ^= 1;
    QTest::newRow("another magic") << memory_bytes(header, 8);
    header = header_of(8);
    header.version = 2;
    QTest::newRow("another version") << memory_bytes(header, 8);
    header = header_of(8);
    header.id = ID + 1;
    QTest::newRow("another number") << memory_bytes(header, 8);
    header = header_of(8);
    header.payload_size = ~std::uint64_t(0) - 55;
    QTest::newRow("a size that wraps around") << memory_bytes(header, 8);
}

void Memory::unsound_objects_are_refused()
{
    QFETCH(QByteArray, bytes);
    make_object(bytes);
    QVERIFY(get_shrd_mem(ID, 0) == nullptr);
    const QList<LogEntry> entries = log_entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].code, static_cast<int>(LogCode::MemoryRefused));
    QVERIFY(entries[0].text.find("/vornax.5 refused") != std::string::npos);
    void *pointer = &bytes;
    QCOMPARE(link_to_memory(ID, &pointer), 0);
    QCOMPARE(pointer, static_cast<void *>(&bytes));

    QVERIFY(publish(1.0) != nullptr);
    QVERIFY(get_shrd_mem(ID, 0) != nullptr);
}

void Memory::a_publisher_without_room_says_so()
{
    QVERIFY(publish(1.0) != nullptr);
    const int status = in_child([] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        errno = 0;
        return publish(2.0, 1000000) == nullptr && errno == EFBIG ? 0 : 1;
    });
    QCOMPARE(status, 0);
    QCOMPARE(log_entries().value(0).code, static_cast<int>(LogCode::MemoryUnpublished));
    QCOMPARE(value_of(get_shrd_mem(ID, 0)), 1.0);
    QCOMPARE(objects(), QStringList(QStringLiteral("vornax.5")));
}

void Memory::link_fills_pointer_and_catalogue()
{
    void *pointer = this;
    QCOMPARE(link_to_memory(MEMORY_UNITS, &pointer), 0);
    QCOMPARE(pointer, static_cast<void *>(this));
    QVERIFY(Unit_mem == nullptr);

    int units = 2;
    QVERIFY(publish_memory(MEMORY_UNITS, UNIT_RECORDS * sizeof(UNIT_RECORD), fill_units, &units) !=
            nullptr);
    QVERIFY(link_to_memory(MEMORY_UNITS, &pointer) != 0);
    QCOMPARE(static_cast<const void *>(Unit_mem), static_cast<const void *>(pointer));
    QCOMPARE(Unit_mem[1].keyword, "PSI");
    QVERIFY(string_blank(Unit_mem[2].keyword) != 0);
    QCOMPARE(link_to_memory(MEMORY_UNITS, nullptr), 0);
}

void Memory::link_answers_for_other_memories()
{
    QVERIFY(publish(9.0) != nullptr);
    const UNIT_RECORD *before = Unit_mem;
    void *pointer = nullptr;
    QVERIFY(link_to_memory(ID, &pointer) != 0);
    QCOMPARE(value_of(pointer), 9.0);
    QVERIFY(Unit_mem == before);
}

void Memory::catalogue_must_end_within_its_memory_data()
{
    const auto row = test_columns<int, int, bool>("records", "used", "linked");
    row("all 700 in use", 700, 700, true);
    row("ended by a blank one", 700, 699, true);
    row("short, ended by a blank one", 10, 9, true);
    row("short, all in use", 10, 10, false);
    row("no record", 0, 0, false);
}

void Memory::catalogue_must_end_within_its_memory()
{
    QFETCH(int, records);
    QFETCH(int, used);
    const std::size_t size = static_cast<std::size_t>(records) * sizeof(UNIT_RECORD);
    auto *catalogue =
        static_cast<UNIT_RECORD *>(publish_memory(MEMORY_UNITS, size, fill_units, &used));
    QVERIFY(catalogue != nullptr);
    void *pointer = nullptr;
    QTEST(link_to_memory(MEMORY_UNITS, &pointer) != 0, "linked");
    if (used > 0) {
        memset(catalogue[0].keyword, 'x', sizeof catalogue[0].keyword);
        QCOMPARE(link_to_memory(MEMORY_UNITS, &pointer), 0); // keyword without an end
    }
}

PLAIN_TEST(Memory);
#include "test_memory.moc"
