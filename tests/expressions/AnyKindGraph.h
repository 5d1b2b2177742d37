#ifndef TESTS_ANY_KIND_GRAPH_H
#define TESTS_ANY_KIND_GRAPH_H

#include <algorithm>
#include <random>
#include <vector>

#include "ExpressionTestSupport.h"
#include "expressions/ZorWBOperator.h"

// Random graphs over every operator kind, with leaves of every value kind,
// shared nodes, IfThenElse nodes sharing nodes between their branches and
// the rest of the graph, and black-box calls that count.
class AnyKindGraph {
  public:
    using Type = ZorWBExpressionType;

    AnyKindGraph(ZorWBFactory& factory, CountingBlackBox& blackBox, unsigned int seed)
        : _f(factory), _blackBox(blackBox), _random(seed) {
        for (int i = 0; i < 6; ++i) {
            variables.push_back(_f.CreateVariable());
            nodes.push_back(variables.back());
        }
        nodes.push_back(_f.CreateRealConstant(0.75));
        nodes.push_back(_f.CreateIntegerConstant(2));
        nodes.push_back(_f.GetZero());
        nodes.push_back(_f.GetIndefinite());
        nodes.push_back(_f.CreateConstant(ZorWBValue(ZorWBTrue)));
        AssignValues();
    }

    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(_random);
    }

    // Reals mostly, and now and then an integer, an interval, a boolean, an
    // undefined value, zero or a large number. With intervals, mostly real
    // intervals (some empty, some reaching the infinite ends) and now and
    // then an integer interval, an enumeration or a fraction.
    void AssignValues(bool intervals = false) {
        for (ZorWBVariable* variable : variables)
            variable->SetExprValue(intervals ? AnyInterval() : AnyScalar());
    }

    ZorWBValue AnyScalar() {
        switch (Index(12)) {
            case 0:
                return ZorWBValue(Index(7) - 3);
            case 1:
                return ZorWBValue(ZorWBRealInterval{-1.0, Uniform(-1.0, 2.0)});
            case 2:
                return ZorWBValue(Index(2) ? ZorWBTrue : ZorWBFalse);
            case 3:
                return ZorWBValue();
            case 4:
                return ZorWBValue(0.0);
            case 5:
                return ZorWBValue(Uniform(-1e200, 1e200));
            default:
                return ZorWBValue(Uniform(-3.0, 3.0));
        }
    }

    ZorWBValue AnyInterval() {
        double low = Uniform(-3.0, 3.0);
        switch (Index(14)) {
            case 0:
                return ZorWBValue(ZorWBRealInterval{low, low - 1.0});  // empty
            case 1:
                return ZorWBValue(ZorWBRealInterval{-ZorWBRealLimit, low});
            case 2:
                return ZorWBValue(ZorWBIntegerInterval{-2, Index(4)});
            case 3: {
                const double elements[] = {low, low + 0.5, low + 2.0};
                ZorWBValue enumeration;
                enumeration.Set(3, elements);
                return enumeration;
            }
            case 4:
                return ZorWBValue(ZorWBCreateFraction(1, 2 + Index(3), Index(2), 0));
            case 5:
                return ZorWBValue(Index(7) - 3);
            case 6:
                return ZorWBValue(low);
            case 7:
                return AnyScalar();
            default:
                return ZorWBValue(ZorWBRealInterval{low, low + Uniform(0.0, 2.0)});
        }
    }

    ZorWBExpression* Pick() {
        int n = static_cast<int>(nodes.size());
        return nodes[static_cast<std::size_t>(Index(3) == 0 ? Index(n)
                                                            : n - 1 - Index(std::min(n, 6)))];
    }

    ZorWBExpression* AddNode() {
        static const Type unaries[] = {
            Type::Sqrt,  Type::Log,   Type::Ln,    Type::Exp,        Type::Abs,  Type::Ceil,
            Type::Floor, Type::Round, Type::Trunc, Type::UnaryMinus, Type::Sin,  Type::Cos,
            Type::Tan,   Type::Asin,  Type::Acos,  Type::Atan,       Type::Sinh, Type::Cosh,
            Type::Tanh,  Type::Asinh, Type::Acosh, Type::Atanh};
        static const Type binaries[] = {Type::Quotient, Type::Power, Type::Root, Type::Atan2,
                                        Type::Dim,      Type::Sign,  Type::Mod};
        static const Type logicals[] = {Type::Or,       Type::And,       Type::Equal,
                                        Type::NotEqual, Type::LessEqual, Type::Implication};
        static const Type folds[] = {Type::Sum, Type::Product, Type::Min, Type::Max};
        ZorWBExpression* node = nullptr;
        switch (Index(12)) {
            case 0:
            case 1:
                node = _f.CreateOperator(unaries[Index(22)], Pick());
                break;
            case 2:
                node = _f.CreateOperator(binaries[Index(7)], Pick(), Pick());
                break;
            case 3:
                node = _f.CreateOperator(logicals[Index(6)], Pick(), Pick());
                break;
            case 4:
                node = _f.CreateNot(Pick());
                break;
            case 5:
            case 6: {
                ZorWBExpression* operands[] = {Pick(), Pick(), Pick(), Pick()};
                node = _f.CreateOperator(folds[Index(4)], 2 + Index(3), operands);
                break;
            }
            case 7:
                // A comparison mostly, so that the condition is a boolean.
                if (!branches) {
                    node = _f.CreateMax(Pick(), Pick());
                    break;
                }
                node = _f.CreateIfThenElse(Index(3) ? _f.CreateLessEqual(Pick(), Pick()) : Pick(),
                                           Pick(), Pick());
                break;
            case 8:
                node = _f.CreateStep(Pick(), Uniform(-1, 1), Uniform(-1, 1), Uniform(1, 2),
                                     Uniform(-1, 1));
                break;
            case 9:
                node = _f.CreateOperator(Type::Round, Pick(), Pick(), Pick());
                break;
            case 10: {
                ZorWBExpression* arguments[] = {Pick(), Pick()};
                node = callsBlackBoxes
                           ? _f.DeclareBlackBox(&_blackBox, 1 + Index(2), arguments, false)
                           : _f.CreateAtan2(arguments[0], arguments[1]);
                break;
            }
            default:
                node = Index(8) == 0 ? _f.CreateIntegrateOperator(Pick(), variables[0])
                                     : _f.CreatePower(Pick(), 2);
                break;
        }
        if (node) nodes.push_back(node);
        return node;
    }

    std::vector<ZorWBVariable*> variables;
    std::vector<ZorWBExpression*> nodes;
    // Off, the nodes that would call the black box are other binary nodes.
    bool callsBlackBoxes = true;
    // Off, the nodes that would be IfThenElse are Max nodes: the graph has
    // no branch.
    bool branches = true;

  private:
    ZorWBFactory& _f;
    CountingBlackBox& _blackBox;
    std::mt19937 _random;
};

#endif
