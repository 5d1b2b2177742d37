#ifndef WBX_COMMAND_H
#define WBX_COMMAND_H

#include <istream>
#include <ostream>
#include <string>
#include <vector>

// Exit statuses of the tool.
namespace WbxExit {
constexpr int Success = 0;
constexpr int Failure = 1;  // diagnostics found, relation violated, replay differs
constexpr int Usage = 2;    // bad command line, unreadable file, bad value
constexpr int Limit = 3;    // a limit stopped the search before its end (solve)
}  // namespace WbxExit

// What a command sees: its arguments (after the command name), the two
// output streams, and where wbx edit reads its commands (null: the standard
// input, interactively when it is a terminal).
struct WbxContext {
    std::vector<std::string> arguments;
    std::ostream& out;
    std::ostream& err;
    std::istream* in = nullptr;
};

using WbxCommandFunction = int (*)(WbxContext& context);

struct WbxCommand {
    const char* name;
    const char* usage;
    const char* summary;
    WbxCommandFunction run;
};

// The commands, each in its own file (WbxCheckCommand.cpp, ...).
int WbxCheckCommand(WbxContext& context);
int WbxPrintCommand(WbxContext& context);
int WbxEvalCommand(WbxContext& context);
int WbxDiffCommand(WbxContext& context);
int WbxIntegrateCommand(WbxContext& context);
int WbxRootsCommand(WbxContext& context);
int WbxJsonCommand(WbxContext& context);
int WbxGraphCommand(WbxContext& context);
int WbxReplayWriteCommand(WbxContext& context);
int WbxTransformCommand(WbxContext& context);
int WbxReplayCommand(WbxContext& context);
int WbxHtmlCommand(WbxContext& context);
int WbxEditCommand(WbxContext& context);
int WbxSolveCommand(WbxContext& context);

// The tool's entry point, callable in-process by tests (which may give wbx
// edit its input).
int WbxMain(int argc, const char* const* argv, std::ostream& out, std::ostream& err,
            std::istream* in = nullptr);

// Writes "wbx: " and the message on the error stream and returns the usage
// status, the common ending of a command that cannot run.
int WbxUsageError(WbxContext& context, const std::string& message);

#endif
