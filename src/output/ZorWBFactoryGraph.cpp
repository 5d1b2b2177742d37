#include "output/ZorWBFactoryGraph.h"

#include <new>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBGraphText.h"
#include "output/ZorWBValueText.h"
#include "qel/ZorQelGetEnv.h"

namespace {

using Type = ZorWBExpressionType;

using Arrow = ZorWBGraphText::Arrow;

// What a drawing produces, whatever the output format.
class GraphSink {
  public:
    virtual ~GraphSink() = default;
    virtual void Equation(const ZorWBEquation* equation, const ZorWBExpression* root) = 0;
    virtual void Node(const ZorWBExpression* node, bool withValues) = 0;
    virtual void Edge(const ZorWBExpression* parent, const ZorWBExpression* child, Arrow arrow) = 0;
};

bool HasEdges(const ZorWBExpression* node) {
    return !node->IsLeaf() && node->GetType() != Type::None;
}

Arrow ArrowOf(const ZorWBExpression* parent, int childPosition) {
    if (!ZorWBFactoryGraph::IsOrderedOperator(parent->GetType())) return ZorWBGraphText::Plain;
    return childPosition == 0 ? ZorWBGraphText::Diamond : ZorWBGraphText::EmptyDiamond;
}

// Draws e, its edges and, depth first, every child not yet visited: the
// order of the recursive drawing, kept on an explicit stack.
void DrawFrom(const ZorWBExpression* e, bool withValues, ZorWBVisitedExpressions& visited,
              GraphSink& sink) {
    if (!e) return;
    struct Frame {
        const ZorWBExpression* node;
        int next;
    };
    sink.Node(e, withValues);
    std::vector<Frame> stack{{e, 0}};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        const ZorWBExpression* node = frame.node;
        if (!HasEdges(node) || frame.next >= node->GetNbOfChildren()) {
            stack.pop_back();
            continue;
        }
        int position = frame.next++;
        const ZorWBExpression* child = node->GetChild(position);
        if (!child) continue;
        sink.Edge(node, child, ArrowOf(node, position));
        if (!visited.Add(child)) continue;
        sink.Node(child, withValues);
        stack.push_back({child, 0});
    }
}

ZorQelString ValueText(const ZorWBExpression* node) {
    return ZorWBValueText::Write(node->GetValue(), false);
}

ZorQelString VariableLabel(const ZorWBExpression* node) {
    return ZorQelString("X").AppendInt(static_cast<const ZorWBVariable*>(node)->GetIdx());
}

// The lines of a ".WBGraph" file.
class WBGraphSink : public GraphSink {
  public:
    explicit WBGraphSink(ZorQelStream& stream) : _stream(stream) {}

    void Equation(const ZorWBEquation* equation, const ZorWBExpression* root) override {
        ZorQelString identity = ZorWBFactoryGraph::EquationIdentity(equation);
        ZorWBGraphText::WBGraphNode(_stream, identity.GetString(), "Msquare",
                                    ZorWBFactoryGraph::EquationLabel(equation->GetType()));
        if (root)
            ZorWBGraphText::WBGraphEdge(_stream, identity.GetString(),
                                        ZorWBFactoryGraph::NodeIdentity(root).GetString(),
                                        ZorWBGraphText::Plain);
    }

    void Node(const ZorWBExpression* node, bool withValues) override {
        ZorQelString identity = ZorWBFactoryGraph::NodeIdentity(node);
        const char* id = identity.GetString();
        Type type = node->GetType();
        if (type == Type::None) {
            // Three leading blanks here, two everywhere else.
            _stream.Printf("   #%s : S(tripleoctagon) : L(...) : PSL#\n", id);
        } else if (type == Type::Variable) {
            if (withValues)
                WriteNode(id, "record", "{" + VariableLabel(node) + " | " + ValueText(node) + "}");
            else
                WriteNode(id, "box", VariableLabel(node));
        } else if (type == Type::Constant) {
            WriteNode(id, "octagon", ValueText(node));
        } else if (withValues) {
            WriteNode(id, "record",
                      ZorQelString(" {") + ZorWBFactoryGraph::OperatorLabel(type) + "|" +
                          ValueText(node) + "}");
        } else {
            WriteNode(id, nullptr, ZorWBFactoryGraph::OperatorLabel(type));
        }
    }

    void Edge(const ZorWBExpression* parent, const ZorWBExpression* child, Arrow arrow) override {
        ZorWBGraphText::WBGraphEdge(_stream, ZorWBFactoryGraph::NodeIdentity(parent).GetString(),
                                    ZorWBFactoryGraph::NodeIdentity(child).GetString(), arrow);
    }

  private:
    void WriteNode(const char* id, const char* shape, const ZorQelString& label) {
        ZorWBGraphText::WBGraphNode(_stream, id, shape, label.GetString());
    }

    ZorQelStream& _stream;
};

// A Graphviz digraph: the same nodes and edges, with the shapes of the
// ".WBGraph" lines and values under the labels.
class DotSink : public GraphSink {
  public:
    explicit DotSink(ZorQelStream& stream) : _stream(stream) {}

    void Equation(const ZorWBEquation* equation, const ZorWBExpression* root) override {
        ZorQelString identity = ZorWBFactoryGraph::EquationIdentity(equation);
        WriteNode(identity, "Msquare", ZorWBFactoryGraph::EquationLabel(equation->GetType()), "");
        if (root) WriteEdge(identity, ZorWBFactoryGraph::NodeIdentity(root), ZorWBGraphText::Plain);
    }

    void Node(const ZorWBExpression* node, bool withValues) override {
        ZorQelString identity = ZorWBFactoryGraph::NodeIdentity(node);
        Type type = node->GetType();
        if (type == Type::None)
            WriteNode(identity, "tripleoctagon", "...", "");
        else if (type == Type::Variable)
            WriteNode(identity, "box", VariableLabel(node), withValues ? ValueText(node) : "");
        else if (type == Type::Constant)
            WriteNode(identity, "octagon", ValueText(node), "");
        else
            WriteNode(identity, "ellipse", ZorWBFactoryGraph::OperatorLabel(type),
                      withValues ? ValueText(node) : "");
    }

    void Edge(const ZorWBExpression* parent, const ZorWBExpression* child, Arrow arrow) override {
        WriteEdge(ZorWBFactoryGraph::NodeIdentity(parent), ZorWBFactoryGraph::NodeIdentity(child),
                  arrow);
    }

  private:
    void WriteNode(const ZorQelString& identity, const char* shape, const ZorQelString& label,
                   const ZorQelString& value) {
        ZorWBGraphText::DotNode(_stream, identity.GetString(), shape,
                                value.IsEmpty() ? label : label + "\n" + value);
    }

    void WriteEdge(const ZorQelString& from, const ZorQelString& to, Arrow arrow) {
        ZorWBGraphText::DotEdge(_stream, from.GetString(), to.GetString(), arrow);
    }

    ZorQelStream& _stream;
};

// Draws an equation (when there is one) and its root.
void DrawEquation(const ZorWBEquation* equation, const ZorWBExpression* root, bool withValues,
                  ZorWBVisitedExpressions& visited, GraphSink& sink) {
    if (equation) sink.Equation(equation, root);
    if (root && visited.Add(root)) DrawFrom(root, withValues, visited, sink);
}

}  // namespace

bool ZorWBVisitedExpressions::Add(const ZorWBExpression* node) {
    if (!_set.insert(node).second) return false;
    _list.push_back(node);
    return true;
}

ZorWBFactoryGraph::ZorWBFactoryGraph(ZorWBFactory* factory, const ZorQelString& name)
    : _factory(factory), _name(name), _kind(FactoryGraph) {}

ZorWBFactoryGraph::ZorWBFactoryGraph(const ZorWBEquation* equation, const ZorQelString& name)
    : _root(equation ? equation->GetRoot() : nullptr),
      _equation(equation),
      _name(name),
      _kind(EquationGraph) {}

ZorWBFactoryGraph::ZorWBFactoryGraph(const ZorWBExpression* root, const ZorQelString& name)
    : _root(root), _name(name), _kind(ExpressionGraph) {}

const ZorWBExpression* ZorWBFactoryGraph::CurrentRoot() const {
    return _equation ? _equation->GetRoot() : _root;
}

ZorQelString ZorWBFactoryGraph::NodeIdentity(const ZorWBExpression* node) {
    return node ? ZorQelString("N").AppendInt(node->GetTag()) : ZorQelString("N");
}

ZorQelString ZorWBFactoryGraph::EquationIdentity(const ZorWBEquation* equation) {
    return equation ? ZorQelString("E").AppendInt(equation->GetId()) : ZorQelString("E");
}

const char* ZorWBFactoryGraph::EquationLabel(ZorWBEquationType type) {
    static const char* const labels[] = {"x", "=0", "!=0", "<=0", "<0", ">=0", ">0", "Min", "Max"};
    int number = static_cast<int>(type);
    return number >= 0 && number <= 8 ? labels[number] : "?";
}

const char* ZorWBFactoryGraph::OperatorLabel(ZorWBExpressionType type) {
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
    return info && info->graphLabel[0] != '\0' ? info->graphLabel : "non defined operator";
}

bool ZorWBFactoryGraph::IsOrderedOperator(ZorWBExpressionType type) {
    return type == Type::Implication || type == Type::Quotient || type == Type::Power ||
           type == Type::Root || type == Type::Mod;
}

ZorQelString ZorWBFactoryGraph::GetFilePath() const {
    ZorQelString logName = ZorQelGetEnv("VTS_LOG_NAME");
    ZorQelString directory = ZorQelGetEnv("QRM_VTS_OUT");
    if (logName.IsEmpty() || directory.IsEmpty()) return ZorQelString();
    ZorQelString fileName(logName);
    if (!_name.IsEmpty()) fileName.AppendChar('_').Append(_name);
    fileName.Append(".WBGraph");
    return ZorQelMakePath(directory, fileName);
}

void ZorWBFactoryGraph::GenerateWBTreeFile(bool withValues) {
    if (_kind != FactoryGraph) {
        GenerateBasicWBTreeFile(withValues);
        return;
    }
    if (!_factory) return;
    int position = 0;
    for (const ZorWBEquation* equation = _factory->GetNextEquation(nullptr); equation;
         equation = _factory->GetNextEquation(equation)) {
        ZorQelString name(_name);
        name.Append("_E").AppendInt(position++);
        ZorWBFactoryGraph(equation, name).GenerateBasicWBTreeFile(withValues);
    }
}

void ZorWBFactoryGraph::GenerateBasicWBTreeFile(bool withValues) {
    ZorQelString path = GetFilePath();
    if (path.IsEmpty()) return;
    ZorQelStream stream;
    if (!stream.OpenFile(path)) return;
    stream.Write("WBGraph\n");
    stream.Write("start\n");
    try {
        WBGraphSink sink(stream);
        ZorWBVisitedExpressions visited;
        DrawEquation(_equation, CurrentRoot(), withValues, visited, sink);
    } catch (const std::bad_alloc&) {
        // The file ends where memory ran out, with its closing line.
    }
    stream.Write("end\n");
    stream.Flush();
    stream.Close();
}

void ZorWBFactoryGraph::ChildTreatment(const ZorWBExpression* e, bool& withValues,
                                       ZorQelStream* stream, ZorWBVisitedExpressions& visited) {
    if (!e || !stream) return;
    try {
        WBGraphSink sink(*stream);
        DrawFrom(e, withValues, visited, sink);
    } catch (const std::bad_alloc&) {
    }
}

bool ZorWBFactoryGraph::WriteDot(ZorQelStream& stream, bool withValues) const {
    bool written = stream.Write("digraph WBGraph {\n");
    try {
        DotSink sink(stream);
        ZorWBVisitedExpressions visited;
        if (_kind != FactoryGraph) {
            DrawEquation(_equation, CurrentRoot(), withValues, visited, sink);
        } else if (_factory) {
            for (const ZorWBEquation* equation = _factory->GetNextEquation(nullptr); equation;
                 equation = _factory->GetNextEquation(equation))
                DrawEquation(equation, equation->GetRoot(), withValues, visited, sink);
        }
    } catch (const std::bad_alloc&) {
        written = false;
    }
    return stream.Write("}\n") && written;
}
