#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "OutputTestSupport.h"
#include "output/ZorWBFactoryGraph.h"

namespace {

using Type = ZorWBExpressionType;
namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

std::set<std::string> FilesIn(const fs::path& directory) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory))
        names.insert(entry.path().filename().string());
    return names;
}

// Dumps go to a fresh directory, with the log name "run".
class DumpDirectory {
  public:
    explicit DumpDirectory(const std::string& name)
        : path(FreshDirectory(name)),
          _out("QRM_VTS_OUT", path.string().c_str()),
          _log("VTS_LOG_NAME", "run") {}
    std::string Read(const std::string& file) const { return ReadFile(path / file); }

    fs::path path;

  private:
    ScopedEnv _out;
    ScopedEnv _log;
};

std::string Dot(const ZorWBFactoryGraph& graph, bool withValues) {
    ZorQelStream stream;
    stream.OpenMemory();
    EXPECT_TRUE(graph.WriteDot(stream, withValues));
    return stream.GetText();
}

}  // namespace

TEST(ZorWBFactoryGraph, NothingIsWrittenUnlessBothVariablesAreSet) {
    fs::path directory = FreshDirectory("graph_unset");
    ZorWBFactory factory;
    factory.AddEquation(factory.CreateVariable(), ZorWBEqualZero);
    ZorWBFactoryGraph graph(&factory, "g");
    {
        ScopedEnv out("QRM_VTS_OUT", nullptr);
        ScopedEnv log("VTS_LOG_NAME", "run");
        EXPECT_TRUE(graph.GetFilePath().IsEmpty());
        graph.GenerateWBTreeFile(false);
    }
    {
        ScopedEnv out("QRM_VTS_OUT", directory.string().c_str());
        ScopedEnv log("VTS_LOG_NAME", nullptr);
        graph.GenerateWBTreeFile(true);
        ZorWBFactoryGraph(factory.GetFirstEquation()).GenerateBasicWBTreeFile(false);
    }
    {
        ScopedEnv out("QRM_VTS_OUT", directory.string().c_str());
        ScopedEnv log("VTS_LOG_NAME", "");
        graph.GenerateWBTreeFile(true);
    }
    EXPECT_TRUE(FilesIn(directory).empty());
}

TEST(ZorWBFactoryGraph, FactoryGraphWritesOneFilePerEquationInListOrder) {
    DumpDirectory dumps("graph_factory");
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    factory.AddEquation(x, ZorWBEqualZero);
    ZorWBEquation* gone = factory.AddEquation(x, ZorWBLessZero);
    factory.AddEquation(x, ZorWBMinimize);
    factory.AddEquation(x, ZorWBGreaterEqualZero);
    factory.RemoveEquation(gone);
    ZorWBFactoryGraph graph(&factory, "g");
    EXPECT_EQ(graph.GetKind(), ZorWBFactoryGraph::FactoryGraph);
    graph.GenerateWBTreeFile(false);
    EXPECT_EQ(FilesIn(dumps.path),
              (std::set<std::string>{"run_g_E0.WBGraph", "run_g_E1.WBGraph", "run_g_E2.WBGraph"}));
    EXPECT_EQ(dumps.Read("run_g_E0.WBGraph"),
              "WBGraph\nstart\n  #E0 : S(Msquare) : L(=0) : PSL#\n  #E0 : T(N0) : OT#\n"
              "  #N0 : S(box) : L(X0) : PSL#\nend\n");
    EXPECT_NE(dumps.Read("run_g_E1.WBGraph").find("  #E2 : S(Msquare) : L(Min) : PSL#\n"),
              std::string::npos);
    EXPECT_NE(dumps.Read("run_g_E2.WBGraph").find("  #E3 : S(Msquare) : L(>=0) : PSL#\n"),
              std::string::npos);
    // Without a name the file names start with "_E".
    ZorWBFactoryGraph(&factory).GenerateWBTreeFile(false);
    EXPECT_EQ(FilesIn(dumps.path).count("run__E0.WBGraph"), 1u);
    // Without a factory or without equations nothing is written.
    fs::path before = dumps.path;
    std::size_t count = FilesIn(before).size();
    ZorWBFactoryGraph(static_cast<ZorWBFactory*>(nullptr), "none").GenerateWBTreeFile(false);
    ZorWBFactory empty;
    ZorWBFactoryGraph(&empty, "empty").GenerateWBTreeFile(false);
    EXPECT_EQ(FilesIn(before).size(), count);
}

TEST(ZorWBFactoryGraph, SharedChildIsDrawnOnceWithAnEdgeFromEachUse) {
    DumpDirectory dumps("graph_shared");
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBExpression* sum = factory.CreateSum(x, x);
    ZorWBFactoryGraph graph(sum, "sum");
    EXPECT_EQ(graph.GetKind(), ZorWBFactoryGraph::ExpressionGraph);
    graph.GenerateWBTreeFile(false);
    EXPECT_EQ(dumps.Read("run_sum.WBGraph"),
              "WBGraph\nstart\n"
              "  #N1 : L(+) : PSL#\n"
              "  #N1 : T(N0) : OT#\n"
              "  #N0 : S(box) : L(X0) : PSL#\n"
              "  #N1 : T(N0) : OT#\n"
              "end\n");
}

TEST(ZorWBFactoryGraph, OrderedOperatorsDrawDiamondEdges) {
    DumpDirectory dumps("graph_power");
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    x->SetExprValue(ZorWBValue(3));
    ZorWBExpression* power = factory.CreatePower(x, factory.CreateRealConstant(2.0));
    ZorWBEquation* equation = factory.AddEquation(power, ZorWBNotEqualZero);
    ZorWBFactoryGraph graph(equation, "pow");
    EXPECT_EQ(graph.GetKind(), ZorWBFactoryGraph::EquationGraph);
    graph.GenerateBasicWBTreeFile(false);
    EXPECT_EQ(dumps.Read("run_pow.WBGraph"),
              "WBGraph\nstart\n"
              "  #E0 : S(Msquare) : L(!=0) : PSL#\n"
              "  #E0 : T(N2) : OT#\n"
              "  #N2 : L(^) : PSL#\n"
              "  #N2 : T(N0) : A(diamond) : OTA#\n"
              "  #N0 : S(box) : L(X0) : PSL#\n"
              "  #N2 : T(N1) : A(ediamond) : OTA#\n"
              "  #N1 : S(octagon) : L(2) : PSL#\n"
              "end\n");
    graph.GenerateWBTreeFile(true);
    EXPECT_EQ(dumps.Read("run_pow.WBGraph"),
              "WBGraph\nstart\n"
              "  #E0 : S(Msquare) : L(!=0) : PSL#\n"
              "  #E0 : T(N2) : OT#\n"
              "  #N2 : S(record) : L( {^|9}) : PSL#\n"
              "  #N2 : T(N0) : A(diamond) : OTA#\n"
              "  #N0 : S(record) : L({X0 | 3}) : PSL#\n"
              "  #N2 : T(N1) : A(ediamond) : OTA#\n"
              "  #N1 : S(octagon) : L(2) : PSL#\n"
              "end\n");
    for (Type type : {Type::Implication, Type::Quotient, Type::Power, Type::Root, Type::Mod})
        EXPECT_TRUE(ZorWBFactoryGraph::IsOrderedOperator(type));
    for (Type type : {Type::Sum, Type::LessEqual, Type::Atan2, Type::Dim, Type::Sign})
        EXPECT_FALSE(ZorWBFactoryGraph::IsOrderedOperator(type));
}

TEST(ZorWBFactoryGraph, LabelsOfOperatorsAndEquations) {
    const std::map<int, std::string> labels = {
        {3, "!"},         {4, "||"},        {5, "& "},    {6, "= "},     {7, "!= "},
        {9, "=>"},        {10, "+"},        {11, "*"},    {12, "./. "},  {13, "^"},
        {14, "()^(1/N)"}, {15, "()^(1/2)"}, {16, "Log"},  {17, "Ln"},    {18, "Exp"},
        {19, "Sin"},      {20, "Cos"},      {21, "Tan"},  {22, " Asin"}, {23, "Acos "},
        {24, "Atan"},     {29, "Sinh"},     {30, "Cosh"}, {31, "Tanh"},  {32, "Asinh"},
        {33, "Acosh"},    {34, "ATanh"},    {35, "|.|"},  {36, "Ceil"},  {37, "Floor"},
        {38, "Round"},    {39, "Trunc"},    {40, "Mod"},  {41, "Min"},   {42, "Max"},
        {44, "BB"}};
    for (int type = 3; type <= 50; ++type) {
        auto found = labels.find(type);
        EXPECT_STREQ(ZorWBFactoryGraph::OperatorLabel(static_cast<Type>(type)),
                     found == labels.end() ? "non defined operator" : found->second.c_str())
            << type;
    }
    const char* const equations[] = {"x", "=0", "!=0", "<=0", "<0", ">=0", ">0", "Min", "Max"};
    for (int type = 0; type < 9; ++type)
        EXPECT_STREQ(ZorWBFactoryGraph::EquationLabel(static_cast<ZorWBEquationType>(type)),
                     equations[type]);
    EXPECT_STREQ(ZorWBFactoryGraph::EquationLabel(static_cast<ZorWBEquationType>(9)), "?");
    EXPECT_STREQ(ZorWBFactoryGraph::EquationLabel(static_cast<ZorWBEquationType>(-1)), "?");
}

TEST(ZorWBFactoryGraph, RandomGraphsDrawEveryNodeOnceAndEveryEdge) {
    DumpDirectory dumps("graph_random");
    for (unsigned int seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        ZorWBFactory factory;
        RandomSystem system(factory, seed);
        system.Build(4, 3, 15);
        bool withValues = seed % 2 == 0;
        ZorWBFactoryGraph graph(&factory, ZorQelString("s").AppendInt(static_cast<int>(seed)));
        graph.GenerateWBTreeFile(withValues);
        int position = 0;
        for (ZorWBEquation* equation = factory.GetNextEquation(nullptr); equation;
             equation = factory.GetNextEquation(equation), ++position) {
            std::string text = dumps.Read("run_s" + std::to_string(seed) + "_E" +
                                          std::to_string(position) + ".WBGraph");
            // The nodes and edges the graph has, from the factory.
            std::set<const ZorWBExpression*> nodes;
            int edges = 0;
            std::vector<const ZorWBExpression*> stack{equation->GetRoot()};
            while (!stack.empty()) {
                const ZorWBExpression* node = stack.back();
                stack.pop_back();
                if (!nodes.insert(node).second) continue;
                edges += node->GetNbOfChildren();
                for (int i = 0; i < node->GetNbOfChildren(); ++i)
                    stack.push_back(node->GetChild(i));
            }
            std::istringstream lines(text);
            std::string line;
            std::multiset<std::string> drawn;
            int edgeLines = 0;
            while (std::getline(lines, line)) {
                if (line.find(" : T(") != std::string::npos && line.rfind("  #E", 0) != 0)
                    ++edgeLines;
                else if (line.rfind("  #N", 0) == 0)
                    drawn.insert(line.substr(3, line.find(' ', 3) - 3));
            }
            EXPECT_EQ(edgeLines, edges);
            ASSERT_EQ(drawn.size(), nodes.size());
            for (const ZorWBExpression* node : nodes)
                EXPECT_EQ(drawn.count(ZorWBFactoryGraph::NodeIdentity(node).GetStdString()), 1u);
        }
    }
}

TEST(ZorWBFactoryGraph, TwoDumpsOfTheSameSystemAreIdentical) {
    std::string dumpsOf[2];
    std::string dots[2];
    for (int round = 0; round < 2; ++round) {
        DumpDirectory dumps("graph_twice_" + std::to_string(round));
        ZorWBFactory factory;
        RandomSystem system(factory, 77);
        system.Build(5, 4, 20);
        ZorWBFactoryGraph graph(&factory, "same");
        graph.GenerateWBTreeFile(true);
        graph.GenerateWBTreeFile(true);  // the second dump replaces the first
        for (const std::string& name : FilesIn(dumps.path))
            dumpsOf[round] += name + "\n" + dumps.Read(name);
        dots[round] = Dot(graph, true);
    }
    EXPECT_FALSE(dumpsOf[0].empty());
    EXPECT_EQ(dumpsOf[0], dumpsOf[1]);
    EXPECT_EQ(dots[0], dots[1]);
}

TEST(ZorWBFactoryGraph, DotDrawsTheWholeFactoryWithSharedNodesOnce) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBExpression* quotient = factory.CreateQuotient(x, factory.GetTwo());
    factory.AddEquation(quotient, ZorWBEqualZero);
    factory.AddEquation(factory.CreateSum(quotient, x), ZorWBLessEqualZero);
    EXPECT_EQ(Dot(ZorWBFactoryGraph(&factory), false),
              "digraph WBGraph {\n"
              "  E0 [shape=Msquare, label=\"=0\"];\n"
              "  E0 -> N2;\n"
              "  N2 [shape=ellipse, label=\"./. \"];\n"
              "  N2 -> N0 [arrowhead=diamond];\n"
              "  N0 [shape=box, label=\"X0\"];\n"
              "  N2 -> N1 [arrowhead=odiamond];\n"
              "  N1 [shape=octagon, label=\"2\"];\n"
              "  E1 [shape=Msquare, label=\"<=0\"];\n"
              "  E1 -> N3;\n"
              "  N3 [shape=ellipse, label=\"+\"];\n"
              "  N3 -> N2;\n"
              "  N3 -> N0;\n"
              "}\n");
    x->SetName("quote\"d");
    x->SetExprValue(ZorWBValue(-4));
    EXPECT_NE(Dot(ZorWBFactoryGraph(x), true).find("  N0 [shape=box, label=\"X0\\n(-4)\"];\n"),
              std::string::npos);
}

TEST(ZorWBFactoryGraph, ChildTreatmentOfNothingWritesNothing) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBFactoryGraph graph(x);
    ZorWBVisitedExpressions visited;
    bool withValues = false;
    ZorQelStream stream;
    stream.OpenMemory();
    graph.ChildTreatment(nullptr, withValues, &stream, visited);
    graph.ChildTreatment(x, withValues, nullptr, visited);
    EXPECT_EQ(stream.GetText(), "");
    graph.ChildTreatment(x, withValues, &stream, visited);
    EXPECT_EQ(stream.GetText(), "  #N0 : S(box) : L(X0) : PSL#\n");
    EXPECT_EQ(visited.GetSize(), 0);
    EXPECT_TRUE(visited.Add(x));
    EXPECT_FALSE(visited.Add(x));
    EXPECT_EQ(visited.Get(0), x);
    EXPECT_EQ(visited.Get(1), nullptr);
}

TEST(ZorWBFactoryGraph, GraphAMillionNodesDeepIsDumped) {
    DumpDirectory dumps("graph_deep");
    const int depth = 1000000;
    ZorWBFactory factory;
    ZorWBExpression* e = factory.CreateVariable();
    for (int i = 0; i < depth; ++i)
        e = i % 2 ? factory.CreateSin(e) : factory.CreateAbs(e);
    factory.AddEquation(e, ZorWBEqualZero);
    ZorWBFactoryGraph(&factory, "deep").GenerateWBTreeFile(false);
    std::string text = dumps.Read("run_deep_E0.WBGraph");
    EXPECT_EQ(text.substr(text.size() - 34), "  #N0 : S(box) : L(X0) : PSL#\nend\n");
    ZorQelStream stream;
    stream.OpenMemory();
    ASSERT_TRUE(ZorWBFactoryGraph(e).WriteDot(stream, false));
    EXPECT_NE(stream.GetText().find("  N1 -> N0;\n  N0 [shape=box, label=\"X0\"];\n}\n"),
              std::string::npos);
}
