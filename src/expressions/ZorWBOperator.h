#ifndef ZORWB_OPERATOR_H
#define ZORWB_OPERATOR_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpression.h"

// A node computed from its children. The children are fixed at construction
// (a child is never null); the classes below differ only in how they
// evaluate and differentiate.
class ZORWBX_API ZorWBOperator : public ZorWBExpression {
  public:
    int GetNbOfChildren() const override { return _count; }
    const ZorWBExpression* GetChild(int i) const override;
    ZorWBExpression* GetChild(int i) override;
    using ZorWBExpression::RemoveChild;
    // Removes child i (the node then has fewer children than its type asks
    // for: meant for dismantling) and invalidates the buffers above.
    bool RemoveChild(int i) override;
    // Invalidates the buffers above this node.
    bool ReplaceChild(int i, ZorWBExpression* child) override;
    // From the level ZorWBLevel::ResetBufferUpward on as for every node;
    // below it this node and, when complete, its whole subgraph downward.
    void ResetBuffer(bool complete) override;
    // Removes from the factory, and destroys, every descendant that is used
    // only inside this node's subgraph (all its parents are being removed),
    // except variables, predefined constants, temporary nodes and equation
    // roots; their positions are dropped from this node's children.
    void RemoveUniqueChildren() override;

  protected:
    friend class ZorWBFactory;
    ZorWBOperator(ZorWBFactory* factory, ZorWBExpressionType type, int tag, int n,
                  ZorWBExpression* const* children);
    ~ZorWBOperator() override;

    bool RemoveChild(ZorWBExpression* child) override;
    bool ValidateAllowBufferEval() const override;

    // The term that child i contributes to the derivative: the partial
    // derivative with respect to child i times dChild.
    virtual ZorWBExpression* DifferentiateChild(int i, ZorWBExpression* dChild);
    // Whether other has the same type, number of children and own data
    // (parameters, black box): equality then only depends on the children.
    virtual bool HasSameHead(const ZorWBOperator* other) const;

    // The general chain rule over DifferentiateChild.
    ZorWBExpression* DoDifferentiate(ZorWBVariable* variable);

    // What DoEval reads: the children's values or reals in the running
    // evaluation.
    const ZorWBValue& ChildValue(int i) const { return ValueOf(Children()[i]); }
    double ChildReal(int i) const { return RealOf(Children()[i]); }
    // Fewer children than needed: the value is undefined (the real NaN).
    bool HasChildren(int needed) const { return _count >= needed; }

  private:
    friend class ZorWBExpression;
    friend class ZorWBGraphWalk;
    friend class ZorWBEqualityEngine;
    friend class ZorWBValueProgram;
    friend class ZorWBValueProgramCompiler;
    bool ReplaceChildUnchecked(int i, ZorWBExpression* child);
    ZorWBExpression* ChildAt(int i) const { return Children()[i]; }
    // The children in order: inline for at most two, else in an array on
    // the heap (HeapChildrenTrait).
    ZorWBExpression* const* Children() const {
        return (_traits & HeapChildrenTrait) ? _heapChildren : _inlineChildren;
    }
    ZorWBExpression** Children() {
        return (_traits & HeapChildrenTrait) ? _heapChildren : _inlineChildren;
    }
    // Computes the value field through the shortcut of the type
    // (ZorWBOperatorFunctions.h), as DoEval would; false, touching nothing,
    // where the shortcut does not apply. Not for the folds, which go step
    // by step.
    bool EvaluateFast() const;
    // One step of the left fold of a Sum, Product, Min or Max, taken as soon
    // as child i is ready, before the next child is asked for: the value
    // field (the real of the real evaluation) takes child 0, then combines
    // with child i, through the shortcut of the type where it applies. A
    // child computed at every request (unbuffered) thus enters the fold with
    // the value of its own request.
    void FoldValue(int i) const;
    void FoldReal(int i) const;
    // Whether the value fold reads a buffered first child at the second
    // step rather than copying it at the first: its value stays put in
    // between, and the copy is spared.
    bool KeepsFirstOperand() const { return _count >= 2 && Children()[0]->AllowsBufferEval(); }
    // Drops every child position holding a node for which drop(node) holds,
    // without telling the children; whether one of them was unbuffered.
    template <class Drop>
    bool DropChildren(Drop&& drop) {
        ZorWBExpression** children = Children();
        int kept = 0;
        bool unbuffered = false;
        for (int i = 0; i < _count; ++i) {
            ZorWBExpression* child = children[i];
            if (drop(child)) {
                unbuffered = unbuffered || !child->AllowsBufferEval();
            } else {
                children[kept++] = child;
            }
        }
        for (int i = kept; i < _count; ++i)
            children[i] = nullptr;
        _count = kept;
        return unbuffered;
    }

    static constexpr int NbOfInlineChildren = 2;
    union {
        ZorWBExpression* _inlineChildren[NbOfInlineChildren] = {nullptr, nullptr};
        ZorWBExpression** _heapChildren;
    };
};

// Declares the overrides that every operator family provides.
#define ZORWB_OPERATOR_FAMILY_OVERRIDES                                                     \
  protected:                                                                                \
    void DoEval(ZorWBValue& value) const override;                                          \
    double DoEval() const override;                                                         \
    ZorWBExpression* IntegrateTableProtected(ZorWBVariable* variable, bool& done) override; \
    ZorWBExpression* DifferentiateProtected(ZorWBVariable* variable) override;              \
    ZorWBExpression* DifferentiateChild(int i, ZorWBExpression* dChild) override;

// Not: four-state negation.
class ZORWBX_API ZorWBNotOperator : public ZorWBOperator {
  protected:
    friend class ZorWBFactory;
    using ZorWBOperator::ZorWBOperator;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

// Or, And, Equal, NotEqual, LessEqual, Implication.
class ZORWBX_API ZorWBBooleanOperator : public ZorWBOperator {
  protected:
    friend class ZorWBFactory;
    using ZorWBOperator::ZorWBOperator;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

// Sum, Product, Min, Max: a left fold over two or more children.
class ZORWBX_API ZorWBAlgebraicOperator : public ZorWBOperator {
  protected:
    friend class ZorWBFactory;
    using ZorWBOperator::ZorWBOperator;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

// Quotient, Power, Root, Atan2, Dim, Sign, Mod.
class ZORWBX_API ZorWBBinaryOperator : public ZorWBOperator {
  protected:
    friend class ZorWBFactory;
    using ZorWBOperator::ZorWBOperator;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

// Sqrt, Log, Ln, Exp, Step, Abs, Ceil, Floor, Round, Trunc, UnaryMinus. A
// Step holds four real parameters (zero until set); the other types none.
class ZORWBX_API ZorWBUnaryOperator : public ZorWBOperator {
  public:
    static constexpr int NbOfStepParameters = 4;
    void SetParameter(int i, double value) override;
    double GetParameter(int i) const override;
    int GetNbOfParameters() const override;
    const double* GetParameters() const { return _parameters; }

  protected:
    friend class ZorWBFactory;
    ZorWBUnaryOperator(ZorWBFactory* factory, ZorWBExpressionType type, int tag, int n,
                       ZorWBExpression* const* children);
    ~ZorWBUnaryOperator() override;
    bool HasSameHead(const ZorWBOperator* other) const override;
    ZORWB_OPERATOR_FAMILY_OVERRIDES

  private:
    double* _parameters = nullptr;
};

// Round with three children: the value, the step and the origin of the
// rounding grid (origin + step * round((value - origin) / step)).
class ZORWBX_API ZorWBRound3Operator : public ZorWBOperator {
  protected:
    friend class ZorWBFactory;
    using ZorWBOperator::ZorWBOperator;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

// Sin, Cos, Tan, Asin, Acos, Atan and the hyperbolic functions.
class ZORWBX_API ZorWBTrigonometricOperator : public ZorWBOperator {
  protected:
    friend class ZorWBFactory;
    using ZorWBOperator::ZorWBOperator;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

// IfThenElse(condition, then, else): only the branch that the condition
// selects is evaluated.
class ZORWBX_API ZorWBIfThenElseOperator : public ZorWBOperator {
  public:
    // Which child a condition selects: 1 (then) for a true boolean, 2 (else)
    // for a false one; IndefiniteBranch for an unknown or empty boolean and
    // for any other kind of value; KeepBranch for a boolean state outside
    // the four (the value is then left as it was).
    static constexpr int IndefiniteBranch = -1;
    static constexpr int KeepBranch = -2;
    static int ChosenBranch(const ZorWBValue& condition);
    // The real form: 1 for a non-zero condition, 2 for zero, IndefiniteBranch
    // for NaN.
    static int ChosenBranch(double condition);

  protected:
    friend class ZorWBFactory;
    using ZorWBOperator::ZorWBOperator;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

// Integrate(integrand, variable): an antiderivative without closed form.
class ZORWBX_API ZorWBIntegrateOperator : public ZorWBOperator {
  protected:
    friend class ZorWBFactory;
    // Counted by the factory (see ZorWBCalculusSession::IsSkipped).
    ZorWBIntegrateOperator(ZorWBFactory* factory, ZorWBExpressionType type, int tag, int n,
                           ZorWBExpression* const* children);
    ~ZorWBIntegrateOperator() override;
    ZORWB_OPERATOR_FAMILY_OVERRIDES
};

#endif
