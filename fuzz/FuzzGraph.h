#ifndef FUZZ_FUZZ_GRAPH_H
#define FUZZ_FUZZ_GRAPH_H

// Expression graphs of a factory built from the fuzzer's bytes: variables
// holding values of every kind, constants of every kind, and operators of
// every type of the node table with any number of operands (wrong arities
// included: the factory refuses them with null), sharing their operands.

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "FuzzBytes.h"
#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBExpressionType.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "values/ZorWBFraction.h"
#include "values/ZorWBValue.h"

// A black box that answers the sum of its arguments.
class FuzzSumBlackBox : public ZorWBBBx {
  public:
    explicit FuzzSumBlackBox(const char* name) : ZorWBBBx(name) {}
    double Eval() override {
        double sum = 0.0;
        for (int i = 0; i < GetNbOfArguments(); ++i)
            sum += GetArgument(i);
        return sum;
    }
};

class FuzzGraph {
  public:
    // With readableNames, variables are named so that every writer reads
    // them back; otherwise names are any bytes.
    FuzzGraph(ZorWBFactory& factory, FuzzBytes& in, bool readableNames)
        : _f(factory), _in(in), _readableNames(readableNames) {}

    ZorWBValue Value() {
        ZorWBValue value;
        switch (_in.Index(9)) {
            case 0:
                break;
            case 1:
                value.Set(_in.Integer());
                break;
            case 2:
                value.Set(_in.Real());
                break;
            case 3:
                value.Set(ZorWBIntegerInterval{_in.Integer(), _in.Integer()});
                break;
            case 4:
                value.Set(ZorWBRealInterval{_in.Real(), _in.Real()});
                break;
            case 5: {
                ZorWBIntegerEnum e(static_cast<ZorWBEnumRepresentation>(_in.Index(4)));
                if (e.GetRep() == ZorWBEnumList)
                    for (int i = _in.Index(5); i > 0; --i)
                        e.Insert(_in.Integer());
                else if (e.GetRep() == ZorWBEnumInterval)
                    e.SetAsIntegerInterval({_in.Integer(), _in.Integer()});
                value.Set(e);
                break;
            }
            case 6: {
                ZorWBRealEnum e(static_cast<ZorWBEnumRepresentation>(_in.Index(4)));
                if (e.GetRep() == ZorWBEnumList)
                    for (int i = _in.Index(5); i > 0; --i)
                        e.Insert(_in.Real(), 1e-14);
                else if (e.GetRep() == ZorWBEnumInterval)
                    e.SetAsRealInterval({_in.Real(), _in.Real()});
                value.Set(e);
                break;
            }
            case 7:
                value.Set(static_cast<ZorWBBoolean>(_in.Index(4)));
                break;
            default:
                value.Set(ZorWBCreateFraction(_in.Integer(), _in.Integer(), _in.Index(7) - 3, 0));
                break;
        }
        return value;
    }

    ZorWBVariable* AddVariable() {
        ZorWBVariable* v = _f.CreateVariable();
        if (!v) return nullptr;
        if (_in.Chance(70)) {
            std::string name = _readableNames ? "v" + std::to_string(v->GetIdx()) + "_" +
                                                    std::to_string(_in.Index(100))
                                              : _in.Text(8);
            v->SetName(ZorQelString(name.c_str()));
        }
        if (_in.Chance(80)) v->SetExprValue(Value());
        if (_in.Chance(20)) v->Fix(true);
        variables.push_back(v);
        nodes.push_back(v);
        return v;
    }

    ZorWBExpression* Constant() {
        switch (_in.Index(5)) {
            case 0:
                return _f.GetConstant(static_cast<ZorWBPredefinedConst>(_in.Index(12)));
            case 1:
                return _f.CreateIntegerConstant(_in.Integer());
            case 2:
                return _f.CreateRealConstant(_in.Real());
            default:
                return _f.CreateConstant(Value());
        }
    }

    // An operand: mostly one of the latest nodes, so that graphs grow deep,
    // sometimes any earlier node or a new constant.
    ZorWBExpression* Operand() {
        if (nodes.empty() || _in.Chance(15)) return Constant();
        int n = static_cast<int>(nodes.size());
        if (_in.Chance(30)) return nodes[static_cast<std::size_t>(_in.Index(n))];
        return nodes[static_cast<std::size_t>(n - 1 - _in.Index(n < 4 ? n : 4))];
    }

    ZorWBExpression* Operator() {
        ZorWBExpression* node = nullptr;
        switch (_in.Index(10)) {
            case 0: {
                ZorWBExpression* x = Operand();
                double p[4];
                for (double& parameter : p)
                    parameter = _in.Real();
                node = _f.CreateStep(x, p[0], p[1], p[2], p[3]);
                break;
            }
            case 1:
                if (!variables.empty())
                    node = _f.CreateIntegrateOperator(
                        Operand(), variables[static_cast<std::size_t>(
                                       _in.Index(static_cast<int>(variables.size())))]);
                break;
            case 2: {
                if (!_in.Chance(30)) break;
                std::vector<ZorWBExpression*> args;
                for (int i = _in.Index(4); i > 0; --i)
                    args.push_back(Operand());
                ZorWBBlackBox* bb = new FuzzSumBlackBox(_in.Chance(50) ? "f" : "g");
                node = _f.DeclareBlackBox(bb, static_cast<int>(args.size()), args.data(), true);
                if (!node) delete bb;
                break;
            }
            default: {
                auto type = static_cast<ZorWBExpressionType>(_in.Index(48));
                std::vector<ZorWBExpression*> operands;
                const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
                int arity = info ? info->children : 0;
                int count = _in.Chance(90) && arity >= 0 ? arity : _in.Index(5);
                if (arity < 0 && count < 2) count = 2 + _in.Index(3);
                for (int i = 0; i < count; ++i)
                    operands.push_back(Operand());
                node = _f.CreateOperator(type, static_cast<int>(operands.size()), operands.data());
                break;
            }
        }
        if (node) nodes.push_back(node);
        return node;
    }

    // A graph of about size operators over n variables.
    void Build(int nbOfVariables, int size) {
        for (int i = 0; i < nbOfVariables; ++i)
            AddVariable();
        for (int i = 0; i < size && !_in.Empty(); ++i)
            Operator();
    }

    // The size of the tree a node unfolds to (each shared node once per
    // use), counted up to limit. With unbufferedOnly, a buffered child
    // counts for nothing: what is left bounds how often an evaluation
    // computes the unbuffered nodes (black-box calls and the nodes above
    // them), which it does at every request.
    static long long UnfoldedSize(const ZorWBExpression* root, long long limit,
                                  bool unbufferedOnly = false) {
        std::unordered_map<const ZorWBExpression*, long long> sizes;
        std::vector<std::pair<const ZorWBExpression*, int>> stack;
        if (root) stack.push_back({root, 0});
        while (!stack.empty()) {
            auto& [node, next] = stack.back();
            if (next < node->GetNbOfChildren()) {
                const ZorWBExpression* child = node->GetChild(next++);
                if (child && !sizes.count(child)) stack.push_back({child, 0});
                continue;
            }
            long long size = 1;
            for (int i = 0; i < node->GetNbOfChildren(); ++i) {
                const ZorWBExpression* child = node->GetChild(i);
                if (child && (!unbufferedOnly || !child->AllowsBufferEval()))
                    size = std::min(limit, size + sizes[child]);
            }
            sizes[node] = size;
            stack.pop_back();
        }
        return root ? sizes[root] : 0;
    }

    ZorWBExpression* AnyNode() {
        if (nodes.empty()) return nullptr;
        return nodes[static_cast<std::size_t>(_in.Index(static_cast<int>(nodes.size())))];
    }

    std::vector<ZorWBVariable*> variables;
    std::vector<ZorWBExpression*> nodes;

  private:
    ZorWBFactory& _f;
    FuzzBytes& _in;
    bool _readableNames;
};

#endif
