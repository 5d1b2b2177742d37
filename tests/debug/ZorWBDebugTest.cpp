#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBFactory.h"

namespace {

using Trace = ZorWBDebug::WBX_TRACE;

// A fresh trace object reading the environment as it is now.
class FreshDebug : public ZorWBDebug {
  public:
    FreshDebug() = default;
    using ZorWBDebug::CheckCategory;
    using ZorWBDebug::CommonInitialize;
};

void ClearTraceVariables() {
    for (const char* name : {"JSON", "LIFE", "EVAL", "DIFF", "EQPR", "TRANS", "SOLVE"})
        unsetenv((std::string("WBxTrace_") + name).c_str());
}

}  // namespace

TEST(ZorWBDebug, LevelsComeFromTheEnvironment) {
    ClearTraceVariables();
    setenv("WBxTrace_EVAL", "3", 1);
    FreshDebug debug;
    EXPECT_TRUE(debug.ActiveTrace(Trace::EVAL, Trace::LEVEL_1));
    EXPECT_TRUE(debug.ActiveTrace(Trace::EVAL, Trace::LEVEL_3));
    EXPECT_FALSE(debug.ActiveTrace(Trace::EVAL, Trace::LEVEL_4));
    for (int category : {0, 1, 3, 4, 5, 6})
        EXPECT_FALSE(
            debug.ActiveTrace(static_cast<Trace::WBX_TRACE_CAT>(category), Trace::LEVEL_1));
    EXPECT_FALSE(debug.ActiveTrace(static_cast<Trace::WBX_TRACE_CAT>(7), Trace::LEVEL_1));
    EXPECT_FALSE(debug.ActiveTrace(static_cast<Trace::WBX_TRACE_CAT>(-1), Trace::LEVEL_1));
    EXPECT_TRUE(debug.CheckCategory(Trace::SOLVE));
    EXPECT_FALSE(debug.CheckCategory(static_cast<Trace::WBX_TRACE_CAT>(7)));

    // Read once: later changes of the environment have no effect.
    setenv("WBxTrace_EVAL", "1", 1);
    debug.CommonInitialize();
    EXPECT_EQ(debug.GetLevel(Trace::EVAL), -1);  // levels reset, flag already set
    setenv("WBxTrace_SOLVE", "5", 1);
    setenv("WBxTrace_TRANS", "7", 1);
    setenv("WBxTrace_JSON", "text", 1);
    setenv("WBxTrace_LIFE", "-2", 1);
    setenv("WBxTrace_DIFF", "0", 1);
    FreshDebug other;
    EXPECT_EQ(other.GetLevel(Trace::SOLVE), 5);
    EXPECT_EQ(other.GetLevel(Trace::EVAL), 1);
    EXPECT_EQ(other.GetLevel(Trace::TRANS), 0);
    EXPECT_EQ(other.GetLevel(Trace::JSON), 0);
    EXPECT_EQ(other.GetLevel(Trace::LIFE), 0);
    EXPECT_EQ(other.GetLevel(Trace::DIFF), 0);
    EXPECT_EQ(other.GetLevel(Trace::EQPR), 0);
    ClearTraceVariables();

    EXPECT_EQ(ZorWBDebug::GetWBDebug(), ZorWBDebug::GetWBDebug());
}

TEST(ZorWBDebug, CountersAndTabs) {
    FreshDebug debug;
    testing::internal::CaptureStdout();
    debug.Tabs_Print();
    debug.Tabs_Decrease(2);
    debug.Tabs_Print();
    debug.Tabs_Increase(5);
    debug.Tabs_Print();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\t\t\t");
    EXPECT_EQ(debug.GetTabs(), 3);
    EXPECT_TRUE(debug.Depth_Differentiate_Equals(0));
    debug.Depth_Differentiate_Increase();
    debug.Depth_Differentiate_Increase();
    debug.Depth_Differentiate_Decrease();
    EXPECT_TRUE(debug.Depth_Differentiate_Equals(1));
}

TEST(ZorWBDebug, PrintedExpressions) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* speed = f.CreateVariable();
    speed->SetName("speed");
    ZorWBExpression* e = f.CreateSum(f.CreateExp(x), f.CreateProduct(f.GetPi(), speed));
    EXPECT_EQ(ZorWBDebug::ExpStr(e), "Sum(Exp(va0), Product({1/1 * Pi^1}, speed))");
    EXPECT_EQ(ZorWBDebug::ExpStr(f.GetTwo()), "2");
    EXPECT_EQ(ZorWBDebug::ExpStr(f.CreateRealConstant(0.25)), "0.25");
    ZorWBExpression* fraction = f.CreateConstant(ZorWBValue(ZorWBCreateFraction(3, 4, 0, 0)));
    EXPECT_EQ(ZorWBDebug::ExpStr(fraction), "{3/4}");
    EXPECT_EQ(ZorWBDebug::ExpStr(f.CreateConstant(ZorWBValue(ZorWBRealInterval{0, 1}))), "??");
    EXPECT_EQ(ZorWBDebug::ExpStr(nullptr), "null expression");

    testing::internal::CaptureStdout();
    ZorWBDebug::GetWBDebug()->PrintExp("e = ", f.CreateSin(x), "\n");
    ZorWBDebug::GetWBDebug()->PrintExp(nullptr, nullptr, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "e = Sin(va0)\nnull expression");

    // A deep chain prints without deep recursion.
    ZorWBExpression* chain = x;
    for (int i = 0; i < 100000; ++i)
        chain = f.CreateAbs(chain);
    EXPECT_EQ(ZorWBDebug::ExpStr(chain).GetLength(), 100000 * 5 + 3);
}

TEST(ZorWBDebug, TextsOfValuesAndTypes) {
    EXPECT_EQ(ZorWBDebug::Str(true), "TRUE");
    EXPECT_EQ(ZorWBDebug::Str(false), "FALSE");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBValue(ZorWBIntegerInterval{2, 5})), "Integer interval [2 -> 5]");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBEquationUnset), " ? ");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBEqualZero), "  = 0");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBNotEqualZero), " <> 0");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBLessEqualZero), " <= 0");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBLessZero), " < 0");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBGreaterEqualZero), " >= 0");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBGreaterZero), " > 0");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBMinimize), "<minimize>");
    EXPECT_EQ(ZorWBDebug::Str(ZorWBMaximize), "<maximize>");
    EXPECT_EQ(ZorWBDebug::Str(static_cast<ZorWBEquationType>(9)), " ? ");

    const char* names[] = {
        "None",     "Variable",   "Constant",    "Not",        "Or",      "And",      "Equal",
        "NotEqual", "LessEqual",  "Implication", "Sum",        "Product", "Quotient", "Power",
        "Root",     "Sqrt",       "Log",         "Ln",         "Exp",     "Sin",      "Cos",
        "Tan",      "Asin",       "Acos",        "Atan",       "Atan2",   "Dim",      "Sign",
        "Step",     "Sinh",       "Cosh",        "Tanh",       "Asinh",   "Acosh",    "Atanh",
        "Abs",      "Ceil",       "Floor",       "Round",      "Trunc",   "Mod",      "Min",
        "Max",      "IfThenElse", "BlackBox",    "UnaryMinus", "Minus",   "Integrate"};
    for (int t = 0; t < 48; ++t)
        EXPECT_EQ(ZorWBDebug::Str(static_cast<ZorWBExpressionType>(t)), names[t]);
    EXPECT_EQ(ZorWBDebug::Str(static_cast<ZorWBExpressionType>(48)), "ERROR");
    EXPECT_EQ(ZorWBDebug::Str(static_cast<ZorWBExpressionType>(-1)), "ERROR");
}
