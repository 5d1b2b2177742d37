// The MathML printer walks factory expressions and parsed-model nodes with
// one printer, templated on a source that tells what a node is (constant,
// variable, operator, its children, unit and call name). Each operator type
// is laid out by its row of the table Forms below; the types without a row
// are written as calls, named from the node-type table. The walk gathers the
// pieces of a node in reading order and pushes them reversed on an explicit
// stack, as the text printer does, so any depth prints; each node expands to
// exactly one element (an <mrow> where it has several parts), which keeps
// the children of <mfrac>, <msup> and <mroot> well formed. Linear in the
// size of the printed tree.

#include "output/ZorWBEquationMLPrinter.h"

#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBMathMLText.h"
#include "output/ZorWBPrintShape.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBNode.h"

namespace {

using Type = ZorWBExpressionType;
using Binding = ZorWBBinding;
using MathText = ZorWBMathMLText;

enum class Layout : unsigned char {
    Call,        // name(arguments)
    Sum,         // a + b - c
    Minus,       // a - b (parsed models)
    Product,     // a . b
    Fraction,    // <mfrac>
    Power,       // <msup>
    Root,        // <mroot>
    SquareRoot,  // <msqrt>
    Fence,       // |a|, floor and ceiling brackets
    UnaryMinus,  // -a
    Cases,       // if-then-else
    Relation,    // a <= b
    Logic,       // a and b
    Not,         // not a
    Integral,    // int a dx
};

// How the operators of a type are laid out, for the number of children the
// layout needs (-1: two or more); a node with another number of children is
// written as a call. Symbols are MathML operator texts.
struct MathForm {
    Type type;
    Layout layout;
    int children;
    const char* open;
    const char* close;
};

constexpr MathForm Forms[] = {
    {Type::Sum, Layout::Sum, -1, "+", ""},
    {Type::Minus, Layout::Minus, 2, "&#x2212;", ""},
    {Type::Product, Layout::Product, -1, "&#x22C5;", ""},
    {Type::Quotient, Layout::Fraction, 2, "", ""},
    {Type::Power, Layout::Power, 2, "", ""},
    {Type::Root, Layout::Root, 2, "", ""},
    {Type::Sqrt, Layout::SquareRoot, 1, "", ""},
    {Type::Abs, Layout::Fence, 1, "|", "|"},
    {Type::Floor, Layout::Fence, 1, "&#x230A;", "&#x230B;"},
    {Type::Ceil, Layout::Fence, 1, "&#x2308;", "&#x2309;"},
    {Type::UnaryMinus, Layout::UnaryMinus, 1, "&#x2212;", ""},
    {Type::IfThenElse, Layout::Cases, 3, "", ""},
    {Type::Equal, Layout::Relation, 2, "=", ""},
    {Type::NotEqual, Layout::Relation, 2, "&#x2260;", ""},
    {Type::LessEqual, Layout::Relation, 2, "", ""},  // by the comparison type
    {Type::And, Layout::Logic, 2, "&#x2227;", ""},
    {Type::Or, Layout::Logic, 2, "&#x2228;", ""},
    {Type::Implication, Layout::Logic, 2, "&#x21D2;", ""},
    {Type::Not, Layout::Not, 1, "&#xAC;", ""},
    {Type::Integrate, Layout::Integral, 2, "&#x222B;", ""},
};

MathForm FormOf(Type type, int children) {
    for (const MathForm& form : Forms) {
        if (form.type != type) continue;
        bool fits = form.children < 0 ? children >= 2 : children == form.children;
        if (fits) return form;
        break;
    }
    return {type, Layout::Call, children, "", ""};
}

// How tightly the element of a node binds as an operand. Layouts that
// delimit themselves are Primary, a fraction binds like a power, conditions
// and cases loosest; sums, products and minus signs as the text printer has
// them (Source::TextBindingOf).
template <class Source>
Binding MathBinding(const typename Source::Node* node, bool withUnit = true) {
    if (!node) return Binding::Primary;
    if (withUnit && Source::UnitOf(node)) return Binding::Unary;
    if (Source::IsConstant(node)) return MathText::BindingOfValue(Source::ValueOf(node));
    if (Source::IsVariable(node)) return Binding::Primary;
    switch (FormOf(Source::TypeOf(node), Source::CountOf(node)).layout) {
        case Layout::Fraction:
        case Layout::Power:
            return Binding::Power;
        case Layout::Cases:
        case Layout::Relation:
        case Layout::Logic:
        case Layout::Not:
            return Binding::Condition;
        case Layout::Sum:
        case Layout::Minus:
        case Layout::Product:
        case Layout::UnaryMinus:
            return Source::TextBindingOf(node);
        default:
            return Binding::Primary;
    }
}

// Factory expressions: no units; sums hold negated shapes; steps carry
// parameters.
struct FactorySource {
    using Node = ZorWBExpression;
    using Shape = ZorWBPrintShape;

    static bool IsConstant(const Node* n) { return n->GetType() == Type::Constant; }
    static bool IsVariable(const Node* n) { return n->GetType() == Type::Variable; }
    static Type TypeOf(const Node* n) { return n->GetType(); }
    static int CountOf(const Node* n) { return n->GetNbOfChildren(); }
    static const Node* ChildOf(const Node* n, int i) { return n->GetChild(i); }
    static const ZorWBValue& ValueOf(const Node* n) { return n->GetExprValue(); }
    static ZorQelString NameOf(const Node* n) {
        return const_cast<ZorWBVariable*>(static_cast<const ZorWBVariable*>(n))->GetName();
    }
    static ZorQelString CallNameOf(const Node* n) { return Shape::CallName(n); }
    static int ComparisonOf(const Node*) { return ZorWBComparisonLessEqual; }
    static const ZorQelString* UnitOf(const Node*) { return nullptr; }
    static Binding TextBindingOf(const Node* n) { return Shape::BindingOf(n); }
    static bool IsNegatedShape(const Node* n) { return Shape::IsNegatedShape(n); }
    static bool IsPlainNegation(const Node* n, bool afterMinus) {
        return Shape::IsPlainNegation(n, afterMinus);
    }
    // The binding of the element of the negation of a negated shape.
    static Binding NegatedBindingOf(const Node* n) {
        if (IsConstant(n)) return Binding::Primary;
        if (IsPlainNegation(n, true)) return MathBinding<FactorySource>(n->GetChild(1));
        return n->GetType() == Type::Quotient ? Binding::Power : Binding::Multiplicative;
    }
    static int NbOfParametersOf(const Node* n) { return n->GetNbOfParameters(); }
    static double ParameterOf(const Node* n, int i) { return n->GetParameter(i); }
};

// Parsed-model nodes: units, binary minus, comparison types; no negated
// shapes and no parameters.
struct ModelSource {
    using Node = ZorWBNode;

    static bool IsConstant(const Node* n) { return n->GetNodeKind() == ZorWBConstantNode; }
    static bool IsVariable(const Node* n) { return n->GetNodeKind() == ZorWBVariableNode; }
    static Type TypeOf(const Node* n) {
        return n->IsOperator() ? static_cast<const ZorWBOpNode*>(n)->GetType() : Type::None;
    }
    static int CountOf(const Node* n) { return n->GetNbOfChildren(); }
    static const Node* ChildOf(const Node* n, int i) { return n->GetChild(i); }
    static const ZorWBValue& ValueOf(const Node* n) {
        return static_cast<const ZorWBConstNode*>(n)->GetValue();
    }
    static ZorQelString NameOf(const Node* n) {
        return static_cast<const ZorWBVarNode*>(n)->GetName();
    }
    static ZorQelString CallNameOf(const Node* n) {
        const ZorWBBlackBox* blackBox =
            n->IsOperator() ? static_cast<const ZorWBOpNode*>(n)->GetBlackBox() : nullptr;
        if (blackBox) return blackBox->GetName();
        const char* name = ZorWBPrintShape::TypeCallName(TypeOf(n));
        return name ? name : "ERROR";
    }
    static int ComparisonOf(const Node* n) {
        return n->IsOperator() ? static_cast<const ZorWBOpNode*>(n)->GetComparisonType() : 0;
    }
    static const ZorQelString* UnitOf(const Node* n) {
        return n->HasUnit() ? &n->GetUnitName() : nullptr;
    }
    static Binding TextBindingOf(const Node* n) {
        if (IsConstant(n))
            return ZorWBIsNegativeNumber(ValueOf(n)) ? Binding::Unary : Binding::Primary;
        Type type = TypeOf(n);
        if (type == Type::UnaryMinus) return Binding::Unary;
        return ZorWBInfixBinding(type);
    }
    static bool IsNegatedShape(const Node*) { return false; }
    static bool IsPlainNegation(const Node*, bool) { return false; }
    static Binding NegatedBindingOf(const Node*) { return Binding::Primary; }
    static int NbOfParametersOf(const Node*) { return 0; }
    static double ParameterOf(const Node*, int) { return 0.0; }
};

// Units written as marks right after their number, without a space: the
// degree sign (the byte 0xB0), ' and ".
const char* UnitMark(const ZorQelString& unit) {
    if (unit == "\xB0") return "&#xB0;";
    if (unit == "'") return "&#x2032;";
    if (unit == "\"") return "&#x2033;";
    return nullptr;
}

template <class Source>
class Printer {
  public:
    using Node = typename Source::Node;

    explicit Printer(ZorQelString& out) : _out(out) {}

    // Writes the pieces gathered so far, in order, with everything they
    // expand to.
    void Run() {
        Flush();
        while (!_pending.empty()) {
            Item item = _pending.back();
            _pending.pop_back();
            if (item.text)
                _out += item.text;
            else
                Expand(item);
            Flush();
        }
    }

    void Text(const char* text) { _pieces.push_back({nullptr, text, Form::Plain, false}); }
    void Element(const Node* node) { _pieces.push_back({node, nullptr, Form::Plain, false}); }
    // The negation of a negated shape, in brackets when it binds as loosely
    // as a sum.
    void Negated(const Node* node) {
        bool brackets = Source::NegatedBindingOf(node) <= Binding::Additive;
        _pieces.push_back({node, nullptr, Form::Negated, brackets});
    }

  private:
    enum class Form : unsigned char {
        Plain,        // the node with its unit
        WithoutUnit,  // the node itself, its unit written around it
        Negated,      // the negation of a negated shape
        CallName,     // <mi>name</mi>
        Parameters,   // the parameters of a call, each after a comma
        Unit,         // the unit of the node
    };
    struct Item {
        const Node* node;
        const char* text;
        Form form;
        bool brackets;
    };

    void Piece(const Node* node, Form form, bool brackets) {
        _pieces.push_back({node, nullptr, form, brackets});
    }
    void Bracketed(const Node* node, bool brackets) { Piece(node, Form::Plain, brackets); }
    // An operand of an infix operator, in brackets where it needs them.
    void Operand(Type type, const Node* operand, bool left) {
        Bracketed(operand, ZorWBNeedsBrackets(type, left, MathBinding<Source>(operand)));
    }
    void Symbol(const char* symbol) {
        Text("<mo>");
        Text(symbol);
        Text("</mo>");
    }

    void Flush() {
        _pending.insert(_pending.end(), _pieces.rbegin(), _pieces.rend());
        _pieces.clear();
    }

    void Expand(const Item& item) {
        const Node* node = item.node;
        if (!node) {
            _out += MathText::Unprintable();
        } else if (item.brackets) {
            Text("<mrow><mo>(</mo>");
            Piece(node, item.form, false);
            Text("<mo>)</mo></mrow>");
        } else if (item.form == Form::Plain && Source::UnitOf(node)) {
            ExpandUnit(node);
        } else if (item.form == Form::Unit) {
            WriteUnit(*Source::UnitOf(node));
        } else if (item.form == Form::Negated) {
            ExpandNegated(node);
        } else if (item.form == Form::CallName) {
            _out += "<mi>";
            MathText::AppendEscaped(_out, Source::CallNameOf(node).GetString());
            _out += "</mi>";
        } else if (item.form == Form::Parameters) {
            for (int i = 0; i < Source::NbOfParametersOf(node); ++i) {
                _out += "<mo>,</mo>";
                MathText::AppendValue(_out, ZorWBValue(Source::ParameterOf(node, i)));
            }
        } else {
            ExpandPlain(node);
        }
    }

    void ExpandUnit(const Node* node) {
        Text("<mrow>");
        bool brackets =
            !Source::IsConstant(node) && MathBinding<Source>(node, false) < Binding::Primary;
        Piece(node, Form::WithoutUnit, brackets);
        Piece(node, Form::Unit, false);
        Text("</mrow>");
    }

    void WriteUnit(const ZorQelString& unit) {
        if (const char* mark = UnitMark(unit)) {
            _out += "<mi mathvariant=\"normal\">";
            _out += mark;
        } else {
            _out += "<mspace width=\"0.2em\"/><mi mathvariant=\"normal\">";
            MathText::AppendEscaped(_out, unit.GetString());
        }
        _out += "</mi>";
    }

    void ExpandPlain(const Node* node) {
        if (Source::IsConstant(node)) {
            MathText::AppendValue(_out, Source::ValueOf(node));
        } else if (Source::IsVariable(node)) {
            _out += "<mi>";
            MathText::AppendEscaped(_out, Source::NameOf(node).GetString());
            _out += "</mi>";
        } else {
            ExpandOperator(node, FormOf(Source::TypeOf(node), Source::CountOf(node)));
        }
    }

    void ExpandOperator(const Node* node, const MathForm& form) {
        const Node* first = Source::ChildOf(node, 0);
        switch (form.layout) {
            case Layout::Sum:
                return ExpandSum(node);
            case Layout::Minus:
                Text("<mrow>");
                Operand(form.type, first, true);
                Symbol(form.open);
                Operand(form.type, Source::ChildOf(node, 1), false);
                Text("</mrow>");
                return;
            case Layout::Product:
                return ExpandProduct(node);
            case Layout::Fraction:
            case Layout::Root:
                Text(form.layout == Layout::Root ? "<mroot>" : "<mfrac>");
                Element(first);
                Element(Source::ChildOf(node, 1));
                Text(form.layout == Layout::Root ? "</mroot>" : "</mfrac>");
                return;
            case Layout::Power:
                Text("<msup>");
                Operand(form.type, first, true);
                Element(Source::ChildOf(node, 1));
                Text("</msup>");
                return;
            case Layout::SquareRoot:
                Text("<msqrt>");
                Element(first);
                Text("</msqrt>");
                return;
            case Layout::Fence:
                Text("<mrow>");
                Symbol(form.open);
                Element(first);
                Symbol(form.close);
                Text("</mrow>");
                return;
            case Layout::UnaryMinus:
            case Layout::Not:
                Text("<mrow>");
                Symbol(form.open);
                Bracketed(first,
                          MathBinding<Source>(first) <
                              (form.layout == Layout::Not ? Binding::Primary : Binding::Unary));
                Text("</mrow>");
                return;
            case Layout::Cases:
                Text("<mrow><mo>{</mo><mtable columnalign=\"left left\"><mtr><mtd>");
                Element(Source::ChildOf(node, 1));
                Text("</mtd><mtd><mrow><mtext>if&#xA0;</mtext>");
                Element(first);
                Text("</mrow></mtd></mtr><mtr><mtd>");
                Element(Source::ChildOf(node, 2));
                Text("</mtd><mtd><mtext>otherwise</mtext></mtd></mtr></mtable></mrow>");
                return;
            case Layout::Relation:
                return ExpandRelation(node, form);
            case Layout::Logic:
                Text("<mrow>");
                Bracketed(first, IsCombination(first));
                Symbol(form.open);
                Bracketed(Source::ChildOf(node, 1), IsCombination(Source::ChildOf(node, 1)));
                Text("</mrow>");
                return;
            case Layout::Integral:
                Text("<mrow>");
                Symbol(form.open);
                Bracketed(first, MathBinding<Source>(first) <= Binding::Additive);
                Text("<mi mathvariant=\"normal\">d</mi>");
                Element(Source::ChildOf(node, 1));
                Text("</mrow>");
                return;
            default:
                return ExpandCall(node);
        }
    }

    void ExpandSum(const Node* node) {
        Text("<mrow>");
        Operand(Type::Sum, Source::ChildOf(node, 0), true);
        for (int i = 1; i < Source::CountOf(node); ++i) {
            const Node* term = Source::ChildOf(node, i);
            if (term && Source::IsNegatedShape(term)) {
                Text(MathText::MinusSign());
                Negated(term);
            } else {
                Symbol("+");
                Operand(Type::Sum, term, false);
            }
        }
        Text("</mrow>");
    }

    void ExpandProduct(const Node* node) {
        Text("<mrow>");
        if (Source::IsPlainNegation(node, false)) {
            const Node* negated = Source::ChildOf(node, 1);
            Text(MathText::MinusSign());
            Bracketed(negated, MathBinding<Source>(negated) < Binding::Unary);
        } else {
            Operand(Type::Product, Source::ChildOf(node, 0), true);
            ProductRest(node);
        }
        Text("</mrow>");
    }

    void ProductRest(const Node* node) {
        for (int i = 1; i < Source::CountOf(node); ++i) {
            const Node* factor = Source::ChildOf(node, i);
            Symbol(IsInvisibleTimes(Source::ChildOf(node, i - 1), factor) ? "&#x2062;"
                                                                          : "&#x22C5;");
            Operand(Type::Product, factor, false);
        }
    }

    // "2 x", "3 sin(x)": a number that is not negative, then a name, a call
    // or a radical.
    static bool IsInvisibleTimes(const Node* left, const Node* right) {
        if (!left || !right || !Source::IsConstant(left) || Source::UnitOf(left)) return false;
        if (MathText::BindingOfValue(Source::ValueOf(left)) != Binding::Primary) return false;
        if (Source::IsVariable(right)) return true;
        if (Source::IsConstant(right)) return false;
        Layout layout = FormOf(Source::TypeOf(right), Source::CountOf(right)).layout;
        return layout == Layout::Call || layout == Layout::SquareRoot || layout == Layout::Root;
    }

    void ExpandNegated(const Node* node) {
        if (Source::IsConstant(node)) {
            MathText::AppendNegatedValue(_out, Source::ValueOf(node));
        } else if (Source::IsPlainNegation(node, true)) {
            Element(Source::ChildOf(node, 1));
        } else if (Source::TypeOf(node) == Type::Product) {
            Text("<mrow>");
            Piece(Source::ChildOf(node, 0), Form::Negated, false);
            ProductRest(node);
            Text("</mrow>");
        } else {  // a quotient
            Text("<mfrac>");
            Piece(Source::ChildOf(node, 0), Form::Negated, false);
            Element(Source::ChildOf(node, 1));
            Text("</mfrac>");
        }
    }

    void ExpandRelation(const Node* node, const MathForm& form) {
        const char* symbol = form.type == Type::LessEqual
                                 ? MathText::ComparisonSymbol(Source::ComparisonOf(node))
                                 : form.open;
        Text("<mrow>");
        for (int i = 0; i < 2; ++i) {
            const Node* operand = Source::ChildOf(node, i);
            if (i == 1) Symbol(symbol);
            Bracketed(operand, MathBinding<Source>(operand) == Binding::Condition);
        }
        Text("</mrow>");
    }

    // An operand of "and", "or" or an implication that is itself one (or
    // cases): bracketed.
    static bool IsCombination(const Node* node) {
        if (!node || MathBinding<Source>(node) != Binding::Condition) return false;
        Layout layout = FormOf(Source::TypeOf(node), Source::CountOf(node)).layout;
        return layout != Layout::Relation && layout != Layout::Not;
    }

    void ExpandCall(const Node* node) {
        Text("<mrow>");
        Piece(node, Form::CallName, false);
        Text("<mo>&#x2061;</mo><mrow><mo>(</mo>");
        for (int i = 0; i < Source::CountOf(node); ++i) {
            if (i > 0) Text("<mo>,</mo>");
            Element(Source::ChildOf(node, i));
        }
        Piece(node, Form::Parameters, false);
        Text("<mo>)</mo></mrow></mrow>");
    }

    ZorQelString& _out;
    std::vector<Item> _pending;
    std::vector<Item> _pieces;
};

void AppendEquation(ZorQelString& out, const ZorWBEquation& equation) {
    out += MathText::MathOpen(true);
    Printer<FactorySource> printer(out);
    const ZorWBExpression* root = ZorWBPrintShape::Printable(equation.GetRoot());
    const char* relation = MathText::RelationSymbol(equation.GetType());
    if (!relation) {
        bool extremum = equation.GetType() == ZorWBMinimize || equation.GetType() == ZorWBMaximize;
        if (extremum)
            printer.Text(equation.GetType() == ZorWBMinimize
                             ? "<mrow><mtext>minimize&#xA0;</mtext>"
                             : "<mrow><mtext>maximize&#xA0;</mtext>");
        printer.Element(root);
        if (extremum) printer.Text("</mrow>");
    } else {
        bool negated = root && root->GetType() == Type::Sum && root->GetNbOfChildren() == 2 &&
                       ZorWBPrintShape::IsSubtractedShape(root->GetChild(1));
        printer.Text("<mrow>");
        printer.Element(negated ? root->GetChild(0) : root);
        printer.Text("<mo>");
        printer.Text(relation);
        printer.Text("</mo>");
        if (negated)
            printer.Negated(root->GetChild(1));
        else
            printer.Text("<mn>0</mn>");
        printer.Text("</mrow>");
    }
    printer.Run();
    out += MathText::MathClose();
}

void AppendModelNode(ZorQelString& out, const ZorWBNode* node) {
    bool equation = node && node->GetNodeKind() == ZorWBEquationNode;
    out += MathText::MathOpen(equation);
    Printer<ModelSource> printer(out);
    if (!equation) {
        printer.Element(node);
    } else {
        const ZorWBEqNode* eq = static_cast<const ZorWBEqNode*>(node);
        const char* relation = MathText::RelationSymbol(eq->GetWBEqType());
        if (!relation || !eq->GetRightTerm()) {
            printer.Element(eq->GetLeftTerm());
        } else {
            printer.Text("<mrow>");
            printer.Element(eq->GetLeftTerm());
            printer.Text("<mo>");
            printer.Text(relation);
            printer.Text("</mo>");
            printer.Element(eq->GetRightTerm());
            printer.Text("</mrow>");
        }
    }
    printer.Run();
    out += MathText::MathClose();
}

}  // namespace

ZorQelString ZorWBEquationMLPrinter::Print(const ZorWBExpression* expression) {
    ZorQelString text(MathText::MathOpen(false));
    Printer<FactorySource> printer(text);
    printer.Element(ZorWBPrintShape::Printable(expression));
    printer.Run();
    return text + MathText::MathClose();
}

ZorQelString ZorWBEquationMLPrinter::PrintValue(const ZorWBValue& value) {
    ZorQelString text(MathText::MathOpen(false));
    MathText::AppendValue(text, value);
    return text + MathText::MathClose();
}

ZorQelString ZorWBEquationMLPrinter::Print(const ZorWBEquation* equation) {
    ZorQelString text;
    if (equation) AppendEquation(text, *equation);
    return text;
}

ZorQelString ZorWBEquationMLPrinter::Print(const ZorWBFactory& factory) {
    ZorQelString text;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        AppendEquation(text, *factory.GetEquation(i));
        text += "\n";
    }
    return text;
}

ZorQelString ZorWBEquationMLPrinter::Print(const ZorWBNode* node) {
    ZorQelString text;
    AppendModelNode(text, node);
    return text;
}

ZorQelString ZorWBEquationMLPrinter::Print(const ZorWBModel& model) {
    ZorQelString text;
    for (const ZorWBEqNode* equation = model.GetFirstEquation(); equation;
         equation = equation->GetNext()) {
        AppendModelNode(text, equation);
        text += "\n";
    }
    return text;
}
