#ifndef ZORWB_NODE_H
#define ZORWB_NODE_H

#include <cstddef>
#include <memory>
#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpressionType.h"
#include "parser/ZorWBLocation.h"
#include "parser/ZorWBUnit.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

class ZorWBBlackBox;
class ZorWBEnvironment;
class ZorWBModel;
class ZorWBVisitor;
class ZorWBNode;

using ZorWBNodeList = ZorQelArray<ZorWBNode*>;

// The class of a parsed-model node.
enum ZorWBNodeKind : int {
    ZorWBConstantNode = 1,
    ZorWBVariableNode = 2,
    ZorWBOperatorNode = 3,
    ZorWBEquationNode = 4,
};

// The comparison a LessEqual operator node stands for (0 for the others).
enum ZorWBComparisonType : int {
    ZorWBNoComparison = 0,
    ZorWBComparisonLessEqual = 1,     // <=
    ZorWBComparisonLess = 2,          // <
    ZorWBComparisonGreaterEqual = 3,  // >=
    ZorWBComparisonGreater = 4,       // >
};

// A node of the parsed model: where it was read, the model environment it
// was made with, its parent and its index there, and the unit written after
// it. Nodes are made and owned by a ZorWBModel, in its arena
// (ZorWBModelArena); they never own each other, so a node's destructor does
// no walk at all.
//
// Every walk over a subtree (equality, constness, variable names) uses an
// explicit stack: a chain such as a+b+c+... builds a tree as deep as the
// text is long, whatever the parser's own stack limit.
class ZORWBX_API ZorWBNode {
  public:
    ZorWBNode(const ZorWBNode&) = delete;
    ZorWBNode& operator=(const ZorWBNode&) = delete;
    virtual ~ZorWBNode();

    // Appends the names of the variables at and below this node, each once,
    // skipping names the list already holds.
    virtual void FillPresentVariables(ZorQelArray<ZorQelString>& names) const;
    // Whether the subtree holds neither a variable nor a black-box call (nor
    // a missing operand): its value is fixed by the text alone.
    virtual bool IsConstant() const;
    // Structural equality: same classes, values, names, operator kinds and
    // comparison types, black boxes of the same name, same units, and equal
    // children in order. Locations are not compared.
    virtual bool IsEqual(const ZorWBNode* other) const;
    // Calls the visitor's operation for this node's class; returns its status.
    virtual int Accept(ZorWBVisitor& visitor) = 0;

    // Operands of an operator, terms of an equation; none for leaves.
    virtual int GetNbOfChildren() const { return 0; }
    virtual ZorWBNode* GetChild(int) const { return nullptr; }

    ZorWBNodeKind GetNodeKind() const { return _kind; }
    bool IsOperator() const { return _kind == ZorWBOperatorNode; }
    const ZorWBLocation& GetLocation() const { return _location; }
    void SetLocation(const ZorWBLocation& location) { _location = location; }
    const ZorWBEnvironment* GetEnvironment() const { return _environment; }

    ZorWBNode* GetParentNode() const { return _parent; }
    void SetParentNode(ZorWBNode* parent) { _parent = parent; }
    int GetItsIndexAsChild() const { return _indexAsChild; }
    void SetItsIndexAsChild(int index) { _indexAsChild = index; }

    // Attaches a unit: its name, where it was written, and its kind.
    void SetUnitData(const ZorWBLocation& unitLocation, const ZorQelString& unitName);
    bool HasUnit() const { return _unit != nullptr; }
    // Empty when the node has no unit.
    const ZorQelString& GetUnitName() const;
    // A new location when the node has no unit.
    const ZorWBLocation& GetUnitLocation() const;
    // "Distance", "Angle", "Ambiguous", or empty (no unit or an unknown one).
    const ZorQelString& GetUnitKind() const;
    // The same as a code: None for no unit or an unknown one.
    ZorWBUnitKind GetUnitKindCode() const { return _unit ? _unit->kind : ZorWBUnitKind::None; }

    // A digest of the node's structure (units aside) that equal subtrees
    // share; it lets the model find equal black-box calls without comparing
    // against each one.
    std::size_t GetShapeHash() const { return _shapeHash; }

  protected:
    ZorWBNode(ZorWBNodeKind kind, const ZorWBLocation& location,
              const ZorWBEnvironment* environment);
    // Equality of the node's own data, children aside (their count included).
    virtual bool HasSameData(const ZorWBNode& other) const = 0;
    void SetShapeHash(std::size_t hash) { _shapeHash = hash; }

  private:
    friend class ZorWBModelHomogeneity;
    struct UnitData {
        ZorQelString name;
        ZorWBLocation location;
        ZorWBUnitKind kind;
    };

    ZorWBNodeKind _kind;
    int _indexAsChild = -1;
    // The unit kind of the subtree, as the last walk that recorded kinds
    // found it (see ZorWBModelHomogeneity::RecordKinds).
    mutable ZorWBUnitKind _subtreeKind = ZorWBUnitKind::None;
    ZorWBLocation _location;
    const ZorWBEnvironment* _environment;
    ZorWBNode* _parent = nullptr;
    std::unique_ptr<UnitData> _unit;  // only nodes that carry a unit pay for it
    std::size_t _shapeHash = 0;
};

// A number: an integer, a real, or Pi (held as the fraction 1/1 of Pi).
class ZORWBX_API ZorWBConstNode : public ZorWBNode {
  public:
    const ZorWBValue& GetValue() const { return _value; }
    // Whether the constant carries a unit.
    bool IsADimensionalConstant() const { return HasUnit(); }
    // Whether the value is Pi itself.
    bool IsPi() const;

    bool IsConstant() const override { return true; }
    int Accept(ZorWBVisitor& visitor) override;

  protected:
    bool HasSameData(const ZorWBNode& other) const override;

  private:
    friend class ZorWBModel;
    ZorWBConstNode(const ZorWBLocation& location, const ZorWBEnvironment* environment,
                   const ZorWBValue& value);

    ZorWBValue _value;
};

// One occurrence of a variable.
class ZORWBX_API ZorWBVarNode : public ZorWBNode {
  public:
    const ZorQelString& GetName() const { return _name; }

    bool IsConstant() const override { return false; }
    int Accept(ZorWBVisitor& visitor) override;

  protected:
    bool HasSameData(const ZorWBNode& other) const override;

  private:
    friend class ZorWBModel;
    ZorWBVarNode(const ZorWBLocation& location, const ZorWBEnvironment* environment,
                 const ZorQelString& name);

    ZorQelString _name;
    ZorWBVarNode* _nextOfName = nullptr;  // the next node of the same name
};

// An operator, a function, a comparison or a black-box call, over its
// children in order. A child may be missing (null) in models built by hand;
// the parser never makes one.
class ZORWBX_API ZorWBOpNode final : public ZorWBNode {
  public:
    ZorWBExpressionType GetType() const { return _type; }
    ZorWBComparisonType GetComparisonType() const { return _comparison; }
    // The black box a BlackBox node calls (not owned); null otherwise.
    ZorWBBlackBox* GetBlackBox() const { return _blackBox; }

    int GetNbOfChildren() const override { return _nbOfChildren; }
    ZorWBNode* GetChild(int i) const override {
        return i >= 0 && i < _nbOfChildren ? _children[i] : nullptr;
    }
    int Accept(ZorWBVisitor& visitor) override;

  protected:
    bool HasSameData(const ZorWBNode& other) const override;

  private:
    friend class ZorWBModel;
    // The children are an array that the model keeps (in its arena).
    ZorWBOpNode(const ZorWBLocation& location, const ZorWBEnvironment* environment,
                ZorWBExpressionType type, ZorWBComparisonType comparison, int nbOfChildren,
                ZorWBNode** children, ZorWBBlackBox* blackBox);

    ZorWBExpressionType _type;
    ZorWBComparisonType _comparison;
    int _nbOfChildren;
    ZorWBNode** _children;
    ZorWBBlackBox* _blackBox;
};

// An equation: a left term, a relation and a right term, or a single term
// (type 0, no right term). The model links its equations in source order.
class ZORWBX_API ZorWBEqNode : public ZorWBNode {
  public:
    ZorWBNode* GetLeftTerm() const { return _left; }
    ZorWBNode* GetRightTerm() const { return _right; }
    ZorWBEquationType GetWBEqType() const { return _type; }
    int GetId() const { return _id; }
    ZorWBEqNode* GetNext() const { return _next; }
    ZorWBEqNode* GetPrev() const { return _prev; }

    bool IsConstant() const override { return false; }
    // The terms: the left one, then the right one when there is one.
    int GetNbOfChildren() const override { return _right ? 2 : 1; }
    ZorWBNode* GetChild(int i) const override;
    int Accept(ZorWBVisitor& visitor) override;

  protected:
    bool HasSameData(const ZorWBNode& other) const override;

  private:
    friend class ZorWBModel;
    ZorWBEqNode(const ZorWBLocation& location, const ZorWBEnvironment* environment, ZorWBNode* left,
                ZorWBEquationType type, ZorWBNode* right, int id);

    ZorWBNode* _left;
    ZorWBNode* _right;
    ZorWBEquationType _type;
    int _id;
    ZorWBEqNode* _prev = nullptr;
    ZorWBEqNode* _next = nullptr;
};

#endif
