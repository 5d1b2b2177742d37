#include <cstdio>
#include <random>
#include <string>

#include "ParserTestSupport.h"
#include "RandomModelText.h"

namespace {

struct SyntaxCase {
    const char* text;
    const char* message;
    int code;
    const char* location;
};

std::string Repeat(const std::string& piece, int count) {
    std::string text;
    text.reserve(piece.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

}  // namespace

TEST(ZorWBGrammar, PrecedenceAndAssociativity) {
    EXPECT_EQ(DescribeOnly("a^b^c;"), "Eq0(Power(a, Power(b, c)))");
    EXPECT_EQ(DescribeOnly("-x^2;"), "Eq0(UnaryMinus(Power(x, 2)))");
    EXPECT_EQ(DescribeOnly("-x*y;"), "Eq0(Product(UnaryMinus(x), y))");
    EXPECT_EQ(DescribeOnly("a-b-c;"), "Eq0(Minus(Minus(a, b), c))");
    EXPECT_EQ(DescribeOnly("a/b/c;"), "Eq0(Quotient(Quotient(a, b), c))");
    EXPECT_EQ(DescribeOnly("a+b*c^d;"), "Eq0(Sum(a, Product(b, Power(c, d))))");
    EXPECT_EQ(DescribeOnly("a*b+c/d-e;"), "Eq0(Minus(Sum(Product(a, b), Quotient(c, d)), e))");
    EXPECT_EQ(DescribeOnly("--a;"), "Eq0(UnaryMinus(UnaryMinus(a)))");
    EXPECT_EQ(DescribeOnly("(a+b)*c;"), "Eq0(Product(Sum(a, b), c))");
}

TEST(ZorWBGrammar, QuantitiesPiAndUnits) {
    EXPECT_EQ(DescribeOnly("3Pi;"), "Eq0(Product(3, Pi))");
    EXPECT_EQ(DescribeOnly("3 Pi;"), "Eq0(Product(3, Pi))");
    EXPECT_EQ(DescribeOnly("Pi/2;"), "Eq0(Quotient(Pi, 2))");
    EXPECT_EQ(DescribeOnly("10 mm;"), "Eq0(10[mm])");
    EXPECT_EQ(DescribeOnly("2.5 mm;"), "Eq0(real 2.5[mm])");
    EXPECT_EQ(DescribeOnly("2 mm*x;"), "Eq0(Product(2[mm], x))");
    EXPECT_EQ(DescribeOnly("x^2 mm;"), "Eq0(Power(x, 2[mm]))");
    EXPECT_EQ(DescribeOnly("3 Pi rad;"), "Eq0(Product(3, Pi[rad]))");
    EXPECT_EQ(DescribeOnly("Pi mm;"), "Eq0(Pi[mm])");
    EXPECT_EQ(DescribeOnly("(a+b) deg;"), "Eq0(Sum(a, b)[deg])");
    EXPECT_EQ(DescribeOnly("(x) Pi;"), "Eq0(Product(x, Pi))");
    EXPECT_EQ(DescribeOnly("(x) Pi mm;"), "Eq0(Product(x, Pi[mm]))");

    // A unit keeps its own location; a bracketed node keeps its own too.
    ParsedText parsed("y = (a + b) deg;\nz = 10 mm;");
    ZorWBNode* sum = parsed.Equation(0)->GetRightTerm();
    EXPECT_STREQ(sum->GetLocation().Write().GetString(), "(1,5,1,10)");
    EXPECT_STREQ(sum->GetUnitLocation().Write().GetString(), "(1,12,1,15)");
    ZorWBNode* length = parsed.Equation(1)->GetRightTerm();
    EXPECT_STREQ(length->GetLocation().Write().GetString(), "(2,4,2,9)");
    EXPECT_STREQ(length->GetUnitLocation().Write().GetString(), "(2,7,2,9)");
    EXPECT_EQ(length->GetUnitKind(), "Distance");
}

TEST(ZorWBGrammar, EquationsTheirTypesIdsAndLocations) {
    ParsedText parsed("a = b;\na != b;\na <= b;\na < b;\na >= b;\na > b;\nc;");
    ASSERT_EQ(parsed.errors, 0);
    ASSERT_EQ(parsed.ids.GetSize(), 7);
    for (int i = 0; i < 7; ++i) {
        ZorWBEqNode* equation = parsed.Equation(i);
        EXPECT_EQ(parsed.ids.Get(i), equation->GetId());
        EXPECT_EQ(equation->GetId(), i);
        EXPECT_EQ(equation->GetWBEqType(), i < 6 ? i + 1 : 0);
        EXPECT_EQ(parsed.model.GetEquationById(i), equation);
    }
    EXPECT_STREQ(parsed.Equation(1)->GetLocation().Write().GetString(), "(2,0,2,7)");
    // The one-term form keeps a new location, not that of its text.
    EXPECT_STREQ(parsed.Equation(6)->GetLocation().Write().GetString(), "(1,0,1,0)");
    EXPECT_EQ(parsed.Equation(6)->GetRightTerm(), nullptr);
}

TEST(ZorWBGrammar, ConditionalEquationsAndConditions) {
    EXPECT_EQ(DescribeOnly("if (x > 0) then (y = 1) else (y = 2);"),
              "Eq1(y, IfThenElse(LessEqual<4>(x, 0), 1, 2))");
    // Left-hand sides or relations that differ give nothing, and no message.
    for (const char* text :
         {"if (x > 0) then (y = 1) else (z = 2);", "if (x > 0) then (y = 1) else (y < 2);",
          "if (x > 0) then (y + 1 = 1) else (y + 2 = 2);"}) {
        ParsedText parsed(text);
        EXPECT_EQ(parsed.model.GetNbOfEquations(), 0) << text;
        EXPECT_EQ(parsed.errors, 0) << text;
        EXPECT_EQ(parsed.ids.GetSize(), 0) << text;
    }
    EXPECT_EQ(DescribeOnly("if ((a <= b)) then (y >= 1) else (y >= 2);"),
              "Eq5(y, IfThenElse(LessEqual<1>(a, b), 1, 2))");
    // The negation of an equality is dropped; that of an inequality kept.
    EXPECT_EQ(DescribeOnly("if (!(a == b)) then (1) else (2);"),
              "Eq0(IfThenElse(Equal(a, b), 1, 2))");
    EXPECT_EQ(DescribeOnly("if (!(a < b)) then (1) else (2);"),
              "Eq0(IfThenElse(Not(LessEqual<2>(a, b)), 1, 2))");
    EXPECT_EQ(DescribeOnly("if (a != b) then (1) else (2);"),
              "Eq0(IfThenElse(NotEqual(a, b), 1, 2))");
    // and / or group from the left with equal standing.
    EXPECT_EQ(DescribeOnly("if (a == 1 or b == 2 and c == 3) then (1) else (2);"),
              "Eq0(IfThenElse(And(Or(Equal(a, 1), Equal(b, 2)), Equal(c, 3)), 1, 2))");
}

TEST(ZorWBGrammar, ARepeatedBlackBoxCallIsTheNodeOfTheFirstCall) {
    ParsedText calls("f(x) + f(x) * f(x, 2); y = f(x); f(2 mm) - f(2 mm) + f(2 deg);");
    ASSERT_EQ(calls.errors, 0);
    ZorWBNode* sum = calls.Equation(0)->GetLeftTerm();
    ZorWBNode* first = sum->GetChild(0);
    ZorWBNode* product = sum->GetChild(1);
    EXPECT_EQ(product->GetChild(0), first);
    EXPECT_NE(product->GetChild(1), first);  // other arguments
    EXPECT_EQ(calls.Equation(1)->GetRightTerm(), first);
    ZorWBNode* difference = calls.Equation(2)->GetLeftTerm()->GetChild(0);
    EXPECT_EQ(difference->GetChild(0), difference->GetChild(1));
    EXPECT_NE(calls.Equation(2)->GetLeftTerm()->GetChild(1), difference->GetChild(0));  // deg
    EXPECT_EQ(calls.blackBoxes.GetSize(), 4);  // one per distinct call
    EXPECT_EQ(Describe(sum), "Sum(BlackBox:f(x), Product(BlackBox:f(x), BlackBox:f(x, 2)))");

    // A unit written after a call goes on a node of its own: the other uses
    // of the call stay without it.
    ParsedText units("(f(x)) mm + f(x) + (f(x)) deg;");
    ASSERT_EQ(units.errors, 0);
    ZorWBNode* left = units.Equation(0)->GetLeftTerm();
    ZorWBNode* inMillimetres = left->GetChild(0)->GetChild(0);
    ZorWBNode* plain = left->GetChild(0)->GetChild(1);
    ZorWBNode* inDegrees = left->GetChild(1);
    EXPECT_EQ(inMillimetres->GetUnitName(), "mm");
    EXPECT_FALSE(plain->HasUnit());
    EXPECT_EQ(inDegrees->GetUnitName(), "deg");
    EXPECT_EQ(ZorWBModelPrinter::Print(units.model).GetStdString(),
              "(f(x)) mm + f(x) + (f(x)) deg;\n");
}

TEST(ZorWBGrammar, FunctionsAndBlackBoxes) {
    EXPECT_EQ(DescribeOnly("atan2(y, x) + min(a, b, c);"), "Eq0(Sum(Atan2(y, x), Min(a, b, c)))");
    // Argument counts are not checked while parsing.
    EXPECT_EQ(DescribeOnly("sin(a, b);"), "Eq0(Sin(a, b))");
    // sin( ) builds nothing and reports nothing; sin() is a syntax error.
    ParsedText empty("sin( );");
    EXPECT_EQ(empty.model.GetNbOfEquations(), 0);
    EXPECT_EQ(empty.errors, 0);

    ParsedText calls("f(x) + f(x) + f(y) + g();");
    ZorWBOpNode* top = static_cast<ZorWBOpNode*>(calls.Equation(0)->GetLeftTerm());
    ZorWBOpNode* inner = static_cast<ZorWBOpNode*>(top->GetChild(0));
    ZorWBOpNode* pair = static_cast<ZorWBOpNode*>(inner->GetChild(0));
    auto call = [](ZorWBNode* node) { return static_cast<ZorWBOpNode*>(node); };
    EXPECT_NE(call(inner->GetChild(1))->GetBlackBox(), call(pair->GetChild(0))->GetBlackBox());
    ASSERT_EQ(calls.blackBoxes.GetSize(), 3);
    EXPECT_EQ(calls.blackBoxes.Get(0)->GetName(), "f");
    EXPECT_EQ(calls.blackBoxes.Get(2)->GetName(), "g");
    ZorQelListPZorWBBlackBox declared;
    calls.model.GetBlackBoxes(&declared);
    EXPECT_EQ(declared, calls.blackBoxes);

    // Without a caller's list the model keeps (and frees) the black boxes.
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    EXPECT_EQ(ZorWBParser::Parse("f(x) + h(y, 2);", model, ids, messenger), 0);
    model.GetBlackBoxes(&declared);
    EXPECT_EQ(declared.GetSize(), 5);
}

TEST(ZorWBGrammar, SyntaxErrorMessagesCodesAndLocations) {
    const SyntaxCase cases[] = {
        {"x = 3", "syntax error, unexpected end of input", 1, "(1,5,1,5)"},
        {"x y;", "syntax error, unexpected identifier", 2, "(1,2,1,3)"},
        {"x 3;", "syntax error, unexpected integer", 3, "(1,2,1,3)"},
        {"x 2.5;", "syntax error, unexpected real", 4, "(1,2,1,5)"},
        {"3 (x);", "syntax error, unexpected left bracket", 5, "(1,2,1,3)"},
        {"sin 3;", "syntax error, unexpected integer, expecting left bracket", 6, "(1,4,1,5)"},
        {";", "syntax error, unexpected semi-colon", 7, "(1,0,1,1)"},
        {"f(x;", "syntax error, unexpected semi-colon, expecting right bracket", 7, "(1,3,1,4)"},
        {"x ** y;", "syntax error, unexpected x", -1, "(1,3,1,4)"},
        {"< 3;", "syntax error, unexpected TOKEN_LT", -1, "(1,0,1,1)"},
        {"sin();", "syntax error, unexpected TOKEN_EMPTYPAREN, expecting left bracket", -1,
         "(1,3,1,5)"},
        {"if x", "syntax error, unexpected identifier, expecting left bracket", -1, "(1,3,1,4)"},
        {"x = 1 )", "syntax error, unexpected right bracket", -1, "(1,6,1,7)"},
        {"if (a) then", "syntax error, unexpected right bracket", -1, "(1,5,1,6)"},
    };
    for (const SyntaxCase& test : cases) {
        ParsedText parsed(test.text);
        ASSERT_EQ(parsed.errors, 1) << test.text;
        EXPECT_EQ(parsed.messenger.GetString(), test.message) << test.text;
        EXPECT_EQ(parsed.Errors()[0], std::to_string(test.code) + " " + test.location) << test.text;
    }
}

TEST(ZorWBGrammar, RecoveryResumesAfterTheNextSemicolon) {
    ParsedText parsed("x = ;\ny = 2;\n= 3;\nz = 4;\nw = (1;");
    EXPECT_EQ(parsed.Errors(),
              (std::vector<std::string>{"7 (1,4,1,5)", "-1 (3,0,3,1)", "7 (5,6,5,7)"}));
    EXPECT_EQ(parsed.Printed(), "y = 2;\nz = 4;\n");
    ASSERT_EQ(parsed.ids.GetSize(), 2);
    EXPECT_EQ(parsed.ids.Get(0), 0);
    EXPECT_EQ(parsed.ids.Get(1), 1);
}

TEST(ZorWBGrammar, ParsesAStreamToItsEnd) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    const char text[] = "x = 1;\n\0y = 2 mm;\nz = 3 foo;";
    std::fwrite(text, 1, sizeof text - 1, file);
    std::rewind(file);
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    testing::internal::CaptureStdout();
    int errors = ZorWBParser::Parse(file, model, ids, messenger);
    // The zero byte is an invalid character like any other.
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Invalid character\n");
    std::fclose(file);
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(messenger.GetString(), "semantic error, unknown unit");
    EXPECT_EQ(ZorWBModelPrinter::Print(model), "x = 1;\ny = 2 mm;\nz = 3 foo;\n");
    EXPECT_EQ(ids.GetSize(), 3);

    ZorWBModel none;
    EXPECT_EQ(ZorWBParser::Parse(static_cast<std::FILE*>(nullptr), none, ids, messenger), 1);
    EXPECT_EQ(ZorWBParser::Parse(static_cast<const char*>(nullptr), none, ids, messenger), 1);
    EXPECT_EQ(none.GetNbOfEquations(), 0);
}

TEST(ZorWBGrammar, NestingBeyondTheStackLimitIsMemoryExhausted) {
    const int deep = 20000;
    for (const std::string& text :
         {Repeat("(", deep) + "x" + Repeat(")", deep) + ";", Repeat("-", deep) + "x;",
          Repeat("x^", deep) + "x;", Repeat("sin(", deep) + "x" + Repeat(")", deep) + ";"}) {
        ParsedText parsed(text.c_str());
        ASSERT_EQ(parsed.errors, 1);
        EXPECT_EQ(parsed.messenger.GetString(), "memory exhausted");
        EXPECT_EQ(parsed.Errors()[0].substr(0, 3), "-1 ");
        EXPECT_EQ(parsed.model.GetNbOfEquations(), 0);
    }
    // Below the limit, deep nesting reads fine.
    std::string nested = Repeat("(", 3000) + "x" + Repeat(")", 3000) + " = 1;";
    EXPECT_EQ(DescribeOnly(nested.c_str()), "Eq1(x, 1)");
}

TEST(ZorWBGrammar, LongLeftChainsNeedNoParserStack) {
    // A chain grows the tree to the left without growing the parser's stack,
    // so every later walk must cope with a tree this deep.
    const int terms = 200000;
    std::string text = "y = x" + Repeat(" + x", terms - 1) + ";";
    ParsedText parsed(text.c_str());
    ASSERT_EQ(parsed.errors, 0);
    EXPECT_EQ(parsed.model.GetNbOfVariables(), terms + 1);
    EXPECT_EQ(parsed.model.GetNbOfDifferentVariables(), 2);
    EXPECT_EQ(parsed.Printed(), text + "\n");
    ParsedText again(parsed.Printed().c_str());
    EXPECT_TRUE(again.model.IsEqual(parsed.model));
    ZorQelArray<ZorQelString> names;
    parsed.Equation(0)->FillPresentVariables(names);
    EXPECT_EQ(names.GetSize(), 2);
    EXPECT_FALSE(parsed.Equation(0)->GetRightTerm()->IsConstant());
}

TEST(ZorWBGrammar, DamagedStatementsRecoverAndFreeTheirValues) {
    // Valid statements with a few characters dropped: the parser recovers at
    // each semi-colon, and every identifier text or argument list that the
    // recovery discards is freed (the sanitizer build checks this).
    RandomModelText generator(99);
    std::mt19937 random(4);
    for (int i = 0; i < 1500; ++i) {
        std::string text = generator.Statement(3) + "\n" + generator.Statement(2);
        for (int cut = 1 + static_cast<int>(random() % 3); cut > 0 && !text.empty(); --cut)
            text.erase(random() % text.size(), 1 + random() % 4);
        ParsedText parsed(text.c_str());
        EXPECT_EQ(parsed.ids.GetSize(), parsed.model.GetNbOfEquations());
        EXPECT_LE(parsed.model.GetNbOfEquations(), 2);
    }
}

TEST(ZorWBGrammar, RandomBytesNeverBreakTheParser) {
    std::mt19937 random(2024);
    const std::string alphabet = "xyf12.e+-*/^()=<>!;, \n\tsinPi mm/*";
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        int length = static_cast<int>(random() % 60);
        for (int j = 0; j < length; ++j) {
            text += (random() % 3 == 0) ? static_cast<char>(1 + random() % 255)
                                        : alphabet[random() % alphabet.size()];
        }
        ParsedText parsed(text.c_str());
        EXPECT_GE(parsed.errors, 0);
        EXPECT_EQ(parsed.errors, parsed.messenger.GetErrorNumber());
        EXPECT_EQ(parsed.ids.GetSize(), parsed.model.GetNbOfEquations());
    }
}
