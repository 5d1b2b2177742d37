// Outward-rounded elementary functions of intervals.
//
// Monotonic functions take the function of each bound, stepped outward by
// the number of units that bounds the error of <cmath> (RoundedUlps: glibc
// documents at most 1 unit for exp, log, sin, cos, tan, asin, acos, atan and
// 2 for log10, exp10 and the hyperbolic functions on x86-64; one more unit is
// kept as a margin). The periodic functions add their extrema: an interval
// holds a maximum or a minimum of sin or cos when an integer of the right
// residue lies in its bounds scaled by 2 / pi, widened by a relative margin
// that covers the rounding of the scaling (an extremum close to a bound is
// taken as inside, which only widens the result). Beyond |x| = 2^30 the
// scaled bounds lose their fractional part and the functions answer
// [-1, 1] (the whole line for tan).

#include <algorithm>
#include <cmath>

#include "solver/ZorWBRoundedInterval.h"
#include "solver/ZorWBRoundedSteps.h"

using namespace ZorWBRoundedSteps;

namespace {

// Units of error stepped past the result of a function of <cmath>.
enum RoundedUlps : int {
    Accurate = 2,  // exp, log, sin, cos, tan, asin, acos, atan
    Loose = 3,     // log10, pow, sinh, cosh, tanh, asinh, acosh, atanh
};

constexpr double Pi = 3.141592653589793;  // the double just below pi
constexpr double TwoOverPi = 0.6366197723675814;
constexpr double LargestPhase = 1073741824.0;  // 2^30

// f of an increasing function on [low, high] (already clipped).
template <class F>
ZorWBRoundedInterval Increasing(F f, double low, double high, int ulps) {
    return {DownBy(f(low), ulps), UpBy(f(high), ulps)};
}

ZorWBRoundedInterval Clamp(ZorWBRoundedInterval a, double low, double high) {
    return {std::max(a.low, low), std::min(a.high, high)};
}

// Whether the scaled interval [low, high] * 2 / pi holds a number congruent
// to residue modulo 4.
bool HoldsQuarterTurn(double scaledLow, double scaledHigh, int residue) {
    double first = std::ceil((scaledLow - residue) / 4.0) * 4.0 + residue;
    return first <= scaledHigh;
}

struct ScaledBounds {
    double low;
    double high;
    bool usable;
};

// [low, high] * 2 / pi, widened to cover the rounding of the scaling.
ScaledBounds Scale(const ZorWBRoundedInterval& a) {
    if (!(a.low > -LargestPhase && a.high < LargestPhase)) return {0.0, 0.0, false};
    double low = a.low * TwoOverPi, high = a.high * TwoOverPi;
    const double margin = 1e-15;
    return {low - std::fabs(low) * margin - 1e-300, high + std::fabs(high) * margin + 1e-300, true};
}

// Sine or cosine: the ordered values at the bounds, raised to 1 and lowered
// to -1 where the interval holds a maximum (residue maximum) or a minimum
// (residue maximum + 2).
template <class F>
ZorWBRoundedInterval Periodic(const ZorWBRoundedInterval& a, F f, int maximum) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    ScaledBounds scaled = Scale(a);
    if (!scaled.usable || scaled.high - scaled.low >= 4.0) return {-1.0, 1.0};
    double atLow = f(a.low), atHigh = f(a.high);
    ZorWBRoundedInterval result = {DownBy(std::min(atLow, atHigh), Accurate),
                                   UpBy(std::max(atLow, atHigh), Accurate)};
    if (HoldsQuarterTurn(scaled.low, scaled.high, maximum)) result.high = 1.0;
    if (HoldsQuarterTurn(scaled.low, scaled.high, (maximum + 2) % 4)) result.low = -1.0;
    return Clamp(result, -1.0, 1.0);
}

}  // namespace

ZorWBRoundedInterval ZorWBPiInterval() {
    return {Pi, Up(Pi)};
}

ZorWBRoundedInterval ZorWBPiMultiple(double k, double scale) {
    return ZorWBMultiply(ZorWBMakePoint(k * scale), ZorWBPiInterval());
}

ZorWBRoundedInterval ZorWBExponential(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    auto f = [](double x) { return std::exp(x); };
    return Clamp(Increasing(f, a.low, a.high, Accurate), 0.0, Infinity);
}

ZorWBRoundedInterval ZorWBExponential10(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    auto f = [](double x) { return std::pow(10.0, x); };
    return Clamp(Increasing(f, a.low, a.high, Loose), 0.0, Infinity);
}

namespace {

// A logarithm: the domain is (0, +inf), the low end at 0 goes to -inf.
template <class F>
ZorWBRoundedInterval Logarithm(const ZorWBRoundedInterval& a, F f, int ulps) {
    if (a.IsEmpty() || a.high <= 0.0) return ZorWBEmptyInterval();
    double low = a.low <= 0.0 ? -Infinity : DownBy(f(a.low), ulps);
    return {low, UpBy(f(a.high), ulps)};
}

}  // namespace

ZorWBRoundedInterval ZorWBLogarithm(const ZorWBRoundedInterval& a) {
    return Logarithm(
        a, [](double x) { return std::log(x); }, Accurate);
}

ZorWBRoundedInterval ZorWBLogarithm10(const ZorWBRoundedInterval& a) {
    return Logarithm(
        a, [](double x) { return std::log10(x); }, Loose);
}

ZorWBRoundedInterval ZorWBSine(const ZorWBRoundedInterval& a) {
    // Maxima at pi/2 + 2k pi (residue 1), minima at 3 pi/2 + 2k pi.
    return Periodic(
        a, [](double x) { return std::sin(x); }, 1);
}

ZorWBRoundedInterval ZorWBCosine(const ZorWBRoundedInterval& a) {
    // Maxima at 2k pi (residue 0), minima at pi + 2k pi.
    return Periodic(
        a, [](double x) { return std::cos(x); }, 0);
}

ZorWBRoundedInterval ZorWBTangent(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    ScaledBounds scaled = Scale(a);
    // Poles at pi/2 + k pi: the odd numbers of the scaled interval.
    if (!scaled.usable || scaled.high - scaled.low >= 2.0 ||
        HoldsQuarterTurn(scaled.low, scaled.high, 1) ||
        HoldsQuarterTurn(scaled.low, scaled.high, 3))
        return {};
    return Increasing([](double x) { return std::tan(x); }, a.low, a.high, Accurate);
}

ZorWBRoundedInterval ZorWBArcSine(const ZorWBRoundedInterval& a) {
    ZorWBRoundedInterval x = Clamp(a, -1.0, 1.0);
    if (x.IsEmpty()) return ZorWBEmptyInterval();
    return Increasing([](double t) { return std::asin(t); }, x.low, x.high, Accurate);
}

ZorWBRoundedInterval ZorWBArcCosine(const ZorWBRoundedInterval& a) {
    ZorWBRoundedInterval x = Clamp(a, -1.0, 1.0);
    if (x.IsEmpty()) return ZorWBEmptyInterval();
    auto f = [](double t) { return std::acos(t); };
    return Clamp({DownBy(f(x.high), Accurate), UpBy(f(x.low), Accurate)}, 0.0, Infinity);
}

ZorWBRoundedInterval ZorWBArcTangent(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    return Increasing([](double t) { return std::atan(t); }, a.low, a.high, Accurate);
}

ZorWBRoundedInterval ZorWBHyperbolicSine(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    return Increasing([](double t) { return std::sinh(t); }, a.low, a.high, Loose);
}

ZorWBRoundedInterval ZorWBHyperbolicCosine(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    auto f = [](double t) { return std::cosh(t); };
    return Clamp(Increasing(f, a.Mignitude(), a.Magnitude(), Loose), 1.0, Infinity);
}

ZorWBRoundedInterval ZorWBHyperbolicTangent(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    auto f = [](double t) { return std::tanh(t); };
    return Clamp(Increasing(f, a.low, a.high, Loose), -1.0, 1.0);
}

ZorWBRoundedInterval ZorWBAreaSine(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    return Increasing([](double t) { return std::asinh(t); }, a.low, a.high, Loose);
}

ZorWBRoundedInterval ZorWBAreaCosine(const ZorWBRoundedInterval& a) {
    ZorWBRoundedInterval x = Clamp(a, 1.0, Infinity);
    if (x.IsEmpty()) return ZorWBEmptyInterval();
    auto f = [](double t) { return std::acosh(t); };
    return Clamp(Increasing(f, x.low, x.high, Loose), 0.0, Infinity);
}

ZorWBRoundedInterval ZorWBAreaTangent(const ZorWBRoundedInterval& a) {
    ZorWBRoundedInterval x = Clamp(a, -1.0, 1.0);
    if (x.IsEmpty()) return ZorWBEmptyInterval();
    return Increasing([](double t) { return std::atanh(t); }, x.low, x.high, Loose);
}
