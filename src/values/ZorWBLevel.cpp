#include "values/ZorWBLevel.h"

namespace {
constexpr unsigned int NeverReached = 0xFFFFFFFFu;

unsigned int MajorOf(unsigned int level) {
    return level >> 16;
}
}  // namespace

bool ZorWBCheckLevel(unsigned int level, const unsigned int* thresholds) {
    if (!thresholds) return false;
    for (int i = 0; thresholds[i] != ZorWBLevelListEnd; ++i) {
        unsigned int threshold = thresholds[i];
        if (threshold == NeverReached || level < threshold) continue;
        if (i == 0 || MajorOf(level) == MajorOf(threshold)) return true;
    }
    return false;
}

bool ZorWBCheckLevel(unsigned int level, unsigned int threshold) {
    const unsigned int thresholds[] = {threshold, ZorWBLevelListEnd};
    return ZorWBCheckLevel(level, thresholds);
}
