// Hermite reduction, Mack's linear version (Bronstein, Symbolic
// Integration I, 2.2).
//
// With d = d_1 d_2^2 ... d_m^m square-free (Yun), each factor V = d_i of
// multiplicity i >= 2 is brought down one power at a time: for
// U = d / V^i and j = i - 1, ..., 1, solve B U V' + C V = -a / j with
// deg B < deg V (V and U V' are coprime), so that
//   a / (U V^(j+1)) = (B / V^j)' + (-j C - U B') / (U V^j);
// B / V^j joins the rational part and the new numerator goes on. Each step
// is one extended Euclid on polynomials of the degree of V; the rational
// part is gathered over the common denominator, the product of the
// V^(i-1), and reduced once at the end.

#include "polynomial/internal/ZorWBFieldPolynomials.h"
#include "polynomial/internal/ZorWBIntegerPolynomials.h"
#include "polynomial/internal/ZorWBIntegrationSteps.h"

namespace ZorWBExact {

void HermiteReduce(const QPoly& a, const QPoly& d, QPoly& g, QPoly& h, QPoly& r, QPoly& s) {
    RationalField field;
    RationalPolynomials polys(field);
    std::vector<ZPoly> factors = SquareFreeFactors(PrimitivePart(d));
    QPoly numerator = a;
    QPoly denominator = d;
    QPoly rationalNumerator, rationalDenominator{mpq_class(1)};
    for (std::size_t index = 1; index < factors.size(); ++index) {
        int i = static_cast<int>(index) + 1;
        QPoly v = ToRational(factors[index]);
        if (RationalPolynomials::Degree(v) < 1) continue;
        QPoly power{mpq_class(1)};
        for (int k = 0; k < i; ++k)
            power = polys.Mul(power, v);
        QPoly u = polys.Quo(denominator, power);
        QPoly uv = polys.Mul(u, polys.Derivative(v));
        // The part of this factor over V^(i-1), as B_j V^(i-1-j) summed.
        QPoly part;
        QPoly vPower{mpq_class(1)};
        for (int j = i - 1; j >= 1; --j) {
            QPoly b, c;
            polys.SolveBezout(uv, v, polys.Scale(numerator, mpq_class(-1, j)), b, c);
            part = polys.Add(part, polys.Mul(b, vPower));
            vPower = polys.Mul(vPower, v);
            numerator = polys.Sub(polys.Scale(c, mpq_class(-j)), polys.Mul(u, polys.Derivative(b)));
            polys.Check(numerator);
        }
        // vPower is now V^(i-1): add part / V^(i-1) to the rational part.
        rationalNumerator =
            polys.Add(polys.Mul(rationalNumerator, vPower), polys.Mul(part, rationalDenominator));
        rationalDenominator = polys.Mul(rationalDenominator, vPower);
        denominator = polys.Mul(u, v);
        polys.Check(rationalNumerator);
        polys.Check(rationalDenominator);
    }
    Cancel(rationalNumerator, rationalDenominator);
    // A monic denominator.
    mpq_class lead = rationalDenominator.back();
    g = polys.Scale(rationalNumerator, 1 / lead);
    h = polys.Scale(rationalDenominator, 1 / lead);
    r = numerator;
    s = denominator;
}

}  // namespace ZorWBExact

using namespace ZorWBExact;

ZorWBPolynomialStatus ZorWBRationalIntegration::HermiteReduce(
    const ZorWBPolynomial& a, const ZorWBPolynomial& d, ZorWBPolynomial& g, ZorWBPolynomial& h,
    ZorWBPolynomial& r, ZorWBPolynomial& s) {
    if (d.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(a) || !WithinLimits(d)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        QPoly qg, qh, qr, qs;
        ZorWBExact::HermiteReduce(ToGmp(a), ToGmp(d), qg, qh, qr, qs);
        g = FromGmp(qg);
        h = FromGmp(qh);
        r = FromGmp(qr);
        s = FromGmp(qs);
        return ZorWBPolynomialStatus::Success;
    });
}
