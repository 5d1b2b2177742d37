#include <cmath>
#include <cstring>
#include <limits>

#include "PolynomialTestSupport.h"

TEST(ZorWBRational, TextAndRealReadingsAreExact) {
    ZorWBRational value;
    ASSERT_TRUE(ZorWBRational::FromText("-123456789012345678901234567890/6", value));
    EXPECT_EQ(value.ToText(), "-20576131502057613150205761315");
    EXPECT_FALSE(ZorWBRational::FromText("6/-4", value));
    for (const char* bad : {"", "-", "1/", "/2", "1/0", "1.5", " 3", "3 ", "0x10", "--1"}) {
        ZorWBRational untouched(7);
        EXPECT_FALSE(ZorWBRational::FromText(bad, untouched)) << bad;
        EXPECT_EQ(untouched, ZorWBRational(7));
    }
    EXPECT_EQ(ZorWBRational(6, -4).ToText(), "-3/2");
    EXPECT_TRUE(ZorWBRational(1, 0).IsZero());
    EXPECT_TRUE((ZorWBRational(3) / ZorWBRational()).IsZero());

    ZorWBRational tenth;
    ASSERT_TRUE(ZorWBRational::FromReal(0.1, tenth));
    EXPECT_EQ(tenth.ToText(), "3602879701896397/36028797018963968");
    ZorWBRational untouched(5);
    EXPECT_FALSE(ZorWBRational::FromReal(std::numeric_limits<double>::infinity(), untouched));
    EXPECT_FALSE(ZorWBRational::FromReal(std::nan(""), untouched));
    EXPECT_EQ(untouched, ZorWBRational(5));
}

// Double division is correctly rounded, so ToReal of p/q must equal p / q
// for operands exact in doubles; and every double reads back to itself.
TEST(ZorWBRational, ToRealIsTheNearestDouble) {
    std::mt19937 random(11);
    std::uniform_int_distribution<long long> big(-(1LL << 53), 1LL << 53);
    for (int i = 0; i < 20000; ++i) {
        long long p = big(random), q = big(random);
        if (q == 0) continue;
        ZorWBRational value(p, q);
        EXPECT_EQ(value.ToReal(), static_cast<double>(p) / static_cast<double>(q)) << p << "/" << q;
        double d;
        std::uint64_t bits = (static_cast<std::uint64_t>(random()) << 32) | random();
        std::memcpy(&d, &bits, sizeof d);
        if (!std::isfinite(d)) continue;
        ZorWBRational exact;
        ASSERT_TRUE(ZorWBRational::FromReal(d, exact));
        EXPECT_EQ(exact.ToReal(), d);
    }
    ZorWBRational huge;
    ZorWBRational::FromText("1" + std::string(400, '0'), huge);
    EXPECT_TRUE(std::isinf(huge.ToReal()));
    EXPECT_EQ((ZorWBRational(1) / huge).ToReal(), 0.0);
}

TEST(ZorWBPolynomial, DivisionLeavesARemainderOfLowerDegree) {
    PolynomialGenerator generate(3);
    for (int round = 0; round < 300; ++round) {
        ZorWBPolynomial a = generate.Polynomial(static_cast<int>(generate.Integer(0, 12)), 50, 7);
        ZorWBPolynomial b = generate.Polynomial(static_cast<int>(generate.Integer(0, 6)), 50, 5);
        ZorWBPolynomial q, r;
        ASSERT_EQ(ZorWBPolynomial::Divide(a, b, q, r), ZorWBPolynomialStatus::Success);
        EXPECT_EQ(q * b + r, a);
        EXPECT_LT(r.GetDegree(), b.GetDegree());
    }
    ZorWBPolynomial q(ZorWBRational(9)), r(ZorWBRational(9));
    EXPECT_EQ(ZorWBPolynomial::Divide(Integers({1, 1}), ZorWBPolynomial(), q, r),
              ZorWBPolynomialStatus::ZeroOperand);
    EXPECT_EQ(q, ZorWBPolynomial(ZorWBRational(9)));
}

TEST(ZorWBPolynomial, ArithmeticAgreesWithEvaluation) {
    PolynomialGenerator generate(4);
    for (int round = 0; round < 200; ++round) {
        ZorWBPolynomial p = generate.Polynomial(static_cast<int>(generate.Integer(0, 8)), 20, 3);
        ZorWBPolynomial q = generate.Polynomial(static_cast<int>(generate.Integer(0, 8)), 20, 3);
        ZorWBRational x = generate.Rational(10, 7);
        EXPECT_EQ((p * q).Evaluate(x), p.Evaluate(x) * q.Evaluate(x));
        EXPECT_EQ((p - q).Evaluate(x), p.Evaluate(x) - q.Evaluate(x));
        EXPECT_EQ(p.Compose(q).Evaluate(x), p.Evaluate(q.Evaluate(x)));
        EXPECT_EQ(p.Power(3), p * p * p);
        EXPECT_EQ(p.AntiDerivative().Derivative(), p);
        EXPECT_EQ(p.Monic().GetLeadingCoefficient(), ZorWBRational(1));
    }
    EXPECT_EQ(ZorWBPolynomial().GetDegree(), -1);
    EXPECT_TRUE(Integers({0, 0, 0}).IsZero());
    EXPECT_EQ(Integers({1, -2, 0, 3}).GetCoefficient(7), ZorWBRational());
}

TEST(ZorWBPolynomial, Text) {
    EXPECT_EQ(Integers({1, -1, 0, 3}).ToText(), "3*x^3 - x + 1");
    EXPECT_EQ((Integers({0, -1}) * ZorWBPolynomial(ZorWBRational(1, 2))).ToText("t"), "-1/2*t");
    EXPECT_EQ(ZorWBPolynomial().ToText(), "0");
    EXPECT_EQ(ZorWBPolynomial(ZorWBRational(-5)).ToText(), "-5");
}

TEST(ZorWBPolynomial, StatusesHaveMessages) {
    EXPECT_STREQ(ZorWBPolynomialStatusText(ZorWBPolynomialStatus::TooLarge),
                 "polynomial too large: degree above 4096 or coefficients above 16777216 bits");
    EXPECT_STREQ(ZorWBPolynomialStatusText(ZorWBPolynomialStatus::RootsBeyondQuadratic),
                 "the antiderivative needs roots of degree above 2");
    EXPECT_STREQ(ZorWBPolynomialStatusText(static_cast<ZorWBPolynomialStatus>(99)),
                 "unknown status");
    ZorWBPolynomial beyond = ZorWBPolynomial::Monomial(ZorWBRational(1), 4097);
    EXPECT_FALSE(beyond.IsWithinLimits());
    ZorWBPolynomial q, r;
    EXPECT_EQ(ZorWBPolynomial::Divide(beyond, Integers({1, 1}), q, r),
              ZorWBPolynomialStatus::TooLarge);
}
