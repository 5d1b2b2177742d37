// Every command of the tool on files it cannot use (missing, a directory,
// empty, binary garbage, malformed text) and on absurd command lines: each
// run ends with its documented exit status, and every line it writes on the
// error stream is one clear message ("wbx: ..." or a located diagnostic).

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "WbxRunner.h"
#include "WbxTestFiles.h"

namespace {

std::string Garbage() {
    std::mt19937 random(7);
    std::string bytes;
    for (int i = 0; i < 4096; ++i)
        bytes.push_back(static_cast<char>(random() % 256));
    bytes += std::string("\0\xff;(((;", 7);
    return bytes;
}

struct Files {
    std::string missing = testing::TempDir() + "robust_no_such_file.wbx";
    std::string directory = testing::TempDir();
    std::string empty = ScratchFile("robust_empty.wbx", "");
    std::string comments = ScratchFile("robust_comments.wbx", "  /* nothing */\n\t\n/* open");
    std::string garbage = ScratchFile("robust_garbage.wbx", Garbage());
    std::string malformed =
        ScratchFile("robust_malformed.wbx", "x = = 3;\n((( y;\nz = 2 furlong;\nw =");
    std::string good = ScratchFile("robust_good.wbx", "2*x + 3*y = 12;\nx - y <= 1;\n");
    std::string output = testing::TempDir() + "robust_output";
};

// Each line of the error stream: "wbx: MESSAGE" or "PATH:LINE:COLUMN:
// MESSAGE [code N]" (a diagnostic without a place has no LINE:COLUMN).
void ExpectClearMessages(const WbxRun& run, const std::string& what) {
    static const std::regex usage("wbx: [^\n]+");
    static const std::regex diagnostic("[^\n]+:([0-9]+:[0-9]+:)? [^\n]+ \\[code -?[0-9]+\\]");
    std::istringstream lines(run.err);
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        ++count;
        EXPECT_TRUE(std::regex_match(line, usage) || std::regex_match(line, diagnostic))
            << what << ": unclear line '" << line << "'";
    }
    EXPECT_TRUE(run.err.empty() || run.err.back() == '\n') << what;
    if (run.status == 2) {
        EXPECT_GE(count, 1) << what << ": no message for status 2";
    }
}

struct Case {
    std::vector<std::string> arguments;
    int status;
};

void Check(const Case& c) {
    std::string what;
    for (const std::string& argument : c.arguments)
        what += argument + " ";
    WbxRun run = RunWbxArguments(c.arguments);
    EXPECT_EQ(run.status, c.status) << what << "\n" << run.err;
    ExpectClearMessages(run, what);
}

}  // namespace

TEST(WbxRobustness, EveryCommandOnFilesItCannotUse) {
    Files f;
    // Per command: its arguments around FILE, then the status for a missing
    // file, a directory, an empty file, blanks and comments, garbage, a
    // malformed model and a good one.
    struct Row {
        std::vector<std::string> before;
        std::vector<std::string> after;
        int missing, directory, empty, comments, garbage, malformed, good;
    };
    const Row rows[] = {
        {{"check"}, {}, 2, 2, 0, 0, 1, 1, 0},
        {{"print"}, {}, 2, 2, 0, 0, 2, 2, 0},
        {{"eval"}, {}, 2, 2, 0, 0, 2, 2, 0},
        {{"diff"}, {"--wrt", "x"}, 2, 2, 2, 2, 2, 2, 0},
        {{"integrate"}, {"--wrt", "x"}, 2, 2, 2, 2, 2, 2, 0},
        {{"integrate"}, {"--wrt", "x", "--from", "0", "--to", "1"}, 2, 2, 2, 2, 2, 2, 0},
        {{"roots"}, {"--wrt", "x"}, 2, 2, 2, 2, 2, 2, 1},
        {{"json"}, {}, 2, 2, 1, 1, 2, 2, 0},
        {{"graph"}, {"--dot"}, 2, 2, 1, 1, 2, 2, 0},
        {{"replay-write"}, {"-o", f.output}, 2, 2, 0, 0, 2, 2, 0},
        {{"transform"}, {}, 2, 2, 0, 0, 2, 2, 0},
        {{"replay"}, {}, 2, 2, 2, 2, 2, 2, 2},
        {{"html"}, {"-o", f.output + ".html"}, 2, 2, 0, 0, 2, 2, 0},
        {{"edit"}, {}, 2, 2, 0, 0, 2, 2, 0},
        {{"graph"}, {"--model", "--dot"}, 2, 2, 1, 1, 2, 2, 0},
        {{"solve"}, {"--max-cells", "200"}, 2, 2, 2, 2, 2, 2, 3},
    };
    for (const Row& row : rows) {
        const std::pair<const std::string*, int> files[] = {
            {&f.missing, row.missing}, {&f.directory, row.directory},
            {&f.empty, row.empty},     {&f.comments, row.comments},
            {&f.garbage, row.garbage}, {&f.malformed, row.malformed},
            {&f.good, row.good}};
        for (const auto& [path, status] : files) {
            std::vector<std::string> arguments = row.before;
            arguments.push_back(*path);
            arguments.insert(arguments.end(), row.after.begin(), row.after.end());
            Check({arguments, status});
        }
    }
}

TEST(WbxRobustness, AbsurdCommandLines) {
    Files f;
    const std::string& g = f.good;
    const Case cases[] = {
        {{"frobnicate"}, 2},
        {{"--bogus"}, 2},
        {{""}, 2},
        {{"check", "--bogus"}, 2},  // check reads every argument as a file
        {{"print"}, 2},
        {{"print", g, g}, 2},
        {{"eval", g, "--bogus"}, 2},
        {{"eval", g, "--set"}, 2},
        {{"eval", g, "--set", "x"}, 2},
        {{"eval", g, "--set", "nobody=1"}, 2},
        {{"eval", g, "--set", "x=1e999999"}, 2},
        {{"eval", g, "--set", "x=99999999999999999999999999"}, 0},
        {{"eval", g, "--set", "x=[1, 2"}, 2},
        {{"eval", g, "--set", "x=[3, 2]"}, 2},
        {{"eval", g, "--set", "x={}"}, 2},
        {{"eval", g, "--set", "x=nan"}, 2},
        {{"eval", g, "--set", "x=1", "--set", "x=2", "--json", "--json"}, 0},
        {{"eval", g, g}, 2},
        {{"diff", g}, 2},
        {{"diff", g, "--wrt"}, 2},
        {{"diff", g, "--wrt", "nobody"}, 2},
        {{"integrate", g}, 2},
        {{"integrate", g, "--wrt"}, 2},
        {{"integrate", g, g, "--wrt", "x"}, 2},
        {{"integrate", g, "--wrt", "x", "--from"}, 2},
        {{"integrate", g, "--wrt", "x", "--from", "1e999999", "--to", "1"}, 2},
        {{"integrate", g, "--wrt", "x", "--from", "{1, 2}", "--to", "1"}, 2},
        {{"integrate", g, "--wrt", "x", "--to", "1", "--to", "2", "--from", "0"}, 0},
        {{"roots", g}, 2},
        {{"roots", g, "--wrt"}, 2},
        {{"roots", g, "--wrt", "nobody"}, 2},
        {{"roots", g, "--wrt", "x", "--from", "0"}, 2},
        {{"json", g, "--version"}, 2},
        {{"json", g, "--version", "4"}, 2},
        {{"json", g, "--version", "-1"}, 2},
        {{"json", g, "--version", "99999999999999999999"}, 2},
        {{"json", g, "--version", "1", "--version", "2"}, 0},
        {{"json", g, "-o"}, 2},
        {{"json", g, "-o", f.directory}, 2},
        {{"json", "-o", f.output}, 2},
        {{"graph", g, "--out"}, 2},
        {{"graph", g, "--dot", "--out", f.directory}, 2},
        {{"graph", g, "--out", f.missing + "/deeper"}, 2},
        {{"graph", g, "--dot", "--dot", "--values"}, 0},
        {{"replay-write", g}, 2},
        {{"replay-write", g, "-o"}, 2},
        {{"replay-write", g, "-o", f.directory}, 2},
        {{"replay-write", g, "-o", f.output, "--version", "2"}, 2},
        {{"replay-write", g, "-o", f.output, "--version"}, 2},
        {{"transform", g, "--mode"}, 2},
        {{"transform", g, "--mode", "99999999999999999999"}, 2},
        {{"transform", g, "--mode", "4294967296"}, 2},
        {{"transform", g, "--mode", "-1"}, 2},
        {{"transform", g, "--mode", "4294967295"}, 0},
        {{"transform", g, "--mode", "2", "--mode", "6"}, 0},
        {{"transform", g, "--only", "nothing"}, 2},
        {{"transform", g, "--only"}, 2},
        {{"transform", g, "--replay", f.directory}, 2},
        {{"replay"}, 2},
        {{"replay", g, g}, 2},
        {{"html", g}, 2},
        {{"html", g, "-o"}, 2},
        {{"html", "-o", f.output + ".html"}, 2},
        {{"html", g, g, "-o", f.output + ".html"}, 2},
        {{"html", g, "-o", f.directory}, 2},
        {{"html", g, "-o", f.missing + "/deeper.html"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot", "x"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot", "x=1:0"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot", "x=1:1"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot", "x=a:b"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot", "x=0:1e999"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot", "x=[0, 1]:2"}, 2},
        {{"html", g, "-o", f.output + ".html", "--plot", "nobody=0:1"}, 2},
        {{"html", g, "-o", f.output + ".html", "--set", "nobody=1"}, 2},
        {{"html", g, "-o", f.output + ".html", "--set", "y=1", "--plot", "x=-1e300:1e300"}, 0},
        {{"html", g, "-o", f.output + ".html", "--plot", "x=-1:1", "--plot", "x=-1:1"}, 0},
        {{"edit"}, 2},
        {{"edit", g, g}, 2},
        {{"edit", "--bogus"}, 2},
        {{"graph", g, "--model", "--values"}, 2},
        {{"graph", g, "--model", "--out", f.missing + "/deeper"}, 2},
        {{"graph", g, "--model", "--dot", "--model"}, 0},
        {{"solve", g, g}, 2},
        {{"solve", g, "--eps", "-1e-8"}, 2},
        {{"solve", g, "--eps", "1e999"}, 2},
        {{"solve", g, "--timeout", "inf"}, 2},
        {{"solve", g, "--max-cells", "-3"}, 2},
        {{"solve", g, "--max-cells", "99999999999999999999"}, 2},
        {{"solve", g, "--max-solutions", "x"}, 2},
        {{"solve", g, "--threads", "-1"}, 2},
        {{"solve", g, "--set", "x=[2, 1]"}, 2},
        {{"solve", g, "--max-cells", "50", "--threads", "2", "--json", "--json"}, 3},
    };
    for (const Case& c : cases)
        Check(c);
}

// The real executable: its exit status is the command's, and a usage error
// or an unreadable file gives one line on its error stream.
TEST(WbxRobustness, TheExecutableEndsWithTheDocumentedStatus) {
    Files f;
    std::string err = testing::TempDir() + "robust_stderr";
    auto run = [&](const std::string& arguments) {
        std::string command =
            std::string("'") + ZORWBX_WBX_PATH + "' " + arguments + " >/dev/null 2>'" + err + "'";
        int raw = std::system(command.c_str());
        std::ifstream stream(err);
        std::string text((std::istreambuf_iterator<char>(stream)),
                         std::istreambuf_iterator<char>());
        return std::make_pair(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, text);
    };
    auto lines = [](const std::string& text) {
        return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    };
    auto [none, noneText] = run("");
    EXPECT_EQ(none, 2);
    auto [unknown, unknownText] = run("frobnicate");
    EXPECT_EQ(unknown, 2);
    EXPECT_EQ(lines(unknownText), 1) << unknownText;
    auto [missing, missingText] = run("print '" + f.missing + "'");
    EXPECT_EQ(missing, 2);
    EXPECT_EQ(missingText, "wbx: cannot read '" + f.missing + "': No such file or directory\n");
    auto [garbage, garbageText] = run("check '" + f.garbage + "'");
    EXPECT_EQ(garbage, 1);
    EXPECT_GE(lines(garbageText), 1);
    auto [mode, modeText] = run("transform '" + f.good + "' --mode 99999999999999999999");
    EXPECT_EQ(mode, 2);
    EXPECT_EQ(modeText, "wbx: bad mode '99999999999999999999'\n");
    auto [good, goodText] = run("eval '" + f.good + "' --set x=3 --set y=2");
    EXPECT_EQ(good, 0) << goodText;
}
