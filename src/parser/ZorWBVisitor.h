#ifndef ZORWB_VISITOR_H
#define ZORWB_VISITOR_H

#include <vector>

#include "ZorWBxExport.h"

class ZorWBConstNode;
class ZorWBEqNode;
class ZorWBModel;
class ZorWBNode;
class ZorWBOpNode;
class ZorWBVarNode;

// A walk over a parsed model. Each node's Accept calls the operation of its
// class; the operations return a status (0 when all is well). The default
// operations do nothing; VisitModel visits the equations in order.
class ZORWBX_API ZorWBVisitor {
  public:
    virtual ~ZorWBVisitor();

    virtual int VisitConstant(ZorWBConstNode& node);
    virtual int VisitVariable(ZorWBVarNode& node);
    virtual int VisitOperator(ZorWBOpNode& node);
    virtual int VisitEquation(ZorWBEqNode& node);
    virtual int VisitModel(ZorWBModel& model);

  protected:
    // Accepts every node of a subtree, parents before children and children
    // in order, with an explicit stack (a tree may be as deep as its text is
    // long). Missing children are skipped. Returns 0, or the first non-zero
    // status of a visit; the walk goes on after it.
    int VisitSubtree(ZorWBNode* root);

  private:
    // The stack of VisitSubtree, kept from one walk to the next (a visit may
    // start a walk of its own above the entries of the walk running).
    std::vector<ZorWBNode*> _pending;
};

#endif
