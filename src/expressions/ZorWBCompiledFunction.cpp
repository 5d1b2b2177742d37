// Compiled functions: four programs of one compiler (ZorWBRealProgram) over
// the same roots, made once, and the reverse sweeps of their Jacobians.
// The residuals run the fused program whose registers are reused; the
// Jacobian runs the program that keeps its registers and computes the slopes
// of every node; the interval forms run programs over values in the value
// walk's order, the residual images one whose registers are reused, the
// interval Jacobian one with slopes. A call checks the factory's structure version first,
// so that no program ever reads a node that a change of the graph may have
// freed.

#include "expressions/ZorWBCompiledFunction.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <unordered_set>

#include "expressions/ZorWBCompiledJacobian.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBVariable.h"

const char* ZorWBCompiledStatusText(ZorWBCompiledStatus status) {
    switch (status) {
        case ZorWBCompiledStatus::Ok:
            return "ok";
        case ZorWBCompiledStatus::NotCompiled:
            return "the function was not compiled: a root or a variable is null, belongs to "
                   "another factory or is listed twice, or the graph holds a cycle";
        case ZorWBCompiledStatus::GraphChanged:
            return "the graph changed after the function was compiled";
        case ZorWBCompiledStatus::FactoryDestroyed:
            return "the factory of the function is destroyed";
        case ZorWBCompiledStatus::NoDerivative:
            return "a root reaches a node without derivative (a black box or an integral)";
        case ZorWBCompiledStatus::NoIntervalForm:
            return "a root reaches a black box, which intervals cannot be given to";
        case ZorWBCompiledStatus::BadArgument:
            return "a null array or an index outside the variables";
    }
    return "unknown status";
}

ZorWBCompiledFunction::ZorWBCompiledFunction(int nbOfRoots, const ZorWBExpression* const* roots,
                                             int nbOfVariables, ZorWBVariable* const* variables) {
    if (nbOfRoots < 1 || !roots || !roots[0] || nbOfVariables < 0 ||
        (nbOfVariables > 0 && !variables))
        return;
    _nbOfRoots = nbOfRoots;
    _nbOfVariables = nbOfVariables;
    try {
        Compile(roots, variables);
    } catch (const std::exception&) {
        // Memory ran short before the function was registered: nothing kept.
        _residuals.reset();
        _slopes.reset();
        _jacobian.reset();
        _intervals.reset();
        _intervalSlopes.reset();
        _intervalJacobian.reset();
    }
}

ZorWBCompiledFunction::~ZorWBCompiledFunction() {
    if (!_factory) return;
    std::vector<ZorWBCompiledFunction*>& functions = _factory->_compiledFunctions;
    functions.erase(std::remove(functions.begin(), functions.end(), this), functions.end());
}

// Throws std::bad_alloc when memory runs short.
void ZorWBCompiledFunction::Compile(const ZorWBExpression* const* roots,
                                    ZorWBVariable* const* variables) {
    ZorWBFactory* factory = roots[0]->GetFactory();
    for (int i = 0; i < _nbOfRoots; ++i) {
        if (!roots[i] || roots[i]->GetFactory() != factory) return;
    }
    std::unordered_set<const ZorWBExpression*> listed;
    std::vector<const ZorWBExpression*> inputs;
    for (int i = 0; i < _nbOfVariables; ++i) {
        const ZorWBExpression* variable = variables[i];
        if (!variable || variable->GetFactory() != factory || !listed.insert(variable).second)
            return;
        inputs.push_back(variable);
    }
    ZorWBRealProgram::Options options;
    options.inputs = inputs.data();
    options.nbOfInputs = _nbOfVariables;
    _residuals = ZorWBRealProgram::Compile(roots, _nbOfRoots, options);
    if (!_residuals) return;
    FindVariablesOfCalls(variables);
    options.slopes = true;
    _slopes = ZorWBRealProgram::Compile(roots, _nbOfRoots, options);
    if (_slopes) _jacobian.reset(new ZorWBCompiledJacobian(*_slopes, _nbOfRoots));
    options.valueOrder = true;
    _intervalSlopes = ZorWBRealProgram::Compile(roots, _nbOfRoots, options);
    if (_intervalSlopes)
        _intervalJacobian.reset(new ZorWBCompiledJacobian(*_intervalSlopes, _nbOfRoots));
    options.slopes = false;
    _intervals = ZorWBRealProgram::Compile(roots, _nbOfRoots, options);
    _lastIntervals = _intervals.get();
    _slots.assign(static_cast<std::size_t>(_nbOfVariables), nullptr);
    factory->_compiledFunctions.push_back(this);
    _factory = factory;
    _structureVersion = factory->GetStructureVersion();
    _compiled = true;
}

ZorWBCompiledStatus ZorWBCompiledFunction::Check() const {
    if (!_compiled) return ZorWBCompiledStatus::NotCompiled;
    if (!_factory) return ZorWBCompiledStatus::FactoryDestroyed;
    if (_factory->GetStructureVersion() != _structureVersion)
        return ZorWBCompiledStatus::GraphChanged;
    return ZorWBCompiledStatus::Ok;
}

ZorWBCompiledStatus ZorWBCompiledFunction::GetStatus() const {
    return Check();
}

bool ZorWBCompiledFunction::BindSlot(int variable, const double* slot) {
    if (variable < 0 || variable >= static_cast<int>(_slots.size())) return false;
    const double*& bound = _slots[static_cast<std::size_t>(variable)];
    _nbOfBound += (slot != nullptr) - (bound != nullptr);
    bound = slot;
    return true;
}

void ZorWBCompiledFunction::FindVariablesOfCalls(ZorWBVariable* const* variables) {
    if (!_residuals->_callsNodes || _nbOfVariables == 0) return;
    const int size = variables[0]->GetFactory()->GetNbOfVariables();
    std::vector<unsigned char> present(static_cast<std::size_t>(size), 0);
    for (const ZorWBRealProgram::Instruction& in : _residuals->_code) {
        if (in.op == ZorWBRealProgram::Op::Node) in.node->FillPresentVariables(present.data());
    }
    for (int i = 0; i < _nbOfVariables; ++i) {
        int index = variables[i]->GetIdx();
        if (index >= 0 && index < size && present[static_cast<std::size_t>(index)])
            _variablesOfCalls.emplace_back(i, variables[i]);
    }
}

void ZorWBCompiledFunction::GiveCallsThePoint(const double* inputs) const {
    for (const std::pair<int, ZorWBVariable*>& entry : _variablesOfCalls) {
        double x = inputs[entry.first];
        const ZorWBValue& held = entry.second->GetExprValue();
        double current = held.GetAsReal();
        if (held.GetType() == ZorWBRealType && std::memcmp(&current, &x, sizeof x) == 0) continue;
        entry.second->SetExprValue(ZorWBValue(x));
    }
}

bool ZorWBCompiledFunction::NeedsPoint() const {
    return _nbOfBound < _nbOfVariables;
}

void ZorWBCompiledFunction::ReadPoint(const double* point, double* inputs) const {
    if (_nbOfVariables == 0) return;
    if (_nbOfBound == 0) {
        std::memcpy(inputs, point, static_cast<std::size_t>(_nbOfVariables) * sizeof(double));
        return;
    }
    for (std::size_t i = 0; i < _slots.size(); ++i)
        inputs[i] = _slots[i] ? *_slots[i] : point[i];
}

ZorWBCompiledStatus ZorWBCompiledFunction::Evaluate(const double* point, double* residuals) {
    ZorWBCompiledStatus status = Check();
    if (status != ZorWBCompiledStatus::Ok) return status;
    if (!residuals || (!point && NeedsPoint())) return ZorWBCompiledStatus::BadArgument;
    double* inputs = _residuals->GetInputRegisters();
    ReadPoint(point, inputs);
    GiveCallsThePoint(inputs);
    _residuals->RunWithInputs(*_factory);
    for (int i = 0; i < _nbOfRoots; ++i)
        residuals[i] = _residuals->GetResult(i);
    return ZorWBCompiledStatus::Ok;
}

int ZorWBCompiledFunction::GetNbOfNonZeros() const {
    const ZorWBCompiledJacobian* pattern = _jacobian ? _jacobian.get() : _intervalJacobian.get();
    return pattern ? pattern->GetRowStarts().back() : 0;
}

const int* ZorWBCompiledFunction::GetRowStarts() const {
    const ZorWBCompiledJacobian* pattern = _jacobian ? _jacobian.get() : _intervalJacobian.get();
    return pattern ? pattern->GetRowStarts().data() : nullptr;
}

const int* ZorWBCompiledFunction::GetColumns() const {
    const ZorWBCompiledJacobian* pattern = _jacobian ? _jacobian.get() : _intervalJacobian.get();
    return pattern ? pattern->GetColumns().data() : nullptr;
}

ZorWBCompiledStatus ZorWBCompiledFunction::EvaluateJacobian(const double* point, double* residuals,
                                                            double* jacobian) {
    ZorWBCompiledStatus status = Check();
    if (status != ZorWBCompiledStatus::Ok) return status;
    if (!_jacobian) return ZorWBCompiledStatus::NoDerivative;
    if (!residuals || !jacobian || (!point && NeedsPoint()))
        return ZorWBCompiledStatus::BadArgument;
    ReadPoint(point, _slopes->GetInputRegisters());
    _slopes->RunWithInputs(*_factory);
    for (int i = 0; i < _nbOfRoots; ++i)
        residuals[i] = _slopes->GetResult(i);
    _jacobian->Sweep(*_slopes, jacobian);
    return ZorWBCompiledStatus::Ok;
}

ZorWBCompiledStatus ZorWBCompiledFunction::RunIntervals(ZorWBRealProgram& program,
                                                        const ZorWBRealInterval* box,
                                                        ZorWBRealInterval* residuals) {
    if (!residuals || (!box && _nbOfVariables > 0)) return ZorWBCompiledStatus::BadArgument;
    ZorWBValue* inputs = program.GetInputValues();
    const ZorWBEnvironment& environment = _factory->GetEnvironment();
    for (int i = 0; i < _nbOfVariables; ++i) {
        inputs[i].Set(box[i]);
        inputs[i].UpdateEnv(environment);
    }
    program.RunValues(*_factory);
    _lastIntervals = &program;
    for (int i = 0; i < _nbOfRoots; ++i)
        residuals[i] = program.GetResultValue(i).GetAsRealInterval();
    return ZorWBCompiledStatus::Ok;
}

ZorWBCompiledStatus ZorWBCompiledFunction::EvaluateIntervals(const ZorWBRealInterval* box,
                                                             ZorWBRealInterval* residuals) {
    ZorWBCompiledStatus status = Check();
    if (status != ZorWBCompiledStatus::Ok) return status;
    if (!_intervals) return ZorWBCompiledStatus::NoIntervalForm;
    return RunIntervals(*_intervals, box, residuals);
}

ZorWBCompiledStatus ZorWBCompiledFunction::EvaluateIntervalJacobian(const ZorWBRealInterval* box,
                                                                    ZorWBRealInterval* residuals,
                                                                    ZorWBRealInterval* jacobian) {
    ZorWBCompiledStatus status = Check();
    if (status != ZorWBCompiledStatus::Ok) return status;
    if (!_intervals) return ZorWBCompiledStatus::NoIntervalForm;
    if (!_intervalJacobian) return ZorWBCompiledStatus::NoDerivative;
    if (!jacobian) return ZorWBCompiledStatus::BadArgument;
    status = RunIntervals(*_intervalSlopes, box, residuals);
    if (status == ZorWBCompiledStatus::Ok)
        _intervalJacobian->Sweep(*_intervalSlopes, _intervalSlopes->_scratch, jacobian);
    return status;
}

const ZorWBValue& ZorWBCompiledFunction::GetIntervalResult(int root) const {
    static const ZorWBValue undefined;
    if (!_lastIntervals || root < 0 || root >= _nbOfRoots) return undefined;
    return _lastIntervals->GetResultValue(root);
}
