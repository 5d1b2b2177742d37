// The term that each operator kind contributes to a derivative for its child
// i: the partial derivative with respect to that child times dChild (the
// child's derivative, never zero here). Terms reuse the operator's own nodes
// (the children, and the node itself where the derivative is written with
// it, as exp' = exp) and leave out factors One.
//
// Functions that are differentiable only almost everywhere get the
// derivative of the piece that holds the point, written with IfThenElse on
// the comparison that selects the piece; at the joints the piece chosen is
// the one the function's own comparison selects. Functions that are
// piecewise constant (Ceil, Floor, Round, Trunc, comparisons) give Zero.

#include <cmath>
#include <exception>
#include <vector>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBSlopes.h"
#include "expressions/ZorWBTermBuilder.h"
#include "values/ZorWBValueFunctions.h"

using Type = ZorWBExpressionType;

namespace {

// The condition under which child i of a Min (or Max) is the first of the
// children to reach the minimum (maximum): strictly better than the
// children before it, at least as good as those after it. Ties thus go to
// the first child, as for Min(x, x) = x, whose derivative is that of x.
ZorWBExpression* FirstExtremum(ZorWBFactory& f, const ZorWBOperator& node, int i, bool minimum) {
    ZorWBExpression* candidate = const_cast<ZorWBExpression*>(node.GetChild(i));
    ZorWBExpression* condition = nullptr;
    for (int j = 0; j < node.GetNbOfChildren(); ++j) {
        if (j == i) continue;
        ZorWBExpression* other = const_cast<ZorWBExpression*>(node.GetChild(j));
        ZorWBExpression* low = minimum ? candidate : other;
        ZorWBExpression* high = minimum ? other : candidate;
        ZorWBExpression* test = j < i ? f.CreateLess(low, high) : f.CreateLessEqual(low, high);
        condition = condition ? f.CreateAnd(condition, test) : test;
    }
    return condition;
}

}  // namespace

// ------------------------------------------------------------ piecewise constant

ZorWBExpression* ZorWBNotOperator::DifferentiateChild(int, ZorWBExpression*) {
    return GetFactory()->GetZero();
}

ZorWBExpression* ZorWBBooleanOperator::DifferentiateChild(int, ZorWBExpression*) {
    return GetFactory()->GetZero();
}

// ------------------------------------------------------------ Sum, Product, Min, Max

// Sum: dChild. Product: the product with child i replaced by dChild. Min and
// Max: IfThenElse(child i is the first extremum, dChild, 0).
ZorWBExpression* ZorWBAlgebraicOperator::DifferentiateChild(int i, ZorWBExpression* dChild) try {
    if (!dChild || !GetChild(i)) return nullptr;
    ZorWBFactory& f = *GetFactory();
    ZorWBTermBuilder build(f);
    switch (GetType()) {
        case Type::Sum:
            return dChild;
        case Type::Product: {
            std::vector<ZorWBExpression*> factors;
            for (int j = 0; j < GetNbOfChildren(); ++j)
                factors.push_back(j == i ? dChild : GetChild(j));
            return build.Product(factors);
        }
        case Type::Min:
        case Type::Max:
            if (GetNbOfChildren() < 2) return dChild;
            return build.Where(FirstExtremum(f, *this, i, GetType() == Type::Min), dChild);
        default:
            return nullptr;
    }
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ binary

// Quotient a/b     a: d/b                  b: (-1 * a/b * d) / b
// Power a^b        a: b a^(b-1) d          b: a^b ln(a) d
// Root(a, n)       a: (r d) / (n a)        n: (-1 r ln|a| d) / n^2
// Atan2(y, x)      y: x d / (x^2 + y^2)    x: -1 y d / (x^2 + y^2)
// Dim(a, b)        a: IfThenElse(a > b, d, 0)   b: IfThenElse(a > b, -d, 0)
// Sign(a, b)       a: Sign(1, a) Sign(1, b) d   b: 0 (a jump at b = 0)
// Mod(a, b)        a: d                    b: -1 floor(a/b) d
// A constant exponent n gives n a^(n-1) d with n - 1 computed (a^1 written
// a, and exponent 0 giving 0).
ZorWBExpression* ZorWBBinaryOperator::DifferentiateChild(int i, ZorWBExpression* d) try {
    if (!d || GetNbOfChildren() != 2 || i < 0 || i > 1) return nullptr;
    ZorWBFactory& f = *GetFactory();
    ZorWBTermBuilder build(f);
    ZorWBExpression* a = GetChild(0);
    ZorWBExpression* b = GetChild(1);
    switch (GetType()) {
        case Type::Quotient:
            return i == 0 ? build.Over(d, b) : build.Over(build.Negative({this, d}), b);
        case Type::Power: {
            if (i == 1) return build.Product({this, f.CreateLn(a), d});
            double exponent = 0.0;
            if (!ZorWBExactNumber(b, exponent))
                return build.Product({b, f.CreatePower(a, f.CreateSub(b, f.GetOne())), d});
            if (exponent == 0.0) return f.GetZero();
            if (exponent == 1.0) return d;
            ZorWBExpression* lowered =
                exponent == 2.0
                    ? a
                    : f.CreatePower(a, f.CreateConstant(ZorWBSub(
                                           GetEnvironment(), b->GetExprValue(), ZorWBValue(1))));
            return build.Product({b, lowered, d});
        }
        case Type::Root:
            if (i == 0) return build.Over(build.Product({this, d}), f.CreateProduct(b, a));
            return build.Over(build.Negative({this, f.CreateLn(f.CreateAbs(a)), d}),
                              build.Square(b));
        case Type::Atan2: {
            ZorWBExpression* radius = f.CreateSum(build.Square(b), build.Square(a));
            return i == 0 ? build.Over(build.Product({b, d}), radius)
                          : build.Over(build.Negative({a, d}), radius);
        }
        case Type::Dim:
            return build.Where(f.CreateGreater(a, b), i == 0 ? d : build.Negative({d}));
        case Type::Sign:
            if (i == 1) return f.GetZero();
            return build.Product({f.CreateSign(f.GetOne(), a), f.CreateSign(f.GetOne(), b), d});
        case Type::Mod:
            return i == 0 ? d : build.Negative({f.CreateFloor(f.CreateQuotient(a, b)), d});
        default:
            return nullptr;
    }
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ unary

// Sqrt   d / (2 sqrt)           Log   d / (a ln 10)     Ln   d / a
// Exp    exp d                  Abs   Sign(1, a) d (the right derivative 1
//                                     at a = 0)
// UnaryMinus  -1 d              Ceil, Floor, Round, Trunc   0
// Step(a; x0, x1, y0, y1)  IfThenElse(x0 < a And a < x1, slope d, 0) with
//        slope = (y1 - y0) / (x1 - x0) for a ramp; 0 for a sharp step
//        (x1 <= x0); Indefinite when a parameter is NaN.
ZorWBExpression* ZorWBUnaryOperator::DifferentiateChild(int i, ZorWBExpression* d) try {
    if (!d || i != 0 || GetNbOfChildren() != 1) return nullptr;
    ZorWBFactory& f = *GetFactory();
    ZorWBTermBuilder build(f);
    ZorWBExpression* a = GetChild(0);
    switch (GetType()) {
        case Type::Sqrt:
            return build.Over(d, f.CreateProduct(f.GetTwo(), this));
        case Type::Log:
            return build.Over(d, f.CreateProduct(a, f.CreateLn(f.CreateIntegerConstant(10))));
        case Type::Ln:
            return build.Over(d, a);
        case Type::Exp:
            return build.Product({this, d});
        case Type::Abs:
            return build.Product({f.CreateSign(f.GetOne(), a), d});
        case Type::UnaryMinus:
            return build.Negative({d});
        case Type::Ceil:
        case Type::Floor:
        case Type::Round:
        case Type::Trunc:
            return f.GetZero();
        case Type::Step: {
            double x0 = GetParameter(0);
            double x1 = GetParameter(1);
            double y0 = GetParameter(2);
            double y1 = GetParameter(3);
            if (std::isnan(x0) || std::isnan(x1) || std::isnan(y0) || std::isnan(y1))
                return f.GetIndefinite();
            double slope = x1 > x0 ? (y1 - y0) / (x1 - x0) : 0.0;
            if (slope == 0.0 || !std::isfinite(slope)) return f.GetZero();
            ZorWBExpression* inside = f.CreateAnd(f.CreateLess(f.CreateRealConstant(x0), a),
                                                  f.CreateLess(a, f.CreateRealConstant(x1)));
            return build.Where(inside, build.Product({f.CreateRealConstant(slope), d}));
        }
        default:
            return nullptr;
    }
} catch (const std::exception&) {
    return nullptr;
}

// Round(a, s, o) = o + s round((a - o) / s), and a when s = 0:
//   a: 0 (1 where s = 0)   s: (r - o) / s d (the number of steps)
//   o: d (0 where s = 0)
// A constant step is looked at once; any other step is tested by
// IfThenElse(s = 0, ...).
ZorWBExpression* ZorWBRound3Operator::DifferentiateChild(int i, ZorWBExpression* d) try {
    if (!d || GetNbOfChildren() != 3 || i < 0 || i > 2) return nullptr;
    ZorWBFactory& f = *GetFactory();
    ZorWBTermBuilder build(f);
    ZorWBExpression* step = GetChild(1);
    ZorWBExpression* origin = GetChild(2);
    if (i == 1) return build.Product({build.Over(f.CreateSub(this, origin), step), d});
    // The term where the step is zero (value) and where it is not (origin).
    ZorWBExpression* zeroStepTerm = i == 0 ? d : f.GetZero();
    ZorWBExpression* otherTerm = i == 0 ? f.GetZero() : d;
    double constantStep = 0.0;
    if (ZorWBExactNumber(step, constantStep)) return constantStep == 0.0 ? zeroStepTerm : otherTerm;
    return f.CreateIfThenElse(f.CreateEqual(step, f.GetZero()), zeroStepTerm, otherTerm);
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ trigonometric

// Sin   cos(a) d           Cos   -1 sin(a) d         Tan   (1 + tan^2) d
// Asin  d / sqrt(1 - a^2)  Acos  -1 d / sqrt(1 - a^2) Atan  d / (1 + a^2)
// Sinh  cosh(a) d          Cosh  sinh(a) d           Tanh  (1 - tanh^2) d
// Asinh d / sqrt(a^2 + 1)  Acosh d / sqrt(a^2 - 1)   Atanh d / (1 - a^2)
ZorWBExpression* ZorWBTrigonometricOperator::DifferentiateChild(int i, ZorWBExpression* d) try {
    if (!d || i != 0 || GetNbOfChildren() != 1) return nullptr;
    ZorWBFactory& f = *GetFactory();
    ZorWBTermBuilder build(f);
    ZorWBExpression* a = GetChild(0);
    switch (GetType()) {
        case Type::Sin:
            return build.Product({f.CreateCos(a), d});
        case Type::Cos:
            return build.Negative({f.CreateSin(a), d});
        case Type::Tan:
            return build.Product({f.CreateSum(f.GetOne(), build.Square(this)), d});
        case Type::Asin:
            return build.Over(d, f.CreateSqrt(f.CreateSub(f.GetOne(), build.Square(a))));
        case Type::Acos:
            return build.Over(build.Negative({d}),
                              f.CreateSqrt(f.CreateSub(f.GetOne(), build.Square(a))));
        case Type::Atan:
            return build.Over(d, f.CreateSum(f.GetOne(), build.Square(a)));
        case Type::Sinh:
            return build.Product({f.CreateCosh(a), d});
        case Type::Cosh:
            return build.Product({f.CreateSinh(a), d});
        case Type::Tanh:
            return build.Product({f.CreateSub(f.GetOne(), build.Square(this)), d});
        case Type::Asinh:
            return build.Over(d, f.CreateSqrt(f.CreateSum(build.Square(a), f.GetOne())));
        case Type::Acosh:
            return build.Over(d, f.CreateSqrt(f.CreateSum(build.Square(a), f.GetMinusOne())));
        case Type::Atanh:
            return build.Over(d, f.CreateSub(f.GetOne(), build.Square(a)));
        default:
            return nullptr;
    }
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ IfThenElse, Integrate

// The condition is piecewise constant (0); each branch counts where the
// condition selects it: IfThenElse(c, d, 0) and IfThenElse(c, 0, d).
ZorWBExpression* ZorWBIfThenElseOperator::DifferentiateChild(int i, ZorWBExpression* d) {
    if (!d || GetNbOfChildren() != 3 || i < 0 || i > 2) return nullptr;
    ZorWBFactory& f = *GetFactory();
    if (i == 0) return f.GetZero();
    ZorWBExpression* zero = f.GetZero();
    return f.CreateIfThenElse(GetChild(0), i == 1 ? d : zero, i == 1 ? zero : d);
}

// Integrate(f, t): the integrand's term is Integrate(d, t); the variable's
// term is f d.
ZorWBExpression* ZorWBIntegrateOperator::DifferentiateChild(int i, ZorWBExpression* d) {
    if (!d || GetNbOfChildren() != 2 || i < 0 || i > 1) return nullptr;
    ZorWBFactory& f = *GetFactory();
    if (i == 0) return f.CreateIntegrateOperator(d, GetChild(1));
    return ZorWBTermBuilder(f).Product({GetChild(0), d});
}
