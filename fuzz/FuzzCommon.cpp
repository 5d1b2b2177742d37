// What every fuzz target shares: failing a property, and keeping the
// library's echoes on the standard output (the scanner's "Invalid
// character", the JSON writer's copy of its document) out of the fuzzer's
// log.

#include <cstdio>
#include <cstdlib>

#include "FuzzBytes.h"

void FuzzFail(const std::string& message) {
    std::fprintf(stderr, "property failed: %s\n", message.c_str());
    std::fflush(stderr);
    std::abort();
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    if (!std::freopen("/dev/null", "w", stdout)) std::fprintf(stderr, "stdout stays open\n");
    return 0;
}
