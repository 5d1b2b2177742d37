// The partial derivatives of each operator at a point (reals) and over a box
// (real intervals), from one set of rules written once over an arithmetic:
// the rules of ZorWBPartialDerivatives.cpp, term by term, with the
// derivative of the child taken as 1. A rule reads the children's numbers
// through an accessor and writes one slope per child; it allocates nothing,
// and costs a few operations per child (a Min or Max of n children n^2
// comparisons, as its symbolic condition has).
//
// The real arithmetic reads a comparison as 1, 0 or NaN (an operand NaN),
// and a choice on NaN is NaN, as the real evaluation of the symbolic
// derivative does. The interval arithmetic reads a comparison as [1, 1],
// [0, 0] or [0, 1] when the box holds both answers, and a choice on [0, 1]
// as the hull of both sides: every slope the point rule gives at a point
// of the box lies in the box's enclosure (up to the rounding of the
// interval functions, which round to nearest).

#include "expressions/ZorWBSlopes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBIntervalRules.h"
#include "values/ZorWBRealPower.h"

namespace {

using Type = ZorWBExpressionType;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
const double Ln10 = std::log(10.0);

// The marker of no slope: a NaN of a payload that arithmetic does not make.
double NoSlopeReal() {
    double marker;
    std::memcpy(&marker, &ZorWBNoSlopeBits, sizeof marker);
    return marker;
}

// ------------------------------------------------------------ arithmetics

struct RealArithmetic {
    using Number = double;
    double tolerance;

    static double Constant(double c) { return c; }
    static bool IsZero(double a) { return a == 0.0; }
    static bool IsOne(double a) { return a == 1.0; }
    static double Undefined() { return NaN; }
    static double None() { return NoSlopeReal(); }
    static double Add(double a, double b) { return a + b; }
    static double Sub(double a, double b) { return a - b; }
    static double Mul(double a, double b) { return a * b; }
    static double Div(double a, double b) { return a / b; }
    static double Neg(double a) { return -a; }
    static double Square(double a) { return a * a; }
    static double Power(double a, double b) { return ZorWBRealPower(a, b); }
    static double Sqrt(double a) { return std::sqrt(a); }
    static double Ln(double a) { return std::log(a); }
    static double Abs(double a) { return std::fabs(a); }
    static double Floor(double a) { return std::floor(a); }
    static double Sin(double a) { return std::sin(a); }
    static double Cos(double a) { return std::cos(a); }
    static double Sinh(double a) { return std::sinh(a); }
    static double Cosh(double a) { return std::cosh(a); }
    // Sign(1, a): 1 for a >= 0, -1 otherwise.
    static double SignOf(double a) { return a >= 0.0 ? 1.0 : -1.0; }

    static double Truth(bool b) { return b ? 1.0 : 0.0; }
    double LessEqual(double a, double b) const {
        if (std::isnan(a) || std::isnan(b)) return NaN;
        return Truth(a - b < tolerance || a <= b);
    }
    double Equal(double a, double b) const {
        if (std::isnan(a) || std::isnan(b)) return NaN;
        return Truth(std::fabs(a - b) < tolerance || a == b);
    }
    static double Not(double t) { return std::isnan(t) ? NaN : Truth(t == 0.0); }
    static double And(double t, double u) {
        if (std::isnan(t) || std::isnan(u)) return NaN;
        return Truth(t != 0.0 && u != 0.0);
    }
    static double Where(double t, double a, double b) {
        if (std::isnan(t)) return NaN;
        return t != 0.0 ? a : b;
    }
};

// Each operation starts from a clear error word: an earlier failure must
// not blank the enclosures that follow it.
struct IntervalArithmetic {
    using Number = ZorWBRealInterval;
    const ZorWBEnvironment& e;

    const ZorWBEnvironment& Fresh() const {
        e.ClearError();
        return e;
    }
    static Number Constant(double c) { return {c, c}; }
    static bool IsZero(const Number& a) { return a.low == 0.0 && a.high == 0.0; }
    static bool IsOne(const Number& a) { return a.low == 1.0 && a.high == 1.0; }
    static Number Undefined() { return {-ZorWBRealLimit, ZorWBRealLimit}; }
    static Number None() { return {NoSlopeReal(), NoSlopeReal()}; }
    Number Add(const Number& a, const Number& b) const {
        return ZorWBIntervalRules::SumOf(Fresh(), a, b);
    }
    Number Sub(const Number& a, const Number& b) const { return ZorWBSub(Fresh(), a, b); }
    Number Mul(const Number& a, const Number& b) const {
        return ZorWBIntervalRules::ProductOf(Fresh(), a, b);
    }
    Number Div(const Number& a, const Number& b) const { return ZorWBDiv(Fresh(), a, b); }
    static Number Neg(const Number& a) { return {-a.high, -a.low}; }
    Number Square(const Number& a) const { return ZorWBIntervalRules::PowerOf(Fresh(), a, 2); }
    Number Power(const Number& a, const Number& b) const {
        bool integral =
            b.low == b.high && std::floor(b.low) == b.low && std::fabs(b.low) <= ZorWBIntegerMax;
        if (integral) return ZorWBIntervalRules::PowerOf(Fresh(), a, static_cast<int>(b.low));
        return ZorWBPow(Fresh(), a, b);
    }
    Number Sqrt(const Number& a) const { return ZorWBSqrt(Fresh(), a); }
    Number Ln(const Number& a) const { return ZorWBLn(Fresh(), a); }
    Number Abs(const Number& a) const { return ZorWBAbs(Fresh(), a); }
    Number Floor(const Number& a) const { return ZorWBFloor(Fresh(), a); }
    Number Sin(const Number& a) const { return ZorWBSin(Fresh(), a); }
    Number Cos(const Number& a) const { return ZorWBCos(Fresh(), a); }
    Number Sinh(const Number& a) const { return ZorWBSinh(Fresh(), a); }
    Number Cosh(const Number& a) const { return ZorWBCosh(Fresh(), a); }
    static Number SignOf(const Number& a) {
        if (a.low >= 0.0) return {1.0, 1.0};
        if (a.high < 0.0) return {-1.0, -1.0};
        return {-1.0, 1.0};
    }

    // Truths: [1, 1] certain, [0, 0] excluded, [0, 1] either.
    static Number Truth(bool certain, bool excluded) {
        if (certain) return {1.0, 1.0};
        if (excluded) return {0.0, 0.0};
        return {0.0, 1.0};
    }
    // a - b < tolerance or a <= b: the test decreases with a, grows with b.
    Number LessEqual(const Number& a, const Number& b) const {
        double tolerance = e.GetTolerance();
        auto holds = [tolerance](double x, double y) { return x - y < tolerance || x <= y; };
        return Truth(holds(a.high, b.low), !holds(a.low, b.high));
    }
    Number Equal(const Number& a, const Number& b) const {
        double tolerance = e.GetTolerance();
        double widest = std::fmax(a.high - b.low, b.high - a.low);
        bool points = a.low == a.high && b.low == b.high && a.low == b.low;
        bool apart = a.low - b.high >= tolerance || b.low - a.high >= tolerance;
        return Truth(points || widest < tolerance, apart);
    }
    static Number Not(const Number& t) { return {1.0 - t.high, 1.0 - t.low}; }
    static Number And(const Number& t, const Number& u) { return {t.low * u.low, t.high * u.high}; }
    // Either side: the hull, no slope counting as 0.
    static Number Where(const Number& t, const Number& a, const Number& b) {
        if (t.low == 1.0) return a;
        if (t.high == 0.0) return b;
        const Number zero = {0.0, 0.0};
        const Number& left = ZorWBIsNoSlope(a) ? zero : a;
        const Number& right = ZorWBIsNoSlope(b) ? zero : b;
        return {std::fmin(left.low, right.low), std::fmax(left.high, right.high)};
    }
};

// ------------------------------------------------------------ rules

// Sum: 1. Product: the product of the other children. Min and Max: 1 where
// the child is the first extremum (strictly better than those before it,
// at least as good as those after it), else 0.
template <class M, class X>
void AlgebraicSlopes(const M& m, Type type, X x, int n, typename M::Number* d) {
    using Number = typename M::Number;
    const Number one = m.Constant(1.0);
    if (type == Type::Sum || n < 2) {
        std::fill(d, d + n, one);
        return;
    }
    if (type == Type::Product) {
        // The product of those before, then times the product of those after.
        Number before = one;
        for (int i = 0; i < n; ++i) {
            d[i] = before;
            before = m.Mul(before, x(i));
        }
        Number after = one;
        for (int i = n - 1; i >= 0; --i) {
            d[i] = m.Mul(d[i], after);
            after = m.Mul(after, x(i));
        }
        return;
    }
    const bool minimum = type == Type::Min;
    for (int i = 0; i < n; ++i) {
        Number condition = one;
        for (int j = 0; j < n; ++j) {
            if (j == i) continue;
            Number low = minimum ? x(i) : x(j);
            Number high = minimum ? x(j) : x(i);
            Number test = j < i ? m.Not(m.LessEqual(high, low)) : m.LessEqual(low, high);
            condition = m.And(condition, test);
        }
        d[i] = m.Where(condition, one, m.None());
    }
}

template <class M, class X>
void BinarySlopes(const M& m, const ZorWBOperator& node, X x, typename M::Number y,
                  typename M::Number* d) {
    using Number = typename M::Number;
    const Number one = m.Constant(1.0);
    const Number a = x(0);
    const Number b = x(1);
    switch (node.GetType()) {
        case Type::Quotient:
            d[0] = m.Div(one, b);
            d[1] = m.Div(m.Neg(y), b);
            return;
        case Type::Power: {
            // An exact exponent 0 leaves the term out; otherwise b a^(b-1),
            // a^1 being a. A constant exponent has no slope.
            const ZorWBExpression* exponent = ZorWBGraphWalk::Child(&node, 1);
            double e = 0.0;
            if (m.IsZero(b) && ZorWBExactNumber(exponent, e)) {
                d[0] = m.None();
            } else {
                Number lowered = m.Sub(b, one);
                d[0] = m.Mul(b, m.IsOne(lowered) ? a : m.Power(a, lowered));
            }
            d[1] = exponent->GetType() == Type::Constant ? m.None() : m.Mul(y, m.Ln(a));
            return;
        }
        case Type::Root:
            d[0] = m.Div(y, m.Mul(b, a));
            d[1] = m.Div(m.Neg(m.Mul(y, m.Ln(m.Abs(a)))), m.Square(b));
            return;
        case Type::Atan2: {
            Number radius = m.Add(m.Square(b), m.Square(a));
            d[0] = m.Div(b, radius);
            d[1] = m.Div(m.Neg(a), radius);
            return;
        }
        case Type::Dim: {
            Number greater = m.Not(m.LessEqual(a, b));
            d[0] = m.Where(greater, one, m.None());
            d[1] = m.Where(greater, m.Constant(-1.0), m.None());
            return;
        }
        case Type::Sign:
            d[0] = m.Mul(m.SignOf(a), m.SignOf(b));
            return;
        case Type::Mod:
            d[0] = one;
            d[1] = m.Neg(m.Floor(m.Div(a, b)));
            return;
        default:
            return;
    }
}

// Round(a, s, o) = o + s round((a - o) / s), and a where s = 0.
template <class M, class X>
void Round3Slopes(const M& m, const ZorWBOperator& node, X x, typename M::Number y,
                  typename M::Number* d) {
    using Number = typename M::Number;
    const Number one = m.Constant(1.0);
    const Number zero = m.Constant(0.0);
    double constantStep = 0.0;
    Number zeroStep = ZorWBExactNumber(node.GetChild(1), constantStep)
                          ? m.Constant(constantStep == 0.0 ? 1.0 : 0.0)
                          : m.Equal(x(1), zero);
    d[0] = m.Where(zeroStep, one, m.None());
    d[1] = m.Div(m.Sub(y, x(2)), x(1));
    d[2] = m.Where(zeroStep, m.None(), one);
}

// The ramp of Step(a; x0, x1, y0, y1) between x0 and x1; 0 for a sharp
// step; undefined when a parameter is NaN.
template <class M>
typename M::Number StepSlope(const M& m, const ZorWBOperator& node, typename M::Number a) {
    double x0 = node.GetParameter(0);
    double x1 = node.GetParameter(1);
    double y0 = node.GetParameter(2);
    double y1 = node.GetParameter(3);
    if (std::isnan(x0) || std::isnan(x1) || std::isnan(y0) || std::isnan(y1)) return m.Undefined();
    double slope = x1 > x0 ? (y1 - y0) / (x1 - x0) : 0.0;
    if (slope == 0.0 || !std::isfinite(slope)) return m.None();
    auto less = [&m](typename M::Number p, typename M::Number q) {
        return m.Not(m.LessEqual(q, p));
    };
    typename M::Number inside = m.And(less(m.Constant(x0), a), less(a, m.Constant(x1)));
    return m.Where(inside, m.Constant(slope), m.None());
}

template <class M>
typename M::Number UnarySlope(const M& m, const ZorWBOperator& node, typename M::Number a,
                              typename M::Number y) {
    using Number = typename M::Number;
    const Number one = m.Constant(1.0);
    switch (node.GetType()) {
        case Type::Sqrt:
            return m.Div(one, m.Mul(m.Constant(2.0), y));
        case Type::Log:
            return m.Div(one, m.Mul(a, m.Constant(Ln10)));
        case Type::Ln:
            return m.Div(one, a);
        case Type::Exp:
            return y;
        case Type::Abs:
            return m.SignOf(a);
        case Type::UnaryMinus:
            return m.Constant(-1.0);
        case Type::Step:
            return StepSlope(m, node, a);
        default:  // Ceil, Floor, Round, Trunc
            return m.None();
    }
}

template <class M>
typename M::Number TrigonometricSlope(const M& m, Type type, typename M::Number a,
                                      typename M::Number y) {
    using Number = typename M::Number;
    const Number one = m.Constant(1.0);
    switch (type) {
        case Type::Sin:
            return m.Cos(a);
        case Type::Cos:
            return m.Neg(m.Sin(a));
        case Type::Tan:
            return m.Add(one, m.Square(y));
        case Type::Asin:
            return m.Div(one, m.Sqrt(m.Sub(one, m.Square(a))));
        case Type::Acos:
            return m.Neg(m.Div(one, m.Sqrt(m.Sub(one, m.Square(a)))));
        case Type::Atan:
            return m.Div(one, m.Add(one, m.Square(a)));
        case Type::Sinh:
            return m.Cosh(a);
        case Type::Cosh:
            return m.Sinh(a);
        case Type::Tanh:
            return m.Sub(one, m.Square(y));
        case Type::Asinh:
            return m.Div(one, m.Sqrt(m.Add(m.Square(a), one)));
        case Type::Acosh:
            return m.Div(one, m.Sqrt(m.Sub(m.Square(a), one)));
        case Type::Atanh:
            return m.Div(one, m.Sub(one, m.Square(a)));
        default:
            return m.None();
    }
}

// Every family's rule; an IfThenElse's condition (truth) is read by the
// caller, each arithmetic its own way. Not, the Boolean operators and the
// rest give no slope.
template <class M, class X>
void Slopes(const M& m, const ZorWBOperator& node, X x, int n, typename M::Number y,
            typename M::Number truth, typename M::Number* d) {
    const Type type = node.GetType();
    std::fill(d, d + n, m.None());
    switch (ZorWBNodeFamilies[static_cast<int>(type)]) {
        case ZorWBNodeFamily::Algebraic:
            AlgebraicSlopes(m, type, x, n, d);
            return;
        case ZorWBNodeFamily::Binary:
            if (n == 2) BinarySlopes(m, node, x, y, d);
            return;
        case ZorWBNodeFamily::Unary:
            if (type == Type::Round && n == 3) {
                Round3Slopes(m, node, x, y, d);
            } else if (n == 1) {
                d[0] = UnarySlope(m, node, x(0), y);
            }
            return;
        case ZorWBNodeFamily::Trigonometric:
            if (n == 1) d[0] = TrigonometricSlope(m, type, x(0), y);
            return;
        case ZorWBNodeFamily::IfThenElse:
            if (n == 3) {
                d[1] = m.Where(truth, m.Constant(1.0), m.None());
                d[2] = m.Where(truth, m.None(), m.Constant(1.0));
            }
            return;
        default:
            return;
    }
}

}  // namespace

bool ZorWBExactNumber(const ZorWBExpression* e, double& number) {
    if (!e || e->GetType() != Type::Constant) return false;
    const ZorWBValue& value = e->GetExprValue();
    if (!value.IsAKindOf(ZorWBIntegerType) && !value.IsAKindOf(ZorWBRealType) &&
        !value.IsAFraction())
        return false;
    number = value.GetAsReal();
    return true;
}

double ZorWBRealNoSlope() {
    return NoSlopeReal();
}

ZorWBRealInterval ZorWBIntervalNoSlope() {
    return {NoSlopeReal(), NoSlopeReal()};
}

bool ZorWBHasSlopes(ZorWBExpressionType type) {
    return type != Type::BlackBox && type != Type::Integrate;
}

void ZorWBRealSlopes(const ZorWBOperator& node, const double* registers, const int* arguments,
                     int n, double value, double tolerance, double* slopes) {
    auto child = [registers, arguments](int i) { return registers[arguments[i]]; };
    // The most frequent slope in a program that computes few: straight in.
    if (node.GetType() == Type::Power && n == 2) {
        BinarySlopes(RealArithmetic{tolerance}, node, child, value, slopes);
        return;
    }
    // The real IfThenElse takes "then" for non-zero, nothing for NaN.
    double condition = n > 0 ? child(0) : NaN;
    double truth = std::isnan(condition) ? NaN : RealArithmetic::Truth(condition != 0.0);
    Slopes(RealArithmetic{tolerance}, node, child, n, value, truth, slopes);
}

void ZorWBIntervalSlopes(const ZorWBOperator& node, const ZorWBValue* registers,
                         const int* arguments, int n, const ZorWBValue& value,
                         const ZorWBEnvironment& scratch, ZorWBRealInterval* slopes) {
    // An undetermined condition leaves either branch possible.
    ZorWBRealInterval truth = {0.0, 1.0};
    if (node.GetType() == Type::IfThenElse && n == 3) {
        int branch = ZorWBIfThenElseOperator::ChosenBranch(registers[arguments[0]]);
        if (branch == 1) truth = {1.0, 1.0};
        if (branch == 2) truth = {0.0, 0.0};
    }
    auto child = [registers, arguments](int i) {
        return registers[arguments[i]].GetAsRealInterval();
    };
    Slopes(IntervalArithmetic{scratch}, node, child, n, value.GetAsRealInterval(), truth, slopes);
}
