#ifndef ZORWB_NUMBERTEXT_H
#define ZORWB_NUMBERTEXT_H

#include <cstddef>

#include "ZorWBxExport.h"

// Reads a decimal number as written in the equation language (digits, an
// optional point followed by digits, an optional exponent), whatever the
// process locale, with the result that atof gives in the C locale: the
// nearest double, infinity when the number is too large, zero (or the
// nearest subnormal) when it is too small. Text that is not such a number
// reads as 0.
ZORWBX_API double ZorWBReadDecimal(const char* text, std::size_t length);

#endif
