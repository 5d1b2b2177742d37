// The value functions (and through them the interval arithmetic) on operands
// of every kind, from small numbers to the limits of the ranges: the image
// of every sampled point of the operands must lie in the result.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "FuzzBytes.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBLevel.h"
#include "values/ZorWBValue.h"
#include "values/ZorWBValueFunctions.h"

namespace {

constexpr double Limit = 3.4028234663852886e+38;

using Unary = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&);
using Binary = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&, const ZorWBValue&);

struct UnaryCase {
    const char* name;
    Unary function;
    double (*point)(double);  // NaN where undefined
};

struct BinaryCase {
    const char* name;
    Binary function;
    double (*point)(double, double);  // NaN where undefined
    // Where sets of integers compute otherwise (null: as point).
    double (*integerSetPoint)(double, double) = nullptr;
};

ZorWBValue Asin(const ZorWBEnvironment& e, const ZorWBValue& a) {
    return ZorWBAsin(e, a);
}
ZorWBValue Acos(const ZorWBEnvironment& e, const ZorWBValue& a) {
    return ZorWBAcos(e, a);
}
ZorWBValue Atan(const ZorWBEnvironment& e, const ZorWBValue& a) {
    return ZorWBAtan(e, a);
}
ZorWBValue Round(const ZorWBEnvironment& e, const ZorWBValue& a) {
    return ZorWBRound(e, a);
}
ZorWBValue Atan2(const ZorWBEnvironment& e, const ZorWBValue& y, const ZorWBValue& x) {
    return ZorWBAtan2(e, y, x);
}
ZorWBValue Root(const ZorWBEnvironment& e, const ZorWBValue& x, const ZorWBValue& n) {
    return ZorWBRoot(e, x, n);
}

double OrNaN(bool defined, double value) {
    return defined ? value : NAN;
}

// x - y * floor(x / y) as the doubles compute it (so that 10 mod 0.2 is 0)
// while that lies between 0 and y; otherwise (a large x whose rounding error
// carries the formula out of that range, or x / y beyond 2^52, where it
// loses every digit) the exact remainder.
double FlooredMod(double x, double y) {
    if (y == 0.0) return NAN;
    double formula = x - y * std::floor(x / y);
    bool inRange = y > 0.0 ? 0.0 <= formula && formula <= y : y <= formula && formula <= 0.0;
    if (std::fabs(x / y) < 4503599627370496.0 && inRange) return formula;
    double r = std::fmod(x, y);
    return r != 0.0 && (r < 0.0) != (y < 0.0) ? r + y : r;
}

const UnaryCase UnaryCases[] = {
    {"UnaryMinus", ZorWBUnaryMinus, [](double x) { return -x; }},
    {"Abs", ZorWBAbs, [](double x) { return std::fabs(x); }},
    {"Ceil", ZorWBCeil, [](double x) { return std::ceil(x); }},
    {"Floor", ZorWBFloor, [](double x) { return std::floor(x); }},
    {"Trunc", ZorWBTrunc, [](double x) { return std::trunc(x); }},
    {"Round", Round, [](double x) { return std::round(x); }},
    {"Sqrt", ZorWBSqrt, [](double x) { return std::sqrt(x); }},
    {"Exp", ZorWBExp, [](double x) { return std::exp(x); }},
    // The logarithms are defined from the smallest positive real 1 / Limit.
    {"Ln", ZorWBLn, [](double x) { return OrNaN(x >= 1 / Limit, std::log(x)); }},
    {"Log", ZorWBLog, [](double x) { return OrNaN(x >= 1 / Limit, std::log10(x)); }},
    // Angles beyond 1e9 have no meaningful phase: outside the domain.
    {"Sin", ZorWBSin, [](double x) { return OrNaN(std::fabs(x) <= 1e9, std::sin(x)); }},
    {"Cos", ZorWBCos, [](double x) { return OrNaN(std::fabs(x) <= 1e9, std::cos(x)); }},
    {"Tan", ZorWBTan, [](double x) { return OrNaN(std::fabs(x) <= 1e9, std::tan(x)); }},
    {"Sinh", ZorWBSinh, [](double x) { return std::sinh(x); }},
    {"Cosh", ZorWBCosh, [](double x) { return std::cosh(x); }},
    {"Tanh", ZorWBTanh, [](double x) { return std::tanh(x); }},
    {"Asinh", ZorWBAsinh, [](double x) { return std::asinh(x); }},
    {"Acosh", ZorWBAcosh, [](double x) { return std::acosh(x); }},
    {"Atanh", ZorWBAtanh, [](double x) { return OrNaN(std::fabs(x) < 1, std::atanh(x)); }},
    {"Asin", Asin, [](double x) { return std::asin(x); }},
    {"Acos", Acos, [](double x) { return std::acos(x); }},
    {"Atan", Atan, [](double x) { return std::atan(x); }},
};

const BinaryCase BinaryCases[] = {
    {"Sum", ZorWBSum, [](double x, double y) { return x + y; }},
    {"Sub", ZorWBSub, [](double x, double y) { return x - y; }},
    {"Mul", ZorWBMul, [](double x, double y) { return x * y; }},
    // Sets of integers divide by the integer interval division: the truncated
    // quotients (and every integer by a divisor that holds 0).
    {"Div", ZorWBDiv,
     [](double x, double y) { return y == 0.0 ? (x == 0.0 ? INFINITY : NAN) : x / y; },
     [](double x, double y) { return y == 0.0 ? NAN : std::trunc(x / y); }},
    {"Mod", ZorWBMod, FlooredMod},
    {"Min", ZorWBMin, [](double x, double y) { return std::min(x, y); }},
    {"Max", ZorWBMax, [](double x, double y) { return std::max(x, y); }},
    {"Dim", ZorWBDim, [](double x, double y) { return std::max(x - y, 0.0); }},
    {"Sign", ZorWBSign, [](double x, double y) { return y >= 0 ? std::fabs(x) : -std::fabs(x); }},
    {"Pow", ZorWBPow,
     [](double x, double y) { return OrNaN(!(x == 0.0 && y < 0.0), std::pow(x, y)); }},
    {"Root", Root,
     [](double x, double n) -> double {
         if (n != std::round(n) || n == 0.0 || std::fabs(n) > 64) return NAN;
         bool odd = std::fmod(std::fabs(n), 2.0) == 1.0;
         if (x < 0 && !odd) return NAN;
         double root = x < 0 ? -std::pow(-x, 1.0 / std::fabs(n)) : std::pow(x, 1.0 / std::fabs(n));
         return OrNaN(!(x == 0.0 && n < 0), n < 0 ? 1.0 / root : root);
     }},
    {"Atan2", Atan2,
     [](double y, double x) { return OrNaN(!(x == 0.0 && y == 0.0), std::atan2(y, x)); }},
};

// Reals at one of several scales, so that some operands reach the limits.
double ScaledReal(FuzzBytes& in, int scale) {
    switch (scale) {
        case 0:
            return (in.Index(4801) - 2400) / 400.0;
        case 1:
            return std::ldexp(in.Index(2001) - 1000.0, in.Index(61) - 10);
        default:
            return in.Real();
    }
}

int ScaledInteger(FuzzBytes& in, int scale) {
    return scale == 0 ? in.Index(25) - 12 : in.Integer();
}

ZorWBValue Operand(FuzzBytes& in) {
    int scale = in.Index(8) < 6 ? 0 : in.Index(3);
    switch (in.Index(9)) {
        case 0:
            return ZorWBValue(ScaledInteger(in, scale));
        case 1:
            return ZorWBValue(ScaledReal(in, scale));
        case 2: {
            int low = ScaledInteger(in, scale);
            int high =
                in.Chance(80) && low < 2147483600 ? low + in.Index(9) : ScaledInteger(in, scale);
            return ZorWBValue(ZorWBIntegerInterval{low, high});
        }
        case 3: {
            double low = ScaledReal(in, scale);
            double high = in.Chance(80) ? low + in.Index(13) / 4.0 : ScaledReal(in, scale);
            return ZorWBValue(ZorWBRealInterval{low, high});
        }
        case 4: {
            if (in.Chance(15)) {
                ZorWBIntegerEnum wide(ZorWBEnumInterval);
                int low = ScaledInteger(in, scale);
                long long high = static_cast<long long>(low) + in.Index(200);
                wide.SetAsIntegerInterval({low, static_cast<int>(std::min(high, 2147483647LL))});
                return ZorWBValue(wide);
            }
            std::vector<int> elements(static_cast<std::size_t>(in.Index(6)));
            for (int& element : elements)
                element = ScaledInteger(in, scale);
            ZorWBValue value;
            value.Set(static_cast<int>(elements.size()), elements.data());
            return value;
        }
        case 5: {
            std::vector<double> elements(static_cast<std::size_t>(in.Index(6)));
            for (double& element : elements)
                element = ScaledReal(in, scale);
            ZorWBValue value;
            value.Set(static_cast<int>(elements.size()), elements.data());
            return value;
        }
        case 6:
            return ZorWBValue(static_cast<ZorWBBoolean>(in.Index(4)));
        case 7:
            return ZorWBValue(ZorWBCreateFraction(in.Index(25) - 12, in.Index(12) + 1 - in.Index(2),
                                                  in.Index(4) - 1, 0));
        default:
            return ZorWBValue();
    }
}

double IntegerBound(int bound) {
    if (bound >= 2147483646) return 2 * Limit;
    if (bound <= -2147483646) return -2 * Limit;
    return bound;
}

double FractionValue(const ZorWBFraction& f) {
    return std::pow(3.141592653589793, f.power) * static_cast<double>(f.numerator) /
           static_cast<double>(f.denominator);
}

// Points of an operand: list elements, interval ends and inner points, the
// states of a boolean as 0 and 1. Empty for what holds no number.
std::vector<double> PointsOf(FuzzBytes& in, const ZorWBValue& value) {
    std::vector<double> points;
    auto interval = [&](double low, double high, bool integers) {
        if (!(low <= high)) return;
        points.push_back(low);
        points.push_back(high);
        // Inner points of an integer interval stay in the finite integer
        // range (an infinite end is a marker, not a number).
        if (integers) {
            low = std::max(low, -2147483646.0);
            high = std::min(high, 2147483646.0);
            if (low > high) return;
        }
        for (int i = 0; i < 2; ++i) {
            double inner = low + (high - low) * (in.Index(1001) / 1000.0);
            if (!std::isfinite(inner)) continue;
            inner = std::min(std::max(inner, low), high);
            points.push_back(integers ? std::round(inner) + 0.0 : inner);
        }
    };
    switch (value.GetType()) {
        case ZorWBIntegerType:
            points.push_back(IntegerBound(value.GetAsInteger()));
            break;
        case ZorWBRealType:
            points.push_back(value.GetAsReal());
            break;
        case ZorWBFractionType:
            points.push_back(FractionValue(value.GetAsFraction()));
            break;
        case ZorWBIntegerIntervalType:
            interval(IntegerBound(value.GetAsIntegerInterval().low),
                     IntegerBound(value.GetAsIntegerInterval().high), true);
            break;
        case ZorWBRealIntervalType:
            interval(value.GetAsRealInterval().low, value.GetAsRealInterval().high, false);
            break;
        case ZorWBIntegerEnumType: {
            const ZorWBIntegerEnum& e = value.GetIntegerEnum();
            if (e.GetRep() == ZorWBEnumInterval)
                interval(IntegerBound(e.Get(0)), IntegerBound(e.Get(1)), true);
            else if (e.GetRep() == ZorWBEnumList)
                for (int i = 0; i < e.GetSize(); ++i)
                    points.push_back(IntegerBound(e.Get(i)));
            break;
        }
        case ZorWBRealEnumType: {
            const ZorWBRealEnum& e = value.GetRealEnum();
            if (e.GetRep() == ZorWBEnumInterval)
                interval(e.Get(0), e.Get(1), false);
            else if (e.GetRep() == ZorWBEnumList)
                for (int i = 0; i < e.GetSize(); ++i)
                    points.push_back(e.Get(i));
            break;
        }
        case ZorWBBooleanType: {
            ZorWBBoolean state = value.GetAsBoolean();
            if (state == ZorWBFalse || state == ZorWBUnknown) points.push_back(0.0);
            if (state == ZorWBTrue || state == ZorWBUnknown) points.push_back(1.0);
            break;
        }
        default:
            break;
    }
    // Minus zero is zero (atan2 would tell them apart, the intervals do not).
    for (double& point : points)
        point += 0.0;
    // Points beyond the real range stand for the infinite ends only, and so
    // do the limits themselves, where the intervals clamp their bounds.
    points.erase(std::remove_if(points.begin(), points.end(),
                                [](double p) { return std::isnan(p) || std::fabs(p) >= Limit; }),
                 points.end());
    return points;
}

bool Close(double result, double expected) {
    if (expected > Limit) return result >= Limit;
    if (expected < -Limit) return result <= -Limit;
    return std::fabs(result - expected) <= 1e-12 * std::max(1.0, std::fabs(expected));
}

bool Within(double low, double high, double point) {
    if (point > Limit) return high >= Limit;
    if (point < -Limit) return low <= -Limit;
    double slack = 1e-12 * std::max(1.0, std::fabs(point));
    return low - slack <= point && point <= high + slack;
}

// An integer result holds a number at or beyond the saturated ends of the
// integer range as the infinite end on its side (as IntegerBound reads them).
double AsIntegerPoint(double point) {
    if (point >= 2147483646.0) return 2 * Limit;
    if (point <= -2147483646.0) return -2 * Limit;
    return point;
}

bool Holds(const ZorWBValue& result, double point) {
    bool integers = result.IsAKindOf(ZorWBIntegerType) ||
                    result.IsAKindOf(ZorWBIntegerIntervalType) ||
                    result.IsAKindOf(ZorWBIntegerEnumType);
    if (integers) point = AsIntegerPoint(point);
    switch (result.GetType()) {
        case ZorWBIntegerType:
            return Close(IntegerBound(result.GetAsInteger()), point);
        case ZorWBRealType:
            return Close(result.GetAsReal(), point);
        case ZorWBFractionType:
            return Close(FractionValue(result.GetAsFraction()), point);
        case ZorWBIntegerIntervalType:
            return Within(IntegerBound(result.GetAsIntegerInterval().low),
                          IntegerBound(result.GetAsIntegerInterval().high), point);
        case ZorWBRealIntervalType:
            return Within(result.GetAsRealInterval().low, result.GetAsRealInterval().high, point);
        case ZorWBIntegerEnumType: {
            const ZorWBIntegerEnum& e = result.GetIntegerEnum();
            if (e.IsAny()) return true;
            if (e.GetRep() == ZorWBEnumInterval)
                return Within(IntegerBound(e.Get(0)), IntegerBound(e.Get(1)), point);
            for (int i = 0; i < e.GetSize(); ++i)
                if (Close(IntegerBound(e.Get(i)), point)) return true;
            return false;
        }
        case ZorWBRealEnumType: {
            const ZorWBRealEnum& e = result.GetRealEnum();
            if (e.IsAny()) return true;
            if (e.GetRep() == ZorWBEnumInterval) return Within(e.Get(0), e.Get(1), point);
            for (int i = 0; i < e.GetSize(); ++i)
                if (Close(e.Get(i), point)) return true;
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

std::string Text(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

// The value's text, kind and, for an enumeration, its first entries.
std::string Describe(const ZorWBValue& value) {
    std::string text = value.Str().c_str();
    text += " (kind " + std::to_string(value.GetType()) + ")";
    auto entries = [&text](const auto& elements) {
        text += " rep " + std::to_string(elements.GetRep()) + " {";
        for (int i = 0; i < std::min(elements.GetSize(), 8); ++i)
            text += (i ? ", " : "") + Text(elements.Get(i));
        text += elements.GetSize() > 8 ? ", ...}" : "}";
    };
    if (value.GetType() == ZorWBIntegerEnumType) entries(value.GetIntegerEnum());
    if (value.GetType() == ZorWBRealEnumType) entries(value.GetRealEnum());
    return text;
}

// The image must be in the result, unless the function reported a failure
// (error 1, a domain error or an overflow, or error 2, kinds that cannot be
// combined: the result then stands for no value), or the image lies beyond
// the real range (the interval arithmetic makes a result wholly beyond it
// empty, by its rules).
void CheckImage(const ZorWBEnvironment& environment, const ZorWBValue& result, double image,
                const std::string& what) {
    if (std::isnan(image) || std::fabs(image) > Limit) return;
    if (environment.GetError() != ZorWBError::None) return;
    FUZZ_CHECK(Holds(result, image), what + " = " + Text(image) + " not in " + Describe(result));
}

ZorWBEnvironment MakeEnvironment(FuzzBytes& in) {
    static const unsigned levels[] = {ZorWBLevel::All, ZorWBLevel::FractionAsReal - 1,
                                      ZorWBLevel::QuietIncompatibleTests - 1};
    static const int enumSizes[] = {50, 0, 1, 3, 1000, 1 << 30, 2147483647, -5};
    ZorWBEnvironment environment(levels[in.Index(8) < 6 ? 0 : in.Index(3)]);
    environment.SetMaxEnumSize(enumSizes[in.Index(8) < 5 ? 0 : in.Index(8)]);
    return environment;
}

void CheckUnary(FuzzBytes& in) {
    const UnaryCase& op = UnaryCases[in.Index(sizeof UnaryCases / sizeof UnaryCases[0])];
    ZorWBEnvironment environment = MakeEnvironment(in);
    ZorWBValue a = Operand(in);
    ZorWBValue result = op.function(environment, a);
    for (double x : PointsOf(in, a))
        CheckImage(environment, result, op.point(x),
                   std::string(op.name) + "(" + Describe(a) + ") at " + Text(x));
}

bool IsBooleanOrUndefined(const ZorWBValue& value) {
    return value.IsAKindOf(ZorWBBooleanType) || value.IsAKindOf(ZorWBUndefinedType);
}

void CheckBinary(FuzzBytes& in) {
    const BinaryCase& op = BinaryCases[in.Index(sizeof BinaryCases / sizeof BinaryCases[0])];
    ZorWBEnvironment environment = MakeEnvironment(in);
    ZorWBValue a = Operand(in);
    ZorWBValue b = Operand(in);
    ZorWBValue result = op.function(environment, a, b);
    // Kinds that cannot be combined may give no value without an error.
    if (result.GetType() == ZorWBUndefinedType &&
        (IsBooleanOrUndefined(a) || IsBooleanOrUndefined(b)))
        return;
    ZorWBValueType common = ZorWBGetCommonType(environment, a, b);
    bool integerSets = common == ZorWBIntegerIntervalType || common == ZorWBIntegerEnumType ||
                       common == ZorWBBooleanType;
    auto point = integerSets && op.integerSetPoint ? op.integerSetPoint : op.point;
    std::vector<double> xs = PointsOf(in, a);
    std::vector<double> ys = PointsOf(in, b);
    for (double x : xs)
        for (double y : ys)
            CheckImage(environment, result, point(x, y),
                       std::string(op.name) + "(" + Describe(a) + ", " + Describe(b) + ") at " +
                           Text(x) + ", " + Text(y));
}

// Comparisons give booleans: true must be possible where a pair of points
// compares true, false where one compares false (away from the tolerance).
void CheckComparison(FuzzBytes& in) {
    ZorWBEnvironment environment = MakeEnvironment(in);
    ZorWBValue a = Operand(in);
    ZorWBValue b = Operand(in);
    int which = in.Index(3);
    ZorWBValue result = which == 0   ? ZorWBEqual(environment, a, b)
                        : which == 1 ? ZorWBNotEqual(environment, a, b)
                                     : ZorWBLessEqual(environment, a, b);
    if (!result.IsAKindOf(ZorWBBooleanType)) return;
    for (double x : PointsOf(in, a)) {
        for (double y : PointsOf(in, b)) {
            if (std::fabs(x - y) <= 1e-9 * std::max({1.0, std::fabs(x), std::fabs(y)})) continue;
            bool truth = which == 0 ? x == y : which == 1 ? x != y : x <= y;
            CheckImage(environment, result, truth ? 1.0 : 0.0,
                       "comparison " + std::to_string(which) + "(" + Describe(a) + ", " +
                           Describe(b) + ") at " + Text(x) + ", " + Text(y));
        }
    }
}

// The set operations: a union holds the points of both, an intersection
// that answers inconsistent holds no common element of two lists, and the
// tests never fail on any pair.
void CheckSets(FuzzBytes& in) {
    ZorWBEnvironment environment = MakeEnvironment(in);
    ZorWBValue a = Operand(in);
    ZorWBValue b = Operand(in);
    ZorWBValue united = a;
    ZorWBUnite(environment, united, b);
    if (environment.GetError() == 0 && a.GetType() == b.GetType()) {
        for (const ZorWBValue* operand : {&a, &b})
            for (double x : PointsOf(in, *operand))
                CheckImage(environment, united, x,
                           "union of " + Describe(a) + " and " + Describe(b));
    }
    ZorWBValue intersected = a;
    ZorWBIntersect(environment, intersected, b);
    ZorWBValue excluded = a;
    ZorWBExclude(environment, excluded, b);
    ZorWBContains(environment, a, b);
    ZorWBIsEqual(environment, a, b);
    ZorWBIsExact(environment, a);
    ZorWBIsEmpty(environment, a);
    (void)a.GetMAG();
    (void)a.GetMiddle();
    (void)a.GetWidth();
    (void)a.Str();
    ZorWBValue assigned(static_cast<ZorWBValueType>(in.Index(10)));
    assigned.Assign(environment, a);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzBytes in(data, size);
    for (int round = 0; round < 4 && !in.Empty(); ++round) {
        switch (in.Index(8)) {
            case 0:
            case 1:
            case 2:
                CheckUnary(in);
                break;
            case 3:
            case 4:
            case 5:
                CheckBinary(in);
                break;
            case 6:
                CheckComparison(in);
                break;
            default:
                CheckSets(in);
                break;
        }
    }
    return 0;
}
