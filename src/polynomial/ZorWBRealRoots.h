#ifndef ZORWB_REALROOTS_H
#define ZORWB_REALROOTS_H

#include <vector>

#include "ZorWBxExport.h"
#include "polynomial/ZorWBPolynomial.h"

// A real root held by a rational interval: low == high is the root itself;
// otherwise the root is the only root of the polynomial in the open
// interval (low, high), and neither end is a root.
struct ZorWBRealRoot {
    ZorWBRational low;
    ZorWBRational high;
    int multiplicity = 1;

    bool IsExact() const { return low == high; }
    // The midpoint, as the nearest double.
    double GetApproximation() const;
};

// Certified real roots of polynomials over the rationals. Each answers a
// status and leaves its outputs untouched unless it is Success.
class ZORWBX_API ZorWBRealRoots {
  public:
    // Every real root, in increasing order, each with its multiplicity, in
    // intervals whose closures are pairwise disjoint (Descartes' rule of
    // signs with bisection on each square-free factor). A root at a dyadic
    // point met by the bisection comes exact. ZeroOperand for the zero
    // polynomial; no root for a non-zero constant.
    static ZorWBPolynomialStatus Isolate(const ZorWBPolynomial& p,
                                         std::vector<ZorWBRealRoot>& roots);
    // The same, with every interval then narrowed to a width of at most
    // width (a width <= 0 leaves the intervals as isolated).
    static ZorWBPolynomialStatus Isolate(const ZorWBPolynomial& p, const ZorWBRational& width,
                                         std::vector<ZorWBRealRoot>& roots);
    // Narrows an isolating interval of p (as Isolate gives it) by bisection
    // to a width of at most width (a width <= 0 leaves it as it is).
    // BadInterval when the interval does not isolate a root of p: an exact
    // one that is not a root, or ends where the square-free part of p has
    // no sign change.
    static ZorWBPolynomialStatus Refine(const ZorWBPolynomial& p, const ZorWBRational& width,
                                        ZorWBRealRoot& root);
};

#endif
