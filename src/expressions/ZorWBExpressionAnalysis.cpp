// What can be read off a subgraph: constancy, the variables present, and
// whether it is a polynomial or a rational function.
//
// Polynomial recognition works on degrees, computed bottom-up. A variable
// counted by the question has degree 1, any other leaf degree 0. An operator
// all of whose children have degree 0 has degree 0, whatever it is: it is a
// coefficient (Sin(y) is a coefficient of a polynomial in x). Otherwise:
// Sum takes the largest degree, Product the sum of the degrees, UnaryMinus
// keeps the degree, Quotient keeps the numerator's degree when the
// denominator has degree 0, and Power multiplies the base's degree by a
// constant non-negative integer exponent (a constant node holding an
// integer, or a real or fraction with an integral value). Anything else is
// not a polynomial. A rational function is built the same way from Sum,
// Product, Quotient, UnaryMinus and Power with any constant integer exponent.

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>
#include <unordered_map>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBVariable.h"

namespace {

using Type = ZorWBExpressionType;
constexpr int NotPolynomial = -1;
// Degrees saturate here instead of overflowing.
constexpr int MaxDegree = 1 << 24;
constexpr double MaxExponent = 1e6;

bool IntegerExponent(const ZorWBExpression* node, int& exponent) {
    if (node->GetType() != Type::Constant) return false;
    const ZorWBValue& value = node->GetExprValue();
    if (value.IsAKindOf(ZorWBIntegerType)) {
        exponent = value.GetAsInteger();
        return true;
    }
    if (!value.IsAKindOf(ZorWBRealType) && !value.IsAFraction()) return false;
    double real = value.GetAsReal();
    if (!(std::fabs(real) <= MaxExponent) || real != std::floor(real)) return false;
    exponent = static_cast<int>(real);
    return true;
}

int SaturatedDegree(long long degree) {
    return static_cast<int>(std::min<long long>(degree, MaxDegree));
}

// The degree of an operator from its children's degrees.
int OperatorDegree(const ZorWBExpression* node, const std::vector<int>& degrees) {
    bool anyVariable = false;
    for (int degree : degrees) {
        if (degree == NotPolynomial) return NotPolynomial;
        anyVariable = anyVariable || degree > 0;
    }
    if (!anyVariable) return 0;
    switch (node->GetType()) {
        case Type::Sum:
            return *std::max_element(degrees.begin(), degrees.end());
        case Type::Product: {
            long long total = 0;
            for (int degree : degrees)
                total += degree;
            return SaturatedDegree(total);
        }
        case Type::UnaryMinus:
            return degrees[0];
        case Type::Quotient:
            if (degrees.size() != 2) return NotPolynomial;
            return degrees[1] == 0 ? degrees[0] : NotPolynomial;
        case Type::Power: {
            int exponent = 0;
            if (degrees.size() != 2 || degrees[1] != 0 ||
                !IntegerExponent(ZorWBGraphWalk::Child(node, 1), exponent) || exponent < 0)
                return NotPolynomial;
            return SaturatedDegree(static_cast<long long>(degrees[0]) * exponent);
        }
        default:
            return NotPolynomial;
    }
}

// The degree of root in the variables that counts accepts.
template <class Counts>
int Degree(const ZorWBExpression* root, Counts counts) {
    std::unordered_map<const ZorWBExpression*, int> degrees;
    std::vector<int> childDegrees;
    return ZorWBGraphWalk::PostOrder<int>(root, degrees, [&](const ZorWBExpression* node) {
        if (node->GetType() == Type::Variable)
            return counts(static_cast<const ZorWBVariable*>(node)) ? 1 : 0;
        int n = ZorWBGraphWalk::NbOfChildren(node);
        if (n == 0) return 0;
        childDegrees.assign(n, 0);
        for (int i = 0; i < n; ++i)
            childDegrees[i] = degrees[ZorWBGraphWalk::Child(node, i)];
        return OperatorDegree(node, childDegrees);
    });
}

int TotalDegree(const ZorWBExpression* root) {
    return Degree(root, [](const ZorWBVariable*) { return true; });
}

// Rational-function states.
constexpr int Free = 0;
constexpr int Rational = 1;
constexpr int NotRational = -1;

int RationalState(const ZorWBExpression* node, const std::vector<int>& states) {
    bool anyVariable = false;
    for (int state : states) {
        if (state == NotRational) return NotRational;
        anyVariable = anyVariable || state == Rational;
    }
    if (!anyVariable) return Free;
    switch (node->GetType()) {
        case Type::Sum:
        case Type::Product:
        case Type::Quotient:
        case Type::UnaryMinus:
            return Rational;
        case Type::Power: {
            int exponent = 0;
            return states.size() == 2 && states[1] == Free &&
                           IntegerExponent(ZorWBGraphWalk::Child(node, 1), exponent)
                       ? Rational
                       : NotRational;
        }
        default:
            return NotRational;
    }
}

}  // namespace

bool ZorWBExpression::IsConstant() const try {
    if (GetType() == Type::Variable) return false;
    if (IsLeaf()) return true;
    bool constant = true;
    ZorWBGraphWalk::PreOrder(this, [&constant](const ZorWBExpression* node) {
        constant = node->GetType() != Type::Variable;
        return constant;
    });
    return constant;
} catch (const std::exception&) {
    return false;
}

bool ZorWBExpression::IsFree(const ZorWBVariable* variable) const try {
    if (!variable) return true;
    bool free = true;
    ZorWBGraphWalk::PreOrder(this, [variable, &free](const ZorWBExpression* node) {
        free = node != variable;
        return free;
    });
    return free;
} catch (const std::exception&) {
    return false;
}

void ZorWBExpression::FillPresentVariables(unsigned char* present) const try {
    if (!present) return;
    int nbOfVariables = _factory->GetNbOfVariables();
    ZorWBGraphWalk::PreOrder(this, [present, nbOfVariables](const ZorWBExpression* node) {
        if (node->GetType() == Type::Variable) {
            int index = static_cast<const ZorWBVariable*>(node)->GetIdx();
            if (index >= 0 && index < nbOfVariables) present[index] = 1;
        }
        return true;
    });
} catch (const std::exception&) {
}

int ZorWBExpression::FindPresentVariables(ZorQelListPZorWBVariable& variables) const try {
    variables.RemoveAll();
    int nbOfVariables = _factory->GetNbOfVariables();
    std::vector<unsigned char> present(static_cast<std::size_t>(nbOfVariables), 0);
    FillPresentVariables(present.data());
    for (int i = 0; i < nbOfVariables; ++i) {
        if (present[static_cast<std::size_t>(i)]) variables.Add(_factory->GetVariable(i));
    }
    return variables.GetSize();
} catch (const std::exception&) {
    return variables.GetSize();
}

int ZorWBExpression::FindPresentVariables(ZorWBVariable**& variables) const try {
    ZorQelListPZorWBVariable list;
    FindPresentVariables(list);
    variables = nullptr;
    if (list.IsEmpty()) return 0;
    variables = new (std::nothrow) ZorWBVariable*[static_cast<std::size_t>(list.GetSize())];
    if (!variables) return 0;
    for (int i = 0; i < list.GetSize(); ++i)
        variables[i] = list[i];
    return list.GetSize();
} catch (const std::exception&) {
    variables = nullptr;
    return 0;
}

bool ZorWBExpression::IsLinear() const try {
    int degree = TotalDegree(this);
    return degree == 0 || degree == 1;
} catch (const std::exception&) {
    return false;
}

bool ZorWBExpression::IsQuadratic() const try {
    int degree = TotalDegree(this);
    return degree >= 0 && degree <= 2;
} catch (const std::exception&) {
    return false;
}

bool ZorWBExpression::IsPolynomial() const try {
    return TotalDegree(this) != NotPolynomial;
} catch (const std::exception&) {
    return false;
}

bool ZorWBExpression::IsPolynomial(const ZorWBVariable* variable) const {
    int degree = 0;
    return IsPolynomial(variable, degree);
}

bool ZorWBExpression::IsPolynomial(const ZorWBVariable* variable, int& degree) const try {
    if (!variable) return false;
    int found = Degree(this, [variable](const ZorWBVariable* v) { return v == variable; });
    if (found == NotPolynomial) return false;
    degree = found;
    return true;
} catch (const std::exception&) {
    return false;
}

bool ZorWBExpression::IsRationalFunction(const ZorWBVariable* variable) const try {
    if (!variable) return false;
    std::unordered_map<const ZorWBExpression*, int> states;
    std::vector<int> childStates;
    int state = ZorWBGraphWalk::PostOrder<int>(this, states, [&](const ZorWBExpression* node) {
        if (node == variable) return Rational;
        int n = ZorWBGraphWalk::NbOfChildren(node);
        if (n == 0) return Free;
        childStates.assign(n, Free);
        for (int i = 0; i < n; ++i)
            childStates[i] = states[ZorWBGraphWalk::Child(node, i)];
        return RationalState(node, childStates);
    });
    return state != NotRational;
} catch (const std::exception&) {
    return false;
}
