#ifndef ZORWB_VALUEFUNCTIONS_H
#define ZORWB_VALUEFUNCTIONS_H

#include "ZorWBxExport.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

// The operators of the expression language on values of every kind. Each
// function decides the kind of its result from its operands' kinds (see
// ZorWBGetCommonType), computes through the interval arithmetic, and reports
// failures in the environment's error word: 1 for a domain error or an
// overflow, 2 for kinds that cannot be combined. Nothing throws.
//
// Integer operands give an integer only where the exact result is an integer
// of the finite range: 1 / 2 is the fraction one half, 2 ^ -1 too. Integer
// intervals and integer enumerations divide as sets of integers: [7, 9] / 2
// is [3, 4].

// The common kind of two operands from the kind-combination table (0 when
// they cannot be combined). A fraction reads as a real from the level
// ZorWBLevel::FractionAsReal on, and below it as what SimplifyFraction(true)
// makes of it.
ZORWBX_API ZorWBValueType ZorWBGetCommonType(const ZorWBEnvironment& environment,
                                             const ZorWBValue& a, const ZorWBValue& b);

// ------------------------------------------------------------ arithmetic
ZORWBX_API ZorWBValue ZorWBSum(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBSub(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBMul(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBDiv(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBMod(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBMin(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBMax(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
// Positive difference: max(a - b, 0).
ZORWBX_API ZorWBValue ZorWBDim(const ZorWBEnvironment& environment, const ZorWBValue& a,
                               const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBPow(const ZorWBEnvironment& environment, const ZorWBValue& base,
                               const ZorWBValue& exponent);
// The degree-th root; range, when given, is the current range of the result
// and selects the branches of even roots.
ZORWBX_API ZorWBValue ZorWBRoot(const ZorWBEnvironment& environment, const ZorWBValue& operand,
                                const ZorWBValue& degree, const ZorWBValue* range = nullptr);
// |a| with the sign of b (b >= 0 counts as positive).
ZORWBX_API ZorWBValue ZorWBSign(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                const ZorWBValue& b);

ZORWBX_API ZorWBValue ZorWBUnaryMinus(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBAbs(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBSqrt(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBExp(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBLn(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBLog(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBSin(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBCos(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBTan(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBSinh(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBCosh(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBTanh(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBAsinh(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBAcosh(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBAtanh(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBCeil(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBFloor(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBTrunc(const ZorWBEnvironment& environment, const ZorWBValue& a);
// Rounds half away from zero.
ZORWBX_API ZorWBValue ZorWBRound(const ZorWBEnvironment& environment, const ZorWBValue& a);
// Rounds a to a multiple of step taken from origin: origin + step * round((a - origin) / step).
ZORWBX_API ZorWBValue ZorWBRound(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                 const ZorWBValue& step, const ZorWBValue& origin);
ZORWBX_API ZorWBValue ZorWBAsin(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                const ZorWBValue* range = nullptr);
ZORWBX_API ZorWBValue ZorWBAcos(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                const ZorWBValue* range = nullptr);
ZORWBX_API ZorWBValue ZorWBAtan(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                const ZorWBValue* range = nullptr);
ZORWBX_API ZorWBValue ZorWBAtan2(const ZorWBEnvironment& environment, const ZorWBValue& y,
                                 const ZorWBValue& x, const ZorWBValue* range = nullptr);
// A smooth or sharp step of a, parameterised by four reals (see the
// implementation for their meaning); a null parameter array gives the unit
// step at 0.
ZORWBX_API ZorWBValue ZorWBStep(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                const double* parameters);

// ------------------------------------------------------------ comparisons
ZORWBX_API ZorWBValue ZorWBEqual(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                 const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBNotEqual(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                    const ZorWBValue& b);
// a <= b.
ZORWBX_API ZorWBValue ZorWBLessEqual(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                     const ZorWBValue& b);

// ------------------------------------------------------------ four-state logic
ZORWBX_API ZorWBBoolean ZorWBAnd(ZorWBBoolean a, ZorWBBoolean b);
ZORWBX_API ZorWBBoolean ZorWBOr(ZorWBBoolean a, ZorWBBoolean b);
ZORWBX_API ZorWBBoolean ZorWBNot(ZorWBBoolean a);
ZORWBX_API ZorWBBoolean ZorWBImplication(ZorWBBoolean a, ZorWBBoolean b);
// On values: an operand not convertible to a boolean makes the result empty.
ZORWBX_API ZorWBValue ZorWBAnd(const ZorWBValue& a, const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBOr(const ZorWBValue& a, const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBNot(const ZorWBValue& a);
ZORWBX_API ZorWBValue ZorWBImplication(const ZorWBValue& a, const ZorWBValue& b);

// ------------------------------------------------------------ sets and tests
// A tolerance of -1.0 means the environment's tolerance.
ZORWBX_API bool ZorWBIntersect(const ZorWBEnvironment& environment, ZorWBValue& a,
                               const ZorWBValue& b, double tolerance = -1.0);
ZORWBX_API void ZorWBUnite(const ZorWBEnvironment& environment, ZorWBValue& a, const ZorWBValue& b);
ZORWBX_API void ZorWBExclude(const ZorWBEnvironment& environment, ZorWBValue& a,
                             const ZorWBValue& b);
// Does a contain b.
ZORWBX_API bool ZorWBContains(const ZorWBEnvironment& environment, const ZorWBValue& a,
                              const ZorWBValue& b);
ZORWBX_API bool ZorWBIsEmpty(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API bool ZorWBIsConsistent(const ZorWBEnvironment& environment, const ZorWBValue& a);
ZORWBX_API bool ZorWBIsEqual(const ZorWBEnvironment& environment, const ZorWBValue& a,
                             const ZorWBValue& b, double tolerance = -1.0);
ZORWBX_API bool ZorWBIsExact(const ZorWBEnvironment& environment, const ZorWBValue& a,
                             double tolerance = -1.0);
ZORWBX_API bool ZorWBIsIndefinite(const ZorWBValue& a);

#endif
