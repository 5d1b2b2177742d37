// Inverse floored modulo and power on real intervals, and the cores that the
// integer and value levels share.

#include <algorithm>
#include <cmath>

#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBInverseSets.h"

namespace {

using Interval = ZorWBRealInterval;

constexpr double L = ZorWBRealLimit;
// From 2^53 on, consecutive quotients are no longer distinct doubles; a search
// over quotients that large gives up narrowing instead.
constexpr double kExactSteps = 9007199254740992.0;
// How far the integer searches walk over quotients or exponents one by one.
constexpr int kScanLimit = 64;

bool AnyEmpty(const Interval& a, const Interval& b, const Interval& c) {
    return ZorWBInverseIsEmpty(a) || ZorWBInverseIsEmpty(b) || ZorWBInverseIsEmpty(c);
}

// ---------------------------------------------------------------- modulo: dividends
//
// mod(x, y) = x - y floor(x / y). For y > 0 write x = k y + r with the
// quotient k and 0 <= r <= y - gap (gap 1 for integers; 0 for reals, which
// take the closed hull r <= y). The dividends of one quotient, over y in
// [y1, y2] and r in the result set, form [Low(k), High(k)]; both ends are
// nondecreasing in k, so the first and last dividends inside x are found by
// solving for k.
struct DividendSteps {
    DividendSteps(const Interval& r, double y1, double y2In, double gap) : y2(y2In) {
        rl = std::max(r.low, 0.0);
        rh = std::min(r.high, y2 - gap);
        if (gap > 0.0) {
            rl = std::ceil(rl);
            rh = std::floor(rh);
        }
        ye = std::max(y1, rl + gap);  // the smallest divisor that leaves rl
        c1 = std::min(rh, ye - gap);  // the largest remainder left by ye
        empty = rl > rh || ye > y2;
    }
    double Low(double k) const { return k * (k >= 0.0 ? ye : y2) + rl; }
    double High(double k) const { return k >= 0.0 ? k * y2 + rh : k * ye + c1; }

    double rl = 0.0, rh = 0.0, ye = 0.0, y2 = 0.0, c1 = 0.0;
    bool empty = true;
};

// The smallest dividend at or above xLow.
double FirstDividend(const DividendSteps& s, double xLow) {
    double k = 0.0;
    if (s.High(0.0) >= xLow) {
        if (s.ye <= 0.0) return s.c1 >= xLow ? xLow : std::max(xLow, s.Low(0.0));
        k = std::min(0.0, std::ceil((xLow - s.c1) / s.ye));
    } else {
        k = std::ceil((xLow - s.rh) / s.y2);
    }
    if (!(std::fabs(k) < kExactSteps)) return xLow;
    for (int i = 0; i < 2 && s.High(k - 1.0) >= xLow; ++i)
        k -= 1.0;
    for (int i = 0; i < 2 && s.High(k) < xLow; ++i)
        k += 1.0;
    return s.High(k) < xLow ? xLow : std::max(xLow, s.Low(k));
}

// The largest dividend at or below xHigh.
double LastDividend(const DividendSteps& s, double xHigh) {
    double k = 0.0;
    if (s.Low(0.0) <= xHigh) {
        if (s.ye <= 0.0) return xHigh;
        k = std::floor((xHigh - s.rl) / s.ye);
    } else {
        k = std::floor((xHigh - s.rl) / s.y2);
    }
    if (!(std::fabs(k) < kExactSteps)) return xHigh;
    for (int i = 0; i < 2 && s.Low(k + 1.0) <= xHigh; ++i)
        k += 1.0;
    for (int i = 0; i < 2 && s.Low(k) > xHigh; ++i)
        k -= 1.0;
    return s.Low(k) > xHigh ? xHigh : std::min(xHigh, s.High(k));
}

Interval DividendsOfPositiveDivisors(const Interval& r, const Interval& x, double y1, double y2,
                                     double gap) {
    DividendSteps steps(r, y1, y2, gap);
    if (steps.empty) return ZorWBReal_Nil;
    return ZorWBInverseClip({FirstDividend(steps, x.low), LastDividend(steps, x.high)}, x);
}

// ---------------------------------------------------------------- modulo: divisors
//
// For one quotient k, a divisor y > 0 is feasible when some remainder r in
// [rl, rh] with r <= y - gap gives a dividend k y + r inside x. These are
// linear conditions on y, so the divisors of one quotient form an interval
// J(k). Over the quotients k >= 1 (and over m = -k >= 2) both ends of J are
// monotone and the feasible quotients form a run, so the hull of a family is
// the hull of J at the two ends of its run.
struct DivisorSteps {
    // J(k); rounded to integers when gap is 1 and round is set.
    Interval Of(double k, bool round = true) const {
        double lower = std::max(yl, rl + gap);
        double upper = yh;
        if (k > 0.0) {
            lower = std::max(lower, (x.low - rh) / k);
            upper = std::min(upper, (x.high - rl) / k);
        } else if (k < 0.0) {
            lower = std::max(lower, (x.high - rl) / k);
            upper = std::min(upper, (x.low - rh) / k);
        } else if (x.high < rl || x.low > rh) {
            return ZorWBReal_Nil;
        }
        double next = k + 1.0;
        if (next > 0.0)
            lower = std::max(lower, (x.low + gap) / next);
        else if (next < 0.0)
            upper = std::min(upper, (x.low + gap) / next);
        else if (x.low + gap > 0.0)
            return ZorWBReal_Nil;
        if (integer && round) {
            lower = ZorWBInverseRoundUp(lower);
            upper = ZorWBInverseRoundDown(upper);
            if (lower > upper) return ZorWBReal_Nil;
        }
        Interval j = {lower, upper};
        return ZorWBInverseIsEmpty(j) ? ZorWBReal_Nil : j;
    }
    // The smallest divisor any quotient allows.
    double Floor() const { return std::max(yl, rl + gap); }

    Interval x;
    double rl = 0.0, rh = 0.0, yl = 0.0, yh = 0.0, gap = 0.0;
    bool integer = false;
};

// J at the first feasible quotient of the run sign * [first, last], walking
// from start towards stop by step (+1 from the near end, -1 from the far
// end). The bound may be off by rounding, so the walk also looks two steps
// back. Integers walk further over quotients whose J holds no integer, and
// fall back on the real J (a sound hull) when the walk ends inside the run.
Interval RunEnd(const DivisorSteps& s, double sign, double start, double stop, double step,
                double smallest) {
    double t = start;
    for (int i = 0; i < 2; ++i) {
        double back = t - step;
        if (back < smallest || ZorWBInverseIsEmpty(s.Of(sign * back))) break;
        t = back;
    }
    int limit = s.integer ? kScanLimit : 3;
    for (int i = 0; i < limit; ++i, t += step) {
        if (step > 0.0 ? t > stop + 2.0 : t < stop - 2.0) return ZorWBReal_Nil;  // past the run
        if (t < smallest) continue;
        Interval j = s.Of(sign * t);
        if (!ZorWBInverseIsEmpty(j)) return j;
    }
    return s.integer ? s.Of(sign * start, false) : ZorWBReal_Nil;
}

// The divisors of the quotients sign * t for t in [first, last] (t >= smallest).
Interval FamilyHull(const DivisorSteps& s, double sign, double first, double last,
                    double smallest) {
    first = std::max(std::ceil(first), smallest);
    last = std::floor(last);
    if (std::isnan(first) || std::isnan(last) || first > last + 2.0) return ZorWBReal_Nil;
    Interval nearEnd = RunEnd(s, sign, first, last, 1.0, smallest);
    if (ZorWBInverseIsEmpty(nearEnd)) return ZorWBReal_Nil;
    // Without a last quotient the divisors shrink towards the smallest one.
    Interval farEnd = std::isinf(last) ? Interval{s.Floor(), s.Floor()}
                                       : RunEnd(s, sign, last, first, -1.0, smallest);
    return ZorWBInverseHull(nearEnd, farEnd);
}

double Ratio(double numerator, double denominator) {
    return denominator > 0.0 ? numerator / denominator : HUGE_VAL;
}

Interval PositiveDivisors(const Interval& r, const Interval& x, double yl, double yh, double gap) {
    DivisorSteps s;
    s.x = x;
    s.rl = std::max(r.low, 0.0);
    s.rh = r.high;
    if (gap > 0.0) {
        s.rl = std::ceil(s.rl);
        s.rh = std::floor(s.rh);
    }
    s.yl = yl;
    s.yh = yh;
    s.gap = gap;
    s.integer = gap > 0.0;
    double floor = s.Floor();
    if (s.rl > s.rh || floor > yh) return ZorWBReal_Nil;

    Interval hull = ZorWBInverseHull(s.Of(0.0), s.Of(-1.0));
    // Quotients k >= 1 (the other pairs of conditions follow from these).
    double reach = x.high - s.rl;
    if (reach >= 0.0) {
        double first = std::max({1.0, (x.low - s.rh) / yh, (x.low + gap) / yh - 1.0});
        hull = ZorWBInverseHull(hull, FamilyHull(s, 1.0, first, Ratio(reach, floor), 1.0));
    }
    // Quotients k = -m, m >= 2.
    double depth = -(x.low + gap);
    if (s.rh - x.low >= 0.0 && depth >= 0.0) {
        double first = std::max(2.0, (s.rl - x.high) / yh);
        double last = std::min(Ratio(s.rh - x.low, floor), 1.0 + Ratio(depth, floor));
        hull = ZorWBInverseHull(hull, FamilyHull(s, -1.0, first, last, 2.0));
    }
    return hull;
}

// Applies a positive-divisor projection to both signs of the divisor:
// mod(x, y) = -mod(-x, -y), so a negative divisor is the mirror image.
template <class Positive>
Interval BothSigns(const Interval& r, const Interval& x, const Interval& y, bool integer,
                   Positive positive) {
    double gap = integer ? 1.0 : 0.0;
    double smallest = integer ? 1.0 : 0.0;
    Interval hull = ZorWBReal_Nil;
    if (integer ? y.high >= 1.0 : y.high > 0.0)
        hull = positive(r, x, std::max(y.low, smallest), y.high, gap);
    if (integer ? y.low <= -1.0 : y.low < 0.0) {
        Interval mirrored = positive(ZorWBInverseNegate(r), ZorWBInverseNegate(x),
                                     std::max(-y.high, smallest), -y.low, gap);
        hull = ZorWBInverseHull(hull, ZorWBInverseNegate(mirrored));
    }
    return hull;
}

// Sets the code of a modulo operand set that cannot be used and answers
// whether there was one: a bound that is not a number, or a divisor that can
// only be 0.
bool ReportModError(const ZorWBEnvironment& environment, const Interval& result,
                    const Interval& domain, const Interval& other, bool domainIsDivisor) {
    const Interval& divisor = domainIsDivisor ? domain : other;
    unsigned int code = ZorWBError::None;
    if (ZorWBInverseHasNaN(result))
        code = ZorWBError::InverseModInterval1;
    else if (ZorWBInverseHasNaN(domain))
        code = ZorWBError::InverseModInterval2;
    else if (ZorWBInverseHasNaN(other))
        code = ZorWBError::InverseModInterval3;
    else if (divisor.low == 0.0 && divisor.high == 0.0)
        code = ZorWBError::InverseModInterval;
    environment.SetError(code);
    return code != ZorWBError::None;
}

// The integer form of a modulo projection through its real core.
template <class Core>
ZorWBIntegerInterval IntegerMod(const ZorWBEnvironment& environment,
                                const ZorWBIntegerInterval& result,
                                const ZorWBIntegerInterval& domain,
                                const ZorWBIntegerInterval& other, bool domainIsDivisor,
                                Core core) {
    Interval r = ZorWBInverseToReal(result);
    Interval x = ZorWBInverseToReal(domain);
    Interval y = ZorWBInverseToReal(other);
    if (ReportModError(environment, r, x, y, domainIsDivisor)) return domain;
    return ZorWBInverseToInteger(core(r, x, y, true));
}

bool ReportPowError(const ZorWBEnvironment& environment, const Interval& result,
                    const Interval& domain, const Interval& other) {
    bool unusable =
        ZorWBInverseHasNaN(result) || ZorWBInverseHasNaN(domain) || ZorWBInverseHasNaN(other);
    if (unusable) environment.SetError(ZorWBError::InverseOrPow);
    return unusable;
}

// ---------------------------------------------------------------- power

// ln of the positive part of a set; ln 0 reads as minus infinity.
Interval LnOfPositivePart(const Interval& a) {
    if (ZorWBInverseIsEmpty(a) || a.high <= 0.0) return ZorWBReal_Nil;
    return {a.low > 0.0 ? std::log(a.low) : -L, std::log(a.high)};
}

Interval ExpOf(const Interval& a) {
    return {std::min(std::exp(a.low), L), std::min(std::exp(a.high), L)};
}

// The q with q * d = s for some s of s and d of d, as at most two pieces:
// d holding 0 with s holding 0 allows every q; a d that straddles 0 splits
// the answer into two half-lines.
int SolveProduct(const Interval& s, const Interval& d, Interval pieces[2]) {
    if (ZorWBInverseIsEmpty(s) || ZorWBInverseIsEmpty(d)) return 0;
    if (d.low > 0.0 || d.high < 0.0) {
        double q[4] = {s.low / d.low, s.low / d.high, s.high / d.low, s.high / d.high};
        pieces[0] = {ZorWBInverseClamp(*std::min_element(q, q + 4)),
                     ZorWBInverseClamp(*std::max_element(q, q + 4))};
        return 1;
    }
    if (s.low <= 0.0 && s.high >= 0.0) {
        pieces[0] = ZorWBReal_Any;
        return 1;
    }
    int count = 0;
    double nearest = s.low > 0.0 ? s.low : s.high;  // the end of s nearest to 0
    bool positive = s.low > 0.0;
    if (d.high > 0.0) {
        double q = ZorWBInverseClamp(nearest / d.high);
        pieces[count++] = positive ? Interval{q, L} : Interval{-L, q};
    }
    if (d.low < 0.0) {
        double q = ZorWBInverseClamp(nearest / d.low);
        pieces[count++] = positive ? Interval{-L, q} : Interval{q, L};
    }
    return count;
}

// The negative bases x with x^n in r for one integer exponent n.
Interval NegativeBasesOfExponent(const Interval& r, double n) {
    if (n == 0.0) return ZorWBInverseHolds(r, 1.0) ? Interval{-L, 0.0} : ZorWBReal_Nil;
    // x^n = (-1)^n |x|^n.
    Interval t = std::fmod(n, 2.0) == 0.0 ? r : ZorWBInverseNegate(r);
    if (ZorWBInverseIsEmpty(t) || t.high <= 0.0) return ZorWBReal_Nil;
    double low = t.low > 0.0 ? t.low : 0.0;  // never -0, whose negative powers are -inf
    double root = 1.0 / n;
    Interval magnitude = n > 0.0 ? Interval{std::pow(low, root), std::pow(t.high, root)}
                                 : Interval{std::pow(t.high, root), std::pow(low, root)};
    return {-std::min(magnitude.high, L), -std::min(magnitude.low, L)};
}

// The exponents of a set as a run of integers, or false.
bool IntegerRun(const Interval& a, double& first, double& last) {
    first = ZorWBInverseRoundUp(a.low);
    last = ZorWBInverseRoundDown(a.high);
    return first <= last;
}

// Whether a run of integers is short enough to walk one by one.
bool IsShortRun(double first, double last) {
    return last - first < kScanLimit && std::fabs(first) < kExactSteps &&
           std::fabs(last) < kExactSteps;
}

Interval NegativeBases(const Interval& r, const Interval& xn, const Interval& y) {
    double first = 0.0, last = 0.0;
    if (!IntegerRun(y, first, last)) return ZorWBReal_Nil;
    Interval hull = ZorWBReal_Nil;
    if (IsShortRun(first, last)) {
        for (double n = first; n <= last; n += 1.0)
            hull = ZorWBInverseHull(hull, ZorWBInverseClip(NegativeBasesOfExponent(r, n), xn));
        return hull;
    }
    // Many exponents: |x|^n lies in |r|, whatever the parity of n.
    Interval pieces[2];
    int count = SolveProduct(LnOfPositivePart(ZorWBInverseAbsImage(r)), {first, last}, pieces);
    for (int i = 0; i < count; ++i)
        hull = ZorWBInverseHull(hull, ZorWBInverseClip(ZorWBInverseNegate(ExpOf(pieces[i])), xn));
    return hull;
}

// The integer exponents n that some negative base of xn raises into r.
Interval NegativeBaseExponents(const Interval& r, const Interval& y, const Interval& xn) {
    // Through |x|^n in |r| first, then exponent by exponent for the parity.
    Interval pieces[2];
    int count = SolveProduct(LnOfPositivePart(ZorWBInverseAbsImage(r)),
                             LnOfPositivePart(ZorWBInverseAbsImage(xn)), pieces);
    Interval hull = ZorWBReal_Nil;
    for (int i = 0; i < count; ++i) {
        double first = 0.0, last = 0.0;
        if (!IntegerRun(ZorWBInverseClip(pieces[i], y), first, last)) continue;
        if (!IsShortRun(first, last)) {
            hull = ZorWBInverseHull(hull, {first, last});
            continue;
        }
        for (double n = first; n <= last; n += 1.0) {
            if (ZorWBInverseMeets(NegativeBasesOfExponent(r, n), xn))
                hull = ZorWBInverseHull(hull, {n, n});
        }
    }
    return hull;
}

}  // namespace

// ---------------------------------------------------------------- cores

ZorWBRealInterval ZorWBInverseModDividends(const ZorWBRealInterval& result,
                                           const ZorWBRealInterval& dividend,
                                           const ZorWBRealInterval& divisor, bool integer) {
    if (AnyEmpty(result, dividend, divisor)) return ZorWBReal_Nil;
    return BothSigns(result, dividend, divisor, integer, DividendsOfPositiveDivisors);
}

ZorWBRealInterval ZorWBInverseModDivisors(const ZorWBRealInterval& result,
                                          const ZorWBRealInterval& divisor,
                                          const ZorWBRealInterval& dividend, bool integer) {
    if (AnyEmpty(result, dividend, divisor)) return ZorWBReal_Nil;
    return ZorWBInverseClip(BothSigns(result, dividend, divisor, integer, PositiveDivisors),
                            divisor);
}

ZorWBRealInterval ZorWBInversePowBases(const ZorWBRealInterval& result,
                                       const ZorWBRealInterval& base,
                                       const ZorWBRealInterval& exponent) {
    if (AnyEmpty(result, base, exponent)) return ZorWBReal_Nil;
    Interval hull = ZorWBReal_Nil;
    // Positive bases: ln x * y = ln r.
    if (base.high > 0.0) {
        Interval pieces[2];
        int count = SolveProduct(LnOfPositivePart(result), exponent, pieces);
        Interval positive = {std::max(base.low, 0.0), base.high};
        for (int i = 0; i < count; ++i)
            hull = ZorWBInverseHull(hull, ZorWBInverseClip(ExpOf(pieces[i]), positive));
    }
    // The base 0: 0^y = 0 for y > 0, and 0^0 = 1.
    if (ZorWBInverseHolds(base, 0.0) &&
        ((ZorWBInverseHolds(result, 0.0) && exponent.high > 0.0) ||
         (ZorWBInverseHolds(result, 1.0) && ZorWBInverseHolds(exponent, 0.0))))
        hull = ZorWBInverseHull(hull, {0.0, 0.0});
    if (base.low < 0.0)
        hull = ZorWBInverseHull(
            hull, NegativeBases(result, {base.low, std::min(base.high, 0.0)}, exponent));
    // The base 0 and integers snapped from rounded bounds may lie a slack
    // outside the domain.
    return ZorWBInverseClip(hull, base);
}

ZorWBRealInterval ZorWBInversePowExponents(const ZorWBRealInterval& result,
                                           const ZorWBRealInterval& exponent,
                                           const ZorWBRealInterval& base, bool integer) {
    if (AnyEmpty(result, base, exponent)) return ZorWBReal_Nil;
    Interval hull = ZorWBReal_Nil;
    if (base.high > 0.0) {
        Interval pieces[2];
        int count = SolveProduct(LnOfPositivePart(result), LnOfPositivePart(base), pieces);
        for (int i = 0; i < count; ++i)
            hull = ZorWBInverseHull(hull, ZorWBInverseClip(pieces[i], exponent));
    }
    if (ZorWBInverseHolds(base, 0.0)) {
        if (ZorWBInverseHolds(result, 0.0))
            hull = ZorWBInverseHull(
                hull, ZorWBInverseClip({ZorWBInverseOpenLower(0.0, integer), L}, exponent));
        if (ZorWBInverseHolds(result, 1.0))
            hull = ZorWBInverseHull(hull, ZorWBInverseClip({0.0, 0.0}, exponent));
    }
    if (base.low < 0.0)
        hull = ZorWBInverseHull(
            hull, NegativeBaseExponents(result, exponent, {base.low, std::min(base.high, 0.0)}));
    return ZorWBInverseClip(hull, exponent);
}

// ---------------------------------------------------------------- public forms

ZorWBIntegerInterval ZorWBInverseMod1(const ZorWBEnvironment& environment,
                                      const ZorWBIntegerInterval& result,
                                      const ZorWBIntegerInterval& dividend,
                                      const ZorWBIntegerInterval& divisor) {
    return IntegerMod(environment, result, dividend, divisor, false, ZorWBInverseModDividends);
}

ZorWBRealInterval ZorWBInverseMod1(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& result,
                                   const ZorWBRealInterval& dividend,
                                   const ZorWBRealInterval& divisor) {
    if (ReportModError(environment, result, dividend, divisor, false)) return dividend;
    return ZorWBInverseModDividends(result, dividend, divisor, false);
}

ZorWBIntegerInterval ZorWBInverseMod2(const ZorWBEnvironment& environment,
                                      const ZorWBIntegerInterval& result,
                                      const ZorWBIntegerInterval& divisor,
                                      const ZorWBIntegerInterval& dividend) {
    return IntegerMod(environment, result, divisor, dividend, true, ZorWBInverseModDivisors);
}

ZorWBRealInterval ZorWBInverseMod2(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& result,
                                   const ZorWBRealInterval& divisor,
                                   const ZorWBRealInterval& dividend) {
    if (ReportModError(environment, result, divisor, dividend, true)) return divisor;
    return ZorWBInverseModDivisors(result, divisor, dividend, false);
}

ZorWBRealInterval ZorWBInversePow1(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& result, const ZorWBRealInterval& base,
                                   const ZorWBRealInterval& exponent) {
    if (ReportPowError(environment, result, base, exponent)) return base;
    return ZorWBInversePowBases(result, base, exponent);
}

ZorWBRealInterval ZorWBInversePow2(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& result,
                                   const ZorWBRealInterval& exponent,
                                   const ZorWBRealInterval& base) {
    if (ReportPowError(environment, result, exponent, base)) return exponent;
    return ZorWBInversePowExponents(result, exponent, base, false);
}
