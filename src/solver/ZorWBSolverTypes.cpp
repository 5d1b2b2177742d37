#include "solver/ZorWBSolverTypes.h"

const char* ZorWBBoxTypeName(ZorWBBoxType type) {
    switch (type) {
        case ZorWBBoxType::Solution:
            return "solution";
        case ZorWBBoxType::Boundary:
            return "boundary";
        case ZorWBBoxType::Unknown:
            return "unknown";
        case ZorWBBoxType::Pending:
            return "pending";
    }
    return "unknown";
}

ZorWBSolverBox::ZorWBSolverBox(ZorWBBoxType type, const ZorWBDomainBox& domains,
                               const std::vector<ZorWBDomainKind>& kinds)
    : _type(type), _domains(domains), _kinds(kinds) {}

ZorWBRoundedInterval ZorWBSolverBox::GetInterval(int variable) const {
    if (variable < 0 || variable >= GetNbOfVariables()) return ZorWBEmptyInterval();
    return _domains.intervals[variable];
}

ZorWBValue ZorWBSolverBox::GetValue(int variable) const {
    if (variable < 0 || variable >= GetNbOfVariables()) return ZorWBValue();
    const ZorWBDomainKind kind =
        variable < static_cast<int>(_kinds.size()) ? _kinds[variable] : ZorWBDomainKind::Real;
    return ZorWBDomainValue(kind, _domains.intervals[variable], _domains.GetListed(variable));
}
