#include <gtest/gtest.h>

#include "SymbolicTestSupport.h"
#include "symbolic/ZorWBLinearForm.h"

namespace {

using Form = ZorWBLinearForm;

class LinearFormTest : public ::testing::Test {
  protected:
    ZorWBFactory f;
    ZorWBVariable* x = NamedVariable(f, "x");
    ZorWBVariable* y = NamedVariable(f, "y");
    ZorWBVariable* z = NamedVariable(f, "z");
    Form form;

    ZorWBExpression* Times(int c, ZorWBExpression* v) { return f.CreateProduct(Int(f, c), v); }
};

TEST_F(LinearFormTest, ClassifiesCoefficientsExactly) {
    unsigned int all = ZorWBLevel::All;
    EXPECT_EQ(Form::Classify(ZorWBValue(0), all), Form::AbsentKind);
    EXPECT_EQ(Form::Classify(ZorWBValue(1.0), all), Form::OneKind);
    EXPECT_EQ(Form::Classify(ZorWBValue(-1), all), Form::MinusOneKind);
    EXPECT_EQ(Form::Classify(ZorWBValue(1.0 + 1e-15), all), Form::GeneralKind);
    EXPECT_EQ(Form::Classify(ZorWBValue(ZorWBRealInterval{-1.0, -1.0}), all), Form::MinusOneKind);
    EXPECT_EQ(Form::Classify(ZorWBValue(ZorWBIntegerInterval{0, 1}), all), Form::GeneralKind);
    EXPECT_EQ(Form::Classify(ZorWBValue(ZorWBTrue), all), Form::GeneralKind);
    EXPECT_EQ(Form::Classify(ZorWBValue(), all), Form::GeneralKind);
    // Fractions compare by their real reading only from FractionAsReal on.
    ZorWBValue one(ZorWBCreateFraction(3, 3, 0, 0));
    ZorWBValue zero(ZorWBCreateFraction(0, 5, 0, 0));
    EXPECT_EQ(Form::Classify(one, ZorWBLevel::FractionAsReal), Form::OneKind);
    EXPECT_EQ(Form::Classify(zero, ZorWBLevel::FractionAsReal), Form::AbsentKind);
    EXPECT_EQ(Form::Classify(one, Below(ZorWBLevel::FractionAsReal)), Form::GeneralKind);
    EXPECT_EQ(Form::Classify(zero, Below(ZorWBLevel::FractionAsReal)), Form::GeneralKind);
}

TEST_F(LinearFormTest, StoresOnlyPresentVariables) {
    form.Reset(3);
    form.SetCoefficient(2, ZorWBValue(5), ZorWBLevel::All);
    form.SetCoefficient(0, ZorWBValue(-1), ZorWBLevel::All);
    form.SetCoefficient(1, ZorWBValue(0), ZorWBLevel::All);
    form.SetCoefficient(7, ZorWBValue(2), ZorWBLevel::All);  // outside: ignored
    ASSERT_EQ(form.GetEntries().size(), 2u);
    EXPECT_EQ(form.GetEntries()[0].variable, 0);
    EXPECT_EQ(form.GetKind(0), Form::MinusOneKind);
    EXPECT_EQ(form.GetKind(1), Form::AbsentKind);
    EXPECT_EQ(form.GetCoefficient(2).GetAsInteger(), 5);
    EXPECT_EQ(form.GetCoefficient(1).GetAsInteger(), 0);
    form.SetCoefficient(2, ZorWBValue(0.0), ZorWBLevel::All);
    EXPECT_EQ(form.GetEntries().size(), 1u);
    EXPECT_EQ(form.GetPivot(), Form::NoPivot);
}

TEST_F(LinearFormTest, FillsFromRootShapes) {
    EXPECT_TRUE(form.FillValues(f, x));
    EXPECT_EQ(form.GetKind(0), Form::OneKind);
    EXPECT_TRUE(form.FillValues(f, f.CreateProduct(y, Int(f, 4))));
    EXPECT_EQ(form.GetCoefficient(1).GetAsInteger(), 4);
    EXPECT_FALSE(form.FillValues(f, Int(f, 3)));
    EXPECT_FALSE(form.FillValues(f, f.CreateProduct(Int(f, 2), f.CreateSum(x, y))));
    EXPECT_FALSE(form.FillValues(f, f.CreateSin(x)));
    EXPECT_FALSE(form.HasRemainder());
    EXPECT_FALSE(form.FillValues(f, nullptr));

    // A later term of a variable replaces the earlier one.
    ZorWBExpression* root = f.CreateSum(
        4, std::vector<ZorWBExpression*>{Times(3, x), Int(f, -7), Times(2, y), x}.data());
    ASSERT_TRUE(form.FillValues(f, root));
    EXPECT_EQ(form.GetKind(0), Form::OneKind);
    EXPECT_EQ(form.GetCoefficient(1).GetAsInteger(), 2);
    EXPECT_EQ(form.ToString(f), " + x + 2 * y + ##-7 ##\n");

    // Merging the repeated variables first: 3x + x is 4x; 5y - 5y goes.
    ZorWBExpression* repeated = f.CreateSum(
        5,
        std::vector<ZorWBExpression*>{Times(3, x), Times(5, y), Int(f, 2), x, Times(-5, y)}.data());
    ZorWBExpression* merged = Form::MergeRepeatedVariables(f, repeated);
    EXPECT_EQ(Text(merged), "Sum(Product(4, x), 2)");
    ZorWBExpression* distinct = f.CreateSum(Times(2, x), y);
    EXPECT_EQ(Form::MergeRepeatedVariables(f, distinct), distinct);
    EXPECT_EQ(Form::MergeRepeatedVariables(f, x), x);
    EXPECT_EQ(Text(Form::MergeRepeatedVariables(f, f.CreateSum(x, Times(-1, x)))), "0");

    // Constants alone give no form.
    EXPECT_FALSE(form.FillValues(f, f.CreateSum(Int(f, 2), Int(f, -2))));
    EXPECT_FALSE(form.HasRemainder());
}

TEST_F(LinearFormTest, VariablesOfCompoundTermsLeaveTheLinearPart) {
    // 5x + z + 2*(x + y): x also occurs in the compound term.
    ZorWBExpression* compound = f.CreateProduct(Int(f, 2), f.CreateSum(x, y));
    ZorWBExpression* root =
        f.CreateSum(3, std::vector<ZorWBExpression*>{Times(5, x), z, compound}.data());
    ASSERT_TRUE(form.FillValues(f, root));
    EXPECT_EQ(form.GetKind(0), Form::AbsentKind);
    EXPECT_EQ(form.GetKind(2), Form::OneKind);
    EXPECT_EQ(Text(form.GetRemainder(f)), "Sum(Product(2, Sum(x, y)), Product(5, x))");
    EXPECT_EQ(form.ToString(f), " + z + ##Sum(Product(2, Sum(x, y)), Product(5, x)) ##\n");
}

TEST_F(LinearFormTest, TraceTextOfCoefficients) {
    form.Reset(3);
    form.SetCoefficient(0, ZorWBValue(-1), 0);
    form.SetCoefficient(1, ZorWBValue(ZorWBRealInterval{1.0, 2.5}), 0);
    form.SetCoefficient(2, ZorWBValue(ZorWBCreateFraction(1, 3, 0, 0)), 0);
    EXPECT_EQ(form.ToString(f), " - x + [1, 2.5] * y + ?? * z\n");
    form.SetCoefficient(2, ZorWBValue(0.25), 0);
    form.SetRemainder(f.CreateSin(x));
    EXPECT_EQ(form.ToString(f), " - x + [1, 2.5] * y + 0.25 * z + ##Sin(x) ##\n");
}

TEST_F(LinearFormTest, RemainderArithmetic) {
    form.Reset(3);
    form.SetRemainder(Int(f, 6));
    form.ScaleRemainder(f, ZorWBValue(ZorWBCreateFraction(-1, 3, 0, 0)));
    EXPECT_EQ(Text(form.GetRemainder(f)), "-2");
    Form other;
    other.Reset(3);
    other.SetRemainder(f.CreateSin(x));
    form.AddRemainder(f, other, ZorWBValue(3), false);
    EXPECT_EQ(Text(form.GetRemainder(f)), "Sum(Product(3, Sin(x)), -2)");
    form.AddRemainder(f, other, ZorWBValue(1), true);
    EXPECT_EQ(Text(form.GetRemainder(f)), "Sum(Sum(Product(3, Sin(x)), Sin(x)), -2)");
    // Constants of different powers of Pi have no exact sum: Pi stays a term.
    Form pi;
    pi.Reset(3);
    pi.SetRemainder(f.CreateConstantPi());
    Form sum;
    sum.Reset(3);
    sum.SetRemainder(Int(f, 1));
    sum.AddRemainder(f, pi, ZorWBValue(1), true);
    EXPECT_EQ(Text(sum.GetRemainder(f)), "Sum({1/1 * Pi^1}, 1)");
    sum.SetRemainder(nullptr);
    EXPECT_FALSE(sum.HasRemainder());
    EXPECT_EQ(sum.GetRemainder(f), nullptr);
}

TEST_F(LinearFormTest, RowOperations) {
    ZorWBEnvironment& environment = f.GetEnvironment();
    Form row;
    row.Reset(3);
    row.SetKind(0, Form::MinusOneKind);
    row.SetCoefficient(1, ZorWBValue(2), 0);
    row.SetCoefficient(2, ZorWBValue(3), 0);
    row.ScaleCoefficients(environment, ZorWBLevel::All, 0, ZorWBValue(-1));
    EXPECT_EQ(row.GetKind(0), Form::MinusOneKind);
    EXPECT_EQ(row.GetCoefficient(1).GetAsInteger(), -2);
    form.Reset(3);
    form.SetCoefficient(0, ZorWBValue(4), 0);
    form.SetCoefficient(2, ZorWBValue(12), 0);
    std::vector<int> appeared;
    form.AddScaledRow(environment, ZorWBLevel::All, row, 0, ZorWBValue(4), appeared);
    // z: 12 + (-3)(4) = 0 goes; y: 0 + (-2)(4) appears.
    EXPECT_EQ(appeared, std::vector<int>{1});
    EXPECT_EQ(form.GetKind(2), Form::AbsentKind);
    EXPECT_EQ(form.GetCoefficient(1).GetAsInteger(), -8);
    EXPECT_EQ(form.GetKind(0), Form::GeneralKind);
}

}  // namespace
