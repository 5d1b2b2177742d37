// Building a workload formula through the API (ZorWBx's factory, GiNaC's
// expressions): the time per node to build it and destroy it again, and the
// memory it holds, as bytes per node.
//
// The bytes are those of the blocks still allocated once the formula is
// built, minus those allocated before (the factory or GiNaC's own state
// already made): the variables or symbols with their names, the nodes and
// every container they use, at the size malloc gave each block. They are
// counted by this program's replacement of the global operator new and
// delete (the shared libraries' allocations come here too) and, for GiNaC's
// numbers, by CLN's allocation hooks. The counter "bytes_per_node" divides
// them by the formula's node count as ZorWBx holds it.

#include <malloc.h>

#include <cstdlib>
#include <new>

#include "BenchSupport.h"
#include "BenchZorWBx.h"

#ifdef ZORWBX_BENCH_GINAC
#include <cln/malloc.h>

#include "BenchGinac.h"
#endif

namespace {

// Bytes in the blocks allocated and not yet released (one thread only).
std::size_t liveBytes = 0;

void* Allocate(std::size_t size) noexcept {
    void* block = std::malloc(size ? size : 1);
    if (block) liveBytes += malloc_usable_size(block);
    return block;
}

void* AllocateAligned(std::size_t size, std::align_val_t alignment) noexcept {
    auto align = static_cast<std::size_t>(alignment);
    void* block = std::aligned_alloc(align, (size + align - 1) / align * align);
    if (block) liveBytes += malloc_usable_size(block);
    return block;
}

void Release(void* block) noexcept {
    if (!block) return;
    liveBytes -= malloc_usable_size(block);
    std::free(block);
}

void* AllocateOrThrow(std::size_t size) {
    void* block = Allocate(size);
    if (!block) throw std::bad_alloc();
    return block;
}

void* AllocateAlignedOrThrow(std::size_t size, std::align_val_t alignment) {
    void* block = AllocateAligned(size, alignment);
    if (!block) throw std::bad_alloc();
    return block;
}

}  // namespace

void* operator new(std::size_t size) {
    return AllocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return AllocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new(std::size_t size, std::align_val_t a) {
    return AllocateAlignedOrThrow(size, a);
}
void* operator new[](std::size_t size, std::align_val_t a) {
    return AllocateAlignedOrThrow(size, a);
}
void operator delete(void* block) noexcept {
    Release(block);
}
void operator delete[](void* block) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    Release(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    Release(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    Release(block);
}

namespace {

using namespace bench;

void SetBytesPerNode(benchmark::State& state, std::size_t bytes, int nodes) {
    state.counters["bytes_per_node"] =
        benchmark::Counter(static_cast<double>(bytes) / static_cast<double>(nodes));
}

void ZorWBxBuild(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    const int nodes = NodeCount(workload, n);
    SetNodes(state, nodes);
    {
        ZorWBFactory factory;
        std::size_t before = liveBytes;
        ZorWBxFormula built;
        BuildInto(factory, formula, false, built);
        std::size_t bytes = liveBytes - before;
        SetReals(built.variables, formula.base);
        if (!Agrees(state, "the whole formula", built.root->Eval(),
                    Evaluate(formula, formula.root, formula.base), Magnitude(formula)))
            return;
        SetBytesPerNode(state, bytes, nodes);
    }
    for (auto _ : state) {
        ZorWBFactory factory;
        ZorWBxFormula built;
        BuildInto(factory, formula, false, built);
        Keep(built.root->GetNbOfChildren());
    }
}

#ifdef ZORWBX_BENCH_GINAC
void* CountedMalloc(std::size_t size) {
    return AllocateOrThrow(size);
}

void GinacBuild(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    const int nodes = NodeCount(workload, n);
    SetNodes(state, nodes);
    {
        GinacFormula built;
        std::size_t before = liveBytes;
        BuildGinacInto(formula, built);
        std::size_t bytes = liveBytes - before;
        SetBytesPerNode(state, bytes, nodes);
    }
    for (auto _ : state) {
        GinacFormula built;
        BuildGinacInto(formula, built);
        Keep(static_cast<double>(built.root.nops()));
    }
}
#endif

}  // namespace

int main(int argc, char** argv) {
    RegisterEach("build", "zorwbx", benchmark::kMicrosecond, ZorWBxBuild);
#ifdef ZORWBX_BENCH_GINAC
    cln::malloc_hook = CountedMalloc;
    cln::free_hook = Release;
    RegisterEach("build", "ginac", benchmark::kMicrosecond, GinacBuild);
#endif
    return RunBenchmarks(argc, argv);
}
