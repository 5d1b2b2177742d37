// HC4-revise through the value functions, on one root laid out children
// first (method in the header). Nodes are visited once per pass whatever
// their number of parents; the passes stop at the first that narrows no
// variable.

#include "solver/ZorWBValueConstraint.h"

#include <algorithm>
#include <exception>
#include <unordered_map>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBVariable.h"
#include "solver/ZorWBDomainBox.h"
#include "solver/ZorWBValueProjections.h"
#include "values/ZorWBValueFunctions.h"

namespace ZVP = ZorWBValueProjection;

ZorWBValueConstraint::ZorWBValueConstraint(const ZorWBExpression* root) {
    if (!root || !Lay(root)) {
        _nodes.clear();
        _variables.clear();
    }
}

bool ZorWBValueConstraint::Lay(const ZorWBExpression* root) try {
    // Children first with an explicit stack; a node is placed when it is met
    // the second time, after its children.
    std::unordered_map<const ZorWBExpression*, int> position;
    std::unordered_map<const ZorWBExpression*, bool> open;
    std::vector<std::pair<const ZorWBExpression*, bool>> stack{{root, false}};
    while (!stack.empty()) {
        auto [node, expanded] = stack.back();
        if (position.count(node)) {
            stack.pop_back();
            continue;
        }
        if (expanded) {
            stack.pop_back();
            open.erase(node);
            Node placed{node, {}, -1};
            for (int i = 0; i < node->GetNbOfChildren(); ++i)
                placed.children.push_back(position.at(node->GetChild(i)));
            if (node->GetType() == ZorWBExpressionType::Variable) {
                placed.variable = static_cast<const ZorWBVariable*>(node)->GetIdx();
                _variables.push_back(placed.variable);
            }
            position[node] = static_cast<int>(_nodes.size());
            _nodes.push_back(std::move(placed));
            continue;
        }
        if (open[node]) throw std::exception();  // a cycle
        open[node] = true;
        stack.back().second = true;
        for (int i = node->GetNbOfChildren() - 1; i >= 0; --i) {
            const ZorWBExpression* child = node->GetChild(i);
            if (!child) throw std::exception();
            if (!position.count(child)) stack.push_back({child, false});
        }
    }
    std::sort(_variables.begin(), _variables.end());
    _values.resize(_nodes.size());
    return true;
} catch (const std::exception&) {
    return false;
}

void ZorWBValueConstraint::Forward(const ZorWBEnvironment& environment,
                                   const std::vector<ZorWBValue>& domains, bool keepNarrowed) {
    std::vector<const ZorWBValue*> children;
    for (std::size_t k = 0; k < _nodes.size(); ++k) {
        const Node& node = _nodes[k];
        if (node.variable >= 0) {
            _values[k] = node.variable < static_cast<int>(domains.size())
                             ? domains[node.variable]
                             : ZorWBValue(ZorWBReal_Any);
        } else if (node.expression->IsLeaf()) {
            _values[k] = node.expression->GetExprValue();
        } else {
            children.clear();
            for (int child : node.children)
                children.push_back(&_values[child]);
            ZorWBValue value = ZVP::Forward(environment, *node.expression, children);
            // What an earlier pass narrowed a node to still bounds it: the
            // domains have only shrunk since.
            if (keepNarrowed) ZorWBIntersect(environment, value, _values[k]);
            _values[k] = std::move(value);
        }
    }
}

ZorWBValue ZorWBValueConstraint::Evaluate(const ZorWBEnvironment& environment,
                                          const std::vector<ZorWBValue>& domains) {
    if (!IsValid()) return ZorWBValue(ZorWBReal_Any);
    Forward(environment, domains, false);
    return _values.back();
}

bool ZorWBValueConstraint::NarrowRoot(const ZorWBEnvironment& environment,
                                      ZorWBEquationType relation, double tolerance) {
    ZorWBValue& root = _values.back();
    if (ZVP::IsEmptyValue(environment, root)) return false;
    ZorWBBoolean holds = ZorWBRelationHolds(relation, ZorWBDomainHull(root), tolerance);
    if (holds == ZorWBFalse || holds == ZorWBEmpty) return false;
    if (holds == ZorWBTrue || root.GetType() == ZorWBBooleanType) return true;
    ZVP::Narrow(environment, root,
                ZorWBValue(ZorWBToRealInterval(ZorWBAllowedSet(relation, tolerance))));
    return !ZVP::IsEmptyValue(environment, root);
}

bool ZorWBValueConstraint::Revise(const ZorWBEnvironment& environment, ZorWBEquationType relation,
                                  double tolerance, std::vector<ZorWBValue>& domains) {
    if (!IsValid()) return true;
    // One pass may narrow a node after the nodes that read it were
    // narrowed (an if-then-else decided by its result): passes repeat while
    // they narrow some variable, a few times at most.
    for (int pass = 0; pass < MaxPasses; ++pass) {
        bool narrowed = false;
        if (!ReviseOnce(environment, relation, tolerance, domains, pass > 0, narrowed))
            return false;
        if (!narrowed) break;
    }
    return true;
}

bool ZorWBValueConstraint::ReviseOnce(const ZorWBEnvironment& environment,
                                      ZorWBEquationType relation, double tolerance,
                                      std::vector<ZorWBValue>& domains, bool keepNarrowed,
                                      bool& narrowed) {
    Forward(environment, domains, keepNarrowed);
    if (!NarrowRoot(environment, relation, tolerance)) return false;
    std::vector<ZorWBValue*> children;
    for (std::size_t k = _nodes.size(); k-- > 0;) {
        const Node& node = _nodes[k];
        if (node.expression->IsLeaf()) continue;
        children.clear();
        for (int child : node.children)
            children.push_back(&_values[child]);
        ZVP::Backward(environment, *node.expression, _values[k], children);
        for (const ZorWBValue* child : children) {
            if (ZVP::IsEmptyValue(environment, *child)) return false;
        }
    }
    for (std::size_t k = 0; k < _nodes.size(); ++k) {
        int variable = _nodes[k].variable;
        if (variable < 0 || variable >= static_cast<int>(domains.size())) continue;
        narrowed = narrowed || !ZorWBIsEqual(environment, domains[variable], _values[k]);
        domains[variable] = _values[k];
    }
    return true;
}
