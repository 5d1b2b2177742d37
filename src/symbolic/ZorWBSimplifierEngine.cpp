#include "symbolic/ZorWBSimplifierEngine.h"

#include <algorithm>

#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBVariable.h"
#include "symbolic/ZorWBConstantArithmetic.h"
#include "symbolic/ZorWBNodeRebuild.h"

namespace {

using Type = ZorWBExpressionType;

std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
    std::uint64_t x = a * 0x9E3779B97F4A7C15ull + b + 0x632BE59BD9B4E019ull;
    x ^= x >> 31;
    x *= 0xBF58476D1CE4E5B9ull;
    x ^= x >> 29;
    return x;
}

bool IsCommutative(Type type) {
    return type == Type::Sum || type == Type::Product || type == Type::Min || type == Type::Max;
}

long long AddWeights(long long a, long long b) {
    long long sum = a + b;
    return sum > ZorWBSimplifierEngine::WeightLimit ? ZorWBSimplifierEngine::WeightLimit : sum;
}

}  // namespace

// ------------------------------------------------------------ passes

ZorWBExpression* ZorWBSimplifierEngine::RunPass(ZorWBSimplifierPass pass, ZorWBExpression* root) {
    if (!root) return nullptr;
    Memo& results = _results[static_cast<int>(pass)];
    auto found = results.find(root);
    if (found != results.end() && found->second) return found->second;
    struct Frame {
        ZorWBExpression* node;
        int next;
    };
    // A node is entered in the results (as null) when it is pushed, so that a
    // node reached twice is computed once and a cycle through definitions
    // cannot loop: its inner use then keeps the variable as it is.
    std::vector<Frame> stack{{root, 0}};
    results[root] = nullptr;
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next < NbOfChildrenForPass(pass, frame.node)) {
            ZorWBExpression* child = ChildForPass(pass, frame.node, frame.next++);
            if (child && results.emplace(child, nullptr).second) stack.push_back({child, 0});
            continue;
        }
        ZorWBExpression* node = frame.node;
        stack.pop_back();
        ZorWBExpression* result = Compute(pass, node);
        results[node] = result ? result : node;
    }
    return results[root];
}

void ZorWBSimplifierEngine::ForgetResults() {
    for (Memo& results : _results)
        results.clear();
}

int ZorWBSimplifierEngine::NbOfChildrenForPass(ZorWBSimplifierPass pass,
                                               const ZorWBExpression* node) const {
    if (node->IsLeaf()) return pass == ZorWBSimplifierPass::Prepare && Substitute(node) ? 1 : 0;
    return node->GetNbOfChildren();
}

ZorWBExpression* ZorWBSimplifierEngine::ChildForPass(ZorWBSimplifierPass pass,
                                                     const ZorWBExpression* node, int i) {
    if (node->IsLeaf()) return pass == ZorWBSimplifierPass::Prepare ? Substitute(node) : nullptr;
    return const_cast<ZorWBExpression*>(node->GetChild(i));
}

ZorWBExpression* ZorWBSimplifierEngine::Compute(ZorWBSimplifierPass pass, ZorWBExpression* node) {
    Memo& results = _results[static_cast<int>(pass)];
    auto resultOf = [&results](ZorWBExpression* child) {
        auto found = results.find(child);
        return found != results.end() && found->second ? found->second : child;
    };
    if (node->IsLeaf()) {
        ZorWBExpression* definition =
            pass == ZorWBSimplifierPass::Prepare ? Substitute(node) : nullptr;
        return definition ? resultOf(definition) : node;
    }
    int n = node->GetNbOfChildren();
    Nodes children(static_cast<std::size_t>(n));
    long long plainWeight = 1;
    for (int i = 0; i < n; ++i) {
        ZorWBExpression* child = node->GetChild(i);
        if (!child) return node;
        children[static_cast<std::size_t>(i)] = resultOf(child);
        plainWeight = AddWeights(plainWeight, Weight(children[static_cast<std::size_t>(i)]));
    }
    ZorWBExpression* candidate = Rule(pass, node, children);
    if (candidate && Weight(candidate) <= plainWeight) return candidate;
    ZorWBExpression* rebuilt = Rebuild(node, children);
    return rebuilt ? rebuilt : node;
}

ZorWBExpression* ZorWBSimplifierEngine::Rule(ZorWBSimplifierPass pass, const ZorWBExpression* node,
                                             const Nodes& children) {
    switch (pass) {
        case ZorWBSimplifierPass::Prepare:
            return PrepareRule(node, children);
        case ZorWBSimplifierPass::CosTan:
            return CosTanRule(node, children);
        case ZorWBSimplifierPass::Round:
            return RoundRule(node, children);
        case ZorWBSimplifierPass::SinCos:
            return SinCosRule(node, children);
        case ZorWBSimplifierPass::MergeLikeTerms:
            if (node->GetType() == Type::Sum) return NormaliseSum(children);
            if (node->GetType() == Type::Product) return NormaliseProduct(children);
            return nullptr;
        case ZorWBSimplifierPass::Final:
            return FinalRule(node, children);
        default:
            return nullptr;
    }
}

// ------------------------------------------------------------ building

ZorWBExpression* ZorWBSimplifierEngine::Rebuild(const ZorWBExpression* node,
                                                const Nodes& children) {
    return ZorWBRebuildNode(_factory, node, children);
}

ZorWBExpression* ZorWBSimplifierEngine::MakeConstant(const ZorWBValue& value) {
    return _factory.CreateConstant(value);
}

ZorWBExpression* ZorWBSimplifierEngine::MakeNary(Type type, const Nodes& children) {
    if (children.empty()) return nullptr;
    if (children.size() == 1) return children.front();
    return _factory.CreateOperator(type, static_cast<int>(children.size()), children.data());
}

const ZorWBValue* ZorWBSimplifierEngine::ConstantValue(const ZorWBExpression* node) {
    return IsConstantNode(node) ? &node->GetExprValue() : nullptr;
}

bool ZorWBSimplifierEngine::IntegerExponent(const ZorWBExpression* node, long long& exponent) {
    if (!node || node->GetType() != Type::Power || node->GetNbOfChildren() != 2) return false;
    const ZorWBValue* value = ConstantValue(node->GetChild(1));
    if (!value || !value->IsAKindOf(ZorWBIntegerType) ||
        !ZorWBConstantArithmetic::IsRational(*value))
        return false;
    exponent = value->GetAsInteger();
    return true;
}

// ------------------------------------------------------------ node facts

const ZorWBSimplifierEngine::NodeInfo& ZorWBSimplifierEngine::Info(const ZorWBExpression* node) {
    static const NodeInfo none;
    if (!node) return none;
    auto found = _infos.find(node);
    if (found != _infos.end()) return found->second;
    // Children first, each node once; the facts stay for later calls.
    ZorWBGraphWalk::PostOrder<NodeInfo>(
        node, _infos, [this](const ZorWBExpression* e) { return ComputeInfo(e); });
    return _infos.find(node)->second;
}

namespace {

// Whether the operator itself is defined for all values of its operands.
bool OperatorIsTotal(const ZorWBExpression* node) {
    switch (node->GetType()) {
        case Type::Not:
        case Type::Or:
        case Type::And:
        case Type::Equal:
        case Type::NotEqual:
        case Type::LessEqual:
        case Type::Implication:
        case Type::Sum:
        case Type::Product:
        case Type::Min:
        case Type::Max:
        case Type::Sin:
        case Type::Cos:
        case Type::Atan:
        case Type::Exp:
        case Type::Sinh:
        case Type::Cosh:
        case Type::Tanh:
        case Type::Asinh:
        case Type::Abs:
        case Type::Ceil:
        case Type::Floor:
        case Type::Trunc:
        case Type::Sign:
        case Type::Dim:
        case Type::Step:
        case Type::IfThenElse:
        case Type::UnaryMinus:
            return true;
        case Type::Round:
            return node->GetNbOfChildren() == 1;
        case Type::Power: {
            long long exponent = 0;
            return ZorWBSimplifierEngine::IntegerExponent(node, exponent) && exponent >= 0;
        }
        case Type::Quotient:
        case Type::Mod: {
            const ZorWBValue* divisor = ZorWBSimplifierEngine::ConstantValue(node->GetChild(1));
            return divisor && ZorWBConstantArithmetic::IsRational(*divisor) &&
                   !ZorWBConstantArithmetic::IsExactly(*divisor, 0.0);
        }
        default:
            return false;
    }
}

}  // namespace

ZorWBSimplifierEngine::NodeInfo ZorWBSimplifierEngine::ComputeInfo(const ZorWBExpression* node) {
    NodeInfo info;
    Type type = node->GetType();
    if (type == Type::Variable) {
        int index = static_cast<const ZorWBVariable*>(node)->GetIdx();
        info.hash = Mix(1, static_cast<std::uint64_t>(index));
        info.firstVariable = index;
        return info;
    }
    if (type == Type::Constant) {
        // Constants are equal under a tolerance, which no hash can follow:
        // they all share one hash and the structural equality decides.
        info.hash = Mix(2, 0);
        info.firstVariable = NoVariable;
        info.constant = true;
        info.total = !node->GetExprValue().IsAKindOf(ZorWBUndefinedType);
        return info;
    }
    int n = node->GetNbOfChildren();
    bool commutative = IsCommutative(type);
    std::uint64_t childrenHash = 0;
    info.firstVariable = NoVariable;
    info.constant = true;
    info.total = OperatorIsTotal(node);
    for (int i = 0; i < n; ++i) {
        const ZorWBExpression* child = node->GetChild(i);
        if (!child) {
            info.constant = false;
            info.total = false;
            continue;
        }
        const NodeInfo& childInfo = _infos.find(child)->second;
        info.weight = AddWeights(info.weight, childInfo.weight);
        info.firstVariable = std::min(info.firstVariable, childInfo.firstVariable);
        info.constant = info.constant && childInfo.constant;
        info.total = info.total && childInfo.total;
        childrenHash =
            commutative ? childrenHash + Mix(childInfo.hash, 7) : Mix(childrenHash, childInfo.hash);
    }
    info.hash = Mix(Mix(3, static_cast<std::uint64_t>(type)), childrenHash + n);
    return info;
}

namespace {

// A term's weight and type without its leading numeric coefficient.
struct CoreShape {
    long long weight;
    int type;
};

}  // namespace

bool ZorWBSimplifierEngine::CanonicalLess(const ZorWBExpression* a, const ZorWBExpression* b,
                                          bool constantsFirst) {
    const NodeInfo& x = Info(a);
    const NodeInfo& y = Info(b);
    if (x.constant != y.constant) return constantsFirst ? x.constant : y.constant;
    if (x.firstVariable != y.firstVariable) return x.firstVariable < y.firstVariable;
    auto core = [this](const ZorWBExpression* e) {
        int n = e->GetNbOfChildren();
        if (e->GetType() == Type::Product && n >= 2 && IsConstantNode(e->GetChild(0))) {
            if (n == 2) return CoreShape{Weight(e->GetChild(1)), int(e->GetChild(1)->GetType())};
            return CoreShape{Weight(e) - 1, int(Type::Product)};
        }
        if (e->GetType() == Type::UnaryMinus && n == 1)
            return CoreShape{Weight(e->GetChild(0)), int(e->GetChild(0)->GetType())};
        return CoreShape{Weight(e), int(e->GetType())};
    };
    CoreShape p = core(a);
    CoreShape q = core(b);
    if (p.weight != q.weight) return p.weight < q.weight;
    if (p.type != q.type) return p.type < q.type;
    return Info(a).hash < Info(b).hash;
}
