// SPDX-License-Identifier: GPL-3.0-or-later
//
// Saving at each step of the calibration process: what goes into the archive,
// the history and the table file, and what into the record.
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <memory>

#include <QDir>
#include <QtTest>

#include "calibration/tablestore.h"
#include "host/operations.h"
#include "support/cellfiles.h"
#include "support/recorder.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

constexpr char TBL[] = "/cell/tables/flow.tbl";
constexpr char SAVE[] = "/cell/tables/flow.save";
constexpr char OLD[] = "/cell/tables/flow.old";

bool no_shell = false;
QByteArrayList commands;

} // namespace

// Stands before the C library's own: notes the command, and may find no shell.
extern "C" int system(const char *command)
{
    static const auto real = reinterpret_cast<int (*)(const char *)>(dlsym(RTLD_NEXT, "system"));
    commands.append(command);
    return no_shell ? -1 : real(command);
}

class TableSave : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void files_of_each_step_data();
    void files_of_each_step();
    void record_is_stamped_behind_the_archive_write_data() { files_of_each_step_data(); }
    void record_is_stamped_behind_the_archive_write();
    void stamp_travels_with_the_next_record();
    void extent_of_the_captured_values_data();
    void extent_of_the_captured_values();
    void successive_verifications_add_records();
    void history_grows_by_one_whole_table_each_time();
    void first_table_of_a_channel();
    void type_that_cannot_be_archived_data();
    void type_that_cannot_be_archived();
    void archive_that_cannot_be_written();
    void no_shell_for_the_history();
    void inactive_channel_writes_nothing_data();
    void inactive_channel_writes_nothing();
    void names_like_that_of_no_table_data();
    void names_like_that_of_no_table();
    void name_that_a_shell_would_interpret();
    void history_command_text_data();
    void history_command_text();
    void longest_plain_command_is_cut();
    void quoted_command_is_never_cut();
    void reuse_saves_former_points_with_the_new_extent();
    void reuse_of_a_range_table_goes_into_range_0();
    void reuse_leaves_the_files_in_force_alone();
    void reuse_of_a_type_that_cannot_be_archived();

private:
    void use_table(const char *name);
    std::vector<StoredRecord> archive() const
    {
        return stored_records(read_file(m_cfg->save_path));
    }

    std::unique_ptr<ZERL_CFG> m_cfg;
    QByteArray m_former; // bytes of the table file
};

void TableSave::use_table(const char *name)
{
    std::snprintf(m_cfg->tbl_path, sizeof m_cfg->tbl_path, "/cell/tables/%s.tbl", name);
    std::snprintf(m_cfg->save_path, sizeof m_cfg->save_path, "/cell/tables/%s.save", name);
    std::snprintf(m_cfg->old_path, sizeof m_cfg->old_path, "/cell/tables/%s.old", name);
    qstrncpy(m_cfg->table.table_name, name, sizeof m_cfg->table.table_name);
}

// A table file in force, and a session with three captured points of other values.
void TableSave::init()
{
    clear_cell();
    clear_recorded();
    no_shell = false;
    commands.clear();
    const auto former = make_table(TABLE_INTERP, line_points(2));
    QCOMPARE(create_table(TBL, former.get()), 0);
    m_former = read_file(TBL);
    m_cfg = std::make_unique<ZERL_CFG>();
    const Points captured = {{0.0, 50.0}, {10.0, -7.5}, {20.0, 20.0}};
    m_cfg->table = *make_table(TABLE_INTERP, captured);
    m_cfg->table.last_cal_time = 1234567;
    m_cfg->table.last_save_type = SAVE_AS_FOUND;
    set_points(&m_cfg->long_current, captured);
    set_points(&m_cfg->long_previous, line_points(2));
    m_cfg->table_dirty = 1;
    m_cfg->unsaved_flag = 1;
    use_table("flow");
}

void TableSave::files_of_each_step_data()
{
    const auto row = test_columns<int, bool>("save_type", "rewrites");
    row("3 As-Found", 3, false);
    row("5 After-Service", 5, false);
    row("6 Verification", 6, false);
    row("7 Table Updated by adjustment", 7, true);
    row("9 New Correlation", 9, true);
}

void TableSave::files_of_each_step()
{
    QFETCH(int, save_type);
    QFETCH(bool, rewrites);
    QCOMPARE(save_calibration(m_cfg.get(), save_type), 0);
    const auto records = archive();
    QCOMPARE(records.size(), std::size_t{1});
    QCOMPARE(records[0].info.save_type, save_type);
    QCOMPARE(records[0].table.poly[0].num_points, int16_t{3});
    QCOMPARE(records[0].table.poly[0].y[1], -7.5);
    if (rewrites) {
        QCOMPARE(commands, QByteArrayList({"cat /cell/tables/flow.tbl >> /cell/tables/flow.old"}));
        QCOMPARE(read_file(OLD), m_former);
        TABLE_RECORD table;
        QVERIFY((read_table(TBL, &table) & 0xffff) != 65535);
        QVERIFY(std::memcmp(&table, &m_cfg->table, sizeof table) == 0);
    } else {
        QCOMPARE(commands, QByteArrayList());
        QVERIFY(!QFile::exists(OLD));
        QCOMPARE(read_file(TBL), m_former);
    }
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(m_cfg->unsaved_flag, uint16_t{0});
    QCOMPARE(information_texts(), QStringList());
}

void TableSave::record_is_stamped_behind_the_archive_write()
{
    QFETCH(int, save_type);
    QFETCH(bool, rewrites);
    const int64_t before = std::time(nullptr);
    QCOMPARE(save_calibration(m_cfg.get(), save_type), 0);
    const int64_t after = std::time(nullptr);
    QVERIFY(before <= m_cfg->table.last_cal_time && m_cfg->table.last_cal_time <= after);
    QCOMPARE(int{m_cfg->table.last_save_type}, save_type);
    QVERIFY2(archive()[0].table.last_cal_time == 1234567, "the archive record has the former time");
    if (rewrites) {
        TABLE_RECORD table;
        QVERIFY((read_table(TBL, &table) & 0xffff) != 65535);
        QVERIFY2(table.last_cal_time == m_cfg->table.last_cal_time, "the table file has the new");
        QCOMPARE(int{table.last_save_type}, save_type);
    }
}

void TableSave::stamp_travels_with_the_next_record()
{
    save_calibration(m_cfg.get(), SAVE_ADJUSTED);
    const int64_t stamped = m_cfg->table.last_cal_time;
    save_calibration(m_cfg.get(), SAVE_VERIFICATION);
    QCOMPARE(archive().size(), std::size_t{2});
    QCOMPARE(archive()[1].table.last_cal_time, stamped);
}

void TableSave::extent_of_the_captured_values_data()
{
    const auto row = test_columns<QVector<double>, double, double>("y", "y_min", "y_max");
    row("three values", QVector<double>{50., -7.5, 20.}, -7.5, 50.);
    row("one value", QVector<double>{5.}, 5., 5.);
    row("no points: the seeds, the other way round", QVector<double>{}, 999999.0, -999999.0);
    row("values beyond the seeds", QVector<double>{2e6, 3e6}, 999999.0, 3e6);
    row("values below the seeds", QVector<double>{-2e6, -3e6}, -3e6, -999999.0);
    row("values that are not numbers are passed over", QVector<double>{qQNaN(), 4., qQNaN()}, 4.,
        4.);
}

void TableSave::extent_of_the_captured_values()
{
    QFETCH(QVector<double>, y);
    for (int i = 0; i < y.size(); ++i)
        m_cfg->long_current.y[i] = y[i];
    m_cfg->long_current.num_points = static_cast<int16_t>(y.size());
    save_calibration(m_cfg.get(), SAVE_AS_FOUND);
    QTEST(m_cfg->table.y_min, "y_min");
    QTEST(m_cfg->table.y_max, "y_max");
    QTEST(archive()[0].table.y_min, "y_min");
    QTEST(archive()[0].table.y_max, "y_max");
}

void TableSave::successive_verifications_add_records()
{
    save_calibration(m_cfg.get(), SAVE_VERIFICATION);
    save_calibration(m_cfg.get(), SAVE_VERIFICATION);
    QCOMPARE(archive().size(), std::size_t{2});
    for (const StoredRecord &record : archive())
        QCOMPARE(record.info.save_type, 6);
    QCOMPARE(read_file(TBL), m_former);
    QVERIFY(!QFile::exists(OLD));
}

void TableSave::history_grows_by_one_whole_table_each_time()
{
    QByteArray history;
    for (int turn = 0; turn < 3; ++turn) {
        history += read_file(TBL);
        m_cfg->table.poly[0].y[0] = 100.0 + turn;
        save_calibration(m_cfg.get(), SAVE_ADJUSTED);
        QCOMPARE(read_file(OLD), history);
        QCOMPARE(stored_records(read_file(OLD)).size(), static_cast<std::size_t>(turn + 1));
    }
    const auto former = stored_records(read_file(OLD));
    QCOMPARE(former[0].table.poly[0].y[0], 21.0);
    QCOMPARE(former[1].table.poly[0].y[0], 100.0);
    QCOMPARE(former[2].table.poly[0].y[0], 101.0);
}

// There is no former table to append: the command's failure goes unnoticed.
void TableSave::first_table_of_a_channel()
{
    QFile::remove(TBL);
    QCOMPARE(save_calibration(m_cfg.get(), SAVE_NEW_CORRELATION), 0);
    QCOMPARE(information_texts(), QStringList());
    TABLE_RECORD table;
    QVERIFY((read_table(TBL, &table) & 0xffff) != 65535);
    QCOMPARE(table.poly[0].y[1], -7.5);
    QCOMPARE(read_file(OLD), QByteArray());
}

void TableSave::type_that_cannot_be_archived_data()
{
    const auto row = test_columns<int, bool>("table_type", "rewritten");
    row("SCALED: a table file, no archive record", 2, true);
    row("65535", 65535, false);
    row("5", 5, false);
}

// Told once; time, type and the history follow all the same.
void TableSave::type_that_cannot_be_archived()
{
    QFETCH(int, table_type);
    m_cfg->table.table_type = static_cast<uint16_t>(table_type);
    QCOMPARE(save_calibration(m_cfg.get(), SAVE_ADJUSTED), 0);
    QCOMPARE(information_texts(),
             QStringList("Unable to update the /cell/tables/flow.save file - due to an invalid "
                         "calibration table type"));
    QVERIFY(!QFile::exists(SAVE));
    QVERIFY(m_cfg->table.last_cal_time != 1234567);
    QCOMPARE(m_cfg->table.last_save_type, uint16_t{SAVE_ADJUSTED});
    QCOMPARE(read_file(OLD), m_former);
    QTEST(read_file(TBL) != m_former, "rewritten");
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
}

void TableSave::archive_that_cannot_be_written()
{
    QVERIFY(QDir().mkpath(SAVE)); // a folder in its place
    QCOMPARE(save_calibration(m_cfg.get(), SAVE_ADJUSTED), 0);
    QCOMPARE(information_texts(),
             QStringList("Unable to update the /cell/tables/flow.save file - due to an invalid "
                         "calibration table type"));
    QCOMPARE(read_file(OLD), m_former);
    QVERIFY(read_file(TBL) != m_former);
    QCOMPARE(m_cfg->table.last_save_type, uint16_t{SAVE_ADJUSTED});
}

void TableSave::no_shell_for_the_history()
{
    no_shell = true;
    QCOMPARE(save_calibration(m_cfg.get(), SAVE_ADJUSTED), 0);
    QCOMPARE(information_texts(),
             QStringList("Unable to update the /cell/tables/flow.old file - due to an invalid "
                         "calibration table type"));
    QVERIFY(!QFile::exists(OLD));
    QVERIFY2(read_file(TBL) != m_former, "the table is rewritten all the same");
    QCOMPARE(archive().size(), std::size_t{1});
}

void TableSave::inactive_channel_writes_nothing_data()
{
    QTest::addColumn<int>("save_type");
    for (const int save_type : {3, 5, 6, 7, 8, 9})
        QTest::addRow("save type %d", save_type) << save_type;
}

void TableSave::inactive_channel_writes_nothing()
{
    QFETCH(int, save_type);
    qstrncpy(m_cfg->table.table_name, "INACTIVE", sizeof m_cfg->table.table_name);
    const TABLE_RECORD before = m_cfg->table;
    const auto save = save_type == SAVE_REUSED ? save_reused_calibration : save_calibration;
    QCOMPARE(save(m_cfg.get(), save_type), 0);
    QVERIFY(std::memcmp(&m_cfg->table, &before, sizeof before) == 0);
    QCOMPARE(QDir("/cell/tables").entryList(QDir::Files | QDir::Hidden), QStringList("flow.tbl"));
    QCOMPARE(read_file(TBL), m_former);
    QCOMPARE(commands, QByteArrayList());
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(m_cfg->unsaved_flag, uint16_t{0});
}

// The whole name counts, as it is written.
void TableSave::names_like_that_of_no_table_data()
{
    QTest::addColumn<int>("save_type");
    for (const char *name : {"INACTIVE2", "INACTIVE ", "INACTIV", "inactive", "2INACTIVE"})
        QTest::newRow(name) << int{SAVE_ADJUSTED};
}

void TableSave::names_like_that_of_no_table()
{
    QFETCH(int, save_type);
    const char *const name = QTest::currentDataTag();
    use_table(name);
    save_calibration(m_cfg.get(), save_type);
    QCOMPARE(archive().size(), std::size_t{1});
    QVERIFY(QFile::exists(QStringLiteral("/cell/tables/") + name + QStringLiteral(".tbl")));
}

void TableSave::name_that_a_shell_would_interpret()
{
    use_table("it's $(touch spoilt); a & b");
    const auto former = make_table(TABLE_INTERP, line_points(2));
    QCOMPARE(create_table(m_cfg->tbl_path, former.get()), 0);
    const QByteArray bytes = read_file(m_cfg->tbl_path);
    save_calibration(m_cfg.get(), SAVE_ADJUSTED);
    QCOMPARE(read_file(m_cfg->old_path), bytes);
    QVERIFY(read_file(m_cfg->tbl_path) != bytes);
    QVERIFY(!QFile::exists("spoilt"));
    QCOMPARE(QDir("/cell/tables").entryList(QDir::Files).size(), 4); // with flow.tbl
}

void TableSave::history_command_text_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QByteArray>("tbl", "old", "command");
    row("ordinary names stand as they are", "/cell/tables/Flow_1-a.tbl",
        "/cell/tables/Flow_1-a.old", "cat /cell/tables/Flow_1-a.tbl >> /cell/tables/Flow_1-a.old");
    row("a blank is quoted", "/t/a b.tbl", "/t/a b.old", "cat '/t/a b.tbl' >> '/t/a b.old'");
    row("each path by itself", "/t/a.tbl", "/t/a b.old", "cat /t/a.tbl >> '/t/a b.old'");
    row("a quote leaves the quotes", "/t/it's.tbl", "/t/o.old",
        "cat '/t/it'\\''s.tbl' >> /t/o.old");
    row("a variable", "/t/$HOME.tbl", "/t/o.old", "cat '/t/$HOME.tbl' >> /t/o.old");
    row("a command", "/t/`id`.tbl", "/t/o.old", "cat '/t/`id`.tbl' >> /t/o.old");
    row("a semicolon", "/t/a;b.tbl", "/t/o.old", "cat '/t/a;b.tbl' >> /t/o.old");
    row("a pattern", "/t/*.tbl", "/t/o.old", "cat '/t/*.tbl' >> /t/o.old");
    row("a home folder", "~/a.tbl", "/t/o.old", "cat '~/a.tbl' >> /t/o.old");
    row("a line feed", "/t/a\nb.tbl", "/t/o.old", "cat '/t/a\nb.tbl' >> /t/o.old");
    row("letters beyond ASCII", "/t/\xc3\xa4.tbl", "/t/o.old", "cat '/t/\xc3\xa4.tbl' >> /t/o.old");
}

void TableSave::history_command_text()
{
    QFETCH(QByteArray, tbl);
    QFETCH(QByteArray, old);
    QTEST(history_command(tbl, old), "command");
}

// Two paths of the record, 99 characters each, always fit.
void TableSave::longest_plain_command_is_cut()
{
    const QByteArray path(99, 'p');
    QCOMPARE(history_command(path, path), "cat " + path + " >> " + path);
    const QByteArray longer(200, 'p');
    QCOMPARE(history_command(longer, longer).size(), 299);
}

void TableSave::quoted_command_is_never_cut()
{
    const QByteArray path(99, '\'');
    const QByteArray quoted = "'" + QByteArray("'\\''").repeated(99) + "'";
    QCOMPARE(history_command(path, path), "cat " + quoted + " >> " + quoted);
}

void TableSave::reuse_saves_former_points_with_the_new_extent()
{
    set_coeffs(&m_cfg->table.poly[0], {1.0, 2.0});
    QCOMPARE(save_reused_calibration(m_cfg.get(), SAVE_REUSED), 0);
    const auto records = archive();
    QCOMPARE(records.size(), std::size_t{1});
    QCOMPARE(records[0].info.save_type, 8);
    for (const TABLE_RECORD &table : {records[0].table, m_cfg->table}) {
        QCOMPARE(table.poly[0].num_points, int16_t{2});
        QCOMPARE(table.poly[0].x[0], 10.0);
        QCOMPARE(table.poly[0].y[0], 21.0);
        QCOMPARE(table.poly[0].x[1], 20.0);
        QCOMPARE(table.poly[0].y[1], 41.0);
        QCOMPARE(table.poly[0].y[2], 20.0); // behind the former points
        QCOMPARE(table.poly[0].num_coeffs, int16_t{2});
        QCOMPARE(table.y_min, -7.5);
        QCOMPARE(table.y_max, 50.0);
        QCOMPARE(table.last_cal_time, int64_t{1234567});
    }
    QCOMPARE(m_cfg->table.last_save_type, uint16_t{SAVE_AS_FOUND});
    QCOMPARE(m_cfg->long_current.num_points, int16_t{3});
}

void TableSave::reuse_of_a_range_table_goes_into_range_0()
{
    m_cfg->table.table_type = TABLE_POLY_RANGE;
    m_cfg->table.poly_range_index = 4;
    set_points(&m_cfg->table.poly[4], line_points(3));
    save_reused_calibration(m_cfg.get(), SAVE_REUSED);
    QCOMPARE(m_cfg->table.poly[0].num_points, int16_t{2});
    QCOMPARE(m_cfg->table.poly[0].y[1], 41.0);
    QCOMPARE(m_cfg->table.poly[4].num_points, int16_t{3});
    QCOMPARE(m_cfg->table.poly[4].y[2], 61.0);
}

void TableSave::reuse_leaves_the_files_in_force_alone()
{
    save_reused_calibration(m_cfg.get(), SAVE_REUSED);
    QCOMPARE(read_file(TBL), m_former);
    QVERIFY(!QFile::exists(OLD));
    QCOMPARE(commands, QByteArrayList());
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
    QCOMPARE(m_cfg->unsaved_flag, uint16_t{0});
    QCOMPARE(information_texts(), QStringList());
}

void TableSave::reuse_of_a_type_that_cannot_be_archived()
{
    m_cfg->table.table_type = TABLE_SCALED;
    QCOMPARE(save_reused_calibration(m_cfg.get(), SAVE_REUSED), 0);
    QCOMPARE(information_texts(),
             QStringList("Unable to update the /cell/tables/flow.save file - due to an invalid "
                         "calibration table type"));
    QCOMPARE(m_cfg->table_dirty, uint16_t{0});
}

LOOP_TEST(TableSave);
#include "test_tablesave.moc"
