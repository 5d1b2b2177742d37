#ifndef ZORWB_FIELDPOLYNOMIALS_H
#define ZORWB_FIELDPOLYNOMIALS_H

// Dense polynomials over a field, written once for every field the
// algorithms use: the rationals, the integers modulo a prime and the
// quadratic fields Q(sqrt r). A field is a small policy object whose
// members do the arithmetic of its elements (IsZero, Zero, One, Add, Sub,
// Mul, Neg, Inverse, Bits), so that a field with a parameter (the prime, the
// radicand) carries it. Polynomials are vectors of elements, constant term
// first, without zero leading coefficient.
//
// Division and Euclid's algorithm are the schoolbook ones: O(m n) field
// operations for operands of degrees m and n. Every intermediate remainder
// is checked against the size limits (LimitExceeded).

#include <algorithm>
#include <utility>
#include <vector>

#include "polynomial/internal/ZorWBExact.h"

namespace ZorWBExact {

// The rationals.
struct RationalField {
    using Element = mpq_class;
    bool IsZero(const Element& a) const { return sgn(a) == 0; }
    Element Zero() const { return Element(0); }
    Element One() const { return Element(1); }
    Element Add(const Element& a, const Element& b) const { return a + b; }
    Element Sub(const Element& a, const Element& b) const { return a - b; }
    Element Mul(const Element& a, const Element& b) const { return a * b; }
    Element Neg(const Element& a) const { return -a; }
    // a not zero.
    Element Inverse(const Element& a) const { return 1 / a; }
    long long Bits(const Element& a) const { return ZorWBExact::Bits(a); }
};

template <class Field>
class FieldPolynomials {
  public:
    using Element = typename Field::Element;
    using Poly = std::vector<Element>;

    explicit FieldPolynomials(const Field& field) : _field(field) {}

    const Field& GetField() const { return _field; }

    static int Degree(const Poly& p) { return static_cast<int>(p.size()) - 1; }

    void Trim(Poly& p) const {
        while (!p.empty() && _field.IsZero(p.back()))
            p.pop_back();
    }

    // Throws LimitExceeded beyond the size limits.
    void Check(const Poly& p) const {
        if (Degree(p) > ZorWBPolynomialMaxDegree) throw LimitExceeded();
        long long bits = 0;
        for (const Element& c : p)
            bits += _field.Bits(c);
        CheckBits(bits);
    }

    Poly Constant(const Element& c) const {
        Poly p{c};
        Trim(p);
        return p;
    }

    Poly Add(const Poly& a, const Poly& b) const {
        Poly sum(std::max(a.size(), b.size()), _field.Zero());
        for (std::size_t i = 0; i < a.size(); ++i)
            sum[i] = a[i];
        for (std::size_t i = 0; i < b.size(); ++i)
            sum[i] = _field.Add(sum[i], b[i]);
        Trim(sum);
        return sum;
    }

    Poly Sub(const Poly& a, const Poly& b) const {
        Poly difference(std::max(a.size(), b.size()), _field.Zero());
        for (std::size_t i = 0; i < a.size(); ++i)
            difference[i] = a[i];
        for (std::size_t i = 0; i < b.size(); ++i)
            difference[i] = _field.Sub(difference[i], b[i]);
        Trim(difference);
        return difference;
    }

    Poly Mul(const Poly& a, const Poly& b) const {
        if (a.empty() || b.empty()) return Poly();
        Poly product(a.size() + b.size() - 1, _field.Zero());
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (_field.IsZero(a[i])) continue;
            for (std::size_t j = 0; j < b.size(); ++j)
                product[i + j] = _field.Add(product[i + j], _field.Mul(a[i], b[j]));
        }
        Trim(product);
        return product;
    }

    Poly Scale(const Poly& a, const Element& c) const {
        Poly scaled;
        if (_field.IsZero(c)) return scaled;
        scaled.reserve(a.size());
        for (const Element& coefficient : a)
            scaled.push_back(_field.Mul(coefficient, c));
        Trim(scaled);
        return scaled;
    }

    Poly Derivative(const Poly& a) const {
        Poly derivative;
        for (std::size_t i = 1; i < a.size(); ++i)
            derivative.push_back(_field.Mul(a[i], FromCount(i)));
        Trim(derivative);
        return derivative;
    }

    Poly Monic(const Poly& a) const {
        if (a.empty()) return a;
        return Scale(a, _field.Inverse(a.back()));
    }

    Element Evaluate(const Poly& p, const Element& x) const {
        Element value = _field.Zero();
        for (std::size_t i = p.size(); i-- > 0;)
            value = _field.Add(_field.Mul(value, x), p[i]);
        return value;
    }

    // a = quotient b + remainder with deg remainder < deg b; b not zero.
    void DivMod(const Poly& a, const Poly& b, Poly& quotient, Poly& remainder) const {
        remainder = a;
        quotient.clear();
        int degreeB = Degree(b);
        if (Degree(a) < degreeB) return;
        quotient.assign(static_cast<std::size_t>(Degree(a) - degreeB + 1), _field.Zero());
        Element inverse = _field.Inverse(b.back());
        for (int d = Degree(remainder); d >= degreeB; --d) {
            const Element& top = remainder[static_cast<std::size_t>(d)];
            if (_field.IsZero(top)) continue;
            Element factor = _field.Mul(top, inverse);
            quotient[static_cast<std::size_t>(d - degreeB)] = factor;
            for (int i = 0; i <= degreeB; ++i) {
                Element& target = remainder[static_cast<std::size_t>(d - degreeB + i)];
                target = _field.Sub(target, _field.Mul(factor, b[static_cast<std::size_t>(i)]));
            }
        }
        remainder.resize(static_cast<std::size_t>(degreeB));
        Trim(remainder);
        Trim(quotient);
    }

    Poly Rem(const Poly& a, const Poly& b) const {
        Poly quotient, remainder;
        DivMod(a, b, quotient, remainder);
        return remainder;
    }

    Poly Quo(const Poly& a, const Poly& b) const {
        Poly quotient, remainder;
        DivMod(a, b, quotient, remainder);
        return quotient;
    }

    // The monic greatest common divisor (zero when both are zero).
    Poly Gcd(Poly a, Poly b) const {
        while (!b.empty()) {
            Poly r = Rem(a, b);
            Check(r);
            a = std::move(b);
            b = std::move(r);
        }
        return Monic(a);
    }

    // The monic gcd g of a and b, with s a + t b = g.
    Poly ExtendedGcd(const Poly& a, const Poly& b, Poly& s, Poly& t) const {
        Poly r0 = a, r1 = b;
        Poly s0{_field.One()}, s1, t0, t1{_field.One()};
        while (!r1.empty()) {
            Poly q, r;
            DivMod(r0, r1, q, r);
            Poly s2 = Sub(s0, Mul(q, s1));
            Poly t2 = Sub(t0, Mul(q, t1));
            Check(r);
            Check(s2);
            Check(t2);
            r0 = std::move(r1);
            r1 = std::move(r);
            s0 = std::move(s1);
            s1 = std::move(s2);
            t0 = std::move(t1);
            t1 = std::move(t2);
        }
        if (r0.empty()) {
            s.clear();
            t.clear();
            return r0;
        }
        Element inverse = _field.Inverse(r0.back());
        s = Scale(s0, inverse);
        t = Scale(t0, inverse);
        return Scale(r0, inverse);
    }

    // s and t with s a + t b = c and deg s < deg b (b not constant), when
    // the gcd of a and b divides c; false otherwise.
    bool SolveBezout(const Poly& a, const Poly& b, const Poly& c, Poly& s, Poly& t) const {
        Poly s0, t0;
        Poly g = ExtendedGcd(a, b, s0, t0);
        if (g.empty()) return false;
        Poly q, r;
        DivMod(c, g, q, r);
        if (!r.empty()) return false;
        s0 = Mul(s0, q);
        t0 = Mul(t0, q);
        // s = s0 mod b; t absorbs the quotient: (s0 - k b) a + (t0 + k a) b = c.
        Poly k;
        DivMod(s0, b, k, s);
        t = Add(t0, Mul(k, a));
        return true;
    }

    // The resultant by Euclid's algorithm (used over the prime fields):
    // res(A, B) = (-1)^(deg A deg B) lc(B)^(deg A - deg C) res(B, C) for
    // C = A mod B, and res(A, b) = b^deg A for a constant b.
    Element Resultant(Poly a, Poly b) const {
        if (a.empty() || b.empty()) return _field.Zero();
        Element result = _field.One();
        while (Degree(b) > 0) {
            Poly c = Rem(a, b);
            if (c.empty()) return _field.Zero();
            if ((Degree(a) % 2 == 1) && (Degree(b) % 2 == 1)) result = _field.Neg(result);
            result = _field.Mul(result, Power(b.back(), Degree(a) - Degree(c)));
            a = std::move(b);
            b = std::move(c);
        }
        return _field.Mul(result, Power(b.back(), Degree(a)));
    }

    Element Power(Element base, int n) const {
        Element result = _field.One();
        while (n > 0) {
            if (n & 1) result = _field.Mul(result, base);
            base = _field.Mul(base, base);
            n >>= 1;
        }
        return result;
    }

  private:
    // The element n * 1.
    Element FromCount(std::size_t n) const {
        Element result = _field.Zero();
        Element unit = _field.One();
        // Doubling keeps this logarithmic in n.
        while (n > 0) {
            if (n & 1) result = _field.Add(result, unit);
            unit = _field.Add(unit, unit);
            n >>= 1;
        }
        return result;
    }

    const Field& _field;
};

using RationalPolynomials = FieldPolynomials<RationalField>;

}  // namespace ZorWBExact

#endif
