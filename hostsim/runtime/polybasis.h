// SPDX-License-Identifier: GPL-3.0-or-later
//
// Least squares in polynomials that are orthogonal over the points, and the
// way from there to coefficients of powers. All of it works on scaled data:
// positions centred, within [-2, 2]; values within [-2, 2].
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
    Lanes *position_hi, *position_lo; // [blocks]
    Lanes *residual_hi, *residual_lo; // [blocks], at first the values
    Lanes *basis_hi, *basis_lo;       // [degrees * blocks], degree by degree
};

// One polynomial of the basis: p[k+1] = (u - alpha[k]) p[k] - beta[k] p[k-1].
struct Degree {
    double alpha;
    double beta;
    double norm;   // sum of p[k] squared over the points
    double noise;  // what rounding can make of the weight at most
    Scalar weight; // share of p[k] in the fit
};

// Fits degrees 0 to count - 1; residuals come out as those of the fit. The
// first polynomial must stand in basis[0], 1 in every lane in use. Returns the
// number of degrees that the points determine at this precision, at most count.
std::size_t fit(const Samples &samples, Degree *degrees, std::size_t count);

// Coefficients of powers of the position before the centre was taken off,
// lowest first, into powers[count]; noise[count] says what rounding can have
// made of each. scratch holds 2 * count numbers of each kind.
struct Powers {
    Scalar *powers;
    double *noise;
    Scalar *scratch;
    double *scratch_noise;
};
void to_powers(const Degree *degrees, std::size_t count, double centre, const Powers &out);

} // namespace polybasis

#endif
