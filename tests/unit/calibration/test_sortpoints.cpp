// SPDX-License-Identifier: GPL-3.0-or-later
//
// Sorting of a table's points by their millivolts.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <QtTest>

#include "calibration/tableload.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

// NaN has no order of its own; as a text every pair has.
QStringList as_texts(const double *x, const double *y, int n)
{
    QStringList texts;
    for (int i = 0; i < n; ++i)
        texts.append(QStringLiteral("%1/%2").arg(x[i], 0, 'g', 17).arg(y[i], 0, 'g', 17));
    texts.sort();
    return texts;
}

bool ascending(const double *x, int n)
{
    for (int i = 1; i < n; ++i) {
        if (std::isnan(x[i - 1]) ? !std::isnan(x[i]) : x[i] < x[i - 1])
            return false;
    }
    return true;
}

// The shapes that are hard on a quicksort with the median of three as pivot.
QVector<double> shape(const QByteArray &name, int n, std::mt19937 &random)
{
    std::uniform_real_distribution<double> any(-1e4, 1e4);
    std::uniform_int_distribution<int> few(0, 3);
    QVector<double> x(n);
    for (int i = 0; i < n; ++i) {
        if (name == "random")
            x[i] = any(random);
        else if (name == "few values")
            x[i] = few(random);
        else if (name == "all equal")
            x[i] = 5.0;
        else if (name == "ascending")
            x[i] = i;
        else if (name == "descending")
            x[i] = -i;
        else if (name == "organ pipe")
            x[i] = std::min(i, n - i);
        else if (name == "with NaN")
            x[i] = few(random) == 0 ? qQNaN() : any(random);
        else if (name == "with infinities")
            x[i] = few(random) == 0 ? std::copysign(qInf(), any(random)) : any(random);
        else // zeros of both signs
            x[i] = few(random) < 2 ? 0.0 : -0.0;
    }
    return x;
}

} // namespace

class SortPoints : public QObject
{
    Q_OBJECT

private slots:
    void pairs_stay_together();
    void sorted_permutation_of_what_came_in_data();
    void sorted_permutation_of_what_came_in();
    void values_that_are_no_numbers_come_last();
    void counts_outside_the_table_data();
    void counts_outside_the_table();
};

void SortPoints::pairs_stay_together()
{
    double x[] = {30.0, 10.0, 20.0, 7.0};
    double y[] = {3.0, 1.0, 2.0, 9.0};
    sort_points(x, y, 3);
    const double sorted_x[] = {10.0, 20.0, 30.0, 7.0};
    const double sorted_y[] = {1.0, 2.0, 3.0, 9.0};
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(x[i], sorted_x[i]);
        QCOMPARE(y[i], sorted_y[i]);
    }
}

void SortPoints::sorted_permutation_of_what_came_in_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"random", "few values", "all equal", "ascending", "descending",
                             "organ pipe", "with NaN", "with infinities", "zeros of both signs"})
        QTest::newRow(name) << QByteArray(name);
}

void SortPoints::sorted_permutation_of_what_came_in()
{
    QFETCH(QByteArray, name);
    std::mt19937 random(20240517);
    for (int n = 0; n <= MAX_POINTS; ++n) {
        for (int turn = 0; turn < 20; ++turn) {
            QVector<double> x = shape(name, n, random);
            QVector<double> y(n);
            for (int i = 0; i < n; ++i)
                y[i] = i;
            const QStringList before = as_texts(x.constData(), y.constData(), n);
            sort_points(x.data(), y.data(), n);
            QVERIFY(ascending(x.constData(), n));
            QCOMPARE(as_texts(x.constData(), y.constData(), n), before);
        }
    }
}

void SortPoints::values_that_are_no_numbers_come_last()
{
    double x[] = {qQNaN(), 2.0, qQNaN(), 1.0};
    double y[] = {1.0, 2.0, 3.0, 4.0};
    sort_points(x, y, 4);
    QCOMPARE(x[0], 1.0);
    QCOMPARE(y[0], 4.0);
    QCOMPARE(x[1], 2.0);
    QCOMPARE(y[1], 2.0);
    QVERIFY(std::isnan(x[2]) && std::isnan(x[3]));
}

void SortPoints::counts_outside_the_table_data()
{
    const auto row = test_columns<int, int>("n", "sorted");
    row("none", 0, 0);
    row("one", 1, 1);
    row("all that a table holds", 64, 64);
    row("more", 65, 64);
    row("negative", -1, 0);
}

void SortPoints::counts_outside_the_table()
{
    QFETCH(int, n);
    QFETCH(int, sorted);
    double x[MAX_POINTS];
    double y[MAX_POINTS];
    for (int i = 0; i < MAX_POINTS; ++i)
        x[i] = y[i] = -i;
    sort_points(x, y, n);
    for (int i = 0; i < MAX_POINTS; ++i)
        QCOMPARE(x[i], i < sorted ? i - sorted + 1.0 : -static_cast<double>(i));
}

LOOP_TEST(SortPoints);
#include "test_sortpoints.moc"
