#include "parser/ZorWBNode.h"

#include <functional>
#include <string>
#include <unordered_set>
#include <utility>

#include "expressions/ZorWBBlackBox.h"
#include "parser/ZorWBHash.h"
#include "parser/ZorWBVisitor.h"
#include "values/ZorWBEnvironment.h"

namespace {

std::size_t HashReal(double value) {
    return std::hash<double>()(value == 0.0 ? 0.0 : value);  // -0 hashes as 0
}

std::size_t HashValue(const ZorWBValue& value) {
    std::size_t hash = std::hash<int>()(value.GetType());
    switch (value.GetType()) {
        case ZorWBIntegerType:
            return ZorWBCombineHash(hash, std::hash<int>()(value.GetAsInteger()));
        case ZorWBRealType:
            return ZorWBCombineHash(hash, HashReal(value.GetAsReal()));
        case ZorWBFractionType: {
            ZorWBFraction fraction = value.GetAsFraction();
            hash = ZorWBCombineHash(hash, std::hash<int>()(fraction.numerator));
            hash = ZorWBCombineHash(hash, std::hash<int>()(fraction.denominator));
            return ZorWBCombineHash(hash, std::hash<int>()(fraction.power));
        }
        default:
            return hash;  // rarer kinds share a digest; equality still decides
    }
}

std::size_t HashChildren(std::size_t seed, int n, ZorWBNode* const* children) {
    for (int i = 0; i < n; ++i)
        seed = ZorWBCombineHash(seed, children[i] ? children[i]->GetShapeHash() : 0);
    return seed;
}

const ZorQelString EmptyText;
const ZorWBLocation NoLocation;

}  // namespace

// ---------------------------------------------------------------- ZorWBNode

ZorWBNode::ZorWBNode(ZorWBNodeKind kind, const ZorWBLocation& location,
                     const ZorWBEnvironment* environment)
    : _kind(kind), _location(location), _environment(environment) {}

ZorWBNode::~ZorWBNode() = default;

void ZorWBNode::SetUnitData(const ZorWBLocation& unitLocation, const ZorQelString& unitName) {
    if (!_unit) {
        _unit.reset(new (std::nothrow) UnitData{unitName, unitLocation, ZorWBUnitKind::None});
        if (!_unit) return;
    }
    _unit->name = unitName;
    _unit->location = unitLocation;
    _unit->kind = ZorWBClassifyUnit(unitName);
}

const ZorQelString& ZorWBNode::GetUnitName() const {
    return _unit ? _unit->name : EmptyText;
}

const ZorWBLocation& ZorWBNode::GetUnitLocation() const {
    return _unit ? _unit->location : NoLocation;
}

const ZorQelString& ZorWBNode::GetUnitKind() const {
    ZorWBUnitKind kind = GetUnitKindCode();
    return kind == ZorWBUnitKind::None ? EmptyText : ZorWBUnitKindName(kind);
}

void ZorWBNode::FillPresentVariables(ZorQelArray<ZorQelString>& names) const {
    std::unordered_set<std::string> known;
    for (const ZorQelString& name : names)
        known.insert(name.GetStdString());
    std::vector<const ZorWBNode*> pending{this};
    while (!pending.empty()) {
        const ZorWBNode* node = pending.back();
        pending.pop_back();
        if (!node) continue;
        if (node->GetNodeKind() == ZorWBVariableNode) {
            const ZorQelString& name = static_cast<const ZorWBVarNode*>(node)->GetName();
            if (known.insert(name.GetStdString()).second) names.Add(name);
        }
        // Children are pushed last first so that names come in text order.
        for (int i = node->GetNbOfChildren() - 1; i >= 0; --i)
            pending.push_back(node->GetChild(i));
    }
}

bool ZorWBNode::IsConstant() const {
    std::vector<const ZorWBNode*> pending{this};
    while (!pending.empty()) {
        const ZorWBNode* node = pending.back();
        pending.pop_back();
        if (!node) return false;
        switch (node->GetNodeKind()) {
            case ZorWBConstantNode:
                continue;
            case ZorWBOperatorNode:
                if (static_cast<const ZorWBOpNode*>(node)->GetType() ==
                    ZorWBExpressionType::BlackBox)
                    return false;
                for (int i = 0; i < node->GetNbOfChildren(); ++i)
                    pending.push_back(node->GetChild(i));
                continue;
            default:
                return false;
        }
    }
    return true;
}

bool ZorWBNode::IsEqual(const ZorWBNode* other) const {
    std::vector<std::pair<const ZorWBNode*, const ZorWBNode*>> pending{{this, other}};
    while (!pending.empty()) {
        auto [a, b] = pending.back();
        pending.pop_back();
        if (a == b) continue;  // the same node, or both missing
        if (!a || !b || a->GetNodeKind() != b->GetNodeKind()) return false;
        if (a->GetNbOfChildren() != b->GetNbOfChildren() || !a->HasSameData(*b)) return false;
        if (a->GetUnitName() != b->GetUnitName()) return false;
        for (int i = 0; i < a->GetNbOfChildren(); ++i)
            pending.emplace_back(a->GetChild(i), b->GetChild(i));
    }
    return true;
}

// ----------------------------------------------------------- ZorWBConstNode

ZorWBConstNode::ZorWBConstNode(const ZorWBLocation& location, const ZorWBEnvironment* environment,
                               const ZorWBValue& value)
    : ZorWBNode(ZorWBConstantNode, location, environment), _value(value) {
    SetShapeHash(ZorWBCombineHash(ZorWBConstantNode, HashValue(_value)));
}

bool ZorWBConstNode::IsPi() const {
    if (!_value.IsAFraction()) return false;
    ZorWBFraction fraction = _value.GetAsFraction();
    return fraction.numerator == 1 && fraction.denominator == 1 && fraction.power == 1;
}

int ZorWBConstNode::Accept(ZorWBVisitor& visitor) {
    return visitor.VisitConstant(*this);
}

// Values of the same kind that the value equality (under the model
// environment's tolerance) finds equal: 2 and 2.0 differ, as their texts do.
bool ZorWBConstNode::HasSameData(const ZorWBNode& other) const {
    const ZorWBValue& otherValue = static_cast<const ZorWBConstNode&>(other)._value;
    if (_value.GetType() != otherValue.GetType()) return false;
    static const ZorWBEnvironment fallback;  // nodes made by a model always have one
    const ZorWBEnvironment* environment = GetEnvironment();
    return _value.IsEqualTo(environment ? *environment : fallback, otherValue);
}

// ------------------------------------------------------------- ZorWBVarNode

ZorWBVarNode::ZorWBVarNode(const ZorWBLocation& location, const ZorWBEnvironment* environment,
                           const ZorQelString& name)
    : ZorWBNode(ZorWBVariableNode, location, environment), _name(name) {
    SetShapeHash(ZorWBCombineHash(ZorWBVariableNode, ZorWBHashText(_name.GetStdString())));
}

int ZorWBVarNode::Accept(ZorWBVisitor& visitor) {
    return visitor.VisitVariable(*this);
}

bool ZorWBVarNode::HasSameData(const ZorWBNode& other) const {
    return _name == static_cast<const ZorWBVarNode&>(other)._name;
}

// -------------------------------------------------------------- ZorWBOpNode

ZorWBOpNode::ZorWBOpNode(const ZorWBLocation& location, const ZorWBEnvironment* environment,
                         ZorWBExpressionType type, ZorWBComparisonType comparison, int nbOfChildren,
                         ZorWBNode** children, ZorWBBlackBox* blackBox)
    : ZorWBNode(ZorWBOperatorNode, location, environment),
      _type(type),
      _comparison(comparison),
      _nbOfChildren(nbOfChildren),
      _children(children),
      _blackBox(blackBox) {
    std::size_t hash =
        ZorWBCombineHash(ZorWBOperatorNode, std::hash<int>()(static_cast<int>(type)));
    hash = ZorWBCombineHash(hash, std::hash<int>()(comparison));
    if (blackBox) hash = ZorWBCombineHash(hash, ZorWBHashText(blackBox->GetName().GetStdString()));
    SetShapeHash(HashChildren(hash, nbOfChildren, children));
}

int ZorWBOpNode::Accept(ZorWBVisitor& visitor) {
    return visitor.VisitOperator(*this);
}

bool ZorWBOpNode::HasSameData(const ZorWBNode& other) const {
    const ZorWBOpNode& op = static_cast<const ZorWBOpNode&>(other);
    if (_type != op._type || _comparison != op._comparison) return false;
    if (!_blackBox || !op._blackBox) return _blackBox == op._blackBox;
    return _blackBox->GetName() == op._blackBox->GetName();
}

// -------------------------------------------------------------- ZorWBEqNode

ZorWBEqNode::ZorWBEqNode(const ZorWBLocation& location, const ZorWBEnvironment* environment,
                         ZorWBNode* left, ZorWBEquationType type, ZorWBNode* right, int id)
    : ZorWBNode(ZorWBEquationNode, location, environment),
      _left(left),
      _right(right),
      _type(type),
      _id(id) {}

ZorWBNode* ZorWBEqNode::GetChild(int i) const {
    if (i == 0) return _left;
    return i == 1 ? _right : nullptr;
}

int ZorWBEqNode::Accept(ZorWBVisitor& visitor) {
    return visitor.VisitEquation(*this);
}

bool ZorWBEqNode::HasSameData(const ZorWBNode& other) const {
    return _type == static_cast<const ZorWBEqNode&>(other)._type;
}
