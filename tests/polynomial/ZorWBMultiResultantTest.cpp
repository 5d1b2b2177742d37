#include "PolynomialTestSupport.h"
#include "polynomial/ZorWBMultiPolynomial.h"
#include "polynomial/ZorWBPolynomialGcd.h"

namespace {

ZorWBMultiPolynomial Random(PolynomialGenerator& generate, int nbOfVariables, int degree) {
    ZorWBMultiPolynomial p(nbOfVariables);
    int terms = static_cast<int>(generate.Integer(1, 12));
    for (int t = 0; t < terms; ++t) {
        std::vector<int> exponents;
        for (int v = 0; v < nbOfVariables; ++v)
            exponents.push_back(static_cast<int>(generate.Integer(0, degree)));
        p.AddTerm(generate.Rational(9, 3), exponents);
    }
    return p;
}

// p with every variable but `kept` given its value at point.
ZorWBPolynomial Specialize(const ZorWBMultiPolynomial& p, int kept,
                           const std::vector<ZorWBRational>& point) {
    std::vector<ZorWBRational> coefficients(static_cast<std::size_t>(p.GetDegree(kept) + 1));
    for (int t = 0; t < p.GetNbOfTerms(); ++t) {
        ZorWBRational value = p.GetCoefficient(t);
        for (int v = 0; v < p.GetNbOfVariables(); ++v) {
            if (v == kept) continue;
            for (int k = 0; k < p.GetExponent(t, v); ++k)
                value *= point[static_cast<std::size_t>(v)];
        }
        coefficients[static_cast<std::size_t>(p.GetExponent(t, kept))] += value;
    }
    return ZorWBPolynomial(coefficients);
}

}  // namespace

TEST(ZorWBMultiResultant, TwoCirclesGiveOneQuadratic) {
    ZorWBMultiPolynomial x = ZorWBMultiPolynomial::Variable(2, 0);
    ZorWBMultiPolynomial y = ZorWBMultiPolynomial::Variable(2, 1);
    auto c = [](long long value) {
        return ZorWBMultiPolynomial::Constant(2, ZorWBRational(value));
    };
    // (x - 1)^2 + y^2 = 4 and x^2 + (y - 1)^2 = 1.
    ZorWBMultiPolynomial first = x * x + y * y - c(2) * x - c(3);
    ZorWBMultiPolynomial second = x * x + y * y - c(2) * y;
    ZorWBMultiPolynomial resultant;
    ASSERT_EQ(ZorWBMultiResultant::Resultant(first, second, 1, resultant),
              ZorWBPolynomialStatus::Success);
    EXPECT_EQ(resultant.ToText({"x", "y"}), "8*x^2 + 4*x - 3");
    std::vector<ZorWBMultiPolynomial> sequence;
    ASSERT_EQ(ZorWBMultiResultant::Subresultants(first, second, 1, sequence),
              ZorWBPolynomialStatus::Success);
    EXPECT_EQ(sequence.back(), resultant);
}

// The resultant taken at a point of the other variables is the resultant
// of the polynomials taken there (when neither loses its leading
// coefficient), over generated polynomials in 2 and 3 variables; and it
// vanishes identically for a planted common factor.
TEST(ZorWBMultiResultant, ResultantCommutesWithSpecialization) {
    PolynomialGenerator generate(61);
    for (int round = 0; round < 60; ++round) {
        int n = static_cast<int>(generate.Integer(1, 3));
        int variable = static_cast<int>(generate.Integer(0, n - 1));
        ZorWBMultiPolynomial f = Random(generate, n, 3), g = Random(generate, n, 3);
        bool common = generate.Chance(25);
        if (common) {
            ZorWBMultiPolynomial factor = Random(generate, n, 2);
            if (factor.GetDegree(variable) < 1)
                factor += ZorWBMultiPolynomial::Variable(n, variable);
            f *= factor;
            g *= factor;
        }
        ZorWBMultiPolynomial resultant;
        ASSERT_EQ(ZorWBMultiResultant::Resultant(f, g, variable, resultant),
                  ZorWBPolynomialStatus::Success);
        EXPECT_EQ(resultant.GetDegree(variable) <= 0, true);
        if (common) {
            EXPECT_TRUE(resultant.IsZero()) << f.ToText() << " ; " << g.ToText();
            continue;
        }
        for (int sample = 0; sample < 4; ++sample) {
            std::vector<ZorWBRational> point;
            for (int v = 0; v < n; ++v)
                point.push_back(generate.Rational(5, 2));
            ZorWBPolynomial a = Specialize(f, variable, point), b = Specialize(g, variable, point);
            if (a.GetDegree() != f.GetDegree(variable) || b.GetDegree() != g.GetDegree(variable))
                continue;
            ZorWBRational expected;
            ZorWBPolynomialGcd::Resultant(a, b, expected);
            EXPECT_EQ(resultant.Evaluate(point), expected)
                << f.ToText() << " ; " << g.ToText() << " by x" << variable;
        }
    }
}

// x - y and x^2 - 2: eliminating x leaves y^2 - 2; a common root appears
// exactly where the resultant vanishes.
TEST(ZorWBMultiResultant, EliminationAndFailures) {
    ZorWBMultiPolynomial x = ZorWBMultiPolynomial::Variable(2, 0);
    ZorWBMultiPolynomial y = ZorWBMultiPolynomial::Variable(2, 1);
    ZorWBMultiPolynomial two = ZorWBMultiPolynomial::Constant(2, ZorWBRational(2));
    ZorWBMultiPolynomial resultant;
    ASSERT_EQ(ZorWBMultiResultant::Resultant(x - y, x * x - two, 0, resultant),
              ZorWBPolynomialStatus::Success);
    EXPECT_EQ(resultant, y * y - two);
    // A constant operand: its power, even where the other one vanishes
    // (y x^3 at y = 0 once made the whole resultant 0).
    ASSERT_EQ(ZorWBMultiResultant::Resultant(y * x * x * x, two, 0, resultant),
              ZorWBPolynomialStatus::Success);
    EXPECT_EQ(resultant, two * two * two);
    ASSERT_EQ(ZorWBMultiResultant::Resultant(two, y * x * x * x, 0, resultant),
              ZorWBPolynomialStatus::Success);
    EXPECT_EQ(resultant, two * two * two);
    ZorWBMultiPolynomial untouched = two;
    EXPECT_EQ(ZorWBMultiResultant::Resultant(x, y, 2, untouched),
              ZorWBPolynomialStatus::BadVariable);
    EXPECT_EQ(ZorWBMultiResultant::Resultant(x, y, -1, untouched),
              ZorWBPolynomialStatus::BadVariable);
    EXPECT_EQ(untouched, two);
    ASSERT_EQ(ZorWBMultiResultant::Resultant(ZorWBMultiPolynomial(2), y, 0, resultant),
              ZorWBPolynomialStatus::Success);
    EXPECT_TRUE(resultant.IsZero());
    // Degrees whose resultant would pass the limits fail at once.
    ZorWBMultiPolynomial high = ZorWBMultiPolynomial::FromUnivariate(
        2, 0, ZorWBPolynomial::Monomial(ZorWBRational(1), 3000));
    EXPECT_EQ(ZorWBMultiResultant::Resultant(high + y * y, high * y + x, 0, untouched),
              ZorWBPolynomialStatus::TooLarge);
    std::vector<ZorWBMultiPolynomial> sequence;
    EXPECT_EQ(ZorWBMultiResultant::Subresultants(ZorWBMultiPolynomial(2), y, 0, sequence),
              ZorWBPolynomialStatus::ZeroOperand);
}

TEST(ZorWBMultiPolynomial, ValueOperations) {
    ZorWBMultiPolynomial p(3);
    EXPECT_FALSE(p.AddTerm(ZorWBRational(1), {1, 2}));
    EXPECT_FALSE(p.AddTerm(ZorWBRational(1), {1, -2, 0}));
    EXPECT_TRUE(p.AddTerm(ZorWBRational(3), {1, 2, 0}));
    EXPECT_TRUE(p.AddTerm(ZorWBRational(-3), {1, 2, 0}));
    EXPECT_TRUE(p.IsZero());
    p.AddTerm(ZorWBRational(2), {0, 0, 1});
    p.AddTerm(ZorWBRational(1, 2), {2, 0, 0});
    EXPECT_EQ(p.ToText({"a", "b", "c"}), "1/2*a^2 + 2*c");
    EXPECT_EQ(p.GetDegree(0), 2);
    EXPECT_EQ(p.GetTotalDegree(), 2);
    EXPECT_EQ(
        p.Evaluate(std::vector<ZorWBRational>{ZorWBRational(2), ZorWBRational(), ZorWBRational(1)}),
        ZorWBRational(4));
    ZorWBPolynomial univariate;
    EXPECT_FALSE(p.ToUnivariate(0, univariate));
    EXPECT_TRUE(
        ZorWBMultiPolynomial::FromUnivariate(3, 1, Integers({1, 2})).ToUnivariate(1, univariate));
    EXPECT_EQ(univariate, Integers({1, 2}));
    // Operands over fewer variables widen.
    ZorWBMultiPolynomial narrow = ZorWBMultiPolynomial::Variable(1, 0);
    EXPECT_EQ((p * narrow).GetNbOfVariables(), 3);
    EXPECT_EQ(narrow + narrow, ZorWBMultiPolynomial::Variable(3, 0) *
                                   ZorWBMultiPolynomial::Constant(1, ZorWBRational(2)));
}
