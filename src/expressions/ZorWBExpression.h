#ifndef ZORWB_EXPRESSION_H
#define ZORWB_EXPRESSION_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpressionType.h"
#include "expressions/ZorWBParentList.h"
#include "qel/ZorQelArray.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

class ZorWBBlackBox;
class ZorWBFactory;
class ZorWBVariable;
struct ZorWBNodeAnnex;

using ZorQelListPZorWBVariable = ZorQelArray<ZorWBVariable*>;

// A node of an expression graph: a variable, a constant or an operator. Nodes
// are made and destroyed only by their ZorWBFactory; a node may be the child
// of several parents, so a formula is a directed acyclic graph.
//
// Each node caches its value (its buffer): GetValue answers from the buffer
// while it is valid and otherwise evaluates the nodes below it that are not
// valid, bottom-up and without recursion, so graphs of any depth evaluate on
// a small call stack. Changing a variable or a constant invalidates the
// buffers of exactly the nodes above it.
//
// Nothing throws: an operation that needs scratch memory and cannot get it
// gives up quietly (false, null, or no change).
//
// The virtual operations are declared in a fixed slot order; derived classes
// add their own after them.
class ZORWBX_API ZorWBExpression {
  public:
    // Bits of the flags word.
    static constexpr unsigned int NoBufferFlag = 4;     // never keeps a cached value
    static constexpr unsigned int BufferValidFlag = 8;  // the cached value is valid

    ZorWBExpression(const ZorWBExpression&) = delete;
    ZorWBExpression& operator=(const ZorWBExpression&) = delete;

    // ------------------------------------------------------------ virtual slots
  protected:
    virtual ~ZorWBExpression();

  public:
    virtual int GetNbOfChildren() const;
    virtual const ZorWBExpression* GetChild(int i) const;
    virtual ZorWBExpression* GetChild(int i);
    // No node class accepts new children after its construction.
    virtual bool AddChild(ZorWBExpression* child);

  protected:
    // Drops one occurrence of child (false in the base class).
    virtual bool RemoveChild(ZorWBExpression* child);

  public:
    virtual bool RemoveChild(int i);
    // Replaces child i; false for a null or foreign child, an index outside
    // the children, or a replacement that would make the node its own
    // descendant.
    virtual bool ReplaceChild(int i, ZorWBExpression* child);
    virtual void SetParameter(int i, double value);
    virtual double GetParameter(int i) const;
    virtual int GetNbOfParameters() const;
    // Sets present[index] to 1 for every variable of the subgraph; present
    // holds one byte per variable of the factory.
    virtual void FillPresentVariables(unsigned char* present) const;
    // The value field as it stands, without evaluating.
    virtual const ZorWBValue& GetExprValue() const;
    virtual void SetExprValue(const ZorWBValue& value);
    // Stores GetValue() through SetExprValue; with recursive, in every node of
    // the subgraph (parents before their children, each node once).
    virtual void UpdateExprValue(bool recursive);
    virtual void ResetBuffer(bool complete);
    // Substitutes exprs[i] for vars[i] (the first listed pair of a variable
    // wins): the result shares every node that does not change and copies
    // the ones that do (a Step keeps its parameters, a black-box call its
    // black box); null when a needed expression is null. Below the level
    // ZorWBLevel::NewPartialEval the result is always a copy (the older
    // evaluator worked on a duplicated equation root).
    virtual ZorWBExpression* PartialEval(ZorWBVariable** vars, ZorWBExpression** exprs, int n);
    // The same substitution at every level.
    virtual ZorWBExpression* Evaluate(int n, ZorWBVariable** vars, ZorWBExpression** exprs);
    // Structural equality: same types, equal constants, same variables, and
    // children matched in order, or without order for Sum, Product, Min and
    // Max (greedily: each child takes the first unmatched equal child).
    virtual bool IsEqualTo(const ZorWBExpression* other) const;
    // True when the variable does not occur in the subgraph.
    virtual bool IsFree(const ZorWBVariable* variable) const;
    virtual ZorWBExpression* Differentiate(ZorWBVariable* variable);
    // Removes from the factory the descendants used only by this node (see
    // ZorWBOperator); nothing for leaves.
    virtual void RemoveUniqueChildren();

  protected:
    virtual bool ValidateAllowBufferEval() const;
    // The value computed from the children's values, ignoring this node's
    // own buffer. Called by GetValue after the children are evaluated.
    virtual void DoEval(ZorWBValue& value) const = 0;
    // The real-number evaluation of the node from its children's reals.
    virtual double DoEval() const = 0;
    virtual ZorWBExpression* IntegrateTableProtected(ZorWBVariable* variable, bool& done);
    virtual ZorWBExpression* DifferentiateProtected(ZorWBVariable* variable);

  public:
    // ------------------------------------------------------------ identity
    ZorWBExpressionType GetType() const { return static_cast<ZorWBExpressionType>(_type); }
    int GetTag() const { return _tag; }
    ZorWBFactory* GetFactory() const { return _factory; }
    const ZorWBEnvironment& GetEnvironment() const;
    bool IsLeaf() const {
        return GetType() == ZorWBExpressionType::Variable ||
               GetType() == ZorWBExpressionType::Constant;
    }

    int GetNbOfParents() const { return _parents.GetSize(); }
    ZorWBExpression* GetParent(int i) const { return _parents.Get(i); }

    // ------------------------------------------------------------ evaluation
    // The node's value: the buffer when it is valid, else a fresh evaluation.
    const ZorWBValue& GetValue() const {
        if (_flags & BufferValidFlag) return _value;
        return ComputeValue();
    }
    void Eval(ZorWBValue& value) const { value = GetValue(); }
    // Evaluation with plain reals (no buffers): each operator applies the
    // <cmath> counterpart of its value function. Undefined values read as NaN.
    double Eval() const;
    // The copy of the last evaluated value; kept only below the "all" level,
    // elsewhere always the undefined value.
    const ZorWBValue& GetPreviousValue() const;

    bool AllowsBufferEval() const { return (_flags & NoBufferFlag) == 0; }
    bool IsBufferValid() const { return (_flags & BufferValidFlag) != 0; }
    // Forbids (allow false) or gives back buffering; with propagate the change
    // travels to the ancestors it concerns; with validate buffering comes
    // back only to nodes none of whose children is still unbuffered.
    void SetAllowBufferEval(bool allow, bool propagate, bool validate);
    // Invalidates this buffer and those of every ancestor.
    void ResetBufferComplete();
    // Invalidates this buffer only.
    void ResetBufferPartial() {
        if (AllowsBufferEval()) _flags = 0;
    }

    // ------------------------------------------------------------ analysis
    // No variable below (an operator without children counts as constant).
    bool IsConstant() const;
    // Polynomial of total degree at most 1 in its variables (constants included).
    bool IsLinear() const;
    // Polynomial of total degree at most 2 in its variables.
    bool IsQuadratic() const;
    // Polynomial in all its variables.
    bool IsPolynomial() const;
    // Polynomial in variable, the other variables counting as coefficients.
    bool IsPolynomial(const ZorWBVariable* variable) const;
    // The same, and its degree in variable (0 when it does not occur).
    bool IsPolynomial(const ZorWBVariable* variable, int& degree) const;
    // Quotient of two polynomials in variable.
    bool IsRationalFunction(const ZorWBVariable* variable) const;
    // The variables of the subgraph in index order, in a new array that the
    // caller releases with delete[] (null when there is none); the count.
    int FindPresentVariables(ZorWBVariable**& variables) const;
    // The same into a list, which is emptied first.
    int FindPresentVariables(ZorQelListPZorWBVariable& variables) const;

    // ------------------------------------------------------------ integration
    ZorWBExpression* Integrate(ZorWBVariable* variable, bool& done);
    ZorWBExpression* Integrate(ZorWBVariable* variable, ZorWBValue& low, ZorWBValue& high,
                               bool& done);
    ZorWBExpression* IntegrateTable(ZorWBVariable* variable, bool& done);

    // ------------------------------------------------------------ substitution
    ZorWBExpression* PartialEval(ZorWBVariable* variable, ZorWBExpression* expression);
    // In-place replacement in the subgraph; returns the resulting root (the
    // expression itself when this node is the one replaced). Nodes of the
    // replacing expression are left alone, so no cycle can form.
    ZorWBExpression* ReplaceVar(ZorWBVariable* variable, ZorWBExpression* expression);
    ZorWBExpression* ReplaceBBx(ZorWBBlackBox* blackBox, ZorWBExpression* expression);

    // ------------------------------------------------------------ lifetime
    // No parent, or exactly one parent that is exceptParent.
    bool CanBeRemoved(const ZorWBExpression* exceptParent) const;

    // ------------------------------------------------------------ properties
    int GetProperty(int i) const;
    void SetProperty(int i, int value);

  protected:
    ZorWBExpression(ZorWBFactory* factory, ZorWBExpressionType type, int tag);

    static bool AddParent(ZorWBExpression* child, ZorWBExpression* parent);
    static bool RemoveParent(ZorWBExpression* child, ZorWBExpression* parent);
    // After parent lost an unbuffered child: buffering comes back to parent
    // when no other child forbids it, and so to the ancestors that were
    // unbuffered only through it.
    static void GiveBufferingBack(ZorWBExpression* parent);
    static ZorWBExpression* Differentiate(ZorWBExpression* child, ZorWBVariable* variable);
    ZorWBExpression* Replace(ZorWBExpression* oldNode, ZorWBExpression* newNode);

    // The value of a node that the running evaluation has brought up to
    // date (or a fresh GetValue when it has not): what DoEval reads.
    static const ZorWBValue& ValueOf(const ZorWBExpression* node);
    // The real of a node in the running real-number evaluation (or a fresh
    // Eval when it has not been computed).
    static double RealOf(const ZorWBExpression* node);
    bool IsFactoryDestroying() const;
    // Tells the factory that the graph's structure changed (see
    // ZorWBFactory::GetStructureVersion).
    void NoteStructureChange() const;
    // The real reading of a value; NaN for an undefined one.
    static double RealReading(const ZorWBValue& value);

  private:
    friend class ZorWBFactory;
    friend class ZorWBOperator;
    friend class ZorWBConstant;
    friend class ZorWBVariable;
    friend class ZorWBGraphWalk;
    friend class ZorWBRealProgram;
    friend class ZorWBValueProgram;

    // Bits of the traits byte.
    static constexpr unsigned char HeldValueTrait = 1;  // a leaf's assigned value is in the annex
    static constexpr unsigned char FixedTrait = 2;      // a fixed variable
    static constexpr unsigned char HeapChildrenTrait = 4;  // an operator's children on the heap

    // Evaluates the nodes below this one that need it, and this one; the
    // number of nodes computed. The real evaluation leaves this node's real
    // in real.
    template <bool Real>
    int RunEvaluation(double* real) const;
    const ZorWBValue& ComputeValue() const;
    // Computes the value field from the children's values and records it
    // (previous value, valid flag); folded: the value is in place already
    // (left by the fold of a Sum, Product, Min or Max, see
    // ZorWBOperator::FoldValue, or by a shortcut of a compiled program).
    void FinishValue(bool folded) const;
    static int NextIfThenElseChild(const ZorWBExpression* node, int position, bool real);
    bool ValidatesWithoutOwnFlag() const;
    static ZorWBExpression* Substitute(ZorWBExpression* root, ZorWBVariable** vars,
                                       ZorWBExpression** exprs, int n);
    ZorWBExpression* PartialEvalFromDuplicate(ZorWBVariable** vars, ZorWBExpression** exprs, int n);
    void ResetBufferDownward();
    // The marks of the invalidation (see ZorWBInvalidation.cpp): cleared on
    // the marked nodes below node, or below the children of an IfThenElse
    // just made valid; kept right when the node becomes unbuffered or
    // buffered.
    static void UnmarkBelow(const ZorWBExpression* node);
    void UnmarkUntakenBranches() const;
    void MakeUnbuffered();
    void MakeBuffered();
    // The annex (see ZorWBNodeAnnex): as it is (null when none), or made
    // when missing (null when memory is short).
    ZorWBNodeAnnex* GetAnnex() const { return _parents.GetAnnex(); }
    ZorWBNodeAnnex* MakeAnnex();

    // The fields are ordered so that they pack: a node holds 72 bytes, an
    // operator 88 (see README.md, "Memory").
    ZorWBFactory* _factory;
    int _tag;
    // Number of the last graph walk that reached this node (see
    // ZorWBFactory::NewWalk), or, with ZorWBFactory::RealSlotMark, the slot
    // of its result in the running real-number evaluation.
    mutable unsigned int _walkMark = 0;
    // The type (all fit in a byte), the flags and the traits, in a byte each.
    unsigned char _type;
    mutable unsigned char _flags = 0;
    unsigned char _traits = 0;
    // Invalid, and so is every buffered node above (see ZorWBInvalidation.cpp).
    mutable bool _invalidAbove = true;
    // An operator's number of children; a variable's index.
    int _count = 0;
    // The buffer; a leaf's constant value too, unless HeldValueTrait says
    // that the buffer still holds an older one.
    mutable ZorWBValue _value;
    ZorWBParentList _parents;
};

#endif
