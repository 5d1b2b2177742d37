#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "output/ZorWBModelGraph.h"
#include "parser/RandomModelText.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

namespace {

// Parses a text that the tests expect to be clean.
void Parse(ZorWBModel& model, const std::string& text) {
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    ZorWBParser::Parse(text.c_str(), model, ids, messenger);
}

std::string WBGraph(const ZorWBModel& model) {
    ZorQelStream stream;
    stream.OpenMemory();
    EXPECT_TRUE(ZorWBModelGraph(model).WriteWBGraph(stream));
    return stream.GetText();
}

std::string Dot(const ZorWBModel& model) {
    ZorQelStream stream;
    stream.OpenMemory();
    EXPECT_TRUE(ZorWBModelGraph(model).WriteDot(stream));
    return stream.GetText();
}

// Whether Graphviz's dot reads the text and lays it out.
bool DotAccepts(const std::string& dot, const std::string& name) {
    std::string path = testing::TempDir() + "model_graph_" + name + ".dot";
    std::ofstream(path) << dot;
    std::string command = "dot -Tsvg '" + path + "' -o /dev/null 2>'" + path + ".err'";
    return std::system(command.c_str()) == 0;
}

}  // namespace

TEST(ZorWBModelGraph, StatementsOperatorsNumbersAndCallsWithTheirLocations) {
    ZorWBModel model;
    Parse(model, "x = 10 mm * sin(a) - f(y);\n-y >= (a + b) deg;");
    EXPECT_EQ(WBGraph(model),
              "WBGraph\n"
              "start\n"
              "  #S0 : S(Msquare) : L(= @1:1-1:26) : PSL#\n"
              "  #M0 : S(box) : L(x @1:1-1:1) : PSL#\n"
              "  #S0 : T(M0) : A(diamond) : OTA#\n"
              "  #M1 : S(ellipse) : L(- @1:5-1:25) : PSL#\n"
              "  #S0 : T(M1) : A(ediamond) : OTA#\n"
              "  #M2 : S(ellipse) : L(* @1:5-1:18) : PSL#\n"
              "  #M1 : T(M2) : A(diamond) : OTA#\n"
              "  #M3 : S(octagon) : L(10 mm @1:5-1:9) : PSL#\n"
              "  #M2 : T(M3) : OT#\n"
              "  #M4 : S(ellipse) : L(sin @1:13-1:18) : PSL#\n"
              "  #M2 : T(M4) : OT#\n"
              "  #M5 : S(box) : L(a @1:17-1:17) : PSL#\n"
              "  #M4 : T(M5) : OT#\n"
              "  #M6 : S(hexagon) : L(f() @1:22-1:25) : PSL#\n"
              "  #M1 : T(M6) : A(ediamond) : OTA#\n"
              "  #M7 : S(box) : L(y @1:24-1:24) : PSL#\n"
              "  #M6 : T(M7) : OT#\n"
              "  #S1 : S(Msquare) : L(>= @2:1-2:18) : PSL#\n"
              "  #M8 : S(ellipse) : L(neg @2:1-2:2) : PSL#\n"
              "  #S1 : T(M8) : A(diamond) : OTA#\n"
              "  #M9 : S(box) : L(y @2:2-2:2) : PSL#\n"
              "  #M8 : T(M9) : OT#\n"
              "  #M10 : S(ellipse) : L((+) deg @2:8-2:12) : PSL#\n"
              "  #S1 : T(M10) : A(ediamond) : OTA#\n"
              "  #M11 : S(box) : L(a @2:8-2:8) : PSL#\n"
              "  #M10 : T(M11) : OT#\n"
              "  #M12 : S(box) : L(b @2:12-2:12) : PSL#\n"
              "  #M10 : T(M12) : OT#\n"
              "end\n");
    std::string dot = Dot(model);
    EXPECT_EQ(dot.substr(0, 18), "digraph WBModel {\n");
    EXPECT_NE(dot.find("  M3 [shape=octagon, label=\"10 mm\\n1:5-1:9\"];\n"), std::string::npos);
    EXPECT_NE(dot.find("  S1 -> M10 [arrowhead=odiamond];\n"), std::string::npos);
    EXPECT_EQ(dot.substr(dot.size() - 2), "}\n");
    EXPECT_EQ(WBGraph(model), WBGraph(model));
}

TEST(ZorWBModelGraph, ConditionsComparisonsAndSingleTerms) {
    ZorWBModel model;
    Parse(model, "if (t <= 3 mm and !(t > 1)) then (c = 5 mm) else (c = 8 mm);\nsqrt(c);");
    std::string text = WBGraph(model);
    for (const char* line : {"L(if @1:", "L(and @1:", "L(<= @1:", "L(! @1:", "L(> @1:",
                             "L(; @1:1-1:0)", "L(sqrt @2:1-2:7)"})
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
}

TEST(ZorWBModelGraph, ASharedNodeIsDrawnOnceWithAnEdgeFromEachParent) {
    ZorWBModel model;
    ZorWBLocation at(1, 0, 1, 1);
    ZorWBNode* x = model.CreateVariable(at, "x");
    ZorWBNodeList operands;
    operands.Add(x);
    operands.Add(x);
    model.AddEquation(model.CreateOperator(at, ZorWBExpressionType::Sum, operands));
    std::string text = WBGraph(model);
    EXPECT_NE(text.find("  #M0 : T(M1) : OT#\n  #M0 : T(M1) : OT#\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("#M2"), std::string::npos) << text;
}

// The property the DOT output must have: whatever the text (units, quotes,
// the degree sign, calls, conditions), Graphviz reads and lays it out.
TEST(ZorWBModelGraph, GraphvizAcceptsTheDotOfGeneratedModels) {
    RandomModelText random(17);
    std::string text = "x = 30\xB0 + 2' + 3\";\n";
    for (int i = 0; i < 60; ++i)
        text += random.Statement(3) + "\n";
    ZorWBModel model;
    Parse(model, text);
    ASSERT_GT(model.GetNbOfEquations(), 30);
    EXPECT_TRUE(DotAccepts(Dot(model), "generated")) << text;
}

TEST(ZorWBModelGraph, AModelOfAnyDepthIsDrawn) {
    const int terms = 100000;
    std::string text = "x";
    for (int i = 0; i < terms; ++i)
        text += "+1";
    ZorWBModel model;
    Parse(model, text + " = 0;");
    ASSERT_EQ(model.GetNbOfEquations(), 1);
    std::string drawing = WBGraph(model);
    EXPECT_EQ(std::count(drawing.begin(), drawing.end(), '\n'), 3 + 1 + 2 * (2 * terms + 2));
}
