#ifndef ZORWB_INTEGRATIONSTEPS_H
#define ZORWB_INTEGRATIONSTEPS_H

// The steps of rational integration on GMP polynomials, shared by the
// files of ZorWBRationalIntegration.

#include <vector>

#include "polynomial/ZorWBRationalIntegration.h"
#include "polynomial/internal/ZorWBExact.h"

namespace ZorWBExact {

// Hermite reduction (ZorWBHermiteReduction.cpp): a / d = (g / h)' + r / s,
// s square-free; d not zero.
void HermiteReduce(const QPoly& a, const QPoly& d, QPoly& g, QPoly& h, QPoly& r, QPoly& s);

// sum over roots(alpha) = 0 of alpha ln(argument(alpha, x)); argument[k]
// is the coefficient of x^k, a polynomial in t.
struct LogarithmicSum {
    ZPoly roots;
    std::vector<QPoly> argument;
};

// The Lazard-Rioboo-Trager sums of a / d (ZorWBRationalIntegration.cpp):
// d square-free, deg a < deg d, a and d coprime, a not zero.
std::vector<LogarithmicSum> LogarithmicPart(const QPoly& a, const QPoly& d);

// The sum written with ln and atan (ZorWBLogToReal.cpp); false when a root
// is of degree above 2 over Q.
bool ToRealTerms(const LogarithmicSum& sum, std::vector<ZorWBIntegralTerm>& terms);

}  // namespace ZorWBExact

#endif
