#ifndef ZORWB_CONSTANTARITHMETIC_H
#define ZORWB_CONSTANTARITHMETIC_H

#include <cmath>

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpressionType.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

// The arithmetic of constant folding, shared by the simplifier and the linear
// elimination so that both fold to the same values.
//
// Integers and fractions of Pi (n/d * Pi^p) are rationals and combine exactly:
// products and quotients always (the powers of Pi add), sums when both have
// the same power of Pi or one of them is 0. Every other pair goes through the
// value functions. A fold fails (false, out unchanged) when the exact result
// does not fit the finite integer range of a fraction and the value function
// reports an error or gives an undefined value; the host's error word is left
// as it was.
namespace ZorWBConstantArithmetic {

// Whether v is an integer of the finite range or a fraction with a non-zero
// denominator and finite parts.
ZORWBX_API bool IsRational(const ZorWBValue& v);

// Whether v is exactly d: an integer, real or fraction of that value, or an
// interval or enumeration whose two bounds are d.
ZORWBX_API bool IsExactly(const ZorWBValue& v, double d);

// a + b. With mixPowers false, two rationals of different powers of Pi do
// not fold (the sum has no exact form); with it, they fold as reals.
ZORWBX_API bool Sum(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
                    bool mixPowers, ZorWBValue& out);
ZORWBX_API bool Product(const ZorWBEnvironment& environment, const ZorWBValue& a,
                        const ZorWBValue& b, ZorWBValue& out);
// a / b; a rational divided by the rational 0 does not fold.
ZORWBX_API bool Quotient(const ZorWBEnvironment& environment, const ZorWBValue& a,
                         const ZorWBValue& b, ZorWBValue& out);
// base ^ exponent: exact for a rational base and an integer exponent (a
// negative one needs a non-zero base).
ZORWBX_API bool Power(const ZorWBEnvironment& environment, const ZorWBValue& base,
                      const ZorWBValue& exponent, ZorWBValue& out);
// Sin, Cos and Tan of a multiple of Pi/2 given as a rational: the exact
// integer result (Tan only at even multiples); false for anything else.
ZORWBX_API bool TrigonometricOfPi(ZorWBExpressionType type, const ZorWBValue& angle,
                                  ZorWBValue& out);

// Runs a value function with a clean error word: true when it reported no
// error and gave a defined value that is not a real beyond the real limit (a
// product of huge and tiny factors folded in the wrong order would otherwise
// become infinite). The error word is restored afterwards.
template <class Function>
bool Checked(const ZorWBEnvironment& environment, Function&& function, ZorWBValue& out) {
    unsigned int saved = environment.GetError();
    environment.ClearError();
    ZorWBValue result = function();
    bool overflowed =
        result.GetType() == ZorWBRealType && !(std::fabs(result.GetAsReal()) <= ZorWBRealLimit);
    bool ok = environment.GetError() == ZorWBError::None && !result.IsAKindOf(ZorWBUndefinedType) &&
              !overflowed;
    environment.ClearError();
    environment.SetError(saved);
    if (ok) out = result;
    return ok;
}

}  // namespace ZorWBConstantArithmetic

#endif
