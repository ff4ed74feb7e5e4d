# SPDX-License-Identifier: GPL-3.0-or-later
# The polynomial fit against GSL's general least squares.
add_executable(bench_polynomialfit ${CMAKE_CURRENT_LIST_DIR}/bench_polynomialfit.cpp)
target_link_libraries(bench_polynomialfit PRIVATE zerl_flags vornax GSL::gsl GSL::gslcblas
                      benchmark::benchmark)
