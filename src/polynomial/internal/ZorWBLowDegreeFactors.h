#ifndef ZORWB_LOWDEGREEFACTORS_H
#define ZORWB_LOWDEGREEFACTORS_H

#include <vector>

#include "polynomial/internal/ZorWBExact.h"

namespace ZorWBExact {

// The irreducible factors of degree 1 and 2 over Q of an integer
// polynomial, and what is left when they are divided out.
struct LowDegreeFactors {
    std::vector<ZPoly> linear;     // primitive, positive leading coefficient
    std::vector<ZPoly> quadratic;  // irreducible over Q, primitive, positive leading coefficient
    ZPoly rest;                    // primitive: the product of the other factors
};

// f primitive and square-free, of degree >= 1. Without quadratics only the
// linear factors (the rational roots) are searched, and rest keeps the
// quadratic ones. When no prime below 2^31 among the first ones keeps f
// square-free (never seen, but possible in principle), nothing is found
// and rest is f.
LowDegreeFactors FindLowDegreeFactors(const ZPoly& f, bool withQuadratics);

}  // namespace ZorWBExact

#endif
