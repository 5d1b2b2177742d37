#include <gtest/gtest.h>

#include <string>

#include "WbxRunner.h"
#include "WbxTestFiles.h"
#include "expressions/ZorWBFactory.h"
#include "qel/ZorQelStream.h"
#include "symbolic/ZorWBSymbolicTransformations.h"
#include "values/ZorWBLevel.h"

TEST(WbxTransform, TypicalRequestEndToEnd) {
    WbxRun run = RunWbxArguments({"transform", ExamplePath("two_statements.wbx"), "--mode", "2"});
    ASSERT_EQ(run.status, 0) << run.err;
    // The inequality in x alone, then the definition of y.
    EXPECT_EQ(run.out, "1.6666666666666665 * x <= 5;\n0.6666666666666666 * x + y - 4 = 0;\n");
    // Evaluating the result: 5x/3 <= 5 holds up to x = 3.
    std::string transformed = ScratchFile("transformed.wbx", run.out);
    WbxRun below = RunWbxArguments({"eval", transformed, "--set", "x=2"});
    EXPECT_EQ(below.status, 0);
    EXPECT_EQ(below.out.substr(0, below.out.find('\n')), "eq0: -1.666666666666667 <= 0 -> true");
    WbxRun above = RunWbxArguments({"eval", transformed, "--set", "x=4"});
    EXPECT_EQ(above.status, 1);
    EXPECT_EQ(above.out.substr(0, above.out.find('\n')), "eq0: 1.666666666666666 <= 0 -> false");
    // Where both originals hold, both transformed equations do.
    WbxRun both = RunWbxArguments({"eval", transformed, "--set", "x=3", "--set", "y=2"});
    EXPECT_EQ(both.status, 0) << both.out;
    EXPECT_EQ(both.out.find("false"), std::string::npos) << both.out;
}

TEST(WbxTransform, ModesAndTheCheck) {
    // Default mode 6: elimination after simplification.
    std::string repeated = ScratchFile("repeated.wbx", "x + x + y = 4;\ny = 2;\n");
    EXPECT_EQ(RunWbxArguments({"transform", repeated}).out, "x = 1;\ny = 2;\n");
    // Simplification alone: x + x is lighter than 2 * x.
    WbxRun simplified = RunWbxArguments({"transform", repeated, "--mode", "4"});
    EXPECT_EQ(simplified.out, "x + x + y - 4 = 0;\ny = 2;\n");
    // The check's verdict on the constant inequalities follows the output.
    std::string constant = ScratchFile("constant.wbx", "x = 2;\nx <= 3;\n");
    WbxRun checked = RunWbxArguments({"transform", constant, "--mode", "18"});
    EXPECT_EQ(checked.status, 0);
    EXPECT_EQ(checked.out, "-1 <= 0;\nx = 2;\ninconsistent\n");
    std::string other = ScratchFile("other.wbx", "x = 2;\nx <= 1;\n");
    EXPECT_EQ(RunWbxArguments({"transform", other, "--mode", "18"}).out,
              "1 <= 0;\nx = 2;\nconsistent\n");
    // Binarisation of a long sum.
    std::string sum = ScratchFile("sum.wbx", "a + b + c + d <= 1;\n");
    EXPECT_EQ(RunWbxArguments({"transform", sum, "--mode", "8"}).out, "a + b + c + d <= 1;\n");
}

TEST(WbxTransform, OnlyNamedEquations) {
    std::string two = ScratchFile("only.wbx", "x + x = 4;\ny + y <= 2;\n");
    WbxRun run = RunWbxArguments({"transform", two, "--mode", "4", "--only", "eq1"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "x + x = 4;\ny + y - 2 <= 0;\n");
    WbxRun unknown = RunWbxArguments({"transform", two, "--only", "eq7"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "wbx: unknown equation 'eq7' in --only\n");
}

TEST(WbxTransform, CommandLineMistakes) {
    std::string two = ExamplePath("two_statements.wbx");
    struct Case {
        std::vector<std::string> arguments;
        std::string error;
    };
    for (const Case& c : std::vector<Case>{
             Case{{"transform"}, "wbx: transform needs a FILE\n"},
             Case{{"transform", two, "--mode"}, "wbx: --mode needs a value\n"},
             Case{{"transform", two, "--mode", "-1"}, "wbx: bad mode '-1'\n"},
             Case{{"transform", two, "--mode", "4294967296"}, "wbx: bad mode '4294967296'\n"},
             Case{{"transform", two, "--fast"}, "wbx: unexpected argument '--fast'\n"},
             Case{{"transform", two, two}, "wbx: unexpected argument '" + two + "'\n"},
             Case{{"transform", two, "--replay", "/no/such/folder/out.rep"},
                  "wbx: cannot write '/no/such/folder/out.rep'\n"},
             Case{{"replay"}, "wbx: replay needs one FILE\n"}}) {
        std::vector<std::string> arguments = c.arguments;
        WbxRun run = RunWbxArguments(arguments);
        EXPECT_EQ(run.status, 2) << c.error;
        EXPECT_EQ(run.err, c.error);
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(RunWbxArguments({"transform", "no/such/file.wbx"}).status, 2);
    std::string bad = ScratchFile("bad_transform.wbx", "x = ;\n");
    EXPECT_EQ(RunWbxArguments({"transform", bad}).status, 2);
}

TEST(WbxReplay, RecordedExamplesReplayIdentically) {
    for (const char* name : {"two_statements.wbx", "linkage.wbx", "conditional.wbx"}) {
        for (const char* mode : {"2", "6", "14", "22", "31"}) {
            std::string recording = testing::TempDir() + name + "." + mode + ".rep";
            WbxRun run = RunWbxArguments(
                {"transform", ExamplePath(name), "--mode", mode, "--replay", recording});
            ASSERT_EQ(run.status, 0) << run.err;
            WbxRun replay = RunWbxArguments({"replay", recording});
            EXPECT_EQ(replay.status, 0) << name << " " << mode << ": " << replay.out;
            EXPECT_EQ(replay.out, "identical\n");
        }
    }
    std::string recording = testing::TempDir() + "only.rep";
    ASSERT_EQ(RunWbxArguments({"transform", ExamplePath("linkage.wbx"), "--mode", "4", "--only",
                               "eq1", "--replay", recording})
                  .status,
              0);
    EXPECT_NE(ReadFile(recording).find("#!SIMPLIFY 1\neq1;\n"), std::string::npos);
    EXPECT_EQ(RunWbxArguments({"replay", recording}).out, "identical\n");
}

TEST(WbxReplay, DifferencesAndUnreadableRecordings) {
    std::string recording = testing::TempDir() + "two.rep";
    ASSERT_EQ(RunWbxArguments({"transform", ExamplePath("two_statements.wbx"), "--mode", "2",
                               "--replay", recording})
                  .status,
              0);
    std::string text = ReadFile(recording);
    std::size_t output = text.find("#!PART 2");
    ASSERT_NE(output, std::string::npos);
    std::size_t line = text.find("eq1<=", output);
    ASSERT_NE(line, std::string::npos);
    std::string altered = text;
    altered.replace(line, 5, "eq1>=");
    std::string path = ScratchFile("altered.rep", altered);
    WbxRun differs = RunWbxArguments({"replay", path});
    EXPECT_EQ(differs.status, 1);
    EXPECT_EQ(differs.out.substr(0, 40), "differs: #!EQUATIONS line 1: recorded 'e");

    EXPECT_EQ(RunWbxArguments({"replay", "no/such/file.rep"}).err,
              "wbx: cannot read 'no/such/file.rep' as a replay\n");
    std::string model = ExamplePath("two_statements.wbx");
    WbxRun notReplay = RunWbxArguments({"replay", model});
    EXPECT_EQ(notReplay.status, 2);
    std::string noMode = ScratchFile("nomode.rep", "#!PART 1\n#!VARIABLES 1\nReal x;\n");
    WbxRun missing = RunWbxArguments({"replay", noMode});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "wbx: '" + noMode + "' holds no recorded transformation\n");
}

TEST(WbxReplay, ARecordingReplaysAtItsRecordedLevel) {
    // Recorded by a host at a level below which the final normalisation
    // writes u - v with a unary minus: replayed at the newest level, the
    // output would differ.
    const unsigned int older = ZorWBLevel::NoFinalNormalisation - 1;
    ZorWBFactory factory(older);
    ZorWBVariable* u = factory.CreateVariable();
    ZorWBVariable* v = factory.CreateVariable();
    factory.AddEquation(factory.CreateSub(u, v), ZorWBLessEqualZero);
    ZorQelStream stream;
    stream.OpenMemory();
    ZorWBSymbolicTransformations* transformations =
        ZorCreateWBSymbolicTransformations(older, factory);
    transformations->SetMode(4);
    transformations->SetReplayStream(&stream);
    transformations->Run();
    ZorRemove(transformations);
    ASSERT_NE(stream.GetText().find("minus(va1)"), std::string::npos) << stream.GetText();
    WbxRun replay = RunWbxArguments({"replay", ScratchFile("older.rep", stream.GetText())});
    EXPECT_EQ(replay.status, 0) << replay.out;
    EXPECT_EQ(replay.out, "identical\n");
}

TEST(WbxTransform, ALongSumTransformsAndItsDeepRecordingReplays) {
    // x = a + a + ... + a, 20,000 terms: a sum 20,000 levels deep.
    std::string text = "x = a";
    for (int i = 1; i < 20000; ++i)
        text += " + a";
    std::string model = ScratchFile("long_sum.wbx", text + ";\n");
    std::string recording = testing::TempDir() + "long_sum.rep";
    WbxRun run = RunWbxArguments({"transform", model, "--replay", recording});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "-5e-05 * x + a = 0;\n");
    EXPECT_EQ(RunWbxArguments({"replay", recording}).out, "identical\n");
}

TEST(WbxTransform, HelpListsTheCommands) {
    WbxRun help = RunWbx({"--help"});
    EXPECT_NE(help.out.find("wbx transform FILE [--mode N] [--only NAME]... [--replay OUT]"),
              std::string::npos);
    EXPECT_NE(help.out.find("wbx replay FILE"), std::string::npos);
}
