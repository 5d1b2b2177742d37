#include "parser/ZorWBVisitor.h"

#include <vector>

#include "parser/ZorWBModel.h"
#include "parser/ZorWBNode.h"

ZorWBVisitor::~ZorWBVisitor() = default;

int ZorWBVisitor::VisitConstant(ZorWBConstNode&) {
    return 0;
}

int ZorWBVisitor::VisitVariable(ZorWBVarNode&) {
    return 0;
}

int ZorWBVisitor::VisitOperator(ZorWBOpNode&) {
    return 0;
}

int ZorWBVisitor::VisitEquation(ZorWBEqNode&) {
    return 0;
}

int ZorWBVisitor::VisitModel(ZorWBModel& model) {
    int status = 0;
    for (ZorWBEqNode* equation = model.GetFirstEquation(); equation;
         equation = equation->GetNext()) {
        int result = equation->Accept(*this);
        if (status == 0) status = result;
    }
    return status;
}

int ZorWBVisitor::VisitSubtree(ZorWBNode* root) {
    int status = 0;
    std::size_t base = _pending.size();
    _pending.push_back(root);
    while (_pending.size() > base) {
        ZorWBNode* node = _pending.back();
        _pending.pop_back();
        if (!node) continue;
        int result = node->Accept(*this);
        if (status == 0) status = result;
        for (int i = node->GetNbOfChildren() - 1; i >= 0; --i)
            _pending.push_back(node->GetChild(i));
    }
    return status;
}
