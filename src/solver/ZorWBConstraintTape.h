#ifndef ZORWB_CONSTRAINTTAPE_H
#define ZORWB_CONSTRAINTTAPE_H

#include <memory>
#include <vector>

#include "ZorWBxExport.h"
#include "solver/ZorWBRoundedInterval.h"

class ZorWBExpression;

// The operations of a tape, one per instruction.
enum class ZorWBTapeOp : unsigned char {
    Variable,  // a slot that holds a variable's domain (slot = variable index)
    Constant,  // an enclosure of a constant, computed once
    Add,
    Multiply,
    Scale,  // by the non-zero constant of slot b (a multiple that is exact)
    Divide,
    Negate,
    Power,  // by the integer n
    Root,   // of the integer degree n
    Exp,
    Ln,
    Log10,
    Sin,
    Cos,
    Tan,
    Asin,
    Acos,
    Atan,
    Sinh,
    Cosh,
    Tanh,
    Asinh,
    Acosh,
    Atanh,
    Abs,
    Min,
    Max,
};

// Whether an operation reads two operands (the others read one, or none).
constexpr bool ZorWBIsBinaryTapeOp(ZorWBTapeOp op) {
    return op == ZorWBTapeOp::Add || op == ZorWBTapeOp::Multiply || op == ZorWBTapeOp::Scale ||
           op == ZorWBTapeOp::Divide || op == ZorWBTapeOp::Min || op == ZorWBTapeOp::Max;
}

struct ZorWBTapeInstruction {
    ZorWBTapeOp op = ZorWBTapeOp::Constant;
    int a = -1;  // operand slots
    int b = -1;
    int n = 0;  // exponent or degree
};

// Expressions compiled for interval propagation: one flat array of
// instructions over one array of slots (one interval per instruction), into
// which any number of roots are compiled. Every node of the expression graph
// gets one slot, and so does every sub-expression equal to another (same
// operation on the same slots): sums and products of several children
// become chains of two-operand instructions, and a product by a constant
// number a scaling (by -1 a negation). Constant sub-expressions are
// evaluated once at compilation. Slots 0 .. nbOfVariables - 1 are the
// variables, by index, and every other slot comes after the slots it reads,
// so that the order of slots is an order of evaluation.
//
// A program is the list of instructions that computes some roots, in slot
// order. Evaluate runs it forward: each slot becomes the outward-rounded
// image of its operands. Project runs it backward (in the reverse order):
// each instruction narrows its operands to the points that can produce a
// value of its own slot (the projections of ZorWBProjection), so that a slot
// read by several instructions is narrowed by each before its own operands
// are narrowed in turn: HC4-revise over a graph. Variables and constants are
// never computed; constants are never narrowed.
//
// The tape handles real operations only: every node type outside its table
// (logic, comparisons, if-then-else, rounding, modulo, steps, black boxes,
// powers with exponents that are not integer constants, constants that are
// not numbers) makes Compile fail, and the caller propagates that root
// through the value functions instead.
class ZORWBX_API ZorWBConstraintTape {
  public:
    explicit ZorWBConstraintTape(int nbOfVariables);
    ~ZorWBConstraintTape();
    ZorWBConstraintTape(const ZorWBConstraintTape&) = delete;
    ZorWBConstraintTape& operator=(const ZorWBConstraintTape&) = delete;

    int GetNbOfVariables() const { return _nbOfVariables; }
    int GetNbOfSlots() const { return static_cast<int>(_code.size()); }
    const ZorWBTapeInstruction& GetInstruction(int slot) const { return _code[slot]; }
    bool IsLeaf(int slot) const {
        return _code[slot].op == ZorWBTapeOp::Variable || _code[slot].op == ZorWBTapeOp::Constant;
    }

    // Compiles the subgraph of root (which may share nodes with roots
    // compiled before): the slot of its value, or -1 when it holds a node
    // that the tape does not handle, a variable of index not below
    // nbOfVariables, or a cycle.
    int Compile(const ZorWBExpression* root);

    // The instructions that compute the given slots, in slot order (leaves
    // left out).
    std::vector<int> MakeProgram(const std::vector<int>& roots) const;
    // The variables the given slots depend on, in index order.
    std::vector<int> FindVariables(const std::vector<int>& roots) const;

    // A slot array for this tape: constants filled in, variables and
    // instructions the whole line.
    std::vector<ZorWBRoundedInterval> MakeSlots() const;
    // Computes each instruction of program from its operands; false when a
    // slot came out empty (the expression is defined nowhere on the domains).
    bool Evaluate(const std::vector<int>& program, ZorWBRoundedInterval* slots) const;
    // Narrows the operands of each instruction of program, last first, to
    // what can produce its slot; false when a slot became empty.
    bool Project(const std::vector<int>& program, ZorWBRoundedInterval* slots) const;

  private:
    friend class ZorWBTapeCompiler;

    int _nbOfVariables;
    std::vector<ZorWBTapeInstruction> _code;
    // The enclosure of each constant slot (whole line elsewhere).
    std::vector<ZorWBRoundedInterval> _constants;
    std::unique_ptr<class ZorWBTapeCompiler> _compiler;
};

// The image of an instruction's operands under its operation.
ZORWBX_API ZorWBRoundedInterval ZorWBApplyTapeOp(const ZorWBTapeInstruction& instruction,
                                                 const ZorWBRoundedInterval& a,
                                                 const ZorWBRoundedInterval& b);

#endif
