#ifndef ZORWB_REALPOWER_H
#define ZORWB_REALPOWER_H

#include <cmath>
#include <cstdint>
#include <cstring>

// std::pow(x, y) out of line: where the compiler knows y, it may replace
// pow(x, 2.0) by x * x, which rounds differently from the C library's pow.
double ZorWBLibraryPower(double x, double y);

// std::pow(x, y), with a shortcut for the square, the most frequent power:
// x * x is the correctly rounded square, and std::pow (glibc documents its
// error as below 0.54 ulp) must round the same way whenever the exact square
// lies within 0.45 ulp of x * x, since every other double is then more than
// 0.55 ulp away. Whether it does shows in the bits that rounding drops from
// the exact square of x's 53-bit significand m: the low bits of m * m. The
// few near-ties, squares that are powers of two (whose neighbours are not
// evenly spaced) and operands outside 2^-400 .. 2^400 (where squares may be
// subnormal or overflow) go to std::pow. Assumes rounding to nearest.
inline double ZorWBRealPower(double x, double y) {
    if (y != 2.0) return ZorWBLibraryPower(x, y);
    double square = x * x;
    std::uint64_t xBits;
    std::uint64_t squareBits;
    std::memcpy(&xBits, &x, sizeof xBits);
    std::memcpy(&squareBits, &square, sizeof squareBits);
    const std::uint64_t fraction = (std::uint64_t(1) << 52) - 1;
    const std::uint64_t exponent = (xBits >> 52) & 0x7FF;
    if (exponent - (1023 - 400) >= 800 || (squareBits & fraction) == 0)
        return ZorWBLibraryPower(x, y);
    const std::uint64_t significand = (xBits & fraction) | (std::uint64_t(1) << 52);
    // m * m has 105 bits, or 106 when the square's exponent is one more than
    // twice x's: the 52 or 53 bits below the kept ones, moved to the top.
    const std::uint64_t shift = 2 * exponent - 1011 - (squareBits >> 52);
    const std::uint64_t dropped = (significand * significand) << shift;
    // A tie is 2^63; near-ties lie within a tenth of a half ulp of it.
    const std::uint64_t tenth = 922337203685477581u;  // 2^63 / 10, rounded up
    const std::uint64_t moved = dropped + (std::uint64_t(1) << 63) + tenth;
    return moved >= 2 * tenth ? square : ZorWBLibraryPower(x, y);
}

#endif
