// Integer polynomials: content, primitive part, pseudo-division, exact
// division, the greatest common divisor and Yun's square-free
// decomposition.
//
// Gcd first reduces both primitive operands modulo a prime that divides
// neither leading coefficient: the degree of the gcd modulo such a prime
// bounds the degree of the gcd over Z, so a constant gcd modulo p proves
// them coprime, the usual case (a square-free polynomial and its
// derivative), in O(n^2) word operations. Otherwise the primitive
// remainder sequence (pseudo-remainders made primitive at each step, which
// keeps the coefficients as small as the gcd allows) gives the gcd in
// O(n) pseudo-divisions.
//
// Yun's algorithm finds the square-free factors with one gcd of p and p'
// and one gcd per multiplicity afterwards: with u = gcd(p, p'), v = p / u,
// w = p' / u, each round takes a = gcd(v, w - v'), the product of the
// factors of the current multiplicity, and goes on with v / a and
// (w - v') / a.

#include "polynomial/internal/ZorWBIntegerPolynomials.h"

#include <algorithm>
#include <utility>

#include "polynomial/internal/ZorWBFieldPolynomials.h"
#include "polynomial/internal/ZorWBPrimeField.h"

namespace ZorWBExact {

int Degree(const ZPoly& p) {
    return static_cast<int>(p.size()) - 1;
}

void Trim(ZPoly& p) {
    while (!p.empty() && sgn(p.back()) == 0)
        p.pop_back();
}

ZPoly Add(const ZPoly& a, const ZPoly& b) {
    ZPoly sum(std::max(a.size(), b.size()));
    for (std::size_t i = 0; i < a.size(); ++i)
        sum[i] = a[i];
    for (std::size_t i = 0; i < b.size(); ++i)
        sum[i] += b[i];
    Trim(sum);
    return sum;
}

ZPoly Sub(const ZPoly& a, const ZPoly& b) {
    ZPoly difference(std::max(a.size(), b.size()));
    for (std::size_t i = 0; i < a.size(); ++i)
        difference[i] = a[i];
    for (std::size_t i = 0; i < b.size(); ++i)
        difference[i] -= b[i];
    Trim(difference);
    return difference;
}

ZPoly Mul(const ZPoly& a, const ZPoly& b) {
    if (a.empty() || b.empty()) return ZPoly();
    ZPoly product(a.size() + b.size() - 1);
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (sgn(a[i]) == 0) continue;
        for (std::size_t j = 0; j < b.size(); ++j)
            mpz_addmul(product[i + j].get_mpz_t(), a[i].get_mpz_t(), b[j].get_mpz_t());
    }
    Trim(product);
    return product;
}

ZPoly Scale(const ZPoly& a, const mpz_class& c) {
    if (sgn(c) == 0) return ZPoly();
    ZPoly scaled(a);
    for (mpz_class& coefficient : scaled)
        coefficient *= c;
    return scaled;
}

ZPoly Derivative(const ZPoly& a) {
    ZPoly derivative;
    for (std::size_t i = 1; i < a.size(); ++i)
        derivative.push_back(a[i] * static_cast<unsigned long>(i));
    Trim(derivative);
    return derivative;
}

mpz_class Content(const ZPoly& p) {
    mpz_class g = 0;
    for (const mpz_class& c : p) {
        mpz_gcd(g.get_mpz_t(), g.get_mpz_t(), c.get_mpz_t());
        if (g == 1) break;
    }
    return g;
}

ZPoly PrimitivePart(const ZPoly& p) {
    if (p.empty()) return p;
    mpz_class content = Content(p);
    if (sgn(p.back()) < 0) content = -content;
    ZPoly primitive(p);
    if (content != 1) {
        for (mpz_class& c : primitive)
            mpz_divexact(c.get_mpz_t(), c.get_mpz_t(), content.get_mpz_t());
    }
    return primitive;
}

void Split(const QPoly& p, mpq_class& content, ZPoly& primitive) {
    primitive.clear();
    if (p.empty()) {
        content = 0;
        return;
    }
    mpz_class common = 1;
    for (const mpq_class& c : p)
        mpz_lcm(common.get_mpz_t(), common.get_mpz_t(), c.get_den_mpz_t());
    ZPoly scaled;
    scaled.reserve(p.size());
    for (const mpq_class& c : p)
        scaled.push_back(c.get_num() * (common / c.get_den()));
    primitive = PrimitivePart(scaled);
    // p = scaled / common and scaled = primitive * (its content, signed).
    mpz_class factor = Content(scaled);
    if (sgn(scaled.back()) < 0) factor = -factor;
    content = mpq_class(factor, common);
    content.canonicalize();
}

QPoly ToRational(const ZPoly& p) {
    return QPoly(p.begin(), p.end());
}

ZPoly PrimitivePart(const QPoly& p) {
    mpq_class content;
    ZPoly primitive;
    Split(p, content, primitive);
    return primitive;
}

ZPoly PseudoRemainder(const ZPoly& a, const ZPoly& b) {
    ZPoly r(a);
    int degreeB = Degree(b);
    if (Degree(r) < degreeB) return r;
    int unused = Degree(a) - degreeB + 1;
    const mpz_class& lead = b.back();
    while (Degree(r) >= degreeB) {
        mpz_class top = r.back();
        std::size_t shift = static_cast<std::size_t>(Degree(r) - degreeB);
        for (mpz_class& c : r)
            c *= lead;
        for (std::size_t i = 0; i < b.size(); ++i)
            mpz_submul(r[shift + i].get_mpz_t(), top.get_mpz_t(), b[i].get_mpz_t());
        Trim(r);
        --unused;
    }
    if (unused > 0) {
        mpz_class power;
        mpz_pow_ui(power.get_mpz_t(), lead.get_mpz_t(), static_cast<unsigned long>(unused));
        for (mpz_class& c : r)
            c *= power;
    }
    return r;
}

bool DivideExactly(const ZPoly& a, const ZPoly& b, ZPoly& quotient) {
    quotient.clear();
    if (b.empty()) return false;
    if (a.empty()) return true;
    int degreeB = Degree(b);
    if (Degree(a) < degreeB) return false;
    ZPoly r(a);
    ZPoly q(static_cast<std::size_t>(Degree(a) - degreeB + 1));
    const mpz_class& lead = b.back();
    while (Degree(r) >= degreeB) {
        if (!mpz_divisible_p(r.back().get_mpz_t(), lead.get_mpz_t())) return false;
        mpz_class factor;
        mpz_divexact(factor.get_mpz_t(), r.back().get_mpz_t(), lead.get_mpz_t());
        std::size_t shift = static_cast<std::size_t>(Degree(r) - degreeB);
        for (std::size_t i = 0; i < b.size(); ++i)
            mpz_submul(r[shift + i].get_mpz_t(), factor.get_mpz_t(), b[i].get_mpz_t());
        q[shift] = std::move(factor);
        Trim(r);
    }
    if (!r.empty()) return false;
    Trim(q);
    quotient = std::move(q);
    return true;
}

ZPoly ExactQuotient(const ZPoly& a, const ZPoly& b) {
    ZPoly quotient;
    if (!DivideExactly(a, b, quotient)) throw Unhandled();
    return quotient;
}

namespace {

// Whether a prime that divides neither leading coefficient leaves a and b
// (primitive, of degree >= 1) a constant gcd: then they are coprime.
bool ProvablyCoprime(const ZPoly& a, const ZPoly& b) {
    for (int i = 0; i < 3; ++i) {
        PrimeField field(Prime(i));
        if (field.Reduce(a.back()) == 0 || field.Reduce(b.back()) == 0) continue;
        PrimePolynomials polys(field);
        return PrimePolynomials::Degree(polys.Gcd(Reduce(a, field), Reduce(b, field))) == 0;
    }
    return false;
}

}  // namespace

ZPoly Gcd(const ZPoly& a, const ZPoly& b) {
    if (a.empty()) return PrimitivePart(b);
    if (b.empty()) return PrimitivePart(a);
    ZPoly x = PrimitivePart(a), y = PrimitivePart(b);
    if (Degree(x) == 0 || Degree(y) == 0 || ProvablyCoprime(x, y)) return ZPoly{1};
    if (Degree(x) < Degree(y)) std::swap(x, y);
    while (true) {
        ZPoly r = PseudoRemainder(x, y);
        if (r.empty()) return y;
        if (Degree(r) == 0) return ZPoly{1};
        x = std::move(y);
        y = PrimitivePart(r);
        CheckSize(y);
    }
}

std::vector<ZPoly> SquareFreeFactors(const ZPoly& p) {
    std::vector<ZPoly> factors;
    ZPoly derivative = Derivative(p);
    ZPoly u = Gcd(p, derivative);
    ZPoly v = PrimitivePart(ExactQuotient(p, u));
    ZPoly w = ExactQuotient(derivative, u);
    while (Degree(v) > 0) {
        ZPoly y = Sub(w, Derivative(v));
        if (y.empty()) {
            factors.push_back(v);
            break;
        }
        ZPoly a = Gcd(v, y);
        factors.push_back(a);
        v = PrimitivePart(ExactQuotient(v, a));
        w = ExactQuotient(y, a);
        CheckSize(w);
    }
    while (!factors.empty() && Degree(factors.back()) == 0)
        factors.pop_back();
    return factors;
}

void Cancel(QPoly& p, QPoly& q) {
    if (p.empty()) return;
    QPoly common = ToRational(Gcd(PrimitivePart(p), PrimitivePart(q)));
    if (common.size() < 2) return;
    RationalField field;
    RationalPolynomials polys(field);
    p = polys.Quo(p, common);
    q = polys.Quo(q, common);
}

int SignAt(const ZPoly& p, const mpz_class& numerator, const mpz_class& denominator) {
    if (p.empty()) return 0;
    mpz_class value = p.back();
    mpz_class power = 1;
    for (std::size_t i = p.size() - 1; i-- > 0;) {
        power *= denominator;
        value *= numerator;
        mpz_addmul(value.get_mpz_t(), p[i].get_mpz_t(), power.get_mpz_t());
    }
    return sgn(value);
}

mpz_class NormOne(const ZPoly& p) {
    mpz_class norm = 0;
    for (const mpz_class& c : p)
        norm += abs(c);
    return norm;
}

}  // namespace ZorWBExact
