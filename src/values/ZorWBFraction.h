#ifndef ZORWB_FRACTION_H
#define ZORWB_FRACTION_H

#include "ZorWBxExport.h"

// An exact rational multiple of an integer power of Pi:
// numerator / denominator * Pi^power.
struct ZorWBFraction {
    int numerator = 0;
    int denominator = 1;
    int power = 0;
};

constexpr double ZorWBPi = 3.141592653589793;

// Fills a fraction; the fourth argument is accepted for compatibility and
// ignored.
ZORWBX_API ZorWBFraction ZorWBCreateFraction(int numerator, int denominator, int power, int unused);

// The real reading numerator / denominator * Pi^power (infinite or NaN when
// the denominator is 0).
ZORWBX_API double ZorWBFractionToReal(const ZorWBFraction& fraction);

// Greatest common divisor of |a| and |b| by Euclid's remainder loop
// (0 when both are 0).
ZORWBX_API long long ZorWBGcd(long long a, long long b);

#endif
