/// The formulas of the moon and sky routines, written a second time, in 50-digit arithmetic.
#ifndef ZARNSYS_BENCH_FIFTYDIGITS_H
#define ZARNSYS_BENCH_FIFTYDIGITS_H

#include <boost/multiprecision/mpfr.hpp>

#include "SkyCase.h"

using Real = boost::multiprecision::number<
    boost::multiprecision::mpfr_float_backend<50, boost::multiprecision::allocate_stack>,
    boost::multiprecision::et_off>;

/// What the formulas give for these very doubles, their constants taken as the decimals they are.
/// Age and phase pass through single precision, as they must.
Outputs<Real> evaluateExactly(const Inputs& in);

#endif  // ZARNSYS_BENCH_FIFTYDIGITS_H
