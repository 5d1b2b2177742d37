#ifndef TESTS_SYMBOLIC_TEST_SUPPORT_H
#define TESTS_SYMBOLIC_TEST_SUPPORT_H

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "NodeErrors.h"
#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "qel/ZorQelGlobalParameters.h"
#include "qel/ZorQelStream.h"
#include "values/ZorWBLevel.h"

// Levels just below a threshold.
constexpr unsigned int Below(unsigned int threshold) {
    return threshold - 1;
}

inline std::string Text(const ZorWBExpression* e) {
    return ZorWBDebug::ExpStr(e).GetStdString();
}

inline ZorWBExpression* Int(ZorWBFactory& f, int n) {
    return f.CreateIntegerConstant(n);
}

inline ZorWBVariable* NamedVariable(ZorWBFactory& f, const char* name) {
    ZorWBVariable* v = f.CreateVariable();
    v->SetName(name);
    return v;
}

// The real value of e, or NaN when computing some node of it reports an error.
inline double Evaluate(const ZorWBExpression* e) {
    if (SomeNodeFails(*e->GetFactory(), e)) return NAN;
    double value = e->GetValue().GetAsReal();
    return !std::isfinite(value) || std::fabs(value) > 1e30 ? NAN : value;
}

inline bool Close(double a, double b, double relative = 1e-7) {
    return std::fabs(a - b) <= relative * std::max({1.0, std::fabs(a), std::fabs(b)});
}

// Whether an equation holds for the current variable values, within tolerance.
inline bool Holds(const ZorWBEquation* equation, double tolerance = 1e-6) {
    double v = Evaluate(equation->GetRoot());
    if (std::isnan(v)) return false;
    switch (equation->GetType()) {
        case ZorWBEqualZero:
            return std::fabs(v) <= tolerance;
        case ZorWBNotEqualZero:  // no tolerance can tell a root near 0 from 0
            return true;
        case ZorWBLessEqualZero:
        case ZorWBLessZero:
            return v <= tolerance;
        case ZorWBGreaterEqualZero:
        case ZorWBGreaterZero:
            return v >= -tolerance;
        default:
            return true;
    }
}

// Collects what the transformation trace writes while it lives.
class TraceCapture {
  public:
    explicit TraceCapture(int level) {
        _stream.OpenMemory();
        ZorQelGlobalParameters& parameters = ZorQelGlobalParameters::GetGlobalParameters();
        parameters.SetTraceStream(&_stream);
        parameters.SetTransformationTraceLevel(level);
    }
    ~TraceCapture() {
        ZorQelGlobalParameters& parameters = ZorQelGlobalParameters::GetGlobalParameters();
        parameters.SetTraceStream(nullptr);
        parameters.SetTransformationTraceLevel(0);
    }
    const std::string& Text() const { return _stream.GetText(); }

  private:
    ZorQelStream _stream;
};

// Random expression DAGs over a few variables, mixing operators that are
// defined everywhere with partial ones (quotients, logarithms, roots,
// tangents), so that the simplifier meets every kind of rule.
class RandomExpressions {
  public:
    RandomExpressions(ZorWBFactory& factory, unsigned int seed, int nbOfVariables)
        : _f(factory), _random(seed) {
        for (int i = 0; i < nbOfVariables; ++i) {
            ZorWBVariable* v = factory.CreateVariable();
            variables.push_back(v);
            _nodes.push_back(v);
        }
    }

    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(_random);
    }

    void AssignRandomValues() {
        for (ZorWBVariable* v : variables)
            v->SetExprValue(ZorWBValue(Uniform(-2.0, 2.0)));
    }

    ZorWBExpression* Constant() {
        switch (Index(6)) {
            case 0:
                return _f.CreateRealConstant(Uniform(-3.0, 3.0));
            case 1:
                return _f.CreateConstantPi();
            case 2:
                return _f.CreateQuotient(Int(_f, Index(7) - 3), Int(_f, 1 + Index(4)));
            default:
                return Int(_f, Index(9) - 4);
        }
    }

    // Operands come mostly from the latest nodes and sometimes from any, so
    // that sub-expressions are shared.
    ZorWBExpression* Operand() {
        if (Index(5) == 0) return Constant();
        int n = static_cast<int>(_nodes.size());
        int recent = std::min(n, 6);
        return _nodes[std::size_t(Index(3) == 0 ? Index(n) : n - 1 - Index(recent))];
    }

    ZorWBExpression* Node() {
        ZorWBExpression* a = Operand();
        ZorWBExpression* b = Operand();
        ZorWBExpression* node = nullptr;
        switch (Index(20)) {
            case 0:
            case 1:
            case 2:
                node = _f.CreateSum(a, b);
                break;
            case 3:
                node = _f.CreateSum(3, std::vector<ZorWBExpression*>{a, b, Operand()}.data());
                break;
            case 4:
            case 5:
                node = _f.CreateProduct(a, b);
                break;
            case 6:
                node = _f.CreateSub(a, b);
                break;
            case 7:
                node = _f.CreatePower(a, Index(5) - 1);
                break;
            case 8:
                node = _f.CreateQuotient(a, Index(2) ? Int(_f, 1 + Index(5)) : b);
                break;
            case 9:
                node = _f.CreateSin(a);
                break;
            case 10:
                node = _f.CreateCos(a);
                break;
            case 11:
                node = _f.CreateTan(a);
                break;
            case 12:
                node = _f.CreateUnaryMinus(a);
                break;
            case 13:
                node = _f.CreateAbs(a);
                break;
            case 14:
                node = _f.CreateSqrt(a);
                break;
            case 15:
                node = _f.CreateLn(a);
                break;
            case 16:
                node = _f.CreateMin(a, b);
                break;
            case 17:
                node = _f.CreateMax(a, b);
                break;
            case 18:
                node = _f.CreateSum(_f.CreatePower(_f.CreateSin(a), 2),
                                    _f.CreatePower(_f.CreateCos(a), 2));
                break;
            default:
                node = _f.CreateProduct(_f.CreateTan(a), _f.CreateCos(a));
                break;
        }
        _nodes.push_back(node);
        return node;
    }

    ZorWBExpression* Expression(int size) {
        ZorWBExpression* last = nullptr;
        for (int i = 0; i < size; ++i)
            last = Node();
        return last;
    }

    std::vector<ZorWBVariable*> variables;

  private:
    ZorWBFactory& _f;
    std::mt19937 _random;
    std::vector<ZorWBExpression*> _nodes;
};

#endif
