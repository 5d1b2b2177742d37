// Execution of the programs compiled in the value order (ZorWBRealProgram::
// RunValues): the same instructions over values instead of reals. Each
// operation goes through the shortcut of its type where it applies, else
// through the type's value function, exactly as the node's DoEval (and the
// fold steps of the walk) would on the same operands, so a run gives
// GetValue's values, and the error word its evaluation leaves, node by node.
// Scalar values are copied without touching the heap; only enumerations
// allocate.

#include <algorithm>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBOperatorFunctions.h"
#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBSlopes.h"
#include "values/ZorWBValueFunctions.h"

namespace {

using Type = ZorWBExpressionType;

// The functions of every type, looked up once.
struct FunctionTable {
    ZorWBValueShortcut shortcut[ZorWBNbOfExpressionTypes];
    ZorWBUnaryValueFunction unary[ZorWBNbOfExpressionTypes];
    ZorWBBinaryValueFunction binary[ZorWBNbOfExpressionTypes];

    FunctionTable() {
        for (int i = 0; i < ZorWBNbOfExpressionTypes; ++i) {
            Type type = static_cast<Type>(i);
            shortcut[i] = ZorWBValueShortcutOf(type);
            unary[i] = ZorWBUnaryValueFunctionOf(type);
            binary[i] = ZorWBBinaryValueFunctionOf(type);
        }
    }
};

const FunctionTable& Functions() {
    static const FunctionTable table;
    return table;
}

}  // namespace

void ZorWBRealProgram::RunValues(ZorWBFactory& factory) {
    ZorWBValue* leaves = _values.data() + _nbOfInputs;
    for (std::size_t i = 0; i < _leaves.size(); ++i)
        leaves[i] = _leaves[i]->ZorWBConstant::GetExprValue();
    NextEpoch();
    if (!_intervalSlopes.empty()) {
        // Instructions that do not run give no slope.
        if (_jumps)
            std::fill(_intervalSlopes.begin(), _intervalSlopes.end(), ZorWBIntervalNoSlope());
        _scratch = factory.GetEnvironment();
    }
    ExecuteValues(factory.GetEnvironment());
}

void ZorWBRealProgram::ExecuteValues(const ZorWBEnvironment& environment) {
    const FunctionTable& functions = Functions();
    ZorWBValue* v = _values.data();
    const Instruction* code = _code.data();
    const int size = static_cast<int>(_code.size());
    for (int pc = 0; pc < size; ++pc) {
        const Instruction& in = code[pc];
        const int type = static_cast<int>(in.type);
        switch (in.op) {
            case Op::Move:
                v[in.dst] = v[in.a];
                break;
            case Op::Add:
            case Op::Mul:
            case Op::Div:
            case Op::Pow:
            case Op::Binary:
            case Op::Logical: {
                const ZorWBValue& a = v[in.a];
                const ZorWBValue& b = v[in.b];
                ZorWBValueShortcut shortcut = functions.shortcut[type];
                if (!shortcut || !shortcut(environment, a, b, v[in.dst]))
                    v[in.dst] = functions.binary[type](environment, a, b);
                break;
            }
            case Op::Neg:
            case Op::Sin:
            case Op::Cos:
            case Op::Unary: {
                const ZorWBValue& a = v[in.a];
                ZorWBValueShortcut shortcut = functions.shortcut[type];
                if (!shortcut || !shortcut(environment, a, a, v[in.dst]))
                    v[in.dst] = functions.unary[type](environment, a);
                break;
            }
            case Op::Not:
                v[in.dst] = ZorWBNot(v[in.a]);
                break;
            case Op::Step: {
                const double* parameters =
                    static_cast<const ZorWBUnaryOperator*>(in.node)->GetParameters();
                v[in.dst] = ZorWBStep(environment, v[in.a], parameters);
                break;
            }
            case Op::Round3:
                v[in.dst] = ZorWBRound(environment, v[in.a], v[in.b], v[in.c]);
                break;
            case Op::Branch: {
                int branch = ZorWBIfThenElseOperator::ChosenBranch(v[in.a]);
                if (branch == 2) {
                    pc = in.b - 1;
                } else if (branch != 1) {
                    // Indefinite, or a state outside the four: nothing is
                    // evaluated, the value is undefined or stays.
                    if (branch == ZorWBIfThenElseOperator::IndefiniteBranch)
                        v[in.dst] = ZorWBValue();
                    pc = in.target - 1;
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
            case Op::Start:
                environment.InitForEval();
                break;
            case Op::Slope: {
                const std::size_t first = static_cast<std::size_t>(in.a);
                ZorWBIntervalSlopes(*in.node, v, &_arguments[first], in.b, v[in.dst], _scratch,
                                    &_intervalSlopes[first]);
                break;
            }
            default:  // Nan; the value order has no fused or node instruction
                v[in.dst] = ZorWBValue();
                break;
        }
    }
}
