// Sums, products, minima and maxima: flattening, like terms, numeric
// coefficients, powers of equal bases and the canonical order of children.

#include <algorithm>
#include <unordered_map>

#include "symbolic/ZorWBConstantArithmetic.h"
#include "symbolic/ZorWBSimplifierEngine.h"
#include "values/ZorWBValueFunctions.h"

namespace Arithmetic = ZorWBConstantArithmetic;
using Type = ZorWBExpressionType;
using Nodes = ZorWBSimplifierEngine::Nodes;
using Term = ZorWBSimplifierEngine::Term;

namespace {

// A numeric constant takes part in coefficients; a Boolean or undefined one
// is an ordinary factor.
bool IsNumeric(const ZorWBValue& value) {
    return !value.IsAKindOf(ZorWBUndefinedType) && !value.IsAKindOf(ZorWBBooleanType);
}

bool IsOne(const ZorWBValue& value) {
    return !value.IsAKindOf(ZorWBIntegerIntervalType) && !value.IsAKindOf(ZorWBRealIntervalType) &&
           !value.IsAKindOf(ZorWBIntegerEnumType) && !value.IsAKindOf(ZorWBRealEnumType) &&
           Arithmetic::IsExactly(value, 1.0);
}

struct BaseExponent {
    const ZorWBExpression* base;
    long long exponent;
};

std::uint64_t MixHash(std::uint64_t a, std::uint64_t b) {
    std::uint64_t x = (a ^ (b * 0x9E3779B97F4A7C15ull)) * 0xBF58476D1CE4E5B9ull;
    return x ^ (x >> 31);
}

}  // namespace

// ------------------------------------------------------------ terms

Term ZorWBSimplifierEngine::Split(ZorWBExpression* term, const ZorWBValue& scale) {
    const ZorWBEnvironment& environment = Environment();
    Term result;
    result.coefficient = scale;
    bool unscaled = scale.IsAKindOf(ZorWBIntegerType) && scale.GetAsInteger() == 1;
    ZorWBExpression* body = term;
    // -a is the term a with the scale negated.
    if (body->GetType() == Type::UnaryMinus && body->GetNbOfChildren() == 1 &&
        !IsConstantNode(body->GetChild(0)) &&
        Arithmetic::Product(environment, result.coefficient, ZorWBValue(-1), result.coefficient)) {
        body = body->GetChild(0);
        unscaled = false;
    }
    const ZorWBValue* value = ConstantValue(body);
    if (value && IsNumeric(*value) &&
        Arithmetic::Product(environment, result.coefficient, *value, result.coefficient)) {
        result.node = unscaled ? term : nullptr;
        return result;
    }
    int n = body->GetNbOfChildren();
    const ZorWBValue* numerator =
        body->GetType() == Type::Quotient && n == 2 ? ConstantValue(body->GetChild(0)) : nullptr;
    ZorWBValue scaled;
    if (numerator && IsNumeric(*numerator) && !IsOne(*numerator) &&
        Arithmetic::Product(environment, result.coefficient, *numerator, scaled)) {
        // c / b is the term c times 1/b, so that 2/x and 3/x meet.
        ZorWBExpression* inverse = _factory.CreateQuotient(_factory.GetOne(), body->GetChild(1));
        if (inverse) {
            result.coefficient = scaled;
            result.factors.push_back(inverse);
            result.node = unscaled ? term : nullptr;
            return result;
        }
    }
    if (body->GetType() != Type::Product || n < 2) {
        result.factors.push_back(body);
    } else {
        // A product's factors, after its leading numeric coefficient.
        const ZorWBValue* leading = ConstantValue(body->GetChild(0));
        int first = 0;
        if (leading && IsNumeric(*leading) &&
            Arithmetic::Product(environment, result.coefficient, *leading, scaled)) {
            result.coefficient = scaled;
            first = 1;
        }
        for (int i = first; i < n; ++i)
            result.factors.push_back(body->GetChild(i));
    }
    result.node = unscaled ? term : nullptr;
    return result;
}

ZorWBExpression* ZorWBSimplifierEngine::MakeTerm(const Term& term) {
    if (term.node) return term.node;
    if (term.factors.empty()) return MakeConstant(term.coefficient);
    if (IsOne(term.coefficient)) return MakeNary(Type::Product, term.factors);
    ZorWBExpression* coefficient = MakeConstant(term.coefficient);
    if (!coefficient) return nullptr;
    const ZorWBExpression* single = term.factors.size() == 1 ? term.factors.front() : nullptr;
    const ZorWBValue* numerator = single && single->GetType() == Type::Quotient
                                      ? ConstantValue(single->GetChild(0))
                                      : nullptr;
    if (numerator && numerator->IsAKindOf(ZorWBIntegerType) && numerator->GetAsInteger() == 1)
        return _factory.CreateQuotient(coefficient,
                                       const_cast<ZorWBExpression*>(single)->GetChild(1));
    Nodes children{coefficient};
    children.insert(children.end(), term.factors.begin(), term.factors.end());
    return MakeNary(Type::Product, children);
}

namespace {

// The bases of a factor list with their integer exponents added up (x*x and
// x^2 both give x with 2).
std::vector<BaseExponent> Bases(const Nodes& factors) {
    std::vector<BaseExponent> bases;
    for (const ZorWBExpression* factor : factors) {
        long long exponent = 1;
        const ZorWBExpression* base = factor;
        if (ZorWBSimplifierEngine::IntegerExponent(factor, exponent)) base = factor->GetChild(0);
        auto same = std::find_if(bases.begin(), bases.end(), [base](const BaseExponent& entry) {
            return entry.base->IsEqualTo(base);
        });
        if (same != bases.end()) {
            same->exponent += exponent;
        } else {
            bases.push_back({base, exponent});
        }
    }
    return bases;
}

}  // namespace

std::uint64_t ZorWBSimplifierEngine::FactorsHash(const Nodes& factors) {
    std::uint64_t hash = factors.empty() ? 0 : 1;
    for (const BaseExponent& entry : Bases(factors))
        hash += MixHash(Info(entry.base).hash, static_cast<std::uint64_t>(entry.exponent));
    return hash;
}

bool ZorWBSimplifierEngine::SameFactors(const Nodes& a, const Nodes& b) {
    std::vector<BaseExponent> x = Bases(a);
    std::vector<BaseExponent> y = Bases(b);
    if (x.size() != y.size()) return false;
    std::vector<bool> matched(y.size(), false);
    for (const BaseExponent& entry : x) {
        bool found = false;
        for (std::size_t j = 0; j < y.size() && !found; ++j) {
            if (matched[j] || y[j].exponent != entry.exponent) continue;
            found = matched[j] = entry.base->IsEqualTo(y[j].base);
        }
        if (!found) return false;
    }
    return true;
}

// ------------------------------------------------------------ sums

namespace {

// Folds the constant terms: rationals of the same power of Pi exactly, then
// everything into a non-rational constant when there is one. Zeros go.
std::vector<Term> FoldConstants(const ZorWBEnvironment& environment,
                                const std::vector<Term>& constants) {
    std::vector<Term> rationals;
    std::vector<Term> others;
    for (const Term& constant : constants) {
        bool rational = Arithmetic::IsRational(constant.coefficient);
        std::vector<Term>& into = rational ? rationals : others;
        bool folded = false;
        for (Term& accumulated : into) {
            ZorWBValue sum;
            if (Arithmetic::Sum(environment, accumulated.coefficient, constant.coefficient, false,
                                sum)) {
                accumulated.coefficient = sum;
                accumulated.node = nullptr;
                folded = true;
                break;
            }
        }
        if (!folded) into.push_back(constant);
    }
    if (!others.empty()) {
        Term& real = others.front();
        std::vector<Term> kept;
        for (const Term& rational : rationals) {
            ZorWBValue sum;
            if (Arithmetic::Sum(environment, real.coefficient, rational.coefficient, true, sum)) {
                real.coefficient = sum;
                real.node = nullptr;
            } else {
                kept.push_back(rational);
            }
        }
        rationals = kept;
    }
    rationals.insert(rationals.end(), others.begin(), others.end());
    std::vector<Term> result;
    for (const Term& constant : rationals) {
        if (!Arithmetic::IsExactly(constant.coefficient, 0.0)) result.push_back(constant);
    }
    return result;
}

}  // namespace

ZorWBExpression* ZorWBSimplifierEngine::SumOfTerms(std::vector<Term>& terms) {
    const ZorWBEnvironment& environment = Environment();
    std::vector<Term> constants;
    std::vector<Term> groups;
    std::vector<Nodes> members;  // the terms of each group as given (null: scaled)
    std::unordered_map<std::uint64_t, std::vector<std::size_t>> buckets;
    for (Term& term : terms) {
        if (term.factors.empty()) {
            constants.push_back(term);
            continue;
        }
        std::vector<std::size_t>& bucket = buckets[FactorsHash(term.factors)];
        bool merged = false;
        for (std::size_t g : bucket) {
            Term& group = groups[g];
            ZorWBValue sum;
            if (SameFactors(group.factors, term.factors) &&
                Arithmetic::Sum(environment, group.coefficient, term.coefficient, false, sum)) {
                group.coefficient = sum;
                group.node = nullptr;
                members[g].push_back(term.node);
                merged = true;
                break;
            }
        }
        if (!merged) {
            bucket.push_back(groups.size());
            groups.push_back(term);
            members.push_back({term.node});
        }
    }
    Nodes children;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        const Term& group = groups[g];
        if (!group.node && Arithmetic::IsExactly(group.coefficient, 0.0)) {
            // A cancelled term goes only where it was defined everywhere.
            bool total = std::all_of(group.factors.begin(), group.factors.end(),
                                     [this](const ZorWBExpression* f) { return IsTotal(f); });
            if (total) continue;
        }
        ZorWBExpression* child = MakeTerm(group);
        if (!child) return nullptr;
        // x + x + y stays: 2 * x has one node more than x + x (unless it
        // replaces the whole sum).
        const Nodes& given = members[g];
        long long saving = groups.size() == 1 && constants.empty() ? 1 : 0;
        bool separable =
            given.size() > 1 && std::find(given.begin(), given.end(), nullptr) == given.end();
        long long separate = 0;
        for (const ZorWBExpression* member : given)
            separate += member ? Weight(member) : 0;
        if (separable && Weight(child) > separate + saving) {
            children.insert(children.end(), given.begin(), given.end());
        } else {
            children.push_back(child);
        }
    }
    std::stable_sort(children.begin(), children.end(),
                     [this](const ZorWBExpression* a, const ZorWBExpression* b) {
                         return CanonicalLess(a, b, false);
                     });
    for (const Term& constant : FoldConstants(environment, constants)) {
        ZorWBExpression* child = MakeTerm(constant);
        if (!child) return nullptr;
        children.push_back(child);
    }
    if (children.empty()) return MakeConstant(ZorWBValue(0));
    return MakeNary(Type::Sum, children);
}

ZorWBExpression* ZorWBSimplifierEngine::NormaliseSum(const Nodes& children) {
    const ZorWBValue one(1);
    // Numeric multiples of sums are expanded in the second candidate only.
    auto expandable = [](const ZorWBExpression* e, const ZorWBValue*& factor) {
        int n = e->GetNbOfChildren();
        if (e->GetType() == Type::UnaryMinus && n == 1 && e->GetChild(0)->GetType() == Type::Sum) {
            factor = nullptr;
            return true;
        }
        if (e->GetType() != Type::Product || n != 2 || e->GetChild(1)->GetType() != Type::Sum)
            return false;
        factor = ConstantValue(e->GetChild(0));
        return factor && IsNumeric(*factor);
    };
    auto collect = [&](bool expand) {
        std::vector<Term> terms;
        auto add = [&](ZorWBExpression* e) {
            const ZorWBValue* factor = nullptr;
            if (expand && expandable(e, factor)) {
                ZorWBValue scale = factor ? *factor : ZorWBValue(-1);
                ZorWBExpression* sum = factor ? e->GetChild(1) : e->GetChild(0);
                for (int i = 0; i < sum->GetNbOfChildren(); ++i)
                    terms.push_back(Split(sum->GetChild(i), scale));
                return;
            }
            terms.push_back(Split(e, one));
        };
        for (ZorWBExpression* child : children) {
            if (child->GetType() == Type::Sum) {
                for (int i = 0; i < child->GetNbOfChildren(); ++i)
                    add(child->GetChild(i));
            } else {
                add(child);
            }
        }
        return terms;
    };
    auto anyExpandable = [&](const ZorWBExpression* e) {
        const ZorWBValue* factor = nullptr;
        if (e->GetType() != Type::Sum) return expandable(e, factor);
        for (int i = 0; i < e->GetNbOfChildren(); ++i) {
            if (expandable(e->GetChild(i), factor)) return true;
        }
        return false;
    };
    std::vector<Term> plainTerms = collect(false);
    ZorWBExpression* plain = SumOfTerms(plainTerms);
    if (!std::any_of(children.begin(), children.end(), anyExpandable)) return plain;
    std::vector<Term> expandedTerms = collect(true);
    ZorWBExpression* distributed = SumOfTerms(expandedTerms);
    if (!plain || (distributed && Weight(distributed) <= Weight(plain))) return distributed;
    return plain;
}

// ------------------------------------------------------------ products

namespace {

struct PowerGroup {
    ZorWBExpression* base;
    std::vector<std::pair<ZorWBExpression*, long long>> members;
};

}  // namespace

ZorWBExpression* ZorWBSimplifierEngine::NormaliseProduct(const Nodes& children) {
    const ZorWBEnvironment& environment = Environment();
    Nodes factors;
    for (ZorWBExpression* child : children) {
        if (child->GetType() == Type::Product) {
            for (int i = 0; i < child->GetNbOfChildren(); ++i)
                factors.push_back(child->GetChild(i));
        } else {
            factors.push_back(child);
        }
    }
    ZorWBValue coefficient(1);
    ZorWBExpression* onlyConstant = nullptr;
    int nbOfConstants = 0;
    Nodes rest;
    for (ZorWBExpression* factor : factors) {
        const ZorWBValue* value = ConstantValue(factor);
        if (value && IsNumeric(*value) &&
            Arithmetic::Product(environment, coefficient, *value, coefficient)) {
            onlyConstant = factor;
            ++nbOfConstants;
        } else {
            rest.push_back(factor);
        }
    }
    bool restTotal = std::all_of(rest.begin(), rest.end(),
                                 [this](const ZorWBExpression* f) { return IsTotal(f); });
    if (Arithmetic::IsExactly(coefficient, 0.0) && restTotal) return MakeConstant(coefficient);

    // Equal bases: their integer exponents add up, unless a negative
    // exponent would disappear (it makes the product undefined at 0).
    std::vector<PowerGroup> groups;
    std::unordered_map<std::uint64_t, std::vector<std::size_t>> buckets;
    for (ZorWBExpression* factor : rest) {
        long long exponent = 1;
        ZorWBExpression* base = factor;
        if (IntegerExponent(factor, exponent)) base = factor->GetChild(0);
        std::vector<std::size_t>& bucket = buckets[Info(base).hash];
        auto same = std::find_if(bucket.begin(), bucket.end(),
                                 [&](std::size_t g) { return groups[g].base->IsEqualTo(base); });
        if (same != bucket.end()) {
            groups[*same].members.push_back({factor, exponent});
        } else {
            bucket.push_back(groups.size());
            groups.push_back({base, {{factor, exponent}}});
        }
    }
    Nodes merged;
    for (const PowerGroup& group : groups) {
        long long total = 0;
        bool negative = false;
        for (const auto& member : group.members) {
            total += member.second;
            negative = negative || member.second < 0;
        }
        // x * x * y stays: x^2 * y has one node more (x * x alone becomes x^2).
        long long separate = groups.size() == 1 && IsOne(coefficient) ? 1 : 0;
        for (const auto& member : group.members)
            separate += Weight(member.first);
        long long together = Weight(group.base) + (total == 1 ? 0 : 2);
        bool mergeable = group.members.size() > 1 && total != 0 && (!negative || total < 0) &&
                         total >= -ZorWBIntegerMax && total <= ZorWBIntegerMax &&
                         together <= separate;
        if (!mergeable) {
            for (const auto& member : group.members)
                merged.push_back(member.first);
            continue;
        }
        ZorWBExpression* power =
            total == 1 ? group.base : _factory.CreatePower(group.base, int(total));
        if (!power) return nullptr;
        merged.push_back(power);
    }
    std::stable_sort(merged.begin(), merged.end(),
                     [this](const ZorWBExpression* a, const ZorWBExpression* b) {
                         return CanonicalLess(a, b, true);
                     });
    Nodes out;
    if (!IsOne(coefficient) || merged.empty()) {
        ZorWBExpression* constant = nbOfConstants == 1 ? onlyConstant : MakeConstant(coefficient);
        if (!constant) return nullptr;
        out.push_back(constant);
    }
    out.insert(out.end(), merged.begin(), merged.end());
    ZorWBExpression* product = MakeNary(Type::Product, out);
    // k * (a + b) may be lighter as k*a + k*b, when coefficients merge.
    if (product && merged.size() == 1 && merged.front()->GetType() == Type::Sum &&
        !IsOne(coefficient)) {
        std::vector<Term> terms;
        ZorWBExpression* sum = merged.front();
        for (int i = 0; i < sum->GetNbOfChildren(); ++i)
            terms.push_back(Split(sum->GetChild(i), coefficient));
        ZorWBExpression* distributed = SumOfTerms(terms);
        if (distributed && Weight(distributed) <= Weight(product)) return distributed;
    }
    return product;
}

ZorWBExpression* ZorWBSimplifierEngine::NormaliseMinMax(Type type, const Nodes& children) {
    const ZorWBEnvironment& environment = Environment();
    Nodes flat;
    for (ZorWBExpression* child : children) {
        if (child->GetType() == type) {
            for (int i = 0; i < child->GetNbOfChildren(); ++i)
                flat.push_back(child->GetChild(i));
        } else {
            flat.push_back(child);
        }
    }
    Nodes out;
    ZorWBValue folded;
    int nbOfFolded = 0;
    ZorWBExpression* onlyConstant = nullptr;
    std::unordered_map<std::uint64_t, std::vector<ZorWBExpression*>> seen;
    for (ZorWBExpression* child : flat) {
        const ZorWBValue* value = ConstantValue(child);
        if (value && IsNumeric(*value)) {
            bool ok = nbOfFolded == 0;
            if (ok) {
                folded = *value;
            } else {
                ok = Arithmetic::Checked(
                    environment,
                    [&] {
                        return type == Type::Min ? ZorWBMin(environment, folded, *value)
                                                 : ZorWBMax(environment, folded, *value);
                    },
                    folded);
            }
            if (ok) {
                ++nbOfFolded;
                onlyConstant = child;
                continue;
            }
        }
        // min(a, a) = a.
        std::vector<ZorWBExpression*>& bucket = seen[Info(child).hash];
        bool repeated = std::any_of(bucket.begin(), bucket.end(),
                                    [child](ZorWBExpression* e) { return e->IsEqualTo(child); });
        if (repeated) continue;
        bucket.push_back(child);
        out.push_back(child);
    }
    std::stable_sort(out.begin(), out.end(),
                     [this](const ZorWBExpression* a, const ZorWBExpression* b) {
                         return CanonicalLess(a, b, false);
                     });
    if (nbOfFolded > 0) {
        ZorWBExpression* constant = nbOfFolded == 1 ? onlyConstant : MakeConstant(folded);
        if (!constant) return nullptr;
        out.push_back(constant);
    }
    return MakeNary(type, out);
}
