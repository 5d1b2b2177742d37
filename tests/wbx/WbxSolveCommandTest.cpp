// wbx solve: the boxes and the summary of the text output, the one JSON
// document, the exit statuses (complete, infeasible, limit, bad input), the
// initial box from bounds and --set, and the benchmark format.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>

#include "WbxRunner.h"
#include "WbxTestFiles.h"

namespace {

// A circle and a line, bounded: two solutions, (4, 3) and (-3, -4).
const char* const CircleAndLine =
    "x^2 + y^2 = 25;\nx - y = 1;\nx >= -10;\nx <= 10;\ny >= -10;\ny <= 10;\n";

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

}  // namespace

TEST(WbxSolve, PrintsOneLinePerBoxThenTheSummary) {
    std::string path = ScratchFile("solve_circle.wbx", CircleAndLine);
    WbxRun run = RunWbx({"solve", path.c_str()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    std::vector<std::string> lines = Lines(run.out);
    ASSERT_EQ(lines.size(), 3u) << run.out;
    const std::regex box(
        "solution  x = \\[(-?[0-9.e+-]+), (-?[0-9.e+-]+)\\]  y = \\[(-?[0-9.e+-]+), "
        "(-?[0-9.e+-]+)\\]");
    double solutions[2][2];
    for (int i = 0; i < 2; ++i) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(lines[i], match, box)) << lines[i];
        solutions[i][0] = std::stod(match[1]);
        solutions[i][1] = std::stod(match[3]);
        EXPECT_LE(std::stod(match[1]), std::stod(match[2]));
    }
    EXPECT_NEAR(solutions[0][0], -3.0, 1e-9);
    EXPECT_NEAR(solutions[0][1], -4.0, 1e-9);
    EXPECT_NEAR(solutions[1][0], 4.0, 1e-9);
    EXPECT_NEAR(solutions[1][1], 3.0, 1e-9);
    EXPECT_TRUE(std::regex_match(
        lines[2],
        std::regex("complete: 2 solution, 0 boundary, 0 unknown; [0-9]+ cells in [0-9.]+ s")))
        << lines[2];
}

TEST(WbxSolve, JsonIsOneDocumentWithStatusBoxesCellsAndSeconds) {
    std::string path = ScratchFile("solve_circle.wbx", CircleAndLine);
    WbxRun run = RunWbx({"solve", path.c_str(), "--json", "--threads", "2"});
    ASSERT_EQ(run.status, 0) << run.err;
    nlohmann::json document = nlohmann::json::parse(run.out);
    EXPECT_EQ(document["status"], "complete");
    ASSERT_EQ(document["boxes"].size(), 2u);
    EXPECT_EQ(document["boxes"][0]["type"], "solution");
    EXPECT_LE(document["boxes"][1]["box"]["x"][0].get<double>(), 4.0);
    EXPECT_GE(document["boxes"][1]["box"]["x"][1].get<double>(), 4.0);
    EXPECT_GT(document["cells"].get<long long>(), 0);
    EXPECT_GE(document["seconds"].get<double>(), 0.0);
    // Unbounded ends as the real infinity markers.
    std::string line = ScratchFile("solve_line.wbx", "x - y = 1;\n");
    WbxRun open = RunWbx({"solve", line.c_str(), "--json", "--max-cells", "3"});
    EXPECT_EQ(open.status, 3);
    nlohmann::json pending = nlohmann::json::parse(open.out);
    EXPECT_EQ(pending["status"], "incomplete");
    EXPECT_EQ(pending["boxes"].back()["type"], "pending");
    EXPECT_NE(open.out.find("3.4028234663852886e+39"), std::string::npos);
    EXPECT_NE(open.err.find("unbounded domains: x, y"), std::string::npos) << open.err;
}

TEST(WbxSolve, ExitStatusTellsCompleteInfeasibleLimitAndBadInput) {
    std::string circle = ScratchFile("solve_circle.wbx", CircleAndLine);
    std::string none = ScratchFile("solve_none.wbx", "x^2 + y^2 = -1;\n");
    WbxRun infeasible = RunWbx({"solve", none.c_str()});
    EXPECT_EQ(infeasible.status, 1);
    EXPECT_EQ(infeasible.out, "infeasible: no solution (eq0 empties a domain); 0 cells in " +
                                  infeasible.out.substr(infeasible.out.find(" in ") + 4));
    WbxRun json = RunWbx({"solve", none.c_str(), "--json"});
    EXPECT_EQ(json.status, 1);
    EXPECT_EQ(nlohmann::json::parse(json.out)["status"], "infeasible");
    EXPECT_EQ(nlohmann::json::parse(json.out)["boxes"].size(), 0u);
    WbxRun limited = RunWbx({"solve", circle.c_str(), "--max-solutions", "1"});
    EXPECT_EQ(limited.status, 3);
    EXPECT_NE(limited.out.find("incomplete (solution limit): 1 solution"), std::string::npos);
    EXPECT_EQ(RunWbx({"solve", circle.c_str(), "--max-cells", "1"}).status, 3);
    // --set replaces a domain: x = 4 fixes the first solution.
    WbxRun fixed = RunWbx({"solve", circle.c_str(), "--set", "x=4"});
    EXPECT_EQ(fixed.status, 0) << fixed.err;
    EXPECT_NE(fixed.out.find("x = [4, 4]"), std::string::npos) << fixed.out;
    EXPECT_EQ(RunWbx({"solve", circle.c_str(), "--set", "x=[5, 6]"}).status, 1);
}

TEST(WbxSolve, ReadsTheBenchmarkFormat) {
    std::string path = ScratchFile("solve_problem.bch",
                                   "// two circles\nVariables\n  p[2] in [-10, 10];\nConstraints\n"
                                   "  p(1)^2 + p(2)^2 = 25;\n  p(1) - p(2) = 1;\nend\n");
    WbxRun run = RunWbx({"solve", path.c_str()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out.substr(0, 20), "solution  p(1) = [-3");
    std::string bad =
        ScratchFile("solve_bad.bch", "Variables\n  x in [0, 1];\nConstraints\n  x + q = 1;\nend\n");
    WbxRun refused = RunWbx({"solve", bad.c_str()});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.err, bad + ":4:7: unknown name 'q' [code -1]\n");
}

TEST(WbxSolve, RefusesAbsurdOptionsAndFilesWithAMessage) {
    std::string circle = ScratchFile("solve_circle.wbx", CircleAndLine);
    std::string empty = ScratchFile("solve_empty.wbx", "/* nothing */\n");
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{"solve"}, "wbx: solve needs a FILE\n"},
        {{"solve", circle.c_str(), "--eps", "0"}, "wbx: bad value '0' for --eps\n"},
        {{"solve", circle.c_str(), "--eps", "nan"}, "wbx: bad value 'nan' for --eps\n"},
        {{"solve", circle.c_str(), "--timeout", "-1"}, "wbx: bad value '-1' for --timeout\n"},
        {{"solve", circle.c_str(), "--max-cells", "1.5"}, "wbx: bad value '1.5' for --max-cells\n"},
        {{"solve", circle.c_str(), "--threads", "65"}, "wbx: bad value '65' for --threads\n"},
        {{"solve", circle.c_str(), "--max-solutions"}, "wbx: --max-solutions needs a value\n"},
        {{"solve", circle.c_str(), "--set", "z=1"}, "wbx: unknown variable 'z' in --set\n"},
        {{"solve", circle.c_str(), "--frobnicate"}, "wbx: unexpected argument '--frobnicate'\n"},
        {{"solve", empty.c_str()}, nullptr},
    };
    for (const auto& [arguments, message] : cases) {
        WbxRun run = RunWbx(arguments);
        EXPECT_EQ(run.status, 2) << arguments.back();
        if (message) {
            EXPECT_EQ(run.err, message);
        }
    }
    EXPECT_EQ(RunWbx({"solve", empty.c_str()}).err,
              "wbx: '" + empty + "' holds no equation to solve\n");
}

TEST(WbxSolve, SolvesTheShippedExamples) {
    const std::pair<const char*, const char*> examples[] = {
        {"kin1.wbx", "complete: 16 solution, 0 boundary, 0 unknown"},
        {"cyclohexane.wbx", "complete: 16 solution, 0 boundary, 0 unknown"},
        {"kolev36.wbx", "complete: 1 solution, 0 boundary, 0 unknown"},
    };
    for (const auto& [name, summary] : examples) {
        std::string path = std::string(ZORWBX_SOURCE_DIR) + "/examples/" + name;
        WbxRun run = RunWbx({"solve", path.c_str()});
        EXPECT_EQ(run.status, 0) << name << run.err;
        EXPECT_NE(run.out.find(summary), std::string::npos) << name;
    }
}
