#ifndef TESTS_VALUE_TEST_SUPPORT_H
#define TESTS_VALUE_TEST_SUPPORT_H

// Generated operands of every kind, the points they hold, and the check that
// a result holds a point, for the soundness properties of the value
// functions.

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "values/ZorWBEnvironment.h"
#include "values/ZorWBFraction.h"
#include "values/ZorWBValue.h"

namespace valuetest {

constexpr double Limit = 3.4028234663852886e+38;
constexpr unsigned LevelBelowQuiet = 52363263u;
constexpr unsigned LevelQuiet = 52363264u;
constexpr unsigned LevelBelowFractionAsReal = 52690943u;
constexpr unsigned LevelFractionAsReal = 52690944u;

// The kinds an operand is generated with (the boolean and fraction included).
const ZorWBValueType AllKinds[] = {
    ZorWBIntegerType,     ZorWBRealType,     ZorWBIntegerIntervalType, ZorWBRealIntervalType,
    ZorWBIntegerEnumType, ZorWBRealEnumType, ZorWBBooleanType,         ZorWBFractionType};

inline int RandomInt(std::mt19937& rng, int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(rng);
}

inline double RandomReal(std::mt19937& rng, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(rng);
}

// An operand of the kind with small numbers (so that sampled images stay
// comparable), and now and then an integer or a zero among the reals.
inline ZorWBValue RandomOperand(std::mt19937& rng, ZorWBValueType kind) {
    switch (kind) {
        case ZorWBIntegerType:
            return ZorWBValue(RandomInt(rng, -12, 12));
        case ZorWBRealType:
            return ZorWBValue(RandomInt(rng, 0, 5) == 0 ? static_cast<double>(RandomInt(rng, -3, 3))
                                                        : RandomReal(rng, -6.0, 6.0));
        case ZorWBIntegerIntervalType: {
            int low = RandomInt(rng, -12, 12);
            return ZorWBValue(ZorWBIntegerInterval{low, low + RandomInt(rng, 0, 8)});
        }
        case ZorWBRealIntervalType: {
            double low = RandomReal(rng, -6.0, 6.0);
            double width = RandomInt(rng, 0, 4) == 0 ? 0.0 : RandomReal(rng, 0.0, 3.0);
            return ZorWBValue(ZorWBRealInterval{low, low + width});
        }
        case ZorWBIntegerEnumType: {
            if (RandomInt(rng, 0, 5) == 0) {  // held as an interval, too wide for a list
                ZorWBIntegerEnum wide(ZorWBEnumInterval);
                int low = RandomInt(rng, -100, 0);
                wide.SetAsIntegerInterval({low, low + 60 + RandomInt(rng, 0, 40)});
                return ZorWBValue(wide);
            }
            std::vector<int> elements(static_cast<std::size_t>(RandomInt(rng, 1, 5)));
            for (int& element : elements)
                element = RandomInt(rng, -12, 12);
            ZorWBValue value;
            value.Set(static_cast<int>(elements.size()), elements.data());
            return value;
        }
        case ZorWBRealEnumType: {
            std::vector<double> elements(static_cast<std::size_t>(RandomInt(rng, 1, 5)));
            for (double& element : elements)
                element = RandomReal(rng, -6.0, 6.0);
            ZorWBValue value;
            value.Set(static_cast<int>(elements.size()), elements.data());
            return value;
        }
        case ZorWBBooleanType:
            return ZorWBValue(static_cast<ZorWBBoolean>(RandomInt(rng, 0, 2)));
        case ZorWBFractionType:
            return ZorWBValue(ZorWBCreateFraction(RandomInt(rng, -12, 12), RandomInt(rng, 1, 9),
                                                  RandomInt(rng, 0, 3) == 0 ? 1 : 0, 0));
        default:
            return ZorWBValue();
    }
}

// The fraction numerator / denominator * Pi^power as a value.
inline ZorWBValue Fraction(int numerator, int denominator, int power = 0) {
    return ZorWBValue(ZorWBCreateFraction(numerator, denominator, power, 0));
}

// One value of each kind, in the order of the kinds: undefined, integer,
// real, the two intervals, the two enumerations, boolean and fraction.
inline std::vector<ZorWBValue> OneValueOfEachKind() {
    return {ZorWBValue(),
            ZorWBValue(1),
            ZorWBValue(1.5),
            ZorWBValue(ZorWBIntegerInterval{1, 2}),
            ZorWBValue(ZorWBRealInterval{1, 2}),
            ZorWBValue(ZorWBIntegerEnum()),
            ZorWBValue(ZorWBRealEnum()),
            ZorWBValue(ZorWBTrue),
            Fraction(1, 2)};
}

// The real reading of a fraction, rounded as the library rounds it (the
// modulo jumps at multiples, where a different rounding takes the other side).
inline double FractionValue(const ZorWBFraction& fraction) {
    return std::pow(3.141592653589793, fraction.power) * static_cast<double>(fraction.numerator) /
           static_cast<double>(fraction.denominator);
}

// Points of the operand: every element of a list, the ends and some inner
// points of an interval (integers for integer kinds), the states of a
// boolean as 0 and 1.
inline std::vector<double> PointsOf(std::mt19937& rng, const ZorWBValue& value) {
    std::vector<double> points;
    auto interval = [&](double low, double high, bool integers) {
        points.push_back(low);
        points.push_back(high);
        for (int i = 0; i < 3; ++i) {
            double inner = RandomReal(rng, low, std::max(low, high));
            // Integers have no signed zero: + 0.0 turns -0 into 0.
            points.push_back(integers ? std::round(std::min(std::max(inner, low), high)) + 0.0
                                      : inner);
        }
    };
    switch (value.GetType()) {
        case ZorWBIntegerType:
            points.push_back(value.GetAsInteger());
            break;
        case ZorWBRealType:
            points.push_back(value.GetAsReal());
            break;
        case ZorWBFractionType:
            points.push_back(FractionValue(value.GetAsFraction()));
            break;
        case ZorWBIntegerIntervalType:
            interval(value.GetAsIntegerInterval().low, value.GetAsIntegerInterval().high, true);
            break;
        case ZorWBRealIntervalType:
            interval(value.GetAsRealInterval().low, value.GetAsRealInterval().high, false);
            break;
        case ZorWBIntegerEnumType: {
            const ZorWBIntegerEnum& elements = value.GetIntegerEnum();
            if (elements.GetRep() == ZorWBEnumInterval)
                interval(elements.Get(0), elements.Get(1), true);
            else
                for (int i = 0; i < elements.GetSize(); ++i)
                    points.push_back(elements.Get(i));
            break;
        }
        case ZorWBRealEnumType:
            for (int i = 0; i < value.GetRealEnum().GetSize(); ++i)
                points.push_back(value.GetRealEnum().Get(i));
            break;
        case ZorWBBooleanType: {
            ZorWBBoolean state = value.GetAsBoolean();
            if (state != ZorWBTrue) points.push_back(0.0);
            if (state != ZorWBFalse) points.push_back(1.0);
            break;
        }
        default:
            break;
    }
    return points;
}

// Equal within a relative 1e-12, or the same infinite end.
inline bool Close(double result, double expected) {
    if (expected > Limit) return result >= Limit;
    if (expected < -Limit) return result <= -Limit;
    return std::fabs(result - expected) <= 1e-12 * std::max(1.0, std::fabs(expected));
}

inline bool IntervalHolds(double low, double high, double point) {
    if (point > Limit) return high >= Limit;
    if (point < -Limit) return low <= -Limit;
    double slack = 1e-12 * std::max(1.0, std::fabs(point));
    return low - slack <= point && point <= high + slack;
}

// An integer bound or element as a real: the infinite ends and markers are
// beyond the real limit.
inline double IntegerBound(int bound) {
    if (bound >= 2147483646) return 2 * Limit;
    if (bound <= -2147483646) return -2 * Limit;
    return bound;
}

// Whether the result value holds the point.
inline bool Holds(const ZorWBValue& result, double point) {
    switch (result.GetType()) {
        case ZorWBIntegerType:
            return Close(IntegerBound(result.GetAsInteger()), point);
        case ZorWBRealType:
            return Close(result.GetAsReal(), point);
        case ZorWBFractionType:
            return Close(FractionValue(result.GetAsFraction()), point);
        case ZorWBIntegerIntervalType:
            return IntervalHolds(IntegerBound(result.GetAsIntegerInterval().low),
                                 IntegerBound(result.GetAsIntegerInterval().high), point);
        case ZorWBRealIntervalType:
            return IntervalHolds(result.GetAsRealInterval().low, result.GetAsRealInterval().high,
                                 point);
        case ZorWBIntegerEnumType: {
            const ZorWBIntegerEnum& elements = result.GetIntegerEnum();
            if (elements.IsAny()) return true;
            if (elements.GetRep() == ZorWBEnumInterval)
                return IntervalHolds(IntegerBound(elements.Get(0)), IntegerBound(elements.Get(1)),
                                     point);
            for (int i = 0; i < elements.GetSize(); ++i)
                if (Close(IntegerBound(elements.Get(i)), point)) return true;
            return false;
        }
        case ZorWBRealEnumType: {
            const ZorWBRealEnum& elements = result.GetRealEnum();
            if (elements.IsAny()) return true;
            if (elements.GetRep() == ZorWBEnumInterval)
                return IntervalHolds(elements.Get(0), elements.Get(1), point);
            for (int i = 0; i < elements.GetSize(); ++i)
                if (Close(elements.Get(i), point)) return true;
            return false;
        }
        case ZorWBBooleanType: {
            ZorWBBoolean state = result.GetAsBoolean();
            return (point == 0.0 && (state == ZorWBFalse || state == ZorWBUnknown)) ||
                   (point == 1.0 && (state == ZorWBTrue || state == ZorWBUnknown));
        }
        default:
            return false;
    }
}

inline bool IsList(const ZorWBValue& value) {
    return (value.IsAKindOf(ZorWBIntegerEnumType) &&
            value.GetIntegerEnum().GetRep() == ZorWBEnumList) ||
           (value.IsAKindOf(ZorWBRealEnumType) && value.GetRealEnum().GetRep() == ZorWBEnumList);
}

// The elements of a list result as reals (empty for other results).
inline std::vector<double> ListElements(const ZorWBValue& result) {
    std::vector<double> elements;
    if (result.IsAKindOf(ZorWBIntegerEnumType) && result.GetIntegerEnum().GetRep() == ZorWBEnumList)
        for (int i = 0; i < result.GetIntegerEnum().GetSize(); ++i)
            elements.push_back(IntegerBound(result.GetIntegerEnum().Get(i)));
    if (result.IsAKindOf(ZorWBRealEnumType) && result.GetRealEnum().GetRep() == ZorWBEnumList)
        for (int i = 0; i < result.GetRealEnum().GetSize(); ++i)
            elements.push_back(result.GetRealEnum().Get(i));
    return elements;
}

// Whether the point is certainly in (or certainly out of) the value: an
// element or a bound exactly, or an inner point away from the bounds by a
// margin; out when it is away from every element or outside the hull by the
// margin.
inline bool HoldsIntegersOnly(const ZorWBValue& value) {
    return value.IsAKindOf(ZorWBIntegerType) || value.IsAKindOf(ZorWBIntegerIntervalType) ||
           value.IsAKindOf(ZorWBIntegerEnumType) || value.IsAKindOf(ZorWBBooleanType);
}

inline bool CertainlyIn(const ZorWBValue& value, double point) {
    constexpr double margin = 1e-9;
    if (HoldsIntegersOnly(value) && point != std::round(point)) return false;
    if (value.IsAKindOf(ZorWBBooleanType) || value.IsAKindOf(ZorWBRealType) ||
        value.IsAKindOf(ZorWBIntegerType) || value.IsAKindOf(ZorWBFractionType))
        return Holds(value, point) &&
               (value.IsAKindOf(ZorWBBooleanType) || value.GetAsReal() == point);
    if (IsList(value)) {
        std::vector<double> elements = ListElements(value);
        return std::find(elements.begin(), elements.end(), point) != elements.end();
    }
    ZorWBRealInterval hull = value.GetAsRealInterval();
    return point == hull.low || point == hull.high ||
           (hull.low + margin < point && point < hull.high - margin);
}

inline bool CertainlyOut(const ZorWBValue& value, double point) {
    constexpr double margin = 1e-9;
    if (HoldsIntegersOnly(value) && std::fabs(point - std::round(point)) > margin) return true;
    if (value.IsAKindOf(ZorWBBooleanType)) return !Holds(value, point);
    if (value.IsAKindOf(ZorWBRealType) || value.IsAKindOf(ZorWBIntegerType) ||
        value.IsAKindOf(ZorWBFractionType))
        return std::fabs(value.GetAsReal() - point) > margin;
    if (IsList(value)) {
        std::vector<double> elements = ListElements(value);
        return std::none_of(elements.begin(), elements.end(),
                            [&](double element) { return std::fabs(element - point) <= margin; });
    }
    ZorWBRealInterval hull = value.GetAsRealInterval();
    return point < hull.low - margin || point > hull.high + margin;
}

// The value's text, with the elements of a list.
inline std::string Describe(const ZorWBValue& value) {
    std::string text = value.Str().c_str();
    if (value.IsAKindOf(ZorWBBooleanType))
        text += " (" + std::to_string(value.GetAsBoolean()) + ")";
    if (IsList(value)) {
        text += " {";
        for (double element : ListElements(value))
            text += " " + std::to_string(element);
        text += " }";
    }
    return text;
}

// Whether the list result holds exactly the given images: each image is an
// element and each element an image.
inline bool HoldsExactly(const ZorWBValue& result, const std::vector<double>& images) {
    std::vector<double> elements = ListElements(result);
    if (elements.empty() != images.empty()) return false;
    for (double image : images)
        if (std::none_of(elements.begin(), elements.end(),
                         [&](double element) { return Close(element, image); }))
            return false;
    for (double element : elements)
        if (std::none_of(images.begin(), images.end(),
                         [&](double image) { return Close(element, image); }))
            return false;
    return true;
}

}  // namespace valuetest

#endif
