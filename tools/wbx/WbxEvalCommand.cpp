// wbx eval FILE [--set NAME=VALUE]... [--json]: evaluates every equation
// root and tells whether its relation holds, one line per equation:
//   eq0: 3.5 = 0 -> false
// The verdict is four-state: true, false, unknown (the value leaves both
// possible) or empty (the value is empty). An equation without relation
// prints its value alone ("eq2: 3.5"), a minimised or maximised one its
// value and "(minimize)" or "(maximize)". When the error word (the bitwise OR
// of the environment's error word after each equation) is not 0 a last line
// "error word: N" follows.
//
// Values are in the base units (millimetres, radians). A variable that no
// --set gives a value ranges over the whole real line, so the relations
// that depend on it come out unknown. VALUE is written as WbxReadValue
// reads it (an integer, a real, [low, high], {a, b, c}, true or false).
//
// With --json the same is one JSON array of objects
//   {"name": "eq0", "relation": "=", "value": 3.5, "holds": "false"}
// ("relation" is "none", "minimize" or "maximize" without relation, and
// "holds" is then absent; "value" is a number for an integer or a finite
// real and the printed text otherwise), followed, when the error word is not
// 0, by the object {"errorWord": N}.
//
// Exit status: 0 unless a relation is false or empty, then 1; 2 for a bad
// command line, a file that cannot be read or has diagnostics, an unknown
// variable in --set or a bad value.

#include <cmath>
#include <cstdio>

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "WbxValueText.h"
#include "expressions/ZorWBEquation.h"
#include "output/ZorWBEquationPrinter.h"
#include "values/ZorWBValueFunctions.h"

namespace {

struct Options {
    std::string path;
    std::vector<std::string> settings;
    bool json = false;
};

int ReadOptions(WbxContext& context, Options& options) {
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--json") {
            options.json = true;
        } else if (argument == "--set") {
            if (i + 1 == arguments.size()) return WbxUsageError(context, "--set needs NAME=VALUE");
            options.settings.push_back(arguments[++i]);
        } else if (argument.rfind("--", 0) == 0 || !options.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            options.path = argument;
        }
    }
    if (options.path.empty()) return WbxUsageError(context, "eval needs a FILE");
    return WbxExit::Success;
}

// Gives every variable the whole real line, then the values of --set.
int AssignVariables(WbxContext& context, ZorWBFactory& factory,
                    const std::vector<std::string>& settings) {
    ZorWBValue whole(ZorWBRealIntervalType);
    whole.SetIndefinite();
    for (int i = 0; i < factory.GetNbOfVariables(); ++i)
        factory.GetVariable(i)->SetExprValue(whole);
    for (const std::string& setting : settings) {
        std::size_t equals = setting.find('=');
        if (equals == std::string::npos)
            return WbxUsageError(context, "--set needs NAME=VALUE, not '" + setting + "'");
        std::string name = setting.substr(0, equals), text = setting.substr(equals + 1);
        ZorWBVariable* variable = factory.GetVariable(ZorQelString(name));
        if (!variable) return WbxUsageError(context, "unknown variable '" + name + "' in --set");
        ZorWBValue value;
        if (!WbxReadValue(text, value)) {
            return WbxUsageError(context, "bad value '" + text + "' for " + name +
                                              " (an integer, a real, [low, high], {a, b, ...}, "
                                              "true or false)");
        }
        variable->SetExprValue(value);
    }
    return WbxExit::Success;
}

const char* RelationName(ZorWBEquationType type) {
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

std::string VerdictText(ZorWBBoolean verdict) {
    return ZorWBEquationPrinter::PrintValue(ZorWBValue(verdict)).GetString();
}

std::string JsonString(const std::string& text) {
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(c));
            quoted += escaped;
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

std::string JsonValue(const ZorWBValue& value) {
    std::string text = ZorWBEquationPrinter::PrintValue(value).GetString();
    bool number = value.GetType() == ZorWBIntegerType ||
                  (value.GetType() == ZorWBRealType && std::isfinite(value.GetAsReal()));
    return number ? text : JsonString(text);
}

}  // namespace

int WbxEvalCommand(WbxContext& context) {
    Options options;
    if (ReadOptions(context, options) != WbxExit::Success) return WbxExit::Usage;
    WbxModelFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    if (AssignVariables(context, factory, options.settings) != WbxExit::Success)
        return WbxExit::Usage;
    const ZorWBEnvironment& environment = factory.GetEnvironment();
    environment.ClearError();
    // Each evaluation clears a lone domain error first, so the word is
    // gathered after each equation.
    unsigned int error = 0;
    int status = WbxExit::Success;
    if (options.json) context.out << "[";
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        ZorWBEquation* equation = factory.GetEquation(i);
        ZorWBEquationType type = equation->GetType();
        const ZorWBValue& value = equation->GetRoot()->GetValue();
        std::string name = equation->GetName().GetString();
        std::string valueText = ZorWBEquationPrinter::PrintValue(value).GetString();
        bool relation = HasRelation(type);
        ZorWBBoolean verdict = relation ? Holds(environment, type, value) : ZorWBUnknown;
        error |= environment.GetError();
        if (relation && (verdict == ZorWBFalse || verdict == ZorWBEmpty)) status = WbxExit::Failure;
        if (options.json) {
            context.out << (i ? ",\n " : "") << "{\"name\": " << JsonString(name)
                        << ", \"relation\": \"" << RelationName(type)
                        << "\", \"value\": " << JsonValue(value);
            if (relation) context.out << ", \"holds\": \"" << VerdictText(verdict) << "\"";
            context.out << "}";
        } else {
            context.out << name << ": " << valueText;
            if (relation)
                context.out << " " << RelationName(type) << " 0 -> " << VerdictText(verdict);
            else if (type != ZorWBEquationUnset)
                context.out << " (" << RelationName(type) << ")";
            context.out << "\n";
        }
    }
    if (options.json) {
        if (error != 0)
            context.out << (factory.GetNbOfEquations() ? ",\n " : "") << "{\"errorWord\": " << error
                        << "}";
        context.out << "]\n";
    } else if (error != 0) {
        context.out << "error word: " << error << "\n";
    }
    return status;
}
