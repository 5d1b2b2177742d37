#ifndef ZORWB_LOCATION_H
#define ZORWB_LOCATION_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"

// A span of source text: first line and column, last line and column. Lines
// count from 1 and columns from 0; the scanner moves the last position over
// each token and steps the first position up to it before the next one.
class ZORWBX_API ZorWBLocation {
  public:
    ZorWBLocation() = default;
    ZorWBLocation(int firstLine, int firstColumn, int lastLine, int lastColumn)
        : _firstLine(firstLine),
          _firstColumn(firstColumn),
          _lastLine(lastLine),
          _lastColumn(lastColumn) {}

    // Back to a new location (1, 0, 1, 0).
    void Reset() { *this = ZorWBLocation(); }
    // The next span starts where this one ends.
    void Step() {
        _firstLine = _lastLine;
        _firstColumn = _lastColumn;
    }
    void IncrementLastColumn(int count);
    void NextLine();

    void GetLocation(int& firstLine, int& firstColumn, int& lastLine, int& lastColumn) const {
        firstLine = _firstLine;
        firstColumn = _firstColumn;
        lastLine = _lastLine;
        lastColumn = _lastColumn;
    }
    void SetLocation(int firstLine, int firstColumn, int lastLine, int lastColumn) {
        *this = ZorWBLocation(firstLine, firstColumn, lastLine, lastColumn);
    }
    int GetFirstLine() const { return _firstLine; }
    int GetFirstColumn() const { return _firstColumn; }
    int GetLastLine() const { return _lastLine; }
    int GetLastColumn() const { return _lastColumn; }
    void SetFirstLine(int line) { _firstLine = line; }
    void SetFirstColumn(int column) { _firstColumn = column; }
    void SetLastLine(int line) { _lastLine = line; }
    void SetLastColumn(int column) { _lastColumn = column; }

    // Whether the four positions are the same.
    bool Compare(const ZorWBLocation& other) const {
        return _firstLine == other._firstLine && _firstColumn == other._firstColumn &&
               _lastLine == other._lastLine && _lastColumn == other._lastColumn;
    }
    // "(first line,first column,last line,last column)", e.g. "(3,4,3,9)".
    ZorQelString Write() const;

  private:
    int _firstLine = 1;
    int _firstColumn = 0;
    int _lastLine = 1;
    int _lastColumn = 0;
};

#endif
