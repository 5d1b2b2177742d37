#ifndef ZORWB_VALUEPROGRAM_H
#define ZORWB_VALUEPROGRAM_H

#include <cstddef>
#include <memory>
#include <vector>

#include "expressions/ZorWBOperatorFunctions.h"

class ZorWBExpression;
class ZorWBFactory;

// The buffered evaluation of a root (GetValue) laid out flat: the node walk
// of the root's subgraph, depth first with the children in order, written
// once as a list of instructions. Each node's code checks, as the walk
// does, whether the node can answer without computing (buffered, and valid
// or already computed in this run), and jumps over the node and everything
// below it when it can; otherwise the node is started (marked, a lone
// domain error cleared), its children's code runs, a Sum, Product, Min or
// Max folding each child in after its code, and the node is computed
// (ZorWBExpression::FinishValue). A node met again further on is visited
// through a call to its code, made only when it needs computing, which an
// unbuffered node always does; an IfThenElse runs the code of the branch
// its condition chooses. Buffers, flags, marks, the evaluation counter and
// the error word thus change exactly as with the walk, node by node and in
// the same order.
//
// The types with a shortcut (ZorWBOperatorFunctions.h: sums, products, powers,
// quotients, the elementary functions of real intervals) compute through it
// directly from their operand nodes, named in the instruction, and go the
// walk's general way only where it declines; the last fold step of a Sum or
// Product and the node's completion are one instruction. What an interval
// evaluation costs per node is then mostly the interval rule itself and
// the bookkeeping of the buffer.
class ZorWBValueProgram {
  public:
    // Null when the subgraph holds a cycle, its root is a leaf, or memory
    // runs short.
    static std::unique_ptr<ZorWBValueProgram> Compile(const ZorWBExpression* root);

    // Evaluates the root (whose buffer is not valid) as RunEvaluation would.
    void Run(ZorWBFactory& factory);
    std::size_t GetSize() const { return _code.size(); }

  private:
    friend class ZorWBValueProgramCompiler;

    // "Ready": the node answers without computing (see the walk).
    enum class Op : unsigned char {
        Enter,     // jump to target when node is ready, else start it
        Leaf,      // unless node is ready: start it and compute it
        Visit,     // unless node is ready: call its code at target
        Fold,      // node folds in its child number target
        FoldStep,  // node folds in its child number target, right, through
                   // the shortcut: the running value, or left when the
                   // fold reads its first child in place; with end 1 the
                   // last step, which also finishes node as Finish does
        Finish,    // compute node (folded when end is 1); return when the
                   // innermost call is for node
        Compute,   // finish node through the shortcut on left and right
                   // (as Finish where it declines)
        Branch,    // node's condition chooses: then part next, else part at
                   // target, neither at end
        Jump,      // to target
    };

    struct Instruction {
        Op op;
        int target;
        int end;
        const ZorWBExpression* node;
        const ZorWBExpression* left;
        const ZorWBExpression* right;
        ZorWBValueShortcut shortcut;
    };
    struct Call {
        int back;
        const ZorWBExpression* node;
    };

    ZorWBValueProgram() = default;

    std::vector<Instruction> _code;
    // Room for the deepest nesting of calls, reserved at compilation.
    std::vector<Call> _calls;
};

#endif
