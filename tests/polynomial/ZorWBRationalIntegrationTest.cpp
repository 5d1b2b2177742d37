#include <cmath>

#include "PolynomialTestSupport.h"
#include "polynomial/ZorWBPolynomialFactors.h"
#include "polynomial/ZorWBRationalIntegration.h"

namespace {

// A rational function with known poles: a random numerator over a product
// of powers of x - r (rational r) and of irreducible quadratics.
struct Integrand {
    ZorWBPolynomial numerator;
    ZorWBPolynomial denominator = ZorWBPolynomial(ZorWBRational(1));
    std::vector<double> poles;
};

Integrand Generate(PolynomialGenerator& generate) {
    Integrand f;
    int pieces = static_cast<int>(generate.Integer(1, 4));
    for (int i = 0; i < pieces; ++i) {
        int power = static_cast<int>(generate.Integer(1, 3));
        if (generate.Chance(50)) {
            ZorWBRational root = generate.Rational(4, 3);
            f.denominator *= ZorWBPolynomial::Linear(root).Power(power);
            f.poles.push_back(root.ToReal());
        } else {
            f.denominator *= generate.Irreducible(3).Power(power);
        }
    }
    f.numerator = generate.Polynomial(
        static_cast<int>(generate.Integer(0, f.denominator.GetDegree() + 2)), 6, 2);
    return f;
}

// The largest relative gap between F' (central differences) and f at
// sampled points kept away from the poles.
double WorstDerivativeGap(const ZorWBRationalAntiDerivative& F, const Integrand& f,
                          std::mt19937& random) {
    double worst = 0.0;
    for (int sample = 0; sample < 12; ++sample) {
        double x = std::uniform_real_distribution<double>(-5.0, 5.0)(random);
        bool near = false;
        for (double pole : f.poles)
            near = near || std::fabs(x - pole) < 0.05;
        if (near) continue;
        double h = 1e-5;
        double numeric = (F.Evaluate(x + h) - F.Evaluate(x - h)) / (2 * h);
        double exact = f.numerator.Evaluate(x) / f.denominator.Evaluate(x);
        worst = std::max(worst, std::fabs(numeric - exact) / (1.0 + std::fabs(exact)));
    }
    return worst;
}

}  // namespace

// Every antiderivative differentiates back to its integrand, over generated
// rational functions with rational and quadratic poles. Their residues lie
// in Q or in the quadratic fields of the denominator's factors, so every
// one of them must close.
TEST(ZorWBRationalIntegration, EveryAntiDerivativeDifferentiatesBack) {
    PolynomialGenerator generate(51);
    for (int round = 0; round < 200; ++round) {
        Integrand f = Generate(generate);
        ZorWBRationalAntiDerivative F;
        ZorWBPolynomialStatus status =
            ZorWBRationalIntegration::Integrate(f.numerator, f.denominator, F);
        if (f.denominator.GetDegree() > 0 &&
            status == ZorWBPolynomialStatus::RootsBeyondQuadratic) {
            // Two quadratic factors may make residues of degree 4.
            continue;
        }
        ASSERT_EQ(status, ZorWBPolynomialStatus::Success)
            << f.numerator.ToText() << " / " << f.denominator.ToText();
        EXPECT_LT(WorstDerivativeGap(F, f, generate.Random()), 1e-5)
            << f.numerator.ToText() << " / " << f.denominator.ToText();
        // The rational part's denominator divides the integrand's.
        ZorWBPolynomial q, r;
        ZorWBPolynomial::Divide(f.denominator * f.denominator, F.denominator, q, r);
        EXPECT_TRUE(r.IsZero());
    }
}

TEST(ZorWBRationalIntegration, KnownAntiDerivatives) {
    ZorWBRationalAntiDerivative F;
    // 1 / (x^2 + 1) = atan(x)'.
    ASSERT_EQ(ZorWBRationalIntegration::Integrate(Integers({1}), Integers({1, 0, 1}), F),
              ZorWBPolynomialStatus::Success);
    ASSERT_EQ(F.terms.size(), 1u);
    EXPECT_EQ(F.terms[0].kind, ZorWBIntegralTerm::Arctangent);
    EXPECT_EQ(F.terms[0].coefficient, ZorWBRational(1));
    EXPECT_EQ(F.terms[0].argument, Integers({0, 1}));
    // 1 / (x^2 - 1) = (ln|x - 1| - ln|x + 1|)' / 2.
    ASSERT_EQ(ZorWBRationalIntegration::Integrate(Integers({1}), Integers({-1, 0, 1}), F),
              ZorWBPolynomialStatus::Success);
    ASSERT_EQ(F.terms.size(), 2u);
    EXPECT_EQ(F.terms[0].coefficient, ZorWBRational(1, 2));
    EXPECT_EQ(F.terms[0].argument, Integers({-1, 1}));
    EXPECT_EQ(F.terms[1].coefficient, ZorWBRational(-1, 2));
    // 1 / (x^2 - 2): the roots +-sqrt(2)/4 of the resultant give
    // sqrt(2)/4 (ln|x - sqrt 2| - ln|x + sqrt 2|).
    ASSERT_EQ(ZorWBRationalIntegration::Integrate(Integers({1}), Integers({-2, 0, 1}), F),
              ZorWBPolynomialStatus::Success);
    ASSERT_EQ(F.terms.size(), 2u);
    EXPECT_EQ(F.terms[0].radicand, ZorWBRational(2));
    EXPECT_EQ(F.terms[0].coefficientRoot, ZorWBRational(1, 4));
    EXPECT_EQ(F.terms[0].argumentRoot, ZorWBPolynomial(ZorWBRational(-1)));
    // x^3 / (x^2 + 1)^2: Hermite's rational part 1 / (2 (x^2 + 1)).
    ASSERT_EQ(ZorWBRationalIntegration::Integrate(Integers({0, 0, 0, 1}),
                                                  Integers({1, 0, 1}).Power(2), F),
              ZorWBPolynomialStatus::Success);
    EXPECT_EQ(F.numerator, ZorWBPolynomial(ZorWBRational(1, 2)));
    EXPECT_EQ(F.denominator, Integers({1, 0, 1}));
    // A polynomial: its antiderivative alone.
    ASSERT_EQ(ZorWBRationalIntegration::Integrate(Integers({1, 2, 3}), Integers({2}), F),
              ZorWBPolynomialStatus::Success);
    EXPECT_EQ(F.polynomialPart, Integers({0, 1, 1, 1}) * ZorWBPolynomial(ZorWBRational(1, 2)));
    EXPECT_TRUE(F.terms.empty());
    // Residues of degree 3 or 4 are not written.
    for (const ZorWBPolynomial& d : {Integers({1, 0, 0, 0, 1}), Integers({-2, 0, 0, 1})}) {
        ZorWBRationalAntiDerivative untouched;
        EXPECT_EQ(ZorWBRationalIntegration::Integrate(Integers({1}), d, untouched),
                  ZorWBPolynomialStatus::RootsBeyondQuadratic);
        EXPECT_TRUE(untouched.terms.empty());
    }
    EXPECT_EQ(ZorWBRationalIntegration::Integrate(Integers({1}), ZorWBPolynomial(), F),
              ZorWBPolynomialStatus::ZeroOperand);
}

// Hermite reduction: a / d = (g / h)' + r / s with s square-free, checked
// exactly at rational points.
TEST(ZorWBRationalIntegration, HermiteReductionSplitsOffTheRationalPart) {
    PolynomialGenerator generate(52);
    for (int round = 0; round < 100; ++round) {
        Integrand f = Generate(generate);
        ZorWBPolynomial g, h, r, s;
        ASSERT_EQ(ZorWBRationalIntegration::HermiteReduce(f.numerator, f.denominator, g, h, r, s),
                  ZorWBPolynomialStatus::Success);
        EXPECT_EQ(Gcd(s, s.Derivative()).GetDegree(), 0);
        for (int point = 0; point < 3; ++point) {
            ZorWBRational x = generate.Rational(40, 11);
            if (f.denominator.Evaluate(x).IsZero()) continue;
            ZorWBRational hx = h.Evaluate(x);
            ZorWBRational derivative =
                (g.Derivative().Evaluate(x) * hx - g.Evaluate(x) * h.Derivative().Evaluate(x)) /
                (hx * hx);
            EXPECT_EQ(derivative + r.Evaluate(x) / s.Evaluate(x),
                      f.numerator.Evaluate(x) / f.denominator.Evaluate(x));
        }
    }
}

// The Lazard-Rioboo-Trager arguments against the Rothstein-Trager
// definition: for a rational root alpha of a sum, S(alpha, x) is
// gcd(d, a - alpha d') up to a constant.
TEST(ZorWBRationalIntegration, LogarithmicArgumentsAreTheGcdsOfRothsteinTrager) {
    PolynomialGenerator generate(53);
    int checked = 0;
    for (int round = 0; round < 80; ++round) {
        // Square-free d with rational roots, some shared residues.
        ZorWBPolynomial d(ZorWBRational(1));
        int nbOfRoots = static_cast<int>(generate.Integer(2, 6));
        for (int i = 0; i < nbOfRoots; ++i)
            d *= ZorWBPolynomial::Linear(ZorWBRational(3 * i + 1) + generate.Rational(1, 2));
        if (generate.Chance(50)) d *= generate.Irreducible(4);
        ZorWBPolynomial a =
            generate.Polynomial(static_cast<int>(generate.Integer(0, d.GetDegree() - 1)), 3);
        if (Gcd(a, d).GetDegree() > 0) continue;
        std::vector<ZorWBLogarithmicSum> sums;
        ASSERT_EQ(ZorWBRationalIntegration::LogarithmicPart(a, d, sums),
                  ZorWBPolynomialStatus::Success);
        for (const ZorWBLogarithmicSum& sum : sums) {
            std::vector<ZorWBRationalRoot> roots;
            ZorWBPolynomialFactors::RationalRoots(sum.roots, roots);
            for (const ZorWBRationalRoot& root : roots) {
                const ZorWBRational& alpha = root.value;
                std::vector<ZorWBRational> coefficients;
                for (const ZorWBPolynomial& c : sum.argument)
                    coefficients.push_back(c.Evaluate(alpha));
                ZorWBPolynomial argument(coefficients);
                EXPECT_EQ(argument.Monic(), Gcd(d, a - ZorWBPolynomial(alpha) * d.Derivative()));
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 50);
}
