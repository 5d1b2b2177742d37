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

ZorWBUnitKind ZorWBModelCheck::KindOf(const ZorWBNode* node) const {
    auto it = _kinds.find(node);
    return it == _kinds.end() ? ZorWBUnitKind::None : it->second;
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

int ZorWBModelCheck::VisitEquation(ZorWBEqNode& node) {
    ZorWBNode* left = node.GetLeftTerm();
    ZorWBNode* right = node.GetRightTerm();
    bool leftConstant = false, rightConstant = false;
    _kinds.clear();
    ZorWBUnitKind leftKind = left ? ZorWBModelHomogeneity::ComputeKind(left, leftConstant, &_kinds)
                                  : ZorWBUnitKind::None;
    ZorWBUnitKind rightKind =
        right ? ZorWBModelHomogeneity::ComputeKind(right, rightConstant, &_kinds)
              : ZorWBUnitKind::None;
    VisitSubtree(left);
    VisitSubtree(right);
    CheckAmbiguousPi(left);
    CheckAmbiguousPi(right);
    int judgement = ZorWBModelHomogeneity::JudgeEquation(
        left != nullptr, leftKind, leftConstant, right != nullptr, rightKind, rightConstant);
    if (judgement == ZorWBParserResult::NotApplicable && !IsUnjudgeable(leftKind) &&
        !IsUnjudgeable(rightKind))
        Report(node, node.GetLocation(), InconsistentUnit);
    _kinds.clear();
    return 0;
}

int ZorWBModelCheck::VisitModel(ZorWBModel& model) {
    _reported = 0;
    _variableKinds.clear();
    _told.clear();
    return ZorWBVisitor::VisitModel(model);
}
