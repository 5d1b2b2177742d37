#ifndef ZORWB_SUBRESULTANTS_H
#define ZORWB_SUBRESULTANTS_H

// The subresultant polynomial remainder sequence over any integral domain
// with exact division (the integers, the integer polynomials in a second
// variable, the integer polynomials in several variables), with the
// resultant it ends with.
//
// Method (Collins, Brown; as in Cohen, Algorithm 3.3.7): A, B with
// deg A >= deg B; repeatedly R = prem(A, B) (pseudo-remainder, every
// division exact), A <- B, B <- R / (g h^delta) with delta the degree drop,
// g the leading coefficient of the new A and h <- h^(1 - delta) g^delta.
// The divisions by g h^delta are exact: every B so made is, up to sign,
// the subresultant of its degree (the top one of its block in the
// defective case), so the coefficients grow only linearly along the
// sequence instead of exponentially. When B becomes a constant, the
// resultant is s h^(1 - deg A) lc(B)^deg A with the sign s collected from
// the pairs of odd degrees.
//
// Cost: O(n) pseudo-divisions of O(n^2) ring operations for degrees n;
// every new element is checked against the size limits.
//
// A Ring gives: Element, IsZero, One, Mul, Sub, Neg, ExactDiv (a / b for
// b dividing a), Bits (the size the limits count).

#include <utility>
#include <vector>

#include "polynomial/internal/ZorWBExact.h"

namespace ZorWBExact {

template <class Ring>
class SubresultantSequence {
  public:
    using Element = typename Ring::Element;
    using Poly = std::vector<Element>;  // dense in the main variable, constant term first

    explicit SubresultantSequence(const Ring& ring) : _ring(ring) {}

    static int Degree(const Poly& p) { return static_cast<int>(p.size()) - 1; }

    // The sequence a, b, ... down to the last non-zero element, and the
    // resultant res(a, b). Needs deg a >= deg b >= 0.
    Element Run(const Poly& a, const Poly& b, std::vector<Poly>& sequence) const {
        sequence = {a, b};
        if (Degree(b) == 0) return Power(b.back(), Degree(a));
        Poly x = a, y = b;
        Element g = _ring.One(), h = _ring.One();
        bool negative = false;
        while (true) {
            int delta = Degree(x) - Degree(y);
            if (Degree(x) % 2 == 1 && Degree(y) % 2 == 1) negative = !negative;
            Poly r = PseudoRemainder(x, y);
            x = std::move(y);
            if (r.empty()) return _ring.Zero();
            Element divisor = _ring.Mul(g, Power(h, delta));
            for (Element& c : r)
                c = _ring.ExactDiv(c, divisor);
            Check(r);
            y = std::move(r);
            sequence.push_back(y);
            g = x.back();
            h = Step(h, g, delta);
            if (Degree(y) == 0) {
                int n = Degree(x);
                Element result = _ring.ExactDiv(Power(y.back(), n), Power(h, n - 1));
                return negative ? _ring.Neg(result) : result;
            }
        }
    }

    // lc(b)^(deg a - deg b + 1) a mod b.
    Poly PseudoRemainder(const Poly& a, const Poly& b) const {
        Poly r = a;
        int unused = Degree(a) - Degree(b) + 1;
        const Element& lead = b.back();
        while (!r.empty() && Degree(r) >= Degree(b)) {
            Element top = r.back();
            std::size_t shift = static_cast<std::size_t>(Degree(r) - Degree(b));
            for (Element& c : r)
                c = _ring.Mul(c, lead);
            for (std::size_t i = 0; i < b.size(); ++i)
                r[shift + i] = _ring.Sub(r[shift + i], _ring.Mul(top, b[i]));
            Trim(r);
            --unused;
        }
        if (unused > 0) {
            Element power = Power(lead, unused);
            for (Element& c : r)
                c = _ring.Mul(c, power);
        }
        return r;
    }

  private:
    void Check(const Poly& p) const {
        if (Degree(p) > ZorWBPolynomialMaxDegree) throw LimitExceeded();
        long long bits = 0;
        for (const Element& c : p)
            bits += _ring.Bits(c);
        CheckBits(bits);
    }

    void Trim(Poly& p) const {
        while (!p.empty() && _ring.IsZero(p.back()))
            p.pop_back();
    }

    Element Power(Element base, int n) const {
        Element result = _ring.One();
        while (n > 0) {
            if (n & 1) result = _ring.Mul(result, base);
            n >>= 1;
            if (n > 0) base = _ring.Mul(base, base);
        }
        return result;
    }

    // h^(1 - delta) g^delta, exact.
    Element Step(const Element& h, const Element& g, int delta) const {
        if (delta == 0) return h;
        if (delta == 1) return g;
        return _ring.ExactDiv(Power(g, delta), Power(h, delta - 1));
    }

    const Ring& _ring;
};

// The integers as a ring of the sequence.
struct IntegerRing {
    using Element = mpz_class;
    bool IsZero(const mpz_class& a) const { return sgn(a) == 0; }
    mpz_class Zero() const { return 0; }
    mpz_class One() const { return 1; }
    mpz_class Mul(const mpz_class& a, const mpz_class& b) const { return a * b; }
    mpz_class Sub(const mpz_class& a, const mpz_class& b) const { return a - b; }
    mpz_class Neg(const mpz_class& a) const { return -a; }
    mpz_class ExactDiv(const mpz_class& a, const mpz_class& b) const {
        mpz_class q;
        mpz_divexact(q.get_mpz_t(), a.get_mpz_t(), b.get_mpz_t());
        return q;
    }
    long long Bits(const mpz_class& a) const { return ZorWBExact::Bits(a); }
};

}  // namespace ZorWBExact

#endif
