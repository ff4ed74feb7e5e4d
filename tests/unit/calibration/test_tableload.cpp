// SPDX-License-Identifier: GPL-3.0-or-later
//
// From a table file to the long table, type by type.
#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <memory>

#include <QtTest>

#include "calibration/tableload.h"
#include "host/operations.h"
#include "support/cellfiles.h"
#include "support/recorder.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

constexpr char TBL[] = "/cell/tables/flow.tbl";
constexpr char SAVE[] = "/cell/tables/flow.save";

const char *const SCALED_TEXT = "Table will be converted to an INTERP table on save.\n"
                                "The newly read table is a SCALED table type";

bool record_was_zero = false; // when it was last handed to the host

} // namespace

// Stands before the runtime's own and looks at the record that is to be filled.
extern "C" int32_t read_table(const char *path, TABLE_RECORD *table)
{
    static const auto real =
        reinterpret_cast<decltype(&read_table)>(dlsym(RTLD_NEXT, "read_table"));
    const auto *bytes = reinterpret_cast<const unsigned char *>(table);
    record_was_zero =
        std::all_of(bytes, bytes + sizeof *table, [](unsigned char byte) { return byte == 0; });
    return real(path, table);
}

class TableLoad : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void record_is_zeroed_before_the_read();
    void scaled_table_becomes_interp();
    void scaled_record_data();
    void scaled_record();
    void interp_table_is_sorted_and_computed();
    void interp_coefficients_are_a_straight_line();
    void more_than_18_points_data();
    void more_than_18_points();
    void line_coefficients_run_into_the_points_data();
    void line_coefficients_run_into_the_points();
    void interp_table_without_points();
    void stored_polynomial_is_not_fitted_again();
    void poly_without_coefficients_gets_a_line_data();
    void poly_without_coefficients_gets_a_line();
    void poly_of_20_points_without_coefficients();
    void lowest_range_in_use_is_selected_data();
    void lowest_range_in_use_is_selected();
    void points_of_a_range_are_not_sorted();
    void ranges_none_in_use();
    void type_that_is_not_known();
    void failed_read_computes_nothing();

private:
    // Loads that table from its file; false when the read failed.
    bool load(const TABLE_RECORD &table);

    std::unique_ptr<ZERL_CFG> m_cfg;
};

void TableLoad::init()
{
    clear_cell();
    clear_recorded();
    m_cfg = std::make_unique<ZERL_CFG>();
    qstrncpy(m_cfg->tbl_path, TBL, sizeof m_cfg->tbl_path);
}

bool TableLoad::load(const TABLE_RECORD &table)
{
    return create_table(TBL, &table) == 0 && (load_channel_table(m_cfg.get()) & 0xffff) != 65535;
}

void TableLoad::record_is_zeroed_before_the_read()
{
    std::memset(&m_cfg->table, 0x21, sizeof m_cfg->table);
    QVERIFY(load(*make_table(TABLE_INTERP, line_points(3))));
    QVERIFY(record_was_zero);
}

// No table is SCALED any longer once it is loaded.
void TableLoad::scaled_table_becomes_interp()
{
    const auto table = make_table(TABLE_SCALED);
    table->poly[0].x[0] = 2.5;
    QVERIFY(load(*table));
    QCOMPARE(information_texts(), QStringList(SCALED_TEXT)); // once
    QCOMPARE(m_cfg->table.table_type, uint16_t{TABLE_INTERP});
    QCOMPARE(m_cfg->long_current.num_points, int16_t{2});
    QCOMPARE(m_cfg->long_current.x[0], 0.0);
    QCOMPARE(m_cfg->long_current.y[0], 0.0);
    QCOMPARE(m_cfg->long_current.x[1], 100.0);
    QCOMPARE(m_cfg->long_current.y[1], 250.0);
    QCOMPARE(m_cfg->table.poly[0].num_coeffs, int16_t{0});
}

void TableLoad::scaled_record_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("factor 2.5") << 2.5;
    QTest::newRow("factor 0") << 0.0;
    QTest::newRow("negative factor") << -0.125;
}

void TableLoad::scaled_record()
{
    QFETCH(double, scale);
    const auto table = make_table(TABLE_SCALED, line_points(5));
    table->poly[0].x[0] = scale;
    convert_scaled_table(table.get());
    QCOMPARE(table->table_type, uint16_t{TABLE_INTERP});
    const POLY_RANGE_RECORD &range = table->poly[0];
    QCOMPARE(range.num_points, int16_t{2});
    QCOMPARE(range.x[0], 0.0);
    QCOMPARE(range.y[0], 0.0);
    QCOMPARE(range.x[1], 100.0);
    QCOMPARE(range.y[1], scale * 100.0);
    QCOMPARE(range.x[2], 30.0);
}

void TableLoad::interp_table_is_sorted_and_computed()
{
    QVERIFY(load(*make_table(TABLE_INTERP, {{30.0, 1.0}, {10.0, 3.0}, {20.0, 2.0}})));
    const double x[] = {10.0, 20.0, 30.0};
    const double y[] = {3.0, 2.0, 1.0};
    QCOMPARE(m_cfg->long_current.num_points, int16_t{3});
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_cfg->table.poly[0].x[i], x[i]);
        QCOMPARE(m_cfg->table.poly[0].y[i], y[i]);
        QCOMPARE(m_cfg->long_current.x[i], x[i]);
        QCOMPARE(m_cfg->long_current.y[i], y[i]);
    }
    QCOMPARE(information_texts(), QStringList());
}

void TableLoad::interp_coefficients_are_a_straight_line()
{
    const auto table = make_table(TABLE_INTERP, line_points(5));
    // A bend that leaves the best straight line as it is.
    const double bend[] = {2.0, -1.0, -2.0, -1.0, 2.0};
    for (int i = 0; i < 5; ++i)
        table->poly[0].y[i] += bend[i];
    set_coeffs(&table->poly[0], {9.0, 9.0, 9.0, 9.0, 9.0, 9.0});
    QVERIFY(load(*table));
    const POLY_RANGE_RECORD &range = m_cfg->table.poly[0];
    QCOMPARE(range.num_coeffs, int16_t{5}); // as many as points
    QCOMPARE(range.coeffs[0], 1.0);
    QCOMPARE(range.coeffs[1], 2.0);
    for (int i = 2; i < 5; ++i)
        QCOMPARE(range.coeffs[i], 0.0);
    QCOMPARE(range.coeffs[5], 9.0);
}

void TableLoad::more_than_18_points_data()
{
    const auto row = test_columns<int, int>("points", "zeroed");
    row("18 points keep all their x values", 18, 0);
    row("19 points: the first x value is zero", 19, 1);
    row("20 points: the first two x values are zero", 20, 2);
    row("64 points: the first 46 x values are zero", 64, 46);
}

// The overrun comes before the sort, and all x values here are positive: the
// zeros stay in front, and every y value stays in the table.
void TableLoad::more_than_18_points()
{
    QFETCH(int, points);
    QFETCH(int, zeroed);
    QVERIFY(load(*make_table(TABLE_INTERP, line_points(points))));
    const POLY_RANGE_RECORD &range = m_cfg->table.poly[0];
    QCOMPARE(int{range.num_coeffs}, points);
    QCOMPARE(int{m_cfg->long_current.num_points}, points);
    for (int i = 0; i < points; ++i) {
        QCOMPARE(range.x[i], i < zeroed ? 0.0 : 10.0 * (i + 1));
        QCOMPARE(m_cfg->long_current.x[i], range.x[i]);
        if (i >= zeroed)
            QCOMPARE(range.y[i], 20.0 * (i + 1) + 1.0);
    }
    QVector<double> y(points);
    std::copy_n(range.y, points, y.begin());
    std::sort(y.begin(), y.end());
    for (int i = 0; i < points; ++i)
        QCOMPARE(y[i], 20.0 * (i + 1) + 1.0);
    QCOMPARE(range.coeffs[1], 2.0);
}

void TableLoad::line_coefficients_run_into_the_points_data()
{
    const auto row = test_columns<int, int>("n", "copied");
    row("none", 0, 0);
    row("2", 2, 2);
    row("18 fill the coefficients", 18, 18);
    row("19 reach the first x", 19, 19);
    row("64 reach the 46th x", 64, 64);
    row("more than the buffer holds", 65, 64);
    row("negative", -1, 0);
}

void TableLoad::line_coefficients_run_into_the_points()
{
    QFETCH(int, n);
    QFETCH(int, copied);
    POLY_RANGE_RECORD range = {};
    set_points(&range, line_points(64));
    double buffer[MAX_POINTS];
    for (int i = 0; i < MAX_POINTS; ++i)
        buffer[i] = 1000.0 + i;
    store_line_coefficients(&range, buffer, n);
    for (int i = 0; i < POLY_COEFFS; ++i)
        QCOMPARE(range.coeffs[i], i < copied ? 1000.0 + i : 0.0);
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(range.x[i], i + 18 < copied ? 1018.0 + i : 10.0 * (i + 1));
        QCOMPARE(range.y[i], 20.0 * (i + 1) + 1.0);
    }
    QCOMPARE(range.num_points, int16_t{64});
    QCOMPARE(range.num_coeffs, int16_t{0});
}

void TableLoad::interp_table_without_points()
{
    m_cfg->long_current.num_points = 7;
    QVERIFY(load(*make_table(TABLE_INTERP)));
    QCOMPARE(m_cfg->table.poly[0].num_coeffs, int16_t{0});
    QCOMPARE(m_cfg->long_current.num_points, int16_t{0});
}

void TableLoad::stored_polynomial_is_not_fitted_again()
{
    const auto table = make_table(TABLE_POLY, {{30.0, 1.0}, {10.0, 3.0}, {20.0, 2.0}});
    const std::vector<double> stored = {0.1, -1.0 / 3.0, 1e-9};
    set_coeffs(&table->poly[0], stored);
    QVERIFY(load(*table));
    QCOMPARE(m_cfg->table.poly[0].num_coeffs, int16_t{3});
    for (std::size_t i = 0; i < stored.size(); ++i)
        QVERIFY(m_cfg->table.poly[0].coeffs[i] == stored[i]);
    QCOMPARE(m_cfg->table.poly[0].x[0], 10.0); // sorted
    QCOMPARE(m_cfg->long_current.x[2], 30.0);
    QCOMPARE(m_cfg->long_current.y[2], 1.0);
}

void TableLoad::poly_without_coefficients_gets_a_line_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("into range 0") << 0;
    QTest::newRow("into the range of the index, from the points of range 0") << 2;
}

void TableLoad::poly_without_coefficients_gets_a_line()
{
    QFETCH(int, index);
    const auto table = make_table(TABLE_POLY, line_points(5));
    table->poly_range_index = static_cast<int16_t>(index);
    QVERIFY(load(*table));
    for (int r = 0; r < POLY_RANGES; ++r) {
        const POLY_RANGE_RECORD &range = m_cfg->table.poly[r];
        QCOMPARE(int{range.num_coeffs}, r == index ? 5 : 0);
        QCOMPARE(range.coeffs[0], r == index ? 1.0 : 0.0);
        QCOMPARE(range.coeffs[1], r == index ? 2.0 : 0.0);
        QCOMPARE(range.coeffs[2], 0.0);
    }
    QCOMPARE(m_cfg->long_current.num_points, int16_t{5});
    QCOMPARE(m_cfg->long_current.x[4], 50.0);
}

void TableLoad::poly_of_20_points_without_coefficients()
{
    QVERIFY(load(*make_table(TABLE_POLY, line_points(20))));
    QCOMPARE(m_cfg->table.poly[0].num_coeffs, int16_t{20});
    QCOMPARE(m_cfg->table.poly[0].x[0], 0.0);
    QCOMPARE(m_cfg->table.poly[0].x[1], 0.0);
    QCOMPARE(m_cfg->table.poly[0].x[2], 30.0);
}

void TableLoad::lowest_range_in_use_is_selected_data()
{
    const auto row = test_columns<QList<int>, int, int>("in_use", "stored_index", "selected");
    row("ranges 2 and 5: range 2", QList<int>{2, 5}, 0, 2);
    row("whatever the file's index", QList<int>{2, 5}, 5, 2);
    row("the last range alone", QList<int>{7}, 0, 7);
    row("all of them", QList<int>{0, 1, 2, 3, 4, 5, 6, 7}, 3, 0);
}

void TableLoad::lowest_range_in_use_is_selected()
{
    QFETCH(QList<int>, in_use);
    QFETCH(int, stored_index);
    QFETCH(int, selected);
    const auto table = make_table(TABLE_POLY_RANGE);
    table->poly_range_index = static_cast<int16_t>(stored_index);
    for (const int r : in_use) {
        set_points(&table->poly[r], line_points(3 + r));
        set_coeffs(&table->poly[r], {1.0, 2.0});
    }
    QVERIFY(load(*table));
    QCOMPARE(int{m_cfg->table.poly_range_index}, selected);
    QCOMPARE(int{m_cfg->long_current.num_points}, 3 + selected);
    QCOMPARE(m_cfg->long_current.x[0], 10.0);
    QCOMPARE(m_cfg->long_current.y[2], 61.0);
}

void TableLoad::points_of_a_range_are_not_sorted()
{
    const auto table = make_table(TABLE_POLY_RANGE);
    set_points(&table->poly[1], {{30.0, 1.0}, {10.0, 3.0}, {20.0, 2.0}});
    set_coeffs(&table->poly[1], {1.0, 2.0});
    QVERIFY(load(*table));
    const double x[] = {30.0, 10.0, 20.0};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_cfg->table.poly[1].x[i], x[i]);
        QCOMPARE(m_cfg->long_current.x[i], x[i]);
    }
    QCOMPARE(m_cfg->table.poly[1].num_coeffs, int16_t{2});
}

void TableLoad::ranges_none_in_use()
{
    const auto table = make_table(TABLE_POLY_RANGE, line_points(4));
    table->poly_range_index = 3;
    std::memset(&m_cfg->long_current, 0x21, sizeof m_cfg->long_current);
    const LONG_TABLE before = m_cfg->long_current;
    QVERIFY(load(*table));
    QCOMPARE(m_cfg->table.poly_range_index, int16_t{3});
    QVERIFY(std::memcmp(&m_cfg->long_current, &before, sizeof before) == 0);
    QCOMPARE(m_cfg->table.poly[0].num_points, int16_t{4});
}

// An archive record may leave its type open, and there is no table file to tell.
void TableLoad::type_that_is_not_known()
{
    const auto table = make_table(TABLE_TYPE_UNKNOWN, {{30.0, 1.0}, {10.0, 3.0}});
    write_file(SAVE, archive_block(*table, SAVE_ADJUSTED));
    std::memset(&m_cfg->long_current, 0x21, sizeof m_cfg->long_current);
    const LONG_TABLE before = m_cfg->long_current;
    QCOMPARE(load_channel_table(m_cfg.get()), 0);
    QCOMPARE(m_cfg->table.table_type, uint16_t{65535});
    QCOMPARE(m_cfg->table.poly[0].x[0], 30.0);
    QVERIFY(std::memcmp(&m_cfg->long_current, &before, sizeof before) == 0);
}

void TableLoad::failed_read_computes_nothing()
{
    std::memset(&m_cfg->table, 0x21, sizeof m_cfg->table);
    std::memset(&m_cfg->long_current, 0x21, sizeof m_cfg->long_current);
    const LONG_TABLE before = m_cfg->long_current;
    const TABLE_RECORD zero = {};
    QCOMPARE(load_channel_table(m_cfg.get()) & 0xffff, 65535);
    QVERIFY(std::memcmp(&m_cfg->table, &zero, sizeof zero) == 0);
    QVERIFY(std::memcmp(&m_cfg->long_current, &before, sizeof before) == 0);
    QCOMPARE(information_texts(), QStringList());
}

LOOP_TEST(TableLoad);
#include "test_tableload.moc"
