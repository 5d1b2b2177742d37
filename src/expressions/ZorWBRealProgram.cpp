// Execution of the real programs behind Eval() and the compiled functions:
// one pass over the instructions with a switch per instruction, over an
// array of registers that the inputs and the leaves fill first.

#include "expressions/ZorWBRealProgram.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBRealWalk.h"
#include "expressions/ZorWBSlopes.h"
#include "values/ZorWBValueFunctions.h"

namespace {

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

void ZorWBRealProgram::ReadLeaves() {
    double* registers = _registers.data() + _nbOfInputs;
    for (std::size_t i = 0; i < _leaves.size(); ++i)
        registers[i] = LeafReal(_leaves[i]);
}

void ZorWBRealProgram::NextEpoch() {
    if (!_stamps.empty() && ++_epoch == 0) {
        std::fill(_stamps.begin(), _stamps.end(), 0u);
        _epoch = 1;
    }
}

double ZorWBRealProgram::Run(ZorWBFactory& factory) {
    RunWithInputs(factory);
    return GetResult(0);
}

void ZorWBRealProgram::RunWithInputs(ZorWBFactory& factory) {
    ReadLeaves();
    NextEpoch();
    // Instructions that do not run give no slope.
    if (_jumps && !_slopeRecords.empty())
        std::fill(_registers.begin() + _slotBase,
                  _registers.begin() + _slotBase + static_cast<std::ptrdiff_t>(_arguments.size()),
                  ZorWBRealNoSlope());
    // Nodes that evaluate themselves read their children's results as the
    // node walk leaves them: in the slots of a running real evaluation.
    std::optional<ZorWBFactory::RealWalk> walk;
    if (_callsNodes) walk.emplace(factory);
    ++factory._evaluationDepth;
    Execute(factory);
    --factory._evaluationDepth;
}

void ZorWBRealProgram::Execute(ZorWBFactory& factory) {
    double* r = _registers.data();
    const Instruction* const code = _code.data();
    const Instruction* const end = code + _code.size();
    const ZorWBEnvironment& environment = factory.GetEnvironment();
    for (const Instruction* in = code; in < end; ++in) {
        switch (in->op) {
            case Op::Nan:
                r[in->dst] = NaN;
                break;
            case Op::Move:
                r[in->dst] = r[in->a];
                break;
            case Op::Add:
                r[in->dst] = r[in->a] + r[in->b];
                break;
            case Op::Mul:
                r[in->dst] = r[in->a] * r[in->b];
                break;
            case Op::AddProduct:
                r[in->dst] = r[in->a] + r[in->b] * r[in->c];
                break;
            case Op::ProductAdd:
                r[in->dst] = r[in->a] * r[in->b] + r[in->c];
                break;
            case Op::Div:
                r[in->dst] = r[in->a] / r[in->b];
                break;
            case Op::Neg:
                r[in->dst] = -r[in->a];
                break;
            case Op::Pow:
                r[in->dst] = ZorWBRealPower(r[in->a], r[in->b]);
                break;
            case Op::Sin:
                r[in->dst] = std::sin(r[in->a]);
                break;
            case Op::Cos:
                r[in->dst] = std::cos(r[in->a]);
                break;
            case Op::SinCos:
                SineCosine(r[in->a], r[in->dst], r[in->b]);
                break;
            case Op::Unary:
                r[in->dst] = in->unary(r[in->a]);
                break;
            case Op::Binary:
                r[in->dst] = in->binary(r[in->a], r[in->b]);
                break;
            case Op::Logical: {
                double a = r[in->a];
                double b = r[in->b];
                r[in->dst] = std::isnan(a) || std::isnan(b)
                                 ? NaN
                                 : in->logical(a, b, environment.GetTolerance());
                break;
            }
            case Op::Not: {
                double a = r[in->a];
                r[in->dst] = std::isnan(a) ? NaN : (a == 0.0 ? 1.0 : 0.0);
                break;
            }
            case Op::Branch: {
                double condition = r[in->a];
                if (std::isnan(condition)) {
                    r[in->dst] = NaN;
                    in = code + in->target - 1;
                } else if (condition == 0.0) {
                    in = code + in->b - 1;
                }
                break;
            }
            case Op::Jump:
                in = code + in->target - 1;
                break;
            case Op::Guard:
                if (_stamps[static_cast<std::size_t>(in->dst)] == _epoch)
                    in = code + in->target - 1;
                break;
            case Op::Stamp:
                _stamps[static_cast<std::size_t>(in->dst)] = _epoch;
                break;
            case Op::Start:
                break;
            case Op::Slope: {
                const std::size_t first = static_cast<std::size_t>(in->a);
                ZorWBRealSlopes(*in->node, r, &_arguments[first], in->b, r[in->dst],
                                environment.GetTolerance(), r + _slotBase + in->a);
                break;
            }
            default:  // Step, Round3, Node
                ExecuteCall(*in, factory);
                break;
        }
    }
}

void ZorWBRealProgram::ExecuteCall(const Instruction& in, ZorWBFactory& factory) {
    const ZorWBEnvironment& environment = factory.GetEnvironment();
    double* r = _registers.data();
    switch (in.op) {
        case Op::Step: {
            // The step's shape belongs to its value function.
            const double* parameters =
                static_cast<const ZorWBUnaryOperator*>(in.node)->GetParameters();
            r[in.dst] = ZorWBRealReading(ZorWBStep(environment, r[in.a], parameters));
            return;
        }
        case Op::Round3:
            r[in.dst] = ZorWBRealReading(ZorWBRound(environment, r[in.a], r[in.b], r[in.c]));
            return;
        case Op::Node: {
            const ZorWBOperator* node = in.node;
            int n = std::min(in.b, ZorWBGraphWalk::NbOfChildren(node));
            for (int i = 0; i < n; ++i) {
                factory.StartRealSlot(ZorWBGraphWalk::Child(node, i),
                                      r[_arguments[static_cast<std::size_t>(in.a + i)]]);
            }
            r[in.dst] = static_cast<const ZorWBExpression*>(node)->DoEval();
            return;
        }
        default:
            return;
    }
}
