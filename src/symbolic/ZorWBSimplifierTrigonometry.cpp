// The rewrites over the pairs of trigonometric types: Cos with Tan before the
// rounds, Sin with Cos after them.

#include <algorithm>

#include "symbolic/ZorWBConstantArithmetic.h"
#include "symbolic/ZorWBSimplifierEngine.h"

namespace Arithmetic = ZorWBConstantArithmetic;
using Type = ZorWBExpressionType;
using Nodes = ZorWBSimplifierEngine::Nodes;
using Term = ZorWBSimplifierEngine::Term;

namespace {

// The argument of f(u) when node is f(u) with f of the given type.
const ZorWBExpression* ArgumentOf(const ZorWBExpression* node, Type type) {
    return node->GetType() == type && node->GetNbOfChildren() == 1 ? node->GetChild(0) : nullptr;
}

// The argument u when node is f(u)^2.
const ZorWBExpression* SquaredArgument(const ZorWBExpression* node, Type type) {
    long long exponent = 0;
    if (!ZorWBSimplifierEngine::IntegerExponent(node, exponent) || exponent != 2) return nullptr;
    return ArgumentOf(node->GetChild(0), type);
}

bool SameArgument(const ZorWBExpression* u, const ZorWBExpression* v) {
    return u && v && u->IsEqualTo(v);
}

}  // namespace

ZorWBExpression* ZorWBSimplifierEngine::CosTanRule(const ZorWBExpression* node,
                                                   const Nodes& children) {
    Type type = node->GetType();
    if (type == Type::Quotient && children.size() == 2) {
        // sin(u) / cos(u) = tan(u): both sides are undefined where cos(u) = 0.
        const ZorWBExpression* u = ArgumentOf(children[0], Type::Sin);
        if (SameArgument(u, ArgumentOf(children[1], Type::Cos)))
            return _factory.CreateTan(const_cast<ZorWBExpression*>(u));
        return nullptr;
    }
    if (type != Type::Product) return nullptr;
    // tan(u) * cos(u) = sin(u).
    Nodes factors = children;
    std::vector<bool> dropped(factors.size(), false);
    bool changed = false;
    for (std::size_t i = 0; i < factors.size(); ++i) {
        const ZorWBExpression* u = ArgumentOf(factors[i], Type::Tan);
        if (!u) continue;
        for (std::size_t j = 0; j < factors.size(); ++j) {
            if (dropped[j] || j == i || !SameArgument(u, ArgumentOf(factors[j], Type::Cos)))
                continue;
            ZorWBExpression* sine = _factory.CreateSin(const_cast<ZorWBExpression*>(u));
            if (!sine) return nullptr;
            factors[i] = sine;
            dropped[j] = true;
            changed = true;
            break;
        }
    }
    if (!changed) return nullptr;
    Nodes kept;
    for (std::size_t i = 0; i < factors.size(); ++i) {
        if (!dropped[i]) kept.push_back(factors[i]);
    }
    return MakeNary(Type::Product, kept);
}

ZorWBExpression* ZorWBSimplifierEngine::SinCosRule(const ZorWBExpression* node,
                                                   const Nodes& children) {
    if (node->GetType() != Type::Sum) return nullptr;
    const ZorWBEnvironment& environment = Environment();
    std::vector<Term> terms;
    for (ZorWBExpression* child : children)
        terms.push_back(Split(child, ZorWBValue(1)));
    // Where a term a*sin(u)^2*R meets a term b*cos(u)^2*R:
    // a*sin(u)^2*R + b*cos(u)^2*R = b*R + (a - b)*sin(u)^2*R. Only for a total
    // u, so that dropping cos(u)^2 drops no domain condition.
    std::vector<bool> paired(terms.size(), false);
    bool changed = false;
    std::size_t count = terms.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (paired[i]) continue;
        Nodes& sineFactors = terms[i].factors;
        auto sine = std::find_if(sineFactors.begin(), sineFactors.end(), [](ZorWBExpression* f) {
            return SquaredArgument(f, Type::Sin) != nullptr;
        });
        if (sine == sineFactors.end()) continue;
        const ZorWBExpression* u = SquaredArgument(*sine, Type::Sin);
        if (!IsTotal(u)) continue;
        Nodes rest = sineFactors;
        rest.erase(rest.begin() + (sine - sineFactors.begin()));
        for (std::size_t j = 0; j < count; ++j) {
            if (j == i || paired[j]) continue;
            Nodes& cosineFactors = terms[j].factors;
            auto cosine = std::find_if(
                cosineFactors.begin(), cosineFactors.end(),
                [u](ZorWBExpression* f) { return SameArgument(u, SquaredArgument(f, Type::Cos)); });
            if (cosine == cosineFactors.end()) continue;
            Nodes otherRest = cosineFactors;
            otherRest.erase(otherRest.begin() + (cosine - cosineFactors.begin()));
            ZorWBValue difference;
            if (!SameFactors(rest, otherRest) ||
                !Arithmetic::Product(environment, terms[j].coefficient, -1, difference) ||
                !Arithmetic::Sum(environment, terms[i].coefficient, difference, true, difference))
                continue;
            terms[j].factors = otherRest;
            terms[j].node = nullptr;
            terms[i].coefficient = difference;
            terms[i].node = nullptr;
            paired[i] = paired[j] = true;
            changed = true;
            break;
        }
    }
    return changed ? SumOfTerms(terms) : nullptr;
}
