#include <cstring>

#include "WbxCommand.h"
#include "qel/ZorQelGlobalParameters.h"

namespace {

int ShowHelp(WbxContext& context);
int ShowVersion(WbxContext& context);

const WbxCommand Commands[] = {
    {"--help", "wbx --help", "lists the commands", ShowHelp},
    {"--version", "wbx --version", "prints the library version and the default behaviour level",
     ShowVersion},
    {"check", "wbx check FILE...", "parses and checks model files", WbxCheckCommand},
    {"print", "wbx print FILE", "prints the equations of a model in the equation language",
     WbxPrintCommand},
    {"eval", "wbx eval FILE [--set NAME=VALUE]... [--json]",
     "evaluates every equation and tells whether its relation holds", WbxEvalCommand},
    {"diff", "wbx diff FILE --wrt NAME",
     "prints the derivative of every equation root with respect to a variable", WbxDiffCommand},
    {"integrate", "wbx integrate FILE --wrt NAME [--from A --to B]",
     "prints the antiderivative (or the definite integral) of every equation root",
     WbxIntegrateCommand},
    {"roots", "wbx roots FILE --wrt NAME",
     "prints the real roots of every polynomial equation root, isolated and approximated",
     WbxRootsCommand},
    {"json", "wbx json FILE [--version N] [-o OUT]",
     "writes the equation roots as one JSON document (stream version 0 to 3)", WbxJsonCommand},
    {"graph", "wbx graph FILE [--values | --model] [--out DIR | --dot]",
     "dumps the graph of every equation (or of the parsed model) as .WBGraph files, or as "
     "Graphviz DOT",
     WbxGraphCommand},
    {"replay-write", "wbx replay-write FILE -o OUT [--version N]",
     "writes the equation system's replay sections (input part)", WbxReplayWriteCommand},
    {"transform", "wbx transform FILE [--mode N] [--only NAME]... [--replay OUT]",
     "runs the symbolic transformations and prints the transformed system", WbxTransformCommand},
    {"replay", "wbx replay FILE", "repeats a recorded transformation and compares its output",
     WbxReplayCommand},
    {"html", "wbx html FILE [--set NAME=VALUE]... [--plot NAME=LOW:HIGH]... -o OUT.html",
     "writes a page with the system in MathML, its evaluation and plots of its roots",
     WbxHtmlCommand},
    {"edit", "wbx edit FILE",
     "edits the equations by statements, with undo and redo (help lists the commands)",
     WbxEditCommand},
    {"solve",
     "wbx solve FILE [--set NAME=VALUE]... [--eps E] [--timeout SECONDS] [--max-cells N] "
     "[--max-solutions N] [--threads N] [--json]",
     "finds boxes holding every solution of the relations, and proves the solutions",
     WbxSolveCommand},
};

int ShowHelp(WbxContext& context) {
    context.out << "usage: wbx COMMAND [ARGUMENTS]\n\ncommands:\n";
    for (const WbxCommand& command : Commands) {
        context.out << "  " << command.usage << "\n      " << command.summary << "\n";
    }
    return WbxExit::Success;
}

int ShowVersion(WbxContext& context) {
    unsigned int level =
        ZorQelGlobalParameters::GetGlobalParameters().GetQelFullOpenConfigurationLevel();
    context.out << "wbx (ZorWBx) " << ZORWBX_VERSION_TEXT << "\n";
    context.out << "default behaviour level: 0x" << std::hex << level << std::dec << " (" << level
                << ")\n";
    return WbxExit::Success;
}

}  // namespace

int WbxUsageError(WbxContext& context, const std::string& message) {
    context.err << "wbx: " << message << "\n";
    return WbxExit::Usage;
}

int WbxMain(int argc, const char* const* argv, std::ostream& out, std::ostream& err,
            std::istream* in) {
    WbxContext context{{}, out, err, in};
    if (argc < 2 || !argv || !argv[1]) {
        ShowHelp(context);
        return WbxExit::Usage;
    }
    for (int i = 2; i < argc; ++i)
        context.arguments.emplace_back(argv[i] ? argv[i] : "");
    for (const WbxCommand& command : Commands) {
        if (std::strcmp(command.name, argv[1]) == 0) return command.run(context);
    }
    return WbxUsageError(context,
                         std::string("unknown command '") + argv[1] + "' (see wbx --help)");
}
