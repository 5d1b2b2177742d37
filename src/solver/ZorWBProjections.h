#ifndef ZORWB_PROJECTIONS_H
#define ZORWB_PROJECTIONS_H

#include "ZorWBxExport.h"
#include "solver/ZorWBRoundedInterval.h"

// Backward operators of constraint propagation on outward-rounded intervals.
// Given z = f(x, y) with z known to lie in Z, each narrows the domains of the
// operands to the points that can still produce a value of Z: the hull of
// the exact set, computed outward, so that no point of the set is ever
// removed. The set each one computes is written above it; "A ÷ B" is the
// division that keeps the two half-lines of a divisor holding 0 apart, and
// the whole line when both A and B hold 0 (t · 0 = 0 for every t).
//
// Every function narrows its operands in place and answers false when one
// of them became empty (no point of the domains can satisfy z in Z).
namespace ZorWBProjection {

// z = x + y:  x ∈ X ∩ (Z − Y),  y ∈ Y ∩ (Z − X).
ZORWBX_API bool Add(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x,
                    ZorWBRoundedInterval& y);
// z = x · y:  x ∈ X ∩ (Z ÷ Y),  y ∈ Y ∩ (Z ÷ X).
ZORWBX_API bool Multiply(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x,
                         ZorWBRoundedInterval& y);
// z = c · x for a number c != 0:  x ∈ X ∩ (Z / c).
ZORWBX_API bool Scale(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, double c);
// z = x / y:  x ∈ X ∩ (Z · Y),  y ∈ Y ∩ (X ÷ Z).
ZORWBX_API bool Divide(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x,
                       ZorWBRoundedInterval& y);
// z = −x:  x ∈ X ∩ (−Z).
ZORWBX_API bool Negate(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = xⁿ, n > 0 even:  x ∈ X ∩ (−ⁿ√Z⁺ ∪ ⁿ√Z⁺) with Z⁺ = Z ∩ [0, +∞);
// n odd:  x ∈ X ∩ ⁿ√Z;  n < 0:  x ∈ X ∩ {x : x^−n ∈ 1 ÷ Z};  n = 0: X when
// 1 ∈ Z, else ∅.
ZORWBX_API bool Power(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, int n);
// z = ⁿ√x, n even:  x ∈ X ∩ (Z⁺)ⁿ;  n odd:  x ∈ X ∩ Zⁿ.
ZORWBX_API bool Root(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, int n);
// z = exp x:  x ∈ X ∩ ln(Z ∩ (0, +∞)).
ZORWBX_API bool Exponential(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = ln x:  x ∈ X ∩ exp(Z).
ZORWBX_API bool Logarithm(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = log₁₀ x:  x ∈ X ∩ 10^Z.
ZORWBX_API bool Logarithm10(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = sin x:  x ∈ X ∩ ⋃ₖ ([asin Y, asin Y̅] + 2kπ ∪ [π − asin Y̅, π − asin Y] + 2kπ)
// with Y = Z ∩ [−1, 1] (Y and Y̅ its bounds).
ZORWBX_API bool Sine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = cos x:  x ∈ X ∩ ⋃ₖ ([acos Y̅, acos Y] + 2kπ ∪ [2π − acos Y, 2π − acos Y̅] + 2kπ).
ZORWBX_API bool Cosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = tan x:  x ∈ X ∩ ⋃ₖ ([atan Z, atan Z̅] + kπ).
ZORWBX_API bool Tangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = asin x:  x ∈ X ∩ sin(Z ∩ [−π/2, π/2]).
ZORWBX_API bool ArcSine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = acos x:  x ∈ X ∩ cos(Z ∩ [0, π]).
ZORWBX_API bool ArcCosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = atan x:  x ∈ X ∩ tan(Z ∩ (−π/2, π/2)), a bound of Z at ±π/2 giving ±∞.
ZORWBX_API bool ArcTangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = sinh x:  x ∈ X ∩ asinh Z.
ZORWBX_API bool HyperbolicSine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = cosh x:  x ∈ X ∩ (−acosh Z ∪ acosh Z).
ZORWBX_API bool HyperbolicCosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = tanh x:  x ∈ X ∩ atanh(Z ∩ [−1, 1]).
ZORWBX_API bool HyperbolicTangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = asinh x:  x ∈ X ∩ sinh Z.
ZORWBX_API bool AreaSine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = acosh x:  x ∈ X ∩ cosh(Z ∩ [0, +∞)).
ZORWBX_API bool AreaCosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = atanh x:  x ∈ X ∩ tanh Z.
ZORWBX_API bool AreaTangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = |x|:  x ∈ X ∩ (−Z⁺ ∪ Z⁺).
ZORWBX_API bool Absolute(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x);
// z = min(x, y):  x ∈ X ∩ [Z, +∞), and x ∈ X ∩ Z when Y > Z̅ (y can never be
// the minimum); y alike.
ZORWBX_API bool Minimum(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x,
                        ZorWBRoundedInterval& y);
// z = max(x, y):  x ∈ X ∩ (−∞, Z̅], and x ∈ X ∩ Z when Y̅ < Z; y alike.
ZORWBX_API bool Maximum(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x,
                        ZorWBRoundedInterval& y);

// x narrowed to the hull of its intersections with pieces[0..count).
ZORWBX_API ZorWBRoundedInterval HullOfIntersections(const ZorWBRoundedInterval& x,
                                                    const ZorWBRoundedInterval* pieces, int count);

}  // namespace ZorWBProjection

#endif
