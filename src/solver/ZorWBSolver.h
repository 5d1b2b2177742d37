#ifndef ZORWB_SOLVER_H
#define ZORWB_SOLVER_H

#include <memory>
#include <vector>

#include "ZorWBxExport.h"
#include "solver/ZorWBSolverTypes.h"
#include "values/ZorWBValue.h"

class ZorWBFactory;

// A certified branch-and-prune solver for a factory's equations: it finds
// boxes that hold every solution of the relations within the initial box,
// and proves the solutions it can.
//
//   ZorWBSolver solver(factory);                // reads, copies nothing yet
//   ZorWBSolverOptions options;
//   options.timeout = 10.0;
//   solver.SetOptions(options);
//   solver.SetDomain(x->GetIdx(), ZorWBValue(ZorWBRealInterval{0, 10}));
//   switch (solver.Solve()) { ... }
//   for (int i = 0; i < solver.GetNbOfBoxes(); ++i) {
//       const ZorWBSolverBox& box = solver.GetBox(i);   // type and domains
//   }
//
// The initial box: each variable's value (an interval, a number, an integer
// interval, an enumeration, a boolean; undefined for the whole real line),
// or the domain given by SetDomain, narrowed by the bounds of single
// variables among the equations (a relation <=, <, >= or > whose root is
// linear in one variable, such as x - 3 >= 0). Those bounds make the initial
// box and are not propagated again; every other relation (= 0, <> 0, <= 0,
// < 0, >= 0, > 0 under the tolerance) constrains the search; objectives and
// equations without relation are ignored.
//
// Guarantees: every solution in the initial box lies in some output box; a
// solution box of a square system (as many equalities as unknowns) holds
// exactly one solution, proved by interval Newton in outward-rounded
// arithmetic, and no two solution boxes hold the same solution; without
// equalities, every point of a solution box satisfies every relation. The
// search is depth first and its output (boxes, order, counts) is the same
// for any number of threads; only a time limit makes it depend on the
// machine. See ZorWBBranchAndPrune for the examination of a cell and
// ZorWBSolverSearch for the search.
//
// The solver never changes the factory: each worker solves on its own copy
// (ZorWBFactory::CloneEquations), which is why equations that call black
// boxes, which cannot be copied, cannot be solved (Failed). The factory must
// not change, and must not be used by another thread, during Solve.
class ZORWBX_API ZorWBSolver {
  public:
    explicit ZorWBSolver(const ZorWBFactory& factory);
    ~ZorWBSolver();
    ZorWBSolver(const ZorWBSolver&) = delete;
    ZorWBSolver& operator=(const ZorWBSolver&) = delete;

    // Options outside their range are brought back into it: eps at least
    // 1e-300, a ratio in [0, 1), threads from 0 (one per hardware thread) to
    // 64, negative limits as none.
    void SetOptions(const ZorWBSolverOptions& options);
    const ZorWBSolverOptions& GetOptions() const { return _options; }
    // The initial domain of a variable, instead of its value; false (nothing
    // set) for an index outside the factory's variables or an undefined
    // value.
    bool SetDomain(int variable, const ZorWBValue& domain);

    // Runs the search (again, from the start, at each call).
    ZorWBSolverStatus Solve();

    ZorWBSolverStatus GetStatus() const { return _status; }
    int GetNbOfBoxes() const { return static_cast<int>(_boxes.size()); }
    // The i-th box in depth-first order (pending boxes last); an empty unknown
    // box for an index outside them.
    const ZorWBSolverBox& GetBox(int i) const;
    const ZorWBSolverStatistics& GetStatistics() const { return _statistics; }
    // When the initial propagation proved the system infeasible: the id of
    // the equation that emptied a domain; -1 otherwise.
    int GetEmptyingEquationId() const { return _emptyingEquationId; }
    // Why the last Solve failed, empty otherwise.
    const char* GetMessage() const { return _message; }
    // Whether the last Solve found a square system: its solutions are proved.
    bool IsSquare() const { return _square; }
    // The variables the last Solve split (those of the relations whose
    // initial domain is not a single point), by index.
    const std::vector<int>& GetUnknowns() const { return _unknowns; }

  private:
    const ZorWBFactory& _factory;
    ZorWBSolverOptions _options;
    std::vector<std::pair<int, ZorWBValue>> _domains;
    ZorWBSolverStatus _status = ZorWBSolverStatus::Incomplete;
    std::vector<ZorWBSolverBox> _boxes;
    ZorWBSolverStatistics _statistics;
    int _emptyingEquationId = -1;
    const char* _message = "";
    bool _square = false;
    std::vector<int> _unknowns;
};

#endif
