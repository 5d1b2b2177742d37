#ifndef ZORWB_INTEGERPOLYNOMIALS_H
#define ZORWB_INTEGERPOLYNOMIALS_H

// Dense polynomials with integer coefficients: the form in which the
// algorithms over the rationals do their heavy work, since integers grow
// slower than fractions and need no gcd after every operation. A
// polynomial over Q is split into a rational content times a primitive
// integer polynomial (coefficients without common factor, leading
// coefficient positive); Gauss's lemma makes the quotient of two primitive
// polynomials, when it exists over Q, an integer polynomial again.

#include "polynomial/internal/ZorWBExact.h"

namespace ZorWBExact {

int Degree(const ZPoly& p);
void Trim(ZPoly& p);
ZPoly Add(const ZPoly& a, const ZPoly& b);
ZPoly Sub(const ZPoly& a, const ZPoly& b);
ZPoly Mul(const ZPoly& a, const ZPoly& b);
ZPoly Scale(const ZPoly& a, const mpz_class& c);
ZPoly Derivative(const ZPoly& a);

// The positive gcd of the coefficients (0 for the zero polynomial).
mpz_class Content(const ZPoly& p);
// p divided by its content, with a positive leading coefficient.
ZPoly PrimitivePart(const ZPoly& p);
// p = content * primitive with primitive as PrimitivePart makes it.
void Split(const QPoly& p, mpq_class& content, ZPoly& primitive);
QPoly ToRational(const ZPoly& p);
// The primitive part of a polynomial over Q.
ZPoly PrimitivePart(const QPoly& p);

// lc(b)^(deg a - deg b + 1) a mod b (b not zero).
ZPoly PseudoRemainder(const ZPoly& a, const ZPoly& b);
// Whether b divides a in Z[x]; the quotient when it does. b not zero.
bool DivideExactly(const ZPoly& a, const ZPoly& b, ZPoly& quotient);
// a / b for a b known to divide a in Z[x] (over Q with b primitive is
// enough, by Gauss's lemma); throws Unhandled when it does not.
ZPoly ExactQuotient(const ZPoly& a, const ZPoly& b);

// The primitive greatest common divisor with a positive leading
// coefficient (zero for two zeros): a test modulo a prime settles the
// frequent coprime case, the primitive remainder sequence the others.
ZPoly Gcd(const ZPoly& a, const ZPoly& b);

// Yun's square-free decomposition of a primitive polynomial of degree at
// least 1: factors[i] is the product of the irreducible factors of
// multiplicity i + 1 (1 when there is none), each primitive with a
// positive leading coefficient; p = product of factors[i]^(i + 1) up to
// the sign.
std::vector<ZPoly> SquareFreeFactors(const ZPoly& p);

// p / gcd(p, q) and q / gcd(p, q), for q not zero: a fraction in lowest
// terms (the gcd taken on the primitive parts).
void Cancel(QPoly& p, QPoly& q);

// The sign of p(numerator / denominator), denominator positive.
int SignAt(const ZPoly& p, const mpz_class& numerator, const mpz_class& denominator);

// The sum of the absolute values of the coefficients.
mpz_class NormOne(const ZPoly& p);

}  // namespace ZorWBExact

#endif
