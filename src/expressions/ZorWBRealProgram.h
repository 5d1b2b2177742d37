#ifndef ZORWB_REALPROGRAM_H
#define ZORWB_REALPROGRAM_H

#include <cstddef>
#include <memory>
#include <vector>

#include "expressions/ZorWBRealFunctions.h"

class ZorWBConstant;
class ZorWBExpression;
class ZorWBFactory;
class ZorWBOperator;

// The subgraph of a root compiled for the plain real evaluation (Eval): a
// flat list of instructions over an array of registers, one register per
// node, in the order in which the node walk computes the nodes. Leaves are
// read from their nodes at every run (variables and constants may change
// without the graph changing); an IfThenElse jumps over the branch it does
// not take; the few kinds without an instruction of their own (Step, Round,
// black boxes, Integrate) call their node's own real evaluation on the
// registers of their children. A run therefore gives the node walk's result
// to the bit, computes each node at most once and the same nodes in the same
// order, and spares the walk's bookkeeping.
//
// A node reached from branches of different IfThenElse nodes may be
// computed in either, in neither or in both places: its later occurrences
// are guarded by a stamp that says whether this run has computed it already.
// An unbuffered operator (a black-box call, a node above one), which the walk
// computes at each request, is compiled only where it is reached once.
class ZorWBRealProgram {
  public:
    // Null when the subgraph holds a cycle or an unbuffered operator reached
    // more than once, or memory runs short.
    static std::unique_ptr<ZorWBRealProgram> Compile(const ZorWBExpression* root);

    // The root's real value, from the current values of the leaves.
    double Run(ZorWBFactory& factory);
    // Instructions and leaves: the measure of the program's memory.
    std::size_t GetSize() const { return _code.size() + _leaves.size(); }

  private:
    friend class ZorWBRealProgramCompiler;

    enum class Op : unsigned char {
        Nan,         // dst = NaN
        Move,        // dst = a
        Add,         // dst = a + b
        Mul,         // dst = a * b
        AddProduct,  // dst = a + b * c
        ProductAdd,  // dst = a * b + c
        Div,         // dst = a / b
        Neg,         // dst = -a
        Pow,         // dst = a ^ b
        Sin,         // dst = sin a
        Cos,         // dst = cos a
        SinCos,      // dst = sin a, b = cos a
        Unary,       // dst = unary(a)
        Binary,      // dst = binary(a, b)
        Logical,     // dst = logical(a, b, tolerance), NaN when a or b is
        Not,         // dst = a == 0, NaN when a is
        Node,        // dst = node's own evaluation; its children's registers are
                     // arguments[a .. a + b)
        Branch,      // on a: NaN gives dst = NaN and a jump to target; zero a
                     // jump to b (the else part); otherwise the next instruction
        Jump,        // to target
        Guard,       // to target when the stamp of dst is this run's
        Stamp,       // the stamp of dst becomes this run's
    };

    struct Instruction {
        Op op;
        int dst;
        int a;
        int b;
        union {
            ZorWBUnaryRealFunction unary;
            ZorWBBinaryRealFunction binary;
            ZorWBLogicalRealFunction logical;
            const ZorWBOperator* node;
            int target;
            int c;
        };
    };

    ZorWBRealProgram() = default;
    void Execute(ZorWBFactory& factory);

    // The leaves, read into the first registers at each run.
    std::vector<const ZorWBConstant*> _leaves;
    std::vector<Instruction> _code;
    std::vector<int> _arguments;
    std::vector<double> _registers;
    std::vector<unsigned int> _stamps;  // only with guards
    unsigned int _epoch = 0;
    int _result = 0;
    bool _callsNodes = false;
};

#endif
