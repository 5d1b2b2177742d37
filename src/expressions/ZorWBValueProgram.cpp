// Compilation and execution of the value programs behind GetValue.

#include "expressions/ZorWBValueProgram.h"

#include <exception>
#include <unordered_map>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"

namespace {
using Type = ZorWBExpressionType;
}  // namespace

// One compilation: a depth-first walk emitting each node's code at its first
// occurrence and a call of that code at every later one.
class ZorWBValueProgramCompiler {
  public:
    using Program = ZorWBValueProgram;
    using Op = ZorWBValueProgram::Op;

    explicit ZorWBValueProgramCompiler(Program& program) : _program(program) {}

    bool Compile(const ZorWBExpression* root) {
        if (root->IsLeaf()) return false;
        std::vector<Frame> stack;
        if (!Enter(root, stack)) return false;
        while (!stack.empty()) {
            Frame& frame = stack.back();
            const ZorWBExpression* node = frame.node;
            int n = ZorWBGraphWalk::NbOfEvaluatedChildren(node);
            bool conditional = node->GetType() == Type::IfThenElse && n == 3;
            if (conditional && frame.child == 1) {
                frame.branch = Emit(Op::Branch, node);
            } else if (conditional && frame.child == 2) {
                frame.jump = Emit(Op::Jump, node);
                At(frame.branch).target = Here();
            }
            bool folds = ZorWBIsFoldType(node->GetType());
            const ZorWBOperator* op = static_cast<const ZorWBOperator*>(node);
            // The child whose code was emitted last is folded in after it
            // (a first child that the fold keeps has nothing to do); the
            // last step also finishes the node.
            bool kept = frame.child == 1 && op->KeepsFirstOperand();
            bool last = frame.child == n;
            if (folds && frame.child > 0 && !kept) {
                if (!EmitFoldStep(op, frame.child - 1, last)) {
                    Emit(Op::Fold, node, frame.child - 1);
                } else if (last) {
                    Complete(frame, stack);
                    continue;
                }
            }
            if (frame.child < n) {
                const ZorWBExpression* child = ZorWBGraphWalk::Child(node, frame.child++);
                if (!Reference(child, stack)) return false;
                continue;
            }
            if (conditional) {
                At(frame.jump).target = Here();
                At(frame.branch).end = Here();
            }
            if (!folds && EmitCompute(op, n)) {
                Complete(frame, stack);
                continue;
            }
            At(Emit(Op::Finish, node)).end = folds && n > 0 ? 1 : 0;
            Complete(frame, stack);
        }
        _program._calls.reserve(_visits + 1);
        return true;
    }

  private:
    struct Frame {
        const ZorWBExpression* node;
        int child;
        int enter;   // the node's Enter instruction
        int branch;  // an IfThenElse's Branch and Jump
        int jump;
    };

    int Emit(Op op, const ZorWBExpression* node, int target = 0) {
        _program._code.push_back({op, target, 0, node, nullptr, nullptr, nullptr});
        return static_cast<int>(_program._code.size()) - 1;
    }
    int Here() const { return static_cast<int>(_program._code.size()); }
    Program::Instruction& At(int index) { return _program._code[static_cast<std::size_t>(index)]; }

    // The node's code is complete: its Enter jumps past it.
    void Complete(const Frame& frame, std::vector<Frame>& stack) {
        At(frame.enter).target = Here();
        _done[frame.node] = frame.enter;
        stack.pop_back();
    }

    // A fold step through the type's shortcut; false for a type without one.
    bool EmitFoldStep(const ZorWBOperator* node, int i, bool last) {
        ZorWBValueShortcut shortcut = ZorWBValueShortcutOf(node->GetType());
        if (!shortcut || i == 0) return false;
        Program::Instruction& step = At(Emit(Op::FoldStep, node, i));
        step.end = last ? 1 : 0;
        step.left = i == 1 && node->KeepsFirstOperand() ? node->ChildAt(0) : nullptr;
        step.right = node->ChildAt(i);
        step.shortcut = shortcut;
        return true;
    }

    // The completion of a node through the shortcut of its type; false for
    // a type without one or a node short of operands.
    bool EmitCompute(const ZorWBOperator* node, int n) {
        ZorWBValueShortcut shortcut = ZorWBValueShortcutOf(node->GetType());
        Type type = node->GetType();
        int needed = type == Type::Quotient || type == Type::Power ? 2 : 1;
        if (!shortcut || n < needed) return false;
        Program::Instruction& compute = At(Emit(Op::Compute, node));
        compute.left = node->ChildAt(0);
        compute.right = node->ChildAt(needed - 1);
        compute.shortcut = shortcut;
        return true;
    }
    bool Enter(const ZorWBExpression* node, std::vector<Frame>& stack) {
        if (!_inProgress.emplace(node, true).second) return false;
        stack.push_back({node, 0, Emit(Op::Enter, node), -1, -1});
        return true;
    }

    // A child met by the walk: a leaf is computed on the spot, a node met
    // before is visited, a new node's code follows inline. A node on the
    // current path is a cycle.
    bool Reference(const ZorWBExpression* child, std::vector<Frame>& stack) {
        if (child->IsLeaf()) {
            Emit(Op::Leaf, child);
            return true;
        }
        auto done = _done.find(child);
        if (done != _done.end()) {
            Emit(Op::Visit, child, done->second);
            ++_visits;
            return true;
        }
        return Enter(child, stack);
    }

    Program& _program;
    std::unordered_map<const ZorWBExpression*, bool> _inProgress;
    std::unordered_map<const ZorWBExpression*, int> _done;  // the start of each node's code
    std::size_t _visits = 0;
};

std::unique_ptr<ZorWBValueProgram> ZorWBValueProgram::Compile(const ZorWBExpression* root) try {
    if (!root) return nullptr;
    std::unique_ptr<ZorWBValueProgram> program(new ZorWBValueProgram());
    ZorWBValueProgramCompiler compiler(*program);
    if (!compiler.Compile(root)) return nullptr;
    program->_code.shrink_to_fit();
    return program;
} catch (const std::exception&) {
    return nullptr;
}

void ZorWBValueProgram::Run(ZorWBFactory& factory) {
    unsigned int outer = factory._valueWalk;
    const unsigned int walk = factory.NewWalk();
    factory._valueWalk = walk;
    ++factory._evaluationDepth;
    auto ready = [walk](const ZorWBExpression* node) {
        return node->AllowsBufferEval() &&
               ((node->_flags & ZorWBExpression::BufferValidFlag) || node->_walkMark == walk);
    };
    auto start = [walk, &factory](const ZorWBExpression* node) {
        node->_walkMark = walk;
        factory.InitEnvForEval();
    };
    // A node computed: recorded, counted, and the innermost call returns
    // when it was for this node.
    auto finished = [this, &factory](const ZorWBExpression* node, bool computed, int& pc) {
        node->FinishValue(computed);
        ++factory._nbOfEvaluations;
        if (!_calls.empty() && _calls.back().node == node) {
            pc = _calls.back().back - 1;
            _calls.pop_back();
        }
    };
    const ZorWBEnvironment& environment = factory._environment;
    _calls.clear();
    const Instruction* code = _code.data();
    const int size = static_cast<int>(_code.size());
    for (int pc = 0; pc < size; ++pc) {
        const Instruction& in = code[pc];
        const ZorWBExpression* node = in.node;
        switch (in.op) {
            case Op::Enter:
                if (ready(node)) {
                    pc = in.target - 1;
                } else {
                    start(node);
                }
                break;
            case Op::Leaf:
                if (!ready(node)) {
                    start(node);
                    node->FinishValue(false);
                    ++factory._nbOfEvaluations;
                }
                break;
            case Op::Visit:
                // The calls never outgrow the room reserved for them.
                if (!ready(node) && _calls.size() < _calls.capacity()) {
                    _calls.push_back({pc + 1, node});
                    pc = in.target - 1;
                }
                break;
            case Op::Fold:
                static_cast<const ZorWBOperator*>(node)->FoldValue(in.target);
                break;
            case Op::FoldStep: {
                const ZorWBValue& running = in.left ? in.left->_value : node->_value;
                if (!in.shortcut(environment, running, in.right->_value, node->_value))
                    static_cast<const ZorWBOperator*>(node)->FoldValue(in.target);
                if (in.end) finished(node, true, pc);
                break;
            }
            case Op::Finish:
                finished(node, in.end != 0, pc);
                break;
            case Op::Compute: {
                // As EvaluateFast: an enumeration in the value field goes
                // the general way.
                ZorWBValueType current = node->_value.GetType();
                bool computed =
                    current != ZorWBIntegerEnumType && current != ZorWBRealEnumType &&
                    in.shortcut(environment, in.left->_value, in.right->_value, node->_value);
                finished(node, computed, pc);
                break;
            }
            case Op::Branch: {
                const ZorWBExpression* condition = ZorWBGraphWalk::Child(node, 0);
                int branch =
                    ZorWBIfThenElseOperator::ChosenBranch(ZorWBExpression::ValueOf(condition));
                if (branch == 2) {
                    pc = in.target - 1;
                } else if (branch != 1) {
                    pc = in.end - 1;
                }
                break;
            }
            case Op::Jump:
                pc = in.target - 1;
                break;
        }
    }
    --factory._evaluationDepth;
    factory._valueWalk = outer;
}
