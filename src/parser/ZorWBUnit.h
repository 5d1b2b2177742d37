#ifndef ZORWB_UNIT_H
#define ZORWB_UNIT_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"

// The kind of quantity a unit, or a whole subtree, stands for. A unit name
// is one of the first four kinds; the last two only come out of combining
// the kinds of a subtree.
enum class ZorWBUnitKind : int {
    None,           // no unit: a pure number
    Distance,       // a length
    Angle,          // an angle
    Ambiguous,      // may be a length or an angle (the degree sign, ' and ")
    Unsolved,       // the kind cannot be decided
    Inhomogeneous,  // kinds that cannot be combined
};

// "None", "Distance", "Angle", "Ambiguous", "Unsolved" or "Inhomogeneous".
ZORWBX_API const ZorQelString& ZorWBUnitKindName(ZorWBUnitKind kind);
// The kind of a name of that list; None for any other text.
ZORWBX_API ZorWBUnitKind ZorWBUnitKindFromName(const ZorQelString& name);

// The kind of a unit name: Distance for km, m, cm, mm, nm, in, ft, micron,
// yard, mile and in_ft; Angle for rad, deg, grad, turn, mrad and %_angle;
// Ambiguous for the degree sign (the byte 0xB0), ' and "; None (an unknown
// unit) for anything else.
ZORWBX_API ZorWBUnitKind ZorWBClassifyUnit(const ZorQelString& unitName);

#endif
