#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "WbxRunner.h"
#include "WbxTestFiles.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquations.h"
#include "qel/ZorQelStream.h"

namespace {

namespace fs = std::filesystem;

const char* const Examples[] = {"linkage.wbx", "two_statements.wbx", "conditional.wbx"};

WbxRun Wbx(const std::vector<std::string>& arguments) {
    return RunWbxArguments(arguments);
}

int Lines(const std::string& text) {
    int count = 0;
    for (char c : text)
        count += c == '\n';
    return count;
}

}  // namespace

TEST(WbxJson, PrintsTheDocumentOfEveryEquationRoot) {
    for (const char* name : Examples) {
        SCOPED_TRACE(name);
        WbxRun run = Wbx({"json", ExamplePath(name)});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        ASSERT_EQ(Lines(run.out), 1);
        nlohmann::json document = nlohmann::json::parse(run.out);
        EXPECT_EQ(document["VersionStr"], 3);
        // One root per equation, each among the nodes written.
        std::set<int> tags;
        for (const auto& node : document["Exprs"])
            tags.insert(node["Tag"].get<int>());
        ASSERT_FALSE(document["ExprTags"].empty());
        for (int root : document["ExprTags"])
            EXPECT_EQ(tags.count(root), 1u);
    }
    for (int version = 0; version < 4; ++version) {
        WbxRun run =
            Wbx({"json", ExamplePath("two_statements.wbx"), "--version", std::to_string(version)});
        ASSERT_EQ(run.status, 0);
        nlohmann::json document = nlohmann::json::parse(run.out);
        EXPECT_EQ(document["VersionStr"], version);
        EXPECT_EQ(document.contains("ExprTags"), version == 3);
    }
}

TEST(WbxJson, WritesTheSameDocumentIntoAFile) {
    fs::path directory = ScratchDirectory("wbx_output_json");
    std::string out = (directory / "model.json").string();
    WbxRun printed = Wbx({"json", ExamplePath("linkage.wbx"), "--version", "1"});
    WbxRun written = Wbx({"json", ExamplePath("linkage.wbx"), "-o", out, "--version", "1"});
    ASSERT_EQ(written.status, 0) << written.err;
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(ReadFile(out), printed.out);
}

TEST(WbxJson, MistakesAreReportedOnOneLine) {
    fs::path directory = ScratchDirectory("wbx_output_json_bad");
    std::ofstream(directory / "empty.wbx") << "/* nothing */\n";
    const std::string emptyPath = (directory / "empty.wbx").string();
    WbxRun empty = Wbx({"json", emptyPath});
    EXPECT_EQ(empty.status, 1);
    EXPECT_EQ(empty.err, "wbx: '" + emptyPath + "' holds no equation to write\n");
    WbxRun nothingToDraw = Wbx({"graph", emptyPath, "--dot"});
    EXPECT_EQ(nothingToDraw.status, 1);
    EXPECT_EQ(nothingToDraw.err, "wbx: '" + emptyPath + "' holds no equation to draw\n");
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"json"},
             {"json", ExamplePath("linkage.wbx"), "--version", "4"},
             {"json", ExamplePath("linkage.wbx"), "--version"},
             {"json", ExamplePath("linkage.wbx"), "-o"},
             {"json", ExamplePath("linkage.wbx"), "--pretty"},
             {"json", ExamplePath("linkage.wbx"), "-o", (directory / "no" / "x.json").string()},
             {"json", "no/such/model.wbx"}}) {
        WbxRun run = Wbx(arguments);
        EXPECT_EQ(run.status, 2) << arguments.back();
        EXPECT_EQ(Lines(run.err), 1) << run.err;
        EXPECT_EQ(run.err.rfind("wbx: ", 0), 0u) << run.err;
    }
}

TEST(WbxJson, RefusesANameThatJsonMustEscape) {
    // The language lets a black box's name begin with a double quote; the
    // library writes names as they are, which would not be JSON.
    fs::path directory = ScratchDirectory("wbx_output_json_quote");
    std::ofstream(directory / "quote.wbx") << "y = \"f(x) + 1;\n";
    const std::string path = (directory / "quote.wbx").string();
    const std::string out = (directory / "quote.json").string();
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"json", path}, {"json", path, "-o", out}}) {
        WbxRun run = Wbx(arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "wbx: '" + path +
                               "' cannot be written as JSON: the name '\"f' holds a character "
                               "that JSON must escape\n");
    }
    EXPECT_FALSE(fs::exists(out));
    // Other names, apostrophes included, are written.
    std::ofstream(directory / "apostrophe.wbx") << "y = 'g(x) + %p_2;\n";
    WbxRun written = Wbx({"json", (directory / "apostrophe.wbx").string()});
    ASSERT_EQ(written.status, 0) << written.err;
    EXPECT_TRUE(nlohmann::json::accept(written.out));
}

TEST(WbxGraph, WritesOneFilePerEquationAndListsThem) {
    fs::path directory = ScratchDirectory("wbx_output_graph");
    ::unsetenv("VTS_LOG_NAME");
    WbxRun run = Wbx({"graph", ExamplePath("two_statements.wbx"), "--out", directory.string()});
    ASSERT_EQ(run.status, 0) << run.err;
    std::string first = (directory / "wbx_two_statements_E0.WBGraph").string();
    std::string second = (directory / "wbx_two_statements_E1.WBGraph").string();
    EXPECT_EQ(run.out, first + "\n" + second + "\n");
    EXPECT_EQ(ReadFile(first).rfind("WBGraph\nstart\n  #E0 : S(Msquare) : L(=0) : PSL#\n", 0), 0u);
    EXPECT_NE(ReadFile(second).find("L(<=0)"), std::string::npos);
    // The environment names the log and, without --out, the directory; the
    // tool leaves it as it found it.
    ::setenv("VTS_LOG_NAME", "night", 1);
    ::setenv("QRM_VTS_OUT", directory.string().c_str(), 1);
    WbxRun logged = Wbx({"graph", ExamplePath("two_statements.wbx"), "--values"});
    ASSERT_EQ(logged.status, 0) << logged.err;
    std::string night = (directory / "night_two_statements_E0.WBGraph").string();
    EXPECT_EQ(logged.out.rfind(night + "\n", 0), 0u);
    EXPECT_NE(ReadFile(night).find("S(record)"), std::string::npos);
    EXPECT_STREQ(std::getenv("VTS_LOG_NAME"), "night");
    ::unsetenv("VTS_LOG_NAME");
    ::unsetenv("QRM_VTS_OUT");
    // Two dumps of one model are the same.
    std::string before = ReadFile(first);
    ASSERT_EQ(Wbx({"graph", ExamplePath("two_statements.wbx"), "--out", directory.string()}).status,
              0);
    EXPECT_EQ(ReadFile(first), before);
    EXPECT_EQ(std::getenv("QRM_VTS_OUT"), nullptr);
}

TEST(WbxGraph, DotOnStandardOutput) {
    WbxRun run = Wbx({"graph", ExamplePath("linkage.wbx"), "--dot"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out.rfind("digraph WBGraph {\n", 0), 0u);
    EXPECT_EQ(run.out.substr(run.out.size() - 2), "}\n");
    for (int i = 0; i < 8; ++i)
        EXPECT_NE(run.out.find("  E" + std::to_string(i) + " [shape=Msquare"), std::string::npos)
            << i;
    WbxRun again = Wbx({"graph", ExamplePath("linkage.wbx"), "--dot"});
    EXPECT_EQ(again.out, run.out);
    EXPECT_NE(Wbx({"graph", ExamplePath("linkage.wbx"), "--dot", "--values"}).out.find("\\n"),
              std::string::npos);
}

TEST(WbxGraph, MistakesAreUsageErrors) {
    fs::path directory = ScratchDirectory("wbx_output_graph_bad");
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"graph"},
             {"graph", ExamplePath("linkage.wbx"), "--out"},
             {"graph", ExamplePath("linkage.wbx"), "--dot", "--out", directory.string()},
             {"graph", ExamplePath("linkage.wbx"), "--out", (directory / "missing").string()},
             {"graph", ExamplePath("linkage.wbx"), "extra"},
             {"graph", "no/such/model.wbx", "--dot"}}) {
        WbxRun run = Wbx(arguments);
        EXPECT_EQ(run.status, 2) << arguments.back();
        EXPECT_EQ(Lines(run.err), 1) << run.err;
    }
    EXPECT_TRUE(fs::is_empty(directory));
}

TEST(WbxReplayWrite, ExamplesReadBackToTheSameSections) {
    fs::path directory = ScratchDirectory("wbx_output_replay");
    for (const char* name : Examples) {
        for (const char* version : {"0", "1"}) {
            SCOPED_TRACE(std::string(name) + " version " + version);
            std::string out = (directory / (std::string(name) + version + ".replay")).string();
            WbxRun run = Wbx({"replay-write", ExamplePath(name), "-o", out, "--version", version});
            ASSERT_EQ(run.status, 0) << run.err;
            EXPECT_EQ(run.out, "");
            std::string text = ReadFile(out);
            EXPECT_EQ(text.rfind("#!PART 1\n#!VARIABLES ", 0), 0u);
            EXPECT_NE(text.find("#!EQUATIONS "), std::string::npos);
            EXPECT_NE(text.find("#!VALUES "), std::string::npos);

            ZorQelStorage storage;
            ASSERT_TRUE(storage.ReadFile(out));
            ZorWBFactory factory;
            ZorWBEquations reader(factory, ZorQelStorage::InputPart, version[0] - '0');
            ASSERT_TRUE(reader.Read(storage, ZorQelStorage::InputPart));
            ZorQelStream stream;
            reader.Write(stream, true);
            reader.WriteEquationNames(stream);
            EXPECT_EQ(stream.GetStorage().WritePart(ZorQelStorage::InputPart).GetStdString(), text);
        }
    }
    WbxRun defaultVersion =
        Wbx({"replay-write", ExamplePath("two_statements.wbx"), "-o", (directory / "d").string()});
    ASSERT_EQ(defaultVersion.status, 0);
    EXPECT_NE(ReadFile(directory / "d").find("x = undefined;\n"), std::string::npos);
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"replay-write", ExamplePath("linkage.wbx")},
             {"replay-write", "-o", (directory / "x").string()},
             {"replay-write", ExamplePath("linkage.wbx"), "-o", (directory / "no" / "x").string()},
             {"replay-write", ExamplePath("linkage.wbx"), "-o", "x", "--version", "2"}}) {
        WbxRun run = Wbx(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(Lines(run.err), 1) << run.err;
    }
}

TEST(WbxOutputCommands, HelpListsThem) {
    WbxRun help = RunWbx({"--help"});
    for (const char* usage :
         {"wbx json FILE [--version N] [-o OUT]",
          "wbx graph FILE [--values | --model] [--out DIR | --dot]",
          "wbx replay-write FILE -o OUT [--version N]",
          "wbx html FILE [--set NAME=VALUE]... [--plot NAME=LOW:HIGH]... -o OUT.html",
          "wbx edit FILE"})
        EXPECT_NE(help.out.find(usage), std::string::npos) << usage;
}
