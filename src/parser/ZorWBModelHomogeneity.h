#ifndef ZORWB_MODELHOMOGENEITY_H
#define ZORWB_MODELHOMOGENEITY_H

#include <unordered_map>

#include "ZorWBxExport.h"
#include "parser/ZorWBNode.h"
#include "parser/ZorWBUnit.h"
#include "qel/ZorQelString.h"

class ZorWBEqNode;
class ZorWBModel;

// The unit kinds of parsed subtrees and the judgement of equations.
//
// A leaf has the kind of its own unit (none when it has none or an unknown
// one); an operator with two operands combines their kinds by the rules of
// Sum and Minus, Product and Quotient (every other two-operand operator is
// Unsolved); an operator with another number of operands is Unsolved, and
// one with two operands of which one is missing is Inhomogeneous, as is a
// missing node. A unit written on an operator (as in "(a + b) deg") is not
// read by these rules.
//
// With the global trace level at 1 or more, every step is written to the
// global trace stream, one line each.
//
// Subtrees are walked with an explicit stack, so that their depth is not
// limited by the machine stack.
class ZORWBX_API ZorWBModelHomogeneity {
  public:
    using NodeKinds = std::unordered_map<const ZorWBNode*, ZorWBUnitKind>;

    // The kind of a subtree: "None", "Distance", "Angle", "Ambiguous",
    // "Unsolved" or "Inhomogeneous".
    static ZorQelString FillHomogeneity(ZorWBNode* node);
    // 0 when the equation is homogeneous, 1 when it is not, 0x80004005 when
    // it has neither term.
    static int CheckHomogeneity(ZorWBEqNode& equation);
    // Judges every equation: 0 when all are homogeneous, 1 when one is not,
    // 0x80004005 when one has no term (the worst result wins).
    static int CheckHomogeneity(ZorWBModel& model);

    // The kind of a subtree as FillHomogeneity computes (and traces) it, and
    // whether the subtree is constant (node IsConstant), in one pass; when
    // kinds is given, it receives the kind of every node of the subtree,
    // those below operators that the rules do not look into included.
    static ZorWBUnitKind ComputeKind(const ZorWBNode* node, bool& isConstant,
                                     NodeKinds* kinds = nullptr);
    // The same, recording the kind of every node of the subtree in the node
    // itself, where RecordedKind reads it until the next recording walk
    // over it: the check and the conversion read kinds without a table.
    static ZorWBUnitKind RecordKinds(const ZorWBNode* node, bool& isConstant);
    // Whether the walks write their steps to the trace (see above).
    static bool IsTraced();
    static ZorWBUnitKind RecordedKind(const ZorWBNode* node) {
        return node ? node->_subtreeKind : ZorWBUnitKind::None;
    }
    // The equation judgement from the kinds and constness of its terms.
    static int JudgeEquation(bool hasLeft, ZorWBUnitKind left, bool leftConstant, bool hasRight,
                             ZorWBUnitKind right, bool rightConstant);

  private:
    class KindWalk;
};

#endif
