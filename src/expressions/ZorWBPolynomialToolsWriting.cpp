// Writing exact polynomials and antiderivatives as factory expressions
// (see ZorWBPolynomialTools.h for the shapes). Every builder gives null
// when a creator does (a null factory, a foreign variable, memory short),
// so a failure anywhere makes the whole expression null.

#include <exception>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBPolynomialTools.h"
#include "expressions/ZorWBTermBuilder.h"

namespace {

// c x^k.
ZorWBExpression* Monomial(ZorWBTermBuilder& build, const ZorWBRational& c, ZorWBExpression* x,
                          int k) {
    ZorWBFactory& factory = build.Factory();
    ZorWBExpression* power = k == 0   ? factory.GetOne()
                             : k == 1 ? x
                                      : factory.CreatePower(x, factory.CreateIntegerConstant(k));
    return build.Product({ZorWBPolynomialTools::CreateConstant(&factory, c), power});
}

ZorWBExpression* Polynomial(ZorWBTermBuilder& build, const ZorWBPolynomial& p, ZorWBExpression* x) {
    std::vector<ZorWBExpression*> terms;
    for (int k = p.GetDegree(); k >= 0; --k) {
        if (!p.GetCoefficient(k).IsZero())
            terms.push_back(Monomial(build, p.GetCoefficient(k), x, k));
    }
    return build.Sum(terms);
}

// u + v sqrt(r), root being the node Sqrt(r) (null when r is 1).
ZorWBExpression* Irrational(ZorWBTermBuilder& build, const ZorWBRational& u, const ZorWBRational& v,
                            ZorWBExpression* root) {
    ZorWBFactory* factory = &build.Factory();
    std::vector<ZorWBExpression*> terms;
    if (!u.IsZero() || v.IsZero())
        terms.push_back(ZorWBPolynomialTools::CreateConstant(factory, u));
    if (!v.IsZero())
        terms.push_back(build.Product({ZorWBPolynomialTools::CreateConstant(factory, v), root}));
    return build.Sum(terms);
}

// A(x) + sqrt(r) B(x), a constant B written before the root.
ZorWBExpression* IrrationalPolynomial(ZorWBTermBuilder& build, const ZorWBPolynomial& a,
                                      const ZorWBPolynomial& b, ZorWBExpression* root,
                                      ZorWBExpression* x) {
    std::vector<ZorWBExpression*> terms;
    if (!a.IsZero() || b.IsZero()) terms.push_back(Polynomial(build, a, x));
    if (b.GetDegree() == 0)
        terms.push_back(Irrational(build, ZorWBRational(), b.GetCoefficient(0), root));
    else if (!b.IsZero())
        terms.push_back(build.Product({root, Polynomial(build, b, x)}));
    return build.Sum(terms);
}

ZorWBExpression* Term(ZorWBTermBuilder& build, const ZorWBIntegralTerm& term, ZorWBExpression* x) {
    ZorWBFactory& factory = build.Factory();
    ZorWBExpression* root = nullptr;
    if (term.radicand != ZorWBRational(1)) {
        root = factory.CreateSqrt(ZorWBPolynomialTools::CreateConstant(&factory, term.radicand));
        if (!root) return nullptr;
    }
    ZorWBExpression* coefficient = Irrational(build, term.coefficient, term.coefficientRoot, root);
    ZorWBExpression* argument =
        IrrationalPolynomial(build, term.argument, term.argumentRoot, root, x);
    ZorWBExpression* function = term.kind == ZorWBIntegralTerm::Logarithm
                                    ? factory.CreateLn(factory.CreateAbs(argument))
                                    : factory.CreateAtan(argument);
    return build.Product({coefficient, function});
}

}  // namespace

ZorWBExpression* ZorWBPolynomialTools::CreateConstant(ZorWBFactory* factory,
                                                      const ZorWBRational& value) {
    if (!factory) return nullptr;
    int numerator = 0, denominator = 1;
    if (value.GetSmallParts(numerator, denominator)) {
        ZorWBExpression* top = factory->CreateIntegerConstant(numerator);
        return denominator == 1
                   ? top
                   : factory->CreateQuotient(top, factory->CreateIntegerConstant(denominator));
    }
    double realNumerator = 0.0, realDenominator = 1.0;
    if (value.GetExactRealParts(realNumerator, realDenominator)) {
        ZorWBExpression* top = factory->CreateRealConstant(realNumerator);
        return realDenominator == 1.0
                   ? top
                   : factory->CreateQuotient(top, factory->CreateRealConstant(realDenominator));
    }
    return factory->CreateRealConstant(value.ToReal());
}

ZorWBExpression* ZorWBPolynomialTools::CreateExpression(ZorWBFactory* factory,
                                                        const ZorWBPolynomial& p,
                                                        ZorWBExpression* x) try {
    if (!factory || !x) return nullptr;
    ZorWBTermBuilder build(*factory);
    return Polynomial(build, p, x);
} catch (const std::exception&) {
    return nullptr;
}

ZorWBExpression* ZorWBPolynomialTools::CreateExpression(
    ZorWBFactory* factory, const ZorWBMultiPolynomial& p,
    const std::vector<ZorWBExpression*>& variables) try {
    if (!factory || static_cast<int>(variables.size()) < p.GetNbOfVariables()) return nullptr;
    ZorWBTermBuilder build(*factory);
    std::vector<ZorWBExpression*> terms;
    for (int i = p.GetNbOfTerms() - 1; i >= 0; --i) {
        std::vector<ZorWBExpression*> factors{CreateConstant(factory, p.GetCoefficient(i))};
        for (int v = 0; v < p.GetNbOfVariables(); ++v) {
            int k = p.GetExponent(i, v);
            ZorWBExpression* x = variables[static_cast<std::size_t>(v)];
            if (!x) return nullptr;
            if (k == 1) factors.push_back(x);
            if (k > 1)
                factors.push_back(factory->CreatePower(x, factory->CreateIntegerConstant(k)));
        }
        terms.push_back(build.Product(factors));
    }
    return build.Sum(terms);
} catch (const std::exception&) {
    return nullptr;
}

ZorWBExpression* ZorWBPolynomialTools::CreateExpression(
    ZorWBFactory* factory, const ZorWBRationalAntiDerivative& antiDerivative,
    ZorWBExpression* x) try {
    if (!factory || !x) return nullptr;
    ZorWBTermBuilder build(*factory);
    std::vector<ZorWBExpression*> terms;
    if (!antiDerivative.polynomialPart.IsZero())
        terms.push_back(Polynomial(build, antiDerivative.polynomialPart, x));
    if (!antiDerivative.numerator.IsZero()) {
        terms.push_back(build.Over(Polynomial(build, antiDerivative.numerator, x),
                                   Polynomial(build, antiDerivative.denominator, x)));
    }
    for (const ZorWBIntegralTerm& term : antiDerivative.terms)
        terms.push_back(Term(build, term, x));
    return build.Sum(terms);
} catch (const std::exception&) {
    return nullptr;
}
