#include "output/ZorWBEquationPrinter.h"

#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBLanguageText.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBPrintShape.h"

namespace {

using Type = ZorWBExpressionType;
using Binding = ZorWBBinding;
using Shape = ZorWBPrintShape;

// How a node is written.
enum class Form : unsigned char {
    Plain,             // the node itself
    Negated,           // the negation of a negated shape (see IsNegatedShape)
    Condition,         // a comparison or a combination of them
    NegatedCondition,  // the negation of a condition
    CallName,          // the name of a call and its opening bracket
    StepParameters,    // the four parameters of a step and the closing bracket
};

// One step of the walk: a piece of text, or a node to write in a form,
// possibly in brackets.
struct Item {
    const ZorWBExpression* node;
    const char* text;
    Form form;
    bool brackets;
};

int Count(const ZorWBExpression* e) {
    return e->GetNbOfChildren();
}

bool Is(const ZorWBExpression* e, Type type, int children) {
    return e->GetType() == type && Count(e) == children;
}

bool IsConstant(const ZorWBExpression* e) {
    return e->GetType() == Type::Constant;
}

bool IsBoolean(const ZorWBExpression* e) {
    return ZorWBIsLogicalType(e->GetType());
}

bool IsCompound(const ZorWBExpression* e) {
    Type type = e->GetType();
    return Count(e) == 2 && (type == Type::And || type == Type::Or || type == Type::Implication);
}

class Printer {
  public:
    explicit Printer(ZorQelString& out) : _out(out) {}

    // Writes the items, in order, with everything they expand to.
    void Run() {
        Flush();
        while (!_pending.empty()) {
            Item item = _pending.back();
            _pending.pop_back();
            if (item.text) {
                _out += item.text;
            } else if (item.brackets) {
                Text("(");
                Node(item.node, item.form);
                Text(")");
            } else {
                Expand(item);
            }
            Flush();
        }
    }

    // Pieces are gathered in reading order and pushed reversed.
    void Text(const char* text) { _pieces.push_back({nullptr, text, Form::Plain, false}); }
    void Node(const ZorWBExpression* node, Form form = Form::Plain, bool brackets = false) {
        _pieces.push_back({node, nullptr, form, brackets});
    }
    // An operand of an infix operator, in brackets where it needs them.
    void Operand(const ZorWBExpression* parent, const ZorWBExpression* operand, bool left) {
        Node(operand, Form::Plain,
             ZorWBNeedsBrackets(parent->GetType(), left, Shape::BindingOf(operand)));
    }

  private:
    void Flush() {
        _pending.insert(_pending.end(), _pieces.rbegin(), _pieces.rend());
        _pieces.clear();
    }

    void Expand(const Item& item) {
        const ZorWBExpression* e = item.node;
        if (!e) {
            _out += "?";
            return;
        }
        switch (item.form) {
            case Form::Plain:
                return ExpandPlain(e);
            case Form::Negated:
                return ExpandNegated(e);
            case Form::Condition:
                return ExpandCondition(e);
            case Form::NegatedCondition:
                return ExpandNegatedCondition(e);
            case Form::CallName:
                _out += Shape::CallName(e);
                _out += "(";
                return;
            case Form::StepParameters:
                for (int i = 0; i < e->GetNbOfParameters(); ++i) {
                    _out += ", ";
                    ZorWBAppendValueText(_out, ZorWBValue(e->GetParameter(i)));
                }
                _out += ")";
                return;
        }
    }

    void ExpandPlain(const ZorWBExpression* e) {
        if (e->GetType() == Type::Variable) {
            _out += const_cast<ZorWBVariable*>(static_cast<const ZorWBVariable*>(e))->GetName();
        } else if (IsConstant(e)) {
            ZorWBAppendValueText(_out, e->GetExprValue());
        } else if (Shape::IsInfix(e)) {
            ExpandInfix(e);
        } else if (Is(e, Type::UnaryMinus, 1)) {
            Text("-");
            Node(e->GetChild(0), Form::Plain, Shape::BindingOf(e->GetChild(0)) < Binding::Unary);
        } else if (Is(e, Type::IfThenElse, 3)) {
            Text("if (");
            Node(e->GetChild(0), Form::Condition);
            Text(") then (");
            Node(e->GetChild(1));
            Text(") else (");
            Node(e->GetChild(2));
            Text(")");
        } else if (IsBoolean(e)) {
            Node(e, Form::Condition, true);
        } else if (Is(e, Type::Step, 1)) {
            Node(e, Form::CallName);
            Node(e->GetChild(0));
            Node(e, Form::StepParameters);
        } else {
            Node(e, Form::CallName);
            for (int i = 0; i < Count(e); ++i) {
                if (i > 0) Text(", ");
                Node(e->GetChild(i));
            }
            Text(")");
        }
    }

    void ExpandInfix(const ZorWBExpression* e) {
        switch (e->GetType()) {
            case Type::Sum:
                Operand(e, e->GetChild(0), true);
                for (int i = 1; i < Count(e); ++i) {
                    const ZorWBExpression* term = e->GetChild(i);
                    if (Shape::IsNegatedShape(term)) {
                        Text(" - ");
                        Node(term, Form::Negated,
                             Shape::NegatedBindingOf(term) <= Binding::Additive);
                    } else {
                        Text(" + ");
                        Operand(e, term, false);
                    }
                }
                return;
            case Type::Product:
                if (Shape::IsPlainNegation(e, false)) {
                    Text("-");
                    Node(e->GetChild(1), Form::Plain,
                         Shape::BindingOf(e->GetChild(1)) < Binding::Unary);
                    return;
                }
                Operand(e, e->GetChild(0), true);
                ProductRest(e);
                return;
            case Type::Root:  // x ^ (1 / n)
                Node(e->GetChild(0), Form::Plain,
                     ZorWBNeedsBrackets(Type::Power, true, Shape::BindingOf(e->GetChild(0))));
                Text(" ^ (1 / ");
                Node(e->GetChild(1), Form::Plain,
                     ZorWBNeedsBrackets(Type::Quotient, false, Shape::BindingOf(e->GetChild(1))));
                Text(")");
                return;
            default:  // Quotient, Power
                Operand(e, e->GetChild(0), true);
                Text(e->GetType() == Type::Quotient ? " / " : " ^ ");
                Operand(e, e->GetChild(1), false);
                return;
        }
    }

    void ProductRest(const ZorWBExpression* e) {
        for (int i = 1; i < Count(e); ++i) {
            Text(" * ");
            Operand(e, e->GetChild(i), false);
        }
    }

    // The negation of a negated shape, without its minus sign; also of a
    // subtracted shape led by a positive number, with a minus sign.
    void ExpandNegated(const ZorWBExpression* e) {
        if (IsConstant(e)) {
            ZorWBAppendNegatedText(_out, e->GetExprValue());
        } else if (Shape::IsPlainNegation(e, true)) {
            Node(e->GetChild(1));
        } else if (e->GetType() == Type::Product) {
            Node(e->GetChild(0), Form::Negated);
            ProductRest(e);
        } else {  // a quotient
            Node(e->GetChild(0), Form::Negated);
            Text(" / ");
            Operand(e, e->GetChild(1), false);
        }
    }

    void Comparison(const ZorWBExpression* e, const char* symbol) {
        Node(e->GetChild(0));
        Text(symbol);
        Node(e->GetChild(1));
    }

    // "a and b": a right operand that is itself compound is swapped with a
    // simple left one, or else bracketed.
    void Combination(const ZorWBExpression* left, Form leftForm, const char* symbol,
                     const ZorWBExpression* right) {
        bool swap = IsCompound(right) && !IsCompound(left);
        if (swap) {
            Node(right, Form::Condition);
            Text(symbol);
            Node(left, leftForm);
        } else {
            Node(left, leftForm);
            Text(symbol);
            Node(right, Form::Condition, IsCompound(right));
        }
    }

    void ExpandCondition(const ZorWBExpression* e) {
        if (Count(e) == 2) {
            switch (e->GetType()) {
                case Type::Equal:
                    return Comparison(e, " == ");
                case Type::NotEqual:
                    return Comparison(e, " != ");
                case Type::LessEqual:
                    return Comparison(e, " <= ");
                case Type::And:
                    return Combination(e->GetChild(0), Form::Condition, " and ", e->GetChild(1));
                case Type::Or:
                    return Combination(e->GetChild(0), Form::Condition, " or ", e->GetChild(1));
                case Type::Implication:
                    return Combination(e->GetChild(0), Form::NegatedCondition, " or ",
                                       e->GetChild(1));
                default:
                    break;
            }
        }
        if (Is(e, Type::Not, 1)) {
            // "!(...)" holds only a comparison, and drops the negation of ==.
            const ZorWBExpression* negated = e->GetChild(0);
            if (!Is(negated, Type::NotEqual, 2) && !Is(negated, Type::Not, 1))
                return Node(negated, Form::NegatedCondition);
            Text("!");
            return Node(negated, Form::Condition, true);
        }
        ExpandPlain(e);
    }

    void ExpandNegatedCondition(const ZorWBExpression* e) {
        if (Is(e, Type::LessEqual, 2)) return Comparison(e, " > ");
        if (Is(e, Type::Equal, 2)) return Comparison(e, " != ");
        if (Is(e, Type::NotEqual, 2)) return Comparison(e, " == ");
        if (Is(e, Type::Not, 1)) return Node(e->GetChild(0), Form::Condition);
        Text("!");
        Node(e, Form::Condition, true);
    }

    ZorQelString& _out;
    std::vector<Item> _pending;
    std::vector<Item> _pieces;
};

const char* ExtremumComment(ZorWBEquationType type) {
    switch (type) {
        case ZorWBMinimize:
            return "; /* minimize */";
        case ZorWBMaximize:
            return "; /* maximize */";
        default:
            return ";";
    }
}

void AppendEquation(ZorQelString& out, const ZorWBEquation& equation) {
    Printer printer(out);
    const ZorWBExpression* root = Shape::Printable(equation.GetRoot());
    const char* relation = ZorWBRelationText(equation.GetType());
    if (!relation) {
        printer.Node(root);
        printer.Text(ExtremumComment(equation.GetType()));
    } else if (root && Is(root, Type::Sum, 2) && Shape::IsSubtractedShape(root->GetChild(1))) {
        printer.Node(root->GetChild(0));
        printer.Text(relation);
        printer.Node(root->GetChild(1), Form::Negated);
        printer.Text(";");
    } else {
        printer.Node(root);
        printer.Text(relation);
        printer.Text("0;");
    }
    printer.Run();
}

}  // namespace

ZorQelString ZorWBEquationPrinter::Print(const ZorWBExpression* expression) {
    ZorQelString text;
    Printer printer(text);
    printer.Node(Shape::Printable(expression));
    printer.Run();
    return text;
}

ZorQelString ZorWBEquationPrinter::PrintValue(const ZorWBValue& value) {
    ZorQelString text;
    ZorWBAppendValueText(text, value);
    return text;
}

ZorQelString ZorWBEquationPrinter::Print(const ZorWBEquation* equation) {
    ZorQelString text;
    if (equation) AppendEquation(text, *equation);
    return text;
}

ZorQelString ZorWBEquationPrinter::Print(const ZorWBFactory& factory) {
    ZorQelString text;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        AppendEquation(text, *factory.GetEquation(i));
        text += "\n";
    }
    return text;
}
