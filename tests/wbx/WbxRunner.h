#ifndef TESTS_WBX_RUNNER_H
#define TESTS_WBX_RUNNER_H

#include <sstream>
#include <string>
#include <vector>

#include "WbxCommand.h"

// The outcome of one in-process run of the tool.
struct WbxRun {
    int status;
    std::string out;
    std::string err;
};

// Runs "wbx ARGUMENTS..." in this process and captures both streams; the
// command reads input where it reads (wbx edit), never the real standard
// input.
inline WbxRun RunWbx(std::vector<const char*> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), "wbx");
    std::ostringstream out, err;
    std::istringstream in(input);
    int status = WbxMain(static_cast<int>(arguments.size()), arguments.data(), out, err, &in);
    return {status, out.str(), err.str()};
}

// The same with arguments held as strings.
inline WbxRun RunWbxArguments(const std::vector<std::string>& arguments,
                              const std::string& input = "") {
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    return RunWbx(pointers, input);
}

#endif
