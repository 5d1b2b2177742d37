#ifndef ZORWB_PRIMEFIELD_H
#define ZORWB_PRIMEFIELD_H

// The integers modulo a prime below 2^31, as a field policy of
// FieldPolynomials: residues are 64-bit words in [0, p), so that a product
// of two fits a word before its reduction. The modular algorithms (the
// coprimality test of Gcd, the search for factors of degree 1 and 2, the
// resultant in several variables) take their primes from Prime(i), the
// primes below 2^31 from the largest down.

#include <cstdint>

#include "polynomial/internal/ZorWBFieldPolynomials.h"

namespace ZorWBExact {

using Word = std::uint64_t;

class PrimeField {
  public:
    using Element = Word;

    explicit PrimeField(Word prime) : _p(prime) {}

    Word Modulus() const { return _p; }
    bool IsZero(Word a) const { return a == 0; }
    Word Zero() const { return 0; }
    Word One() const { return 1; }
    Word Add(Word a, Word b) const {
        Word sum = a + b;
        return sum >= _p ? sum - _p : sum;
    }
    Word Sub(Word a, Word b) const { return a >= b ? a - b : a + _p - b; }
    Word Mul(Word a, Word b) const { return a * b % _p; }
    Word Neg(Word a) const { return a == 0 ? 0 : _p - a; }
    Word Power(Word base, Word exponent) const;
    // a not zero (Fermat).
    Word Inverse(Word a) const { return Power(a, _p - 2); }
    long long Bits(Word) const { return 32; }
    // z mod p in [0, p).
    Word Reduce(const mpz_class& z) const;

  private:
    Word _p;
};

using PrimePolynomials = FieldPolynomials<PrimeField>;
using PPoly = std::vector<Word>;

// The i-th prime below 2^31, counting down from the largest (i >= 0).
Word Prime(int i);

// p reduced modulo the field's prime (trimmed).
PPoly Reduce(const ZPoly& p, const PrimeField& field);

// base^exponent modulo m (m monic of degree >= 1).
PPoly PowerMod(const PrimePolynomials& polys, const PPoly& base, const mpz_class& exponent,
               const PPoly& m);

}  // namespace ZorWBExact

#endif
