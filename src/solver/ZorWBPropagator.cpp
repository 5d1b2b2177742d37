#include "solver/ZorWBPropagator.h"

#include <exception>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "values/ZorWBValueFunctions.h"

namespace {

std::vector<ZorWBEquation*> EquationsOf(const ZorWBFactory& factory) {
    std::vector<ZorWBEquation*> equations;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i)
        equations.push_back(factory.GetEquation(i));
    return equations;
}

}  // namespace

ZorWBPropagator::ZorWBPropagator(ZorWBFactory& factory) : _factory(factory) {
    try {
        _system.reset(new ZorWBConstraintSystem(factory, EquationsOf(factory)));
    } catch (const std::exception&) {
        _system.reset();  // memory ran short: propagations narrow nothing
    }
}

ZorWBPropagator::~ZorWBPropagator() = default;

void ZorWBPropagator::SetRatio(double ratio) {
    if (ratio >= 0.0 && ratio < 1.0) _settings.ratio = ratio;
}

void ZorWBPropagator::SetTolerance(double tolerance) {
    _settings.tolerance = tolerance;
}

ZorWBDomainBox ZorWBPropagator::ReadDomains() {
    const int n = _system->GetNbOfVariables();
    ZorWBDomainBox box;
    box.intervals.resize(static_cast<std::size_t>(n));
    box.values.resize(static_cast<std::size_t>(n));
    std::vector<ZorWBDomainKind> kinds(static_cast<std::size_t>(n));
    for (int v = 0; v < n; ++v)
        ZorWBReadDomain(_factory.GetVariable(v)->GetExprValue(), kinds[v], box.intervals[v],
                        box.values[v]);
    _system->SetKinds(kinds);
    return box;
}

ZorWBPropagationResult ZorWBPropagator::Run(const std::vector<int>* seeds,
                                            ZorWBDomainBox& box) try {
    const ZorWBDomainBox initial = box;
    ZorWBPropagationReport report;
    ZorWBPropagationResult result;
    result.consistent = !box.IsEmpty() && _system->Propagate(box, _settings, report, seeds);
    result.equationId = report.emptyingEquationId;
    result.nbOfRevisions = report.nbOfRevisions;
    if (!result.consistent) return result;
    for (int v = 0; v < box.GetSize(); ++v) {
        if (initial.intervals[v].IsSameAs(box.intervals[v])) continue;
        ++result.nbOfNarrowedVariables;
        _factory.GetVariable(v)->SetExprValue(
            ZorWBDomainValue(_system->GetKind(v), box.intervals[v], box.values[v]));
    }
    return result;
} catch (const std::exception&) {
    return ZorWBPropagationResult();
}

ZorWBPropagationResult ZorWBPropagator::Propagate() try {
    if (!_system) return ZorWBPropagationResult();
    ZorWBDomainBox box = ReadDomains();
    return Run(nullptr, box);
} catch (const std::exception&) {
    return ZorWBPropagationResult();
}

ZorWBPropagationResult ZorWBPropagator::Narrow(ZorWBVariable* variable,
                                               const ZorWBValue& value) try {
    if (!_system || !variable || variable->GetFactory() != &_factory ||
        variable->GetIdx() >= _system->GetNbOfVariables())
        return ZorWBPropagationResult();
    const int index = variable->GetIdx();
    const ZorWBValue before = variable->GetExprValue();
    ZorWBValue narrowed = before;
    if (narrowed.GetType() == ZorWBUndefinedType)
        narrowed = value;
    else
        ZorWBIntersect(_factory.GetEnvironment(), narrowed, value);
    variable->SetExprValue(narrowed);
    ZorWBDomainBox box = ReadDomains();
    const std::vector<int> seeds{index};
    ZorWBPropagationResult result = Run(&seeds, box);
    if (!result.consistent) variable->SetExprValue(before);
    return result;
} catch (const std::exception&) {
    return ZorWBPropagationResult();
}
