// Trigonometric functions of real intervals and their inverses.

#include <algorithm>
#include <cmath>

#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBIntervalRules.h"

using namespace ZorWBIntervalRules;

namespace {

// Arguments of the periodic functions beyond this magnitude carry no
// meaningful phase in a double.
constexpr double ZorWBLargestAngle = 1e9;

// The quarter period in which the angle lies, 0 to 3, counted from 0.
int Quadrant(double x) {
    const long long index = static_cast<long long>(std::floor(2.0 * x * InversePi));
    return static_cast<int>((index % 4 + 4) % 4);
}

// Whether going up from a quadrant to another passes the boundary at the end
// of the given quadrant.
constexpr bool PassesEndOf(int boundaryQuadrant, int fromQuadrant, int toQuadrant) {
    for (int quadrant = fromQuadrant; quadrant != toQuadrant; quadrant = (quadrant + 1) % 4) {
        if (quadrant == boundaryQuadrant) return true;
    }
    return false;
}

// The two flags for every pair of quadrants: the interval passes a maximum
// (raise the high end to 1) or a minimum (lower the low end to -1).
struct ExtremumTable {
    bool passesMaximum[4][4];
    bool passesMinimum[4][4];
};

constexpr ExtremumTable MakeExtremumTable(int maximumAfter, int minimumAfter) {
    ExtremumTable table{};
    for (int from = 0; from < 4; ++from) {
        for (int to = 0; to < 4; ++to) {
            table.passesMaximum[from][to] = PassesEndOf(maximumAfter, from, to);
            table.passesMinimum[from][to] = PassesEndOf(minimumAfter, from, to);
        }
    }
    return table;
}

// Cosine: maximum at the end of quadrant 3 (multiples of 2 pi), minimum at
// the end of quadrant 1 (odd multiples of pi). Sine: at the ends of
// quadrants 0 and 2.
constexpr ExtremumTable CosineTable = MakeExtremumTable(3, 1);
constexpr ExtremumTable SineTable = MakeExtremumTable(0, 2);

template <typename Function>
ZorWBRealInterval PeriodicImage(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                Function function, const ExtremumTable& table) {
    ZorWBRealInterval clipped;
    if (!AcceptInDomain(environment, x, -ZorWBLargestAngle, ZorWBLargestAngle, clipped)) {
        return ZorWBReal_Nil;
    }
    if (clipped.high - clipped.low >= TwoPi) return {-1.0, 1.0};
    const int lowQuadrant = Quadrant(clipped.low);
    const int highQuadrant = Quadrant(clipped.high);
    if (lowQuadrant == highQuadrant && clipped.high - clipped.low > Pi) return {-1.0, 1.0};
    const double atLow = function(clipped.low);
    const double atHigh = function(clipped.high);
    double low = std::fmin(atLow, atHigh);
    double high = std::fmax(atLow, atHigh);
    if (table.passesMaximum[lowQuadrant][highQuadrant]) high = 1.0;
    if (table.passesMinimum[lowQuadrant][highQuadrant]) low = -1.0;
    return Normalise(low, high);
}

// The candidate angles of an inverse trigonometric function: the principal
// image (one or two pieces), and families of branches that repeat every
// period. The principal image always counts; the other branches only within
// the environment's trigonometric limits.
struct Branches {
    ZorWBRealInterval principal[2];
    int principalCount = 0;
    ZorWBRealInterval families[2];
    int familyCount = 0;
    double period = TwoPi;
};

// Shifts of one family that may meet range within the limits are those of
// consecutive k from first to last; the branches strictly between the first
// three and the last three lie inside the hull of those, so at most six are
// looked at, however wide the limits.
void CollectFamily(const ZorWBRealInterval& family, double period, double lowerLimit,
                   double upperLimit, const ZorWBRealInterval& range, ZorWBRealInterval* found,
                   int& foundCount) {
    constexpr double snapAllowance = 0.05;  // the widest snap of ZorWBIntersect
    const double windowLow = std::fmax(lowerLimit, range.low - snapAllowance);
    const double windowHigh = std::fmin(upperLimit, range.high + snapAllowance);
    const double first = std::ceil((windowLow - family.high) / period) - 1.0;
    const double last = std::floor((windowHigh - family.low) / period) + 1.0;
    if (!(first <= last)) return;
    for (int i = 0; i < 6; ++i) {
        const double k = i < 3 ? first + i : last - (5 - i);
        if (k > last || (i >= 3 && k < first + 3)) continue;
        const double shift = k * period;
        const ZorWBRealInterval clipped = {std::fmax(family.low + shift, lowerLimit),
                                           std::fmin(family.high + shift, upperLimit)};
        if (!IsEmptyInterval(clipped)) found[foundCount++] = clipped;
    }
}

// A candidate's part within range, and whether it is principal.
struct Part {
    ZorWBRealInterval interval;
    bool principal;
};

bool IsNear(double a, double b) {
    return std::fabs(a - b) <= 1e-12 * std::fmax(1.0, std::fabs(a));
}

bool IsPoint(const Part& part) {
    return IsNear(part.interval.low, part.interval.high);
}

// Points lose to wider parts, then non-principal parts to principal ones.
int Rank(const Part& part) {
    return (IsPoint(part) ? 0 : 2) + (part.principal ? 1 : 0);
}

// A range exactly one period wide holds the angle of its two ends twice:
// they are the same direction. A part of another branch that is only one of
// these ends is dropped when a part of higher rank (or of equal rank and
// listed earlier) covers its twin at the other end; principal parts are
// always kept, so that every principal value stays in the result. So within
// the principal range the principal value comes alone: atan2 at (0, -1) in
// [-pi, pi] is pi, not the hull of pi and -pi. Ranges of any other width
// keep every candidate.
bool IsDuplicateEnd(const Part* parts, int count, int index, const ZorWBRealInterval& range,
                    double period) {
    const Part& part = parts[index];
    if (part.principal || !IsPoint(part) || !IsNear(range.high - range.low, period)) return false;
    const double at = part.interval.low;
    double twin = 0.0;
    if (IsNear(at, range.low)) {
        twin = at + period;
    } else if (IsNear(at, range.high)) {
        twin = at - period;
    } else {
        return false;
    }
    for (int other = 0; other < count; ++other) {
        if (other == index) continue;
        const ZorWBRealInterval& cover = parts[other].interval;
        const bool covers = (cover.low <= twin || IsNear(cover.low, twin)) &&
                            (twin <= cover.high || IsNear(cover.high, twin));
        const int rank = Rank(parts[other]);
        if (covers && (rank > Rank(part) || (rank == Rank(part) && other < index))) return true;
    }
    return false;
}

// The hull of the candidates that meet range, within range (each met
// through the snapping intersection with range first, so the result never
// leaves range).
ZorWBRealInterval SelectBranches(const ZorWBEnvironment& environment, const Branches& branches,
                                 const ZorWBRealInterval& range) {
    double lowerLimit = 0.0;
    double upperLimit = 0.0;
    environment.GetTrigonometricLimits(lowerLimit, upperLimit);
    ZorWBRealInterval candidates[2 + 2 * 6];
    int count = 0;
    for (int i = 0; i < branches.principalCount; ++i) {
        candidates[count++] = branches.principal[i];
    }
    for (int i = 0; i < branches.familyCount; ++i) {
        CollectFamily(branches.families[i], branches.period, lowerLimit, upperLimit, range,
                      candidates, count);
    }
    Part parts[2 + 2 * 6];
    int partCount = 0;
    for (int i = 0; i < count; ++i) {
        const ZorWBRealInterval part = ZorWBIntersect(range, candidates[i], ZorWBIntervalTolerance);
        if (!IsEmptyInterval(part)) parts[partCount++] = {part, i < branches.principalCount};
    }
    ZorWBRealInterval hull = ZorWBReal_Nil;
    for (int i = 0; i < partCount; ++i) {
        if (!IsDuplicateEnd(parts, partCount, i, range, branches.period)) {
            hull = ZorWBUnite(hull, parts[i].interval);
        }
    }
    return hull;
}

// A principal image that is also a family of branches repeating every
// period, and optionally a second family.
Branches PeriodicBranches(const ZorWBRealInterval& principal, double period,
                          const ZorWBRealInterval* second = nullptr) {
    Branches branches;
    branches.principal[branches.principalCount++] = principal;
    branches.families[branches.familyCount++] = principal;
    if (second != nullptr) branches.families[branches.familyCount++] = *second;
    branches.period = period;
    return branches;
}

// Solutions of sin t = v: asin v and pi - asin v, each plus multiples of 2 pi.
Branches ArcSineBranches(const ZorWBRealInterval& x) {
    const ZorWBRealInterval principal = {std::asin(x.low), std::asin(x.high)};
    const ZorWBRealInterval mirrored = {Pi - principal.high, Pi - principal.low};
    return PeriodicBranches(principal, TwoPi, &mirrored);
}

// Solutions of cos t = v: acos v and -acos v, each plus multiples of 2 pi.
Branches ArcCosineBranches(const ZorWBRealInterval& x) {
    const ZorWBRealInterval principal = {std::acos(x.high), std::acos(x.low)};
    const ZorWBRealInterval mirrored = {-principal.high, -principal.low};
    return PeriodicBranches(principal, TwoPi, &mirrored);
}

// Solutions of tan t = v: atan v plus multiples of pi.
Branches ArcTangentBranches(const ZorWBRealInterval& x) {
    return PeriodicBranches({std::atan(x.low), std::atan(x.high)}, Pi);
}

// The arc of directions of the points of a box, as an interval of angles no
// wider than pi. A box holding the origin has every direction: [-pi, pi].
// A box across the negative x axis has an arc across pi: its angles are
// lifted into [pi / 2, 3 pi / 2], so that the arc is one interval; its
// principal image is then the two pieces [arc low, pi] and
// [-pi, arc high - 2 pi]. The arc and its shifts by 2 pi are the branches,
// so a range beyond pi selects the arc in one piece.
Branches ArcTangent2Branches(const ZorWBRealInterval& y, const ZorWBRealInterval& x) {
    Branches branches;
    if (x.low <= 0.0 && 0.0 <= x.high && y.low <= 0.0 && 0.0 <= y.high) {
        branches.principal[branches.principalCount++] = {-Pi, Pi};
        branches.families[branches.familyCount++] = {-Pi, Pi};
        return branches;
    }
    // Adding 0.0 turns a bound of -0.0 into 0.0: a point on the negative x
    // axis has the direction pi.
    const double ys[] = {y.low + 0.0, y.high + 0.0};
    const double xs[] = {x.low + 0.0, x.high + 0.0};
    const bool acrossPi = x.high < 0.0 && y.low < 0.0 && y.high >= 0.0;
    ZorWBRealInterval arc = {HUGE_VAL, -HUGE_VAL};
    for (double cornerY : ys) {
        for (double cornerX : xs) {
            double angle = std::atan2(cornerY, cornerX);
            if (acrossPi && angle < 0.0) angle += TwoPi;
            arc = {std::fmin(arc.low, angle), std::fmax(arc.high, angle)};
        }
    }
    if (acrossPi) {
        branches.principal[branches.principalCount++] = {arc.low, Pi};
        branches.principal[branches.principalCount++] = {-Pi, arc.high - TwoPi};
    } else {
        branches.principal[branches.principalCount++] = arc;
    }
    branches.families[branches.familyCount++] = arc;
    return branches;
}

// The inverse of the sine or cosine: x clipped to [-1, 1].
ZorWBRealInterval InverseOfBoundedFunction(const ZorWBEnvironment& environment,
                                           const ZorWBRealInterval& x,
                                           const ZorWBRealInterval& range,
                                           Branches (*makeBranches)(const ZorWBRealInterval&)) {
    if (RejectEmpty(environment, range)) return ZorWBReal_Nil;
    ZorWBRealInterval clipped;
    if (!AcceptInDomain(environment, x, -1.0, 1.0, clipped)) return ZorWBReal_Nil;
    return SelectBranches(environment, makeBranches(clipped), range);
}

}  // namespace

ZorWBRealInterval ZorWBSin(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return PeriodicImage(
        environment, x, [](double v) { return std::sin(v); }, SineTable);
}

ZorWBRealInterval ZorWBCos(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return PeriodicImage(
        environment, x, [](double v) { return std::cos(v); }, CosineTable);
}

// An interval that reaches a pole (an odd multiple of pi / 2) gives the
// whole line. Arguments are clipped as for the sine and cosine.
ZorWBRealInterval ZorWBTan(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    ZorWBRealInterval clipped;
    if (!AcceptInDomain(environment, x, -ZorWBLargestAngle, ZorWBLargestAngle, clipped)) {
        return ZorWBReal_Nil;
    }
    if (clipped.high - clipped.low >= Pi) return ZorWBReal_Any;
    // Branch j spans ((j - 1/2) pi, (j + 1/2) pi).
    const double lowBranch = std::floor(clipped.low * InversePi + 0.5);
    const double highBranch = std::floor(clipped.high * InversePi + 0.5);
    const double atLow = std::tan(clipped.low);
    const double atHigh = std::tan(clipped.high);
    // Bounds rounded onto the two sides of a pole show as a decreasing pair.
    if (lowBranch != highBranch || atLow > atHigh) return ZorWBReal_Any;
    return Normalise(ClampToLine(atLow), ClampToLine(atHigh));
}

ZorWBRealInterval ZorWBAsin(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                            const ZorWBRealInterval& range) {
    return InverseOfBoundedFunction(environment, x, range, ArcSineBranches);
}

ZorWBRealInterval ZorWBAcos(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                            const ZorWBRealInterval& range) {
    return InverseOfBoundedFunction(environment, x, range, ArcCosineBranches);
}

ZorWBRealInterval ZorWBAtan(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                            const ZorWBRealInterval& range) {
    if (!AcceptOperands(environment, x, range)) return ZorWBReal_Nil;
    return SelectBranches(environment, ArcTangentBranches(x), range);
}

ZorWBRealInterval ZorWBAtan2(const ZorWBEnvironment& environment, const ZorWBRealInterval& y,
                             const ZorWBRealInterval& x, const ZorWBRealInterval& range) {
    if (!AcceptOperands(environment, y, x, range)) return ZorWBReal_Nil;
    return SelectBranches(environment, ArcTangent2Branches(y, x), range);
}
