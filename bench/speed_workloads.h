// The workloads of the evaluation benchmarks, built through the parser so
// that the nodes are those the library makes from text:
//   chain  sum of (x_i - x_(i+1))^2 + (y_i - y_(i+1))^2 - d_i^2
//   trig   sum of cos(a_i)*x_i - sin(a_i)*y_i
// either as one expression or as a system of one equation per term. Shared
// by the Google Benchmark program and the instruction-count driver.

#ifndef ZORWBX_BENCH_SPEED_WORKLOADS_H
#define ZORWBX_BENCH_SPEED_WORKLOADS_H

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unordered_set>
#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

namespace speed {

inline std::string Indexed(const char* prefix, int i) {
    return prefix + std::to_string(i);
}

inline std::string ChainTerm(int i) {
    return "(" + Indexed("x", i) + " - " + Indexed("x", i + 1) + ")^2 + (" + Indexed("y", i) +
           " - " + Indexed("y", i + 1) + ")^2 - " + Indexed("d", i) + "^2";
}

inline std::string TrigTerm(int i) {
    return "cos(" + Indexed("a", i) + ")*" + Indexed("x", i) + " - sin(" + Indexed("a", i) + ")*" +
           Indexed("y", i);
}

// The text of one expression summing n terms, or of n equations.
template <class Term>
std::string SumText(int n, Term term) {
    std::string text;
    for (int i = 0; i < n; ++i)
        text += (i ? " + " : "") + term(i);
    return text + " = 0;\n";
}
template <class Term>
std::string SystemText(int n, Term term) {
    std::string text;
    for (int i = 0; i < n; ++i)
        text += term(i) + " = 0;\n";
    return text;
}

// Fills the factory with the equations of text and returns their roots.
inline std::vector<ZorWBExpression*> Fill(ZorWBFactory& factory, const std::string& text) {
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    ZorQelIntArray equationIds;
    if (ZorWBParser::Parse(text.c_str(), model, ids, messenger) != 0 ||
        model.FillFactory(factory, equationIds) != 0) {
        std::fprintf(stderr, "workload: %s\n", messenger.GetString().GetString());
        std::exit(1);
    }
    std::vector<ZorWBExpression*> roots;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i)
        roots.push_back(factory.GetEquation(i)->GetRoot());
    return roots;
}

// Every variable gets a real or a real interval value of width 0.01 around
// a value spread over [0.5, 1.5) by its index (golden-ratio steps, so that
// the differences of the chain are not all alike).
inline void SetVariables(ZorWBFactory& factory, bool intervals) {
    for (int i = 0; i < factory.GetNbOfVariables(); ++i) {
        double middle = 0.5 + std::fmod(0.6180339887498949 * i, 1.0);
        ZorWBValue value = intervals ? ZorWBValue(ZorWBRealInterval{middle - 0.005, middle + 0.005})
                                     : ZorWBValue(middle);
        factory.GetVariable(i)->SetExprValue(value);
    }
}

// The number of distinct nodes below root, itself and the leaves included.
inline int CountNodes(const ZorWBExpression* root) {
    std::unordered_set<const ZorWBExpression*> seen{root};
    std::vector<const ZorWBExpression*> stack{root};
    while (!stack.empty()) {
        const ZorWBExpression* node = stack.back();
        stack.pop_back();
        for (int i = 0; i < node->GetNbOfChildren(); ++i)
            if (seen.insert(node->GetChild(i)).second) stack.push_back(node->GetChild(i));
    }
    return static_cast<int>(seen.size());
}

}  // namespace speed

#endif
