// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reading a channel's table: the archive against the table file.
#include <cstring>
#include <memory>

#include <QtTest>

#include "calibration/tablestore.h"
#include "host/operations.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/recorder.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

constexpr char TBL[] = "/cell/tables/flow.tbl";
constexpr char SAVE[] = "/cell/tables/flow.save";

const char *const OTHER_COUNT = "/cell/tables/flow.tbl pts diff from /cell/tables/flow.save "
                                "ADJUST cal";
const char *const OTHER_COUNT_LOGGED = "</cell/tables/flow.tbl> data does not agree with "
                                       "</cell/tables/flow.save> data\n not the same number of "
                                       "points";

Points points_of(int count, double offset)
{
    Points points = line_points(count);
    for (auto &point : points)
        point.second += offset;
    return points;
}

} // namespace

class TableRead : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void table_file_alone_data();
    void table_file_alone();
    void archive_wins_but_for_two_texts();
    void newest_record_in_force_is_taken();
    void archive_alone();
    void damaged_table_file_beside_an_archive();
    void open_type_comes_from_the_table_file();
    void open_type_without_a_table_file();
    void neither_file();
    void damaged_files_data();
    void damaged_files();
    void extension_of_the_path_plays_no_part();
    void longest_path();
    void files_of_one_channel_data();
    void files_of_one_channel();
    void comparison_data();
    void comparison();
    void prepared_text_has_119_characters();
    void odd_counts_are_not_followed();

private:
    int32_t read(const char *path = TBL)
    {
        return read_channel_table(path, m_table.get()) & 0xffff;
    }

    std::unique_ptr<TABLE_RECORD> m_table;
};

void TableRead::init()
{
    clear_cell();
    clear_recorded();
    m_table = std::make_unique<TABLE_RECORD>();
}

void TableRead::table_file_alone_data()
{
    QTest::addColumn<bool>("archive_exists");
    QTest::newRow("archive missing") << false;
    QTest::newRow("archive empty") << true;
}

// Read directly, and nothing is compared.
void TableRead::table_file_alone()
{
    QFETCH(bool, archive_exists);
    const auto table = make_table(TABLE_INTERP, line_points(3));
    QCOMPARE(create_table(TBL, table.get()), 0);
    if (archive_exists)
        write_file(SAVE, QByteArray());
    const HostLog log;
    QVERIFY(read() != 65535);
    QVERIFY(std::memcmp(m_table.get(), table.get(), sizeof *table) == 0);
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(log.texts(), QStringList());
}

void TableRead::archive_wins_but_for_two_texts()
{
    const auto archived = make_table(TABLE_INTERP, points_of(3, 5.0));
    qstrncpy(archived->description, "of the archive", sizeof archived->description);
    qstrncpy(archived->mua_instance_name, "of the archive", sizeof archived->mua_instance_name);
    qstrncpy(archived->eng_units, "PSI", sizeof archived->eng_units);
    archived->reserved_9472[5] = 0x77;
    archived->last_cal_time = 1700000000;
    const auto in_force = make_table(TABLE_INTERP, line_points(3));
    qstrncpy(in_force->description, "of the table file", sizeof in_force->description);
    qstrncpy(in_force->mua_instance_name, "NONE", sizeof in_force->mua_instance_name);
    QCOMPARE(save_table_files_poly(SAVE, archived.get(), SAVE_ADJUSTED), 0);
    QCOMPARE(create_table(TBL, in_force.get()), 0);
    const HostLog log;
    QCOMPARE(read(), 0);
    const auto expected = std::make_unique<TABLE_RECORD>(*archived);
    expected->last_save_type = SAVE_ADJUSTED;
    std::memcpy(expected->description, in_force->description, sizeof expected->description);
    std::memcpy(expected->mua_instance_name, in_force->mua_instance_name,
                sizeof expected->mua_instance_name);
    QVERIFY(std::memcmp(m_table.get(), expected.get(), sizeof *expected) == 0);
    QVERIFY2(information_texts().isEmpty(), "the same number of points, other values: no message");
    QCOMPARE(log.texts(), QStringList());
}

void TableRead::newest_record_in_force_is_taken()
{
    for (const int save_type : {7, 3, 9, 6}) {
        const auto archived = make_table(TABLE_INTERP, points_of(3, save_type));
        QCOMPARE(save_table_files_poly(SAVE, archived.get(), save_type), 0);
    }
    QCOMPARE(read(), 0);
    QCOMPARE(m_table->poly[0].y[0], 21.0 + 9.0);
    QCOMPARE(m_table->last_save_type, uint16_t{9});
}

void TableRead::archive_alone()
{
    const auto archived = make_table(TABLE_POLY, line_points(3));
    qstrncpy(archived->mua_instance_name, "of the archive", sizeof archived->mua_instance_name);
    QCOMPARE(save_table_files_poly(SAVE, archived.get(), SAVE_ADJUSTED), 0);
    QCOMPARE(read(), 0);
    QCOMPARE(m_table->table_type, uint16_t{TABLE_POLY});
    QCOMPARE(QByteArray(m_table->description), QByteArray("Flow meter"));
    QCOMPARE(QByteArray(m_table->mua_instance_name), QByteArray("of the archive"));
    QCOMPARE(information_texts(), QStringList());
}

void TableRead::damaged_table_file_beside_an_archive()
{
    const auto archived = make_table(TABLE_INTERP, line_points(3));
    QCOMPARE(save_table_files_poly(SAVE, archived.get(), SAVE_ADJUSTED), 0);
    write_file(TBL, "VORNAX-TABLE 1\nnonsense\n");
    const HostLog log;
    QCOMPARE(read(), 0);
    QCOMPARE(QByteArray(m_table->description), QByteArray("Flow meter"));
    QCOMPARE(m_table->poly[0].num_points, int16_t{3});
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(log.count_containing(TBL), 1);
}

void TableRead::open_type_comes_from_the_table_file()
{
    write_file(SAVE,
               archive_block(*make_table(TABLE_TYPE_UNKNOWN, points_of(3, 5.0)), SAVE_ADJUSTED));
    QCOMPARE(create_table(TBL, make_table(TABLE_POLY, line_points(4)).get()), 0);
    QCOMPARE(read(), 0);
    QCOMPARE(m_table->table_type, uint16_t{TABLE_POLY});
    QCOMPARE(m_table->poly[0].num_points, int16_t{3});
    QCOMPARE(m_table->poly[0].y[0], 26.0);
    QVERIFY2(information_texts().isEmpty(), "the type is taken before the two are compared");
}

void TableRead::open_type_without_a_table_file()
{
    write_file(SAVE, archive_block(*make_table(TABLE_TYPE_UNKNOWN, line_points(3)), SAVE_ADJUSTED));
    QCOMPARE(read(), 0);
    QCOMPARE(m_table->table_type, uint16_t{65535});
}

void TableRead::neither_file()
{
    const TABLE_RECORD zero = {};
    std::memset(m_table.get(), 0x21, sizeof *m_table);
    QCOMPARE(read(), 65535);
    QVERIFY(std::memcmp(m_table.get(), &zero, sizeof zero) == 0);
    QVERIFY2(information_texts().isEmpty(), "no message here");
}

void TableRead::damaged_files_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray whole = archive_block(*make_table(TABLE_INTERP, line_points(3)), 7);
    QTest::newRow("foreign") << QByteArray("\x7f"
                                           "ELF and more\n");
    QTest::newRow("cut short") << whole.left(whole.size() / 2);
    QTest::newRow("one digit changed") << QByteArray(whole).replace("21", "22");
    QTest::newRow("a line feed") << QByteArray("\n");
}

// Neither the archive nor the table file yields a record.
void TableRead::damaged_files()
{
    QFETCH(QByteArray, bytes);
    write_file(TBL, bytes);
    write_file(SAVE, bytes);
    const TABLE_RECORD zero = {};
    const HostLog log;
    QCOMPARE(read(), 65535);
    QVERIFY(std::memcmp(m_table.get(), &zero, sizeof zero) == 0);
    QVERIFY(log.count_containing(TBL) >= 1);
    QCOMPARE(information_texts(), QStringList());
    QCOMPARE(read_file(TBL), bytes);
    QCOMPARE(read_file(SAVE), bytes);
}

void TableRead::extension_of_the_path_plays_no_part()
{
    const auto table = make_table(TABLE_INTERP, line_points(3));
    QCOMPARE(create_table("/cell/tables/two.parts.tbl", table.get()), 0);
    QVERIFY(read("/cell/tables/two.parts.save") != 65535);
    QCOMPARE(m_table->poly[0].num_points, int16_t{3});
    const auto archived = make_table(TABLE_INTERP, line_points(4));
    QCOMPARE(save_table_files_poly("/cell/tables/two.parts.save", archived.get(), 7), 0);
    QCOMPARE(read("/cell/tables/two.parts.old"), 0);
    QCOMPARE(m_table->poly[0].num_points, int16_t{4});
}

// Each name has room for 352 characters with its terminator; a longer one is cut
// and finds no file, and nothing is read or written past the room.
void TableRead::longest_path()
{
    const QByteArray folder = "/cell/tables/" + QByteArray(170, 'f') + "/" + QByteArray(160, 'g');
    QByteArray path = folder + "/";
    path += QByteArray(351 - path.size() - 5, 'n'); // leaves room for ".save"
    write_file(QString::fromLatin1(path + ".tbl"), "");
    QCOMPARE(create_table(path + ".tbl", make_table(TABLE_INTERP, line_points(3)).get()), 0);
    QVERIFY(read(path + ".tbl") != 65535);
    QCOMPARE(m_table->poly[0].num_points, int16_t{3});
    QCOMPARE(read("/cell/" + QByteArray(3000, 'n') + ".tbl"), 65535);
}

void TableRead::files_of_one_channel_data()
{
    const auto row = test_columns<int, int, int, QStringList, int>("type", "archived_count",
                                                                   "count", "messages", "logged");
    const QStringList none;
    row("INTERP, the same number of points, other values", 0, 3, 3, none, 0);
    row("INTERP, more points in the archive", 0, 5, 3, QStringList(OTHER_COUNT), 1);
    row("INTERP, fewer points in the archive", 0, 2, 3, QStringList(OTHER_COUNT), 1);
    row("POLY, the same number of coefficients", 1, 3, 3, none, 0);
    row("POLY, another number of coefficients", 1, 4, 3,
        QStringList("/cell/tables/flow.tbl num coeff of polynomial differ from "
                    "/cell/tables/flow.save"),
        0);
    row("POLY_RANGE, another number of coefficients", 7, 4, 3, none, 0);
}

// Points for INTERP, coefficients for the others.
void TableRead::files_of_one_channel()
{
    QFETCH(int, type);
    QFETCH(int, archived_count);
    QFETCH(int, count);
    QFETCH(int, logged);
    const auto with_count = [type](int number, double offset) {
        auto table = make_table(type, points_of(type == 0 ? number : 2, offset));
        table->poly[0].num_coeffs = static_cast<int16_t>(type == 0 ? 2 : number);
        return table;
    };
    QCOMPARE(save_table_files_poly(SAVE, with_count(archived_count, 5.0).get(), 7), 0);
    QCOMPARE(create_table(TBL, with_count(count, 0.0).get()), 0);
    const HostLog log;
    QCOMPARE(read(), 0);
    QTEST(information_texts(), "messages");
    QCOMPARE(log.entries().size(), logged);
    if (logged > 0) {
        QCOMPARE(log.entries().first().text, QString(OTHER_COUNT_LOGGED));
        QCOMPARE(log.entries().first().severity, 1);
        QCOMPARE(log.entries().first().source, QString("tablestore.cpp"));
    }
    QCOMPARE(m_table->poly[0].y[0], 26.0); // the archive's data stay in use
    QCOMPARE(int{type == 0 ? m_table->poly[0].num_points : m_table->poly[0].num_coeffs},
             archived_count);
}

void TableRead::comparison_data()
{
    // archived_coeffs: the table file has 3 and 2
    const auto row = test_columns<int, int, int, int, double, QStringList, QStringList>(
        "archived_type", "type", "archived_points", "archived_coeffs", "difference", "messages",
        "logged");
    const QStringList none;
    const QStringList points("T pts diff from S ADJUST cal");
    const QStringList points_log("<T> data does not agree with <S> data\n not the same number of "
                                 "points");
    const QStringList type("<T> table type differs from <S> ");
    const QStringList coeffs("T num coeff of polynomial differ from S");
    row("the same", 0, 0, 3, 2, 0.0, none, none);
    row("types differ, nothing further is compared", 0, 1, 9, 9, 5.0, type, none);
    row("types differ the other way", 1, 0, 9, 9, 5.0, type, none);
    row("type open in the archive alone", 65535, 0, 3, 2, 0.0, type, none);
    row("INTERP: other number of points", 0, 0, 4, 2, 0.0, points, points_log);
    row("INTERP: values far above stay silent", 0, 0, 3, 2, 1e6, none, none);
    row("INTERP: values far below stay silent", 0, 0, 3, 2, -1e6, none, none);
    row("INTERP: values apart by the bound", 0, 0, 3, 2, 1e-7, none, none);
    row("INTERP: values not numbers", 0, 0, 3, 2, qQNaN(), none, none);
    row("INTERP: coefficients are not compared", 0, 0, 3, 9, 0.0, none, none);
    row("POLY: other number of coefficients", 1, 1, 3, 4, 0.0, coeffs, none);
    row("POLY: points are not compared", 1, 1, 9, 2, 5.0, none, none);
    row("SCALED: nothing is compared", 2, 2, 9, 9, 5.0, none, none);
    row("POLY_RANGE: nothing is compared", 7, 7, 9, 9, 5.0, none, none);
}

void TableRead::comparison()
{
    QFETCH(int, archived_type);
    QFETCH(int, type);
    QFETCH(int, archived_points);
    QFETCH(int, archived_coeffs);
    QFETCH(double, difference);
    auto archived = make_table(archived_type, points_of(3, difference));
    archived->poly[0].x[1] += difference;
    archived->poly[0].num_points = static_cast<int16_t>(archived_points);
    archived->poly[0].num_coeffs = static_cast<int16_t>(archived_coeffs);
    auto from_tbl = make_table(type, line_points(3));
    from_tbl->poly[0].num_coeffs = 2;
    const TABLE_RECORD before = *archived;
    const HostLog log;
    check_table_against_archive(archived.get(), from_tbl.get(), "T", "S");
    QTEST(information_texts(), "messages");
    QTEST(log.texts(), "logged");
    QVERIFY(std::memcmp(archived.get(), &before, sizeof before) == 0);
}

// The box cuts it; the log has both names whole.
void TableRead::prepared_text_has_119_characters()
{
    const QByteArray tbl(70, 't');
    const QByteArray save(70, 's');
    const HostLog log;
    check_table_against_archive(make_table(TABLE_INTERP, line_points(2)).get(),
                                make_table(TABLE_INTERP, line_points(3)).get(), tbl, save);
    const QByteArray whole = tbl + " pts diff from " + save + " ADJUST cal";
    QCOMPARE(information_texts(), QStringList(QString::fromLatin1(whole.left(119))));
    QCOMPARE(log.count_containing(QString::fromLatin1("<" + save + "> data")), 1);
}

void TableRead::odd_counts_are_not_followed()
{
    for (const int16_t count : {int16_t{32767}, int16_t{-1}}) {
        auto table = make_table(TABLE_INTERP, line_points(3));
        table->poly[0].num_points = count;
        check_table_against_archive(table.get(), table.get(), "T", "S");
    }
    QCOMPARE(information_texts(), QStringList());
}

LOOP_TEST(TableRead);
#include "test_tableread.moc"
