#ifndef ZORWB_FACTORYGRAPH_H
#define ZORWB_FACTORYGRAPH_H

#include <unordered_set>
#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpressionType.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"

class ZorWBEquation;
class ZorWBExpression;
class ZorWBFactory;

// The nodes already drawn, in drawing order, with constant-time lookup.
class ZORWBX_API ZorWBVisitedExpressions {
  public:
    // False when the node was already there.
    bool Add(const ZorWBExpression* node);
    bool Contains(const ZorWBExpression* node) const { return _set.count(node) > 0; }
    int GetSize() const { return static_cast<int>(_list.size()); }
    const ZorWBExpression* Get(int i) const {
        return i >= 0 && i < GetSize() ? _list[static_cast<std::size_t>(i)] : nullptr;
    }

  private:
    std::vector<const ZorWBExpression*> _list;
    std::unordered_set<const ZorWBExpression*> _set;
};

// Draws the graph below an expression, an equation, or every equation of a
// factory into ".WBGraph" files for a graph viewer, and as Graphviz DOT.
//
// Files are written only when the environment variables "VTS_LOG_NAME" (the
// log name that starts every file name) and "QRM_VTS_OUT" (the directory)
// are both set and not empty: the file is the log name, "_" and the graph's
// name when it has one, and ".WBGraph", in that directory.
//
// A file holds "WBGraph", "start", one line per node and per edge, and
// "end". Nodes are named by what stays the same from one run to the next:
// "N" and the node's tag, "E" and the equation's id. A node shared by
// several parents is drawn once, with an edge from each parent. Graphs of
// any depth are drawn without recursion.
//
// Value texts in labels are the replay texts of values ("(-3)", "[1, 2]",
// "Pi"; see ZorWBValueText).
class ZORWBX_API ZorWBFactoryGraph {
  public:
    enum Kind { ExpressionGraph = 0, EquationGraph = 1, FactoryGraph = 2 };

    explicit ZorWBFactoryGraph(ZorWBFactory* factory, const ZorQelString& name = ZorQelString());
    explicit ZorWBFactoryGraph(const ZorWBEquation* equation,
                               const ZorQelString& name = ZorQelString());
    explicit ZorWBFactoryGraph(const ZorWBExpression* root,
                               const ZorQelString& name = ZorQelString());

    // A factory graph writes one file per equation, in list order, named
    // with the graph's name followed by "_E" and the equation's position
    // (0, 1, ...); nothing without a factory or without equations. Any
    // other graph writes its one file.
    void GenerateWBTreeFile(bool withValues);
    // One file for this graph's equation (if any) and root.
    void GenerateBasicWBTreeFile(bool withValues);
    // Writes the line of node e, its edges, and, depth first, every child
    // not yet in visited (adding it there). Nothing for a null node or
    // stream.
    void ChildTreatment(const ZorWBExpression* e, bool& withValues, ZorQelStream* stream,
                        ZorWBVisitedExpressions& visited);

    // Writes the whole graph as one Graphviz digraph (a factory graph draws
    // all its equations, sharing their common nodes); false when the stream
    // refuses the text.
    bool WriteDot(ZorQelStream& stream, bool withValues) const;

    // The path GenerateBasicWBTreeFile writes to, empty when the
    // environment does not ask for dumps.
    ZorQelString GetFilePath() const;

    Kind GetKind() const { return _kind; }
    const ZorQelString& GetName() const { return _name; }
    void SetName(const ZorQelString& name) { _name = name; }

    // "N" and the tag; "E" and the id.
    static ZorQelString NodeIdentity(const ZorWBExpression* node);
    static ZorQelString EquationIdentity(const ZorWBEquation* equation);
    // "x", "=0", "!=0", "<=0", "<0", ">=0", ">0", "Min", "Max"; "?" otherwise.
    static const char* EquationLabel(ZorWBEquationType type);
    // The operator's label ("+", "./. ", "BB"), "non defined operator" for
    // the types without one.
    static const char* OperatorLabel(ZorWBExpressionType type);
    // Implication, Quotient, Power, Root and Mod: the edge to the first
    // child is drawn with a diamond, the others with an empty diamond.
    static bool IsOrderedOperator(ZorWBExpressionType type);

  private:
    // The root to draw: the equation's current root for an equation graph.
    const ZorWBExpression* CurrentRoot() const;

    ZorWBFactory* _factory = nullptr;
    const ZorWBExpression* _root = nullptr;
    const ZorWBEquation* _equation = nullptr;
    ZorQelString _name;
    Kind _kind;
};

#endif
