#include "expressions/ZorWBCompiledJacobian.h"

#include <algorithm>

#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBSlopes.h"
#include "values/ZorWBIntervalRules.h"

ZorWBCompiledJacobian::ZorWBCompiledJacobian(const ZorWBRealProgram& program, int nbOfRoots) {
    using Op = ZorWBRealProgram::Op;
    const std::size_t registers = std::max(program._registers.size(), program._values.size());
    const int inputs = program._nbOfInputs;
    // The Slope instructions, and which registers lead to an input.
    std::vector<int> slopes;
    std::vector<char> leads(registers, 0);
    std::fill(leads.begin(), leads.begin() + inputs, 1);
    for (std::size_t i = 0; i < program._code.size(); ++i) {
        const ZorWBRealProgram::Instruction& in = program._code[i];
        if (in.op != Op::Slope) continue;
        slopes.push_back(static_cast<int>(i));
        for (int k = 0; k < in.b; ++k) {
            if (leads[static_cast<std::size_t>(
                    program._arguments[static_cast<std::size_t>(in.a + k)])])
                leads[static_cast<std::size_t>(in.dst)] = 1;
        }
    }
    // The Slope instructions of each register (a node emitted twice has two).
    std::vector<int> byRegisterStarts(registers + 1, 0);
    for (int index : slopes)
        ++byRegisterStarts[static_cast<std::size_t>(
                               program._code[static_cast<std::size_t>(index)].dst) +
                           1];
    for (std::size_t r = 0; r < registers; ++r)
        byRegisterStarts[r + 1] += byRegisterStarts[r];
    std::vector<int> byRegister(slopes.size());
    std::vector<int> filled(byRegisterStarts.begin(), byRegisterStarts.end() - 1);
    for (int index : slopes) {
        std::size_t r =
            static_cast<std::size_t>(program._code[static_cast<std::size_t>(index)].dst);
        byRegister[static_cast<std::size_t>(filled[r]++)] = index;
    }

    // Each root's cone, depth first from its register.
    std::vector<int> seen(registers, -1);
    std::vector<int> stack;
    std::vector<int> coneSlopes;
    _edgeStarts.push_back(0);
    _rowStarts.push_back(0);
    for (int root = 0; root < nbOfRoots; ++root) {
        coneSlopes.clear();
        int start = program._results[static_cast<std::size_t>(root)];
        if (leads[static_cast<std::size_t>(start)]) {
            stack.push_back(start);
            seen[static_cast<std::size_t>(start)] = root;
        }
        const std::size_t rowStart = _columns.size();
        while (!stack.empty()) {
            int reg = stack.back();
            stack.pop_back();
            if (reg < inputs) _columns.push_back(reg);
            std::size_t r = static_cast<std::size_t>(reg);
            for (int s = byRegisterStarts[r]; s < byRegisterStarts[r + 1]; ++s) {
                int index = byRegister[static_cast<std::size_t>(s)];
                coneSlopes.push_back(index);
                const ZorWBRealProgram::Instruction& in =
                    program._code[static_cast<std::size_t>(index)];
                for (int k = 0; k < in.b; ++k) {
                    int child = program._arguments[static_cast<std::size_t>(in.a + k)];
                    std::size_t c = static_cast<std::size_t>(child);
                    if (!leads[c] || seen[c] == root) continue;
                    seen[c] = root;
                    stack.push_back(child);
                }
            }
        }
        std::sort(_columns.begin() + static_cast<std::ptrdiff_t>(rowStart), _columns.end());
        // Reverse order of computation: a node passes its adjoint on once
        // every node above it has passed theirs to it.
        std::sort(coneSlopes.begin(), coneSlopes.end(), std::greater<int>());
        for (int index : coneSlopes) {
            const ZorWBRealProgram::Instruction& in =
                program._code[static_cast<std::size_t>(index)];
            for (int k = 0; k < in.b; ++k) {
                int argument = in.a + k;
                int child = program._arguments[static_cast<std::size_t>(argument)];
                if (leads[static_cast<std::size_t>(child)])
                    _edges.push_back({in.dst, child, argument});
            }
        }
        _edgeStarts.push_back(static_cast<int>(_edges.size()));
        _rowStarts.push_back(static_cast<int>(_columns.size()));
    }
    if (program._values.empty()) {
        _adjoints.assign(registers, 0.0);
    } else {
        _intervalAdjoints.assign(registers, ZorWBRealInterval{});
    }
    _reached.assign(registers, 0u);
}

template <class Number, class Product, class Sum>
void ZorWBCompiledJacobian::SweepWith(const ZorWBRealProgram& program,
                                      std::vector<Number>& adjoints, const Number* slopes,
                                      Number zero, Number one, Product&& product, Sum&& sum,
                                      Number* jacobian) {
    Number* adjoint = adjoints.data();
    unsigned int* reached = _reached.data();
    const std::size_t nbOfRoots = _rowStarts.size() - 1;
    for (std::size_t root = 0; root < nbOfRoots; ++root) {
        if (++_sweep == 0) {
            std::fill(_reached.begin(), _reached.end(), 0u);
            _sweep = 1;
        }
        const unsigned int sweep = _sweep;
        const int top = program._results[root];
        adjoint[top] = one;
        reached[top] = sweep;
        for (int i = _edgeStarts[root]; i < _edgeStarts[root + 1]; ++i) {
            const Edge& edge = _edges[static_cast<std::size_t>(i)];
            const Number& slope = slopes[edge.slope];
            if (reached[edge.node] != sweep || ZorWBIsNoSlope(slope)) continue;
            Number term = product(adjoint[edge.node], slope);
            if (reached[edge.child] == sweep) {
                adjoint[edge.child] = sum(adjoint[edge.child], term);
            } else {
                adjoint[edge.child] = term;
                reached[edge.child] = sweep;
            }
        }
        for (int i = _rowStarts[root]; i < _rowStarts[root + 1]; ++i) {
            int column = _columns[static_cast<std::size_t>(i)];
            jacobian[i] = reached[column] == sweep ? adjoint[column] : zero;
        }
    }
}

void ZorWBCompiledJacobian::Sweep(const ZorWBRealProgram& program, double* jacobian) {
    SweepWith(
        program, _adjoints, program._slopes.data(), 0.0, 1.0,
        [](double adjoint, double slope) { return adjoint * slope; },
        [](double a, double b) { return a + b; }, jacobian);
}

void ZorWBCompiledJacobian::Sweep(const ZorWBRealProgram& program, const ZorWBEnvironment& scratch,
                                  ZorWBRealInterval* jacobian) {
    // Each operation from a clear error word (an empty operand sets one).
    auto product = [&scratch](const ZorWBRealInterval& adjoint, const ZorWBRealInterval& slope) {
        scratch.ClearError();
        return ZorWBIntervalRules::ProductOf(scratch, adjoint, slope);
    };
    auto sum = [&scratch](const ZorWBRealInterval& a, const ZorWBRealInterval& b) {
        scratch.ClearError();
        return ZorWBIntervalRules::SumOf(scratch, a, b);
    };
    SweepWith(program, _intervalAdjoints, program._intervalSlopes.data(),
              ZorWBRealInterval{0.0, 0.0}, ZorWBRealInterval{1.0, 1.0}, product, sum, jacobian);
}
