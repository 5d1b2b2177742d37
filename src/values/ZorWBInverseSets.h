#ifndef ZORWB_INVERSESETS_H
#define ZORWB_INVERSESETS_H

// Machinery shared by the inverse functions: real-set helpers, a read-only
// view of a value as pieces, and the drivers that narrow a domain piece by
// piece. Used only inside the library.

#include "values/ZorWBEnum.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBValue.h"

// ------------------------------------------------------------ real sets
// Every set is a closed real interval; integers are read exactly, their
// infinite bounds as the real infinite ends.

// The tolerance of the inverse functions around x: 1e-14, relative above 1.
double ZorWBInverseSlack(double x);
bool ZorWBInverseIsEmpty(const ZorWBRealInterval& a);
bool ZorWBInverseHasNaN(const ZorWBRealInterval& a);
// Whether a holds v (within the slack).
bool ZorWBInverseHolds(const ZorWBRealInterval& a, double v);
bool ZorWBInverseMeets(const ZorWBRealInterval& a, const ZorWBRealInterval& b);
// The hull of two sets, either of which may be empty.
ZorWBRealInterval ZorWBInverseHull(const ZorWBRealInterval& a, const ZorWBRealInterval& b);
// candidate intersected with domain, never outside domain; a gap within the
// slack gives the nearest point of the domain.
ZorWBRealInterval ZorWBInverseClip(const ZorWBRealInterval& candidate,
                                   const ZorWBRealInterval& domain);
ZorWBRealInterval ZorWBInverseNegate(const ZorWBRealInterval& a);
// {|v| : v in a}.
ZorWBRealInterval ZorWBInverseAbsImage(const ZorWBRealInterval& a);
double ZorWBInverseClamp(double v);
// The first kept value above (below) an excluded bound: the next integer for
// integer sets, a relative hair away for real sets (the hair of the inverse
// floor).
double ZorWBInverseOpenLower(double excluded, bool integer);
double ZorWBInverseOpenUpper(double excluded, bool integer);
ZorWBRealInterval ZorWBInverseToReal(const ZorWBIntegerInterval& a);
// The integers inside a (bounds within a rounding error of an integer count
// as that integer).
ZorWBIntegerInterval ZorWBInverseToInteger(const ZorWBRealInterval& a);
// Rounds up (down) to an integer, forgiving a rounding error.
double ZorWBInverseRoundUp(double v);
double ZorWBInverseRoundDown(double v);

// ------------------------------------------------------------ projection cores
// Shared by the interval and value levels; integer means that the narrowed
// operand and the other operand are integers.
ZorWBRealInterval ZorWBInverseModDividends(const ZorWBRealInterval& result,
                                           const ZorWBRealInterval& dividend,
                                           const ZorWBRealInterval& divisor, bool integer);
ZorWBRealInterval ZorWBInverseModDivisors(const ZorWBRealInterval& result,
                                          const ZorWBRealInterval& divisor,
                                          const ZorWBRealInterval& dividend, bool integer);
ZorWBRealInterval ZorWBInversePowBases(const ZorWBRealInterval& result,
                                       const ZorWBRealInterval& base,
                                       const ZorWBRealInterval& exponent);
ZorWBRealInterval ZorWBInversePowExponents(const ZorWBRealInterval& result,
                                           const ZorWBRealInterval& exponent,
                                           const ZorWBRealInterval& base, bool integer);

// ------------------------------------------------------------ pieces
// A numeric set read as pieces: the points of a list, or one interval. Holds
// pointers into the enumeration it was read from, which must outlive it.
class ZorWBInverseSet {
  public:
    ZorWBInverseSet() = default;  // the empty set
    explicit ZorWBInverseSet(const ZorWBRealInterval& interval);
    explicit ZorWBInverseSet(const ZorWBIntegerInterval& interval);
    explicit ZorWBInverseSet(const ZorWBIntegerEnum& enumeration);
    explicit ZorWBInverseSet(const ZorWBRealEnum& enumeration);
    // The numeric reading of a value: booleans as 0 / 1, fractions as reals.
    explicit ZorWBInverseSet(const ZorWBValue& value);
    static ZorWBInverseSet Whole() { return ZorWBInverseSet(ZorWBReal_Any); }

    bool IsEmpty() const { return _empty; }
    bool IsList() const { return _count > 0; }
    bool HasNaN() const;
    int GetNbOfPieces() const { return _empty ? 0 : (_count > 0 ? _count : 1); }
    ZorWBRealInterval GetPiece(int i) const;
    const ZorWBRealInterval& GetHull() const { return _hull; }

  private:
    void SetInterval(const ZorWBRealInterval& interval);

    const int* _ints = nullptr;
    const double* _reals = nullptr;
    int _count = 0;
    ZorWBRealInterval _hull = {ZorWBRealLimit, -ZorWBRealLimit};
    bool _empty = true;
};

// The hull, over the pieces r of result and y of other, of project(r, x, y):
// the part of x that can produce a value of r with y.
template <class Projection>
ZorWBRealInterval ZorWBInverseProjectPiece(const ZorWBInverseSet& result,
                                           const ZorWBRealInterval& x, const ZorWBInverseSet& other,
                                           const Projection& project) {
    ZorWBRealInterval hull = ZorWBReal_Nil;
    for (int i = 0; i < result.GetNbOfPieces(); ++i) {
        for (int j = 0; j < other.GetNbOfPieces(); ++j) {
            hull = ZorWBInverseHull(hull, project(result.GetPiece(i), x, other.GetPiece(j)));
            if (!ZorWBInverseIsEmpty(hull) && hull.low <= x.low && hull.high >= x.high)
                return hull;  // nothing left to gain
        }
    }
    return hull;
}

// Stores a projected hull into an enumeration of the domain's representation.
void ZorWBInverseStoreHull(ZorWBIntegerEnum& out, const ZorWBIntegerEnum& domain,
                           const ZorWBRealInterval& hull);
void ZorWBInverseStoreHull(ZorWBRealEnum& out, const ZorWBRealEnum& domain,
                           const ZorWBRealInterval& hull);

// Narrows an enumeration: a list keeps its feasible elements, any other
// representation is narrowed to the projected hull.
template <class Enum, class Projection>
Enum ZorWBInverseProjectEnum(const ZorWBInverseSet& result, const Enum& domain,
                             const ZorWBInverseSet& other, const Projection& project) {
    ZorWBInverseSet pieces(domain);
    Enum out(ZorWBEnumNil);
    if (pieces.IsList()) {
        out.Reset(ZorWBEnumList);
        for (int i = 0; i < domain.GetSize(); ++i) {
            if (!ZorWBInverseIsEmpty(
                    ZorWBInverseProjectPiece(result, pieces.GetPiece(i), other, project)))
                out.Append(domain.Get(i));
        }
        if (out.GetSize() == 0) out.SetNil();
    } else if (!pieces.IsEmpty()) {
        ZorWBInverseStoreHull(out, domain,
                              ZorWBInverseProjectPiece(result, pieces.GetHull(), other, project));
    }
    return out;
}

// ------------------------------------------------------------ values
// Checks the operands of an inverse: the result set (when given) with the
// domain, and the domain with the other operand, must combine by the kind
// table, and no bound may be NaN. On failure sets code and answers false.
// integer tells whether the domain and the other operand are integers.
bool ZorWBInverseCheckOperands(const ZorWBEnvironment& environment, const ZorWBValue* result,
                               const ZorWBValue& domain, const ZorWBValue* other, unsigned int code,
                               bool& integer);
// The empty set of a value's kind.
ZorWBValue ZorWBInverseEmptyLike(const ZorWBValue& domain);
// A scalar, interval or boolean domain narrowed to a projected hull.
ZorWBValue ZorWBInverseNarrowed(const ZorWBValue& domain, const ZorWBRealInterval& hull);

// Narrows a value domain with a projection (see the value level of the
// public header for the rules).
template <class Projection>
ZorWBValue ZorWBInverseProjectValue(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                    const ZorWBValue& domain, const ZorWBValue* other,
                                    const Projection& project) {
    ZorWBInverseSet resultSet(result);
    ZorWBInverseSet otherSet = other ? ZorWBInverseSet(*other) : ZorWBInverseSet::Whole();
    if (domain.IsAKindOf(ZorWBIntegerEnumType)) {
        ZorWBIntegerEnum out =
            ZorWBInverseProjectEnum(resultSet, domain.GetIntegerEnum(), otherSet, project);
        out.Correct(environment);
        return ZorWBValue(out);
    }
    if (domain.IsAKindOf(ZorWBRealEnumType)) {
        ZorWBRealEnum out =
            ZorWBInverseProjectEnum(resultSet, domain.GetRealEnum(), otherSet, project);
        out.Correct(environment);
        return ZorWBValue(out);
    }
    ZorWBInverseSet domainSet(domain);
    if (domainSet.IsEmpty()) return ZorWBInverseEmptyLike(domain);
    return ZorWBInverseNarrowed(
        domain, ZorWBInverseProjectPiece(resultSet, domainSet.GetHull(), otherSet, project));
}

// Checks the operands of a numeric inverse (setting code on failure and
// answering the domain), then narrows the domain with
// project(r, x, y, integer).
template <class Projection>
ZorWBValue ZorWBInverseNumeric(const ZorWBEnvironment& environment, const ZorWBValue& result,
                               const ZorWBValue& domain, const ZorWBValue* other, unsigned int code,
                               const Projection& project) {
    bool integer = false;
    if (!ZorWBInverseCheckOperands(environment, &result, domain, other, code, integer))
        return domain;
    return ZorWBInverseProjectValue(
        environment, result, domain, other,
        [&](const ZorWBRealInterval& r, const ZorWBRealInterval& x, const ZorWBRealInterval& y) {
            return project(r, x, y, integer);
        });
}

#endif
