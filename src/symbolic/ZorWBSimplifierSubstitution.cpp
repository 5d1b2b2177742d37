// Substitution of defined variables: which definitions may replace their
// variable. A definition that contains its own variable, directly or through
// a chain of other definitions, would never end being substituted, so every
// variable on such a cycle keeps its place.

#include <algorithm>

#include "expressions/ZorWBVariable.h"
#include "symbolic/ZorWBSimplifierEngine.h"

namespace {

// The variables that a definition contains: its dependency array when that
// covers every variable, otherwise the variables found in the expression.
std::vector<int> DependenciesOf(const ZorWBExpression* definition,
                                const ZorQelBoolArray* dependencies, int nbOfVariables) {
    std::vector<int> variables;
    if (dependencies && dependencies->GetSize() >= nbOfVariables) {
        for (int u = 0; u < nbOfVariables; ++u) {
            if (dependencies->Get(u)) variables.push_back(u);
        }
        return variables;
    }
    ZorQelBoolArray present(nbOfVariables);
    definition->FillPresentVariables(present.GetData());
    for (int u = 0; u < nbOfVariables; ++u) {
        if (present.Get(u)) variables.push_back(u);
    }
    return variables;
}

// Marks false every variable that lies on a cycle of the graph (Tarjan's
// strongly connected components, with an explicit stack).
void DropCycles(const std::vector<std::vector<int>>& edges, std::vector<bool>& eligible) {
    int n = static_cast<int>(edges.size());
    std::vector<int> index(static_cast<std::size_t>(n), -1);
    std::vector<int> low(static_cast<std::size_t>(n), 0);
    std::vector<bool> onStack(static_cast<std::size_t>(n), false);
    std::vector<std::size_t> position(static_cast<std::size_t>(n), 0);  // in component
    std::vector<int> component;
    struct Frame {
        int v;
        std::size_t next;
    };
    std::vector<Frame> calls;
    int counter = 0;
    auto enter = [&](int v) {
        index[std::size_t(v)] = low[std::size_t(v)] = counter++;
        position[std::size_t(v)] = component.size();
        component.push_back(v);
        onStack[std::size_t(v)] = true;
        calls.push_back({v, 0});
    };
    for (int start = 0; start < n; ++start) {
        if (!eligible[std::size_t(start)] || index[std::size_t(start)] >= 0) continue;
        enter(start);
        while (!calls.empty()) {
            Frame& frame = calls.back();
            int v = frame.v;
            const std::vector<int>& out = edges[std::size_t(v)];
            if (frame.next < out.size()) {
                int u = out[frame.next++];
                if (index[std::size_t(u)] < 0) {
                    enter(u);
                } else if (onStack[std::size_t(u)]) {
                    low[std::size_t(v)] = std::min(low[std::size_t(v)], index[std::size_t(u)]);
                }
                continue;
            }
            calls.pop_back();
            if (!calls.empty()) {
                int parent = calls.back().v;
                low[std::size_t(parent)] = std::min(low[std::size_t(parent)], low[std::size_t(v)]);
            }
            if (low[std::size_t(v)] != index[std::size_t(v)]) continue;
            std::size_t first = position[std::size_t(v)];
            bool cycle = component.size() - first > 1;
            for (std::size_t i = first; i < component.size(); ++i) {
                onStack[std::size_t(component[i])] = false;
                if (cycle) eligible[std::size_t(component[i])] = false;
            }
            component.resize(first);
        }
    }
}

}  // namespace

void ZorWBSimplifierEngine::SetDefinitions(ZorWBExpression* const* expressions,
                                           const ZorQelBoolArray* dependencies, int n) {
    ForgetResults();
    _definitions.clear();
    int nbOfVariables = _factory.GetNbOfVariables();
    n = std::min(n, nbOfVariables);
    if (!expressions || n <= 0) return;
    std::vector<bool> eligible(static_cast<std::size_t>(n), false);
    std::vector<std::vector<int>> edges(static_cast<std::size_t>(n));
    for (int v = 0; v < n; ++v) {
        ZorWBExpression* definition = expressions[v];
        if (!definition || definition->GetFactory() != &_factory) continue;
        std::vector<int> contained =
            DependenciesOf(definition, dependencies ? &dependencies[v] : nullptr, nbOfVariables);
        if (std::binary_search(contained.begin(), contained.end(), v)) continue;
        eligible[std::size_t(v)] = true;
        for (int u : contained) {
            if (u < n && expressions[u]) edges[std::size_t(v)].push_back(u);
        }
    }
    DropCycles(edges, eligible);
    _definitions.assign(static_cast<std::size_t>(n), nullptr);
    for (int v = 0; v < n; ++v) {
        if (eligible[std::size_t(v)]) _definitions[std::size_t(v)] = expressions[v];
    }
}

ZorWBExpression* ZorWBSimplifierEngine::Substitute(const ZorWBExpression* node) const {
    if (!node || node->GetType() != ZorWBExpressionType::Variable) return nullptr;
    int index = static_cast<const ZorWBVariable*>(node)->GetIdx();
    if (index < 0 || index >= static_cast<int>(_definitions.size())) return nullptr;
    return _definitions[std::size_t(index)];
}
