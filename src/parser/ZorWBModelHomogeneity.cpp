#include "parser/ZorWBModelHomogeneity.h"

#include <vector>

#include "parser/ZorWBModel.h"
#include "parser/ZorWBModelPrinter.h"
#include "parser/ZorWBNode.h"
#include "parser/ZorWBParserResult.h"
#include "qel/ZorQelGlobalParameters.h"

namespace {

using Kind = ZorWBUnitKind;

// The outcome of one combination rule: the kind, the trace line naming the
// rule, and whether the line ends with the kind's name.
struct Rule {
    Kind kind;
    const char* text;
    bool namesKind;
};

bool IsEither(Kind kind, Kind a, Kind b) {
    return kind == a || kind == b;
}

bool IsDimensioned(Kind kind) {
    return kind == Kind::Ambiguous || kind == Kind::Distance || kind == Kind::Angle;
}

Rule SumOrMinus(Kind k1, Kind k2) {
    if (k1 == Kind::Inhomogeneous || k2 == Kind::Inhomogeneous)
        return {Kind::Inhomogeneous,
                " for Sum et Minus, if one child is Inhomogeneous  => Inhomogeneous", false};
    if (k1 == Kind::Unsolved || k2 == Kind::Unsolved)
        return {Kind::Unsolved, " for Sum et Minus, if one child is Unsolved => Unsolved", false};
    if (IsEither(k1, Kind::Ambiguous, Kind::None))
        return {k2, " for Sum et Minus, as child1 is Ambiguous or None => Other type =", true};
    if (IsEither(k2, Kind::Ambiguous, Kind::None))
        return {k1, " for Sum et Minus, as child2 is Ambiguous or None => Other type =", true};
    if (k1 == Kind::Distance && k2 == Kind::Distance)
        return {Kind::Distance, " for Sum et Minus, the 2 children are Distances => Distance",
                false};
    if (k1 == Kind::Angle && k2 == Kind::Angle)
        return {Kind::Angle, " for Sum et Minus, the 2 children are Angles => Angle", false};
    return {Kind::Inhomogeneous, " for Sum et Minus, default case => Inhomogeneous", false};
}

Rule Product(Kind k1, Kind k2) {
    if (k1 == Kind::None) return {k2, " for Product, as child1 is  None => Other type =", true};
    if (k2 == Kind::None) return {k1, " for Product, as child2 is  None => Other type =", true};
    return {Kind::Unsolved, " default case for Product => Unsolved", false};
}

Rule Quotient(Kind k1, bool c1, Kind k2, bool c2) {
    if (k1 == Kind::Inhomogeneous || k2 == Kind::Inhomogeneous)
        return {Kind::Inhomogeneous,
                " for Quotient, if one child is Inhomogeneous  => Inhomogeneous", false};
    if (k1 == Kind::Unsolved || k2 == Kind::Unsolved)
        return {Kind::Unsolved, " for Quotient, if one child is Unsolved  => Unsolved", false};
    if (k1 == Kind::Ambiguous && k2 == Kind::None && c2)
        return {Kind::Ambiguous,
                " for Quotient, as child1 is Ambiguous and child2 is None => Ambiguous", false};
    if (k1 == Kind::Ambiguous)
        return {Kind::None, " for Quotient, as child1 is Ambiguous and child2 is not a cst => None",
                false};
    if (k1 == Kind::None && IsDimensioned(k2)) {
        if (c1)
            return {Kind::Unsolved,
                    " for Quotient, as child1 is a cst and child2 is Ambiguous or a distance or "
                    "an Angle => Unsolved",
                    false};
        return {Kind::None,
                " for Quotient, as child1 is None (but not a cst) and child2 is Ambiguous or a "
                "distance or an Angle => UnsolveNoned",
                false};
    }
    if (k1 == Kind::None && k2 == Kind::None) {
        if (c1 && !c2)
            return {Kind::Unsolved,
                    " for Quotient, as child1 is a cst and child2 is not a cst => "
                    "Unsolved",
                    false};
        return {Kind::None,
                " for Quotient, as child 2 is a cst or child1 is None but not a cst => none",
                false};
    }
    if (k2 == Kind::Ambiguous)
        return {Kind::None, " for Quotient, as child1 is  notNone and child2 is Ambiguous => None",
                false};
    if (k1 == Kind::Distance && k2 == Kind::Distance)
        return {Kind::None, " for Quotient, the 2 children are Distances => None", false};
    if (k1 == Kind::Angle && k2 == Kind::Angle)
        return {Kind::None, " for Quotient, the 2 children are Angles => None", false};
    if (k1 == Kind::Distance && k2 == Kind::None) {
        if (c2)
            return {Kind::Distance,
                    " for Quotient, as child 1 a distance and child a cst => Distance", false};
        return {
            Kind::Ambiguous,
            " for Quotient, as child 1 a distance and child is None (but not a Cst)=> Ambiguous",
            false};
    }
    if (k1 == Kind::Angle && k2 == Kind::None) {
        if (c2)
            return {Kind::Angle, " for Quotient, as child 1 an Angle and child a cst => Angle",
                    false};
        return {Kind::Ambiguous,
                " for Quotient, as child 1 an Angle and child is None (but not a Cst)=> Ambiguous",
                false};
    }
    if (IsEither(k1, Kind::Distance, Kind::Angle))
        return {Kind::Unsolved,
                " for Quotient, as the child1 is Distance or Angle but not the child 2 => Unsolved",
                false};
    return {Kind::Inhomogeneous, " for Quotient, default case  => Inhomogeneous", false};
}

Rule Combine(ZorWBExpressionType type, Kind k1, bool c1, Kind k2, bool c2) {
    switch (type) {
        case ZorWBExpressionType::Sum:
        case ZorWBExpressionType::Minus:
            return SumOrMinus(k1, k2);
        case ZorWBExpressionType::Product:
            return Product(k1, k2);
        case ZorWBExpressionType::Quotient:
            return Quotient(k1, c1, k2, c2);
        default:
            return {Kind::Unsolved, " default case for the main part of the operators => Unsolved",
                    false};
    }
}

ZorQelStream* TraceStream() {
    ZorQelGlobalParameters& parameters = ZorQelGlobalParameters::GetGlobalParameters();
    return parameters.GetTraceLevel() >= 1 ? parameters.GetTraceStream() : nullptr;
}

void TraceLine(ZorQelStream* trace, const ZorQelString& line) {
    trace->Write(line);
    trace->Write("\n");
}

// One node of the walk, with what its children have delivered so far.
struct Frame {
    const ZorWBNode* node;
    bool traced;  // whether the rules look at this node (and it is traced)
    bool started = false;
    int nextChild = 0;
    Kind childKinds[2] = {Kind::None, Kind::None};
    bool childConstant[2] = {false, false};
    bool allConstant = true;
};

}  // namespace

// The walk behind ComputeKind and RecordKinds: post-order, with an explicit
// stack of frames.
class ZorWBModelHomogeneity::KindWalk {
  public:
    // The stack of frames is the thread's, kept from one walk to the next:
    // a check walks every term. No walk starts inside another.
    KindWalk(ZorQelStream* trace, NodeKinds* kinds, bool record)
        : _trace(trace), _kinds(kinds), _record(record), _frames(SpareFrames()) {}

    Kind Run(const ZorWBNode* root, bool& isConstant) {
        _frames.clear();
        _frames.push_back({root, true});
        while (!_frames.empty())
            Advance(_frames.back());
        isConstant = _resultConstant;
        return _resultKind;
    }

  private:
    static bool HasTwoOperands(const ZorWBNode& node) {
        return node.GetNbOfChildren() == 2 && node.GetChild(0) && node.GetChild(1);
    }

    // Works on the top frame: starts it, descends into its next child, or
    // finishes it. A leaf child is finished at once, without a frame.
    void Advance(Frame& frame) {
        const ZorWBNode* node = frame.node;
        if (!node || !node->IsOperator()) {
            Finish(frame, Leaf(node), IsConstantLeaf(node));
            return;
        }
        const ZorWBOpNode& op = *static_cast<const ZorWBOpNode*>(node);
        bool binary = HasTwoOperands(op);
        if (!frame.started) {
            frame.started = true;
            if (frame.traced && _trace)
                TraceLine(_trace,
                          ZorQelString(" Homogeneity OpType =") + static_cast<int>(op.GetType()));
        }
        if (frame.nextChild < op.GetNbOfChildren()) {
            int i = frame.nextChild++;
            bool tracedChild = frame.traced && binary;
            if (tracedChild && _trace)
                TraceLine(_trace, i == 0 ? " Homogeneity Child1 :" : " Homogeneity Child2 :");
            const ZorWBNode* child = op.GetChild(i);
            if (!child) {
                frame.allConstant = false;
                return;
            }
            if (!child->IsOperator()) {
                Deliver(frame, i, child, tracedChild, Leaf(child), IsConstantLeaf(child));
                return;
            }
            _frames.push_back({child, tracedChild});  // may move frame: no use after this
            return;
        }
        bool constant = frame.allConstant && op.GetType() != ZorWBExpressionType::BlackBox;
        if (op.GetNbOfChildren() != 2) {
            Finish(frame, Kind::Unsolved, constant);
        } else if (!binary) {
            Finish(frame, Kind::Inhomogeneous, constant);
        } else {
            Rule rule = Combine(op.GetType(), frame.childKinds[0], frame.childConstant[0],
                                frame.childKinds[1], frame.childConstant[1]);
            if (frame.traced && _trace) {
                ZorQelString line(rule.text);
                if (rule.namesKind) line += ZorWBUnitKindName(rule.kind);
                TraceLine(_trace, line);
            }
            Finish(frame, rule.kind, constant);
        }
    }

    static Kind Leaf(const ZorWBNode* node) {
        return node ? node->GetUnitKindCode() : Kind::Inhomogeneous;
    }

    // Whether a leaf is constant (node IsConstant): only a number is.
    static bool IsConstantLeaf(const ZorWBNode* node) {
        return node && node->GetNodeKind() == ZorWBConstantNode;
    }

    // Records a node's kind, and traces it.
    void Record(const ZorWBNode* node, bool traced, Kind kind) {
        if (traced && _trace)
            TraceLine(_trace, ZorQelString(" FillHomogeneity  :") + ZorWBModelPrinter::Print(node) +
                                  " => " + ZorWBUnitKindName(kind));
        if (_kinds && node) (*_kinds)[node] = kind;
        if (_record && node) node->_subtreeKind = kind;
    }

    // A leaf child i of the parent's frame, done without a frame of its own.
    void Deliver(Frame& parent, int i, const ZorWBNode* leaf, bool traced, Kind kind,
                 bool constant) {
        Record(leaf, traced, kind);
        if (i < 2) {
            parent.childKinds[i] = kind;
            parent.childConstant[i] = constant;
        }
        parent.allConstant = parent.allConstant && constant;
    }

    // Records a node's kind, hands it to the parent frame and pops.
    void Finish(const Frame& frame, Kind kind, bool constant) {
        Record(frame.node, frame.traced, kind);
        _frames.pop_back();
        if (_frames.empty()) {
            _resultKind = kind;
            _resultConstant = constant;
            return;
        }
        Frame& parent = _frames.back();
        int index = parent.nextChild - 1;
        if (index < 2) {
            parent.childKinds[index] = kind;
            parent.childConstant[index] = constant;
        }
        parent.allConstant = parent.allConstant && constant;
    }

    static std::vector<Frame>& SpareFrames() {
        thread_local std::vector<Frame> frames;
        return frames;
    }

    ZorQelStream* _trace;
    NodeKinds* _kinds;
    bool _record;
    std::vector<Frame>& _frames;
    Kind _resultKind = Kind::Inhomogeneous;
    bool _resultConstant = false;
};

ZorWBUnitKind ZorWBModelHomogeneity::ComputeKind(const ZorWBNode* node, bool& isConstant,
                                                 NodeKinds* kinds) {
    return KindWalk(TraceStream(), kinds, false).Run(node, isConstant);
}

bool ZorWBModelHomogeneity::IsTraced() {
    return TraceStream() != nullptr;
}

ZorWBUnitKind ZorWBModelHomogeneity::RecordKinds(const ZorWBNode* node, bool& isConstant) {
    return KindWalk(TraceStream(), nullptr, true).Run(node, isConstant);
}

ZorQelString ZorWBModelHomogeneity::FillHomogeneity(ZorWBNode* node) {
    bool isConstant = false;
    return ZorWBUnitKindName(ComputeKind(node, isConstant));
}

int ZorWBModelHomogeneity::JudgeEquation(bool hasLeft, ZorWBUnitKind left, bool leftConstant,
                                         bool hasRight, ZorWBUnitKind right, bool rightConstant) {
    constexpr int Homogeneous = ZorWBParserResult::Success;
    constexpr int NotHomogeneous = ZorWBParserResult::NotApplicable;
    if (!hasLeft && !hasRight) return ZorWBParserResult::Failure;
    if (!hasRight || !hasLeft) {
        Kind single = hasLeft ? left : right;
        return single == Kind::Unsolved ? NotHomogeneous : Homogeneous;
    }
    bool notHomogeneous = IsEither(left, Kind::Inhomogeneous, Kind::Unsolved) ||
                          IsEither(right, Kind::Inhomogeneous, Kind::Unsolved) ||
                          (left == Kind::Distance && right == Kind::Angle) ||
                          (left == Kind::Distance && right == Kind::None && !rightConstant) ||
                          (left == Kind::None && right == Kind::Distance && leftConstant) ||
                          (left == Kind::Angle && right == Kind::Distance) ||
                          (left == Kind::Angle && right == Kind::None && !rightConstant) ||
                          (left == Kind::None && right == Kind::Angle);
    return notHomogeneous ? NotHomogeneous : Homogeneous;
}

int ZorWBModelHomogeneity::CheckHomogeneity(ZorWBEqNode& equation) {
    ZorWBNode* leftTerm = equation.GetLeftTerm();
    ZorWBNode* rightTerm = equation.GetRightTerm();
    bool leftConstant = false, rightConstant = false;
    Kind left = leftTerm ? ComputeKind(leftTerm, leftConstant) : Kind::None;
    Kind right = rightTerm ? ComputeKind(rightTerm, rightConstant) : Kind::None;
    return JudgeEquation(leftTerm != nullptr, left, leftConstant, rightTerm != nullptr, right,
                         rightConstant);
}

int ZorWBModelHomogeneity::CheckHomogeneity(ZorWBModel& model) {
    int result = ZorWBParserResult::Success;
    for (ZorWBEqNode* equation = model.GetFirstEquation(); equation;
         equation = equation->GetNext()) {
        int status = CheckHomogeneity(*equation);
        if (status == ZorWBParserResult::Failure) return status;
        if (status != ZorWBParserResult::Success) result = status;
    }
    return result;
}
