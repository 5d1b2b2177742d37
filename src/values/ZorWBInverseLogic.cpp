// Inverse logical operators (four-state tables and their value forms) and
// inverse comparisons.

#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBInverseSets.h"
#include "values/ZorWBValueFunctions.h"

namespace {

using Interval = ZorWBRealInterval;
using Table = ZorWBBoolean[4][4];

constexpr ZorWBBoolean F = ZorWBFalse;
constexpr ZorWBBoolean T = ZorWBTrue;
constexpr ZorWBBoolean U = ZorWBUnknown;
constexpr ZorWBBoolean E = ZorWBEmpty;

// Rows: the result state; columns: the other operand's state.
constexpr Table kInverseAnd = {{U, F, U, E}, {E, T, T, E}, {U, U, U, E}, {E, E, E, E}};
constexpr Table kInverseOr = {{F, E, F, E}, {T, U, U, E}, {U, U, U, E}, {E, E, E, E}};
constexpr Table kInverseImplication1 = {{T, E, T, E}, {F, U, U, E}, {U, U, U, E}, {E, E, E, E}};
constexpr Table kInverseImplication2 = {{E, F, F, E}, {U, T, U, E}, {U, U, U, E}, {E, E, E, E}};

bool IsState(ZorWBBoolean state) {
    return state >= ZorWBFalse && state <= ZorWBEmpty;
}

ZorWBBoolean Lookup(const Table& table, ZorWBBoolean result, ZorWBBoolean other) {
    if (!IsState(result) || !IsState(other)) return ZorWBEmpty;
    return table[result][other];
}

// A state as the set of truth values it allows: bit 1 false, bit 2 true.
constexpr int kFalseBit = 1;
constexpr int kTrueBit = 2;

int Truths(ZorWBBoolean state) {
    switch (state) {
        case ZorWBFalse:
            return kFalseBit;
        case ZorWBTrue:
            return kTrueBit;
        case ZorWBUnknown:
            return kFalseBit | kTrueBit;
        default:
            return 0;
    }
}

ZorWBBoolean StateOf(int truths) {
    static const ZorWBBoolean states[4] = {ZorWBEmpty, ZorWBFalse, ZorWBTrue, ZorWBUnknown};
    return states[truths & 3];
}

// The truth values a value convertible to a boolean can take: a boolean by
// its state, an integer set by whether it holds 0 (false) and values other
// than 0 (true), a listed enumeration element by element (so {-2, 1} is
// true, where its hull would read unknown).
int TruthsOf(const ZorWBValue& value) {
    if (value.IsAKindOf(ZorWBBooleanType)) return Truths(value.GetAsBoolean());
    ZorWBInverseSet set(value);
    int truths = 0;
    for (int i = 0; i < set.GetNbOfPieces(); ++i) {
        Interval piece = set.GetPiece(i);
        if (piece.low <= 0.0 && piece.high >= 0.0) truths |= kFalseBit;
        if (piece.low != 0.0 || piece.high != 0.0) truths |= kTrueBit;
    }
    return truths;
}

// The non-zero part of an integer set (a 0 inside it cannot be cut out).
Interval NonZero(const Interval& x) {
    if (x.low >= 0.0) return ZorWBInverseClip({1.0, x.high}, x);
    if (x.high <= 0.0) return ZorWBInverseClip({x.low, -1.0}, x);
    return x;
}

// Narrows a domain convertible to a boolean to the truth values allowed: a
// boolean by its state, an integer set by its zeros (false) and non-zero
// values (true).
ZorWBValue NarrowToTruths(const ZorWBEnvironment& environment, const ZorWBValue& domain,
                          int truths) {
    if (domain.IsAKindOf(ZorWBBooleanType)) return ZorWBValue(StateOf(truths & TruthsOf(domain)));
    return ZorWBInverseProjectValue(environment, ZorWBValue(ZorWBReal_Any), domain, nullptr,
                                    [truths](const Interval&, const Interval& x, const Interval&) {
                                        Interval hull = ZorWBReal_Nil;
                                        if (truths & kFalseBit)
                                            hull = ZorWBInverseClip({0.0, 0.0}, x);
                                        if (truths & kTrueBit)
                                            hull = ZorWBInverseHull(hull, NonZero(x));
                                        return hull;
                                    });
}

ZorWBValue InverseLogical(const ZorWBEnvironment& environment, const ZorWBValue& result,
                          const ZorWBValue& domain, const ZorWBValue& other, const Table& table,
                          unsigned int code) {
    result.RecordEnv(environment);
    domain.RecordEnv(environment);
    other.RecordEnv(environment);
    if (!result.IsConvertible(ZorWBBooleanType) || !domain.IsConvertible(ZorWBBooleanType) ||
        !other.IsConvertible(ZorWBBooleanType)) {
        environment.SetError(code);
        return domain;
    }
    ZorWBBoolean allowed = Lookup(table, StateOf(TruthsOf(result)), StateOf(TruthsOf(other)));
    return NarrowToTruths(environment, domain, Truths(allowed));
}

// The truth values a comparison result allows, after checking the operands
// (error 2 and false when they cannot be used).
bool ReadComparison(const ZorWBEnvironment& environment, const ZorWBValue& result,
                    const ZorWBValue& domain, const ZorWBValue& other, bool negate, int& truths,
                    bool& integer) {
    result.RecordEnv(environment);
    if (!result.IsConvertible(ZorWBBooleanType)) {
        environment.SetError(ZorWBError::IncompatibleKinds);
        return false;
    }
    if (!ZorWBInverseCheckOperands(environment, nullptr, domain, &other,
                                   ZorWBError::IncompatibleKinds, integer))
        return false;
    truths = TruthsOf(result);
    if (negate) truths = (truths & kFalseBit ? kTrueBit : 0) | (truths & kTrueBit ? kFalseBit : 0);
    return true;
}

// The value set operations answer in the common kind of their operands (an
// interval meeting a list becomes a list); the inverse keeps the domain's.
ZorWBValue InKindOf(const ZorWBEnvironment& environment, const ZorWBValue& domain,
                    const ZorWBValue& narrowed) {
    if (ZorWBIsEmpty(environment, narrowed)) return ZorWBInverseEmptyLike(domain);
    if (narrowed.GetType() == domain.GetType()) return narrowed;
    ZorWBValue answer(domain);
    answer.Assign(environment, narrowed);
    return answer;
}

ZorWBValue InverseEquality(const ZorWBEnvironment& environment, const ZorWBValue& result,
                           const ZorWBValue& domain, const ZorWBValue& other, bool negate) {
    int truths = 0;
    bool integer = false;
    if (!ReadComparison(environment, result, domain, other, negate, truths, integer)) return domain;
    ZorWBValue narrowed(domain);
    switch (truths) {
        case kTrueBit:
            if (!ZorWBIntersect(environment, narrowed, other)) return ZorWBInverseEmptyLike(domain);
            return InKindOf(environment, domain, narrowed);
        case kFalseBit:
            // Only a single value of y can be taken out of x.
            if (!ZorWBIsExact(environment, other)) return domain;
            ZorWBExclude(environment, narrowed, other);
            return InKindOf(environment, domain, narrowed);
        case 0:
            return ZorWBInverseEmptyLike(domain);
        default:
            return domain;
    }
}

// x <= y narrowed onto x (first) or onto y.
ZorWBValue InverseLessEqual(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& domain, const ZorWBValue& other, bool first) {
    int truths = 0;
    bool integer = false;
    if (!ReadComparison(environment, result, domain, other, false, truths, integer)) return domain;
    // The strict complement x > y (y < x) is taken as its closed hull for
    // reals, and exactly for integers.
    double strict = integer ? 1.0 : 0.0;
    constexpr double L = ZorWBRealLimit;
    return ZorWBInverseProjectValue(
        environment, ZorWBValue(ZorWBReal_Any), domain, &other,
        [=](const Interval&, const Interval& d, const Interval& o) {
            Interval holds = first ? Interval{-L, o.high} : Interval{o.low, L};
            Interval fails = first ? Interval{o.low + strict, L} : Interval{-L, o.high - strict};
            Interval hull = ZorWBReal_Nil;
            if (truths & kTrueBit) hull = ZorWBInverseClip(holds, d);
            if (truths & kFalseBit) hull = ZorWBInverseHull(hull, ZorWBInverseClip(fails, d));
            return hull;
        });
}

}  // namespace

// ---------------------------------------------------------------- boolean level

ZorWBBoolean ZorWBInverseAnd(ZorWBBoolean result, ZorWBBoolean other) {
    return Lookup(kInverseAnd, result, other);
}

ZorWBBoolean ZorWBInverseOr(ZorWBBoolean result, ZorWBBoolean other) {
    return Lookup(kInverseOr, result, other);
}

ZorWBBoolean ZorWBInverseImplication1(ZorWBBoolean result, ZorWBBoolean conclusion) {
    return Lookup(kInverseImplication1, result, conclusion);
}

ZorWBBoolean ZorWBInverseImplication2(ZorWBBoolean result, ZorWBBoolean premise) {
    return Lookup(kInverseImplication2, result, premise);
}

// ---------------------------------------------------------------- value level

ZorWBValue ZorWBInverseAnd(const ZorWBEnvironment& environment, const ZorWBValue& result,
                           const ZorWBValue& domain, const ZorWBValue& other) {
    return InverseLogical(environment, result, domain, other, kInverseAnd, ZorWBError::InverseAnd);
}

ZorWBValue ZorWBInverseOr(const ZorWBEnvironment& environment, const ZorWBValue& result,
                          const ZorWBValue& domain, const ZorWBValue& other) {
    return InverseLogical(environment, result, domain, other, kInverseOr, ZorWBError::InverseOrPow);
}

ZorWBValue ZorWBInverseImplication1(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                    const ZorWBValue& premise, const ZorWBValue& conclusion) {
    return InverseLogical(environment, result, premise, conclusion, kInverseImplication1,
                          ZorWBError::InverseImplication1);
}

ZorWBValue ZorWBInverseImplication2(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                    const ZorWBValue& conclusion, const ZorWBValue& premise) {
    return InverseLogical(environment, result, conclusion, premise, kInverseImplication2,
                          ZorWBError::InverseImplication2);
}

ZorWBValue ZorWBInverseEqual(const ZorWBEnvironment& environment, const ZorWBValue& result,
                             const ZorWBValue& domain, const ZorWBValue& other) {
    return InverseEquality(environment, result, domain, other, false);
}

ZorWBValue ZorWBInverseNotEqual(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                const ZorWBValue& domain, const ZorWBValue& other) {
    return InverseEquality(environment, result, domain, other, true);
}

ZorWBValue ZorWBInverseLessEqual1(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                  const ZorWBValue& x, const ZorWBValue& y) {
    return InverseLessEqual(environment, result, x, y, true);
}

ZorWBValue ZorWBInverseLessEqual2(const ZorWBEnvironment& environment, const ZorWBValue& result,
                                  const ZorWBValue& y, const ZorWBValue& x) {
    return InverseLessEqual(environment, result, y, x, false);
}
