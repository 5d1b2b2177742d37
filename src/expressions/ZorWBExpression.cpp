#include "expressions/ZorWBExpression.h"

#include <climits>
#include <exception>
#include <new>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBNodeAnnex.h"

namespace {
const ZorWBValue UndefinedValue;
}  // namespace

ZorWBExpression::ZorWBExpression(ZorWBFactory* factory, ZorWBExpressionType type, int tag)
    : _factory(factory), _tag(tag), _type(static_cast<unsigned char>(type)) {
    const ZorWBEnvironment& environment = factory->GetEnvironment();
    _value.UpdateEnv(environment);
    if (environment.GetWBLevel() != ZorWBLevel::All) {
        ZorWBNodeAnnex* annex = MakeAnnex();
        if (annex) annex->previousValue.reset(new (std::nothrow) ZorWBValue());
        if (annex && annex->previousValue) annex->previousValue->UpdateEnv(environment);
    }
}

ZorWBExpression::~ZorWBExpression() {
    NoteStructureChange();
    // While the factory dies every node goes, so nobody needs to be told.
    if (!IsFactoryDestroying()) {
        while (!_parents.IsEmpty()) {
            ZorWBExpression* parent = _parents.GetLast();
            if (!parent->RemoveChild(this)) _parents.Remove(parent);
        }
    }
    delete GetAnnex();
}

ZorWBNodeAnnex* ZorWBExpression::MakeAnnex() {
    if (ZorWBNodeAnnex* annex = GetAnnex()) return annex;
    ZorWBNodeAnnex* annex = new (std::nothrow) ZorWBNodeAnnex();
    if (annex && !_parents.SetAnnex(annex)) {
        delete annex;
        return nullptr;
    }
    return annex;
}

const ZorWBEnvironment& ZorWBExpression::GetEnvironment() const {
    return _factory->GetEnvironment();
}

bool ZorWBExpression::IsFactoryDestroying() const {
    return _factory->_destroying;
}

void ZorWBExpression::NoteStructureChange() const {
    _factory->NoteStructureChange();
}

const ZorWBValue& ZorWBExpression::GetPreviousValue() const {
    ZorWBNodeAnnex* annex = GetAnnex();
    return annex && annex->previousValue ? *annex->previousValue : UndefinedValue;
}

// ------------------------------------------------------------ default slots

int ZorWBExpression::GetNbOfChildren() const {
    return 0;
}
const ZorWBExpression* ZorWBExpression::GetChild(int) const {
    return nullptr;
}
ZorWBExpression* ZorWBExpression::GetChild(int) {
    return nullptr;
}
bool ZorWBExpression::AddChild(ZorWBExpression*) {
    return false;
}
bool ZorWBExpression::RemoveChild(ZorWBExpression*) {
    return false;
}
bool ZorWBExpression::RemoveChild(int) {
    return false;
}
bool ZorWBExpression::ReplaceChild(int, ZorWBExpression*) {
    return false;
}
void ZorWBExpression::SetParameter(int, double) {}
double ZorWBExpression::GetParameter(int) const {
    return 0.0;
}
int ZorWBExpression::GetNbOfParameters() const {
    return 0;
}
const ZorWBValue& ZorWBExpression::GetExprValue() const {
    return _value;
}
void ZorWBExpression::SetExprValue(const ZorWBValue& value) {
    _value = value;
}
void ZorWBExpression::RemoveUniqueChildren() {}

// ------------------------------------------------------------ parents

bool ZorWBExpression::AddParent(ZorWBExpression* child, ZorWBExpression* parent) {
    if (!child || !parent) return false;
    if (!child->_parents.Add(parent)) return false;
    if (!child->AllowsBufferEval()) {
        // An unbuffered child makes the parent and all its ancestors unbuffered.
        parent->MakeUnbuffered();
        for (int i = 0; i < parent->_parents.GetSize(); ++i) {
            ZorWBExpression* grandparent = parent->_parents.Get(i);
            if (grandparent->AllowsBufferEval())
                grandparent->SetAllowBufferEval(false, true, false);
        }
    }
    return true;
}

bool ZorWBExpression::RemoveParent(ZorWBExpression* child, ZorWBExpression* parent) {
    if (!child || !parent) return false;
    if (!child->_parents.Remove(parent)) return false;
    if (child->AllowsBufferEval() || child->IsFactoryDestroying()) return true;
    GiveBufferingBack(parent);
    return true;
}

void ZorWBExpression::GiveBufferingBack(ZorWBExpression* parent) {
    // The parent may have been unbuffered only because of the lost child.
    if (!parent->ValidatesWithoutOwnFlag()) return;
    parent->MakeBuffered();
    for (int i = 0; i < parent->_parents.GetSize(); ++i) {
        ZorWBExpression* grandparent = parent->_parents.Get(i);
        if (!grandparent->AllowsBufferEval()) grandparent->SetAllowBufferEval(true, true, true);
    }
}

bool ZorWBExpression::CanBeRemoved(const ZorWBExpression* exceptParent) const {
    int count = _parents.GetSize();
    return count == 0 || (count == 1 && _parents.Get(0) == exceptParent);
}

// ------------------------------------------------------------ buffers

bool ZorWBExpression::ValidateAllowBufferEval() const {
    return AllowsBufferEval();
}

// Whether the node could be buffered if its own no-buffer bit were clear: the
// test applied when buffering is given back (the node's own bit is what is
// being decided, so it cannot be part of the answer).
bool ZorWBExpression::ValidatesWithoutOwnFlag() const {
    unsigned int saved = _flags;
    _flags = 0;
    bool valid = ValidateAllowBufferEval();
    _flags = saved;
    return valid;
}

void ZorWBExpression::SetAllowBufferEval(bool allow, bool propagate, bool validate) try {
    // How often a node is computed depends on it (see the compiled programs).
    NoteStructureChange();
    auto apply = [allow, validate](ZorWBExpression* node) {
        if (!allow) {
            node->MakeUnbuffered();
        } else if (!validate || node->ValidatesWithoutOwnFlag()) {
            node->MakeBuffered();
        }
    };
    apply(this);
    if (!propagate) return;
    // Forbidding reaches every ancestor once (marked on push). Giving back
    // travels from each node that became buffered to its unbuffered parents,
    // so a parent is decided again whenever one of its children changes.
    std::vector<ZorWBExpression*> stack{this};
    bool first = true;
    while (!stack.empty()) {
        ZorWBExpression* node = stack.back();
        stack.pop_back();
        if (!first) {
            if (allow && node->AllowsBufferEval()) continue;  // decided already
            if (allow) apply(node);
        }
        first = false;
        if (allow && !node->AllowsBufferEval()) continue;
        for (int i = 0; i < node->_parents.GetSize(); ++i) {
            ZorWBExpression* parent = node->_parents.Get(i);
            if (parent->AllowsBufferEval() == allow) continue;
            if (!allow) parent->MakeUnbuffered();
            stack.push_back(parent);
        }
    }
} catch (const std::exception&) {
}

void ZorWBExpression::ResetBuffer(bool complete) {
    if (complete) {
        ResetBufferComplete();
    } else {
        ResetBufferPartial();
    }
}

void ZorWBExpression::ResetBufferDownward() try {
    // The nodes are gathered first: the leaves' resets travel upward and
    // would disturb a walk in progress.
    std::vector<ZorWBExpression*> nodes = ZorWBGraphWalk::Collect(this);
    for (ZorWBExpression* node : nodes) {
        if (node->IsLeaf()) {
            node->ResetBufferComplete();
        } else {
            node->ResetBufferPartial();
        }
    }
} catch (const std::exception&) {
}

// ------------------------------------------------------------ properties

int ZorWBExpression::GetProperty(int i) const {
    ZorWBNodeAnnex* annex = GetAnnex();
    if (annex && i >= 0 && static_cast<std::size_t>(i) < annex->properties.size() &&
        annex->properties[static_cast<std::size_t>(i)] != -1)
        return annex->properties[static_cast<std::size_t>(i)];
    return _factory->GetDefaultPropertyValue(i);
}

void ZorWBExpression::SetProperty(int i, int value) try {
    if (i < 0 || i == INT_MAX) return;
    ZorWBNodeAnnex* annex = GetAnnex();
    if (!annex || annex->properties.empty()) {
        if (value == _factory->GetDefaultPropertyValue(i)) return;
        annex = MakeAnnex();
        if (!annex) return;
    }
    std::vector<int>& properties = annex->properties;
    if (properties.size() <= static_cast<std::size_t>(i))
        properties.resize(static_cast<std::size_t>(i) + 1, -1);
    properties[static_cast<std::size_t>(i)] = value;
    // A property can change how the node evaluates.
    if (GetEnvironment().CheckLevel(ZorWBLevel::ResetBufferUpward)) ResetBufferComplete();
} catch (const std::exception&) {
}
