#include "debug/ZorWBDebug.h"

#include <cstdio>
#include <exception>
#include <vector>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBVariable.h"
#include "qel/ZorQelGetEnv.h"

namespace {

// Category names, by category number, as they appear after "WBxTrace_".
const char* const CategoryNames[ZorWBDebug::NbOfCategories] = {"JSON", "LIFE",  "EVAL", "DIFF",
                                                               "EQPR", "TRANS", "SOLVE"};

ZorQelString ConstantText(const ZorWBValue& value) {
    ZorQelString text;
    switch (value.GetType()) {
        case ZorWBFractionType: {
            ZorWBFraction fraction = value.GetAsFraction();
            text += "{";
            text += fraction.numerator;
            text += "/";
            text += fraction.denominator;
            if (fraction.power != 0) {
                text += " * Pi^";
                text += fraction.power;
            }
            text += "}";
            return text;
        }
        case ZorWBIntegerType:
        case ZorWBRealType:
            return text.AppendDouble(value.GetAsReal());
        default:
            return "??";
    }
}

}  // namespace

ZorWBDebug* ZorWBDebug::_TheZorWBDebug = nullptr;

ZorWBDebug::ZorWBDebug() {
    CommonInitialize();
}

ZorWBDebug* ZorWBDebug::GetWBDebug() {
    // A function-local static is initialised once even with threads.
    static ZorWBDebug* instance = _TheZorWBDebug = new ZorWBDebug();
    return instance;
}

void ZorWBDebug::CommonInitialize() {
    _tabs = 0;
    for (int& level : _levels)
        level = -1;
    if (_initialized) {
        _depthDifferentiate = 0;
        return;
    }
    InitTraceFromEnv();
    _depthDifferentiate = 0;
}

void ZorWBDebug::InitTraceFromEnv() {
    if (_initialized) return;
    for (int i = 0; i < NbOfCategories; ++i)
        InitTraceFromEnv(static_cast<WBX_TRACE::WBX_TRACE_CAT>(i), CategoryNames[i]);
    _initialized = true;
}

void ZorWBDebug::InitTraceFromEnv(WBX_TRACE::WBX_TRACE_CAT category, const char* name) try {
    if (!CheckCategory(category) || !name) return;
    int level = ZorQelGetEnvI((ZorQelString("WBxTrace_") + name).GetString());
    _levels[category] = level >= 1 && level <= 5 ? level : 0;
} catch (const std::exception&) {
}

bool ZorWBDebug::ActiveTrace(WBX_TRACE::WBX_TRACE_CAT category,
                             WBX_TRACE::WBX_TRACE_LEVEL level) const {
    return CheckCategory(category) && _levels[category] >= level;
}

int ZorWBDebug::GetLevel(WBX_TRACE::WBX_TRACE_CAT category) const {
    return CheckCategory(category) ? _levels[category] : 0;
}

void ZorWBDebug::Tabs_Print() const {
    for (int i = 0; i < _tabs; ++i)
        std::fputc('\t', stdout);
}

void ZorWBDebug::PrintExp(const char* before, const ZorWBExpression* expression,
                          const char* after) const {
    if (before) std::fputs(before, stdout);
    std::fputs(ExpStr(expression).GetString(), stdout);
    if (after) std::fputs(after, stdout);
    std::fflush(stdout);
}

// Written as a tree (a shared node once per use), with an explicit stack so
// that deep graphs print without deep recursion; a graph whose tree would be
// too large to write out (ZorWBGraphWalk::MaxUnfoldedSize) is named so.
ZorQelString ZorWBDebug::ExpStr(const ZorWBExpression* expression) try {
    if (!expression) return "null expression";
    if (!ZorWBGraphWalk::IsUnfoldable(expression)) return "expression too large to write";
    struct Frame {
        const ZorWBExpression* node;
        int next;
    };
    ZorQelString text;
    std::vector<Frame> stack{{expression, 0}};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        const ZorWBExpression* node = frame.node;
        if (node->GetType() == ZorWBExpressionType::Variable) {
            text += const_cast<ZorWBVariable*>(static_cast<const ZorWBVariable*>(node))->GetName();
            stack.pop_back();
            continue;
        }
        if (node->GetType() == ZorWBExpressionType::Constant) {
            text += ConstantText(node->GetExprValue());
            stack.pop_back();
            continue;
        }
        if (frame.next == 0) {
            text += ZorWBExpressionTypeName(node->GetType());
            text += "(";
        }
        if (frame.next >= node->GetNbOfChildren()) {
            text += ")";
            stack.pop_back();
            continue;
        }
        if (frame.next > 0) text += ", ";
        const ZorWBExpression* child = node->GetChild(frame.next++);
        if (child) {
            stack.push_back({child, 0});
        } else {
            text += "null expression";
        }
    }
    return text;
} catch (const std::exception&) {
    return ZorQelString();
}

ZorQelString ZorWBDebug::Str(ZorWBEquationType type) {
    switch (type) {
        case ZorWBEqualZero:
            return "  = 0";
        case ZorWBNotEqualZero:
            return " <> 0";
        case ZorWBLessEqualZero:
            return " <= 0";
        case ZorWBLessZero:
            return " < 0";
        case ZorWBGreaterEqualZero:
            return " >= 0";
        case ZorWBGreaterZero:
            return " > 0";
        case ZorWBMinimize:
            return "<minimize>";
        case ZorWBMaximize:
            return "<maximize>";
        default:
            return " ? ";
    }
}

ZorQelString ZorWBDebug::Str(ZorWBExpressionType type) {
    return ZorWBExpressionTypeName(type);
}
