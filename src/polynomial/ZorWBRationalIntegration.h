#ifndef ZORWB_RATIONALINTEGRATION_H
#define ZORWB_RATIONALINTEGRATION_H

#include <vector>

#include "ZorWBxExport.h"
#include "polynomial/ZorWBPolynomial.h"

// One transcendental term of an antiderivative,
//   c ln|P(x)|  or  c atan(P(x)),
// whose coefficient c = coefficient + coefficientRoot sqrt(radicand) and
// argument P = argument + argumentRoot sqrt(radicand) lie in the field
// Q(sqrt radicand). A radicand of 1 means that both are rational (the
// Root parts are then zero).
struct ZorWBIntegralTerm {
    enum Kind { Logarithm, Arctangent };

    Kind kind = Logarithm;
    ZorWBRational radicand = 1;
    ZorWBRational coefficient;
    ZorWBRational coefficientRoot;
    ZorWBPolynomial argument;
    ZorWBPolynomial argumentRoot;

    // The term at x, in doubles.
    double Evaluate(double x) const;
};

// An antiderivative of a rational function:
//   polynomialPart + numerator / denominator + the sum of the terms.
struct ZorWBRationalAntiDerivative {
    ZorWBPolynomial polynomialPart;
    ZorWBPolynomial numerator;
    ZorWBPolynomial denominator = ZorWBPolynomial(ZorWBRational(1));
    std::vector<ZorWBIntegralTerm> terms;

    // The antiderivative at x, in doubles.
    double Evaluate(double x) const;
};

// The sum, over the roots alpha of roots(t), of alpha ln(S(alpha, x)),
// where argument[k] is the coefficient of x^k of S as a polynomial in t.
struct ZorWBLogarithmicSum {
    ZorWBPolynomial roots;
    std::vector<ZorWBPolynomial> argument;
};

// The integration of rational functions with rational coefficients, in
// polynomial terms (ZorWBPolynomialTools builds the expressions). Each
// answers a status and leaves its outputs untouched unless it is Success.
class ZORWBX_API ZorWBRationalIntegration {
  public:
    // Hermite reduction of a / d (d not zero): a / d = (g / h)' + r / s with
    // s square-free; gives g / h (h = 1 when d is square-free) and r / s.
    static ZorWBPolynomialStatus HermiteReduce(const ZorWBPolynomial& a, const ZorWBPolynomial& d,
                                               ZorWBPolynomial& g, ZorWBPolynomial& h,
                                               ZorWBPolynomial& r, ZorWBPolynomial& s);
    // The logarithmic part of the integral of a / d, for d square-free and
    // deg a < deg d, by the Lazard-Rioboo-Trager method: the sums, one per
    // square-free factor of the resultant res_x(d, a - t d'). Their roots
    // polynomials are primitive integer polynomials, their arguments monic
    // in x (reduced modulo the roots polynomial).
    static ZorWBPolynomialStatus LogarithmicPart(const ZorWBPolynomial& a, const ZorWBPolynomial& d,
                                                 std::vector<ZorWBLogarithmicSum>& sums);
    // The antiderivative of numerator / denominator: the polynomial part,
    // Hermite reduction for the rational part, the logarithmic part written
    // with ln and atan (Rioboo's conversion to real arctangents of
    // polynomials, continuous wherever the integrand is defined). Every
    // root alpha of a sum must be rational or quadratic over Q; otherwise
    // RootsBeyondQuadratic. ZeroOperand for a zero denominator.
    static ZorWBPolynomialStatus Integrate(const ZorWBPolynomial& numerator,
                                           const ZorWBPolynomial& denominator,
                                           ZorWBRationalAntiDerivative& result);
};

#endif
