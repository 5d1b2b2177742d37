#include <algorithm>
#include <cmath>

#include "PolynomialTestSupport.h"
#include "polynomial/ZorWBRealRoots.h"

namespace {

// A planted real root: exactly value when rational, else in [low, high]
// (the roots of x^2 - c, taken from doubles a little apart).
struct KnownRoot {
    ZorWBRational low, high;
    int multiplicity;
};

void ExpectIsolated(const ZorWBPolynomial& p, std::vector<KnownRoot> known,
                    const std::vector<ZorWBRealRoot>& roots) {
    std::sort(known.begin(), known.end(),
              [](const KnownRoot& a, const KnownRoot& b) { return a.low < b.low; });
    ASSERT_EQ(roots.size(), known.size()) << p.ToText();
    for (std::size_t i = 0; i < roots.size(); ++i) {
        const ZorWBRealRoot& root = roots[i];
        EXPECT_LE(root.low, root.high);
        if (i > 0) {
            EXPECT_LT(roots[i - 1].high, root.low) << "closures meet";
        }
        if (!root.IsExact()) {
            EXPECT_FALSE(p.Evaluate(root.low).IsZero());
            EXPECT_FALSE(p.Evaluate(root.high).IsZero());
        } else {
            EXPECT_TRUE(p.Evaluate(root.low).IsZero());
        }
        // The planted root lies in the interval (its bracket meets it).
        EXPECT_LE(root.low, known[i].high) << i << " in " << p.ToText();
        EXPECT_GE(root.high, known[i].low) << i << " in " << p.ToText();
        EXPECT_EQ(root.multiplicity, known[i].multiplicity);
    }
}

}  // namespace

// Products of known linear and quadratic factors, with roots closer than
// 1e-10, multiple roots and factors without real roots: every real root is
// isolated once, in disjoint intervals, with its multiplicity.
TEST(ZorWBRealRoots, NeverMissesOrDuplicatesARoot) {
    PolynomialGenerator generate(41);
    for (int round = 0; round < 150; ++round) {
        ZorWBPolynomial p(generate.Rational(5, 3));
        while (p.IsZero())
            p = ZorWBPolynomial(generate.Rational(5, 3));
        std::vector<KnownRoot> known;
        auto plant = [&](const ZorWBRational& root, int multiplicity) {
            for (const KnownRoot& k : known) {
                if (k.low == root) return;
            }
            known.push_back({root, root, multiplicity});
            p *= ZorWBPolynomial::Linear(root).Power(multiplicity);
        };
        int nbOfRoots = static_cast<int>(generate.Integer(0, 6));
        for (int i = 0; i < nbOfRoots; ++i) {
            ZorWBRational root = generate.Rational(100, 16);
            plant(root, static_cast<int>(generate.Integer(1, 3)));
            // A neighbour closer than 1e-10.
            if (generate.Chance(40))
                plant(root + ZorWBRational(generate.Integer(1, 9), 100000000000LL), 1);
        }
        if (generate.Chance(50)) {
            // x^2 - c: roots +-sqrt(c), bracketed by doubles.
            long long c = generate.Integer(2, 50);
            if (std::sqrt(static_cast<double>(c)) !=
                std::floor(std::sqrt(static_cast<double>(c)))) {
                ZorWBRational low, high;
                ZorWBRational::FromReal(std::sqrt(static_cast<double>(c)) * (1 - 1e-12), low);
                ZorWBRational::FromReal(std::sqrt(static_cast<double>(c)) * (1 + 1e-12), high);
                bool clash = false;
                for (const KnownRoot& k : known)
                    clash = clash || (k.low >= -high && k.low <= -low) ||
                            (k.low >= low && k.low <= high);
                if (!clash) {
                    int multiplicity = static_cast<int>(generate.Integer(1, 2));
                    p *= Integers({-c, 0, 1}).Power(multiplicity);
                    known.push_back({low, high, multiplicity});
                    known.push_back({-high, -low, multiplicity});
                }
            }
        }
        if (generate.Chance(50)) p *= generate.Irreducible(9);
        std::vector<ZorWBRealRoot> roots;
        ASSERT_EQ(ZorWBRealRoots::Isolate(p, roots), ZorWBPolynomialStatus::Success);
        ExpectIsolated(p, known, roots);
        // Refined to 1e-30, every interval still holds its root.
        ZorWBRational width(1, 1000000000000000LL);
        width *= width;
        ASSERT_EQ(ZorWBRealRoots::Isolate(p, width, roots), ZorWBPolynomialStatus::Success);
        ExpectIsolated(p, known, roots);
        for (const ZorWBRealRoot& root : roots)
            EXPECT_LE(root.high - root.low, width);
    }
}

TEST(ZorWBRealRoots, HardCases) {
    // Wilkinson's polynomial: the roots 1..20, exactly at dyadic points or
    // inside their intervals.
    ZorWBPolynomial wilkinson(ZorWBRational(1));
    std::vector<KnownRoot> known;
    for (int k = 1; k <= 20; ++k) {
        wilkinson *= ZorWBPolynomial::Linear(ZorWBRational(k));
        known.push_back({ZorWBRational(k), ZorWBRational(k), 1});
    }
    std::vector<ZorWBRealRoot> roots;
    ASSERT_EQ(ZorWBRealRoots::Isolate(wilkinson, roots), ZorWBPolynomialStatus::Success);
    ExpectIsolated(wilkinson, known, roots);

    // Mignotte-like: x^12 - 2 (100 x - 1)^2 has two roots about 1e-26 apart
    // near 1/100.
    ZorWBPolynomial mignotte = ZorWBPolynomial::Monomial(ZorWBRational(1), 12) -
                               ZorWBPolynomial(ZorWBRational(2)) * Integers({-1, 100}).Power(2);
    ASSERT_EQ(ZorWBRealRoots::Isolate(mignotte, roots), ZorWBPolynomialStatus::Success);
    int nearHundredth = 0;
    for (const ZorWBRealRoot& root : roots)
        nearHundredth += std::fabs(root.GetApproximation() - 0.01) < 1e-6;
    EXPECT_EQ(nearHundredth, 2);
    EXPECT_EQ(roots.size(), 4u);

    // A root at 0 among others, and a constant.
    ASSERT_EQ(ZorWBRealRoots::Isolate(Integers({0, 0, -1, 0, 1}), roots),
              ZorWBPolynomialStatus::Success);
    ASSERT_EQ(roots.size(), 3u);
    EXPECT_TRUE(roots[1].IsExact());
    EXPECT_EQ(roots[1].multiplicity, 2);
    ASSERT_EQ(ZorWBRealRoots::Isolate(Integers({3}), roots), ZorWBPolynomialStatus::Success);
    EXPECT_TRUE(roots.empty());
    EXPECT_EQ(ZorWBRealRoots::Isolate(ZorWBPolynomial(), roots),
              ZorWBPolynomialStatus::ZeroOperand);
}

TEST(ZorWBRealRoots, RefinementChecksItsInterval) {
    ZorWBPolynomial p = Integers({-2, 0, 1});
    ZorWBRealRoot root{ZorWBRational(1), ZorWBRational(2), 1};
    ZorWBRational tiny(1, 1000000000);
    ASSERT_EQ(ZorWBRealRoots::Refine(p, tiny * tiny, root), ZorWBPolynomialStatus::Success);
    EXPECT_DOUBLE_EQ(root.GetApproximation(), std::sqrt(2.0));
    EXPECT_LE(root.high - root.low, tiny * tiny);
    ZorWBRealRoot none{ZorWBRational(2), ZorWBRational(3), 1};
    EXPECT_EQ(ZorWBRealRoots::Refine(p, tiny, none), ZorWBPolynomialStatus::BadInterval);
    ZorWBRealRoot notARoot{ZorWBRational(1), ZorWBRational(1), 1};
    EXPECT_EQ(ZorWBRealRoots::Refine(p, tiny, notARoot), ZorWBPolynomialStatus::BadInterval);
    ZorWBRealRoot exact{ZorWBRational(-1), ZorWBRational(-1), 1};
    EXPECT_EQ(ZorWBRealRoots::Refine(Integers({1, 1}), tiny, exact),
              ZorWBPolynomialStatus::Success);
}
