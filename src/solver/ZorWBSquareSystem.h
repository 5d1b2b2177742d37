#ifndef ZORWB_SQUARESYSTEM_H
#define ZORWB_SQUARESYSTEM_H

#include <vector>

#include "ZorWBxExport.h"
#include "solver/ZorWBConstraintSystem.h"

class ZorWBFactory;

// n equalities in n unknowns, with their Jacobian, compiled for interval
// Newton onto the tape of a ZorWBConstraintSystem.
//
// The partial derivatives are the library's symbolic derivatives
// (ZorWBFactory::CreateDerivative, made in the factory, which must be the
// one the system's equations belong to) compiled onto the same tape as the
// roots, so that the sub-expressions a derivative shares with its root or
// with other derivatives share their slots. The function and the Jacobian
// each run as one program: every slot they need, computed once. A
// derivative that the tape cannot compile (a piecewise function's, say)
// leaves the system invalid: Newton is then not available.
class ZORWBX_API ZorWBSquareSystem {
  public:
    // equations: constraint indices of system (equalities compiled on the
    // tape); unknowns: variable indices, as many as equations.
    ZorWBSquareSystem(ZorWBFactory& factory, ZorWBConstraintSystem& system,
                      const std::vector<int>& equations, const std::vector<int>& unknowns);

    bool IsValid() const { return _valid; }
    int GetSize() const { return static_cast<int>(_unknowns.size()); }
    const std::vector<int>& GetUnknowns() const { return _unknowns; }
    // Whether the Jacobian entry (row, column) is known to be 0.
    bool IsStructuralZero(int row, int column) const {
        return _entries[static_cast<std::size_t>(row * GetSize() + column)] < 0;
    }

    // The enclosures of the roots over a box (intervals by variable index):
    // false when one is empty (a root defined nowhere on the box).
    bool EvaluateFunctions(const std::vector<ZorWBRoundedInterval>& box,
                           ZorWBRoundedInterval* values);
    // The enclosure of the Jacobian over a box, row by row (rows are the
    // equations, columns the unknowns).
    bool EvaluateJacobian(const std::vector<ZorWBRoundedInterval>& box,
                          ZorWBRoundedInterval* matrix);

  private:
    bool Run(const std::vector<int>& program, const std::vector<ZorWBRoundedInterval>& box);

    ZorWBConstraintSystem& _system;
    std::vector<int> _unknowns;
    std::vector<int> _roots;    // slot of each equation's root
    std::vector<int> _entries;  // slot of each Jacobian entry, -1 for a zero
    std::vector<int> _functionProgram;
    std::vector<int> _jacobianProgram;
    bool _valid = false;
};

#endif
