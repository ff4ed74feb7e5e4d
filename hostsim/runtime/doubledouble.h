// SPDX-License-Identifier: GPL-3.0-or-later
//
// Numbers of about 106 bits, held as the unevaluated sum of two doubles. T is
// double or a short vector of doubles, which is worked on lane by lane: the fit
// takes half the time that it does with a library's single numbers. Needs round
// to nearest and no contraction; exact products need magnitudes between about
// 1e-290 and 1e290, so callers scale first.
#ifndef RUNTIME_DOUBLEDOUBLE_H
#define RUNTIME_DOUBLEDOUBLE_H

namespace doubledouble
{

// |lo| is at most half a unit in the last place of hi once normalised.
template <class T> struct Pair {
    T hi;
    T lo;
};

// a + b exactly.
template <class T> inline Pair<T> two_sum(T a, T b)
{
    const T sum = a + b;
    const T part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

// a + b exactly, for |a| >= |b| or a = 0.
template <class T> inline Pair<T> quick_two_sum(T a, T b)
{
    const T sum = a + b;
    return {sum, b - (sum - a)};
}

// a as a sum of two halves of at most 26 bits, whose products are exact.
template <class T> inline Pair<T> split(T a)
{
    const T scaled = a * 134217729.0; // 2^27 + 1
    const T high = scaled - (scaled - a);
    return {high, a - high};
}

// a * b exactly. By halves: a fused multiply-add is not in every processor,
// and where it is not the library's is far slower than this.
template <class T> inline Pair<T> two_prod(T a, T b)
{
    const T product = a * b;
    const Pair<T> x = split(a);
    const Pair<T> y = split(b);
    return {product, ((x.hi * y.hi - product) + x.hi * y.lo + x.lo * y.hi) + x.lo * y.lo};
}

// Sum and product; the error is a few units of 2^-104 of the terms' magnitude.
template <class T> inline Pair<T> add(Pair<T> a, Pair<T> b)
{
    const Pair<T> sum = two_sum(a.hi, b.hi);
    return quick_two_sum(sum.hi, sum.lo + (a.lo + b.lo));
}

template <class T> inline Pair<T> add(Pair<T> a, T b)
{
    const Pair<T> sum = two_sum(a.hi, b);
    return quick_two_sum(sum.hi, sum.lo + a.lo);
}

template <class T> inline Pair<T> multiply(Pair<T> a, Pair<T> b)
{
    const Pair<T> product = two_prod(a.hi, b.hi);
    return quick_two_sum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

template <class T> inline Pair<T> multiply(Pair<T> a, T b)
{
    const Pair<T> product = two_prod(a.hi, b);
    return quick_two_sum(product.hi, product.lo + a.lo * b);
}

template <class T> inline Pair<T> negate(Pair<T> a)
{
    return {-a.hi, -a.lo};
}

} // namespace doubledouble

#endif
