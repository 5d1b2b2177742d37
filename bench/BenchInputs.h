#ifndef ZORWB_BENCH_INPUTS_H
#define ZORWB_BENCH_INPUTS_H

#include <vector>

#include "BenchFormula.h"

namespace bench {

// Alternates a formula's two input sets, so that every input changes at
// every iteration and nothing can be answered from a cache.
class Alternation {
  public:
    explicit Alternation(const Formula& formula) : _formula(formula) {}
    const std::vector<double>& Next() {
        _shifted = !_shifted;
        return _shifted ? _formula.shifted : _formula.base;
    }

  private:
    const Formula& _formula;
    bool _shifted = false;
};

// Flips one variable at a time between its two values, cycling through all
// of them: the change a solver makes between two looks at its equations.
class SingleChange {
  public:
    explicit SingleChange(const Formula& formula)
        : _formula(formula), _shifted(formula.base.size(), false) {}
    // The variable changed and its new value.
    int Next(double& value) {
        int k = _next;
        _next = (_next + 1) % static_cast<int>(_shifted.size());
        auto i = static_cast<std::size_t>(k);
        _shifted[i] = !_shifted[i];
        value = _shifted[i] ? _formula.shifted[i] : _formula.base[i];
        return k;
    }

  private:
    const Formula& _formula;
    std::vector<bool> _shifted;
    int _next = 0;
};

}  // namespace bench

#endif
