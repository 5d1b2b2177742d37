#include "symbolic/ZorWBLinearElimination.h"

#include <algorithm>
#include <cmath>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "symbolic/ZorWBSimplifier.h"
#include "symbolic/ZorWBSymbolicTransformations.h"
#include "values/ZorWBValueFunctions.h"

using Type = ZorWBExpressionType;

namespace {

// Below this magnitude no coefficient is taken as a pivot.
constexpr double SmallestPivot = 1e-14;

ZorQelString ValueText(const ZorWBValue& value) {
    ZorQelString text;
    if (value.IsAFraction()) {
        ZorWBFraction f = value.GetAsFraction();
        text.AppendInt(f.numerator).AppendChar('/').AppendInt(f.denominator);
        if (f.power != 0) text.Append("*Pi^").AppendInt(f.power);
        return text;
    }
    return value.Str();
}

}  // namespace

ZorWBLinearElimination::ZorWBLinearElimination(ZorWBSymbolicTransformations& transformations,
                                               ZorWBSimplifier& simplifier,
                                               ZorWBExpression** definitions,
                                               ZorQelBoolArray* dependencies, int nbOfVariables)
    : _transformations(transformations),
      _factory(transformations.GetFactory()),
      _simplifier(simplifier),
      _definitions(definitions),
      _dependencies(dependencies),
      _nbOfVariables(nbOfVariables) {}

void ZorWBLinearElimination::Run(bool keepConstantRoots, const std::function<void()>& check) {
    if (_factory.GetNbOfEquations() == 0 || _factory.GetNbOfVariables() == 0 || !_definitions ||
        !_dependencies || _nbOfVariables != _factory.GetNbOfVariables())
        return;
    _forms.reserve(static_cast<std::size_t>(_factory.GetNbOfEquations()));
    _column.assign(static_cast<std::size_t>(_nbOfVariables), {});
    _zero = _factory.CreateIntegerConstant(0);
    while (CollectPass()) {
        for (std::size_t k = _firstOfPass; k < _forms.size(); ++k)
            ProcessForm(k);
        BuildDefinitions();
        TraceDefinitions();
        SubstituteInto(true, false);
        SimplifyRemainders();
    }
    SubstituteInto(false, keepConstantRoots);
    if (check) check();
    WriteBack();
    _forms.clear();
    _column.clear();
}

ZorQelString ZorWBLinearElimination::FormText(std::size_t k, const char* head) {
    return ZorQelString(head) + _forms[k].ToString(_factory);
}

void ZorWBLinearElimination::NoteAppeared(std::size_t form, const std::vector<int>& variables) {
    for (int v : variables)
        _column[static_cast<std::size_t>(v)].push_back(form);
}

bool ZorWBLinearElimination::CollectPass() {
    _firstOfPass = _forms.size();
    for (ZorWBEquation* equation = _factory.GetLastEquation(); equation;) {
        ZorWBEquation* previous = equation->GetPrev();
        ZorWBExpression* root = equation->GetRoot();
        if (equation->GetType() == ZorWBEqualZero && root &&
            _transformations.GetProperty(root, ZorWBSymbolicTransformations::ZorWBLinearProperty)) {
            if (ZorWBSymbolicTransformations::TraceLevel() >= 2)
                ZorWBSymbolicTransformations::Trace(ZorQelString("::FillValues() ") +
                                                    ZorWBDebug::ExpStr(root) + "\n");
            _forms.emplace_back();
            _forms.back().FillValues(_factory,
                                     ZorWBLinearForm::MergeRepeatedVariables(_factory, root));
            std::vector<int> present;
            for (const ZorWBLinearForm::Entry& entry : _forms.back().GetEntries())
                present.push_back(entry.variable);
            NoteAppeared(_forms.size() - 1, present);
            _factory.RemoveEquation(equation);
        }
        equation = previous;
    }
    return _forms.size() > _firstOfPass;
}

void ZorWBLinearElimination::ProcessForm(std::size_t k) {
    ZorWBLinearForm& form = _forms[k];
    const ZorWBEnvironment& environment = _factory.GetEnvironment();
    if (ZorWBSymbolicTransformations::TraceLevel() >= 1)
        ZorWBSymbolicTransformations::Trace(FormText(
            k, (ZorQelString("  LinearForm[") + static_cast<long long>(k) + "] =").c_str()));
    if (form.HasInexactCoefficient(environment)) return;
    // The largest magnitude; on equal magnitudes the lowest index stays.
    int pivot = -1;
    double largest = -1.0;
    for (const ZorWBLinearForm::Entry& entry : form.GetEntries()) {
        double magnitude =
            entry.kind == ZorWBLinearForm::GeneralKind ? std::fabs(entry.value.GetAsReal()) : 1.0;
        if (magnitude > largest) {
            largest = magnitude;
            pivot = entry.variable;
        }
    }
    if (pivot < 0 || largest < SmallestPivot) {
        ZorWBExpression* rest = _simplifier.Simplify(form.GetRemainder(_factory), false);
        form.SetPivot(!rest || rest->IsEqualTo(_zero) ? ZorWBLinearForm::DroppedPivot
                                                      : ZorWBLinearForm::NoPivot);
        return;
    }
    ZorWBValue factor = ZorWBDiv(environment, ZorWBValue(-1), form.GetCoefficient(pivot));
    if (ZorWBSymbolicTransformations::TraceLevel() >= 2)
        ZorWBSymbolicTransformations::Trace(ZorQelString("Factor = ") + ValueText(factor) + "\n");
    form.SetKind(pivot, ZorWBLinearForm::MinusOneKind);
    form.ScaleCoefficients(environment, _factory.GetWBLevel(), pivot, factor);
    if (form.HasRemainder()) form.ScaleRemainder(_factory, factor);
    form.SetPivot(pivot);
    SubstitutePivot(k, pivot);
}

void ZorWBLinearElimination::SubstitutePivot(std::size_t k, int p) {
    const ZorWBLinearForm& row = _forms[k];
    const ZorWBEnvironment& environment = _factory.GetEnvironment();
    std::vector<std::size_t>& holders = _column[static_cast<std::size_t>(p)];
    std::sort(holders.begin(), holders.end());
    holders.erase(std::unique(holders.begin(), holders.end()), holders.end());
    bool trace = ZorWBSymbolicTransformations::TraceLevel() >= 2;
    std::vector<int> appeared;
    for (std::size_t i : holders) {
        ZorWBLinearForm& target = _forms[i];
        if (i == k || target.GetKind(p) == ZorWBLinearForm::AbsentKind) continue;
        if (trace) {
            ZorQelString head = ZorQelString("substitute variables at LinearForm[") +
                                static_cast<long long>(i) + "] =";
            ZorWBSymbolicTransformations::Trace(FormText(i, head.c_str()));
        }
        ZorWBValue b = target.GetCoefficient(p);
        bool bIsOne = target.GetKind(p) == ZorWBLinearForm::OneKind;
        appeared.clear();
        target.AddScaledRow(environment, _factory.GetWBLevel(), row, p, b, appeared);
        NoteAppeared(i, appeared);
        if (row.HasRemainder()) target.AddRemainder(_factory, row, b, bIsOne);
        target.SetKind(p, ZorWBLinearForm::AbsentKind);
        // A form of an earlier pass that solved for p too (p came back into
        // it through a remainder) no longer defines p: it is written back as
        // an equation in what is left.
        if (target.GetPivot() == p) target.SetPivot(ZorWBLinearForm::NoPivot);
        if (trace) ZorWBSymbolicTransformations::Trace(FormText(i, "after substitute"));
    }
    // Only the pivot row holds its variable now.
    holders.assign(1, k);
}

std::vector<ZorWBExpression*> ZorWBLinearElimination::VariableTerms(const ZorWBLinearForm& form,
                                                                    int skip) {
    std::vector<ZorWBExpression*> terms;
    for (const ZorWBLinearForm::Entry& entry : form.GetEntries()) {
        if (entry.variable == skip) continue;
        ZorWBExpression* x = _factory.GetVariable(entry.variable);
        if (entry.kind == ZorWBLinearForm::OneKind) {
            terms.push_back(x);
        } else {
            ZorWBExpression* coefficient =
                _factory.CreateConstant(form.GetCoefficient(entry.variable));
            ZorWBExpression* term = _factory.CreateProduct(coefficient, x);
            if (term) terms.push_back(term);
        }
    }
    return terms;
}

void ZorWBLinearElimination::BuildDefinitions() {
    for (ZorWBLinearForm& form : _forms) {
        int p = form.GetPivot();
        if (p < 0 || p >= _nbOfVariables) continue;
        std::vector<ZorWBExpression*> terms = VariableTerms(form, p);
        ZorWBExpression* remainder = form.GetRemainder(_factory);
        if (remainder) terms.push_back(remainder);
        ZorWBExpression* definition =
            terms.empty() ? _zero
            : terms.size() == 1
                ? terms.front()
                : _factory.CreateOperator(Type::Sum, static_cast<int>(terms.size()), terms.data());
        _definitions[p] = definition;
        if (!definition) continue;
        ZorQelBoolArray& contained = _dependencies[p];
        contained.SetSize(_nbOfVariables);
        contained.Fill(false);
        definition->FillPresentVariables(contained.GetData());
        contained.Check();
    }
    _simplifier.SetDefinitions(_definitions, _dependencies, _nbOfVariables);
}

void ZorWBLinearElimination::TraceDefinitions() {
    if (ZorWBSymbolicTransformations::TraceLevel() < 1) return;
    ZorQelString text("\n\nExpressions for variables:\n");
    for (int v = 0; v < _nbOfVariables; ++v) {
        ZorWBVariable* variable = _factory.GetVariable(v);
        text += variable ? variable->GetName() : ZorQelString("??");
        text += " := ";
        text += _definitions[v] ? ZorWBDebug::ExpStr(_definitions[v]) : ZorQelString("NULL");
        text += "\n";
    }
    ZorWBSymbolicTransformations::Trace(text);
}

void ZorWBLinearElimination::SubstituteInto(bool equalities, bool keepConstantRoots) {
    for (ZorWBEquation* equation = _factory.GetLastEquation(); equation;) {
        ZorWBEquation* previous = equation->GetPrev();
        ZorWBExpression* root = equation->GetRoot();
        bool equality = equation->GetType() == ZorWBEqualZero;
        if (root && equality == equalities) {
            ZorWBExpression* result = _simplifier.Simplify(root, keepConstantRoots);
            if (result) {
                _transformations.SetProperties(result);
                equation->SetRoot(result);
            } else {
                _factory.RemoveEquation(equation);
            }
        }
        equation = previous;
    }
}

void ZorWBLinearElimination::SimplifyRemainders() {
    for (ZorWBLinearForm& form : _forms) {
        if (form.HasRemainder())
            form.SetRemainder(_simplifier.Simplify(form.GetRemainder(_factory), false));
    }
}

void ZorWBLinearElimination::WriteBack() {
    // The definitions are not substituted into the written equations: each
    // defines its own variable.
    _simplifier.ClearDefinitions();
    for (std::size_t k = _forms.size(); k-- > 0;) {
        ZorWBLinearForm& form = _forms[k];
        int p = form.GetPivot();
        ZorWBExpression* root = nullptr;
        if (p == ZorWBLinearForm::NoPivot) {
            std::vector<ZorWBExpression*> terms = VariableTerms(form, -1);
            ZorWBExpression* remainder = form.GetRemainder(_factory);
            if (remainder) terms.push_back(remainder);
            if (terms.empty()) continue;
            root = terms.size() == 1 ? terms.front()
                                     : _factory.CreateOperator(
                                           Type::Sum, static_cast<int>(terms.size()), terms.data());
        } else if (p >= 0 && p < _nbOfVariables) {
            ZorWBExpression* definition = _definitions[p];
            _definitions[p] = nullptr;
            root = _simplifier.Simplify(_factory.CreateSub(_factory.GetVariable(p), definition),
                                        false);
        }
        if (!root) continue;
        _factory.AddEquation(root, ZorWBEqualZero);
        _transformations.SetProperties(root);
    }
}
