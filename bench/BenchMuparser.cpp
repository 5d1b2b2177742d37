#include "BenchMuparser.h"

#include <muParser.h>

#include <algorithm>
#include <deque>

namespace bench {

namespace {

// Below muparser's MaxLenExpression, with room for one more term.
constexpr std::size_t PieceLength = 18000;

std::unique_ptr<mu::Parser> MakeParser(const Formula& formula, const std::string& text,
                                       std::vector<int> variables, double* inputs) {
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    auto parser = std::make_unique<mu::Parser>();
    for (int v : variables)
        parser->DefineVar(formula.names[static_cast<std::size_t>(v)], &inputs[v]);
    parser->SetExpr(text);
    parser->Eval();  // reads the text now rather than at the first timed call
    return parser;
}

double* NewVariable(const char* name, void* storage) {
    auto& values = *static_cast<std::deque<double>*>(storage);
    values.push_back(StatementInput(name));
    return &values.back();
}

}  // namespace

MuparserSum::MuparserSum(const Formula& formula, const std::vector<int>& terms, double* inputs,
                         std::string& error) {
    try {
        std::string text;
        std::vector<int> variables;
        auto flush = [&] {
            _parsers.push_back(MakeParser(formula, text, variables, inputs));
            text.clear();
            variables.clear();
        };
        for (int term : terms) {
            std::string termText = Text(formula, term);
            if (!text.empty() && text.size() + termText.size() + 1 > PieceLength) flush();
            if (!text.empty()) text += '+';
            text += termText;
            for (int v : VariablesOf(formula, term))
                variables.push_back(v);
        }
        if (!text.empty()) flush();
    } catch (const mu::Parser::exception_type& e) {
        error = "muparser: " + e.GetMsg();
    }
}

MuparserSum::~MuparserSum() = default;

double MuparserSum::Evaluate() const {
    double sum = 0.0;
    for (const auto& parser : _parsers)
        sum += parser->Eval();
    return sum;
}

int MuparserParseAll(const std::vector<std::string>& texts, std::string& error,
                     std::vector<double>* results) {
    std::deque<double> variables;
    mu::Parser parser;
    parser.SetVarFactory(NewVariable, &variables);
    int count = 0;
    try {
        for (const std::string& text : texts) {
            parser.SetExpr(text);
            double value = parser.Eval();
            if (results) results->push_back(value);
            ++count;
        }
    } catch (const mu::Parser::exception_type& e) {
        error = "muparser: " + e.GetMsg();
    }
    return count;
}

std::unique_ptr<MuparserSystem> MakeMuparserSystem(const Formula& formula) {
    auto system = std::make_unique<MuparserSystem>();
    system->inputs = formula.base;
    for (int term : formula.terms)
        system->equations.push_back(std::make_unique<MuparserSum>(
            formula, std::vector<int>{term}, system->inputs.data(), system->error));
    return system;
}

}  // namespace bench
