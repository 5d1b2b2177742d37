#ifndef TESTS_TEST_ALLOCATOR_H
#define TESTS_TEST_ALLOCATOR_H

#include <cstddef>

// The global operator new of the test programs, replaced in TestAllocator.cpp
// (the replacement interposes on every allocation of the process, the
// libraries' included): it counts calls and can refuse large requests.

// The number of calls of operator new so far.
std::size_t AllocationCount();

// While an instance lives, every allocation of more than limit bytes fails
// (bad_alloc, or null for the nothrow forms).
class LargeAllocationsFail {
  public:
    explicit LargeAllocationsFail(std::size_t limit);
    ~LargeAllocationsFail();
    LargeAllocationsFail(const LargeAllocationsFail&) = delete;
    LargeAllocationsFail& operator=(const LargeAllocationsFail&) = delete;
};

#endif
