#ifndef ZORWB_MODELGRAPH_H
#define ZORWB_MODELGRAPH_H

#include "ZorWBxExport.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"

class ZorWBLocation;
class ZorWBModel;
class ZorWBNode;

// Draws a parsed model (before its conversion into a factory) as a graph:
// one node per statement and per node of its terms, each labelled with what
// it reads and where it was read, in the two formats of the factory's graph
// dumps (ZorWBGraphText): the ".WBGraph" text and Graphviz DOT.
//
// Nodes and labels:
//   statement    "S" and its id   Msquare   its relation ("=", "<=", ...) or
//                                          ";" for a single term
//   operator     "M" and a number ellipse   "+", "-", "*", "/", "^", "neg"
//                                           (unary minus), "==", "!=", "<",
//                                           "<=", ">", ">=", "and", "or",
//                                           "!", "if", or the function name
//   black box    "M" and a number hexagon   its name and "()"
//   number       "M" and a number octagon   its text and unit ("10 mm")
//   identifier   "M" and a number box       its name
// A node carrying a unit that is not a number has its label bracketed and
// followed by the unit ("(+) deg"). In a ".WBGraph" line the label is
// followed by " @" and the location, in DOT the location is the label's
// second line; a location reads "LINE:COLUMN-LINE:COLUMN", columns counted
// from 1 (both ends included), as the diagnostics of wbx check give them.
//
// The numbers of the nodes follow a depth-first walk of the statements in
// order, so two drawings of one text are identical. A node that several
// parents share (the parser makes none, a model built by hand may) is drawn
// once with an edge from each parent. Edges to the operands of
// ordered operators (the two terms of a statement, minus, quotient, power,
// root, mod, comparisons, implication) mark the first with a diamond and
// the others with an empty diamond. Any depth is drawn, with an explicit
// stack.
class ZORWBX_API ZorWBModelGraph {
  public:
    explicit ZorWBModelGraph(const ZorWBModel& model) : _model(model) {}

    // "WBGraph", "start", the lines, "end". False when the stream refuses
    // the text.
    bool WriteWBGraph(ZorQelStream& stream) const;
    // "digraph WBModel {", the lines, "}".
    bool WriteDot(ZorQelStream& stream) const;

    // The label of a node, without its location (see above); "?" for null.
    static ZorQelString NodeLabel(const ZorWBNode* node);
    // "LINE:COLUMN-LINE:COLUMN", columns from 1.
    static ZorQelString LocationText(const ZorWBLocation& location);

  private:
    const ZorWBModel& _model;
};

#endif
