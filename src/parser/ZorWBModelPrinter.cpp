#include "parser/ZorWBModelPrinter.h"

#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBLanguageText.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBNode.h"

namespace {

using Binding = ZorWBBinding;

// One step of the walk: a piece of text, or a node to print (in brackets,
// or without the unit it carries when the unit is being written around it).
struct Item {
    const ZorWBNode* node;
    const char* text;
    bool brackets;
    bool withoutUnit;
};

// The infix symbol of an operator with its usual arity, or null.
const char* InfixSymbol(const ZorWBOpNode& op) {
    int count = op.GetNbOfChildren();
    switch (op.GetType()) {
        case ZorWBExpressionType::Sum:
            return count >= 2 ? " + " : nullptr;
        case ZorWBExpressionType::Product:
            return count >= 2 ? " * " : nullptr;
        default:
            break;
    }
    if (count != 2) return nullptr;
    switch (op.GetType()) {
        case ZorWBExpressionType::Minus:
            return " - ";
        case ZorWBExpressionType::Quotient:
            return " / ";
        case ZorWBExpressionType::Power:
            return " ^ ";
        case ZorWBExpressionType::Equal:
            return " == ";
        case ZorWBExpressionType::NotEqual:
            return " != ";
        case ZorWBExpressionType::And:
            return " and ";
        case ZorWBExpressionType::Or:
            return " or ";
        case ZorWBExpressionType::LessEqual:
            switch (op.GetComparisonType()) {
                case ZorWBComparisonLess:
                    return " < ";
                case ZorWBComparisonGreaterEqual:
                    return " >= ";
                case ZorWBComparisonGreater:
                    return " > ";
                default:
                    return " <= ";
            }
        default:
            return nullptr;
    }
}

bool IsUnaryMinus(const ZorWBOpNode& op) {
    return op.GetType() == ZorWBExpressionType::UnaryMinus && op.GetNbOfChildren() == 1;
}

Binding BindingOf(const ZorWBNode* node, bool withoutUnit) {
    if (!node) return Binding::Primary;
    if (node->HasUnit() && !withoutUnit && node->GetNodeKind() != ZorWBConstantNode)
        return Binding::Primary;  // written "(node) unit"
    switch (node->GetNodeKind()) {
        case ZorWBConstantNode:
            return ZorWBIsNegativeNumber(static_cast<const ZorWBConstNode*>(node)->GetValue())
                       ? Binding::Unary
                       : Binding::Primary;
        case ZorWBOperatorNode: {
            const ZorWBOpNode& op = *static_cast<const ZorWBOpNode*>(node);
            if (IsUnaryMinus(op)) return Binding::Unary;
            return InfixSymbol(op) ? ZorWBInfixBinding(op.GetType()) : Binding::Primary;
        }
        case ZorWBEquationNode:
            return Binding::Condition;
        default:
            return Binding::Primary;
    }
}

bool IsBooleanPair(const ZorWBNode* node) {
    if (!node || node->GetNodeKind() != ZorWBOperatorNode) return false;
    ZorWBExpressionType type = static_cast<const ZorWBOpNode*>(node)->GetType();
    return type == ZorWBExpressionType::And || type == ZorWBExpressionType::Or;
}

// Whether operand i of an infix operator needs brackets.
bool NeedsBrackets(const ZorWBOpNode& op, int i) {
    const ZorWBNode* child = op.GetChild(i);
    switch (op.GetType()) {
        case ZorWBExpressionType::And:
        case ZorWBExpressionType::Or:
            return i > 0 && IsBooleanPair(child);
        default:
            return ZorWBNeedsBrackets(op.GetType(), i == 0, BindingOf(child, false));
    }
}

const char* FunctionName(const ZorWBOpNode& op) {
    if (op.GetType() == ZorWBExpressionType::BlackBox && op.GetBlackBox())
        return op.GetBlackBox()->GetName().GetString();
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(op.GetType());
    if (!info) return "ERROR";
    return *info->function ? info->function : info->name;
}

class Printer {
  public:
    explicit Printer(ZorQelString& out) : _out(out) {}

    void Run(const ZorWBNode* root) {
        _pending.push_back({root, nullptr, false, false});
        while (!_pending.empty()) {
            Item item = _pending.back();
            _pending.pop_back();
            if (item.text)
                _out += item.text;
            else
                Expand(item);
        }
    }

  private:
    // Pieces are gathered in reading order and pushed reversed.
    void Text(const char* text) { _pieces.push_back({nullptr, text, false, false}); }
    void Node(const ZorWBNode* node, bool brackets = false, bool withoutUnit = false) {
        _pieces.push_back({node, nullptr, brackets, withoutUnit});
    }
    void Flush() {
        _pending.insert(_pending.end(), _pieces.rbegin(), _pieces.rend());
        _pieces.clear();
    }

    void Expand(const Item& item) {
        const ZorWBNode* node = item.node;
        if (!node) {
            _out += "?";
            return;
        }
        if (item.brackets) {
            Text("(");
            Node(node, false, item.withoutUnit);
            Text(")");
        } else if (node->HasUnit() && !item.withoutUnit &&
                   node->GetNodeKind() != ZorWBConstantNode) {
            Text("(");
            Node(node, false, true);
            Text(") ");
            Text(node->GetUnitName().GetString());
        } else {
            ExpandNode(*node);
        }
        Flush();
    }

    void ExpandNode(const ZorWBNode& node) {
        switch (node.GetNodeKind()) {
            case ZorWBConstantNode:
                WriteConstant(static_cast<const ZorWBConstNode&>(node));
                break;
            case ZorWBVariableNode:
                _out += static_cast<const ZorWBVarNode&>(node).GetName();
                break;
            case ZorWBOperatorNode:
                ExpandOperator(static_cast<const ZorWBOpNode&>(node));
                break;
            case ZorWBEquationNode:
                ExpandEquation(static_cast<const ZorWBEqNode&>(node));
                break;
        }
    }

    void WriteConstant(const ZorWBConstNode& node) {
        ZorWBModelPrinter::AppendValue(_out, node.GetValue());
        if (node.HasUnit()) {
            _out += " ";
            _out += node.GetUnitName();
        }
    }

    void ExpandOperator(const ZorWBOpNode& op) {
        int count = op.GetNbOfChildren();
        if (const char* symbol = InfixSymbol(op)) {
            for (int i = 0; i < count; ++i) {
                if (i > 0) Text(symbol);
                Node(op.GetChild(i), NeedsBrackets(op, i));
            }
        } else if (IsUnaryMinus(op)) {
            Text("-");
            Node(op.GetChild(0), BindingOf(op.GetChild(0), false) < Binding::Unary);
        } else if (op.GetType() == ZorWBExpressionType::Not && count == 1) {
            Text("!");
            Node(op.GetChild(0), true);
        } else if (op.GetType() == ZorWBExpressionType::IfThenElse && count == 3) {
            Text("if (");
            Node(op.GetChild(0));
            Text(") then (");
            Node(op.GetChild(1));
            Text(") else (");
            Node(op.GetChild(2));
            Text(")");
        } else {
            Text(FunctionName(op));
            Text("(");
            for (int i = 0; i < count; ++i) {
                if (i > 0) Text(", ");
                Node(op.GetChild(i));
            }
            Text(")");
        }
    }

    void ExpandEquation(const ZorWBEqNode& equation) {
        const ZorWBNode* left = equation.GetLeftTerm();
        const ZorWBNode* right = equation.GetRightTerm();
        ZorWBEquationType type = equation.GetWBEqType();
        const char* symbol = ZorWBRelationText(type);
        bool objective = type == ZorWBMinimize || type == ZorWBMaximize;
        if (symbol && right) {
            Node(left);
            Text(symbol);
            Node(right);
        } else if (objective && right) {  // the difference of the two terms
            Node(left,
                 ZorWBNeedsBrackets(ZorWBExpressionType::Minus, true, BindingOf(left, false)));
            Text(" - ");
            Node(right,
                 ZorWBNeedsBrackets(ZorWBExpressionType::Minus, false, BindingOf(right, false)));
        } else {
            Node(left);
        }
        // The language has no objectives: they are told in a comment.
        if (objective)
            Text(type == ZorWBMinimize ? "; /* minimize */" : "; /* maximize */");
        else
            Text(";");
    }

    ZorQelString& _out;
    std::vector<Item> _pending;
    std::vector<Item> _pieces;
};

}  // namespace

void ZorWBModelPrinter::AppendValue(ZorQelString& text, const ZorWBValue& value) {
    ZorWBAppendValueText(text, value);
}

ZorQelString ZorWBModelPrinter::Print(const ZorWBNode* node) {
    ZorQelString text;
    Printer(text).Run(node);
    return text;
}

ZorQelString ZorWBModelPrinter::Print(const ZorWBModel& model) {
    ZorQelString text;
    for (const ZorWBEqNode* equation = model.GetFirstEquation(); equation;
         equation = equation->GetNext()) {
        Printer(text).Run(equation);
        text += "\n";
    }
    return text;
}
