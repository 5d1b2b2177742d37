// The logarithmic sums of the Lazard-Rioboo-Trager method written with ln
// and atan over the reals, for roots of degree 1 and 2 over Q.
//
// The roots polynomial Q is split into its factors of degree 1 and 2
// (ZorWBLowDegreeFactors); any other factor leaves the sum unwritten.
// - A rational root alpha gives alpha ln|S(alpha, x)|.
// - A quadratic factor t^2 + p t + q has the roots alpha = m + w with
//   m = -p/2 and w^2 = delta = m^2 - q. Reducing each coefficient of S
//   modulo the factor to u + v t gives S(alpha, x) = A(x) + w B(x) with
//   A = sum (u + v m) x^k and B = sum v x^k, both over Q. With
//   |delta| = sigma^2 r (sigma rational, r an integer freed of its square
//   factors as far as trial division by small primes sees them):
//   * delta > 0, two real roots m +- sigma sqrt r:
//       (m + sigma sqrt r) ln|A + sigma sqrt r B|
//     + (m - sigma sqrt r) ln|A - sigma sqrt r B|;
//   * delta < 0, the pair m +- i b with b = sigma sqrt r (Bronstein,
//     LogToReal): m ln(A^2 + b^2 B^2) + b LogToAtan(A, b B), where Rioboo's
//     LogToAtan turns i ln((A + i Q) / (A - i Q)) into a sum of
//     2 atan(P_j) with polynomials P_j, by the extended Euclidean
//     algorithm over Q(sqrt r): if Q divides A, 2 atan(A / Q); if
//     deg A < deg Q, LogToAtan(-Q, A); else with Q D - A C = gcd(A, Q) = G,
//     2 atan((A D + Q C) / G) + LogToAtan(D, C). Those arctangents of
//     polynomials have no jump where the integrand is defined.

#include <utility>

#include "polynomial/internal/ZorWBFieldPolynomials.h"
#include "polynomial/internal/ZorWBIntegerPolynomials.h"
#include "polynomial/internal/ZorWBIntegrationSteps.h"
#include "polynomial/internal/ZorWBLowDegreeFactors.h"

namespace ZorWBExact {

namespace {

// u + v sqrt r.
struct QuadraticNumber {
    mpq_class u;
    mpq_class v;
};

// Q(sqrt r) for an integer r > 1 that is not a square; with r = 1 only
// numbers whose v is zero are used, and it is Q itself.
class QuadraticField {
  public:
    using Element = QuadraticNumber;

    explicit QuadraticField(const mpz_class& r) : _r(r) {}

    bool IsZero(const Element& a) const { return sgn(a.u) == 0 && sgn(a.v) == 0; }
    Element Zero() const { return {0, 0}; }
    Element One() const { return {1, 0}; }
    Element Add(const Element& a, const Element& b) const { return {a.u + b.u, a.v + b.v}; }
    Element Sub(const Element& a, const Element& b) const { return {a.u - b.u, a.v - b.v}; }
    Element Neg(const Element& a) const { return {-a.u, -a.v}; }
    Element Mul(const Element& a, const Element& b) const {
        return {a.u * b.u + _r * a.v * b.v, a.u * b.v + a.v * b.u};
    }
    // a not zero: (u - v sqrt r) / (u^2 - r v^2).
    Element Inverse(const Element& a) const {
        mpq_class norm = a.u * a.u - _r * a.v * a.v;
        return {a.u / norm, -a.v / norm};
    }
    long long Bits(const Element& a) const { return ZorWBExact::Bits(a.u) + ZorWBExact::Bits(a.v); }

  private:
    mpq_class _r;
};

using QuadraticPolynomials = FieldPolynomials<QuadraticField>;
using KPoly = QuadraticPolynomials::Poly;

constexpr unsigned long SmallPrimeLimit = 1000;

// value = s^2 r, the square factors of primes below SmallPrimeLimit and a
// square cofactor moved into s (value > 0).
void ExtractSquare(mpz_class value, mpz_class& s, mpz_class& r) {
    s = 1;
    for (unsigned long p = 2; p < SmallPrimeLimit; ++p) {
        unsigned long square = p * p;
        while (mpz_divisible_ui_p(value.get_mpz_t(), square)) {
            value /= square;
            s *= p;
        }
    }
    if (mpz_perfect_square_p(value.get_mpz_t())) {
        s *= sqrt(value);
        value = 1;
    }
    r = value;
}

KPoly ToField(const QPoly& u, const QPoly& v) {
    KPoly p(std::max(u.size(), v.size()), QuadraticNumber{0, 0});
    for (std::size_t i = 0; i < u.size(); ++i)
        p[i].u = u[i];
    for (std::size_t i = 0; i < v.size(); ++i)
        p[i].v = v[i];
    return p;
}

void FromField(const KPoly& p, QPoly& u, QPoly& v) {
    RationalField rationals;
    RationalPolynomials polys(rationals);
    u.clear();
    v.clear();
    for (const QuadraticNumber& c : p) {
        u.push_back(c.u);
        v.push_back(c.v);
    }
    polys.Trim(u);
    polys.Trim(v);
}

// The polynomials P_j of Rioboo's LogToAtan(a, b) = sum of 2 atan(P_j).
std::vector<KPoly> LogToAtan(const QuadraticPolynomials& polys, KPoly a, KPoly b) {
    std::vector<KPoly> arguments;
    while (!b.empty()) {
        KPoly quotient, remainder;
        polys.DivMod(a, b, quotient, remainder);
        if (remainder.empty()) {
            arguments.push_back(std::move(quotient));
            break;
        }
        if (QuadraticPolynomials::Degree(a) < QuadraticPolynomials::Degree(b)) {
            KPoly negated = polys.Scale(b, polys.GetField().Neg(polys.GetField().One()));
            b = std::move(a);
            a = std::move(negated);
            continue;
        }
        KPoly d, c;
        KPoly negatedA = polys.Scale(a, polys.GetField().Neg(polys.GetField().One()));
        KPoly g = polys.ExtendedGcd(b, negatedA, d, c);
        arguments.push_back(polys.Quo(polys.Add(polys.Mul(a, d), polys.Mul(b, c)), g));
        polys.Check(arguments.back());
        a = std::move(d);
        b = std::move(c);
    }
    return arguments;
}

ZorWBIntegralTerm Term(ZorWBIntegralTerm::Kind kind, const mpz_class& radicand,
                       const mpq_class& coefficient, const mpq_class& coefficientRoot,
                       const QPoly& argument, const QPoly& argumentRoot) {
    ZorWBIntegralTerm term;
    term.kind = kind;
    term.radicand = FromGmp(radicand);
    term.coefficient = FromGmp(coefficient);
    term.coefficientRoot = FromGmp(coefficientRoot);
    term.argument = FromGmp(argument);
    term.argumentRoot = FromGmp(argumentRoot);
    return term;
}

// The sign of u + v sqrt r.
int Sign(const mpq_class& u, const mpq_class& v, const mpz_class& r) {
    int su = sgn(u), sv = sgn(v);
    if (sv == 0 || su == sv) return su != 0 ? su : sv;
    if (su == 0) return sv;
    return cmp(u * u, r * v * v) > 0 ? su : sv;
}

// c atan(P) with P's leading coefficient positive (atan is odd); nothing
// for a constant P, whose arctangent is a constant of integration.
void AddArctangent(const mpz_class& r, const mpq_class& c, const mpq_class& cRoot, QPoly u, QPoly v,
                   std::vector<ZorWBIntegralTerm>& terms) {
    std::size_t top = std::max(u.size(), v.size());
    if (top <= 1) return;
    mpq_class leadU = u.size() == top ? u.back() : mpq_class(0);
    mpq_class leadV = v.size() == top ? v.back() : mpq_class(0);
    bool flip = Sign(leadU, leadV, r) < 0;
    for (QPoly* part : {&u, &v}) {
        for (mpq_class& coefficient : *part)
            coefficient = flip ? -coefficient : coefficient;
    }
    terms.push_back(
        Term(ZorWBIntegralTerm::Arctangent, r, flip ? -c : c, flip ? -cRoot : cRoot, u, v));
}

void RationalRootTerms(const ZPoly& factor, const std::vector<QPoly>& argument,
                       std::vector<ZorWBIntegralTerm>& terms) {
    RationalField field;
    RationalPolynomials polys(field);
    mpq_class alpha(-factor[0], factor[1]);
    alpha.canonicalize();
    QPoly s;
    for (const QPoly& coefficient : argument)
        s.push_back(polys.Evaluate(coefficient, alpha));
    polys.Trim(s);
    terms.push_back(Term(ZorWBIntegralTerm::Logarithm, 1, alpha, 0, polys.Monic(s), QPoly()));
}

void QuadraticRootTerms(const ZPoly& factor, const std::vector<QPoly>& argument,
                        std::vector<ZorWBIntegralTerm>& terms) {
    RationalField rationals;
    RationalPolynomials polys(rationals);
    QPoly monic = polys.Monic(ToRational(factor));
    mpq_class m = -monic[1] / 2;
    mpq_class delta = m * m - monic[0];
    // S(alpha, x) = A(x) + w B(x) with w = alpha - m.
    QPoly a, b;
    for (const QPoly& coefficient : argument) {
        QPoly reduced = polys.Rem(coefficient, monic);
        mpq_class u = reduced.size() > 0 ? reduced[0] : mpq_class(0);
        mpq_class v = reduced.size() > 1 ? reduced[1] : mpq_class(0);
        a.push_back(u + v * m);
        b.push_back(v);
    }
    polys.Trim(a);
    polys.Trim(b);
    mpz_class s, r;
    ExtractSquare(abs(delta.get_num()) * delta.get_den(), s, r);
    mpq_class sigma(s, delta.get_den());
    sigma.canonicalize();
    if (sgn(delta) > 0) {
        for (int sign : {1, -1}) {
            terms.push_back(Term(ZorWBIntegralTerm::Logarithm, r, m, sign * sigma, a,
                                 polys.Scale(b, sign * sigma)));
        }
        return;
    }
    // The pair m +- i b, b = sigma sqrt r.
    QPoly norm = polys.Add(polys.Mul(a, a), polys.Scale(polys.Mul(b, b), sigma * sigma * r));
    if (sgn(m) != 0) terms.push_back(Term(ZorWBIntegralTerm::Logarithm, 1, m, 0, norm, QPoly()));
    if (b.empty()) return;
    bool rational = r == 1;
    QuadraticField field(r);
    QuadraticPolynomials kpolys(field);
    KPoly imaginary = rational ? ToField(polys.Scale(b, sigma), QPoly())
                               : ToField(QPoly(), polys.Scale(b, sigma));
    for (const KPoly& p : LogToAtan(kpolys, ToField(a, QPoly()), imaginary)) {
        QPoly u, v;
        FromField(p, u, v);
        if (rational)
            AddArctangent(1, 2 * sigma, 0, u, QPoly(), terms);
        else
            AddArctangent(r, 0, 2 * sigma, u, v, terms);
    }
}

}  // namespace

bool ToRealTerms(const LogarithmicSum& sum, std::vector<ZorWBIntegralTerm>& terms) {
    LowDegreeFactors factors = FindLowDegreeFactors(sum.roots, true);
    if (Degree(factors.rest) >= 1) return false;
    for (const ZPoly& linear : factors.linear)
        RationalRootTerms(linear, sum.argument, terms);
    for (const ZPoly& quadratic : factors.quadratic)
        QuadraticRootTerms(quadratic, sum.argument, terms);
    return true;
}

}  // namespace ZorWBExact
