// Compilation of the programs of ZorWBRealProgram: one depth-first walk per
// root in the node walk's order, emitting each operator's instructions
// after those of its children (in the value order, each node's Start before
// its children and each fold step after its child). Code that runs only
// sometimes (an IfThenElse branch, a guarded block) forms a region; a node
// emitted in a region is known to be computed in that region and the
// regions inside it, and is stamped so that a later occurrence elsewhere can
// be guarded. The cost is linear in the nodes and edges of the subgraph,
// but for the regions a node is tested against (its occurrences in
// different branches).

#include <algorithm>
#include <exception>
#include <new>
#include <unordered_map>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBSlopes.h"

namespace {
using Type = ZorWBExpressionType;
}  // namespace

class ZorWBRealProgramCompiler {
  public:
    using Program = ZorWBRealProgram;
    using Op = ZorWBRealProgram::Op;

    ZorWBRealProgramCompiler(Program& program, const Program::Options& options)
        : _program(program), _options(options) {}

    bool Compile(const ZorWBExpression* const* roots, int nbOfRoots) {
        _regions.push_back({-1, 0});
        if (!RegisterInputs()) return false;
        for (int i = 0; i < nbOfRoots; ++i) {
            if (!roots[i] || !Walk(roots[i])) return false;
            _program._results.push_back(Reg(roots[i]));
            ForgetPerRootNodes();
        }
        // Fused instructions exist only over reals, without slopes.
        if (!_stamped && !_options.slopes && !_options.valueOrder) {
            FuseSineCosine();
            FuseProducts();
        }
        // Values in the value order may share registers as reals do; slopes
        // are read after the run, from every node's register.
        AllocateRegisters(!_stamped && !_options.slopes);
        for (Program::SlopeRecord& record : _program._slopeRecords)
            record.dst = At(record.code).dst;  // allocated
        const std::size_t registers = static_cast<std::size_t>(_nbOfRegisters);
        _program._jumps = _stamped;
        if (_stamped) _program._stamps.assign(registers, 0u);
        if (_options.valueOrder) {
            _program._values.assign(registers, ZorWBValue());
            if (_options.slopes)
                _program._intervalSlopes.assign(_program._arguments.size(), ZorWBRealInterval{});
        } else if (_options.slopes) {
            PlaceSlopes();
        } else {
            _program._registers.assign(registers, 0.0);
        }
        return true;
    }

  private:
    enum class State : unsigned char { New, InProgress, Emitted };
    struct NodeInfo {
        int reg = -1;
        State state = State::New;
        // Computed anew for each root (see ZorWBRealProgram).
        bool perRoot = false;
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
        int guard;     // the Guard instruction, or -1
        int branch;    // the Branch instruction of an IfThenElse
        int jump;      // its Jump over the else part
        int children;  // where its children's registers start
    };
    enum Step { Enter, Children, Finish, Condition, ThenPart, ElsePart, EndIf };

    // The inputs take the first registers, in their order; each once.
    bool RegisterInputs() {
        for (int i = 0; i < _options.nbOfInputs; ++i) {
            const ZorWBExpression* input = _options.inputs[i];
            if (!input || !input->IsLeaf()) return false;
            NodeInfo& info = _infos[input];
            if (info.reg >= 0) return false;
            info.reg = _nbOfRegisters++;
        }
        _program._nbOfInputs = _options.nbOfInputs;
        return true;
    }

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

    // A node computed anew for the next root gets a new register.
    void ForgetPerRootNodes() {
        for (const ZorWBExpression* node : _perRoot)
            _infos[node] = NodeInfo();
        _perRoot.clear();
    }

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

    int Emit(Op op, int dst, int a = 0, int b = 0, Type type = Type::None) {
        Program::Instruction instruction;
        instruction.op = op;
        instruction.type = static_cast<unsigned char>(type);
        instruction.dst = dst;
        instruction.a = a;
        instruction.b = b;
        instruction.target = 0;
        _program._code.push_back(instruction);
        return static_cast<int>(_program._code.size()) - 1;
    }
    int Here() const { return static_cast<int>(_program._code.size()); }
    Program::Instruction& At(int index) { return _program._code[static_cast<std::size_t>(index)]; }

    static Frame FrameOf(const ZorWBExpression* node) { return {node, Enter, 0, -1, -1, -1, 0}; }

    bool Walk(const ZorWBExpression* root) {
        std::vector<Frame> stack{FrameOf(root)};
        const bool valueOrder = _options.valueOrder;
        while (!stack.empty()) {
            Frame& frame = stack.back();
            const ZorWBExpression* node = frame.node;
            // Null for a leaf (a root may be one), which has no operation.
            const ZorWBOperator* op =
                node->IsLeaf() ? nullptr : static_cast<const ZorWBOperator*>(node);
            int n = ZorWBGraphWalk::NbOfEvaluatedChildren(node);
            // The registers of the children done so far, in order.
            auto done = [this, &frame]() { return _childRegisters.data() + frame.children; };
            switch (frame.step) {
                case Enter: {
                    if (!Start(frame, n)) return false;
                    if (frame.step == Finish) stack.pop_back();
                    continue;
                }
                case Children:
                    if (frame.child > 0) {
                        // The child done last, as computed for this request.
                        _childRegisters.push_back(ChildReg(op, frame.child - 1));
                        // In the value order a fold takes each child in after it.
                        if (valueOrder && ZorWBIsFoldType(node->GetType()) && frame.child >= 2)
                            EmitFoldStep(op, frame.child - 1, done());
                    }
                    if (frame.child < n) {
                        stack.push_back(FrameOf(ZorWBGraphWalk::Child(node, frame.child++)));
                    } else {
                        if (!node->IsLeaf() && !EmitOperation(op, n, done())) return false;
                        frame.step = Finish;
                    }
                    continue;
                case Condition:
                    frame.step = ThenPart;
                    stack.push_back(FrameOf(ZorWBGraphWalk::Child(node, 0)));
                    continue;
                case ThenPart:
                    _childRegisters.push_back(ChildReg(op, 0));
                    _stamped = true;
                    frame.branch = Emit(Op::Branch, Reg(node), done()[0]);
                    OpenRegion();
                    frame.step = ElsePart;
                    stack.push_back(FrameOf(ZorWBGraphWalk::Child(node, 1)));
                    continue;
                case ElsePart:
                    _childRegisters.push_back(ChildReg(op, 1));
                    Emit(Op::Move, Reg(node), done()[1]);
                    CloseRegion();
                    frame.jump = Emit(Op::Jump, 0);
                    At(frame.branch).b = Here();
                    OpenRegion();
                    frame.step = EndIf;
                    stack.push_back(FrameOf(ZorWBGraphWalk::Child(node, 2)));
                    continue;
                case EndIf:
                    _childRegisters.push_back(ChildReg(op, 2));
                    Emit(Op::Move, Reg(node), done()[2]);
                    CloseRegion();
                    At(frame.jump).target = Here();
                    At(frame.branch).target = Here();
                    frame.step = Finish;
                    continue;
                default:  // Finish
                    if (_options.slopes && !node->IsLeaf() && n > 0 && !EmitSlope(op, n, done()))
                        return false;
                    Complete(frame, n);
                    _childRegisters.resize(static_cast<std::size_t>(frame.children));
                    stack.pop_back();
                    if (_program._code.size() > MaxSize()) return false;
                    continue;
            }
        }
        return true;
    }

    // A node reached: false for a cycle. A node that needs no code here
    // (a leaf read before the run, a node computed already) is done at
    // once (step Finish); otherwise its code starts, guarded where the
    // node may have been computed elsewhere. An unbuffered node, which the
    // walk computes at each request, gets code of its own (a new register)
    // at each.
    bool Start(Frame& frame, int n) {
        const ZorWBExpression* node = frame.node;
        const bool leaf = node->IsLeaf();
        const bool valueOrder = _options.valueOrder;
        NodeInfo& info = Info(node);
        if (info.state == State::InProgress) return false;
        // Leaves are read before the run; the value order starts them where
        // the walk does, an unbuffered one at every request.
        if (leaf && valueOrder && !node->AllowsBufferEval()) {
            Emit(Op::Start, info.reg);
            frame.step = Finish;
            return true;
        }
        if ((leaf && !valueOrder) ||
            (info.state == State::Emitted && node->AllowsBufferEval() && IsComputedHere(info))) {
            frame.step = Finish;
            return true;
        }
        if (!leaf && !node->AllowsBufferEval() && info.state == State::Emitted) info = NodeInfo();
        NodeInfo& current = Info(node);
        bool guarded = current.state == State::Emitted;
        current.state = State::InProgress;
        if (guarded) {
            _stamped = true;
            frame.guard = Emit(Op::Guard, current.reg);
            OpenRegion();
        }
        if (valueOrder) Emit(Op::Start, current.reg, 0, 0, node->GetType());
        frame.children = static_cast<int>(_childRegisters.size());
        frame.step = node->GetType() == Type::IfThenElse && n == 3 ? Condition : Children;
        return true;
    }

    // The node's code is complete.
    void Complete(const Frame& frame, int n) {
        const ZorWBExpression* node = frame.node;
        NodeInfo& info = Info(node);
        if (_current != 0) Emit(Op::Stamp, info.reg);
        if (frame.guard >= 0) {
            CloseRegion();
            At(frame.guard).target = Here();
        }
        info.state = State::Emitted;
        info.regions.push_back(_current);
        if (IsPerRoot(node, n)) {
            info.perRoot = true;
            _perRoot.push_back(node);
        }
    }

    // Code copied for each request of an unbuffered node may grow with the
    // number of paths through such nodes: beyond a few instructions per
    // node the program is not made.
    std::size_t MaxSize() const { return 32 * _infos.size() + 4096; }

    // Unbuffered nodes are computed at each request; with reals, so are a
    // black-box call and the nodes above it, whose calls each separate
    // evaluation makes anew.
    bool IsPerRoot(const ZorWBExpression* node, int n) {
        if (node->IsLeaf()) return false;
        if (!node->AllowsBufferEval()) return true;
        if (_options.valueOrder) return false;
        if (node->GetType() == Type::BlackBox) return true;
        for (int i = 0; i < n; ++i) {
            if (Info(ZorWBGraphWalk::Child(node, i)).perRoot) return true;
        }
        return false;
    }

    int ChildReg(const ZorWBOperator* node, int i) { return Reg(ZorWBGraphWalk::Child(node, i)); }

    // Step i >= 1 of the left fold of a Sum, Product, Min or Max over the
    // children's registers: the first reads child 0, the others the
    // running value.
    void EmitFoldStep(const ZorWBOperator* node, int i, const int* children) {
        Type type = node->GetType();
        int dst = Reg(node);
        Op op = type == Type::Sum ? Op::Add : type == Type::Product ? Op::Mul : Op::Binary;
        At(Emit(op, dst, i == 1 ? children[0] : dst, children[i], type)).binary =
            ZorWBBinaryRealFunctionOf(type);
    }

    // The instructions of one operator over its children's registers,
    // mirroring its class's DoEval(); false for a black box in the value
    // order, which cannot call it.
    bool EmitOperation(const ZorWBOperator* node, int n, const int* children) {
        const int dst = Reg(node);
        const Type type = node->GetType();
        auto emit = [this, dst, type](Op op, int a = 0, int b = 0) {
            return Emit(op, dst, a, b, type);
        };
        auto child = [children](int i) { return children[i]; };
        switch (ZorWBNodeFamilies[static_cast<int>(type)]) {
            case ZorWBNodeFamily::Algebraic:
                if (n < 1) {
                    emit(Op::Nan);
                } else if (n == 1) {
                    emit(Op::Move, child(0));
                } else if (!_options.valueOrder) {
                    for (int i = 1; i < n; ++i)
                        EmitFoldStep(node, i, children);
                }
                return true;
            case ZorWBNodeFamily::Binary: {
                if (n < 2) {
                    emit(Op::Nan);
                    return true;
                }
                Op op = type == Type::Quotient ? Op::Div
                        : type == Type::Power  ? Op::Pow
                                               : Op::Binary;
                At(emit(op, child(0), child(1))).binary = ZorWBBinaryRealFunctionOf(type);
                return true;
            }
            case ZorWBNodeFamily::Boolean:
                if (n < 2) {
                    emit(Op::Nan);
                } else {
                    At(emit(Op::Logical, child(0), child(1))).logical =
                        ZorWBLogicalRealFunctionOf(type);
                }
                return true;
            case ZorWBNodeFamily::Not:
                if (n < 1) {
                    emit(Op::Nan);
                } else {
                    emit(Op::Not, child(0));
                }
                return true;
            case ZorWBNodeFamily::Unary:
            case ZorWBNodeFamily::Trigonometric: {
                // A Round made with three children keeps their rule when
                // it loses one.
                if (dynamic_cast<const ZorWBRound3Operator*>(node)) {
                    if (n < 3) {
                        emit(Op::Nan);
                    } else {
                        At(emit(Op::Round3, child(0), child(1))).c = child(2);
                    }
                    return true;
                }
                if (n < 1) {
                    emit(Op::Nan);
                    return true;
                }
                if (type == Type::Step) {
                    At(emit(Op::Step, child(0))).node = node;
                    return true;
                }
                Op op = type == Type::UnaryMinus ? Op::Neg
                        : type == Type::Sin      ? Op::Sin
                        : type == Type::Cos      ? Op::Cos
                                                 : Op::Unary;
                At(emit(op, child(0))).unary = ZorWBUnaryRealFunctionOf(type);
                return true;
            }
            case ZorWBNodeFamily::BlackBox: {
                // A black box evaluates itself on its children's registers.
                if (_options.valueOrder) return false;
                int first = static_cast<int>(_program._arguments.size());
                for (int i = 0; i < n; ++i)
                    _program._arguments.push_back(child(i));
                At(emit(Op::Node, first, n)).node = node;
                _program._callsNodes = true;
                return true;
            }
            default:  // Integrate (undefined), and an IfThenElse short of children
                emit(Op::Nan);
                return true;
        }
    }

    // The partial derivatives of node by its children after its
    // computation; false for a type without them.
    bool EmitSlope(const ZorWBOperator* node, int n, const int* children) {
        const Type type = node->GetType();
        if (!ZorWBHasSlopes(type)) return false;
        int first = static_cast<int>(_program._arguments.size());
        for (int i = 0; i < n; ++i)
            _program._arguments.push_back(children[i]);
        int code = Emit(Op::Slope, Reg(node), first, n, type);
        At(code).node = node;
        using Kind = Program::SlopeKind;
        Kind kind = Kind::Computed;
        if (!_options.valueOrder) {
            if (type == Type::Sum || (ZorWBIsFoldType(type) && n == 1)) kind = Kind::One;
            if (type == Type::Product && n == 2) kind = Kind::OtherOperand;
            if (type == Type::UnaryMinus) kind = Kind::MinusOne;
        }
        _program._slopeRecords.push_back({Reg(node), first, n, code, kind});
        return true;
    }

    // The slots of the computed slopes follow the registers, then 1 and -1.
    // In a program without jumps, where each node is computed at one place,
    // the slopes that need no computing lose their instructions; with
    // jumps every slope is computed where its node is (a copy of a node
    // that does not run must give no slope).
    void PlaceSlopes() {
        using Kind = Program::SlopeKind;
        std::vector<Program::Instruction>& code = _program._code;
        std::vector<bool> dropped(code.size(), false);
        for (Program::SlopeRecord& record : _program._slopeRecords) {
            if (_stamped) record.kind = Kind::Computed;
            dropped[static_cast<std::size_t>(record.code)] = record.kind != Kind::Computed;
        }
        Compact(dropped);
        const std::size_t slots = _program._arguments.size();
        _program._slotBase = _nbOfRegisters;
        _program._registers.assign(static_cast<std::size_t>(_nbOfRegisters) + slots + 2, 0.0);
        _program._registers[_program._registers.size() - 2] = 1.0;
        _program._registers[_program._registers.size() - 1] = -1.0;
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
        for (int result : _program._results)
            ++reads[static_cast<std::size_t>(result)];
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
            case Op::Start:
                // Reads nothing; the node's register is taken from here on.
                visit(in.dst, true);
                return;
            case Op::Move:
            case Op::Neg:
            case Op::Sin:
            case Op::Cos:
            case Op::Unary:
            case Op::Not:
            case Op::Branch:
            case Op::Step:
                visit(in.a, false);
                break;
            case Op::SinCos:
                visit(in.a, false);
                visit(in.b, true);
                break;
            case Op::AddProduct:
            case Op::ProductAdd:
            case Op::Round3:
                visit(in.a, false);
                visit(in.b, false);
                visit(in.c, false);
                break;
            case Op::Node:
            case Op::Slope:
                for (int k = 0; k < in.b; ++k)
                    visit(_program._arguments[static_cast<std::size_t>(in.a + k)], false);
                if (in.op == Op::Slope) {
                    visit(in.dst, false);
                    return;
                }
                break;
            default:  // two operands
                visit(in.a, false);
                visit(in.b, false);
                break;
        }
        visit(in.dst, true);
    }

    // Inputs take the first registers, then the leaves in the order of the
    // leaf list. With reuse (programs without jumps whose registers need not
    // be kept) the other registers are reused once their last reader has
    // run, so that the registers of a large graph stay few and in the
    // processor's cache; otherwise each node keeps its own (its stamp, its
    // slopes go with it). In the value order no operation writes into one
    // of its operands' registers (a shortcut writes its result in place,
    // and must read operands that stay what they were): a register freed by
    // an instruction is reused from the next one on.
    void AllocateRegisters(bool reuse) {
        std::vector<Program::Instruction>& code = _program._code;
        std::size_t count = static_cast<std::size_t>(_nbOfRegisters);
        std::vector<int> renamed(count, -1);
        int next = 0;
        for (; next < _options.nbOfInputs; ++next)
            renamed[static_cast<std::size_t>(next)] = next;
        for (int leaf : _leafRegisters)
            renamed[static_cast<std::size_t>(leaf)] = next++;
        const int nbOfLeaves = next;
        std::vector<int> lastRead(count, -1);
        for (std::size_t i = 0; i < code.size(); ++i) {
            VisitRegisters(code[i], [&lastRead, i](int& reg, bool written) {
                if (!written) lastRead[static_cast<std::size_t>(reg)] = static_cast<int>(i);
            });
        }
        for (int result : _program._results)
            lastRead[static_cast<std::size_t>(result)] = static_cast<int>(code.size());
        std::vector<int> unused;
        std::vector<int> freed;
        const bool freeAfterWrite = _options.valueOrder;
        for (std::size_t i = 0; i < code.size(); ++i) {
            int index = static_cast<int>(i);
            VisitRegisters(code[i], [&](int& reg, bool written) {
                std::size_t r = static_cast<std::size_t>(reg);
                if (renamed[r] < 0) {
                    if (reuse && !unused.empty()) {
                        renamed[r] = unused.back();
                        unused.pop_back();
                    } else {
                        renamed[r] = next++;
                    }
                }
                int physical = renamed[r];
                // The last read frees the register (once: an operand may be
                // read twice), for a write of this same instruction too.
                if (!written && reuse && lastRead[r] == index && physical >= nbOfLeaves) {
                    lastRead[r] = -1;
                    (freeAfterWrite ? freed : unused).push_back(physical);
                }
                reg = physical;
            });
            unused.insert(unused.end(), freed.begin(), freed.end());
            freed.clear();
        }
        for (int& result : _program._results) {
            std::size_t r = static_cast<std::size_t>(result);
            if (renamed[r] < 0) renamed[r] = next++;  // an input no code reads
            result = renamed[r];
        }
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
    const Program::Options& _options;
    std::unordered_map<const ZorWBExpression*, NodeInfo> _infos;
    std::vector<const ZorWBExpression*> _perRoot;
    // The registers of the children of the nodes being emitted, a stretch
    // per node on the walk's stack.
    std::vector<int> _childRegisters;
    std::vector<Region> _regions;
    int _current = 0;
    int _nbOfRegisters = 0;
    std::vector<int> _leafRegisters;
    bool _stamped = false;
};

std::unique_ptr<ZorWBRealProgram> ZorWBRealProgram::Compile(const ZorWBExpression* root) {
    return Compile(&root, 1, Options());
}

std::unique_ptr<ZorWBRealProgram> ZorWBRealProgram::Compile(const ZorWBExpression* const* roots,
                                                            int nbOfRoots,
                                                            const Options& options) try {
    if (!roots || nbOfRoots < 1 || options.nbOfInputs < 0 ||
        (options.nbOfInputs > 0 && !options.inputs))
        return nullptr;
    std::unique_ptr<ZorWBRealProgram> program(new ZorWBRealProgram());
    ZorWBRealProgramCompiler compiler(*program, options);
    if (!compiler.Compile(roots, nbOfRoots)) return nullptr;
    program->_code.shrink_to_fit();
    return program;
} catch (const std::exception&) {
    return nullptr;
}
