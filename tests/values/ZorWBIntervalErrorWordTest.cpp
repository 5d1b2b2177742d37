#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "IntervalTestSupport.h"
#include "values/ZorWBIntervalFunctions.h"

namespace {

// One operator called with either valid operands or one empty operand;
// answers whether its result is the empty interval of its kind.
struct Operator {
    std::string name;
    std::function<bool(const ZorWBEnvironment&, bool withEmptyOperand)> call;
};

template <typename Function>
Operator RealUnaryOperator(std::string name, Function function, R valid = {0.25, 0.5}) {
    return {std::move(name), [function, valid](const ZorWBEnvironment& e, bool empty) {
                return IsNil(function(e, empty ? ZorWBReal_Nil : valid));
            }};
}

template <typename Function>
Operator RealBinaryOperator(std::string name, Function function) {
    return {std::move(name), [function](const ZorWBEnvironment& e, bool empty) {
                return IsNil(function(e, R{1, 2}, empty ? ZorWBReal_Nil : R{3, 4}));
            }};
}

template <typename Function>
Operator IntegerBinaryOperator(std::string name, Function function) {
    return {std::move(name), [function](const ZorWBEnvironment& e, bool empty) {
                return IsNil(function(e, empty ? ZorWBInteger_Nil : I{1, 2}, I{3, 4}));
            }};
}

std::vector<Operator> AllOperators() {
    using Unary = R (*)(const ZorWBEnvironment&, const R&);
    using Binary = R (*)(const ZorWBEnvironment&, const R&, const R&);
    using IntegerBinary = I (*)(const ZorWBEnvironment&, const I&, const I&);
    const R principal = {-TestPi, TestPi};
    std::vector<Operator> operators = {
        RealBinaryOperator("Sum", static_cast<Binary>(ZorWBSum)),
        RealBinaryOperator("Sub", static_cast<Binary>(ZorWBSub)),
        RealBinaryOperator("Mul", static_cast<Binary>(ZorWBMul)),
        RealBinaryOperator("Div", static_cast<Binary>(ZorWBDiv)),
        RealBinaryOperator("Mod", static_cast<Binary>(ZorWBMod)),
        RealBinaryOperator("Min", static_cast<Binary>(ZorWBMin)),
        RealBinaryOperator("Max", static_cast<Binary>(ZorWBMax)),
        RealBinaryOperator("Pow", static_cast<Binary>(ZorWBPow)),
        IntegerBinaryOperator("integer Sum", static_cast<IntegerBinary>(ZorWBSum)),
        IntegerBinaryOperator("integer Sub", static_cast<IntegerBinary>(ZorWBSub)),
        IntegerBinaryOperator("integer Mul", static_cast<IntegerBinary>(ZorWBMul)),
        IntegerBinaryOperator("integer Div", static_cast<IntegerBinary>(ZorWBDiv)),
        IntegerBinaryOperator("integer Mod", static_cast<IntegerBinary>(ZorWBMod)),
        IntegerBinaryOperator("integer Min", static_cast<IntegerBinary>(ZorWBMin)),
        IntegerBinaryOperator("integer Max", static_cast<IntegerBinary>(ZorWBMax)),
        IntegerBinaryOperator("integer Abs", [](const ZorWBEnvironment& e, const I& a,
                                                const I&) { return ZorWBAbs(e, a); }),
        RealUnaryOperator("Abs", static_cast<Unary>(ZorWBAbs)),
        RealUnaryOperator("integer Pow",
                          [](const ZorWBEnvironment& e, const R& x) { return ZorWBPow(e, x, 3); }),
        RealUnaryOperator("Root",
                          [principal](const ZorWBEnvironment& e, const R& x) {
                              return ZorWBRoot(e, x, 2, principal);
                          }),
        RealUnaryOperator("RootPositive", [](const ZorWBEnvironment& e,
                                             const R& x) { return ZorWBRootPositive(e, x, 2); }),
        RealUnaryOperator("RootNegative", [](const ZorWBEnvironment& e,
                                             const R& x) { return ZorWBRootNegative(e, x, 2); }),
        RealUnaryOperator("Asin", [principal](const ZorWBEnvironment& e,
                                              const R& x) { return ZorWBAsin(e, x, principal); }),
        RealUnaryOperator("Acos", [principal](const ZorWBEnvironment& e,
                                              const R& x) { return ZorWBAcos(e, x, principal); }),
        RealUnaryOperator("Atan", [principal](const ZorWBEnvironment& e,
                                              const R& x) { return ZorWBAtan(e, x, principal); }),
        RealUnaryOperator("Atan2",
                          [principal](const ZorWBEnvironment& e, const R& x) {
                              return ZorWBAtan2(e, x, R{1, 2}, principal);
                          }),
        RealUnaryOperator("Acosh", ZorWBAcosh, R{1, 2}),
    };
    const std::vector<std::pair<std::string, Unary>> unary = {
        {"Sqrt", ZorWBSqrt}, {"Exp", ZorWBExp},     {"Ln", ZorWBLn},       {"Log", ZorWBLog},
        {"Sin", ZorWBSin},   {"Cos", ZorWBCos},     {"Tan", ZorWBTan},     {"Sinh", ZorWBSinh},
        {"Cosh", ZorWBCosh}, {"Tanh", ZorWBTanh},   {"Asinh", ZorWBAsinh}, {"Atanh", ZorWBAtanh},
        {"Ceil", ZorWBCeil}, {"Floor", ZorWBFloor}, {"Round", ZorWBRound}, {"Trunc", ZorWBTrunc},
    };
    for (const auto& [name, function] : unary)
        operators.push_back(RealUnaryOperator(name, function));
    return operators;
}

}  // namespace

TEST(ZorWBIntervalErrorWord, EveryOperatorReportsAnEmptyOperand) {
    for (const Operator& op : AllOperators()) {
        const ZorWBEnvironment environment(0);
        EXPECT_TRUE(op.call(environment, true)) << op.name;
        EXPECT_EQ(environment.GetError(), 1u) << op.name;
    }
}

TEST(ZorWBIntervalErrorWord, ASetErrorBlanksEveryLaterResult) {
    for (const Operator& op : AllOperators()) {
        const ZorWBEnvironment clean(0);
        EXPECT_FALSE(op.call(clean, false)) << op.name;
        EXPECT_EQ(clean.GetError(), 0u) << op.name;

        // An error from an earlier call, even one of another code, blanks
        // the result and is left as it is.
        const ZorWBEnvironment holding(0);
        holding.SetError(ZorWBError::IncompatibleKinds);
        EXPECT_TRUE(op.call(holding, false)) << op.name;
        EXPECT_EQ(holding.GetError(), ZorWBError::IncompatibleKinds) << op.name;
    }
    // A domain error within one evaluation blanks what follows it.
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(IsNil(ZorWBSqrt(environment, R{-2, -1})));
    EXPECT_TRUE(IsNil(ZorWBSum(environment, R{1, 2}, R{3, 4})));
    EXPECT_EQ(environment.GetError(), 1u);
    environment.InitForEval();
    EXPECT_FALSE(IsNil(ZorWBSum(environment, R{1, 2}, R{3, 4})));
    // Comparisons still answer, and a quotient by an interval holding 0 is
    // not an error.
    environment.SetError(ZorWBError::IncompatibleKinds);
    EXPECT_EQ(ZorWBLessEqual(environment, R{1, 2}, R{3, 4}), ZorWBTrue);
    environment.ClearError();
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBDiv(environment, R{1, 2}, R{-1, 1})));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBDiv(environment, I{1, 2}, I{-1, 1}), ZorWBInteger_Any));
    EXPECT_EQ(environment.GetError(), 0u);
}
