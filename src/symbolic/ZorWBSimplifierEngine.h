#ifndef ZORWB_SIMPLIFIERENGINE_H
#define ZORWB_SIMPLIFIERENGINE_H

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "qel/ZorQelArray.h"
#include "values/ZorWBValue.h"

// The machinery behind ZorWBSimplifier (not exported).
//
// Every pass walks the graph bottom-up with an explicit stack and remembers
// its result per node. A node's rule gets the node and its children's
// results and may propose a candidate; the candidate is kept when it is not
// heavier than the node rebuilt over those children (ties go to the
// candidate, which is the normal form).
//
// Rules and why they hold (u, a, b stand for any sub-expression):
// - Constant folding through the value functions, exact for integers and
//   fractions of Pi (see ZorWBConstantArithmetic), never where the value
//   functions report an error or give an undefined value, so a domain error
//   stays visible at evaluation. sin, cos and tan of multiples of Pi/2 fold
//   to exact integers.
// - Sums: nested sums are flattened; a numeric factor times a sum is
//   distributed when that makes the sum lighter; like terms (the same factors
//   up to order, powers counted by their integer exponents) add their
//   numeric coefficients; constants add up, one constant per power of Pi
//   (rationals of different powers have no exact sum); zeros go. A term
//   whose coefficients cancel goes only when it is defined everywhere
//   ("total", below); otherwise 0*term stays, keeping its domain.
// - Products: nested products are flattened; numeric factors multiply into
//   one coefficient, put first; a coefficient 1 goes; a coefficient 0 absorbs
//   the product when every other factor is total; equal bases merge their
//   integer exponents (x*x = x^2) unless that would drop a negative exponent
//   (x^-1*x stays: it is undefined at 0).
// - Children of Sum, Product, Min and Max are ordered canonically (by their
//   first variable, weight, type and a structural hash), so like terms meet
//   and equal expressions print alike.
// - a^1 = a; a^0 = 1 and 1^a = 1 for a total a; (a^m)^n = a^(mn) for
//   integers m, n both non-negative or of opposite signs; a/c = (1/c)*a for an
//   exact non-zero constant c; -(-a) = a; -(k*a) = (-k)*a; sqrt(a^2) = |a|;
//   ||a|| = |a|; |-a| = |a|; ln(exp(a)) = a; not(not(b)) = b for a Boolean
//   operator b; min and max drop repeated children; if-then-else with a
//   constant condition is the chosen branch.
// - Trigonometric pairs: sin(u)/cos(u) = tan(u) (same domain);
//   tan(u)*cos(u) = sin(u) (extends the product where cos(u) = 0, the one
//   rewrite that widens a domain, kept because it is the identity users
//   expect); a*sin(u)^2*R + b*cos(u)^2*R = b*R + (a-b)*sin(u)^2*R, hence
//   sin(u)^2 + cos(u)^2 = 1.
// Not done, because they would change where an equation holds: a/a = 1,
// a - a = 0 for partial a, x^-1*x = x, sqrt(a)^2 = a, exp(ln(a)) = a.
//
// A node is total when it is defined for every value of its variables:
// variables, defined constants, and operators that are defined everywhere
// (sums, products, min, max, abs, sin, cos, exp, atan, the hyperbolic
// functions but their inverses' partial ones, rounding, sign, step, logic and
// comparisons, if-then-else, powers by non-negative integers, quotients and
// modulo by non-zero constants) over total children.
enum class ZorWBSimplifierPass : int {
    Prepare = 0,
    CosTan,
    Round,
    SinCos,
    MergeLikeTerms,
    Final,
    Count
};

class ZorWBSimplifierEngine {
  public:
    using Nodes = std::vector<ZorWBExpression*>;

    explicit ZorWBSimplifierEngine(ZorWBFactory& factory) : _factory(factory) {}

    ZorWBFactory& GetFactory() { return _factory; }
    const ZorWBEnvironment& Environment() const { return _factory.GetEnvironment(); }

    // ------------------------------------------------------------ passes
    ZorWBExpression* RunPass(ZorWBSimplifierPass pass, ZorWBExpression* root);
    void ForgetResults();

    // ------------------------------------------------------------ definitions
    void SetDefinitions(ZorWBExpression* const* expressions, const ZorQelBoolArray* dependencies,
                        int n);
    // The definition that replaces node, or null.
    ZorWBExpression* Substitute(const ZorWBExpression* node) const;

    // ------------------------------------------------------------ node facts
    struct NodeInfo {
        std::uint64_t hash = 0;  // equal expressions have equal hashes
        long long weight = 1;    // tree weight, saturating
        int firstVariable = 0;   // lowest variable index below, or NoVariable
        bool total = true;
        bool constant = false;  // no variable below
    };
    static constexpr int NoVariable = 0x7FFFFFFF;
    static constexpr long long WeightLimit = 1LL << 60;
    const NodeInfo& Info(const ZorWBExpression* node);
    long long Weight(const ZorWBExpression* node) { return Info(node).weight; }
    bool IsTotal(const ZorWBExpression* node) { return Info(node).total; }
    // Canonical order of the children of a commutative node: constants last
    // in sums (first in products), then by first variable, weight without a
    // leading numeric coefficient, type and hash.
    bool CanonicalLess(const ZorWBExpression* a, const ZorWBExpression* b, bool constantsFirst);
    static bool IsConstantNode(const ZorWBExpression* node) {
        return node && node->GetType() == ZorWBExpressionType::Constant;
    }
    // The integer exponent of a Power node with an integer constant exponent.
    static bool IntegerExponent(const ZorWBExpression* node, long long& exponent);

    // ------------------------------------------------------------ building
    // node over children: node itself when they are its children, otherwise
    // a new node of its kind (parameters and black box kept); null on failure.
    ZorWBExpression* Rebuild(const ZorWBExpression* node, const Nodes& children);
    ZorWBExpression* MakeConstant(const ZorWBValue& value);
    // The n-ary node of type over children: the child alone for one, null
    // for none.
    ZorWBExpression* MakeNary(ZorWBExpressionType type, const Nodes& children);
    // The value of node if it is a constant (null otherwise).
    static const ZorWBValue* ConstantValue(const ZorWBExpression* node);

    // ------------------------------------------------------------ rules
    // The candidate of a pass's rules for node over children, or null.
    ZorWBExpression* Rule(ZorWBSimplifierPass pass, const ZorWBExpression* node,
                          const Nodes& children);
    // General rules of a round (ZorWBSimplifierRules.cpp).
    ZorWBExpression* RoundRule(const ZorWBExpression* node, const Nodes& children);
    ZorWBExpression* PrepareRule(const ZorWBExpression* node, const Nodes& children);
    ZorWBExpression* FinalRule(const ZorWBExpression* node, const Nodes& children);
    // Folds node over constant children through the value functions.
    ZorWBExpression* Fold(const ZorWBExpression* node, const Nodes& children);

    // Sums and products (ZorWBSimplifierSums.cpp).
    ZorWBExpression* NormaliseSum(const Nodes& children);
    ZorWBExpression* NormaliseProduct(const Nodes& children);
    ZorWBExpression* NormaliseMinMax(ZorWBExpressionType type, const Nodes& children);

    // Trigonometric pairs (ZorWBSimplifierTrigonometry.cpp).
    ZorWBExpression* CosTanRule(const ZorWBExpression* node, const Nodes& children);
    ZorWBExpression* SinCosRule(const ZorWBExpression* node, const Nodes& children);

    // One term of a sum: coefficient times the product of its factors.
    struct Term {
        ZorWBValue coefficient;
        Nodes factors;                    // empty for a constant term
        ZorWBExpression* node = nullptr;  // the term as given, while unchanged
    };
    // Splits a term into its numeric coefficient (times scale) and factors.
    Term Split(ZorWBExpression* term, const ZorWBValue& scale);
    ZorWBExpression* MakeTerm(const Term& term);
    // Whether two factor lists are equal as multisets of bases with their
    // integer exponents added up.
    bool SameFactors(const Nodes& a, const Nodes& b);
    std::uint64_t FactorsHash(const Nodes& factors);
    // A sum of terms with like terms merged, constants folded and the terms
    // in canonical order.
    ZorWBExpression* SumOfTerms(std::vector<Term>& terms);

  private:
    ZorWBExpression* Compute(ZorWBSimplifierPass pass, ZorWBExpression* node);
    ZorWBExpression* ChildForPass(ZorWBSimplifierPass pass, const ZorWBExpression* node, int i);
    int NbOfChildrenForPass(ZorWBSimplifierPass pass, const ZorWBExpression* node) const;
    NodeInfo ComputeInfo(const ZorWBExpression* node);

    ZorWBFactory& _factory;
    using Memo = std::unordered_map<const ZorWBExpression*, ZorWBExpression*>;
    Memo _results[static_cast<int>(ZorWBSimplifierPass::Count)];
    std::unordered_map<const ZorWBExpression*, NodeInfo> _infos;
    // Definitions by variable index, null where a variable is not substituted.
    std::vector<ZorWBExpression*> _definitions;
};

#endif
