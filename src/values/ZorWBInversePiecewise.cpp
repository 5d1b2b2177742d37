// Inverses of the piecewise operators on values: positive difference, sign
// transfer, rounding and truncation, the step, and the two-argument arc
// tangent.

#include <algorithm>
#include <cmath>

#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBInverseSets.h"

namespace {

using Interval = ZorWBRealInterval;

constexpr double L = ZorWBRealLimit;
constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = kPi / 2.0;

// ---------------------------------------------------------------- positive difference

// a with max(a - b, 0) in r for some b of other.
Interval DimFirst(const Interval& r, const Interval& a, const Interval& b, bool) {
    if (r.high < 0.0) return ZorWBReal_Nil;
    // A result that may be 0 lets a - b be anything up to r.high.
    Interval candidate = r.low <= 0.0 ? Interval{-L, ZorWBInverseClamp(b.high + r.high)}
                                      : Interval{ZorWBInverseClamp(b.low + r.low),
                                                 ZorWBInverseClamp(b.high + r.high)};
    return ZorWBInverseClip(candidate, a);
}

// b with max(a - b, 0) in r for some a of other.
Interval DimSecond(const Interval& r, const Interval& b, const Interval& a, bool) {
    if (r.high < 0.0) return ZorWBReal_Nil;
    Interval candidate = r.low <= 0.0 ? Interval{ZorWBInverseClamp(a.low - r.high), L}
                                      : Interval{ZorWBInverseClamp(a.low - r.high),
                                                 ZorWBInverseClamp(a.high - r.low)};
    return ZorWBInverseClip(candidate, b);
}

// ---------------------------------------------------------------- sign transfer

// a with sign(a, b) in r: |a| in r for some b >= 0, -|a| in r for some b < 0.
Interval SignFirst(const Interval& r, const Interval& a, const Interval& b, bool) {
    Interval hull = ZorWBReal_Nil;
    if (b.high >= 0.0) hull = ZorWBInverseAbs(r, a);
    if (b.low < 0.0) hull = ZorWBInverseHull(hull, ZorWBInverseAbs(ZorWBInverseNegate(r), a));
    return hull;
}

// b with sign(a, b) in r: b >= 0 when some |a| lies in r, b < 0 when some
// -|a| does (closed a hair below 0 for reals).
Interval SignSecond(const Interval& r, const Interval& b, const Interval& a, bool integer) {
    Interval magnitudes = ZorWBInverseAbsImage(a);
    Interval hull = ZorWBReal_Nil;
    if (ZorWBInverseMeets(magnitudes, r)) hull = ZorWBInverseClip({0.0, L}, b);
    if (ZorWBInverseMeets(ZorWBInverseNegate(magnitudes), r))
        hull =
            ZorWBInverseHull(hull, ZorWBInverseClip({-L, ZorWBInverseOpenUpper(0.0, integer)}, b));
    return hull;
}

// ---------------------------------------------------------------- rounding

// The integers of r as [first, last], or false when it holds none.
bool Integers(const Interval& r, double& first, double& last) {
    first = std::ceil(r.low);
    last = std::floor(r.high);
    return first <= last;
}

// x with round(x) in r, rounding half away from zero: n >= 1 comes from
// [n - 1/2, n + 1/2), n <= -1 from (n - 1/2, n + 1/2], 0 from (-1/2, 1/2).
Interval RoundProjection(const Interval& r, const Interval& x, const Interval&, bool integer) {
    double first = 0.0, last = 0.0;
    if (!Integers(r, first, last)) return ZorWBReal_Nil;
    double low = first >= 1.0 ? first - 0.5 : ZorWBInverseOpenLower(first - 0.5, integer);
    double high = last <= -1.0 ? last + 0.5 : ZorWBInverseOpenUpper(last + 0.5, integer);
    return ZorWBInverseClip({low, high}, x);
}

// x with trunc(x) in r: n >= 1 comes from [n, n + 1), n <= -1 from
// (n - 1, n], 0 from (-1, 1).
Interval TruncProjection(const Interval& r, const Interval& x, const Interval&, bool integer) {
    double first = 0.0, last = 0.0;
    if (!Integers(r, first, last)) return ZorWBReal_Nil;
    double low = first >= 1.0 ? first : ZorWBInverseOpenLower(first - 1.0, integer);
    double high = last <= -1.0 ? last : ZorWBInverseOpenUpper(last + 1.0, integer);
    return ZorWBInverseClip({low, high}, x);
}

// x with floor(x) in r: [first, last + 1). The interval form takes its hair
// from r's high bound; here, as for the other open ends, the hair is taken
// from the excluded bound itself, so that a huge high bound cannot cut the
// low end.
Interval FloorProjection(const Interval& r, const Interval& x, const Interval&, bool integer) {
    double first = 0.0, last = 0.0;
    if (!Integers(r, first, last)) return ZorWBReal_Nil;
    return ZorWBInverseClip({first, ZorWBInverseOpenUpper(last + 1.0, integer)}, x);
}

// x with ceil(x) in r: (first - 1, last].
Interval CeilProjection(const Interval& r, const Interval& x, const Interval&, bool integer) {
    double first = 0.0, last = 0.0;
    if (!Integers(r, first, last)) return ZorWBReal_Nil;
    return ZorWBInverseClip({ZorWBInverseOpenLower(first - 1.0, integer), last}, x);
}

// ---------------------------------------------------------------- step

struct Step {
    double x0 = 0.0, x1 = 0.0, y0 = 0.0, y1 = 1.0;
};

bool ReadStep(const double* parameters, Step& step) {
    if (parameters) step = {parameters[0], parameters[1], parameters[2], parameters[3]};
    return std::isfinite(step.x0) && std::isfinite(step.x1) && std::isfinite(step.y0) &&
           std::isfinite(step.y1) && step.x0 <= step.x1;
}

Interval StepProjection(const Step& step, const Interval& r, const Interval& x, bool integer) {
    bool low = ZorWBInverseHolds(r, step.y0);
    bool high = ZorWBInverseHolds(r, step.y1);
    Interval hull = ZorWBReal_Nil;
    if (step.x0 == step.x1) {
        // Sharp: y0 below x0, y1 at and above it.
        if (low) hull = {-L, ZorWBInverseOpenUpper(step.x0, integer)};
        if (high) hull = ZorWBInverseHull(hull, {step.x0, L});
        return ZorWBInverseClip(hull, x);
    }
    if (low) hull = {-L, step.x0};
    if (high) hull = ZorWBInverseHull(hull, {step.x1, L});
    if (step.y0 == step.y1) {
        if (low) hull = ZorWBInverseHull(hull, {step.x0, step.x1});
    } else {
        // The ramp: a = x0 + (v - y0) (x1 - x0) / (y1 - y0) for v in r.
        double v0 = std::max(r.low, std::min(step.y0, step.y1));
        double v1 = std::min(r.high, std::max(step.y0, step.y1));
        if (v0 <= v1) {
            double slope = (step.x1 - step.x0) / (step.y1 - step.y0);
            double a0 = step.x0 + (v0 - step.y0) * slope;
            double a1 = step.x0 + (v1 - step.y0) * slope;
            Interval ramp = {std::max(std::min(a0, a1), step.x0),
                             std::min(std::max(a0, a1), step.x1)};
            hull = ZorWBInverseHull(hull, ramp);
        }
    }
    return ZorWBInverseClip(hull, x);
}

// ---------------------------------------------------------------- two-argument arc tangent
//
// The points (x, y) whose angle lies in a sector of width at most pi/2 form a
// convex cone; its intersection with the box of the two operands is the box
// clipped by three half-planes, and the projection is read off the clipped
// polygon's vertices. The angle range is cut into such sectors at the
// multiples of pi/2.

struct Point {
    double x = 0.0, y = 0.0;
};

// The unit direction of an angle, exact at the multiples of pi/2.
Point Direction(double angle) {
    double quarters = angle / kHalfPi;
    if (quarters == std::round(quarters) && std::fabs(quarters) <= 2.0) {
        static const Point axes[5] = {
            {-1.0, 0.0}, {0.0, -1.0}, {1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}};
        return axes[static_cast<int>(quarters) + 2];
    }
    return {std::cos(angle), std::sin(angle)};
}

// Keeps the part of a convex polygon where a px + b py >= -slack.
int ClipHalfPlane(const Point* in, int count, double a, double b, double slack, Point* out) {
    int kept = 0;
    for (int i = 0; i < count; ++i) {
        const Point& p = in[i];
        const Point& q = in[(i + 1) % count];
        double fp = a * p.x + b * p.y;
        double fq = a * q.x + b * q.y;
        bool pInside = fp >= -slack;
        if (pInside) out[kept++] = p;
        if (pInside != (fq >= -slack)) {
            double t = std::max(0.0, std::min(1.0, fp / (fp - fq)));
            out[kept++] = {p.x + t * (q.x - p.x), p.y + t * (q.y - p.y)};
        }
    }
    return kept;
}

Interval SectorProjection(const Point box[4], double from, double to, double slack, bool ontoY) {
    Point da = Direction(from), db = Direction(to), dm = Direction((from + to) / 2.0);
    Point first[8], second[8], third[8];
    int count = ClipHalfPlane(box, 4, -da.y, da.x, slack, first);     // at or after from
    count = ClipHalfPlane(first, count, db.y, -db.x, slack, second);  // at or before to
    count = ClipHalfPlane(second, count, dm.x, dm.y, slack, third);   // not the opposite cone
    Interval hull = ZorWBReal_Nil;
    for (int i = 0; i < count; ++i) {
        double v = ontoY ? third[i].y : third[i].x;
        hull = ZorWBInverseHull(hull, {v, v});
    }
    return hull;
}

Interval Atan2Projection(const Interval& r, const Interval& ys, const Interval& xs, bool ontoY) {
    Interval angles = {std::max(r.low, -kPi), std::min(r.high, kPi)};
    if (ZorWBInverseIsEmpty(angles) || ZorWBInverseIsEmpty(ys) || ZorWBInverseIsEmpty(xs))
        return ZorWBReal_Nil;
    angles.low = std::min(angles.low, angles.high);
    Point box[4] = {{xs.low, ys.low}, {xs.high, ys.low}, {xs.high, ys.high}, {xs.low, ys.high}};
    double scale =
        std::max({std::fabs(xs.low), std::fabs(xs.high), std::fabs(ys.low), std::fabs(ys.high)});
    double slack = 1e-13 * scale;
    double cuts[12];
    int count = 0;
    cuts[count++] = angles.low;
    for (int k = -4; k <= 4; ++k) {
        double cut = k * kHalfPi;
        if (cut > angles.low && cut < angles.high) cuts[count++] = cut;
    }
    cuts[count++] = angles.high;
    Interval hull = ZorWBReal_Nil;
    for (int i = 0; i + 1 < count; ++i)
        hull = ZorWBInverseHull(hull, SectorProjection(box, cuts[i], cuts[i + 1], slack, ontoY));
    return ZorWBInverseClip(hull, ontoY ? ys : xs);
}

Interval Atan2First(const Interval& r, const Interval& y, const Interval& x, bool) {
    return Atan2Projection(r, y, x, true);
}

Interval Atan2Second(const Interval& r, const Interval& x, const Interval& y, bool) {
    return Atan2Projection(r, y, x, false);
}

}  // namespace

ZorWBValue ZorWBInverseDim1(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& a, const ZorWBValue& b) {
    return ZorWBInverseNumeric(environment, result, a, &b, ZorWBError::IncompatibleKinds, DimFirst);
}

ZorWBValue ZorWBInverseDim2(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& b, const ZorWBValue& a) {
    return ZorWBInverseNumeric(environment, result, b, &a, ZorWBError::IncompatibleKinds,
                               DimSecond);
}

ZorWBValue ZorWBInverseSign1(const ZorWBEnvironment& environment, const ZorWBValue& result,
                             const ZorWBValue& a, const ZorWBValue& b) {
    return ZorWBInverseNumeric(environment, result, a, &b, ZorWBError::IncompatibleKinds,
                               SignFirst);
}

ZorWBValue ZorWBInverseSign2(const ZorWBEnvironment& environment, const ZorWBValue& result,
                             const ZorWBValue& b, const ZorWBValue& a) {
    return ZorWBInverseNumeric(environment, result, b, &a, ZorWBError::IncompatibleKinds,
                               SignSecond);
}

ZorWBValue ZorWBInverseAtan21(const ZorWBEnvironment& environment, const ZorWBValue& result,
                              const ZorWBValue& y, const ZorWBValue& x) {
    return ZorWBInverseNumeric(environment, result, y, &x, ZorWBError::IncompatibleKinds,
                               Atan2First);
}

ZorWBValue ZorWBInverseAtan22(const ZorWBEnvironment& environment, const ZorWBValue& result,
                              const ZorWBValue& x, const ZorWBValue& y) {
    return ZorWBInverseNumeric(environment, result, x, &y, ZorWBError::IncompatibleKinds,
                               Atan2Second);
}

ZorWBValue ZorWBInverseCeil(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& domain) {
    return ZorWBInverseNumeric(environment, result, domain, nullptr, ZorWBError::InverseRound,
                               CeilProjection);
}

ZorWBValue ZorWBInverseFloor(const ZorWBEnvironment& environment, const ZorWBValue& result,
                             const ZorWBValue& domain) {
    return ZorWBInverseNumeric(environment, result, domain, nullptr, ZorWBError::InverseRound,
                               FloorProjection);
}

ZorWBValue ZorWBInverseRound(const ZorWBEnvironment& environment, const ZorWBValue& result,
                             const ZorWBValue& domain) {
    return ZorWBInverseNumeric(environment, result, domain, nullptr, ZorWBError::InverseRound,
                               RoundProjection);
}

ZorWBValue ZorWBInverseTrunc(const ZorWBEnvironment& environment, const ZorWBValue& result,
                             const ZorWBValue& domain) {
    return ZorWBInverseNumeric(environment, result, domain, nullptr, ZorWBError::InverseRound,
                               TruncProjection);
}

ZorWBValue ZorWBInverseStep(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& domain, const double* parameters) {
    Step step;
    if (!ReadStep(parameters, step)) {
        environment.SetError(ZorWBError::IncompatibleKinds);
        return domain;
    }
    return ZorWBInverseNumeric(
        environment, result, domain, nullptr, ZorWBError::IncompatibleKinds,
        [&step](const Interval& r, const Interval& x, const Interval&, bool integer) {
            return StepProjection(step, r, x, integer);
        });
}
