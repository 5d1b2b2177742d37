#ifndef TESTS_RANDOM_EXPRESSION_H
#define TESTS_RANDOM_EXPRESSION_H

#include <cmath>
#include <random>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "values/ZorWBFraction.h"

// Random factory expressions over the variables x, y and z.
//
// Exact() builds only shapes that the equation language writes exactly:
// binary sums and products, CreateSub and CreateDifference results,
// quotients, powers, every function, min and max of any arity, step, the
// three-operand round, int, and if-then-else over comparisons, their
// negations and left-grouped "and" / "or"; numbers are integers, reals of
// every magnitude and Pi.
//
// Approximate() adds the shapes that read back different but equal in
// value: sums and products of three or four operands, unary minus, roots,
// fractions of Pi, Not(Equal), implications and "and" / "or" with a compound
// right operand. Its values stay finite for variables in [-1, 1]: it uses no
// function with a restricted domain.
class RandomExpression {
  public:
    RandomExpression(ZorWBFactory& factory, unsigned int seed) : _factory(factory), _random(seed) {
        for (const char* name : {"x", "y", "z"}) {
            ZorWBVariable* variable = factory.CreateVariable();
            variable->SetName(name);
            variables.push_back(variable);
        }
    }

    ZorWBExpression* Exact(int depth) {
        ZorWBFactory& f = _factory;
        if (depth <= 0 || Index(6) == 0) return Leaf();
        ZorWBExpression* a = Exact(depth - 1);
        ZorWBExpression* b = Exact(depth - 1);
        switch (Index(16)) {
            case 0:
                return f.CreateSum(a, b);
            case 1:
                return f.CreateSub(a, b);
            case 2:
                return f.CreateDifference(a, b);
            case 3:
                return f.CreateProduct(a, b);
            case 4:
                return f.CreateProduct(f.CreateIntegerConstant(-1), a);
            case 5:
                return f.CreateQuotient(a, b);
            case 6:
                return f.CreatePower(a, b);
            case 7:
                return f.CreateOperator(UnaryTypes[Index(sizeof UnaryTypes / sizeof UnaryTypes[0])],
                                        a);
            case 8:
                return f.CreateOperator(
                    BinaryTypes[Index(sizeof BinaryTypes / sizeof BinaryTypes[0])], a, b);
            case 9:
                return Many(Index(2) ? ZorWBExpressionType::Min : ZorWBExpressionType::Max, a, b,
                            false);
            case 10:
                return f.CreateIfThenElse(Condition(depth - 1, false), a, b);
            case 11:
                return f.CreateStep(a, Real(), Real(), Real(), Real());
            case 12:
                return f.CreateOperator(ZorWBExpressionType::Round, a, b, Exact(depth - 1));
            case 13:
                return f.CreateIntegrateOperator(a, AnyVariable());
            case 14:
                return f.CreateSub(a, f.CreateProduct(Number(), b));
            default:
                return f.CreateSub(a, f.CreateQuotient(Number(), b));
        }
    }

    ZorWBExpression* Approximate(int depth) {
        ZorWBFactory& f = _factory;
        if (depth <= 0 || Index(6) == 0) return Index(4) ? AnyVariable() : SafeNumber();
        ZorWBExpression* a = Approximate(depth - 1);
        ZorWBExpression* b = Approximate(depth - 1);
        switch (Index(10)) {
            case 0:
                return Many(ZorWBExpressionType::Sum, a, b, true);
            case 1:
                return Many(ZorWBExpressionType::Product, a, b, true);
            case 2:
                return f.CreateUnaryMinus(a);
            case 3:  // a root of a positive number
                return f.CreateRoot(f.CreateSum(f.CreateProduct(a, a), f.CreateIntegerConstant(1)),
                                    f.CreateIntegerConstant(2 + Index(3)));
            case 4:
                return f.CreateProduct(a, f.CreateConstant(ZorWBValue(ZorWBCreateFraction(
                                              Index(7) - 3, 1 + Index(6), Index(3) - 1, 0))));
            case 5:
                return f.CreateIfThenElse(Condition(depth - 1, true), a, b);
            case 6:
                return f.CreateSub(a, b);
            case 7:
                return f.CreateOperator(SafeTypes[Index(sizeof SafeTypes / sizeof SafeTypes[0])],
                                        a);
            case 8:
                return Many(Index(2) ? ZorWBExpressionType::Min : ZorWBExpressionType::Max, a, b,
                            true);
            default:
                return f.CreateSum(a, b);
        }
    }

    std::vector<ZorWBVariable*> variables;

  private:
    static constexpr ZorWBExpressionType UnaryTypes[] = {
        ZorWBExpressionType::Sqrt,  ZorWBExpressionType::Log,   ZorWBExpressionType::Ln,
        ZorWBExpressionType::Exp,   ZorWBExpressionType::Sin,   ZorWBExpressionType::Cos,
        ZorWBExpressionType::Tan,   ZorWBExpressionType::Asin,  ZorWBExpressionType::Acos,
        ZorWBExpressionType::Atan,  ZorWBExpressionType::Sinh,  ZorWBExpressionType::Cosh,
        ZorWBExpressionType::Tanh,  ZorWBExpressionType::Asinh, ZorWBExpressionType::Acosh,
        ZorWBExpressionType::Atanh, ZorWBExpressionType::Abs,   ZorWBExpressionType::Ceil,
        ZorWBExpressionType::Floor, ZorWBExpressionType::Round, ZorWBExpressionType::Trunc};
    static constexpr ZorWBExpressionType BinaryTypes[] = {
        ZorWBExpressionType::Atan2, ZorWBExpressionType::Dim, ZorWBExpressionType::Sign,
        ZorWBExpressionType::Mod};
    static constexpr ZorWBExpressionType SafeTypes[] = {
        ZorWBExpressionType::Sin, ZorWBExpressionType::Cos,  ZorWBExpressionType::Atan,
        ZorWBExpressionType::Abs, ZorWBExpressionType::Tanh, ZorWBExpressionType::Floor};

    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }

    ZorWBVariable* AnyVariable() { return variables[static_cast<std::size_t>(Index(3))]; }

    // Reals of every magnitude and sign, integral ones included.
    double Real() {
        double mantissa = std::uniform_real_distribution<double>(-10.0, 10.0)(_random);
        switch (Index(4)) {
            case 0:
                return std::round(mantissa);
            case 1:
                return mantissa;
            default:
                return mantissa * std::pow(10.0, Index(61) - 30);
        }
    }

    ZorWBExpression* Number() {
        switch (Index(3)) {
            case 0:
                return _factory.CreateIntegerConstant(Index(21) - 10);
            case 1:
                return _factory.CreateRealConstant(Real());
            default:
                return _factory.GetPi();
        }
    }

    ZorWBExpression* SafeNumber() {
        return Index(2) ? _factory.CreateIntegerConstant(Index(7) - 3)
                        : _factory.CreateRealConstant(
                              std::uniform_real_distribution<double>(-2.0, 2.0)(_random));
    }

    ZorWBExpression* Leaf() {
        return Index(2) ? static_cast<ZorWBExpression*>(AnyVariable()) : Number();
    }

    // An n-ary node of two to four operands, the ones beyond a and b leaves.
    ZorWBExpression* Many(ZorWBExpressionType type, ZorWBExpression* a, ZorWBExpression* b,
                          bool approximate) {
        std::vector<ZorWBExpression*> operands{a, b};
        int more = Index(3);
        for (int i = 0; i < more; ++i)
            operands.push_back(approximate ? AnyVariable() : Leaf());
        return _factory.CreateOperator(type, static_cast<int>(operands.size()), operands.data());
    }

    // A comparison of two expressions, in one of the shapes a condition can
    // hold exactly.
    ZorWBExpression* Comparison(int depth, bool approximate) {
        ZorWBFactory& f = _factory;
        ZorWBExpression* a = approximate ? Approximate(depth) : Exact(depth);
        ZorWBExpression* b = approximate ? Approximate(depth) : Exact(depth);
        switch (Index(approximate ? 9 : 8)) {
            case 0:
                return f.CreateEqual(a, b);
            case 1:
                return f.CreateNotEqual(a, b);
            case 2:
                return f.CreateLessEqual(a, b);
            case 3:
                return f.CreateLess(a, b);
            case 4:
                return f.CreateGreater(a, b);
            case 5:
                return f.CreateGreaterEqual(a, b);
            case 6:
                return f.CreateNot(f.CreateNotEqual(a, b));
            case 7:
                return f.CreateNot(f.CreateLess(a, b));
            default:
                return f.CreateNot(f.CreateEqual(a, b));
        }
    }

    ZorWBExpression* Condition(int depth, bool approximate) {
        ZorWBExpression* condition = Comparison(depth, approximate);
        int more = Index(3);
        for (int i = 0; i < more; ++i) {
            ZorWBExpression* next = Comparison(depth, approximate);
            // With a compound right operand when approximate.
            if (approximate && Index(3) == 0) {
                condition = _factory.CreateImplication(next, condition);
            } else if (approximate && Index(2) == 0) {
                condition = _factory.CreateOr(next, condition);
            } else {
                condition = Index(2) ? _factory.CreateAnd(condition, next)
                                     : _factory.CreateOr(condition, next);
            }
        }
        return condition;
    }

    ZorWBFactory& _factory;
    std::mt19937 _random;
};

#endif
