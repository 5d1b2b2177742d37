// wbx transform FILE [--mode N] [--only NAME]... [--replay OUT]: runs the
// symbolic transformations over a model and prints the transformed system in
// the equation language, one equation a line; with mode bit 4 (16) a last
// line says "inconsistent" or "consistent", as the operator's check found.
//
// N is the operator's mode word (1 linear marks, 2 elimination and
// substitution, 4 simplification, 8 binarisation, 16 the check); without
// --mode it is 6, elimination and simplification, what a user asking to
// transform a system most often wants. --only names an equation to simplify
// (by its name, eq0, eq1, ... for unnamed ones); --replay records the run's
// input and output sections into OUT, for wbx replay.
//
// Exit status: 0, or 2 for a bad command line, a file that cannot be read or
// has diagnostics, an unknown equation name and an OUT that cannot be
// written.

#include <cstdlib>

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "expressions/ZorWBEquation.h"
#include "output/ZorWBEquationPrinter.h"
#include "qel/ZorQelGlobalParameters.h"
#include "qel/ZorQelStream.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

namespace {

constexpr unsigned int DefaultMode = 6;

struct Options {
    std::string path;
    unsigned int mode = DefaultMode;
    std::vector<std::string> only;
    std::string replay;
};

bool ReadMode(const std::string& text, unsigned int& mode) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos ||
        text.size() > 10)
        return false;
    unsigned long long value = std::strtoull(text.c_str(), nullptr, 10);
    if (value > 0xFFFFFFFFull) return false;
    mode = static_cast<unsigned int>(value);
    return true;
}

int ReadOptions(WbxContext& context, Options& options) {
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool valued = argument == "--mode" || argument == "--only" || argument == "--replay";
        if (valued && i + 1 == arguments.size())
            return WbxUsageError(context, argument + " needs a value");
        if (argument == "--mode") {
            if (!ReadMode(arguments[++i], options.mode))
                return WbxUsageError(context, "bad mode '" + arguments[i] + "'");
        } else if (argument == "--only") {
            options.only.push_back(arguments[++i]);
        } else if (argument == "--replay") {
            options.replay = arguments[++i];
        } else if (argument.rfind("--", 0) == 0 || !options.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            options.path = argument;
        }
    }
    if (options.path.empty()) return WbxUsageError(context, "transform needs a FILE");
    return WbxExit::Success;
}

}  // namespace

int WbxTransformCommand(WbxContext& context) {
    Options options;
    if (int status = ReadOptions(context, options)) return status;
    WbxModelFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    unsigned int level =
        ZorQelGlobalParameters::GetGlobalParameters().GetQelFullOpenConfigurationLevel();
    ZorWBSymbolicTransformations* transformations =
        ZorCreateWBSymbolicTransformations(level, factory);
    if (!transformations) return WbxUsageError(context, "out of memory");
    int status = WbxExit::Success;
    for (const std::string& name : options.only) {
        ZorWBEquation* equation = factory.GetEquationByName(ZorQelString(name));
        if (!equation) {
            status = WbxUsageError(context, "unknown equation '" + name + "' in --only");
            break;
        }
        transformations->SetEquationToSimplify(equation->GetId());
    }
    ZorQelStream replay;
    if (status == WbxExit::Success && !options.replay.empty()) {
        if (replay.OpenFile(ZorQelString(options.replay))) {
            transformations->SetReplayStream(&replay);
        } else {
            status = WbxUsageError(context, "cannot write '" + options.replay + "'");
        }
    }
    if (status == WbxExit::Success) {
        transformations->SetMode(options.mode);
        transformations->Run();
        context.out << ZorWBEquationPrinter::Print(factory).GetString();
        if (options.mode & ZorWBSymbolicTransformations::CheckInequalitiesMode)
            context.out << (transformations->AreInequalitiesInconsistent() ? "inconsistent\n"
                                                                           : "consistent\n");
    }
    ZorRemove(transformations);
    return status;
}
