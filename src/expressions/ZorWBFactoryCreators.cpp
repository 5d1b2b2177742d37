// The factory's creators. Every operator goes through MakeOperator, which
// checks the operands against the type's row of the node-type table and
// builds the class of the type's family.

#include <exception>
#include <new>
#include <vector>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "values/ZorWBValueFunctions.h"

using Type = ZorWBExpressionType;

// ------------------------------------------------------------ constants

ZorWBConstant* ZorWBFactory::CreateConstant(const int* tag, const ZorWBValue& value) {
    if (value.IsAKindOf(ZorWBIntegerType)) return CreateIntegerConstant(tag, value.GetAsInteger());
    ZorWBConstant* constant = new (std::nothrow) ZorWBConstant(this, TakeTag(tag), value);
    return static_cast<ZorWBConstant*>(Register(constant));
}

ZorWBConstant* ZorWBFactory::CreateIntegerConstant(const int* tag, int value) {
    switch (value) {
        case -1:
            return GetMinusOne();
        case 0:
            return GetZero();
        case 1:
            return GetOne();
        case 2:
            return GetTwo();
        case 3:
            return GetThree();
        default: {
            ZorWBConstant* constant = new (std::nothrow) ZorWBConstant(this, TakeTag(tag), value);
            return static_cast<ZorWBConstant*>(Register(constant));
        }
    }
}

ZorWBConstant* ZorWBFactory::CreateRealConstant(const int* tag, double value) {
    ZorWBConstant* constant = new (std::nothrow) ZorWBConstant(this, TakeTag(tag), value);
    return static_cast<ZorWBConstant*>(Register(constant));
}

ZorWBConstant* ZorWBFactory::CreateConstantPi(const int* tag) {
    if (_environment.CheckLevel(ZorWBLevel::SharedPiConstants)) return GetPi();
    return CreateConstant(tag, GetPredefinedValue(ZorWBConstPi));
}

ZorWBConstant* ZorWBFactory::CreateConstantDTOR(const int* tag) {
    if (_environment.CheckLevel(ZorWBLevel::SharedPiConstants)) return GetDToR();
    return CreateConstant(tag, GetPredefinedValue(ZorWBConstDToR));
}

ZorWBConstant* ZorWBFactory::CreateConstantRTOD(const int* tag) {
    if (_environment.CheckLevel(ZorWBLevel::SharedPiConstants)) return GetRToD();
    return CreateConstant(tag, GetPredefinedValue(ZorWBConstRToD));
}

// ------------------------------------------------------------ operator construction

ZorWBExpression* ZorWBFactory::MakeOperator(const int* tag, Type type, int n,
                                            ZorWBExpression* const* operands) {
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
    if (!info || n < 1 || !OperandsBelongHere(n, operands)) return nullptr;
    bool fits = info->children < 0 ? n >= 2 : n == info->children;
    if (type == Type::Round && n == 3)
        fits = _environment.CheckLevel(ZorWBLevel::RoundWithThreeChildren);
    if (!fits) return nullptr;
    return MakeFamilyOperator(tag, info->family, type, n, operands);
}

ZorWBExpression* ZorWBFactory::MakeFamilyOperator(const int* tag, ZorWBNodeFamily family, Type type,
                                                  int n, ZorWBExpression* const* operands) {
    if (family == ZorWBNodeFamily::NoNode || family == ZorWBNodeFamily::Leaf ||
        family == ZorWBNodeFamily::BlackBox)
        return nullptr;  // leaves and black boxes have creators of their own
    int nodeTag = TakeTag(tag);
    ZorWBOperator* node = nullptr;
    switch (family) {
        case ZorWBNodeFamily::Not:
            node = new (std::nothrow) ZorWBNotOperator(this, type, nodeTag, n, operands);
            break;
        case ZorWBNodeFamily::Boolean:
            node = new (std::nothrow) ZorWBBooleanOperator(this, type, nodeTag, n, operands);
            break;
        case ZorWBNodeFamily::Algebraic:
            node = new (std::nothrow) ZorWBAlgebraicOperator(this, type, nodeTag, n, operands);
            break;
        case ZorWBNodeFamily::Binary:
            node = new (std::nothrow) ZorWBBinaryOperator(this, type, nodeTag, n, operands);
            break;
        case ZorWBNodeFamily::Unary:
            if (n == 3) {
                node = new (std::nothrow) ZorWBRound3Operator(this, type, nodeTag, n, operands);
            } else {
                node = new (std::nothrow) ZorWBUnaryOperator(this, type, nodeTag, n, operands);
            }
            break;
        case ZorWBNodeFamily::Trigonometric:
            node = new (std::nothrow) ZorWBTrigonometricOperator(this, type, nodeTag, n, operands);
            break;
        case ZorWBNodeFamily::IfThenElse:
            node = new (std::nothrow) ZorWBIfThenElseOperator(this, type, nodeTag, n, operands);
            break;
        case ZorWBNodeFamily::Integrate:
            node = new (std::nothrow) ZorWBIntegrateOperator(this, type, nodeTag, n, operands);
            break;
        default:
            break;
    }
    if (node && node->GetNbOfChildren() != n) {
        delete node;  // memory ran short while attaching the children
        return nullptr;
    }
    return Register(node);
}

ZorWBExpression* ZorWBFactory::MakeInFamily(const int* tag, ZorWBNodeFamily family, Type type,
                                            int n, ZorWBExpression* const* operands) {
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
    if (!info || info->family != family) return nullptr;
    return MakeOperator(tag, type, n, operands);
}

ZorWBExpression* ZorWBFactory::MakeLike(const int* tag, const ZorWBExpression* model, int n,
                                        ZorWBExpression* const* children) {
    if (!model) return nullptr;
    switch (model->GetType()) {
        case Type::Variable:
            return model->GetFactory() == this ? const_cast<ZorWBExpression*>(model) : nullptr;
        case Type::Constant: {
            ZorWBPredefinedConst index;
            const ZorWBConstant* constant = static_cast<const ZorWBConstant*>(model);
            if (model->GetFactory() == this && IsPredefinedConstant(constant, index))
                return const_cast<ZorWBExpression*>(model);
            return CreateConstant(tag, constant->GetExprValue());
        }
        case Type::BlackBox: {
            ZorWBBlackBox* bb = static_cast<const ZorWBBlackBoxOperator*>(model)->GetBlackBox();
            return DeclareBlackBox(tag, bb, n, children, bb && bb->IsInternal());
        }
        default:
            break;
    }
    ZorWBExpression* node = MakeOperator(tag, model->GetType(), n, children);
    if (node) {
        for (int i = 0; i < model->GetNbOfParameters(); ++i)
            node->SetParameter(i, model->GetParameter(i));
    }
    return node;
}

ZorWBExpression* ZorWBFactory::MakeNegated(const int* tag, ZorWBExpression* constant) {
    ZorWBValue negated = ZorWBMul(_environment, constant->GetExprValue(), ZorWBValue(-1));
    return CreateConstant(tag, negated);
}

// ------------------------------------------------------------ n-ary

namespace {
struct Pair {
    ZorWBExpression* operands[2];
};
}  // namespace

ZorWBExpression* ZorWBFactory::CreateSum(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    Pair pair{{a, b}};
    return MakeOperator(tag, Type::Sum, 2, pair.operands);
}
ZorWBExpression* ZorWBFactory::CreateSum(const int* tag, int n, ZorWBExpression* const* operands) {
    return MakeOperator(tag, Type::Sum, n, operands);
}
ZorWBExpression* ZorWBFactory::CreateProduct(const int* tag, ZorWBExpression* a,
                                             ZorWBExpression* b) {
    Pair pair{{a, b}};
    return MakeOperator(tag, Type::Product, 2, pair.operands);
}
ZorWBExpression* ZorWBFactory::CreateProduct(const int* tag, int n,
                                             ZorWBExpression* const* operands) {
    return MakeOperator(tag, Type::Product, n, operands);
}
ZorWBExpression* ZorWBFactory::CreateMin(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    Pair pair{{a, b}};
    return MakeOperator(tag, Type::Min, 2, pair.operands);
}
ZorWBExpression* ZorWBFactory::CreateMin(const int* tag, int n, ZorWBExpression* const* operands) {
    return MakeOperator(tag, Type::Min, n, operands);
}
ZorWBExpression* ZorWBFactory::CreateMax(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    Pair pair{{a, b}};
    return MakeOperator(tag, Type::Max, 2, pair.operands);
}
ZorWBExpression* ZorWBFactory::CreateMax(const int* tag, int n, ZorWBExpression* const* operands) {
    return MakeOperator(tag, Type::Max, n, operands);
}

ZorWBExpression* ZorWBFactory::CreateDifference(const int* tag, ZorWBExpression* a,
                                                ZorWBExpression* b) {
    Pair pair{{a, b}};
    if (!OperandsBelongHere(2, pair.operands)) return nullptr;
    return CreateSum(tag, a, CreateProduct(b, GetMinusOne()));
}

ZorWBExpression* ZorWBFactory::CreateSub(const int* tag, ZorWBExpression* a,
                                         ZorWBExpression* b) try {
    if (!b) return a;
    Pair pair{{a, b}};
    if (!OperandsBelongHere(2, pair.operands)) return nullptr;
    if (b->GetType() == Type::Constant) return CreateSum(tag, a, MakeNegated(nullptr, b));
    ZorWBExpression* first = b->GetChild(0);
    bool leadingConstant = first && first->GetType() == Type::Constant;
    if (b->GetType() == Type::Quotient && leadingConstant) {
        ZorWBExpression* quotient = CreateQuotient(MakeNegated(nullptr, first), b->GetChild(1));
        return CreateSum(tag, a, quotient);
    }
    if (b->GetType() == Type::Product && b->GetNbOfChildren() >= 2 && leadingConstant) {
        std::vector<ZorWBExpression*> factors;
        factors.push_back(MakeNegated(nullptr, first));
        for (int i = 1; i < b->GetNbOfChildren(); ++i)
            factors.push_back(b->GetChild(i));
        ZorWBExpression* product = CreateProduct(static_cast<int>(factors.size()), factors.data());
        return CreateSum(tag, a, product);
    }
    return CreateSum(tag, a, CreateProduct(CreateIntegerConstant(-1), b));
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ binary

ZorWBExpression* ZorWBFactory::CreateBinaryOperator(const int* tag, Type type, ZorWBExpression* a,
                                                    ZorWBExpression* b) {
    Pair pair{{a, b}};
    return MakeInFamily(tag, ZorWBNodeFamily::Binary, type, 2, pair.operands);
}
ZorWBExpression* ZorWBFactory::CreateQuotient(const int* tag, ZorWBExpression* a,
                                              ZorWBExpression* b) {
    return CreateBinaryOperator(tag, Type::Quotient, a, b);
}
ZorWBExpression* ZorWBFactory::CreatePower(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBinaryOperator(tag, Type::Power, a, b);
}
ZorWBExpression* ZorWBFactory::CreatePower(const int* tag, ZorWBExpression* x, int n) {
    if (!OperandsBelongHere(1, &x)) return nullptr;
    return CreateBinaryOperator(tag, Type::Power, x, CreateIntegerConstant(n));
}
ZorWBExpression* ZorWBFactory::CreateRoot(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBinaryOperator(tag, Type::Root, a, b);
}
ZorWBExpression* ZorWBFactory::CreateRoot(const int* tag, ZorWBExpression* x, int n) {
    if (!OperandsBelongHere(1, &x)) return nullptr;
    return CreateBinaryOperator(tag, Type::Root, x, CreateIntegerConstant(n));
}
ZorWBExpression* ZorWBFactory::CreateMod(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBinaryOperator(tag, Type::Mod, a, b);
}
ZorWBExpression* ZorWBFactory::CreateDim(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBinaryOperator(tag, Type::Dim, a, b);
}
ZorWBExpression* ZorWBFactory::CreateSign(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBinaryOperator(tag, Type::Sign, a, b);
}
ZorWBExpression* ZorWBFactory::CreateAtan2(const int* tag, ZorWBExpression* y, ZorWBExpression* x) {
    return CreateBinaryOperator(tag, Type::Atan2, y, x);
}

// ------------------------------------------------------------ Boolean

ZorWBExpression* ZorWBFactory::CreateBooleanOperator(const int* tag, Type type,
                                                     ZorWBExpression* x) {
    return MakeInFamily(tag, ZorWBNodeFamily::Not, type, 1, &x);
}
ZorWBExpression* ZorWBFactory::CreateBooleanOperator(const int* tag, Type type, ZorWBExpression* a,
                                                     ZorWBExpression* b) {
    Pair pair{{a, b}};
    return MakeInFamily(tag, ZorWBNodeFamily::Boolean, type, 2, pair.operands);
}
ZorWBExpression* ZorWBFactory::CreateAnd(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBooleanOperator(tag, Type::And, a, b);
}
ZorWBExpression* ZorWBFactory::CreateOr(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBooleanOperator(tag, Type::Or, a, b);
}
ZorWBExpression* ZorWBFactory::CreateEqual(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    return CreateBooleanOperator(tag, Type::Equal, a, b);
}
ZorWBExpression* ZorWBFactory::CreateNotEqual(const int* tag, ZorWBExpression* a,
                                              ZorWBExpression* b) {
    return CreateBooleanOperator(tag, Type::NotEqual, a, b);
}
ZorWBExpression* ZorWBFactory::CreateLessEqual(const int* tag, ZorWBExpression* a,
                                               ZorWBExpression* b) {
    return CreateBooleanOperator(tag, Type::LessEqual, a, b);
}
ZorWBExpression* ZorWBFactory::CreateImplication(const int* tag, ZorWBExpression* a,
                                                 ZorWBExpression* b) {
    return CreateBooleanOperator(tag, Type::Implication, a, b);
}
ZorWBExpression* ZorWBFactory::CreateGreaterEqual(const int* tag, ZorWBExpression* a,
                                                  ZorWBExpression* b) {
    return CreateLessEqual(tag, b, a);
}
ZorWBExpression* ZorWBFactory::CreateLess(const int* tag, ZorWBExpression* a, ZorWBExpression* b) {
    Pair pair{{a, b}};
    if (!OperandsBelongHere(2, pair.operands)) return nullptr;
    return CreateNot(tag, CreateLessEqual(b, a));
}
ZorWBExpression* ZorWBFactory::CreateGreater(const int* tag, ZorWBExpression* a,
                                             ZorWBExpression* b) {
    Pair pair{{a, b}};
    if (!OperandsBelongHere(2, pair.operands)) return nullptr;
    return CreateNot(tag, CreateLessEqual(a, b));
}
ZorWBExpression* ZorWBFactory::CreateNot(const int* tag, ZorWBExpression* x) {
    return CreateBooleanOperator(tag, Type::Not, x);
}

// ------------------------------------------------------------ unary and trigonometric

ZorWBExpression* ZorWBFactory::CreateUnaryOperator(const int* tag, Type type, ZorWBExpression* x) {
    return MakeInFamily(tag, ZorWBNodeFamily::Unary, type, 1, &x);
}
ZorWBExpression* ZorWBFactory::CreateTrigonometricOperator(const int* tag, Type type,
                                                           ZorWBExpression* x) {
    return MakeInFamily(tag, ZorWBNodeFamily::Trigonometric, type, 1, &x);
}

#define ZORWB_UNARY_CREATOR(Name, Family, TypeName)                               \
    ZorWBExpression* ZorWBFactory::Name(const int* tag, ZorWBExpression* x) {     \
        return MakeInFamily(tag, ZorWBNodeFamily::Family, Type::TypeName, 1, &x); \
    }
ZORWB_UNARY_CREATOR(CreateSqrt, Unary, Sqrt)
ZORWB_UNARY_CREATOR(CreateLog, Unary, Log)
ZORWB_UNARY_CREATOR(CreateLn, Unary, Ln)
ZORWB_UNARY_CREATOR(CreateExp, Unary, Exp)
ZORWB_UNARY_CREATOR(CreateAbs, Unary, Abs)
ZORWB_UNARY_CREATOR(CreateCeil, Unary, Ceil)
ZORWB_UNARY_CREATOR(CreateFloor, Unary, Floor)
ZORWB_UNARY_CREATOR(CreateRound, Unary, Round)
ZORWB_UNARY_CREATOR(CreateTrunc, Unary, Trunc)
ZORWB_UNARY_CREATOR(CreateUnaryMinus, Unary, UnaryMinus)
ZORWB_UNARY_CREATOR(CreateSin, Trigonometric, Sin)
ZORWB_UNARY_CREATOR(CreateCos, Trigonometric, Cos)
ZORWB_UNARY_CREATOR(CreateTan, Trigonometric, Tan)
ZORWB_UNARY_CREATOR(CreateAsin, Trigonometric, Asin)
ZORWB_UNARY_CREATOR(CreateAcos, Trigonometric, Acos)
ZORWB_UNARY_CREATOR(CreateAtan, Trigonometric, Atan)
ZORWB_UNARY_CREATOR(CreateSinh, Trigonometric, Sinh)
ZORWB_UNARY_CREATOR(CreateCosh, Trigonometric, Cosh)
ZORWB_UNARY_CREATOR(CreateTanh, Trigonometric, Tanh)
ZORWB_UNARY_CREATOR(CreateASinh, Trigonometric, Asinh)
ZORWB_UNARY_CREATOR(CreateACosh, Trigonometric, Acosh)
ZORWB_UNARY_CREATOR(CreateATanh, Trigonometric, Atanh)
#undef ZORWB_UNARY_CREATOR

ZorWBExpression* ZorWBFactory::CreateStep(const int* tag, ZorWBExpression* x, double p1, double p2,
                                          double p3, double p4) {
    ZorWBExpression* step = MakeOperator(tag, Type::Step, 1, &x);
    if (!step) return nullptr;
    const double parameters[] = {p1, p2, p3, p4};
    for (int i = 0; i < ZorWBUnaryOperator::NbOfStepParameters; ++i)
        step->SetParameter(i, parameters[i]);
    return step;
}

// ------------------------------------------------------------ others

ZorWBExpression* ZorWBFactory::CreateIfThenElse(const int* tag, ZorWBExpression* condition,
                                                ZorWBExpression* thenPart,
                                                ZorWBExpression* elsePart) {
    ZorWBExpression* operands[] = {condition, thenPart, elsePart};
    return MakeOperator(tag, Type::IfThenElse, 3, operands);
}

ZorWBExpression* ZorWBFactory::CreateIntegrateOperator(const int* tag, ZorWBExpression* integrand,
                                                       ZorWBExpression* variable) {
    Pair pair{{integrand, variable}};
    return MakeOperator(tag, Type::Integrate, 2, pair.operands);
}

ZorWBExpression* ZorWBFactory::CreateAlgebraicOperator(const int* tag, Type type, int n,
                                                       ZorWBExpression* const* operands) {
    return MakeInFamily(tag, ZorWBNodeFamily::Algebraic, type, n, operands);
}

// ------------------------------------------------------------ general dispatch

namespace {
// A Step's parameter operand: a constant of integer or real kind.
bool ReadStepParameter(const ZorWBExpression* operand, double& parameter) {
    if (!operand || operand->GetType() != Type::Constant) return false;
    const ZorWBValue& value = operand->GetExprValue();
    if (!value.IsAKindOf(ZorWBIntegerType) && !value.IsAKindOf(ZorWBRealType)) return false;
    parameter = value.GetAsReal();
    return true;
}
}  // namespace

ZorWBExpression* ZorWBFactory::CreateOperator(const int* tag, Type type, int n,
                                              ZorWBExpression* const* operands) {
    if (!operands) return nullptr;
    if (type == Type::Step) {
        double parameters[ZorWBUnaryOperator::NbOfStepParameters];
        if (n != 5) return nullptr;
        for (int i = 0; i < ZorWBUnaryOperator::NbOfStepParameters; ++i) {
            if (!ReadStepParameter(operands[i + 1], parameters[i])) return nullptr;
        }
        return CreateStep(tag, operands[0], parameters[0], parameters[1], parameters[2],
                          parameters[3]);
    }
    return MakeOperator(tag, type, n, operands);
}

ZorWBExpression* ZorWBFactory::CreateOperator(const int* tag, Type type, ZorWBExpression* a) {
    return CreateOperator(tag, type, 1, &a);
}

ZorWBExpression* ZorWBFactory::CreateOperator(const int* tag, Type type, ZorWBExpression* a,
                                              ZorWBExpression* b) {
    Pair pair{{a, b}};
    return CreateOperator(tag, type, 2, pair.operands);
}

ZorWBExpression* ZorWBFactory::CreateOperator(const int* tag, Type type, ZorWBExpression* a,
                                              ZorWBExpression* b, ZorWBExpression* c) {
    ZorWBExpression* operands[] = {a, b, c};
    return CreateOperator(tag, type, 3, operands);
}

ZorWBExpression* ZorWBFactory::CreateOperator(const int* tag, Type type,
                                              const ZorQelListPZorWBExpression& operands) {
    return CreateOperator(tag, type, operands.GetSize(), operands.GetData());
}

ZorWBExpression* ZorWBFactory::CreateOperator(const int* tag, const ZorWBExpression* node) try {
    if (!node || node->GetFactory() != this) return nullptr;
    std::vector<ZorWBExpression*> children;
    for (int i = 0; i < node->GetNbOfChildren(); ++i)
        children.push_back(const_cast<ZorWBExpression*>(node->GetChild(i)));
    return MakeLike(tag, node, static_cast<int>(children.size()), children.data());
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ polynomial terms

ZorWBExpression* ZorWBFactory::CreateLinearTerm(double a, double b, ZorWBVariable* x) {
    const double coefficients[] = {a, b};
    return CreatePolynomialTerm(1, coefficients, x);
}

ZorWBExpression* ZorWBFactory::CreateQuadraticTerm(double a, double b, double c, ZorWBVariable* x) {
    const double coefficients[] = {a, b, c};
    return CreatePolynomialTerm(2, coefficients, x);
}

ZorWBExpression* ZorWBFactory::CreatePolynomialTerm(int degree, const double* coefficients,
                                                    ZorWBVariable* x) try {
    ZorWBExpression* variable = x;
    if (degree < 0 || !coefficients || !OperandsBelongHere(1, &variable)) return nullptr;
    if (degree == 0) return CreateRealConstant(coefficients[0]);
    std::vector<ZorWBExpression*> terms;
    for (int k = 0; k < degree; ++k) {
        int power = degree - k;
        ZorWBExpression* factor = power == 1 ? variable : CreatePower(variable, power);
        terms.push_back(CreateProduct(CreateRealConstant(coefficients[k]), factor));
    }
    terms.push_back(CreateRealConstant(coefficients[degree]));
    return CreateSum(static_cast<int>(terms.size()), terms.data());
} catch (const std::exception&) {
    return nullptr;
}
