// Gcd, subresultants and resultants of univariate rational polynomials.
//
// Everything runs on the primitive integer parts (ZorWBIntegerPolynomials):
// the gcd over Q is the monic form of the integer gcd; the extended gcd
// runs Euclid's algorithm over Q (its cofactors need the fractions); the
// resultant scales back from the primitive parts with
// res(c A, d B) = c^deg B d^deg A res(A, B).

#include "polynomial/ZorWBPolynomialGcd.h"

#include "polynomial/internal/ZorWBFieldPolynomials.h"
#include "polynomial/internal/ZorWBIntegerPolynomials.h"
#include "polynomial/internal/ZorWBSubresultants.h"

using namespace ZorWBExact;

ZorWBPolynomialStatus ZorWBPolynomialGcd::Gcd(const ZorWBPolynomial& a, const ZorWBPolynomial& b,
                                              ZorWBPolynomial& gcd) {
    if (!WithinLimits(a) || !WithinLimits(b)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        ZPoly g = ZorWBExact::Gcd(PrimitivePart(ToGmp(a)), PrimitivePart(ToGmp(b)));
        gcd = FromGmp(g).Monic();
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBPolynomialGcd::ExtendedGcd(const ZorWBPolynomial& a,
                                                      const ZorWBPolynomial& b,
                                                      ZorWBPolynomial& gcd, ZorWBPolynomial& s,
                                                      ZorWBPolynomial& t) {
    if (!WithinLimits(a) || !WithinLimits(b)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        RationalField field;
        RationalPolynomials polys(field);
        QPoly qs, qt;
        QPoly g = polys.ExtendedGcd(ToGmp(a), ToGmp(b), qs, qt);
        gcd = FromGmp(g);
        s = FromGmp(qs);
        t = FromGmp(qt);
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBPolynomialGcd::Subresultants(const ZorWBPolynomial& a,
                                                        const ZorWBPolynomial& b,
                                                        std::vector<ZorWBPolynomial>& sequence) {
    if (a.IsZero() || b.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(a) || !WithinLimits(b)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        ZPoly x = PrimitivePart(ToGmp(a)), y = PrimitivePart(ToGmp(b));
        if (Degree(x) < Degree(y)) std::swap(x, y);
        IntegerRing ring;
        std::vector<ZPoly> chain;
        SubresultantSequence<IntegerRing>(ring).Run(x, y, chain);
        std::vector<ZorWBPolynomial> result;
        for (const ZPoly& p : chain)
            result.push_back(FromGmp(p));
        sequence = std::move(result);
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBPolynomialGcd::Resultant(const ZorWBPolynomial& a,
                                                    const ZorWBPolynomial& b,
                                                    ZorWBRational& resultant) {
    if (!WithinLimits(a) || !WithinLimits(b)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        if (a.IsZero() || b.IsZero()) {
            resultant = ZorWBRational();
            return ZorWBPolynomialStatus::Success;
        }
        mpq_class contentA, contentB;
        ZPoly x, y;
        Split(ToGmp(a), contentA, x);
        Split(ToGmp(b), contentB, y);
        int m = Degree(x), n = Degree(y);
        bool swapped = m < n;
        if (swapped) std::swap(x, y);
        IntegerRing ring;
        std::vector<ZPoly> chain;
        mpz_class integer = SubresultantSequence<IntegerRing>(ring).Run(x, y, chain);
        if (swapped && m % 2 == 1 && n % 2 == 1) integer = -integer;
        mpq_class scale, power;
        mpz_pow_ui(mpq_numref(scale.get_mpq_t()), contentA.get_num_mpz_t(),
                   static_cast<unsigned long>(n));
        mpz_pow_ui(mpq_denref(scale.get_mpq_t()), contentA.get_den_mpz_t(),
                   static_cast<unsigned long>(n));
        mpz_pow_ui(mpq_numref(power.get_mpq_t()), contentB.get_num_mpz_t(),
                   static_cast<unsigned long>(m));
        mpz_pow_ui(mpq_denref(power.get_mpq_t()), contentB.get_den_mpz_t(),
                   static_cast<unsigned long>(m));
        mpq_class value = mpq_class(integer) * scale * power;
        value.canonicalize();
        resultant = FromGmp(value);
        return ZorWBPolynomialStatus::Success;
    });
}
