#ifndef ZORWB_DOMAINBOX_H
#define ZORWB_DOMAINBOX_H

#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "solver/ZorWBRoundedInterval.h"
#include "values/ZorWBValue.h"

// How a variable's domain is held.
enum class ZorWBDomainKind : unsigned char {
    Real,     // an interval of reals
    Integer,  // an interval of integers: its bounds stay integers
    Listed,   // an enumeration or a boolean: a value, with its hull
};

// The domains of a problem's variables, by variable index: an interval for
// every variable (the hull of a listed domain, a boolean as 0 and 1) and,
// for the listed ones, the value itself.
struct ZORWBX_API ZorWBDomainBox {
    std::vector<ZorWBRoundedInterval> intervals;
    std::vector<ZorWBValue> values;

    int GetSize() const { return static_cast<int>(intervals.size()); }
    bool IsEmpty() const;
    // The listed value of a variable; undefined when the box holds none.
    const ZorWBValue& GetListed(int variable) const;
    // Whether every interval meets the other box's, or lies inside it (false
    // for boxes of different sizes).
    bool Intersects(const ZorWBDomainBox& other) const;
    bool IsInside(const ZorWBDomainBox& outer) const;
};

// The kind of domain a value stands for: integers, integer intervals and
// integer enumerations held as intervals are integer domains, enumerations
// with listed elements and booleans listed domains, everything else (reals,
// real intervals, fractions, undefined) real domains.
ZORWBX_API ZorWBDomainKind ZorWBDomainKindOf(const ZorWBValue& value);
// A value read as a domain: its kind, its hull (with integer bounds for an
// integer domain) and, for a listed domain, the value itself (undefined for
// the other kinds).
ZORWBX_API void ZorWBReadDomain(const ZorWBValue& value, ZorWBDomainKind& kind,
                                ZorWBRoundedInterval& interval, ZorWBValue& listed);
// The hull of a value as an interval: the whole line for an undefined value,
// [0, 1] for an unknown boolean, the empty interval for an empty one.
ZORWBX_API ZorWBRoundedInterval ZorWBDomainHull(const ZorWBValue& value);
// A domain as a value of its kind: a real interval, an integer interval
// (infinite ends at the integer infinity markers) or the listed value.
ZORWBX_API ZorWBValue ZorWBDomainValue(ZorWBDomainKind kind, const ZorWBRoundedInterval& interval,
                                       const ZorWBValue& listed);
// The integers of an interval: its bounds rounded inward.
ZORWBX_API ZorWBRoundedInterval ZorWBIntegerHull(const ZorWBRoundedInterval& interval);

// Whether an equation type is a relation to 0 (= 0, <> 0, <= 0, < 0, >= 0,
// > 0), which the solver takes; objectives and unset types are not.
inline bool ZorWBIsRelation(ZorWBEquationType type) {
    return type >= ZorWBEqualZero && type <= ZorWBGreaterZero;
}
// What a relation to 0 allows of its root's value, widened by the tolerance
// where the relation's test is (= 0 allows [-t, t], <= 0 allows (-inf, t],
// >= 0 allows [-t, +inf), < 0 and > 0 the closures of their half-lines,
// <> 0 the whole line); the whole line for the types that are no relation.
ZORWBX_API ZorWBRoundedInterval ZorWBAllowedSet(ZorWBEquationType type, double tolerance);
// Whether the relation holds for every value of root (ZorWBTrue), for none
// (ZorWBFalse), or neither (ZorWBUnknown), decided as the value functions
// decide the comparison with 0 under the tolerance; ZorWBEmpty for an empty
// root value.
ZORWBX_API ZorWBBoolean ZorWBRelationHolds(ZorWBEquationType type, const ZorWBRoundedInterval& root,
                                           double tolerance);

#endif
