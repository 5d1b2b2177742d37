// How each operator family evaluates: one row per type, pairing the value
// function of the type with its real-number counterpart and, for the most
// frequent types, its shortcut on real intervals (ZorWBOperatorFunctions.h),
// so that adding a type to a family is adding a row.

#include <cmath>
#include <limits>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBOperatorFunctions.h"
#include "expressions/ZorWBRealFunctions.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBIntervalRules.h"
#include "values/ZorWBValueFunctions.h"

namespace {

using Type = ZorWBExpressionType;
using UnaryValueFunction = ZorWBUnaryValueFunction;
using BinaryValueFunction = ZorWBBinaryValueFunction;
using UnaryRealFunction = ZorWBUnaryRealFunction;
using BinaryRealFunction = ZorWBBinaryRealFunction;
using LogicalRealFunction = ZorWBLogicalRealFunction;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

using UnaryIntervalFunction = ZorWBRealInterval (*)(const ZorWBEnvironment&,
                                                    const ZorWBRealInterval&);
using BinaryIntervalFunction = ZorWBRealInterval (*)(const ZorWBEnvironment&,
                                                     const ZorWBRealInterval&,
                                                     const ZorWBRealInterval&);

// The shortcut of each type (ZorWBOperatorFunctions.h) sits in its row.
struct UnaryKind {
    UnaryValueFunction value;
    UnaryRealFunction real;
    ZorWBValueShortcut shortcut = nullptr;
};
struct BinaryKind {
    BinaryValueFunction value;
    BinaryRealFunction real;
    ZorWBValueShortcut shortcut = nullptr;
};
struct LogicalKind {
    BinaryValueFunction value;
    LogicalRealFunction real;
};

// ------------------------------------------------------------ shortcuts

// The kinds that combine with a real interval into a real interval, with no
// enumeration, fraction or boolean to dispatch on.
inline bool IsIntervalOperand(ZorWBValueType type) {
    return type == ZorWBRealIntervalType || type == ZorWBRealType || type == ZorWBIntegerType;
}

inline bool IsIntervalPair(const ZorWBValue& a, const ZorWBValue& b) {
    return IsIntervalOperand(a.GetType()) && IsIntervalOperand(b.GetType()) &&
           (a.GetType() == ZorWBRealIntervalType || b.GetType() == ZorWBRealIntervalType);
}

// A fold step: the rule on the readings of the pair, recording the
// environment on the operand folded in (the one recorded on the running
// value goes with the assignment of the result).
template <BinaryIntervalFunction Rule>
bool FoldShortcut(const ZorWBEnvironment& e, const ZorWBValue& running, const ZorWBValue& operand,
                  ZorWBValue& result) {
    if (!IsIntervalPair(running, operand)) return false;
    ZorWBRealInterval image = Rule(e, running.GetAsRealInterval(), operand.GetAsRealInterval());
    operand.RecordEnv(e);
    result.AssignResult(image);
    return true;
}

bool QuotientShortcut(const ZorWBEnvironment& e, const ZorWBValue& a, const ZorWBValue& b,
                      ZorWBValue& result) {
    if (!IsIntervalPair(a, b)) return false;
    ZorWBRealInterval left = a.GetAsRealInterval();
    ZorWBRealInterval right = b.GetAsRealInterval();
    a.RecordEnv(e);
    b.RecordEnv(e);
    result.AssignResult(ZorWBDiv(e, left, right));
    return true;
}

// Only a single integral exponent has a power of its own.
bool PowerShortcut(const ZorWBEnvironment& e, const ZorWBValue& base, const ZorWBValue& exponent,
                   ZorWBValue& result) {
    if (!IsIntervalPair(base, exponent)) return false;
    ZorWBRealInterval right = exponent.GetAsRealInterval();
    bool single = right.low == right.high && std::floor(right.low) == right.low &&
                  std::fabs(right.low) <= ZorWBIntegerMax;
    if (!single) return false;
    ZorWBRealInterval left = base.GetAsRealInterval();
    base.RecordEnv(e);
    exponent.RecordEnv(e);
    result.AssignResult(ZorWBIntervalRules::PowerOf(e, left, static_cast<int>(right.low)));
    return true;
}

template <UnaryIntervalFunction Function>
bool UnaryShortcut(const ZorWBEnvironment& e, const ZorWBValue& a, const ZorWBValue&,
                   ZorWBValue& result) {
    if (a.GetType() != ZorWBRealIntervalType) return false;
    a.RecordEnv(e);
    result.AssignResult(Function(e, a.GetAsRealInterval()));
    return true;
}

// The real n-th root: odd roots of negative numbers are negative.
double RealRoot(double x, double degree) {
    double odd = std::fmod(degree, 2.0);
    if (x < 0.0 && (odd == 1.0 || odd == -1.0)) return -std::pow(-x, 1.0 / degree);
    return std::pow(x, 1.0 / degree);
}

double Truth(bool b) {
    return b ? 1.0 : 0.0;
}

UnaryKind UnaryKindOf(Type type) {
    using E = const ZorWBEnvironment&;
    using V = const ZorWBValue&;
    switch (type) {
        // clang-format off
        case Type::Sqrt:       return {ZorWBSqrt, [](double x) { return std::sqrt(x); }, UnaryShortcut<ZorWBSqrt>};
        case Type::Log:        return {ZorWBLog, [](double x) { return std::log10(x); }, UnaryShortcut<ZorWBLog>};
        case Type::Ln:         return {ZorWBLn, [](double x) { return std::log(x); }, UnaryShortcut<ZorWBLn>};
        case Type::Exp:        return {ZorWBExp, [](double x) { return std::exp(x); }, UnaryShortcut<ZorWBExp>};
        case Type::Abs:        return {ZorWBAbs, [](double x) { return std::fabs(x); }, UnaryShortcut<ZorWBAbs>};
        case Type::Ceil:       return {ZorWBCeil, [](double x) { return std::ceil(x); }};
        case Type::Floor:      return {ZorWBFloor, [](double x) { return std::floor(x); }};
        case Type::Round:      return {[](E e, V a) { return ZorWBRound(e, a); },
                                       [](double x) { return std::round(x); }};
        case Type::Trunc:      return {ZorWBTrunc, [](double x) { return std::trunc(x); }};
        case Type::UnaryMinus: return {ZorWBUnaryMinus, [](double x) { return -x; }};
        case Type::Sin:        return {ZorWBSin, [](double x) { return std::sin(x); }, UnaryShortcut<ZorWBSin>};
        case Type::Cos:        return {ZorWBCos, [](double x) { return std::cos(x); }, UnaryShortcut<ZorWBCos>};
        case Type::Tan:        return {ZorWBTan, [](double x) { return std::tan(x); }, UnaryShortcut<ZorWBTan>};
        case Type::Asin:       return {[](E e, V a) { return ZorWBAsin(e, a); },
                                       [](double x) { return std::asin(x); }};
        case Type::Acos:       return {[](E e, V a) { return ZorWBAcos(e, a); },
                                       [](double x) { return std::acos(x); }};
        case Type::Atan:       return {[](E e, V a) { return ZorWBAtan(e, a); },
                                       [](double x) { return std::atan(x); }};
        case Type::Sinh:       return {ZorWBSinh, [](double x) { return std::sinh(x); }, UnaryShortcut<ZorWBSinh>};
        case Type::Cosh:       return {ZorWBCosh, [](double x) { return std::cosh(x); }, UnaryShortcut<ZorWBCosh>};
        case Type::Tanh:       return {ZorWBTanh, [](double x) { return std::tanh(x); }, UnaryShortcut<ZorWBTanh>};
        case Type::Asinh:      return {ZorWBAsinh, [](double x) { return std::asinh(x); }, UnaryShortcut<ZorWBAsinh>};
        case Type::Acosh:      return {ZorWBAcosh, [](double x) { return std::acosh(x); }, UnaryShortcut<ZorWBAcosh>};
        case Type::Atanh:      return {ZorWBAtanh, [](double x) { return std::atanh(x); }, UnaryShortcut<ZorWBAtanh>};
        // clang-format on
        default:
            return {nullptr, nullptr};
    }
}

BinaryKind BinaryKindOf(Type type) {
    using E = const ZorWBEnvironment&;
    using V = const ZorWBValue&;
    switch (type) {
        // clang-format off
        case Type::Sum:      return {ZorWBSum, [](double a, double b) { return a + b; },
                                     FoldShortcut<ZorWBIntervalRules::SumOf>};
        case Type::Product:  return {ZorWBMul, [](double a, double b) { return a * b; },
                                     FoldShortcut<ZorWBIntervalRules::ProductOf>};
        case Type::Min:      return {ZorWBMin, [](double a, double b) { return std::fmin(a, b); },
                                     FoldShortcut<ZorWBMin>};
        case Type::Max:      return {ZorWBMax, [](double a, double b) { return std::fmax(a, b); },
                                     FoldShortcut<ZorWBMax>};
        case Type::Quotient: return {ZorWBDiv, [](double a, double b) { return a / b; }, QuotientShortcut};
        case Type::Power:    return {ZorWBPow, ZorWBRealPower, PowerShortcut};
        case Type::Root:     return {[](E e, V a, V b) { return ZorWBRoot(e, a, b); }, RealRoot};
        case Type::Atan2:    return {[](E e, V y, V x) { return ZorWBAtan2(e, y, x); },
                                     [](double y, double x) { return std::atan2(y + 0.0, x); }};
        case Type::Dim:      return {ZorWBDim, [](double a, double b) { return std::fdim(a, b); }};
        case Type::Sign:     return {ZorWBSign, [](double a, double b) {
                                         return b >= 0.0 ? std::fabs(a) : -std::fabs(a); }};
        case Type::Mod:      return {ZorWBMod, ZorWBIntervalRules::FlooredRemainder};
        // clang-format on
        default:
            return {nullptr, nullptr};
    }
}

LogicalKind LogicalKindOf(Type type) {
    using E = const ZorWBEnvironment&;
    using V = const ZorWBValue&;
    switch (type) {
        // clang-format off
        case Type::Or:          return {[](E, V a, V b) { return ZorWBOr(a, b); },
                                        [](double a, double b, double) { return Truth(a != 0.0 || b != 0.0); }};
        case Type::And:         return {[](E, V a, V b) { return ZorWBAnd(a, b); },
                                        [](double a, double b, double) { return Truth(a != 0.0 && b != 0.0); }};
        case Type::Implication: return {[](E, V a, V b) { return ZorWBImplication(a, b); },
                                        [](double a, double b, double) { return Truth(a == 0.0 || b != 0.0); }};
        case Type::Equal:       return {ZorWBEqual, [](double a, double b, double tolerance) {
                                            return Truth(std::fabs(a - b) < tolerance || a == b); }};
        case Type::NotEqual:    return {ZorWBNotEqual, [](double a, double b, double tolerance) {
                                            return Truth(!(std::fabs(a - b) < tolerance || a == b)); }};
        case Type::LessEqual:   return {ZorWBLessEqual, [](double a, double b, double tolerance) {
                                            return Truth(a - b < tolerance || a <= b); }};
        // clang-format on
        default:
            return {nullptr, nullptr};
    }
}

}  // namespace

ZorWBUnaryRealFunction ZorWBUnaryRealFunctionOf(ZorWBExpressionType type) {
    return UnaryKindOf(type).real;
}
ZorWBBinaryRealFunction ZorWBBinaryRealFunctionOf(ZorWBExpressionType type) {
    return BinaryKindOf(type).real;
}
ZorWBLogicalRealFunction ZorWBLogicalRealFunctionOf(ZorWBExpressionType type) {
    return LogicalKindOf(type).real;
}

ZorWBUnaryValueFunction ZorWBUnaryValueFunctionOf(ZorWBExpressionType type) {
    return UnaryKindOf(type).value;
}
ZorWBBinaryValueFunction ZorWBBinaryValueFunctionOf(ZorWBExpressionType type) {
    BinaryValueFunction binary = BinaryKindOf(type).value;
    return binary ? binary : LogicalKindOf(type).value;
}

// ------------------------------------------------------------ Not

void ZorWBNotOperator::DoEval(ZorWBValue& value) const {
    value = HasChildren(1) ? ZorWBNot(ChildValue(0)) : ZorWBValue();
}

double ZorWBNotOperator::DoEval() const {
    if (!HasChildren(1)) return NaN;
    double a = ChildReal(0);
    return std::isnan(a) ? NaN : Truth(a == 0.0);
}

// ------------------------------------------------------------ Boolean

void ZorWBBooleanOperator::DoEval(ZorWBValue& value) const {
    LogicalKind kind = LogicalKindOf(GetType());
    if (!kind.value || !HasChildren(2)) {
        value = ZorWBValue();
        return;
    }
    value = kind.value(GetEnvironment(), ChildValue(0), ChildValue(1));
}

double ZorWBBooleanOperator::DoEval() const {
    LogicalKind kind = LogicalKindOf(GetType());
    if (!kind.real || !HasChildren(2)) return NaN;
    double a = ChildReal(0);
    double b = ChildReal(1);
    if (std::isnan(a) || std::isnan(b)) return NaN;
    return kind.real(a, b, GetEnvironment().GetTolerance());
}

// ------------------------------------------------------------ Sum, Product, Min, Max

void ZorWBAlgebraicOperator::DoEval(ZorWBValue& value) const {
    BinaryKind kind = BinaryKindOf(GetType());
    if (!kind.value || !HasChildren(1)) {
        value = ZorWBValue();
        return;
    }
    const ZorWBEnvironment& environment = GetEnvironment();
    value = ChildValue(0);
    for (int i = 1; i < GetNbOfChildren(); ++i)
        value = kind.value(environment, value, ChildValue(i));
}

double ZorWBAlgebraicOperator::DoEval() const {
    BinaryKind kind = BinaryKindOf(GetType());
    if (!kind.real || !HasChildren(1)) return NaN;
    double result = ChildReal(0);
    for (int i = 1; i < GetNbOfChildren(); ++i)
        result = kind.real(result, ChildReal(i));
    return result;
}

// ------------------------------------------------------------ binary

void ZorWBBinaryOperator::DoEval(ZorWBValue& value) const {
    BinaryKind kind = BinaryKindOf(GetType());
    if (!kind.value || !HasChildren(2)) {
        value = ZorWBValue();
        return;
    }
    value = kind.value(GetEnvironment(), ChildValue(0), ChildValue(1));
}

double ZorWBBinaryOperator::DoEval() const {
    BinaryKind kind = BinaryKindOf(GetType());
    if (!kind.real || !HasChildren(2)) return NaN;
    return kind.real(ChildReal(0), ChildReal(1));
}

// ------------------------------------------------------------ unary and trigonometric

void ZorWBUnaryOperator::DoEval(ZorWBValue& value) const {
    if (!HasChildren(1)) {
        value = ZorWBValue();
    } else if (GetType() == Type::Step) {
        value = ZorWBStep(GetEnvironment(), ChildValue(0), _parameters);
    } else {
        UnaryKind kind = UnaryKindOf(GetType());
        value = kind.value ? kind.value(GetEnvironment(), ChildValue(0)) : ZorWBValue();
    }
}

// The step's shape belongs to its value function, so its real form goes
// through it too.
double ZorWBUnaryOperator::DoEval() const {
    if (!HasChildren(1)) return NaN;
    double x = ChildReal(0);
    if (GetType() == Type::Step) return RealReading(ZorWBStep(GetEnvironment(), x, _parameters));
    UnaryKind kind = UnaryKindOf(GetType());
    return kind.real ? kind.real(x) : NaN;
}

void ZorWBTrigonometricOperator::DoEval(ZorWBValue& value) const {
    UnaryKind kind = UnaryKindOf(GetType());
    value =
        kind.value && HasChildren(1) ? kind.value(GetEnvironment(), ChildValue(0)) : ZorWBValue();
}

double ZorWBTrigonometricOperator::DoEval() const {
    UnaryKind kind = UnaryKindOf(GetType());
    return kind.real && HasChildren(1) ? kind.real(ChildReal(0)) : NaN;
}

// ------------------------------------------------------------ Round with three children

void ZorWBRound3Operator::DoEval(ZorWBValue& value) const {
    if (!HasChildren(3)) {
        value = ZorWBValue();
        return;
    }
    value = ZorWBRound(GetEnvironment(), ChildValue(0), ChildValue(1), ChildValue(2));
}

double ZorWBRound3Operator::DoEval() const {
    if (!HasChildren(3)) return NaN;
    return RealReading(ZorWBRound(GetEnvironment(), ChildReal(0), ChildReal(1), ChildReal(2)));
}

// ------------------------------------------------------------ IfThenElse

void ZorWBIfThenElseOperator::DoEval(ZorWBValue& value) const {
    if (!HasChildren(3)) {
        value = ZorWBValue();
        return;
    }
    int branch = ChosenBranch(ChildValue(0));
    if (branch == IndefiniteBranch) {
        value = ZorWBValue();
    } else if (branch != KeepBranch) {
        value = ChildValue(branch);
    }
}

double ZorWBIfThenElseOperator::DoEval() const {
    if (!HasChildren(3)) return NaN;
    int branch = ChosenBranch(ChildReal(0));
    return branch > 0 ? ChildReal(branch) : NaN;
}

// ------------------------------------------------------------ shortcuts

ZorWBValueShortcut ZorWBValueShortcutOf(ZorWBExpressionType type) {
    ZorWBValueShortcut binary = BinaryKindOf(type).shortcut;
    return binary ? binary : UnaryKindOf(type).shortcut;
}

// The shortcut of the type on the children's values, when they are up to
// date in the running walk. Children not yet evaluated, and a value field
// holding an enumeration (whose assignment is not scalar), go the general
// way. Not for the folds, which go step by step.
bool ZorWBOperator::EvaluateFast() const {
    const ZorWBValueType current = _value.GetType();
    if (current == ZorWBIntegerEnumType || current == ZorWBRealEnumType) return false;
    if (ZorWBIsFoldType(GetType())) return false;
    ZorWBValueShortcut shortcut = ZorWBValueShortcutOf(GetType());
    const int needed = GetType() == Type::Quotient || GetType() == Type::Power ? 2 : 1;
    if (!shortcut || _count < needed) return false;
    const unsigned int walk = _factory->_valueWalk;
    auto ready = [walk](const ZorWBExpression* child) -> const ZorWBValue* {
        bool done = (child->_flags & BufferValidFlag) || (walk != 0 && child->_walkMark == walk);
        return done ? &child->_value : nullptr;
    };
    const ZorWBValue* a = ready(Children()[0]);
    const ZorWBValue* b = ready(Children()[needed - 1]);
    return a && b && shortcut(_factory->_environment, *a, *b, _value);
}

// ------------------------------------------------------------ fold steps

void ZorWBOperator::FoldValue(int i) const {
    // The walk folds a child in once it is computed or found ready.
    const ZorWBValue& child = Children()[i]->_value;
    if (i == 0) {
        if (!KeepsFirstOperand()) _value = child;
        return;
    }
    const BinaryKind kind = BinaryKindOf(GetType());
    const ZorWBEnvironment& environment = _factory->_environment;
    const bool fast = _factory->_fastValues && kind.shortcut;
    if (i == 1 && KeepsFirstOperand()) {
        const ZorWBValue& first = Children()[0]->_value;
        if (fast && kind.shortcut(environment, first, child, _value)) return;
        _value = first;
    }
    if (fast && kind.shortcut(environment, _value, child, _value)) return;
    _value = kind.value(environment, _value, child);
}

void ZorWBOperator::FoldReal(int i) const {
    double child = RealOf(Children()[i]);
    ZorWBFactory::RealSlot* running = _factory->RunningRealSlot(this);
    if (!running) return;  // memory was short: the node is computed on request
    running->real = i == 0 ? child : BinaryKindOf(GetType()).real(running->real, child);
}
