// Reading expressions as exact polynomials and rational functions, and the
// rational integration built on it.
//
// A reading is one post-order walk with an explicit stack: each distinct
// node is read once from its children's readings (kept in a map), so
// shared subgraphs cost once and graphs of any depth read on a small call
// stack. The walk stops at the first node that does not read. A rational
// function is held as a numerator and a denominator that are reduced only
// at the end; sums over a common non-constant denominator divide by the
// gcd of the denominators on the way, so that repeated denominators do not
// multiply. Every intermediate polynomial is checked against the limits of
// ZorWBPolynomial.

#include "expressions/ZorWBPolynomialTools.h"

#include <exception>
#include <unordered_map>
#include <utility>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBVariable.h"
#include "polynomial/ZorWBPolynomialGcd.h"
#include "polynomial/ZorWBRealRoots.h"

using Type = ZorWBExpressionType;

namespace {

// numerator / denominator.
struct Fraction {
    ZorWBPolynomial numerator;
    ZorWBPolynomial denominator = ZorWBPolynomial(ZorWBRational(1));
};

bool Within(const Fraction& f) {
    return f.numerator.IsWithinLimits() && f.denominator.IsWithinLimits();
}

// The exact quotient a / b (b divides a).
ZorWBPolynomial Quotient(const ZorWBPolynomial& a, const ZorWBPolynomial& b) {
    ZorWBPolynomial quotient, remainder;
    ZorWBPolynomial::Divide(a, b, quotient, remainder);
    return quotient;
}

// a + b over the least common denominator when both denominators vary.
Fraction Add(const Fraction& a, const Fraction& b) {
    if (a.denominator == b.denominator) return {a.numerator + b.numerator, a.denominator};
    if (a.denominator.GetDegree() == 0 || b.denominator.GetDegree() == 0)
        return {a.numerator * b.denominator + b.numerator * a.denominator,
                a.denominator * b.denominator};
    ZorWBPolynomial common;
    ZorWBPolynomialGcd::Gcd(a.denominator, b.denominator, common);
    ZorWBPolynomial restA = Quotient(a.denominator, common);
    ZorWBPolynomial restB = Quotient(b.denominator, common);
    return {a.numerator * restB + b.numerator * restA, a.denominator * restB};
}

// The integral value of a constant exponent node, within the limits.
bool IntegralExponent(const ZorWBExpression* node, int& exponent) {
    ZorWBRational value;
    if (node->GetType() != Type::Constant ||
        !ZorWBPolynomialTools::ToRational(node->GetExprValue(), value) || !value.IsInteger() ||
        value.Abs() > ZorWBRational(ZorWBPolynomialMaxDegree))
        return false;
    int denominator = 1;
    return value.GetSmallParts(exponent, denominator);
}

// Whether p^n stays within the limits (n >= 0).
bool PowerWithin(const ZorWBPolynomial& p, int n) {
    return static_cast<long long>(p.GetDegree()) * n <= ZorWBPolynomialMaxDegree &&
           p.GetNbOfBits() * n <= ZorWBPolynomialMaxBits;
}

// The post-order walk of a reading, generic in what a node reads as:
// read(node, childValues, value) gives a node's value from its children's,
// false when it does not read.
template <class Value, class Read>
bool Walk(const ZorWBExpression* root, Read&& read, Value& result,
          std::unordered_set<const ZorWBExpression*>* unreadable) {
    if (!root) return false;
    struct Frame {
        const ZorWBExpression* node;
        int next;
    };
    std::unordered_map<const ZorWBExpression*, Value> values;
    std::vector<Frame> stack{{root, 0}};
    std::vector<const Value*> children;
    auto fail = [&]() {
        if (unreadable) {
            for (const Frame& frame : stack)
                unreadable->insert(frame.node);
        }
        return false;
    };
    auto known = [unreadable](const ZorWBExpression* node) {
        return unreadable && unreadable->count(node) != 0;
    };
    if (known(root)) return false;
    while (!stack.empty()) {
        Frame& frame = stack.back();
        const ZorWBExpression* node = frame.node;
        if (frame.next < ZorWBGraphWalk::NbOfChildren(node)) {
            const ZorWBExpression* child = ZorWBGraphWalk::Child(node, frame.next++);
            if (values.count(child)) continue;
            if (known(child) ||
                static_cast<int>(values.size() + stack.size()) >= ZorWBPolynomialTools::MaxNodes)
                return fail();
            stack.push_back({child, 0});
            continue;
        }
        children.clear();
        for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(node); ++i)
            children.push_back(&values[ZorWBGraphWalk::Child(node, i)]);
        Value value;
        if (!read(node, children, value)) return fail();
        values.emplace(node, std::move(value));
        stack.pop_back();
    }
    result = std::move(values[root]);
    return true;
}

// A node of a rational function of x.
bool ReadFraction(const ZorWBExpression* node, const ZorWBVariable* x,
                  const std::vector<const Fraction*>& children, Fraction& value) {
    std::size_t n = children.size();
    switch (node->GetType()) {
        case Type::Variable:
            if (node != x) return false;
            value.numerator = ZorWBPolynomial::Monomial(ZorWBRational(1), 1);
            return true;
        case Type::Constant: {
            ZorWBRational constant;
            if (!ZorWBPolynomialTools::ToRational(node->GetExprValue(), constant)) return false;
            value.numerator = ZorWBPolynomial(constant);
            return true;
        }
        case Type::Sum:
            if (n == 0) return false;
            value = *children[0];
            for (std::size_t i = 1; i < n && Within(value); ++i)
                value = Add(value, *children[i]);
            return Within(value);
        case Type::Product:
            if (n == 0) return false;
            value = *children[0];
            for (std::size_t i = 1; i < n && Within(value); ++i) {
                value.numerator *= children[i]->numerator;
                value.denominator *= children[i]->denominator;
            }
            return Within(value);
        case Type::UnaryMinus:
            if (n != 1) return false;
            value = {-children[0]->numerator, children[0]->denominator};
            return true;
        case Type::Quotient:
            if (n != 2 || children[1]->numerator.IsZero()) return false;
            value = {children[0]->numerator * children[1]->denominator,
                     children[0]->denominator * children[1]->numerator};
            return Within(value);
        case Type::Power: {
            int exponent = 0;
            if (n != 2 || !IntegralExponent(ZorWBGraphWalk::Child(node, 1), exponent)) return false;
            const Fraction& base = *children[0];
            if (exponent < 0 && base.numerator.IsZero()) return false;
            int magnitude = exponent < 0 ? -exponent : exponent;
            if (!PowerWithin(base.numerator, magnitude) ||
                !PowerWithin(base.denominator, magnitude))
                return false;
            value = {base.numerator.Power(magnitude), base.denominator.Power(magnitude)};
            if (exponent < 0) std::swap(value.numerator, value.denominator);
            return Within(value);
        }
        default:
            return false;
    }
}

// A node of a polynomial in the listed variables.
bool ReadMulti(const ZorWBExpression* node, const std::vector<const ZorWBVariable*>& variables,
               const std::vector<const ZorWBMultiPolynomial*>& children,
               ZorWBMultiPolynomial& value) {
    int count = static_cast<int>(variables.size());
    std::size_t n = children.size();
    switch (node->GetType()) {
        case Type::Variable:
            for (int i = 0; i < count; ++i) {
                if (variables[static_cast<std::size_t>(i)] == node) {
                    value = ZorWBMultiPolynomial::Variable(count, i);
                    return true;
                }
            }
            return false;
        case Type::Constant: {
            ZorWBRational constant;
            if (!ZorWBPolynomialTools::ToRational(node->GetExprValue(), constant)) return false;
            value = ZorWBMultiPolynomial::Constant(count, constant);
            return true;
        }
        case Type::Sum:
        case Type::Product: {
            if (n == 0) return false;
            bool sum = node->GetType() == Type::Sum;
            value = *children[0];
            for (std::size_t i = 1; i < n && value.IsWithinLimits(); ++i)
                value = sum ? value + *children[i] : value * *children[i];
            return value.IsWithinLimits();
        }
        case Type::UnaryMinus:
            if (n != 1) return false;
            value = -*children[0];
            return true;
        case Type::Quotient: {
            // By a non-zero constant only.
            if (n != 2 || children[1]->IsZero() || children[1]->GetTotalDegree() != 0) return false;
            ZorWBRational divisor = children[1]->GetCoefficient(0);
            value =
                *children[0] * ZorWBMultiPolynomial::Constant(count, ZorWBRational(1) / divisor);
            return true;
        }
        case Type::Power: {
            int exponent = 0;
            if (n != 2 || !IntegralExponent(ZorWBGraphWalk::Child(node, 1), exponent) ||
                exponent < 0)
                return false;
            const ZorWBMultiPolynomial& base = *children[0];
            if (static_cast<long long>(base.GetTotalDegree()) * exponent >
                    ZorWBPolynomialMaxDegree ||
                base.GetNbOfBits() * exponent > ZorWBPolynomialMaxBits)
                return false;
            value = ZorWBMultiPolynomial::Constant(count, ZorWBRational(1));
            for (int k = 0; k < exponent; ++k)
                value *= base;
            return value.IsWithinLimits();
        }
        default:
            return false;
    }
}

// numerator / denominator in lowest terms with a monic denominator.
void Reduce(Fraction& f) {
    ZorWBPolynomial common;
    ZorWBPolynomialGcd::Gcd(f.numerator, f.denominator, common);
    if (common.GetDegree() > 0) {
        f.numerator = Quotient(f.numerator, common);
        f.denominator = Quotient(f.denominator, common);
    }
    ZorWBRational scale = ZorWBRational(1) / f.denominator.GetLeadingCoefficient();
    f.numerator *= ZorWBPolynomial(scale);
    f.denominator = f.denominator.Monic();
}

bool ReadRational(const ZorWBExpression* e, const ZorWBVariable* x, Fraction& f,
                  std::unordered_set<const ZorWBExpression*>* unreadable) try {
    if (!e || !x) return false;
    auto read = [x](const ZorWBExpression* node, const std::vector<const Fraction*>& children,
                    Fraction& value) { return ReadFraction(node, x, children, value); };
    if (!Walk<Fraction>(e, read, f, unreadable)) return false;
    Reduce(f);
    return true;
} catch (const std::exception&) {
    return false;
}

}  // namespace

bool ZorWBPolynomialTools::ToRational(const ZorWBValue& constant, ZorWBRational& value) {
    switch (constant.GetType()) {
        case ZorWBIntegerType:
            value = ZorWBRational(constant.GetAsInteger());
            return true;
        case ZorWBRealType:
            return ZorWBRational::FromReal(constant.GetAsReal(), value);
        case ZorWBFractionType: {
            ZorWBFraction fraction = constant.GetAsFraction();
            if (fraction.power != 0 || fraction.denominator == 0) return false;
            value = ZorWBRational(fraction.numerator, fraction.denominator);
            return true;
        }
        default:
            return false;
    }
}

bool ZorWBPolynomialTools::ToPolynomial(const ZorWBExpression* e, const ZorWBVariable* x,
                                        ZorWBPolynomial& p) {
    Fraction f;
    if (!e || !x || !e->IsPolynomial(x) || !ReadRational(e, x, f, nullptr)) return false;
    if (f.denominator.GetDegree() != 0) return false;
    p = f.numerator;
    return true;
}

bool ZorWBPolynomialTools::ToRationalFunction(const ZorWBExpression* e, const ZorWBVariable* x,
                                              ZorWBPolynomial& numerator,
                                              ZorWBPolynomial& denominator) {
    Fraction f;
    if (!ReadRational(e, x, f, nullptr)) return false;
    numerator = std::move(f.numerator);
    denominator = std::move(f.denominator);
    return true;
}

bool ZorWBPolynomialTools::ToRationalFunction(
    const ZorWBExpression* e, const ZorWBVariable* x, ZorWBPolynomial& numerator,
    ZorWBPolynomial& denominator, std::unordered_set<const ZorWBExpression*>& unreadable) {
    Fraction f;
    if (!ReadRational(e, x, f, &unreadable)) return false;
    numerator = std::move(f.numerator);
    denominator = std::move(f.denominator);
    return true;
}

bool ZorWBPolynomialTools::ToMultiPolynomial(const ZorWBExpression* e,
                                             const std::vector<const ZorWBVariable*>& variables,
                                             ZorWBMultiPolynomial& p) try {
    auto read = [&variables](const ZorWBExpression* node,
                             const std::vector<const ZorWBMultiPolynomial*>& children,
                             ZorWBMultiPolynomial& value) {
        return ReadMulti(node, variables, children, value);
    };
    ZorWBMultiPolynomial result(static_cast<int>(variables.size()));
    if (!Walk<ZorWBMultiPolynomial>(e, read, result, nullptr)) return false;
    p = std::move(result);
    return true;
} catch (const std::exception&) {
    return false;
}

ZorWBExpression* ZorWBPolynomialTools::CreateRationalAntiDerivative(const ZorWBExpression* e,
                                                                    ZorWBVariable* x) {
    ZorWBPolynomial numerator, denominator;
    ZorWBRationalAntiDerivative antiDerivative;
    if (!e || !ToRationalFunction(e, x, numerator, denominator) ||
        ZorWBRationalIntegration::Integrate(numerator, denominator, antiDerivative) !=
            ZorWBPolynomialStatus::Success)
        return nullptr;
    return CreateExpression(e->GetFactory(), antiDerivative, x);
}

bool ZorWBPolynomialTools::HasPoleBetween(const ZorWBExpression* e, const ZorWBVariable* x,
                                          const ZorWBRational& low, const ZorWBRational& high) {
    ZorWBPolynomial numerator, denominator;
    if (!ToRationalFunction(e, x, numerator, denominator)) return false;
    const ZorWBRational& a = low < high ? low : high;
    const ZorWBRational& b = low < high ? high : low;
    std::vector<ZorWBRealRoot> roots;
    if (ZorWBRealRoots::Isolate(denominator, roots) != ZorWBPolynomialStatus::Success) return false;
    if (denominator.Evaluate(a).IsZero() || denominator.Evaluate(b).IsZero()) return true;
    for (ZorWBRealRoot& root : roots) {
        // Narrowed until it lies inside or on one side (no bound is a root).
        while (!(root.high < a || root.low > b || (root.low >= a && root.high <= b))) {
            ZorWBRational width = (root.high - root.low) / ZorWBRational(2);
            if (ZorWBRealRoots::Refine(denominator, width, root) != ZorWBPolynomialStatus::Success)
                return false;
        }
        if (root.low >= a && root.high <= b) return true;
    }
    return false;
}
