// Removal of nodes: RemoveExpression, RemoveUniqueChildren and the end of
// temporary storage.
//
// Method. The nodes to destroy are gathered first, then destroyed as one
// batch. The equation roots are marked with a walk number first, to be
// known in constant time. A descendant goes when every parent it has goes: each candidate
// counts down the parent entries not yet accounted for, one per edge from a
// node that goes, so a constant shared by a million dying parents is settled
// by a million decrements. The batch is marked with a walk number; each
// survivor that held a dying node as a child, or was held by one, has its
// list filtered once; then the dying nodes are deleted without telling each
// other. Equation roots, variables (but the one removed on purpose),
// predefined constants and temporary nodes never go with a parent.
//
// Invariant: outside a batch, a node lists each parent once per holding, and
// a variable's index is its position in the factory's variable list.
//
// Cost: linear in the nodes destroyed and the edges that touch them (hashing
// aside), plus one pass over the factory's node lists; no parent list is
// searched for a single entry.

#include <exception>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"

unsigned int ZorWBFactory::MarkEquationRoots() {
    unsigned int walk = NewWalk();
    for (const ZorWBEquation* equation : _equations) {
        if (equation->GetRoot()) equation->GetRoot()->_walkMark = walk;
    }
    return walk;
}

bool ZorWBFactory::IsRemovableDescendant(const ZorWBExpression* node, unsigned int roots) const {
    if (node->GetType() == ZorWBExpressionType::Variable || node->_walkMark == roots) return false;
    ZorWBPredefinedConst index;
    if (node->IsLeaf() && IsPredefinedConstant(static_cast<const ZorWBConstant*>(node), index))
        return false;
    return node->GetProperty(_temporaryProperty) == GetDefaultPropertyValue(_temporaryProperty);
}

std::vector<ZorWBExpression*> ZorWBFactory::UniqueDescendants(const ZorWBExpression* node,
                                                              unsigned int roots) const {
    std::vector<ZorWBExpression*> doomed;
    // Parent entries of each candidate not yet known to go.
    std::unordered_map<const ZorWBExpression*, int> remaining;
    std::vector<const ZorWBExpression*> work{node};
    while (!work.empty()) {
        const ZorWBExpression* parent = work.back();
        work.pop_back();
        for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(parent); ++i) {
            ZorWBExpression* child = ZorWBGraphWalk::Child(parent, i);
            if (!IsRemovableDescendant(child, roots)) continue;
            // A lone parent entry is the one of the parent going: no count.
            if (child->GetNbOfParents() > 1) {
                auto entry = remaining.emplace(child, child->GetNbOfParents()).first;
                if (--entry->second != 0) continue;
            }
            doomed.push_back(child);
            if (!child->IsLeaf()) work.push_back(child);
        }
    }
    return doomed;
}

namespace {

// Keeps the entries of list for which drop does not hold, in order, in place.
template <class Drop>
void Filter(ZorQelListPZorWBExpression& list, Drop&& drop) {
    int kept = 0;
    for (int i = 0; i < list.GetSize(); ++i) {
        ZorWBExpression* node = list[i];
        if (!drop(node)) list.Set(kept++, node);
    }
    list.SetSize(kept);
}

}  // namespace

bool ZorWBFactory::DestroyNodes(const std::vector<ZorWBExpression*>& nodes) try {
    if (nodes.empty()) return true;
    unsigned int walk = NewWalk();
    for (ZorWBExpression* node : nodes)
        node->_walkMark = walk;
    auto dying = [walk](const ZorWBExpression* node) { return node->_walkMark == walk; };
    // The survivors next to the batch, each once: what may run short of
    // memory is done before anything changes.
    std::unordered_set<const ZorWBExpression*> seen;
    std::vector<ZorWBOperator*> parents;
    std::vector<ZorWBExpression*> children;
    for (ZorWBExpression* node : nodes) {
        for (int i = 0; i < node->GetNbOfParents(); ++i) {
            ZorWBExpression* parent = node->GetParent(i);
            if (!dying(parent) && seen.insert(parent).second)
                parents.push_back(static_cast<ZorWBOperator*>(parent));
        }
    }
    std::vector<char> lostUnbuffered(parents.size(), 0);
    seen.clear();
    for (ZorWBExpression* node : nodes) {
        for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(node); ++i) {
            ZorWBExpression* child = ZorWBGraphWalk::Child(node, i);
            if (!dying(child) && seen.insert(child).second) children.push_back(child);
        }
    }

    NoteStructureChange();
    for (ZorWBExpression* child : children)
        child->_parents.RemoveIf(dying);
    for (std::size_t i = 0; i < parents.size(); ++i)
        lostUnbuffered[i] = parents[i]->DropChildren(dying);
    Filter(_expressions, dying);
    Filter(_temporaryExpressions, dying);
    for (ZorWBExpression* node : nodes) {
        node->_parents.Clear();
        if (!node->IsLeaf()) node->_count = 0;
    }
    // These walks renumber the marks: the batch is not known any more.
    for (std::size_t i = 0; i < parents.size(); ++i) {
        if (lostUnbuffered[i]) ZorWBExpression::GiveBufferingBack(parents[i]);
        parents[i]->ResetBufferComplete();
    }
    for (ZorWBExpression* node : nodes)
        delete node;
    return true;
} catch (const std::exception&) {
    return false;
}

void ZorWBFactory::ForgetVariable(int index) {
    if (!_variables.RemoveAt(index)) return;
    for (int i = index; i < _variables.GetSize(); ++i)
        _variables[i]->SetIndex(i);
    for (ZorWBEquation* equation : _equations)
        equation->ForgetVariableIndex(index);
}

bool ZorWBFactory::RemoveExpression(ZorWBExpression*& e, const ZorWBExpression* exceptParent) try {
    if (!e || e->GetFactory() != this) return false;
    ZorWBPredefinedConst index;
    if (e->IsLeaf() && IsPredefinedConstant(static_cast<ZorWBConstant*>(e), index)) return false;
    if (!_expressions.Contains(e) || !e->CanBeRemoved(exceptParent)) return false;
    unsigned int roots = MarkEquationRoots();
    if (e->_walkMark == roots) return false;
    std::vector<ZorWBExpression*> doomed = UniqueDescendants(e, roots);
    doomed.push_back(e);
    bool variable = e->GetType() == ZorWBExpressionType::Variable;
    int variableIndex = variable ? static_cast<ZorWBVariable*>(e)->GetIdx() : -1;
    if (!DestroyNodes(doomed)) return false;
    if (variable) ForgetVariable(variableIndex);
    e = nullptr;
    return true;
} catch (const std::exception&) {
    return false;
}
