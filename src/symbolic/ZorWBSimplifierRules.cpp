// The rules of one node in the preparatory rewrite, the rounds and the final
// normalisation (sums and products live in ZorWBSimplifierSums.cpp). Each
// returns a candidate or null; the engine keeps a candidate only where it is
// not heavier than the node over its simplified children.

#include "expressions/ZorWBOperator.h"
#include "symbolic/ZorWBConstantArithmetic.h"
#include "symbolic/ZorWBSimplifierEngine.h"

namespace Arithmetic = ZorWBConstantArithmetic;
using Type = ZorWBExpressionType;
using Nodes = ZorWBSimplifierEngine::Nodes;

namespace {

bool IsBooleanOperator(Type type) {
    return type >= Type::Not && type <= Type::Implication;
}

bool HasOneChild(const ZorWBExpression* node, Type type) {
    return node->GetType() == type && node->GetNbOfChildren() == 1;
}

}  // namespace

ZorWBExpression* ZorWBSimplifierEngine::Fold(const ZorWBExpression* node, const Nodes& children) {
    Type type = node->GetType();
    if (type == Type::BlackBox || type == Type::Integrate) return nullptr;
    for (const ZorWBExpression* child : children) {
        if (!IsConstantNode(child)) return nullptr;
    }
    ZorWBExpression* evaluated = Rebuild(node, children);
    if (!evaluated) return nullptr;
    ZorWBValue value;
    const ZorWBEnvironment& environment = Environment();
    if (!Arithmetic::Checked(
            environment, [evaluated] { return evaluated->GetValue(); }, value))
        return nullptr;
    return MakeConstant(value);
}

ZorWBExpression* ZorWBSimplifierEngine::PrepareRule(const ZorWBExpression* node,
                                                    const Nodes& children) {
    const ZorWBEnvironment& environment = Environment();
    switch (node->GetType()) {
        case Type::Quotient: {
            // a / c = (1/c) * a for an exact non-zero c: the rounds then treat
            // the coefficient like any other.
            const ZorWBValue* divisor = ConstantValue(children[1]);
            ZorWBValue inverse;
            if (divisor && Arithmetic::IsRational(*divisor) && !IsConstantNode(children[0]) &&
                Arithmetic::Quotient(environment, ZorWBValue(1), *divisor, inverse)) {
                ZorWBExpression* coefficient = MakeConstant(inverse);
                return coefficient ? _factory.CreateProduct(coefficient, children[0]) : nullptr;
            }
            return nullptr;
        }
        case Type::UnaryMinus:
            if (HasOneChild(children[0], Type::UnaryMinus)) return children[0]->GetChild(0);
            return nullptr;
        default:
            return nullptr;
    }
}

namespace {

struct RoundRules {
    ZorWBSimplifierEngine& engine;
    const ZorWBEnvironment& environment;

    ZorWBExpression* Constant(const ZorWBValue& value) { return engine.MakeConstant(value); }

    ZorWBExpression* Quotient(const Nodes& c) {
        const ZorWBValue* a = ZorWBSimplifierEngine::ConstantValue(c[0]);
        const ZorWBValue* b = ZorWBSimplifierEngine::ConstantValue(c[1]);
        ZorWBValue result;
        if (a && b && Arithmetic::Quotient(environment, *a, *b, result)) return Constant(result);
        if (!b) return nullptr;
        if (Arithmetic::IsRational(*b) && Arithmetic::Quotient(environment, 1, *b, result)) {
            ZorWBExpression* inverse = Constant(result);
            return inverse ? engine.NormaliseProduct({inverse, c[0]}) : nullptr;
        }
        return Arithmetic::IsExactly(*b, 1.0) ? c[0] : nullptr;
    }

    ZorWBExpression* Power(const Nodes& c) {
        const ZorWBValue* base = ZorWBSimplifierEngine::ConstantValue(c[0]);
        const ZorWBValue* exponent = ZorWBSimplifierEngine::ConstantValue(c[1]);
        ZorWBValue result;
        if (base && exponent && Arithmetic::Power(environment, *base, *exponent, result))
            return Constant(result);
        if (base && Arithmetic::IsExactly(*base, 1.0) && engine.IsTotal(c[1])) return c[0];
        if (!exponent || !exponent->IsAKindOf(ZorWBIntegerType) ||
            !Arithmetic::IsRational(*exponent))
            return nullptr;
        long long n = exponent->GetAsInteger();
        if (n == 1) return c[0];
        if (n == 0) return engine.IsTotal(c[0]) ? Constant(ZorWBValue(1)) : nullptr;
        long long m = 0;
        if (!ZorWBSimplifierEngine::IntegerExponent(c[0], m)) return nullptr;
        // (a^m)^n = a^(mn) keeps the domain when both are non-negative, or
        // when the signs differ (both sides then need a != 0).
        long long product = m * n;
        bool keepsDomain = (m >= 0 && n >= 0) || product < 0;
        if (!keepsDomain || product == 0 || product < -ZorWBIntegerMax || product > ZorWBIntegerMax)
            return nullptr;
        return engine.GetFactory().CreatePower(c[0]->GetChild(0), static_cast<int>(product));
    }

    ZorWBExpression* Negation(const Nodes& c) {
        ZorWBExpression* a = c[0];
        const ZorWBValue* value = ZorWBSimplifierEngine::ConstantValue(a);
        ZorWBValue result;
        if (value && Arithmetic::Product(environment, *value, -1, result)) return Constant(result);
        if (HasOneChild(a, Type::UnaryMinus)) return a->GetChild(0);
        if (a->GetType() != Type::Product || !ZorWBSimplifierEngine::IsConstantNode(a->GetChild(0)))
            return nullptr;
        Nodes factors{engine.GetFactory().GetMinusOne()};
        for (int i = 0; i < a->GetNbOfChildren(); ++i)
            factors.push_back(a->GetChild(i));
        return engine.NormaliseProduct(factors);
    }

    ZorWBExpression* Absolute(const Nodes& c) {
        ZorWBExpression* a = c[0];
        if (HasOneChild(a, Type::Abs)) return a;
        if (HasOneChild(a, Type::UnaryMinus)) return engine.GetFactory().CreateAbs(a->GetChild(0));
        const ZorWBValue* leading = a->GetType() == Type::Product && a->GetNbOfChildren() == 2
                                        ? ZorWBSimplifierEngine::ConstantValue(a->GetChild(0))
                                        : nullptr;
        if (leading && leading->IsAKindOf(ZorWBIntegerType) && leading->GetAsInteger() == -1)
            return engine.GetFactory().CreateAbs(a->GetChild(1));
        return nullptr;
    }

    ZorWBExpression* SquareRoot(const Nodes& c) {
        long long exponent = 0;
        // sqrt(a^2) = |a| for every real a.
        if (ZorWBSimplifierEngine::IntegerExponent(c[0], exponent) && exponent == 2)
            return engine.GetFactory().CreateAbs(c[0]->GetChild(0));
        return nullptr;
    }

    ZorWBExpression* Trigonometric(Type type, const Nodes& c) {
        const ZorWBValue* angle = ZorWBSimplifierEngine::ConstantValue(c[0]);
        ZorWBValue result;
        if (angle && Arithmetic::TrigonometricOfPi(type, *angle, result)) return Constant(result);
        return nullptr;
    }

    ZorWBExpression* Choice(const Nodes& c) {
        const ZorWBValue* condition = ZorWBSimplifierEngine::ConstantValue(c[0]);
        if (!condition) return nullptr;
        int branch = ZorWBIfThenElseOperator::ChosenBranch(*condition);
        return branch == 1 || branch == 2 ? c[static_cast<std::size_t>(branch)] : nullptr;
    }
};

}  // namespace

ZorWBExpression* ZorWBSimplifierEngine::RoundRule(const ZorWBExpression* node,
                                                  const Nodes& children) {
    RoundRules rules{*this, Environment()};
    Type type = node->GetType();
    int n = static_cast<int>(children.size());
    ZorWBExpression* candidate = nullptr;
    switch (type) {
        case Type::Sum:
            return NormaliseSum(children);
        case Type::Product:
            return NormaliseProduct(children);
        case Type::Min:
        case Type::Max:
            return NormaliseMinMax(type, children);
        case Type::Quotient:
            candidate = n == 2 ? rules.Quotient(children) : nullptr;
            break;
        case Type::Power:
            candidate = n == 2 ? rules.Power(children) : nullptr;
            break;
        case Type::UnaryMinus:
            candidate = n == 1 ? rules.Negation(children) : nullptr;
            break;
        case Type::Abs:
            candidate = n == 1 ? rules.Absolute(children) : nullptr;
            break;
        case Type::Sqrt:
            candidate = n == 1 ? rules.SquareRoot(children) : nullptr;
            break;
        case Type::Ln:
            // ln(exp(a)) = a wherever exp(a) is defined, which is everywhere.
            if (n == 1 && HasOneChild(children[0], Type::Exp)) candidate = children[0]->GetChild(0);
            break;
        case Type::Not:
            if (n == 1 && HasOneChild(children[0], Type::Not) &&
                IsBooleanOperator(children[0]->GetChild(0)->GetType()))
                candidate = children[0]->GetChild(0);
            break;
        case Type::Sin:
        case Type::Cos:
        case Type::Tan:
            candidate = n == 1 ? rules.Trigonometric(type, children) : nullptr;
            break;
        case Type::IfThenElse:
            candidate = n == 3 ? rules.Choice(children) : nullptr;
            break;
        default:
            break;
    }
    return candidate ? candidate : Fold(node, children);
}

ZorWBExpression* ZorWBSimplifierEngine::FinalRule(const ZorWBExpression* node,
                                                  const Nodes& children) {
    Type type = node->GetType();
    if (type == Type::Product && children.size() >= 2) {
        const ZorWBValue* leading = ConstantValue(children[0]);
        if (!leading || !leading->IsAKindOf(ZorWBIntegerType) || leading->GetAsInteger() != -1)
            return nullptr;
        Nodes rest(children.begin() + 1, children.end());
        ZorWBExpression* operand = MakeNary(Type::Product, rest);
        return operand ? _factory.CreateUnaryMinus(operand) : nullptr;
    }
    if (type == Type::Power && children.size() == 2) {
        const ZorWBValue* exponent = ConstantValue(children[1]);
        if (exponent && exponent->IsAFraction()) {
            ZorWBFraction half = exponent->GetAsFraction();
            if (half.power == 0 && half.denominator == 2 * half.numerator && half.numerator != 0)
                return _factory.CreateSqrt(children[0]);
        }
    }
    return nullptr;
}
