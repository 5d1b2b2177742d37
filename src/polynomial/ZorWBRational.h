#ifndef ZORWB_RATIONAL_H
#define ZORWB_RATIONAL_H

#include <string>

#include "ZorWBxExport.h"

struct ZorWBRationalAccess;

// An exact rational number of unbounded size, always in lowest terms with a
// positive denominator. The multiprecision number lives in storage of its
// own inside the object (no pointer to chase, no allocation for small
// values), so its library stays out of this header.
//
// Nothing throws: dividing by zero gives zero (use IsZero first where it
// matters), and a text that does not read leaves the number untouched.
class ZORWBX_API ZorWBRational {
  public:
    ZorWBRational();
    ZorWBRational(int value);
    ZorWBRational(long long value);
    // numerator / denominator; a zero denominator gives zero.
    ZorWBRational(long long numerator, long long denominator);
    ZorWBRational(const ZorWBRational& other);
    ZorWBRational(ZorWBRational&& other) noexcept;
    ZorWBRational& operator=(const ZorWBRational& other);
    ZorWBRational& operator=(ZorWBRational&& other) noexcept;
    ~ZorWBRational();

    // The exact value of a finite double (every one is a binary fraction);
    // false, result untouched, for infinities and NaN.
    static bool FromReal(double value, ZorWBRational& result);
    // Reads "-12", "3/4", "-3/4" (decimal integers of any length, a
    // non-zero denominator); false, result untouched, for anything else.
    static bool FromText(const std::string& text, ZorWBRational& result);

    bool IsZero() const;
    bool IsInteger() const;
    // -1, 0 or 1.
    int GetSign() const;
    // "p" or "p/q" in decimal digits.
    std::string ToText() const;
    // The nearest double (infinite beyond the double range).
    double ToReal() const;
    // The numerator and denominator when both fit in an int.
    bool GetSmallParts(int& numerator, int& denominator) const;
    // The numerator and denominator when both are exactly doubles (at most
    // 2^53 in magnitude).
    bool GetExactRealParts(double& numerator, double& denominator) const;
    // Bits of the numerator plus bits of the denominator: the size that the
    // limits of the polynomial algorithms count.
    long long GetNbOfBits() const;

    ZorWBRational operator-() const;
    ZorWBRational& operator+=(const ZorWBRational& other);
    ZorWBRational& operator-=(const ZorWBRational& other);
    ZorWBRational& operator*=(const ZorWBRational& other);
    ZorWBRational& operator/=(const ZorWBRational& other);
    // The absolute value.
    ZorWBRational Abs() const;

    friend ZorWBRational operator+(ZorWBRational a, const ZorWBRational& b) { return a += b; }
    friend ZorWBRational operator-(ZorWBRational a, const ZorWBRational& b) { return a -= b; }
    friend ZorWBRational operator*(ZorWBRational a, const ZorWBRational& b) { return a *= b; }
    friend ZorWBRational operator/(ZorWBRational a, const ZorWBRational& b) { return a /= b; }

    // -1, 0 or 1 as a is below, equal to or above b.
    static int Compare(const ZorWBRational& a, const ZorWBRational& b);
    friend bool operator==(const ZorWBRational& a, const ZorWBRational& b) {
        return Compare(a, b) == 0;
    }
    friend bool operator!=(const ZorWBRational& a, const ZorWBRational& b) {
        return Compare(a, b) != 0;
    }
    friend bool operator<(const ZorWBRational& a, const ZorWBRational& b) {
        return Compare(a, b) < 0;
    }
    friend bool operator<=(const ZorWBRational& a, const ZorWBRational& b) {
        return Compare(a, b) <= 0;
    }
    friend bool operator>(const ZorWBRational& a, const ZorWBRational& b) {
        return Compare(a, b) > 0;
    }
    friend bool operator>=(const ZorWBRational& a, const ZorWBRational& b) {
        return Compare(a, b) >= 0;
    }

  private:
    friend struct ZorWBRationalAccess;
    // Room for the multiprecision rational (checked where it is defined).
    alignas(8) unsigned char _storage[32];
};

#endif
