// The work queue, the workers and the depth-first replay of the search; the
// invariant that makes the output independent of the number of workers is
// stated in the header: the replay alone decides what is counted, kept,
// dropped as a duplicate or left pending, and it walks the tree in the
// order one worker would.

#include "solver/ZorWBSolverSearch.h"

#include <exception>
#include <system_error>
#include <thread>

ZorWBSolverSearch::ZorWBSolverSearch(const ZorWBSolverProblem& problem,
                                     std::vector<std::unique_ptr<ZorWBBranchAndPrune>>& workers)
    : _problem(problem), _workers(workers) {}

double ZorWBSolverSearch::Elapsed() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - _start).count();
}

void ZorWBSolverSearch::Run(const ZorWBDomainBox& root, std::vector<ZorWBSolverBox>& boxes,
                            ZorWBSolverStatistics& statistics) {
    _start = _lastProgress = std::chrono::steady_clock::now();
    if (_problem.options.timeout > 0.0) {
        _deadline.reset(new std::chrono::steady_clock::time_point(
            _start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(_problem.options.timeout))));
    }
    _ready.emplace("", root);
    _replay.push_back({"", root});
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < _workers.size(); ++i) {
        try {
            threads.emplace_back([this, i] { Work(static_cast<int>(i)); });
        } catch (const std::system_error&) {
            break;  // fewer workers: the same result, later
        }
    }
    Work(0);
    for (std::thread& thread : threads)
        thread.join();
    for (auto cell = _replay.rbegin(); cell != _replay.rend(); ++cell) {
        _boxes.emplace_back(ZorWBBoxType::Pending, cell->box, _problem.kinds);
        ++_statistics.pendings;
    }
    _statistics.complete = _replay.empty() && _statistics.stopReason == ZorWBStopReason::None;
    _statistics.seconds = Elapsed();
    boxes.swap(_boxes);
    statistics = _statistics;
}

void ZorWBSolverSearch::Work(int worker) {
    std::unique_lock<std::mutex> lock(_mutex);
    while (!_finished) {
        if (_ready.empty()) {
            _wake.wait(lock);
            continue;
        }
        auto cell = _ready.extract(_ready.begin());
        lock.unlock();
        ZorWBCellResult result;
        try {
            result = _workers[worker]->Examine(cell.mapped(), _deadline.get());
        } catch (const std::exception&) {
            // Out of memory: the cell is kept whole, nothing is lost.
            result = ZorWBCellResult();
            result.outputs.push_back({ZorWBBoxType::Unknown, cell.mapped(), ZorWBDomainBox()});
        }
        const bool late =
            result.late || (_problem.options.timeout > 0.0 && Elapsed() > _problem.options.timeout);
        lock.lock();
        if (late) Stop(ZorWBStopReason::Time);
        if (!_finished) Deliver(cell.key(), std::move(result));
        if (worker == 0 && _problem.options.progress) {
            lock.unlock();
            ReportProgress();
            lock.lock();
        }
    }
    _wake.notify_all();
}

void ZorWBSolverSearch::ReportProgress() {
    const auto now = std::chrono::steady_clock::now();
    if (std::chrono::duration<double>(now - _lastProgress).count() <
        _problem.options.progressInterval)
        return;
    _lastProgress = now;
    ZorWBSolverStatistics snapshot;
    {
        std::lock_guard<std::mutex> guard(_mutex);
        snapshot = _statistics;
    }
    snapshot.seconds = Elapsed();
    _problem.options.progress(snapshot, _problem.options.progressData);
}

void ZorWBSolverSearch::Deliver(const std::string& path, ZorWBCellResult&& result) {
    for (std::size_t i = 0; i < result.children.size(); ++i)
        _ready.emplace(path + static_cast<char>('0' + i), result.children[i]);
    _results.emplace(path, std::move(result));
    Replay();
    _wake.notify_all();
}

void ZorWBSolverSearch::Replay() {
    while (!_finished && !_replay.empty()) {
        auto found = _results.find(_replay.back().path);
        if (found == _results.end()) return;
        Pending cell = std::move(_replay.back());
        _replay.pop_back();
        ZorWBCellResult result = std::move(found->second);
        _results.erase(found);
        Consume(cell, result);
    }
    if (_replay.empty()) _finished = true;
}

bool ZorWBSolverSearch::IsDuplicate(const ZorWBCellResult::Output& output) const {
    for (const Kept& kept : _kept) {
        if (output.box.IsInside(kept.uniqueness) || kept.existence.IsInside(output.uniqueness))
            return true;
    }
    return false;
}

void ZorWBSolverSearch::Consume(Pending& cell, ZorWBCellResult& result) {
    ++_statistics.cells;
    if (result.proved) ++_statistics.newtonProofs;
    for (ZorWBCellResult::Output& output : result.outputs) {
        const bool proved = output.uniqueness.GetSize() > 0;
        if (proved && IsDuplicate(output)) {
            ++_statistics.duplicates;
            continue;
        }
        if (proved) _kept.push_back({output.box, output.uniqueness});
        switch (output.type) {
            case ZorWBBoxType::Solution:
                ++_statistics.solutions;
                break;
            case ZorWBBoxType::Boundary:
                ++_statistics.boundaries;
                break;
            default:
                ++_statistics.unknowns;
                break;
        }
        _boxes.emplace_back(output.type, output.box, _problem.kinds);
    }
    for (std::size_t i = result.children.size(); i-- > 0;)
        _replay.push_back({cell.path + static_cast<char>('0' + i), std::move(result.children[i])});
    const ZorWBSolverOptions& options = _problem.options;
    if (_replay.empty()) return;  // nothing left to stop
    if (options.maxSolutions > 0 && _statistics.solutions >= options.maxSolutions)
        Stop(ZorWBStopReason::Solutions);
    else if (options.maxCells > 0 && _statistics.cells >= options.maxCells)
        Stop(ZorWBStopReason::Cells);
}

void ZorWBSolverSearch::Stop(ZorWBStopReason reason) {
    if (_finished) return;
    _finished = true;
    _statistics.stopReason = reason;
    _wake.notify_all();
}
