#include <chrono>
#include <string>

#include "ParserTestSupport.h"
#include "RandomModelText.h"

namespace {

std::string Reprinted(const char* text) {
    return ParsedText(text).Printed();
}

bool HasSyntaxError(const ParsedText& parsed) {
    for (const std::string& error : parsed.Errors()) {
        int code = std::stoi(error);
        if (code < 21) return true;  // the syntax codes and -1
    }
    return false;
}

}  // namespace

TEST(ZorWBModelPrinter, FewestBracketsThatKeepTheTree) {
    EXPECT_EQ(Reprinted("a - (b - c);"), "a - (b - c);\n");
    EXPECT_EQ(Reprinted("(a - b) - c;"), "a - b - c;\n");
    EXPECT_EQ(Reprinted("a + (b + c);"), "a + (b + c);\n");
    EXPECT_EQ(Reprinted("a / (b * c);"), "a / (b * c);\n");
    EXPECT_EQ(Reprinted("(a + b) * (c - d);"), "(a + b) * (c - d);\n");
    EXPECT_EQ(Reprinted("a^(b^c);"), "a ^ b ^ c;\n");
    EXPECT_EQ(Reprinted("(a^b)^c;"), "(a ^ b) ^ c;\n");
    EXPECT_EQ(Reprinted("-(a*b);"), "-(a * b);\n");
    EXPECT_EQ(Reprinted("(-a)*b;"), "-a * b;\n");
    EXPECT_EQ(Reprinted("-(a^b);"), "-a ^ b;\n");
    EXPECT_EQ(Reprinted("(-a)^b;"), "(-a) ^ b;\n");
    EXPECT_EQ(Reprinted("a^-b;"), "a ^ (-b);\n");
    EXPECT_EQ(Reprinted("a - -b;"), "a - -b;\n");
    EXPECT_EQ(Reprinted("--a;"), "--a;\n");
}

TEST(ZorWBModelPrinter, NumbersUnitsFunctionsAndEquations) {
    EXPECT_EQ(Reprinted("x = 0.1 + 2.0 + 2.5e-3 + 1e400 + 7;"),
              "x = 0.1 + 2.0 + 0.0025 + 1e999 + 7;\n");
    EXPECT_EQ(Reprinted("3Pi + Pi/2 + 3 Pi rad + Pi mm;"),
              "3 * Pi + Pi / 2 + 3 * Pi rad + Pi mm;\n");
    EXPECT_EQ(Reprinted("10 mm * (x) deg + (a+b) '  ;"), "10 mm * (x) deg + (a + b) ';\n");
    EXPECT_EQ(Reprinted("sin(x) + atan2(y, x) + f(x, y) + g() + int(x, y);"),
              "sin(x) + atan2(y, x) + f(x, y) + g() + int(x, y);\n");
    EXPECT_EQ(Reprinted("if (!(a < b) or c != d and (e >= f)) then (y <= 1) else (y <= 2);"),
              "y <= if (!(a < b) or c != d and e >= f) then (1) else (2);\n");
    EXPECT_EQ(Reprinted("a != b; a < b; a >= b; a > b;"), "a != b;\na < b;\na >= b;\na > b;\n");

    ZorWBModel model;
    ZorWBLocation here;
    ZorWBNodeList children;
    children.Add(model.CreateVariable(here, "x"));
    children.Add(nullptr);
    children.Add(model.CreateConstant(here, ZorWBValue(ZorWBCreateFraction(3, 2, 2, 0))));
    children.Add(model.CreateConstant(here, ZorWBValue(-4)));
    EXPECT_EQ(
        ZorWBModelPrinter::Print(model.CreateOperator(here, ZorWBExpressionType::Sum, children)),
        "x + ? + (3/2*Pi^2) + -4");
    EXPECT_EQ(ZorWBModelPrinter::Print(
                  model.CreateOperator(here, ZorWBExpressionType::Implication, children)),
              "Implication(x, ?, (3/2*Pi^2), -4)");
}

TEST(ZorWBModelPrinter, PrintedModelsReadBackEqual) {
    RandomModelText generator(11);
    for (int round = 0; round < 400; ++round) {
        std::string text;
        for (int i = 0; i < 3; ++i)
            text += generator.Statement(round % 5) + "\n";
        ParsedText parsed(text.c_str());
        ASSERT_FALSE(HasSyntaxError(parsed)) << text;
        std::string printed = parsed.Printed();
        ParsedText again(printed.c_str());
        ASSERT_TRUE(again.model.IsEqual(parsed.model)) << text << "\n--\n" << printed;
        EXPECT_EQ(again.Printed(), printed);
        EXPECT_EQ(again.errors, parsed.errors) << printed;
    }
}

TEST(ZorWBModelPrinter, PrintingIgnoresADecimalCommaLocale) {
    DecimalCommaLocale locale;
    if (!locale.IsActive()) GTEST_SKIP() << "no de_DE locale on this machine";
    RandomModelText generator(5);
    for (int round = 0; round < 100; ++round) {
        std::string text = generator.Statement(3);
        ParsedText parsed(text.c_str());
        ParsedText again(parsed.Printed().c_str());
        EXPECT_TRUE(again.model.IsEqual(parsed.model)) << text;
    }
}

TEST(ZorWBModelPrinter, TenMegabyteModel) {
    RandomModelText generator(3);
    std::string text;
    int statements = 0;
    const std::size_t size = 10u << 20;
    text.reserve(size + 1000);
    while (text.size() < size) {
        text += generator.Statement(3) + "\n";
        ++statements;
    }
    auto start = std::chrono::steady_clock::now();
    ParsedText parsed(text.c_str());
    auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    RecordProperty("parse_seconds", std::to_string(seconds));
    EXPECT_FALSE(HasSyntaxError(parsed));
    EXPECT_GT(parsed.model.GetNbOfEquations(), statements / 2);
    EXPECT_EQ(parsed.ids.GetSize(), parsed.model.GetNbOfEquations());
}
