// Conversion of a parsed model into factory expressions and equations.

#include <climits>
#include <cmath>
#include <exception>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBModelHomogeneity.h"
#include "parser/ZorWBParserResult.h"
#include "values/ZorWBValueFunctions.h"

namespace {

using Type = ZorWBExpressionType;

// The largest integer the values hold as a finite integer.
constexpr long long LargestFiniteInteger = 2147483646;

bool IsDefinite(ZorWBUnitKind kind) {
    return kind == ZorWBUnitKind::Distance || kind == ZorWBUnitKind::Angle;
}

constexpr ZorWBUnitFactor NoFactor = {1.0, 1.0};

bool IsOne(const ZorWBUnitFactor& factor) {
    return factor.multiplier == factor.divisor;
}

// An integer factor that an integer constant can hold.
bool IsIntegral(const ZorWBUnitFactor& factor) {
    return factor.divisor == 1.0 && std::floor(factor.multiplier) == factor.multiplier &&
           std::fabs(factor.multiplier) <= LargestFiniteInteger;
}

// A value written in a unit, in base units: an integer while both the value
// and the factor are integers and the product stays finite, a real otherwise.
ZorWBValue Scale(const ZorWBValue& value, const ZorWBUnitFactor& factor) {
    if (value.GetType() == ZorWBIntegerType && IsIntegral(factor)) {
        long long product = static_cast<long long>(value.GetAsInteger()) *
                            static_cast<long long>(factor.multiplier);
        if (product >= -LargestFiniteInteger && product <= LargestFiniteInteger)
            return ZorWBValue(static_cast<int>(product));
    }
    return ZorWBValue(value.GetAsReal() * factor.multiplier / factor.divisor);
}

// Operators whose operands are quantities of one kind: an ambiguous mark
// among them reads as the kind of the others.
bool ComparesItsOperands(Type type) {
    switch (type) {
        case Type::Sum:
        case Type::Minus:
        case Type::Min:
        case Type::Max:
        case Type::Dim:
        case Type::Mod:
        case Type::Equal:
        case Type::NotEqual:
        case Type::LessEqual:
            return true;
        default:
            return false;
    }
}

}  // namespace

// One conversion run: the factory, the options, the variables found so far
// and, for the ambiguous unit marks, the unit kinds of the equation's nodes.
class ZorWBModelConversion {
  public:
    ZorWBModelConversion(ZorWBModel& model, ZorWBFactory& factory, bool applyUnits,
                         const ZorWBVarNodeTable* variableNodes,
                         const ZorWBVariableTable* variables)
        : _model(model),
          _factory(factory),
          _applyUnits(applyUnits),
          _variableNodes(variables ? variableNodes : nullptr),
          _variables(variableNodes ? variables : nullptr) {
        _model._failedNode = nullptr;
    }

    // The root that the equation gets: the difference of its two terms
    // (CreateSub), whatever the right one is, or its one term. The kind of
    // each term decides the ambiguous marks that nothing inside the other
    // term decides.
    ZorWBExpression* ConvertEquation(const ZorWBEqNode* equation) {
        const ZorWBNode* leftTerm = equation->GetLeftTerm();
        const ZorWBNode* rightTerm = equation->GetRightTerm();
        if (ZorWBModelHomogeneity::IsTraced()) {
            // The trace shows the kind walk of every equation, whatever needs it.
            KindOfTerm(leftTerm);
            KindOfTerm(rightTerm);
        }
        ZorWBExpression* left = nullptr;
        _above = {rightTerm, nullptr};
        if (ConvertTerm(leftTerm, left) != ZorWBParserResult::Success) return nullptr;
        if (!rightTerm) return left;
        ZorWBExpression* right = nullptr;
        _above = {leftTerm, nullptr};
        if (ConvertTerm(rightTerm, right) != ZorWBParserResult::Success) return nullptr;
        ZorWBExpression* root = _factory.CreateSub(left, right);
        if (!root) Fail(equation);
        return root;
    }

    // A subtree on its own: its marks read within the term that holds it.
    int Convert(const ZorWBNode* root, ZorWBExpression*& result) {
        result = nullptr;
        if (root && root->GetNodeKind() == ZorWBEquationNode)
            return ZorWBParserResult::NotApplicable;
        _above = {nullptr, root};
        return ConvertTerm(root, result);
    }

    int ConvertVariable(const ZorWBVarNode* node, ZorWBVariable*& result) {
        result = FindVariable(node);
        return result ? ZorWBParserResult::Success : Fail(node);
    }

    int Fail(const ZorWBNode* node) {
        _model._failedNode = node;
        return ZorWBParserResult::Failure;
    }

  private:
    // A node being converted, with the kind that an ambiguous mark below it
    // takes when nothing at or below its level decides (found once).
    struct Frame {
        const ZorWBNode* node;
        int next;
        bool contextKnown;
        ZorWBUnitKind context;
    };

    // Converts the tree below root, walking it with an explicit stack: the
    // frames above the node being made are its ancestors in this use, also
    // when the node is shared (a repeated black-box call), so that its
    // ambiguous marks read the context of each use. A mark that nothing in
    // the tree decides takes the kind of what is above it (_above), or is an
    // angle.
    int ConvertTerm(const ZorWBNode* root, ZorWBExpression*& result) {
        result = nullptr;
        if (!root || root->GetNodeKind() == ZorWBEquationNode) return Fail(root);
        _rootContextKnown = false;
        _path.assign(1, Frame{root, 0, false, ZorWBUnitKind::None});
        std::vector<ZorWBExpression*> made;
        while (!_path.empty()) {
            Frame& frame = _path.back();
            const ZorWBNode* node = frame.node;
            if (node->IsOperator() && frame.next < node->GetNbOfChildren()) {
                const ZorWBNode* child = node->GetChild(frame.next++);
                if (!child || child->GetNodeKind() == ZorWBEquationNode) return Fail(node);
                _path.push_back({child, 0, false, ZorWBUnitKind::None});
                continue;
            }
            _path.pop_back();
            ZorWBExpression* expression = Make(node, made);
            if (!expression) return Fail(node);
            made.push_back(expression);
        }
        result = made.back();
        return ZorWBParserResult::Success;
    }

    // The expression of a node whose children are the last entries of made
    // (which it takes off).
    ZorWBExpression* Make(const ZorWBNode* node, std::vector<ZorWBExpression*>& made) {
        switch (node->GetNodeKind()) {
            case ZorWBConstantNode:
                return MakeConstant(*static_cast<const ZorWBConstNode*>(node));
            case ZorWBVariableNode:
                return WithUnit(node, FindVariable(static_cast<const ZorWBVarNode*>(node)));
            case ZorWBOperatorNode: {
                int n = node->GetNbOfChildren();
                std::size_t first = made.size() - static_cast<std::size_t>(n);
                ZorWBExpression* expression =
                    MakeOperator(*static_cast<const ZorWBOpNode*>(node), n, made.data() + first);
                made.resize(first);
                return WithUnit(node, expression);
            }
            default:
                return nullptr;
        }
    }

    ZorWBExpression* MakeConstant(const ZorWBConstNode& node) {
        ZorWBUnitFactor factor = NoFactor;
        if (!UnitFactor(node, factor)) return nullptr;
        if (IsOne(factor)) return _factory.CreateConstant(node.GetValue());
        return _factory.CreateConstant(Scale(node.GetValue(), factor));
    }

    ZorWBExpression* MakeOperator(const ZorWBOpNode& node, int n, ZorWBExpression* const* args) {
        switch (node.GetType()) {
            case Type::Minus:
                return n == 2 ? _factory.CreateSub(args[0], args[1]) : nullptr;
            case Type::UnaryMinus:
                return n == 1 ? Negate(args[0]) : nullptr;
            case Type::BlackBox:
                return CallBlackBox(node, n, args);
            case Type::LessEqual:
                return n == 2 ? Compare(node.GetComparisonType(), args[0], args[1]) : nullptr;
            default:
                return _factory.CreateOperator(node.GetType(), n, args);
        }
    }

    ZorWBExpression* Compare(ZorWBComparisonType comparison, ZorWBExpression* a,
                             ZorWBExpression* b) {
        switch (comparison) {
            case ZorWBComparisonLess:
                return _factory.CreateLess(a, b);
            case ZorWBComparisonGreaterEqual:
                return _factory.CreateGreaterEqual(a, b);
            case ZorWBComparisonGreater:
                return _factory.CreateGreater(a, b);
            default:  // <=, and a LessEqual node made without a comparison type
                return _factory.CreateLessEqual(a, b);
        }
    }

    // -e with the sign folded into a constant operand or into the leading
    // constant of a product; the node replaced by the folded one is removed.
    ZorWBExpression* Negate(ZorWBExpression* e) {
        const ZorWBEnvironment& environment = _factory.GetEnvironment();
        if (e->GetType() == Type::Constant) {
            ZorWBValue negated = ZorWBMul(environment, e->GetExprValue(), ZorWBValue(-1));
            ZorWBExpression* constant = _factory.CreateConstant(negated);
            if (constant && constant != e) _factory.RemoveExpression(e);
            return constant;
        }
        int n = e->GetNbOfChildren();
        ZorWBExpression* first = e->GetChild(0);
        if (e->GetType() == Type::Product && n >= 2 && first->GetType() == Type::Constant) {
            std::vector<ZorWBExpression*> factors;
            factors.reserve(static_cast<std::size_t>(n));
            factors.push_back(_factory.CreateConstant(
                ZorWBMul(environment, first->GetExprValue(), ZorWBValue(-1))));
            for (int i = 1; i < n; ++i)
                factors.push_back(e->GetChild(i));
            ZorWBExpression* product = _factory.CreateProduct(n, factors.data());
            if (product) _factory.RemoveExpression(e);
            return product;
        }
        return _factory.CreateProduct(_factory.CreateIntegerConstant(-1), e);
    }

    ZorWBExpression* CallBlackBox(const ZorWBOpNode& node, int n, ZorWBExpression* const* args) {
        ZorWBBlackBox* blackBox = node.GetBlackBox();
        if (!blackBox) return nullptr;
        if (ZorWBEquation* equation = _factory.GetEquationByName(blackBox->GetName())) {
            ZorQelIntArray theoretical;
            equation->GetTheoreticalVarList(&theoretical);
            if (theoretical.GetSize() != n) return nullptr;
        }
        return _factory.DeclareBlackBox(blackBox, n, args, blackBox->IsInternal());
    }

    ZorWBVariable* FindVariable(const ZorWBVarNode* node) {
        if (!node) return nullptr;
        if (_variableNodes) {
            ZorWBVariable* variable = _variables->Get(ZorWBModel::Locate(node, *_variableNodes));
            return variable && variable->GetFactory() == &_factory ? variable : nullptr;
        }
        if (!_namesIndexed) {
            for (int i = 0; i < _factory.GetNbOfVariables(); ++i) {
                ZorWBVariable* variable = _factory.GetVariable(i);
                _variablesByName.emplace(variable->GetName().GetStdString(), variable);
            }
            _namesIndexed = true;
        }
        const std::string& name = node->GetName().GetStdString();
        auto known = _variablesByName.find(name);
        if (known != _variablesByName.end()) return known->second;
        ZorWBVariable* variable = _factory.CreateVariable();
        if (!variable) return nullptr;
        variable->SetName(node->GetName());
        _variablesByName.emplace(name, variable);
        return variable;
    }

    // A node other than a number carrying a unit: its expression times the
    // unit's factor, the factor leading.
    ZorWBExpression* WithUnit(const ZorWBNode* node, ZorWBExpression* expression) {
        ZorWBUnitFactor factor = NoFactor;
        if (!expression || !UnitFactor(*node, factor)) return nullptr;
        if (IsOne(factor)) return expression;
        ZorWBExpression* constant =
            IsIntegral(factor) ? _factory.CreateIntegerConstant(static_cast<int>(factor.multiplier))
                               : _factory.CreateRealConstant(factor.multiplier / factor.divisor);
        return _factory.CreateProduct(constant, expression);
    }

    // The factor of the node's unit (1 without one, or without applying
    // units); false for an unknown unit.
    bool UnitFactor(const ZorWBNode& node, ZorWBUnitFactor& factor) {
        factor = NoFactor;
        if (!_applyUnits || !node.HasUnit()) return true;
        ZorWBUnitKind context = node.GetUnitKindCode() == ZorWBUnitKind::Ambiguous
                                    ? MarkContext(&node)
                                    : ZorWBUnitKind::None;
        return ZorWBGetUnitFactor(node.GetUnitName(), context, factor);
    }

    // -------------------------------------------------- ambiguous marks
    //
    // Only ambiguous marks read unit kinds: the kinds of a term are recorded
    // in its nodes (ZorWBModelHomogeneity::RecordKinds) when a mark first
    // needs them, so that a model without such marks is converted without
    // any walk over its units.

    // The kind of a term, whose kinds are recorded for this conversion.
    ZorWBUnitKind KindOfTerm(const ZorWBNode* term) {
        if (!term) return ZorWBUnitKind::None;
        if (!_recordedTerms.count(term)) {
            bool constant = false;
            ZorWBModelHomogeneity::RecordKinds(term, constant);
            _recordedTerms.insert(term);
        }
        return ZorWBModelHomogeneity::RecordedKind(term);
    }

    static ZorWBUnitKind KindOf(const ZorWBNode* node) {
        return ZorWBModelHomogeneity::RecordedKind(node);
    }

    // The kind that a mark takes when nothing in the term being converted
    // decides: that of the other term of the equation, or the context above
    // a subtree converted on its own, when definite; else an angle.
    ZorWBUnitKind RootContext() {
        if (!_rootContextKnown) {
            ZorWBUnitKind kind =
                _above.subtree ? ContextAboveSubtree(_above.subtree) : KindOfTerm(_above.otherTerm);
            _rootContext = IsDefinite(kind) ? kind : ZorWBUnitKind::Angle;
            _rootContextKnown = true;
        }
        return _rootContext;
    }

    // The kind that an ambiguous mark on node, the node being made, takes:
    // walking up its ancestors in this use (see the conversion notes in
    // ZorWBModel.h), the first definite kind beside it decides. What is
    // found for an ancestor is kept in its frame, so that the marks of a
    // long chain are decided in linear time.
    ZorWBUnitKind MarkContext(const ZorWBNode* node) {
        if (_path.empty()) return RootContext();
        ZorWBUnitKind beside = KindBeside(*_path.back().node, node);
        return IsDefinite(beside) ? beside : ContextOfAncestor(_path.size() - 1);
    }

    // The context of the ancestor at a level of the path: the kind beside
    // the first ancestor at or above it that has a definite one, or the
    // root's context.
    ZorWBUnitKind ContextOfAncestor(std::size_t level) {
        std::size_t top = level;
        ZorWBUnitKind decided = ZorWBUnitKind::None;
        bool found = false;
        for (;; --top) {
            const Frame& frame = _path[top];
            if (frame.contextKnown) {
                decided = frame.context;
                found = true;
                break;
            }
            if (top == 0) break;
            ZorWBUnitKind beside = KindBeside(*_path[top - 1].node, frame.node);
            if (IsDefinite(beside)) {
                decided = beside;
                found = true;
                break;
            }
        }
        if (!found) decided = RootContext();
        for (std::size_t i = top; i <= level; ++i) {
            _path[i].contextKnown = true;
            _path[i].context = decided;
        }
        return decided;
    }

    // The first definite kind among the operands of parent other than child,
    // for operators whose operands share a kind.
    ZorWBUnitKind KindBeside(const ZorWBNode& parent, const ZorWBNode* child) {
        if (parent.GetNodeKind() != ZorWBOperatorNode) return ZorWBUnitKind::None;
        Type type = static_cast<const ZorWBOpNode&>(parent).GetType();
        bool branches = type == Type::IfThenElse;
        if (!branches && !ComparesItsOperands(type)) return ZorWBUnitKind::None;
        if (branches && child == parent.GetChild(0)) return ZorWBUnitKind::None;
        EnsureKinds(parent);
        for (int i = branches ? 1 : 0; i < parent.GetNbOfChildren(); ++i) {
            const ZorWBNode* other = parent.GetChild(i);
            if (other != child && IsDefinite(KindOf(other))) return KindOf(other);
        }
        return ZorWBUnitKind::None;
    }

    // For a subtree converted on its own, the context above it: the first
    // definite kind beside it walking up through its parents within its
    // term (the other side of its equation is not looked at).
    ZorWBUnitKind ContextAboveSubtree(const ZorWBNode* root) {
        for (const ZorWBNode* current = root; current->GetParentNode();
             current = current->GetParentNode()) {
            ZorWBUnitKind beside = KindBeside(*current->GetParentNode(), current);
            if (IsDefinite(beside)) return beside;
        }
        return ZorWBUnitKind::None;
    }

    // Records the kinds of the term that holds node.
    void EnsureKinds(const ZorWBNode& node) {
        const ZorWBNode* top = &node;
        while (top->GetParentNode())
            top = top->GetParentNode();
        KindOfTerm(top);
    }

    ZorWBModel& _model;
    ZorWBFactory& _factory;
    bool _applyUnits;
    const ZorWBVarNodeTable* _variableNodes;
    const ZorWBVariableTable* _variables;
    std::unordered_map<std::string, ZorWBVariable*> _variablesByName;
    bool _namesIndexed = false;

    // The terms whose kinds are recorded for this conversion.
    std::unordered_set<const ZorWBNode*> _recordedTerms;
    // What is above the term being converted: the other term of its
    // equation, or, for a subtree converted on its own, the subtree.
    struct Above {
        const ZorWBNode* otherTerm;
        const ZorWBNode* subtree;
    };
    Above _above = {nullptr, nullptr};
    bool _rootContextKnown = false;
    ZorWBUnitKind _rootContext = ZorWBUnitKind::Angle;
    // The ancestors of the node being made, and the context above them.
    std::vector<Frame> _path;
};

namespace {

// Converts the model's equations in order and hands each one with its root
// to take, which answers false when it cannot use it. Stops at the first
// failure.
template <class Take>
int ConvertEquations(const ZorWBModel& model, ZorWBModelConversion& conversion, Take&& take) try {
    for (const ZorWBEqNode* equation = model.GetFirstEquation(); equation;
         equation = equation->GetNext()) {
        ZorWBExpression* root = conversion.ConvertEquation(equation);
        if (!root) return ZorWBParserResult::Failure;
        if (!take(equation, root)) return conversion.Fail(equation);
    }
    return ZorWBParserResult::Success;
} catch (const std::exception&) {
    return ZorWBParserResult::Failure;
}

}  // namespace

int ZorWBModel::FillFactory(ZorWBFactory& factory, ZorQelIntArray& equationIds, bool applyUnits,
                            const ZorWBVarNodeTable* variableNodes,
                            const ZorWBVariableTable* variables) {
    ZorWBModelConversion conversion(*this, factory, applyUnits, variableNodes, variables);
    return ConvertEquations(
        *this, conversion, [&](const ZorWBEqNode* equation, ZorWBExpression* root) {
            ZorWBEquation* added = factory.AddEquation(root, equation->GetWBEqType());
            if (added) equationIds.Add(added->GetId());
            return added != nullptr;
        });
}

int ZorWBModel::FillFactory(ZorWBFactory& factory, bool applyUnits,
                            const ZorWBVarNodeTable* variableNodes,
                            const ZorWBVariableTable* variables,
                            ZorQelArray<ZorWBExpression*>& expressions) {
    ZorWBModelConversion conversion(*this, factory, applyUnits, variableNodes, variables);
    return ConvertEquations(*this, conversion, [&](const ZorWBEqNode*, ZorWBExpression* root) {
        expressions.Add(root);
        return true;
    });
}

int ZorWBModel::ConvertNodeToExpr(const ZorWBNode* node, ZorWBFactory& factory,
                                  ZorWBExpression*& expression, bool applyUnits,
                                  const ZorWBVarNodeTable* variableNodes,
                                  const ZorWBVariableTable* variables) try {
    expression = nullptr;
    ZorWBModelConversion conversion(*this, factory, applyUnits, variableNodes, variables);
    return conversion.Convert(node, expression);
} catch (const std::exception&) {
    expression = nullptr;
    return ZorWBParserResult::Failure;
}

int ZorWBModel::ConvertVarNodeToExpr(const ZorWBVarNode* node, ZorWBFactory& factory,
                                     ZorWBVariable*& variable,
                                     const ZorWBVarNodeTable* variableNodes,
                                     const ZorWBVariableTable* variables) try {
    variable = nullptr;
    ZorWBModelConversion conversion(*this, factory, true, variableNodes, variables);
    return conversion.ConvertVariable(node, variable);
} catch (const std::exception&) {
    variable = nullptr;
    return ZorWBParserResult::Failure;
}

int ZorWBModel::Locate(const ZorWBVarNode* node, const ZorWBVarNodeTable& table) {
    return node ? table.Find(const_cast<ZorWBVarNode*>(node)) : -1;
}
