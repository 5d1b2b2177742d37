#ifndef ZORWB_EXACT_H
#define ZORWB_EXACT_H

// The multiprecision side of the polynomial algorithms: GMP's integers and
// rationals (through gmpxx), the dense polynomials built on them, and the
// bridges to the public ZorWBRational and ZorWBPolynomial. Included only by
// the library's own sources; never installed.

#include <gmpxx.h>

#include <exception>
#include <utility>
#include <vector>

#include "polynomial/ZorWBPolynomial.h"
#include "polynomial/ZorWBRational.h"

// Reaches the GMP rational inside a ZorWBRational.
struct ZorWBRationalAccess {
    static mpq_ptr Get(ZorWBRational& r) { return reinterpret_cast<mpq_ptr>(r._storage); }
    static mpq_srcptr Get(const ZorWBRational& r) {
        return reinterpret_cast<mpq_srcptr>(r._storage);
    }
};

namespace ZorWBExact {

// Dense polynomials, constant term first, without zero leading coefficient
// (the zero polynomial is empty).
using ZPoly = std::vector<mpz_class>;
using QPoly = std::vector<mpq_class>;

// Thrown inside the algorithms when a polynomial passes the size limits;
// every public entry point catches it (and std::bad_alloc) and answers with
// a status, so nothing leaves the library.
struct LimitExceeded : std::exception {
    const char* what() const noexcept override { return "polynomial too large"; }
};

inline long long Bits(const mpz_class& z) {
    return sgn(z) == 0 ? 1 : static_cast<long long>(mpz_sizeinbase(z.get_mpz_t(), 2));
}
inline long long Bits(const mpq_class& q) {
    return Bits(q.get_num()) + Bits(q.get_den());
}

template <class Number>
long long Bits(const std::vector<Number>& p) {
    long long total = 0;
    for (const Number& c : p)
        total += Bits(c);
    return total;
}

// Throws LimitExceeded when p is beyond the limits.
template <class Number>
void CheckSize(const std::vector<Number>& p) {
    if (static_cast<long long>(p.size()) > ZorWBPolynomialMaxDegree + 1LL ||
        Bits(p) > ZorWBPolynomialMaxBits)
        throw LimitExceeded();
}

inline void CheckBits(long long bits) {
    if (bits > ZorWBPolynomialMaxBits) throw LimitExceeded();
}

// Thrown when a division that must be exact is not: a safeguard that turns
// a broken promise into a failure instead of a wrong answer.
struct Unhandled : std::exception {
    const char* what() const noexcept override { return "inexact division"; }
};

// Runs the work of a public entry point: Unhandled becomes that status; a
// size limit passed or memory refused inside it (the other exceptions the
// algorithms meet) becomes ZorWBPolynomialStatus::TooLarge.
template <class Work>
ZorWBPolynomialStatus Guarded(Work&& work) noexcept {
    try {
        return work();
    } catch (const Unhandled&) {
        return ZorWBPolynomialStatus::Unhandled;
    } catch (const std::exception&) {
        return ZorWBPolynomialStatus::TooLarge;
    }
}

// The input check of the entry points.
inline bool WithinLimits(const ZorWBPolynomial& p) {
    return p.IsWithinLimits();
}

inline mpq_class ToGmp(const ZorWBRational& r) {
    return mpq_class(ZorWBRationalAccess::Get(r));
}
inline ZorWBRational FromGmp(const mpq_class& q) {
    ZorWBRational r;
    mpq_set(ZorWBRationalAccess::Get(r), q.get_mpq_t());
    return r;
}
inline ZorWBRational FromGmp(const mpz_class& z) {
    ZorWBRational r;
    mpq_set_z(ZorWBRationalAccess::Get(r), z.get_mpz_t());
    return r;
}
QPoly ToGmp(const ZorWBPolynomial& p);
// A dense polynomial of GMP integers or rationals (ZPoly, QPoly).
template <class Number>
ZorWBPolynomial FromGmp(const std::vector<Number>& p) {
    std::vector<ZorWBRational> coefficients;
    coefficients.reserve(p.size());
    for (const Number& c : p)
        coefficients.push_back(FromGmp(c));
    return ZorWBPolynomial(std::move(coefficients));
}

}  // namespace ZorWBExact

#endif
