#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "ParserTestSupport.h"
#include "parser/ZorWBNumberText.h"

namespace {

// The value of the only term of the only equation.
const ZorWBValue* OnlyValue(const ParsedText& parsed) {
    ZorWBEqNode* equation = parsed.model.GetFirstEquation();
    if (!equation || equation->GetLeftTerm()->GetNodeKind() != ZorWBConstantNode) return nullptr;
    return &static_cast<ZorWBConstNode*>(equation->GetLeftTerm())->GetValue();
}

}  // namespace

TEST(ZorWBScanner, IntegersBecomeRealsBeyondTheIntRange) {
    EXPECT_EQ(DescribeOnly("2147483647;"), "Eq0(2147483647)");
    EXPECT_EQ(DescribeOnly("0002147483647;"), "Eq0(2147483647)");
    EXPECT_EQ(DescribeOnly("2147483648;"), "Eq0(real 2147483648)");
    EXPECT_EQ(DescribeOnly("-2147483648;"), "Eq0(UnaryMinus(real 2147483648))");
    ParsedText huge("123456789012345678901234567890;");
    ASSERT_NE(OnlyValue(huge), nullptr);
    EXPECT_EQ(OnlyValue(huge)->GetAsReal(), 1.2345678901234568e+29);
    ParsedText tooLarge(("1" + std::string(400, '0') + ";").c_str());
    EXPECT_TRUE(std::isinf(OnlyValue(tooLarge)->GetAsReal()));
}

TEST(ZorWBScanner, RealForms) {
    EXPECT_EQ(DescribeOnly(".5;"), "Eq0(real 0.5)");
    EXPECT_EQ(DescribeOnly("1e5;"), "Eq0(real 1e+05)");
    EXPECT_EQ(DescribeOnly("2.5E-1;"), "Eq0(real 0.25)");
    EXPECT_EQ(DescribeOnly("1.5e+2;"), "Eq0(real 150)");
    EXPECT_TRUE(std::isinf(OnlyValue(ParsedText("1e400;"))->GetAsReal()));
    EXPECT_EQ(OnlyValue(ParsedText("1e-400;"))->GetAsReal(), 0.0);

    // A point without digits after it is not part of the number.
    ParsedText trailingPoint("5.;");
    EXPECT_EQ(Describe(trailingPoint.model.GetFirstEquation()), "Eq0(5)");
    EXPECT_EQ(trailingPoint.output, "Invalid character\n");
    EXPECT_EQ(trailingPoint.errors, 0);

    // 1.e5 is 1, an invalid point, then the identifier e5 read as a unit.
    ParsedText exponentAfterPoint("1.e5;");
    EXPECT_EQ(Describe(exponentAfterPoint.model.GetFirstEquation()), "Eq0(1[e5])");
    EXPECT_EQ(exponentAfterPoint.InvalidCharacters(), 1);
    EXPECT_EQ(exponentAfterPoint.Errors(), std::vector<std::string>{"22 (1,1,1,3)"});
}

TEST(ZorWBScanner, DecimalReadingMatchesCLocaleAtof) {
    std::mt19937 random(7);
    auto digits = [&](int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += static_cast<char>('0' + random() % 10);
        return text;
    };
    for (int i = 0; i < 5000; ++i) {
        std::string text;
        switch (random() % 3) {
            case 0:
                text = digits(1 + random() % 30);
                break;
            case 1:
                text = digits(random() % 20) + "." + digits(1 + random() % 20);
                break;
            default:
                text = digits(1 + random() % 20);
                break;
        }
        if (random() % 2) {
            text += (random() % 2) ? "e" : "E";
            if (random() % 2) text += (random() % 2) ? "-" : "+";
            text += std::to_string(random() % 700);
        }
        double expected = std::atof(text.c_str());
        EXPECT_EQ(ZorWBReadDecimal(text.c_str(), text.size()), expected) << text;
    }
}

TEST(ZorWBScanner, NumbersReadTheSameUnderADecimalCommaLocale) {
    DecimalCommaLocale locale;
    if (!locale.IsActive()) GTEST_SKIP() << "no de_DE locale on this machine";
    ASSERT_EQ(std::atof("1.5"), 1.0);  // the C library now stops at the point
    ParsedText parsed("x = 1.5 + 2.5e-3 * .25;");
    EXPECT_EQ(Describe(parsed.model.GetFirstEquation()),
              "Eq1(x, Sum(real 1.5, Product(real 0.0025, real 0.25)))");
    EXPECT_EQ(parsed.Printed(), "x = 1.5 + 0.0025 * 0.25;\n");
    EXPECT_EQ(parsed.errors, 0);
}

TEST(ZorWBScanner, LocationsSkipCommentsAndInvalidCharacters) {
    // The error location shows where the scanner placed the second name.
    EXPECT_EQ(ParsedText("x y;").Errors(), std::vector<std::string>{"2 (1,2,1,3)"});
    EXPECT_EQ(ParsedText("x /* a long comment */ y;").Errors(),
              std::vector<std::string>{"2 (1,3,1,4)"});
    ParsedText invalid("x $$ y;");
    EXPECT_EQ(invalid.Errors(), std::vector<std::string>{"2 (1,3,1,4)"});
    EXPECT_EQ(invalid.output, "Invalid character\nInvalid character\n");
    EXPECT_EQ(ParsedText("x\t\t y;").Errors(), std::vector<std::string>{"2 (1,4,1,5)"});

    // Each of \n, \r, \r\n and \n\r is one line break.
    for (const char* text : {"x = 1;\ny y;", "x = 1;\ry y;", "x = 1;\r\ny y;", "x = 1;\n\ry y;"})
        EXPECT_EQ(ParsedText(text).Errors(), std::vector<std::string>{"2 (2,2,2,3)"}) << text;
    EXPECT_EQ(ParsedText("x = 1;\n\ny y;").Errors(), std::vector<std::string>{"2 (3,2,3,3)"});
    // A comment's line breaks count; its other characters do not.
    EXPECT_EQ(ParsedText("/* a\nb */ x x;").Errors(), std::vector<std::string>{"2 (2,3,2,4)"});
    // The end of input sits after the last token.
    EXPECT_EQ(ParsedText("x = 3").Errors(), std::vector<std::string>{"1 (1,5,1,5)"});
}

TEST(ZorWBScanner, CommentsAndEmptyTexts) {
    for (const char* text :
         {"", "   \t\n", "/* only a comment */", "/* unterminated", "\n/* a */ /* b\n */ \r\n"}) {
        ParsedText parsed(text);
        EXPECT_EQ(parsed.errors, 0) << text;
        EXPECT_EQ(parsed.model.GetNbOfEquations(), 0) << text;
    }
    ParsedText unterminated("x = 1; /* never closed");
    EXPECT_EQ(unterminated.errors, 0);
    EXPECT_EQ(unterminated.model.GetNbOfEquations(), 1);
    EXPECT_EQ(DescribeOnly("x /* a * b / c */ = 2;"), "Eq1(x, 2)");
}

TEST(ZorWBScanner, IdentifiersAndKeywords) {
    EXPECT_EQ(DescribeOnly("sin2 + sin_ + Pi2 + pix;"), "Eq0(Sum(Sum(Sum(sin2, sin_), Pi2), pix))");
    EXPECT_EQ(DescribeOnly("Pi + PI + pi;"), "Eq0(Sum(Sum(Pi, Pi), Pi))");
    EXPECT_EQ(DescribeOnly("x = 3 %_angle;"), "Eq1(x, 3[%_angle])");
    EXPECT_EQ(DescribeOnly("x = 3 in_ft;"), "Eq1(x, 3[in_ft])");
    EXPECT_EQ(DescribeOnly("x = 3 \";"), "Eq1(x, 3[\"])");
    EXPECT_EQ(DescribeOnly("int(x, y) + Int(x, y);"), "Eq0(Sum(Integrate(x, y), Integrate(x, y)))");
    EXPECT_EQ(DescribeOnly("if (a < b && c > d || e != f) then (1) else (2);"),
              "Eq0(IfThenElse(Or(And(LessEqual<2>(a, b), LessEqual<4>(c, d)), NotEqual(e, f)), "
              "1, 2))");
    // A double-quoted word is an identifier with the opening quote, then the
    // closing quote alone.
    EXPECT_EQ(ParsedText("3 \"abc\";").Errors(), std::vector<std::string>{"2 (1,6,1,7)"});
    // () is one token, ( ) two.
    EXPECT_EQ(DescribeOnly("f();"), "Eq0(BlackBox:f())");
    EXPECT_EQ(DescribeOnly("f( );"), "Eq0(BlackBox:f())");
}

TEST(ZorWBScanner, EveryBuiltInFunctionName) {
    const char* names[] = {"sqrt",  "log",   "ln",    "exp",   "sin",  "cos",  "tan",   "asin",
                           "acos",  "atan",  "atan2", "dim",   "sign", "step", "sinh",  "cosh",
                           "tanh",  "asinh", "acosh", "atanh", "abs",  "ceil", "floor", "round",
                           "trunc", "mod",   "min",   "max",   "int",  "Int"};
    for (const char* name : names) {
        ParsedText parsed((std::string(name) + "(x);").c_str());
        ZorWBExpressionType expected;
        ASSERT_TRUE(ZorWBFindFunctionType(name, expected)) << name;
        ZorWBNode* term = parsed.model.GetFirstEquation()->GetLeftTerm();
        ASSERT_EQ(term->GetNodeKind(), ZorWBOperatorNode) << name;
        EXPECT_EQ(static_cast<ZorWBOpNode*>(term)->GetType(), expected) << name;
        EXPECT_TRUE(parsed.blackBoxes.IsEmpty()) << name;
    }
    // Names are case-sensitive: Sin is a black box.
    EXPECT_EQ(DescribeOnly("Sin(x);"), "Eq0(BlackBox:Sin(x))");
}
