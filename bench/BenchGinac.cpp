#include "BenchGinac.h"

#include <limits>

namespace bench {

namespace {

GiNaC::ex Build(const Formula& formula, const std::vector<GiNaC::symbol>& symbols, int index) {
    const Node& node = formula.nodes[static_cast<std::size_t>(index)];
    auto operand = [&](std::size_t i) { return Build(formula, symbols, node.operands[i]); };
    switch (node.op) {
        case Op::Variable:
            return symbols[static_cast<std::size_t>(node.variable)];
        case Op::Constant:
            return GiNaC::numeric(node.value);
        case Op::Sum: {
            GiNaC::exvector operands;
            for (std::size_t i = 0; i < node.operands.size(); ++i)
                operands.push_back(operand(i));
            return GiNaC::add(operands);
        }
        case Op::Difference:
            return operand(0) - operand(1);
        case Op::Product:
            return operand(0) * operand(1);
        case Op::Square:
            return GiNaC::pow(operand(0), 2);
        case Op::Sin:
            return GiNaC::sin(operand(0));
        case Op::Cos:
            return GiNaC::cos(operand(0));
    }
    return 0;
}

}  // namespace

void GinacFormula::SetInputs(const std::vector<double>& inputs) {
    for (std::size_t i = 0; i < slots.size(); ++i)
        slots[i]->second = GiNaC::numeric(inputs[i]);
}

double GinacFormula::Evaluate(const GiNaC::ex& e) const {
    GiNaC::ex result = e.subs(values, GiNaC::subs_options::no_pattern).evalf();
    if (!GiNaC::is_a<GiNaC::numeric>(result)) return std::numeric_limits<double>::quiet_NaN();
    return GiNaC::ex_to<GiNaC::numeric>(result).to_double();
}

void BuildGinacInto(const Formula& formula, GinacFormula& out) {
    for (const std::string& name : formula.names)
        out.symbols.emplace_back(name);
    for (int term : formula.terms)
        out.terms.push_back(Build(formula, out.symbols, term));
    out.root = GiNaC::add(GiNaC::exvector(out.terms.begin(), out.terms.end()));
}

std::unique_ptr<GinacFormula> BuildGinac(const Formula& formula) {
    auto built = std::make_unique<GinacFormula>();
    BuildGinacInto(formula, *built);
    for (const GiNaC::symbol& symbol : built->symbols)
        built->slots.push_back(built->values.emplace(symbol, 0).first);
    built->SetInputs(formula.base);
    return built;
}

int GinacParseAll(const std::vector<std::string>& texts, std::string& error,
                  std::vector<double>* results) {
    GiNaC::parser reader;
    std::vector<GiNaC::ex> parsed;
    try {
        for (const std::string& text : texts)
            parsed.push_back(reader(text));
    } catch (const std::exception& e) {
        error = std::string("GiNaC: ") + e.what();
    }
    if (results) {
        GinacFormula values;
        for (const auto& entry : reader.get_syms())
            values.values[entry.second] = GiNaC::numeric(StatementInput(entry.first));
        for (const GiNaC::ex& e : parsed)
            results->push_back(values.Evaluate(e));
    }
    return static_cast<int>(parsed.size());
}

}  // namespace bench
