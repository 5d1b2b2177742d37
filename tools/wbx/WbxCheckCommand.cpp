// wbx check FILE...: parses and checks model files and converts them into
// factory equations. Each diagnostic goes to the error stream (see
// WbxModelFile); each clean file gets a line "FILE: ok, N equations" on the
// standard output. Exit status: 0 when every file is clean, 1 when anything
// was reported, 2 when a file cannot be read or no file is given.

#include <algorithm>

#include "WbxCommand.h"
#include "WbxModelFile.h"

int WbxCheckCommand(WbxContext& context) {
    if (context.arguments.empty()) return WbxUsageError(context, "check needs a FILE");
    int status = WbxExit::Success;
    for (const std::string& path : context.arguments) {
        WbxModelFile file;
        int loaded = file.Load(context, path);
        if (loaded == WbxExit::Success) {
            int equations = file.GetFactory().GetNbOfEquations();
            context.out << path << ": ok, " << equations
                        << (equations == 1 ? " equation\n" : " equations\n");
        }
        status = std::max(status, loaded);
    }
    return status;
}
