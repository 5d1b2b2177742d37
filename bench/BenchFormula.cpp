#include "BenchFormula.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace bench {

namespace {

constexpr double Pi = 3.14159265358979323846;

class Builder {
  public:
    explicit Builder(Formula& formula) : _formula(formula) {}

    int Variable(const std::string& name, double value, double shift) {
        _formula.names.push_back(name);
        _formula.base.push_back(value);
        _formula.shifted.push_back(value + shift);
        return static_cast<int>(_formula.names.size()) - 1;
    }
    int Leaf(int variable) {
        Node node;
        node.op = Op::Variable;
        node.variable = variable;
        return Add(std::move(node));
    }
    int Apply(Op op, std::vector<int> operands) {
        Node node;
        node.op = op;
        node.operands = std::move(operands);
        return Add(std::move(node));
    }

  private:
    int Add(Node node) {
        _formula.nodes.push_back(std::move(node));
        return static_cast<int>(_formula.nodes.size()) - 1;
    }
    Formula& _formula;
};

void MakeChain(Formula& formula, std::mt19937& random) {
    const int n = formula.n;
    Builder builder(formula);
    std::uniform_real_distribution<double> coordinate(-10.0, 10.0), distance(1.0, 5.0);
    for (const char* prefix : {"x", "y"})
        for (int i = 0; i <= n; ++i)
            builder.Variable(prefix + std::to_string(i), coordinate(random), 0.125);
    for (int i = 0; i < n; ++i)
        builder.Variable("d" + std::to_string(i), distance(random), 0.0625);
    auto x = [&](int i) { return builder.Leaf(i); };
    auto y = [&](int i) { return builder.Leaf(n + 1 + i); };
    auto d = [&](int i) { return builder.Leaf(2 * (n + 1) + i); };
    for (int i = 0; i < n; ++i) {
        int dx = builder.Apply(Op::Square, {builder.Apply(Op::Difference, {x(i), x(i + 1)})});
        int dy = builder.Apply(Op::Square, {builder.Apply(Op::Difference, {y(i), y(i + 1)})});
        int dd = builder.Apply(Op::Square, {d(i)});
        formula.terms.push_back(
            builder.Apply(Op::Difference, {builder.Apply(Op::Sum, {dx, dy}), dd}));
    }
}

void MakeTrig(Formula& formula, std::mt19937& random) {
    const int n = formula.n;
    Builder builder(formula);
    std::uniform_real_distribution<double> angle(-3.0, 3.0), coordinate(-10.0, 10.0);
    for (int i = 0; i < n; ++i)
        builder.Variable("a" + std::to_string(i), angle(random), 0.0625);
    for (const char* prefix : {"x", "y"})
        for (int i = 0; i < n; ++i)
            builder.Variable(prefix + std::to_string(i), coordinate(random), 0.125);
    for (int i = 0; i < n; ++i) {
        int cosine = builder.Apply(Op::Cos, {builder.Leaf(i)});
        int sine = builder.Apply(Op::Sin, {builder.Leaf(i)});
        int left = builder.Apply(Op::Product, {cosine, builder.Leaf(n + i)});
        int right = builder.Apply(Op::Product, {sine, builder.Leaf(2 * n + i)});
        formula.terms.push_back(builder.Apply(Op::Difference, {left, right}));
    }
}

// Binding strength of a node's text: the operand of an operator binding
// more strongly is bracketed when it binds less.
int Strength(Op op) {
    switch (op) {
        case Op::Sum:
        case Op::Difference:
            return 1;
        case Op::Product:
            return 2;
        case Op::Square:
            return 3;
        default:
            return 4;
    }
}

void AppendText(const Formula& formula, int index, int minimum, std::string& out) {
    const Node& node = formula.nodes[static_cast<std::size_t>(index)];
    bool bracket = Strength(node.op) < minimum;
    if (bracket) out += '(';
    auto operand = [&](std::size_t i, int strength) {
        AppendText(formula, node.operands[i], strength, out);
    };
    switch (node.op) {
        case Op::Variable:
            out += formula.names[static_cast<std::size_t>(node.variable)];
            break;
        case Op::Constant: {
            char text[32];
            std::snprintf(text, sizeof text, "%.17g", node.value);
            out += text;
            break;
        }
        case Op::Sum:
            for (std::size_t i = 0; i < node.operands.size(); ++i) {
                if (i > 0) out += '+';
                operand(i, 1);
            }
            break;
        case Op::Difference:
            operand(0, 1);
            out += '-';
            operand(1, 2);
            break;
        case Op::Product:
            operand(0, 2);
            out += '*';
            operand(1, 2);
            break;
        case Op::Square:
            operand(0, 4);
            out += "^2";
            break;
        case Op::Sin:
        case Op::Cos:
            out += node.op == Op::Sin ? "sin(" : "cos(";
            operand(0, 0);
            out += ')';
            break;
    }
    if (bracket) out += ')';
}

void CollectVariables(const Formula& formula, int index, std::vector<bool>& seen,
                      std::vector<int>& out) {
    const Node& node = formula.nodes[static_cast<std::size_t>(index)];
    if (node.op == Op::Variable && !seen[static_cast<std::size_t>(node.variable)]) {
        seen[static_cast<std::size_t>(node.variable)] = true;
        out.push_back(node.variable);
    }
    for (int operand : node.operands)
        CollectVariables(formula, operand, seen, out);
}

// Whether [low, high] holds a point start + 2k Pi.
bool HoldsPeriodicPoint(double low, double high, double start) {
    double k = std::ceil((low - start) / (2.0 * Pi));
    return start + 2.0 * Pi * k <= high;
}

}  // namespace

const char* WorkloadName(Workload workload) {
    return workload == Workload::Chain ? "chain" : "trig";
}

Formula MakeFormula(Workload workload, int n) {
    Formula formula;
    formula.workload = workload;
    formula.n = n;
    std::mt19937 random(workload == Workload::Chain ? 17u : 29u);
    if (workload == Workload::Chain)
        MakeChain(formula, random);
    else
        MakeTrig(formula, random);
    Node sum;
    sum.op = Op::Sum;
    sum.operands = formula.terms;
    formula.nodes.push_back(std::move(sum));
    formula.root = static_cast<int>(formula.nodes.size()) - 1;
    return formula;
}

std::vector<int> Formula::DerivativeVariables() const {
    std::vector<int> picks;
    for (int j = 0; j < 10; ++j)
        picks.push_back(j * (NbOfVariables() - 1) / 9);
    return picks;
}

std::string Text(const Formula& formula, int node) {
    std::string text;
    AppendText(formula, node, 0, text);
    return text;
}

std::vector<int> VariablesOf(const Formula& formula, int node) {
    std::vector<bool> seen(formula.names.size(), false);
    std::vector<int> variables;
    CollectVariables(formula, node, seen, variables);
    return variables;
}

Range Plus(Range a, Range b) {
    return {a.low + b.low, a.high + b.high};
}
Range Minus(Range a, Range b) {
    return {a.low - b.high, a.high - b.low};
}
Range Times(Range a, Range b) {
    double p[4] = {a.low * b.low, a.low * b.high, a.high * b.low, a.high * b.high};
    return {*std::min_element(p, p + 4), *std::max_element(p, p + 4)};
}
Range Sq(Range a) {
    if (a.low >= 0.0) return {a.low * a.low, a.high * a.high};
    if (a.high <= 0.0) return {a.high * a.high, a.low * a.low};
    double m = std::max(-a.low, a.high);
    return {0.0, m * m};
}
Range Sine(Range a) {
    double s = std::sin(a.low), t = std::sin(a.high);
    Range r{std::min(s, t), std::max(s, t)};
    if (HoldsPeriodicPoint(a.low, a.high, Pi / 2.0)) r.high = 1.0;
    if (HoldsPeriodicPoint(a.low, a.high, -Pi / 2.0)) r.low = -1.0;
    return r;
}
Range Cosine(Range a) {
    double s = std::cos(a.low), t = std::cos(a.high);
    Range r{std::min(s, t), std::max(s, t)};
    if (HoldsPeriodicPoint(a.low, a.high, 0.0)) r.high = 1.0;
    if (HoldsPeriodicPoint(a.low, a.high, Pi)) r.low = -1.0;
    return r;
}

double ReferenceDerivative(const Formula& formula, int node, int variable) {
    std::vector<Dual> inputs;
    for (std::size_t i = 0; i < formula.base.size(); ++i)
        inputs.push_back({formula.base[i], static_cast<int>(i) == variable ? 1.0 : 0.0});
    return Evaluate(formula, node, inputs).slope;
}

std::vector<Range> IntervalInputs(const std::vector<double>& values, double width) {
    std::vector<Range> ranges;
    for (double v : values)
        ranges.push_back({v, v + width});
    return ranges;
}

double Magnitude(const Formula& formula) {
    double sum = 0.0;
    for (int term : formula.terms)
        sum += std::fabs(Evaluate(formula, term, formula.base));
    return sum;
}

// ------------------------------------------------------------ parsing workload
std::vector<Statement> MakeStatements(int count) {
    std::mt19937 random(41u);
    auto pick = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
    std::vector<Statement> statements;
    for (int i = 0; i < count; ++i)
        statements.push_back(
            {pick(2000), pick(2000), pick(2000), pick(2000), 2 + pick(8), pick(2) == 1, pick(100)});
    return statements;
}

std::string LeftSide(const Statement& s) {
    return "x" + std::to_string(s.x) + " + " + std::to_string(s.coefficient) + "*y" +
           std::to_string(s.y) + " - " + (s.cosine ? "cos(a" : "sin(a") + std::to_string(s.a) +
           ")*z" + std::to_string(s.z);
}

std::string EquationText(const std::vector<Statement>& statements) {
    std::string text;
    for (const Statement& s : statements)
        text += LeftSide(s) + " = " + std::to_string(s.rightSide) + ";\n";
    return text;
}

std::vector<std::string> RootTexts(const std::vector<Statement>& statements) {
    std::vector<std::string> texts;
    for (const Statement& s : statements)
        texts.push_back(LeftSide(s) + " - (" + std::to_string(s.rightSide) + ")");
    return texts;
}

double StatementInput(const std::string& name) {
    if (name.size() < 2) return 0.0;
    return (name[0] - 'a') * 0.125 + std::atoi(name.c_str() + 1) % 97 * 0.01;
}

double ReferenceRoot(const Statement& s) {
    auto input = [](char letter, int index) {
        return StatementInput(letter + std::to_string(index));
    };
    double angle = input('a', s.a);
    return input('x', s.x) + s.coefficient * input('y', s.y) -
           (s.cosine ? std::cos(angle) : std::sin(angle)) * input('z', s.z) - s.rightSide;
}

// ------------------------------------------------------------ elimination workload
LinearSystem MakeLinearSystem(int n) {
    std::mt19937 random(53u);
    auto pick = [&](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); };
    LinearSystem system;
    system.n = n;
    for (int i = 0; i < n; ++i) {
        LinearSystem::Equation equation{};
        equation.terms[0] = {i, 10};
        equation.terms[1] = {i + 1, 1 + pick(4)};
        equation.terms[2] = {i + 2 + pick(5), 1 + pick(4)};
        equation.rightSide = pick(100);
        system.equations.push_back(equation);
    }
    return system;
}

std::vector<double> LinearSystem::Solve(const double parameters[10]) const {
    std::vector<double> values(static_cast<std::size_t>(NbOfVariables()), 0.0);
    for (int j = 0; j < 10; ++j)
        values[static_cast<std::size_t>(n + j)] = parameters[j];
    for (int i = n - 1; i >= 0; --i) {
        const Equation& e = equations[static_cast<std::size_t>(i)];
        double rest = e.rightSide;
        for (int t = 1; t < 3; ++t)
            rest -= e.terms[t].coefficient * values[static_cast<std::size_t>(e.terms[t].variable)];
        values[static_cast<std::size_t>(i)] = rest / e.terms[0].coefficient;
    }
    return values;
}

const double* SystemParameters() {
    static const double parameters[10] = {1.5, -2.0, 0.25, 3.0, -1.25, 2.5, -0.5, 4.0, 1.0, -3.5};
    return parameters;
}

}  // namespace bench
