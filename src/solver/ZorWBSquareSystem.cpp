#include "solver/ZorWBSquareSystem.h"

#include <algorithm>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"

ZorWBSquareSystem::ZorWBSquareSystem(ZorWBFactory& factory, ZorWBConstraintSystem& system,
                                     const std::vector<int>& equations,
                                     const std::vector<int>& unknowns)
    : _system(system), _unknowns(unknowns) {
    const std::size_t n = unknowns.size();
    if (n == 0 || equations.size() != n) return;
    _entries.assign(n * n, -1);
    for (std::size_t row = 0; row < n; ++row) {
        const ZorWBConstraintSystem::Constraint& constraint = system.GetConstraint(equations[row]);
        ZorWBEquation* equation = factory.GetEquationById(constraint.equationId);
        if (!constraint.IsOnTape() || !equation) return;
        _roots.push_back(constraint.root);
        for (std::size_t column = 0; column < n; ++column) {
            const int variable = unknowns[column];
            if (!std::binary_search(constraint.variables.begin(), constraint.variables.end(),
                                    variable))
                continue;
            ZorWBExpression* derivative =
                factory.CreateDerivative(equation->GetRoot(), factory.GetVariable(variable));
            const int slot = system.CompileExpression(derivative);
            if (slot < 0) return;
            _entries[row * n + column] = slot;
        }
    }
    ZorWBConstraintTape& tape = system.GetTape();
    _functionProgram = tape.MakeProgram(_roots);
    std::vector<int> entrySlots;
    for (int slot : _entries) {
        if (slot >= 0) entrySlots.push_back(slot);
    }
    _jacobianProgram = tape.MakeProgram(entrySlots);
    _valid = true;
}

bool ZorWBSquareSystem::Run(const std::vector<int>& program,
                            const std::vector<ZorWBRoundedInterval>& box) {
    std::vector<ZorWBRoundedInterval>& slots = _system.GetSlots();
    std::copy(box.begin(), box.begin() + std::min<std::size_t>(box.size(), slots.size()),
              slots.begin());
    return _system.GetTape().Evaluate(program, slots.data());
}

bool ZorWBSquareSystem::EvaluateFunctions(const std::vector<ZorWBRoundedInterval>& box,
                                          ZorWBRoundedInterval* values) {
    if (!_valid || !Run(_functionProgram, box)) return false;
    const std::vector<ZorWBRoundedInterval>& slots = _system.GetSlots();
    for (std::size_t i = 0; i < _roots.size(); ++i) {
        values[i] = slots[_roots[i]];
        if (values[i].IsEmpty()) return false;
    }
    return true;
}

bool ZorWBSquareSystem::EvaluateJacobian(const std::vector<ZorWBRoundedInterval>& box,
                                         ZorWBRoundedInterval* matrix) {
    if (!_valid || !Run(_jacobianProgram, box)) return false;
    const std::vector<ZorWBRoundedInterval>& slots = _system.GetSlots();
    for (std::size_t k = 0; k < _entries.size(); ++k) {
        matrix[k] = _entries[k] < 0 ? ZorWBMakePoint(0.0) : slots[_entries[k]];
        if (matrix[k].IsEmpty()) return false;
    }
    return true;
}
