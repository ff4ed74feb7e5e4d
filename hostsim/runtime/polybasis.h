// SPDX-License-Identifier: GPL-3.0-or-later
//
// Least squares in polynomials that are orthogonal over the points, the way
// from there to coefficients of powers, and a bound for what rounding has made
// of each. All of it works on scaled data: positions centred, within [-2, 2];
// values within [-2, 2].
#ifndef RUNTIME_POLYBASIS_H
#define RUNTIME_POLYBASIS_H

#include <cstddef>

#include "hostsim/runtime/doubledouble.h"

namespace polybasis
{

// Two points side by side, as the smallest vector unit takes them.
typedef double Lanes __attribute__((vector_size(16)));
constexpr std::size_t LANES = 2;

using Scalar = doubledouble::Pair<double>;

// The points and the polynomials' values there, in blocks of LANES points. An
// unused lane of the last block has value 0 in every polynomial, so that it
// takes part in no sum. Memory belongs to the caller.
struct Samples {
    std::size_t blocks;
    double reach;                     // largest magnitude of a position
    Lanes *position_hi, *position_lo; // [blocks]
    Lanes *residual_hi, *residual_lo; // [blocks], at first the values
    Lanes *basis_hi, *basis_lo;       // [degrees * blocks], degree by degree
};

// One polynomial of the basis: p[k+1] = (u - alpha[k]) p[k] - beta[k] p[k-1].
// Any alpha and beta make a basis; how far theirs, rounded to doubles, leave it
// from orthogonal is measured.
struct Degree {
    double alpha;
    double beta;
    double squares;    // sum of p[k] squared over the points
    double norm;       // root of that
    double error;      // what a value of p[k] can be off at most
    double noise;      // what the weight can be off at most
    double correction; // of the weight, in the last pass
    Scalar weight;     // share of p[k] in the fit
};

// How far a fit has come, as roots of sums of squares over the points.
struct Progress {
    double values;         // of the points
    double skew;           // share of the polynomials in one another
    double correction;     // the last pass changed the fit by this
    double rounding;       // what the arithmetic leaves undetermined
    double residual_error; // what one residual can be off at most
};

// Builds degrees 0 to count - 1 and a first estimate of their weights, and
// begins the progress. The first polynomial must stand in basis[0], 1 in every
// lane in use. False when one of the polynomials is no more than rounding.
bool build(const Samples &samples, Degree *degrees, std::size_t count, Progress &progress);

// Corrects all weights by what the residuals still hold of them, after taking
// off the corrections of the pass before. A pass gains as many digits as skew
// has zeros, as far as rounding lets it.
void correct(const Samples &samples, Degree *degrees, std::size_t count, bool first,
             Progress &progress);

// Coefficients of powers of the position before the centre was taken off,
// lowest first, into powers[count]; noise[count] bounds the error of each.
// scratch holds 2 * count numbers of each kind.
struct Powers {
    Scalar *powers;
    double *noise;
    Scalar *scratch;
    double *scratch_noise;
};
void to_powers(const Degree *degrees, std::size_t count, double centre, const Powers &out);

} // namespace polybasis

#endif
