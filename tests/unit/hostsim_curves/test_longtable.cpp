// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "host/operations.h"
#include "support/testmain.h"

using Values = std::vector<double>;
Q_DECLARE_METATYPE(Values)

namespace
{

constexpr double STALE = -777.0;

LONG_TABLE long_table(const Values &x, const Values &y)
{
    LONG_TABLE table{};
    std::copy(x.begin(), x.end(), table.x);
    std::copy(y.begin(), y.end(), table.y);
    // What a capture leaves behind: reading must not make use of it.
    std::fill(table.slope, table.slope + TABLE_POINTS, STALE);
    std::fill(table.intercept, table.intercept + TABLE_POINTS, STALE);
    table.num_points = static_cast<int16_t>(x.size());
    return table;
}

void set_points(POLY_RANGE_RECORD &range, const Values &x, const Values &y)
{
    std::copy(x.begin(), x.end(), range.x);
    std::copy(y.begin(), y.end(), range.y);
    range.num_points = static_cast<int16_t>(x.size());
}

} // namespace

class LongTable : public QObject
{
    Q_OBJECT

private slots:
    void interpolation_data();
    void interpolation();
    void every_point_is_met_exactly();
    void the_hint_plays_no_part();
    void a_count_out_of_range_data();
    void a_count_out_of_range();
    void a_full_table();
    void range_in_work_data();
    void range_in_work();
    void segments();
    void a_single_point();
    void what_stays_as_it_was();
    void a_count_out_of_range_when_built_data();
    void a_count_out_of_range_when_built();
    void null_records();
};

void LongTable::interpolation_data()
{
    const auto row = test_columns<Values, Values, double, double>("x", "y", "at", "value");
    const double infinity = std::numeric_limits<double>::infinity();

    row("no points", Values{}, Values{}, 5.0, 0.0);
    row("no points, NaN", Values{}, Values{}, qQNaN(), 0.0);
    row("one point, at it", Values{5}, Values{8}, 5.0, 8.0);
    row("one point, elsewhere", Values{5}, Values{8}, -100.0, 8.0);
    row("one point, NaN", Values{5}, Values{8}, qQNaN(), 8.0);
    row("two points, between", Values{0, 100}, Values{0, 250}, 40.0, 100.0);
    row("two points, below", Values{0, 100}, Values{0, 250}, -4.0, -10.0);
    row("two points, above", Values{0, 100}, Values{0, 250}, 104.0, 260.0);
    row("two points, NaN", Values{0, 100}, Values{0, 250}, qQNaN(), qQNaN());
    row("minus zero", Values{0, 100}, Values{3, 250}, -0.0, 3.0);

    const Values rising = {0, 10, 20, 40}, y = {0, 5, 25, 35};
    row("rising, first segment", rising, y, 4.0, 2.0);
    row("rising, middle segment", rising, y, 15.0, 15.0);
    row("rising, last segment", rising, y, 30.0, 30.0);
    row("rising, at an inner point", rising, y, 20.0, 25.0);
    row("rising, below: the first segment goes on", rising, y, -2.0, -1.0);
    row("rising, above: the last segment goes on", rising, y, 60.0, 45.0);
    row("rising, at plus infinity", rising, y, infinity, infinity);
    row("rising, at minus infinity", rising, y, -infinity, -infinity);

    const Values falling = {40, 20, 10, 0}, z = {35, 25, 5, 0};
    row("falling, first segment", falling, z, 30.0, 30.0);
    row("falling, last segment", falling, z, 4.0, 2.0);
    row("falling, at an inner point", falling, z, 10.0, 5.0);
    row("falling, above: the first segment goes on", falling, z, 60.0, 45.0);
    row("falling, below: the last segment goes on", falling, z, -2.0, -1.0);
    row("falling, at plus infinity", falling, z, infinity, infinity);

    row("values fall while positions rise", Values{0, 1, 2}, Values{10, 6, 0}, 1.5, 3.0);
    row("level segment", Values{0, 1, 2}, Values{4, 4, 9}, 0.3, 4.0);
    row("level end, at infinity", Values{0, 1}, Values{4, 4}, infinity, 4.0);

    const Values turning = {0, 10, 5, 20}, w = {0, 10, 100, 400};
    row("up and down: the first segment that holds x", turning, w, 7.0, 7.0);
    row("up and down: held by the last alone", turning, w, 12.5, 250.0);
    row("up and down: beyond the last point", turning, w, 25.0, 500.0);
    row("up and down: before the first point", turning, w, -3.0, -3.0);
    row("the last point is inside: above, the larger end is nearer", Values{30, 40, 10},
        Values{0, 10, 70}, 50.0, 20.0);
    row("both ends at one place: the first segment", Values{0, 10, 0}, Values{0, 10, 90}, -1.0,
        -1.0);

    row("equal x, at them: the earlier y", Values{0, 5, 5, 10}, Values{0, 1, 2, 7}, 5.0, 1.0);
    row("equal x, just behind: the later segment", Values{0, 5, 5, 10}, Values{0, 1, 2, 7}, 6.0,
        3.0);
    row("equal x at the start, below", Values{5, 5, 10}, Values{1, 2, 7}, 4.0, 1.0);
    row("equal x at the end, above", Values{0, 5, 5}, Values{0, 1, 2}, 6.0, 1.0);
    row("all x equal", Values{5, 5, 5}, Values{1, 2, 3}, 9.0, 1.0);
    row("all x equal, at them", Values{5, 5, 5}, Values{1, 2, 3}, 5.0, 1.0);
    row("all points 0", Values{0, 0}, Values{0, 0}, 1.0, 0.0);

    row("huge numbers", Values{0, 1e200}, Values{0, 1e200}, 5e199, 5e199);
    row("tiny numbers", Values{0, 1e-200}, Values{0, 1e-200}, 5e-201, 5e-201);
}

void LongTable::interpolation()
{
    QFETCH(Values, x);
    QFETCH(Values, y);
    QFETCH(double, at);
    QFETCH(double, value);
    const LONG_TABLE table = long_table(x, y);
    for (const auto read : {linear_interp, linear_interp_long}) {
        uint16_t hint = 0;
        const double found = read(&hint, &table, 0, at);
        if (std::isnan(value))
            QVERIFY(std::isnan(found));
        else
            QVERIFY2(found == value, qPrintable(QString::number(found, 'g', 17)));
    }
}

void LongTable::every_point_is_met_exactly()
{
    Values x, y;
    for (int i = 0; i < TABLE_POINTS; ++i) {
        x.push_back(0.1 * i + 0.03 * std::sin(i));
        y.push_back(std::exp(0.37 * i) / 3.0);
    }
    const LONG_TABLE rising = long_table(x, y);
    const LONG_TABLE falling = long_table({x.rbegin(), x.rend()}, {y.rbegin(), y.rend()});
    for (std::size_t i = 0; i < x.size(); ++i) {
        uint16_t hint = 0;
        QVERIFY(linear_interp(&hint, &rising, 0, x[i]) == y[i]);
        QVERIFY(linear_interp(&hint, &falling, 0, x[i]) == y[i]);
    }
}

void LongTable::the_hint_plays_no_part()
{
    const LONG_TABLE table = long_table({0, 10, 5, 20, 20, 40}, {0, 10, 100, 400, 1, 2});
    for (double at = -5.0; at <= 50.0; at += 0.25) {
        const double expected = linear_interp(nullptr, &table, 0, at);
        for (const int start : {0, 1, 3, 5, 63, 64, 1000, 65535}) {
            auto hint = static_cast<uint16_t>(start);
            QVERIFY(linear_interp(&hint, &table, 0, at) == expected);
            QVERIFY(linear_interp_long(&hint, &table, 0, at) == expected);
        }
    }
}

void LongTable::a_count_out_of_range_data()
{
    const auto row = test_columns<int, double>("count", "value");
    row("below 0 is none", -1, 0.0);
    row("lowest", -32768, 0.0);
    row("above 64 is 64", 65, 126.0);
    row("highest", 32767, 126.0);
}

void LongTable::a_count_out_of_range()
{
    QFETCH(int, count);
    const auto table = std::make_unique<LONG_TABLE>();
    for (int i = 0; i < TABLE_POINTS; ++i) {
        table->x[i] = i;
        table->y[i] = 2 * i;
    }
    table->num_points = static_cast<int16_t>(count);
    uint16_t hint = 0;
    QTEST(linear_interp(&hint, table.get(), 0, 63.0), "value");
}

void LongTable::a_full_table()
{
    Values x, y;
    for (int i = 0; i < TABLE_POINTS; ++i) {
        x.push_back(i);
        y.push_back(i * i);
    }
    const LONG_TABLE table = long_table(x, y);
    uint16_t hint = 0;
    QCOMPARE(linear_interp(&hint, &table, 0, 62.5), (62.0 * 62.0 + 63.0 * 63.0) / 2);
    QCOMPARE(linear_interp(&hint, &table, 0, 64.0), 63.0 * 63.0 + 125.0);
}

void LongTable::range_in_work_data()
{
    const auto row = test_columns<int, int, int>("type", "index", "range");
    row("INTERP reads the first range", int(TABLE_INTERP), 3, 0);
    row("POLY reads the first range", int(TABLE_POLY), 3, 0);
    row("SCALED reads the first range", int(TABLE_SCALED), 3, 0);
    row("POLY_RANGE, range 0", int(TABLE_POLY_RANGE), 0, 0);
    row("POLY_RANGE, range 3", int(TABLE_POLY_RANGE), 3, 3);
    row("POLY_RANGE, last range", int(TABLE_POLY_RANGE), 7, 7);
    row("POLY_RANGE, index too high", int(TABLE_POLY_RANGE), 8, 7);
    row("POLY_RANGE, index below 0", int(TABLE_POLY_RANGE), -1, 0);
}

void LongTable::range_in_work()
{
    QFETCH(int, type);
    QFETCH(int, index);
    QFETCH(int, range);
    const auto record = std::make_unique<TABLE_RECORD>();
    for (int i = 0; i < POLY_RANGES; ++i)
        set_points(record->poly[i], {1.0 * i, i + 10.0}, {100.0 * i, 100.0 * i + 5});
    record->table_type = static_cast<uint16_t>(type);
    record->poly_range_index = static_cast<int16_t>(index);
    const auto table = std::make_unique<LONG_TABLE>();
    QCOMPARE(compute_long_table(record.get(), table.get()), 0);
    QCOMPARE(int(table->num_points), 2);
    QCOMPARE(table->x[0], 1.0 * range);
    QCOMPARE(table->x[1], range + 10.0);
    QCOMPARE(table->y[0], 100.0 * range);
    QCOMPARE(table->y[1], 100.0 * range + 5);
}

void LongTable::segments()
{
    const auto record = std::make_unique<TABLE_RECORD>();
    set_points(record->poly[0], {0, 10, 10, 20}, {1, 21, 30, 25});
    const auto table = std::make_unique<LONG_TABLE>();
    QCOMPARE(compute_long_table(record.get(), table.get()), 0);
    const double slope[] = {2, 0, -0.5, -0.5, 0};
    const double intercept[] = {1, 21, 35, 35, 0};
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(table->slope[i], slope[i]);
        QCOMPARE(table->intercept[i], intercept[i]);
    }
}

void LongTable::a_single_point()
{
    const auto record = std::make_unique<TABLE_RECORD>();
    set_points(record->poly[0], {4}, {9});
    const auto table = std::make_unique<LONG_TABLE>();
    QCOMPARE(compute_long_table(record.get(), table.get()), 0);
    QCOMPARE(table->slope[0], 0.0);
    QCOMPARE(table->intercept[0], 9.0);
}

// Slots of x and y behind the points hold points that are offered and not yet
// captured; reserved bytes and flags are the host's.
void LongTable::what_stays_as_it_was()
{
    const auto record = std::make_unique<TABLE_RECORD>();
    set_points(record->poly[0], {1, 2, 3}, {4, 5, 6});
    const auto table = std::make_unique<LONG_TABLE>();
    std::memset(static_cast<void *>(table.get()), 0x41, sizeof(LONG_TABLE));
    const LONG_TABLE before = *table;
    QCOMPARE(compute_long_table(record.get(), table.get()), 0);
    QCOMPARE(int(table->num_points), 3);
    QCOMPARE(int(table->flags), int(before.flags));
    const auto same = [](const auto &a, const auto &b) { return !std::memcmp(a, b, sizeof a); };
    QVERIFY(same(table->reserved_1536, before.reserved_1536));
    QVERIFY(same(table->reserved_2562, before.reserved_2562));
    QVERIFY(same(table->reserved_7184, before.reserved_7184));
    for (int i = 3; i < TABLE_POINTS; ++i) {
        QCOMPARE(table->x[i], before.x[i]);
        QCOMPARE(table->y[i], before.y[i]);
        QCOMPARE(table->slope[i], 0.0);
        QCOMPARE(table->intercept[i], 0.0);
    }
}

void LongTable::a_count_out_of_range_when_built_data()
{
    const auto row = test_columns<int, int>("given", "taken");
    row("none", 0, 0);
    row("below 0", -1, 0);
    row("lowest", -32768, 0);
    row("full", 64, 64);
    row("above 64", 65, 64);
    row("highest", 32767, 64);
}

void LongTable::a_count_out_of_range_when_built()
{
    QFETCH(int, given);
    QFETCH(int, taken);
    const auto record = std::make_unique<TABLE_RECORD>();
    for (int i = 0; i < TABLE_POINTS; ++i)
        record->poly[0].x[i] = record->poly[0].y[i] = i + 1;
    record->poly[0].num_points = static_cast<int16_t>(given);
    const auto table = std::make_unique<LONG_TABLE>();
    QCOMPARE(compute_long_table(record.get(), table.get()), 0);
    QCOMPARE(int(table->num_points), taken);
    QCOMPARE(table->x[63], taken == 64 ? 64.0 : 0.0);
    QCOMPARE(table->slope[63], taken == 64 ? 1.0 : 0.0);
}

void LongTable::null_records()
{
    const auto record = std::make_unique<TABLE_RECORD>();
    const auto table = std::make_unique<LONG_TABLE>();
    QCOMPARE(compute_long_table(nullptr, table.get()), -1);
    QCOMPARE(compute_long_table(record.get(), nullptr), -1);
    QCOMPARE(linear_interp(nullptr, nullptr, 0, 1.0), 0.0);
}

PLAIN_TEST(LongTable);
#include "test_longtable.moc"
