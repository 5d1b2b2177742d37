#include "parser/ZorWBLocation.h"

#include <climits>

// Positions saturate instead of overflowing on absurdly long inputs.
namespace {
int SaturatedAdd(int value, int count) {
    if (count > 0 && value > INT_MAX - count) return INT_MAX;
    if (count < 0 && value < INT_MIN - count) return INT_MIN;
    return value + count;
}
}  // namespace

void ZorWBLocation::IncrementLastColumn(int count) {
    _lastColumn = SaturatedAdd(_lastColumn, count);
}

void ZorWBLocation::NextLine() {
    _lastLine = SaturatedAdd(_lastLine, 1);
    _lastColumn = 0;
}

ZorQelString ZorWBLocation::Write() const {
    ZorQelString text("(");
    text += _firstLine;
    text += ',';
    text += _firstColumn;
    text += ',';
    text += _lastLine;
    text += ',';
    text += _lastColumn;
    text += ')';
    return text;
}
