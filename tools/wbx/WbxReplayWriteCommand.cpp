// wbx replay-write FILE -o OUT [--version N]: the replay sections of a
// model's equation system, input part, into the file OUT, as an operator
// records its input (ZorWBEquations, text version N, 1 by default, as the
// symbolic transformations write it): "#!PART 1", then "#!VARIABLES",
// "#!EQUATIONS" and "#!VALUES", and "#!EQUATIONNAMES" when an equation has a
// name of its own. ZorWBEquations::Read rebuilds the system from the file.
//
// Exit status: 0; 2 for a bad command line, a file that cannot be read or
// has diagnostics, or an OUT that cannot be written.

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "output/ZorWBEquations.h"
#include "qel/ZorQelStream.h"

namespace {

struct Options {
    std::string path;
    std::string output;
    int version = 1;
};

int ReadOptions(WbxContext& context, Options& options) {
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-o") {
            if (i + 1 == arguments.size()) return WbxUsageError(context, "-o needs a file name");
            options.output = arguments[++i];
        } else if (argument == "--version") {
            const std::string version = i + 1 < arguments.size() ? arguments[++i] : "";
            if (version != "0" && version != "1")
                return WbxUsageError(context, "--version needs 0 or 1");
            options.version = version[0] - '0';
        } else if (argument.rfind("-", 0) == 0 || !options.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            options.path = argument;
        }
    }
    if (options.path.empty() || options.output.empty())
        return WbxUsageError(context, "replay-write needs FILE -o OUT");
    return WbxExit::Success;
}

}  // namespace

int WbxReplayWriteCommand(WbxContext& context) {
    Options options;
    if (ReadOptions(context, options) != WbxExit::Success) return WbxExit::Usage;
    WbxModelFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    ZorQelStream stream;
    if (!stream.OpenFile(options.output.c_str()))
        return WbxUsageError(context, "cannot write '" + options.output + "'");
    ZorWBEquations equations(file.GetFactory(), ZorQelStorage::InputPart, options.version);
    equations.Write(stream, true);
    equations.WriteEquationNames(stream);
    if (!stream.WriteSections(ZorQelStorage::InputPart))
        return WbxUsageError(context, "cannot write '" + options.output + "'");
    return WbxExit::Success;
}
