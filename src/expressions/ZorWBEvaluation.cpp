// Evaluation of nodes: the buffered value evaluation behind GetValue and the
// plain real-number evaluation behind Eval(), which runs a compiled program
// (ZorWBRealProgram) for roots evaluated again and again.
//
// Both run one explicit stack (kept by the factory, so that evaluating does
// not allocate once it has grown) instead of recursing: a node is pushed,
// its children that still need work are pushed above it, and the node is
// computed once they are all done; its DoEval then reads the children's
// results where the walk left them. Each walk has a number, written into the
// nodes it reaches, so a node shared by several parents is computed once per
// walk even when it is unbuffered, and an accidental cycle cannot loop.
//
// The environment's transient domain error is cleared once, when an
// evaluation starts from outside any other (InitEnvForEval), so that after
// GetValue the error word tells whether anything below failed.

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
    auto finish = [&factory, &computed](const ZorWBExpression* node) {
        ++computed;
        if (Real) {
            node->_real = node->DoEval();
        } else {
            node->FinishValue();
            ++factory._nbOfEvaluations;
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

    auto markOf = [](const ZorWBExpression* node) -> unsigned int& {
        return Real ? node->_realMark : node->_walkMark;
    };
    markOf(this) = walk;
    if (!push(this)) finish(this);
    while (stack.size() > base) {
        ZorWBFactory::EvalFrame& frame = stack.back();
        const ZorWBExpression* node = frame.node;
        int position = frame.position++;
        int childIndex = node->GetType() == ZorWBExpressionType::IfThenElse
                             ? NextIfThenElseChild(node, position, Real)
                             : (position < ZorWBGraphWalk::NbOfChildren(node) ? position : -1);
        if (childIndex < 0) {
            stack.pop_back();
            finish(node);
            continue;
        }
        const ZorWBExpression* child = ZorWBGraphWalk::Child(node, childIndex);
        bool ready = markOf(child) == walk || (!Real && (child->_flags & BufferValidFlag));
        if (ready) continue;
        markOf(child) = walk;
        // A leaf has nothing below it to wait for.
        if (child->IsLeaf() || !push(child)) finish(child);
    }

    --factory._evaluationDepth;
    running = outer;
    return computed;
}

const ZorWBValue& ZorWBExpression::ComputeValue() const {
    ZorWBFactory& factory = *_factory;
    factory.SetBufferUsed();
    if (factory._evaluationDepth == 0) factory.InitEnvForEval();
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

void ZorWBExpression::FinishValue() const {
    if (IsLeaf() || !_factory->_fastValues ||
        !static_cast<const ZorWBOperator*>(this)->EvaluateFast())
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

double ZorWBExpression::RealReading(const ZorWBValue& value) {
    return value.GetType() == ZorWBUndefinedType ? NaN : value.GetAsReal();
}
