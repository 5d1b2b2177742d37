// The symbolic transformation on generated systems that hold at a known
// point: every equation is built from an expression's value there (with
// slack for inequalities), so after the transformation, in any mode and with
// either engine, every equation must still hold at that point.

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "FuzzBytes.h"
#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBEquationPrinter.h"
#include "symbolic/NodeErrors.h"
#include "symbolic/ZorWBSymbolicTransformations.h"
#include "values/ZorWBInterval.h"

namespace {

// Operators on reals that the transformation rewrites.
const ZorWBExpressionType RealTypes[] = {
    ZorWBExpressionType::Sum,     ZorWBExpressionType::Sum,        ZorWBExpressionType::Product,
    ZorWBExpressionType::Product, ZorWBExpressionType::Quotient,   ZorWBExpressionType::Power,
    ZorWBExpressionType::Root,    ZorWBExpressionType::Sqrt,       ZorWBExpressionType::Log,
    ZorWBExpressionType::Ln,      ZorWBExpressionType::Exp,        ZorWBExpressionType::Sin,
    ZorWBExpressionType::Cos,     ZorWBExpressionType::Tan,        ZorWBExpressionType::Atan,
    ZorWBExpressionType::Atan2,   ZorWBExpressionType::Sinh,       ZorWBExpressionType::Cosh,
    ZorWBExpressionType::Tanh,    ZorWBExpressionType::Abs,        ZorWBExpressionType::Min,
    ZorWBExpressionType::Max,     ZorWBExpressionType::UnaryMinus, ZorWBExpressionType::Dim,
    ZorWBExpressionType::Sign,    ZorWBExpressionType::Mod,        ZorWBExpressionType::Floor,
    ZorWBExpressionType::Asin,    ZorWBExpressionType::Acos,       ZorWBExpressionType::Asinh,
};

// The value of e evaluated afresh (no cached value hides an error), or NaN
// when computing some node of it reports an error.
double Evaluate(ZorWBFactory& f, const ZorWBExpression* e) {
    if (!e || SomeNodeFails(f, e)) return NAN;
    const ZorWBValue& value = e->GetValue();
    double real = value.GetAsReal();
    bool failed = !value.IsExact(e->GetEnvironment());
    return failed || !std::isfinite(real) || std::fabs(real) > 1e12 ? NAN : real;
}

class System {
  public:
    System(ZorWBFactory& f, FuzzBytes& in) : _f(f), _in(in) {
        for (int i = 1 + in.Index(5); i > 0; --i) {
            _variables.push_back(f.CreateVariable());
            _point.push_back((in.Index(41) - 20) / 4.0);
            _nodes.push_back(_variables.back());
        }
        AssignPoint();
        for (int i = in.Index(6); i > 0; --i) {
            if (in.Chance(60))
                AddLinear();
            else
                AddGeneral();
        }
    }

    void AssignPoint() {
        for (std::size_t i = 0; i < _variables.size(); ++i)
            _variables[i]->SetExprValue(ZorWBValue(_point[i]));
    }

    // The largest magnitude of a value that the system computes at the
    // point: what rounding errors are relative to.
    double Scale() const { return _scale; }

    // The gradient at the point of each equality's root whose central
    // differences are all defined.
    std::vector<std::vector<double>> EqualityGradients() {
        std::vector<std::vector<double>> rows;
        const double h = 1e-3;
        for (ZorWBEquation* e = _f.GetFirstEquation(); e; e = e->GetNext()) {
            if (e->GetType() != ZorWBEqualZero) continue;
            std::vector<double> row;
            for (std::size_t j = 0; j < _variables.size(); ++j) {
                _variables[j]->SetExprValue(ZorWBValue(_point[j] + h));
                double above = Evaluate(_f, e->GetRoot());
                _variables[j]->SetExprValue(ZorWBValue(_point[j] - h));
                double below = Evaluate(_f, e->GetRoot());
                _variables[j]->SetExprValue(ZorWBValue(_point[j]));
                row.push_back((above - below) / (2 * h));
            }
            if (std::none_of(row.begin(), row.end(), [](double v) { return std::isnan(v); }))
                rows.push_back(row);
        }
        return rows;
    }

  private:
    ZorWBEquationType Relation() {
        static const ZorWBEquationType relations[] = {
            ZorWBEqualZero, ZorWBEqualZero,        ZorWBEqualZero,   ZorWBLessEqualZero,
            ZorWBLessZero,  ZorWBGreaterEqualZero, ZorWBGreaterZero, ZorWBNotEqualZero};
        return relations[_in.Index(8)];
    }

    // left (relation) its value at the point, with slack for inequalities.
    void AddEquation(ZorWBExpression* left) {
        double value = Evaluate(_f, left);
        if (std::isnan(value)) return;
        _scale = std::max(_scale, std::fabs(value));
        ZorWBEquationType type = Relation();
        double slack = 0.5 + _in.Index(4);
        if (type == ZorWBLessEqualZero || type == ZorWBLessZero) value += slack;
        if (type == ZorWBGreaterEqualZero || type == ZorWBGreaterZero) value -= slack;
        if (type == ZorWBNotEqualZero) value += slack;
        ZorWBExpression* right =
            value == std::round(value) && std::fabs(value) < 1e9
                ? static_cast<ZorWBExpression*>(_f.CreateIntegerConstant(static_cast<int>(value)))
                : _f.CreateRealConstant(value);
        _f.AddEquation(left, type, right);
    }

    ZorWBExpression* Variable() {
        return _variables[static_cast<std::size_t>(_in.Index(static_cast<int>(_variables.size())))];
    }

    // c1 x1 + ... + cn xn, variables possibly repeated.
    void AddLinear() {
        std::vector<ZorWBExpression*> terms;
        for (int k = 1 + _in.Index(4); k > 0; --k) {
            int c = _in.Index(9) - 4;
            ZorWBExpression* x = Variable();
            terms.push_back(c == 1 ? x : _f.CreateProduct(_f.CreateIntegerConstant(c), x));
        }
        AddEquation(terms.size() == 1 ? terms.front()
                                      : _f.CreateSum(static_cast<int>(terms.size()), terms.data()));
    }

    ZorWBExpression* Operand() {
        if (_in.Chance(20)) {
            switch (_in.Index(4)) {
                case 0:
                    return _f.CreateRealConstant((_in.Index(81) - 40) / 8.0);
                case 1:
                    return _f.GetPi();
                default:
                    return _f.CreateIntegerConstant(_in.Index(11) - 5);
            }
        }
        int n = static_cast<int>(_nodes.size());
        if (_in.Chance(30)) return _nodes[static_cast<std::size_t>(_in.Index(n))];
        return _nodes[static_cast<std::size_t>(n - 1 - _in.Index(std::min(n, 4)))];
    }

    // Whether a function is taken at a jump or at the edge of its domain,
    // where an operand that rewriting moves by a rounding error (or turns
    // from 0 to -0) changes the value by the jump or leaves the domain:
    // floor at an integer, sign at 0, mod at a multiple of the divisor,
    // atan2 on its cut (y = 0, x < 0), a negative base (its powers and roots
    // exist at integral exponents and odd degrees only), roots and
    // logarithms at 0, asin and acos at -1 and 1.
    bool AtJump(ZorWBExpressionType type, const std::vector<ZorWBExpression*>& operands) {
        auto near = [](double v, double to) { return std::fabs(v - to) <= 1e-9; };
        double a = Evaluate(_f, operands[0]);
        double b = operands.size() > 1 ? Evaluate(_f, operands[1]) : 0.0;
        switch (type) {
            case ZorWBExpressionType::Floor:
                return near(a, std::round(a));
            case ZorWBExpressionType::Sign:
                return near(b, 0.0);
            case ZorWBExpressionType::Mod:
                return b == 0.0 || near(a / b, std::round(a / b));
            case ZorWBExpressionType::Atan2:
                return near(a, 0.0) && b <= 0.0;
            case ZorWBExpressionType::Power:
            case ZorWBExpressionType::Root:
                return a < 0.0 || near(a, 0.0);
            case ZorWBExpressionType::Sqrt:
            case ZorWBExpressionType::Log:
            case ZorWBExpressionType::Ln:
                return near(a, 0.0);
            case ZorWBExpressionType::Asin:
            case ZorWBExpressionType::Acos:
                return near(std::fabs(a), 1.0);
            default:
                return false;
        }
    }

    // An expression of a few operators over the variables and earlier nodes.
    // Only nodes that evaluate without error, within 1e6, not within 1e-9 of
    // 0 without being 0 and not at a jump are kept (and so reused by later
    // expressions): a tiny value may stand for a singularity that rounding
    // hid (1 / sin(Pi), atan2(sin(Pi), sin(Pi))), which the transformation
    // rightly brings out. The last node kept becomes an equation.
    void AddGeneral() {
        ZorWBExpression* last = nullptr;
        for (int i = 1 + _in.Index(6); i > 0; --i) {
            ZorWBExpressionType type = RealTypes[_in.Index(sizeof RealTypes / sizeof RealTypes[0])];
            const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
            int arity = info->children >= 0 ? info->children : 2 + _in.Index(2);
            std::vector<ZorWBExpression*> operands;
            for (int k = 0; k < arity; ++k)
                operands.push_back(Operand());
            ZorWBExpression* node =
                _f.CreateOperator(type, static_cast<int>(operands.size()), operands.data());
            if (!node) continue;
            double value = Evaluate(_f, node);
            bool wellConditioned = std::fabs(value) <= 1e6 &&
                                   (value == 0.0 || std::fabs(value) >= 1e-9) &&
                                   !AtJump(type, operands);
            if (!wellConditioned) continue;
            _nodes.push_back(node);
            last = node;
        }
        if (last) AddEquation(last);
    }

    ZorWBFactory& _f;
    FuzzBytes& _in;
    std::vector<ZorWBVariable*> _variables;
    std::vector<double> _point;
    std::vector<ZorWBExpression*> _nodes;
    double _scale = 1.0;
};

bool BeyondRealLimit(const ZorWBExpression* e) {
    return !(std::fabs(e->GetValue().GetAsReal()) <= ZorWBRealLimit);
}

// Whether a product or a power in e overflows although its operands do not.
// Merging powers and numeric factors reorders a product (x * y^2)^57 into
// x^57 * y^114, whose factors may pass the real limit where every partial
// result of the original stayed within 1e6; that is rounding, not algebra.
bool OverflowsInside(ZorWBFactory& f, const ZorWBExpression* e) {
    f.ResetBuffer(nullptr);
    std::vector<const ZorWBExpression*> stack{e};
    std::unordered_set<const ZorWBExpression*> seen{e};
    while (!stack.empty()) {
        const ZorWBExpression* node = stack.back();
        stack.pop_back();
        bool reorderable = node->GetType() == ZorWBExpressionType::Product ||
                           node->GetType() == ZorWBExpressionType::Power;
        bool operandsInRange = true;
        for (int i = 0; i < node->GetNbOfChildren(); ++i) {
            const ZorWBExpression* child = node->GetChild(i);
            if (!child) continue;
            operandsInRange = operandsInRange && !BeyondRealLimit(child);
            if (seen.insert(child).second) stack.push_back(child);
        }
        if (reorderable && operandsInRange && BeyondRealLimit(node)) return true;
    }
    return false;
}

bool Satisfied(ZorWBEquationType type, double root, double tolerance) {
    switch (type) {
        case ZorWBEqualZero:
            return std::fabs(root) <= tolerance;
        case ZorWBLessEqualZero:
        case ZorWBLessZero:
            return root <= tolerance;
        case ZorWBGreaterEqualZero:
        case ZorWBGreaterZero:
            return root >= -tolerance;
        default:  // no tolerance tells a root near 0 from 0
            return true;
    }
}

// Whether the equation holds at the point, or fails only through an overflow
// of a reordered product (which may also reach the root through a function
// that saturates, such as atan2(Pi, x) at an infinite x).
bool Holds(ZorWBFactory& f, const ZorWBEquation* equation, double tolerance) {
    double root = Evaluate(f, equation->GetRoot());
    return (!std::isnan(root) && Satisfied(equation->GetType(), root, tolerance)) ||
           OverflowsInside(f, equation->GetRoot());
}

// Whether rows (gradients) that are not zero are nearly dependent. The
// elimination then works in doubles on a redundant equality: its last
// coefficient is a rounding error, which the absolute threshold for pivots
// (1e-14) takes for a coefficient, and a variable gets defined from nothing.
// Only crashes and reports are checked on such systems.
bool NearlyDependent(std::vector<std::vector<double>> rows) {
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [](const std::vector<double>& row) {
                                  return std::all_of(row.begin(), row.end(),
                                                     [](double v) { return std::fabs(v) < 1e-9; });
                              }),
               rows.end());
    for (std::vector<double>& row : rows) {
        double largest = 0.0;
        for (double v : row)
            largest = std::max(largest, std::fabs(v));
        for (double& v : row)
            v /= largest;
    }
    std::size_t rank = 0;
    std::size_t columns = rows.empty() ? 0 : rows.front().size();
    for (std::size_t column = 0; column < columns && rank < rows.size(); ++column) {
        std::size_t best = rank;
        for (std::size_t r = rank; r < rows.size(); ++r)
            if (std::fabs(rows[r][column]) > std::fabs(rows[best][column])) best = r;
        if (std::fabs(rows[best][column]) < 1e-6) continue;
        std::swap(rows[rank], rows[best]);
        for (std::size_t r = rank + 1; r < rows.size(); ++r) {
            double factor = rows[r][column] / rows[rank][column];
            for (std::size_t k = column; k < columns; ++k)
                rows[r][k] -= factor * rows[rank][k];
        }
        ++rank;
    }
    return rank < rows.size();
}

}  // namespace

// The system the bytes describe, in a factory, and what follows it in the
// bytes: the engine and the mode.
struct Case {
    ZorWBFactory factory;
    FuzzBytes in;
    System system;
    Case(const std::uint8_t* data, std::size_t size)
        : in(data, size), system(UseEngine(factory, in), in) {}

    static ZorWBFactory& UseEngine(ZorWBFactory& factory, FuzzBytes& in) {
        factory.GetEnvironment().SetUseOldSymbolicTransformations(in.Chance(25));
        return factory;
    }
};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Case c(data, size);
    ZorWBFactory& f = c.factory;
    unsigned mode = static_cast<unsigned>(c.in.Index(32));
    bool checked = !NearlyDependent(c.system.EqualityGradients());
    ZorWBSymbolicTransformations* st = ZorCreateWBSymbolicTransformations(0, f);
    if (!st) return 0;
    st->SetMode(mode);
    st->Run();
    ZorRemove(st);
    if (!checked) return 0;
    c.system.AssignPoint();
    double tolerance = 1e-7 * c.system.Scale();
    for (ZorWBEquation* e = f.GetFirstEquation(); e; e = e->GetNext()) {
        if (Holds(f, e, tolerance)) continue;
        // The system before the transformation, made again from the bytes.
        Case before(data, size);
        FuzzFail("mode " + std::to_string(mode) + ": " +
                 ZorWBEquationPrinter::Print(e).GetStdString() +
                 " does not hold: " + e->GetRoot()->GetValue().Str().GetStdString() +
                 "; before:\n" + ZorWBEquationPrinter::Print(before.factory).GetStdString() +
                 "after:\n" + ZorWBEquationPrinter::Print(f).GetStdString());
    }
    return 0;
}
