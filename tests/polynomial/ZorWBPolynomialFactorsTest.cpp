#include <algorithm>
#include <map>

#include "PolynomialTestSupport.h"
#include "polynomial/ZorWBPolynomialFactors.h"

namespace {

// A product of planted factors: distinct rational roots with
// multiplicities, irreducible quadratics, and a random factor.
struct Planted {
    ZorWBPolynomial product = ZorWBPolynomial(ZorWBRational(1));
    std::map<std::string, int> roots;  // root text -> multiplicity
};

Planted Plant(PolynomialGenerator& generate) {
    Planted planted;
    planted.product = ZorWBPolynomial(generate.Rational(9, 4));
    while (planted.product.IsZero())
        planted.product = ZorWBPolynomial(generate.Rational(9, 4));
    int nbOfRoots = static_cast<int>(generate.Integer(0, 5));
    for (int i = 0; i < nbOfRoots; ++i) {
        ZorWBRational root = generate.Rational(30, 12);
        if (planted.roots.count(root.ToText())) continue;
        int multiplicity = static_cast<int>(generate.Integer(1, 4));
        planted.roots[root.ToText()] = multiplicity;
        planted.product *= ZorWBPolynomial::Linear(root).Power(multiplicity);
    }
    if (generate.Chance(60))
        planted.product *= generate.Irreducible(7).Power(static_cast<int>(generate.Integer(1, 3)));
    return planted;
}

}  // namespace

// p = constant * product of base^multiplicity with monic, square-free,
// pairwise coprime bases of increasing multiplicity; the multiplicities of
// the planted roots are those of the bases that hold them.
TEST(ZorWBPolynomialFactors, SquareFreeFactorsRebuildThePolynomial) {
    PolynomialGenerator generate(31);
    for (int round = 0; round < 150; ++round) {
        Planted planted = Plant(generate);
        ZorWBRational constant;
        std::vector<ZorWBPolynomialFactor> factors;
        ASSERT_EQ(ZorWBPolynomialFactors::SquareFree(planted.product, constant, factors),
                  ZorWBPolynomialStatus::Success);
        ZorWBPolynomial rebuilt(constant);
        for (std::size_t i = 0; i < factors.size(); ++i) {
            const ZorWBPolynomialFactor& factor = factors[i];
            rebuilt *= factor.base.Power(factor.multiplicity);
            EXPECT_EQ(factor.base.GetLeadingCoefficient(), ZorWBRational(1));
            EXPECT_EQ(Gcd(factor.base, factor.base.Derivative()).GetDegree(), 0);
            if (i > 0) {
                EXPECT_GT(factor.multiplicity, factors[i - 1].multiplicity);
            }
            for (std::size_t j = 0; j < i; ++j)
                EXPECT_EQ(Gcd(factor.base, factors[j].base).GetDegree(), 0);
        }
        EXPECT_EQ(rebuilt, planted.product);
        for (const auto& [text, multiplicity] : planted.roots) {
            ZorWBRational root;
            ZorWBRational::FromText(text, root);
            int found = 0;
            for (const ZorWBPolynomialFactor& factor : factors)
                found += factor.base.Evaluate(root).IsZero() ? factor.multiplicity : 0;
            EXPECT_EQ(found, multiplicity) << text;
        }
    }
    ZorWBRational constant;
    std::vector<ZorWBPolynomialFactor> factors;
    EXPECT_EQ(ZorWBPolynomialFactors::SquareFree(ZorWBPolynomial(), constant, factors),
              ZorWBPolynomialStatus::ZeroOperand);
    ASSERT_EQ(ZorWBPolynomialFactors::SquareFree(Integers({-6}), constant, factors),
              ZorWBPolynomialStatus::Success);
    EXPECT_TRUE(factors.empty());
    EXPECT_EQ(constant, ZorWBRational(-6));
}

// Exactly the planted rational roots, with their multiplicities, in
// increasing order; irrational and complex roots add none.
TEST(ZorWBPolynomialFactors, RationalRootsAreFoundExactly) {
    PolynomialGenerator generate(32);
    for (int round = 0; round < 150; ++round) {
        Planted planted = Plant(generate);
        if (generate.Chance(30)) planted.product *= Integers({-2, 0, 1});  // +-sqrt 2
        std::vector<ZorWBRationalRoot> roots;
        ASSERT_EQ(ZorWBPolynomialFactors::RationalRoots(planted.product, roots),
                  ZorWBPolynomialStatus::Success);
        ASSERT_EQ(roots.size(), planted.roots.size()) << planted.product.ToText();
        for (std::size_t i = 0; i < roots.size(); ++i) {
            EXPECT_EQ(planted.roots[roots[i].value.ToText()], roots[i].multiplicity);
            if (i > 0) {
                EXPECT_LT(roots[i - 1].value, roots[i].value);
            }
        }
    }
    // Large roots of a high-degree polynomial.
    ZorWBPolynomial wide(ZorWBRational(1));
    for (int k = 1; k <= 25; ++k)
        wide *= ZorWBPolynomial::Linear(ZorWBRational(1000003LL * k, 97));
    std::vector<ZorWBRationalRoot> roots;
    ASSERT_EQ(ZorWBPolynomialFactors::RationalRoots(wide * Integers({1, 0, 1}), roots),
              ZorWBPolynomialStatus::Success);
    ASSERT_EQ(roots.size(), 25u);
    EXPECT_EQ(roots.back().value, ZorWBRational(25000075, 97));
}

// numerator / denominator = polynomial part + sum of the fractions, checked
// exactly at rational points; the bases are x - r for the rational roots and
// whole square-free factors otherwise, each numerator of lower degree than
// its base.
TEST(ZorWBPolynomialFactors, PartialFractionsAddUpToTheFunction) {
    PolynomialGenerator generate(33);
    for (int round = 0; round < 120; ++round) {
        Planted planted = Plant(generate);
        ZorWBPolynomial& denominator = planted.product;
        ZorWBPolynomial numerator = generate.Polynomial(
            static_cast<int>(generate.Integer(0, denominator.GetDegree() + 2)), 20, 3);
        ZorWBPartialFractionDecomposition result;
        ASSERT_EQ(ZorWBPolynomialFactors::PartialFractions(numerator, denominator, result),
                  ZorWBPolynomialStatus::Success);
        for (const ZorWBPartialFraction& fraction : result.fractions) {
            EXPECT_LT(fraction.numerator.GetDegree(), fraction.base.GetDegree());
            EXPECT_FALSE(fraction.numerator.IsZero());
            if (fraction.base.GetDegree() == 1) {
                EXPECT_GE(planted.roots[(-fraction.base.GetCoefficient(0)).ToText()],
                          fraction.power);
            }
        }
        for (int point = 0; point < 4; ++point) {
            ZorWBRational x = generate.Rational(50, 13);
            if (denominator.Evaluate(x).IsZero()) continue;
            ZorWBRational sum = result.polynomialPart.Evaluate(x);
            for (const ZorWBPartialFraction& fraction : result.fractions) {
                ZorWBRational power(1);
                for (int k = 0; k < fraction.power; ++k)
                    power *= fraction.base.Evaluate(x);
                sum += fraction.numerator.Evaluate(x) / power;
            }
            EXPECT_EQ(sum, numerator.Evaluate(x) / denominator.Evaluate(x));
        }
    }
    ZorWBPartialFractionDecomposition result;
    EXPECT_EQ(ZorWBPolynomialFactors::PartialFractions(Integers({1}), ZorWBPolynomial(), result),
              ZorWBPolynomialStatus::ZeroOperand);
}

TEST(ZorWBPolynomialFactors, PartialFractionsOfAKnownFunction) {
    // (x^5 + 1) / ((x - 1)^2 (x^2 + 2)(x^2 + 1)): the quartic has no rational
    // root and stays whole.
    ZorWBPolynomial denominator =
        Integers({-1, 1}).Power(2) * Integers({2, 0, 1}) * Integers({1, 0, 1});
    ZorWBPartialFractionDecomposition result;
    ASSERT_EQ(
        ZorWBPolynomialFactors::PartialFractions(Integers({1, 0, 0, 0, 0, 1}), denominator, result),
        ZorWBPolynomialStatus::Success);
    EXPECT_TRUE(result.polynomialPart.IsZero());
    ASSERT_EQ(result.fractions.size(), 3u);
    EXPECT_EQ(result.fractions[0].base, Integers({2, 0, 3, 0, 1}));
    EXPECT_EQ(result.fractions[0].numerator.ToText(), "13/18*x^3 + 25/18*x^2 + 11/9*x + 8/9");
    EXPECT_EQ(result.fractions[1].numerator, ZorWBPolynomial(ZorWBRational(5, 18)));
    EXPECT_EQ(result.fractions[1].power, 1);
    EXPECT_EQ(result.fractions[2].numerator, ZorWBPolynomial(ZorWBRational(1, 3)));
    EXPECT_EQ(result.fractions[2].power, 2);
}
