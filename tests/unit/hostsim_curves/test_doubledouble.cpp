// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>

#include <cmath>
#include <random>

#include "hostsim/runtime/doubledouble.h"
#include "quad.h"
#include "support/testmain.h"

using doubledouble::Pair;

namespace
{

quad::Real value_of(Pair<double> pair)
{
    return static_cast<quad::Real>(pair.hi) + static_cast<quad::Real>(pair.lo);
}

// Reproducible numbers of full length between about 2^-40 and 2^40.
class Numbers
{
public:
    double one()
    {
        const double high = uniform();
        const double mantissa = 1.0 + (high + uniform() * 0x1p-32) * (1.0 - 0x1p-53);
        const int exponent = static_cast<int>(uniform() * 81) - 40;
        return std::ldexp(uniform() < 0.5 ? -mantissa : mantissa, exponent);
    }
    Pair<double> pair()
    {
        const double high = one();
        return doubledouble::two_sum(high, high * 0x1p-54 * uniform());
    }

private:
    // From 0 to just below 1.
    double uniform() { return static_cast<double>(generator()) * 0x1p-32; }

    std::mt19937 generator{7u};
};

constexpr int ROUNDS = 20000;

} // namespace

class DoubleDouble : public QObject
{
    Q_OBJECT

private slots:
    void sums_are_exact();
    void products_are_exact();
    void sums_of_pairs();
    void products_of_pairs();
    void pairs_are_normalised();
    void lanes_agree_with_single_numbers();
};

void DoubleDouble::sums_are_exact()
{
    Numbers numbers;
    for (int i = 0; i < ROUNDS; ++i) {
        const double a = numbers.one();
        const double b = std::ldexp(numbers.one(), -10);
        const Pair<double> sum = doubledouble::two_sum(a, b);
        QVERIFY(sum.hi == a + b);
        // Subtracting in order of magnitude leaves exactly the rest.
        const quad::Real rest = std::fabs(a) > std::fabs(b)
                                    ? (static_cast<quad::Real>(sum.hi) - a) - b
                                    : (static_cast<quad::Real>(sum.hi) - b) - a;
        QVERIFY(rest == -static_cast<quad::Real>(sum.lo));
    }
}

// A product of two doubles has 106 bits at most, so 113 hold it.
void DoubleDouble::products_are_exact()
{
    Numbers numbers;
    for (int i = 0; i < ROUNDS; ++i) {
        const double a = numbers.one();
        const double b = numbers.one();
        const Pair<double> product = doubledouble::two_prod(a, b);
        QVERIFY(product.hi == a * b);
        QVERIFY(value_of(product) == static_cast<quad::Real>(a) * static_cast<quad::Real>(b));
    }
}

void DoubleDouble::sums_of_pairs()
{
    Numbers numbers;
    for (int i = 0; i < ROUNDS; ++i) {
        const Pair<double> a = numbers.pair();
        const Pair<double> b = numbers.pair();
        const quad::Real size = quad::absolute(value_of(a)) + quad::absolute(value_of(b));
        const quad::Real error = value_of(doubledouble::add(a, b)) - value_of(a) - value_of(b);
        QVERIFY(quad::absolute(error) <= size * 0x1p-103);
        const quad::Real half = value_of(doubledouble::add(a, b.hi)) - value_of(a) - b.hi;
        QVERIFY(quad::absolute(half) <= size * 0x1p-103);
    }
}

void DoubleDouble::products_of_pairs()
{
    Numbers numbers;
    for (int i = 0; i < ROUNDS; ++i) {
        const Pair<double> a = numbers.pair();
        const Pair<double> b = numbers.pair();
        const quad::Real whole = value_of(a) * value_of(b);
        const quad::Real error = value_of(doubledouble::multiply(a, b)) - whole;
        QVERIFY(quad::absolute(error) <= quad::absolute(whole) * 0x1p-102);
        const quad::Real part = value_of(a) * static_cast<quad::Real>(b.hi);
        const quad::Real other = value_of(doubledouble::multiply(a, b.hi)) - part;
        QVERIFY(quad::absolute(other) <= quad::absolute(part) * 0x1p-102);
    }
}

void DoubleDouble::pairs_are_normalised()
{
    Numbers numbers;
    for (int i = 0; i < ROUNDS; ++i) {
        const Pair<double> a = numbers.pair();
        const Pair<double> b = numbers.pair();
        for (const Pair<double> &pair :
             {doubledouble::add(a, b), doubledouble::multiply(a, b), doubledouble::negate(a)})
            QVERIFY(pair.hi + pair.lo == pair.hi);
        QCOMPARE(doubledouble::negate(a).hi, -a.hi);
        QCOMPARE(doubledouble::negate(a).lo, -a.lo);
    }
}

void DoubleDouble::lanes_agree_with_single_numbers()
{
    typedef double Lanes __attribute__((vector_size(16)));
    Numbers numbers;
    for (int i = 0; i < ROUNDS; ++i) {
        const Pair<double> a = numbers.pair(), b = numbers.pair();
        const Pair<Lanes> x = {Lanes{a.hi, b.hi}, Lanes{a.lo, b.lo}};
        const Pair<Lanes> y = {Lanes{b.hi, a.hi}, Lanes{b.lo, a.lo}};
        const Pair<Lanes> product = doubledouble::multiply(x, y);
        const Pair<double> expected = doubledouble::multiply(a, b);
        QVERIFY(product.hi[0] == expected.hi && product.lo[0] == expected.lo);
        const Pair<Lanes> sum = doubledouble::add(x, y);
        const Pair<double> other = doubledouble::add(b, a);
        QVERIFY(sum.hi[1] == other.hi && sum.lo[1] == other.lo);
    }
}

PLAIN_TEST(DoubleDouble);
#include "test_doubledouble.moc"
