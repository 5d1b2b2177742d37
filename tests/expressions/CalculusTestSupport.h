#ifndef TESTS_CALCULUS_TEST_SUPPORT_H
#define TESTS_CALCULUS_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "ExpressionTestSupport.h"

// The real reading of a node's value; NaN when it is undefined.
inline double Reading(const ZorWBExpression* e) {
    const ZorWBValue& value = e->GetValue();
    return value.GetType() == ZorWBUndefinedType ? std::numeric_limits<double>::quiet_NaN()
                                                 : value.GetAsReal();
}

inline bool IsUndefined(const ZorWBExpression* e) {
    return e->GetValue().GetType() == ZorWBUndefinedType;
}

// The central difference of e by x at the current point, with a step
// relative to x's value; x gets its value back.
inline double CentralDifference(ZorWBExpression* e, ZorWBVariable* x, double relativeStep = 1e-6) {
    double x0 = x->GetExprValue().GetAsReal();
    double h = relativeStep * std::max(1.0, std::fabs(x0));
    SetReal(x, x0 + h);
    double above = Reading(e);
    SetReal(x, x0 - h);
    double below = Reading(e);
    SetReal(x, x0);
    return (above - below) / (2.0 * h);
}

// Whether a symbolic derivative value agrees with a numeric one to a
// relative tolerance suited to a central difference.
inline bool Agrees(double symbolic, double numeric, double tolerance = 1e-5) {
    return std::fabs(symbolic - numeric) <= tolerance * (1.0 + std::fabs(symbolic));
}

// Compares the derivative of e by x with central differences at samples
// points made by setPoint; points where two step sizes disagree (next to a
// kink or a jump) are left out, and with skipInfinite so are points where
// the chain rule meets an inner function that has no finite derivative
// there (sqrt|u| with u flat at 0). Returns how many points were compared.
inline int CheckDerivative(ZorWBExpression* e, ZorWBVariable* x,
                           const std::function<void()>& setPoint, int samples,
                           bool skipInfinite = false) {
    ZorWBExpression* derivative = e->GetFactory()->CreateDerivative(e, x);
    EXPECT_NE(derivative, nullptr);
    if (!derivative) return 0;
    int compared = 0;
    for (int s = 0; s < samples; ++s) {
        setPoint();
        double coarse = CentralDifference(e, x, 1e-6);
        double fine = CentralDifference(e, x, 1e-7);
        if (!std::isfinite(coarse) || !Agrees(coarse, fine, 1e-4)) continue;
        double symbolic = Reading(derivative);
        if (skipInfinite && !(std::fabs(symbolic) < ZorWBRealLimit)) continue;
        ++compared;
        EXPECT_TRUE(Agrees(symbolic, coarse))
            << "at " << x->GetExprValue().GetAsReal() << ": " << symbolic << " vs " << coarse;
    }
    return compared;
}

inline double Uniform(std::mt19937& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}

// Random compositions of smooth functions over a few variables whose values
// stay in [-1, 1]: every node maps [-1, 1] into [-1, 1] with bounded
// derivatives, so central differences are accurate everywhere. Operands are
// picked as RandomGraph picks them.
class SmoothGraph : public RandomGraph {
  public:
    SmoothGraph(ZorWBFactory& factory, unsigned int seed, int nbOfVariables)
        : RandomGraph(factory, seed, nbOfVariables), _factory(factory) {}

    void Randomise() {
        for (ZorWBVariable* variable : variables)
            SetReal(variable, Uniform());
    }

    ZorWBExpression* AddSmoothNode() {
        ZorWBFactory& f = _factory;
        ZorWBExpression* a = Pick();
        ZorWBExpression* b = Pick();
        ZorWBExpression* half = f.CreateRealConstant(0.5);
        ZorWBExpression* node = nullptr;
        switch (Index(13)) {
            case 0:
                node = f.CreateProduct(a, b);
                break;
            case 1:
                node = f.CreateProduct(f.CreateSum(a, b), half);
                break;
            case 2:
                node = f.CreateSin(a);
                break;
            case 3:
                node = f.CreateProduct(f.CreateCos(a), f.CreateRealConstant(0.9));
                break;
            case 4:
                node = f.CreateTanh(f.CreateSum(a, b));
                break;
            case 5:
                node = f.CreateQuotient(a, f.CreateSum(f.CreatePower(b, 2), f.GetOne()));
                break;
            case 6:
                node = f.CreateProduct(f.CreateAtan(a), half);
                break;
            case 7:
                node = f.CreateUnaryMinus(a);
                break;
            case 8:
                node = f.CreateSum(f.CreateSqrt(f.CreateSum(f.CreatePower(a, 2), f.GetThree())),
                                   f.CreateRealConstant(-2.0));
                break;
            case 9:
                node =
                    f.CreateSum(f.CreateExp(f.CreateProduct(a, half)), f.CreateRealConstant(-1.1));
                break;
            case 10:
                node = f.CreateProduct(f.CreateLn(f.CreateSum(a, f.GetTwo())), half);
                break;
            case 11:
                node = f.CreateProduct(f.CreateAsin(f.CreateProduct(a, half)), half);
                break;
            default:
                node = f.CreateProduct(f.CreateSinh(f.CreateProduct(a, b)), half);
                break;
        }
        nodes.push_back(node);
        return node;
    }

  private:
    ZorWBFactory& _factory;
};

#endif
