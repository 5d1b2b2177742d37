// Real root isolation by Descartes' rule of signs with bisection (the
// Vincent-Collins-Akritas method), on integer arithmetic only.
//
// p is split by Yun's algorithm into square-free factors f (their roots are
// simple, and the roots of different factors differ). All roots of f lie in
// (-2^e, 2^e) with 2^e above Cauchy's bound 1 + max |a_i / a_n|; a root at 0
// is taken out first. The positive roots of f are those of
// g(x) = f(2^e x) in (0, 1), the negative ones those of f(-2^e x). A node
// of the search is an integer polynomial P whose roots in (0, 1) are those
// of g in (c / 2^k, (c + 1) / 2^k); the number V of sign variations of
// (x + 1)^n P(1 / (x + 1)) bounds the number of those roots and has its
// parity, so V = 0 drops the node, V = 1 isolates a root, and otherwise
// the node splits into 2^n P(x / 2) and its shift by 1. A root at the
// midpoint shows as a zero constant term; it is recorded exactly and
// divided out. The search ends because V is 0 or 1 on any interval small
// enough next to the separation of the roots (Vincent's theorem).
//
// Invariant of the results: each open interval holds exactly one root of
// its factor; once the exact roots are divided out of the factor, its ends
// are not roots of what remains, whose sign at the low end is kept, so that
// bisection needs one sign evaluation per step. Intervals are bisected
// until their closures are pairwise disjoint (their roots differ, so this
// ends); then no end of an interval is a root of p.
//
// Cost: O(n^2) additions of integers per node (Taylor shift by 1); the
// number of nodes grows with n times the bits needed to separate the
// closest roots.

#include "polynomial/ZorWBRealRoots.h"

#include <algorithm>
#include <utility>

#include "polynomial/internal/ZorWBIntegerPolynomials.h"

using namespace ZorWBExact;

namespace {

// An interval of one square-free factor.
struct Isolated {
    mpq_class low;
    mpq_class high;
    int factor = 0;
    int lowSign = 0;  // sign of the factor at low (0 for an exact root)

    bool IsExact() const { return low == high; }
};

void ShiftByOne(ZPoly& p) {
    int n = Degree(p);
    for (int i = 0; i < n; ++i) {
        for (int j = n - 1; j >= i; --j)
            p[static_cast<std::size_t>(j)] += p[static_cast<std::size_t>(j) + 1];
    }
}

// Sign variations of (x + 1)^n P(1 / (x + 1)), counted up to 2.
int Variations(const ZPoly& p) {
    ZPoly transformed(p.rbegin(), p.rend());
    ShiftByOne(transformed);
    int variations = 0, last = 0;
    for (const mpz_class& c : transformed) {
        int sign = sgn(c);
        if (sign == 0) continue;
        if (last != 0 && sign != last && ++variations == 2) break;
        last = sign;
    }
    return variations;
}

// 2^n P(x / 2).
ZPoly LeftHalf(const ZPoly& p) {
    ZPoly half(p);
    int n = Degree(p);
    for (int i = 0; i <= n; ++i)
        half[static_cast<std::size_t>(i)] <<= static_cast<mp_bitcnt_t>(n - i);
    return half;
}

// P / (x - 1) for a P with the root 1.
ZPoly DeflateAtOne(const ZPoly& p) {
    ZPoly quotient(p.size() - 1);
    mpz_class carry = 0;
    for (std::size_t i = p.size() - 1; i >= 1; --i) {
        carry += p[i];
        quotient[i - 1] = carry;
    }
    return quotient;
}

// The roots of f (square-free, primitive, f(0) != 0) on one side of 0:
// those of g(x) = f(side 2^e x) in (0, 1). The signs at the low ends are
// left to the caller.
void IsolateSide(const ZPoly& f, int side, long long e, int factor, std::vector<Isolated>& out) {
    ZPoly g(f);
    for (std::size_t i = 0; i < g.size(); ++i) {
        g[i] <<= static_cast<mp_bitcnt_t>(e * static_cast<long long>(i));
        if (side < 0 && i % 2 == 1) g[i] = -g[i];
    }
    // The interval (c / 2^k, (c + 1) / 2^k) of g as an interval of f.
    auto emit = [&](const mpz_class& c, long long k, bool exact) {
        mpq_class low(c), high(c + (exact ? 0 : 1));
        if (e >= k) {
            low *= mpz_class(1) << static_cast<mp_bitcnt_t>(e - k);
            high *= mpz_class(1) << static_cast<mp_bitcnt_t>(e - k);
        } else {
            low /= mpz_class(1) << static_cast<mp_bitcnt_t>(k - e);
            high /= mpz_class(1) << static_cast<mp_bitcnt_t>(k - e);
        }
        low.canonicalize();
        high.canonicalize();
        if (side < 0) {
            std::swap(low, high);
            low = -low;
            high = -high;
        }
        out.push_back({low, high, factor, 0});
    };
    struct Node {
        ZPoly p;
        mpz_class c;
        long long k;
    };
    std::vector<Node> stack;
    stack.push_back({PrimitivePart(g), 0, 0});
    while (!stack.empty()) {
        Node node = std::move(stack.back());
        stack.pop_back();
        int variations = Variations(node.p);
        if (variations == 0) continue;
        if (variations == 1) {
            emit(node.c, node.k, false);
            continue;
        }
        ZPoly left = LeftHalf(node.p);
        ZPoly right = left;
        ShiftByOne(right);
        mpz_class c = 2 * node.c;
        if (sgn(right[0]) == 0) {
            emit(c + 1, node.k + 1, true);
            right.erase(right.begin());
            left = DeflateAtOne(left);
        }
        CheckSize(left);
        stack.push_back({PrimitivePart(right), c + 1, node.k + 1});
        stack.push_back({PrimitivePart(left), c, node.k + 1});
    }
}

// 2^e above Cauchy's bound 1 + max |a_i / a_n|.
long long BoundExponent(const ZPoly& f) {
    long long top = 1;
    for (std::size_t i = 0; i + 1 < f.size(); ++i)
        top = std::max(top, Bits(f[i]));
    return std::max(1LL, top - Bits(f.back()) + 2);
}

// The roots of a square-free factor. Returns the polynomial whose signs
// bisect its open intervals: the factor with its exact roots (0 and the
// midpoints met) divided out, so that no end of those intervals is one of
// its roots.
ZPoly IsolateFactor(const ZPoly& factor, int index, std::vector<Isolated>& out) {
    std::size_t first = out.size();
    ZPoly f(factor);
    if (sgn(f[0]) == 0) {
        out.push_back({mpq_class(0), mpq_class(0), index, 0});
        f.erase(f.begin());
    }
    if (Degree(f) >= 1) {
        long long e = BoundExponent(f);
        IsolateSide(f, 1, e, index, out);
        IsolateSide(f, -1, e, index, out);
    }
    ZPoly rest(factor);
    for (std::size_t i = first; i < out.size(); ++i) {
        if (out[i].IsExact())
            rest = ExactQuotient(rest, ZPoly{-out[i].low.get_num(), out[i].low.get_den()});
    }
    for (std::size_t i = first; i < out.size(); ++i) {
        if (!out[i].IsExact())
            out[i].lowSign = SignAt(rest, out[i].low.get_num(), out[i].low.get_den());
    }
    return rest;
}

// Halves an open interval, keeping the half that holds the root.
void Bisect(Isolated& interval, const ZPoly& f) {
    mpq_class middle = (interval.low + interval.high) / 2;
    int sign = SignAt(f, middle.get_num(), middle.get_den());
    if (sign == 0) {
        interval.low = interval.high = middle;
        interval.lowSign = 0;
    } else if (sign == interval.lowSign) {
        interval.low = middle;
    } else {
        interval.high = middle;
    }
}

void Narrow(Isolated& interval, const ZPoly& f, const mpq_class& width) {
    while (!interval.IsExact() && interval.high - interval.low > width)
        Bisect(interval, f);
}

// Bisects neighbours until the closed intervals are pairwise disjoint.
void Separate(std::vector<Isolated>& intervals, const std::vector<ZPoly>& factors) {
    auto byLow = [](const Isolated& a, const Isolated& b) { return a.low < b.low; };
    while (true) {
        std::sort(intervals.begin(), intervals.end(), byLow);
        bool overlap = false;
        for (std::size_t i = 0; i + 1 < intervals.size(); ++i) {
            if (intervals[i + 1].low > intervals[i].high) continue;
            overlap = true;
            for (Isolated* interval : {&intervals[i], &intervals[i + 1]}) {
                if (!interval->IsExact())
                    Bisect(*interval, factors[static_cast<std::size_t>(interval->factor)]);
            }
        }
        if (!overlap) return;
    }
}

ZPoly SquareFreePart(const ZPoly& p) {
    return PrimitivePart(ExactQuotient(p, ZorWBExact::Gcd(p, Derivative(p))));
}

}  // namespace

double ZorWBRealRoot::GetApproximation() const {
    return ((low + high) / ZorWBRational(2)).ToReal();
}

ZorWBPolynomialStatus ZorWBRealRoots::Isolate(const ZorWBPolynomial& p,
                                              std::vector<ZorWBRealRoot>& roots) {
    return Isolate(p, ZorWBRational(), roots);
}

ZorWBPolynomialStatus ZorWBRealRoots::Isolate(const ZorWBPolynomial& p, const ZorWBRational& width,
                                              std::vector<ZorWBRealRoot>& roots) {
    if (p.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(p)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        std::vector<ZPoly> factors;
        ZPoly primitive = PrimitivePart(ToGmp(p));
        if (Degree(primitive) >= 1) factors = SquareFreeFactors(primitive);
        std::vector<Isolated> intervals;
        // From here on each factor stands without its exact roots.
        for (std::size_t i = 0; i < factors.size(); ++i) {
            if (Degree(factors[i]) >= 1)
                factors[i] = IsolateFactor(factors[i], static_cast<int>(i), intervals);
        }
        Separate(intervals, factors);
        mpq_class limit = ToGmp(width);
        std::vector<ZorWBRealRoot> result;
        for (Isolated& interval : intervals) {
            if (sgn(limit) > 0)
                Narrow(interval, factors[static_cast<std::size_t>(interval.factor)], limit);
            result.push_back({FromGmp(interval.low), FromGmp(interval.high), interval.factor + 1});
        }
        roots = std::move(result);
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBRealRoots::Refine(const ZorWBPolynomial& p, const ZorWBRational& width,
                                             ZorWBRealRoot& root) {
    if (p.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(p)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        ZPoly primitive = PrimitivePart(ToGmp(p));
        Isolated interval{ToGmp(root.low), ToGmp(root.high), 0, 0};
        if (interval.IsExact()) {
            return SignAt(primitive, interval.low.get_num(), interval.low.get_den()) == 0
                       ? ZorWBPolynomialStatus::Success
                       : ZorWBPolynomialStatus::BadInterval;
        }
        if (Degree(primitive) < 1 || interval.low > interval.high)
            return ZorWBPolynomialStatus::BadInterval;
        ZPoly f = SquareFreePart(primitive);
        interval.lowSign = SignAt(f, interval.low.get_num(), interval.low.get_den());
        int highSign = SignAt(f, interval.high.get_num(), interval.high.get_den());
        if (interval.lowSign == 0 || highSign == 0 || highSign == interval.lowSign)
            return ZorWBPolynomialStatus::BadInterval;
        if (width.GetSign() > 0) Narrow(interval, f, ToGmp(width));
        root.low = FromGmp(interval.low);
        root.high = FromGmp(interval.high);
        return ZorWBPolynomialStatus::Success;
    });
}
