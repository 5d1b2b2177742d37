#include "expressions/ZorWBSegmentFunction.h"

#include <exception>

bool ZorWBSegmentFunction::AddInterval(const ZorWBSegmentFunctionInterval& interval) try {
    _intervals.push_back(interval);
    return true;
} catch (const std::exception&) {
    return false;
}

const ZorWBSegmentFunctionInterval* ZorWBSegmentFunction::GetInterval(int i) const {
    if (i < 0 || i >= GetNumIntervals()) return nullptr;
    return &_intervals[static_cast<std::size_t>(i)];
}
