#include "output/ZorWBModelGraph.h"

#include <cstring>
#include <new>
#include <unordered_map>
#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBLanguageText.h"
#include "output/ZorWBFactoryGraph.h"
#include "output/ZorWBGraphText.h"
#include "output/ZorWBPrintShape.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBModelPrinter.h"
#include "parser/ZorWBNode.h"

namespace {

using Type = ZorWBExpressionType;
using Arrow = ZorWBGraphText::Arrow;

const char* OperatorSymbol(const ZorWBOpNode& op) {
    switch (op.GetType()) {
        case Type::Sum:
            return "+";
        case Type::Minus:
            return "-";
        case Type::UnaryMinus:
            return "neg";
        case Type::Product:
            return "*";
        case Type::Quotient:
            return "/";
        case Type::Power:
            return "^";
        case Type::Equal:
            return "==";
        case Type::NotEqual:
            return "!=";
        case Type::LessEqual: {
            static const char* const comparisons[] = {"<=", "<=", "<", ">=", ">"};
            int comparison = op.GetComparisonType();
            return comparisons[comparison >= 0 && comparison <= 4 ? comparison : 0];
        }
        case Type::And:
            return "and";
        case Type::Or:
            return "or";
        case Type::Not:
            return "!";
        case Type::IfThenElse:
            return "if";
        default:
            return nullptr;
    }
}

ZorQelString OperatorLabel(const ZorWBOpNode& op) {
    if (const char* symbol = OperatorSymbol(op)) return symbol;
    if (op.GetBlackBox()) return op.GetBlackBox()->GetName() + "()";
    const char* name = ZorWBPrintShape::TypeCallName(op.GetType());
    return name ? name : "?";
}

const char* ShapeOf(const ZorWBNode* node) {
    switch (node->GetNodeKind()) {
        case ZorWBConstantNode:
            return "octagon";
        case ZorWBVariableNode:
            return "box";
        case ZorWBEquationNode:
            return "Msquare";
        default:
            return static_cast<const ZorWBOpNode*>(node)->GetBlackBox() ? "hexagon" : "ellipse";
    }
}

bool IsOrdered(const ZorWBNode* node) {
    if (node->GetNodeKind() == ZorWBEquationNode) return true;
    if (!node->IsOperator()) return false;
    Type type = static_cast<const ZorWBOpNode*>(node)->GetType();
    return ZorWBFactoryGraph::IsOrderedOperator(type) || type == Type::Minus ||
           type == Type::LessEqual;
}

Arrow ArrowOf(const ZorWBNode* parent, int position) {
    if (!IsOrdered(parent)) return ZorWBGraphText::Plain;
    return position == 0 ? ZorWBGraphText::Diamond : ZorWBGraphText::EmptyDiamond;
}

// Numbers the nodes in drawing order and writes them through a format.
class Drawing {
  public:
    virtual ~Drawing() = default;

    void Draw(const ZorWBModel& model) {
        for (const ZorWBEqNode* equation = model.GetFirstEquation(); equation;
             equation = equation->GetNext())
            DrawFrom(equation);
    }

  protected:
    virtual void Node(const ZorQelString& id, const char* shape, const ZorQelString& label,
                      const ZorQelString& location) = 0;
    virtual void Edge(const ZorQelString& from, const ZorQelString& to, Arrow arrow) = 0;

  private:
    ZorQelString IdentityOf(const ZorWBNode* node) {
        if (node->GetNodeKind() == ZorWBEquationNode)
            return ZorQelString("S").AppendInt(static_cast<const ZorWBEqNode*>(node)->GetId());
        return ZorQelString("M").AppendInt(_numbers.at(node));
    }

    // Numbers a node not seen yet and writes its line; false when it was
    // already drawn.
    bool Visit(const ZorWBNode* node) {
        if (node->GetNodeKind() != ZorWBEquationNode) {
            int number = static_cast<int>(_numbers.size());
            if (!_numbers.emplace(node, number).second) return false;
        }
        Node(IdentityOf(node), ShapeOf(node), ZorWBModelGraph::NodeLabel(node),
             ZorWBModelGraph::LocationText(node->GetLocation()));
        return true;
    }

    // The node, its edges and, depth first, every child not drawn yet.
    void DrawFrom(const ZorWBNode* root) {
        struct Frame {
            const ZorWBNode* node;
            int next;
        };
        Visit(root);
        std::vector<Frame> stack{{root, 0}};
        while (!stack.empty()) {
            Frame& frame = stack.back();
            const ZorWBNode* node = frame.node;
            if (frame.next >= node->GetNbOfChildren()) {
                stack.pop_back();
                continue;
            }
            int position = frame.next++;
            const ZorWBNode* child = node->GetChild(position);
            if (!child) continue;
            bool fresh = Visit(child);
            Edge(IdentityOf(node), IdentityOf(child), ArrowOf(node, position));
            if (fresh) stack.push_back({child, 0});
        }
    }

    std::unordered_map<const ZorWBNode*, int> _numbers;
};

class WBGraphDrawing : public Drawing {
  public:
    explicit WBGraphDrawing(ZorQelStream& stream) : _stream(stream) {}

  protected:
    void Node(const ZorQelString& id, const char* shape, const ZorQelString& label,
              const ZorQelString& location) override {
        ZorWBGraphText::WBGraphNode(_stream, id.GetString(), shape,
                                    (label + " @" + location).GetString());
    }
    void Edge(const ZorQelString& from, const ZorQelString& to, Arrow arrow) override {
        ZorWBGraphText::WBGraphEdge(_stream, from.GetString(), to.GetString(), arrow);
    }

  private:
    ZorQelStream& _stream;
};

class DotDrawing : public Drawing {
  public:
    explicit DotDrawing(ZorQelStream& stream) : _stream(stream) {}

  protected:
    void Node(const ZorQelString& id, const char* shape, const ZorQelString& label,
              const ZorQelString& location) override {
        ZorWBGraphText::DotNode(_stream, id.GetString(), shape, label + "\n" + location);
    }
    void Edge(const ZorQelString& from, const ZorQelString& to, Arrow arrow) override {
        ZorWBGraphText::DotEdge(_stream, from.GetString(), to.GetString(), arrow);
    }

  private:
    ZorQelStream& _stream;
};

// Writes the drawing between its opening and closing lines; a drawing cut
// short by lack of memory still gets its closing line.
bool Write(ZorQelStream& stream, Drawing& drawing, const ZorWBModel& model, const char* open,
           const char* close) {
    bool written = stream.Write(open);
    try {
        drawing.Draw(model);
    } catch (const std::bad_alloc&) {
        written = false;
    }
    return stream.Write(close) && written;
}

}  // namespace

bool ZorWBModelGraph::WriteWBGraph(ZorQelStream& stream) const {
    WBGraphDrawing drawing(stream);
    return Write(stream, drawing, _model, "WBGraph\nstart\n", "end\n");
}

bool ZorWBModelGraph::WriteDot(ZorQelStream& stream) const {
    DotDrawing drawing(stream);
    return Write(stream, drawing, _model, "digraph WBModel {\n", "}\n");
}

ZorQelString ZorWBModelGraph::NodeLabel(const ZorWBNode* node) {
    if (!node) return "?";
    ZorQelString label;
    switch (node->GetNodeKind()) {
        case ZorWBConstantNode:
            ZorWBModelPrinter::AppendValue(label,
                                           static_cast<const ZorWBConstNode*>(node)->GetValue());
            if (node->HasUnit()) label += " " + node->GetUnitName();
            return label;
        case ZorWBVariableNode:
            label = static_cast<const ZorWBVarNode*>(node)->GetName();
            break;
        case ZorWBEquationNode: {
            const char* relation =
                ZorWBRelationText(static_cast<const ZorWBEqNode*>(node)->GetWBEqType());
            // " = " without its blanks
            return relation
                       ? ZorQelString(relation).Mid(1, static_cast<int>(std::strlen(relation)) - 2)
                       : ZorQelString(";");
        }
        default:
            label = OperatorLabel(*static_cast<const ZorWBOpNode*>(node));
            break;
    }
    return node->HasUnit() ? "(" + label + ") " + node->GetUnitName() : label;
}

ZorQelString ZorWBModelGraph::LocationText(const ZorWBLocation& location) {
    ZorQelString text;
    text.AppendInt(location.GetFirstLine()).AppendChar(':');
    text.AppendInt(static_cast<long long>(location.GetFirstColumn()) + 1).AppendChar('-');
    text.AppendInt(location.GetLastLine()).AppendChar(':');
    return text.AppendInt(location.GetLastColumn());
}
