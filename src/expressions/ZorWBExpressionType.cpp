#include "expressions/ZorWBExpressionType.h"

#include <cstring>

namespace {

constexpr ZorWBExpressionTypeInfo TypeTable[] = {
#define ZORWB_TYPE_ROW(number, member, family, children, parseName, printName, graphLabel, \
                       function)                                                           \
    {ZorWBExpressionType::member,                                                          \
     #member,                                                                              \
     ZorWBNodeFamily::family,                                                              \
     children,                                                                             \
     parseName,                                                                            \
     printName,                                                                            \
     graphLabel,                                                                           \
     function},
    ZORWB_EXPRESSION_TYPES(ZORWB_TYPE_ROW)
#undef ZORWB_TYPE_ROW
};

constexpr bool RowsFollowTypeNumbers() {
    for (int i = 0; i < ZorWBNbOfExpressionTypes; ++i) {
        if (static_cast<int>(TypeTable[i].type) != i) return false;
    }
    return true;
}

static_assert(sizeof TypeTable / sizeof TypeTable[0] == ZorWBNbOfExpressionTypes,
              "one row per expression type");
static_assert(RowsFollowTypeNumbers(), "row i describes type i");

}  // namespace

const ZorWBExpressionTypeInfo* ZorWBGetExpressionTypeInfo(int type) {
    if (type < 0 || type >= ZorWBNbOfExpressionTypes) return nullptr;
    return &TypeTable[type];
}

const char* ZorWBExpressionTypeName(int type) {
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
    return info ? info->name : "ERROR";
}

bool ZorWBFindFunctionType(const char* name, ZorWBExpressionType& type) {
    if (!name || !*name) return false;
    if (std::strcmp(name, "Int") == 0) {
        type = ZorWBExpressionType::Integrate;
        return true;
    }
    for (const ZorWBExpressionTypeInfo& info : TypeTable) {
        // The first letters differ for most entries: a byte test spares the
        // call (the scanner asks for every function it reads).
        if (info.function[0] == name[0] && std::strcmp(info.function, name) == 0) {
            type = info.type;
            return true;
        }
    }
    return false;
}
