// Invalidation of buffers: a change below a node (a variable or a constant
// assigned, a property set, a child replaced) invalidates the buffer of
// every buffered node above it (ResetBufferComplete).
//
// The upward walk stops at nodes marked "invalid above" (_invalidAbove),
// whose ancestors it has nothing to do for. The invariant that makes the
// stop right:
//
//   (U) a marked node is buffered and invalid, and each of its buffered
//       parents is marked too.
//
// By induction over the parents every buffered ancestor of a marked node is
// then invalid, which is all the full walk would make of them. The walk
// marks each node it invalidates; each of their buffered parents is either
// invalidated by the same walk or marked already, so (U) holds after it.
//
// What else touches (U), and how it is kept:
// - A node becoming valid (FinishValue, the only place that validates) is
//   unmarked. Its children were computed by the same evaluation, hence
//   valid and unmarked, except the branches that an IfThenElse did not take
//   (a valid parent over an invalid child): their marks are cleared, and
//   those of the marked nodes below them. The clearing goes down through
//   marked nodes only: an unmarked buffered node has no marked child (U).
// - A node becoming unbuffered is unmarked: (U) asks nothing of unbuffered
//   parents. A node becoming buffered again is marked when all its buffered
//   parents are, and otherwise clears the marks below it.
// - A new node is marked: it is invalid and has no parent.
// - The resets that invalidate without walking up (ResetBufferPartial, the
//   factory-wide reset, the downward resets below the level
//   ZorWBLevel::ResetBufferUpward) mark nothing: a node that was valid had
//   no marked child (U), and one that was invalid keeps its mark.
//
// Cost: the walk visits each node it invalidates once, and stops at once
// below a part of the graph that an earlier change invalidated already, so
// that changing many variables between two evaluations costs the nodes
// invalidated, not the ancestors of each variable. Each mark cleared was
// set by a walk or at creation, so clearing adds at most as much again.
// When memory runs short in a walk, (U) may no longer hold: the factory
// then walks to the top for good. The full walk stays available as the
// reference (ZorWBFactory::EnableResetShortcut).

#include <exception>
#include <vector>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"

void ZorWBExpression::ResetBufferComplete() {
    if (!AllowsBufferEval()) return;
    ZorWBFactory& factory = *_factory;
    const bool shortcut = factory.UsesResetShortcut();
    if (shortcut && _invalidAbove) return;  // invalid already, as is everything above
    _flags = 0;
    _invalidAbove = true;
    ++factory._nbOfBufferResets;
    if (_parents.IsEmpty()) return;
    // Each ancestor once: an unbuffered one stops the walk, since all its
    // ancestors are unbuffered too; so does a marked one with the shortcut.
    const unsigned int walk = shortcut ? 0 : factory.NewWalk();
    std::vector<ZorWBExpression*>& stack = factory._walkStack;
    std::size_t base = stack.size();
    try {
        stack.push_back(this);
        while (stack.size() > base) {
            ZorWBExpression* node = stack.back();
            stack.pop_back();
            for (int i = 0; i < node->_parents.GetSize(); ++i) {
                ZorWBExpression* parent = node->_parents.Get(i);
                if (!parent->AllowsBufferEval()) continue;
                if (shortcut ? parent->_invalidAbove : parent->_walkMark == walk) continue;
                if (!shortcut) parent->_walkMark = walk;
                parent->_flags = 0;
                parent->_invalidAbove = true;
                ++factory._nbOfBufferResets;
                stack.push_back(parent);
            }
        }
    } catch (const std::exception&) {
        stack.resize(base);
        factory._resetShortcutBroken = true;  // marked nodes may lie below valid ones
    }
}

void ZorWBExpression::UnmarkBelow(const ZorWBExpression* node) {
    ZorWBFactory& factory = *node->_factory;
    std::vector<ZorWBExpression*>& stack = factory._walkStack;
    std::size_t base = stack.size();
    try {
        stack.push_back(const_cast<ZorWBExpression*>(node));
        while (stack.size() > base) {
            ZorWBExpression* current = stack.back();
            stack.pop_back();
            for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(current); ++i) {
                ZorWBExpression* child = ZorWBGraphWalk::Child(current, i);
                if (!child->_invalidAbove) continue;
                child->_invalidAbove = false;
                stack.push_back(child);
            }
        }
    } catch (const std::exception&) {
        stack.resize(base);
        factory._resetShortcutBroken = true;
    }
}

void ZorWBExpression::UnmarkUntakenBranches() const {
    for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(this); ++i) {
        ZorWBExpression* child = ZorWBGraphWalk::Child(this, i);
        if (!child->_invalidAbove) continue;
        child->_invalidAbove = false;
        UnmarkBelow(child);
    }
}

void ZorWBExpression::MakeUnbuffered() {
    _flags = NoBufferFlag;
    _invalidAbove = false;
}

void ZorWBExpression::MakeBuffered() {
    bool wasUnbuffered = !AllowsBufferEval();
    _flags = 0;
    if (!wasUnbuffered) return;  // invalidated in place, as by ResetBufferPartial
    bool parentsMarked = true;
    for (int i = 0; i < _parents.GetSize() && parentsMarked; ++i) {
        const ZorWBExpression* parent = _parents.Get(i);
        parentsMarked = !parent->AllowsBufferEval() || parent->_invalidAbove;
    }
    _invalidAbove = parentsMarked;
    if (!parentsMarked) UnmarkBelow(this);
}

bool ZorWBFactory::UsesResetShortcut() const {
    return _resetShortcut && !_resetShortcutBroken;
}

void ZorWBFactory::EnableResetShortcut(bool enable) {
    _resetShortcut = enable;
}
