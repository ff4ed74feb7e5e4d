// SPDX-License-Identifier: GPL-3.0-or-later
//
// Least squares with about 62 digits, for points that the fit in orthogonal
// polynomials does not settle: tight groups far apart, or coefficients that
// cancel. The basis are Newton's polynomials, products of distances from some
// of the points. Distances of doubles are exact, so each value of the basis has
// nearly all its digits however small it is; each next node is the point where
// the product so far is largest, which keeps the columns of values well apart.
#ifndef RUNTIME_NEWTONFIT_H
#define RUNTIME_NEWTONFIT_H

#include <qd/qd_real.h>

#include <cstddef>

namespace newtonfit
{

// One polynomial of the basis, scaled to a value of 1 to 2 at its node.
struct Degree {
    double node;    // where the next polynomial of the basis is 0
    int exponent;   // the product of distances is the polynomial times 2^exponent
    qd_real weight; // share of the polynomial in the fit
    double noise;   // what the weight can be off at most
    double norm;    // root of the sum of squares over the points
    qd_real side;   // right side of the normal equations
    double error;   // what side can be off at most
    qd_real pivot;  // of the elimination
};

// Memory for a fit; belongs to the caller.
struct Workspace {
    qd_real *basis;    // [count * points], degree by degree
    qd_real *residual; // [points]
    qd_real *factors;  // [count * count]
    double *inverse;   // [count * count]
    Degree *degrees;   // [count]
    qd_real *powers;   // [count] the result, lowest power first
    double *noise;     // [count] what each power can be off at most
};

struct Points {
    std::size_t count;
    const double *x; // scaled so that they reach over 2 to 4
    const double *y; // scaled to at most 2
};

struct Result {
    int exponent; // the powers are to be multiplied by 2^exponent
    bool settled; // each power has all digits of a double, or is zero
};

// Fits count coefficients, at most as many as there are distinct x, into
// work.powers. What the arithmetic does not tell from zero, at no more than
// 2^-120 of the values, is zero. What it cannot tell at all comes as near as it
// gets, and is not settled: mostly more than four points a few units in the
// last place apart, with the same value and others far off; also x nearer to
// each other than about 2^-1000 of the span, which count as one.
Result fit(const Points &points, std::size_t count, const Workspace &work);

} // namespace newtonfit

#endif
