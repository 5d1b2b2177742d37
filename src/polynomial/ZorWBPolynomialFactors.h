#ifndef ZORWB_POLYNOMIALFACTORS_H
#define ZORWB_POLYNOMIALFACTORS_H

#include <vector>

#include "ZorWBxExport.h"
#include "polynomial/ZorWBPolynomial.h"

// base^multiplicity.
struct ZorWBPolynomialFactor {
    ZorWBPolynomial base;
    int multiplicity = 1;
};

// A rational root and its multiplicity.
struct ZorWBRationalRoot {
    ZorWBRational value;
    int multiplicity = 1;
};

// numerator / base^power, with deg numerator < deg base.
struct ZorWBPartialFraction {
    ZorWBPolynomial numerator;
    ZorWBPolynomial base;
    int power = 1;
};

// numerator / denominator = polynomialPart + the sum of the fractions.
struct ZorWBPartialFractionDecomposition {
    ZorWBPolynomial polynomialPart;
    std::vector<ZorWBPartialFraction> fractions;
};

// Decompositions of polynomials over the rationals. Each answers a status
// and leaves its outputs untouched unless it is Success.
class ZORWBX_API ZorWBPolynomialFactors {
  public:
    // Yun's square-free decomposition: p = constant * the product of the
    // factors' base^multiplicity, the bases monic, square-free, pairwise
    // coprime and of degree >= 1, in increasing multiplicity (none for a
    // constant p). ZeroOperand for the zero polynomial.
    static ZorWBPolynomialStatus SquareFree(const ZorWBPolynomial& p, ZorWBRational& constant,
                                            std::vector<ZorWBPolynomialFactor>& factors);
    // The rational roots, exactly, in increasing order with their
    // multiplicities. ZeroOperand for the zero polynomial.
    static ZorWBPolynomialStatus RationalRoots(const ZorWBPolynomial& p,
                                               std::vector<ZorWBRationalRoot>& roots);
    // The partial-fraction decomposition over the rationals: after the
    // polynomial part and the cancellation of common factors, the
    // denominator is split into its square-free factors and each of those
    // into its rational roots (bases x - r) and the rest of it, kept whole
    // (one monic base of degree >= 2 without rational root per
    // multiplicity); each base b of multiplicity k gets the fractions
    // n_j / b^j for j = 1..k whose numerators are not zero. Fractions come
    // by base, in the order of the square-free factors and of the roots,
    // powers increasing. ZeroOperand for a zero denominator.
    static ZorWBPolynomialStatus PartialFractions(const ZorWBPolynomial& numerator,
                                                  const ZorWBPolynomial& denominator,
                                                  ZorWBPartialFractionDecomposition& result);
};

#endif
