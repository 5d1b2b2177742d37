#ifndef TESTS_FAILING_ALLOCATION_H
#define TESTS_FAILING_ALLOCATION_H

#include <cstddef>

// While an instance lives, every allocation through operator new of more
// than limit bytes fails (bad_alloc, or null for the nothrow forms). The
// replacement operators in FailingAllocation.cpp serve the whole process.
class LargeAllocationsFail {
  public:
    explicit LargeAllocationsFail(std::size_t limit);
    ~LargeAllocationsFail();
    LargeAllocationsFail(const LargeAllocationsFail&) = delete;
    LargeAllocationsFail& operator=(const LargeAllocationsFail&) = delete;
};

#endif
