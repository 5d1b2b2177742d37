// Differentiation and integration of nodes. For now every rule gives no
// result (null, or an Integrate node with done false); the rules of each node
// class are filled in here.

#include <limits>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBVariable.h"

// ------------------------------------------------------------ entry points

ZorWBExpression* ZorWBExpression::Differentiate(ZorWBVariable* variable) {
    return DifferentiateProtected(variable);
}

ZorWBExpression* ZorWBExpression::Differentiate(ZorWBExpression* child, ZorWBVariable* variable) {
    return child ? child->Differentiate(variable) : nullptr;
}

ZorWBExpression* ZorWBExpression::DifferentiateProtected(ZorWBVariable*) {
    return nullptr;
}

ZorWBExpression* ZorWBExpression::IntegrateTableProtected(ZorWBVariable* variable, bool& done) {
    done = false;
    return _factory->CreateIntegrateOperator(this, variable);
}

ZorWBExpression* ZorWBExpression::IntegrateTable(ZorWBVariable* variable, bool& done) {
    return IntegrateTableProtected(variable, done);
}

ZorWBExpression* ZorWBExpression::Integrate(ZorWBVariable* variable, bool& done) {
    return IntegrateTable(variable, done);
}

ZorWBExpression* ZorWBExpression::Integrate(ZorWBVariable* variable, ZorWBValue&, ZorWBValue&,
                                            bool& done) {
    return IntegrateTable(variable, done);
}

ZorWBExpression* ZorWBOperator::DifferentiateChild(int, ZorWBExpression*) {
    return nullptr;
}

ZorWBExpression* ZorWBOperator::DoDifferentiate(ZorWBVariable*) {
    return nullptr;
}

// ------------------------------------------------------------ leaves

ZorWBExpression* ZorWBConstant::DifferentiateProtected(ZorWBVariable* variable) {
    return ZorWBExpression::DifferentiateProtected(variable);
}

ZorWBExpression* ZorWBConstant::IntegrateTableProtected(ZorWBVariable* variable, bool& done) {
    return ZorWBExpression::IntegrateTableProtected(variable, done);
}

ZorWBExpression* ZorWBVariable::DifferentiateProtected(ZorWBVariable* variable) {
    return ZorWBExpression::DifferentiateProtected(variable);
}

ZorWBExpression* ZorWBVariable::IntegrateTableProtected(ZorWBVariable* variable, bool& done) {
    return ZorWBExpression::IntegrateTableProtected(variable, done);
}

// ------------------------------------------------------------ operator families

// The rules of an operator family that has none of its own yet.
#define ZORWB_FAMILY_WITHOUT_RULES(Family)                                                  \
    ZorWBExpression* Family::DifferentiateProtected(ZorWBVariable* variable) {              \
        return ZorWBExpression::DifferentiateProtected(variable);                           \
    }                                                                                       \
    ZorWBExpression* Family::DifferentiateChild(int i, ZorWBExpression* dChild) {           \
        return ZorWBOperator::DifferentiateChild(i, dChild);                                \
    }                                                                                       \
    ZorWBExpression* Family::IntegrateTableProtected(ZorWBVariable* variable, bool& done) { \
        return ZorWBExpression::IntegrateTableProtected(variable, done);                    \
    }

ZORWB_FAMILY_WITHOUT_RULES(ZorWBNotOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBBooleanOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBAlgebraicOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBBinaryOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBUnaryOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBRound3Operator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBTrigonometricOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBIfThenElseOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBIntegrateOperator)
ZORWB_FAMILY_WITHOUT_RULES(ZorWBBlackBoxOperator)

#undef ZORWB_FAMILY_WITHOUT_RULES

// An Integrate node stands for an antiderivative without closed form: it has
// no value.
void ZorWBIntegrateOperator::DoEval(ZorWBValue& value) const {
    value = ZorWBValue();
}

double ZorWBIntegrateOperator::DoEval() const {
    return std::numeric_limits<double>::quiet_NaN();
}

// ------------------------------------------------------------ factory

ZorWBExpression* ZorWBFactory::CreateDerivative(ZorWBExpression* e, ZorWBVariable* x) {
    if (!e || !x) return nullptr;
    if (e->IsConstant()) return GetZero();
    return e->Differentiate(x);
}

ZorWBExpression* ZorWBFactory::CreateDerivative(ZorWBExpression* e, int n, ZorWBVariable** xs) {
    if (!e || !xs) return nullptr;
    if (e->IsConstant()) return GetZero();
    ZorWBExpression* result = e;
    for (int i = 0; i < n && result; ++i)
        result = result->Differentiate(xs[i]);
    return result;
}

ZorWBExpression* ZorWBFactory::CreateAntiDerivative(ZorWBExpression* e, ZorWBVariable* x,
                                                    bool& done) {
    done = false;
    return e ? e->Integrate(x, done) : nullptr;
}

ZorWBExpression* ZorWBFactory::CreateAntiDerivative(ZorWBExpression* e, int n, ZorWBVariable** xs,
                                                    bool& done) {
    done = false;
    if (!e || !xs) return nullptr;
    ZorWBExpression* result = e;
    for (int i = 0; i < n && result; ++i)
        result = result->Integrate(xs[i], done);
    return result;
}

ZorWBExpression* ZorWBFactory::CreateAntiDerivative(ZorWBExpression* e, ZorWBVariable* x,
                                                    ZorWBValue& low, ZorWBValue& high, bool& done) {
    done = false;
    return e ? e->Integrate(x, low, high, done) : nullptr;
}
