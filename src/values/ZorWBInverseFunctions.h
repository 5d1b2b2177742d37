#ifndef ZORWB_INVERSEFUNCTIONS_H
#define ZORWB_INVERSEFUNCTIONS_H

#include "ZorWBxExport.h"
#include "values/ZorWBEnum.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBValue.h"

// Inverse functions (projections) for constraint propagation. Given
// z = f(x, y) with z known to lie in a result set and y in its set, each
// function returns the part of the current domain of x that can still
// produce a value of the result set. The suffix 1 or 2 names the operand
// that is narrowed when the operator is not symmetric.
//
// Argument order everywhere: the result set, then the operand to narrow (its
// current domain), then the other operands; the value level takes the
// environment first.
//
// Common rules:
// - The answer never exceeds the domain. It is the exact set of the domain's
//   points that can produce a value of the result set, or the closed hull of
//   that set where the domain's kind cannot hold it (an interval cannot hold
//   two separate pieces). An open end of a real set (floor, ceiling, round,
//   trunc, step, sign, the positive exponents of the base 0) is closed a
//   relative hair inside, the hair of the inverse floor taken from the
//   excluded bound; the comparisons take the plain closed hull; integer
//   domains take the exact integer end.
// - An impossible projection is not an error: the answer is the empty set of
//   the domain's kind (or the state 3).
// - An operand combination that a function cannot handle sets the function's
//   code in the environment's error word and answers the domain unchanged;
//   the caller must treat that answer as unusable.
// - Real emptiness and containment tests use the tolerance 1e-14 (relative
//   above magnitude 1), as the interval layer does.

// ------------------------------------------------------------ boolean level
// Entries are what the narrowed operand can be: 0 false, 1 true, 2 unknown
// (either), 3 empty (impossible). A state outside 0..3 reads as empty.
ZORWBX_API ZorWBBoolean ZorWBInverseAnd(ZorWBBoolean result, ZorWBBoolean other);
ZORWBX_API ZorWBBoolean ZorWBInverseOr(ZorWBBoolean result, ZorWBBoolean other);
// Onto the premise, from the conclusion.
ZORWBX_API ZorWBBoolean ZorWBInverseImplication1(ZorWBBoolean result, ZorWBBoolean conclusion);
// Onto the conclusion, from the premise.
ZORWBX_API ZorWBBoolean ZorWBInverseImplication2(ZorWBBoolean result, ZorWBBoolean premise);

// ------------------------------------------------------------ interval level
// x with |x| in result. Both branches of |x| are hulled into one interval.
ZORWBX_API ZorWBIntegerInterval ZorWBInverseAbs(const ZorWBIntegerInterval& result,
                                                const ZorWBIntegerInterval& domain);
ZORWBX_API ZorWBRealInterval ZorWBInverseAbs(const ZorWBRealInterval& result,
                                             const ZorWBRealInterval& domain);
// x with min(x, y) (max(x, y)) in result for some y of other.
ZORWBX_API ZorWBIntegerInterval ZorWBInverseMin(const ZorWBIntegerInterval& result,
                                                const ZorWBIntegerInterval& domain,
                                                const ZorWBIntegerInterval& other);
ZORWBX_API ZorWBRealInterval ZorWBInverseMin(const ZorWBRealInterval& result,
                                             const ZorWBRealInterval& domain,
                                             const ZorWBRealInterval& other);
ZORWBX_API ZorWBIntegerInterval ZorWBInverseMax(const ZorWBIntegerInterval& result,
                                                const ZorWBIntegerInterval& domain,
                                                const ZorWBIntegerInterval& other);
ZORWBX_API ZorWBRealInterval ZorWBInverseMax(const ZorWBRealInterval& result,
                                             const ZorWBRealInterval& domain,
                                             const ZorWBRealInterval& other);
// Floored modulo a - b * floor(a / b). Mod1 narrows the dividend a, Mod2 the
// divisor b. A divisor set that holds only 0 sets code 11; a bound that is
// not a number sets 300 (result set), 301 (domain) or 302 (other operand).
// The divisor 0 itself is skipped. Real remainders are taken in the closed
// range between 0 and the divisor, so a real hull may keep a limit point
// (a divisor that would leave a remainder equal to itself). With integer
// intervals the divisors are exact, and so are the dividends of a single
// divisor; a dividend narrowed over several divisors may keep an integer that
// no divisor reaches.
ZORWBX_API ZorWBIntegerInterval ZorWBInverseMod1(const ZorWBEnvironment& environment,
                                                 const ZorWBIntegerInterval& result,
                                                 const ZorWBIntegerInterval& dividend,
                                                 const ZorWBIntegerInterval& divisor);
ZORWBX_API ZorWBRealInterval ZorWBInverseMod1(const ZorWBEnvironment& environment,
                                              const ZorWBRealInterval& result,
                                              const ZorWBRealInterval& dividend,
                                              const ZorWBRealInterval& divisor);
ZORWBX_API ZorWBIntegerInterval ZorWBInverseMod2(const ZorWBEnvironment& environment,
                                                 const ZorWBIntegerInterval& result,
                                                 const ZorWBIntegerInterval& divisor,
                                                 const ZorWBIntegerInterval& dividend);
ZORWBX_API ZorWBRealInterval ZorWBInverseMod2(const ZorWBEnvironment& environment,
                                              const ZorWBRealInterval& result,
                                              const ZorWBRealInterval& divisor,
                                              const ZorWBRealInterval& dividend);
// base ^ exponent: positive bases with any exponent, the base 0 with a
// positive exponent (0) or the exponent 0 (1), negative bases with integer
// exponents. Pow1 narrows the base, Pow2 the exponent. A bound that is not a
// number sets code 865. Negative bases are solved exponent by exponent when
// the exponent set holds at most 64 integers, and through |base| otherwise.
ZORWBX_API ZorWBRealInterval ZorWBInversePow1(const ZorWBEnvironment& environment,
                                              const ZorWBRealInterval& result,
                                              const ZorWBRealInterval& base,
                                              const ZorWBRealInterval& exponent);
ZORWBX_API ZorWBRealInterval ZorWBInversePow2(const ZorWBEnvironment& environment,
                                              const ZorWBRealInterval& result,
                                              const ZorWBRealInterval& exponent,
                                              const ZorWBRealInterval& base);
// The reals whose ceiling (floor) lies in result; the open end is closed a
// relative hair inside: 1.5 e (at most 1), e = 1e-14 times a tenth of
// result.high when that exceeds 1, else 1e-14 - for both functions taken from
// result.high, so a huge high bound makes the ceiling's hair 1. (The value
// forms take the hair from the excluded bound instead.)
ZORWBX_API ZorWBRealInterval ZorWBInverseCeil(const ZorWBRealInterval& result);
ZORWBX_API ZorWBRealInterval ZorWBInverseFloor(const ZorWBRealInterval& result);

// ------------------------------------------------------------ enumeration level
// A listed domain keeps exactly the elements that can produce a value of the
// result set; a domain held as an interval (or any) is narrowed to the hull,
// and stays any when nothing is removed; nothing kept gives nil. Without an
// environment, intervals are not expanded into lists.
ZORWBX_API ZorWBIntegerEnum ZorWBInverseAbs(const ZorWBIntegerEnum& result,
                                            const ZorWBIntegerEnum& domain);
ZORWBX_API ZorWBRealEnum ZorWBInverseAbs(const ZorWBRealEnum& result, const ZorWBRealEnum& domain);
ZORWBX_API ZorWBIntegerEnum ZorWBInverseMin(const ZorWBIntegerEnum& result,
                                            const ZorWBIntegerEnum& domain,
                                            const ZorWBIntegerEnum& other);
ZORWBX_API ZorWBRealEnum ZorWBInverseMin(const ZorWBRealEnum& result, const ZorWBRealEnum& domain,
                                         const ZorWBRealEnum& other);
ZORWBX_API ZorWBIntegerEnum ZorWBInverseMax(const ZorWBIntegerEnum& result,
                                            const ZorWBIntegerEnum& domain,
                                            const ZorWBIntegerEnum& other);
ZORWBX_API ZorWBRealEnum ZorWBInverseMax(const ZorWBRealEnum& result, const ZorWBRealEnum& domain,
                                         const ZorWBRealEnum& other);

// ------------------------------------------------------------ value level
// The answer has the domain's kind. A listed enumeration keeps exactly its
// feasible elements (then Correct); an interval, an enumeration held as an
// interval and a boolean (read as 0/1) are narrowed to their hull; an integer,
// a real or a fraction is kept whole or becomes the empty interval of its
// number type. Listed result sets and other operands are used element by
// element, so that no hull of theirs widens the answer. A fraction reads as
// its real value. Operands of kinds that cannot be combined (the
// kind-combination table of the value functions gives 0), undefined operands
// and bounds that are not numbers set the function's code:
// Abs 860, Mod 864, Pow and Or 865, And 866, Implication1 867,
// Implication2 868, Ceil, Floor, Round and Trunc 88, the others 2.
ZORWBX_API ZorWBValue ZorWBInverseAbs(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                      const ZorWBValue& domain);
// Logical inverses: every operand must be convertible to a boolean. An
// integer domain keeps its zeros when the operand may be false and its
// non-zero values when it may be true.
ZORWBX_API ZorWBValue ZorWBInverseAnd(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                      const ZorWBValue& domain, const ZorWBValue& other);
ZORWBX_API ZorWBValue ZorWBInverseOr(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                     const ZorWBValue& domain, const ZorWBValue& other);
ZORWBX_API ZorWBValue ZorWBInverseImplication1(const ZorWBEnvironment& environment,
                                               const ZorWBValue& result, const ZorWBValue& premise,
                                               const ZorWBValue& conclusion);
ZORWBX_API ZorWBValue ZorWBInverseImplication2(const ZorWBEnvironment& environment,
                                               const ZorWBValue& result,
                                               const ZorWBValue& conclusion,
                                               const ZorWBValue& premise);
// Comparisons: the result set must be convertible to a boolean. x = y:
// true narrows x to its intersection with y, false removes y from x when y is
// a single value (through the value exclusion), unknown leaves x. x <> y is
// the same with the result negated.
ZORWBX_API ZorWBValue ZorWBInverseEqual(const ZorWBEnvironment& environment,
                                        const ZorWBValue& result, const ZorWBValue& domain,
                                        const ZorWBValue& other);
ZORWBX_API ZorWBValue ZorWBInverseNotEqual(const ZorWBEnvironment& environment,
                                           const ZorWBValue& result, const ZorWBValue& domain,
                                           const ZorWBValue& other);
// x <= y. LessEqual1 narrows x: true to (-inf, max y], false to the closed
// hull of x > min y (integers: x >= min y + 1). LessEqual2 narrows y: true to
// [min x, +inf), false to the closed hull of y < max x (integers: max x - 1).
ZORWBX_API ZorWBValue ZorWBInverseLessEqual1(const ZorWBEnvironment& environment,
                                             const ZorWBValue& result, const ZorWBValue& x,
                                             const ZorWBValue& y);
ZORWBX_API ZorWBValue ZorWBInverseLessEqual2(const ZorWBEnvironment& environment,
                                             const ZorWBValue& result, const ZorWBValue& y,
                                             const ZorWBValue& x);
ZORWBX_API ZorWBValue ZorWBInverseMin(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                      const ZorWBValue& domain, const ZorWBValue& other);
ZORWBX_API ZorWBValue ZorWBInverseMax(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                      const ZorWBValue& domain, const ZorWBValue& other);
// Also code 11 when the divisor can only be 0.
ZORWBX_API ZorWBValue ZorWBInverseMod1(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& dividend,
                                       const ZorWBValue& divisor);
ZORWBX_API ZorWBValue ZorWBInverseMod2(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& divisor,
                                       const ZorWBValue& dividend);
ZORWBX_API ZorWBValue ZorWBInversePow1(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& base,
                                       const ZorWBValue& exponent);
ZORWBX_API ZorWBValue ZorWBInversePow2(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& exponent,
                                       const ZorWBValue& base);
// Positive difference max(a - b, 0).
ZORWBX_API ZorWBValue ZorWBInverseDim1(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& a,
                                       const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBInverseDim2(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& b,
                                       const ZorWBValue& a);
// |a| with the sign of b (b >= 0 counts as positive).
ZORWBX_API ZorWBValue ZorWBInverseSign1(const ZorWBEnvironment& environment,
                                        const ZorWBValue& result, const ZorWBValue& a,
                                        const ZorWBValue& b);
ZORWBX_API ZorWBValue ZorWBInverseSign2(const ZorWBEnvironment& environment,
                                        const ZorWBValue& result, const ZorWBValue& b,
                                        const ZorWBValue& a);
// atan2(y, x) with its principal range [-pi, pi]. Atan21 narrows y, Atan22
// narrows x.
ZORWBX_API ZorWBValue ZorWBInverseAtan21(const ZorWBEnvironment& environment,
                                         const ZorWBValue& result, const ZorWBValue& y,
                                         const ZorWBValue& x);
ZORWBX_API ZorWBValue ZorWBInverseAtan22(const ZorWBEnvironment& environment,
                                         const ZorWBValue& result, const ZorWBValue& x,
                                         const ZorWBValue& y);
ZORWBX_API ZorWBValue ZorWBInverseCeil(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& domain);
ZORWBX_API ZorWBValue ZorWBInverseFloor(const ZorWBEnvironment& environment,
                                        const ZorWBValue& result, const ZorWBValue& domain);
// Rounding half away from zero.
ZORWBX_API ZorWBValue ZorWBInverseRound(const ZorWBEnvironment& environment,
                                        const ZorWBValue& result, const ZorWBValue& domain);
ZORWBX_API ZorWBValue ZorWBInverseTrunc(const ZorWBEnvironment& environment,
                                        const ZorWBValue& result, const ZorWBValue& domain);
// The step {x0, x1, y0, y1}: y0 for a <= x0, y1 for a >= x1, linear between;
// with x0 == x1, y0 below x0 and y1 at and above it. A null array is
// {0, 0, 0, 1}. Parameters that are not finite, or x0 > x1, set code 2.
ZORWBX_API ZorWBValue ZorWBInverseStep(const ZorWBEnvironment& environment,
                                       const ZorWBValue& result, const ZorWBValue& domain,
                                       const double* parameters);

#endif
