#include "BenchZorWBx.h"

#include <unordered_set>

#include "expressions/ZorWBEquationType.h"
#include "values/ZorWBValue.h"

namespace bench {

namespace {

ZorWBExpression* Build(ZorWBFactory& factory, const Formula& formula,
                       const std::vector<ZorWBVariable*>& variables, int index) {
    const Node& node = formula.nodes[static_cast<std::size_t>(index)];
    auto operand = [&](std::size_t i) {
        return Build(factory, formula, variables, node.operands[i]);
    };
    switch (node.op) {
        case Op::Variable:
            return variables[static_cast<std::size_t>(node.variable)];
        case Op::Constant:
            return factory.CreateRealConstant(node.value);
        case Op::Sum: {
            std::vector<ZorWBExpression*> operands;
            for (std::size_t i = 0; i < node.operands.size(); ++i)
                operands.push_back(operand(i));
            return factory.CreateSum(static_cast<int>(operands.size()), operands.data());
        }
        case Op::Difference:
            return factory.CreateSub(operand(0), operand(1));
        case Op::Product:
            return factory.CreateProduct(operand(0), operand(1));
        case Op::Square:
            return factory.CreatePower(operand(0), 2);
        case Op::Sin:
            return factory.CreateSin(operand(0));
        case Op::Cos:
            return factory.CreateCos(operand(0));
    }
    return nullptr;
}

}  // namespace

void BuildInto(ZorWBFactory& factory, const Formula& formula, bool asSystem, ZorWBxFormula& out) {
    for (const std::string& name : formula.names) {
        ZorWBVariable* variable = factory.CreateVariable();
        variable->SetName(name.c_str());
        out.variables.push_back(variable);
    }
    for (int term : formula.terms)
        out.terms.push_back(Build(factory, formula, out.variables, term));
    if (asSystem) {
        for (ZorWBExpression* term : out.terms)
            factory.AddEquation(term, ZorWBEqualZero);
    } else {
        out.root = factory.CreateSum(static_cast<int>(out.terms.size()), out.terms.data());
    }
}

std::unique_ptr<ZorWBxFormula> BuildZorWBx(const Formula& formula, bool asSystem) {
    auto built = std::make_unique<ZorWBxFormula>();
    built->factory = std::make_unique<ZorWBFactory>();
    BuildInto(*built->factory, formula, asSystem, *built);
    if (asSystem)
        built->nodes = CountNodes({built->terms.begin(), built->terms.end()});
    else
        built->nodes = CountNodes({built->root});
    return built;
}

std::unique_ptr<ZorWBCompiledFunction> CompileZorWBx(ZorWBxFormula& z) {
    std::vector<const ZorWBExpression*> roots;
    if (z.root) {
        roots.push_back(z.root);
    } else {
        roots.assign(z.terms.begin(), z.terms.end());
    }
    return std::make_unique<ZorWBCompiledFunction>(static_cast<int>(roots.size()), roots.data(),
                                                   static_cast<int>(z.variables.size()),
                                                   z.variables.data());
}

std::vector<ZorWBRealInterval> Box(const std::vector<double>& values, double width) {
    std::vector<ZorWBRealInterval> box;
    for (double v : values)
        box.push_back({v, v + width});
    return box;
}

int CountNodes(const std::vector<const ZorWBExpression*>& roots) {
    std::unordered_set<const ZorWBExpression*> seen;
    std::vector<const ZorWBExpression*> stack(roots.begin(), roots.end());
    while (!stack.empty()) {
        const ZorWBExpression* node = stack.back();
        stack.pop_back();
        if (!node || !seen.insert(node).second) continue;
        for (int i = 0; i < node->GetNbOfChildren(); ++i)
            stack.push_back(node->GetChild(i));
    }
    return static_cast<int>(seen.size());
}

void SetReals(const std::vector<ZorWBVariable*>& variables, const std::vector<double>& values) {
    for (std::size_t i = 0; i < variables.size(); ++i)
        variables[i]->SetValue(ZorWBValue(values[i]), nullptr);
}

void SetIntervals(const std::vector<ZorWBVariable*>& variables, const std::vector<double>& values,
                  double width) {
    for (std::size_t i = 0; i < variables.size(); ++i)
        variables[i]->SetValue(ZorWBValue(ZorWBRealInterval{values[i], values[i] + width}),
                               nullptr);
}

}  // namespace bench
