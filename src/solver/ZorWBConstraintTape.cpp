// Running tapes: the forward image and the backward projections of one
// instruction, and the two passes over a program. The operations are one
// switch each, over the tape's own operations: the node types were mapped
// onto them once, at compilation.

#include "solver/ZorWBConstraintTape.h"

#include <algorithm>
#include <exception>

#include "solver/ZorWBProjections.h"
#include "solver/ZorWBTapeCompiler.h"

namespace {

// The forward image of one instruction, inlined into the tape's loop.
inline ZorWBRoundedInterval Apply(const ZorWBTapeInstruction& instruction,
                                  const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b) {
    switch (instruction.op) {
        case ZorWBTapeOp::Add:
            return ZorWBAdd(a, b);
        case ZorWBTapeOp::Multiply:
            return ZorWBMultiply(a, b);
        case ZorWBTapeOp::Scale:
            return ZorWBScale(a, b.low);
        case ZorWBTapeOp::Divide:
            return ZorWBDivide(a, b);
        case ZorWBTapeOp::Negate:
            return ZorWBNegate(a);
        case ZorWBTapeOp::Power:
            return ZorWBPower(a, instruction.n);
        case ZorWBTapeOp::Root:
            return ZorWBRoot(a, instruction.n);
        case ZorWBTapeOp::Exp:
            return ZorWBExponential(a);
        case ZorWBTapeOp::Ln:
            return ZorWBLogarithm(a);
        case ZorWBTapeOp::Log10:
            return ZorWBLogarithm10(a);
        case ZorWBTapeOp::Sin:
            return ZorWBSine(a);
        case ZorWBTapeOp::Cos:
            return ZorWBCosine(a);
        case ZorWBTapeOp::Tan:
            return ZorWBTangent(a);
        case ZorWBTapeOp::Asin:
            return ZorWBArcSine(a);
        case ZorWBTapeOp::Acos:
            return ZorWBArcCosine(a);
        case ZorWBTapeOp::Atan:
            return ZorWBArcTangent(a);
        case ZorWBTapeOp::Sinh:
            return ZorWBHyperbolicSine(a);
        case ZorWBTapeOp::Cosh:
            return ZorWBHyperbolicCosine(a);
        case ZorWBTapeOp::Tanh:
            return ZorWBHyperbolicTangent(a);
        case ZorWBTapeOp::Asinh:
            return ZorWBAreaSine(a);
        case ZorWBTapeOp::Acosh:
            return ZorWBAreaCosine(a);
        case ZorWBTapeOp::Atanh:
            return ZorWBAreaTangent(a);
        case ZorWBTapeOp::Abs:
            return ZorWBAbsolute(a);
        case ZorWBTapeOp::Min:
            return ZorWBMinimum(a, b);
        case ZorWBTapeOp::Max:
            return ZorWBMaximum(a, b);
        case ZorWBTapeOp::Variable:
        case ZorWBTapeOp::Constant:
            break;
    }
    return a;
}

// Narrows the operands a (and b) of an instruction from its value z.
bool ProjectInstruction(const ZorWBTapeInstruction& instruction, const ZorWBRoundedInterval& z,
                        ZorWBRoundedInterval& a, ZorWBRoundedInterval& b) {
    namespace P = ZorWBProjection;
    switch (instruction.op) {
        case ZorWBTapeOp::Add:
            return P::Add(z, a, b);
        case ZorWBTapeOp::Multiply:
            return P::Multiply(z, a, b);
        case ZorWBTapeOp::Scale:
            return P::Scale(z, a, b.low);
        case ZorWBTapeOp::Divide:
            return P::Divide(z, a, b);
        case ZorWBTapeOp::Negate:
            return P::Negate(z, a);
        case ZorWBTapeOp::Power:
            return P::Power(z, a, instruction.n);
        case ZorWBTapeOp::Root:
            return P::Root(z, a, instruction.n);
        case ZorWBTapeOp::Exp:
            return P::Exponential(z, a);
        case ZorWBTapeOp::Ln:
            return P::Logarithm(z, a);
        case ZorWBTapeOp::Log10:
            return P::Logarithm10(z, a);
        case ZorWBTapeOp::Sin:
            return P::Sine(z, a);
        case ZorWBTapeOp::Cos:
            return P::Cosine(z, a);
        case ZorWBTapeOp::Tan:
            return P::Tangent(z, a);
        case ZorWBTapeOp::Asin:
            return P::ArcSine(z, a);
        case ZorWBTapeOp::Acos:
            return P::ArcCosine(z, a);
        case ZorWBTapeOp::Atan:
            return P::ArcTangent(z, a);
        case ZorWBTapeOp::Sinh:
            return P::HyperbolicSine(z, a);
        case ZorWBTapeOp::Cosh:
            return P::HyperbolicCosine(z, a);
        case ZorWBTapeOp::Tanh:
            return P::HyperbolicTangent(z, a);
        case ZorWBTapeOp::Asinh:
            return P::AreaSine(z, a);
        case ZorWBTapeOp::Acosh:
            return P::AreaCosine(z, a);
        case ZorWBTapeOp::Atanh:
            return P::AreaTangent(z, a);
        case ZorWBTapeOp::Abs:
            return P::Absolute(z, a);
        case ZorWBTapeOp::Min:
            return P::Minimum(z, a, b);
        case ZorWBTapeOp::Max:
            return P::Maximum(z, a, b);
        case ZorWBTapeOp::Variable:
        case ZorWBTapeOp::Constant:
            break;
    }
    return true;
}

}  // namespace

ZorWBRoundedInterval ZorWBApplyTapeOp(const ZorWBTapeInstruction& instruction,
                                      const ZorWBRoundedInterval& a,
                                      const ZorWBRoundedInterval& b) {
    return Apply(instruction, a, b);
}

ZorWBConstraintTape::ZorWBConstraintTape(int nbOfVariables)
    : _nbOfVariables(std::max(nbOfVariables, 0)),
      _code(static_cast<std::size_t>(_nbOfVariables)),
      _constants(static_cast<std::size_t>(_nbOfVariables)),
      _compiler(new ZorWBTapeCompiler(*this)) {
    for (int i = 0; i < _nbOfVariables; ++i)
        _code[i].op = ZorWBTapeOp::Variable;
}

ZorWBConstraintTape::~ZorWBConstraintTape() = default;

int ZorWBConstraintTape::Compile(const ZorWBExpression* root) {
    return _compiler->Compile(root);
}

std::vector<int> ZorWBConstraintTape::MakeProgram(const std::vector<int>& roots) const {
    std::vector<char> reached(_code.size(), 0);
    std::vector<int> stack, program;
    for (int root : roots) {
        if (root >= 0 && root < GetNbOfSlots()) stack.push_back(root);
    }
    while (!stack.empty()) {
        int slot = stack.back();
        stack.pop_back();
        if (reached[slot] || IsLeaf(slot)) continue;
        reached[slot] = 1;
        program.push_back(slot);
        const ZorWBTapeInstruction& instruction = _code[slot];
        stack.push_back(instruction.a);
        if (ZorWBIsBinaryTapeOp(instruction.op)) stack.push_back(instruction.b);
    }
    std::sort(program.begin(), program.end());
    return program;
}

std::vector<int> ZorWBConstraintTape::FindVariables(const std::vector<int>& roots) const {
    std::vector<int> variables;
    for (int root : roots) {
        if (root >= 0 && root < _nbOfVariables) variables.push_back(root);
    }
    for (int slot : MakeProgram(roots)) {
        const ZorWBTapeInstruction& instruction = _code[slot];
        for (int operand : {instruction.a, instruction.b}) {
            if (operand >= 0 && operand < _nbOfVariables) variables.push_back(operand);
        }
    }
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    return variables;
}

std::vector<ZorWBRoundedInterval> ZorWBConstraintTape::MakeSlots() const {
    return _constants;
}

bool ZorWBConstraintTape::Evaluate(const std::vector<int>& program,
                                   ZorWBRoundedInterval* slots) const {
    static const ZorWBRoundedInterval none;
    for (int slot : program) {
        const ZorWBTapeInstruction& instruction = _code[slot];
        const ZorWBRoundedInterval& b = instruction.b >= 0 ? slots[instruction.b] : none;
        slots[slot] = Apply(instruction, slots[instruction.a], b);
        if (slots[slot].IsEmpty()) return false;
    }
    return true;
}

bool ZorWBConstraintTape::Project(const std::vector<int>& program,
                                  ZorWBRoundedInterval* slots) const {
    for (auto position = program.rbegin(); position != program.rend(); ++position) {
        const ZorWBTapeInstruction& instruction = _code[*position];
        // Constants are narrowed in copies: they never change, but an empty
        // copy still proves that nothing in the domains fits.
        ZorWBRoundedInterval copyA, copyB;
        ZorWBRoundedInterval& a = _code[instruction.a].op == ZorWBTapeOp::Constant
                                      ? (copyA = slots[instruction.a])
                                      : slots[instruction.a];
        ZorWBRoundedInterval& b = instruction.b < 0 ? copyB
                                  : _code[instruction.b].op == ZorWBTapeOp::Constant
                                      ? (copyB = slots[instruction.b])
                                      : slots[instruction.b];
        if (!ProjectInstruction(instruction, slots[*position], a, b)) return false;
    }
    return true;
}
