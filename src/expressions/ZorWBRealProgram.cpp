// Compilation and execution of the real programs behind Eval().

#include "expressions/ZorWBRealProgram.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <optional>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBRealWalk.h"

namespace {

using Type = ZorWBExpressionType;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// A leaf's real, as ZorWBConstant::DoEval() reads it.
inline double LeafReal(const ZorWBConstant* leaf) {
    return ZorWBRealReading(leaf->ZorWBConstant::GetExprValue());
}

// Sine and cosine of one argument in one call where the C library offers it:
// glibc computes both with the code of sin and cos, so the results are the
// same to the bit.
inline void SineCosine(double x, double& sine, double& cosine) {
#if defined(__GLIBC__)
    ::sincos(x, &sine, &cosine);
#else
    sine = std::sin(x);
    cosine = std::cos(x);
#endif
}

}  // namespace

// ------------------------------------------------------------ compilation

// One compilation: a depth-first walk in the node walk's order, emitting each
// operator's instructions after those of its children. Code that runs only
// sometimes (an IfThenElse branch, a guarded block) forms a region; a node
// emitted in a region is known to be computed in that region and the regions
// inside it, and is stamped so that a later occurrence elsewhere can be
// guarded.
class ZorWBRealProgramCompiler {
  public:
    using Program = ZorWBRealProgram;
    using Op = ZorWBRealProgram::Op;

    explicit ZorWBRealProgramCompiler(Program& program) : _program(program) {}

    bool Compile(const ZorWBExpression* root) {
        _regions.push_back({-1, 0});
        if (!Walk(root)) return false;
        _program._result = Info(root).reg;
        if (!_stamped) {
            FuseSineCosine();
            FuseProducts();
        }
        AllocateRegisters();
        if (_stamped) _program._stamps.assign(static_cast<std::size_t>(_nbOfRegisters), 0u);
        _program._registers.assign(static_cast<std::size_t>(_nbOfRegisters), 0.0);
        return true;
    }

  private:
    enum class State : unsigned char { New, InProgress, Emitted };
    struct NodeInfo {
        int reg = -1;
        State state = State::New;
        // The regions in which the node was emitted.
        std::vector<int> regions;
    };
    struct Region {
        int parent;
        int depth;
    };
    struct Frame {
        const ZorWBExpression* node;
        int step;
        int child;
        int guard;   // the Guard instruction, or -1
        int branch;  // the Branch instruction of an IfThenElse
        int jump;    // its Jump over the else part
    };
    enum Step { Enter, Children, Finish, Condition, ThenPart, ElsePart, EndIf };

    NodeInfo& Info(const ZorWBExpression* node) {
        NodeInfo& info = _infos[node];
        if (info.reg < 0) {
            info.reg = _nbOfRegisters++;
            if (node->IsLeaf()) {
                _program._leaves.push_back(static_cast<const ZorWBConstant*>(node));
                _leafRegisters.push_back(info.reg);
            }
        }
        return info;
    }
    int Reg(const ZorWBExpression* node) { return Info(node).reg; }

    bool IsWithin(int region, int outer) const {
        while (_regions[static_cast<std::size_t>(region)].depth >
               _regions[static_cast<std::size_t>(outer)].depth)
            region = _regions[static_cast<std::size_t>(region)].parent;
        return region == outer;
    }
    bool IsComputedHere(const NodeInfo& info) const {
        for (int region : info.regions) {
            if (IsWithin(_current, region)) return true;
        }
        return false;
    }
    void OpenRegion() {
        _regions.push_back({_current, _regions[static_cast<std::size_t>(_current)].depth + 1});
        _current = static_cast<int>(_regions.size()) - 1;
    }
    void CloseRegion() { _current = _regions[static_cast<std::size_t>(_current)].parent; }

    int Emit(Op op, int dst, int a = 0, int b = 0) {
        Program::Instruction instruction;
        instruction.op = op;
        instruction.dst = dst;
        instruction.a = a;
        instruction.b = b;
        instruction.target = 0;
        _program._code.push_back(instruction);
        return static_cast<int>(_program._code.size()) - 1;
    }
    int Here() const { return static_cast<int>(_program._code.size()); }
    Program::Instruction& At(int index) { return _program._code[static_cast<std::size_t>(index)]; }

    bool Walk(const ZorWBExpression* root) {
        std::vector<Frame> stack{{root, Enter, 0, -1, -1, -1}};
        while (!stack.empty()) {
            Frame& frame = stack.back();
            const ZorWBExpression* node = frame.node;
            int n = ZorWBGraphWalk::NbOfEvaluatedChildren(node);
            switch (frame.step) {
                case Enter: {
                    NodeInfo& info = Info(node);
                    // The walk computes an unbuffered node at each request,
                    // which a register computed once cannot follow.
                    if (!node->IsLeaf() && !node->AllowsBufferEval() && info.state != State::New)
                        return false;
                    if (node->IsLeaf() || (info.state == State::Emitted && IsComputedHere(info))) {
                        stack.pop_back();
                        continue;
                    }
                    if (info.state == State::InProgress) return false;  // a cycle
                    bool guarded = info.state == State::Emitted;
                    info.state = State::InProgress;
                    if (guarded) {
                        _stamped = true;
                        frame.guard = Emit(Op::Guard, info.reg);
                        OpenRegion();
                    }
                    bool conditional = node->GetType() == Type::IfThenElse && n == 3;
                    frame.step = conditional ? Condition : Children;
                    continue;
                }
                case Children:
                    if (frame.child < n) {
                        stack.push_back(
                            {ZorWBGraphWalk::Child(node, frame.child++), Enter, 0, -1, -1, -1});
                    } else {
                        EmitOperation(static_cast<const ZorWBOperator*>(node), n);
                        frame.step = Finish;
                    }
                    continue;
                case Condition:
                    frame.step = ThenPart;
                    stack.push_back({ZorWBGraphWalk::Child(node, 0), Enter, 0, -1, -1, -1});
                    continue;
                case ThenPart:
                    _stamped = true;
                    frame.branch = Emit(Op::Branch, Reg(node), Reg(ZorWBGraphWalk::Child(node, 0)));
                    OpenRegion();
                    frame.step = ElsePart;
                    stack.push_back({ZorWBGraphWalk::Child(node, 1), Enter, 0, -1, -1, -1});
                    continue;
                case ElsePart:
                    Emit(Op::Move, Reg(node), Reg(ZorWBGraphWalk::Child(node, 1)));
                    CloseRegion();
                    frame.jump = Emit(Op::Jump, 0);
                    At(frame.branch).b = Here();
                    OpenRegion();
                    frame.step = EndIf;
                    stack.push_back({ZorWBGraphWalk::Child(node, 2), Enter, 0, -1, -1, -1});
                    continue;
                case EndIf:
                    Emit(Op::Move, Reg(node), Reg(ZorWBGraphWalk::Child(node, 2)));
                    CloseRegion();
                    At(frame.jump).target = Here();
                    At(frame.branch).target = Here();
                    frame.step = Finish;
                    continue;
                default: {  // Finish
                    NodeInfo& info = Info(node);
                    if (_current != 0) Emit(Op::Stamp, info.reg);
                    if (frame.guard >= 0) {
                        CloseRegion();
                        At(frame.guard).target = Here();
                    }
                    info.state = State::Emitted;
                    info.regions.push_back(_current);
                    stack.pop_back();
                    continue;
                }
            }
        }
        return true;
    }

    // The instructions of one operator, mirroring its class's DoEval().
    void EmitOperation(const ZorWBOperator* node, int n) {
        int dst = Reg(node);
        auto child = [this, node](int i) { return Reg(ZorWBGraphWalk::Child(node, i)); };
        Type type = node->GetType();
        switch (type) {
            case Type::Sum:
            case Type::Product:
            case Type::Min:
            case Type::Max: {
                if (n < 1) {
                    Emit(Op::Nan, dst);
                    return;
                }
                if (n == 1) {
                    Emit(Op::Move, dst, child(0));
                    return;
                }
                Op op = type == Type::Sum ? Op::Add : type == Type::Product ? Op::Mul : Op::Binary;
                for (int i = 1; i < n; ++i) {
                    int index = Emit(op, dst, i == 1 ? child(0) : dst, child(i));
                    At(index).binary = ZorWBBinaryRealFunctionOf(type);
                }
                return;
            }
            case Type::Quotient:
            case Type::Power:
            case Type::Root:
            case Type::Atan2:
            case Type::Dim:
            case Type::Sign:
            case Type::Mod: {
                if (n < 2) {
                    Emit(Op::Nan, dst);
                    return;
                }
                Op op = type == Type::Quotient ? Op::Div
                        : type == Type::Power  ? Op::Pow
                                               : Op::Binary;
                At(Emit(op, dst, child(0), child(1))).binary = ZorWBBinaryRealFunctionOf(type);
                return;
            }
            case Type::Or:
            case Type::And:
            case Type::Equal:
            case Type::NotEqual:
            case Type::LessEqual:
            case Type::Implication:
                if (n < 2) {
                    Emit(Op::Nan, dst);
                    return;
                }
                At(Emit(Op::Logical, dst, child(0), child(1))).logical =
                    ZorWBLogicalRealFunctionOf(type);
                return;
            case Type::Not:
                if (n < 1) {
                    Emit(Op::Nan, dst);
                } else {
                    Emit(Op::Not, dst, child(0));
                }
                return;
            case Type::Step:
            case Type::Round:
            case Type::IfThenElse:
            case Type::BlackBox:
            case Type::Integrate:
                break;
            default: {
                ZorWBUnaryRealFunction function = ZorWBUnaryRealFunctionOf(type);
                if (!function) break;
                if (n < 1) {
                    Emit(Op::Nan, dst);
                    return;
                }
                Op op = type == Type::UnaryMinus ? Op::Neg
                        : type == Type::Sin      ? Op::Sin
                        : type == Type::Cos      ? Op::Cos
                                                 : Op::Unary;
                At(Emit(op, dst, child(0))).unary = function;
                return;
            }
        }
        // Every other node evaluates itself on its children's registers.
        int first = static_cast<int>(_program._arguments.size());
        for (int i = 0; i < n; ++i)
            _program._arguments.push_back(child(i));
        At(Emit(Op::Node, dst, first, n)).node = node;
        _program._callsNodes = true;
    }

    // A Sin and a Cos of one register become one SinCos at the place of the
    // first of the two. Registers are written once, so computing the second
    // earlier changes nothing. Only for programs without jumps, whose
    // instructions all run.
    void FuseSineCosine() {
        std::vector<Program::Instruction>& code = _program._code;
        std::unordered_map<int, std::size_t> firstTrig;
        std::vector<bool> dropped(code.size(), false);
        for (std::size_t i = 0; i < code.size(); ++i) {
            Program::Instruction& instruction = code[i];
            if (instruction.op != Op::Sin && instruction.op != Op::Cos) continue;
            auto found = firstTrig.find(instruction.a);
            if (found == firstTrig.end()) {
                firstTrig.emplace(instruction.a, i);
                continue;
            }
            Program::Instruction& first = code[found->second];
            if (first.op == instruction.op) continue;  // the same function twice
            int sine = first.op == Op::Sin ? first.dst : instruction.dst;
            int cosine = first.op == Op::Sin ? instruction.dst : first.dst;
            first.op = Op::SinCos;
            first.dst = sine;
            first.b = cosine;
            dropped[i] = true;
            firstTrig.erase(found);
        }
        Compact(dropped);
    }

    // A product read only by a sum joins it in one instruction (the product
    // is still rounded before the addition). Registers are written once,
    // but for the steps of a fold, which nothing else reads before the fold
    // ends: the product's operands thus hold the same values at the sum.
    // Only for programs without jumps.
    void FuseProducts() {
        std::vector<Program::Instruction>& code = _program._code;
        std::vector<int> reads(static_cast<std::size_t>(_nbOfRegisters), 0);
        std::vector<int> writes(static_cast<std::size_t>(_nbOfRegisters), 0);
        std::vector<int> producer(static_cast<std::size_t>(_nbOfRegisters), -1);
        auto read = [&reads](int reg) { ++reads[static_cast<std::size_t>(reg)]; };
        for (std::size_t i = 0; i < code.size(); ++i) {
            VisitRegisters(code[i], [&](int& reg, bool written) {
                std::size_t r = static_cast<std::size_t>(reg);
                if (!written) {
                    ++reads[r];
                } else {
                    ++writes[r];
                    producer[r] = static_cast<int>(i);
                }
            });
        }
        read(_program._result);
        // The single-use product behind register reg, or -1.
        auto lonelyProduct = [&](int reg) {
            std::size_t r = static_cast<std::size_t>(reg);
            int index = producer[r];
            if (index < 0 || reads[r] != 1 || writes[r] != 1) return -1;
            return code[static_cast<std::size_t>(index)].op == Op::Mul ? index : -1;
        };
        std::vector<bool> dropped(code.size(), false);
        for (std::size_t i = 0; i < code.size(); ++i) {
            Program::Instruction& sum = code[i];
            if (sum.op != Op::Add) continue;
            int right = lonelyProduct(sum.b);
            int left = right < 0 ? lonelyProduct(sum.a) : -1;
            if (right >= 0) {
                const Program::Instruction& product = code[static_cast<std::size_t>(right)];
                sum.op = Op::AddProduct;
                sum.b = product.a;
                sum.c = product.b;
                dropped[static_cast<std::size_t>(right)] = true;
            } else if (left >= 0) {
                const Program::Instruction& product = code[static_cast<std::size_t>(left)];
                sum.op = Op::ProductAdd;
                sum.c = sum.b;
                sum.a = product.a;
                sum.b = product.b;
                dropped[static_cast<std::size_t>(left)] = true;
            }
        }
        Compact(dropped);
    }

    // Calls visit(reg, written) on every register field of the instruction,
    // the registers it reads before those it writes.
    template <class Visit>
    void VisitRegisters(Program::Instruction& in, Visit&& visit) {
        switch (in.op) {
            case Op::Jump:
                return;
            case Op::Nan:
                break;
            case Op::Guard:
            case Op::Stamp:
                visit(in.dst, false);
                return;
            case Op::Move:
            case Op::Neg:
            case Op::Sin:
            case Op::Cos:
            case Op::Unary:
            case Op::Not:
            case Op::Branch:
                visit(in.a, false);
                break;
            case Op::SinCos:
                visit(in.a, false);
                visit(in.b, true);
                break;
            case Op::AddProduct:
            case Op::ProductAdd:
                visit(in.a, false);
                visit(in.b, false);
                visit(in.c, false);
                break;
            case Op::Node:
                for (int k = 0; k < in.b; ++k)
                    visit(_program._arguments[static_cast<std::size_t>(in.a + k)], false);
                break;
            default:  // two operands
                visit(in.a, false);
                visit(in.b, false);
                break;
        }
        visit(in.dst, true);
    }

    // Leaves take the first registers, in the order of the leaf list. In a
    // program without jumps the other registers are reused once their last
    // reader has run, so that the registers of a large graph stay few and
    // in the processor's cache; with jumps each node keeps its own (its
    // stamp goes with it).
    void AllocateRegisters() {
        std::vector<Program::Instruction>& code = _program._code;
        std::size_t count = static_cast<std::size_t>(_nbOfRegisters);
        std::vector<int> renamed(count, -1);
        int next = 0;
        for (int leaf : _leafRegisters)
            renamed[static_cast<std::size_t>(leaf)] = next++;
        const int nbOfLeaves = next;
        std::vector<int> lastRead(count, -1);
        for (std::size_t i = 0; i < code.size(); ++i) {
            VisitRegisters(code[i], [&lastRead, i](int& reg, bool written) {
                if (!written) lastRead[static_cast<std::size_t>(reg)] = static_cast<int>(i);
            });
        }
        lastRead[static_cast<std::size_t>(_program._result)] = static_cast<int>(code.size());
        std::vector<int> unused;
        for (std::size_t i = 0; i < code.size(); ++i) {
            int index = static_cast<int>(i);
            VisitRegisters(code[i], [&](int& reg, bool written) {
                std::size_t r = static_cast<std::size_t>(reg);
                if (renamed[r] < 0) {
                    if (!_stamped && !unused.empty()) {
                        renamed[r] = unused.back();
                        unused.pop_back();
                    } else {
                        renamed[r] = next++;
                    }
                }
                int physical = renamed[r];
                // The last read frees the register (once: an operand may be
                // read twice), for a write of this same instruction too.
                if (!written && !_stamped && lastRead[r] == index && physical >= nbOfLeaves) {
                    lastRead[r] = -1;
                    unused.push_back(physical);
                }
                reg = physical;
            });
        }
        _program._result = renamed[static_cast<std::size_t>(_program._result)];
        _nbOfRegisters = next;
    }

    void Compact(const std::vector<bool>& dropped) {
        std::vector<Program::Instruction>& code = _program._code;
        std::size_t kept = 0;
        for (std::size_t i = 0; i < code.size(); ++i) {
            if (!dropped[i]) code[kept++] = code[i];
        }
        code.resize(kept);
    }

    Program& _program;
    std::unordered_map<const ZorWBExpression*, NodeInfo> _infos;
    std::vector<Region> _regions;
    int _current = 0;
    int _nbOfRegisters = 0;
    std::vector<int> _leafRegisters;
    bool _stamped = false;
};

std::unique_ptr<ZorWBRealProgram> ZorWBRealProgram::Compile(const ZorWBExpression* root) try {
    if (!root) return nullptr;
    std::unique_ptr<ZorWBRealProgram> program(new ZorWBRealProgram());
    ZorWBRealProgramCompiler compiler(*program);
    if (!compiler.Compile(root)) return nullptr;
    program->_code.shrink_to_fit();
    return program;
} catch (const std::exception&) {
    return nullptr;
}

// ------------------------------------------------------------ execution

double ZorWBRealProgram::Run(ZorWBFactory& factory) {
    double* registers = _registers.data();
    for (std::size_t i = 0; i < _leaves.size(); ++i)
        registers[i] = LeafReal(_leaves[i]);
    if (!_stamps.empty() && ++_epoch == 0) {
        std::fill(_stamps.begin(), _stamps.end(), 0u);
        _epoch = 1;
    }
    // Nodes that evaluate themselves read their children's results as the
    // node walk leaves them: in the slots of a running real evaluation.
    std::optional<ZorWBFactory::RealWalk> walk;
    if (_callsNodes) walk.emplace(factory);
    ++factory._evaluationDepth;
    Execute(factory);
    --factory._evaluationDepth;
    return registers[_result];
}

void ZorWBRealProgram::Execute(ZorWBFactory& factory) {
    double* r = _registers.data();
    const Instruction* code = _code.data();
    const int size = static_cast<int>(_code.size());
    for (int pc = 0; pc < size; ++pc) {
        const Instruction& in = code[pc];
        switch (in.op) {
            case Op::Nan:
                r[in.dst] = NaN;
                break;
            case Op::Move:
                r[in.dst] = r[in.a];
                break;
            case Op::Add:
                r[in.dst] = r[in.a] + r[in.b];
                break;
            case Op::Mul:
                r[in.dst] = r[in.a] * r[in.b];
                break;
            case Op::AddProduct:
                r[in.dst] = r[in.a] + r[in.b] * r[in.c];
                break;
            case Op::ProductAdd:
                r[in.dst] = r[in.a] * r[in.b] + r[in.c];
                break;
            case Op::Div:
                r[in.dst] = r[in.a] / r[in.b];
                break;
            case Op::Neg:
                r[in.dst] = -r[in.a];
                break;
            case Op::Pow:
                r[in.dst] = ZorWBRealPower(r[in.a], r[in.b]);
                break;
            case Op::Sin:
                r[in.dst] = std::sin(r[in.a]);
                break;
            case Op::Cos:
                r[in.dst] = std::cos(r[in.a]);
                break;
            case Op::SinCos:
                SineCosine(r[in.a], r[in.dst], r[in.b]);
                break;
            case Op::Unary:
                r[in.dst] = in.unary(r[in.a]);
                break;
            case Op::Binary:
                r[in.dst] = in.binary(r[in.a], r[in.b]);
                break;
            case Op::Logical: {
                double a = r[in.a];
                double b = r[in.b];
                r[in.dst] = std::isnan(a) || std::isnan(b)
                                ? NaN
                                : in.logical(a, b, factory.GetEnvironment().GetTolerance());
                break;
            }
            case Op::Not: {
                double a = r[in.a];
                r[in.dst] = std::isnan(a) ? NaN : (a == 0.0 ? 1.0 : 0.0);
                break;
            }
            case Op::Node: {
                const ZorWBOperator* node = in.node;
                int n = std::min(in.b, ZorWBGraphWalk::NbOfChildren(node));
                for (int i = 0; i < n; ++i) {
                    factory.StartRealSlot(ZorWBGraphWalk::Child(node, i),
                                          r[_arguments[static_cast<std::size_t>(in.a + i)]]);
                }
                r[in.dst] = static_cast<const ZorWBExpression*>(node)->DoEval();
                break;
            }
            case Op::Branch: {
                double condition = r[in.a];
                if (std::isnan(condition)) {
                    r[in.dst] = NaN;
                    pc = in.target - 1;
                } else if (condition == 0.0) {
                    pc = in.b - 1;
                }
                break;
            }
            case Op::Jump:
                pc = in.target - 1;
                break;
            case Op::Guard:
                if (_stamps[static_cast<std::size_t>(in.dst)] == _epoch) pc = in.target - 1;
                break;
            case Op::Stamp:
                _stamps[static_cast<std::size_t>(in.dst)] = _epoch;
                break;
        }
    }
}
