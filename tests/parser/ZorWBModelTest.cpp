#include <climits>

#include "ParserTestSupport.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ZorWBModelCheck.h"
#include "parser/ZorWBVisitor.h"

namespace {

// Counts the nodes of each class that a walk accepts.
class CountingVisitor : public ZorWBVisitor {
  public:
    int VisitConstant(ZorWBConstNode&) override { return ++constants, 0; }
    int VisitVariable(ZorWBVarNode&) override { return ++variables, 0; }
    int VisitOperator(ZorWBOpNode&) override { return ++operators, 0; }
    int VisitEquation(ZorWBEqNode& equation) override {
        ++equations;
        return VisitSubtree(equation.GetLeftTerm()) + VisitSubtree(equation.GetRightTerm());
    }
    int constants = 0, variables = 0, operators = 0, equations = 0;
};

}  // namespace

TEST(ZorWBLocation, StepsLinesAndText) {
    ZorWBLocation location;
    EXPECT_STREQ(location.Write().GetString(), "(1,0,1,0)");
    location.IncrementLastColumn(5);
    EXPECT_STREQ(location.Write().GetString(), "(1,0,1,5)");
    location.Step();
    location.IncrementLastColumn(2);
    EXPECT_STREQ(location.Write().GetString(), "(1,5,1,7)");
    location.NextLine();
    EXPECT_STREQ(location.Write().GetString(), "(1,5,2,0)");
    location.SetLocation(3, 4, 3, 9);
    EXPECT_STREQ(location.Write().GetString(), "(3,4,3,9)");
    EXPECT_TRUE(location.Compare(ZorWBLocation(3, 4, 3, 9)));
    EXPECT_FALSE(location.Compare(ZorWBLocation(3, 4, 3, 8)));
    location.SetLastColumn(INT_MAX - 1);
    location.IncrementLastColumn(10);  // saturates instead of overflowing
    EXPECT_EQ(location.GetLastColumn(), INT_MAX);
    location.Reset();
    EXPECT_TRUE(location.Compare(ZorWBLocation()));
}

TEST(ZorWBParserMessenger, CodesLocationsAndText) {
    const std::pair<const char*, int> table[] = {
        {"syntax error, unexpected end of input", 1},
        {"syntax error, unexpected identifier", 2},
        {"syntax error, unexpected integer", 3},
        {"syntax error, unexpected real", 4},
        {"syntax error, unexpected left bracket", 5},
        {"syntax error, unexpected integer, expecting left bracket", 6},
        {"syntax error, unexpected semi-colon", 7},
        {"syntax error, unexpected semi-colon, expecting right bracket", 7},
        {"semantic error, unknown variable name", 21},
        {"semantic error, unknown unit", 22},
        {"semantic error, inconsistent unit", 23},
        {"semantic error, invalid operation with unit", 24},
        {"semantic error, ambiguous Pi", 25},
        {"internal error, unit computation not available", 100},
        {"syntax error, unexpected identifier ", -1},
        {"anything else", -1},
    };
    ZorWBParserMessenger messenger;
    int i = 0;
    for (const auto& [message, code] : table) {
        ZorWBLocation where(i + 1, i, i + 1, i + 2);
        EXPECT_EQ(messenger.ReportError(&where, message), 0);
        EXPECT_EQ(messenger.GetString(), message);
        EXPECT_EQ(messenger.GetMessage(i), message);
        int stored = 0;
        ZorWBLocation location;
        EXPECT_EQ(messenger.GetError(i, stored, location), 0);
        EXPECT_EQ(stored, code) << message;
        EXPECT_TRUE(location.Compare(where));
        ++i;
    }
    EXPECT_EQ(messenger.GetErrorNumber(), i);

    messenger.ReportError(nullptr, nullptr);
    int code = 0;
    ZorWBLocation location(5, 5, 5, 5);
    EXPECT_EQ(messenger.GetError(i, code, location), 1);
    EXPECT_EQ(code, -1);
    EXPECT_TRUE(location.Compare(ZorWBLocation()));
    EXPECT_EQ(messenger.GetError(i + 1, code, location), static_cast<int>(0x80004005u));
    EXPECT_EQ(messenger.GetError(-1, code, location), static_cast<int>(0x80004005u));
    EXPECT_EQ(messenger.GetMessage(i), "");
    EXPECT_EQ(messenger.GetMessage(i + 1), "");
    EXPECT_EQ(messenger.GetMessage(-1), "");
    EXPECT_EQ(messenger.GetMessage(0), "syntax error, unexpected end of input");

    ZorQelIntArray codes;
    ZorQelArray<const ZorWBLocation*> locations;
    messenger.GetErrors(codes, locations);
    ASSERT_EQ(codes.GetSize(), i + 1);
    EXPECT_EQ(codes.Get(7), 7);
    EXPECT_EQ(locations.Get(i), nullptr);
    EXPECT_STREQ(locations.Get(2)->Write().GetString(), "(3,2,3,4)");
}

TEST(ZorWBModel, EquationListAndIds) {
    ZorWBModel model;
    ZorWBLocation here(2, 1, 2, 6);
    ZorWBNode* x = model.CreateVariable(here, "x");
    ZorWBNode* one = model.CreateConstant(here, ZorWBValue(1));
    EXPECT_EQ(model.AddEquation(nullptr), nullptr);
    EXPECT_EQ(model.AddEquation(here, x, ZorWBEqualZero, nullptr), nullptr);
    EXPECT_EQ(model.AddEquation(here, x, ZorWBEquationUnset, one), nullptr);
    EXPECT_EQ(model.AddEquation(here, x, static_cast<ZorWBEquationType>(9), one), nullptr);
    EXPECT_EQ(model.AddEquation(here, nullptr, ZorWBMinimize, nullptr), nullptr);
    ZorWBEqNode* first = model.AddEquation(here, x, ZorWBEqualZero, one);
    ZorWBEqNode* second = model.AddEquation(x);
    ZorWBEqNode* third = model.AddEquation(here, one, ZorWBGreaterZero, x);
    ASSERT_TRUE(first && second && third);
    EXPECT_EQ(first->GetId(), 0);
    EXPECT_EQ(third->GetId(), 2);
    EXPECT_TRUE(first->GetLocation().Compare(here));
    EXPECT_TRUE(second->GetLocation().Compare(ZorWBLocation()));
    EXPECT_EQ(second->GetWBEqType(), ZorWBEquationUnset);
    EXPECT_EQ(model.GetNextEquation(first), second);
    EXPECT_EQ(model.GetPrevEquation(third), second);

    ZorWBEqNode* removed = second;
    EXPECT_EQ(model.RemoveEquation(removed), 0);
    EXPECT_EQ(removed, nullptr);
    EXPECT_EQ(first->GetNext(), third);
    EXPECT_EQ(third->GetPrev(), first);
    EXPECT_EQ(model.GetEquationById(1), nullptr);
    EXPECT_EQ(model.GetNbOfEquations(), 2);
    EXPECT_EQ(model.RemoveEquation(removed), static_cast<int>(0x80004005u));
    ZorWBEqNode* last = third;
    model.RemoveEquation(last);
    EXPECT_EQ(model.GetLastEquation(), first);
    EXPECT_EQ(first->GetNext(), nullptr);
    // Ids keep counting after removals.
    EXPECT_EQ(model.AddEquation(one)->GetId(), 3);

    ZorWBModel other;
    ZorWBEqNode* foreign = other.AddEquation(other.CreateVariable(here, "y"));
    EXPECT_EQ(model.RemoveEquation(foreign), static_cast<int>(0x80004005u));
    EXPECT_NE(foreign, nullptr);
}

TEST(ZorWBModel, ObjectivesAreAddedCheckedFilledAndPrinted) {
    ZorWBModel model;
    ZorWBLocation here(1, 0, 1, 5);
    ZorWBNode* x = model.CreateVariable(here, "x");
    ZorWBNode* y = model.CreateVariable(here, "y");
    ZorWBNode* sum = model.CreateOperator(here, ZorWBExpressionType::Sum,
                                          List({y, model.CreateConstant(here, ZorWBValue(2))}));
    ZorWBEqNode* minimum = model.AddEquation(here, x, ZorWBMinimize, nullptr);
    ZorWBEqNode* maximum = model.AddEquation(here, x, ZorWBMaximize, sum);
    ASSERT_TRUE(minimum && maximum);
    EXPECT_EQ(minimum->GetWBEqType(), ZorWBMinimize);
    EXPECT_EQ(maximum->GetRightTerm(), sum);

    ZorWBParserMessenger messenger;
    EXPECT_EQ(ZorWBModelCheck(&model, &messenger).Run(), 0);
    EXPECT_EQ(ZorWBModelPrinter::Print(model).GetStdString(),
              "x; /* minimize */\nx - (y + 2); /* maximize */\n");

    ZorWBFactory factory;
    ZorQelIntArray ids;
    ASSERT_EQ(model.FillFactory(factory, ids), 0);
    ASSERT_EQ(factory.GetNbOfEquations(), 2);
    EXPECT_EQ(factory.GetEquation(0)->GetType(), ZorWBMinimize);
    EXPECT_EQ(factory.GetEquation(0)->GetRoot(), factory.GetVariable(0));
    EXPECT_EQ(factory.GetEquation(1)->GetType(), ZorWBMaximize);
    EXPECT_EQ(ZorWBEquationPrinter::Print(factory.GetEquation(1)).GetStdString(),
              "x - (y + 2); /* maximize */");
}

TEST(ZorWBModel, VariableNodesFoundByPlaceInAnyOrder) {
    // A second text parsed into the same model reuses the nodes read at the
    // same places, and only those.
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    ZorWBParser::Parse("x + y;\nz;", model, ids, messenger);
    ASSERT_EQ(model.GetNbOfVariables(), 3);
    ZorWBParser::Parse("x + q;\nz + w;", model, ids, messenger);
    EXPECT_EQ(model.GetNbOfVariables(), 5);  // x and z again, q and w new
    ZorQelArray<ZorWBVarNode*> xs;
    EXPECT_EQ(model.GetVariable("x", xs), 1);
    EXPECT_EQ(model.GetEquationById(2)->GetLeftTerm()->GetChild(0), xs.Get(0));
    EXPECT_EQ(model.GetEquationById(3)->GetLeftTerm()->GetChild(0), model.GetVariable("z"));
    // Nodes made by hand in any order of places.
    ZorWBModel byHand;
    std::vector<ZorWBVarNode*> made;
    for (int i = 0; i < 50; ++i) {
        int line = (i * 37) % 11, column = (i * 13) % 7;
        made.push_back(byHand.CreateVariable(ZorWBLocation(line, column, line, column + 1),
                                             i % 2 ? "a" : "b"));
        for (int k = 0; k <= i; ++k) {
            const ZorWBLocation& place = made[k]->GetLocation();
            ZorWBVarNode* found = byHand.GetVariable(made[k]->GetName(), place);
            // The first node made at a place is the one found there.
            EXPECT_TRUE(found && found->GetName() == made[k]->GetName() &&
                        found->GetLocation().Compare(place));
        }
    }
    EXPECT_EQ(byHand.GetVariable("a", ZorWBLocation(99, 0, 99, 1)), nullptr);
    EXPECT_EQ(byHand.GetVariable("c", made[0]->GetLocation()), nullptr);
}

TEST(ZorWBModel, VariablesOperatorsAndParents) {
    ParsedText parsed("x + y * x = x;");
    const ZorWBModel& model = parsed.model;
    EXPECT_EQ(model.GetNbOfVariables(), 4);
    EXPECT_EQ(model.GetNbOfDifferentVariables(), 2);
    ZorQelArray<ZorWBVarNode*> xs;
    EXPECT_EQ(model.GetVariable("x", xs), 3);
    EXPECT_EQ(model.GetVariable("x"), xs.Get(0));
    EXPECT_EQ(model.GetVariable("x", xs.Get(1)->GetLocation()), xs.Get(1));
    EXPECT_EQ(model.GetVariable("x", ZorWBLocation(9, 9, 9, 9)), nullptr);
    EXPECT_EQ(model.GetVariable("z"), nullptr);
    EXPECT_STREQ(xs.Get(1)->GetLocation().Write().GetString(), "(1,8,1,9)");

    ZorWBNode* sum = parsed.Equation(0)->GetLeftTerm();
    ZorWBNode* product = sum->GetChild(1);
    EXPECT_EQ(product->GetParentNode(), sum);
    EXPECT_EQ(product->GetItsIndexAsChild(), 1);
    EXPECT_EQ(product->GetChild(1)->GetItsIndexAsChild(), 1);
    EXPECT_EQ(sum->GetParentNode(), nullptr);

    ZorWBModel built;
    ZorWBLocation here;
    ZorWBNode* a = built.CreateVariable(here, "a");
    EXPECT_EQ(built.CreateOperator(here, ZorWBExpressionType::Constant, List({a})), nullptr);
    EXPECT_EQ(built.CreateOperator(here, ZorWBExpressionType::BlackBox, List({a})), nullptr);
    EXPECT_EQ(built.CreateOperator(here, static_cast<ZorWBExpressionType>(48), List({a})), nullptr);
    EXPECT_EQ(built.CreateOperator(here, ZorWBExpressionType::LessEqual,
                                   static_cast<ZorWBComparisonType>(5), List({a, a})),
              nullptr);
    EXPECT_EQ(built.DeclareBlackBox(here, nullptr, List({a})), nullptr);
    ZorWBOpNode* partial = built.CreateOperator(here, ZorWBExpressionType::Sum, List({a, nullptr}));
    ASSERT_NE(partial, nullptr);
    EXPECT_EQ(partial->GetChild(1), nullptr);
    EXPECT_EQ(partial->GetChild(7), nullptr);
    EXPECT_FALSE(partial->IsConstant());
}

TEST(ZorWBModel, UnitClassification) {
    const std::pair<const char*, const char*> units[] = {{"km", "Distance"},
                                                         {"m", "Distance"},
                                                         {"cm", "Distance"},
                                                         {"mm", "Distance"},
                                                         {"nm", "Distance"},
                                                         {"in", "Distance"},
                                                         {"ft", "Distance"},
                                                         {"micron", "Distance"},
                                                         {"yard", "Distance"},
                                                         {"mile", "Distance"},
                                                         {"in_ft", "Distance"},
                                                         {"rad", "Angle"},
                                                         {"deg", "Angle"},
                                                         {"grad", "Angle"},
                                                         {"turn", "Angle"},
                                                         {"mrad", "Angle"},
                                                         {"%_angle", "Angle"},
                                                         {"\xB0", "Ambiguous"},
                                                         {"'", "Ambiguous"},
                                                         {"\"", "Ambiguous"},
                                                         {"MM", ""},
                                                         {"inch", ""},
                                                         {"", ""}};
    ZorWBModel model;
    for (const auto& [unit, kind] : units) {
        ZorWBConstNode* node =
            model.CreateConstant(ZorWBLocation(), ZorWBValue(2), ZorWBLocation(1, 2, 1, 4), unit);
        EXPECT_EQ(node->GetUnitKind(), kind) << unit;
        EXPECT_TRUE(node->IsADimensionalConstant());
        EXPECT_EQ(node->GetUnitName(), unit);
    }
    ZorWBConstNode* plain = model.CreateConstant(ZorWBLocation(), ZorWBValue(2));
    EXPECT_FALSE(plain->IsADimensionalConstant());
    EXPECT_EQ(plain->GetUnitKind(), "");
}

TEST(ZorWBModel, NodeEqualityConstnessAndVariableNames) {
    ParsedText parsed(
        "a + 2 mm * sin(b) - f(c, 2.5);\n"
        "/* other places */ a + 2 mm * sin(b) - f(c, 2.5);\n"
        "a + 2 cm * sin(b) - f(c, 2.5);\n"
        "a + 2 mm * sin(b) - f(c, 2);\n"
        "a + 2 mm * cos(b) - f(c, 2.5);\n"
        "a + 2 mm * sin(b) - g(c, 2.5);\n"
        "2 * Pi / (3 + sin(1));\n");
    ZorWBNode* first = parsed.Equation(0)->GetLeftTerm();
    EXPECT_TRUE(first->IsEqual(parsed.Equation(1)->GetLeftTerm()));
    for (int i = 2; i < 6; ++i)
        EXPECT_FALSE(first->IsEqual(parsed.Equation(i)->GetLeftTerm())) << i;
    EXPECT_FALSE(first->IsEqual(nullptr));
    EXPECT_TRUE(parsed.Equation(0)->IsEqual(parsed.Equation(1)));

    EXPECT_FALSE(first->IsConstant());
    EXPECT_TRUE(parsed.Equation(6)->GetLeftTerm()->IsConstant());
    EXPECT_FALSE(parsed.Equation(0)->IsConstant());

    ZorQelArray<ZorQelString> names;
    names.Add("c");
    first->FillPresentVariables(names);
    ASSERT_EQ(names.GetSize(), 3);
    EXPECT_EQ(names.Get(1), "a");
    EXPECT_EQ(names.Get(2), "b");

    CountingVisitor counter;
    parsed.model.Accept(counter);
    EXPECT_EQ(counter.equations, 7);
    EXPECT_EQ(counter.variables, 18);
    EXPECT_EQ(counter.constants, 6 * 2 + 4);
}
