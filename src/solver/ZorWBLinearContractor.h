#ifndef ZORWB_LINEARCONTRACTOR_H
#define ZORWB_LINEARCONTRACTOR_H

#include <vector>

#include "ZorWBxExport.h"
#include "solver/ZorWBLinearProgram.h"
#include "solver/ZorWBSquareSystem.h"

// Contraction of a box by a linear relaxation of a square system (the
// polytope of its mean-value forms at two opposite corners, after the
// X-Newton method of Araya, Trombettoni and Neveu).
//
// At a corner c of the box X, the mean value theorem gives for every x in X
// f_i(x) ∈ F_i(c) + Σ_j J_ij(X) (x_j − c_j), and the sign of x_j − c_j is
// known at a corner, so f_i(x) = 0 gives two linear inequalities in x with
// the bounds of J_ij as coefficients. The lower and the upper corner give
// four rows per equation; linear programs then minimise and maximise each
// unknown over the rows and the box.
//
// Rigour: the linear programs run in floating point, and each bound they
// give is replaced by one that weak duality proves: for the duals y >= 0 of
// the rows A x <= b, every x of the polytope has
//   x_j <= y·b + max over X of (e_j − Aᵀy)·x,
// computed in outward-rounded arithmetic (Neumaier and Shcherbina); an
// infeasible program is believed only when its Farkas certificate passes
// the same test. The rows themselves are exact consequences of the
// enclosures F(c) and J(X). Cost: one Jacobian, two function evaluations
// and 2n small linear programs of 4n rows.
class ZORWBX_API ZorWBLinearContractor {
  public:
    explicit ZorWBLinearContractor(ZorWBSquareSystem& system);

    // Narrows the unknowns of the box (intervals by variable index); false
    // when it proves that no zero lies in the box. A box with an unbounded
    // unknown is left alone.
    bool Contract(std::vector<ZorWBRoundedInterval>& box);

  private:
    // The rows of the relaxation at the box's corners into _rows and _rhs;
    // false when the functions cannot be evaluated there.
    bool Relax(const std::vector<ZorWBRoundedInterval>& box);
    void AddRow(const std::vector<double>& coefficients, const ZorWBRoundedInterval& offset,
                const std::vector<double>& corner);
    // A proved upper bound of direction·x over the polytope and the box.
    double ProvedMaximum(const std::vector<double>& direction,
                         const std::vector<ZorWBRoundedInterval>& box);
    // Whether the duals prove the polytope empty within the box.
    bool ProvesEmpty(const std::vector<ZorWBRoundedInterval>& box);

    ZorWBSquareSystem& _system;
    ZorWBLinearProgram _program;
    int _n;
    std::vector<ZorWBRoundedInterval> _jacobian;
    std::vector<ZorWBRoundedInterval> _functions;
    std::vector<double> _rows;  // row-major, n columns
    std::vector<double> _rhs;
};

#endif
