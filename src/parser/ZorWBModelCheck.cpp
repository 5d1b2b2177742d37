#include "parser/ZorWBModelCheck.h"

#include "parser/ZorWBModel.h"
#include "parser/ZorWBNode.h"
#include "parser/ZorWBParserMessenger.h"

namespace {

const char* const UnknownVariableName = "semantic error, unknown variable name";
const char* const UnknownUnit = "semantic error, unknown unit";
const char* const InconsistentUnit = "semantic error, inconsistent unit";
const char* const AmbiguousPi = "semantic error, ambiguous Pi";
const char* const UnitComputationNotAvailable = "internal error, unit computation not available";

bool IsDefinite(ZorWBUnitKind kind) {
    return kind == ZorWBUnitKind::Distance || kind == ZorWBUnitKind::Angle;
}

bool IsUnjudgeable(ZorWBUnitKind kind) {
    return kind == ZorWBUnitKind::Unsolved || kind == ZorWBUnitKind::Inhomogeneous;
}

}  // namespace

ZorWBModelCheck::ZorWBModelCheck(ZorWBModel* model, ZorWBParserMessenger* messenger)
    : _model(model), _messenger(messenger) {}

int ZorWBModelCheck::Run() {
    if (!_model || !_messenger) return ZorWBParserResult::Failure;
    _model->Accept(*this);
    return _reported ? ZorWBParserResult::Failure : ZorWBParserResult::Success;
}

void ZorWBModelCheck::Report(const ZorWBNode& node, const ZorWBLocation& location,
                             const char* message) {
    if (!_messenger || !_told.emplace(&node, message).second) return;
    _messenger->ReportError(&location, message);
    ++_reported;
}

// Recorded in the nodes of the equation being visited.
ZorWBUnitKind ZorWBModelCheck::KindOf(const ZorWBNode* node) const {
    return ZorWBModelHomogeneity::RecordedKind(node);
}

void ZorWBModelCheck::CheckUnitName(const ZorWBNode& node) {
    if (node.HasUnit() && node.GetUnitKindCode() == ZorWBUnitKind::None)
        Report(node, node.GetUnitLocation(), UnknownUnit);
}

void ZorWBModelCheck::CheckAmbiguousPi(const ZorWBNode* node) {
    if (!node || node->GetNodeKind() != ZorWBConstantNode || !node->HasUnit()) return;
    if (!static_cast<const ZorWBConstNode*>(node)->IsPi()) return;
    ZorWBUnitKind unit = node->GetUnitKindCode();
    bool angleOtherThanRadian = unit == ZorWBUnitKind::Angle && node->GetUnitName() != "rad";
    if (angleOtherThanRadian || unit == ZorWBUnitKind::Ambiguous)
        Report(*node, node->GetUnitLocation(), AmbiguousPi);
}

int ZorWBModelCheck::VisitConstant(ZorWBConstNode& node) {
    CheckUnitName(node);
    return 0;
}

int ZorWBModelCheck::VisitVariable(ZorWBVarNode& node) {
    const ZorQelString& name = node.GetName();
    if (name.IsEmpty() || name.GetAt(0) == '\'' || name.GetAt(0) == '"')
        Report(node, node.GetLocation(), UnknownVariableName);
    CheckUnitName(node);
    ZorWBUnitKind unit = node.GetUnitKindCode();
    if (!IsDefinite(unit)) return 0;
    auto known = _variableKinds.emplace(name.GetStdString(), unit).first;
    if (known->second != unit) Report(node, node.GetUnitLocation(), InconsistentUnit);
    return 0;
}

int ZorWBModelCheck::VisitOperator(ZorWBOpNode& node) {
    CheckUnitName(node);
    bool complete = true, clashBelow = false;
    for (int i = 0; i < node.GetNbOfChildren(); ++i) {
        ZorWBNode* child = node.GetChild(i);
        complete = complete && child;
        clashBelow = clashBelow || (child && KindOf(child) == ZorWBUnitKind::Inhomogeneous);
        CheckAmbiguousPi(child);
    }
    if (!complete)
        Report(node, node.GetLocation(), UnitComputationNotAvailable);
    else if (KindOf(&node) == ZorWBUnitKind::Inhomogeneous && !clashBelow)
        Report(node, node.GetLocation(), InconsistentUnit);
    return 0;
}

bool ZorWBModelCheck::IsPlain(const ZorWBNode* term) {
    _plainStack.assign(1, term);
    while (!_plainStack.empty()) {
        const ZorWBNode* node = _plainStack.back();
        _plainStack.pop_back();
        if (!node || node->HasUnit()) return false;
        if (node->GetNodeKind() == ZorWBVariableNode) {
            const std::string& name =
                static_cast<const ZorWBVarNode*>(node)->GetName().GetStdString();
            if (name.empty() || name[0] == '\'' || name[0] == '"') return false;
        }
        if (!node->IsOperator()) continue;
        const ZorWBOpNode& op = *static_cast<const ZorWBOpNode*>(node);
        for (int i = 0; i < op.GetNbOfChildren(); ++i)
            _plainStack.push_back(op.GetChild(i));
    }
    return true;
}

// Most equations carry no unit at all: the kinds of their nodes are then
// None or Unsolved, neither a node nor the equation can be reported, and the
// check is one plain walk (unless the kind walks are traced, which must
// write their steps).
int ZorWBModelCheck::VisitEquation(ZorWBEqNode& node) {
    ZorWBNode* left = node.GetLeftTerm();
    ZorWBNode* right = node.GetRightTerm();
    if (left && IsPlain(left) && (!right || IsPlain(right)) && !ZorWBModelHomogeneity::IsTraced())
        return 0;
    bool leftConstant = false, rightConstant = false;
    ZorWBUnitKind leftKind =
        left ? ZorWBModelHomogeneity::RecordKinds(left, leftConstant) : ZorWBUnitKind::None;
    ZorWBUnitKind rightKind =
        right ? ZorWBModelHomogeneity::RecordKinds(right, rightConstant) : ZorWBUnitKind::None;
    VisitSubtree(left);
    VisitSubtree(right);
    CheckAmbiguousPi(left);
    CheckAmbiguousPi(right);
    int judgement = ZorWBModelHomogeneity::JudgeEquation(
        left != nullptr, leftKind, leftConstant, right != nullptr, rightKind, rightConstant);
    if (judgement == ZorWBParserResult::NotApplicable && !IsUnjudgeable(leftKind) &&
        !IsUnjudgeable(rightKind))
        Report(node, node.GetLocation(), InconsistentUnit);
    return 0;
}

int ZorWBModelCheck::VisitModel(ZorWBModel& model) {
    _reported = 0;
    _variableKinds.clear();
    _told.clear();
    return ZorWBVisitor::VisitModel(model);
}
