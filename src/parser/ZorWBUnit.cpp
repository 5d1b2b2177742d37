#include "parser/ZorWBUnit.h"

namespace {

const char* const DistanceUnits[] = {"km", "m",      "cm",   "mm",   "nm",   "in",
                                     "ft", "micron", "yard", "mile", "in_ft"};
// "in_ft" is listed as an angle too, but the distance list is read first, so
// it always reads as a distance.
const char* const AngleUnits[] = {"rad", "deg", "grad", "turn", "mrad", "in_ft", "%_angle"};
const char* const AmbiguousUnits[] = {"\xB0", "'", "\""};

template <std::size_t N>
bool IsListed(const ZorQelString& name, const char* const (&list)[N]) {
    for (const char* entry : list) {
        if (name == entry) return true;
    }
    return false;
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
    if (IsListed(unitName, DistanceUnits)) return ZorWBUnitKind::Distance;
    if (IsListed(unitName, AngleUnits)) return ZorWBUnitKind::Angle;
    if (IsListed(unitName, AmbiguousUnits)) return ZorWBUnitKind::Ambiguous;
    return ZorWBUnitKind::None;
}
