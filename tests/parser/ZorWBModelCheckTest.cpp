#include "ParserTestSupport.h"
#include "parser/ZorWBModelCheck.h"

namespace {

struct CheckCase {
    const char* text;
    std::vector<std::string> errors;  // "code (location)"
    const char* lastMessage;
};

}  // namespace

TEST(ZorWBModelCheck, EveryMessageWithItsCodeAndLocation) {
    const CheckCase cases[] = {
        // An unknown unit, at the unit.
        {"x = 3 foo;", {"22 (1,6,1,9)"}, "semantic error, unknown unit"},
        {"(a + b) foo;", {"22 (1,8,1,11)"}, "semantic error, unknown unit"},
        // A clash of kinds, at the operator where it arises (once).
        {"y = x + 2 mm + 3 deg;", {"23 (1,4,1,20)"}, "semantic error, inconsistent unit"},
        {"2 mm - 3 deg;", {"23 (1,0,1,12)"}, "semantic error, inconsistent unit"},
        // An equation whose sides disagree, at the equation.
        {"1 = 2 deg;", {"23 (1,0,1,10)"}, "semantic error, inconsistent unit"},
        {"5 mm = x;", {"23 (1,0,1,9)"}, "semantic error, inconsistent unit"},
        {"a = 1 mm;\nb = 2 deg + 3 mm / 1 mm;",
         {"23 (2,0,2,24)"},
         "semantic error, inconsistent unit"},
        // One variable with a distance and an angle unit, at the later unit.
        {"(x) mm = 1 mm;\n(x) deg = 1 deg;", {"23 (2,4,2,7)"}, "semantic error, inconsistent unit"},
        // A quote character cannot begin a variable name.
        {"x = ';", {"21 (1,4,1,5)"}, "semantic error, unknown variable name"},
        {"'abc = 2;", {"21 (1,0,1,4)"}, "semantic error, unknown variable name"},
        // Pi with an angle unit other than rad, at the unit.
        {"2 Pi deg;", {"25 (1,5,1,8)"}, "semantic error, ambiguous Pi"},
        {"Pi grad;", {"25 (1,3,1,7)"}, "semantic error, ambiguous Pi"},
        {"(y) Pi ';", {"25 (1,7,1,8)"}, "semantic error, ambiguous Pi"},
        // The judgement does not let a unitless variable equal an angle.
        {"x = 30 deg;", {"23 (1,0,1,11)"}, "semantic error, inconsistent unit"},
        // A repeated call is one node: its problems are told once, at the
        // first call.
        {"y = f(2 foo) + f(2 foo);", {"22 (1,8,1,11)"}, "semantic error, unknown unit"},
        {"a = g(2 mm + 3 deg);\nb = g(2 mm + 3 deg);",
         {"23 (1,6,1,18)"},
         "semantic error, inconsistent unit"},
    };
    for (const CheckCase& test : cases) {
        ParsedText parsed(test.text);
        EXPECT_EQ(parsed.Errors(), test.errors) << test.text;
        EXPECT_EQ(parsed.messenger.GetString(), test.lastMessage) << test.text;
        EXPECT_EQ(parsed.errors, static_cast<int>(test.errors.size()));
    }
}

TEST(ZorWBModelCheck, AcceptsWhatItCannotJudge) {
    for (const char* text :
         {"x = 5 mm;", "sin(30 deg) = x;", "x^2 + 1;", "y = (a + b) deg;", "2 Pi rad = 3 Pi rad;",
          "x = 2 Pi mm;", "x = 3 \";", "(x) mm = 2 mm;\n(x) ' = 1 ';\n(x) mm = 3 mm;",
          "if (x > 2 mm) then (y = 1 mm) else (y = 2 mm);", "z = 2 mm * 3 mm;"}) {
        ParsedText parsed(text);
        EXPECT_EQ(parsed.errors, 0) << text << " " << parsed.messenger.GetString().GetString();
    }
}

TEST(ZorWBModelCheck, MissingOperandAndRunStatus) {
    ZorWBModel model;
    ZorWBLocation here(4, 2, 4, 8);
    ZorWBNodeList children;
    children.Add(model.CreateVariable(ZorWBLocation(), "x"));
    children.Add(nullptr);
    ZorWBNode* sum = model.CreateOperator(here, ZorWBExpressionType::Sum, children);
    model.AddEquation(sum);
    ZorWBParserMessenger messenger;
    ZorWBModelCheck check(&model, &messenger);
    EXPECT_EQ(check.Run(), static_cast<int>(0x80004005u));
    ASSERT_EQ(messenger.GetErrorNumber(), 1);
    int code = 0;
    ZorWBLocation location;
    messenger.GetError(0, code, location);
    EXPECT_EQ(code, 100);
    EXPECT_TRUE(location.Compare(here));
    EXPECT_EQ(messenger.GetString(), "internal error, unit computation not available");

    // A second run starts afresh.
    EXPECT_EQ(check.Run(), static_cast<int>(0x80004005u));
    EXPECT_EQ(check.GetNbOfReportedErrors(), 1);

    ZorWBModel clean;
    clean.AddEquation(clean.CreateVariable(ZorWBLocation(), "x"));
    EXPECT_EQ(ZorWBModelCheck(&clean, &messenger).Run(), 0);
    EXPECT_EQ(ZorWBModelCheck(nullptr, &messenger).Run(), static_cast<int>(0x80004005u));
    EXPECT_EQ(ZorWBModelCheck(&clean, nullptr).Run(), static_cast<int>(0x80004005u));
}

TEST(ZorWBModelCheck, SyntaxAndSemanticErrorsAccumulate) {
    ParsedText parsed("x = 1 foo;\ny = ;\nz = 2 mm + 1 rad;");
    EXPECT_EQ(parsed.Errors(),
              (std::vector<std::string>{"7 (2,4,2,5)", "22 (1,6,1,9)", "23 (3,4,3,16)"}));
    EXPECT_EQ(parsed.model.GetNbOfEquations(), 2);
}
