#ifndef ZORWB_ROUNDEDSTEPS_H
#define ZORWB_ROUNDEDSTEPS_H

#include <algorithm>
#include <cmath>
#include <limits>

#include "solver/ZorWBRoundedInterval.h"

// Scalar bounds rounded outward, for the implementation of the rounded
// interval functions: each "Down" result is at most the exact value, each
// "Up" result at least.
namespace ZorWBRoundedSteps {

constexpr double Infinity = std::numeric_limits<double>::infinity();

inline double Down(double x) {
    return ZorWBNextDown(x);
}
inline double Up(double x) {
    return ZorWBNextUp(x);
}
// Steps of several units, for the functions of <cmath> that are accurate to
// a few units rather than correctly rounded.
inline double DownBy(double x, int ulps) {
    for (int i = 0; i < ulps; ++i)
        x = ZorWBNextDown(x);
    return x;
}
inline double UpBy(double x, int ulps) {
    for (int i = 0; i < ulps; ++i)
        x = ZorWBNextUp(x);
    return x;
}

// Products and quotients with an exact 0 for a zero operand (0 times an
// infinite bound is 0: the bound stands for large finite values).
inline double MultiplyDown(double x, double y) {
    return x == 0.0 || y == 0.0 ? 0.0 : Down(x * y);
}
inline double MultiplyUp(double x, double y) {
    return x == 0.0 || y == 0.0 ? 0.0 : Up(x * y);
}
inline double DivideDown(double x, double y) {
    return x == 0.0 ? 0.0 : Down(x / y);
}
inline double DivideUp(double x, double y) {
    return x == 0.0 ? 0.0 : Up(x / y);
}

// t^n for t >= 0, by squaring, each product rounded the same way
// (products of non-negative lower bounds stay lower bounds).
inline double PowerDown(double t, unsigned int n) {
    double result = 1.0, base = t;
    for (unsigned int e = n; e > 0; e >>= 1) {
        if (e & 1u) result = std::max(0.0, MultiplyDown(result, base));
        if (e > 1) base = std::max(0.0, MultiplyDown(base, base));
    }
    return result;
}
inline double PowerUp(double t, unsigned int n) {
    double result = 1.0, base = t;
    for (unsigned int e = n; e > 0; e >>= 1) {
        if (e & 1u) result = MultiplyUp(result, base);
        if (e > 1) base = MultiplyUp(base, base);
    }
    return result;
}
// x^n for any x and an odd n.
inline double SignedPowerDown(double x, unsigned int n) {
    return x >= 0.0 ? PowerDown(x, n) : -PowerUp(-x, n);
}
inline double SignedPowerUp(double x, unsigned int n) {
    return x >= 0.0 ? PowerUp(x, n) : -PowerDown(-x, n);
}

// The n-th root of t >= 0: the square root stepped one unit (it is correctly
// rounded); for other degrees, the root that <cmath> gives, moved outward
// until its power, rounded the other way, passes t.
inline double NearestRoot(double t, int n) {
    if (n == 2) return std::sqrt(t);
    if (n == 3) return std::cbrt(t);
    return std::pow(t, 1.0 / n);
}
inline double RootDown(double t, int n) {
    if (t <= 0.0) return 0.0;
    if (t == Infinity) return Infinity;
    if (n == 2) return std::max(0.0, Down(std::sqrt(t)));  // correctly rounded
    const double r = NearestRoot(t, n);
    double candidate = Down(r);
    for (int i = 0; i < 64 && candidate > 0.0; ++i) {
        if (PowerUp(candidate, static_cast<unsigned int>(n)) <= t) return candidate;
        candidate = Down(candidate - (r - candidate));
    }
    return 0.0;
}
inline double RootUp(double t, int n) {
    if (t <= 0.0) return 0.0;
    if (t == Infinity) return Infinity;
    if (n == 2) return Up(std::sqrt(t));
    const double r = NearestRoot(t, n);
    double candidate = Up(r);
    for (int i = 0; i < 64 && candidate < Infinity; ++i) {
        if (PowerDown(candidate, static_cast<unsigned int>(n)) >= t) return candidate;
        candidate = Up(candidate + (candidate - r));
    }
    return Infinity;
}
// The real root of any x for an odd n.
inline double SignedRootDown(double x, int n) {
    return x >= 0.0 ? RootDown(x, n) : -RootUp(-x, n);
}
inline double SignedRootUp(double x, int n) {
    return x >= 0.0 ? RootUp(x, n) : -RootDown(-x, n);
}

}  // namespace ZorWBRoundedSteps

#endif
