// The replaced operator new of the value tests, linked into this program too.
#include "values/TestAllocator.cpp"
