#ifndef ZORWB_PROGRAMCACHE_H
#define ZORWB_PROGRAMCACHE_H

#include <cstddef>
#include <exception>
#include <memory>
#include <unordered_map>

#include "expressions/ZorWBFactory.h"

class ZorWBExpression;

// The compiled programs of one factory's roots, of one kind (ZorWBRealProgram
// for Eval, ZorWBValueProgram for GetValue). A root gets a program at its
// second evaluation (the first one walks the nodes as usual), when the walk
// computed enough nodes for compiling to pay. Every program goes when the
// structure of the factory's graph changes (ZorWBFactory::GetStructureVersion)
// and, should their total size outgrow a bound tied to the number of nodes,
// all of them go to make room.
//
// Program provides: static std::unique_ptr<Program> Compile(root), null
// when the root cannot be compiled; and std::size_t GetSize().
template <class Program>
class ZorWBProgramCache {
  public:
    // Programs are compiled for roots whose walk computed this many nodes.
    static constexpr int MinNodes = 8;

    explicit ZorWBProgramCache(ZorWBFactory& factory) : _factory(factory) {}
    ZorWBProgramCache(const ZorWBProgramCache&) = delete;
    ZorWBProgramCache& operator=(const ZorWBProgramCache&) = delete;

    // The program to run for root, compiled now when root was walked once
    // already; null when root must be walked: a first evaluation, a root too
    // small, a program that cannot be made, programs turned off, or a
    // program running already (no program is made, dropped or run before it
    // returns: a black box may evaluate in the middle of it).
    Program* Find(const ZorWBExpression* root) try {
        if (!_enabled || _running || _entries.empty()) return nullptr;
        Refresh();
        auto found = _entries.find(root);
        if (found == _entries.end() || found->second.failed) return nullptr;
        Entry& entry = found->second;
        if (!entry.program) {
            entry.program = Program::Compile(root);
            if (!entry.program) {
                entry.failed = true;
                return nullptr;
            }
            _totalSize += entry.program->GetSize();
            if (_totalSize > Budget()) {
                // Room for this one program only.
                std::unique_ptr<Program> kept = std::move(entry.program);
                Clear();
                _totalSize = kept->GetSize();
                return (_entries[root].program = std::move(kept)).get();
            }
        }
        return entry.program.get();
    } catch (const std::exception&) {
        return nullptr;
    }

    // Records that root was walked and computed that many nodes.
    void Remember(const ZorWBExpression* root, int nodes) try {
        if (!_enabled || _running || nodes < MinNodes) return;
        Refresh();
        _entries.emplace(root, Entry());
    } catch (const std::exception&) {
    }

    // Marks a program as running for its lifetime, and counts the run.
    class Running {
      public:
        explicit Running(ZorWBProgramCache& cache) : _cache(cache) {
            _cache._running = true;
            ++_cache._runs;
        }
        ~Running() { _cache._running = false; }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

      private:
        ZorWBProgramCache& _cache;
    };

    // Turned off, the cache forgets every program and Find always declines.
    void Enable(bool enabled) {
        if (_running) return;
        _enabled = enabled;
        if (!enabled) Clear();
    }
    bool IsEnabled() const { return _enabled; }
    long long GetNbOfRuns() const { return _runs; }

  private:
    struct Entry {
        std::unique_ptr<Program> program;
        bool failed = false;
    };

    // Forgets every program made before the graph last changed.
    void Refresh() {
        if (_version == _factory.GetStructureVersion()) return;
        Clear();
        _version = _factory.GetStructureVersion();
    }
    void Clear() {
        _entries.clear();
        _totalSize = 0;
    }
    // Programs may take four instructions per node of the factory, and some
    // room for small factories.
    std::size_t Budget() const {
        std::size_t nodes = static_cast<std::size_t>(_factory.GetNbOfExpressions()) +
                            static_cast<std::size_t>(_factory.GetNbOfTemporaryExpressions());
        return 4 * nodes + 4096;
    }

    ZorWBFactory& _factory;
    std::unordered_map<const ZorWBExpression*, Entry> _entries;
    unsigned long long _version = 0;
    std::size_t _totalSize = 0;
    long long _runs = 0;
    bool _running = false;
    bool _enabled = true;
};

#endif
