#ifndef ZORWB_SIMPLIFIER_H
#define ZORWB_SIMPLIFIER_H

#include <memory>

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpression.h"
#include "qel/ZorQelArray.h"

class ZorWBFactory;
class ZorWBSimplifierEngine;

// The central expression simplifier of the symbolic transformations.
//
// It rewrites one expression through its factory into an equivalent one that
// is never heavier: the weight of an expression is its number of nodes when
// written out as a tree (a shared node counts once per use). Each rewrite is
// kept only where it does not make its node heavier than the node rebuilt
// over its simplified children, so that, without substitution, the whole
// result is never heavier than the input. Nodes are only ever created, never
// changed, so the input stays valid; shared sub-expressions are simplified
// once (results are remembered per node), and no step recurses along the
// depth of a graph.
//
// The passes, in order: a preparatory rewrite (substitution of defined
// variables, quotients by exact constants as products, double negations),
// the rewrite of Tan and Cos (tan(u)*cos(u) = sin(u), sin(u)/cos(u) =
// tan(u)), up to three rounds of the general rules (one below the level
// ZorWBLevel::ThreeSimplifyRounds; a round that changes nothing ends them),
// the rewrite of Sin and Cos (sin(u)^2 + cos(u)^2 = 1 and its multiples), and
// from the level ZorWBLevel::MergeLikeTermsPass on a last pass that merges
// like terms and numeric factors again. The rules themselves are listed in
// ZorWBSimplifierEngine.h.
//
// Rewrites never change where an equation holds: they preserve the value of
// every node wherever it is defined and do not widen a domain, except the
// documented tan(u)*cos(u) = sin(u), which extends the product continuously
// where cos(u) = 0.
//
// A simplifier remembers its results per node: it must not be used across the
// removal of nodes from its factory (the transformation operator uses one per
// run). Nothing throws; when memory runs out the input comes back unchanged.
class ZORWBX_API ZorWBSimplifier {
  public:
    explicit ZorWBSimplifier(ZorWBFactory& factory);
    ~ZorWBSimplifier();
    ZorWBSimplifier(const ZorWBSimplifier&) = delete;
    ZorWBSimplifier& operator=(const ZorWBSimplifier&) = delete;

    // The variables to substitute: expressions[i] defines the variable of
    // index i (null: not defined), dependencies[i] flags the variables that
    // expressions[i] contains (an array shorter than the number of variables
    // is recomputed from the expression). A variable whose definition contains
    // it, directly or through other definitions, is never substituted. The
    // arrays are copied; results remembered so far are forgotten.
    void SetDefinitions(ZorWBExpression* const* expressions, const ZorQelBoolArray* dependencies,
                        int n);
    void ClearDefinitions();

    // The whole pass structure. Null for a null expression, and when the
    // expression vanishes as an equation: it folds to exactly 0 at some pass
    // and keepConstantRoots is false. With keepConstantRoots (the consistency
    // check's flag) constant roots, 0 included, are returned so that the check
    // can read them.
    ZorWBExpression* Simplify(ZorWBExpression* expression, bool keepConstantRoots);
    // The previous engine's simplification: the preparatory rewrite and one
    // round, without the trigonometric rewrites.
    ZorWBExpression* SimplifyOnce(ZorWBExpression* expression, bool keepConstantRoots);
    // The normalisation that the transformation operator applies last below
    // the level ZorWBLevel::NoFinalNormalisation: negations written as
    // UnaryMinus(a) instead of Product(-1, a), and a^(1/2) as Sqrt(a).
    ZorWBExpression* FinalNormalisation(ZorWBExpression* expression);

    // The tree weight of an expression (0 for null), saturating at a large
    // bound instead of overflowing.
    static long long Weight(const ZorWBExpression* expression);

  private:
    ZorWBExpression* Finish(ZorWBExpression* input, ZorWBExpression* result);
    bool Vanishes(const ZorWBExpression* expression, bool keepConstantRoots) const;

    ZorWBFactory& _factory;
    std::unique_ptr<ZorWBSimplifierEngine> _engine;
};

#endif
