#ifndef TESTS_SOLVER_PLANTED_SYSTEM_H
#define TESTS_SOLVER_PLANTED_SYSTEM_H

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "solver/ZorWBRoundedInterval.h"

// Random systems built around a known point: each equation is a sum of
// random terms minus the value the sum takes at the point, so the point
// satisfies it.
//
// With exact set, the point's coordinates are multiples of 1/8 and the terms
// are polynomial with small integer coefficients, so the sum at the point is
// computed without rounding and the point is an exact solution. Otherwise
// the terms may be transcendental (sin, cos, exp, atan, square roots,
// quotients) and the constant subtracted is an interval around the computed
// value, wide enough to hold the exact one: the point then satisfies every
// equation exactly, with the constant taken at the right point of its
// interval.
struct PlantedSystemOptions {
    int variables = 3;
    int equalities = 3;
    int inequalities = 0;
    bool exact = false;
    bool trigonometric = true;
    // Also operators that only the value functions propagate (atan2, min,
    // max, modulo, sign, if-then-else).
    bool valueOperators = false;
    int terms = 3;

    // 1 to 4 equalities in as many variables, exact for even seeds, of 2 to
    // 4 terms.
    static PlantedSystemOptions Square(unsigned int seed) {
        PlantedSystemOptions options;
        options.variables = options.equalities = 1 + seed % 4;
        options.exact = seed % 2 == 0;
        options.terms = 2 + seed % 3;
        return options;
    }
};

class PlantedSystem {
  public:
    PlantedSystem(ZorWBFactory& factory, unsigned int seed, const PlantedSystemOptions& options)
        : _factory(factory), _random(seed), _options(options) {
        for (int i = 0; i < options.variables; ++i) {
            ZorWBVariable* variable = factory.CreateVariable();
            variable->SetName(("x" + std::to_string(i)).c_str());
            variables.push_back(variable);
            point.push_back(options.exact ? Index(33) / 8.0 - 2.0 : Uniform(-2.0, 2.0));
        }
        for (int i = 0; i < options.equalities; ++i)
            AddEquation(ZorWBEqualZero);
        for (int i = 0; i < options.inequalities; ++i)
            AddEquation(Index(2) ? ZorWBLessEqualZero : ZorWBGreaterEqualZero);
    }

    // A random box holding the point, as variable values.
    void SetBoxAroundPoint(double spread) {
        for (std::size_t i = 0; i < variables.size(); ++i) {
            double low = point[i] - Uniform(0.0, spread), high = point[i] + Uniform(0.0, spread);
            variables[i]->SetExprValue(ZorWBValue(ZorWBRealInterval{low, high}));
        }
    }

    // A random box holding the point, each side reaching up to a spread
    // drawn between fewest and most.
    std::vector<ZorWBRoundedInterval> BoxAroundPoint(double fewest, double most) {
        std::vector<ZorWBRoundedInterval> box;
        for (double p : point) {
            double spread = Uniform(fewest, most);
            box.push_back({p - Uniform(0.0, spread), p + Uniform(0.0, spread)});
        }
        return box;
    }

    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(_random);
    }
    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }

    std::vector<ZorWBVariable*> variables;
    std::vector<double> point;
    std::vector<ZorWBEquation*> equations;

  private:
    ZorWBVariable* AnyVariable() {
        return variables[static_cast<std::size_t>(Index(variables.size()))];
    }
    int Index(std::size_t n) { return Index(static_cast<int>(n)); }

    ZorWBExpression* Factor() {
        ZorWBFactory& f = _factory;
        ZorWBVariable* x = AnyVariable();
        const int polynomialForms = 4, realForms = 10, allForms = 16;
        const int forms = _options.exact || !_options.trigonometric ? polynomialForms
                          : _options.valueOperators                 ? allForms
                                                                    : realForms;
        switch (Index(forms)) {
            case 0:
                return x;
            case 1:
                return f.CreatePower(x, 2);
            case 2:
                return f.CreatePower(x, 3);
            case 3:
                return f.CreateProduct(x, AnyVariable());
            case 4:
                return f.CreateSin(x);
            case 5:
                return f.CreateCos(f.CreateSum(x, AnyVariable()));
            case 6:
                return f.CreateExp(f.CreateProduct(x, f.CreateRealConstant(0.5)));
            case 7:
                return f.CreateAtan(x);
            case 8:
                return f.CreateSqrt(f.CreateSum(f.CreatePower(x, 2), f.GetOne()));
            case 9:
                return f.CreateQuotient(x,
                                        f.CreateSum(f.CreatePower(AnyVariable(), 2), f.GetOne()));
            case 10:
                return f.CreateAtan2(x, f.CreateSum(AnyVariable(), f.GetThree()));
            case 11:
                return f.CreateMin(x, AnyVariable());
            case 12:
                return f.CreateMax(f.CreateAbs(x), AnyVariable());
            case 13:
                return f.CreateMod(x, f.CreateRealConstant(1.5));
            case 14:
                return f.CreateSign(x, AnyVariable());
            default:
                return f.CreateIfThenElse(f.CreateLessEqual(x, AnyVariable()), x,
                                          f.CreatePower(AnyVariable(), 2));
        }
    }

    ZorWBExpression* Term() {
        int coefficient = Index(19) - 9;
        if (coefficient == 0) coefficient = 1;
        ZorWBExpression* factor = Factor();
        if (Index(3) == 0) factor = _factory.CreateProduct(factor, Factor());
        return _factory.CreateProduct(_factory.CreateIntegerConstant(coefficient), factor);
    }

    double ValueAtPoint(ZorWBExpression* e) {
        for (std::size_t i = 0; i < variables.size(); ++i)
            variables[i]->SetExprValue(ZorWBValue(point[i]));
        return e->Eval();
    }

    void AddEquation(ZorWBEquationType type) {
        ZorWBExpression* sum = Term();
        double magnitude = std::fabs(ValueAtPoint(sum));
        for (int i = 1; i < _options.terms; ++i) {
            ZorWBExpression* term = Term();
            magnitude += std::fabs(ValueAtPoint(term));
            sum = _factory.CreateSum(sum, term);
        }
        double value = ValueAtPoint(sum);
        ZorWBExpression* constant;
        if (type == ZorWBEqualZero) {
            if (_options.exact) {
                constant = _factory.CreateRealConstant(value);
            } else {
                double margin = 1e-9 * (1.0 + magnitude);
                constant = _factory.CreateConstant(
                    ZorWBValue(ZorWBRealInterval{value - margin, value + margin}));
            }
        } else {
            // Slack on the side that keeps the point inside.
            double slack = Index(2) ? 0.0 : Uniform(0.0, 1.0);
            double margin = 1e-9 * (1.0 + magnitude);
            constant = _factory.CreateRealConstant(
                type == ZorWBLessEqualZero ? value + slack + margin : value - slack - margin);
        }
        equations.push_back(_factory.AddEquation(
            _factory.CreateSum(sum, _factory.CreateProduct(constant, _factory.GetMinusOne())),
            type));
    }

    ZorWBFactory& _factory;
    std::mt19937 _random;
    PlantedSystemOptions _options;
};

#endif
