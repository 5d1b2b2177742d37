// Rational integration: the polynomial part, Hermite reduction for the
// rational part (ZorWBHermiteReduction.cpp) and the logarithmic part by the
// Lazard-Rioboo-Trager method, written with ln and atan by
// ZorWBLogToReal.cpp.
//
// Lazard-Rioboo-Trager (Bronstein, Symbolic Integration I, 2.5): for a / d
// with d square-free, the integral's logarithmic part is the sum over the
// roots alpha of R(t) = res_x(d, a - t d') of alpha ln gcd(d, a - alpha d').
// With R = Q_1 Q_2^2 ... (square-free factors), the gcd for the roots of
// Q_i is the subresultant of degree i of d and a - t d' (d itself when
// i = deg d), taken at t = alpha once the factors of its leading
// coefficient that vanish at those roots are divided out. The subresultant
// sequence runs over Z[t] (ZorWBSubresultants.h), so no algebraic number
// is ever computed here; each argument is then reduced modulo Q_i and made
// monic in x.
//
// Cost: dominated by the subresultant sequence, O(n) pseudo-divisions of
// polynomials of degree n in x whose coefficients grow to degree n in t.

#include "polynomial/ZorWBRationalIntegration.h"

#include <cmath>

#include "polynomial/internal/ZorWBFieldPolynomials.h"
#include "polynomial/internal/ZorWBIntegerPolynomials.h"
#include "polynomial/internal/ZorWBIntegrationSteps.h"
#include "polynomial/internal/ZorWBSubresultants.h"

namespace ZorWBExact {

namespace {

// Z[t] as the ring of the subresultant sequence.
struct IntegerPolynomialRing {
    using Element = ZPoly;
    bool IsZero(const ZPoly& a) const { return a.empty(); }
    ZPoly Zero() const { return ZPoly(); }
    ZPoly One() const { return ZPoly{1}; }
    ZPoly Mul(const ZPoly& a, const ZPoly& b) const { return ZorWBExact::Mul(a, b); }
    ZPoly Sub(const ZPoly& a, const ZPoly& b) const { return ZorWBExact::Sub(a, b); }
    ZPoly Neg(const ZPoly& a) const { return Scale(a, mpz_class(-1)); }
    ZPoly ExactDiv(const ZPoly& a, const ZPoly& b) const { return ExactQuotient(a, b); }
    long long Bits(const ZPoly& a) const { return ZorWBExact::Bits(a); }
};

using Bivariate = std::vector<ZPoly>;  // in x, coefficients in Z[t]

// d as a polynomial in x over Z[t], and a - t d' with its denominators
// cleared (both only up to a constant factor, which changes neither the
// roots of the resultant nor the subresultants' gcds).
void Operands(const QPoly& a, const QPoly& d, Bivariate& dx, Bivariate& bx) {
    RationalField field;
    RationalPolynomials polys(field);
    for (const mpz_class& c : PrimitivePart(d))
        dx.push_back(sgn(c) == 0 ? ZPoly() : ZPoly{c});
    QPoly derivative = polys.Derivative(d);
    std::vector<QPoly> b(derivative.size());
    mpz_class common = 1;
    for (std::size_t k = 0; k < b.size(); ++k) {
        b[k] = QPoly{k < a.size() ? a[k] : mpq_class(0), -derivative[k]};
        polys.Trim(b[k]);
        for (const mpq_class& c : b[k])
            mpz_lcm(common.get_mpz_t(), common.get_mpz_t(), c.get_den_mpz_t());
    }
    for (const QPoly& coefficient : b) {
        ZPoly integer;
        for (const mpq_class& c : coefficient)
            integer.push_back(c.get_num() * (common / c.get_den()));
        bx.push_back(integer);
    }
}

// S with the factors of its leading coefficient that it shares with q
// divided out of every coefficient.
void DivideLeadingFactors(Bivariate& s, const ZPoly& q) {
    if (Degree(s.back()) < 1) return;
    std::vector<ZPoly> factors = SquareFreeFactors(PrimitivePart(s.back()));
    for (std::size_t j = 0; j < factors.size(); ++j) {
        ZPoly common = Gcd(factors[j], q);
        if (Degree(common) < 1) continue;
        ZPoly power{1};
        for (std::size_t k = 0; k <= j; ++k)
            power = Mul(power, common);
        for (ZPoly& coefficient : s)
            coefficient = ExactQuotient(coefficient, power);
    }
}

// The coefficients of s reduced modulo q and made monic in x.
std::vector<QPoly> MonicModulo(const Bivariate& s, const ZPoly& q) {
    RationalField field;
    RationalPolynomials polys(field);
    QPoly modulus = ToRational(q);
    QPoly inverse, unused;
    QPoly g = polys.ExtendedGcd(polys.Rem(ToRational(s.back()), modulus), modulus, inverse, unused);
    if (RationalPolynomials::Degree(g) != 0) throw Unhandled();
    std::vector<QPoly> argument;
    for (const ZPoly& coefficient : s)
        argument.push_back(polys.Rem(polys.Mul(ToRational(coefficient), inverse), modulus));
    return argument;
}

}  // namespace

std::vector<LogarithmicSum> LogarithmicPart(const QPoly& a, const QPoly& d) {
    Bivariate dx, bx;
    Operands(a, d, dx, bx);
    IntegerPolynomialRing ring;
    std::vector<Bivariate> chain;
    ZPoly resultant = SubresultantSequence<IntegerPolynomialRing>(ring).Run(dx, bx, chain);
    std::vector<LogarithmicSum> sums;
    ZPoly r = PrimitivePart(resultant);
    if (Degree(r) < 1) return sums;
    std::vector<ZPoly> factors = SquareFreeFactors(r);
    int n = static_cast<int>(dx.size()) - 1;
    for (std::size_t index = 0; index < factors.size(); ++index) {
        const ZPoly& q = factors[index];
        int i = static_cast<int>(index) + 1;
        if (Degree(q) < 1) continue;
        Bivariate s;
        if (i == n) {
            s = dx;
        } else {
            for (std::size_t k = 1; k < chain.size() && s.empty(); ++k) {
                if (static_cast<int>(chain[k].size()) - 1 == i) s = chain[k];
            }
            if (s.empty()) throw Unhandled();
            DivideLeadingFactors(s, q);
        }
        sums.push_back({q, MonicModulo(s, q)});
    }
    return sums;
}

}  // namespace ZorWBExact

using namespace ZorWBExact;

double ZorWBIntegralTerm::Evaluate(double x) const {
    double root = std::sqrt(radicand.ToReal());
    double c = coefficient.ToReal() + coefficientRoot.ToReal() * root;
    double value = argument.Evaluate(x) + argumentRoot.Evaluate(x) * root;
    return kind == Logarithm ? c * std::log(std::fabs(value)) : c * std::atan(value);
}

double ZorWBRationalAntiDerivative::Evaluate(double x) const {
    double value = polynomialPart.Evaluate(x);
    if (!numerator.IsZero()) value += numerator.Evaluate(x) / denominator.Evaluate(x);
    for (const ZorWBIntegralTerm& term : terms)
        value += term.Evaluate(x);
    return value;
}

ZorWBPolynomialStatus ZorWBRationalIntegration::LogarithmicPart(
    const ZorWBPolynomial& a, const ZorWBPolynomial& d, std::vector<ZorWBLogarithmicSum>& sums) {
    if (d.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(a) || !WithinLimits(d)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        std::vector<ZorWBLogarithmicSum> result;
        if (!a.IsZero() && a.GetDegree() < d.GetDegree()) {
            for (const LogarithmicSum& sum : ZorWBExact::LogarithmicPart(ToGmp(a), ToGmp(d))) {
                ZorWBLogarithmicSum converted{FromGmp(sum.roots), {}};
                for (const QPoly& coefficient : sum.argument)
                    converted.argument.push_back(FromGmp(coefficient));
                result.push_back(std::move(converted));
            }
        }
        sums = std::move(result);
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBRationalIntegration::Integrate(const ZorWBPolynomial& numerator,
                                                          const ZorWBPolynomial& denominator,
                                                          ZorWBRationalAntiDerivative& result) {
    if (denominator.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(numerator) || !WithinLimits(denominator))
        return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        RationalField field;
        RationalPolynomials polys(field);
        ZorWBRationalAntiDerivative antiDerivative;
        QPoly n = ToGmp(numerator), d = ToGmp(denominator);
        if (!n.empty()) {
            Cancel(n, d);
            QPoly polynomial, a;
            polys.DivMod(n, d, polynomial, a);
            if (!a.empty()) {
                QPoly g, h, reduced, s, more, r;
                ZorWBExact::HermiteReduce(a, d, g, h, reduced, s);
                antiDerivative.numerator = FromGmp(g);
                antiDerivative.denominator = FromGmp(h);
                polys.DivMod(reduced, s, more, r);
                polynomial = polys.Add(polynomial, more);
                if (!r.empty()) {
                    Cancel(r, s);
                    for (const LogarithmicSum& sum : ZorWBExact::LogarithmicPart(r, s)) {
                        if (!ToRealTerms(sum, antiDerivative.terms))
                            return ZorWBPolynomialStatus::RootsBeyondQuadratic;
                    }
                }
            }
            antiDerivative.polynomialPart = FromGmp(polynomial).AntiDerivative();
        }
        result = std::move(antiDerivative);
        return ZorWBPolynomialStatus::Success;
    });
}
