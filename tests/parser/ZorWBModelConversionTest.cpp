#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "ExpressionShape.h"
#include "ParserTestSupport.h"
#include "RandomModelText.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBParserResult.h"
#include "values/TestAllocator.h"
#include "values/ZorWBFraction.h"

namespace {

constexpr int Failure = ZorWBParserResult::Failure;

// A text parsed and filled into a factory of its own.
struct Filled {
    ParsedText parsed;
    ZorWBFactory factory;
    ZorQelIntArray ids;
    int status;

    explicit Filled(const char* text, bool applyUnits = true) : parsed(text) {
        status = parsed.model.FillFactory(factory, ids, applyUnits);
    }
    ZorWBExpression* Root(int i = 0) const {
        ZorWBEquation* equation = factory.GetEquation(i);
        return equation ? equation->GetRoot() : nullptr;
    }
    std::string Shape(int i = 0) const { return ::Shape(Root(i)); }
    double Real(int i = 0) const { return Root(i)->GetValue().GetAsReal(); }
};

std::string RootOf(const char* text) {
    Filled filled(text);
    EXPECT_EQ(filled.status, 0) << text;
    return filled.Shape(filled.factory.GetNbOfEquations() - 1);
}

double ValueOf(const char* text) {
    Filled filled(text);
    EXPECT_EQ(filled.status, 0) << text;
    return filled.Real();
}

}  // namespace

TEST(ZorWBModelConversion, NumbersVariablesAndSubtractions) {
    EXPECT_EQ(RootOf("x + 2.5 * y - 3;"), "Sum(Sum(x, Product(2.5, y)), -3)");
    EXPECT_EQ(RootOf("7; 2.0; Pi; 3 Pi;"), "Product(3, Pi)");
    EXPECT_EQ(RootOf("Pi;"), "Pi");
    EXPECT_EQ(RootOf("2.0;"), "2.0");
    // Minus goes through CreateSub, which folds the sign into a leading constant.
    EXPECT_EQ(RootOf("x - y;"), "Sum(x, Product(-1, y))");
    EXPECT_EQ(RootOf("x - 2*y;"), "Sum(x, Product(-2, y))");
    EXPECT_EQ(RootOf("x - 1/y;"), "Sum(x, Quotient(-1, y))");
    EXPECT_EQ(RootOf("x - y/2;"), "Sum(x, Product(-1, Quotient(y, 2)))");
    // Unary minus: constants and products led by a constant fold, the rest
    // is multiplied by -1.
    EXPECT_EQ(RootOf("-3;"), "-3");
    EXPECT_EQ(RootOf("-2.5;"), "-2.5");
    EXPECT_EQ(RootOf("--3;"), "3");
    EXPECT_EQ(RootOf("-x;"), "Product(-1, x)");
    EXPECT_EQ(RootOf("-(2*x);"), "Product(-2, x)");
    EXPECT_EQ(RootOf("-(2*(x*y));"), "Product(-2, Product(x, y))");
    EXPECT_EQ(RootOf("-(2*x*y);"), "Product(-1, Product(Product(2, x), y))");
    EXPECT_EQ(RootOf("-x*y;"), "Product(Product(-1, x), y)");
    EXPECT_EQ(RootOf("-(x/2);"), "Product(-1, Quotient(x, 2))");
    EXPECT_EQ(RootOf("-x^2;"), "Product(-1, Power(x, 2))");

    // One factory variable per name; an existing variable of the name is reused.
    Filled twice("x + y * x;");
    EXPECT_EQ(twice.factory.GetNbOfVariables(), 2);
    EXPECT_EQ(twice.Root()->GetChild(0), twice.Root()->GetChild(1)->GetChild(1));
    ParsedText parsed("y + z;");
    ZorWBFactory factory;
    ZorWBVariable* y = factory.CreateVariable();
    y->SetName("y");
    ZorQelIntArray ids;
    ASSERT_EQ(parsed.model.FillFactory(factory, ids), 0);
    EXPECT_EQ(factory.GetNbOfVariables(), 2);
    EXPECT_EQ(factory.GetEquation(0)->GetRoot()->GetChild(0), y);
    EXPECT_STREQ(factory.GetVariable(1)->GetName().GetString(), "z");
}

TEST(ZorWBModelConversion, FunctionsBecomeTheirOperators) {
    const std::pair<const char*, const char*> unary[] = {
        {"sqrt", "Sqrt"},  {"log", "Log"},     {"ln", "Ln"},       {"exp", "Exp"},
        {"sin", "Sin"},    {"cos", "Cos"},     {"tan", "Tan"},     {"asin", "Asin"},
        {"acos", "Acos"},  {"atan", "Atan"},   {"sinh", "Sinh"},   {"cosh", "Cosh"},
        {"tanh", "Tanh"},  {"asinh", "Asinh"}, {"acosh", "Acosh"}, {"atanh", "Atanh"},
        {"abs", "Abs"},    {"ceil", "Ceil"},   {"floor", "Floor"}, {"round", "Round"},
        {"trunc", "Trunc"}};
    for (const auto& [name, type] : unary) {
        std::string text = std::string(name) + "(x);";
        EXPECT_EQ(RootOf(text.c_str()), std::string(type) + "(x)") << name;
        // A wrong number of arguments is refused by the factory.
        text = std::string(name) + "(x, y);";
        EXPECT_EQ(Filled(text.c_str()).status, Failure) << name;
    }
    const std::pair<const char*, const char*> binary[] = {
        {"atan2", "Atan2"}, {"dim", "Dim"}, {"sign", "Sign"}, {"mod", "Mod"}, {"int", "Integrate"}};
    for (const auto& [name, type] : binary) {
        std::string text = std::string(name) + "(y, x);";
        EXPECT_EQ(RootOf(text.c_str()), std::string(type) + "(y, x)") << name;
        text = std::string(name) + "(y);";
        EXPECT_EQ(Filled(text.c_str()).status, Failure) << name;
    }
    EXPECT_EQ(RootOf("min(a, b, c) + max(a, b);"), "Sum(Min(a, b, c), Max(a, b))");
    EXPECT_EQ(RootOf("round(x, 0.5, 1);"), "Round(x, 0.5, 1)");
    Filled step("step(x, 1, 2.5, -3, 4);");
    ASSERT_EQ(step.Shape(), "Step(x)");
    EXPECT_EQ(step.Root()->GetParameter(0), 1.0);
    EXPECT_EQ(step.Root()->GetParameter(1), 2.5);
    EXPECT_EQ(step.Root()->GetParameter(2), -3.0);
    EXPECT_EQ(step.Root()->GetParameter(3), 4.0);
    EXPECT_EQ(Filled("step(x, y, 1, 2, 3);").status, Failure);  // parameters are numbers
}

TEST(ZorWBModelConversion, ConditionsAndComparisons) {
    EXPECT_EQ(RootOf("y = if (a <= b) then (1) else (2);"),
              "Sum(y, Product(-1, IfThenElse(LessEqual(a, b), 1, 2)))");
    const std::pair<const char*, const char*> comparisons[] = {
        {"a <= b", "LessEqual(a, b)"},
        {"a < b", "Not(LessEqual(b, a))"},
        {"a >= b", "LessEqual(b, a)"},
        {"a > b", "Not(LessEqual(a, b))"},
        {"a == b", "Equal(a, b)"},
        {"a != b", "NotEqual(a, b)"},
        {"!(a < b)", "Not(Not(LessEqual(b, a)))"},
        {"!(a == b)", "Equal(a, b)"},
        {"a < b and c == d or e != f",
         "Or(And(Not(LessEqual(b, a)), Equal(c, d)), NotEqual(e, f))"},
    };
    for (const auto& [condition, shape] : comparisons) {
        std::string text = std::string("if (") + condition + ") then (1) else (2);";
        EXPECT_EQ(RootOf(text.c_str()), std::string("IfThenElse(") + shape + ", 1, 2)")
            << condition;
    }
    // A LessEqual node built without a comparison type reads as <=.
    ZorWBModel model;
    ZorWBLocation here;
    ZorWBNode* compare = model.CreateOperator(
        here, ZorWBExpressionType::LessEqual,
        List({model.CreateVariable(here, "a"), model.CreateVariable(here, "b")}));
    ZorWBFactory factory;
    ZorWBExpression* expression = nullptr;
    ASSERT_EQ(model.ConvertNodeToExpr(compare, factory, expression), 0);
    EXPECT_EQ(Shape(expression), "LessEqual(a, b)");
}

TEST(ZorWBModelConversion, BlackBoxCallsAndTheirTheoreticalVariables) {
    Filled calls("f(x) + f(x) + g();");
    ASSERT_EQ(calls.status, 0);
    EXPECT_EQ(calls.Shape(), "Sum(Sum(BlackBox:f(x), BlackBox:f(x)), BlackBox:g())");
    EXPECT_EQ(calls.factory.GetNbOfBlackBoxes(), 2);
    EXPECT_FALSE(calls.factory.GetBlackBox(0)->IsInternal());  // the caller still owns it

    // An equation named after the black box must list one variable per argument.
    for (int listed : {1, 2, 3}) {
        ParsedText parsed("f(x, y);");
        ZorWBFactory factory;
        ZorWBEquation* named = factory.AddEquation(factory.CreateVariable(), ZorWBEqualZero);
        named->SetName("f");
        ZorQelIntArray list;
        for (int i = 0; i < listed; ++i)
            list.Add(i);
        named->SetTheoreticalVarList(&list);
        ZorQelIntArray ids;
        EXPECT_EQ(parsed.model.FillFactory(factory, ids), listed == 2 ? 0 : Failure) << listed;
    }
}

TEST(ZorWBModelConversion, HandBuiltShapesAndVariableTables) {
    ZorWBModel model;
    ZorWBLocation here;
    ZorWBVarNode* x = model.CreateVariable(here, "x");
    ZorWBVarNode* y = model.CreateVariable(here, "y");
    ZorWBFactory broken;
    ZorWBExpression* expression = nullptr;

    ZorWBNode* minus3 = model.CreateOperator(
        here, ZorWBExpressionType::Minus, List({x, y, model.CreateConstant(here, ZorWBValue(1))}));
    EXPECT_EQ(model.ConvertNodeToExpr(minus3, broken, expression), Failure);
    EXPECT_EQ(expression, nullptr);
    EXPECT_EQ(model.GetFailedNode(), minus3);
    ZorWBNode* missing = model.CreateOperator(here, ZorWBExpressionType::Sum, List({x, nullptr}));
    EXPECT_EQ(model.ConvertNodeToExpr(missing, broken, expression), Failure);
    EXPECT_EQ(model.GetFailedNode(), missing);
    EXPECT_EQ(model.ConvertNodeToExpr(nullptr, broken, expression), Failure);
    ZorWBEqNode* equation = model.AddEquation(here, x, ZorWBEqualZero, y);
    EXPECT_EQ(model.ConvertNodeToExpr(equation, broken, expression), 1);
    EXPECT_EQ(expression, nullptr);

    ZorWBFactory factory;

    // Tables: the node's position in the node table picks the variable.
    ZorWBVariable* u = factory.CreateVariable();
    ZorWBVariable* v = factory.CreateVariable();
    ZorWBVarNodeTable nodes;
    nodes.Add(y);
    nodes.Add(x);
    ZorWBVariableTable variables;
    variables.Add(u);
    variables.Add(v);
    EXPECT_EQ(ZorWBModel::Locate(x, nodes), 1);
    EXPECT_EQ(ZorWBModel::Locate(y, nodes), 0);
    EXPECT_EQ(ZorWBModel::Locate(nullptr, nodes), -1);
    ZorWBNode* sum = model.CreateOperator(here, ZorWBExpressionType::Sum, List({x, y}));
    ASSERT_EQ(model.ConvertNodeToExpr(sum, factory, expression, true, &nodes, &variables), 0);
    EXPECT_EQ(expression->GetChild(0), v);
    EXPECT_EQ(expression->GetChild(1), u);
    ZorWBVariable* found = nullptr;
    EXPECT_EQ(model.ConvertVarNodeToExpr(x, factory, found, &nodes, &variables), 0);
    EXPECT_EQ(found, v);
    ZorWBVarNode* other = model.CreateVariable(ZorWBLocation(2, 0, 2, 1), "x");
    EXPECT_EQ(model.ConvertVarNodeToExpr(other, factory, found, &nodes, &variables), Failure);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(model.GetFailedNode(), other);
    // Without tables the name decides, and a variable is made for a new name.
    EXPECT_EQ(model.ConvertVarNodeToExpr(other, factory, found), 0);
    EXPECT_STREQ(found->GetName().GetString(), "x");
    EXPECT_EQ(factory.GetNbOfVariables(), 3);
    // A table entry of another factory is refused.
    ZorWBFactory elsewhere;
    variables.Set(1, elsewhere.CreateVariable());
    EXPECT_EQ(model.ConvertVarNodeToExpr(x, factory, found, &nodes, &variables), Failure);
}

TEST(ZorWBModelConversion, UnitsConvertToMillimetresAndRadians) {
    const std::pair<const char*, const char*> exact[] = {
        {"1 km;", "1000000"},
        {"2 m;", "2000"},
        {"3 cm;", "30"},
        {"4 mm;", "4"},
        {"5 nm;", "5e-06"},
        {"1 in;", "25.4"},
        {"1 ft;", "304.8"},
        {"2 micron;", "0.002"},
        {"1 yard;", "914.4"},
        {"1 mile;", "1609344"},
        {"1 in_ft;", "25.4"},
        {"2.5 mm;", "2.5"},
        {"2.5 m;", "2500.0"},
        {"1 rad;", "1"},
        {"Pi rad;", "Pi"},
        {"3000 km;", "3e+09"},  // beyond the integers: a real
        {"(x) mm;", "x"},
        {"(a + b) m;", "Product(1000, Sum(a, b))"},
        {"(a + b) deg;", "Product(0.017453292519943295, Sum(a, b))"},
    };
    for (const auto& [text, shape] : exact)
        EXPECT_EQ(RootOf(text), shape) << text;

    const std::pair<const char*, double> angles[] = {
        {"180 deg;", ZorWBPi},      {"200 grad;", ZorWBPi},   {"0.5 turn;", ZorWBPi},
        {"1000 mrad;", 1.0},        {"50 %_angle;", ZorWBPi}, {"-90 deg;", -ZorWBPi / 2},
        {"2 Pi rad;", 2 * ZorWBPi},
    };
    for (const auto& [text, radians] : angles)
        EXPECT_NEAR(ValueOf(text), radians, 1e-15) << text;

    Filled sine("sin(30 deg);");
    ASSERT_EQ(sine.status, 0);
    EXPECT_NEAR(sine.Real(), 0.5, 1e-15);
    EXPECT_TRUE(sine.Root()->GetValue().IsEqualTo(sine.factory.GetEnvironment(), ZorWBValue(0.5)));
    EXPECT_EQ(Filled("1 in;").Real(), 25.4);

    // Without units the numbers keep their written values.
    EXPECT_EQ(Filled("1 in + (a) deg;", false).Shape(), "Sum(1, a)");
    // An unknown unit cannot be converted.
    Filled unknown("3 furlong;");
    EXPECT_EQ(unknown.status, Failure);
    EXPECT_EQ(unknown.parsed.model.GetFailedNode()->GetNodeKind(), ZorWBConstantNode);
}

TEST(ZorWBModelConversion, AmbiguousMarksReadByTheirContext) {
    const double foot = 304.8, inch = 25.4, minute = ZorWBPi / 10800, second = ZorWBPi / 648000;
    // The root is x - quantity: its second child holds -quantity.
    auto quantity = [](const char* text) {
        Filled filled(text);
        EXPECT_EQ(filled.status, 0) << text;
        return -filled.Root()->GetChild(1)->GetValue().GetAsReal();
    };
    EXPECT_NEAR(quantity("x = 5';"), 5 * minute, 1e-15);  // an angle by default
    EXPECT_NEAR(quantity("x = 5\";"), 5 * second, 1e-15);
    EXPECT_NEAR(quantity("x = 30' + 1 deg;") - ZorWBPi / 180, 30 * minute, 1e-15);
    EXPECT_NEAR(quantity("x = 5' + 2 mm;") - 2, 5 * foot, 1e-9);
    EXPECT_NEAR(quantity("x = 2 mm + 5\";") - 2, 5 * inch, 1e-9);
    // The other side of the equation decides when the term does not.
    EXPECT_NEAR(quantity("(x) mm = 3';"), 3 * foot, 1e-9);
    EXPECT_NEAR(quantity("(x) deg = 3';"), 3 * minute, 1e-15);
    // A mark deep in a product still reads by the sum above it.
    EXPECT_NEAR(quantity("x = 2 * 3' + 1 mm;") - 1, 6 * foot, 1e-9);
    // Branches of a choice share their kind; the condition does not count.
    Filled branches("d = if (c > 1 mm) then (5' + 1 mm) else (6');");
    ASSERT_EQ(branches.status, 0);
    const ZorWBExpression* choice = branches.Root()->GetChild(1)->GetChild(1);
    EXPECT_NEAR(choice->GetChild(2)->GetValue().GetAsReal(), 6 * foot, 1e-9);
    Filled condition("d = if (c > 5') then (1) else (2);");
    const ZorWBExpression* test = condition.Root()->GetChild(1)->GetChild(1)->GetChild(0);
    EXPECT_NEAR(test->GetChild(0)->GetChild(1)->GetValue().GetAsReal(), 5 * minute, 1e-15);
    // The degree sign (only in models built by hand) is always the degree.
    ZorWBModel model;
    ZorWBLocation here;
    ZorWBNode* degrees = model.CreateConstant(here, ZorWBValue(90), here, "\xB0");
    ZorWBNode* sum = model.CreateOperator(
        here, ZorWBExpressionType::Sum,
        List({degrees, model.CreateConstant(here, ZorWBValue(1), here, "mm")}));
    ZorWBFactory factory;
    ZorWBExpression* expression = nullptr;
    ASSERT_EQ(model.ConvertNodeToExpr(sum, factory, expression), 0);
    EXPECT_NEAR(expression->GetChild(0)->GetValue().GetAsReal(), ZorWBPi / 2, 1e-15);
    // A subtree converted alone reads its marks within its own term.
    ZorWBNode* feet = model.CreateConstant(here, ZorWBValue(2), here, "'");
    model.CreateOperator(here, ZorWBExpressionType::Sum,
                         List({feet, model.CreateConstant(here, ZorWBValue(1), here, "m")}));
    ASSERT_EQ(model.ConvertNodeToExpr(feet, factory, expression), 0);
    EXPECT_NEAR(expression->GetValue().GetAsReal(), 2 * foot, 1e-9);
}

TEST(ZorWBModelConversion, EveryTwoTermEquationHasTheDifferenceOfItsTermsAsRoot) {
    EXPECT_EQ(RootOf("x = 0;"), "Sum(x, 0)");
    EXPECT_EQ(RootOf("x != 0;"), "Sum(x, 0)");
    EXPECT_EQ(RootOf("sin(x) >= 0.0;"), "Sum(Sin(x), -0.0)");
    EXPECT_EQ(RootOf("0 = x;"), "Sum(0, Product(-1, x))");
    // On random statements: the root is CreateSub of the two terms, each
    // converted on its own (without units, which could read by the other
    // side).
    RandomModelText random(17);
    for (int round = 0; round < 400; ++round) {
        std::string text = random.Statement(1 + round % 3);
        ParsedText parsed(text.c_str());
        const ZorWBEqNode* equation = parsed.model.GetFirstEquation();
        if (parsed.errors || !equation || !equation->GetRightTerm()) continue;
        ZorWBFactory factory;
        ZorQelIntArray ids;
        if (parsed.model.FillFactory(factory, ids, false) != 0) continue;
        ZorWBExpression *left = nullptr, *right = nullptr;
        ASSERT_EQ(parsed.model.ConvertNodeToExpr(equation->GetLeftTerm(), factory, left, false), 0);
        ASSERT_EQ(parsed.model.ConvertNodeToExpr(equation->GetRightTerm(), factory, right, false),
                  0);
        EXPECT_TRUE(factory.GetEquation(0)->GetRoot()->IsEqualTo(factory.CreateSub(left, right)))
            << text;
    }
}

TEST(ZorWBModelConversion, AMarkInARepeatedCallReadsTheContextOfEachUse) {
    const double foot = 304.8, minute = ZorWBPi / 10800;
    // One model node for f(3') in both equations; its mark is three feet
    // beside a length and three arc minutes beside an angle.
    Filled filled("y = f(3') + 1 mm; z = f(3') + 1 deg; w = f(3');");
    ASSERT_EQ(filled.status, 0);
    const ZorWBEqNode* first = filled.parsed.model.GetFirstEquation();
    ASSERT_EQ(first->GetRightTerm()->GetChild(0), first->GetNext()->GetRightTerm()->GetChild(0));
    auto mark = [&](int equation, bool inSum) {
        // The root is name - term: Sum(name, Product(-1, term)).
        const ZorWBExpression* term = filled.Root(equation)->GetChild(1)->GetChild(1);
        const ZorWBExpression* call = inSum ? term->GetChild(0) : term;
        return call->GetChild(0)->GetValue().GetAsReal();
    };
    EXPECT_NEAR(mark(0, true), 3 * foot, 1e-9);
    EXPECT_NEAR(mark(1, true), 3 * minute, 1e-15);
    EXPECT_NEAR(mark(2, false), 3 * minute, 1e-15);  // nothing decides: an angle
}

TEST(ZorWBModelConversion, FillFactoryAddsOneEquationPerStatement) {
    Filled filled("2*x + 3*y = 12; x - y <= 1; x; x != 0; x < 1 mm; x >= 0.0; x > 0 mm;");
    ASSERT_EQ(filled.status, 0);
    ASSERT_EQ(filled.factory.GetNbOfEquations(), 7);
    ASSERT_EQ(filled.ids.GetSize(), 7);
    const ZorWBEquationType types[] = {ZorWBEqualZero,    ZorWBLessEqualZero, ZorWBEquationUnset,
                                       ZorWBNotEqualZero, ZorWBLessZero,      ZorWBGreaterEqualZero,
                                       ZorWBGreaterZero};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(filled.ids.Get(i), i);
        EXPECT_EQ(filled.factory.GetEquation(i)->GetType(), types[i]) << i;
    }
    EXPECT_EQ(filled.Shape(0), "Sum(Sum(Product(2, x), Product(3, y)), -12)");
    EXPECT_EQ(filled.Shape(1), "Sum(Sum(x, Product(-1, y)), -1)");
    EXPECT_EQ(filled.Shape(2), "x");
    EXPECT_EQ(filled.Shape(3), "Sum(x, 0)");
    EXPECT_EQ(filled.Shape(4), "Sum(x, -1)");
    EXPECT_EQ(filled.Shape(5), "Sum(x, -0.0)");
    EXPECT_EQ(filled.Shape(6), "Sum(x, 0)");

    // Ids are appended; a failing statement stops the filling there.
    ParsedText parsed("a = 1; sin(a, b) = 2; b = 3;");
    ZorWBFactory factory;
    ZorQelIntArray ids;
    ids.Add(42);
    EXPECT_EQ(parsed.model.FillFactory(factory, ids), Failure);
    ASSERT_EQ(ids.GetSize(), 2);
    EXPECT_EQ(ids.Get(0), 42);
    EXPECT_EQ(factory.GetNbOfEquations(), 1);
    const ZorWBNode* failed = parsed.model.GetFailedNode();
    ASSERT_NE(failed, nullptr);
    EXPECT_EQ(static_cast<const ZorWBOpNode*>(failed)->GetType(), ZorWBExpressionType::Sin);
    EXPECT_STREQ(failed->GetLocation().Write().GetString(), "(1,7,1,16)");

    // The expression form adds no equation.
    Filled none("");
    ParsedText two("x = 1; y;");
    ZorQelArray<ZorWBExpression*> roots;
    ASSERT_EQ(two.model.FillFactory(none.factory, true, nullptr, nullptr, roots), 0);
    ASSERT_EQ(roots.GetSize(), 2);
    EXPECT_EQ(Shape(roots.Get(0)), "Sum(x, -1)");
    EXPECT_EQ(Shape(roots.Get(1)), "y");
    EXPECT_EQ(none.factory.GetNbOfEquations(), 0);
}

TEST(ZorWBParser, ReadZorWBExpressionReturnsTheLastRoot) {
    ZorWBFactory factory;
    ZorQelListPZorWBBlackBox blackBoxes;
    EXPECT_EQ(ZorWBParser::ReadZorWBExpression("", factory, blackBoxes), nullptr);
    EXPECT_EQ(ZorWBParser::ReadZorWBExpression("/* nothing */", factory, blackBoxes), nullptr);
    EXPECT_EQ(Shape(ZorWBParser::ReadZorWBExpression("x^2 + 1;", factory, blackBoxes)),
              "Sum(Power(x, 2), 1)");
    EXPECT_EQ(Shape(ZorWBParser::ReadZorWBExpression("a = 1; x - 2 in;", factory, blackBoxes)),
              "Sum(x, -50.8)");
    EXPECT_EQ(factory.GetNbOfEquations(), 3);
    EXPECT_EQ(factory.GetNbOfVariables(), 2);  // x is found again by its name

    // Black boxes that the factory calls belong to it from then on.
    ZorWBExpression* call = ZorWBParser::ReadZorWBExpression("f(x) + 1;", factory, blackBoxes);
    EXPECT_EQ(Shape(call), "Sum(BlackBox:f(x), 1)");
    ASSERT_EQ(blackBoxes.GetSize(), 1);
    EXPECT_TRUE(blackBoxes.Get(0)->IsInternal());
    // After a failed filling the black boxes the factory does not call are
    // deleted and taken off the list; those it calls stay with it.
    ZorWBParser::ReadZorWBExpression("sin(x, y) + g(x);", factory, blackBoxes);
    EXPECT_EQ(blackBoxes.GetSize(), 1);
    ZorWBParser::ReadZorWBExpression("h(x) + sin(x, y);", factory, blackBoxes);
    ASSERT_EQ(blackBoxes.GetSize(), 2);
    EXPECT_TRUE(blackBoxes.Get(1)->IsInternal());
    EXPECT_EQ(factory.GetBlackBoxByName("h"), blackBoxes.Get(1));
}

TEST(ZorWBParserDeathTest, ReadZorWBExpressionEndsTheProcessOnErrors) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ZorWBFactory factory;
    ZorQelListPZorWBBlackBox blackBoxes;
    EXPECT_EXIT(ZorWBParser::ReadZorWBExpression("x = ;", factory, blackBoxes),
                testing::ExitedWithCode(100),
                "^ReadZorWBExpression syntax error :x = ;\nsyntax error, unexpected semi-colon");
    EXPECT_EXIT(ZorWBParser::ReadZorWBExpression("x = 3 furlong;", factory, blackBoxes),
                testing::ExitedWithCode(100),
                "ReadZorWBExpression syntax error :x = 3 furlong;\nsemantic error, unknown unit\n");
}

TEST(ZorWBParser, ScannerFaultsAreReportedInsteadOfEndingTheProcess) {
    const std::size_t limit = 1 << 20;
    std::string text(2 * limit, ' ');
    text += "x;";
    {
        ZorWBModel model;
        ZorQelIntArray ids;
        ZorWBParserMessenger messenger;
        int errors = 0;
        {
            LargeAllocationsFail failing(limit);
            errors = ZorWBParser::Parse(text.c_str(), model, ids, messenger);
        }
        EXPECT_EQ(errors, 1);
        EXPECT_EQ(messenger.GetString(), "out of dynamic memory in yy_scan_bytes()");
        EXPECT_EQ(ZorWBParserMessenger::CodeOfMessage(messenger.GetString().GetString()), -1);
    }
    // From a stream, a token longer than the buffer can grow to.
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    std::string identifier(2 * limit, 'a');
    std::fputs(identifier.c_str(), file);
    std::fputs(" = 1;", file);
    std::rewind(file);
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    {
        LargeAllocationsFail failing(limit);
        EXPECT_EQ(ZorWBParser::Parse(file, model, ids, messenger), 1);
    }
    EXPECT_EQ(messenger.GetString(), "fatal error - scanner input buffer overflow");
    EXPECT_EQ(model.GetNbOfEquations(), 0);
    // The same stream reads normally once memory is there.
    std::rewind(file);
    ZorWBModel again;
    ZorWBParserMessenger quiet;
    EXPECT_EQ(ZorWBParser::Parse(file, again, ids, quiet), 0);
    EXPECT_EQ(again.GetNbOfEquations(), 1);
    std::fclose(file);
}

TEST(ZorWBNode, ConstantsCompareByValueUnderTheTolerance) {
    ZorWBModel model;
    ZorWBLocation here;
    ZorWBNode* one = model.CreateConstant(here, ZorWBValue(1.0));
    EXPECT_TRUE(one->IsEqual(model.CreateConstant(here, ZorWBValue(1.0 + 4e-16))));
    EXPECT_FALSE(one->IsEqual(model.CreateConstant(here, ZorWBValue(1.0 + 1e-9))));
    EXPECT_FALSE(one->IsEqual(model.CreateConstant(here, ZorWBValue(1))));  // kinds differ
    ZorWBNode* interval = model.CreateConstant(here, ZorWBValue(ZorWBRealInterval{0.0, 1.0}));
    EXPECT_TRUE(
        interval->IsEqual(model.CreateConstant(here, ZorWBValue(ZorWBRealInterval{0.0, 1.0}))));
    EXPECT_FALSE(
        interval->IsEqual(model.CreateConstant(here, ZorWBValue(ZorWBRealInterval{0.0, 2.0}))));
}
