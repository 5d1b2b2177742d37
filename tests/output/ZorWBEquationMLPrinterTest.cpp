#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "MathMLText.h"
#include "RandomExpression.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquationMLPrinter.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

namespace {

const std::string Open = "<math xmlns=\"http://www.w3.org/1998/Math/MathML\">";
const std::string OpenBlock =
    "<math xmlns=\"http://www.w3.org/1998/Math/MathML\" display=\"block\">";

// The MathML of an expression without its <math> element.
std::string Body(const ZorWBExpression* e) {
    std::string text = ZorWBEquationMLPrinter::Print(e).GetString();
    EXPECT_EQ(text.substr(0, Open.size()), Open);
    return text.substr(Open.size(), text.size() - Open.size() - 7);
}

std::string Body(const ZorWBValue& value) {
    std::string text = ZorWBEquationMLPrinter::PrintValue(value).GetString();
    return text.substr(Open.size(), text.size() - Open.size() - 7);
}

ZorWBVariable* Variable(ZorWBFactory& f, const char* name) {
    ZorWBVariable* variable = f.CreateVariable();
    variable->SetName(name);
    return variable;
}

// Reads language text back into the factory (null when it does not read).
ZorWBExpression* ReadBack(ZorWBFactory& factory, const std::string& text) {
    ZorWBModel model(factory.GetWBLevel());
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    if (ZorWBParser::Parse((text + ";").c_str(), model, ids, messenger) != 0) return nullptr;
    ZorQelArray<ZorWBExpression*> roots;
    if (model.FillFactory(factory, false, nullptr, nullptr, roots) != 0 || roots.GetSize() != 1)
        return nullptr;
    return roots.Get(0);
}

// The MathML of the statements of a text, as the parsed model holds them.
std::string ModelMathML(const char* text) {
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    EXPECT_EQ(ZorWBParser::Parse(text, model, ids, messenger), 0)
        << messenger.GetString().GetString();
    return ZorWBEquationMLPrinter::Print(model).GetString();
}

}  // namespace

TEST(ZorWBEquationMLPrinter, LayoutsOfTheOperators) {
    ZorWBFactory f;
    ZorWBExpression* x = Variable(f, "x");
    ZorWBExpression* y = Variable(f, "y");
    ZorWBExpression* two = f.CreateIntegerConstant(2);
    const std::pair<ZorWBExpression*, std::string> cases[] = {
        {f.CreateQuotient(x, y), "<mfrac><mi>x</mi><mi>y</mi></mfrac>"},
        {f.CreatePower(x, two), "<msup><mi>x</mi><mn>2</mn></msup>"},
        {f.CreateSqrt(x), "<msqrt><mi>x</mi></msqrt>"},
        {f.CreateRoot(x, 3), "<mroot><mi>x</mi><mn>3</mn></mroot>"},
        {f.CreateOperator(ZorWBExpressionType::Abs, x),
         "<mrow><mo>|</mo><mi>x</mi><mo>|</mo></mrow>"},
        {f.CreateProduct(two, x), "<mrow><mn>2</mn><mo>&#x2062;</mo><mi>x</mi></mrow>"},
        {f.CreateProduct(x, y), "<mrow><mi>x</mi><mo>&#x22C5;</mo><mi>y</mi></mrow>"},
        {f.CreateSub(x, f.CreateIntegerConstant(3)),
         "<mrow><mi>x</mi><mo>&#x2212;</mo><mn>3</mn></mrow>"},
        {f.CreateSub(x, f.CreateSum(x, y)),
         "<mrow><mi>x</mi><mo>&#x2212;</mo><mrow><mo>(</mo><mrow><mi>x</mi><mo>+</mo><mi>y</mi>"
         "</mrow><mo>)</mo></mrow></mrow>"},
        {f.CreatePower(f.CreateQuotient(x, y), two),
         "<msup><mrow><mo>(</mo><mfrac><mi>x</mi><mi>y</mi></mfrac><mo>)</mo></mrow><mn>2</mn>"
         "</msup>"},
        {f.CreateProduct(x, f.CreateQuotient(x, y)),
         "<mrow><mi>x</mi><mo>&#x22C5;</mo><mfrac><mi>x</mi><mi>y</mi></mfrac></mrow>"},
        {f.CreateProduct(f.CreateIntegerConstant(-1), x),
         "<mrow><mo>&#x2212;</mo><mi>x</mi></mrow>"},
        {f.CreateOperator(ZorWBExpressionType::Sin, x),
         "<mrow><mi>sin</mi><mo>&#x2061;</mo><mrow><mo>(</mo><mi>x</mi><mo>)</mo></mrow></mrow>"},
        {f.CreateIfThenElse(f.CreateLessEqual(x, y), x, y),
         "<mrow><mo>{</mo><mtable columnalign=\"left left\"><mtr><mtd><mi>x</mi></mtd><mtd><mrow>"
         "<mtext>if&#xA0;</mtext><mrow><mi>x</mi><mo>&#x2264;</mo><mi>y</mi></mrow></mrow></mtd>"
         "</mtr><mtr><mtd><mi>y</mi></mtd><mtd><mtext>otherwise</mtext></mtd></mtr></mtable>"
         "</mrow>"},
        {f.CreateIntegrateOperator(x, static_cast<ZorWBVariable*>(x)),
         "<mrow><mo>&#x222B;</mo><mi>x</mi><mi mathvariant=\"normal\">d</mi><mi>x</mi></mrow>"},
    };
    for (const auto& [expression, mathml] : cases)
        EXPECT_EQ(Body(expression), mathml) << ZorWBEquationPrinter::Print(expression).GetString();
}

TEST(ZorWBEquationMLPrinter, ValuesAsTheLanguageWritesThem) {
    const double inf = std::numeric_limits<double>::infinity();
    int integers[] = {1, 2, 3};
    ZorWBValue enumeration;
    enumeration.Set(3, integers);
    const std::pair<ZorWBValue, std::string> cases[] = {
        {ZorWBValue(-3), "<mrow><mo>&#x2212;</mo><mn>3</mn></mrow>"},
        {ZorWBValue(2.5), "<mn>2.5</mn>"},
        {ZorWBValue(2.0), "<mn>2.0</mn>"},
        {ZorWBValue(-inf), "<mrow><mo>&#x2212;</mo><mi>&#x221E;</mi></mrow>"},
        {ZorWBValue(ZorWBCreateFraction(1, 1, 1, 0)), "<mi>&#x3C0;</mi>"},
        {ZorWBValue(ZorWBCreateFraction(-3, 4, 1, 0)),
         "<mrow><mo>&#x2212;</mo><mfrac><mrow><mn>3</mn><mo>&#x2062;</mo><mi>&#x3C0;</mi></mrow>"
         "<mn>4</mn></mfrac></mrow>"},
        {ZorWBValue(ZorWBRealInterval{-1.5, 2.0}),
         "<mrow><mo>[</mo><mrow><mo>&#x2212;</mo><mn>1.5</mn></mrow><mo>,</mo><mn>2.0</mn><mo>]"
         "</mo></mrow>"},
        {enumeration,
         "<mrow><mo>{</mo><mn>1</mn><mo>,</mo><mn>2</mn><mo>,</mo><mn>3</mn><mo>}</mo>"
         "</mrow>"},
        {ZorWBValue(ZorWBTrue), "<mtext>true</mtext>"},
        {ZorWBValue(), "<mtext>undefined</mtext>"},
    };
    for (const auto& [value, mathml] : cases)
        EXPECT_EQ(Body(value), mathml) << ZorWBEquationPrinter::PrintValue(value).GetString();
}

TEST(ZorWBEquationMLPrinter, NamesAreEscapedAndMissingRootsMarked) {
    ZorWBFactory f;
    ZorWBExpression* odd = Variable(f, "a<b&\"c\"\x01\xB0");
    EXPECT_EQ(Body(odd), "<mi>a&lt;b&amp;&quot;c&quot;&#xFFFD;&#176;</mi>");
    EXPECT_EQ(Body(static_cast<const ZorWBExpression*>(nullptr)),
              "<merror><mtext>?</mtext></merror>");
    std::string error;
    EXPECT_EQ(MathMLText::Read(ZorWBEquationMLPrinter::Print(odd).GetString(), error),
              "a<b&\"c\"\uFFFD\u00B0");
    EXPECT_EQ(error, "");
}

TEST(ZorWBEquationMLPrinter, EquationsAsTheTextPrinterWritesThem) {
    ZorWBFactory f;
    ZorWBExpression* x = Variable(f, "x");
    f.AddEquation(x, ZorWBLessEqualZero, f.CreateIntegerConstant(5));
    f.AddEquation(f.CreateSin(x), ZorWBEqualZero);
    f.AddEquation(x, ZorWBMinimize);
    std::string mathml = ZorWBEquationMLPrinter::Print(f).GetString();
    EXPECT_EQ(mathml, OpenBlock + "<mrow><mi>x</mi><mo>&#x2264;</mo><mn>5</mn></mrow></math>\n" +
                          OpenBlock +
                          "<mrow><mrow><mi>sin</mi><mo>&#x2061;</mo><mrow><mo>(</mo><mi>x</mi>"
                          "<mo>)</mo></mrow></mrow><mo>=</mo><mn>0</mn></mrow></math>\n" +
                          OpenBlock +
                          "<mrow><mtext>minimize&#xA0;</mtext><mi>x</mi></mrow></math>\n");
}

TEST(ZorWBEquationMLPrinter, ModelsKeepTheirUnitsAndMinusSigns) {
    std::string mathml = ModelMathML("x = 10 mm - (a + b) deg;\ny = 2\" + 3 in;\n-z > 1;");
    EXPECT_NE(mathml.find("<mrow><mn>10</mn><mspace width=\"0.2em\"/><mi mathvariant=\"normal\">"
                          "mm</mi></mrow>"),
              std::string::npos)
        << mathml;
    EXPECT_NE(mathml.find("<mrow><mrow><mo>(</mo><mrow><mi>a</mi><mo>+</mo><mi>b</mi></mrow>"
                          "<mo>)</mo></mrow><mspace width=\"0.2em\"/><mi mathvariant=\"normal\">deg"
                          "</mi></mrow>"),
              std::string::npos)
        << mathml;
    EXPECT_NE(mathml.find("<mrow><mn>2</mn><mi mathvariant=\"normal\">&#x2033;</mi></mrow>"),
              std::string::npos);
    EXPECT_NE(mathml.find("<mrow><mrow><mo>&#x2212;</mo><mi>z</mi></mrow><mo>&gt;</mo><mn>1</mn>"),
              std::string::npos);
    ASSERT_EQ(std::count(mathml.begin(), mathml.end(), '\n'), 3);
    std::string conditional = ModelMathML("if (t <= 3 mm) then (c = 5 mm) else (c = 8 mm);");
    std::string error;
    EXPECT_EQ(MathMLText::Read(conditional, error), "c == if (t <= 3mm) then (5mm) else (8mm)");
}

// The property the printer is built for: the MathML of any generated
// expression holds its tree. It is read with an XML parser, written back in
// the language from the elements alone, read again, and compared.
TEST(ZorWBEquationMLPrinter, GeneratedExpressionsReadBackToTheSameTree) {
    ZorWBFactory factory;
    RandomExpression random(factory, 31);
    for (int round = 0; round < 2000; ++round) {
        ZorWBExpression* original = random.Exact(1 + round % 6);
        std::string mathml = ZorWBEquationMLPrinter::Print(original).GetString();
        std::string error;
        std::string text = MathMLText::Read(mathml, error);
        ASSERT_EQ(error, "") << mathml;
        ZorWBExpression* read = ReadBack(factory, text);
        ASSERT_NE(read, nullptr) << text << "\n" << mathml;
        ASSERT_TRUE(read->IsEqualTo(original))
            << ZorWBEquationPrinter::Print(original).GetString() << "\nread back as\n"
            << ZorWBEquationPrinter::Print(read).GetString() << "\nfrom\n"
            << mathml;
    }
}

TEST(ZorWBEquationMLPrinter, AGraphDeeperThanAnyCallStackPrints) {
    const int depth = 300000;
    ZorWBFactory factory;
    ZorWBExpression* e = Variable(factory, "x");
    for (int i = 0; i < depth; ++i)
        e = factory.CreateSqrt(factory.CreateSum(e, factory.GetOne()));
    std::string mathml = ZorWBEquationMLPrinter::Print(e).GetString();
    std::string step = "<msqrt><mrow>";
    EXPECT_EQ(mathml.substr(Open.size(), 2 * step.size()), step + step);
    EXPECT_EQ(mathml.size(), Open.size() + 7 + std::string("<mi>x</mi>").size() +
                                 depth * std::string("<msqrt><mrow><mo>+</mo><mn>1</mn></mrow>"
                                                     "</msqrt>")
                                             .size());
}
