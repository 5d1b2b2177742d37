#ifndef ZORWB_SOLVERSEARCH_H
#define ZORWB_SOLVERSEARCH_H

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "solver/ZorWBBranchAndPrune.h"
#include "solver/ZorWBSolverTypes.h"

// The search tree of the branch and prune, examined by any number of
// workers, with the output of a depth-first search by one worker.
//
// Each cell is named by its path from the root ("" for the root, then '0'
// for a left half and '1' for a right half), so that the depth-first order
// is the order of the paths. Ready cells wait in one work queue ordered by
// path: every worker takes the first, examines it on its own copy of the
// system (ZorWBBranchAndPrune, whose result depends on the cell alone) and
// hands back the result, whose halves join the queue. A replay then walks
// the tree depth first, as a single worker would, over the results as they
// come in: it counts the cells, keeps the output boxes in their order,
// drops a solution whose zero another one already holds (each lies in the
// other's uniqueness box), applies the limits on cells and solutions where a
// single worker would have stopped, and waits where a result is not in yet.
// The boxes, their order and the counts are therefore the same for any
// number of workers; only a time limit, which stops the workers where they
// are, depends on the machine. Results that the replay reaches after a stop
// are dropped, and the cells it had not examined become pending boxes.
//
// Taking the first ready cell keeps every worker near the replay's place in
// the tree, so few results wait for it: memory grows with the depth of the
// tree and the number of workers.
class ZorWBSolverSearch {
  public:
    ZorWBSolverSearch(const ZorWBSolverProblem& problem,
                      std::vector<std::unique_ptr<ZorWBBranchAndPrune>>& workers);

    // Searches from the root box; the boxes in depth-first order, pending
    // ones last.
    void Run(const ZorWBDomainBox& root, std::vector<ZorWBSolverBox>& boxes,
             ZorWBSolverStatistics& statistics);

  private:
    struct Pending {
        std::string path;
        ZorWBDomainBox box;
    };
    struct Kept {
        ZorWBDomainBox existence;
        ZorWBDomainBox uniqueness;
    };

    void Work(int worker);
    // Hands back a cell's result; the replay then goes as far as it can.
    void Deliver(const std::string& path, ZorWBCellResult&& result);
    void Replay();
    void Consume(Pending& cell, ZorWBCellResult& result);
    bool IsDuplicate(const ZorWBCellResult::Output& output) const;
    void Stop(ZorWBStopReason reason);
    double Elapsed() const;
    void ReportProgress();

    const ZorWBSolverProblem& _problem;
    std::vector<std::unique_ptr<ZorWBBranchAndPrune>>& _workers;

    std::mutex _mutex;
    std::condition_variable _wake;
    std::map<std::string, ZorWBDomainBox> _ready;
    std::map<std::string, ZorWBCellResult> _results;
    std::vector<Pending> _replay;  // the last is the next in depth-first order
    std::vector<ZorWBSolverBox> _boxes;
    std::vector<Kept> _kept;
    ZorWBSolverStatistics _statistics;
    bool _finished = false;
    std::chrono::steady_clock::time_point _start;
    // The time limit as a point in time, when there is one: a cell examined
    // past it is given up and left pending.
    std::unique_ptr<std::chrono::steady_clock::time_point> _deadline;
    std::chrono::steady_clock::time_point _lastProgress;
};

#endif
