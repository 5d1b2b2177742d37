#ifndef TESTS_POLYNOMIAL_TEST_SUPPORT_H
#define TESTS_POLYNOMIAL_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "polynomial/ZorWBPolynomial.h"
#include "polynomial/ZorWBPolynomialGcd.h"

// Generators of exact test inputs, all from a seeded std::mt19937.
class PolynomialGenerator {
  public:
    explicit PolynomialGenerator(unsigned int seed) : _random(seed) {}

    std::mt19937& Random() { return _random; }

    long long Integer(long long low, long long high) {
        return std::uniform_int_distribution<long long>(low, high)(_random);
    }
    bool Chance(int percent) { return Integer(0, 99) < percent; }

    // p / q with |p| <= bound and 1 <= q <= denominator (drawn in that
    // order, the same with every compiler).
    ZorWBRational Rational(long long bound, long long denominator = 1) {
        long long p = Integer(-bound, bound);
        long long q = Integer(1, denominator);
        return ZorWBRational(p, q);
    }

    // Degree exactly `degree`, coefficients as Rational(bound, denominator),
    // the leading one not zero.
    ZorWBPolynomial Polynomial(int degree, long long bound, long long denominator = 1) {
        std::vector<ZorWBRational> coefficients;
        for (int i = 0; i <= degree; ++i)
            coefficients.push_back(Rational(bound, denominator));
        while (coefficients.back().IsZero())
            coefficients.back() = Rational(bound, denominator);
        return ZorWBPolynomial(coefficients);
    }

    // x - r for a rational r.
    ZorWBPolynomial Linear(long long bound, long long denominator = 1) {
        return ZorWBPolynomial::Linear(Rational(bound, denominator));
    }

    // x^2 + p x + q without real root (p^2 < 4 q).
    ZorWBPolynomial Irreducible(long long bound) {
        while (true) {
            ZorWBRational p = Rational(bound), q = Rational(bound * bound);
            if (p * p < ZorWBRational(4) * q) return ZorWBPolynomial({q, p, ZorWBRational(1)});
        }
    }

  private:
    std::mt19937 _random;
};

// Failure messages show rationals and polynomials as text.
inline void PrintTo(const ZorWBRational& value, std::ostream* out) {
    *out << value.ToText();
}
inline void PrintTo(const ZorWBPolynomial& value, std::ostream* out) {
    *out << value.ToText();
}

// The monic gcd, which must be computed.
inline ZorWBPolynomial Gcd(const ZorWBPolynomial& a, const ZorWBPolynomial& b) {
    ZorWBPolynomial g;
    EXPECT_EQ(ZorWBPolynomialGcd::Gcd(a, b, g), ZorWBPolynomialStatus::Success);
    return g;
}

inline ZorWBPolynomial Integers(std::initializer_list<long long> coefficients) {
    return ZorWBPolynomial::FromIntegers(coefficients);
}

#endif
