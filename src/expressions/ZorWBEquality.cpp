// Structural equality of operators, without recursion.
//
// Two operators are equal when they have the same head (type, number of
// children and own data, see HasSameHead) and equal children: in order, or
// for Sum, Product, Min and Max greedily without order (each child of the
// first takes the first not yet matched equal child of the second, with no
// backtracking). The comparison of two children that are operators is pushed
// on an explicit stack; its answer is remembered, so shared subgraphs are
// compared once.

#include <cstdint>
#include <exception>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBOperator.h"

namespace {

using Pair = std::pair<const ZorWBExpression*, const ZorWBExpression*>;

struct PairHash {
    std::size_t operator()(const Pair& pair) const {
        std::size_t a = std::hash<const void*>()(pair.first);
        std::size_t b = std::hash<const void*>()(pair.second);
        return a ^ (b + 0x9e3779b97f4a7c15ull + (a << 6) + (a >> 2));
    }
};

bool IsCommutative(ZorWBExpressionType type) {
    return type == ZorWBExpressionType::Sum || type == ZorWBExpressionType::Product ||
           type == ZorWBExpressionType::Min || type == ZorWBExpressionType::Max;
}

}  // namespace

// Friend access to the operators' heads.
class ZorWBEqualityEngine {
  public:
    bool Compare(const ZorWBOperator* a, const ZorWBOperator* b) {
        if (!a->HasSameHead(b)) return false;
        Push(a, b);
        bool last = false;
        while (true) {
            Frame& frame = _stack.back();
            int n = ZorWBGraphWalk::NbOfChildren(frame.a);
            bool pairEqual;
            if (frame.waiting) {
                frame.waiting = false;
                pairEqual = last;
            } else {
                if (frame.i >= n || (frame.commutative && frame.j >= n)) {
                    bool result = frame.i >= n;
                    if (Finish(result, last)) return result;
                    continue;
                }
                if (frame.commutative && _matched[frame.matched + frame.j]) {
                    ++frame.j;
                    continue;
                }
                const ZorWBExpression* x = ZorWBGraphWalk::Child(frame.a, frame.i);
                const ZorWBExpression* y =
                    ZorWBGraphWalk::Child(frame.b, frame.commutative ? frame.j : frame.i);
                int quick = QuickCompare(x, y);
                if (quick < 0) {
                    frame.waiting = true;
                    Push(static_cast<const ZorWBOperator*>(x),
                         static_cast<const ZorWBOperator*>(y));
                    continue;
                }
                pairEqual = quick == 1;
            }
            Frame& current = _stack.back();
            if (!current.commutative) {
                if (!pairEqual) {
                    if (Finish(false, last)) return false;
                    continue;
                }
                ++current.i;
            } else if (pairEqual) {
                _matched[current.matched + current.j] = 1;
                ++current.i;
                current.j = 0;
            } else {
                ++current.j;
            }
        }
    }

  private:
    struct Frame {
        const ZorWBOperator* a;
        const ZorWBOperator* b;
        int i = 0;
        int j = 0;
        bool commutative = false;
        bool waiting = false;
        std::size_t matched = 0;  // offset of this frame's flags in _matched
    };

    void Push(const ZorWBOperator* a, const ZorWBOperator* b) {
        Frame frame;
        frame.a = a;
        frame.b = b;
        frame.commutative = IsCommutative(a->GetType());
        frame.matched = _matched.size();
        if (frame.commutative) _matched.resize(_matched.size() + a->GetNbOfChildren(), 0);
        _stack.push_back(frame);
    }

    // Pops the top frame with its answer; true when it was the first one.
    bool Finish(bool result, bool& last) {
        Frame frame = _stack.back();
        _stack.pop_back();
        _matched.resize(frame.matched);
        _known[{frame.a, frame.b}] = result;
        last = result;
        return _stack.empty();
    }

    // 1 equal, 0 different, -1 a comparison of two operators to run.
    int QuickCompare(const ZorWBExpression* x, const ZorWBExpression* y) {
        if (x == y) return 1;
        if (!x || !y) return 0;
        if (x->IsLeaf() || y->IsLeaf()) return x->IsEqualTo(y) ? 1 : 0;
        auto known = _known.find({x, y});
        if (known != _known.end()) return known->second ? 1 : 0;
        const ZorWBOperator* a = static_cast<const ZorWBOperator*>(x);
        if (!a->HasSameHead(static_cast<const ZorWBOperator*>(y))) return 0;
        return -1;
    }

    std::vector<Frame> _stack;
    std::vector<char> _matched;
    std::unordered_map<Pair, bool, PairHash> _known;
};

bool ZorWBExpression::IsEqualTo(const ZorWBExpression* other) const try {
    if (other == this) return true;
    if (!other || IsLeaf() || other->IsLeaf()) return false;
    ZorWBEqualityEngine engine;
    return engine.Compare(static_cast<const ZorWBOperator*>(this),
                          static_cast<const ZorWBOperator*>(other));
} catch (const std::exception&) {
    return false;
}
