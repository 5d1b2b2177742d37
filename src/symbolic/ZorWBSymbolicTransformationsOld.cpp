#include "symbolic/ZorWBSymbolicTransformationsOld.h"

#include <exception>
#include <new>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "symbolic/ZorWBLinearElimination.h"
#include "symbolic/ZorWBSimplifier.h"

ZorWBSymbolicTransformationsOld::ZorWBSymbolicTransformationsOld(unsigned int level,
                                                                 ZorWBFactory& factory)
    : ZorWBSymbolicTransformations(level, factory) {}

ZorWBSymbolicTransformationsOld::~ZorWBSymbolicTransformationsOld() {
    ReleaseEliminationArrays();
}

int ZorWBSymbolicTransformationsOld::RunOperator() {
    _factory.UseTemporaryStorage(true);
    try {
        RegisterProperty(ZorWBConstantProperty);
        if (_mode & EliminateMode) _mode |= ComputeLinearMode;
        if (_mode & ComputeLinearMode) RegisterProperty(ZorWBLinearProperty);
        if (TraceLevel() >= 1) TraceSystem(nullptr, 0);
        ZorWBSimplifier simplifier(_factory);
        for (ZorWBEquation* equation = _factory.GetLastEquation(); equation;) {
            ZorWBEquation* previous = equation->GetPrev();
            ZorWBExpression* root = equation->GetRoot();
            SetProperties(root);
            if (root && (_mode & (EliminateMode | SimplifyMode))) {
                if (TraceLevel() >= 1)
                    Trace(ZorQelString("Before: ") + ZorWBDebug::ExpStr(root) + "\n");
                root = Flatten(root);
                equation->SetRoot(root);
                if (TraceLevel() >= 1)
                    Trace(ZorQelString("After: ") + ZorWBDebug::ExpStr(root) + "\n");
            }
            if (root && (_mode & SimplifyMode)) {
                ZorWBExpression* simplified = simplifier.SimplifyOnce(root, false);
                if (simplified) {
                    SetProperties(simplified);
                    equation->SetRoot(simplified);
                } else {
                    _factory.RemoveEquation(equation);
                }
            }
            equation = previous;
        }
        if (_mode & EliminateMode) Eliminate(simplifier);
        if (_mode & BinariseMode) {
            for (ZorWBEquation* equation = _factory.GetLastEquation(); equation;
                 equation = equation->GetPrev())
                equation->SetRoot(Binarise(equation->GetRoot(), false));
        }
    } catch (const std::exception&) {
    }
    ReleaseEliminationArrays();
    _factory.UseTemporaryStorage(false);
    return 0;
}

void ZorWBSymbolicTransformationsOld::Eliminate(ZorWBSimplifier& simplifier) {
    ReleaseEliminationArrays();
    int n = _factory.GetNbOfVariables();
    if (n <= 0) return;
    _expressionsForVariables = new (std::nothrow) ZorWBExpression*[static_cast<std::size_t>(n)]();
    _variableDependencies = new (std::nothrow) ZorQelBoolArray[static_cast<std::size_t>(n)];
    if (!_expressionsForVariables || !_variableDependencies) {
        ReleaseEliminationArrays();
        return;
    }
    ZorWBLinearElimination elimination(*this, simplifier, _expressionsForVariables,
                                       _variableDependencies, n);
    elimination.Run(false, nullptr);
    simplifier.ClearDefinitions();
    ReleaseEliminationArrays();
}

void ZorWBSymbolicTransformationsOld::ReleaseEliminationArrays() {
    delete[] _expressionsForVariables;
    delete[] _variableDependencies;
    _expressionsForVariables = nullptr;
    _variableDependencies = nullptr;
}

void ZorWBSymbolicTransformationsOld::WriteInput(ZorQelStream& stream) try {
    WriteInputSections(stream, nullptr);
} catch (const std::exception&) {
}

void ZorWBSymbolicTransformationsOld::WriteOutput(ZorQelStream& stream) try {
    ZorWBSymbolicTransformations::WriteOutput(stream);
    AddSystemSections(stream, ZorQelStorage::OutputPart, nullptr);
    stream.WriteSections(ZorQelStorage::OutputPart);
} catch (const std::exception&) {
}
