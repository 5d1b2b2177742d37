#ifndef ZORWB_SEGMENTFUNCTION_H
#define ZORWB_SEGMENTFUNCTION_H

#include <vector>

#include "ZorWBxExport.h"
#include "values/ZorWBValue.h"

// A data point of a segment function.
class ZORWBX_API ZorWBSegmentFunctionDataPt {
  public:
    ZorWBSegmentFunctionDataPt(const ZorWBValue& x, const ZorWBValue& y) : _x(x), _y(y) {}
    ZorWBSegmentFunctionDataPt(double x, double y) : _x(x), _y(y) {}

    const ZorWBValue& GetX() const { return _x; }
    const ZorWBValue& GetY() const { return _y; }

  private:
    ZorWBValue _x;
    ZorWBValue _y;
};

// One interval of a segment function: from its start point to its end point
// the function follows a fixed shape scaled to the interval (see
// ZorWBFactory::CreateSegmentFunction_X and its kin).
class ZORWBX_API ZorWBSegmentFunctionInterval {
  public:
    enum ZorWBInterpolationType : int {
        Linear = 1,
        Quadratic = 2,
        Cubic = 3,       // 3 t^2 - 2 t^3, flat at both ends
        QuarterSin = 4,  // sin(t Pi/2), flat at the end
        QuarterCos = 5,  // 1 - cos(t Pi/2), flat at the start
    };

    ZorWBSegmentFunctionInterval(const ZorWBSegmentFunctionDataPt& start,
                                 const ZorWBSegmentFunctionDataPt& end, ZorWBInterpolationType type)
        : _start(start), _end(end), _type(type) {}

    const ZorWBSegmentFunctionDataPt& GetStart() const { return _start; }
    const ZorWBSegmentFunctionDataPt& GetEnd() const { return _end; }
    ZorWBInterpolationType GetType() const { return _type; }

  private:
    ZorWBSegmentFunctionDataPt _start;
    ZorWBSegmentFunctionDataPt _end;
    ZorWBInterpolationType _type;
};

// A piecewise function of one argument: intervals expected in increasing X
// order (nothing checks it), each holding its own copy.
class ZORWBX_API ZorWBSegmentFunction {
  public:
    // Appends a copy; false only when memory is short.
    bool AddInterval(const ZorWBSegmentFunctionInterval& interval);
    int GetNumIntervals() const { return static_cast<int>(_intervals.size()); }
    // Null outside 0 .. GetNumIntervals() - 1.
    const ZorWBSegmentFunctionInterval* GetInterval(int i) const;

  private:
    std::vector<ZorWBSegmentFunctionInterval> _intervals;
};

#endif
