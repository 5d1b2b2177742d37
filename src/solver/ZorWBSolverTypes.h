#ifndef ZORWB_SOLVERTYPES_H
#define ZORWB_SOLVERTYPES_H

#include <vector>

#include "ZorWBxExport.h"
#include "solver/ZorWBDomainBox.h"

// What the solver says of an output box.
enum class ZorWBBoxType : int {
    // Equalities in as many unknowns: the box holds exactly one solution
    // (proved by interval Newton) and every inequality holds on it. Without
    // equalities: every point of the box satisfies every inequality.
    Solution = 0,
    // As a solution, except that the inequalities cannot be decided on it
    // (it holds a solution of the equalities, or it is not inside the
    // inequalities, and it is too small to split).
    Boundary = 1,
    // Narrower than eps and nothing proved.
    Unknown = 2,
    // Left when a limit stopped the search.
    Pending = 3,
};

// The name of a box type: "solution", "boundary", "unknown", "pending".
ZORWBX_API const char* ZorWBBoxTypeName(ZorWBBoxType type);

// How a search ended.
enum class ZorWBSolverStatus : int {
    Complete = 0,    // every cell was examined and some box remains
    Infeasible = 1,  // every cell was examined and none holds a solution
    Incomplete = 2,  // a limit stopped the search (the pending boxes remain)
    Failed = 3,      // the system could not be solved (see GetMessage)
};

// Why an incomplete search stopped.
enum class ZorWBStopReason : int {
    None = 0,
    Time = 1,
    Cells = 2,
    Solutions = 3,
};

struct ZorWBSolverStatistics;

// Called during a search, from the thread that called Solve, about every
// progressInterval seconds.
using ZorWBSolverProgress = void (*)(const ZorWBSolverStatistics& statistics, void* data);

struct ZorWBSolverOptions {
    // Boxes whose splittable variables are all narrower than this are not
    // split again.
    double eps = 1e-8;
    // Limits; 0 for none. A time limit stops the workers where they are, so
    // the pending boxes it leaves depend on the machine; every other result
    // is the same for any number of threads.
    double timeout = 0.0;    // seconds
    long long maxCells = 0;  // cells examined
    int maxSolutions = 0;    // solution boxes
    // Workers, each on its own copy of the factory; 0 for one per hardware
    // thread.
    int threads = 1;
    // Propagation: the shrink ratio that revises a constraint again, and the
    // tolerance of the relations (-1.0 for the environment's). The solver's
    // arithmetic rounds outward, so it decides the relations exactly by
    // default: a tolerance would keep near-solutions it could discard.
    double ratio = 0.01;
    double tolerance = 0.0;
    ZorWBSolverProgress progress = nullptr;
    void* progressData = nullptr;
    double progressInterval = 0.25;
};

struct ZorWBSolverStatistics {
    long long cells = 0;  // cells examined (contracted, then split or kept)
    int solutions = 0;
    int boundaries = 0;
    int unknowns = 0;
    int pendings = 0;
    // Solution boxes found twice (a zero on the border of two cells) and
    // kept once.
    int duplicates = 0;
    long long newtonProofs = 0;  // proofs of uniqueness that succeeded
    double seconds = 0.0;
    bool complete = false;
    ZorWBStopReason stopReason = ZorWBStopReason::None;
};

// An output box: its type and a domain for every variable of the factory,
// by variable index.
class ZORWBX_API ZorWBSolverBox {
  public:
    ZorWBSolverBox() = default;
    ZorWBSolverBox(ZorWBBoxType type, const ZorWBDomainBox& domains,
                   const std::vector<ZorWBDomainKind>& kinds);

    ZorWBBoxType GetType() const { return _type; }
    int GetNbOfVariables() const { return _domains.GetSize(); }
    // The interval of a variable (the hull of a listed domain); infinite ends
    // are IEEE infinities. Empty for an index outside the box.
    ZorWBRoundedInterval GetInterval(int variable) const;
    // The domain as a value of its kind: a real interval (infinite ends at
    // the real limits), an integer interval, or the listed value.
    ZorWBValue GetValue(int variable) const;
    const ZorWBDomainBox& GetDomains() const { return _domains; }

  private:
    ZorWBBoxType _type = ZorWBBoxType::Unknown;
    ZorWBDomainBox _domains;
    std::vector<ZorWBDomainKind> _kinds;
};

#endif
