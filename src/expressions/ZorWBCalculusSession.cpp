#include "expressions/ZorWBCalculusSession.h"

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"

using Type = ZorWBExpressionType;

// ------------------------------------------------------------ scope

ZorWBCalculusScope::ZorWBCalculusScope(ZorWBFactory& factory, ZorWBVariable* variable)
    : _factory(factory), _outer(factory._calculusSession), _session(_outer) {
    if (!_outer || _outer->GetVariable() != variable) _session = &_own.emplace(variable);
    _factory._calculusSession = _session;
}

ZorWBCalculusScope::~ZorWBCalculusScope() {
    _factory._calculusSession = _outer;
}

// ------------------------------------------------------------ derivatives

bool ZorWBCalculusSession::FindDerivative(const ZorWBExpression* node,
                                          ZorWBExpression*& derivative) const {
    auto found = _derivatives.find(node);
    if (found == _derivatives.end()) return false;
    derivative = found->second;
    return true;
}

void ZorWBCalculusSession::RememberDerivative(const ZorWBExpression* node,
                                              ZorWBExpression* derivative) {
    _derivatives[node] = derivative;
}

bool ZorWBCalculusSession::IsConstant(const ZorWBExpression* node) {
    if (node->IsLeaf()) return node->GetType() == Type::Constant;
    return ZorWBGraphWalk::PostOrder<bool>(node, _constants, [this](const ZorWBExpression* n) {
        if (n->IsLeaf()) return n->GetType() == Type::Constant;
        for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(n); ++i) {
            if (!_constants[ZorWBGraphWalk::Child(n, i)]) return false;
        }
        return true;
    });
}

bool ZorWBCalculusSession::IsAncestor(const ZorWBExpression* node) {
    if (!_ancestorsKnown) {
        // Upward from the variable through the parent lists.
        std::vector<const ZorWBExpression*> stack{_variable};
        _ancestors.insert(_variable);
        while (!stack.empty()) {
            const ZorWBExpression* current = stack.back();
            stack.pop_back();
            for (int i = 0; i < current->GetNbOfParents(); ++i) {
                const ZorWBExpression* parent = current->GetParent(i);
                if (_ancestors.insert(parent).second) stack.push_back(parent);
            }
        }
        _ancestorsKnown = true;
    }
    return _ancestors.count(node) != 0;
}

bool ZorWBCalculusSession::UsesAncestors() {
    if (_shortcut == Shortcut::Unknown) {
        const ZorWBFactory& factory = *_variable->GetFactory();
        const ZorWBEnvironment& environment = factory.GetEnvironment();
        _firstNewTag = factory.GetGlobalTag();
        bool on = environment.CheckLevel(ZorWBLevel::PredefinedZeroOne) &&
                  environment.CheckLevel(ZorWBLevel::DifferentiateMinMax) &&
                  factory._nbOfIntegrateNodes == 0 && _firstNewTag < ZorWBFactory::MaxTag;
        _shortcut = on ? Shortcut::On : Shortcut::Off;
    }
    return _shortcut == Shortcut::On;
}

bool ZorWBCalculusSession::IsSkipped(const ZorWBExpression* node) {
    if (_variable && UsesAncestors() && node->GetTag() < _firstNewTag) return !IsAncestor(node);
    return IsConstant(node);
}

// Comparisons and logic are piecewise constant: their rules use no
// derivative. The older rules of black-box calls, and Min and Max below the
// level where they are differentiated, use none either; an Integrate node
// by the variable itself gives its integrand.
bool ZorWBCalculusSession::UsesChildDerivative(const ZorWBExpression* node, int i) {
    const ZorWBEnvironment& environment = node->GetEnvironment();
    if (ZorWBIsLogicalType(node->GetType())) return false;
    switch (node->GetType()) {
        case Type::Min:
        case Type::Max:
            return environment.CheckLevel(ZorWBLevel::DifferentiateMinMax);
        case Type::BlackBox:
            return environment.CheckLevel(ZorWBLevel::PredefinedZeroOne);
        case Type::Integrate:
            return i == 0 && ZorWBGraphWalk::NbOfChildren(node) == 2 &&
                   ZorWBGraphWalk::Child(node, 1) != _variable;
        default:
            return true;
    }
}

void ZorWBCalculusSession::DifferentiateBelow(const ZorWBExpression* root) {
    auto known = [this](const ZorWBExpression* node) { return _derivatives.count(node) != 0; };
    auto follow = [this](const ZorWBExpression* node, int i) {
        const ZorWBExpression* child = ZorWBGraphWalk::Child(node, i);
        return !child->IsLeaf() && UsesChildDerivative(node, i) && !IsSkipped(child);
    };
    // Most nodes reached by the walk find their children done already.
    bool pending = false;
    for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(root) && !pending; ++i)
        pending = follow(root, i) && !known(ZorWBGraphWalk::Child(root, i));
    if (!pending) return;
    ZorWBGraphWalk::PostOrderBelow(root, known, follow, [this](const ZorWBExpression* node) {
        RememberDerivative(node, const_cast<ZorWBExpression*>(node)->Differentiate(_variable));
    });
}

// ------------------------------------------------------------ antiderivatives

bool ZorWBCalculusSession::FindAntiDerivative(const ZorWBExpression* node,
                                              ZorWBExpression*& antiDerivative, bool& done) const {
    auto found = _antiDerivatives.find(node);
    if (found == _antiDerivatives.end()) return false;
    antiDerivative = found->second.result;
    done = found->second.done;
    return true;
}

void ZorWBCalculusSession::RememberAntiDerivative(const ZorWBExpression* node,
                                                  ZorWBExpression* antiDerivative, bool done) {
    _antiDerivatives[node] = {antiDerivative, done};
}

// Mirrors the integration table of the operators (see ZorWBIntegration.cpp).
bool ZorWBCalculusSession::IntegratesChild(const ZorWBExpression* node, int i) {
    if (IsFree(node)) return false;
    const ZorWBExpression* child = ZorWBGraphWalk::Child(node, i);
    switch (node->GetType()) {
        case Type::Sum:
        case Type::UnaryMinus:
            return true;
        case Type::Quotient:
            return i == 0 && ZorWBGraphWalk::NbOfChildren(node) == 2 &&
                   IsFree(ZorWBGraphWalk::Child(node, 1));
        case Type::Product: {
            if (IsFree(child)) return false;
            for (int j = 0; j < ZorWBGraphWalk::NbOfChildren(node); ++j) {
                if (j != i && !IsFree(ZorWBGraphWalk::Child(node, j))) return false;
            }
            return true;
        }
        default:
            return false;
    }
}

void ZorWBCalculusSession::IntegrateBelow(const ZorWBExpression* root) {
    auto known = [this](const ZorWBExpression* node) { return _antiDerivatives.count(node) != 0; };
    auto follow = [this](const ZorWBExpression* node, int i) {
        return !ZorWBGraphWalk::Child(node, i)->IsLeaf() && IntegratesChild(node, i);
    };
    bool pending = false;
    for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(root) && !pending; ++i)
        pending = follow(root, i) && !known(ZorWBGraphWalk::Child(root, i));
    if (!pending) return;
    ZorWBGraphWalk::PostOrderBelow(root, known, follow, [this](const ZorWBExpression* node) {
        bool done = false;
        ZorWBExpression* result = const_cast<ZorWBExpression*>(node)->Integrate(_variable, done);
        RememberAntiDerivative(node, result, done);
    });
}

// ------------------------------------------------------------ shapes

ZorWBCalculusSession::Shape ZorWBCalculusSession::OperatorShape(
    const ZorWBExpression* node, const std::unordered_map<const ZorWBExpression*, Shape>& shapes) {
    // The walk has put every child in the map.
    auto shapeOfChild = [node, &shapes](int i) {
        auto found = shapes.find(ZorWBGraphWalk::Child(node, i));
        return found == shapes.end() ? Shape::Other : found->second;
    };
    int n = ZorWBGraphWalk::NbOfChildren(node);
    int linear = 0;
    int other = 0;
    for (int i = 0; i < n; ++i) {
        Shape shape = shapeOfChild(i);
        linear += shape == Shape::Linear;
        other += shape == Shape::Other;
    }
    if (linear == 0 && other == 0) return Shape::Free;
    if (other > 0) return Shape::Other;
    switch (node->GetType()) {
        case Type::Sum:
            return Shape::Linear;
        case Type::Product:
        case Type::UnaryMinus:
            return linear == 1 ? Shape::Linear : Shape::Other;
        case Type::Quotient:
            return n == 2 && shapeOfChild(1) == Shape::Free ? Shape::Linear : Shape::Other;
        default:
            return Shape::Other;
    }
}

ZorWBCalculusSession::Shape ZorWBCalculusSession::ShapeOf(const ZorWBExpression* node) {
    if (node == _variable) return Shape::Linear;
    if (node->IsLeaf()) return Shape::Free;
    return ZorWBGraphWalk::PostOrder<Shape>(node, _shapes, [this](const ZorWBExpression* n) {
        if (n == _variable) return Shape::Linear;
        if (n->IsLeaf()) return Shape::Free;
        return OperatorShape(n, _shapes);
    });
}
