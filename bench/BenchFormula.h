#ifndef ZORWB_BENCH_FORMULA_H
#define ZORWB_BENCH_FORMULA_H

// The workloads as data. Each formula is generated once, as a small tree
// over named variables with two sets of input values, and every contestant
// receives that same formula: as text for the parsers, through its own API
// for the others. A plain interpreter of the tree gives the reference values
// (reals, derivatives by forward differentiation, and intervals) against
// which every contestant is checked before it is timed.

#include <cmath>
#include <string>
#include <vector>

namespace bench {

enum class Op { Variable, Constant, Sum, Difference, Product, Square, Sin, Cos };

struct Node {
    Op op = Op::Constant;
    int variable = -1;          // Variable: index into Formula::names
    double value = 0.0;         // Constant
    std::vector<int> operands;  // indices into Formula::nodes
};

enum class Workload {
    Chain,  // sum of (x_i - x_{i+1})^2 + (y_i - y_{i+1})^2 - d_i^2
    Trig,   // sum of cos(a_i) x_i - sin(a_i) y_i
};

const char* WorkloadName(Workload workload);

struct Formula {
    Workload workload = Workload::Chain;
    int n = 0;  // number of terms
    std::vector<std::string> names;
    // Two input sets: the timing loops alternate them, so that every input
    // changes at every iteration. The checks use base.
    std::vector<double> base;
    std::vector<double> shifted;
    std::vector<Node> nodes;
    std::vector<int> terms;  // the root node of each term
    int root = -1;           // the sum of all terms

    // The variable layout, which the compiled loops read directly:
    //   chain: x_0..x_n, then y_0..y_n, then d_0..d_{n-1}
    //   trig:  a_0..a_{n-1}, then x_0..x_{n-1}, then y_0..y_{n-1}
    int NbOfVariables() const { return static_cast<int>(names.size()); }
    // The ten variables the derivatives are taken by, spread evenly over
    // the whole variable list.
    std::vector<int> DerivativeVariables() const;
};

Formula MakeFormula(Workload workload, int n);

// Infix text that ZorWBx, muparser and GiNaC all read the same way.
std::string Text(const Formula& formula, int node);
// The variables below node, each once, in first-seen order.
std::vector<int> VariablesOf(const Formula& formula, int node);

// ------------------------------------------------------------ reference values
struct Dual {
    double value;
    double slope;
};
// A closed interval computed with round-to-nearest bounds (good to a few
// ulps, which the checks allow for).
struct Range {
    double low;
    double high;
};

inline double Plus(double a, double b) {
    return a + b;
}
inline double Minus(double a, double b) {
    return a - b;
}
inline double Times(double a, double b) {
    return a * b;
}
inline double Sq(double a) {
    return a * a;
}
inline double Sine(double a) {
    return std::sin(a);
}
inline double Cosine(double a) {
    return std::cos(a);
}

inline Dual Plus(Dual a, Dual b) {
    return {a.value + b.value, a.slope + b.slope};
}
inline Dual Minus(Dual a, Dual b) {
    return {a.value - b.value, a.slope - b.slope};
}
inline Dual Times(Dual a, Dual b) {
    return {a.value * b.value, a.slope * b.value + a.value * b.slope};
}
inline Dual Sq(Dual a) {
    return Times(a, a);
}
inline Dual Sine(Dual a) {
    return {std::sin(a.value), std::cos(a.value) * a.slope};
}
inline Dual Cosine(Dual a) {
    return {std::cos(a.value), -std::sin(a.value) * a.slope};
}

Range Plus(Range a, Range b);
Range Minus(Range a, Range b);
Range Times(Range a, Range b);
Range Sq(Range a);
Range Sine(Range a);
Range Cosine(Range a);

template <class T>
T Lift(double value);
template <>
inline double Lift<double>(double value) {
    return value;
}
template <>
inline Dual Lift<Dual>(double value) {
    return {value, 0.0};
}
template <>
inline Range Lift<Range>(double value) {
    return {value, value};
}

template <class T>
T Evaluate(const Formula& formula, int index, const std::vector<T>& inputs) {
    const Node& node = formula.nodes[static_cast<std::size_t>(index)];
    auto operand = [&](std::size_t i) { return Evaluate(formula, node.operands[i], inputs); };
    switch (node.op) {
        case Op::Variable:
            return inputs[static_cast<std::size_t>(node.variable)];
        case Op::Constant:
            return Lift<T>(node.value);
        case Op::Sum: {
            T sum = operand(0);
            for (std::size_t i = 1; i < node.operands.size(); ++i)
                sum = Plus(sum, operand(i));
            return sum;
        }
        case Op::Difference:
            return Minus(operand(0), operand(1));
        case Op::Product:
            return Times(operand(0), operand(1));
        case Op::Square:
            return Sq(operand(0));
        case Op::Sin:
            return Sine(operand(0));
        case Op::Cos:
            return Cosine(operand(0));
    }
    return Lift<T>(0.0);
}

// The derivative of node by variable at the base inputs.
double ReferenceDerivative(const Formula& formula, int node, int variable);
// The inputs as intervals [v, v + width].
std::vector<Range> IntervalInputs(const std::vector<double>& values, double width);
// The sum of the magnitudes of the terms at the base inputs: the scale that
// the tolerance of a check on the whole formula is relative to.
double Magnitude(const Formula& formula);

// ------------------------------------------------------------ parsing workload
// One statement "x12 + 2*y7 - sin(a3)*z1 = 4;" as data.
struct Statement {
    int x, y, a, z;
    int coefficient;
    bool cosine;
    int rightSide;
};
std::vector<Statement> MakeStatements(int count);
// "x12 + 2*y7 - sin(a3)*z1": the left side.
std::string LeftSide(const Statement& statement);
// The whole text in the equation language, one statement per line.
std::string EquationText(const std::vector<Statement>& statements);
// Each statement as an expression equal to zero, "lhs - (rhs)", for the
// parsers that read expressions only.
std::vector<std::string> RootTexts(const std::vector<Statement>& statements);
// The value the checks give to a variable of the statements, by its name
// ("x12"), and the value of a statement's root (left side minus right side)
// at those values.
double StatementInput(const std::string& name);
double ReferenceRoot(const Statement& statement);

// ------------------------------------------------------------ elimination workload
// n linear equalities over n + 10 variables v_0.., equation i holding v_i
// (coefficient 10), v_{i+1} and one of v_{i+2}..v_{i+6} (coefficients 1 to
// 4): strictly diagonally dominant, so the solution for v_0..v_{n-1} in
// terms of the last ten variables is well conditioned at any size.
struct LinearSystem {
    int n = 0;
    struct Term {
        int variable;
        int coefficient;
    };
    struct Equation {
        Term terms[3];
        int rightSide;
    };
    std::vector<Equation> equations;
    int NbOfVariables() const { return n + 10; }
    // The solution (all n + 10 values) when the last ten variables take the
    // given values: back substitution from the last equation.
    std::vector<double> Solve(const double parameters[10]) const;
};
LinearSystem MakeLinearSystem(int n);
// The values given to the ten free variables by the checks.
const double* SystemParameters();

}  // namespace bench

#endif
