#ifndef ZORWB_TAPECOMPILER_H
#define ZORWB_TAPECOMPILER_H

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "solver/ZorWBConstraintTape.h"

class ZorWBExpression;

// Compiles expression graphs into a ZorWBConstraintTape (see there): walks
// each root's subgraph once, children first, with an explicit stack, and
// gives each node the slot of its instruction. Equal instructions are
// merged through a hash of (operation, operands, n), and constants through
// a hash of their bounds, so that equal sub-expressions of different roots
// share their slots.
class ZorWBTapeCompiler {
  public:
    explicit ZorWBTapeCompiler(ZorWBConstraintTape& tape) : _tape(tape) {}

    int Compile(const ZorWBExpression* root);

    // The slot of an instruction over operand slots: an existing equal one,
    // or the constant it folds to when its operands are constants, or a new
    // slot.
    int Emit(ZorWBTapeOp op, int a, int b = -1, int n = 0);
    // The slot of a constant enclosure.
    int EmitConstant(const ZorWBRoundedInterval& value);
    // The point value of a constant slot that holds an integer, for the
    // exponents and degrees; false for any other slot.
    bool GetIntegerConstant(int slot, int& value) const;
    // The value of a constant slot that holds a single number.
    bool GetPointConstant(int slot, double& value) const;

  private:
    struct Key {
        ZorWBTapeOp op;
        int a;
        int b;
        int n;
        bool operator==(const Key& other) const {
            return op == other.op && a == other.a && b == other.b && n == other.n;
        }
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    struct BoundsHash {
        std::size_t operator()(const std::pair<std::uint64_t, std::uint64_t>& bounds) const;
    };

    // The slot of a node whose children have their slots: -1 when the node
    // cannot be compiled.
    int CompileNode(const ZorWBExpression* node);
    int CompileConstant(const ZorWBExpression* node);
    int NewSlot(const ZorWBTapeInstruction& instruction, const ZorWBRoundedInterval& constant);

    ZorWBConstraintTape& _tape;
    // The slot of every node compiled (-1 for the nodes that cannot be).
    std::unordered_map<const ZorWBExpression*, int> _nodes;
    std::unordered_map<Key, int, KeyHash> _instructions;
    std::unordered_map<std::pair<std::uint64_t, std::uint64_t>, int, BoundsHash> _constants;
};

#endif
