// The factors of degree 1 and 2 of a square-free integer polynomial f, by
// Zassenhaus's method restricted to those degrees.
//
// Method: take a prime p below 2^31 that divides neither lc(f) nor the
// discriminant (f stays square-free modulo p). Modulo p, gcd(f, x^p - x)
// is the product of the linear factors and gcd(f, x^(p^2) - x) of the
// linear and quadratic ones; equal-degree splitting (Cantor-Zassenhaus)
// separates them. Each modular factor h is lifted by Hensel's quadratic
// lifting (von zur Gathen and Gerhard, Algorithm 15.10) of f = g h to a
// modulus m above 4 |f|_1. A factor G of degree d <= 2 of f over Z then
// shows as lc(f) h mod m, h its monic image (or the product of two linear
// images): by Mignotte's bound the coefficients of lc(f)/lc(G) G are at
// most C(d, j) |f|_2 <= 2 |f|_1 in size, so the symmetric residues give
// it exactly, and a trial division confirms it. An irreducible quadratic
// factor either stays irreducible modulo p or splits into two linear
// images that are not rational roots; both cases are tried.
//
// Cost: O(n^2 log p) word operations for the modular factors, O(n^2)
// operations on integers of the size of m per lifting step and factor,
// and O(l^2) trial divisions for l linear images.

#include "polynomial/internal/ZorWBLowDegreeFactors.h"

#include <utility>

#include "polynomial/internal/ZorWBIntegerPolynomials.h"
#include "polynomial/internal/ZorWBPrimeField.h"

namespace ZorWBExact {

namespace {

constexpr int PrimeTrials = 64;

// A reproducible stream of residues for the equal-degree splitting.
class Residues {
  public:
    Word Next(Word modulus) {
        _state ^= _state << 13;
        _state ^= _state >> 7;
        _state ^= _state << 17;
        return _state % modulus;
    }

  private:
    std::uint64_t _state = 0x9E3779B97F4A7C15ull;
};

// Splits g, monic and the product of distinct irreducible factors of
// degree d modulo p, into those factors.
void SplitEqualDegree(const PrimePolynomials& polys, const PPoly& g, int d, Residues& residues,
                      std::vector<PPoly>& factors) {
    int n = PrimePolynomials::Degree(g);
    if (n <= 0) return;
    if (n == d) {
        factors.push_back(g);
        return;
    }
    Word p = polys.GetField().Modulus();
    mpz_class exponent;
    mpz_ui_pow_ui(exponent.get_mpz_t(), p, static_cast<unsigned long>(d));
    exponent = (exponent - 1) / 2;
    while (true) {
        PPoly a(static_cast<std::size_t>(n));
        for (Word& c : a)
            c = residues.Next(p);
        polys.Trim(a);
        if (PrimePolynomials::Degree(a) < 1) continue;
        PPoly b = polys.Sub(PowerMod(polys, a, exponent, g), PPoly{1});
        PPoly c = polys.Gcd(g, b);
        int degree = PrimePolynomials::Degree(c);
        if (degree <= 0 || degree >= n) continue;
        SplitEqualDegree(polys, c, d, residues, factors);
        SplitEqualDegree(polys, polys.Quo(g, c), d, residues, factors);
        return;
    }
}

ZPoly ToIntegers(const PPoly& p) {
    ZPoly result;
    for (Word c : p)
        result.emplace_back(static_cast<unsigned long>(c));
    return result;
}

// Coefficients reduced into [0, m).
ZPoly Modulo(ZPoly p, const mpz_class& m) {
    for (mpz_class& c : p)
        mpz_fdiv_r(c.get_mpz_t(), c.get_mpz_t(), m.get_mpz_t());
    Trim(p);
    return p;
}

// a = q h + r modulo m, h monic.
void DivideMonic(const ZPoly& a, const ZPoly& h, const mpz_class& m, ZPoly& q, ZPoly& r) {
    r = a;
    q.clear();
    int d = Degree(h);
    if (Degree(r) < d) return;
    q.assign(static_cast<std::size_t>(Degree(r) - d + 1), mpz_class(0));
    for (int k = Degree(r); k >= d; --k) {
        mpz_class factor = r[static_cast<std::size_t>(k)];
        mpz_fdiv_r(factor.get_mpz_t(), factor.get_mpz_t(), m.get_mpz_t());
        q[static_cast<std::size_t>(k - d)] = factor;
        for (int i = 0; i <= d; ++i)
            r[static_cast<std::size_t>(k - d + i)] -= factor * h[static_cast<std::size_t>(i)];
    }
    r.resize(static_cast<std::size_t>(d));
    r = Modulo(r, m);
    Trim(q);
}

// The monic factor of f modulo `target` or more whose image modulo p is
// hp (monic, coprime to its cofactor). Hensel's quadratic lifting of
// f = g h with s g + t h = 1.
ZPoly Lift(const ZPoly& f, const PPoly& hp, const PrimePolynomials& polys, const mpz_class& target,
           mpz_class& modulus) {
    PPoly gp = polys.Quo(Reduce(f, polys.GetField()), hp);
    PPoly sp, tp;
    polys.SolveBezout(gp, hp, PPoly{1}, sp, tp);
    ZPoly g = ToIntegers(gp), h = ToIntegers(hp), s = ToIntegers(sp), t = ToIntegers(tp);
    mpz_class m(static_cast<unsigned long>(polys.GetField().Modulus()));
    while (m <= target) {
        mpz_class mm = m * m;
        ZPoly e = Modulo(Sub(f, Mul(g, h)), mm);
        ZPoly q, r;
        DivideMonic(Modulo(Mul(s, e), mm), h, mm, q, r);
        ZPoly liftedG = Modulo(Add(Add(g, Mul(t, e)), Mul(q, g)), mm);
        ZPoly liftedH = Modulo(Add(h, r), mm);
        ZPoly b = Modulo(Sub(Add(Mul(s, liftedG), Mul(t, liftedH)), ZPoly{1}), mm);
        ZPoly c, d;
        DivideMonic(Modulo(Mul(s, b), mm), liftedH, mm, c, d);
        s = Modulo(Sub(s, d), mm);
        t = Modulo(Sub(Sub(t, Mul(t, b)), Mul(c, liftedG)), mm);
        g = std::move(liftedG);
        h = std::move(liftedH);
        m = std::move(mm);
    }
    modulus = m;
    return h;
}

// The candidate factor lc(f) h mod m in symmetric residues, made primitive.
ZPoly Candidate(const mpz_class& lead, const ZPoly& h, const mpz_class& m) {
    ZPoly candidate = Modulo(Scale(h, lead), m);
    mpz_class half = m / 2;
    for (mpz_class& c : candidate) {
        if (c > half) c -= m;
    }
    Trim(candidate);
    return PrimitivePart(candidate);
}

// Degree 1 or 2 directly: a quadratic splits when its discriminant is a
// square.
void SplitSmall(const ZPoly& f, bool withQuadratics, LowDegreeFactors& result) {
    if (Degree(f) == 1) {
        result.linear.push_back(PrimitivePart(f));
        result.rest = ZPoly{1};
        return;
    }
    mpz_class discriminant = f[1] * f[1] - 4 * f[2] * f[0];
    if (sgn(discriminant) >= 0 && mpz_perfect_square_p(discriminant.get_mpz_t())) {
        mpz_class root = sqrt(discriminant);
        result.linear.push_back(PrimitivePart(ZPoly{f[1] - root, 2 * f[2]}));
        result.linear.push_back(PrimitivePart(ZPoly{f[1] + root, 2 * f[2]}));
        result.rest = ZPoly{1};
    } else if (withQuadratics) {
        result.quadratic.push_back(PrimitivePart(f));
        result.rest = ZPoly{1};
    }
}

// Keeps the candidate when it divides what is left of f.
bool TakeFactor(const ZPoly& candidate, std::vector<ZPoly>& found, ZPoly& rest) {
    ZPoly quotient;
    if (Degree(candidate) < 1 || !DivideExactly(rest, candidate, quotient)) return false;
    found.push_back(candidate);
    rest = std::move(quotient);
    return true;
}

void Search(const ZPoly& f, const PrimePolynomials& polys, bool withQuadratics,
            LowDegreeFactors& result) {
    const PrimeField& field = polys.GetField();
    Word p = field.Modulus();
    PPoly fp = polys.Monic(Reduce(f, field));
    PPoly x{0, 1};
    PPoly xp = PowerMod(polys, x, mpz_class(static_cast<unsigned long>(p)), fp);
    PPoly linearPart = polys.Gcd(fp, polys.Sub(xp, x));
    Residues residues;
    std::vector<PPoly> linearImages, quadraticImages;
    SplitEqualDegree(polys, linearPart, 1, residues, linearImages);
    if (withQuadratics) {
        PPoly others = polys.Quo(fp, linearPart);
        if (PrimePolynomials::Degree(others) >= 2) {
            PPoly xp2 = PowerMod(polys, polys.Rem(xp, others),
                                 mpz_class(static_cast<unsigned long>(p)), others);
            PPoly quadraticPart = polys.Gcd(others, polys.Sub(xp2, x));
            SplitEqualDegree(polys, quadraticPart, 2, residues, quadraticImages);
        }
    }
    if (linearImages.empty() && quadraticImages.empty()) return;

    mpz_class target = 4 * NormOne(f) + 1;
    mpz_class m;
    const mpz_class& lead = f.back();
    ZPoly rest = f;
    std::vector<ZPoly> linearLifts;
    std::vector<bool> rational;
    for (const PPoly& image : linearImages) {
        linearLifts.push_back(Lift(f, image, polys, target, m));
        rational.push_back(TakeFactor(Candidate(lead, linearLifts.back(), m), result.linear, rest));
    }
    if (withQuadratics) {
        for (const PPoly& image : quadraticImages)
            TakeFactor(Candidate(lead, Lift(f, image, polys, target, m), m), result.quadratic,
                       rest);
        for (std::size_t i = 0; i < linearLifts.size(); ++i) {
            for (std::size_t j = i + 1; j < linearLifts.size() && !rational[i]; ++j) {
                if (rational[j]) continue;
                ZPoly product = Modulo(Mul(linearLifts[i], linearLifts[j]), m);
                if (TakeFactor(Candidate(lead, product, m), result.quadratic, rest))
                    rational[i] = rational[j] = true;
            }
        }
    }
    result.rest = PrimitivePart(rest);
}

}  // namespace

LowDegreeFactors FindLowDegreeFactors(const ZPoly& f, bool withQuadratics) {
    LowDegreeFactors result;
    result.rest = f;
    if (Degree(f) < 1) return result;
    if (Degree(f) <= 2) {
        SplitSmall(f, withQuadratics, result);
        return result;
    }
    for (int i = 0; i < PrimeTrials; ++i) {
        PrimeField field(Prime(i));
        if (field.Reduce(f.back()) == 0) continue;
        PrimePolynomials polys(field);
        PPoly fp = Reduce(f, field);
        if (PrimePolynomials::Degree(polys.Gcd(fp, polys.Derivative(fp))) != 0) continue;
        Search(f, polys, withQuadratics, result);
        return result;
    }
    return result;
}

}  // namespace ZorWBExact
