#include "symbolic/ZorWBSymbolicTransformationsNew.h"

#include <exception>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "symbolic/ZorWBLinearElimination.h"
#include "symbolic/ZorWBSimplifier.h"
#include "values/ZorWBLevel.h"
#include "values/ZorWBValueFunctions.h"

ZorWBSymbolicTransformationsNew::ZorWBSymbolicTransformationsNew(unsigned int level,
                                                                 ZorWBFactory& factory)
    : ZorWBSymbolicTransformations(level, factory) {
    RegisterProperty(ZorWBConstantProperty);
    RegisterProperty(ZorWBLinearProperty);
}

ZorWBSymbolicTransformationsNew::~ZorWBSymbolicTransformationsNew() = default;

bool ZorWBSymbolicTransformationsNew::SetEquationToSimplify(int id) try {
    _equationsToSimplify.Add(id);
    return true;
} catch (const std::exception&) {
    return false;
}

bool ZorWBSymbolicTransformationsNew::IsEligible(const ZorWBEquation* equation) const {
    return (_mode & EliminateMode) || _equationsToSimplify.IsEmpty() ||
           _equationsToSimplify.BinarySearch(equation->GetId()) >= 0;
}

int ZorWBSymbolicTransformationsNew::RunOperator() {
    _factory.UseTemporaryStorage(true);
    try {
        if (TraceLevel() >= 1)
            TraceSystem(_expressionsForVariables.GetData(), _expressionsForVariables.GetSize());
        if (_mode & EliminateMode) _mode |= ComputeLinearMode;
        _equationsToSimplify.Sort();
        ZorWBSimplifier simplifier(_factory);
        for (ZorWBEquation* equation = _factory.GetLastEquation(); equation;) {
            ZorWBEquation* previous = equation->GetPrev();
            if (IsEligible(equation)) PrepareEquation(equation, simplifier);
            equation = previous;
        }
        if (_mode & EliminateMode) Eliminate(simplifier);
        bool normalise = !ZorWBCheckLevel(_factory.GetWBLevel(), ZorWBLevel::NoFinalNormalisation);
        bool keepIfThenElse =
            ZorWBCheckLevel(_factory.GetWBLevel(), ZorWBLevel::KeepIfThenElseTernary);
        for (ZorWBEquation* equation = _factory.GetLastEquation(); equation;
             equation = equation->GetPrev()) {
            if (!IsEligible(equation) || !equation->GetRoot()) continue;
            if (normalise) equation->SetRoot(simplifier.FinalNormalisation(equation->GetRoot()));
            if (_mode & BinariseMode)
                equation->SetRoot(Binarise(equation->GetRoot(), keepIfThenElse));
        }
    } catch (const std::exception&) {
    }
    _equationsToSimplify.RemoveAll();
    _factory.UseTemporaryStorage(false);
    return 0;
}

void ZorWBSymbolicTransformationsNew::PrepareEquation(ZorWBEquation* equation,
                                                      ZorWBSimplifier& simplifier) {
    equation->DuplicateRoot();
    ZorWBExpression* root = equation->GetRoot();
    if (!root) return;
    // The marks are computed on the flattened root: the nodes that stay get
    // the marks they would copy from the nested ones, and the levels of a
    // nested chain, which flattening drops, are not marked one by one (each
    // new mark invalidates the buffers of all the node's ancestors, a cost
    // quadratic in the depth of the chain).
    if (_mode & (EliminateMode | SimplifyMode)) {
        if (TraceLevel() >= 2) Trace(ZorQelString("Before: ") + ZorWBDebug::ExpStr(root) + "\n");
        root = Flatten(root);
        equation->SetRoot(root);
        if (TraceLevel() >= 2) Trace(ZorQelString("After : ") + ZorWBDebug::ExpStr(root) + "\n");
    }
    SetProperties(root);
    if (!(_mode & SimplifyMode)) return;
    // With the consistency check on, a constant inequality stays for the
    // check to read, even when it folds to 0.
    bool keepConstantRoots =
        (_mode & CheckInequalitiesMode) && equation->GetType() != ZorWBEqualZero;
    ZorWBExpression* simplified = simplifier.Simplify(root, keepConstantRoots);
    if (!simplified) {
        _factory.RemoveEquation(equation);
        return;
    }
    SetProperties(simplified);
    equation->SetRoot(simplified);
}

void ZorWBSymbolicTransformationsNew::Eliminate(ZorWBSimplifier& simplifier) {
    int n = _factory.GetNbOfVariables();
    _expressionsForVariables.RemoveAll();
    _expressionsForVariables.SetSize(n, nullptr);
    // One array per variable; each is sized when its variable gets a
    // definition, so that unsolved variables cost nothing.
    _variableDependencies.assign(static_cast<std::size_t>(n), ZorQelBoolArray());
    ZorWBLinearElimination elimination(*this, simplifier, _expressionsForVariables.GetData(),
                                       _variableDependencies.data(), n);
    bool check = (_mode & CheckInequalitiesMode) != 0;
    elimination.Run(check, [this, check] {
        if (check) CheckInequalities();
    });
    if (TraceLevel() >= 1)
        TraceSystem(_expressionsForVariables.GetData(), _expressionsForVariables.GetSize());
    std::vector<ZorQelBoolArray>().swap(_variableDependencies);
    simplifier.ClearDefinitions();
}

void ZorWBSymbolicTransformationsNew::CheckInequalities() {
    _inconsistencyFound = false;
    const ZorWBEnvironment& environment = _factory.GetEnvironment();
    const ZorWBValue zero(0);
    for (ZorWBEquation* equation = _factory.GetLastEquation(); equation;
         equation = equation->GetPrev()) {
        ZorWBExpression* root = equation->GetRoot();
        if (equation->GetType() == ZorWBEqualZero || !root ||
            !GetProperty(root, ZorWBConstantProperty))
            continue;
        ZorWBValue v;
        root->Eval(v);
        // The operands stand in this order on purpose: the relation is read on
        // the root as stored, not re-derived from the printed symbol.
        ZorWBValue holds;
        switch (equation->GetType()) {
            case ZorWBNotEqualZero:
                holds = ZorWBNotEqual(environment, zero, v);
                break;
            case ZorWBLessEqualZero:
                holds = ZorWBLessEqual(environment, zero, v);
                break;
            case ZorWBLessZero:
                holds = ZorWBNot(ZorWBLessEqual(environment, v, zero));
                break;
            case ZorWBGreaterEqualZero:
                holds = ZorWBLessEqual(environment, v, zero);
                break;
            case ZorWBGreaterZero:
                holds = ZorWBNot(ZorWBLessEqual(environment, zero, v));
                break;
            default:
                break;
        }
        if (holds.GetAsBoolean() == ZorWBFalse) _inconsistencyFound = true;
    }
}

void ZorWBSymbolicTransformationsNew::WriteInput(ZorQelStream& stream) try {
    WriteInputSections(stream, &_equationsToSimplify);
} catch (const std::exception&) {
}

void ZorWBSymbolicTransformationsNew::WriteOutput(ZorQelStream& stream) try {
    ZorWBSymbolicTransformations::WriteOutput(stream);
    if (_mode & CheckInequalitiesMode) {
        stream.GetStorage().AddSection("#!INCONSISTENCIES",
                                       _inconsistencyFound ? "FOUND" : "NOTFOUND", "",
                                       ZorQelStorage::OutputPart, ZorQelStorage::AppendSection);
    }
    AddSystemSections(stream, ZorQelStorage::OutputPart, nullptr);
    stream.WriteSections(ZorQelStorage::OutputPart);
} catch (const std::exception&) {
}
