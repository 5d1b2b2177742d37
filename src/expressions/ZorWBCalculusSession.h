#ifndef ZORWB_CALCULUSSESSION_H
#define ZORWB_CALCULUSSESSION_H

#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "expressions/ZorWBExpression.h"

class ZorWBFactory;
class ZorWBVariable;

// What one differentiation or integration by one variable learns about the
// nodes it meets: their derivatives, their antiderivatives, and whether
// they are constant, free of the variable or linear in it. Keeping them
// means that a node shared by many parents is handled once, so the work and
// the nodes made grow with the size of the graph, not with the size of the
// tree it unfolds to.
//
// The outermost Differentiate or Integrate opens the session (through a
// ZorWBCalculusScope) and closes it when it returns; the calls it makes for
// the same variable join it. A call for another variable opens a session of
// its own for its duration.
//
// Results are computed children first, by an explicit stack
// (ZorWBGraphWalk::PostOrderBelow): when the rule of a node asks for the
// derivative of a child, the child is already known, so no call chain grows
// with the depth of the graph. Used inside the library.
class ZorWBCalculusSession {
  public:
    explicit ZorWBCalculusSession(ZorWBVariable* variable) : _variable(variable) {}
    ZorWBCalculusSession(const ZorWBCalculusSession&) = delete;
    ZorWBCalculusSession& operator=(const ZorWBCalculusSession&) = delete;

    ZorWBVariable* GetVariable() const { return _variable; }

    // ------------------------------------------------------------ derivatives
    bool FindDerivative(const ZorWBExpression* node, ZorWBExpression*& derivative) const;
    void RememberDerivative(const ZorWBExpression* node, ZorWBExpression* derivative);
    // Differentiates, children first, every node below root whose derivative
    // the rule of its parent uses and that is neither constant nor known.
    void DifferentiateBelow(const ZorWBExpression* root);
    // ZorWBExpression::IsConstant, each node looked at once per session.
    bool IsConstant(const ZorWBExpression* node);
    // Whether the differentiation passes over node: its derivative is the
    // shared Zero. Where every rule gives Zero for a subgraph free of the
    // variable and makes no node on the way (from the level
    // ZorWBLevel::PredefinedZeroOne on, in a factory without Integrate nodes,
    // which may have no derivative at all), these are the nodes that are not
    // ancestors of the variable, and nothing below them is looked at; nodes
    // made during the session, and every node elsewhere, are passed over
    // when constant.
    bool IsSkipped(const ZorWBExpression* node);

    // ------------------------------------------------------------ antiderivatives
    bool FindAntiDerivative(const ZorWBExpression* node, ZorWBExpression*& antiDerivative,
                            bool& done) const;
    void RememberAntiDerivative(const ZorWBExpression* node, ZorWBExpression* antiDerivative,
                                bool done);
    // Integrates, children first, the nodes below root that the integration
    // table of their parent integrates in turn (terms of sums, the factor of
    // a product that holds the variable, ...).
    void IntegrateBelow(const ZorWBExpression* root);
    // The variable does not occur below node.
    bool IsFree(const ZorWBExpression* node) { return ShapeOf(node) == Shape::Free; }
    // node is p * variable + q with p and q free of the variable, built from
    // sums, products by free factors, quotients by free divisors and unary
    // minus (the variable itself included).
    bool IsLinear(const ZorWBExpression* node) { return ShapeOf(node) == Shape::Linear; }
    // The nodes that did not read as rational functions of the variable
    // (ZorWBPolynomialTools::ToRationalFunction fills it), so that no later
    // reading of an ancestor walks below them again.
    std::unordered_set<const ZorWBExpression*>& GetUnreadableNodes() { return _unreadable; }

  private:
    enum class Shape { Free, Linear, Other };
    struct AntiDerivative {
        ZorWBExpression* result;
        bool done;
    };

    Shape ShapeOf(const ZorWBExpression* node);
    static Shape OperatorShape(const ZorWBExpression* node,
                               const std::unordered_map<const ZorWBExpression*, Shape>& shapes);
    // Whether the derivative rule of node uses the derivative of child i.
    bool UsesChildDerivative(const ZorWBExpression* node, int i);
    // Whether the integration table applied to node integrates child i.
    bool IntegratesChild(const ZorWBExpression* node, int i);

    ZorWBVariable* _variable;
    // The ancestors of the variable when the session opened (gathered at
    // first use) and the first tag given after that.
    std::unordered_set<const ZorWBExpression*> _ancestors;
    bool _ancestorsKnown = false;
    // Gathers _ancestors at first use; whether node is one of them.
    bool IsAncestor(const ZorWBExpression* node);
    // Decided at first use: whether the ancestors tell the skipped nodes.
    bool UsesAncestors();
    enum class Shortcut { Unknown, On, Off } _shortcut = Shortcut::Unknown;
    int _firstNewTag = 0;
    std::unordered_map<const ZorWBExpression*, ZorWBExpression*> _derivatives;
    std::unordered_map<const ZorWBExpression*, bool> _constants;
    std::unordered_map<const ZorWBExpression*, AntiDerivative> _antiDerivatives;
    std::unordered_map<const ZorWBExpression*, Shape> _shapes;
    std::unordered_set<const ZorWBExpression*> _unreadable;
};

// Opens the calculus session of a factory for a variable, or joins the one
// that is open for the same variable; restores the previous one on leaving.
class ZorWBCalculusScope {
  public:
    ZorWBCalculusScope(ZorWBFactory& factory, ZorWBVariable* variable);
    ~ZorWBCalculusScope();
    ZorWBCalculusScope(const ZorWBCalculusScope&) = delete;
    ZorWBCalculusScope& operator=(const ZorWBCalculusScope&) = delete;

    ZorWBCalculusSession& Session() { return *_session; }

  private:
    ZorWBFactory& _factory;
    ZorWBCalculusSession* _outer;
    std::optional<ZorWBCalculusSession> _own;  // made unless the scope joins
    ZorWBCalculusSession* _session;
};

#endif
