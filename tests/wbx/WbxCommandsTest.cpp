#include <gtest/gtest.h>

#include <string>

#include "WbxRunner.h"
#include "WbxTestFiles.h"

namespace {

WbxRun Wbx(const std::vector<std::string>& arguments) {
    return RunWbxArguments(arguments);
}

}  // namespace

TEST(WbxCheck, CleanFilesDiagnosticsAndUnreadableFiles) {
    for (const char* name : {"linkage.wbx", "two_statements.wbx", "conditional.wbx"}) {
        WbxRun run = Wbx({"check", ExamplePath(name)});
        EXPECT_EQ(run.status, 0) << name << run.err;
        EXPECT_EQ(run.err, "");
    }
    WbxRun clean = Wbx({"check", ExamplePath("two_statements.wbx")});
    EXPECT_EQ(clean.out, ExamplePath("two_statements.wbx") + ": ok, 2 equations\n");

    std::string bad = ScratchFile("bad.wbx", "x = ;\ny = 3 furlong;\nz = 5 mm\n");
    WbxRun diagnostics = Wbx({"check", bad});
    EXPECT_EQ(diagnostics.status, 1);
    EXPECT_EQ(diagnostics.out, "");
    EXPECT_EQ(diagnostics.err, bad + ":1:5: syntax error, unexpected semi-colon [code 7]\n" + bad +
                                   ":4:1: syntax error, unexpected end of input [code 1]\n" + bad +
                                   ":2:7: semantic error, unknown unit [code 22]\n");

    // What the check accepts but the factory cannot build is reported too.
    std::string arity = ScratchFile("arity.wbx", "x = 1;\n  y = sin(x, 2);\n");
    WbxRun conversion = Wbx({"check", arity});
    EXPECT_EQ(conversion.status, 1);
    EXPECT_EQ(conversion.err,
              arity + ":2:7: conversion error, the factory cannot build this [code -1]\n");

    WbxRun missing = Wbx({"check", "no/such/file.wbx"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "wbx: cannot read 'no/such/file.wbx': No such file or directory\n");
    WbxRun folder = Wbx({"check", testing::TempDir()});
    EXPECT_EQ(folder.status, 2);
    EXPECT_EQ(folder.err, "wbx: cannot read '" + testing::TempDir() + "': Is a directory\n");
    EXPECT_EQ(Wbx({"check"}).status, 2);
    // The worst file decides.
    EXPECT_EQ(Wbx({"check", ExamplePath("linkage.wbx"), bad}).status, 1);
    EXPECT_EQ(Wbx({"check", bad, "no/such/file.wbx", ExamplePath("linkage.wbx")}).status, 2);
}

TEST(WbxPrint, PrintsEquationsThatReadBackTheSame) {
    WbxRun two = Wbx({"print", ExamplePath("two_statements.wbx")});
    EXPECT_EQ(two.status, 0);
    EXPECT_EQ(two.out, "2 * x + 3 * y = 12;\nx - y <= 1;\n");
    WbxRun linkage = Wbx({"print", ExamplePath("linkage.wbx")});
    EXPECT_EQ(linkage.status, 0);
    EXPECT_EQ(
        linkage.out.substr(0, 82),
        "px = 300 * cos(a1) + 250 * cos(a1 + a2);\npy = 300 * sin(a1) + 250 * sin(a1 + a2);\n");
    EXPECT_NE(linkage.out.find("a2 <= 2.6179938779914944;\n"), std::string::npos);  // 150 deg
    EXPECT_NE(linkage.out.find("py <= 500.0;\n"), std::string::npos);               // 0.5 m
    // Printing the printed text again changes nothing.
    for (const char* name : {"linkage.wbx", "two_statements.wbx", "conditional.wbx"}) {
        WbxRun first = Wbx({"print", ExamplePath(name)});
        std::string again = ScratchFile(std::string("again_") + name, first.out);
        WbxRun second = Wbx({"print", again});
        EXPECT_EQ(second.status, 0) << second.err;
        EXPECT_EQ(second.out, first.out) << name;
    }
    EXPECT_EQ(Wbx({"print"}).status, 2);
    EXPECT_EQ(Wbx({"print", ExamplePath("linkage.wbx"), ExamplePath("linkage.wbx")}).status, 2);
    WbxRun bad = Wbx({"print", ScratchFile("print_bad.wbx", "x = ;\n")});
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.out, "");
}

TEST(WbxEval, RelationsValuesAndExitStatus) {
    std::string two = ExamplePath("two_statements.wbx");
    WbxRun holds = Wbx({"eval", two, "--set", "x=3", "--set", "y=2"});
    EXPECT_EQ(holds.status, 0);
    EXPECT_EQ(holds.out, "eq0: 0 = 0 -> true\neq1: 0 <= 0 -> true\n");
    WbxRun fails = Wbx({"eval", two, "--set", "x=1.5", "--set", "y=0"});
    EXPECT_EQ(fails.status, 1);
    EXPECT_EQ(fails.out, "eq0: -9.0 = 0 -> false\neq1: 0.5 <= 0 -> false\n");
    // An interval and an unset variable leave relations unknown.
    WbxRun ranges = Wbx({"eval", two, "--set", "x=[0, 1]"});
    EXPECT_EQ(ranges.status, 0);
    EXPECT_EQ(ranges.out.substr(0, 5), "eq0: ");
    EXPECT_NE(ranges.out.find("= 0 -> unknown\n"), std::string::npos);
    WbxRun enumeration = Wbx({"eval", two, "--set", "x={3, 4}", "--set", "y=2"});
    EXPECT_EQ(enumeration.out, "eq0: {0, 2} = 0 -> unknown\neq1: {0, 1} <= 0 -> unknown\n");

    std::string conditional = ExamplePath("conditional.wbx");
    EXPECT_EQ(Wbx({"eval", conditional, "--set", "t=2.5", "--set", "c=5", "--set", "w=12"}).out,
              "eq0: 0 = 0 -> true\neq1: -1 <= 0 -> true\n");
    WbxRun thick = Wbx({"eval", conditional, "--set", "t=4", "--set", "c=5", "--set", "w=12"});
    EXPECT_EQ(thick.status, 1);
    EXPECT_EQ(thick.out, "eq0: -3 = 0 -> false\neq1: -1 <= 0 -> true\n");

    std::string linkage = ExamplePath("linkage.wbx");
    WbxRun arm = Wbx({"eval", linkage, "--set", "a1=0.5", "--set", "a2=1", "--set", "px=[250, 300]",
                      "--set", "py=[350, 450]"});
    EXPECT_EQ(arm.status, 0) << arm.out;
    EXPECT_NE(arm.out.find("eq0: [-30.95906898403757, 19.04093101596243] = 0 -> unknown\n"),
              std::string::npos)
        << arm.out;
    EXPECT_NE(arm.out.find("eq3: -1.0707963267948966 <= 0 -> true\n"), std::string::npos);
    EXPECT_NE(arm.out.find("eq4: 1.0 >= 0 -> true\n"), std::string::npos) << arm.out;

    // Other relations, and equations without one.
    std::string kinds = ScratchFile("kinds.wbx", "x != 1; x < 1; x > 1; x >= 2; x;\n");
    EXPECT_EQ(Wbx({"eval", kinds, "--set", "x=2"}).out,
              "eq0: 1 != 0 -> true\neq1: 1 < 0 -> false\neq2: 1 > 0 -> true\n"
              "eq3: 0 >= 0 -> true\neq4: 2\n");
}

TEST(WbxEval, JsonAndTheErrorWord) {
    std::string two = ExamplePath("two_statements.wbx");
    WbxRun json = Wbx({"eval", two, "--json", "--set", "x=3", "--set", "y=[1, 2]"});
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(json.out,
              "[{\"name\": \"eq0\", \"relation\": \"=\", \"value\": \"[-3.0, 0.0]\", \"holds\": "
              "\"unknown\"},\n {\"name\": \"eq1\", \"relation\": \"<=\", \"value\": \"[0.0, "
              "1.0]\", \"holds\": \"unknown\"}]\n");
    std::string domain = ScratchFile("domain.wbx", "sqrt(x) = 1;\ny;\n");
    WbxRun text = Wbx({"eval", domain, "--set", "x=-4", "--set", "y=2.5"});
    EXPECT_EQ(text.status, 1);
    EXPECT_NE(text.out.find("eq1: 2.5\nerror word: 1\n"), std::string::npos) << text.out;
    WbxRun word = Wbx({"eval", domain, "--set", "x=-4", "--set", "y=2.5", "--json"});
    EXPECT_NE(word.out.find("{\"name\": \"eq1\", \"relation\": \"none\", \"value\": 2.5},\n "
                            "{\"errorWord\": 1}]\n"),
              std::string::npos)
        << word.out;
    EXPECT_EQ(Wbx({"eval", ScratchFile("empty.wbx", "/* nothing */"), "--json"}).out, "[]\n");
}

TEST(WbxEval, CommandLineMistakesAreUsageErrors) {
    std::string two = ExamplePath("two_statements.wbx");
    const std::pair<std::vector<std::string>, std::string> mistakes[] = {
        {{"eval"}, "wbx: eval needs a FILE\n"},
        {{"eval", two, "--set"}, "wbx: --set needs NAME=VALUE\n"},
        {{"eval", two, "--set", "x"}, "wbx: --set needs NAME=VALUE, not 'x'\n"},
        {{"eval", two, "--set", "q=1"}, "wbx: unknown variable 'q' in --set\n"},
        {{"eval", two, "--set", "x=abc"},
         "wbx: bad value 'abc' for x (an integer, a real, [low, high], {a, b, ...}, true or "
         "false)\n"},
        {{"eval", two, "--frobnicate"}, "wbx: unexpected argument '--frobnicate'\n"},
        {{"eval", two, two}, "wbx: unexpected argument '" + two + "'\n"},
        {{"eval", "no/such/file.wbx"},
         "wbx: cannot read 'no/such/file.wbx': No such file or directory\n"},
    };
    for (const auto& [arguments, message] : mistakes) {
        WbxRun run = Wbx(arguments);
        EXPECT_EQ(run.status, 2) << message;
        EXPECT_EQ(run.err, message);
        EXPECT_EQ(run.out, "");
    }
    for (const char* value : {"", "1e999", "[2, 1]", "[1]", "[1, 2, 3]", "{}", "{1,,2}", "inf",
                              "nan", "0x10", "+-1", "TRUE", "[a, b]"}) {
        WbxRun run = Wbx({"eval", two, "--set", std::string("x=") + value});
        EXPECT_EQ(run.status, 2) << value;
    }
    for (const char* value : {"-7", "+3", " 2 ", ".5", "1e3", "99999999999", "[ -1 , 2.5 ]",
                              "{1, 2.5}", "true", "false"}) {
        WbxRun run = Wbx({"eval", two, "--set", std::string("x=") + value, "--set", "y=0"});
        EXPECT_NE(run.status, 2) << value << run.err;
    }
}

TEST(WbxDiff, DerivativesOfEveryRoot) {
    WbxRun two = Wbx({"diff", ExamplePath("two_statements.wbx"), "--wrt", "y"});
    EXPECT_EQ(two.status, 0);
    EXPECT_EQ(two.out, "3; /* d eq0 / d y */\n-1; /* d eq1 / d y */\n");
    WbxRun linkage = Wbx({"diff", ExamplePath("linkage.wbx"), "--wrt", "a2"});
    EXPECT_EQ(linkage.status, 0);
    EXPECT_EQ(linkage.out.substr(0, linkage.out.find('\n')),
              "-1 * (250 * -sin(a1 + a2)); /* d eq0 / d a2 */");
    // The printed derivatives are themselves a model.
    std::string derivatives = ScratchFile("derivatives.wbx", linkage.out);
    EXPECT_EQ(Wbx({"check", derivatives}).status, 0);

    EXPECT_EQ(Wbx({"diff", ExamplePath("linkage.wbx")}).status, 2);
    EXPECT_EQ(Wbx({"diff", ExamplePath("linkage.wbx"), "--wrt"}).status, 2);
    WbxRun unknown = Wbx({"diff", ExamplePath("linkage.wbx"), "--wrt", "q"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "wbx: unknown variable 'q'\n");
    EXPECT_EQ(Wbx({"diff", "no/such/file.wbx", "--wrt", "x"}).status, 2);
}

TEST(Wbx, HelpListsEveryCommand) {
    WbxRun help = RunWbx({"--help"});
    for (const char* usage :
         {"wbx check FILE...", "wbx print FILE", "wbx eval FILE [--set NAME=VALUE]... [--json]",
          "wbx diff FILE --wrt NAME"})
        EXPECT_NE(help.out.find(usage), std::string::npos) << usage;
}
