// The exact polynomial algorithms on generated polynomials, each answer
// checked against what a separate path decides:
// - gcd: with a and b coprime (Euclid's algorithm over Q says so, and its
//   cofactors satisfy s a + t b = g), gcd(a g, b g) is g made monic;
// - resultant: zero exactly when the gcd is not constant, and equal to the
//   modular resultant of the same polynomials seen in several variables;
// - root isolation: the planted rational roots and the roots of x^2 - c
//   are each in exactly one interval, the intervals' closures are
//   disjoint and sorted, and the multiplicities are the planted ones;
// - integration: of numerators over products of x - r and of irreducible
//   quadratics, which always has rational or quadratic residues: it must
//   close (or stop at the size limits); Hermite's identity holds exactly at
//   rational points, and the antiderivative's central differences match the
//   integrand away from the poles, also through CreateAntiDerivative (which
//   must close too when the integrand's coefficients are written exactly).

#include <cmath>
#include <string>
#include <vector>

#include "FuzzBytes.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBPolynomialTools.h"
#include "polynomial/ZorWBMultiPolynomial.h"
#include "polynomial/ZorWBPolynomialGcd.h"
#include "polynomial/ZorWBRationalIntegration.h"
#include "polynomial/ZorWBRealRoots.h"

namespace {

using Status = ZorWBPolynomialStatus;

// Two decisions read in order (an argument list would leave the order to
// the compiler).
ZorWBRational Fraction(FuzzBytes& in, int numerators, int offset, int denominators) {
    long long numerator = in.Index(numerators) - offset;
    long long denominator = in.Index(denominators) + 1;
    return ZorWBRational(numerator, denominator);
}

ZorWBRational SmallRational(FuzzBytes& in) {
    return Fraction(in, 41, 20, 6);
}

ZorWBRational AnyRational(FuzzBytes& in) {
    if (!in.Chance(15)) return SmallRational(in);
    long long numerator =
        static_cast<long long>((static_cast<std::uint64_t>(in.Word()) << 32) | in.Word());
    return ZorWBRational(numerator, static_cast<long long>(in.Word()) + 1);
}

ZorWBPolynomial Polynomial(FuzzBytes& in, int maxDegree) {
    std::vector<ZorWBRational> coefficients;
    for (int i = in.Index(maxDegree + 1); i >= 0; --i)
        coefficients.push_back(AnyRational(in));
    return ZorWBPolynomial(coefficients);
}

std::string Text(const ZorWBPolynomial& p) {
    return p.ToText();
}

ZorWBPolynomial Gcd(const ZorWBPolynomial& a, const ZorWBPolynomial& b) {
    ZorWBPolynomial g;
    if (ZorWBPolynomialGcd::Gcd(a, b, g) != Status::Success) FuzzFail("gcd failed");
    return g;
}

void CheckGcd(FuzzBytes& in) {
    ZorWBPolynomial a = Polynomial(in, 8), b = Polynomial(in, 8), g = Polynomial(in, 6);
    ZorWBPolynomial euclid, s, t;
    FUZZ_CHECK(ZorWBPolynomialGcd::ExtendedGcd(a, b, euclid, s, t) == Status::Success,
               "extended gcd failed");
    FUZZ_CHECK(s * a + t * b == euclid, "s a + t b != gcd for " + Text(a) + " ; " + Text(b));
    FUZZ_CHECK(Gcd(a, b) == euclid, "gcd differs from Euclid's for " + Text(a) + " ; " + Text(b));
    if (euclid.GetDegree() != 0 || g.IsZero()) return;
    FUZZ_CHECK(Gcd(a * g, b * g) == g.Monic(),
               "gcd(a g, b g) != g for " + Text(a) + " ; " + Text(b) + " ; " + Text(g));
}

void CheckResultant(FuzzBytes& in) {
    ZorWBPolynomial f = Polynomial(in, 7), g = Polynomial(in, 7);
    if (in.Chance(50)) {
        ZorWBPolynomial common = Polynomial(in, 3);
        f *= common;
        g *= common;
    }
    ZorWBRational resultant;
    FUZZ_CHECK(ZorWBPolynomialGcd::Resultant(f, g, resultant) == Status::Success,
               "resultant failed");
    bool zero = f.IsZero() || g.IsZero() || Gcd(f, g).GetDegree() > 0;
    FUZZ_CHECK(resultant.IsZero() == zero,
               "resultant " + resultant.ToText() + " for " + Text(f) + " ; " + Text(g));
    ZorWBMultiPolynomial modular;
    FUZZ_CHECK(ZorWBMultiResultant::Resultant(ZorWBMultiPolynomial::FromUnivariate(1, 0, f),
                                              ZorWBMultiPolynomial::FromUnivariate(1, 0, g), 0,
                                              modular) == Status::Success,
               "modular resultant failed");
    FUZZ_CHECK(modular.Evaluate(std::vector<ZorWBRational>{}) == resultant,
               "modular resultant differs for " + Text(f) + " ; " + Text(g));
}

void CheckRoots(FuzzBytes& in) {
    ZorWBPolynomial p(ZorWBRational(in.Index(9) + 1));
    std::vector<std::pair<ZorWBRational, int>> planted;
    for (int n = in.Index(6); n > 0; --n) {
        ZorWBRational root = SmallRational(in);
        // Sometimes a neighbour a hair away.
        if (!planted.empty() && in.Chance(30))
            root = planted.back().first + ZorWBRational(1, 1LL << (20 + in.Index(30)));
        bool known = false;
        for (const auto& [value, multiplicity] : planted)
            known = known || value == root;
        if (known) continue;
        planted.emplace_back(root, in.Index(3) + 1);
        p *= ZorWBPolynomial::Linear(root).Power(planted.back().second);
    }
    long long c = in.Index(30) + 2;
    bool square =
        std::sqrt(static_cast<double>(c)) == std::floor(std::sqrt(static_cast<double>(c)));
    int quadratic = square ? 0 : in.Index(3);
    ZorWBPolynomial minusC = ZorWBPolynomial::FromIntegers({-c, 0, 1});
    p *= minusC.Power(quadratic);
    if (in.Chance(50)) p *= ZorWBPolynomial::FromIntegers({in.Index(9) + 1, 0, 1});
    std::vector<ZorWBRealRoot> roots;
    FUZZ_CHECK(ZorWBRealRoots::Isolate(p, roots) == Status::Success, "isolation failed");
    std::size_t expected = planted.size() + (quadratic > 0 ? 2 : 0);
    FUZZ_CHECK(roots.size() == expected, std::to_string(roots.size()) + " roots for " + Text(p));
    std::vector<int> holders(planted.size(), 0);
    for (std::size_t i = 0; i < roots.size(); ++i) {
        const ZorWBRealRoot& root = roots[i];
        FUZZ_CHECK(i == 0 || roots[i - 1].high < root.low, "intervals meet for " + Text(p));
        int multiplicity = 0;
        for (std::size_t k = 0; k < planted.size(); ++k) {
            if (planted[k].first < root.low || planted[k].first > root.high) continue;
            ++holders[k];
            multiplicity = planted[k].second;
        }
        if (multiplicity == 0) {
            // A root of x^2 - c: a sign change of x^2 - c across the interval.
            int low = minusC.Evaluate(root.low).GetSign(),
                high = minusC.Evaluate(root.high).GetSign();
            FUZZ_CHECK(quadratic > 0 && low * high < 0, "unplanted root in " + Text(p));
            multiplicity = quadratic;
        }
        FUZZ_CHECK(root.multiplicity == multiplicity, "multiplicity wrong for " + Text(p));
    }
    for (int count : holders)
        FUZZ_CHECK(count == 1, "a planted root is held by " + std::to_string(count) +
                                   " intervals in " + Text(p));
}

struct Integrand {
    ZorWBPolynomial numerator;
    ZorWBPolynomial denominator = ZorWBPolynomial(ZorWBRational(1));
    std::vector<double> poles;
};

Integrand MakeIntegrand(FuzzBytes& in) {
    Integrand f;
    for (int n = in.Index(4); n > 0; --n) {
        int power = in.Index(3) + 1;
        if (in.Chance(50)) {
            ZorWBRational root = SmallRational(in);
            f.denominator *= ZorWBPolynomial::Linear(root).Power(power);
            f.poles.push_back(root.ToReal());
        } else {
            ZorWBRational p = SmallRational(in);
            ZorWBRational q = p * p / ZorWBRational(4) + Fraction(in, 8, -1, 4);
            f.denominator *= ZorWBPolynomial({q, p, ZorWBRational(1)}).Power(power);
        }
    }
    std::vector<ZorWBRational> coefficients;
    for (int i = in.Index(f.denominator.GetDegree() + 3); i >= 0; --i)
        coefficients.push_back(SmallRational(in));
    f.numerator = ZorWBPolynomial(coefficients);
    return f;
}

// Whether the expression that ZorWBPolynomialTools writes for p holds it
// exactly (every numerator and denominator at most 2^53).
bool Writable(const ZorWBPolynomial& p) {
    double numerator = 0.0, denominator = 0.0;
    for (const ZorWBRational& c : p.GetCoefficients()) {
        if (!c.GetExactRealParts(numerator, denominator)) return false;
    }
    return true;
}

bool NearPole(const Integrand& f, double x) {
    for (double pole : f.poles) {
        if (std::fabs(x - pole) < 0.1) return true;
    }
    return false;
}

// Central differences of F against f at x, where two step sizes agree.
template <class Antiderivative>
void CheckDerivativeAt(const Integrand& f, Antiderivative&& F, double x, const std::string& what) {
    if (NearPole(f, x)) return;
    double coarse = (F(x + 1e-4) - F(x - 1e-4)) / 2e-4;
    double fine = (F(x + 1e-5) - F(x - 1e-5)) / 2e-5;
    if (!std::isfinite(coarse) || std::fabs(coarse - fine) > 1e-5 * (1 + std::fabs(fine))) return;
    double exact = f.numerator.Evaluate(x) / f.denominator.Evaluate(x);
    FUZZ_CHECK(std::fabs(fine - exact) <= 1e-4 * (1 + std::fabs(exact)),
               what + ": F' = " + std::to_string(fine) + " but f = " + std::to_string(exact) +
                   " at " + std::to_string(x) + " for (" + Text(f.numerator) + ") / (" +
                   Text(f.denominator) + ")");
}

void CheckIntegration(FuzzBytes& in) {
    Integrand f = MakeIntegrand(in);
    std::string what = "(" + Text(f.numerator) + ") / (" + Text(f.denominator) + ")";
    ZorWBPolynomial g, h, r, s;
    FUZZ_CHECK(ZorWBRationalIntegration::HermiteReduce(f.numerator, f.denominator, g, h, r, s) ==
                   Status::Success,
               "Hermite reduction failed for " + what);
    for (int k = 0; k < 3; ++k) {
        ZorWBRational x = SmallRational(in);
        if (f.denominator.Evaluate(x).IsZero()) continue;
        ZorWBRational hx = h.Evaluate(x);
        ZorWBRational derivative =
            (g.Derivative().Evaluate(x) * hx - g.Evaluate(x) * h.Derivative().Evaluate(x)) /
            (hx * hx);
        FUZZ_CHECK(derivative + r.Evaluate(x) / s.Evaluate(x) ==
                       f.numerator.Evaluate(x) / f.denominator.Evaluate(x),
                   "Hermite's identity fails for " + what);
    }
    ZorWBRationalAntiDerivative F;
    Status status = ZorWBRationalIntegration::Integrate(f.numerator, f.denominator, F);
    if (status == Status::TooLarge) return;
    FUZZ_CHECK(status == Status::Success,
               std::string(ZorWBPolynomialStatusText(status)) + " for " + what);
    double x = in.Index(2001) / 200.0 - 5.0;
    CheckDerivativeAt(
        f, [&F](double t) { return F.Evaluate(t); }, x, "polynomial terms");
    if (!in.Chance(25)) return;
    ZorWBFactory factory;
    ZorWBVariable* variable = factory.CreateVariable();
    ZorWBExpression* integrand = factory.CreateQuotient(
        ZorWBPolynomialTools::CreateExpression(&factory, f.numerator, variable),
        ZorWBPolynomialTools::CreateExpression(&factory, f.denominator, variable));
    bool done = false;
    ZorWBExpression* antiDerivative = factory.CreateAntiDerivative(integrand, variable, done);
    // Coefficients beyond 2^53 are written as the nearest reals, which
    // change the function: then it need not close.
    FUZZ_CHECK(done || !Writable(f.numerator) || !Writable(f.denominator),
               "CreateAntiDerivative did not close " + what);
    if (!done || !antiDerivative) return;
    CheckDerivativeAt(
        f,
        [&](double t) {
            variable->SetExprValue(ZorWBValue(t));
            return antiDerivative->Eval();
        },
        x, "expression");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzBytes in(data, size);
    switch (in.Index(4)) {
        case 0:
            CheckGcd(in);
            break;
        case 1:
            CheckResultant(in);
            break;
        case 2:
            CheckRoots(in);
            break;
        default:
            CheckIntegration(in);
            break;
    }
    return 0;
}
