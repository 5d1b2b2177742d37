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

// How a quantity written in a unit turns into the library's base units:
// value * multiplier / divisor.
struct ZorWBUnitFactor {
    double multiplier;
    double divisor;
};

// The factor that turns a quantity written in a unit into the library's base
// units, millimetres for lengths and radians for angles:
//   km 1e6, m 1000, cm 10, mm 1, nm (nanometre) 1e-6, micron 1e-3,
//   in 25.4, in_ft 25.4 (the inch of a feet-and-inches dimension), ft 304.8,
//   yard 914.4, mile 1609344;
//   rad 1, deg Pi/180, grad Pi/200, turn 2 Pi, mrad 1e-3,
//   %_angle Pi/50 (a hundredth of a full turn).
// The ambiguous marks: the degree sign (the byte 0xB0) is always the
// degree; ' is the foot (304.8) and " the inch (25.4) when context is
// Distance, and the arc minute (Pi/10800) and the arc second (Pi/648000)
// for any other context. False, factor untouched, for a name that is no unit.
ZORWBX_API bool ZorWBGetUnitFactor(const ZorQelString& unitName, ZorWBUnitKind context,
                                   ZorWBUnitFactor& factor);

#endif
