#include "BenchBoostInterval.h"

#include <boost/numeric/interval.hpp>

#include "BenchLoops.h"

namespace bench {

namespace {

namespace I = boost::numeric::interval_lib;
using Rounding = I::rounded_transc_opp<double, I::rounded_arith_opp<double>>;
using Checking = I::checking_base<double>;
// Saves the rounding mode and sets it for the opposite rounding on
// construction; restores it on destruction.
using RoundingScope = I::save_state<Rounding>;
// Trusts the mode that a RoundingScope set.
using FastInterval =
    boost::numeric::interval<double, I::policies<I::save_state_nothing<Rounding>, Checking>>;

}  // namespace

struct BoostIntervalLoop::Inputs {
    std::vector<FastInterval> values;
};

BoostIntervalLoop::BoostIntervalLoop(Workload workload, int n)
    : _workload(workload), _n(n), _inputs(std::make_unique<Inputs>()) {}

BoostIntervalLoop::~BoostIntervalLoop() = default;

void BoostIntervalLoop::SetInputs(const std::vector<double>& values, double width) {
    std::vector<FastInterval>& inputs = _inputs->values;
    inputs.resize(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        inputs[i].assign(values[i], values[i] + width);
}

Range BoostIntervalLoop::Evaluate() const {
    RoundingScope scope;
    const FastInterval* v = _inputs->values.data();
    FastInterval sum = _workload == Workload::Chain ? ChainSum(v, _n) : TrigSum(v, _n);
    return {sum.lower(), sum.upper()};
}

}  // namespace bench
