#ifndef ZORWB_REALPROGRAM_H
#define ZORWB_REALPROGRAM_H

#include <cstddef>
#include <memory>
#include <vector>

#include "expressions/ZorWBRealFunctions.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

class ZorWBConstant;
class ZorWBExpression;
class ZorWBFactory;
class ZorWBOperator;

// The subgraph of one or more roots compiled for the plain real evaluation
// (Eval): a flat list of instructions over an array of registers, one
// register per node, in the order in which the node walk computes the
// nodes. Leaves are read from their nodes at every run (variables and
// constants may change without the graph changing), but for the variables
// given as inputs, whose registers the caller writes; an IfThenElse jumps
// over the branch it does not take; a black-box call calls its node's own
// real evaluation on the registers of its children. A run therefore gives
// the node walk's result to the bit, computes each node as often as the
// walk and in the same order, and spares the walk's bookkeeping.
//
// A node reached from branches of different IfThenElse nodes may be
// computed in either, in neither or in both places: its later occurrences
// are guarded by a stamp that says whether this run has computed it already.
// An unbuffered operator (a black-box call, a node above one), which the walk
// computes at each request, has code of its own at each request (programs
// that this would make more than a few instructions per node long are not
// made). The roots follow one another as separate evaluations would: a
// node shared by two roots is computed once, but for the nodes whose
// computing has effects (black-box calls and the nodes above them), which
// each root computes anew.
//
// Two more forms serve the compiled functions (ZorWBCompiledFunction). With
// slopes, every node keeps its register, nothing is fused, and each operator
// is followed by its partial derivatives with respect to its children
// (ZorWBSlopes.h), written into slots beside its arguments, for the
// reverse sweeps of the Jacobian. In the value order, the program runs over
// values instead of reals (RunValues), as GetValue would evaluate the roots
// with every buffer invalid: each node is started (a lone domain error
// cleared) before its children, a fold takes each child in after it, and
// each operation goes through the node's value function (or its shortcut);
// without slopes and jumps its registers are reused as the reals' are, so
// that a large graph's values stay few and in the processor's cache.
class ZorWBRealProgram {
  public:
    struct Options {
        // Variables read from the first registers (the inputs, in this
        // order), which the caller writes before each run.
        const ZorWBExpression* const* inputs = nullptr;
        int nbOfInputs = 0;
        // Registers kept and partial derivatives computed (see above).
        bool slopes = false;
        // The value evaluation's order, for RunValues.
        bool valueOrder = false;
    };

    // Null when the subgraph holds a cycle, its program would be too long,
    // or memory runs short.
    static std::unique_ptr<ZorWBRealProgram> Compile(const ZorWBExpression* root);
    // The same for several roots, with options. Also null when the roots
    // hold a node without partial derivatives (black boxes, Integrate) and
    // slopes are asked for, or a black box and the value order is asked for.
    static std::unique_ptr<ZorWBRealProgram> Compile(const ZorWBExpression* const* roots,
                                                     int nbOfRoots, const Options& options);

    // The root's real value, from the current values of the leaves.
    double Run(ZorWBFactory& factory);
    // The registers of the inputs, written before RunWithInputs; after it,
    // the result of root i is GetResult(i).
    double* GetInputRegisters() { return _registers.data(); }
    void RunWithInputs(ZorWBFactory& factory);
    double GetResult(int root) const {
        return _registers[static_cast<std::size_t>(_results[static_cast<std::size_t>(root)])];
    }

    // A program compiled in the value order, over values: inputs are
    // written into GetInputValues() before the run; the results are then
    // GetResultValue(i). Numeric failures set the environment's error word
    // as GetValue does.
    ZorWBValue* GetInputValues() { return _values.data(); }
    void RunValues(ZorWBFactory& factory);
    const ZorWBValue& GetResultValue(int root) const {
        return _values[static_cast<std::size_t>(_results[static_cast<std::size_t>(root)])];
    }

    // Instructions and leaves: the measure of the program's memory.
    std::size_t GetSize() const { return _code.size() + _leaves.size(); }

  private:
    friend class ZorWBRealProgramCompiler;
    friend class ZorWBCompiledFunction;
    friend class ZorWBCompiledJacobian;

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
        Step,        // dst = the step of node at a
        Round3,      // dst = round(a, b, c)
        Node,        // dst = node's own evaluation (a black-box call); its
                     // children's registers are arguments[a .. a + b)
        Branch,      // on a: NaN gives dst = NaN and a jump to target; zero a
                     // jump to b (the else part); otherwise the next instruction
        Jump,        // to target
        Guard,       // to target when the stamp of dst is this run's
        Stamp,       // the stamp of dst becomes this run's
        Start,       // (value order) the node of dst starts: a lone domain
                     // error is cleared
        Slope,       // the partial derivatives of node (register dst) by its
                     // children, arguments[a .. a + b), into slots[a .. a + b)
    };

    struct Instruction {
        Op op;
        // The node's type (a ZorWBExpressionType), for the value order's
        // value functions.
        unsigned char type;
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
    // Reads the leaves that are not inputs into their registers.
    void ReadLeaves();
    void Execute(ZorWBFactory& factory);
    // The instructions that call out (steps, roundings, black boxes), kept
    // out of the loop of the frequent ones.
    void ExecuteCall(const Instruction& in, ZorWBFactory& factory);
    void ExecuteValues(const ZorWBEnvironment& environment);
    // The stamps of a program with guards start a new run.
    void NextEpoch();

    // The leaves that are not inputs, read into the registers after the
    // inputs' at each run.
    std::vector<const ZorWBConstant*> _leaves;
    int _nbOfInputs = 0;
    std::vector<Instruction> _code;
    std::vector<int> _arguments;
    std::vector<double> _registers;
    // The value order's registers (only there).
    std::vector<ZorWBValue> _values;
    // The slopes of each node, in the order of computation (only with
    // slopes). A node's slope by its child arguments[first + k] is read,
    // for the kinds the program computes, from slot first + k: with reals
    // the register _slotBase + first + k, with values _intervalSlopes;
    // in a program without jumps, the slopes of sums, of products of two
    // and of negations need no computing: 1, the other operand's register,
    // -1 (kept in the last two registers).
    enum class SlopeKind : unsigned char { Computed, One, MinusOne, OtherOperand };
    struct SlopeRecord {
        int dst;
        int first;
        int count;
        int code;  // its Slope instruction while compiling
        SlopeKind kind;
    };
    std::vector<SlopeRecord> _slopeRecords;
    int _slotBase = 0;
    std::vector<ZorWBRealInterval> _intervalSlopes;
    // The environment in which interval slopes are computed: the factory's
    // settings, an error word of its own.
    ZorWBEnvironment _scratch;
    std::vector<int> _results;
    std::vector<unsigned int> _stamps;  // only with guards
    unsigned int _epoch = 0;
    bool _callsNodes = false;
    bool _jumps = false;  // guards or branches: not every instruction runs
};

#endif
