#ifndef ZORWB_POLYNOMIALTOOLS_H
#define ZORWB_POLYNOMIALTOOLS_H

#include <unordered_set>
#include <vector>

#include "ZorWBxExport.h"
#include "polynomial/ZorWBMultiPolynomial.h"
#include "polynomial/ZorWBPolynomial.h"
#include "polynomial/ZorWBRationalIntegration.h"
#include "values/ZorWBValue.h"

class ZorWBExpression;
class ZorWBFactory;
class ZorWBVariable;

// The bridge between factory expressions and the exact polynomials of
// polynomial/: reading an expression as a polynomial or a rational
// function, writing polynomials and antiderivatives back as expressions,
// and the rational integration that ZorWBExpression::Integrate tries when
// its table has no form.
//
// Reading accepts what IsPolynomial(x) (IsRationalFunction(x)) accepts,
// built from Sum, Product, Quotient, UnaryMinus and Power by a constant
// integral exponent (non-negative for a polynomial), over x and constants
// that read exactly: integers, fractions without Pi (n/d), and finite
// reals, read as the binary fraction they hold (0.5 is 1/2, 0.1 is
// 3602879701896397/2^55). Anything else fails the reading: other
// variables, Pi and its fractions, intervals, non-finite reals, functions
// (even of constants only), a quotient by a polynomial that is zero, and
// a result beyond the limits of ZorWBPolynomial; so does a graph of more
// than MaxNodes distinct nodes. Readings walk the graph once, without
// recursion, and never change it.
//
// Writing makes ordinary factory nodes: a rational coefficient p/q as the
// integer constant p or as Quotient(p, q) of integer constants when both
// fit in an int, as real constants p and q (exact up to 2^53) otherwise,
// and as the nearest real beyond that (so only coefficients within 2^53
// read back as they were).
class ZORWBX_API ZorWBPolynomialTools {
  public:
    // The most distinct nodes a reading walks.
    static constexpr int MaxNodes = 100000;

    // ------------------------------------------------------------ reading
    // The polynomial e in x (other variables fail the reading).
    static bool ToPolynomial(const ZorWBExpression* e, const ZorWBVariable* x, ZorWBPolynomial& p);
    // e = numerator / denominator in lowest terms, the denominator monic.
    static bool ToRationalFunction(const ZorWBExpression* e, const ZorWBVariable* x,
                                   ZorWBPolynomial& numerator, ZorWBPolynomial& denominator);
    // The same, remembering in unreadable the nodes that do not read (and
    // failing at once when the walk meets one of them): the nodes above a
    // node that does not read do not read either, so a series of readings
    // of nested subgraphs stays linear in their size.
    static bool ToRationalFunction(const ZorWBExpression* e, const ZorWBVariable* x,
                                   ZorWBPolynomial& numerator, ZorWBPolynomial& denominator,
                                   std::unordered_set<const ZorWBExpression*>& unreadable);
    // The polynomial e in the listed variables: variables[i] is the
    // polynomial's variable i.
    static bool ToMultiPolynomial(const ZorWBExpression* e,
                                  const std::vector<const ZorWBVariable*>& variables,
                                  ZorWBMultiPolynomial& p);
    // The exact value of a constant as the reading takes it (also used for
    // the bounds of definite integrals).
    static bool ToRational(const ZorWBValue& constant, ZorWBRational& value);

    // ------------------------------------------------------------ writing
    // Each gives null for a null factory or variable, or when the factory
    // cannot make a node.
    static ZorWBExpression* CreateConstant(ZorWBFactory* factory, const ZorWBRational& value);
    // The sum of the terms c x^k, highest power first, as
    // Product(c, Power(x, k)) (x alone for k = 1, c alone for k = 0, the
    // factor 1 left out, -1 written as the shared MinusOne).
    static ZorWBExpression* CreateExpression(ZorWBFactory* factory, const ZorWBPolynomial& p,
                                             ZorWBExpression* x);
    // The same in several variables, variables[i] for the polynomial's
    // variable i; the terms highest first in lexicographic order.
    static ZorWBExpression* CreateExpression(ZorWBFactory* factory, const ZorWBMultiPolynomial& p,
                                             const std::vector<ZorWBExpression*>& variables);
    // polynomialPart + numerator / denominator + the terms, each as
    // c * Ln(Abs(P)) or c * Atan(P), an irrational part written with
    // Sqrt(radicand).
    static ZorWBExpression* CreateExpression(ZorWBFactory* factory,
                                             const ZorWBRationalAntiDerivative& antiDerivative,
                                             ZorWBExpression* x);

    // ------------------------------------------------------------ integration
    // The antiderivative of e in x when e reads as a rational function and
    // ZorWBRationalIntegration::Integrate succeeds; null otherwise.
    static ZorWBExpression* CreateRationalAntiDerivative(const ZorWBExpression* e,
                                                         ZorWBVariable* x);
    // Whether the rational function e in x has a pole in the closed
    // interval [low, high] (either order); false when e does not read.
    static bool HasPoleBetween(const ZorWBExpression* e, const ZorWBVariable* x,
                               const ZorWBRational& low, const ZorWBRational& high);
};

#endif
