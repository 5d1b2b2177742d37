#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OutputTestSupport.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "output/ZorWBEquations.h"
#include "output/ZorWBValueText.h"

namespace {

using Type = ZorWBExpressionType;

std::string Text(const ZorQelString& text) {
    return text.GetStdString();
}

std::string ValueText(const ZorWBValue& value, int version = 0) {
    return Text(ZorWBEquations::ValueToString(value, version));
}

std::string TermText(ZorWBFactory& factory, const ZorWBExpression* e, int version = 0,
                     bool functional = true) {
    ZorWBEquations writer(factory, ZorQelStorage::InputPart, version);
    std::unique_ptr<ZorQelExpressionTerm> term(writer.CreateTerm(e, functional));
    return term ? Text(term->ToString(functional)) : "<null>";
}

ZorWBExpression* FromText(ZorWBFactory& factory, const char* text) {
    std::unique_ptr<ZorQelExpressionTerm> term(ZorQelExpressionTerm::Parse(text));
    ZorWBEquations reader(factory, ZorQelStorage::InputPart, 0);
    return reader.CreateExpression(term.get());
}

// Whether structural equality can hold between a root and its copy in
// another factory: black-box calls are equal only on the same black box,
// and undefined values never equal anything.
bool ComparableAcrossFactories(const ZorWBExpression* e) {
    std::vector<const ZorWBExpression*> stack{e};
    while (!stack.empty()) {
        const ZorWBExpression* node = stack.back();
        stack.pop_back();
        if (node->GetType() == Type::BlackBox) return false;
        if (node->GetType() == Type::Constant && node->GetValue().GetType() == ZorWBUndefinedType)
            return false;
        for (int i = 0; i < node->GetNbOfChildren(); ++i)
            stack.push_back(node->GetChild(i));
    }
    return true;
}

}  // namespace

TEST(ZorWBEquationsNames, TypeTableHoldsEveryParseAndPrintName) {
    // type, parse name, print name (the parse name where the row has none)
    const char* const rows[][2] = {{"none", "None"},
                                   {"variable", "variable"},
                                   {"constant", "constant"},
                                   {"Not", "!"},
                                   {"Or", " || "},
                                   {"And", " && "},
                                   {"Equal", "=="},
                                   {"nEqual", "!="},
                                   {"lEqual", "<="},
                                   {"imply", "imply"},
                                   {"Sum", "+"},
                                   {"Product", "*"},
                                   {"Quotient", "/"},
                                   {"Pow", "^"},
                                   {"Root", "Root"},
                                   {"Sqrt", "Sqrt"},
                                   {"Log", "Log"},
                                   {"Ln", "Ln"},
                                   {"Exp", "Exp"},
                                   {"Sin", "Sin"},
                                   {"Cos", "Cos"},
                                   {"Tan", "Tan"},
                                   {"aSin", "aSin"},
                                   {"aCos", "aCos"},
                                   {"aTan", "aTan"},
                                   {"aTan2", "aTan2"},
                                   {"Dim", "Dim"},
                                   {"Sign", "Sign"},
                                   {"Step", "Step"},
                                   {"Sinh", "Sinh"},
                                   {"Cosh", "Cosh"},
                                   {"Tanh", "Tanh"},
                                   {"aSinh", "aSinh"},
                                   {"aCosh", "aCosh"},
                                   {"aTanh", "aTanh"},
                                   {"Abs", "Abs"},
                                   {"Ceil", "Ceil"},
                                   {"Floor", "Floor"},
                                   {"Round", "Round"},
                                   {"Trunc", "Trunc"},
                                   {"Mod", "Mod"},
                                   {"Min", "Min"},
                                   {"Max", "Max"},
                                   {"IfThenElse", "IfThenElse"},
                                   {"Bbx", "Bbx"},
                                   {"Minus", "-"},
                                   {"Minus", "-"},
                                   {"Int", "Int"},
                                   {"Frac", "Frac"}};
    ASSERT_EQ(sizeof rows / sizeof rows[0], 49u);
    for (int i = 0; i < 49; ++i) {
        Type type = static_cast<Type>(i);
        SCOPED_TRACE(i);
        EXPECT_EQ(Text(ZorWBEquations::ExprTypeToStringParse(type, 0)), rows[i][0]);
        EXPECT_EQ(Text(ZorWBEquations::ExprTypeToStringPrint(type, 0)), rows[i][1]);
        std::string lower = Text(ZorQelString(rows[i][0]).ToLower());
        EXPECT_EQ(Text(ZorWBEquations::ExprTypeToStringParse(type, 1)),
                  i == 47 ? std::string("Int") : lower);
        // Reading a name gives the first type that has it: both minus rows
        // read as the operator that nodes use.
        int expected = i == 46 ? 45 : i;
        EXPECT_EQ(static_cast<int>(ZorWBEquations::StringParseToExprType(rows[i][0], 0)), expected);
        EXPECT_EQ(static_cast<int>(ZorWBEquations::StringParseToExprType(
                      ZorWBEquations::ExprTypeToStringParse(type, 3), 3)),
                  expected);
    }
    ZorWBFactory factory;
    ZorWBEquations old(factory, ZorQelStorage::InputPart, 0);
    ZorWBEquations current(factory, ZorQelStorage::OutputPart, 1);
    EXPECT_EQ(Text(old.ExprTypeToStringParse(Type::Asin)), "aSin");
    EXPECT_EQ(Text(current.ExprTypeToStringParse(Type::Asin)), "asin");
    EXPECT_EQ(Text(current.ExprTypeToStringPrint(Type::Sum)), "+");
    EXPECT_EQ(current.StringParseToExprType("pow"), Type::Power);
    EXPECT_EQ(current.StringParseToExprType("Pow"), Type::None);
    EXPECT_EQ(old.StringParseToExprType("pow"), Type::None);
    for (int unknown : {-1, 49, 1000}) {
        EXPECT_EQ(Text(ZorWBEquations::ExprTypeToStringParse(static_cast<Type>(unknown), 0)),
                  "None");
        EXPECT_EQ(Text(ZorWBEquations::ExprTypeToStringPrint(static_cast<Type>(unknown), 1)),
                  "None");
    }
    EXPECT_EQ(ZorWBEquations::StringParseToExprType("", 0), Type::None);
    EXPECT_EQ(ZorWBEquations::StringParseToExprType("sum", 0), Type::None);
}

TEST(ZorWBEquationsNames, KindsBooleansAndRelations) {
    const char* const kinds[] = {"Undefined",       "Integer",      "Real",
                                 "IntegerInterval", "RealInterval", "IntegerEnum",
                                 "RealEnum",        "Boolean",      "Fraction"};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(Text(ZorWBEquations::ValueTypeToString(static_cast<ZorWBValueType>(i))),
                  kinds[i]);
    EXPECT_EQ(Text(ZorWBEquations::ValueTypeToString(static_cast<ZorWBValueType>(9))), "");
    EXPECT_EQ(Text(ZorWBEquations::ValueTypeToString(static_cast<ZorWBValueType>(-1))), "");
    EXPECT_EQ(Text(ZorWBEquations::BooleanToString(false)), "False");
    EXPECT_EQ(Text(ZorWBEquations::BooleanToString(true)), "True");
    const char* const relations[] = {"",   "=", "!=",         "<=",        "<",
                                     ">=", ">", "<minimize>", "<maximize>"};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(Text(ZorWBEquations::EquationTypeToString(static_cast<ZorWBEquationType>(i))),
                  relations[i]);
    EXPECT_EQ(Text(ZorWBEquations::EquationTypeToString(static_cast<ZorWBEquationType>(9))), "");
}

TEST(ZorWBEquationsValues, VersionZeroTexts) {
    EXPECT_EQ(ValueText(ZorWBValue(-3)), "(-3)");
    EXPECT_EQ(ValueText(ZorWBValue(7)), "7");
    EXPECT_EQ(ValueText(ZorWBValue(0)), "0");
    EXPECT_EQ(ValueText(ZorWBValue()), "any");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBIntegerInterval{1, 2})), "[1, 2]");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBIntegerInterval{-5, -2})), "[-5, -2]");
    EXPECT_EQ(ValueText(ZorWBValue(0.1)), "0.10000000000000001");
    EXPECT_EQ(ValueText(ZorWBValue(-2.5)), "(-2.5)");
    EXPECT_EQ(ValueText(ZorWBValue(2.0)), "2");
    EXPECT_EQ(ValueText(ZorWBValue(1e300)), "1.0000000000000001e+300");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBRealInterval{-0.5, 1.0 / 3.0})),
              "[-0.5, 0.33333333333333331]");
    ZorWBValue integers;
    const int elements[] = {4, 1, 9};
    integers.Set(3, elements);
    EXPECT_EQ(ValueText(integers), "{1, 4, 9}");
    ZorWBValue reals;
    const double realElements[] = {0.5, -1.25};
    reals.Set(2, realElements);
    EXPECT_EQ(ValueText(reals), "{-1.25, 0.5}");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBIntegerEnum(ZorWBEnumAny))), "{}");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBRealEnum(ZorWBEnumNil))), "{}");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBFalse)), "False");
    for (ZorWBBoolean state : {ZorWBTrue, ZorWBUnknown, ZorWBEmpty})
        EXPECT_EQ(ValueText(ZorWBValue(state)), "True");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBCreateFraction(1, 180, 1, 0))), "DTOR");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBCreateFraction(1, 1, 1, 0))), "Pi");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBCreateFraction(180, 1, -1, 0))), "RTOD");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBCreateFraction(1, 2, 0, 0))), "Frac(1, 2)");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBCreateFraction(1, 2, 1, 0))), "Frac(1, 2, 1)");
    EXPECT_EQ(ValueText(ZorWBValue(ZorWBCreateFraction(-3, 4, -2, 0))), "Frac(-3, 4, -2)");
    EXPECT_EQ(ValueText(ZorWBValue(static_cast<ZorWBValueType>(12))), "");

    ZorWBFactory factory;
    ZorWBEquations writer(factory, ZorQelStorage::InputPart, 0);
    EXPECT_EQ(Text(writer.FractionToName(ZorWBCreateFraction(1, 180, 1, 0))), "DTOR");
    EXPECT_EQ(Text(writer.FractionToName(ZorWBCreateFraction(1, 2, 0, 0))), "Frac(1, 2)");
    EXPECT_EQ(Text(writer.ValueToString(ZorWBValue(-3))), "(-3)");
}

// Minus zero is written "-0" (or "(-0)") and reads back as minus zero
// wherever the value is real: the sections read back to the same text.
TEST(ZorWBEquationsValues, MinusZeroReadsBackAsMinusZero) {
    for (const ZorWBValue& value : {ZorWBValue(ZorWBRealInterval{-0.0, 0.0}),
                                    ZorWBValue(ZorWBRealInterval{-0.0, -0.0}), ZorWBValue(-0.0)}) {
        ZorWBFactory factory;
        ZorWBVariable* x = factory.CreateVariable();
        x->SetExprValue(value);
        factory.AddEquation(factory.CreateStep(x, -0.0, 1.0, -0.0, 2.0), ZorWBEqualZero);
        std::string text = WriteSystem(factory, ZorQelStorage::InputPart, 0);
        ZorWBFactory copy;
        ASSERT_TRUE(ReadSystem(text, copy, ZorQelStorage::InputPart, 0)) << text;
        EXPECT_EQ(WriteSystem(copy, ZorQelStorage::InputPart, 0), text);
        EXPECT_TRUE(std::signbit(copy.GetVariable(0)->GetValue().GetAsRealInterval().low)) << text;
    }
    bool isInteger = false;
    int integer = 1;
    double real = 0.0;
    ASSERT_TRUE(ZorWBValueText::ReadNumber("(-0)", isInteger, integer, real));
    EXPECT_TRUE(isInteger);
    EXPECT_EQ(integer, 0);
    EXPECT_TRUE(std::signbit(real));
}

TEST(ZorWBEquationsValues, VersionOneTextsAreThePrintersAndReadBack) {
    ZorWBIntegerEnum range(ZorWBEnumAny);
    range.SetAsIntegerInterval({1, 900});
    ZorWBRealEnum reals(ZorWBEnumList);
    reals.Append(-0.5);
    reals.Append(2.0);
    const std::pair<ZorWBValue, std::string> cases[] = {
        {ZorWBValue(-3), "-3"},
        {ZorWBValue(2.0), "2.0"},
        {ZorWBValue(-1e-300), "-1e-300"},
        {ZorWBValue(ZorWBCreateFraction(1, 2, 1, 0)), "(1/2*Pi)"},
        {ZorWBValue(ZorWBCreateFraction(180, 1, -1, 0)), "(180*Pi^-1)"},
        {ZorWBValue(ZorWBCreateFraction(-3, 4, 0, 0)), "(-3/4)"},
        {ZorWBValue(ZorWBCreateFraction(1, 1, 1, 0)), "Pi"},
        {ZorWBValue(ZorWBIntegerInterval{1, 2}), "[1, 2]"},
        {ZorWBValue(ZorWBRealInterval{-0.5, 3.4028234663852886e+39}),
         "[-0.5, 3.4028234663852886e+39]"},
        {ZorWBValue(range), "{1 .. 900}"},
        {ZorWBValue(reals), "{-0.5, 2.0}"},
        {ZorWBValue(ZorWBIntegerEnum(ZorWBEnumAny)), "{any}"},
        {ZorWBValue(ZorWBRealEnum(ZorWBEnumNil)), "{}"},
        {ZorWBValue(ZorWBUnknown), "unknown"},
        {ZorWBValue(ZorWBEmpty), "empty"},
        {ZorWBValue(), "undefined"},
    };
    for (const auto& [value, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ValueText(value, 1), text);
        ZorWBValue read;
        ASSERT_TRUE(ZorWBValueText::ReadPrinted(text, value.GetType(), read));
        EXPECT_EQ(read.GetType(), value.GetType());
        EXPECT_EQ(ValueText(read, 1), text);
    }
    ZorWBValue read(5);
    for (const char* bad : {"", "(1/x*Pi)", "[1, 2", "{1 .. }", "{1, x}", "maybe", "Frac(1, 2)"}) {
        for (int kind = 0; kind <= 8; ++kind)
            EXPECT_FALSE(ZorWBValueText::ReadPrinted(bad, kind, read)) << bad << " " << kind;
    }
    EXPECT_FALSE(ZorWBValueText::ReadPrinted("3.5", ZorWBIntegerType, read));
    EXPECT_FALSE(ZorWBValueText::ReadPrinted("1e999", ZorWBIntegerType, read));
    EXPECT_FALSE(ZorWBValueText::ReadPrinted("true", 9, read));
    EXPECT_EQ(read.GetAsInteger(), 5);
    ASSERT_TRUE(ZorWBValueText::ReadPrinted("(0.0 / 0.0)", ZorWBRealType, read));
    EXPECT_TRUE(std::isnan(read.GetAsReal()));
    ASSERT_TRUE(ZorWBValueText::ReadPrinted("-1e999", ZorWBRealType, read));
    EXPECT_TRUE(std::isinf(read.GetAsReal()));
}

TEST(ZorWBEquationsSections, SmallSystemByteForByte) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBVariable* y = factory.CreateVariable();
    x->SetName("x");
    x->SetExprValue(ZorWBValue(-3));
    y->SetExprValue(ZorWBValue(ZorWBRealInterval{-1.5, 2.0}));
    y->Fix(true);
    factory.AddEquation(factory.CreateSum(x, factory.CreateRealConstant(2.0)), ZorWBEqualZero);
    ZorWBEquation* removed = factory.AddEquation(x, ZorWBMinimize);
    factory.AddEquation(factory.CreateStep(factory.CreateSin(y), 0, 1, 2.5, -3),
                        ZorWBLessEqualZero);
    factory.AddEquation(factory.CreatePower(x, factory.GetPi()), ZorWBMaximize)->SetName("top");
    factory.RemoveEquation(removed);
    ZorQelIntArray simplify;
    simplify.Add(2);
    simplify.Add(1);  // removed: counted, not written
    simplify.Add(3);
    EXPECT_EQ(WriteSystem(factory, ZorQelStorage::InputPart, 0, simplify, false),
              "#!PART 1\n"
              "#!VARIABLES 2\n"
              "Integer x;\n"
              "RealInterval va1 = fixed;\n"
              "#!EQUATIONS 3\n"
              "eq0= Sum(x, 2.0);\n"
              "eq2<= Step(Sin(va1), 0.0, 1.0, 2.5, (-3.0));\n"
              "eq3<maximize> Pow(x, Pi);\n"
              "#!VALUES 2\n"
              "x = (-3);\n"
              "va1 = [-1.5, 2];\n"
              "#!SIMPLIFY 3\n"
              "eq2;\n"
              "top;\n");
    // The output part has no list of equations to simplify, and version 1
    // writes the parse names in lower case.
    std::string output = WriteSystem(factory, ZorQelStorage::OutputPart, 1, simplify, true);
    EXPECT_EQ(output.find("#!SIMPLIFY"), std::string::npos);
    EXPECT_EQ(output.rfind("#!PART 2\n", 0), 0u);
    EXPECT_NE(output.find("eq0= sum(x, 2.0);\n"), std::string::npos);
    EXPECT_NE(output.find("#!EQUATIONNAMES 1\neq3 = top;\n"), std::string::npos);
}

TEST(ZorWBEquationsSections, EmptyPartsAreLeftOut) {
    ZorWBFactory factory;
    ZorQelIntArray simplify;
    simplify.Add(0);
    EXPECT_EQ(WriteSystem(factory, ZorQelStorage::InputPart, 0, simplify),
              "#!PART 1\n#!SIMPLIFY 1\n");
    factory.AddEquation(factory.CreateSum(factory.GetOne(), factory.GetTwo()), ZorWBEquationUnset);
    EXPECT_EQ(WriteSystem(factory, ZorQelStorage::InputPart, 0),
              "#!PART 1\n#!EQUATIONS 1\neq0 Sum(1, 2);\n");
    ZorWBFactory variablesOnly;
    variablesOnly.CreateVariable();
    EXPECT_EQ(WriteSystem(variablesOnly, ZorQelStorage::OutputPart, 0),
              "#!PART 2\n#!VARIABLES 1\nUndefined va0;\n#!VALUES 1\nva0 = any;\n");
}

TEST(ZorWBEquationsSections, RootWithoutTermLeavesItsLineOpen) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    factory.AddEquation(x, ZorWBNotEqualZero)->SetRoot(nullptr);
    factory.AddEquation(x, ZorWBGreaterZero);
    ZorQelStream stream;
    ZorWBEquations writer(factory, ZorQelStorage::OutputPart, 0);
    writer.WriteEquations(stream, true);
    const ZorQelStorage::Section* section =
        stream.GetStorage().FindSection("#!EQUATIONS", ZorQelStorage::OutputPart);
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(Text(section->header), "2");
    EXPECT_EQ(Text(section->body), "eq0!= eq1> va0;\n");
    writer.WriteEnvironment(stream);
    EXPECT_EQ(stream.GetStorage().GetNbOfSections(), 1);
}

TEST(ZorWBEquationsTerms, MappingOfNodesToTerms) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    x->SetName("x");
    EXPECT_EQ(TermText(factory, x), "x");
    EXPECT_EQ(TermText(factory, factory.CreateRealConstant(2.0)), "2.0");
    EXPECT_EQ(TermText(factory, factory.CreateRealConstant(-0.25)), "(-0.25)");
    EXPECT_EQ(TermText(factory, factory.CreateIntegerConstant(-7)), "(-7)");
    EXPECT_EQ(TermText(factory, factory.CreateConstant(ZorWBValue(ZorWBRealInterval{1, 2}))),
              "[1.0, 2.0]");
    EXPECT_EQ(TermText(factory, factory.GetPiByTwo()), "PiByTwo");
    EXPECT_EQ(TermText(factory, factory.GetIndefinite()), "Indefinite");
    EXPECT_EQ(TermText(factory, factory.GetInvalid()), "Invalid");
    EXPECT_EQ(TermText(factory, factory.GetMinusOne()), "(-1)");
    EXPECT_EQ(TermText(factory, factory.GetDToR()), "DTOR");
    EXPECT_EQ(
        TermText(factory, factory.CreateConstant(ZorWBValue(ZorWBCreateFraction(2, 3, 1, 0)))),
        "Frac(2, 3, 1)");
    EXPECT_EQ(
        TermText(factory, factory.CreateConstant(ZorWBValue(ZorWBCreateFraction(2, 3, 1, 0))), 1),
        "frac(2, 3, 1)");
    EXPECT_EQ(TermText(factory, factory.CreateConstant(ZorWBValue())), "any");
    ZorWBExpression* sum = factory.CreateSum(x, factory.GetTwo());
    EXPECT_EQ(TermText(factory, sum), "Sum(x, 2)");
    EXPECT_EQ(TermText(factory, sum, 1), "sum(x, 2)");
    EXPECT_EQ(TermText(factory, sum, 0, false), "(x+2)");
    EXPECT_EQ(TermText(factory, factory.CreateSin(sum), 0, false), "Sin((x+2))");
    EXPECT_EQ(TermText(factory, factory.CreateStep(x, 1, 2, 3.5, -4)),
              "Step(x, 1.0, 2.0, 3.5, (-4.0))");
    EXPECT_EQ(TermText(factory, factory.CreateIntegrateOperator(x, x), 1), "Int(x, x)");
    ZorWBExpression* three[] = {x, x, factory.GetOne()};
    EXPECT_EQ(TermText(factory, factory.CreateOperator(Type::Round, 3, three)), "Round(x, x, 1)");
    ZorWBBBx* f = new ZorWBBBx("f");
    ZorWBExpression* call = factory.DeclareBlackBox(f, 2, three, true);
    EXPECT_EQ(TermText(factory, call), "Bbx(f, x, x)");
    EXPECT_EQ(TermText(factory, factory.DeclareBlackBox(f, 0, nullptr, true)), "Bbx(f)");
    EXPECT_EQ(TermText(factory, nullptr), "<null>");
}

TEST(ZorWBEquationsTerms, ReadingTermsBuildsTheNodes) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    x->SetName("x");
    ZorWBExpression* e = FromText(factory, "Sum(x, 2, Pow(x, 2.0), Pi)");
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->GetType(), Type::Sum);
    ASSERT_EQ(e->GetNbOfChildren(), 4);
    EXPECT_EQ(e->GetChild(0), x);
    EXPECT_EQ(e->GetChild(1), factory.GetTwo());
    EXPECT_EQ(e->GetChild(2)->GetChild(1)->GetValue().GetType(), ZorWBRealType);
    EXPECT_EQ(e->GetChild(3), factory.GetPi());
    // A leaf that names no variable and reads as no constant fails; names
    // read in either spelling.
    ZorWBExpression* lower = FromText(factory, "sin(va7)");
    EXPECT_EQ(lower, nullptr);
    ZorWBExpression* step = FromText(factory, "step(x, 1, 2.5, (-3), 4.0)");
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->GetType(), Type::Step);
    EXPECT_DOUBLE_EQ(step->GetParameter(2), -3.0);
    ZorWBExpression* fraction = FromText(factory, "Frac(1, 3, 2)");
    ASSERT_NE(fraction, nullptr);
    EXPECT_EQ(fraction->GetValue().GetAsFraction().denominator, 3);
    EXPECT_EQ(fraction->GetValue().GetAsFraction().power, 2);
    ZorWBExpression* interval = FromText(factory, "Abs([1, 2])");
    ASSERT_NE(interval, nullptr);
    EXPECT_EQ(interval->GetChild(0)->GetValue().GetType(), ZorWBIntegerIntervalType);
    // A black box is made once by name and then shared.
    ZorWBExpression* calls = FromText(factory, "Product(Bbx(h, x), Bbx(h, x, 1))");
    ASSERT_NE(calls, nullptr);
    auto* first = static_cast<const ZorWBBlackBoxOperator*>(calls->GetChild(0));
    auto* second = static_cast<const ZorWBBlackBoxOperator*>(calls->GetChild(1));
    EXPECT_EQ(first->GetBlackBox(), second->GetBlackBox());
    EXPECT_EQ(factory.GetBlackBoxByName("h"), first->GetBlackBox());
    EXPECT_TRUE(first->GetBlackBox()->IsInternal());
    for (const char* bad : {"Sin(x, x)", "Sum(x)", "Nope(x)", "1.2.3", "Sin(1.2.3)",
                            "Step(x, 1, 2, 3)", "Step(x, 1, 2, 3, y)", "Bbx(Sin(x), x)", "Frac(1)",
                            "Frac(1, x)", "variable(x)", "none(x)", "[1, 2, 3]", "{1, x}"}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(FromText(factory, bad), nullptr);
    }
    ZorWBEquations reader(factory, ZorQelStorage::InputPart, 0);
    EXPECT_EQ(reader.CreateExpression(nullptr), nullptr);
}

TEST(ZorWBEquationsTerms, TermsOfRandomExpressionsReadBackEqual) {
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        ZorWBFactory factory;
        RandomSystem system(factory, seed);
        for (int i = 0; i < 4; ++i)
            system.AddVariable();
        ZorWBEquations equations(factory, ZorQelStorage::InputPart, seed % 2);
        for (int i = 0; i < 5; ++i) {
            ZorWBExpression* e = system.Expression(1 + system.Index(25));
            std::unique_ptr<ZorQelExpressionTerm> term(equations.CreateTerm(e, true));
            ASSERT_NE(term, nullptr);
            std::unique_ptr<ZorQelExpressionTerm> parsed(
                ZorQelExpressionTerm::Parse(term->ToString(true)));
            ASSERT_NE(parsed, nullptr);
            ZorWBExpression* back = equations.CreateExpression(parsed.get());
            SCOPED_TRACE(Text(term->ToString(true)));
            ASSERT_NE(back, nullptr);
            EXPECT_TRUE(back->IsEqualTo(e));
            EXPECT_EQ(Text(std::unique_ptr<ZorQelExpressionTerm>(equations.CreateTerm(back, true))
                               ->ToString(true)),
                      Text(term->ToString(true)));
        }
    }
}

TEST(ZorWBEquationsReplay, RandomSystemsReadBackToTheSameSections) {
    for (unsigned int seed = 1; seed <= 80; ++seed) {
        SCOPED_TRACE(seed);
        ZorWBFactory factory;
        RandomSystem system(factory, seed);
        system.Build(seed % 7, 1 + static_cast<int>(seed % 9), 12);
        int version = static_cast<int>(seed % 2);
        std::string text = WriteSystem(factory, ZorQelStorage::InputPart, version, system.simplify);
        ZorWBFactory copy;
        ZorQelIntArray simplify;
        ASSERT_TRUE(ReadSystem(text, copy, ZorQelStorage::InputPart, version, &simplify)) << text;
        EXPECT_EQ(WriteSystem(copy, ZorQelStorage::InputPart, version, simplify), text);
        EXPECT_EQ(simplify.GetSize(), system.simplify.GetSize());
        ASSERT_EQ(copy.GetNbOfEquations(), factory.GetNbOfEquations());
        ASSERT_EQ(copy.GetNbOfVariables(), factory.GetNbOfVariables());
        for (int i = 0; i < factory.GetNbOfVariables(); ++i) {
            EXPECT_EQ(Text(copy.GetVariable(i)->GetName()),
                      Text(factory.GetVariable(i)->GetName()));
            EXPECT_EQ(copy.GetVariable(i)->IsFixed(), factory.GetVariable(i)->IsFixed());
            const ZorWBValue& value = factory.GetVariable(i)->GetValue();
            const ZorWBValue& readValue = copy.GetVariable(i)->GetValue();
            ASSERT_EQ(readValue.GetType(), value.GetType());
            // The printer's text keeps enumeration representations.
            if (version >= 1 && value.GetType() == ZorWBIntegerEnumType) {
                EXPECT_EQ(readValue.GetIntegerEnum().GetRep(), value.GetIntegerEnum().GetRep());
            }
            if (version >= 1 && value.GetType() == ZorWBRealEnumType) {
                EXPECT_EQ(readValue.GetRealEnum().GetRep(), value.GetRealEnum().GetRep());
            }
        }
        for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
            ZorWBEquation* original = factory.GetEquation(i);
            ZorWBEquation* read = copy.GetEquation(i);
            EXPECT_EQ(read->GetId(), original->GetId());
            EXPECT_EQ(read->GetType(), original->GetType());
            EXPECT_EQ(Text(read->GetName()), Text(original->GetName()));
            if (ComparableAcrossFactories(original->GetRoot())) {
                EXPECT_TRUE(read->GetRoot()->IsEqualTo(original->GetRoot()));
            }
        }
    }
}

TEST(ZorWBEquationsReplay, MalformedSectionsDoNotRead) {
    const std::string head = "#!PART 1\n#!VARIABLES 1\nInteger x;\n";
    const std::string good = head + "#!EQUATIONS 1\neq0= Sum(x, 1);\n#!VALUES 1\nx = 4;\n";
    {
        ZorWBFactory factory;
        ZorQelIntArray simplify;
        ASSERT_TRUE(ReadSystem(good + "#!SIMPLIFY 3\neq0;\n", factory, ZorQelStorage::InputPart, 0,
                               &simplify));
        EXPECT_EQ(factory.GetVariable(0)->GetValue().GetAsInteger(), 4);
        ASSERT_EQ(simplify.GetSize(), 3);
        EXPECT_EQ(simplify.Get(0), 0);
        EXPECT_EQ(simplify.Get(2), -1);
    }
    const std::string bad[] = {
        head + "#!EQUATIONS 2\neq0= Sum(x, 1);\n",   // count
        "#!PART 1\n#!VARIABLES 1\nInteger;\n",       // no name
        "#!PART 1\n#!VARIABLES 1\nComplex x;\n",     // kind
        "#!PART 1\n#!VARIABLES x\nInteger x;\n",     // header
        "#!PART 1\n#!VARIABLES 1\nInteger x\n",      // no ";"
        head + "#!EQUATIONS 1\neq0=> x;\n",          // relation
        head + "#!EQUATIONS 1\neqA= x;\n",           // id
        head + "#!EQUATIONS 1\neq0=x;\n",            // no blank
        head + "#!EQUATIONS 1\neq0= Sum(x;\n",       // term
        head + "#!EQUATIONS 2\neq3= x;\neq1= x;\n",  // ids must grow
        head + "#!EQUATIONS 1\neq2000000000= x;\n",  // too many ids skipped
        head + "#!VALUES 1\nx = 2.5;\n",             // kind of the value
        head + "#!VALUES 1\ny = 2;\n",               // name
        head + "#!VALUES 2\nx = 2;\n",               // count
        good + "#!SIMPLIFY 1\neq7;\n",               // unknown equation
        good + "#!SIMPLIFY 1\neq0;\neq0;\n",         // more lines than counted
        good + "#!EQUATIONNAMES 1\neq5 = a;\n",      // unknown id
        good + "#!EQUATIONNAMES 1\nrow = a;\n",      // not an id
    };
    for (const std::string& text : bad) {
        SCOPED_TRACE(text);
        ZorWBFactory factory;
        EXPECT_FALSE(ReadSystem(text, factory, ZorQelStorage::InputPart, 0));
    }
    // A part that is not there reads as an empty system.
    ZorWBFactory factory;
    EXPECT_TRUE(ReadSystem(good, factory, ZorQelStorage::OutputPart, 0));
    EXPECT_EQ(factory.GetNbOfVariables(), 0);
}

TEST(ZorWBEquationsReplay, IdsAndNamesComeBack) {
    ZorWBFactory factory;
    std::string text =
        "#!PART 2\n#!EQUATIONS 3\neq4<minimize> 1;\neq5 2;\neq9>= Sum(1, 1.5);\n"
        "#!EQUATIONNAMES 1\neq9 = last row;\n";
    ASSERT_TRUE(ReadSystem(text, factory, ZorQelStorage::OutputPart, 0));
    ASSERT_EQ(factory.GetNbOfEquations(), 3);
    EXPECT_EQ(factory.GetEquation(0)->GetId(), 4);
    EXPECT_EQ(factory.GetEquation(0)->GetType(), ZorWBMinimize);
    EXPECT_EQ(factory.GetEquation(1)->GetType(), ZorWBEquationUnset);
    EXPECT_EQ(factory.GetEquation(2)->GetId(), 9);
    EXPECT_EQ(Text(factory.GetEquation(2)->GetName()), "last row");
    EXPECT_EQ(Text(factory.GetEquation(1)->GetName()), "eq5");
    EXPECT_EQ(factory.GetNextEquation(factory.GetEquation(0)), factory.GetEquation(1));
}

TEST(ZorWBEquationsReplay, VariablesNamedLikeConstantTextsReadBack) {
    for (int version : {0, 1}) {
        ZorWBFactory factory;
        const double infinity = std::numeric_limits<double>::infinity();
        // Each variable beside a constant written with its name's text.
        std::vector<std::pair<const char*, ZorWBExpression*>> pairs = {
            {"inf", factory.CreateRealConstant(infinity)},
            {"nan", factory.CreateRealConstant(std::nan(""))},
            {"True", factory.CreateConstant(ZorWBValue(ZorWBTrue))},
            {"Pi", factory.CreateConstantPi()},
            {"PiByTwo", factory.GetPiByTwo()},
            {"(-3)", factory.CreateIntegerConstant(-3)},
            {"((-3))", factory.CreateIntegerConstant(-3)},
        };
        for (const auto& [name, constant] : pairs) {
            ZorWBVariable* variable = factory.CreateVariable();
            variable->SetName(name);
            factory.AddEquation(factory.CreateSum(variable, constant), ZorWBEqualZero);
        }
        std::string text = WriteSystem(factory, ZorQelStorage::InputPart, version);
        EXPECT_NE(text.find(version ? "eq0= sum(inf, (inf));" : "eq0= Sum(inf, (inf));"),
                  std::string::npos)
            << text;
        EXPECT_NE(text.find("(((-3)))"), std::string::npos) << text;
        ZorWBFactory copy;
        ASSERT_TRUE(ReadSystem(text, copy, ZorQelStorage::InputPart, version)) << text;
        ASSERT_EQ(copy.GetNbOfEquations(), factory.GetNbOfEquations());
        for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
            const ZorWBExpression* root = copy.GetEquation(i)->GetRoot();
            EXPECT_EQ(root->GetChild(0), copy.GetVariable(i)) << text;
            EXPECT_EQ(root->GetChild(1)->GetType(), Type::Constant) << text;
        }
        EXPECT_TRUE(std::isinf(copy.GetEquation(0)->GetRoot()->GetChild(1)->Eval()));
        EXPECT_EQ(WriteSystem(copy, ZorQelStorage::InputPart, version), text);
    }
}

TEST(ZorWBEquationsReplay, DeepEquationsWriteAndReadWithoutDeepRecursion) {
    const int depth = 300000;
    ZorWBFactory factory;
    ZorWBExpression* e = factory.CreateVariable();
    for (int i = 0; i < depth; ++i)
        e = i % 2 ? factory.CreateSin(e) : factory.CreateUnaryMinus(e);
    factory.AddEquation(e, ZorWBEqualZero);
    std::string text = WriteSystem(factory, ZorQelStorage::InputPart, 0);
    ZorWBFactory copy;
    ASSERT_TRUE(ReadSystem(text, copy, ZorQelStorage::InputPart, 0));
    EXPECT_EQ(WriteSystem(copy, ZorQelStorage::InputPart, 0), text);
}

TEST(ZorWBEquationsOperator, IsAReplayableOperatorWithNothingToRun) {
    ZorWBFactory factory;
    ZorWBEquations equations(factory, ZorQelStorage::InputPart, 1);
    EXPECT_EQ(equations.RunOperator(), 0);
    EXPECT_EQ(Text(equations.GetOperatorName()), "ZorWBEquations");
    EXPECT_EQ(&equations.GetOperatorInfo(),
              &ZorWBEquations(factory, ZorQelStorage::OutputPart, 0).GetOperatorInfo());
    ZorQelIntArray ids;
    equations.GetListEqToSimplify(ids);
    EXPECT_TRUE(ids.IsEmpty());
    ids.Add(3);
    equations.SetListEqToSimplify(ids);
    ZorQelIntArray back;
    back.Add(9);
    equations.GetListEqToSimplify(back);
    EXPECT_EQ(back, ids);
}
