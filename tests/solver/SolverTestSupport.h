#ifndef TESTS_SOLVER_TEST_SUPPORT_H
#define TESTS_SOLVER_TEST_SUPPORT_H

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBBenchmarkReader.h"
#include "parser/ZorWBParserMessenger.h"
#include "solver/ZorWBRoundedInterval.h"

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
