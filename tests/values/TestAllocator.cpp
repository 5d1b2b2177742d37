#include "TestAllocator.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> limit{0};  // 0: no limit

void* TryAllocate(std::size_t size) noexcept {
    allocations.fetch_add(1, std::memory_order_relaxed);
    std::size_t current = limit.load(std::memory_order_relaxed);
    if (current != 0 && size > current) return nullptr;
    return std::malloc(size ? size : 1);
}

void* Allocate(std::size_t size) {
    void* memory = TryAllocate(size);
    if (!memory) throw std::bad_alloc();
    return memory;
}

}  // namespace

std::size_t AllocationCount() {
    return allocations.load();
}

LargeAllocationsFail::LargeAllocationsFail(std::size_t bytes) {
    limit.store(bytes);
}

LargeAllocationsFail::~LargeAllocationsFail() {
    limit.store(0);
}

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return TryAllocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return TryAllocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
