#include <sstream>
#include <string>
#include <vector>

#include "ParserTestSupport.h"
#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBModelHomogeneity.h"
#include "qel/ZorQelGlobalParameters.h"

namespace {

// Sends the homogeneity trace to memory for one scope.
class TraceCapture {
  public:
    TraceCapture() {
        _stream.OpenMemory();
        Parameters().SetTraceStream(&_stream);
        Parameters().SetTraceLevel(1);
    }
    ~TraceCapture() {
        Parameters().SetTraceLevel(0);
        Parameters().SetTraceStream(nullptr);
    }
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        std::istringstream text(_stream.GetText());
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }

  private:
    static ZorQelGlobalParameters& Parameters() {
        return ZorQelGlobalParameters::GetGlobalParameters();
    }
    ZorQelStream _stream;
};

// The kind of the single term of a one-term text.
std::string KindOf(const char* expression) {
    ParsedText parsed((std::string(expression) + ";").c_str());
    return ZorWBModelHomogeneity::FillHomogeneity(parsed.Equation(0)->GetLeftTerm()).GetString();
}

// The rule line that decided the kind of the top operator of a term.
std::string RuleOf(const char* expression) {
    ParsedText parsed((std::string(expression) + ";").c_str());
    TraceCapture trace;
    ZorWBModelHomogeneity::FillHomogeneity(parsed.Equation(0)->GetLeftTerm());
    std::vector<std::string> lines = trace.Lines();
    return lines.size() >= 2 ? lines[lines.size() - 2] : "";
}

int Judge(const char* equation) {
    ParsedText parsed(equation);
    return ZorWBModelHomogeneity::CheckHomogeneity(*parsed.Equation(0));
}

}  // namespace

TEST(ZorWBModelHomogeneity, KindsOfTheEdgeCases) {
    EXPECT_EQ(KindOf("x + 2 mm"), "Distance");
    EXPECT_EQ(KindOf("2 mm + 3 deg"), "Inhomogeneous");
    EXPECT_EQ(KindOf("(2 mm) * x"), "Distance");
    EXPECT_EQ(KindOf("(2 mm) * (3 mm)"), "Unsolved");
    EXPECT_EQ(KindOf("10 mm / 2"), "Distance");
    EXPECT_EQ(KindOf("10 mm / x"), "Ambiguous");
    EXPECT_EQ(KindOf("10 mm / 5 mm"), "None");
    EXPECT_EQ(KindOf("sin(2 mm)"), "Unsolved");
    EXPECT_EQ(KindOf("x"), "None");
    EXPECT_EQ(KindOf("3 foo"), "None");        // an unknown unit counts as none
    EXPECT_EQ(KindOf("(a + b) deg"), "None");  // units on operators are not read
    EXPECT_EQ(ZorWBModelHomogeneity::FillHomogeneity(nullptr), "Inhomogeneous");

    ZorWBModel model;
    ZorWBNodeList children;
    children.Add(model.CreateVariable(ZorWBLocation(), "x"));
    children.Add(nullptr);
    EXPECT_EQ(ZorWBModelHomogeneity::FillHomogeneity(
                  model.CreateOperator(ZorWBLocation(), ZorWBExpressionType::Sum, children)),
              "Inhomogeneous");
}

TEST(ZorWBModelHomogeneity, EveryCombinationRuleAndItsTraceLine) {
    struct Case {
        const char* expression;
        const char* kind;
        const char* rule;
    };
    const Case cases[] = {
        {"(2 mm + 3 deg) + x", "Inhomogeneous",
         " for Sum et Minus, if one child is Inhomogeneous  => Inhomogeneous"},
        {"x - 2 mm * 3 mm", "Unsolved", " for Sum et Minus, if one child is Unsolved => Unsolved"},
        {"3 ' + 2 mm", "Distance",
         " for Sum et Minus, as child1 is Ambiguous or None => Other type =Distance"},
        {"2 deg - x", "Angle",
         " for Sum et Minus, as child2 is Ambiguous or None => Other type =Angle"},
        {"2 mm + 3 km", "Distance", " for Sum et Minus, the 2 children are Distances => Distance"},
        {"2 deg - 1 rad", "Angle", " for Sum et Minus, the 2 children are Angles => Angle"},
        {"2 mm + 3 deg", "Inhomogeneous", " for Sum et Minus, default case => Inhomogeneous"},
        {"x * 2 mm", "Distance", " for Product, as child1 is  None => Other type =Distance"},
        {"2 deg * x", "Angle", " for Product, as child2 is  None => Other type =Angle"},
        {"2 deg * 3 mm", "Unsolved", " default case for Product => Unsolved"},
        {"(2 mm + 3 deg) / 2", "Inhomogeneous",
         " for Quotient, if one child is Inhomogeneous  => Inhomogeneous"},
        {"(2 mm * 3 mm) / 2", "Unsolved", " for Quotient, if one child is Unsolved  => Unsolved"},
        {"3 ' / 2", "Ambiguous",
         " for Quotient, as child1 is Ambiguous and child2 is None => Ambiguous"},
        {"3 ' / x", "None",
         " for Quotient, as child1 is Ambiguous and child2 is not a cst => None"},
        {"2 / 3 mm", "Unsolved",
         " for Quotient, as child1 is a cst and child2 is Ambiguous or a distance or an Angle => "
         "Unsolved"},
        {"x / 3 '", "None",
         " for Quotient, as child1 is None (but not a cst) and child2 is Ambiguous or a distance "
         "or an Angle => UnsolveNoned"},
        {"2 / x", "Unsolved",
         " for Quotient, as child1 is a cst and child2 is not a cst => Unsolved"},
        {"x / y", "None",
         " for Quotient, as child 2 is a cst or child1 is None but not a cst => none"},
        {"2 / (3 + 4)", "None",
         " for Quotient, as child 2 is a cst or child1 is None but not a cst => none"},
        {"3 mm / 2 '", "None",
         " for Quotient, as child1 is  notNone and child2 is Ambiguous => None"},
        {"10 mm / 5 km", "None", " for Quotient, the 2 children are Distances => None"},
        {"10 mm / (2 + 3)", "Distance",
         " for Quotient, as child 1 a distance and child a cst => Distance"},
        {"10 mm / x", "Ambiguous",
         " for Quotient, as child 1 a distance and child is None (but not a Cst)=> Ambiguous"},
        {"10 deg / 5 rad", "None", " for Quotient, the 2 children are Angles => None"},
        {"10 deg / 2", "Angle", " for Quotient, as child 1 an Angle and child a cst => Angle"},
        {"10 deg / y", "Ambiguous",
         " for Quotient, as child 1 an Angle and child is None (but not a Cst)=> Ambiguous"},
        {"10 mm / 2 deg", "Unsolved",
         " for Quotient, as the child1 is Distance or Angle but not the child 2 => Unsolved"},
        {"10 deg / 2 mm", "Unsolved",
         " for Quotient, as the child1 is Distance or Angle but not the child 2 => Unsolved"},
        {"2 mm ^ 2", "Unsolved", " default case for the main part of the operators => Unsolved"},
        {"atan2(2 mm, 3 mm)", "Unsolved",
         " default case for the main part of the operators => Unsolved"},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(KindOf(test.expression), test.kind) << test.expression;
        EXPECT_EQ(RuleOf(test.expression), test.rule) << test.expression;
    }
}

TEST(ZorWBModelHomogeneity, TraceWalksTheOperandsInOrder) {
    ParsedText parsed("x + 2 mm / 4;");
    TraceCapture trace;
    ZorWBModelHomogeneity::FillHomogeneity(parsed.Equation(0)->GetLeftTerm());
    EXPECT_EQ(trace.Lines(),
              (std::vector<std::string>{
                  " Homogeneity OpType =10",
                  " Homogeneity Child1 :",
                  " FillHomogeneity  :x => None",
                  " Homogeneity Child2 :",
                  " Homogeneity OpType =12",
                  " Homogeneity Child1 :",
                  " FillHomogeneity  :2 mm => Distance",
                  " Homogeneity Child2 :",
                  " FillHomogeneity  :4 => None",
                  " for Quotient, as child 1 a distance and child a cst => Distance",
                  " FillHomogeneity  :2 mm / 4 => Distance",
                  " for Sum et Minus, as child1 is Ambiguous or None => Other type =Distance",
                  " FillHomogeneity  :x + 2 mm / 4 => Distance",
              }));
    // An operator without two operands is Unsolved at once: its operands are
    // not traced.
    ParsedText call("sin(2 mm + x);");
    TraceCapture second;
    ZorWBModelHomogeneity::FillHomogeneity(call.Equation(0)->GetLeftTerm());
    EXPECT_EQ(second.Lines(), (std::vector<std::string>{" Homogeneity OpType =19",
                                                        " FillHomogeneity  :sin(2 mm + x) => "
                                                        "Unsolved"}));
}

TEST(ZorWBModelHomogeneity, TraceNeedsTraceLevelOne) {
    ParsedText parsed("x + 2 mm;");
    ZorQelStream stream;
    stream.OpenMemory();
    ZorQelGlobalParameters& parameters = ZorQelGlobalParameters::GetGlobalParameters();
    parameters.SetTraceStream(&stream);
    parameters.SetTraceLevel(0);
    ZorWBModelHomogeneity::FillHomogeneity(parsed.Equation(0)->GetLeftTerm());
    EXPECT_EQ(stream.GetText(), "");
    parameters.SetTraceLevel(1);
    ZorWBModelHomogeneity::FillHomogeneity(parsed.Equation(0)->GetLeftTerm());
    EXPECT_NE(stream.GetText(), "");
    parameters.SetTraceLevel(0);
    parameters.SetTraceStream(nullptr);
}

TEST(ZorWBModelHomogeneity, EquationJudgement) {
    EXPECT_EQ(Judge("x = 5 mm;"), 0);
    EXPECT_EQ(Judge("5 mm = x;"), 1);  // the right term is unitless and not constant
    EXPECT_EQ(Judge("5 mm = 3;"), 0);
    EXPECT_EQ(Judge("1 = 2 deg;"), 1);
    EXPECT_EQ(Judge("x = 2 deg;"), 1);  // None against Angle fails either way
    EXPECT_EQ(Judge("2 deg = x;"), 1);
    EXPECT_EQ(Judge("2 deg = 3;"), 0);
    EXPECT_EQ(Judge("3 = 5 mm;"), 1);
    EXPECT_EQ(Judge("2 mm = 3 deg;"), 1);
    EXPECT_EQ(Judge("2 deg = 3 mm;"), 1);
    EXPECT_EQ(Judge("2 mm = 3 ';"), 0);
    EXPECT_EQ(Judge("2 mm + 3 deg = x;"), 1);
    EXPECT_EQ(Judge("sin(x) = 1;"), 1);
    EXPECT_EQ(Judge("sin(x);"), 1);  // a single Unsolved term
    EXPECT_EQ(Judge("2 mm + 3 deg;"), 0);
    EXPECT_EQ(Judge("x;"), 0);
    EXPECT_EQ(ZorWBModelHomogeneity::JudgeEquation(false, ZorWBUnitKind::None, false, false,
                                                   ZorWBUnitKind::None, false),
              static_cast<int>(0x80004005u));

    ParsedText good("x = 5 mm;\ny = 3 mm + z;");
    EXPECT_EQ(ZorWBModelHomogeneity::CheckHomogeneity(good.model), 0);
    ParsedText bad("x = 5 mm;\n5 mm = x;\ny = 1;");
    EXPECT_EQ(ZorWBModelHomogeneity::CheckHomogeneity(bad.model), 1);
}

// The check and the conversion skip the kind walks that nothing needs, but
// not while the trace shows them: each writes the walk of every equation.
TEST(ZorWBModelHomogeneity, TracedWalksAreNotSkipped) {
    TraceCapture trace;
    ParsedText parsed("x + y = 2;\nz = 1;");
    auto count = [&trace](const ZorWBNode* term) {
        std::string line =
            " FillHomogeneity  :" + ZorWBModelPrinter::Print(term).GetStdString() + " => None";
        int found = 0;
        for (const std::string& each : trace.Lines())
            found += each == line;
        return found;
    };
    const ZorWBNode* sum = parsed.Equation(0)->GetLeftTerm();
    const ZorWBNode* z = parsed.Equation(1)->GetLeftTerm();
    EXPECT_EQ(count(sum), 1);
    EXPECT_EQ(count(z), 1);
    ZorWBFactory factory;
    ZorQelIntArray ids;
    EXPECT_EQ(parsed.model.FillFactory(factory, ids), 0);
    EXPECT_EQ(count(sum), 2);
    EXPECT_EQ(count(z), 2);
}
