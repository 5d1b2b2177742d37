#ifndef TESTS_EXPRESSION_TEST_SUPPORT_H
#define TESTS_EXPRESSION_TEST_SUPPORT_H

#include <cmath>
#include <random>
#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "values/ZorWBLevel.h"

// Levels just below a threshold.
constexpr unsigned int Below(unsigned int threshold) {
    return threshold - 1;
}

inline double RealValue(const ZorWBExpression* e) {
    return e->GetValue().GetAsReal();
}

inline void SetReal(ZorWBVariable* variable, double value) {
    variable->SetExprValue(ZorWBValue(value));
}

// A black box counting its calls and answering the sum of its arguments plus
// an offset that the test may change between calls.
class CountingBlackBox : public ZorWBBBx {
  public:
    double Eval() override {
        ++calls;
        double sum = offset;
        for (int i = 0; i < GetNbOfArguments(); ++i)
            sum += GetArgument(i);
        return sum;
    }
    int calls = 0;
    double offset = 0.0;
};

// Random expression DAGs over a few variables whose real values stay in
// [-1, 1]: every node maps inputs of [-1, 1] into [-1, 1], so evaluation
// meets no domain error and no overflow.
class RandomGraph {
  public:
    RandomGraph(ZorWBFactory& factory, unsigned int seed, int nbOfVariables)
        : _factory(factory), _random(seed) {
        for (int i = 0; i < nbOfVariables; ++i) {
            ZorWBVariable* variable = factory.CreateVariable();
            variables.push_back(variable);
            nodes.push_back(variable);
            SetReal(variable, Uniform());
        }
    }

    double Uniform() { return std::uniform_real_distribution<double>(-1.0, 1.0)(_random); }
    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    ZorWBVariable* AnyVariable() {
        return variables[static_cast<std::size_t>(Index(static_cast<int>(variables.size())))];
    }
    // Operands are mostly taken among the latest nodes, so the graph grows deep.
    ZorWBExpression* Pick() {
        int n = static_cast<int>(nodes.size());
        int recent = std::min(n, 8);
        int i = Index(3) == 0 ? Index(n) : n - 1 - Index(recent);
        return nodes[static_cast<std::size_t>(i)];
    }

    ZorWBExpression* AddNode() {
        ZorWBFactory& f = _factory;
        ZorWBExpression* a = Pick();
        ZorWBExpression* b = Pick();
        ZorWBExpression* node = nullptr;
        switch (Index(14)) {
            case 0:
                node = f.CreateProduct(a, b);
                break;
            case 1:
                node = f.CreateMin(a, b);
                break;
            case 2:
                node = f.CreateMax(a, b);
                break;
            case 3:
                node = f.CreateSin(a);
                break;
            case 4:
                node = f.CreateCos(a);
                break;
            case 5:
                node = f.CreateTanh(f.CreateSum(a, b));
                break;
            case 6:
                node = f.CreateQuotient(a, f.CreateSum(f.CreateAbs(b), f.GetOne()));
                break;
            case 7:
                node = f.CreateAtan(a);
                break;
            case 8:
                node = f.CreateUnaryMinus(a);
                break;
            case 9:
                node = f.CreateSqrt(f.CreateAbs(a));
                break;
            case 10:
                node = f.CreateIfThenElse(f.CreateLessEqual(a, b), Pick(), Pick());
                break;
            case 11:
                node = f.CreateProduct(f.CreateDim(a, b), f.CreateRealConstant(0.5));
                break;
            case 12: {
                ZorWBExpression* three[] = {a, b, Pick()};
                node = f.CreateProduct(f.CreateSum(3, three), f.CreateRealConstant(1.0 / 3.0));
                break;
            }
            default:
                node = f.CreateProduct(a, f.CreateRealConstant(Uniform()));
                break;
        }
        nodes.push_back(node);
        return node;
    }

    std::vector<ZorWBVariable*> variables;
    std::vector<ZorWBExpression*> nodes;

  private:
    ZorWBFactory& _factory;
    std::mt19937 _random;
};

#endif
