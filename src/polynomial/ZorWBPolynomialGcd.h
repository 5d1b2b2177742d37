#ifndef ZORWB_POLYNOMIALGCD_H
#define ZORWB_POLYNOMIALGCD_H

#include <vector>

#include "ZorWBxExport.h"
#include "polynomial/ZorWBPolynomial.h"

// Greatest common divisors, subresultants and resultants of polynomials in
// one variable over the rationals. Each answers a status and leaves its
// outputs untouched unless it is Success.
class ZORWBX_API ZorWBPolynomialGcd {
  public:
    // The monic greatest common divisor (zero when both are zero).
    static ZorWBPolynomialStatus Gcd(const ZorWBPolynomial& a, const ZorWBPolynomial& b,
                                     ZorWBPolynomial& gcd);
    // The monic gcd g and s, t with s a + t b = g (deg s < deg b and
    // deg t < deg a when both have degree >= 1).
    static ZorWBPolynomialStatus ExtendedGcd(const ZorWBPolynomial& a, const ZorWBPolynomial& b,
                                             ZorWBPolynomial& gcd, ZorWBPolynomial& s,
                                             ZorWBPolynomial& t);
    // The subresultant remainder sequence of the primitive integer parts of
    // a and b, the one of higher degree first: each element after the
    // first two is, up to sign, the subresultant of its degree (the top one
    // of its block where degrees drop by more than one), with integer
    // coefficients; the last is the gcd up to a constant factor (a constant
    // when a and b are coprime). ZeroOperand when a or b is zero.
    static ZorWBPolynomialStatus Subresultants(const ZorWBPolynomial& a, const ZorWBPolynomial& b,
                                               std::vector<ZorWBPolynomial>& sequence);
    // The resultant, the determinant of the Sylvester matrix:
    // lc(a)^deg b times the product of b over the roots of a. Zero exactly
    // when a and b have a common root (or one of them is zero); 1 for two
    // non-zero constants.
    static ZorWBPolynomialStatus Resultant(const ZorWBPolynomial& a, const ZorWBPolynomial& b,
                                           ZorWBRational& resultant);
};

#endif
