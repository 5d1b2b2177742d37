#ifndef ZORWB_BENCH_MUPARSER_H
#define ZORWB_BENCH_MUPARSER_H

// A sum of terms of a workload formula evaluated with muparser, bound to the
// caller's input array. This muparser refuses expressions longer than its
// MaxLenExpression (20000 characters), so a long sum is split into
// expressions below that length, each with its own parser, and their
// results are added: what a user of muparser has to do, at the cost of one
// more Eval call per piece (a few hundred terms each).

#include <memory>
#include <string>
#include <vector>

#include "BenchFormula.h"

namespace mu {
class Parser;
}

namespace bench {

class MuparserSum {
  public:
    // The parsers read inputs[i] for variable i; inputs must outlive this.
    // error is set (and nothing else is usable) when muparser refuses a text.
    MuparserSum(const Formula& formula, const std::vector<int>& terms, double* inputs,
                std::string& error);
    ~MuparserSum();
    MuparserSum(const MuparserSum&) = delete;
    MuparserSum& operator=(const MuparserSum&) = delete;

    double Evaluate() const;

  private:
    std::vector<std::unique_ptr<mu::Parser>> _parsers;
};

// A system of one equation per term of formula, each with its own parser
// (muparser has no shared subexpressions), all bound to inputs.
struct MuparserSystem {
    std::vector<double> inputs;
    std::vector<std::unique_ptr<MuparserSum>> equations;
    std::string error;
};
std::unique_ptr<MuparserSystem> MakeMuparserSystem(const Formula& formula);

// Parses each text with one parser (made here and used for all of them),
// every unknown name becoming a new variable with the value
// StatementInput gives it, as muparser does for a host that declares its
// variables on demand. Evaluating is what makes muparser read a text, so
// each one is also evaluated: the results are appended to results when
// given. Returns the number of texts read; sets error if one fails.
int MuparserParseAll(const std::vector<std::string>& texts, std::string& error,
                     std::vector<double>* results = nullptr);

}  // namespace bench

#endif
