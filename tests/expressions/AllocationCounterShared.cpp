// The allocation counter of the value tests, linked into this program too.
#include "values/AllocationCounter.cpp"
