#ifndef ZORWB_BRANCHANDPRUNE_H
#define ZORWB_BRANCHANDPRUNE_H

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBFactory.h"
#include "solver/ZorWBConstraintSystem.h"
#include "solver/ZorWBIntervalNewton.h"
#include "solver/ZorWBLinearContractor.h"
#include "solver/ZorWBSolverTypes.h"

// The problem every worker solves, decided once from the host's factory.
struct ZorWBSolverProblem {
    ZorWBDomainBox initial;
    std::vector<ZorWBDomainKind> kinds;
    // Positions, in the factory's equation list, of the relations that
    // cells propagate (the bounds of single variables are left out: they
    // made the initial box) and of the bounds.
    std::vector<int> kept;
    std::vector<int> bounds;
    // The variables that cells split: those of the kept relations whose
    // initial domain is not a single point.
    std::vector<int> unknowns;
    ZorWBSolverOptions options;
};

// What examining one cell gave.
struct ZorWBCellResult {
    struct Output {
        ZorWBBoxType type;
        ZorWBDomainBox box;
        // For a box proved by Newton, the box in which its zero is unique
        // (empty otherwise): two outputs whose zeros lie in each other's
        // uniqueness box hold the same zero.
        ZorWBDomainBox uniqueness;
    };
    std::vector<Output> outputs;
    std::vector<ZorWBDomainBox> children;  // none, or the two halves, left first
    bool proved = false;
    // The deadline passed during the examination: the result is incomplete
    // and must not be used.
    bool late = false;
};

// One worker of the branch and prune: its own copy of the host's equations
// (ZorWBFactory::CloneEquations), compiled for propagation and, when the
// kept equalities are as many as the unknowns, for interval Newton.
//
// A cell is examined in four steps, from the cell alone, so that its result
// never depends on which worker examines it or when:
// 1. Contraction, in rounds: propagation (HC4) over the kept relations; on
//    square systems a Newton step, and another round at once when it
//    narrowed some unknown by more than a tenth; then, for square systems of
//    at most 12 unknowns on boxes narrower than their magnitude plus one, the
//    linear relaxation (ZorWBLinearContractor), another round when it
//    narrowed as much; otherwise shaving (3BCID):
//    each unknown, in order of smear, is cut into 10 slices, the empty
//    slices at each end (whose propagation empties the box) are dropped, and
//    the box becomes the hull of the propagated first, middle and last parts;
//    another round when that narrowed some unknown by more than a tenth. An
//    empty box ends the cell. Shaving costs a few propagations per unknown
//    and is what makes chains of circle intersections (geometric sketches)
//    tractable.
// 2. Proof: a Newton step whose image lay strictly inside the box, or a
//    proof by inflation tried on small or converging boxes, shows that the
//    cell holds at most one zero, enclosed in a tight existence box. That box
//    is output as a solution when every inequality holds on it, a boundary
//    box when some cannot be decided, and nothing when one fails, when it
//    misses the cell, or when it lies outside the initial box.
// 3. Without equalities, a box on which every inequality holds is output as
//    a solution (an inner box).
// 4. Otherwise the box is split in two at 45% of the chosen variable, the
//    one of largest relative smear (Σ over the equalities of |∂f/∂x|·width,
//    each row normalised by its sum) when a Jacobian is at hand, else of
//    largest width (unbounded domains first, cut at 0 or at twice their
//    finite end). A box in which no variable can be split (all narrower than
//    eps) is output as unknown, or as boundary without equalities.
class ZORWBX_API ZorWBBranchAndPrune {
  public:
    ZorWBBranchAndPrune(const ZorWBFactory& source, const ZorWBSolverProblem& problem);
    ZorWBBranchAndPrune(const ZorWBBranchAndPrune&) = delete;
    ZorWBBranchAndPrune& operator=(const ZorWBBranchAndPrune&) = delete;

    // False when the source's equations could not be copied.
    bool IsValid() const { return _valid; }
    bool IsSquare() const { return _newton != nullptr; }
    bool HasEqualities() const { return _nbOfEqualities > 0; }

    // Narrows the variables' domains by the bounds (initial: the initial box,
    // within which solutions are sought), then by every relation (root: the
    // first cell); false, with the position of the equation that emptied a
    // domain, when that proves the system inconsistent.
    bool PropagateRoot(ZorWBDomainBox& initial, ZorWBDomainBox& root, int& emptyingEquation);

    // Examines a cell; with a deadline, gives up (result late) once it has
    // passed, checking between the steps of the contraction.
    ZorWBCellResult Examine(const ZorWBDomainBox& cell,
                            const std::chrono::steady_clock::time_point* deadline = nullptr);

  private:
    ZorWBCellResult ExamineCell(const ZorWBDomainBox& cell);
    bool Contract(ZorWBDomainBox& box, bool& proved, ZorWBDomainBox& provingBox);
    bool PropagateFrom(ZorWBDomainBox& box, int variable);
    bool Shave(ZorWBDomainBox& box);
    // Whether the deadline of the examination has passed (remembered).
    bool IsLate();
    bool ShaveVariable(ZorWBDomainBox& box, int variable);
    // What makes a variable worth splitting or shaving first: its relative
    // smear when a Jacobian of the cell is at hand, else its width.
    std::vector<double> SplitScores(const ZorWBDomainBox& box) const;
    void Certify(const ZorWBDomainBox& cell, const ZorWBDomainBox& existence,
                 const ZorWBDomainBox& uniqueness, ZorWBCellResult& result);
    // Whether every inequality holds on the box (ZorWBTrue), one fails
    // (ZorWBFalse), or neither.
    ZorWBBoolean InequalitiesHold(const ZorWBDomainBox& box);
    // Whether every unknown is narrower than part of its magnitude plus one.
    bool IsNarrowerThan(const ZorWBDomainBox& box, double part) const;
    // The variable to split, -1 when none can be.
    int ChooseVariable(const ZorWBDomainBox& box);
    bool CanSplit(const ZorWBDomainBox& box, int variable, double& point) const;
    void Split(const ZorWBDomainBox& box, int variable, double point, ZorWBCellResult& result);

    const ZorWBSolverProblem& _problem;
    ZorWBFactory _factory;
    std::unique_ptr<ZorWBConstraintSystem> _kept;
    std::unique_ptr<ZorWBSquareSystem> _square;
    std::unique_ptr<ZorWBIntervalNewton> _newton;
    std::unique_ptr<ZorWBLinearContractor> _linear;
    ZorWBPropagationSettings _settings;
    int _nbOfEqualities = 0;
    bool _valid = false;
    bool _jacobianFresh = false;  // the Newton Jacobian is of the current cell
    const std::chrono::steady_clock::time_point* _deadline = nullptr;
    bool _late = false;
};

#endif
