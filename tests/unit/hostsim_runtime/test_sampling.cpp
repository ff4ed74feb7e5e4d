// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <malloc.h>
#include <vector>

#include "host/operations.h"
#include "support/testmain.h"

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

// A FIFO with memory of its own.
struct Fifo {
    explicit Fifo(std::uint32_t size) : buffer(size, 0.0)
    {
        record = {buffer.data(), buffer.data(), size, 0};
    }
    void fill(const QVector<double> &samples)
    {
        for (const double sample : samples)
            to_fifo(&record, sample);
    }
    std::vector<double> buffer;
    FIFO_RECORD record;
};

// Acquires and computes; x counts seconds.
STAT_RECORD statistics_of(const QVector<double> &samples, std::uint32_t size)
{
    Fifo y(size);
    Fifo x(size);
    y.fill(samples);
    for (int i = 0; i < samples.size(); ++i)
        to_fifo(&x.record, i);
    STAT_RECORD record{};
    xy_acquire_from_fifo(&record, &y.record, &x.record);
    xy_statistics_compute(&record);
    return record;
}

STAT_RECORD statistics_of(const QVector<double> &samples)
{
    return statistics_of(samples, static_cast<std::uint32_t>(samples.size()));
}

} // namespace

class Sampling : public QObject
{
    Q_OBJECT

private slots:
    void fifo_fills_then_drops_the_oldest();
    void fifo_without_room_takes_nothing();
    void fifo_of_one_holds_the_last();
    void members_data();
    void members();
    void equal_samples_are_their_own_mean_data();
    void equal_samples_are_their_own_mean();
    void only_samples_in_the_window_count();
    void digits_survive_a_large_reading();
    void the_mean_lies_between_the_samples();
    void samples_that_are_no_numbers_data();
    void samples_that_are_no_numbers();
    void nothing_sampled_gives_zeros();
    void other_members_are_zero();
    void results_stay_until_computed_anew();
    void the_programs_fields_stay_and_do_not_count();
    void clear_forgets();
    void a_pass_allocates_nothing();
};

void Sampling::fifo_fills_then_drops_the_oldest()
{
    Fifo fifo(3);
    const FIFO_RECORD &record = fifo.record;
    fifo.fill({1.0, 2.0});
    QCOMPARE(record.count, 2u);
    QCOMPARE(record.next, record.buffer + 2);
    fifo.fill({3.0});
    QCOMPARE(record.count, 3u);
    fifo.fill({4.0});
    QCOMPARE(record.count, 3u);
    QCOMPARE(record.size, 3u);
    std::sort(fifo.buffer.begin(), fifo.buffer.end());
    QCOMPARE(fifo.buffer, (std::vector<double>{2.0, 3.0, 4.0}));
    fifo.fill({5.0, 6.0, 7.0, 8.0});
    std::sort(fifo.buffer.begin(), fifo.buffer.end());
    QCOMPARE(fifo.buffer, (std::vector<double>{6.0, 7.0, 8.0}));
}

void Sampling::fifo_without_room_takes_nothing()
{
    double slot = 1.0;
    FIFO_RECORD fifo{&slot, &slot, 0, 0};
    to_fifo(&fifo, 5.0);
    QCOMPARE(slot, 1.0);
    QCOMPARE(fifo.count, 0u);
    fifo = {nullptr, nullptr, 4, 0};
    to_fifo(&fifo, 5.0);
    QCOMPARE(fifo.count, 0u);
    to_fifo(nullptr, 5.0);
    // Never fed, its next slot was not set.
    fifo = {&slot, nullptr, 1, 0};
    to_fifo(&fifo, 5.0);
    QCOMPARE(slot, 5.0);
}

void Sampling::fifo_of_one_holds_the_last()
{
    Fifo fifo(1);
    fifo.fill({1.0, 2.0, 3.0});
    QCOMPARE(fifo.buffer[0], 3.0);
    QCOMPARE(fifo.record.count, 1u);
}

void Sampling::members_data()
{
    const auto row = test_columns<QVector<double>, double, double, double, double>(
        "samples", "mean", "minimum", "maximum", "deviation");
    row("one sample", QVector<double>{4.5}, 4.5, 4.5, 4.5, 0.0);
    row("two samples", QVector<double>{1.0, 3.0}, 2.0, 1.0, 3.0, std::sqrt(2.0));
    row("three", QVector<double>{1.0, 2.0, 3.0}, 2.0, 1.0, 3.0, 1.0);
    row("five, the extremes last", QVector<double>{2.0, 2.0, 2.0, 0.0, 4.0}, 2.0, 0.0, 4.0,
        std::sqrt(2.0));
    row("below zero", QVector<double>{-1.0, -2.0, -3.0, -4.0}, -2.5, -4.0, -1.0,
        std::sqrt(5.0 / 3.0));
    QVector<double> ramp;
    for (int i = 1; i <= 300; ++i)
        ramp.append(i);
    row("300 samples of a ramp", ramp, 150.5, 1.0, 300.0, std::sqrt(7525.0));
    QVector<double> spike(299, 7.0);
    spike.append(307.0);
    row("a spike at the end", spike, 8.0, 7.0, 307.0, std::sqrt(300.0));
}

void Sampling::members()
{
    QFETCH(QVector<double>, samples);
    QFETCH(double, mean);
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    QFETCH(double, deviation);
    const STAT_RECORD record = statistics_of(samples);
    QVERIFY(std::fabs(get_stat_member(&record, 0) - mean) <= 1e-14 * std::fabs(mean));
    QVERIFY(get_stat_member(&record, 1) == minimum);
    QVERIFY(get_stat_member(&record, 2) == maximum);
    QVERIFY(std::fabs(get_stat_member(&record, 4) - deviation) <= 1e-14 * deviation);
    QVERIFY(get_stat_member(&record, 21) == samples.size());
}

void Sampling::equal_samples_are_their_own_mean_data()
{
    QTest::addColumn<double>("sample");
    QTest::newRow("a tenth") << 0.1;
    QTest::newRow("a third, negative") << -1.0 / 3.0;
    QTest::newRow("zero") << 0.0;
    QTest::newRow("smallest number") << 4.9406564584124654e-324;
    QTest::newRow("largest number") << std::numeric_limits<double>::max();
    QTest::newRow("infinity") << infinity;
}

void Sampling::equal_samples_are_their_own_mean()
{
    QFETCH(double, sample);
    for (const int count : {1, 2, 3, 7, 50, 100, 299, 300}) {
        const STAT_RECORD record = statistics_of(QVector<double>(count, sample));
        for (const int member : {0, 1, 2})
            QVERIFY(get_stat_member(&record, member) == sample);
        QVERIFY(get_stat_member(&record, 4) == 0.0);
    }
}

void Sampling::only_samples_in_the_window_count()
{
    // Older samples are gone, slots that were never filled do not count.
    const STAT_RECORD full = statistics_of({1000.0, -1000.0, 1.0, 2.0, 3.0}, 3);
    QVERIFY(get_stat_member(&full, 1) == 1.0);
    QVERIFY(get_stat_member(&full, 2) == 3.0);
    QVERIFY(get_stat_member(&full, 21) == 3.0);
    const STAT_RECORD filling = statistics_of({5.0, 6.0}, 300);
    QVERIFY(get_stat_member(&filling, 0) == 5.5);
    QVERIFY(get_stat_member(&filling, 1) == 5.0);
    QVERIFY(get_stat_member(&filling, 21) == 2.0);
}

void Sampling::digits_survive_a_large_reading()
{
    QVector<double> samples;
    for (int i = 0; i < 300; ++i)
        samples.append(1e9 + (i % 2 == 0 ? 0.25 : -0.25));
    const STAT_RECORD record = statistics_of(samples);
    QVERIFY(get_stat_member(&record, 0) == 1e9);
    const double deviation = 0.25 * std::sqrt(300.0 / 299.0);
    QVERIFY(std::fabs(get_stat_member(&record, 4) - deviation) <= 1e-14);
}

void Sampling::the_mean_lies_between_the_samples()
{
    for (double low = 0.1; low < 100.0; low *= 1.1) {
        const double high = std::nextafter(low, infinity);
        for (int count = 2; count < 12; ++count) {
            QVector<double> samples(count, high);
            samples[count / 2] = low;
            const STAT_RECORD record = statistics_of(samples);
            QVERIFY(get_stat_member(&record, 0) >= low);
            QVERIFY(get_stat_member(&record, 0) <= high);
        }
    }
}

void Sampling::samples_that_are_no_numbers_data()
{
    const auto row = test_columns<QVector<double>, double, double>("samples", "minimum", "maximum");
    row("the first", QVector<double>{qQNaN(), 1.0, 2.0}, 1.0, 2.0);
    row("one in the middle", QVector<double>{1.0, 2.0, qQNaN(), 3.0, 4.0}, 1.0, 4.0);
    row("among equal ones", QVector<double>{5.0, 5.0, qQNaN()}, 5.0, 5.0);
    row("all of them", QVector<double>{qQNaN(), qQNaN()}, qQNaN(), qQNaN());
    row("both infinities", QVector<double>{infinity, -infinity}, -infinity, infinity);
}

void Sampling::samples_that_are_no_numbers()
{
    QFETCH(QVector<double>, samples);
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    const STAT_RECORD record = statistics_of(samples);
    QVERIFY(std::isnan(get_stat_member(&record, 0)));
    QVERIFY(std::isnan(get_stat_member(&record, 4)));
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    QVERIFY(same(get_stat_member(&record, 1), minimum));
    QVERIFY(same(get_stat_member(&record, 2), maximum));
}

void Sampling::nothing_sampled_gives_zeros()
{
    const STAT_RECORD empty = statistics_of({}, 10);
    STAT_RECORD cleared = statistics_of({1.0, 2.0});
    FIFO_RECORD none{nullptr, nullptr, 10, 10};
    xy_acquire_from_fifo(&cleared, &none, nullptr);
    xy_statistics_compute(&cleared);
    for (const int member : {0, 1, 2, 4, 21}) {
        QVERIFY(get_stat_member(&empty, member) == 0.0);
        QVERIFY(get_stat_member(&cleared, member) == 0.0);
        QVERIFY(get_stat_member(nullptr, member) == 0.0);
    }
    xy_acquire_from_fifo(&cleared, nullptr, nullptr);
    xy_acquire_from_fifo(nullptr, &none, &none);
    xy_statistics_compute(nullptr);
    clear_stat_values(nullptr);
}

void Sampling::other_members_are_zero()
{
    const STAT_RECORD record = statistics_of({1.0, 2.0, 4.0});
    for (int member = -2; member < 64; ++member) {
        if (member != 0 && member != 1 && member != 2 && member != 4 && member != 21)
            QVERIFY(get_stat_member(&record, member) == 0.0);
        else
            QVERIFY(get_stat_member(&record, member) != 0.0);
    }
}

void Sampling::results_stay_until_computed_anew()
{
    STAT_RECORD record = statistics_of({1.0, 3.0});
    Fifo other(2);
    other.fill({10.0, 20.0});
    xy_acquire_from_fifo(&record, &other.record, nullptr);
    QVERIFY(get_stat_member(&record, 0) == 2.0);
    // What was acquired counts, whatever goes into the FIFO since.
    other.fill({1000.0});
    xy_statistics_compute(&record);
    QVERIFY(get_stat_member(&record, 0) == 15.0);
    xy_statistics_compute(&record);
    QVERIFY(get_stat_member(&record, 0) == 15.0);
    QVERIFY(get_stat_member(&record, 4) == std::sqrt(50.0));
}

void Sampling::the_programs_fields_stay_and_do_not_count()
{
    Fifo y(2);
    y.fill({1.0, 3.0});
    STAT_RECORD record{};
    record.present_200 = 123.0;
    record.present_240 = -77.0;
    xy_acquire_from_fifo(&record, &y.record, nullptr);
    xy_statistics_compute(&record);
    QVERIFY(record.present_200 == 123.0);
    QVERIFY(record.present_240 == -77.0);
    record.present_200 = record.present_240 = qQNaN();
    QVERIFY(get_stat_member(&record, 0) == 2.0);
    QVERIFY(get_stat_member(&record, 4) == std::sqrt(2.0));
    QVERIFY(get_stat_member(&record, 21) == 2.0);
}

void Sampling::clear_forgets()
{
    STAT_RECORD record = statistics_of({1.0, 3.0});
    clear_stat_values(&record);
    QVERIFY(get_stat_member(&record, 0) == 0.0);
    xy_statistics_compute(&record);
    for (const int member : {0, 1, 2, 4, 21})
        QVERIFY(get_stat_member(&record, member) == 0.0);
}

void Sampling::a_pass_allocates_nothing()
{
    Fifo y(300);
    Fifo x(300);
    STAT_RECORD record{};
    double sum = 0.0;
    const auto before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i) {
        to_fifo(&y.record, i);
        to_fifo(&x.record, i);
        xy_acquire_from_fifo(&record, &y.record, &x.record);
        xy_statistics_compute(&record);
        sum += get_stat_member(&record, 0);
    }
    const auto after = mallinfo2().uordblks;
    QCOMPARE(after, before);
    QVERIFY(sum > 0.0);
}

PLAIN_TEST(Sampling);
#include "test_sampling.moc"
