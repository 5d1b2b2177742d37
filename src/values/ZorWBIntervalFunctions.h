#ifndef ZORWB_INTERVALFUNCTIONS_H
#define ZORWB_INTERVALFUNCTIONS_H

#include "ZorWBxExport.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBValue.h"

// Interval arithmetic: the image of closed intervals under each operator.
//
// Common rules: emptiness is tested with the fixed tolerance 1e-14; an empty
// operand sets error 1 and gives the empty interval; bounds are computed with
// round-to-nearest and no outward rounding; every real result is normalised
// (an inverted or out-of-range result is the empty interval, bounds are
// clamped to the whole line); functions with a restricted domain clip their
// argument to it without widening it onto the domain's edge, set error 1
// when nothing remains, and give the empty interval whenever the
// environment already holds an error.

// ------------------------------------------------------------ construction
ZORWBX_API ZorWBIntegerInterval ZorWBCreateIntegerInterval(int value);
ZORWBX_API ZorWBIntegerInterval ZorWBCreateIntegerInterval(int low, int high);
// The integers inside a real interval (infinite ends stay infinite).
ZORWBX_API ZorWBIntegerInterval ZorWBCreateIntegerInterval(const ZorWBRealInterval& interval);
ZORWBX_API ZorWBRealInterval ZorWBCreateRealInterval(double value);
ZORWBX_API ZorWBRealInterval ZorWBCreateRealInterval(double low, double high);
ZORWBX_API ZorWBRealInterval ZorWBCreateRealInterval(const ZorWBIntegerInterval& interval);

// ------------------------------------------------------------ tests and measures
ZORWBX_API bool ZorWBIsEmpty(const ZorWBIntegerInterval& a);
ZORWBX_API bool ZorWBIsEmpty(const ZorWBRealInterval& a, double tolerance = ZorWBIntervalTolerance);
ZORWBX_API bool ZorWBIsConsistent(const ZorWBIntegerInterval& a);
ZORWBX_API bool ZorWBIsConsistent(const ZorWBRealInterval& a,
                                  double tolerance = ZorWBIntervalTolerance);
ZORWBX_API bool ZorWBIsExact(const ZorWBIntegerInterval& a);
ZORWBX_API bool ZorWBIsExact(const ZorWBRealInterval& a, double tolerance = ZorWBIntervalTolerance);
ZORWBX_API bool ZorWBIsEqual(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b);
ZORWBX_API bool ZorWBIsEqual(const ZorWBRealInterval& a, const ZorWBRealInterval& b,
                             double tolerance = ZorWBIntervalTolerance);
// Does a contain b.
ZORWBX_API bool ZorWBContains(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b);
ZORWBX_API bool ZorWBContains(const ZorWBRealInterval& a, const ZorWBRealInterval& b,
                              double tolerance = ZorWBIntervalTolerance);
// Infinite means the whole line; a half-line counts as finite.
ZORWBX_API bool ZorWBIsInfinite(const ZorWBIntegerInterval& a);
ZORWBX_API bool ZorWBIsInfinite(const ZorWBRealInterval& a);
ZORWBX_API bool ZorWBIsFinite(const ZorWBIntegerInterval& a);
ZORWBX_API bool ZorWBIsFinite(const ZorWBRealInterval& a);
ZORWBX_API int ZorWBMAG(const ZorWBIntegerInterval& a);
ZORWBX_API double ZorWBMAG(const ZorWBRealInterval& a);
ZORWBX_API int ZorWBWidth(const ZorWBIntegerInterval& a);
ZORWBX_API double ZorWBWidth(const ZorWBRealInterval& a);
ZORWBX_API int ZorWBMiddle(const ZorWBIntegerInterval& a);
ZORWBX_API double ZorWBMiddle(const ZorWBRealInterval& a);
// -1, 0 or 1 when the interval lies below, at or above 0; 2 when it holds 0
// and more.
ZORWBX_API int ZorWBSignum(const ZorWBIntegerInterval& a);
ZORWBX_API int ZorWBSignum(const ZorWBRealInterval& a);
ZORWBX_API ZorWBIntegerInterval ZorWBIntersect(const ZorWBIntegerInterval& a,
                                               const ZorWBIntegerInterval& b);
// Snaps bounds of b that lie within a relative tolerance of a's bounds onto them.
ZORWBX_API ZorWBRealInterval ZorWBIntersect(const ZorWBRealInterval& a, const ZorWBRealInterval& b,
                                            double tolerance = ZorWBIntervalTolerance);
ZORWBX_API ZorWBIntegerInterval ZorWBUnite(const ZorWBIntegerInterval& a,
                                           const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBUnite(const ZorWBRealInterval& a, const ZorWBRealInterval& b);

// ------------------------------------------------------------ scalar helpers
// One double under the environment: below -limit is minus infinity, above the
// limit plus infinity; failures set error 1 and give the minus-infinity marker.
ZORWBX_API double ZorWBRealDiv(const ZorWBEnvironment& environment, double x, double y);
ZORWBX_API double ZorWBRealSqrt(const ZorWBEnvironment& environment, double x);
ZORWBX_API double ZorWBRealLn(const ZorWBEnvironment& environment, double x);
ZORWBX_API double ZorWBRealAbs(const ZorWBEnvironment& environment, double x);
ZORWBX_API int ZorWBIntegerAbs(const ZorWBEnvironment& environment, int x);
// a + b saturating at the finite integer range; overflow tells whether it did.
ZORWBX_API int ZorWBSaturatingAdd(int a, int b, bool& overflow);

// ------------------------------------------------------------ operators
ZORWBX_API ZorWBIntegerInterval ZorWBSum(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a,
                                         const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBSum(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a, const ZorWBRealInterval& b);
ZORWBX_API ZorWBIntegerInterval ZorWBSub(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a,
                                         const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBSub(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a, const ZorWBRealInterval& b);
ZORWBX_API ZorWBIntegerInterval ZorWBMul(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a,
                                         const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBMul(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a, const ZorWBRealInterval& b);
// Truncating integer quotients; a divisor holding 0 gives the whole line.
ZORWBX_API ZorWBIntegerInterval ZorWBDiv(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a,
                                         const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBDiv(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a, const ZorWBRealInterval& b);
// Floored modulo a - b * floor(a / b), the result having the sign of b, as
// the exact image of the two intervals (its closure for reals). A divisor of
// 0 (or closer to 0 than the smallest positive real) is a domain error; a
// divisor interval holding 0 and more is clipped to its non-zero values.
ZORWBX_API ZorWBIntegerInterval ZorWBMod(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a,
                                         const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBMod(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a, const ZorWBRealInterval& b);
ZORWBX_API ZorWBIntegerInterval ZorWBMin(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a,
                                         const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBMin(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a, const ZorWBRealInterval& b);
ZORWBX_API ZorWBIntegerInterval ZorWBMax(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a,
                                         const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBRealInterval ZorWBMax(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a, const ZorWBRealInterval& b);
ZORWBX_API ZorWBIntegerInterval ZorWBAbs(const ZorWBEnvironment& environment,
                                         const ZorWBIntegerInterval& a);
ZORWBX_API ZorWBRealInterval ZorWBAbs(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& a);

// The base is clipped to [0, +inf); 0 ^ 0 is 1 and 0 to a negative power is
// plus infinity (no error).
ZORWBX_API ZorWBRealInterval ZorWBPow(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& base,
                                      const ZorWBRealInterval& exponent);
// Any base. The exponent 0 gives [1, 1]; a negative exponent with a base
// holding or touching 0 is unbounded on the sides the base reaches 0 from
// ([0, 2]^-1 is [0.5, +inf), [-1, 1]^-2 is [1, +inf)), without an error.
ZORWBX_API ZorWBRealInterval ZorWBPow(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& base, int exponent);
// The real degree-th roots of x that lie in range (both branches for even
// degrees, hulled); RootPositive and RootNegative give the non-negative and
// the non-positive roots. A degree below 1 is a domain error.
ZORWBX_API ZorWBRealInterval ZorWBRoot(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x, int degree,
                                       const ZorWBRealInterval& range);
ZORWBX_API ZorWBRealInterval ZorWBRootPositive(const ZorWBEnvironment& environment,
                                               const ZorWBRealInterval& x, int degree);
ZORWBX_API ZorWBRealInterval ZorWBRootNegative(const ZorWBEnvironment& environment,
                                               const ZorWBRealInterval& x, int degree);
ZORWBX_API ZorWBRealInterval ZorWBSqrt(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBExp(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBLn(const ZorWBEnvironment& environment,
                                     const ZorWBRealInterval& x);
// The base-10 logarithm (ZorWBLn is the natural one).
ZORWBX_API ZorWBRealInterval ZorWBLog(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBSin(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBCos(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& x);
// An interval reaching a pole gives the whole line.
ZORWBX_API ZorWBRealInterval ZorWBTan(const ZorWBEnvironment& environment,
                                      const ZorWBRealInterval& x);
// Inverse trigonometric functions: the principal values and every other
// angle within the environment's trigonometric limits whose function value
// lies in x, hulled over the parts that meet the current range of the
// result, and kept within it. Given the principal range ([-pi/2, pi/2],
// [0, pi], [-pi/2, pi/2], [-pi, pi] for atan2) they give the principal
// value. Atan2 of a box holding the origin is every angle.
ZORWBX_API ZorWBRealInterval ZorWBAsin(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x, const ZorWBRealInterval& range);
ZORWBX_API ZorWBRealInterval ZorWBAcos(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x, const ZorWBRealInterval& range);
ZORWBX_API ZorWBRealInterval ZorWBAtan(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x, const ZorWBRealInterval& range);
ZORWBX_API ZorWBRealInterval ZorWBAtan2(const ZorWBEnvironment& environment,
                                        const ZorWBRealInterval& y, const ZorWBRealInterval& x,
                                        const ZorWBRealInterval& range);
ZORWBX_API ZorWBRealInterval ZorWBSinh(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBCosh(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBTanh(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBAsinh(const ZorWBEnvironment& environment,
                                        const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBAcosh(const ZorWBEnvironment& environment,
                                        const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBAtanh(const ZorWBEnvironment& environment,
                                        const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBCeil(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBFloor(const ZorWBEnvironment& environment,
                                        const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBRound(const ZorWBEnvironment& environment,
                                        const ZorWBRealInterval& x);
ZORWBX_API ZorWBRealInterval ZorWBTrunc(const ZorWBEnvironment& environment,
                                        const ZorWBRealInterval& x);

// ------------------------------------------------------------ comparisons
ZORWBX_API ZorWBBoolean ZorWBEqual(const ZorWBEnvironment& environment,
                                   const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBBoolean ZorWBEqual(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                                   const ZorWBRealInterval& b);
ZORWBX_API ZorWBBoolean ZorWBLessEqual(const ZorWBEnvironment& environment,
                                       const ZorWBIntegerInterval& a,
                                       const ZorWBIntegerInterval& b);
ZORWBX_API ZorWBBoolean ZorWBLessEqual(const ZorWBEnvironment& environment,
                                       const ZorWBRealInterval& a, const ZorWBRealInterval& b);

#endif
