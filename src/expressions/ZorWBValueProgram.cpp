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
            // The child whose code was emitted last is folded in after it
            // (a first child that the fold keeps has nothing to do).
            bool kept =
                frame.child == 1 && static_cast<const ZorWBOperator*>(node)->KeepsFirstOperand();
            if (folds && frame.child > 0 && !kept) Emit(Op::Fold, node, frame.child - 1);
            if (frame.child < n) {
                const ZorWBExpression* child = ZorWBGraphWalk::Child(node, frame.child++);
                if (!Reference(child, stack)) return false;
                continue;
            }
            if (conditional) {
                At(frame.jump).target = Here();
                At(frame.branch).end = Here();
            }
            At(Emit(Op::Finish, node)).end = folds && n > 0 ? 1 : 0;
            At(frame.enter).target = Here();
            _done[node] = frame.enter;
            stack.pop_back();
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
        _program._code.push_back({op, target, 0, node});
        return static_cast<int>(_program._code.size()) - 1;
    }
    int Here() const { return static_cast<int>(_program._code.size()); }
    Program::Instruction& At(int index) { return _program._code[static_cast<std::size_t>(index)]; }

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
            case Op::Finish:
                node->FinishValue(in.end != 0);
                ++factory._nbOfEvaluations;
                if (!_calls.empty() && _calls.back().node == node) {
                    pc = _calls.back().back - 1;
                    _calls.pop_back();
                }
                break;
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
