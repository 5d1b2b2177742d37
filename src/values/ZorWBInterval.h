#ifndef ZORWB_INTERVAL_H
#define ZORWB_INTERVAL_H

#include "ZorWBxExport.h"

// Numeric limits. Integers beyond ZorWBIntegerMax and reals beyond
// ZorWBRealLimit are infinite; the infinity markers lie just outside the
// finite range so that one comparison with the limit tests for infinity.
constexpr int ZorWBIntegerMax = 2147483646;
constexpr int ZorWBIntegerPlusInfinity = ZorWBIntegerMax + 1;
constexpr int ZorWBIntegerMinusInfinity = -ZorWBIntegerMax - 1;
constexpr double ZorWBRealLimit = 3.4028234663852886e+38;
constexpr double ZorWBRealPlusInfinity = ZorWBRealLimit * 10.0;
constexpr double ZorWBRealMinusInfinity = ZorWBRealLimit * -10.0;
constexpr double ZorWBRealSmallestPositive = 1.0 / ZorWBRealLimit;
// The tolerance of emptiness tests inside interval arithmetic (and the
// default tolerance of the environment).
constexpr double ZorWBIntervalTolerance = 1e-14;

// A closed integer interval; empty when low > high.
struct ZorWBIntegerInterval {
    int low = 0;
    int high = 0;
};

// A closed real interval; empty when low exceeds high by more than a
// tolerance.
struct ZorWBRealInterval {
    double low = 0.0;
    double high = 0.0;
};

ZORWBX_API extern const ZorWBIntegerInterval ZorWBInteger_Any;  // the whole integer line
ZORWBX_API extern const ZorWBIntegerInterval ZorWBInteger_Nil;  // the empty integer interval
ZORWBX_API extern const ZorWBRealInterval ZorWBReal_Any;        // the whole real line
ZORWBX_API extern const ZorWBRealInterval ZorWBReal_Nil;        // the empty real interval

#endif
