#ifndef ZORWB_BENCH_GINAC_H
#define ZORWB_BENCH_GINAC_H

// The workload formulas built through GiNaC's API: one symbol per variable,
// each term built from the formula's tree (GiNaC brings it into its own
// canonical form as it goes), and the sum of the terms made in one step.
// Values are given by substitution and evaluated to a floating-point number.

#include <ginac/ginac.h>

#include <memory>
#include <vector>

#include "BenchFormula.h"

namespace bench {

struct GinacFormula {
    std::vector<GiNaC::symbol> symbols;
    std::vector<GiNaC::ex> terms;
    GiNaC::ex root;
    // One entry per symbol; SetInputs replaces the values in place.
    GiNaC::exmap values;
    std::vector<GiNaC::exmap::iterator> slots;

    void SetInputs(const std::vector<double>& inputs);
    // e with the current values substituted (plain symbol substitution,
    // without pattern matching) and evaluated to a double; NaN when the
    // result is not a number.
    double Evaluate(const GiNaC::ex& e) const;
};

// The symbols, terms and sum of formula, with the base inputs as values.
std::unique_ptr<GinacFormula> BuildGinac(const Formula& formula);
// The same into an existing object (the memory benchmark counts it).
void BuildGinacInto(const Formula& formula, GinacFormula& out);

// Parses each text with one GiNaC parser (made here and used for all of
// them), unknown names becoming symbols. With results, each parsed
// expression is then evaluated with the values StatementInput gives its
// symbols, and the values appended (not part of what is timed). Returns the
// number of texts read; sets error if one fails.
int GinacParseAll(const std::vector<std::string>& texts, std::string& error,
                  std::vector<double>* results = nullptr);

}  // namespace bench

#endif
