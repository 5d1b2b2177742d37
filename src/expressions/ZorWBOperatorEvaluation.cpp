// How each operator family evaluates: one row per type, pairing the value
// function of the type with its real-number counterpart, so that adding a
// type to a family is adding a row.

#include <cmath>
#include <limits>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBRealFunctions.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBIntervalRules.h"
#include "values/ZorWBValueFunctions.h"

namespace {

using Type = ZorWBExpressionType;
using UnaryValueFunction = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&);
using BinaryValueFunction = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&,
                                           const ZorWBValue&);
using UnaryRealFunction = ZorWBUnaryRealFunction;
using BinaryRealFunction = ZorWBBinaryRealFunction;
using LogicalRealFunction = ZorWBLogicalRealFunction;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// The interval function of a type whose value function, on a real interval
// (and on an interval paired with an integer, a real or an interval for two
// operands), applies it and nothing else: the shortcut of ZorWBOperator::
// EvaluateFast. Null for the other types.
using UnaryIntervalFunction = ZorWBRealInterval (*)(const ZorWBEnvironment&,
                                                    const ZorWBRealInterval&);
using BinaryIntervalFunction = ZorWBRealInterval (*)(const ZorWBEnvironment&,
                                                     const ZorWBRealInterval&,
                                                     const ZorWBRealInterval&);

struct UnaryKind {
    UnaryValueFunction value;
    UnaryRealFunction real;
    UnaryIntervalFunction interval = nullptr;
};
struct BinaryKind {
    BinaryValueFunction value;
    BinaryRealFunction real;
    BinaryIntervalFunction interval = nullptr;
};
struct LogicalKind {
    BinaryValueFunction value;
    LogicalRealFunction real;
};

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
        case Type::Sqrt:       return {ZorWBSqrt, [](double x) { return std::sqrt(x); }, ZorWBSqrt};
        case Type::Log:        return {ZorWBLog, [](double x) { return std::log10(x); }, ZorWBLog};
        case Type::Ln:         return {ZorWBLn, [](double x) { return std::log(x); }, ZorWBLn};
        case Type::Exp:        return {ZorWBExp, [](double x) { return std::exp(x); }, ZorWBExp};
        case Type::Abs:        return {ZorWBAbs, [](double x) { return std::fabs(x); }, ZorWBAbs};
        case Type::Ceil:       return {ZorWBCeil, [](double x) { return std::ceil(x); }};
        case Type::Floor:      return {ZorWBFloor, [](double x) { return std::floor(x); }};
        case Type::Round:      return {[](E e, V a) { return ZorWBRound(e, a); },
                                       [](double x) { return std::round(x); }};
        case Type::Trunc:      return {ZorWBTrunc, [](double x) { return std::trunc(x); }};
        case Type::UnaryMinus: return {ZorWBUnaryMinus, [](double x) { return -x; }};
        case Type::Sin:        return {ZorWBSin, [](double x) { return std::sin(x); }, ZorWBSin};
        case Type::Cos:        return {ZorWBCos, [](double x) { return std::cos(x); }, ZorWBCos};
        case Type::Tan:        return {ZorWBTan, [](double x) { return std::tan(x); }, ZorWBTan};
        case Type::Asin:       return {[](E e, V a) { return ZorWBAsin(e, a); },
                                       [](double x) { return std::asin(x); }};
        case Type::Acos:       return {[](E e, V a) { return ZorWBAcos(e, a); },
                                       [](double x) { return std::acos(x); }};
        case Type::Atan:       return {[](E e, V a) { return ZorWBAtan(e, a); },
                                       [](double x) { return std::atan(x); }};
        case Type::Sinh:       return {ZorWBSinh, [](double x) { return std::sinh(x); }, ZorWBSinh};
        case Type::Cosh:       return {ZorWBCosh, [](double x) { return std::cosh(x); }, ZorWBCosh};
        case Type::Tanh:       return {ZorWBTanh, [](double x) { return std::tanh(x); }, ZorWBTanh};
        case Type::Asinh:      return {ZorWBAsinh, [](double x) { return std::asinh(x); }, ZorWBAsinh};
        case Type::Acosh:      return {ZorWBAcosh, [](double x) { return std::acosh(x); }, ZorWBAcosh};
        case Type::Atanh:      return {ZorWBAtanh, [](double x) { return std::atanh(x); }, ZorWBAtanh};
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
        case Type::Sum:      return {ZorWBSum, [](double a, double b) { return a + b; }, ZorWBSum};
        case Type::Product:  return {ZorWBMul, [](double a, double b) { return a * b; }, ZorWBMul};
        case Type::Min:      return {ZorWBMin, [](double a, double b) { return std::fmin(a, b); }, ZorWBMin};
        case Type::Max:      return {ZorWBMax, [](double a, double b) { return std::fmax(a, b); }, ZorWBMax};
        case Type::Quotient: return {ZorWBDiv, [](double a, double b) { return a / b; }, ZorWBDiv};
        case Type::Power:    return {ZorWBPow, ZorWBRealPower};
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

namespace {

// The kinds that combine with a real interval into a real interval, with no
// enumeration, fraction or boolean to dispatch on.
inline bool IsIntervalOperand(ZorWBValueType type) {
    return type == ZorWBRealIntervalType || type == ZorWBRealType || type == ZorWBIntegerType;
}

inline bool IsIntervalPair(const ZorWBValue& a, const ZorWBValue& b) {
    return IsIntervalOperand(a.GetType()) && IsIntervalOperand(b.GetType()) &&
           (a.GetType() == ZorWBRealIntervalType || b.GetType() == ZorWBRealIntervalType);
}

}  // namespace

// What the value functions do when the general kind dispatch picks a real
// interval: the same interval function on the same readings, with the same
// recorded environments (on every child) and the same result, a real
// interval without environment. Children not yet evaluated, enumerations
// and every other kind go the general way, as does a value field holding an
// enumeration (whose assignment is not scalar).
bool ZorWBOperator::EvaluateFast() const {
    const ZorWBValueType current = _value.GetType();
    if (current == ZorWBIntegerEnumType || current == ZorWBRealEnumType) return false;
    const ZorWBExpression* const* children = Children();
    const int n = _count;
    const ZorWBFactory& factory = *_factory;
    const unsigned int walk = factory._valueWalk;
    auto ready = [walk](const ZorWBExpression* child) -> const ZorWBValue* {
        bool done = (child->_flags & BufferValidFlag) || (walk != 0 && child->_walkMark == walk);
        return done ? &child->_value : nullptr;
    };
    const ZorWBEnvironment& environment = factory._environment;
    switch (GetType()) {
        case Type::Quotient:
        case Type::Power: {
            if (n < 2) return false;
            const ZorWBValue* base = ready(children[0]);
            const ZorWBValue* exponent = ready(children[1]);
            if (!base || !exponent || !IsIntervalPair(*base, *exponent)) return false;
            ZorWBRealInterval left = base->GetAsRealInterval();
            ZorWBRealInterval right = exponent->GetAsRealInterval();
            if (GetType() == Type::Quotient) {
                base->RecordEnv(environment);
                exponent->RecordEnv(environment);
                _value.AssignResult(ZorWBDiv(environment, left, right));
                return true;
            }
            // Only a single integral exponent has a power of its own.
            bool single = right.low == right.high && std::floor(right.low) == right.low &&
                          std::fabs(right.low) <= ZorWBIntegerMax;
            if (!single) return false;
            base->RecordEnv(environment);
            exponent->RecordEnv(environment);
            _value.AssignResult(
                ZorWBIntervalRules::PowerOf(environment, left, static_cast<int>(right.low)));
            return true;
        }
        default: {
            UnaryIntervalFunction function = UnaryKindOf(GetType()).interval;
            if (!function || n < 1) return false;
            const ZorWBValue* operand = ready(children[0]);
            if (!operand || operand->GetType() != ZorWBRealIntervalType) return false;
            operand->RecordEnv(environment);
            _value.AssignResult(function(environment, operand->GetAsRealInterval()));
            return true;
        }
    }
}

// ------------------------------------------------------------ fold steps

void ZorWBOperator::FoldValue(int i) const {
    // The walk folds a child in once it is computed or found ready.
    const ZorWBValue& child = Children()[i]->_value;
    const bool fast = _factory->_fastValues;
    if (i == 0) {
        if (!KeepsFirstOperand()) _value = child;
        return;
    }
    if (i == 1 && KeepsFirstOperand()) {
        const ZorWBValue& first = Children()[0]->_value;
        if (fast && FoldFast(first, child)) return;
        _value = first;
    }
    if (fast && FoldFast(_value, child)) return;
    _value = BinaryKindOf(GetType()).value(GetEnvironment(), _value, child);
}

void ZorWBOperator::FoldReal(int i) const {
    double child = RealOf(Children()[i]);
    ZorWBFactory::RealSlot* running = _factory->RunningRealSlot(this);
    if (!running) return;  // memory was short: the node is computed on request
    running->real = i == 0 ? child : BinaryKindOf(GetType()).real(running->real, child);
}

// What the value function of the fold does with a real interval and an
// integer, a real or a real interval: the interval rule on their readings,
// recording the environment on the child (the one recorded on the running
// value goes with the assignment of the result).
bool ZorWBOperator::FoldFast(const ZorWBValue& running, const ZorWBValue& child) const {
    if (!IsIntervalPair(running, child)) return false;
    const ZorWBEnvironment& e = _factory->_environment;
    ZorWBRealInterval a = running.GetAsRealInterval();
    ZorWBRealInterval b = child.GetAsRealInterval();
    ZorWBRealInterval result;
    switch (GetType()) {
        case Type::Sum:
            result = ZorWBIntervalRules::SumOf(e, a, b);
            break;
        case Type::Product:
            result = ZorWBIntervalRules::ProductOf(e, a, b);
            break;
        case Type::Min:
            result = ZorWBMin(e, a, b);
            break;
        case Type::Max:
            result = ZorWBMax(e, a, b);
            break;
        default:
            return false;
    }
    child.RecordEnv(e);
    _value.AssignResult(result);
    return true;
}
