#include "PolynomialTestSupport.h"
#include "polynomial/ZorWBPolynomialGcd.h"

namespace {

// The determinant of the Sylvester matrix of a and b by Gaussian
// elimination over Q: the reference resultant.
ZorWBRational SylvesterDeterminant(const ZorWBPolynomial& a, const ZorWBPolynomial& b) {
    int m = a.GetDegree(), n = b.GetDegree();
    int size = m + n;
    if (size == 0) return ZorWBRational(1);
    std::vector<std::vector<ZorWBRational>> rows(
        static_cast<std::size_t>(size), std::vector<ZorWBRational>(static_cast<std::size_t>(size)));
    for (int i = 0; i < n; ++i)
        for (int k = 0; k <= m; ++k)
            rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(i + k)] =
                a.GetCoefficient(m - k);
    for (int i = 0; i < m; ++i)
        for (int k = 0; k <= n; ++k)
            rows[static_cast<std::size_t>(n + i)][static_cast<std::size_t>(i + k)] =
                b.GetCoefficient(n - k);
    ZorWBRational determinant(1);
    for (int column = 0; column < size; ++column) {
        int pivot = column;
        while (pivot < size &&
               rows[static_cast<std::size_t>(pivot)][static_cast<std::size_t>(column)].IsZero())
            ++pivot;
        if (pivot == size) return ZorWBRational();
        if (pivot != column) {
            std::swap(rows[static_cast<std::size_t>(pivot)],
                      rows[static_cast<std::size_t>(column)]);
            determinant = -determinant;
        }
        const std::vector<ZorWBRational> top = rows[static_cast<std::size_t>(column)];
        determinant *= top[static_cast<std::size_t>(column)];
        for (int r = column + 1; r < size; ++r) {
            std::vector<ZorWBRational>& row = rows[static_cast<std::size_t>(r)];
            ZorWBRational factor =
                row[static_cast<std::size_t>(column)] / top[static_cast<std::size_t>(column)];
            if (factor.IsZero()) continue;
            for (int c = column; c < size; ++c)
                row[static_cast<std::size_t>(c)] -= factor * top[static_cast<std::size_t>(c)];
        }
    }
    return determinant;
}

}  // namespace

// With a, b coprime (Euclid's algorithm over Q, a separate path, says so),
// the gcd of a g and b g is g made monic, whatever the sizes.
TEST(ZorWBPolynomialGcd, GcdOfMultiplesIsTheCommonFactor) {
    PolynomialGenerator generate(21);
    int tested = 0;
    for (int round = 0; round < 120; ++round) {
        int big = round % 3 == 0 ? 1000000 : 30;
        ZorWBPolynomial a = generate.Polynomial(static_cast<int>(generate.Integer(0, 15)), big, 4);
        ZorWBPolynomial b = generate.Polynomial(static_cast<int>(generate.Integer(0, 15)), big, 4);
        ZorWBPolynomial g = generate.Polynomial(static_cast<int>(generate.Integer(0, 12)), big, 3);
        ZorWBPolynomial euclid, s, t;
        ASSERT_EQ(ZorWBPolynomialGcd::ExtendedGcd(a, b, euclid, s, t),
                  ZorWBPolynomialStatus::Success);
        EXPECT_EQ(s * a + t * b, euclid);
        if (euclid.GetDegree() != 0) continue;
        ++tested;
        EXPECT_EQ(Gcd(a * g, b * g), g.Monic());
        EXPECT_EQ(Gcd(a * g * g, b * g), g.Monic());
    }
    EXPECT_GT(tested, 100);
    EXPECT_EQ(Gcd(ZorWBPolynomial(), ZorWBPolynomial()), ZorWBPolynomial());
    EXPECT_EQ(Gcd(ZorWBPolynomial(), Integers({4, 2})), Integers({2, 1}));
    EXPECT_EQ(Gcd(Integers({5}), Integers({4, 2})), Integers({1}));
}

// res(f, g) is the Sylvester determinant, and vanishes exactly when f and g
// share a root: planted common factors of degree 1 and 2 over generated
// pairs.
TEST(ZorWBPolynomialGcd, ResultantVanishesExactlyWithACommonRoot) {
    PolynomialGenerator generate(22);
    int shared = 0;
    for (int round = 0; round < 200; ++round) {
        ZorWBPolynomial f = generate.Polynomial(static_cast<int>(generate.Integer(0, 7)), 9, 3);
        ZorWBPolynomial g = generate.Polynomial(static_cast<int>(generate.Integer(0, 7)), 9, 3);
        if (generate.Chance(50)) {
            ZorWBPolynomial common =
                generate.Chance(50) ? generate.Linear(6, 5) : generate.Irreducible(5);
            f *= common;
            g *= common;
        }
        ZorWBRational resultant;
        ASSERT_EQ(ZorWBPolynomialGcd::Resultant(f, g, resultant), ZorWBPolynomialStatus::Success);
        EXPECT_EQ(resultant, SylvesterDeterminant(f, g)) << f.ToText() << " ; " << g.ToText();
        bool common = Gcd(f, g).GetDegree() > 0;
        shared += common;
        EXPECT_EQ(resultant.IsZero(), common) << f.ToText() << " ; " << g.ToText();
    }
    EXPECT_GT(shared, 80);
    ZorWBRational resultant(3);
    ZorWBPolynomialGcd::Resultant(Integers({2}), Integers({5}), resultant);
    EXPECT_EQ(resultant, ZorWBRational(1));
    ZorWBPolynomialGcd::Resultant(Integers({0, 0, 0, 1}), Integers({1, 1}), resultant);
    EXPECT_EQ(resultant, ZorWBRational(1));  // the product of x + 1 over the roots of x^3
    ZorWBPolynomialGcd::Resultant(ZorWBPolynomial(), Integers({1, 1}), resultant);
    EXPECT_TRUE(resultant.IsZero());
}

// The subresultant sequence ends with the gcd up to a constant, and each
// element after the first two is proportional to a remainder of Euclid's
// algorithm over Q.
TEST(ZorWBPolynomialGcd, SubresultantsFollowEuclidsRemainders) {
    PolynomialGenerator generate(23);
    for (int round = 0; round < 60; ++round) {
        ZorWBPolynomial g = generate.Polynomial(static_cast<int>(generate.Integer(0, 3)), 5);
        ZorWBPolynomial a = generate.Polynomial(static_cast<int>(generate.Integer(1, 8)), 9, 2) * g;
        ZorWBPolynomial b = generate.Polynomial(static_cast<int>(generate.Integer(1, 8)), 9, 2) * g;
        std::vector<ZorWBPolynomial> sequence;
        ASSERT_EQ(ZorWBPolynomialGcd::Subresultants(a, b, sequence),
                  ZorWBPolynomialStatus::Success);
        ASSERT_GE(sequence.size(), 2u);
        EXPECT_EQ(sequence.back().Monic(), Gcd(a, b));
        ZorWBPolynomial x = a.GetDegree() >= b.GetDegree() ? a : b;
        ZorWBPolynomial y = a.GetDegree() >= b.GetDegree() ? b : a;
        for (std::size_t i = 2; i < sequence.size(); ++i) {
            ZorWBPolynomial q, r;
            ZorWBPolynomial::Divide(x, y, q, r);
            EXPECT_EQ(sequence[i].Monic(), r.Monic());
            x = y;
            y = r;
        }
    }
    std::vector<ZorWBPolynomial> sequence;
    EXPECT_EQ(ZorWBPolynomialGcd::Subresultants(ZorWBPolynomial(), Integers({1, 1}), sequence),
              ZorWBPolynomialStatus::ZeroOperand);
}
