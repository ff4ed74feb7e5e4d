// SPDX-License-Identifier: GPL-3.0-or-later
//
// A cell as it runs: what it publishes, how its readings move, what it answers.
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include "host/operations.h"
#include "hostsim/bld_tables/caltables.h"
#include "hostsim/cell/cellmemories.h"
#include "hostsim/cell/livecell.h"
#include "hostsim/runtime/memoryheader.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"

using namespace caltables;
using namespace cell;

class LiveCellTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void publishes_what_is_described();
    void withdraws_everything();
    void channels_beyond_the_described_are_not_active();
    void units_are_published();
    void wrong_catalogue();
    void readings_move_with_the_ticks();
    void command_data();
    void command();
    void apply_takes_the_lag();
    void held_reading_data();
    void held_reading();
    void held_reading_is_let_go_data();
    void held_reading_is_let_go();
    void set_changes_the_memory();
    void list_tells_every_channel();
    void tables_are_made_once();
    void run_time_tables();
    void damaged_table_is_counted();

private:
    CellDescription m_description;
    std::unique_ptr<CellMemories> m_memories;
    std::unique_ptr<LiveCell> m_cell;
};

namespace
{

const char *const TEXT = R"(cell "Cell Ä"
host the-host
join 5000
channels 5
variable T 72.5 DEG_F
channel 0
  label "Oil Pressure"
  units kPa
  table oil
  sample_rate 50
  filter 0.25
  input kPa 0 100
  response linear 50
  record INTERP
  points 0:0 5000:100
channel 1
  label Slow
  table slow
  input kPa 0 100
  response linear 50
  lag 1000
channel 3
  active 2
  table scaled
  record SCALED
  factor 2.5
)";

std::string answer(LiveCell *cell, const char *line)
{
    std::string text;
    for (const std::string &part : cell->command(line))
        text += (text.empty() ? "" : "|") + part;
    return text;
}

template <typename Record> const Record *memory(std::int32_t id)
{
    return static_cast<const Record *>(get_shrd_mem(id, 0));
}

} // namespace

void LiveCellTest::init()
{
    clear_cell();
    std::istringstream text(TEXT);
    std::vector<std::string> errors;
    m_description = CellDescription();
    QVERIFY(parse_description(text, "cell.txt", &m_description, &errors));
    std::string error;
    QVERIFY(make_table_files(m_description, &error));
    m_memories = std::make_unique<CellMemories>();
    QVERIFY2(m_memories->publish(m_description, &error), error.c_str());
    m_cell = std::make_unique<LiveCell>(m_description, m_memories.get());
}

void LiveCellTest::cleanup()
{
    m_cell.reset();
    m_memories.reset();
    QCOMPARE(published_memories(), QStringList());
}

void LiveCellTest::publishes_what_is_described()
{
    const auto *channels = memory<AI_REAL_RECORD>(MEMORY_AI_REAL);
    const auto *transfer = memory<AI_TRANSFER_RECORD>(MEMORY_AI_TRANSFER);
    const auto *attributes = memory<SYS_ATTR_RECORD>(MEMORY_SYS_ATTR);
    const auto *strings = memory<DISPLAY_STRINGS_RECORD>(MEMORY_DISPLAY_STRINGS);
    const auto *control = memory<hostsim::ControlRecord>(hostsim::MEMORY_CONTROL);
    QVERIFY(channels && transfer && attributes && strings && control);
    QVERIFY(get_shrd_mem(MEMORY_SCHEDULER, 0) != nullptr);
    const auto *tables = memory<CalTablesHeader>(MEMORY_CAL_TABLES);
    QVERIFY(tables != nullptr);
    QCOMPARE(tables->count, 0);
    QCOMPARE(int(channels[0].active), 1);
    QCOMPARE(static_cast<const char *>(channels[0].label), "Oil Pressure");
    QCOMPARE(static_cast<const char *>(channels[0].units), "kPa");
    QCOMPARE(int(channels[3].active), 2);
    QCOMPARE(transfer[0].filter_coeff, 0.25);
    QCOMPARE(transfer[0].sample_rate, 50);
    QCOMPARE(static_cast<const char *>(transfer[0].table_name), "oil");
    QCOMPARE(int(attributes->channel_count), 5);
    QCOMPARE(static_cast<const char *>(attributes->test_cell_name), "Cell Ä");
    QCOMPARE(static_cast<const char *>(strings->host_name), "the-host");
    QCOMPARE(control->join_answer, 5000);
    VARIABLE_ID id;
    QCOMPARE(find_variable("T", &id), 0);
    const auto *variable = static_cast<const VARIABLE_RECORD *>(get_vrbl_adr(id));
    QVERIFY(variable != nullptr);
    QCOMPARE(variable->value, 72.5);
    QCOMPARE(static_cast<const char *>(variable->units), "DEG_F");
}

void LiveCellTest::withdraws_everything()
{
    QVERIFY(!published_memories().isEmpty());
    m_memories->withdraw();
    QCOMPARE(published_memories(), QStringList());
    QVERIFY(get_shrd_mem(MEMORY_AI_REAL, 0) == nullptr);
}

void LiveCellTest::channels_beyond_the_described_are_not_active()
{
    const auto *channels = memory<AI_REAL_RECORD>(MEMORY_AI_REAL);
    QCOMPARE(int(channels[2].active), 0);
    QCOMPARE(int(channels[4].active), 0);
    std::size_t size = 0;
    hostsim::map_memory(MEMORY_MILLIVOLTS, false, &size);
    QCOMPARE(size, 5 * sizeof(MV_RECORD));
}

void LiveCellTest::units_are_published()
{
    void *units = nullptr;
    QVERIFY(link_to_memory(MEMORY_UNITS, &units) != 0);
    QVERIFY(string_blank(static_cast<const UNIT_RECORD *>(units)->keyword) == 0);
}

void LiveCellTest::wrong_catalogue()
{
    CellMemories memories;
    std::string error;
    write_file("/cell/units.txt", "kPa 100 pressure 1000 Pa\nPSI many pressure 1 Pa\n");
    m_description.catalogue = "/cell/units.txt";
    QVERIFY(!memories.publish(m_description, &error));
    QVERIFY2(error.rfind("/cell/units.txt: line 2: ", 0) == 0, error.c_str());
    m_description.catalogue = "/cell/none.txt";
    QVERIFY(!memories.publish(m_description, &error));
    QCOMPARE(error, std::string("/cell/none.txt: No such file or directory"));
}

void LiveCellTest::readings_move_with_the_ticks()
{
    const auto *mv = memory<MV_RECORD>(MEMORY_MILLIVOLTS);
    QCOMPARE(mv[0].mv, 0.0);
    QCOMPARE(answer(m_cell.get(), "apply 1 100"), std::string("ok"));
    double last = mv[1].mv;
    for (int i = 0; i < 5; ++i) {
        m_cell->tick(0.01);
        QVERIFY(mv[1].mv > last);
        last = mv[1].mv;
    }
    m_cell->tick(1000.0);
    QVERIFY(std::fabs(mv[1].mv - 5000.0 * (1.0 - std::exp(-1.00005))) < 1e-6);
}

void LiveCellTest::command_data()
{
    const auto row = test_columns<QString, QString>("line", "answer");
    row("apply", "apply 0 50", "ok");
    row("apply now", "apply 1 50 now", "ok");
    row("apply beyond the range", "apply 0 -20", "ok");
    row("condition", "condition 0 noisy", "ok");
    row("label with blanks", "set 0 label \"New label\"", "ok");
    row("empty line", "", "error no command");
    row("open quote", "set 0 label \"a", "error a quote is not closed");
    row("unknown", "jump 0 1", "error not a command: jump with 2 values");
    row("unknown without values", "jump", "error not a command: jump");
    row("quit with values", "quit 1", "error not a command: quit with 1 values");
    row("channel past the last", "show 5", "error no such channel: 5");
    row("channel below 0", "show -1", "error no such channel: -1");
    row("no channel", "apply oil 5", "error no such channel: oil");
    row("no sensor", "apply 3 5", "error channel 3 has no transducer");
    row("condition without sensor", "condition 3 good", "error channel 3 has no transducer");
    row("no number", "apply 0 full", "error not a number: full");
    row("infinite", "apply 0 inf", "error not a number: inf");
    row("not a way to apply", "apply 0 1 soon", "error not a way to apply: soon");
    row("no condition", "condition 0 bad", "error not a condition of a sensor: bad");
    row("no millivolts", "mv 0 high", "error not a number: high");
    row("no field", "set 0 colour red", "error not a field of a channel: colour");
    row("state of a channel", "set 0 active yes", "error not a number from 0 to 65535: yes");
    row("units too long", "set 0 units 1234567890123456", "error longer than 15 bytes");
}

void LiveCellTest::command()
{
    QFETCH(QString, line);
    QFETCH(QString, answer);
    QCOMPARE(QString::fromStdString(::answer(m_cell.get(), line.toUtf8().constData())), answer);
    QVERIFY(!m_cell->quit_asked());
}

void LiveCellTest::apply_takes_the_lag()
{
    answer(m_cell.get(), "apply 1 100");
    QCOMPARE(m_memories->millivolts(1), 0.0);
    answer(m_cell.get(), "apply 1 100 now");
    QCOMPARE(m_memories->millivolts(1), 5000.0);
}

void LiveCellTest::held_reading_data()
{
    const auto row = test_columns<QString, double>("text", "mv");
    row("to the last bit", "0.1", 0.1);
    row("below 0", "-12345.678", -12345.678);
    row("negative zero", "-0", -0.0);
    row("infinite", "inf", std::numeric_limits<double>::infinity());
    row("not a number", "nan", std::numeric_limits<double>::quiet_NaN());
}

void LiveCellTest::held_reading()
{
    QFETCH(QString, text);
    QFETCH(double, mv);
    QCOMPARE(answer(m_cell.get(), ("mv 0 " + text).toUtf8().constData()), std::string("ok"));
    m_cell->tick(0.01);
    const double read = m_memories->millivolts(0);
    if (std::isnan(mv))
        QVERIFY(std::isnan(read));
    else
        QVERIFY(std::memcmp(&read, &mv, sizeof mv) == 0);
    // A channel without a sensor can be held as well.
    QCOMPARE(answer(m_cell.get(), "mv 4 7"), std::string("ok"));
    QCOMPARE(m_memories->millivolts(4), 7.0);
}

void LiveCellTest::held_reading_is_let_go_data()
{
    const auto row = test_columns<QString, double>("line", "mv");
    row("by auto", "mv 0 auto", 1000.0);
    row("by a value applied", "apply 0 30", 1500.0);
    row("by a condition", "condition 0 drifted3", 1150.0);
}

void LiveCellTest::held_reading_is_let_go()
{
    QFETCH(QString, line);
    answer(m_cell.get(), "apply 0 20");
    answer(m_cell.get(), "mv 0 7");
    QCOMPARE(m_memories->millivolts(0), 7.0);
    QCOMPARE(answer(m_cell.get(), line.toUtf8().constData()), std::string("ok"));
    QTEST(m_memories->millivolts(0), "mv");
}

void LiveCellTest::set_changes_the_memory()
{
    const auto *channels = memory<AI_REAL_RECORD>(MEMORY_AI_REAL);
    const auto *transfer = memory<AI_TRANSFER_RECORD>(MEMORY_AI_TRANSFER);
    for (const char *line :
         {"set 0 label \"Other\"", "set 0 units PSI", "set 0 table other", "set 0 active 0"})
        QCOMPARE(answer(m_cell.get(), line), std::string("ok"));
    QCOMPARE(static_cast<const char *>(channels[0].label), "Other");
    QCOMPARE(static_cast<const char *>(channels[0].units), "PSI");
    QCOMPARE(static_cast<const char *>(transfer[0].table_name), "other");
    QCOMPARE(int(channels[0].active), 0);
}

void LiveCellTest::list_tells_every_channel()
{
    answer(m_cell.get(), "set 1 label \"a\tb\nc\"");
    const std::vector<std::string> lines = m_cell->command("list");
    QCOMPARE(lines.size(), std::size_t(6));
    QCOMPARE(lines[0], std::string("0\t1\tOil Pressure\tkPa\toil\t0\t0\t1\tgood\t0\tkPa\t0\t100"));
    QVERIFY(lines[1].find("\ta?b?c\t") != std::string::npos);
    QCOMPARE(lines[4], std::string("4\t0\t\t\t\t0\t0\t1\t-\t0\t\t0\t0"));
    QCOMPARE(lines[5], std::string("ok"));
}

void LiveCellTest::tables_are_made_once()
{
    std::string error;
    const auto record = std::make_unique<TABLE_RECORD>();
    QCOMPARE(read_table("/cell/tables/oil.tbl", record.get()) & 0xffff, 0);
    QCOMPARE(int(record->poly[0].num_points), 2);
    write_file("/cell/tables/oil.tbl", "mine");
    QVERIFY(make_table_files(m_description, &error));
    QCOMPARE(read_file("/cell/tables/oil.tbl"), QByteArray("mine"));
    QVERIFY(!QFile::exists("/cell/tables/slow.tbl"));
    QVERIFY(!QFile::exists("/cell/tables/oil.save"));
}

void LiveCellTest::run_time_tables()
{
    m_memories->channel(3).active = 1;
    const CalTables tables = build_cal_tables(&m_memories->channel(0), &m_memories->transfer(0), 5);
    QCOMPARE(tables.failed, 0);
    QVERIFY(publish_cal_tables(tables));
    std::size_t size = 0;
    const auto *header =
        static_cast<const CalTablesHeader *>(hostsim::map_memory(MEMORY_CAL_TABLES, false, &size));
    QVERIFY(header != nullptr);
    QCOMPARE(header->magic, CAL_TABLES_MAGIC);
    QCOMPARE(header->count, 2);
    QCOMPARE(size, sizeof(CalTablesHeader) + 2 * sizeof(CalTableEntry));
    const auto *entries = reinterpret_cast<const CalTableEntry *>(header + 1);
    QCOMPARE(entries[0].channel, 0);
    QCOMPARE(static_cast<const char *>(entries[0].table_name), "oil");
    QCOMPARE(static_cast<const char *>(entries[0].eng_units), "kPa");
    QCOMPARE(int(entries[0].table.num_points), 2);
    QCOMPARE(entries[0].table.slope[0], 0.02);
    QCOMPARE(entries[1].channel, 3);
    QCOMPARE(int(entries[1].table_type), int(TABLE_SCALED));
    QCOMPARE(entries[1].table.x[1], 100.0);
    QCOMPARE(entries[1].table.y[1], 250.0);
}

void LiveCellTest::damaged_table_is_counted()
{
    const HostLog log;
    write_file("/cell/tables/oil.tbl", "no table");
    const CalTables tables = build_cal_tables(&m_memories->channel(0), &m_memories->transfer(0), 5);
    QCOMPARE(tables.failed, 1);
    QCOMPARE(tables.entries.size(), std::size_t(0));
    QCOMPARE(log.count("table of channel 0 cannot be read: /cell/tables/oil.tbl"), 1);
    // A table that was never made is told and is no failure.
    QCOMPARE(log.count("channel 1 has no table file /cell/tables/slow.tbl"), 1);
}

LOOP_TEST(LiveCellTest);
#include "test_livecell.moc"
