// The forward and backward rules of every node type on values: one table,
// indexed by type. Each backward rule states the set it narrows a child to,
// as in ZorWBProjections.h, here with the value functions: "Z" is the
// node's set, "X" the child's domain, "Y" the other child's.

#include "solver/ZorWBValueProjections.h"

#include <cmath>

#include "expressions/ZorWBExpression.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBValueFunctions.h"

namespace ZorWBValueProjection {

namespace {

using Type = ZorWBExpressionType;
using E = const ZorWBEnvironment&;
using V = const ZorWBValue&;
using Children = std::vector<const ZorWBValue*>;
using Targets = std::vector<ZorWBValue*>;
using ForwardRule = ZorWBValue (*)(E, const ZorWBExpression&, const Children&);
using BackwardRule = void (*)(E, const ZorWBExpression&, V, const Targets&);

// The relative hair by which a narrowed real set is widened.
constexpr double Hair = 1e-12;

ZorWBValue WholeLine() {
    return ZorWBValue(ZorWBReal_Any);
}

// Runs a value function on a clean error word: answers whether it reported
// nothing, and puts the word back as it was.
template <class F>
bool Guarded(E environment, ZorWBValue& out, F function) {
    const unsigned int before = environment.GetError();
    environment.ClearError();
    out = function();
    const bool clean = environment.GetError() == ZorWBError::None;
    environment.ClearError();
    environment.SetError(before);
    return clean;
}

// Narrows a child to the candidate that a rule computes, unless computing it
// reported an error.
template <class F>
void NarrowBy(E environment, ZorWBValue& child, F candidate) {
    ZorWBValue set;
    if (Guarded(environment, set, candidate)) Narrow(environment, child, set);
}

// ------------------------------------------------------------ forward rules

template <ZorWBValue (*F)(E, V)>
ZorWBValue UnaryForward(E e, const ZorWBExpression&, const Children& c) {
    return F(e, *c[0]);
}
template <ZorWBValue (*F)(E, V, V)>
ZorWBValue BinaryForward(E e, const ZorWBExpression&, const Children& c) {
    return F(e, *c[0], *c[1]);
}
// The left fold of Sum, Product, Min and Max.
template <ZorWBValue (*F)(E, V, V)>
ZorWBValue FoldForward(E e, const ZorWBExpression&, const Children& c) {
    ZorWBValue value = *c[0];
    for (std::size_t i = 1; i < c.size(); ++i)
        value = F(e, value, *c[i]);
    return value;
}
template <ZorWBValue (*F)(V, V)>
ZorWBValue LogicalForward(E, const ZorWBExpression&, const Children& c) {
    return F(*c[0], *c[1]);
}
ZorWBValue NotForward(E, const ZorWBExpression&, const Children& c) {
    return ZorWBNot(*c[0]);
}
ZorWBValue RootForward(E e, const ZorWBExpression&, const Children& c) {
    return ZorWBRoot(e, *c[0], *c[1]);
}
ZorWBValue Atan2Forward(E e, const ZorWBExpression&, const Children& c) {
    return ZorWBAtan2(e, *c[0], *c[1]);
}
template <ZorWBValue (*F)(E, V, const ZorWBValue*)>
ZorWBValue PrincipalForward(E e, const ZorWBExpression&, const Children& c) {
    return F(e, *c[0], nullptr);
}
ZorWBValue RoundForward(E e, const ZorWBExpression&, const Children& c) {
    return c.size() == 3 ? ZorWBRound(e, *c[0], *c[1], *c[2]) : ZorWBRound(e, *c[0]);
}
void StepParameters(const ZorWBExpression& node, double parameters[4]) {
    for (int i = 0; i < 4; ++i)
        parameters[i] = node.GetParameter(i);
}
ZorWBValue StepForward(E e, const ZorWBExpression& node, const Children& c) {
    double parameters[4];
    StepParameters(node, parameters);
    return ZorWBStep(e, *c[0], parameters);
}
// The chosen branch, or both hulled while the condition is unknown.
ZorWBValue IfThenElseForward(E e, const ZorWBExpression&, const Children& c) {
    switch (c[0]->IsConvertible(ZorWBBooleanType) ? c[0]->GetAsBoolean() : ZorWBEmpty) {
        case ZorWBTrue:
            return *c[1];
        case ZorWBFalse:
            return *c[2];
        case ZorWBUnknown: {
            ZorWBValue both = *c[1];
            ZorWBUnite(e, both, *c[2]);
            return both;
        }
        default:
            return ZorWBValue(ZorWBReal_Nil);
    }
}
// Black boxes and integrals: anything.
ZorWBValue AnyForward(E, const ZorWBExpression&, const Children&) {
    return WholeLine();
}

// ------------------------------------------------------------ backward rules

// Sum: x_i ∈ X_i ∩ (Z − Σ_{j≠i} X_j).  Product: x_i ∈ X_i ∩ (Z / Π_{j≠i} X_j).
// Min, Max: the inverse functions against the fold of the others.
template <ZorWBValue (*Fold)(E, V, V), ZorWBValue (*Inverse)(E, V, V, V)>
void FoldBackward(E e, const ZorWBExpression&, V z, const Targets& c) {
    for (std::size_t i = 0; i < c.size(); ++i) {
        ZorWBValue others;
        for (std::size_t j = 0; j < c.size(); ++j) {
            if (j == i) continue;
            others = others.GetType() == ZorWBUndefinedType ? *c[j] : Fold(e, others, *c[j]);
        }
        NarrowBy(e, *c[i], [&] { return Inverse(e, z, *c[i], others); });
    }
}
ZorWBValue SumInverse(E e, V z, V, V others) {
    return ZorWBSub(e, z, others);
}
ZorWBValue ProductInverse(E e, V z, V, V others) {
    return ZorWBDiv(e, z, others);
}

// Two-operand rules given as inverse functions onto each operand: the
// first narrows x from (Z, X, Y), the second y from (Z, Y, X).
template <ZorWBValue (*First)(E, V, V, V), ZorWBValue (*Second)(E, V, V, V)>
void PairBackward(E e, const ZorWBExpression&, V z, const Targets& c) {
    NarrowBy(e, *c[0], [&] { return First(e, z, *c[0], *c[1]); });
    NarrowBy(e, *c[1], [&] { return Second(e, z, *c[1], *c[0]); });
}
// z = x / y:  x ∈ X ∩ Z·Y,  y ∈ Y ∩ X / Z.
ZorWBValue QuotientInverse1(E e, V z, V, V y) {
    return ZorWBMul(e, z, y);
}
ZorWBValue QuotientInverse2(E e, V z, V, V x) {
    return ZorWBDiv(e, x, z);
}
// A symmetric two-operand rule: the same inverse onto each operand.
template <ZorWBValue (*Inverse)(E, V, V, V)>
void SymmetricBackward(E e, const ZorWBExpression& node, V z, const Targets& c) {
    PairBackward<Inverse, Inverse>(e, node, z, c);
}

// One-operand rules: x ∈ X ∩ G(Z) for the inverse G of the function.
template <ZorWBValue (*Inverse)(E, V)>
void UnaryBackward(E e, const ZorWBExpression&, V z, const Targets& c) {
    NarrowBy(e, *c[0], [&] { return Inverse(e, z); });
}
// One-operand rules given as inverse functions of (Z, X).
template <ZorWBValue (*Inverse)(E, V, V)>
void InverseBackward(E e, const ZorWBExpression&, V z, const Targets& c) {
    NarrowBy(e, *c[0], [&] { return Inverse(e, z, *c[0]); });
}
// Functions restricted to non-negative results (sqrt, even roots): Z ∩ [0, +∞).
ZorWBValue NonNegative(E e, V z) {
    ZorWBValue part = z;
    ZorWBIntersect(e, part, ZorWBValue(ZorWBRealInterval{0.0, ZorWBRealLimit}));
    return part;
}
// z = √x:  x ∈ X ∩ (Z⁺)².
ZorWBValue SqrtInverse(E e, V z) {
    return ZorWBPow(e, NonNegative(e, z), ZorWBValue(2));
}
// z = ⁿ√x for a single integer degree n:  x ∈ X ∩ Zⁿ (Z⁺ for even n).
void RootBackward(E e, const ZorWBExpression&, V z, const Targets& c) {
    ZorWBIntegerInterval degree = c[1]->GetAsIntegerInterval();
    if (!c[1]->IsExact(e) || degree.low != degree.high || degree.low < 1) return;
    ZorWBValue base = degree.low % 2 == 0 ? NonNegative(e, z) : z;
    NarrowBy(e, *c[0], [&] { return ZorWBPow(e, base, ZorWBValue(degree.low)); });
}
// z = log₁₀ x:  x ∈ X ∩ 10^Z.
ZorWBValue LogInverse(E e, V z) {
    return ZorWBPow(e, ZorWBValue(10), z);
}
// z = cosh x:  |x| ∈ acosh Z.
ZorWBValue CoshInverse(E e, V z, V x) {
    return ZorWBInverseAbs(e, ZorWBAcosh(e, z), x);
}
// z = sin x (cos, tan alike):  x ∈ X ∩ asin(Z) over every branch that meets
// X, when X lies within the environment's trigonometric limits (the inverse
// functions know no branch beyond them).
template <ZorWBValue (*Inverse)(E, V, const ZorWBValue*)>
void PeriodicBackward(E e, const ZorWBExpression&, V z, const Targets& c) {
    double lower = 0.0, upper = 0.0;
    e.GetTrigonometricLimits(lower, upper);
    ZorWBRealInterval domain = c[0]->GetAsRealInterval();
    if (domain.low < lower || domain.high > upper) return;
    NarrowBy(e, *c[0], [&] { return Inverse(e, z, c[0]); });
}
ZorWBValue NotInverse(E, V z) {
    return ZorWBNot(z);
}
void StepBackward(E e, const ZorWBExpression& node, V z, const Targets& c) {
    double parameters[4];
    StepParameters(node, parameters);
    NarrowBy(e, *c[0], [&] { return ZorWBInverseStep(e, z, *c[0], parameters); });
}
// IfThenElse(c, t, e): a known condition narrows its branch to Z; an unknown
// one whose branch cannot meet Z is decided for the other branch.
void IfThenElseBackward(E e, const ZorWBExpression&, V z, const Targets& c) {
    ZorWBBoolean state = c[0]->IsConvertible(ZorWBBooleanType) ? c[0]->GetAsBoolean() : ZorWBEmpty;
    auto meets = [&](const ZorWBValue& branch) {
        ZorWBValue part = branch;
        return ZorWBIntersect(e, part, z);
    };
    if (state == ZorWBUnknown) {
        bool thenMeets = meets(*c[1]), elseMeets = meets(*c[2]);
        if (thenMeets && elseMeets) return;
        state = thenMeets ? ZorWBTrue : elseMeets ? ZorWBFalse : ZorWBEmpty;
        if (state == ZorWBEmpty) {
            *c[0] = ZorWBValue(ZorWBEmpty);
            return;
        }
        ZorWBIntersect(e, *c[0], ZorWBValue(state));
    }
    if (state == ZorWBTrue) Narrow(e, *c[1], z);
    if (state == ZorWBFalse) Narrow(e, *c[2], z);
}
void NoBackward(E, const ZorWBExpression&, V, const Targets&) {}

struct Row {
    Type type;
    ForwardRule forward;
    BackwardRule backward;
};

// clang-format off
constexpr Row Rows[] = {
    {Type::Not,         NotForward,                         UnaryBackward<NotInverse>},
    {Type::Or,          LogicalForward<ZorWBOr>,            SymmetricBackward<ZorWBInverseOr>},
    {Type::And,         LogicalForward<ZorWBAnd>,           SymmetricBackward<ZorWBInverseAnd>},
    {Type::Equal,       BinaryForward<ZorWBEqual>,          SymmetricBackward<ZorWBInverseEqual>},
    {Type::NotEqual,    BinaryForward<ZorWBNotEqual>,       SymmetricBackward<ZorWBInverseNotEqual>},
    {Type::LessEqual,   BinaryForward<ZorWBLessEqual>,      PairBackward<ZorWBInverseLessEqual1, ZorWBInverseLessEqual2>},
    {Type::Implication, LogicalForward<ZorWBImplication>,   PairBackward<ZorWBInverseImplication1, ZorWBInverseImplication2>},
    {Type::Sum,         FoldForward<ZorWBSum>,              FoldBackward<ZorWBSum, SumInverse>},
    {Type::Product,     FoldForward<ZorWBMul>,              FoldBackward<ZorWBMul, ProductInverse>},
    {Type::Quotient,    BinaryForward<ZorWBDiv>,            PairBackward<QuotientInverse1, QuotientInverse2>},
    {Type::Power,       BinaryForward<ZorWBPow>,            PairBackward<ZorWBInversePow1, ZorWBInversePow2>},
    {Type::Root,        RootForward,                        RootBackward},
    {Type::Sqrt,        UnaryForward<ZorWBSqrt>,            UnaryBackward<SqrtInverse>},
    {Type::Log,         UnaryForward<ZorWBLog>,             UnaryBackward<LogInverse>},
    {Type::Ln,          UnaryForward<ZorWBLn>,              UnaryBackward<ZorWBExp>},
    {Type::Exp,         UnaryForward<ZorWBExp>,             UnaryBackward<ZorWBLn>},
    {Type::Sin,         UnaryForward<ZorWBSin>,             PeriodicBackward<ZorWBAsin>},
    {Type::Cos,         UnaryForward<ZorWBCos>,             PeriodicBackward<ZorWBAcos>},
    {Type::Tan,         UnaryForward<ZorWBTan>,             PeriodicBackward<ZorWBAtan>},
    {Type::Asin,        PrincipalForward<ZorWBAsin>,        UnaryBackward<ZorWBSin>},
    {Type::Acos,        PrincipalForward<ZorWBAcos>,        UnaryBackward<ZorWBCos>},
    {Type::Atan,        PrincipalForward<ZorWBAtan>,        UnaryBackward<ZorWBTan>},
    {Type::Atan2,       Atan2Forward,                       PairBackward<ZorWBInverseAtan21, ZorWBInverseAtan22>},
    {Type::Dim,         BinaryForward<ZorWBDim>,            PairBackward<ZorWBInverseDim1, ZorWBInverseDim2>},
    {Type::Sign,        BinaryForward<ZorWBSign>,           PairBackward<ZorWBInverseSign1, ZorWBInverseSign2>},
    {Type::Step,        StepForward,                        StepBackward},
    {Type::Sinh,        UnaryForward<ZorWBSinh>,            UnaryBackward<ZorWBAsinh>},
    {Type::Cosh,        UnaryForward<ZorWBCosh>,            InverseBackward<CoshInverse>},
    {Type::Tanh,        UnaryForward<ZorWBTanh>,            UnaryBackward<ZorWBAtanh>},
    {Type::Asinh,       UnaryForward<ZorWBAsinh>,           UnaryBackward<ZorWBSinh>},
    {Type::Acosh,       UnaryForward<ZorWBAcosh>,           UnaryBackward<ZorWBCosh>},
    {Type::Atanh,       UnaryForward<ZorWBAtanh>,           UnaryBackward<ZorWBTanh>},
    {Type::Abs,         UnaryForward<ZorWBAbs>,             InverseBackward<ZorWBInverseAbs>},
    {Type::Ceil,        UnaryForward<ZorWBCeil>,            InverseBackward<ZorWBInverseCeil>},
    {Type::Floor,       UnaryForward<ZorWBFloor>,           InverseBackward<ZorWBInverseFloor>},
    {Type::Round,       RoundForward,                       InverseBackward<ZorWBInverseRound>},
    {Type::Trunc,       UnaryForward<ZorWBTrunc>,           InverseBackward<ZorWBInverseTrunc>},
    {Type::Mod,         BinaryForward<ZorWBMod>,            PairBackward<ZorWBInverseMod1, ZorWBInverseMod2>},
    {Type::Min,         FoldForward<ZorWBMin>,              FoldBackward<ZorWBMin, ZorWBInverseMin>},
    {Type::Max,         FoldForward<ZorWBMax>,              FoldBackward<ZorWBMax, ZorWBInverseMax>},
    {Type::IfThenElse,  IfThenElseForward,                  IfThenElseBackward},
    {Type::BlackBox,    AnyForward,                         NoBackward},
    {Type::UnaryMinus,  UnaryForward<ZorWBUnaryMinus>,      UnaryBackward<ZorWBUnaryMinus>},
    {Type::Integrate,   AnyForward,                         NoBackward},
};
// clang-format on

struct RuleTable {
    ForwardRule forward[ZorWBNbOfExpressionTypes] = {};
    BackwardRule backward[ZorWBNbOfExpressionTypes] = {};
    constexpr RuleTable() {
        for (const Row& row : Rows) {
            forward[static_cast<int>(row.type)] = row.forward;
            backward[static_cast<int>(row.type)] = row.backward;
        }
    }
};
constexpr RuleTable Table;

int TypeIndex(const ZorWBExpression& node) {
    int type = static_cast<int>(node.GetType());
    return type >= 0 && type < ZorWBNbOfExpressionTypes ? type : 0;
}

// A rule may read only as many children as the node has.
bool HasArity(const ZorWBExpression& node, std::size_t count) {
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(node.GetType());
    if (!info || count == 0) return false;
    if (node.GetType() == Type::Round) return count == 1 || count == 3;
    return info->children < 0 ? count >= 1 : count == static_cast<std::size_t>(info->children);
}

}  // namespace

ZorWBValue Forward(const ZorWBEnvironment& environment, const ZorWBExpression& node,
                   const std::vector<const ZorWBValue*>& children) {
    ForwardRule rule = Table.forward[TypeIndex(node)];
    if (!rule || !HasArity(node, children.size())) return WholeLine();
    ZorWBValue value;
    if (Guarded(environment, value, [&] { return rule(environment, node, children); }))
        return value;
    // A reported error: an empty value means the node is defined nowhere on
    // its children's sets; anything else (incompatible kinds, an overflow)
    // tells nothing.
    if (IsEmptyValue(environment, value)) return value;
    return value.GetType() == ZorWBBooleanType ? ZorWBValue(ZorWBUnknown) : WholeLine();
}

void Backward(const ZorWBEnvironment& environment, const ZorWBExpression& node,
              const ZorWBValue& result, const std::vector<ZorWBValue*>& children) {
    BackwardRule rule = Table.backward[TypeIndex(node)];
    if (rule && HasArity(node, children.size())) rule(environment, node, result, children);
}

void Narrow(const ZorWBEnvironment& environment, ZorWBValue& value, const ZorWBValue& candidate) {
    ZorWBValue set = candidate;
    switch (candidate.GetType()) {
        case ZorWBUndefinedType:
            return;
        case ZorWBRealType:
        case ZorWBRealIntervalType: {
            ZorWBRealInterval hull = candidate.GetAsRealInterval();
            if (std::isnan(hull.low) || std::isnan(hull.high)) return;
            if (hull.low <= hull.high) {
                hull.low -= std::fabs(hull.low) * Hair + 1e-300;
                hull.high += std::fabs(hull.high) * Hair + 1e-300;
            }
            set = ZorWBValue(hull);
            break;
        }
        default:
            break;
    }
    ZorWBIntersect(environment, value, set);
}

bool IsEmptyValue(const ZorWBEnvironment& environment, const ZorWBValue& value) {
    if (value.GetType() == ZorWBBooleanType) return value.GetAsBoolean() == ZorWBEmpty;
    if (value.GetType() == ZorWBUndefinedType) return false;
    return ZorWBIsEmpty(environment, value);
}

}  // namespace ZorWBValueProjection
