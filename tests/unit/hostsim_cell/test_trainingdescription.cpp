// SPDX-License-Identifier: GPL-3.0-or-later
//
// The training cell that ships has a channel for each thing that the tool can
// meet, and each channel is what it says.
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/operations.h"
#include "hostsim/cell/celldescription.h"
#include "support/cellfiles.h"
#include "support/testmain.h"

using namespace cell;

class TrainingDescription : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void has_what_the_tool_can_meet();
    void tables_fit_their_sensors_data();
    void tables_fit_their_sensors();
    void sensor_ranges();
    void load_cell_is_the_certified_one();
    void first_channel_is_the_straight_road();

private:
    const ChannelDescription &channel(int n) { return m_cell.channels.at(n); }
    int count(const std::function<bool(const ChannelDescription &)> &which)
    {
        return static_cast<int>(std::count_if(
            m_cell.channels.begin(), m_cell.channels.end(),
            [&](const std::pair<const int, ChannelDescription> &c) { return which(c.second); }));
    }
    CellDescription m_cell;
};

namespace
{

// Percent of the input's span by which the table errs at an applied value; the
// value is in the table's own units times scale.
double error_percent(const ChannelDescription &channel, double applied, double scale)
{
    TABLE_RECORD record = *channel.table;
    const TransducerSpec &spec = channel.transducer;
    const double mv = settled_mv(spec, channel.condition, applied, 0.0);
    double value = 0.0;
    if (record.table_type == TABLE_SCALED) {
        value = mv * record.poly[0].x[0];
    } else if (record.table_type == TABLE_INTERP) {
        LONG_TABLE table;
        std::uint16_t hint = 0;
        compute_long_table(&record, &table);
        value = linear_interp(&hint, &table, 0, mv);
    } else {
        int range = 0;
        while (record.table_type == TABLE_POLY_RANGE && range + 1 < POLY_RANGES &&
               record.poly[range + 1].num_coeffs > 0 && applied > record.poly[range + 1].y[0])
            ++range;
        value = poly(record.poly[range].coeffs, record.poly[range].num_coeffs, mv);
    }
    return 100.0 * std::fabs(value / scale - applied) / (spec.to - spec.from);
}

} // namespace

void TrainingDescription::initTestCase()
{
    std::vector<std::string> errors;
    load_description(PROJECT_SOURCE_DIR "/hostsim/cells/training/cell.txt", &m_cell, &errors);
    QVERIFY2(errors.empty(), errors.empty() ? "" : errors.front().c_str());
}

void TrainingDescription::has_what_the_tool_can_meet()
{
    const auto of_type = [](int type, int points) {
        return [=](const ChannelDescription &c) {
            return c.table && c.table->table_type == type &&
                   (points == 0 || c.table->poly[0].num_points == points);
        };
    };
    const auto in = [](Condition condition) {
        return [=](const ChannelDescription &c) { return c.condition == condition; };
    };
    QVERIFY(m_cell.channels.size() >= 24);
    QVERIFY(count(of_type(TABLE_INTERP, 11)) >= 1);
    QVERIFY(count(of_type(TABLE_INTERP, 20)) >= 1);
    QVERIFY(count(of_type(TABLE_INTERP, 64)) >= 1);
    QVERIFY(count(of_type(TABLE_SCALED, 0)) >= 1);
    QVERIFY(count([](const ChannelDescription &c) {
                return c.table && c.table->table_type == TABLE_POLY &&
                       c.table->poly[0].num_coeffs == 4;
            }) >= 1);
    QVERIFY(count([](const ChannelDescription &c) {
                return c.table && c.table->table_type == TABLE_POLY_RANGE &&
                       std::count_if(std::begin(c.table->poly), std::end(c.table->poly),
                                     [](const POLY_RANGE_RECORD &r) { return r.num_coeffs > 0; }) ==
                           3;
            }) >= 1);
    QVERIFY(count([](const ChannelDescription &c) {
                return c.archive && c.archive->table_type == c.table->table_type &&
                       c.archive->poly[0].num_points != c.table->poly[0].num_points;
            }) >= 1);
    QVERIFY(count([](const ChannelDescription &c) {
                return c.active == 1 && !c.table && !c.table_name.empty() &&
                       c.table_name != "INACTIVE";
            }) >= 1);
    QVERIFY(count([](const ChannelDescription &c) {
                return c.active == 1 && c.table_name == "INACTIVE";
            }) >= 1);
    QVERIFY(count([](const ChannelDescription &c) { return c.active == 0; }) >= 1);
    QVERIFY(count([](const ChannelDescription &c) { return c.active > 1; }) >= 1);
    for (int i = 0; i < CONDITIONS; ++i)
        QVERIFY2(count(in(static_cast<Condition>(i))) >= 1,
                 condition_name(static_cast<Condition>(i)));
}

void TrainingDescription::tables_fit_their_sensors_data()
{
    QTest::addColumn<int>("number");
    for (const auto &[n, channel] : m_cell.channels)
        if (channel.table && channel.condition != Condition::Dead)
            QTest::addRow("channel %d %s", n, channel.label.c_str()) << n;
}

void TrainingDescription::tables_fit_their_sensors()
{
    QFETCH(int, number);
    const ChannelDescription &c = channel(number);
    constexpr double ABOVE[] = {-1.0, 0.25, 1.0, 2.0, -1.0};
    constexpr double NOT_ABOVE[] = {0.25, 1.0, 2.0, 100.0, 0.25};
    const auto condition = static_cast<int>(c.condition);
    double scale = 1.0;
    units_dbl_keyword_convrt(c.transducer.units.c_str(), &scale, c.units.c_str(), 1.0);
    if (c.transducer.units == c.units)
        scale = 1.0;
    for (int i = 0; i <= 10; ++i) {
        const double applied = c.transducer.from + i / 10.0 * (c.transducer.to - c.transducer.from);
        const double error = error_percent(c, applied, scale);
        QVERIFY2(error > ABOVE[condition] && error <= NOT_ABOVE[condition],
                 qPrintable(QString("%1 percent at %2").arg(error).arg(applied)));
    }
}

void TrainingDescription::sensor_ranges()
{
    const auto range = [this](const std::function<bool(const TABLE_RECORD &)> &which) {
        return count([&](const ChannelDescription &c) { return c.table && which(*c.table); });
    };
    QVERIFY(range([](const TABLE_RECORD &r) {
                return r.sensor_range_min == r.sensor_range_max && r.sensor_units[0] != '\0';
            }) >= 1);
    QVERIFY(range([](const TABLE_RECORD &r) {
                return r.sensor_units[0] != '\0' &&
                       (units_dimension_check_key(r.sensor_units, r.eng_units) & 0xffff) != 0;
            }) == 1);
    QVERIFY(range([](const TABLE_RECORD &r) { return r.sensor_units[0] == '\0'; }) >= 1);
    QVERIFY(range([](const TABLE_RECORD &r) {
                return std::strcmp(r.sensor_units, "PSI") == 0 &&
                       std::strcmp(r.eng_units, "kPa") == 0;
            }) >= 1);
}

void TrainingDescription::load_cell_is_the_certified_one()
{
    const QJsonObject data =
        QJsonDocument::fromJson(read_file(TEST_DATA_DIR "/nist/Pontius.json")).object();
    const QJsonArray x = data["x"].toArray();
    const QJsonArray y = data["y"].toArray();
    QCOMPARE(x.size(), 40);
    const auto found =
        std::find_if(m_cell.channels.begin(), m_cell.channels.end(),
                     [](const auto &c) { return c.second.label == "Thrust Load Cell"; });
    QVERIFY(found != m_cell.channels.end());
    const POLY_RANGE_RECORD &table = found->second.table->poly[0];
    const Response &response = found->second.transducer.response;
    QCOMPARE(int(table.num_points), 40);
    QCOMPARE(response.units.size(), std::size_t(20));
    for (int i = 0; i < 40; ++i) {
        QCOMPARE(table.x[i], y[i].toString().toDouble());
        QCOMPARE(table.y[i], x[i].toString().toDouble());
    }
    for (int i = 0; i < 20; ++i) {
        const double mean = (table.x[i] + table.x[i + 20]) / 2.0;
        QCOMPARE(response.units[std::size_t(i)], table.y[i]);
        QVERIFY(std::fabs(response.mv[std::size_t(i)] - mean) < 1e-12);
    }
}

void TrainingDescription::first_channel_is_the_straight_road()
{
    const ChannelDescription &c = channel(0);
    QCOMPARE(c.active, std::uint16_t(1));
    QCOMPARE(c.condition, Condition::Drifted1);
    QCOMPARE(int(c.table->table_type), int(TABLE_INTERP));
    QCOMPARE(int(c.table->poly[0].num_points), 5);
    QCOMPARE(c.table->sensor_range_max - c.table->sensor_range_min, 1000.0);
    // An adjustment makes it good: the noise is far below the smallest limit.
    QVERIFY(noise_deviation(c.transducer, c.condition) < 0.001 * span_mv(c.transducer));
}

PLAIN_TEST(TrainingDescription);
#include "test_trainingdescription.moc"
