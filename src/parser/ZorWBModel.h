#ifndef ZORWB_MODEL_H
#define ZORWB_MODEL_H

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBBlackBox.h"
#include "parser/ZorWBHash.h"
#include "parser/ZorWBModelArena.h"
#include "parser/ZorWBNode.h"
#include "values/ZorWBEnvironment.h"

class ZorWBExpression;
class ZorWBFactory;
class ZorWBVariable;
class ZorWBVisitor;

using ZorWBVarNodeTable = ZorQelArray<ZorWBVarNode*>;
using ZorWBVariableTable = ZorQelArray<ZorWBVariable*>;

// The parsed form of a text of equations: the nodes, the equations in source
// order, the variable nodes and the black boxes declared by calls. The terms
// are trees, except that the parser makes a black-box call repeated with
// equal arguments one node, shared by its uses (its parent is the operator
// of its last use).
//
// The model owns every node it creates, for its whole life (the nodes of a
// removed equation's terms included). They live in its arena
// (ZorWBModelArena), with the child arrays of the operators: destroying the
// model ends each node, with no walk over the trees, and frees the arena's
// few blocks. It owns a black box only when it is given one through
// AdoptBlackBox; the parser hands each new black box either to the caller's
// list or, when the caller gave none, to the model.
//
// Lookups of variables, equations and black-box calls are hashed, so that
// building a model is linear in its size.
class ZORWBX_API ZorWBModel {
  public:
    // The environment takes the behaviour level of the global parameters.
    ZorWBModel();
    explicit ZorWBModel(unsigned int level);
    ZorWBModel(const ZorWBModel&) = delete;
    ZorWBModel& operator=(const ZorWBModel&) = delete;
    virtual ~ZorWBModel();

    const ZorWBEnvironment& GetEnvironment() const { return _environment; }
    unsigned int GetWBLevel() const { return _environment.GetWBLevel(); }

    // Creation. Each returns null when memory is short or an argument is
    // unusable: an operator kind that is not an operator (outside 3..47, or
    // BlackBox, which DeclareBlackBox makes), a comparison type outside 0..4,
    // a null black box. An operator's children get it as parent and their
    // index; a missing (null) child is kept as missing.
    ZorWBConstNode* CreateConstant(const ZorWBLocation& location, const ZorWBValue& value);
    ZorWBConstNode* CreateConstant(const ZorWBLocation& location, const ZorWBValue& value,
                                   const ZorWBLocation& unitLocation, const ZorQelString& unitName);
    ZorWBVarNode* CreateVariable(const ZorWBLocation& location, const ZorQelString& name);
    ZorWBOpNode* CreateOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                                const ZorWBNodeList& children);
    ZorWBOpNode* CreateOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                                ZorWBComparisonType comparison, const ZorWBNodeList& children);
    // The same over n children read from an array (null when n < 0, or when
    // children is null while n > 0).
    ZorWBOpNode* CreateOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                                ZorWBComparisonType comparison, int n, ZorWBNode* const* children);
    // A BlackBox operator node calling the black box over the arguments; the
    // black box is recorded among the model's declared black boxes (once).
    ZorWBOpNode* DeclareBlackBox(const ZorWBLocation& location, ZorWBBlackBox* blackBox,
                                 const ZorWBNodeList& arguments);
    // A black-box node calling a black box of that name with arguments equal
    // to these (node IsEqual), or null.
    ZorWBOpNode* GetBBxOp(const ZorQelString& name, const ZorWBNodeList& arguments) const;
    // Makes the model the owner of a black box: it is deleted with the model.
    void AdoptBlackBox(ZorWBBlackBox* blackBox);

    // Appends an equation with the next id (ids count from 0 in order of
    // addition). The two-term form needs both terms and a relation type
    // 1..6, or a left term and an objective type (7 minimise, 8 maximise),
    // whose right term may be null (the objective is then the left term
    // alone, else their difference); the one-term form gets type 0, no right
    // term and a new location. Null when a needed term is missing or the
    // type is neither a relation nor an objective.
    ZorWBEqNode* AddEquation(const ZorWBLocation& location, ZorWBNode* left, ZorWBEquationType type,
                             ZorWBNode* right);
    ZorWBEqNode* AddEquation(ZorWBNode* term);

    // The first variable node of that name, or null.
    ZorWBVarNode* GetVariable(const ZorQelString& name) const;
    // The variable node of that name read at that location, or null.
    ZorWBVarNode* GetVariable(const ZorQelString& name, const ZorWBLocation& location) const;
    // Appends every node of that name in order of creation; returns their number.
    int GetVariable(const ZorQelString& name, ZorQelArray<ZorWBVarNode*>& list) const;
    int GetNbOfVariables() const { return _nbOfVariables; }
    int GetNbOfDifferentVariables() const { return static_cast<int>(_variablesByName.size()); }

    ZorWBEqNode* GetFirstEquation() const { return _firstEquation; }
    ZorWBEqNode* GetLastEquation() const { return _lastEquation; }
    ZorWBEqNode* GetNextEquation(const ZorWBEqNode* equation) const;
    ZorWBEqNode* GetPrevEquation(const ZorWBEqNode* equation) const;
    ZorWBEqNode* GetEquationById(int id) const;
    int GetNbOfEquations() const { return _nbOfEquations; }
    // Unlinks and deletes an equation of this model and nulls the pointer:
    // 0, or 0x80004005 when the equation is not one of this model's.
    int RemoveEquation(ZorWBEqNode*& equation);

    // Appends the declared black boxes in order of declaration.
    void GetBlackBoxes(ZorQelListPZorWBBlackBox* list) const;
    int GetNbOfNodes() const { return _nbOfNodes; }

    // ------------------------------------------------------------ conversion
    // Conversion into factory expressions. Every operation returns 0 on
    // success and 0x80004005 on failure; the nodes made before a failure stay
    // in the factory, and GetFailedNode tells which node could not be
    // converted.
    //
    // Nodes convert as follows: a constant becomes a factory constant of its
    // value; a variable the factory variable of its name (made and named when
    // the factory has none), or, when tables are given, the variable of
    // `variables` at the node's position in `variableNodes` (a node missing
    // from the table fails); Minus becomes CreateSub of its two operands;
    // UnaryMinus the product of -1 and its operand, a constant operand giving
    // the negated constant and a product led by a constant giving the product
    // led by the negated constant; a LessEqual node CreateLessEqual, CreateLess,
    // CreateGreaterEqual or CreateGreater by its comparison type (no
    // comparison type reads as <=); a black-box call the declaration of its
    // black box over the converted arguments, passing whether the black box
    // is internal (the call fails when an equation of the factory bears the
    // black box's name and its theoretical variable list does not hold one
    // variable per argument); every other operator the factory operator of
    // its kind (CreateOperator), which fails on a wrong number of operands.
    //
    // Units. With applyUnits, quantities are converted to the base units
    // millimetre and radian by the factors of ZorWBGetUnitFactor: a number
    // with a unit becomes one constant holding the converted value (an
    // integer while the factor is an integer and the result fits, a real
    // otherwise: "1 in" is 25.4, "2 km" 2000000, "30 deg" Pi/6), and any
    // other node with a unit (a bracketed expression, "(a + b) deg") is
    // multiplied by a leading constant holding the factor; units of factor 1
    // (mm, rad) change nothing. An unknown unit fails. An ambiguous mark (' or
    // ") reads as a length (foot, inch) or an angle (arc minute, arc second)
    // by its context: walking up from the mark, the first operator that adds,
    // compares or chooses between its operands (+, -, min, max, dim, mod, the
    // branches of if-then-else, ==, !=, <, <=, >, >=) and has another operand
    // of kind Distance or Angle decides; failing that, the other term of the
    // equation; failing that, the mark is an angle. So "x = 5' + 2 mm" is
    // five feet, "a = 30' + 1 deg" thirty arc minutes and "x = 5'" five arc
    // minutes. Without applyUnits, numbers keep their written values and
    // units are ignored.
    //
    // Black boxes. The factory nodes call the model's black boxes; the caller
    // keeps them alive as long as the factory (ZorWBParser hands them to the
    // factory by marking them internal).

    // Adds one factory equation per model equation, in order and with the
    // same type, and appends each new equation id to equationIds. The root is
    // CreateSub(left, right) (AddEquation with both terms) whatever the right
    // term, so "e = 0;" has the root Sum(e, 0), and the left term alone for a
    // one-term equation. Stops at the first equation that cannot be
    // converted.
    int FillFactory(ZorWBFactory& factory, ZorQelIntArray& equationIds, bool applyUnits = true,
                    const ZorWBVarNodeTable* variableNodes = nullptr,
                    const ZorWBVariableTable* variables = nullptr);
    // The same without adding equations: appends to expressions the root that
    // each equation would get.
    int FillFactory(ZorWBFactory& factory, bool applyUnits, const ZorWBVarNodeTable* variableNodes,
                    const ZorWBVariableTable* variables,
                    ZorQelArray<ZorWBExpression*>& expressions);
    // Converts one subtree into expression (null on failure). An equation node
    // is not an expression: 1, and expression null. Ambiguous marks are read
    // as within the subtree's topmost term, without the other side of its
    // equation.
    int ConvertNodeToExpr(const ZorWBNode* node, ZorWBFactory& factory,
                          ZorWBExpression*& expression, bool applyUnits = true,
                          const ZorWBVarNodeTable* variableNodes = nullptr,
                          const ZorWBVariableTable* variables = nullptr);
    // The factory variable that a variable node stands for (see above).
    int ConvertVarNodeToExpr(const ZorWBVarNode* node, ZorWBFactory& factory,
                             ZorWBVariable*& variable,
                             const ZorWBVarNodeTable* variableNodes = nullptr,
                             const ZorWBVariableTable* variables = nullptr);
    // The position of a node in a table of variable nodes, or -1.
    static int Locate(const ZorWBVarNode* node, const ZorWBVarNodeTable& table);
    // The node whose conversion failed last (null after a success).
    const ZorWBNode* GetFailedNode() const { return _failedNode; }

    // Calls the visitor's VisitModel.
    virtual int Accept(ZorWBVisitor& visitor);
    // Same number of equations, pairwise equal (node IsEqual).
    bool IsEqual(const ZorWBModel& other) const;

  private:
    friend class ZorWBModelConversion;

    struct Place {
        const std::string* name;
        ZorWBLocation location;
    };
    struct PlaceHash {
        std::size_t operator()(const Place& place) const;
    };
    struct PlaceEqual {
        bool operator()(const Place& a, const Place& b) const {
            return *a.name == *b.name && a.location.Compare(b.location);
        }
    };

    // A node made in the arena and listed for destruction; null when memory
    // is short.
    template <class Node, class... Arguments>
    Node* Make(Arguments&&... arguments);
    ZorWBOpNode* MakeOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                              ZorWBComparisonType comparison, int n, ZorWBNode* const* children,
                              ZorWBBlackBox* blackBox);
    ZorWBEqNode* NewEquation(const ZorWBLocation& location, ZorWBNode* left, ZorWBEquationType type,
                             ZorWBNode* right);
    ZorWBEqNode* Append(ZorWBEqNode* equation);
    static std::size_t BlackBoxCallKey(const ZorQelString& name, int n,
                                       ZorWBNode* const* arguments);

    ZorWBEnvironment _environment;
    ZorWBModelArena _arena;
    // Every node but the equations, for their destruction: in chunks in the
    // arena, the last one first, so that listing a node never moves others.
    struct NodeChunk {
        static constexpr int Capacity = 250;
        NodeChunk* previous;
        int size;
        ZorWBNode* nodes[Capacity];
    };
    bool List(ZorWBNode* node);
    NodeChunk* _lastChunk = nullptr;
    int _nbOfNodes = 0;
    // The equations by id (null once removed).
    std::vector<ZorWBEqNode*> _equationsById;
    int _nbOfEquations = 0;
    ZorWBEqNode* _firstEquation = nullptr;
    ZorWBEqNode* _lastEquation = nullptr;
    int _nextEquationId = 0;

    // The variable nodes of each name in order of creation: the first and the
    // last of a chain that the nodes link.
    struct NameChain {
        ZorWBVarNode* first;
        ZorWBVarNode* last;
        int count;
    };
    std::unordered_map<std::string, NameChain, ZorWBTextHash> _variablesByName;
    int _nbOfVariables = 0;
    // Variable nodes by place. The nodes a parse reads come at strictly
    // increasing places, so a lookup beyond the furthest node read so far
    // misses without any index; the index is built on the first lookup that
    // may hit (a text parsed into a model that holds another one).
    bool MayHoldPlace(const ZorWBLocation& location) const;
    bool IndexPlaces() const;
    int _furthestLine = 0;
    int _furthestColumn = -1;
    mutable std::unordered_map<Place, ZorWBVarNode*, PlaceHash, PlaceEqual> _variablesByPlace;
    mutable bool _placesIndexed = false;

    std::unordered_multimap<std::size_t, ZorWBOpNode*> _blackBoxCalls;
    std::vector<ZorWBBlackBox*> _declaredBlackBoxes;
    std::unordered_set<const ZorWBBlackBox*> _declaredSet;
    std::unordered_map<const ZorWBBlackBox*, std::unique_ptr<ZorWBBlackBox>> _ownedBlackBoxes;

    const ZorWBNode* _failedNode = nullptr;
};

#endif
