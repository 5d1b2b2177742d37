#ifndef ZORWB_VALUECONSTRAINT_H
#define ZORWB_VALUECONSTRAINT_H

#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

class ZorWBExpression;

// One relation propagated through the value functions (HC4-revise on
// values): the reference path, and the one for the roots the tape cannot
// compile (see ZorWBValueProjections.h for the rules of each node type).
//
// The subgraph of the root is laid out once, children before parents, each
// node once however often it is shared. Revise evaluates every node from
// its children's values, narrows the root to what the relation allows, then
// goes back from the root to the leaves, each node narrowing its children
// from its own (narrowed) set; a node shared by several parents has been
// narrowed by all of them when its turn comes. The variables' new domains
// are those of their nodes. The passes repeat while they narrow a variable
// (up to MaxPasses), each evaluation then bounded by what the previous pass
// narrowed the node to, since a node may be narrowed after the nodes that
// read it (an if-then-else decided by its own result). Cost: one value
// function and one inverse per node and child, per pass.
class ZORWBX_API ZorWBValueConstraint {
  public:
    // A root whose subgraph holds a cycle, a null child, or more nodes than
    // memory allows gives a constraint that is not valid.
    explicit ZorWBValueConstraint(const ZorWBExpression* root);

    bool IsValid() const { return !_nodes.empty(); }
    // The variables of the subgraph by index, ascending.
    const std::vector<int>& GetVariables() const { return _variables; }

    // The root's value when the variables range over their domains (by
    // variable index).
    ZorWBValue Evaluate(const ZorWBEnvironment& environment,
                        const std::vector<ZorWBValue>& domains);
    // Narrows the domains of the constraint's variables (in place) to the
    // points that can satisfy root RELATION 0 under the tolerance; false
    // when that leaves nothing (domains may then be partly narrowed).
    bool Revise(const ZorWBEnvironment& environment, ZorWBEquationType relation, double tolerance,
                std::vector<ZorWBValue>& domains);

    static constexpr int MaxPasses = 4;

  private:
    struct Node {
        const ZorWBExpression* expression;
        std::vector<int> children;  // positions in _nodes
        int variable;               // variable index, or -1
    };

    // Places the nodes of the subgraph, children first; false for a cycle, a
    // null child or memory running short.
    bool Lay(const ZorWBExpression* root);
    // Each node's value from its children's; with keepNarrowed, intersected
    // with what the previous pass narrowed it to.
    void Forward(const ZorWBEnvironment& environment, const std::vector<ZorWBValue>& domains,
                 bool keepNarrowed);
    bool ReviseOnce(const ZorWBEnvironment& environment, ZorWBEquationType relation,
                    double tolerance, std::vector<ZorWBValue>& domains, bool keepNarrowed,
                    bool& narrowed);
    // The root's value narrowed to what the relation allows.
    bool NarrowRoot(const ZorWBEnvironment& environment, ZorWBEquationType relation,
                    double tolerance);

    std::vector<Node> _nodes;  // children first; the root last
    std::vector<int> _variables;
    std::vector<ZorWBValue> _values;  // one per node, scratch of Revise
};

#endif
