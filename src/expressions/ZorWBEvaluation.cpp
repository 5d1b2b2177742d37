// Evaluation of nodes: the buffered value evaluation behind GetValue and the
// plain real-number evaluation behind Eval(), which runs a compiled program
// (ZorWBRealProgram) for roots evaluated again and again.
//
// Both follow the order of a recursive evaluation, in which each node asks
// its children for their values in order, but run one explicit stack (kept
// by the factory, so that evaluating does not allocate once it has grown)
// instead of recursing: a node is pushed, its children that still need work
// are pushed above it in turn, and the node is computed once they are all
// done; its DoEval then reads the children's results where the walk left
// them. A Sum, Product, Min or Max folds each child in as soon as it is
// ready, before the next one is asked for.
//
// Each walk has a number, written into the nodes it computes. A buffered
// node is computed once per walk, however many parents ask for it. An
// unbuffered node keeps no value, so it is computed again at every request,
// as a recursive evaluation would: its cost is the number of paths that
// reach it through unbuffered nodes.
//
// Every node that the value evaluation computes starts by clearing a lone
// domain error (InitEnvForEval): the error word an evaluation leaves is
// that of the nodes computed since the last node started.
//
// A node has one walk mark. The value evaluation writes its walk number
// there (and keeps its results in the buffers); the real evaluation writes
// the index of a slot of the factory that holds the node's real, with the
// bit RealSlotMark, which no walk number has, and the slots go when the
// evaluation ends. A node counts as computed in the running real
// evaluation while its mark names one of that evaluation's slots and the
// slot names the node. Black boxes run value evaluations of their
// arguments in the middle of a real one (and may run real ones in the
// middle of a value one): a walk started beneath a walk of the other kind
// saves the marks it overwrites and gives them back at its end, so neither
// computes a node twice for the other.

#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <optional>
#include <vector>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBNodeAnnex.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBProgramCache.h"
#include "expressions/ZorWBRealFunctions.h"
#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBRealWalk.h"
#include "expressions/ZorWBValueProgram.h"

namespace {
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
}  // namespace

unsigned int ZorWBFactory::NewWalk() {
    if (++_walkCounter == RealSlotMark) {
        // The numbers wrapped: forget every walk number so that none is
        // mistaken for a new walk (the slots of a running real evaluation
        // stay: they name their nodes).
        auto forget = [](ZorWBExpression* node) {
            if (!(node->_walkMark & RealSlotMark)) node->_walkMark = 0;
        };
        for (ZorWBExpression* node : _expressions)
            forget(node);
        for (ZorWBExpression* node : _temporaryExpressions)
            forget(node);
        for (auto& saved : _savedMarks) {
            if (!(saved.second & RealSlotMark)) saved.second = 0;
        }
        _valueWalk = 0;
        _walkCounter = 1;
    }
    return _walkCounter;
}

ZorWBFactory::RealSlot* ZorWBFactory::RunningRealSlot(const ZorWBExpression* node) {
    unsigned int mark = node->_walkMark;
    if (!(mark & RealSlotMark) || _realBase == NoRealWalk) return nullptr;
    std::size_t index = mark & ~RealSlotMark;
    if (index < _realBase || index >= _realSlots.size()) return nullptr;
    RealSlot& slot = _realSlots[index];
    return slot.node == node ? &slot : nullptr;
}

bool ZorWBFactory::StartRealSlot(const ZorWBExpression* node, double real) {
    std::size_t index = _realSlots.size();
    if (index >= RealSlotMark) return false;
    try {
        _realSlots.push_back({node, real});
    } catch (const std::bad_alloc&) {
        return false;
    }
    Mark(node, RealSlotMark | static_cast<unsigned int>(index), _realCrossing);
    return true;
}

void ZorWBFactory::Mark(const ZorWBExpression* node, unsigned int mark, bool save) {
    if (save) {
        try {
            _savedMarks.emplace_back(node, node->_walkMark);
        } catch (const std::bad_alloc&) {
            return;  // the node stays as the outer walk left it
        }
    }
    node->_walkMark = mark;
}

void ZorWBFactory::RestoreMarks(std::size_t saved) {
    while (_savedMarks.size() > saved) {
        _savedMarks.back().first->_walkMark = _savedMarks.back().second;
        _savedMarks.pop_back();
    }
}

// The condition first, then only the branch it selects.
int ZorWBExpression::NextIfThenElseChild(const ZorWBExpression* node, int position, bool real) {
    if (position == 0) return ZorWBGraphWalk::NbOfChildren(node) == 3 ? 0 : -1;
    if (position > 1) return -1;
    const ZorWBExpression* condition = ZorWBGraphWalk::Child(node, 0);
    int branch = real ? ZorWBIfThenElseOperator::ChosenBranch(RealOf(condition))
                      : ZorWBIfThenElseOperator::ChosenBranch(ValueOf(condition));
    return branch > 0 ? branch : -1;
}

template <bool Real>
int ZorWBExpression::RunEvaluation(double* real) const {
    ZorWBFactory& factory = *_factory;
    unsigned int outerValueWalk = factory._valueWalk;
    std::size_t savedMarks = factory._savedMarks.size();
    // Not const: as constants of the real walk, clang would find the lambdas'
    // captures of them needless.
    bool crossing = !Real && factory._realBase != ZorWBFactory::NoRealWalk;
    unsigned int walk = Real ? 0 : factory.NewWalk();
    std::optional<ZorWBFactory::RealWalk> realWalk;
    if (Real) realWalk.emplace(factory);
    if (!Real) factory._valueWalk = walk;
    ++factory._evaluationDepth;

    std::vector<ZorWBFactory::EvalFrame>& stack = factory._evalStack;
    std::size_t base = stack.size();
    int computed = 0;
    // Whether a request is answered without computing: only a buffered node
    // keeps what it was computed to.
    auto ready = [walk, &factory](const ZorWBExpression* node) {
        if (!node->AllowsBufferEval()) return false;
        if (Real) return factory.RunningRealSlot(node) != nullptr;
        return node->_walkMark == walk || (node->_flags & BufferValidFlag) != 0;
    };
    auto start = [walk, crossing, &factory](const ZorWBExpression* node) {
        if (Real) {
            factory.StartRealSlot(node, std::numeric_limits<double>::quiet_NaN());
        } else {
            factory.Mark(node, walk, crossing);
            factory.InitEnvForEval();
        }
    };
    auto finish = [&factory, &computed](const ZorWBExpression* node, bool folded) {
        ++computed;
        if (Real) {
            // The slot is looked up after DoEval, whose own evaluations may
            // move the slots.
            double result = folded ? 0.0 : node->DoEval();
            ZorWBFactory::RealSlot* slot = factory.RunningRealSlot(node);
            if (slot && !folded) slot->real = result;
        } else {
            node->FinishValue(folded);
            ++factory._nbOfEvaluations;
        }
    };
    auto fold = [](const ZorWBExpression* node, int i) {
        const ZorWBOperator* op = static_cast<const ZorWBOperator*>(node);
        if (Real) {
            op->FoldReal(i);
        } else {
            op->FoldValue(i);
        }
    };
    auto push = [&stack](const ZorWBExpression* node) {
        try {
            stack.push_back({node, 0});
            return true;
        } catch (const std::bad_alloc&) {
            return false;  // the node is read as it stands
        }
    };

    start(this);
    if (!push(this)) finish(this, false);
    while (stack.size() > base) {
        ZorWBFactory::EvalFrame& frame = stack.back();
        const ZorWBExpression* node = frame.node;
        int position = frame.position++;
        bool folds = ZorWBIsFoldType(node->GetType());
        // The child asked for last is ready: a fold takes it in now.
        if (folds && position > 0) fold(node, position - 1);
        int childIndex = node->GetType() == ZorWBExpressionType::IfThenElse
                             ? NextIfThenElseChild(node, position, Real)
                             : (position < ZorWBGraphWalk::NbOfChildren(node) ? position : -1);
        if (childIndex < 0) {
            stack.pop_back();
            finish(node, folds && position > 0);
            continue;
        }
        const ZorWBExpression* child = ZorWBGraphWalk::Child(node, childIndex);
        if (ready(child)) continue;
        start(child);
        // A leaf has nothing below it to wait for.
        if (child->IsLeaf() || !push(child)) finish(child, false);
    }

    --factory._evaluationDepth;
    if (Real) {
        ZorWBFactory::RealSlot* slot = factory.RunningRealSlot(this);
        if (real) *real = slot ? slot->real : std::numeric_limits<double>::quiet_NaN();
    } else {
        factory.RestoreMarks(savedMarks);
        factory._valueWalk = outerValueWalk;
    }
    return computed;
}

const ZorWBValue& ZorWBExpression::ComputeValue() const {
    ZorWBFactory& factory = *_factory;
    factory.SetBufferUsed();
    // A compiled program marks without saving: it stays out of value
    // evaluations started beneath a real one.
    ZorWBProgramCache<ZorWBValueProgram>* programs =
        factory._realBase == ZorWBFactory::NoRealWalk ? factory.ValuePrograms() : nullptr;
    if (ZorWBValueProgram* program = programs ? programs->Find(this) : nullptr) {
        ZorWBProgramCache<ZorWBValueProgram>::Running running(*programs);
        program->Run(factory);
        return _value;
    }
    int computed = RunEvaluation<false>(nullptr);
    if (programs) programs->Remember(this, computed);
    return _value;
}

void ZorWBExpression::FinishValue(bool folded) const {
    if (!folded && (IsLeaf() || !_factory->_fastValues ||
                    !static_cast<const ZorWBOperator*>(this)->EvaluateFast()))
        DoEval(_value);
    ZorWBNodeAnnex* annex = GetAnnex();
    if (annex && annex->previousValue) *annex->previousValue = _value;
    if (!AllowsBufferEval()) return;
    _flags |= BufferValidFlag;
    _invalidAbove = false;
    // The only node made valid over children it did not compute.
    if (GetType() == ZorWBExpressionType::IfThenElse) UnmarkUntakenBranches();
}

double ZorWBExpression::Eval() const {
    if (IsLeaf()) return DoEval();
    ZorWBProgramCache<ZorWBRealProgram>* programs = _factory->RealPrograms();
    if (ZorWBRealProgram* program = programs ? programs->Find(this) : nullptr) {
        ZorWBProgramCache<ZorWBRealProgram>::Running running(*programs);
        return program->Run(*_factory);
    }
    double real;
    int computed = RunEvaluation<true>(&real);
    if (programs) programs->Remember(this, computed);
    return real;
}

namespace {
// The cache behind pointer, made at first use while enabled.
template <class Program>
ZorWBProgramCache<Program>* CacheOf(std::unique_ptr<ZorWBProgramCache<Program>>& pointer,
                                    ZorWBFactory& factory, bool enabled) {
    if (!pointer && enabled) pointer.reset(new (std::nothrow) ZorWBProgramCache<Program>(factory));
    return pointer.get();
}
}  // namespace

ZorWBProgramCache<ZorWBRealProgram>* ZorWBFactory::RealPrograms() {
    return CacheOf(_realPrograms, *this, _realProgramsEnabled);
}

ZorWBProgramCache<ZorWBValueProgram>* ZorWBFactory::ValuePrograms() {
    return CacheOf(_valuePrograms, *this, _fastValues);
}

void ZorWBFactory::EnableRealPrograms(bool enable) {
    _realProgramsEnabled = enable;
    if (_realPrograms) _realPrograms->Enable(enable);
}

void ZorWBFactory::EnableFastValues(bool enable) {
    _fastValues = enable;
    if (_valuePrograms) _valuePrograms->Enable(enable);
}

long long ZorWBFactory::GetNbOfValueProgramRuns() const {
    return _valuePrograms ? _valuePrograms->GetNbOfRuns() : 0;
}

bool ZorWBFactory::IsRealProgramsEnabled() const {
    return _realProgramsEnabled;
}

long long ZorWBFactory::GetNbOfRealProgramRuns() const {
    return _realPrograms ? _realPrograms->GetNbOfRuns() : 0;
}

const ZorWBValue& ZorWBExpression::ValueOf(const ZorWBExpression* node) {
    unsigned int walk = node->_factory->_valueWalk;
    if ((node->_flags & BufferValidFlag) || (walk != 0 && node->_walkMark == walk))
        return node->_value;
    return node->GetValue();
}

double ZorWBExpression::RealOf(const ZorWBExpression* node) {
    const ZorWBFactory::RealSlot* slot = node->_factory->RunningRealSlot(node);
    return slot ? slot->real : node->Eval();
}

void ZorWBExpression::UpdateExprValue(bool recursive) try {
    std::vector<ZorWBExpression*> nodes;
    if (recursive) {
        nodes = ZorWBGraphWalk::Collect(this);
    } else {
        nodes.push_back(this);
    }
    for (ZorWBExpression* node : nodes) {
        ZorWBValue value = node->GetValue();
        node->SetExprValue(value);
    }
} catch (const std::exception&) {
}

double ZorWBRealReading(const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBUndefinedType:
            return NaN;
        case ZorWBBooleanType: {
            ZorWBValue boolean = value;  // a scalar: copied without the heap
            ZorWBBoolean state = boolean.GetAsBoolean();
            return state == ZorWBTrue ? 1.0 : state == ZorWBFalse ? 0.0 : NaN;
        }
        case ZorWBIntegerIntervalType:
        case ZorWBRealIntervalType:
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType:
            return value.GetMiddle();
        default:  // integer, real, fraction
            return value.GetAsReal();
    }
}

double ZorWBExpression::RealReading(const ZorWBValue& value) {
    return ZorWBRealReading(value);
}
