#ifndef ZORWB_BENCH_BOOSTINTERVAL_H
#define ZORWB_BENCH_BOOSTINTERVAL_H

// The workload formulas as compiled loops over Boost.Interval intervals:
// the limit for interval evaluation. The rounding mode is set (upward) once
// per evaluation and restored after it; inside, the intervals use the
// "opposite" rounding, which computes lower bounds by negation and so
// never switches modes for arithmetic. This file's source is compiled with
// -frounding-math so that the compiler keeps those negations.

#include <memory>
#include <vector>

#include "BenchFormula.h"

namespace bench {

class BoostIntervalLoop {
  public:
    BoostIntervalLoop(Workload workload, int n);
    ~BoostIntervalLoop();
    BoostIntervalLoop(const BoostIntervalLoop&) = delete;
    BoostIntervalLoop& operator=(const BoostIntervalLoop&) = delete;

    // Inputs [v, v + width], one per variable of the formula.
    void SetInputs(const std::vector<double>& values, double width);
    Range Evaluate() const;

  private:
    struct Inputs;
    Workload _workload;
    int _n;
    std::unique_ptr<Inputs> _inputs;
};

}  // namespace bench

#endif
