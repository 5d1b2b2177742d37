#ifndef TESTS_SYMBOLIC_NODE_ERRORS_H
#define TESTS_SYMBOLIC_NODE_ERRORS_H

// Whether computing some node of a graph reports an error; shared by the
// symbolic tests and the symbolic fuzz target, so it depends on the library
// alone (no GoogleTest).

#include <unordered_set>
#include <utility>
#include <vector>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"

// Each node clears a lone domain error before it is computed, so the error
// word after the root tells only about the nodes computed last: with the
// buffers reset, the nodes are asked for their values children first, each
// request then computes one node, and the word is read after each.
inline bool SomeNodeFails(ZorWBFactory& f, const ZorWBExpression* e) {
    f.ResetBuffer(nullptr);
    const ZorWBEnvironment& environment = e->GetEnvironment();
    std::vector<std::pair<const ZorWBExpression*, int>> stack{{e, 0}};
    std::unordered_set<const ZorWBExpression*> done;
    bool failed = false;
    while (!stack.empty()) {
        auto& [node, next] = stack.back();
        if (next < node->GetNbOfChildren()) {
            const ZorWBExpression* child = node->GetChild(next++);
            if (child && !done.count(child)) stack.push_back({child, 0});
            continue;
        }
        if (done.insert(node).second) {
            environment.ClearError();
            node->GetValue();
            failed = failed || environment.GetError() != ZorWBError::None;
        }
        stack.pop_back();
    }
    environment.ClearError();
    return failed;
}

#endif
