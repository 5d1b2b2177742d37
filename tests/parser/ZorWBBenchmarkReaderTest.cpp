// The reader of the interval benchmark format: what it builds (variables,
// vectors, domains, constants, relations), the exact messages and places of
// what it refuses, and that no text makes it fail otherwise.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ZorWBBenchmarkReader.h"
#include "parser/ZorWBParserMessenger.h"
#include "parser/ZorWBParserResult.h"

namespace {

struct ReadText {
    ZorWBFactory factory;
    ZorWBParserMessenger messenger;
    int result;
    explicit ReadText(const std::string& text)
        : result(ZorWBBenchmarkReader::Read(text.c_str(), factory, messenger)) {}

    // The one message as "LINE:COLUMN: TEXT" (columns from 1).
    std::string Message() const {
        int code = 0;
        ZorWBLocation location;
        if (messenger.GetErrorNumber() != 1 || messenger.GetError(0, code, location) != 0)
            return "?";
        return std::to_string(location.GetFirstLine()) + ":" +
               std::to_string(location.GetFirstColumn() + 1) + ": " +
               messenger.GetMessage(0).GetString();
    }
    ZorWBRealInterval Domain(const char* name) const {
        ZorWBVariable* variable = factory.GetVariable(ZorQelString(name));
        return variable ? variable->GetExprValue().GetAsRealInterval() : ZorWBReal_Nil;
    }
    std::string Equation(int i) const {
        return ZorWBEquationPrinter::Print(factory.GetEquation(i)).GetString();
    }
};

}  // namespace

TEST(BenchmarkReader, BuildsVariablesDomainsAndRelations) {
    ReadText read(
        "// a problem\n"
        "Constants b0 = 2; n = 3;\n"
        "Variables\n"
        "  x in [-1e8, 1e8];\n"
        "  y, v[n] in [1.e-8, 2*pi - 1.e-8];\n"
        "Constraints\n"
        "  /* three kinds of relation */\n"
        "  x^2 + y^2 = 1;\n"
        "  b0*v(1) - v[2] <= x;\n"
        "  sqr(v(3)) >= 0;\n"
        "  -x^2 = 0;\n"
        "end\n");
    ASSERT_EQ(read.result, ZorWBParserResult::Success) << read.Message();
    ASSERT_EQ(read.factory.GetNbOfVariables(), 5);
    EXPECT_STREQ(read.factory.GetVariable(2)->GetName().GetString(), "v(1)");
    EXPECT_STREQ(read.factory.GetVariable(4)->GetName().GetString(), "v(3)");
    EXPECT_EQ(read.Domain("x").low, -1e8);
    EXPECT_EQ(read.Domain("x").high, 1e8);
    EXPECT_EQ(read.factory.GetVariable(ZorQelString("y"))->GetExprValue().GetType(),
              ZorWBUndefinedType);
    // A computed bound is widened outward; a written one is exact.
    ZorWBRealInterval v = read.Domain("v(2)");
    EXPECT_EQ(v.low, 1e-8);
    EXPECT_GT(v.high, 2 * M_PI - 1e-8);
    EXPECT_LT(v.high, 2 * M_PI - 1e-8 + 1e-14);
    ASSERT_EQ(read.factory.GetNbOfEquations(), 4);
    EXPECT_EQ(read.factory.GetEquation(0)->GetType(), ZorWBEqualZero);
    EXPECT_EQ(read.factory.GetEquation(1)->GetType(), ZorWBLessEqualZero);
    EXPECT_EQ(read.factory.GetEquation(2)->GetType(), ZorWBGreaterEqualZero);
    // v[2] counts from 0: it is v(3); a right side 0 adds nothing; the sign
    // binds less tightly than the power.
    EXPECT_EQ(read.Equation(1), "2 * v(1) - v(3) <= x;");
    EXPECT_EQ(read.Equation(2), "v(3) ^ 2 >= 0;");
    EXPECT_EQ(read.factory.GetEquation(3)->GetRoot()->GetType(), ZorWBExpressionType::UnaryMinus);
    EXPECT_TRUE(ZorWBBenchmarkReader::IsBenchmarkText("  // x\n/* y */ VARIABLES x; "));
    EXPECT_TRUE(ZorWBBenchmarkReader::IsBenchmarkText("constants a = 1;"));
    EXPECT_FALSE(ZorWBBenchmarkReader::IsBenchmarkText("x = 2; /* Variables */"));
    EXPECT_FALSE(ZorWBBenchmarkReader::IsBenchmarkText(nullptr));
}

TEST(BenchmarkReader, RefusesWhatItDoesNotReadWithOneLocatedMessage) {
    const std::pair<const char*, const char*> cases[] = {
        {"Variables x[2][2];\nConstraints end", "1:15: matrices are not supported"},
        {"Variables x;\nConstraints\n  for i=1:3;\n end", "3:3: loops ('for') are not supported"},
        {"function f(x)\n", "1:1: expected 'variables'"},
        {"Variables x;\nConstraints\n  x + z = 1;\nend", "3:7: unknown name 'z'"},
        {"Variables x[3];\nConstraints\n  x(4) = 1;\nend", "3:4: index 4 out of the vector 'x'"},
        {"Variables x[3];\nConstraints\n  x = 1;\nend",
         "3:3: the vector 'x' is used without an index"},
        {"Variables x in [2, 1];\nConstraints end", "1:16: the domain of 'x' is empty"},
        {"Variables x; x;\nConstraints end", "1:14: 'x' is declared twice"},
        {"Variables x;\nConstraints\n  x + 1;\nend", "3:8: expected a relation (=, <=, >=, <, >)"},
        {"Variables x;\nConstraints\n  foo(x) = 1;\nend", "3:3: unknown function 'foo'"},
        {"Variables x;\nConstraints\n  atan2(x) = 1;\nend",
         "3:3: wrong number of arguments for 'atan2'"},
        {"Variables x;\nConstraints\n  x = 1;", "3:9: the text ends before 'end'"},
        {"Variables x;\nConstraints\n  x = 1;\nend\nx = 2;", "5:1: text after 'end'"},
        {"Variables x;\nConstraints\n  x # 1;\nend", "3:5: unexpected character '#'"},
        {"Constants a = x;\nVariables x;", "1:15: unknown name 'x'"},
        {"Variables x[1.5];\nConstraints end", "1:12: a vector size must be a constant integer"},
    };
    for (const auto& [text, message] : cases) {
        ReadText read(text);
        EXPECT_EQ(read.result, ZorWBParserResult::Failure) << text;
        EXPECT_EQ(read.Message(), message) << text;
    }
}

TEST(BenchmarkReader, DeepNestingAndGarbageEndInAMessage) {
    std::string deep = "Variables x;\nConstraints\n";
    deep += std::string(5000, '(') + "x" + std::string(5000, ')') + " = 1;\nend";
    ReadText nested(deep);
    EXPECT_EQ(nested.result, ZorWBParserResult::Failure);
    EXPECT_NE(nested.Message().find("nesting deeper than 1000 levels"), std::string::npos);
    // A number at the very end of the text (its exponent is looked for past
    // it only when there is one).
    EXPECT_EQ(ReadText("Variables x;\nConstraints x = 1").Message(), "2:18: expected ';'");
    std::string signs = "Variables x;\nConstraints\n" + std::string(100000, '-') + "x = 1;\nend";
    EXPECT_EQ(ReadText(signs).result, ZorWBParserResult::Failure);
    // Random texts over the format's own characters: read or refused, once.
    const std::string alphabet =
        "Variables Constraints end x y in [ ] ( ) , ; = <= + - * / ^ 1 2.5e3 pi sin";
    std::mt19937 random(5);
    for (int trial = 0; trial < 3000; ++trial) {
        std::string text = "Variables x, y;\nConstraints\n";
        for (int i = static_cast<int>(random() % 40); i > 0; --i)
            text += alphabet[random() % alphabet.size()];
        ReadText read(text);
        EXPECT_TRUE(read.result == ZorWBParserResult::Success ||
                    read.messenger.GetErrorNumber() == 1)
            << text;
    }
}
