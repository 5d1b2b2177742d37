// wbx eval FILE [--set NAME=VALUE]... [--json]: evaluates every equation
// root and tells whether its relation holds, one line per equation:
//   eq0: 3.5 = 0 -> false
// The verdict is four-state: true, false, unknown (the value leaves both
// possible) or empty (the value is empty). An equation without relation
// prints its value alone ("eq2: 3.5"), a minimised or maximised one its
// value and "(minimize)" or "(maximize)". When the error word (the bitwise OR
// of the errors that computing each node reported) is not 0 a last line
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

#include "WbxCommand.h"
#include "WbxEvaluation.h"
#include "WbxModelFile.h"
#include "WbxValueText.h"
#include "expressions/ZorWBEquation.h"
#include "output/ZorWBEquationPrinter.h"

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

std::string JsonValue(const ZorWBValue& value) {
    std::string text = ZorWBEquationPrinter::PrintValue(value).GetString();
    bool number = value.GetType() == ZorWBIntegerType ||
                  (value.GetType() == ZorWBRealType && std::isfinite(value.GetAsReal()));
    return number ? text : WbxJsonString(text);
}

}  // namespace

int WbxEvalCommand(WbxContext& context) {
    Options options;
    if (ReadOptions(context, options) != WbxExit::Success) return WbxExit::Usage;
    WbxModelFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    if (WbxAssignVariables(context, factory, options.settings) != WbxExit::Success)
        return WbxExit::Usage;
    factory.GetEnvironment().ClearError();
    unsigned int error = 0;
    int status = WbxExit::Success;
    if (options.json) context.out << "[";
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        ZorWBEquation* equation = factory.GetEquation(i);
        ZorWBEquationType type = equation->GetType();
        WbxEquationResult result = WbxEvaluate(*equation);
        std::string name = equation->GetName().GetString();
        error |= result.errorWord;
        if (result.relation && (result.holds == ZorWBFalse || result.holds == ZorWBEmpty))
            status = WbxExit::Failure;
        if (options.json) {
            context.out << (i ? ",\n " : "") << "{\"name\": " << WbxJsonString(name)
                        << ", \"relation\": \"" << WbxRelationName(type)
                        << "\", \"value\": " << JsonValue(result.value);
            if (result.relation) context.out << ", \"holds\": \"" << result.holdsText << "\"";
            context.out << "}";
        } else {
            context.out << WbxResultLine(name, type, result) << "\n";
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
