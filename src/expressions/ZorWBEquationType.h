#ifndef ZORWB_EQUATIONTYPE_H
#define ZORWB_EQUATIONTYPE_H

// The relation an equation states between its root and zero, or the extremum
// it asks for.
enum ZorWBEquationType : int {
    ZorWBEquationUnset = 0,
    ZorWBEqualZero = 1,
    ZorWBNotEqualZero = 2,
    ZorWBLessEqualZero = 3,
    ZorWBLessZero = 4,
    ZorWBGreaterEqualZero = 5,
    ZorWBGreaterZero = 6,
    ZorWBMinimize = 7,
    ZorWBMaximize = 8,
};

#endif
