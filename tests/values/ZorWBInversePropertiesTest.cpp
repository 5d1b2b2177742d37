// Generated properties of every inverse function: the answer lies inside the
// domain and keeps every sampled point whose forward image (with the other
// operand sampled from its set) lies in the result set; on small integer
// sets the answer is also compared with a brute-force projection.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBValueFunctions.h"

namespace {

constexpr double kL = ZorWBRealLimit;
constexpr int kTrials = 1500;

using Env = const ZorWBEnvironment&;
using V = const ZorWBValue&;
// An inverse under test: (environment, result set, domain, other operand).
using Inverse = std::function<ZorWBValue(Env, V, V, V)>;
// A forward operator on scalars (domain sample, other sample).
using Forward = std::function<ZorWBValue(Env, V, V)>;

// What a generator draws for one operand.
enum class Draw {
    IntegerInterval,
    IntegerScalar,
    RealInterval,
    IntegerMixed,
    RealMixed,
    Mixed,
    Boolean
};

// A value read as a set: a finite list of points, or an interval.
struct TestSet {
    bool list = false;
    std::vector<double> points;
    double low = kL, high = -kL;
    bool integer = false;

    bool IsEmpty() const { return list ? points.empty() : low > high; }
    bool Holds(double x, double tolerance) const {
        if (list) {
            for (double p : points) {
                if (std::fabs(p - x) <= tolerance) return true;
            }
            return false;
        }
        return low - tolerance <= x && x <= high + tolerance;
    }
};

TestSet Read(const ZorWBValue& value) {
    TestSet set;
    ZorWBValueType type = value.GetType();
    set.integer = type == ZorWBIntegerType || type == ZorWBIntegerIntervalType ||
                  type == ZorWBIntegerEnumType || type == ZorWBBooleanType;
    if (type == ZorWBIntegerType || type == ZorWBRealType || type == ZorWBFractionType) {
        set.list = true;
        set.points.push_back(value.GetAsReal());
    } else if (type == ZorWBIntegerEnumType && value.GetIntegerEnum().GetRep() == ZorWBEnumList) {
        set.list = true;
        for (int i = 0; i < value.GetIntegerEnum().GetSize(); ++i)
            set.points.push_back(value.GetIntegerEnum().Get(i));
    } else if (type == ZorWBRealEnumType && value.GetRealEnum().GetRep() == ZorWBEnumList) {
        set.list = true;
        for (int i = 0; i < value.GetRealEnum().GetSize(); ++i)
            set.points.push_back(value.GetRealEnum().Get(i));
    } else if (type == ZorWBBooleanType) {
        ZorWBIntegerInterval states = value.GetAsIntegerInterval();  // {0}, {1}, {0, 1}
        set.low = states.low;
        set.high = states.high;
    } else {
        ZorWBRealInterval hull = value.GetAsRealInterval();
        set.low = hull.low;
        set.high = hull.high;
    }
    return set;
}

std::ostream& operator<<(std::ostream& out, const TestSet& set) {
    if (!set.list) return out << "[" << set.low << ", " << set.high << "]";
    out << "{";
    for (double p : set.points)
        out << " " << p;
    return out << " }";
}

double Tolerance(double x) {
    return 1e-9 * std::max(1.0, std::fabs(x));
}

class Generator {
  public:
    explicit Generator(unsigned int seed) : _random(seed) {}

    int Integer(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(_random);
    }
    bool Chance(double p) { return std::uniform_real_distribution<double>(0, 1)(_random) < p; }
    // A multiple of 1/4 or an arbitrary real in [low, high].
    double Real(double low, double high) {
        int first = static_cast<int>(std::ceil(low * 4)),
            last = static_cast<int>(std::floor(high * 4));
        if (first <= last && Chance(0.5)) return Integer(first, last) / 4.0;
        return std::uniform_real_distribution<double>(low, high)(_random);
    }

    ZorWBValue Value(Draw draw, double low, double high, bool infinite) {
        if (draw == Draw::Mixed) draw = Chance(0.5) ? Draw::IntegerMixed : Draw::RealMixed;
        if (draw == Draw::Boolean) return ZorWBValue(static_cast<ZorWBBoolean>(Integer(0, 3)));
        if (draw == Draw::IntegerScalar) return ZorWBValue(Integer(int(low), int(high)));
        bool integer = draw == Draw::IntegerInterval || draw == Draw::IntegerMixed;
        // 0 an interval, 1 a scalar, 2 a list, 3 an enumeration held as an interval.
        int shape = draw == Draw::IntegerMixed ? Integer(0, 3)
                    : draw == Draw::RealMixed  ? Integer(0, 2)
                                               : 0;
        if (shape == 1) {  // a scalar
            double v = integer ? Integer(int(low), int(high)) : Real(low, high);
            return integer ? ZorWBValue(static_cast<int>(v)) : ZorWBValue(v);
        }
        if (shape == 2) {  // a list
            std::vector<double> points(Integer(1, 5));
            std::vector<int> integers;
            for (double& p : points) {
                p = integer ? Integer(int(low), int(high)) : Real(low, high);
                integers.push_back(static_cast<int>(p));
            }
            ZorWBValue value;
            if (integer)
                value.Set(static_cast<int>(integers.size()), integers.data());
            else
                value.Set(static_cast<int>(points.size()), points.data());
            return value;
        }
        double a = integer ? Integer(int(low), int(high)) : Real(low, high);
        double b = Chance(0.15) ? a : integer ? Integer(int(low), int(high)) : Real(low, high);
        if (a > b) std::swap(a, b);
        if (infinite && Chance(0.05)) a = -kL;
        if (infinite && Chance(0.05)) b = kL;
        if (!integer) return ZorWBValue(ZorWBRealInterval{a, b});
        auto bound = [](double v) {
            return static_cast<int>(
                std::max<double>(-ZorWBIntegerMax, std::min<double>(v, ZorWBIntegerMax)));
        };
        ZorWBIntegerInterval interval = {bound(a), bound(b)};
        if (shape == 3) {  // an enumeration held as an interval
            ZorWBIntegerEnum enumeration(ZorWBEnumInterval);
            enumeration.SetAsIntegerInterval(interval);
            return ZorWBValue(enumeration);
        }
        return ZorWBValue(interval);
    }

    // Points to try from a set: all listed points, or the ends, the middle
    // and random points of an interval (infinite ends cut at +-40).
    std::vector<double> Samples(const TestSet& set) {
        if (set.list || set.IsEmpty()) return set.points;
        double low = std::max(set.low, -40.0), high = std::min(set.high, 40.0);
        if (low > high) return {};
        std::vector<double> samples = {low, high, (low + high) / 2};
        for (int i = 0; i < 6; ++i)
            samples.push_back(Real(low, high));
        if (set.integer) {
            samples.clear();
            int first = static_cast<int>(std::ceil(low)), last = static_cast<int>(std::floor(high));
            for (int i = first; i <= last && last - first <= 40; ++i)
                samples.push_back(i);
            for (int i = 0; i < 8 && last - first > 40; ++i)
                samples.push_back(Integer(first, last));
        }
        return samples;
    }

  private:
    std::mt19937 _random;
};

struct Operand {
    Draw draw;
    double low, high;
};

struct PropertyCase {
    const char* name;
    unsigned int seed;
    Inverse inverse;
    Forward forward;
    Operand result, domain, other;
    bool exact;                 // compare with brute force on integer operands
    unsigned int allowedError;  // a code the case may legitimately raise
    bool finite = false;        // draw no infinite bounds
    bool sameKind = true;       // the answer has the domain's kind
};

// The forward image as a number: booleans as 0 / 1; undefined points,
// unknown truth values and errors give false.
bool Image(Env environment, const ZorWBValue& image, double& out) {
    if (environment.GetError() != 0) return false;
    switch (image.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType:
        case ZorWBFractionType:
            out = image.GetAsReal();
            return std::isfinite(out) && std::fabs(out) < kL;
        case ZorWBBooleanType:
            out = image.GetAsBoolean();
            return out == 0 || out == 1;
        default:
            return false;
    }
}

ZorWBValue Sample(double point, bool integer) {
    return integer ? ZorWBValue(static_cast<int>(point)) : ZorWBValue(point);
}

void CheckCase(const PropertyCase& c) {
    SCOPED_TRACE(c.name);
    Generator generate(c.seed);
    int kept = 0;
    for (int trial = 0; trial < kTrials; ++trial) {
        bool infinite = !c.exact && !c.finite;
        ZorWBValue result = generate.Value(c.result.draw, c.result.low, c.result.high, infinite);
        ZorWBValue domain = generate.Value(c.domain.draw, c.domain.low, c.domain.high, infinite);
        ZorWBValue other = generate.Value(c.other.draw, c.other.low, c.other.high, infinite);
        ZorWBEnvironment environment(ZorWBLevel::All);
        ZorWBValue answer = c.inverse(environment, result, domain, other);
        if (environment.GetError() != 0) {
            ASSERT_EQ(environment.GetError(), c.allowedError) << trial;
            continue;
        }
        TestSet in = Read(domain), out = Read(answer), resultSet = Read(result);
        TestSet otherSet = Read(other);
        SCOPED_TRACE(::testing::Message()
                     << "trial " << trial << ": result " << resultSet << " domain " << in
                     << " other " << otherSet << " answer " << out << " kind " << answer.GetType());
        if (c.sameKind) {
            ASSERT_TRUE(answer.GetType() == domain.GetType() || out.IsEmpty());
        }
        for (double p : out.list ? out.points : std::vector<double>{out.low, out.high}) {
            if (!out.IsEmpty()) {
                ASSERT_TRUE(in.Holds(p, Tolerance(p))) << p;
            }
        }
        std::vector<double> feasible;
        std::vector<double> domainSamples = generate.Samples(in);
        std::vector<double> otherSamples = generate.Samples(otherSet);
        for (double x : domainSamples) {
            bool reached = false;
            for (double y : otherSamples) {
                ZorWBEnvironment forwardEnvironment(ZorWBLevel::All);
                double image = 0;
                ZorWBValue value = c.forward(forwardEnvironment, Sample(x, in.integer),
                                             Sample(y, otherSet.integer));
                reached = reached ||
                          (Image(forwardEnvironment, value, image) && resultSet.Holds(image, 0.0));
            }
            if (!reached) continue;
            ++kept;
            feasible.push_back(x);
            ASSERT_TRUE(out.Holds(x, Tolerance(x))) << trial << " lost " << x;
        }
        bool small = in.integer && otherSet.integer && !in.IsEmpty() && !otherSet.IsEmpty() &&
                     (in.list || in.high - in.low <= 40) &&
                     (otherSet.list || otherSet.high - otherSet.low <= 40);
        if (!c.exact || !small) continue;
        ASSERT_EQ(out.IsEmpty(), feasible.empty()) << trial;
        if (feasible.empty()) continue;
        if (out.list && in.list) {
            ASSERT_EQ(out.points.size(), feasible.size()) << trial;
        } else {
            auto bounds = std::minmax_element(feasible.begin(), feasible.end());
            ASSERT_EQ(out.list ? out.points.front() : out.low, *bounds.first) << trial;
            ASSERT_EQ(out.list ? out.points.back() : out.high, *bounds.second) << trial;
        }
    }
    EXPECT_GT(kept, kTrials / 10);  // the property was exercised
}

// Adapters from the other levels to the harness.
Inverse IntegerIntervalForm(ZorWBIntegerInterval (*f)(const ZorWBIntegerInterval&,
                                                      const ZorWBIntegerInterval&,
                                                      const ZorWBIntegerInterval&)) {
    return [f](Env, V r, V x, V y) {
        return ZorWBValue(
            f(r.GetAsIntegerInterval(), x.GetAsIntegerInterval(), y.GetAsIntegerInterval()));
    };
}

Inverse RealIntervalForm(ZorWBRealInterval (*f)(const ZorWBRealInterval&, const ZorWBRealInterval&,
                                                const ZorWBRealInterval&)) {
    return [f](Env, V r, V x, V y) {
        return ZorWBValue(f(r.GetAsRealInterval(), x.GetAsRealInterval(), y.GetAsRealInterval()));
    };
}

Inverse IntegerWithEnvironment(ZorWBIntegerInterval (*f)(Env, const ZorWBIntegerInterval&,
                                                         const ZorWBIntegerInterval&,
                                                         const ZorWBIntegerInterval&)) {
    return [f](Env e, V r, V x, V y) {
        return ZorWBValue(
            f(e, r.GetAsIntegerInterval(), x.GetAsIntegerInterval(), y.GetAsIntegerInterval()));
    };
}

Inverse RealWithEnvironment(ZorWBRealInterval (*f)(Env, const ZorWBRealInterval&,
                                                   const ZorWBRealInterval&,
                                                   const ZorWBRealInterval&)) {
    return [f](Env e, V r, V x, V y) {
        return ZorWBValue(
            f(e, r.GetAsRealInterval(), x.GetAsRealInterval(), y.GetAsRealInterval()));
    };
}

// Selects the value form of an overloaded inverse.
Inverse ValueForm(ZorWBValue (*f)(Env, V, V, V)) {
    return f;
}

Inverse Unary(ZorWBValue (*f)(Env, V, V)) {
    return [f](Env e, V r, V x, V) { return f(e, r, x); };
}

Forward UnaryForward(ZorWBValue (*f)(Env, V)) {
    return [f](Env e, V x, V) { return f(e, x); };
}

// The forward operator with the narrowed operand second.
Forward Swapped(ZorWBValue (*f)(Env, V, V)) {
    return [f](Env e, V x, V y) { return f(e, y, x); };
}

const Operand kIntegers{Draw::IntegerInterval, -12, 12};
const Operand kReals{Draw::RealInterval, -6, 6};
const Operand kAnyKind{Draw::Mixed, -6, 6};
const Operand kIntegerKinds{Draw::IntegerMixed, -12, 12};
const Operand kTruths{Draw::Boolean, 0, 1};

}  // namespace

TEST(ZorWBInverseProperties, IntervalForms) {
    ZorWBValue (*maxOf)(Env, V, V) = ZorWBMax;
    ZorWBValue (*minOf)(Env, V, V) = ZorWBMin;
    ZorWBValue (*modOf)(Env, V, V) = ZorWBMod;
    ZorWBValue (*powOf)(Env, V, V) = ZorWBPow;
    ZorWBValue (*absOf)(Env, V) = ZorWBAbs;
    ZorWBValue (*floorOf)(Env, V) = ZorWBFloor;
    ZorWBValue (*ceilOf)(Env, V) = ZorWBCeil;
    const Operand divisors{Draw::IntegerInterval, -6, 6};
    const Operand exponents{Draw::RealInterval, -3, 3};
    const PropertyCase cases[] = {
        {"abs int", 11,
         [](Env, V r, V x, V) {
             return ZorWBValue(ZorWBInverseAbs(r.GetAsIntegerInterval(), x.GetAsIntegerInterval()));
         },
         UnaryForward(absOf), kIntegers, kIntegers, kIntegers, true, 0},
        {"abs real", 12,
         [](Env, V r, V x, V) {
             return ZorWBValue(ZorWBInverseAbs(r.GetAsRealInterval(), x.GetAsRealInterval()));
         },
         UnaryForward(absOf), kReals, kReals, kReals, false, 0},
        {"max int", 13, IntegerIntervalForm(ZorWBInverseMax), maxOf, kIntegers, kIntegers,
         kIntegers, true, 0},
        {"max real", 14, RealIntervalForm(ZorWBInverseMax), maxOf, kReals, kReals, kReals, false,
         0},
        {"min int", 15, IntegerIntervalForm(ZorWBInverseMin), minOf, kIntegers, kIntegers,
         kIntegers, true, 0},
        {"min real", 16, RealIntervalForm(ZorWBInverseMin), minOf, kReals, kReals, kReals, false,
         0},
        {"mod1 int", 17, IntegerWithEnvironment(ZorWBInverseMod1), modOf, kIntegers, kIntegers,
         divisors, false, 11},
        {"mod1 real", 18, RealWithEnvironment(ZorWBInverseMod1), modOf, kReals, kReals, kReals,
         false, 11},
        {"mod2 int", 19, IntegerWithEnvironment(ZorWBInverseMod2), Swapped(modOf), kIntegers,
         divisors, kIntegers, true, 11},
        {"mod2 real", 20, RealWithEnvironment(ZorWBInverseMod2), Swapped(modOf), kReals, kReals,
         kReals, false, 11},
        {"pow1", 21, RealWithEnvironment(ZorWBInversePow1), powOf, kReals, kReals, exponents, false,
         0},
        {"pow2", 22, RealWithEnvironment(ZorWBInversePow2), Swapped(powOf), kReals, exponents,
         kReals, false, 0},
        {"floor", 23,
         [](Env, V r, V x, V) {
             return ZorWBValue(
                 ZorWBIntersect(ZorWBInverseFloor(r.GetAsRealInterval()), x.GetAsRealInterval()));
         },
         UnaryForward(floorOf), kReals, kReals, kReals, false, 0},
        {"ceil", 24,
         [](Env, V r, V x, V) {
             return ZorWBValue(
                 ZorWBIntersect(ZorWBInverseCeil(r.GetAsRealInterval()), x.GetAsRealInterval()));
         },
         UnaryForward(ceilOf), kReals, kReals, kReals, false, 0,
         /* the hair of the low end comes from the high bound */ true},
    };
    for (const PropertyCase& c : cases)
        CheckCase(c);
}

TEST(ZorWBInverseProperties, MixedKindEnumerationForms) {
    ZorWBValue (*maxOf)(Env, V, V) = ZorWBMax;
    ZorWBValue (*minOf)(Env, V, V) = ZorWBMin;
    ZorWBValue (*absOf)(Env, V) = ZorWBAbs;
    auto enumerations = [](auto f) {
        return [f](Env e, V r, V x, V y) {
            ZorWBIntegerEnum ri, xi, yi;
            r.GetAsIntegerEnum(ri);
            x.GetAsIntegerEnum(xi);
            y.GetAsIntegerEnum(yi);
            ZorWBIntegerEnum out = f(ri, xi, yi);
            out.Correct(e);
            return ZorWBValue(out);
        };
    };
    const Operand lists{Draw::IntegerMixed, -12, 12};
    const PropertyCase cases[] = {
        {"abs enum", 31,
         enumerations([](auto& r, auto& x, auto&) { return ZorWBInverseAbs(r, x); }),
         UnaryForward(absOf), lists, lists, lists, false, 0, false, false},
        {"max enum", 32,
         enumerations([](auto& r, auto& x, auto& y) { return ZorWBInverseMax(r, x, y); }), maxOf,
         lists, lists, lists, false, 0, false, false},
        {"min enum", 33,
         enumerations([](auto& r, auto& x, auto& y) { return ZorWBInverseMin(r, x, y); }), minOf,
         lists, lists, lists, false, 0, false, false},
    };
    for (const PropertyCase& c : cases)
        CheckCase(c);
}

TEST(ZorWBInverseProperties, ValueForms) {
    ZorWBValue (*maxOf)(Env, V, V) = ZorWBMax;
    ZorWBValue (*minOf)(Env, V, V) = ZorWBMin;
    ZorWBValue (*modOf)(Env, V, V) = ZorWBMod;
    ZorWBValue (*powOf)(Env, V, V) = ZorWBPow;
    ZorWBValue (*dimOf)(Env, V, V) = ZorWBDim;
    ZorWBValue (*signOf)(Env, V, V) = ZorWBSign;
    ZorWBValue (*lessEqual)(Env, V, V) = ZorWBLessEqual;
    ZorWBValue (*equal)(Env, V, V) = ZorWBEqual;
    ZorWBValue (*notEqual)(Env, V, V) = ZorWBNotEqual;
    ZorWBValue (*absOf)(Env, V) = ZorWBAbs;
    ZorWBValue (*roundOf)(Env, V) = ZorWBRound;
    ZorWBValue (*truncOf)(Env, V) = ZorWBTrunc;
    ZorWBValue (*floorOf)(Env, V) = ZorWBFloor;
    ZorWBValue (*ceilOf)(Env, V) = ZorWBCeil;
    Forward atan2 = [](Env e, V y, V x) { return ZorWBAtan2(e, y, x); };
    Forward step = [](Env e, V x, V) {
        static const double ramp[] = {-1, 2, 3, -1};
        return ZorWBStep(e, x, ramp);
    };
    Forward unitStep = [](Env e, V x, V) { return ZorWBStep(e, x, nullptr); };
    const Operand angles{Draw::RealInterval, -4, 4};
    const Operand exponents{Draw::Mixed, -3, 3};
    const PropertyCase cases[] = {
        {"abs", 41, Unary(ZorWBInverseAbs), UnaryForward(absOf), kAnyKind, kAnyKind, kAnyKind,
         false, 0},
        {"abs exact", 42, Unary(ZorWBInverseAbs), UnaryForward(absOf), kIntegerKinds, kIntegerKinds,
         kIntegerKinds, true, 0},
        {"max", 43, ValueForm(ZorWBInverseMax), maxOf, kIntegerKinds, kIntegerKinds, kIntegerKinds,
         true, 0},
        {"min", 44, ValueForm(ZorWBInverseMin), minOf, kAnyKind, kAnyKind, kAnyKind, false, 0},
        {"mod1", 45, ValueForm(ZorWBInverseMod1), modOf, kAnyKind, kAnyKind, kAnyKind, false, 11},
        {"mod1 one divisor",
         67,
         ValueForm(ZorWBInverseMod1),
         modOf,
         kIntegerKinds,
         kIntegerKinds,
         {Draw::IntegerScalar, -6, 6},
         true,
         11},
        {"mod2", 46, ValueForm(ZorWBInverseMod2), Swapped(modOf), kIntegerKinds, kIntegerKinds,
         kIntegerKinds, true, 11},
        {"mod2 real", 66, ValueForm(ZorWBInverseMod2), Swapped(modOf), kAnyKind, kAnyKind, kAnyKind,
         false, 11},
        {"pow1", 47, ValueForm(ZorWBInversePow1), powOf, kAnyKind, kAnyKind, exponents, false, 0},
        {"pow2", 48, ValueForm(ZorWBInversePow2), Swapped(powOf), kAnyKind, exponents, kAnyKind,
         false, 0},
        {"dim1", 49, ValueForm(ZorWBInverseDim1), dimOf, kIntegerKinds, kIntegerKinds,
         kIntegerKinds, true, 0},
        {"dim2", 50, ValueForm(ZorWBInverseDim2), Swapped(dimOf), kAnyKind, kAnyKind, kAnyKind,
         false, 0},
        {"sign1", 51, ValueForm(ZorWBInverseSign1), signOf, kIntegerKinds, kIntegerKinds,
         kIntegerKinds, true, 0},
        {"sign2", 52, ValueForm(ZorWBInverseSign2), Swapped(signOf), kIntegerKinds, kIntegerKinds,
         kIntegerKinds, true, 0},
        {"atan21", 53, ValueForm(ZorWBInverseAtan21), atan2, angles, kAnyKind, kAnyKind, false, 0},
        {"atan22", 54, ValueForm(ZorWBInverseAtan22),
         [atan2](Env e, V x, V y) { return atan2(e, y, x); }, angles, kAnyKind, kAnyKind, false, 0},
        {"round", 55, Unary(ZorWBInverseRound), UnaryForward(roundOf), kAnyKind, kAnyKind, kAnyKind,
         false, 0},
        {"round exact", 56, Unary(ZorWBInverseRound), UnaryForward(roundOf), kIntegerKinds,
         kIntegerKinds, kIntegerKinds, true, 0},
        {"trunc", 57, Unary(ZorWBInverseTrunc), UnaryForward(truncOf), kAnyKind, kAnyKind, kAnyKind,
         false, 0},
        {"floor", 58, Unary(ZorWBInverseFloor), UnaryForward(floorOf), kAnyKind, kAnyKind, kAnyKind,
         false, 0},
        {"ceil", 59, Unary(ZorWBInverseCeil), UnaryForward(ceilOf), kIntegerKinds, kIntegerKinds,
         kIntegerKinds, true, 0},
        {"step", 60,
         [](Env e, V r, V x, V) {
             static const double ramp[] = {-1, 2, 3, -1};
             return ZorWBInverseStep(e, r, x, ramp);
         },
         step, kAnyKind, kAnyKind, kAnyKind, false, 0},
        {"unit step", 61, [](Env e, V r, V x, V) { return ZorWBInverseStep(e, r, x, nullptr); },
         unitStep, kIntegerKinds, kIntegerKinds, kIntegerKinds, true, 0},
        {"less equal 1", 62, ValueForm(ZorWBInverseLessEqual1), lessEqual, kTruths, kIntegerKinds,
         kIntegerKinds, true, 0},
        {"less equal 2", 63, ValueForm(ZorWBInverseLessEqual2), Swapped(lessEqual), kTruths,
         kAnyKind, kAnyKind, false, 0},
        {"equal", 64, ValueForm(ZorWBInverseEqual), equal, kTruths, kIntegerKinds, kIntegerKinds,
         false, 0},
        {"not equal", 65, ValueForm(ZorWBInverseNotEqual), notEqual, kTruths, kIntegerKinds,
         kIntegerKinds, false, 0},
    };
    for (const PropertyCase& c : cases)
        CheckCase(c);
}

TEST(ZorWBInverseProperties, LogicalValueForms) {
    ZorWBValue (*andOf)(V, V) = ZorWBAnd;
    ZorWBValue (*orOf)(V, V) = ZorWBOr;
    ZorWBValue (*implies)(V, V) = ZorWBImplication;
    const Operand truthsOrIntegers{Draw::IntegerMixed, -2, 2};
    const PropertyCase cases[] = {
        {"and", 71, ValueForm(ZorWBInverseAnd), [andOf](Env, V x, V y) { return andOf(x, y); },
         kTruths, truthsOrIntegers, kTruths, true, 0},
        {"or", 72, ValueForm(ZorWBInverseOr), [orOf](Env, V x, V y) { return orOf(x, y); }, kTruths,
         kTruths, truthsOrIntegers, false, 0},
        {"implication1", 73, ValueForm(ZorWBInverseImplication1),
         [implies](Env, V x, V y) { return implies(x, y); }, kTruths, truthsOrIntegers, kTruths,
         true, 0},
        {"implication2", 74, ValueForm(ZorWBInverseImplication2),
         [implies](Env, V x, V y) { return implies(y, x); }, kTruths, truthsOrIntegers,
         truthsOrIntegers, true, 0},
    };
    for (const PropertyCase& c : cases)
        CheckCase(c);
}
