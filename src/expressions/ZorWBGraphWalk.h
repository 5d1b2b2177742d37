#ifndef ZORWB_GRAPHWALK_H
#define ZORWB_GRAPHWALK_H

#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"

// Walks over the subgraph below a node without recursion, so that graphs of
// any depth are handled on a small call stack. Used inside the library.
class ZorWBGraphWalk {
  public:
    static int NbOfChildren(const ZorWBExpression* node) {
        return node->IsLeaf() ? 0 : node->_count;
    }
    // The children that an evaluation reaches: all of them, but none of an
    // IfThenElse lacking one of its three (it is undefined without them).
    static int NbOfEvaluatedChildren(const ZorWBExpression* node) {
        int n = NbOfChildren(node);
        return node->GetType() == ZorWBExpressionType::IfThenElse && n != 3 ? 0 : n;
    }
    static ZorWBExpression* Child(const ZorWBExpression* node, int i) {
        return static_cast<const ZorWBOperator*>(node)->Children()[i];
    }

    // Calls visit(node) once for each node of the subgraph, root included,
    // parents before children and children in order; a visit returning
    // false stops the walk. Nodes are marked with the factory's walk number,
    // so visit must not start another marked walk (evaluation, reset).
    template <class Visit>
    static void PreOrder(const ZorWBExpression* root, Visit&& visit) {
        if (!root) return;
        unsigned int walk = root->_factory->NewWalk();
        std::vector<const ZorWBExpression*> stack{root};
        root->_walkMark = walk;
        while (!stack.empty()) {
            const ZorWBExpression* node = stack.back();
            stack.pop_back();
            if (!visit(node)) return;
            for (int i = NbOfChildren(node) - 1; i >= 0; --i) {
                const ZorWBExpression* child = Child(node, i);
                if (child->_walkMark == walk) continue;
                child->_walkMark = walk;
                stack.push_back(child);
            }
        }
    }

    // The nodes of the subgraph in the order of PreOrder.
    static std::vector<ZorWBExpression*> Collect(const ZorWBExpression* root) {
        std::vector<ZorWBExpression*> nodes;
        PreOrder(root, [&nodes](const ZorWBExpression* node) {
            nodes.push_back(const_cast<ZorWBExpression*>(node));
            return true;
        });
        return nodes;
    }

    // Computes compute(node) for every node of the subgraph, children first,
    // each node once, and returns the root's result. results maps every node
    // reached to its result, so compute reads its children's results there.
    // Unlike PreOrder this walk marks nothing: compute may evaluate, create
    // nodes or walk again.
    template <class Result, class Compute>
    static Result PostOrder(const ZorWBExpression* root,
                            std::unordered_map<const ZorWBExpression*, Result>& results,
                            Compute&& compute) {
        if (!root) return Result();
        struct Frame {
            const ZorWBExpression* node;
            int next;
        };
        auto found = results.find(root);
        if (found != results.end()) return found->second;
        std::vector<Frame> stack{{root, 0}};
        results.emplace(root, Result());
        while (!stack.empty()) {
            Frame& frame = stack.back();
            if (frame.next < NbOfChildren(frame.node)) {
                const ZorWBExpression* child = Child(frame.node, frame.next++);
                // Nodes already reached (done, or on the stack) are skipped.
                if (results.emplace(child, Result()).second) stack.push_back({child, 0});
                continue;
            }
            const ZorWBExpression* node = frame.node;
            stack.pop_back();
            Result result = compute(node);
            results[node] = result;
        }
        return results[root];
    }

    // The number of nodes of the tree that root unfolds to when each shared
    // node is written at each of its uses (what a text without sharing
    // holds), counted up to limit: the result is at most limit. Linear in
    // the size of the graph, however large the tree.
    static long long UnfoldedSize(const ZorWBExpression* root, long long limit) {
        std::unordered_map<const ZorWBExpression*, long long> sizes;
        return PostOrder<long long>(root, sizes, [&sizes, limit](const ZorWBExpression* node) {
            long long size = 1;
            for (int i = 0; i < NbOfChildren(node) && size < limit; ++i)
                size += sizes[Child(node, i)];
            return size < limit ? size : limit;
        });
    }

    // The largest tree that the writers without sharing (the equation
    // printer, the replay terms, the trace) unfold an expression to: a graph
    // whose shared nodes unfold to more nodes is not written out, since its
    // text could grow exponentially with the graph.
    static constexpr long long MaxUnfoldedSize = 1LL << 24;

    static bool IsUnfoldable(const ZorWBExpression* root) {
        return UnfoldedSize(root, MaxUnfoldedSize + 1) <= MaxUnfoldedSize;
    }

    // Calls compute(node) for the nodes below root that still need it,
    // children before parents, each once: from a node the walk goes into its
    // child i only when follow(node, i) holds, and it does not enter a node
    // for which known(node) holds (compute is expected to make it known).
    // root itself is not computed. Like PostOrder it marks nothing.
    template <class Known, class Follow, class Compute>
    static void PostOrderBelow(const ZorWBExpression* root, Known&& known, Follow&& follow,
                               Compute&& compute) {
        if (!root) return;
        struct Frame {
            const ZorWBExpression* node;
            int next;
        };
        std::vector<Frame> stack{{root, 0}};
        // Guards against entering a node twice (and against a cycle).
        std::unordered_set<const ZorWBExpression*> entered{root};
        while (!stack.empty()) {
            Frame& frame = stack.back();
            const ZorWBExpression* node = frame.node;
            if (frame.next < NbOfChildren(node)) {
                int i = frame.next++;
                const ZorWBExpression* child = Child(node, i);
                if (follow(node, i) && !known(child) && entered.insert(child).second)
                    stack.push_back({child, 0});
                continue;
            }
            stack.pop_back();
            if (node != root) compute(node);
        }
    }
};

#endif
