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

#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <vector>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBProgramCache.h"
#include "expressions/ZorWBRealFunctions.h"
#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBValueProgram.h"

namespace {
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
}  // namespace

unsigned int ZorWBFactory::NewWalk() {
    if (++_walkCounter == 0) {
        // The numbers wrapped: forget every mark so that none is mistaken
        // for a new walk.
        for (ZorWBExpression* node : _expressions)
            node->_walkMark = node->_realMark = 0;
        for (ZorWBExpression* node : _temporaryExpressions)
            node->_walkMark = node->_realMark = 0;
        _valueWalk = 0;
        _realWalk = 0;
        _walkCounter = 1;
    }
    return _walkCounter;
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
int ZorWBExpression::RunEvaluation() const {
    ZorWBFactory& factory = *_factory;
    unsigned int& running = Real ? factory._realWalk : factory._valueWalk;
    unsigned int outer = running;
    unsigned int walk = factory.NewWalk();
    running = walk;
    ++factory._evaluationDepth;

    std::vector<ZorWBFactory::EvalFrame>& stack = factory._evalStack;
    std::size_t base = stack.size();
    int computed = 0;
    auto markOf = [](const ZorWBExpression* node) -> unsigned int& {
        return Real ? node->_realMark : node->_walkMark;
    };
    // Whether a request is answered without computing: only a buffered node
    // keeps what it was computed to.
    auto ready = [walk, &markOf](const ZorWBExpression* node) {
        return node->AllowsBufferEval() &&
               (markOf(node) == walk || (!Real && (node->_flags & BufferValidFlag)));
    };
    auto start = [walk, &markOf, &factory](const ZorWBExpression* node) {
        markOf(node) = walk;
        if (!Real) factory.InitEnvForEval();
    };
    auto finish = [&factory, &computed](const ZorWBExpression* node, bool folded) {
        ++computed;
        if (Real) {
            if (!folded) node->_real = node->DoEval();
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
    running = outer;
    return computed;
}

const ZorWBValue& ZorWBExpression::ComputeValue() const {
    ZorWBFactory& factory = *_factory;
    factory.SetBufferUsed();
    ZorWBProgramCache<ZorWBValueProgram>* programs = factory.ValuePrograms();
    if (ZorWBValueProgram* program = programs ? programs->Find(this) : nullptr) {
        ZorWBProgramCache<ZorWBValueProgram>::Running running(*programs);
        program->Run(factory);
        return _value;
    }
    int computed = RunEvaluation<false>();
    if (programs) programs->Remember(this, computed);
    return _value;
}

void ZorWBExpression::FinishValue(bool folded) const {
    if (!folded && (IsLeaf() || !_factory->_fastValues ||
                    !static_cast<const ZorWBOperator*>(this)->EvaluateFast()))
        DoEval(_value);
    if (_previousValue) *_previousValue = _value;
    if (AllowsBufferEval()) _flags |= BufferValidFlag;
}

double ZorWBExpression::Eval() const {
    if (IsLeaf()) return DoEval();
    ZorWBProgramCache<ZorWBRealProgram>* programs = _factory->RealPrograms();
    if (ZorWBRealProgram* program = programs ? programs->Find(this) : nullptr) {
        ZorWBProgramCache<ZorWBRealProgram>::Running running(*programs);
        return program->Run(*_factory);
    }
    int computed = RunEvaluation<true>();
    if (programs) programs->Remember(this, computed);
    return _real;
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
    unsigned int walk = node->_factory->_realWalk;
    if (walk != 0 && node->_realMark == walk) return node->_real;
    return node->Eval();
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
