// Square-free decomposition, rational roots and partial fractions.
//
// The square-free factors come from Yun's algorithm on the primitive
// integer part (ZorWBIntegerPolynomials), the rational roots from the
// linear factors that the modular search finds in each square-free factor
// (ZorWBLowDegreeFactors), with the factor's multiplicity.
//
// Partial fractions peel one prime power at a time: for R / (C P^k) with C
// and P coprime, the Bezout identity s C + t P^k = R with deg s < deg P^k
// gives R / (C P^k) = s / P^k + t / C; the P-adic digits of s (repeated
// division by P) then give s / P^k = sum of n_j / P^j. The cost is one
// extended Euclid per base and one division per power.

#include "polynomial/ZorWBPolynomialFactors.h"

#include <algorithm>

#include "polynomial/internal/ZorWBFieldPolynomials.h"
#include "polynomial/internal/ZorWBIntegerPolynomials.h"
#include "polynomial/internal/ZorWBLowDegreeFactors.h"

using namespace ZorWBExact;

namespace {

// The square-free factors of a non-zero p as monic rational polynomials,
// with the constant that completes the product.
void SquareFreeParts(const QPoly& p, mpq_class& constant, std::vector<QPoly>& parts) {
    mpq_class content;
    ZPoly primitive;
    Split(p, content, primitive);
    parts.clear();
    if (Degree(primitive) >= 1) {
        for (const ZPoly& factor : SquareFreeFactors(primitive))
            parts.push_back(ToRational(factor));
    }
    // lc(p) is the constant once every factor is monic.
    constant = p.back();
    RationalField field;
    RationalPolynomials polys(field);
    for (QPoly& part : parts)
        part = polys.Monic(part);
}

// The monic x - r of each rational root of a square-free monic part, and the
// monic rest (empty when it is constant).
void SplitRationalRoots(const QPoly& part, std::vector<mpq_class>& roots, QPoly& rest) {
    LowDegreeFactors found = FindLowDegreeFactors(PrimitivePart(part), false);
    roots.clear();
    for (const ZPoly& linear : found.linear)
        roots.push_back(mpq_class(-linear[0], linear[1]));
    for (mpq_class& root : roots)
        root.canonicalize();
    std::sort(roots.begin(), roots.end());
    rest.clear();
    if (Degree(found.rest) >= 1) {
        RationalField field;
        rest = RationalPolynomials(field).Monic(ToRational(found.rest));
    }
}

struct Piece {
    QPoly base;
    int power;
};

// The factorisation of a non-zero p that the roots and the partial
// fractions read: for each square-free part in order of multiplicity, x - r
// for each of its rational roots r in increasing order, then its monic rest
// without rational root; and lc(p), which completes the product.
std::vector<Piece> RationalPieces(const QPoly& p, mpq_class& lead) {
    std::vector<QPoly> parts;
    SquareFreeParts(p, lead, parts);
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (RationalPolynomials::Degree(parts[i]) < 1) continue;
        const int multiplicity = static_cast<int>(i) + 1;
        std::vector<mpq_class> roots;
        QPoly rest;
        SplitRationalRoots(parts[i], roots, rest);
        for (const mpq_class& root : roots)
            pieces.push_back({QPoly{-root, mpq_class(1)}, multiplicity});
        if (!rest.empty()) pieces.push_back({rest, multiplicity});
    }
    return pieces;
}

// The fractions of R / D (deg R < deg D, D = product of the pieces).
void Peel(const RationalPolynomials& polys, QPoly r, QPoly d, const std::vector<Piece>& pieces,
          std::vector<ZorWBPartialFraction>& fractions) {
    for (const Piece& piece : pieces) {
        QPoly power{mpq_class(1)};
        for (int j = 0; j < piece.power; ++j)
            power = polys.Mul(power, piece.base);
        QPoly cofactor = polys.Quo(d, power);
        QPoly s, t;
        if (polys.Degree(cofactor) == 0) {
            s = polys.Scale(r, polys.GetField().Inverse(cofactor[0]));
        } else {
            polys.SolveBezout(cofactor, power, r, s, t);
        }
        // s / base^k = sum over j of digit_j / base^(k - j).
        std::vector<ZorWBPartialFraction> digits;
        for (int j = piece.power; j >= 1 && !s.empty(); --j) {
            QPoly quotient, digit;
            polys.DivMod(s, piece.base, quotient, digit);
            if (!digit.empty()) digits.push_back({FromGmp(digit), FromGmp(piece.base), j});
            s = std::move(quotient);
        }
        fractions.insert(fractions.end(), digits.rbegin(), digits.rend());
        r = std::move(t);
        d = std::move(cofactor);
    }
}

}  // namespace

ZorWBPolynomialStatus ZorWBPolynomialFactors::SquareFree(
    const ZorWBPolynomial& p, ZorWBRational& constant,
    std::vector<ZorWBPolynomialFactor>& factors) {
    if (p.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(p)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        mpq_class lead;
        std::vector<QPoly> parts;
        SquareFreeParts(ToGmp(p), lead, parts);
        std::vector<ZorWBPolynomialFactor> result;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (RationalPolynomials::Degree(parts[i]) >= 1)
                result.push_back({FromGmp(parts[i]), static_cast<int>(i) + 1});
        }
        constant = FromGmp(lead);
        factors = std::move(result);
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBPolynomialFactors::RationalRoots(const ZorWBPolynomial& p,
                                                            std::vector<ZorWBRationalRoot>& roots) {
    if (p.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(p)) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        mpq_class lead;
        std::vector<std::pair<mpq_class, int>> found;
        for (const Piece& piece : RationalPieces(ToGmp(p), lead)) {
            if (RationalPolynomials::Degree(piece.base) == 1)
                found.emplace_back(-piece.base[0], piece.power);
        }
        std::sort(found.begin(), found.end());
        std::vector<ZorWBRationalRoot> result;
        for (const auto& [value, multiplicity] : found)
            result.push_back({FromGmp(value), multiplicity});
        roots = std::move(result);
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBPolynomialFactors::PartialFractions(
    const ZorWBPolynomial& numerator, const ZorWBPolynomial& denominator,
    ZorWBPartialFractionDecomposition& result) {
    if (denominator.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!WithinLimits(numerator) || !WithinLimits(denominator))
        return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        RationalField field;
        RationalPolynomials polys(field);
        QPoly quotient, r;
        QPoly d = ToGmp(denominator);
        polys.DivMod(ToGmp(numerator), d, quotient, r);
        ZorWBPartialFractionDecomposition decomposition;
        decomposition.polynomialPart = FromGmp(quotient);
        if (!r.empty()) {
            Cancel(r, d);
            mpq_class lead;
            std::vector<Piece> pieces = RationalPieces(d, lead);
            r = polys.Scale(r, 1 / lead);
            d = polys.Monic(d);
            Peel(polys, r, d, pieces, decomposition.fractions);
        }
        result = std::move(decomposition);
        return ZorWBPolynomialStatus::Success;
    });
}
