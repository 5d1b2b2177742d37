// Integration by table.
//
// Integrate opens (or joins) the calculus session of the variable x, so that
// each node is integrated once per call and the terms that a rule
// integrates in turn are done first, without recursion (see
// ZorWBCalculusSession). The table of the operators, in the order tried:
//   e free of x                    e x
//   Sum(a, b, ...)                 the sum of the antiderivatives
//   Product(c1, .., g, .., cn)     with the ci free of x: the product with g
//                                  replaced by its antiderivative
//   Quotient(a, c), c free         (antiderivative of a) / c
//   UnaryMinus(a)                  UnaryMinus(antiderivative of a)
// and, for an argument u = p x + q linear in x (p and q free of x, p the
// derivative of u, left out when it is One):
//   Power(u, n), n free, n = -1    Ln(Abs(u)) / p
//   Power(u, n), n free            Power(u, n + 1) / (p (n + 1)), with n + 1
//                                  computed for a constant n
//   Quotient(c, u), c free         c Ln(Abs(u)) / p
//   Power(c, u), c free            Power(c, u) / (p Ln(c))
//   Sqrt(u)                        (2 u Sqrt(u)) / (3 p)
//   Root(u, n), n free             (n u Root(u, n)) / ((n + 1) p)
//   Exp(u)                         Exp(u) / p
//   Sin(u), Cos(u)                 -1 Cos(u) / p, Sin(u) / p
//   Sinh(u), Cosh(u)               Cosh(u) / p, Sinh(u) / p
// The nodes of the integrand (Exp(u), Sqrt(u), ...) are reused. Where the
// table has no form, a rational function of x with exact coefficients
// goes to the rational integration algorithm (ZorWBPolynomialTools,
// ZorWBRationalIntegration); a node that does not read as one is
// remembered in the session, so the readings of its ancestors stop there
// at once. Any other form, or a sum or product one of whose parts has no
// form, gives the node Integrate(e, x) with done false.

#include <exception>
#include <limits>
#include <vector>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBCalculusSession.h"
#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBPolynomialTools.h"
#include "expressions/ZorWBTermBuilder.h"
#include "expressions/ZorWBVariable.h"
#include "values/ZorWBValueFunctions.h"

using Type = ZorWBExpressionType;

namespace {

// The operator integration table for one node.
class OperatorTable {
  public:
    OperatorTable(ZorWBOperator& node, ZorWBCalculusSession& session)
        : _node(node),
          _factory(*node.GetFactory()),
          _build(_factory),
          _session(session),
          _x(session.GetVariable()) {}

    // The antiderivative, or null when the table has no form.
    ZorWBExpression* Find() {
        if (_session.IsFree(&_node)) return _factory.CreateProduct(&_node, _x);
        switch (_node.GetType()) {
            case Type::Sum:
                return SumRule();
            case Type::Product:
                return ProductRule();
            case Type::Quotient:
                return QuotientRule();
            case Type::UnaryMinus: {
                ZorWBExpression* inner = AntiDerivative(Child(0));
                return inner ? _factory.CreateUnaryMinus(inner) : nullptr;
            }
            case Type::Power:
                return PowerRule();
            default:
                return ArgumentRule();
        }
    }

  private:
    ZorWBExpression* Child(int i) { return _node.GetChild(i); }
    bool HasChildren(int n) const { return _node.GetNbOfChildren() == n; }

    // A part's antiderivative, or null when it has none.
    ZorWBExpression* AntiDerivative(ZorWBExpression* part) {
        if (!part) return nullptr;
        bool done = false;
        ZorWBExpression* result = part->Integrate(_x, done);
        return done ? result : nullptr;
    }

    // The slope p of a linear u, or null when u is not linear in x.
    ZorWBExpression* Slope(ZorWBExpression* u) {
        if (!u || !_session.IsLinear(u)) return nullptr;
        ZorWBExpression* slope = u->Differentiate(_x);
        return slope && !ZorWBTermBuilder::IsZero(slope) ? slope : nullptr;
    }

    // n + 1, computed when n is a constant number.
    ZorWBExpression* PlusOne(ZorWBExpression* n) {
        if (n->GetType() != Type::Constant) return _factory.CreateSum(n, _factory.GetOne());
        return _factory.CreateConstant(
            ZorWBSum(_factory.GetEnvironment(), n->GetExprValue(), ZorWBValue(1)));
    }

    static bool IsMinusOne(const ZorWBExpression* n) {
        if (n->GetType() != Type::Constant) return false;
        const ZorWBValue& value = n->GetExprValue();
        bool number = value.IsAKindOf(ZorWBIntegerType) || value.IsAKindOf(ZorWBRealType) ||
                      value.IsAFraction();
        return number && value.GetAsReal() == -1.0;
    }

    ZorWBExpression* LogOf(ZorWBExpression* u, ZorWBExpression* slope) {
        return _build.Over(_factory.CreateLn(_factory.CreateAbs(u)), slope);
    }

    ZorWBExpression* SumRule() {
        std::vector<ZorWBExpression*> terms;
        for (int i = 0; i < _node.GetNbOfChildren(); ++i) {
            ZorWBExpression* term = AntiDerivative(Child(i));
            if (!term) return nullptr;
            if (!ZorWBTermBuilder::IsZero(term)) terms.push_back(term);
        }
        return _build.Sum(terms);
    }

    ZorWBExpression* ProductRule() {
        int varying = -1;
        for (int i = 0; i < _node.GetNbOfChildren(); ++i) {
            if (_session.IsFree(Child(i))) continue;
            if (varying >= 0) return nullptr;
            varying = i;
        }
        ZorWBExpression* inner = varying >= 0 ? AntiDerivative(Child(varying)) : nullptr;
        if (!inner) return nullptr;
        std::vector<ZorWBExpression*> factors;
        for (int i = 0; i < _node.GetNbOfChildren(); ++i)
            factors.push_back(i == varying ? inner : Child(i));
        return _build.Product(factors);
    }

    ZorWBExpression* QuotientRule() {
        if (!HasChildren(2)) return nullptr;
        ZorWBExpression* numerator = Child(0);
        ZorWBExpression* denominator = Child(1);
        if (_session.IsFree(denominator)) {
            ZorWBExpression* inner = AntiDerivative(numerator);
            return inner ? _factory.CreateQuotient(inner, denominator) : nullptr;
        }
        ZorWBExpression* slope = _session.IsFree(numerator) ? Slope(denominator) : nullptr;
        if (!slope) return nullptr;
        return _build.Product({numerator, LogOf(denominator, slope)});
    }

    ZorWBExpression* PowerRule() {
        if (!HasChildren(2)) return nullptr;
        ZorWBExpression* base = Child(0);
        ZorWBExpression* exponent = Child(1);
        if (_session.IsFree(base)) {
            ZorWBExpression* slope = Slope(exponent);
            if (!slope) return nullptr;
            return _factory.CreateQuotient(&_node,
                                           _build.Product({slope, _factory.CreateLn(base)}));
        }
        ZorWBExpression* slope = _session.IsFree(exponent) ? Slope(base) : nullptr;
        if (!slope) return nullptr;
        if (IsMinusOne(exponent)) return LogOf(base, slope);
        ZorWBExpression* raised = PlusOne(exponent);
        return _factory.CreateQuotient(_factory.CreatePower(base, raised),
                                       _build.Product({slope, raised}));
    }

    // The functions of one linear argument u (and Root of a free degree).
    ZorWBExpression* ArgumentRule() {
        if (_node.GetNbOfChildren() < 1) return nullptr;
        ZorWBExpression* u = Child(0);
        ZorWBExpression* slope = Slope(u);
        if (!slope) return nullptr;
        ZorWBFactory& f = _factory;
        switch (_node.GetType()) {
            case Type::Exp:
                return _build.Over(&_node, slope);
            case Type::Sin:
                return _build.Over(_build.Negative({f.CreateCos(u)}), slope);
            case Type::Cos:
                return _build.Over(f.CreateSin(u), slope);
            case Type::Sinh:
                return _build.Over(f.CreateCosh(u), slope);
            case Type::Cosh:
                return _build.Over(f.CreateSinh(u), slope);
            case Type::Sqrt:
                return f.CreateQuotient(_build.Product({f.GetTwo(), u, &_node}),
                                        _build.Product({f.GetThree(), slope}));
            case Type::Root: {
                if (!HasChildren(2) || !_session.IsFree(Child(1))) return nullptr;
                ZorWBExpression* degree = Child(1);
                return f.CreateQuotient(_build.Product({degree, u, &_node}),
                                        _build.Product({PlusOne(degree), slope}));
            }
            default:
                return nullptr;
        }
    }

    ZorWBOperator& _node;
    ZorWBFactory& _factory;
    ZorWBTermBuilder _build;
    ZorWBCalculusSession& _session;
    ZorWBVariable* _x;
};

// The antiderivative of a rational function with exact coefficients, or
// null.
ZorWBExpression* IntegrateRational(ZorWBOperator& node, ZorWBCalculusSession& session) {
    ZorWBPolynomial numerator, denominator;
    ZorWBRationalAntiDerivative antiDerivative;
    if (!ZorWBPolynomialTools::ToRationalFunction(&node, session.GetVariable(), numerator,
                                                  denominator, session.GetUnreadableNodes()) ||
        ZorWBRationalIntegration::Integrate(numerator, denominator, antiDerivative) !=
            ZorWBPolynomialStatus::Success)
        return nullptr;
    return ZorWBPolynomialTools::CreateExpression(node.GetFactory(), antiDerivative,
                                                  session.GetVariable());
}

// The table of any operator family, then the rational integration.
ZorWBExpression* IntegrateOperator(ZorWBOperator& node, ZorWBVariable* x, bool& done) try {
    done = false;
    ZorWBFactory& factory = *node.GetFactory();
    if (!x) return factory.CreateIntegrateOperator(&node, x);
    ZorWBCalculusScope scope(factory, x);
    ZorWBExpression* result = OperatorTable(node, scope.Session()).Find();
    if (!result) result = IntegrateRational(node, scope.Session());
    done = result != nullptr;
    return done ? result : factory.CreateIntegrateOperator(&node, x);
} catch (const std::exception&) {
    done = false;
    return nullptr;
}

}  // namespace

// ------------------------------------------------------------ entry points

ZorWBExpression* ZorWBExpression::IntegrateTableProtected(ZorWBVariable* variable, bool& done) {
    done = false;
    return _factory->CreateIntegrateOperator(this, variable);
}

ZorWBExpression* ZorWBExpression::IntegrateTable(ZorWBVariable* variable, bool& done) {
    return IntegrateTableProtected(variable, done);
}

ZorWBExpression* ZorWBExpression::Integrate(ZorWBVariable* variable, bool& done) try {
    done = false;
    if (!variable) return IntegrateTable(variable, done);
    ZorWBCalculusScope scope(*_factory, variable);
    ZorWBCalculusSession& session = scope.Session();
    ZorWBExpression* result = nullptr;
    if (session.FindAntiDerivative(this, result, done)) return result;
    session.IntegrateBelow(this);
    result = IntegrateTable(variable, done);
    session.RememberAntiDerivative(this, result, done);
    return result;
} catch (const std::exception&) {
    done = false;
    return nullptr;
}

// The definite integral is F(high) - F(low) for the antiderivative F found
// by the table, built as an expression: high and low (read, not changed)
// become constants put in place of the variable, and the result is
// CreateSub(F(high), F(low)), which evaluates to the number when the
// integrand depends on the variable alone and keeps the other variables
// otherwise. Without an antiderivative (done false) the result is the node
// Integrate(e, x) itself, which has no value; so it is for a rational
// integrand with a pole between bounds that read as exact numbers, whose
// integral diverges.
ZorWBExpression* ZorWBExpression::Integrate(ZorWBVariable* variable, ZorWBValue& low,
                                            ZorWBValue& high, bool& done) try {
    ZorWBExpression* antiDerivative = Integrate(variable, done);
    if (!done || !antiDerivative) return antiDerivative;
    ZorWBRational lowBound, highBound;
    if (ZorWBPolynomialTools::ToRational(low, lowBound) &&
        ZorWBPolynomialTools::ToRational(high, highBound) &&
        ZorWBPolynomialTools::HasPoleBetween(this, variable, lowBound, highBound)) {
        done = false;
        return _factory->CreateIntegrateOperator(this, variable);
    }
    ZorWBExpression* bounds[] = {_factory->CreateConstant(high), _factory->CreateConstant(low)};
    ZorWBExpression* atBounds[2] = {nullptr, nullptr};
    for (int i = 0; i < 2; ++i) {
        atBounds[i] = antiDerivative->Evaluate(1, &variable, &bounds[i]);
        if (!atBounds[i]) {
            done = false;
            return nullptr;
        }
    }
    ZorWBExpression* result = _factory->CreateSub(atBounds[0], atBounds[1]);
    done = result != nullptr;
    return result;
} catch (const std::exception&) {
    done = false;
    return nullptr;
}

// ------------------------------------------------------------ leaves

ZorWBExpression* ZorWBConstant::IntegrateTableProtected(ZorWBVariable* variable, bool& done) {
    ZorWBFactory& factory = *GetFactory();
    done = variable != nullptr;
    if (!variable) return factory.CreateIntegrateOperator(this, variable);
    if (GetExprValue().IsEqualTo(GetEnvironment(), ZorWBValue(0.0)))
        return factory.CreateIntegerConstant(0);
    return factory.CreateProduct(this, variable);
}

ZorWBExpression* ZorWBVariable::IntegrateTableProtected(ZorWBVariable* variable, bool& done) {
    done = variable != nullptr;
    if (!variable) return nullptr;
    ZorWBFactory& factory = *GetFactory();
    if (variable != this) return factory.CreateProduct(this, variable);
    return factory.CreateProduct(factory.CreateQuotient(factory.GetOne(), factory.GetTwo()),
                                 factory.CreatePower(this, factory.GetTwo()));
}

// ------------------------------------------------------------ operator families

#define ZORWB_INTEGRATE_BY_TABLE(Family)                                                    \
    ZorWBExpression* Family::IntegrateTableProtected(ZorWBVariable* variable, bool& done) { \
        return IntegrateOperator(*this, variable, done);                                    \
    }

ZORWB_INTEGRATE_BY_TABLE(ZorWBNotOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBBooleanOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBAlgebraicOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBBinaryOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBUnaryOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBRound3Operator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBTrigonometricOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBIfThenElseOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBIntegrateOperator)
ZORWB_INTEGRATE_BY_TABLE(ZorWBBlackBoxOperator)

#undef ZORWB_INTEGRATE_BY_TABLE

ZorWBIntegrateOperator::ZorWBIntegrateOperator(ZorWBFactory* factory, ZorWBExpressionType type,
                                               int tag, int n, ZorWBExpression* const* children)
    : ZorWBOperator(factory, type, tag, n, children) {
    ++factory->_nbOfIntegrateNodes;
}

ZorWBIntegrateOperator::~ZorWBIntegrateOperator() {
    --GetFactory()->_nbOfIntegrateNodes;
}

// An Integrate node stands for an antiderivative that has no closed form:
// nothing can compute it, so its value is the undefined value (NaN as a
// real).
void ZorWBIntegrateOperator::DoEval(ZorWBValue& value) const {
    value = ZorWBValue();
}

double ZorWBIntegrateOperator::DoEval() const {
    return std::numeric_limits<double>::quiet_NaN();
}

// ------------------------------------------------------------ factory

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
    done = true;
    for (int i = 0; i < n && done; ++i) {
        result = result->Integrate(xs[i], done);
        if (!result) return nullptr;
    }
    return result;
}

ZorWBExpression* ZorWBFactory::CreateAntiDerivative(ZorWBExpression* e, ZorWBVariable* x,
                                                    ZorWBValue& low, ZorWBValue& high, bool& done) {
    done = false;
    return e ? e->Integrate(x, low, high, done) : nullptr;
}
