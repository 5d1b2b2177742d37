#include "parser/ZorWBModelPrinter.h"

#include <cmath>
#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBNode.h"

namespace {

// How tightly a printed node binds, loosest first.
enum Binding : int { Condition, Additive, Multiplicative, Unary, Power, Primary };

// One step of the walk: a piece of text, or a node to print (in brackets,
// or without the unit it carries when the unit is being written around it).
struct Item {
    const ZorWBNode* node;
    const char* text;
    bool brackets;
    bool withoutUnit;
};

bool IsNegativeNumber(const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
            return value.GetAsInteger() < 0;
        case ZorWBRealType:
            return std::signbit(value.GetAsReal()) && !std::isnan(value.GetAsReal());
        default:
            return false;
    }
}

bool IsPiFraction(const ZorWBValue& value) {
    ZorWBFraction fraction = value.GetAsFraction();
    return fraction.numerator == 1 && fraction.denominator == 1 && fraction.power == 1;
}

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

Binding InfixBinding(ZorWBExpressionType type) {
    switch (type) {
        case ZorWBExpressionType::Sum:
        case ZorWBExpressionType::Minus:
            return Additive;
        case ZorWBExpressionType::Product:
        case ZorWBExpressionType::Quotient:
            return Multiplicative;
        case ZorWBExpressionType::Power:
            return Power;
        default:
            return Condition;
    }
}

bool IsUnaryMinus(const ZorWBOpNode& op) {
    return op.GetType() == ZorWBExpressionType::UnaryMinus && op.GetNbOfChildren() == 1;
}

Binding BindingOf(const ZorWBNode* node, bool withoutUnit) {
    if (!node) return Primary;
    if (node->HasUnit() && !withoutUnit && node->GetNodeKind() != ZorWBConstantNode)
        return Primary;  // written "(node) unit"
    switch (node->GetNodeKind()) {
        case ZorWBConstantNode:
            return IsNegativeNumber(static_cast<const ZorWBConstNode*>(node)->GetValue()) ? Unary
                                                                                          : Primary;
        case ZorWBOperatorNode: {
            const ZorWBOpNode& op = *static_cast<const ZorWBOpNode*>(node);
            if (IsUnaryMinus(op)) return Unary;
            return InfixSymbol(op) ? InfixBinding(op.GetType()) : Primary;
        }
        case ZorWBEquationNode:
            return Condition;
        default:
            return Primary;
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
    Binding own = InfixBinding(op.GetType());
    Binding inner = BindingOf(child, false);
    switch (op.GetType()) {
        case ZorWBExpressionType::And:
        case ZorWBExpressionType::Or:
            return i > 0 && IsBooleanPair(child);
        case ZorWBExpressionType::Power:  // right-associative
            return i == 0 ? inner <= own : inner < own;
        default:
            return i == 0 ? inner < own : inner <= own;
    }
}

const char* FunctionName(const ZorWBOpNode& op) {
    if (op.GetType() == ZorWBExpressionType::BlackBox && op.GetBlackBox())
        return op.GetBlackBox()->GetName().GetString();
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(op.GetType());
    if (!info) return "ERROR";
    return *info->function ? info->function : info->name;
}

const char* EquationSymbol(ZorWBEquationType type) {
    switch (type) {
        case ZorWBEqualZero:
            return " = ";
        case ZorWBNotEqualZero:
            return " != ";
        case ZorWBLessEqualZero:
            return " <= ";
        case ZorWBLessZero:
            return " < ";
        case ZorWBGreaterEqualZero:
            return " >= ";
        case ZorWBGreaterZero:
            return " > ";
        default:
            return nullptr;
    }
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
            Node(op.GetChild(0), BindingOf(op.GetChild(0), false) < Unary);
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
        Node(equation.GetLeftTerm());
        const char* symbol = EquationSymbol(equation.GetWBEqType());
        if (symbol && equation.GetRightTerm()) {
            Text(symbol);
            Node(equation.GetRightTerm());
        }
        Text(";");
    }

    ZorQelString& _out;
    std::vector<Item> _pending;
    std::vector<Item> _pieces;
};

// Whether a number's text would read back as an integer token.
bool LooksLikeInteger(const ZorQelString& text, int from) {
    if (from >= text.GetLength()) return false;
    for (int i = from; i < text.GetLength(); ++i) {
        char c = text.GetAt(i);
        if (c < '0' || c > '9') return false;
    }
    return true;
}

}  // namespace

void ZorWBModelPrinter::AppendValue(ZorQelString& text, const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
            text += value.GetAsInteger();
            return;
        case ZorWBRealType: {
            double real = value.GetAsReal();
            if (std::isinf(real)) {
                text += real > 0 ? "1e999" : "-1e999";
                return;
            }
            int start = text.GetLength();
            text.AppendDouble(real);
            if (LooksLikeInteger(text, start + (std::signbit(real) ? 1 : 0))) text += ".0";
            return;
        }
        case ZorWBFractionType: {
            if (IsPiFraction(value)) {
                text += "Pi";
                return;
            }
            ZorWBFraction fraction = value.GetAsFraction();
            text += "(";
            text += fraction.numerator;
            if (fraction.denominator != 1)
                text += "/" + ZorQelString::FromInt(fraction.denominator);
            if (fraction.power != 0) text += "*Pi^" + ZorQelString::FromInt(fraction.power);
            text += ")";
            return;
        }
        default:
            text += value.Str();
            return;
    }
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
