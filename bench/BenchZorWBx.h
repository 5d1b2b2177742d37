#ifndef ZORWB_BENCH_ZORWBX_H
#define ZORWB_BENCH_ZORWBX_H

// The workload formulas built through ZorWBx's factory, as a user of the
// library builds them: one node per operation of the formula's tree, the
// variables shared between the terms.

#include <memory>
#include <vector>

#include "BenchFormula.h"
#include "expressions/ZorWBCompiledFunction.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"

namespace bench {

struct ZorWBxFormula {
    std::unique_ptr<ZorWBFactory> factory;
    std::vector<ZorWBVariable*> variables;
    std::vector<ZorWBExpression*> terms;
    // The sum of the terms; null when the terms are the roots of equations.
    ZorWBExpression* root = nullptr;
    int nodes = 0;
};

// The variables (named) and the terms of formula made in factory; the
// whole sum too unless asSystem, in which case each term is instead the
// root of an equation "= 0". Null root or terms when creation failed.
void BuildInto(ZorWBFactory& factory, const Formula& formula, bool asSystem, ZorWBxFormula& out);
// The same in a new factory, with the node count.
std::unique_ptr<ZorWBxFormula> BuildZorWBx(const Formula& formula, bool asSystem);
// Distinct nodes reachable from the roots.
int CountNodes(const std::vector<const ZorWBExpression*>& roots);

// The whole sum (or, for a system, every term) compiled over every
// variable, in the formula's variable order.
std::unique_ptr<ZorWBCompiledFunction> CompileZorWBx(ZorWBxFormula& z);
// The formula's input values as intervals [v, v + width].
std::vector<ZorWBRealInterval> Box(const std::vector<double>& values, double width);

void SetReals(const std::vector<ZorWBVariable*>& variables, const std::vector<double>& values);
void SetIntervals(const std::vector<ZorWBVariable*>& variables, const std::vector<double>& values,
                  double width);

}  // namespace bench

#endif
