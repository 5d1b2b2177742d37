// Differentiation: the entry points, the leaf rules, the general chain rule
// and the rules of each operator family by level. The partial derivatives
// that each operator kind contributes (DifferentiateChild) are in
// ZorWBPartialDerivatives.cpp.
//
// Differentiate opens (or joins) the calculus session of the variable, so
// that every node is differentiated once per call and the nodes below are
// done first, without recursion (see ZorWBCalculusSession). The rules then
// find their children's derivatives ready.

#include <exception>
#include <vector>

#include "expressions/ZorWBCalculusSession.h"
#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBTermBuilder.h"
#include "expressions/ZorWBVariable.h"

using Type = ZorWBExpressionType;

// ------------------------------------------------------------ entry points

ZorWBExpression* ZorWBExpression::Differentiate(ZorWBVariable* variable) try {
    if (!variable || IsLeaf()) return DifferentiateProtected(variable);
    ZorWBCalculusScope scope(*_factory, variable);
    ZorWBCalculusSession& session = scope.Session();
    ZorWBExpression* derivative = nullptr;
    if (session.FindDerivative(this, derivative)) return derivative;
    session.DifferentiateBelow(this);
    derivative = DifferentiateProtected(variable);
    session.RememberDerivative(this, derivative);
    return derivative;
} catch (const std::exception&) {
    return nullptr;
}

ZorWBExpression* ZorWBExpression::Differentiate(ZorWBExpression* child, ZorWBVariable* variable) {
    return child ? child->Differentiate(variable) : nullptr;
}

ZorWBExpression* ZorWBExpression::DifferentiateProtected(ZorWBVariable*) {
    return nullptr;
}

ZorWBExpression* ZorWBOperator::DifferentiateChild(int, ZorWBExpression*) {
    return nullptr;
}

// The terms of the children that are not constant and whose derivative is
// not zero, summed in child order.
ZorWBExpression* ZorWBOperator::DoDifferentiate(ZorWBVariable* variable) try {
    if (!variable) return this;
    ZorWBCalculusScope scope(*GetFactory(), variable);
    ZorWBCalculusSession& session = scope.Session();
    ZorWBTermBuilder build(*GetFactory());
    std::vector<ZorWBExpression*> terms;
    for (int i = 0; i < _count; ++i) {
        ZorWBExpression* child = ChildAt(i);
        if (!child || session.IsSkipped(child)) continue;
        ZorWBExpression* derivative = Differentiate(child, variable);
        if (!derivative) return nullptr;
        if (ZorWBTermBuilder::IsZero(derivative)) continue;
        ZorWBExpression* term = DifferentiateChild(i, derivative);
        if (!term) return nullptr;
        if (!ZorWBTermBuilder::IsZero(term)) terms.push_back(term);
    }
    return build.Sum(terms);
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ leaves

ZorWBExpression* ZorWBConstant::DifferentiateProtected(ZorWBVariable* variable) {
    if (!variable) return nullptr;
    ZorWBFactory& factory = *GetFactory();
    if (GetEnvironment().CheckLevel(ZorWBLevel::PredefinedZeroOne)) return factory.GetZero();
    return factory.CreateRealConstant(0.0);  // a fresh node, as older data expect
}

// A null variable gives the variable itself: callers rely on a result.
ZorWBExpression* ZorWBVariable::DifferentiateProtected(ZorWBVariable* variable) {
    if (!variable) return this;
    return GetFactory()->CreateIntegerConstant(variable == this ? 1 : 0);
}

// ------------------------------------------------------------ operator families

// Comparisons and logic are piecewise constant in their operands: their
// derivative is zero wherever it exists.
ZorWBExpression* ZorWBNotOperator::DifferentiateProtected(ZorWBVariable* variable) {
    if (!variable) return this;
    return GetFactory()->GetZero();
}

ZorWBExpression* ZorWBBooleanOperator::DifferentiateProtected(ZorWBVariable* variable) {
    if (!variable) return this;
    return GetFactory()->GetZero();
}

namespace {

// The derivative of a child as CreateDerivative gives it (Zero for a
// constant), within the running session.
ZorWBExpression* ChildDerivative(ZorWBCalculusSession& session, ZorWBExpression* child) {
    if (session.IsConstant(child)) return child->GetFactory()->GetZero();
    return child->Differentiate(session.GetVariable());
}

// The older rule of Sum: the children's derivatives that are not zero.
ZorWBExpression* OlderSumDerivative(ZorWBOperator& sum, ZorWBCalculusSession& session) {
    std::vector<ZorWBExpression*> terms;
    for (int i = 0; i < sum.GetNbOfChildren(); ++i) {
        ZorWBExpression* derivative = ChildDerivative(session, sum.GetChild(i));
        if (!derivative) return nullptr;
        if (!ZorWBTermBuilder::IsZero(derivative)) terms.push_back(derivative);
    }
    return ZorWBTermBuilder(*sum.GetFactory()).Sum(terms);
}

// The older rule of Product: for each factor whose derivative is not zero,
// the product of the factors with that one replaced by its derivative, or
// left out when the derivative is one.
ZorWBExpression* OlderProductDerivative(ZorWBOperator& product, ZorWBCalculusSession& session) {
    ZorWBFactory& factory = *product.GetFactory();
    std::vector<ZorWBExpression*> terms;
    std::vector<ZorWBExpression*> factors;
    for (int i = 0; i < product.GetNbOfChildren(); ++i) {
        ZorWBExpression* derivative = ChildDerivative(session, product.GetChild(i));
        if (!derivative) return nullptr;
        if (ZorWBTermBuilder::IsZero(derivative)) continue;
        factors.clear();
        for (int j = 0; j < product.GetNbOfChildren(); ++j) {
            if (j != i) {
                factors.push_back(product.GetChild(j));
            } else if (!ZorWBTermBuilder::IsOne(derivative)) {
                factors.push_back(derivative);
            }
        }
        ZorWBExpression* term =
            factors.size() == 1
                ? factors.front()
                : factory.CreateOperator(Type::Product, static_cast<int>(factors.size()),
                                         factors.data());
        if (!term) return nullptr;
        terms.push_back(term);
    }
    return ZorWBTermBuilder(factory).Sum(terms);
}

}  // namespace

// Sum and Product keep their older rules below the level where the general
// chain rule came; Min and Max have no derivative below the level
// ZorWBLevel::DifferentiateMinMax (whatever their number of children), and
// the chain rule from there on.
ZorWBExpression* ZorWBAlgebraicOperator::DifferentiateProtected(ZorWBVariable* variable) try {
    if (!variable) return this;
    const ZorWBEnvironment& environment = GetEnvironment();
    switch (GetType()) {
        case Type::Sum:
        case Type::Product: {
            if (environment.CheckLevel(ZorWBLevel::PredefinedZeroOne))
                return DoDifferentiate(variable);
            ZorWBCalculusScope scope(*GetFactory(), variable);
            return GetType() == Type::Sum ? OlderSumDerivative(*this, scope.Session())
                                          : OlderProductDerivative(*this, scope.Session());
        }
        default:
            if (!environment.CheckLevel(ZorWBLevel::DifferentiateMinMax)) return nullptr;
            return DoDifferentiate(variable);
    }
} catch (const std::exception&) {
    return nullptr;
}

// The other operators use the chain rule at every level (older releases
// had no other rule for them).
ZorWBExpression* ZorWBBinaryOperator::DifferentiateProtected(ZorWBVariable* variable) {
    return DoDifferentiate(variable);
}

ZorWBExpression* ZorWBUnaryOperator::DifferentiateProtected(ZorWBVariable* variable) {
    return DoDifferentiate(variable);
}

ZorWBExpression* ZorWBRound3Operator::DifferentiateProtected(ZorWBVariable* variable) {
    return DoDifferentiate(variable);
}

ZorWBExpression* ZorWBTrigonometricOperator::DifferentiateProtected(ZorWBVariable* variable) {
    return DoDifferentiate(variable);
}

ZorWBExpression* ZorWBIfThenElseOperator::DifferentiateProtected(ZorWBVariable* variable) {
    return DoDifferentiate(variable);
}

// Integrate(f, t) stands for an antiderivative F of f by t. By t itself its
// derivative is f; by another variable x it is Integrate(df/dx, t)
// (differentiation under the integral sign). A second child that is not a
// variable has no meaning here: null.
ZorWBExpression* ZorWBIntegrateOperator::DifferentiateProtected(ZorWBVariable* variable) {
    if (!variable) return this;
    if (GetNbOfChildren() != 2) return nullptr;
    if (GetChild(1) == variable) return DifferentiateChild(1, GetFactory()->GetOne());
    if (GetChild(1)->GetType() != Type::Variable) return nullptr;
    return DoDifferentiate(variable);
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
        result = CreateDerivative(result, xs[i]);
    return result;
}
