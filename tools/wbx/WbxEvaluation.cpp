#include "WbxEvaluation.h"

#include <unordered_set>
#include <utility>

#include "WbxValueText.h"
#include "output/ZorWBEquationPrinter.h"
#include "values/ZorWBValueFunctions.h"

namespace {

bool HasRelation(ZorWBEquationType type) {
    return type >= ZorWBEqualZero && type <= ZorWBGreaterZero;
}

// Whether value REL 0 holds, four-state.
ZorWBBoolean Holds(const ZorWBEnvironment& environment, ZorWBEquationType type,
                   const ZorWBValue& value) {
    const ZorWBValue zero(0);
    ZorWBValue verdict;
    switch (type) {
        case ZorWBEqualZero:
            verdict = ZorWBEqual(environment, value, zero);
            break;
        case ZorWBNotEqualZero:
            verdict = ZorWBNotEqual(environment, value, zero);
            break;
        case ZorWBLessEqualZero:
            verdict = ZorWBLessEqual(environment, value, zero);
            break;
        case ZorWBLessZero:
            verdict = ZorWBNot(ZorWBLessEqual(environment, zero, value));
            break;
        case ZorWBGreaterEqualZero:
            verdict = ZorWBLessEqual(environment, zero, value);
            break;
        default:
            verdict = ZorWBNot(ZorWBLessEqual(environment, value, zero));
            break;
    }
    return verdict.GetType() == ZorWBBooleanType ? verdict.GetAsBoolean() : ZorWBEmpty;
}

}  // namespace

void WbxReleaseVariables(ZorWBFactory& factory, int first) {
    ZorWBValue whole(ZorWBRealIntervalType);
    whole.SetIndefinite();
    for (int i = first; i < factory.GetNbOfVariables(); ++i)
        factory.GetVariable(i)->SetExprValue(whole);
}

int WbxApplySetting(WbxContext& context, ZorWBFactory& factory, const std::string& setting,
                    const char* source) {
    std::size_t equals = setting.find('=');
    if (equals == std::string::npos)
        return WbxUsageError(context,
                             std::string(source) + " needs NAME=VALUE, not '" + setting + "'");
    std::string name = WbxSettingName(setting), text = setting.substr(equals + 1);
    ZorWBVariable* variable = factory.GetVariable(ZorQelString(name));
    if (!variable) return WbxUsageError(context, "unknown variable '" + name + "' in " + source);
    ZorWBValue value;
    if (!WbxReadValue(text, value)) {
        return WbxUsageError(context, "bad value '" + text + "' for " + name +
                                          " (an integer, a real, [low, high], {a, b, ...}, "
                                          "true or false)");
    }
    variable->SetExprValue(value);
    return WbxExit::Success;
}

std::string WbxSettingName(const std::string& setting) {
    return WbxTrim(setting.substr(0, setting.find('=')));
}

int WbxAssignVariables(WbxContext& context, ZorWBFactory& factory,
                       const std::vector<std::string>& settings) {
    WbxReleaseVariables(factory);
    for (const std::string& setting : settings)
        if (WbxApplySetting(context, factory, setting, "--set") != WbxExit::Success)
            return WbxExit::Usage;
    return WbxExit::Success;
}

const char* WbxRelationName(ZorWBEquationType type) {
    switch (type) {
        case ZorWBEqualZero:
            return "=";
        case ZorWBNotEqualZero:
            return "!=";
        case ZorWBLessEqualZero:
            return "<=";
        case ZorWBLessZero:
            return "<";
        case ZorWBGreaterEqualZero:
            return ">=";
        case ZorWBGreaterZero:
            return ">";
        case ZorWBMinimize:
            return "minimize";
        case ZorWBMaximize:
            return "maximize";
        default:
            return "none";
    }
}

namespace {

// Asks the nodes below root for their values children first, so that each
// request computes one node, and gathers the error word after each: a node
// clears a lone domain error before it is computed, so the word after the
// root alone would tell only of the nodes computed last. The branches of an
// IfThenElse are left to it, so that the branch it does not take is not
// computed.
unsigned int EvaluateChildrenFirst(const ZorWBExpression* root) {
    const ZorWBEnvironment& environment = root->GetEnvironment();
    std::vector<std::pair<const ZorWBExpression*, int>> stack{{root, 0}};
    std::unordered_set<const ZorWBExpression*> done;
    unsigned int error = 0;
    while (!stack.empty()) {
        auto& [node, next] = stack.back();
        int children =
            node->GetType() == ZorWBExpressionType::IfThenElse ? 1 : node->GetNbOfChildren();
        if (next < children) {
            const ZorWBExpression* child = node->GetChild(next++);
            if (child && !done.count(child)) stack.push_back({child, 0});
            continue;
        }
        if (done.insert(node).second) {
            environment.ClearError();
            node->GetValue();
            error |= environment.GetError();
        }
        stack.pop_back();
    }
    return error;
}

}  // namespace

WbxEquationResult WbxEvaluate(const ZorWBEquation& equation) {
    WbxEquationResult result;
    ZorWBEquationType type = equation.GetType();
    const ZorWBExpression* root = equation.GetRoot();
    result.errorWord = root ? EvaluateChildrenFirst(root) : 0;
    result.value = root ? root->GetValue() : ZorWBValue();
    result.relation = HasRelation(type);
    result.holds = result.relation
                       ? Holds(equation.GetFactory()->GetEnvironment(), type, result.value)
                       : ZorWBUnknown;
    result.valueText = ZorWBEquationPrinter::PrintValue(result.value).GetString();
    result.holdsText = ZorWBEquationPrinter::PrintValue(ZorWBValue(result.holds)).GetString();
    return result;
}

std::string WbxResultLine(const std::string& label, ZorWBEquationType type,
                          const WbxEquationResult& result) {
    std::string line = label + ": " + result.valueText;
    if (result.relation)
        line += std::string(" ") + WbxRelationName(type) + " 0 -> " + result.holdsText;
    else if (type != ZorWBEquationUnset)
        line += std::string(" (") + WbxRelationName(type) + ")";
    return line;
}

bool WbxWriteDerivative(WbxContext& context, ZorWBFactory& factory, ZorWBExpression* root,
                        ZorWBVariable* variable, const std::string& label) {
    std::string comment = "d " + label + " / d " + variable->GetName().GetString();
    ZorWBExpression* derivative = factory.CreateDerivative(root, variable);
    if (!derivative) {
        context.out << "/* " << comment << ": none */\n";
        return false;
    }
    context.out << ZorWBEquationPrinter::Print(derivative).GetString() << "; /* " << comment
                << " */\n";
    return true;
}
