#ifndef TESTS_ALLOCATION_COUNTER_H
#define TESTS_ALLOCATION_COUNTER_H

#include <cstddef>

// Counts the calls of the global operator new made by this test program and
// the libraries it loads (the replacement in AllocationCounter.cpp
// interposes on every allocation of the process).
std::size_t AllocationCount();

#endif
