// wbx edit end to end: scripted sessions in process and through the
// executable's standard input, the written file checked by wbx check, and
// the interactive mode through a pseudo-terminal.

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "WbxRunner.h"
#include "WbxTestFiles.h"

namespace {

namespace fs = std::filesystem;

fs::path Scratch(const std::string& name, const std::string& text) {
    fs::path directory = fs::path(testing::TempDir()) / "wbx_edit";
    fs::create_directories(directory);
    fs::path path = directory / name;
    std::ofstream(path) << text;
    return path;
}

}  // namespace

TEST(WbxEdit, AScriptedSessionEditsUndoesRedoesAndWritesAFileThatChecks) {
    fs::path model = Scratch("session.wbx", "2*x + 3*y = 12;\nx - y <= 1;\n");
    fs::path written = model.parent_path() / "session_out.wbx";
    std::string script =
        "list\n"
        "add z = 2 * x + 1 mm;\n"
        "replace 1 x + y = 4 cm;\n"
        "add x = = 3;\n"
        "# a comment, then a blank line\n"
        "\n"
        "undo\n"
        "undo\n"
        "redo\n"
        "rename x u\n"
        "set u = 3\n"
        "set y = [0, 1]\n"
        "eval\n"
        "diff u\n"
        "delete 2\n"
        "list\n"
        "write " +
        written.string() +
        "\n"
        "quit\n"
        "list\n";
    WbxRun run = RunWbxArguments({"edit", model.string()}, script);
    EXPECT_EQ(run.status, 1);  // the bad statement failed
    EXPECT_EQ(run.out,
              "1: 2 * x + 3 * y = 12;\n"
              "2: x - y <= 1;\n"
              "3: z = 2 * x + 1;\n"
              "1: x + y = 40;\n"
              "undone: replace 1\n"
              "undone: add 3\n"
              "redone: add 3\n"
              "renamed x to u\n"
              "u = 3\n"
              "y = [0.0, 1.0]\n"
              "1: [-6.0, -3.0] = 0 -> false\n"
              "2: [1.0, 2.0] <= 0 -> false\n"
              "3: [-3.4028234663852886e+38, 3.4028234663852886e+38] = 0 -> unknown\n"
              "2; /* d 1 / d u */\n"
              "1; /* d 2 / d u */\n"
              "-1 * 2; /* d 3 / d u */\n"
              "deleted 2: u - y <= 1;\n"
              "1: 2 * u + 3 * y = 12;\n"
              "2: z = 2 * u + 1;\n"
              "wrote " +
                  written.string() + " (2 equations)\n");
    EXPECT_EQ(run.err, "edit:1:5: syntax error, unexpected = [code -1]\n");
    EXPECT_EQ(ReadFile(written), "2 * u + 3 * y = 12;\nz = 2 * u + 1;\n");
    WbxRun check = RunWbx({"check", written.string().c_str()});
    EXPECT_EQ(check.status, 0) << check.err;
    // It reads back to the same system.
    WbxRun reread = RunWbx({"print", written.string().c_str()});
    EXPECT_EQ(reread.out, ReadFile(written));
    // The file edited is untouched until written without a name.
    EXPECT_EQ(ReadFile(model), "2*x + 3*y = 12;\nx - y <= 1;\n");
    EXPECT_EQ(RunWbxArguments({"edit", model.string()}, "delete 1\nwrite\n").status, 0);
    EXPECT_EQ(ReadFile(model), "x - y <= 1;\n");
}

TEST(WbxEdit, MistakesAreReportedAndTheSessionGoesOn) {
    fs::path model = Scratch("mistakes.wbx", "x + y = 3;\n");
    const std::pair<const char*, const char*> cases[] = {
        {"frobnicate", "wbx: unknown command 'frobnicate' (help lists the commands)\n"},
        {"replace 2 x = 1;", "wbx: no equation 2 (the system holds 1)\n"},
        {"replace x = 1;", "wbx: replace needs N STATEMENT\n"},
        {"delete", "wbx: delete needs N\n"},
        {"delete 1 2", "wbx: delete needs N alone, not '1 2'\n"},
        {"delete 0", "wbx: no equation 0 (the system holds 1)\n"},
        {"rename x", "wbx: rename needs OLD NEW\n"},
        {"rename x y", "edit: 'y' names a variable already [code -1]\n"},
        {"rename q r", "edit: unknown variable 'q' [code -1]\n"},
        {"set x", "wbx: set needs NAME=VALUE, not 'x'\n"},
        {"set q = 1", "wbx: unknown variable 'q' in set\n"},
        {"set x = [2, 1]",
         "wbx: bad value ' [2, 1]' for x (an integer, a real, [low, high], {a, b, ...}, true or "
         "false)\n"},
        {"diff q", "wbx: unknown variable 'q' in diff\n"},
        {"undo", "edit: nothing to undo [code -1]\n"},
        {"redo", "edit: nothing to redo [code -1]\n"},
        {"add a = 1; b = 2;", "edit: expected one statement, the text holds 2 [code -1]\n"},
        {"add x = 3 furlong;", "edit:1:7: semantic error, unknown unit [code 22]\n"},
        {"write /", "edit: cannot write '/' [code -1]\n"},
    };
    for (const auto& [command, message] : cases) {
        WbxRun run = RunWbxArguments({"edit", model.string()}, std::string(command) + "\nlist\n");
        EXPECT_EQ(run.status, 1) << command;
        EXPECT_EQ(run.err, message) << command;
        EXPECT_EQ(run.out, "1: x + y = 3;\n") << command;
    }
    WbxRun help = RunWbxArguments({"edit", model.string()}, "help\n");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("  undo, redo "), std::string::npos);
}

TEST(WbxEdit, TheExecutableReadsCommandsFromItsStandardInput) {
    fs::path model = Scratch("piped.wbx", "x = 2;\n");
    fs::path out = model.parent_path() / "piped.out";
    std::string command = "printf 'add y = x + 1;\\neval\\n' | '" + std::string(ZORWBX_WBX_PATH) +
                          "' edit '" + model.string() + "' >'" + out.string() + "' 2>&1";
    int raw = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(raw));
    EXPECT_EQ(WEXITSTATUS(raw), 0);
    EXPECT_EQ(ReadFile(out),
              "2: y = x + 1;\n"
              "1: [-3.4028234663852886e+38, 3.4028234663852886e+38] = 0 -> unknown\n"
              "2: [-3.4028234663852886e+38, 3.4028234663852886e+38] = 0 -> unknown\n");
}

namespace {

// The tool run at a pseudo-terminal: what it writes is read with a time
// limit, so that a test never waits for ever.
class Terminal {
  public:
    explicit Terminal(const std::vector<std::string>& arguments) {
        _pid = forkpty(&_master, nullptr, nullptr, nullptr);
        if (_pid == 0) {
            std::vector<char*> argv;
            for (const std::string& argument : arguments)
                argv.push_back(const_cast<char*>(argument.c_str()));
            argv.push_back(nullptr);
            execv(argv[0], argv.data());
            _exit(127);
        }
    }
    ~Terminal() {
        if (_pid > 0 && !_finished) {
            kill(_pid, SIGKILL);
            waitpid(_pid, nullptr, 0);
        }
        if (_master >= 0) close(_master);
    }

    bool IsRunning() const { return _pid > 0; }

    void Type(const std::string& keys) {
        ssize_t written = write(_master, keys.data(), keys.size());
        EXPECT_EQ(written, static_cast<ssize_t>(keys.size()));
    }

    // Reads until text comes out after what the last wait saw, for at most
    // 20 s.
    bool WaitFor(const std::string& text) {
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < deadline) {
            std::size_t found = _screen.find(text, _seen);
            if (found != std::string::npos) {
                _seen = found + text.size();
                return true;
            }
            pollfd ready{_master, POLLIN, 0};
            if (poll(&ready, 1, 100) <= 0) continue;
            char buffer[4096];
            ssize_t count = read(_master, buffer, sizeof buffer);
            if (count <= 0) return false;
            _screen.append(buffer, static_cast<std::size_t>(count));
        }
        return false;
    }

    // The exit status, waiting at most 20 s (the output is drained meanwhile).
    int Finish() {
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < deadline) {
            int status = 0;
            if (waitpid(_pid, &status, WNOHANG) == _pid) {
                _finished = true;
                return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            }
            pollfd ready{_master, POLLIN, 0};
            char buffer[4096];
            ssize_t count = poll(&ready, 1, 100) > 0 ? read(_master, buffer, sizeof buffer) : 0;
            if (count > 0) _screen.append(buffer, static_cast<std::size_t>(count));
        }
        return -1;
    }

    const std::string& Screen() const { return _screen; }

  private:
    int _master = -1;
    pid_t _pid = -1;
    bool _finished = false;
    std::string _screen;
    std::size_t _seen = 0;
};

// What the line editor writes for a prompt: back to the start of the line,
// the prompt, and a clear to the end of the line.
const std::string Prompt = "\rwbx> \x1b[K";

}  // namespace

TEST(WbxEdit, AtATerminalItPromptsAndRecallsTheHistory) {
    fs::path model = Scratch("terminal.wbx", "x + y = 3;\n");
    Terminal terminal({ZORWBX_WBX_PATH, "edit", model.string()});
    ASSERT_TRUE(terminal.IsRunning());
    ASSERT_TRUE(terminal.WaitFor(Prompt)) << terminal.Screen();
    EXPECT_NE(terminal.Screen().find("editing " + model.string()), std::string::npos);
    terminal.Type("add z = 1;\r");
    ASSERT_TRUE(terminal.WaitFor("2: z = 1;\r\n" + Prompt)) << terminal.Screen();
    // Up recalls the line, Left and Backspace edit it: "add z = 2;".
    terminal.Type(
        "\x1b[A\x1b[D\x7f"
        "2\r");
    ASSERT_TRUE(terminal.WaitFor("3: z = 2;\r\n" + Prompt)) << terminal.Screen();
    // Up twice goes back to the first line, Down to the second.
    terminal.Type("\x1b[A\x1b[A\x1b[B\r");
    ASSERT_TRUE(terminal.WaitFor("4: z = 2;\r\n" + Prompt)) << terminal.Screen();
    terminal.Type("typed then abandoned\x03");
    ASSERT_TRUE(terminal.WaitFor("^C\r\n" + Prompt)) << terminal.Screen();
    terminal.Type("list\r");
    ASSERT_TRUE(terminal.WaitFor("4: z = 2;\r\n" + Prompt)) << terminal.Screen();
    terminal.Type("quit\r");
    EXPECT_EQ(terminal.Finish(), 0);
}

TEST(WbxEdit, AtATerminalControlDEndsTheSession) {
    fs::path model = Scratch("terminal_eof.wbx", "x = 1;\n");
    Terminal terminal({ZORWBX_WBX_PATH, "edit", model.string()});
    ASSERT_TRUE(terminal.WaitFor(Prompt)) << terminal.Screen();
    terminal.Type("frobnicate\r");
    ASSERT_TRUE(terminal.WaitFor(Prompt)) << terminal.Screen();
    terminal.Type("\x04");
    EXPECT_EQ(terminal.Finish(), 1);
}
