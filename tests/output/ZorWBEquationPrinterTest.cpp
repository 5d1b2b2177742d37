#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "RandomExpression.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ParserTestSupport.h"
#include "parser/ZorWBParser.h"

namespace {

std::string Text(const ZorWBExpression* e) {
    return ZorWBEquationPrinter::Print(e).GetString();
}

std::string Text(const ZorWBValue& value) {
    return ZorWBEquationPrinter::PrintValue(value).GetString();
}

// Reads the text of an expression back into the factory.
ZorWBExpression* ReadBack(ZorWBFactory& factory, const std::string& text) {
    ZorQelListPZorWBBlackBox blackBoxes;
    return ZorWBParser::ReadZorWBExpression((text + ";").c_str(), factory, blackBoxes);
}

// A factory with the variables a to f, x, y and z, for writing small shapes.
struct Shapes {
    ZorWBFactory f;
    ZorWBExpression *a, *b, *c, *d, *x, *y;
    Shapes() {
        a = Variable("a");
        b = Variable("b");
        c = Variable("c");
        d = Variable("d");
        x = Variable("x");
        y = Variable("y");
    }
    ZorWBExpression* Variable(const char* name) {
        ZorWBVariable* variable = f.CreateVariable();
        variable->SetName(name);
        return variable;
    }
    ZorWBExpression* Int(int n) { return f.CreateIntegerConstant(n); }
    ZorWBExpression* Real(double r) { return f.CreateRealConstant(r); }
    ZorWBExpression* Many(ZorWBExpressionType type, std::initializer_list<ZorWBExpression*> list) {
        std::vector<ZorWBExpression*> operands(list);
        return f.CreateOperator(type, static_cast<int>(operands.size()), operands.data());
    }
};

// Real evaluation that treats two NaNs as equal.
bool SameReal(double u, double v) {
    if (std::isnan(u) || std::isnan(v)) return std::isnan(u) && std::isnan(v);
    return u == v || std::fabs(u - v) <= 1e-9 * std::fmax(1.0, std::fabs(u));
}

}  // namespace

TEST(ZorWBEquationPrinter, ArithmeticWithTheFewestBrackets) {
    Shapes s;
    ZorWBFactory& f = s.f;
    const std::pair<ZorWBExpression*, const char*> cases[] = {
        {f.CreateSub(s.x, s.Int(3)), "x - 3"},
        {f.CreateSub(s.x, f.CreateProduct(s.Int(2), s.y)), "x - 2 * y"},
        {f.CreateSub(s.x, s.y), "x - y"},
        {f.CreateSub(s.x, f.CreateQuotient(s.Int(1), s.y)), "x - 1 / y"},
        {f.CreateSub(s.x, f.CreateSum(s.a, s.b)), "x - (a + b)"},
        {f.CreateSub(s.x, f.CreateQuotient(s.a, s.b)), "x - a / b"},
        {f.CreateSub(s.x, f.CreateSub(s.a, s.b)), "x - (a - b)"},
        {f.CreateSum(s.x, f.CreateProduct(s.Int(-1), s.Int(5))), "x - 1 * 5"},
        {f.CreateSum(s.x, f.CreateProduct(s.Int(-2), f.CreateSum(s.a, s.b))), "x - 2 * (a + b)"},
        {f.CreateSum(s.x, f.CreateQuotient(s.Real(-2.5), f.CreateProduct(s.a, s.b))),
         "x - 2.5 / (a * b)"},
        {f.CreateSum(s.Int(-3), s.x), "-3 + x"},
        {f.CreateDifference(s.x, s.y), "x + y * -1"},
        {f.CreateProduct(s.Int(-1), s.y), "-y"},
        {f.CreateProduct(s.Int(-1), s.Int(5)), "-1 * 5"},
        {f.CreateProduct(s.Int(-1), f.CreateProduct(s.Int(2), s.y)), "-1 * (2 * y)"},
        {f.CreateProduct(s.Int(-1), f.CreateProduct(s.a, s.y)), "-(a * y)"},
        {f.CreateProduct(f.CreateProduct(s.Int(-1), s.a), s.b), "-a * b"},
        {f.CreatePower(f.CreateProduct(s.Int(-1), s.x), s.Int(2)), "(-x) ^ 2"},
        {f.CreateProduct(s.Int(-1), f.CreatePower(s.x, s.Int(2))), "-x ^ 2"},
        {f.CreatePower(s.x, s.Int(-2)), "x ^ (-2)"},
        {f.CreatePower(s.Int(-2), s.x), "(-2) ^ x"},
        {f.CreateProduct(s.x, s.Int(-3)), "x * -3"},
        {f.CreateQuotient(s.a, f.CreateProduct(s.b, s.c)), "a / (b * c)"},
        {f.CreateQuotient(f.CreateProduct(s.b, s.c), s.a), "b * c / a"},
        {f.CreatePower(f.CreatePower(s.a, s.b), s.c), "(a ^ b) ^ c"},
        {f.CreatePower(s.a, f.CreatePower(s.b, s.c)), "a ^ b ^ c"},
        {f.CreateSum(s.a, f.CreateSum(s.b, s.c)), "a + (b + c)"},
        {f.CreateProduct(f.CreateSum(s.a, s.b), f.CreateSub(s.c, s.d)), "(a + b) * (c - d)"},
        {s.Many(ZorWBExpressionType::Sum, {s.a, s.Int(-2), s.c}), "a - 2 + c"},
        {s.Many(ZorWBExpressionType::Product, {s.a, s.b, s.c}), "a * b * c"},
        {f.CreateUnaryMinus(f.CreateSum(s.a, s.b)), "-(a + b)"},
        {f.CreateRoot(f.CreateSum(s.a, s.b), 3), "(a + b) ^ (1 / 3)"},
    };
    for (const auto& [expression, text] : cases)
        EXPECT_EQ(Text(expression), text);
}

TEST(ZorWBEquationPrinter, NumbersCallsAndConditions) {
    ZorWBBBx blackBox(ZorQelString("f"));  // outlives the factory that calls it
    Shapes s;
    ZorWBFactory& f = s.f;
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<ZorWBExpression*, const char*> cases[] = {
        {s.Real(2.0), "2.0"},
        {s.Real(-0.0), "-0.0"},
        {s.Real(0.1), "0.1"},
        {s.Real(1e22), "1e+22"},
        {s.Real(-2.5e-7), "-2.5e-07"},
        {s.Real(inf), "1e999"},
        {s.Real(-inf), "-1e999"},
        {s.Real(std::nan("")), "(0.0 / 0.0)"},
        {s.Int(-2147483647), "-2147483647"},
        {f.GetPi(), "Pi"},
        {f.GetPiByTwo(), "(1/2*Pi)"},
        {f.GetDToR(), "(1/180*Pi)"},
        {f.GetRToD(), "(180*Pi^-1)"},
        {f.GetIndefinite(), "undefined"},
        {s.Many(ZorWBExpressionType::Min, {s.a, s.b, s.c}), "min(a, b, c)"},
        {f.CreateAtan2(s.y, s.x), "atan2(y, x)"},
        {f.CreateSin(f.CreateProduct(s.Int(-1), s.x)), "sin(-x)"},
        {f.CreateStep(s.x, 0.0, 1.0, 2.5, -1.0), "step(x, 0.0, 1.0, 2.5, -1.0)"},
        {f.CreateOperator(ZorWBExpressionType::Round, s.x, s.Real(0.5), s.Int(1)),
         "round(x, 0.5, 1)"},
        {f.CreateIntegrateOperator(f.CreateCos(s.x), s.x), "int(cos(x), x)"},
        {f.CreateIfThenElse(f.CreateAnd(f.CreateLessEqual(s.a, s.b), f.CreateGreater(s.c, s.d)),
                            s.Int(1), s.Int(2)),
         "if (a <= b and c > d) then (1) else (2)"},
        {f.CreateIfThenElse(f.CreateOr(f.CreateEqual(s.a, s.b), f.CreateLess(s.c, s.d)), s.x, s.y),
         "if (a == b or d > c) then (x) else (y)"},
        {f.CreateIfThenElse(f.CreateNot(f.CreateNotEqual(s.a, s.b)), s.x, s.y),
         "if (!(a != b)) then (x) else (y)"},
        {f.CreateIfThenElse(f.CreateNot(f.CreateLess(s.a, s.b)), s.x, s.y),
         "if (!(b > a)) then (x) else (y)"},
        {f.CreateIfThenElse(f.CreateNot(f.CreateEqual(s.a, s.b)), s.x, s.y),
         "if (a != b) then (x) else (y)"},
        {f.CreateIfThenElse(
             f.CreateImplication(f.CreateLessEqual(s.a, s.b), f.CreateEqual(s.c, s.d)), s.x, s.y),
         "if (a > b or c == d) then (x) else (y)"},
        {f.CreateIfThenElse(
             f.CreateOr(f.CreateLessEqual(s.a, s.b),
                        f.CreateAnd(f.CreateLessEqual(s.c, s.d), f.CreateEqual(s.x, s.y))),
             s.x, s.y),
         "if (c <= d and x == y or a <= b) then (x) else (y)"},
        {f.CreateLessEqual(s.a, s.b), "(a <= b)"},
        {f.CreateSum(s.x, f.CreateEqual(s.a, s.b)), "x + (a == b)"},
        {f.CreateIfThenElse(s.x, s.a, s.b), "if (x) then (a) else (b)"},
    };
    for (const auto& [expression, text] : cases)
        EXPECT_EQ(Text(expression), text);

    ZorWBExpression* args[] = {s.x, s.Int(1)};
    EXPECT_EQ(Text(f.DeclareBlackBox(&blackBox, 2, args, false)), "f(x, 1)");
    EXPECT_EQ(Text(f.DeclareBlackBox(&blackBox, 0, nullptr, false)), "f()");
    EXPECT_EQ(Text(nullptr), "?");
    // An unnamed variable prints with its default name, which reads back.
    ZorWBVariable* unnamed = f.CreateVariable();
    EXPECT_EQ(Text(unnamed), "va6");
    EXPECT_EQ(ReadBack(f, "va6 + 1")->GetChild(0), unnamed);
}

TEST(ZorWBEquationPrinter, ValuesOnOneLine) {
    ZorWBValue realEnum;
    const double reals[] = {0.5, 2.0, -1.0};
    realEnum.Set(3, reals);
    ZorWBValue integerEnum;
    const int integers[] = {3, 1, 2};
    integerEnum.Set(3, integers);
    ZorWBValue interval{ZorWBIntegerEnum(ZorWBEnumInterval)};
    interval.GetIntegerEnum().SetAsIntegerInterval({2, 9});
    const std::pair<ZorWBValue, const char*> cases[] = {
        {ZorWBValue(3), "3"},
        {ZorWBValue(3.5), "3.5"},
        {ZorWBValue(ZorWBIntegerInterval{-1, 4}), "[-1, 4]"},
        {ZorWBValue(ZorWBRealInterval{0.5, 2.0}), "[0.5, 2.0]"},
        {realEnum, "{-1.0, 0.5, 2.0}"},
        {integerEnum, "{1, 2, 3}"},
        {ZorWBValue(ZorWBIntegerEnum(ZorWBEnumAny)), "{any}"},
        {ZorWBValue(ZorWBRealEnum(ZorWBEnumNil)), "{}"},
        {ZorWBValue(ZorWBTrue), "true"},
        {ZorWBValue(ZorWBFalse), "false"},
        {ZorWBValue(ZorWBUnknown), "unknown"},
        {ZorWBValue(ZorWBEmpty), "empty"},
        {ZorWBValue(ZorWBCreateFraction(-3, 4, 0, 0)), "(-3/4)"},
        {ZorWBValue(), "undefined"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(Text(value), text);
    EXPECT_EQ(Text(interval), "{2 .. 9}");
}

TEST(ZorWBEquationPrinter, EquationsAndFactories) {
    Shapes s;
    ZorWBFactory& f = s.f;
    f.AddEquation(f.CreateSum(f.CreateProduct(s.Int(2), s.x), f.CreateProduct(s.Int(3), s.y)),
                  ZorWBEqualZero, s.Int(12));
    f.AddEquation(s.x, ZorWBLessEqualZero, s.y);
    f.AddEquation(f.CreateSin(s.x), ZorWBGreaterZero);
    f.AddEquation(f.CreateSum(s.x, s.Int(5)), ZorWBNotEqualZero);
    f.AddEquation(s.x, ZorWBEquationUnset, s.Real(2.5));
    f.AddEquation(s.x, ZorWBMinimize);
    f.AddEquation(s.y, ZorWBMaximize);
    EXPECT_EQ(ZorWBEquationPrinter::Print(f),
              "2 * x + 3 * y = 12;\n"
              "x <= y;\n"
              "sin(x) > 0;\n"
              "x != -5;\n"
              "x - 2.5;\n"
              "x; /* minimize */\n"
              "y; /* maximize */\n");
    EXPECT_EQ(ZorWBEquationPrinter::Print(f.GetEquation(1)), "x <= y;");
    EXPECT_EQ(ZorWBEquationPrinter::Print(static_cast<const ZorWBEquation*>(nullptr)), "");
    EXPECT_EQ(ZorWBEquationPrinter::Print(ZorWBFactory()), "");
}

TEST(ZorWBEquationPrinter, PrintedExpressionsReadBackEqual) {
    ZorWBFactory factory;
    RandomExpression random(factory, 7);
    for (int round = 0; round < 3000; ++round) {
        ZorWBExpression* original = random.Exact(1 + round % 6);
        std::string text = Text(original);
        ZorWBExpression* read = ReadBack(factory, text);
        ASSERT_NE(read, nullptr) << text;
        ASSERT_TRUE(read->IsEqualTo(original)) << text << "\nread as\n" << Text(read);
        EXPECT_EQ(Text(read), text);
    }
}

TEST(ZorWBEquationPrinter, InexactShapesReadBackEqualInValue) {
    ZorWBFactory factory;
    RandomExpression random(factory, 13);
    std::mt19937 values(5);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int round = 0; round < 1500; ++round) {
        ZorWBExpression* original = random.Approximate(1 + round % 5);
        std::string text = Text(original);
        ZorWBExpression* read = ReadBack(factory, text);
        ASSERT_NE(read, nullptr) << text;
        for (int sample = 0; sample < 4; ++sample) {
            for (ZorWBVariable* variable : random.variables)
                variable->SetExprValue(ZorWBValue(unit(values)));
            ASSERT_TRUE(SameReal(original->Eval(), read->Eval()))
                << text << "\n"
                << original->Eval() << " read as " << read->Eval();
        }
    }
}

TEST(ZorWBEquationPrinter, PrintedEquationsReadBackWithTheSameRootAndType) {
    // Equations made from two terms, as the parser makes every equation
    // with a relation, read back to the same root; a root of another shape
    // reads back as Sum(root, 0), the root of "root REL 0;".
    ZorWBFactory factory;
    RandomExpression random(factory, 21);
    for (int round = 0; round < 1500; ++round) {
        ZorWBEquationType type = static_cast<ZorWBEquationType>(round % 7);
        ZorWBExpression* left = random.Exact(1 + round % 4);
        ZorWBExpression* right = round % 3 ? random.Exact(round % 3) : nullptr;
        ZorWBEquation* equation = factory.AddEquation(left, type, right);
        ASSERT_NE(equation, nullptr);
        std::string text = ZorWBEquationPrinter::Print(equation).GetString();
        ZorQelListPZorWBBlackBox blackBoxes;
        ZorWBExpression* root = ZorWBParser::ReadZorWBExpression(text.c_str(), factory, blackBoxes);
        ASSERT_NE(root, nullptr) << text;
        ZorWBExpression* original = equation->GetRoot();
        bool plusZero = !right && type != ZorWBEquationUnset && !root->IsEqualTo(original);
        if (plusZero) original = factory.CreateSum(original, factory.CreateIntegerConstant(0));
        ASSERT_TRUE(root->IsEqualTo(original)) << text;
        EXPECT_EQ(factory.GetLastEquation()->GetType(), type) << text;
        // Sum(root, 0) prints as "root REL 0;" again.
        EXPECT_EQ(ZorWBEquationPrinter::Print(factory.GetLastEquation()).GetString(), text);
    }
}

TEST(ZorWBEquationPrinter, AnEquationWithAnyNumberOnTheRightReadsBackToItsRoot) {
    // Roots Sum(left, B) with B a number, or a product or quotient led by
    // one, of either sign: what CreateSub makes of "left REL right".
    Shapes s;
    ZorWBFactory& f = s.f;
    struct Case {
        ZorWBExpression* root;
        const char* text;
    };
    const Case cases[] = {
        {f.CreateSum(s.x, s.Int(0)), "x = 0;"},
        {f.CreateSum(s.x, s.Real(0.0)), "x = -0.0;"},
        {f.CreateSum(s.x, s.Int(3)), "x = -3;"},
        {f.CreateSum(s.x, s.Real(-2.5)), "x = 2.5;"},
        {f.CreateSum(s.x, f.CreateProduct(s.Int(2), s.y)), "x = -2 * y;"},
        {f.CreateSum(s.x, f.CreateProduct(s.Int(-1), s.y)), "x = y;"},
        {f.CreateSum(s.x, f.CreateProduct(s.Int(1), s.y)), "x = -1 * y;"},
        {f.CreateSum(s.x, f.CreateQuotient(s.Real(1.5), s.y)), "x = -1.5 / y;"},
        {f.CreateSum(s.x, f.CreateProduct(s.Int(-1), s.Int(2))), "x = 1 * 2;"},
    };
    for (const Case& test : cases) {
        ZorWBEquation* equation = f.AddEquation(test.root, ZorWBEqualZero);
        std::string text = ZorWBEquationPrinter::Print(equation).GetString();
        EXPECT_EQ(text, test.text);
        ZorQelListPZorWBBlackBox blackBoxes;
        ZorWBExpression* read = ZorWBParser::ReadZorWBExpression(text.c_str(), f, blackBoxes);
        EXPECT_TRUE(read && read->IsEqualTo(test.root)) << text << " read as " << Text(read);
    }
}

TEST(ZorWBEquationPrinter, RealsKeepTheirPointUnderADecimalCommaLocale) {
    DecimalCommaLocale locale;
    if (!locale.IsActive()) GTEST_SKIP() << "no de_DE locale on this machine";
    ZorWBFactory factory;
    RandomExpression random(factory, 3);
    std::mt19937 generator(9);
    for (int round = 0; round < 300; ++round) {
        double real = std::uniform_real_distribution<double>(-1e6, 1e6)(generator);
        std::string text = Text(factory.CreateRealConstant(real));
        EXPECT_EQ(text.find(','), std::string::npos) << text;
        EXPECT_NE(text.find_first_of(".e"), std::string::npos) << text;
        EXPECT_EQ(ReadBack(factory, text)->GetExprValue().GetAsReal(), real) << text;
        ZorWBExpression* original = random.Exact(3);
        std::string printed = Text(original);
        EXPECT_TRUE(ReadBack(factory, printed)->IsEqualTo(original)) << printed;
    }
}

TEST(ZorWBEquationPrinter, AMillionDeepGraphPrints) {
    const int depth = 1000000;
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    x->SetName("x");
    ZorWBExpression* one = factory.GetOne();
    ZorWBExpression* left = x;
    ZorWBExpression* right = x;
    for (int i = 0; i < depth; ++i) {
        left = factory.CreateSum(left, one);
        right = factory.CreateSin(factory.CreateSum(one, right));
    }
    std::string leftText = Text(left);
    EXPECT_EQ(leftText.size(), 1u + 4u * depth);
    EXPECT_EQ(leftText.substr(0, 9), "x + 1 + 1");
    std::string rightText = Text(right);
    EXPECT_EQ(rightText.size(), 1u + 9u * depth);
    EXPECT_EQ(rightText.substr(0, 17), "sin(1 + sin(1 + s");
    EXPECT_EQ(rightText.substr(rightText.size() - depth - 5), "1 + x" + std::string(depth, ')'));
    factory.AddEquation(left, ZorWBEqualZero, right);
    EXPECT_EQ(ZorWBEquationPrinter::Print(factory).GetStdString().size(),
              leftText.size() + rightText.size() + 5);
}
