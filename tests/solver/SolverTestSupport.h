#ifndef TESTS_SOLVER_TEST_SUPPORT_H
#define TESTS_SOLVER_TEST_SUPPORT_H

#include <cmath>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "parser/ZorWBBenchmarkReader.h"
#include "parser/ZorWBParserMessenger.h"
#include "solver/ZorWBConstraintSystem.h"
#include "solver/ZorWBRoundedInterval.h"
#include "solver/ZorWBSquareSystem.h"

// Random intervals and points for the solver's property tests.
class IntervalSampler {
  public:
    explicit IntervalSampler(unsigned int seed) : _random(seed) {}

    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(_random);
    }
    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    bool Chance(int percent) { return Index(100) < percent; }

    // A bounded interval within [-scale, scale]; sometimes a point, sometimes
    // touching 0.
    ZorWBRoundedInterval Interval(double scale) {
        double a = Uniform(-scale, scale), b = Uniform(-scale, scale);
        switch (Index(8)) {
            case 0:
                return {a, a};
            case 1:
                return {0.0, std::fabs(b)};
            case 2:
                return {-std::fabs(a), 0.0};
            default:
                return {std::min(a, b), std::max(a, b)};
        }
    }
    // Points of an interval: both bounds and some between.
    std::vector<double> Points(const ZorWBRoundedInterval& interval, int count) {
        std::vector<double> points{interval.low, interval.high};
        for (int i = 0; i < count; ++i)
            points.push_back(Uniform(interval.low, interval.high));
        return points;
    }
    std::mt19937& Engine() { return _random; }

  private:
    std::mt19937 _random;
};

// Whether a long double lies in an interval.
inline bool Holds(const ZorWBRoundedInterval& interval, long double x) {
    return interval.low <= x && x <= interval.high;
}

inline void SetInterval(ZorWBVariable* variable, double low, double high) {
    variable->SetExprValue(ZorWBValue(ZorWBRealInterval{low, high}));
}

// x^2 + y^2 = 1 and x = y (x and y the factory's first variables): two
// zeros, (r, r) and (-r, -r) with r = sqrt(1/2).
inline void CircleAndDiagonal(ZorWBFactory& f) {
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    f.AddEquation(f.CreateSum(f.CreatePower(x, 2), f.CreatePower(y, 2)), ZorWBEqualZero,
                  f.GetOne());
    f.AddEquation(x, ZorWBEqualZero, y);
}

// Every equation of a factory, all equalities, as one square system whose
// unknowns are all the variables (invalid when they are not as many).
class FactorySquareSystem {
  public:
    explicit FactorySquareSystem(ZorWBFactory& factory) {
        std::vector<ZorWBEquation*> equations;
        std::vector<int> rows, unknowns;
        for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
            equations.push_back(factory.GetEquation(i));
            rows.push_back(i);
        }
        for (int v = 0; v < factory.GetNbOfVariables(); ++v)
            unknowns.push_back(v);
        _constraints = std::make_unique<ZorWBConstraintSystem>(factory, equations);
        _system = std::make_unique<ZorWBSquareSystem>(factory, *_constraints, rows, unknowns);
    }

    ZorWBSquareSystem& Get() { return *_system; }

  private:
    std::unique_ptr<ZorWBConstraintSystem> _constraints;
    std::unique_ptr<ZorWBSquareSystem> _system;
};

// Reads a benchmark problem of tests/solver/data into a factory; false when
// it does not read.
inline bool ReadProblem(const std::string& name, ZorWBFactory& factory) {
    std::ifstream file(std::string(ZORWBX_SOURCE_DIR) + "/tests/solver/data/" + name);
    std::stringstream text;
    text << file.rdbuf();
    ZorWBParserMessenger messenger;
    return file && ZorWBBenchmarkReader::Read(text.str().c_str(), factory, messenger) == 0;
}

#endif
