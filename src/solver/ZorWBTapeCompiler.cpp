// The compilation of expression graphs into tape instructions: which node
// types the tape handles and how each becomes instructions is one table,
// indexed by type; a type without a row is one the tape leaves to the value
// functions.

#include "solver/ZorWBTapeCompiler.h"

#include <cmath>
#include <cstring>
#include <exception>
#include <utility>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBExpressionType.h"
#include "expressions/ZorWBVariable.h"
#include "solver/ZorWBRoundedSteps.h"

namespace {

using Type = ZorWBExpressionType;

// How a node type becomes instructions: from the slots of its children, the
// slot of its value (-1 when this node cannot be compiled).
using CompileFunction = int (*)(ZorWBTapeCompiler& compiler, const std::vector<int>& children);

template <ZorWBTapeOp Op>
int Unary(ZorWBTapeCompiler& compiler, const std::vector<int>& children) {
    return children.size() == 1 ? compiler.Emit(Op, children[0]) : -1;
}

template <ZorWBTapeOp Op>
int BinaryOp(ZorWBTapeCompiler& compiler, const std::vector<int>& children) {
    return children.size() == 2 ? compiler.Emit(Op, children[0], children[1]) : -1;
}

// A left fold over the children, as the value functions evaluate Sum,
// Product, Min and Max.
template <ZorWBTapeOp Op>
int Fold(ZorWBTapeCompiler& compiler, const std::vector<int>& children) {
    if (children.empty()) return -1;
    int slot = children[0];
    for (std::size_t i = 1; i < children.size() && slot >= 0; ++i)
        slot = compiler.Emit(Op, slot, children[i]);
    return slot;
}

// x ^ n for an integer constant n.
int IntegerPower(ZorWBTapeCompiler& compiler, const std::vector<int>& children) {
    int exponent = 0;
    if (children.size() != 2 || !compiler.GetIntegerConstant(children[1], exponent)) return -1;
    return compiler.Emit(ZorWBTapeOp::Power, children[0], -1, exponent);
}

// The n-th root for an integer constant n >= 1.
int IntegerRoot(ZorWBTapeCompiler& compiler, const std::vector<int>& children) {
    int degree = 0;
    if (children.size() != 2 || !compiler.GetIntegerConstant(children[1], degree) || degree < 1)
        return -1;
    return compiler.Emit(ZorWBTapeOp::Root, children[0], -1, degree);
}

int SquareRoot(ZorWBTapeCompiler& compiler, const std::vector<int>& children) {
    return children.size() == 1 ? compiler.Emit(ZorWBTapeOp::Root, children[0], -1, 2) : -1;
}

struct CompileRow {
    Type type;
    CompileFunction compile;
};

// clang-format off
constexpr CompileRow CompileRows[] = {
    {Type::Sum,        Fold<ZorWBTapeOp::Add>},
    {Type::Product,    Fold<ZorWBTapeOp::Multiply>},
    {Type::Min,        Fold<ZorWBTapeOp::Min>},
    {Type::Max,        Fold<ZorWBTapeOp::Max>},
    {Type::Quotient,   BinaryOp<ZorWBTapeOp::Divide>},
    {Type::Power,      IntegerPower},
    {Type::Root,       IntegerRoot},
    {Type::Sqrt,       SquareRoot},
    {Type::UnaryMinus, Unary<ZorWBTapeOp::Negate>},
    {Type::Abs,        Unary<ZorWBTapeOp::Abs>},
    {Type::Exp,        Unary<ZorWBTapeOp::Exp>},
    {Type::Ln,         Unary<ZorWBTapeOp::Ln>},
    {Type::Log,        Unary<ZorWBTapeOp::Log10>},
    {Type::Sin,        Unary<ZorWBTapeOp::Sin>},
    {Type::Cos,        Unary<ZorWBTapeOp::Cos>},
    {Type::Tan,        Unary<ZorWBTapeOp::Tan>},
    {Type::Asin,       Unary<ZorWBTapeOp::Asin>},
    {Type::Acos,       Unary<ZorWBTapeOp::Acos>},
    {Type::Atan,       Unary<ZorWBTapeOp::Atan>},
    {Type::Sinh,       Unary<ZorWBTapeOp::Sinh>},
    {Type::Cosh,       Unary<ZorWBTapeOp::Cosh>},
    {Type::Tanh,       Unary<ZorWBTapeOp::Tanh>},
    {Type::Asinh,      Unary<ZorWBTapeOp::Asinh>},
    {Type::Acosh,      Unary<ZorWBTapeOp::Acosh>},
    {Type::Atanh,      Unary<ZorWBTapeOp::Atanh>},
};
// clang-format on

// The compile function of every type, null where the table has no row.
struct CompileTable {
    CompileFunction byType[ZorWBNbOfExpressionTypes] = {};
    constexpr CompileTable() {
        for (const CompileRow& row : CompileRows)
            byType[static_cast<int>(row.type)] = row.compile;
    }
};
constexpr CompileTable Table;

// The enclosure of a constant's value; false for values that are not real
// numbers (undefined, booleans, enumerations, infinite markers).
bool ConstantEnclosure(const ZorWBValue& value, ZorWBRoundedInterval& enclosure) {
    using namespace ZorWBRoundedSteps;
    switch (value.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType: {
            double x = value.GetAsReal();
            if (!(std::fabs(x) <= ZorWBRealLimit)) return false;
            enclosure = ZorWBMakePoint(x);
            return true;
        }
        case ZorWBIntegerIntervalType:
        case ZorWBRealIntervalType:
            enclosure = ZorWBFromRealInterval(value.GetAsRealInterval());
            return !enclosure.IsEmpty();
        case ZorWBFractionType: {
            // numerator / denominator * pi^power, each step outward.
            ZorWBFraction fraction = value.GetAsFraction();
            if (fraction.denominator == 0) return false;
            enclosure = ZorWBDivide(ZorWBMakePoint(fraction.numerator),
                                    ZorWBMakePoint(fraction.denominator));
            enclosure = ZorWBMultiply(enclosure, ZorWBPower(ZorWBPiInterval(), fraction.power));
            return !enclosure.IsEmpty();
        }
        default:
            return false;
    }
}

std::uint64_t Bits(double x) {
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

}  // namespace

std::size_t ZorWBTapeCompiler::KeyHash::operator()(const Key& key) const {
    std::size_t hash = static_cast<std::size_t>(key.op);
    for (int part : {key.a, key.b, key.n})
        hash = hash * 1000003u ^ static_cast<std::size_t>(static_cast<unsigned int>(part));
    return hash;
}

std::size_t ZorWBTapeCompiler::BoundsHash::operator()(
    const std::pair<std::uint64_t, std::uint64_t>& bounds) const {
    return static_cast<std::size_t>(bounds.first * 1000003u ^ bounds.second);
}

int ZorWBTapeCompiler::NewSlot(const ZorWBTapeInstruction& instruction,
                               const ZorWBRoundedInterval& constant) {
    _tape._code.push_back(instruction);
    _tape._constants.push_back(constant);
    return static_cast<int>(_tape._code.size()) - 1;
}

int ZorWBTapeCompiler::EmitConstant(const ZorWBRoundedInterval& value) {
    auto key = std::make_pair(Bits(value.low), Bits(value.high));
    auto found = _constants.find(key);
    if (found != _constants.end()) return found->second;
    int slot = NewSlot({ZorWBTapeOp::Constant}, value);
    _constants.emplace(key, slot);
    return slot;
}

int ZorWBTapeCompiler::Emit(ZorWBTapeOp op, int a, int b, int n) {
    if (a < 0 || (b < 0 && ZorWBIsBinaryTapeOp(op))) return -1;
    if (op == ZorWBTapeOp::Multiply) {
        // A product by a constant number is a scaling: cheaper both ways.
        double factor = 0.0;
        if (GetPointConstant(a, factor)) std::swap(a, b);
        if (GetPointConstant(b, factor) && factor != 0.0 && std::isfinite(factor) &&
            _tape._code[a].op != ZorWBTapeOp::Constant) {
            if (factor == 1.0) return a;
            if (factor == -1.0) return Emit(ZorWBTapeOp::Negate, a);
            op = ZorWBTapeOp::Scale;
        }
    }
    const Key key{op, a, b, n};
    auto found = _instructions.find(key);
    if (found != _instructions.end()) return found->second;
    ZorWBTapeInstruction instruction{op, a, b, n};
    bool constantA = _tape._code[a].op == ZorWBTapeOp::Constant;
    bool constantB = b < 0 || _tape._code[b].op == ZorWBTapeOp::Constant;
    if (constantA && constantB) {
        ZorWBRoundedInterval none;
        ZorWBRoundedInterval value =
            ZorWBApplyTapeOp(instruction, _tape._constants[a], b < 0 ? none : _tape._constants[b]);
        // A constant outside the operation's domain is left to evaluation,
        // where it empties the root.
        if (!value.IsEmpty()) return EmitConstant(value);
    }
    int slot = NewSlot(instruction, ZorWBRoundedInterval());
    _instructions.emplace(key, slot);
    return slot;
}

bool ZorWBTapeCompiler::GetPointConstant(int slot, double& value) const {
    if (slot < 0 || _tape._code[slot].op != ZorWBTapeOp::Constant) return false;
    const ZorWBRoundedInterval& constant = _tape._constants[slot];
    if (!constant.IsPoint()) return false;
    value = constant.low;
    return true;
}

bool ZorWBTapeCompiler::GetIntegerConstant(int slot, int& value) const {
    if (slot < 0 || _tape._code[slot].op != ZorWBTapeOp::Constant) return false;
    const ZorWBRoundedInterval& constant = _tape._constants[slot];
    if (!constant.IsPoint() || std::fabs(constant.low) > 2147483646.0 ||
        constant.low != std::floor(constant.low))
        return false;
    value = static_cast<int>(constant.low);
    return true;
}

int ZorWBTapeCompiler::CompileConstant(const ZorWBExpression* node) {
    ZorWBRoundedInterval enclosure;
    if (!ConstantEnclosure(node->GetExprValue(), enclosure)) return -1;
    return EmitConstant(enclosure);
}

int ZorWBTapeCompiler::CompileNode(const ZorWBExpression* node) {
    if (node->GetType() == Type::Variable) {
        int index = static_cast<const ZorWBVariable*>(node)->GetIdx();
        return index >= 0 && index < _tape._nbOfVariables ? index : -1;
    }
    if (node->GetType() == Type::Constant) return CompileConstant(node);
    int type = static_cast<int>(node->GetType());
    CompileFunction compile =
        type >= 0 && type < ZorWBNbOfExpressionTypes ? Table.byType[type] : nullptr;
    if (!compile) return -1;
    std::vector<int> children;
    for (int i = 0; i < node->GetNbOfChildren(); ++i) {
        auto found = _nodes.find(node->GetChild(i));
        if (found == _nodes.end() || found->second < 0) return -1;
        children.push_back(found->second);
    }
    return compile(*this, children);
}

int ZorWBTapeCompiler::Compile(const ZorWBExpression* root) try {
    if (!root) return -1;
    // Children first, with an explicit stack: a node is compiled when it is
    // met the second time, after all its children.
    struct Frame {
        const ZorWBExpression* node;
        bool expanded;
    };
    std::vector<Frame> stack{{root, false}};
    std::unordered_map<const ZorWBExpression*, bool> onStack;
    while (!stack.empty()) {
        Frame frame = stack.back();
        if (_nodes.count(frame.node)) {
            stack.pop_back();
            continue;
        }
        if (frame.expanded) {
            stack.pop_back();
            onStack.erase(frame.node);
            _nodes[frame.node] = CompileNode(frame.node);
            continue;
        }
        stack.back().expanded = true;
        if (onStack[frame.node]) return -1;  // a cycle
        onStack[frame.node] = true;
        for (int i = frame.node->GetNbOfChildren() - 1; i >= 0; --i) {
            const ZorWBExpression* child = frame.node->GetChild(i);
            if (!child) return -1;
            if (!_nodes.count(child)) stack.push_back({child, false});
        }
    }
    return _nodes[root];
} catch (const std::exception&) {
    return -1;
}
