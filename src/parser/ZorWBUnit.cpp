#include "parser/ZorWBUnit.h"

#include "values/ZorWBFraction.h"

namespace {

// The units the language knows, with their factor to the base units
// (millimetres, radians). Factors below 1 are written as divisors, so that
// "5 nm" is exactly the double nearest to 5e-6. A name is looked up from the top, so the first
// row of a name decides its kind: "in_ft", which older unit lists also give
// as an angle, is a distance.
struct UnitRow {
    const char* name;
    ZorWBUnitKind kind;
    ZorWBUnitFactor factor;
};

const UnitRow Units[] = {
    {"km", ZorWBUnitKind::Distance, {1e6, 1.0}},
    {"m", ZorWBUnitKind::Distance, {1e3, 1.0}},
    {"cm", ZorWBUnitKind::Distance, {10.0, 1.0}},
    {"mm", ZorWBUnitKind::Distance, {1.0, 1.0}},
    {"nm", ZorWBUnitKind::Distance, {1.0, 1e6}},  // nanometre
    {"in", ZorWBUnitKind::Distance, {25.4, 1.0}},
    {"ft", ZorWBUnitKind::Distance, {304.8, 1.0}},
    {"micron", ZorWBUnitKind::Distance, {1.0, 1e3}},
    {"yard", ZorWBUnitKind::Distance, {914.4, 1.0}},
    {"mile", ZorWBUnitKind::Distance, {1609344.0, 1.0}},
    // The inch of a feet-and-inches dimension ("5 ft + 3 in_ft").
    {"in_ft", ZorWBUnitKind::Distance, {25.4, 1.0}},
    {"rad", ZorWBUnitKind::Angle, {1.0, 1.0}},
    {"deg", ZorWBUnitKind::Angle, {ZorWBPi, 180.0}},
    {"grad", ZorWBUnitKind::Angle, {ZorWBPi, 200.0}},
    {"turn", ZorWBUnitKind::Angle, {2.0 * ZorWBPi, 1.0}},
    {"mrad", ZorWBUnitKind::Angle, {1.0, 1e3}},
    // One hundredth of a full turn (3.6 degrees).
    {"%_angle", ZorWBUnitKind::Angle, {ZorWBPi, 50.0}},
    // The marks that stand for two units each: the degree sign (the byte
    // 0xB0) is always the degree; ' is the foot or the arc minute and " the
    // inch or the arc second, as the context decides (ZorWBGetUnitFactor).
    {"\xB0", ZorWBUnitKind::Ambiguous, {ZorWBPi, 180.0}},
    {"'", ZorWBUnitKind::Ambiguous, {ZorWBPi, 10800.0}},
    {"\"", ZorWBUnitKind::Ambiguous, {ZorWBPi, 648000.0}},
};

// The length readings of the marks that read as a length in a distance
// context.
const UnitRow AmbiguousLengths[] = {
    {"'", ZorWBUnitKind::Distance, {304.8, 1.0}},
    {"\"", ZorWBUnitKind::Distance, {25.4, 1.0}},
};

template <std::size_t N>
const UnitRow* Find(const ZorQelString& name, const UnitRow (&table)[N]) {
    for (const UnitRow& row : table) {
        if (name == row.name) return &row;
    }
    return nullptr;
}

}  // namespace

const ZorQelString& ZorWBUnitKindName(ZorWBUnitKind kind) {
    static const ZorQelString Names[] = {"None",      "Distance", "Angle",
                                         "Ambiguous", "Unsolved", "Inhomogeneous"};
    int index = static_cast<int>(kind);
    if (index < 0 || index >= static_cast<int>(sizeof Names / sizeof Names[0])) return Names[0];
    return Names[index];
}

ZorWBUnitKind ZorWBUnitKindFromName(const ZorQelString& name) {
    for (int i = 0; i <= static_cast<int>(ZorWBUnitKind::Inhomogeneous); ++i) {
        ZorWBUnitKind kind = static_cast<ZorWBUnitKind>(i);
        if (ZorWBUnitKindName(kind) == name) return kind;
    }
    return ZorWBUnitKind::None;
}

ZorWBUnitKind ZorWBClassifyUnit(const ZorQelString& unitName) {
    const UnitRow* row = Find(unitName, Units);
    return row ? row->kind : ZorWBUnitKind::None;
}

bool ZorWBGetUnitFactor(const ZorQelString& unitName, ZorWBUnitKind context,
                        ZorWBUnitFactor& factor) {
    const UnitRow* row =
        context == ZorWBUnitKind::Distance ? Find(unitName, AmbiguousLengths) : nullptr;
    if (!row) row = Find(unitName, Units);
    if (!row) return false;
    factor = row->factor;
    return true;
}
