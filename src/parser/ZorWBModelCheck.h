#ifndef ZORWB_MODELCHECK_H
#define ZORWB_MODELCHECK_H

#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ZorWBxExport.h"
#include "parser/ZorWBModelHomogeneity.h"
#include "parser/ZorWBVisitor.h"

class ZorWBLocation;
class ZorWBParserMessenger;

// The semantic check run after parsing. It visits the equations in order,
// and in each the nodes of the left then the right term, parents before
// children, and reports through the messenger:
// - constants, and any other node written with a unit: a unit name that is
//   neither a distance, an angle nor an ambiguous unit gives "semantic
//   error, unknown unit" at the unit;
// - variables: a name that is empty or starts with a quote character (such
//   identifiers exist only so that the inch and foot marks scan) gives
//   "semantic error, unknown variable name" at the variable; a variable
//   written with a distance unit in one place and an angle unit in another
//   gives "semantic error, inconsistent unit" at the later unit;
// - operators: a missing operand gives "internal error, unit computation not
//   available" at the operator, since its unit kind cannot be computed; an
//   operator whose operands have kinds that cannot be combined (neither of
//   them already inhomogeneous, so each clash is told once, where it
//   arises) gives "semantic error, inconsistent unit" at the operator; an
//   operand that is Pi written with an angle unit other than rad or with an
//   ambiguous unit ("2 Pi deg": 2 Pi degrees or 2 Pi radians?) gives
//   "semantic error, ambiguous Pi" at that unit (a term of an equation that
//   is such a Pi is told by the equation);
// - a node shared by several uses (a repeated black-box call) is visited at
//   each use, and each of its problems is told once;
// - equations: the equation judgement (ZorWBModelHomogeneity) is reported as
//   "semantic error, inconsistent unit" at the equation only when it rests
//   on known kinds: a side whose kind is Unsolved cannot be judged (any
//   function or power is Unsolved, and "sin(30 deg) = x" must stay
//   acceptable), and an Inhomogeneous side has been reported at its
//   operator already. The judgement is asymmetric by design: "x = 5 mm;"
//   passes while "5 mm = x;" and "x = 30 deg;" are reported.
class ZORWBX_API ZorWBModelCheck : public ZorWBVisitor {
  public:
    ZorWBModelCheck(ZorWBModel* model, ZorWBParserMessenger* messenger);

    // Checks the whole model: 0 when nothing was reported, 0x80004005 when
    // something was, or when the model or the messenger is missing.
    int Run();
    int GetNbOfReportedErrors() const { return _reported; }

    int VisitConstant(ZorWBConstNode& node) override;
    int VisitVariable(ZorWBVarNode& node) override;
    int VisitOperator(ZorWBOpNode& node) override;
    int VisitEquation(ZorWBEqNode& node) override;
    int VisitModel(ZorWBModel& model) override;

  private:
    // Reports a problem of a node at a location, once per node and message.
    void Report(const ZorWBNode& node, const ZorWBLocation& location, const char* message);
    void CheckUnitName(const ZorWBNode& node);
    void CheckAmbiguousPi(const ZorWBNode* node);
    ZorWBUnitKind KindOf(const ZorWBNode* node) const;
    // Whether a term holds nothing the check could report: no unit, no
    // missing operand, no name that is not a variable's.
    bool IsPlain(const ZorWBNode* term);

    ZorWBModel* _model;
    ZorWBParserMessenger* _messenger;
    std::unordered_map<std::string, ZorWBUnitKind> _variableKinds;
    std::set<std::pair<const ZorWBNode*, const char*>> _told;
    int _reported = 0;
    std::vector<const ZorWBNode*> _plainStack;  // of IsPlain, kept for the next term
};

#endif
