#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "CalculusTestSupport.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBPolynomialTools.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"
#include "symbolic/ZorWBSimplifier.h"

using Type = ZorWBExpressionType;

namespace {

ZorWBPolynomial Integers(std::initializer_list<long long> coefficients) {
    return ZorWBPolynomial::FromIntegers(coefficients);
}

// The root of the one statement of text read into factory (null on error).
ZorWBExpression* Read(ZorWBFactory& factory, const std::string& text) {
    ZorWBModel model;
    ZorQelIntArray ids, equationIds;
    ZorWBParserMessenger messenger;
    if (ZorWBParser::Parse((text + ";").c_str(), model, ids, messenger) != 0) return nullptr;
    model.FillFactory(factory, equationIds);
    int n = factory.GetNbOfEquations();
    return n > 0 ? factory.GetEquation(n - 1)->GetRoot() : nullptr;
}

ZorWBRational Real(double value) {
    ZorWBRational exact;
    ZorWBRational::FromReal(value, exact);
    return exact;
}

// Rational functions of x with exact coefficients over factors whose poles
// are known: sums of c / (x - r)^k and (a x + b) / (x^2 + p x + q)^k, times
// or plus polynomials, built from the factory's operators in varied shapes.
class RationalExpressions {
  public:
    RationalExpressions(ZorWBFactory& f, ZorWBVariable* x, unsigned int seed)
        : _f(f), _x(x), _random(seed) {}

    std::vector<double> poles;

    ZorWBExpression* Integrand() {
        poles.clear();
        std::vector<ZorWBExpression*> terms;
        int n = Index(3) + 1;
        for (int i = 0; i < n; ++i)
            terms.push_back(Term());
        if (Index(2) == 0) terms.push_back(Polynomial(Index(3)));
        if (terms.size() == 1) return terms[0];
        return _f.CreateSum(static_cast<int>(terms.size()), terms.data());
    }

  private:
    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    ZorWBExpression* Small() { return _f.CreateIntegerConstant(Index(9) - 4); }
    ZorWBExpression* NonZero() { return _f.CreateIntegerConstant(Index(4) + 1); }

    ZorWBExpression* Polynomial(int degree) {
        ZorWBExpression* p = Small();
        for (int k = 0; k < degree; ++k)
            p = _f.CreateSum(_f.CreateProduct(p, _x), Small());
        return p;
    }

    ZorWBExpression* Term() {
        int power = Index(3) + 1;
        ZorWBExpression* base;
        if (Index(2) == 0) {
            int numerator = Index(13) - 6, denominator = Index(3) + 1;
            poles.push_back(static_cast<double>(numerator) / denominator);
            base = _f.CreateSub(_x, _f.CreateQuotient(_f.CreateIntegerConstant(numerator),
                                                      _f.CreateIntegerConstant(denominator)));
        } else {
            // x^2 + p x + q with p^2 < 4 q.
            int p = Index(5) - 2, q = p * p / 4 + 1 + Index(3);
            base = _f.CreateSum(_f.CreateSum(_f.CreatePower(_x, 2),
                                             _f.CreateProduct(_f.CreateIntegerConstant(p), _x)),
                                _f.CreateIntegerConstant(q));
        }
        ZorWBExpression* denominator = power == 1 ? base : _f.CreatePower(base, power);
        ZorWBExpression* numerator = Index(2) == 0 ? Small() : Polynomial(1);
        return Index(2) == 0 ? _f.CreateQuotient(numerator, denominator)
                             : _f.CreateProduct(numerator, _f.CreatePower(denominator, -1));
    }

    ZorWBFactory& _f;
    ZorWBVariable* _x;
    std::mt19937 _random;
};

}  // namespace

TEST(ZorWBPolynomialTools, ReadingTakesExactRationalFunctionsOnly) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    x->SetName("x");
    ZorWBVariable* y = f.CreateVariable();
    y->SetName("y");
    ZorWBPolynomial n, d;
    ASSERT_TRUE(
        ZorWBPolynomialTools::ToRationalFunction(Read(f, "(x^2 - 1) / (2*x + 2) + 0.5"), x, n, d));
    EXPECT_EQ(n, Integers({0, 1}) * ZorWBPolynomial(ZorWBRational(1, 2)));
    EXPECT_EQ(d, Integers({1}));
    ASSERT_TRUE(ZorWBPolynomialTools::ToRationalFunction(Read(f, "x^-2 * (x - 0.1)"), x, n, d));
    EXPECT_EQ(n, Integers({0, 1}) - ZorWBPolynomial(Real(0.1)));
    EXPECT_EQ(d, Integers({0, 0, 1}));
    ZorWBPolynomial p;
    EXPECT_TRUE(ZorWBPolynomialTools::ToPolynomial(Read(f, "-(x + 1)^3 / 4"), x, p));
    EXPECT_EQ(p, Integers({1, 3, 3, 1}) * ZorWBPolynomial(ZorWBRational(-1, 4)));
    ZorWBExpression* fraction =
        f.CreateProduct(f.CreateConstant(ZorWBValue(ZorWBCreateFraction(2, 3, 0, 0))), x);
    EXPECT_TRUE(ZorWBPolynomialTools::ToPolynomial(fraction, x, p));
    EXPECT_EQ(p.GetCoefficient(1), ZorWBRational(2, 3));
    for (const char* refused : {"x + y", "1 / (x - x)", "sqrt(x)", "x^0.5", "x^x", "sin(1) * x",
                                "Pi * x", "x^5000", "(x + 1)^4097", "x^y", "x / 1e999", "abs(x)"}) {
        ZorWBExpression* e = Read(f, refused);
        ASSERT_NE(e, nullptr) << refused;
        EXPECT_FALSE(ZorWBPolynomialTools::ToRationalFunction(e, x, n, d)) << refused;
    }
    // A polynomial reading needs IsPolynomial(x): x / x is rational, not
    // polynomial.
    EXPECT_FALSE(ZorWBPolynomialTools::ToPolynomial(Read(f, "x / x"), x, p));
    EXPECT_FALSE(ZorWBPolynomialTools::ToPolynomial(nullptr, x, p));
    EXPECT_FALSE(ZorWBPolynomialTools::ToPolynomial(x, nullptr, p));
    ZorWBMultiPolynomial multi;
    ASSERT_TRUE(ZorWBPolynomialTools::ToMultiPolynomial(Read(f, "(x - y)^2 / 2"), {x, y}, multi));
    EXPECT_EQ(multi.ToText({"x", "y"}), "1/2*x^2 - x*y + 1/2*y^2");
    EXPECT_FALSE(ZorWBPolynomialTools::ToMultiPolynomial(Read(f, "x / y"), {x, y}, multi));
    EXPECT_FALSE(ZorWBPolynomialTools::ToMultiPolynomial(Read(f, "x * y"), {x}, multi));
}

// Random polynomials written as expressions, printed, parsed back into
// another factory and read again give the polynomial back exactly.
TEST(ZorWBPolynomialTools, WrittenPolynomialsReadBackThroughTheLanguage) {
    std::mt19937 random(71);
    for (int round = 0; round < 80; ++round) {
        std::vector<ZorWBRational> coefficients;
        int degree = std::uniform_int_distribution<int>(0, 9)(random);
        for (int k = 0; k <= degree; ++k) {
            long long numerator = std::uniform_int_distribution<long long>(-50, 50)(random);
            long long denominator = std::uniform_int_distribution<long long>(1, 6)(random);
            if (round % 4 == 0) numerator *= 1000000000000LL;  // beyond an int
            coefficients.emplace_back(numerator, denominator);
        }
        ZorWBPolynomial p(coefficients);
        ZorWBFactory f(ZorWBLevel::All);
        ZorWBVariable* x = f.CreateVariable();
        x->SetName("x");
        ZorWBExpression* e = ZorWBPolynomialTools::CreateExpression(&f, p, x);
        ASSERT_NE(e, nullptr);
        ZorWBPolynomial back;
        ASSERT_TRUE(ZorWBPolynomialTools::ToPolynomial(e, x, back));
        EXPECT_EQ(back, p);
        std::string text = ZorWBEquationPrinter::Print(e).GetString();
        ZorWBFactory g(ZorWBLevel::All);
        ZorWBVariable* gx = g.CreateVariable();
        gx->SetName("x");
        ZorWBExpression* read = Read(g, text);
        ASSERT_NE(read, nullptr) << text;
        ASSERT_TRUE(ZorWBPolynomialTools::ToPolynomial(read, gx, back)) << text;
        EXPECT_EQ(back, p) << text;
    }
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBFactory other(ZorWBLevel::All);
    EXPECT_EQ(ZorWBPolynomialTools::CreateExpression(&f, Integers({1, 1}), other.CreateVariable()),
              nullptr);
    EXPECT_EQ(ZorWBPolynomialTools::CreateExpression(nullptr, Integers({1, 1}), nullptr), nullptr);
    EXPECT_EQ(ZorWBPolynomialTools::CreateExpression(&f, ZorWBPolynomial(), f.CreateVariable()),
              f.GetZero());
}

// CreateAntiDerivative closes every generated rational function over
// linear and irreducible quadratic factors, and its result differentiates
// back (CreateDerivative) to the integrand at sampled points kept away from
// the known poles.
TEST(ZorWBPolynomialTools, RationalAntiDerivativesDifferentiateBack) {
    std::mt19937 random(72);
    for (unsigned int seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        ZorWBFactory f(ZorWBLevel::All);
        ZorWBVariable* x = f.CreateVariable();
        RationalExpressions generate(f, x, seed);
        ZorWBExpression* integrand = generate.Integrand();
        bool done = false;
        ZorWBExpression* antiDerivative = f.CreateAntiDerivative(integrand, x, done);
        ASSERT_NE(antiDerivative, nullptr) << ZorWBEquationPrinter::Print(integrand).GetString();
        ASSERT_TRUE(done) << ZorWBEquationPrinter::Print(integrand).GetString();
        EXPECT_NE(antiDerivative->GetType(), Type::Integrate);
        ZorWBExpression* derivative = f.CreateDerivative(antiDerivative, x);
        ASSERT_NE(derivative, nullptr);
        for (int sample = 0; sample < 8; ++sample) {
            double point = Uniform(random, -6.0, 6.0);
            bool near = false;
            for (double pole : generate.poles)
                near = near || std::fabs(point - pole) < 0.05;
            if (near) continue;
            SetReal(x, point);
            double expected = Reading(integrand);
            EXPECT_TRUE(Agrees(Reading(derivative), expected, 1e-8))
                << point << ": " << Reading(derivative) << " vs " << expected;
        }
    }
}

TEST(ZorWBPolynomialTools, PolynomialAntiDerivativesSimplifyBackToTheIntegrand) {
    for (const char* text : {"x * x", "(x + 1)^3 - 2*x", "x * (x - 1) * (x + 2) / 3"}) {
        ZorWBFactory f(ZorWBLevel::All);
        ZorWBVariable* x = f.CreateVariable();
        x->SetName("x");
        ZorWBExpression* integrand = Read(f, text);
        bool done = false;
        ZorWBExpression* antiDerivative = f.CreateAntiDerivative(integrand, x, done);
        ASSERT_TRUE(done) << text;
        ZorWBSimplifier simplifier(f);
        ZorWBExpression* difference = simplifier.Simplify(
            f.CreateSub(f.CreateDerivative(antiDerivative, x), integrand), true);
        ASSERT_NE(difference, nullptr);
        ZorWBPolynomial zero;
        // The simplifier leaves a polynomial in x; read exactly, it is 0.
        ASSERT_TRUE(ZorWBPolynomialTools::ToPolynomial(difference, x, zero))
            << ZorWBEquationPrinter::Print(difference).GetString();
        EXPECT_TRUE(zero.IsZero()) << ZorWBEquationPrinter::Print(difference).GetString();
    }
}

TEST(ZorWBPolynomialTools, KnownShapes) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    x->SetName("x");
    bool done = false;
    auto integral = [&](const char* text) {
        ZorWBExpression* result = f.CreateAntiDerivative(Read(f, text), x, done);
        return done ? ZorWBEquationPrinter::Print(result).GetString() : std::string("none");
    };
    EXPECT_EQ(integral("1 / (x^2 + 1)"), "atan(x)");
    EXPECT_EQ(integral("1 / (x^2 - 1)"), "1 / 2 * ln(abs(x - 1)) + -1 / 2 * ln(abs(x + 1))");
    EXPECT_EQ(integral("1 / (x^2 - 2)"),
              "1 / 4 * sqrt(2) * ln(abs(x - sqrt(2))) + -1 / 4 * sqrt(2) * ln(abs(x + sqrt(2)))");
    EXPECT_EQ(integral("1 / (x^2 + 2*x + 5)"), "1 / 2 * atan(1 / 2 * x + 1 / 2)");
    EXPECT_EQ(integral("x^3 / (x^2 + 1)^2"), "1 / 2 / (x ^ 2 + 1) + 1 / 2 * ln(abs(x ^ 2 + 1))");
    EXPECT_EQ(integral("1 / (x^4 + 1)"), "none");
    // The table keeps its linear forms.
    EXPECT_EQ(integral("1 / (2*x + 1)"), "ln(abs(2 * x + 1)) / 2");
    // A sum mixes the table and the rational algorithm.
    EXPECT_EQ(integral("cos(x) + 1 / (x^2 + 1)"), "sin(x) + atan(x)");
}

TEST(ZorWBPolynomialTools, DefiniteIntegralsStopAtPoles) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    x->SetName("x");
    bool done = false;
    ZorWBValue zero(0), one(1), two(2.0), minusOne(-1), half(0.5);
    ZorWBExpression* arctangent = Read(f, "1 / (x^2 + 1)");
    ZorWBExpression* quarter = f.CreateAntiDerivative(arctangent, x, zero, one, done);
    ASSERT_TRUE(done);
    EXPECT_NEAR(Reading(quarter), std::atan(1.0), 1e-15);
    ZorWBExpression* reciprocal = Read(f, "1 / (x * (x - 2))");
    for (ZorWBValue* bounds : {&zero, &two}) {
        ZorWBValue low(*bounds), high(1);
        ZorWBExpression* result = f.CreateAntiDerivative(reciprocal, x, low, high, done);
        EXPECT_FALSE(done);
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(result->GetType(), Type::Integrate);
    }
    // Between the poles, and from a bound above the other: F(b) - F(a).
    ZorWBExpression* inside = f.CreateAntiDerivative(reciprocal, x, half, one, done);
    ASSERT_TRUE(done);
    EXPECT_NEAR(Reading(inside), -0.5 * std::log(3.0), 1e-14);
    ZorWBValue three(3), four(4);
    ZorWBExpression* reversed = f.CreateAntiDerivative(reciprocal, x, four, three, done);
    ASSERT_TRUE(done);
    EXPECT_NEAR(Reading(reversed), -(0.5 * std::log(2.0 / 4.0) - 0.5 * std::log(1.0 / 3.0)), 1e-14);
    // A pole across a negative range.
    ZorWBExpression* across =
        f.CreateAntiDerivative(Read(f, "1 / (x + 0.5)"), x, minusOne, zero, done);
    EXPECT_FALSE(done);
    EXPECT_EQ(across->GetType(), Type::Integrate);
}

// Nested terms T(k) = Sum(1 / T(k-1), T(k-1)) over sin(x): every quotient
// reaches the whole chain below it, and the first reading that fails marks
// the nodes on its way as not readable, so the readings of the other
// quotients stop at once: linear instead of quadratic in the depth.
TEST(ZorWBPolynomialTools, DeepChainsIntegrateInLinearTime) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* chain = f.CreateSin(x);
    for (int k = 0; k < 100000; ++k)
        chain = f.CreateSum(f.CreateQuotient(f.GetOne(), chain), chain);
    bool done = true;
    ZorWBExpression* result = f.CreateAntiDerivative(chain, x, done);
    EXPECT_FALSE(done);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->GetType(), Type::Integrate);
    // 1 / (1 + 1 / (1 + ... x)) of more than MaxNodes nodes is not read.
    ZorWBExpression* fraction = x;
    for (int k = 0; k < ZorWBPolynomialTools::MaxNodes; ++k)
        fraction = f.CreateQuotient(f.GetOne(), f.CreateSum(f.GetOne(), fraction));
    result = f.CreateAntiDerivative(fraction, x, done);
    EXPECT_FALSE(done);
}
