#include "expressions/ZorWBCompiledJacobian.h"

#include <algorithm>

#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBSlopes.h"
#include "values/ZorWBIntervalRules.h"

ZorWBCompiledJacobian::ZorWBCompiledJacobian(const ZorWBRealProgram& program, int nbOfRoots) {
    using Kind = ZorWBRealProgram::SlopeKind;
    const bool reals = program._values.empty();
    const std::size_t registers =
        reals ? static_cast<std::size_t>(program._slotBase) : program._values.size();
    const int inputs = program._nbOfInputs;
    const std::vector<ZorWBRealProgram::SlopeRecord>& records = program._slopeRecords;
    auto argument = [&program](int index) {
        return program._arguments[static_cast<std::size_t>(index)];
    };
    // Where the slope of record's child k is read: with reals, the index of
    // a register; with values, of a slot.
    const int one = static_cast<int>(program._registers.size()) - 2;
    auto source = [&](const ZorWBRealProgram::SlopeRecord& record, int k) {
        switch (record.kind) {
            case Kind::One:
                return one;
            case Kind::MinusOne:
                return one + 1;
            case Kind::OtherOperand:
                return argument(record.first + 1 - k);
            default:
                return (reals ? program._slotBase : 0) + record.first + k;
        }
    };
    // Which registers lead to an input; the records of each register (a
    // node emitted twice has two).
    std::vector<char> leads(registers, 0);
    std::fill(leads.begin(), leads.begin() + inputs, 1);
    std::vector<int> byRegisterStarts(registers + 1, 0);
    for (const ZorWBRealProgram::SlopeRecord& record : records) {
        ++byRegisterStarts[static_cast<std::size_t>(record.dst) + 1];
        for (int k = 0; k < record.count; ++k) {
            if (leads[static_cast<std::size_t>(argument(record.first + k))])
                leads[static_cast<std::size_t>(record.dst)] = 1;
        }
    }
    for (std::size_t r = 0; r < registers; ++r)
        byRegisterStarts[r + 1] += byRegisterStarts[r];
    std::vector<int> byRegister(records.size());
    std::vector<int> filled(byRegisterStarts.begin(), byRegisterStarts.end() - 1);
    for (std::size_t i = 0; i < records.size(); ++i)
        byRegister[static_cast<std::size_t>(filled[static_cast<std::size_t>(records[i].dst)]++)] =
            static_cast<int>(i);

    // Each root's cone, depth first from its register.
    std::vector<int> seen(registers, -1);
    std::vector<int> stack;
    std::vector<int> cone;
    _edgeStarts.push_back(0);
    _rowStarts.push_back(0);
    for (int root = 0; root < nbOfRoots; ++root) {
        cone.clear();
        int start = program._results[static_cast<std::size_t>(root)];
        if (leads[static_cast<std::size_t>(start)]) {
            stack.push_back(start);
            seen[static_cast<std::size_t>(start)] = root;
        }
        const std::size_t rowStart = _columns.size();
        while (!stack.empty()) {
            std::size_t r = static_cast<std::size_t>(stack.back());
            stack.pop_back();
            if (r < static_cast<std::size_t>(inputs)) _columns.push_back(static_cast<int>(r));
            for (int s = byRegisterStarts[r]; s < byRegisterStarts[r + 1]; ++s) {
                int index = byRegister[static_cast<std::size_t>(s)];
                cone.push_back(index);
                const ZorWBRealProgram::SlopeRecord& record =
                    records[static_cast<std::size_t>(index)];
                for (int k = 0; k < record.count; ++k) {
                    std::size_t child = static_cast<std::size_t>(argument(record.first + k));
                    if (!leads[child] || seen[child] == root) continue;
                    seen[child] = root;
                    stack.push_back(static_cast<int>(child));
                }
            }
        }
        std::sort(_columns.begin() + static_cast<std::ptrdiff_t>(rowStart), _columns.end());
        // Reverse order of computation: a node passes its adjoint on once
        // every node above it has passed theirs to it.
        std::sort(cone.begin(), cone.end(), std::greater<int>());
        for (int index : cone) {
            const ZorWBRealProgram::SlopeRecord& record = records[static_cast<std::size_t>(index)];
            for (int k = 0; k < record.count; ++k) {
                int child = argument(record.first + k);
                if (!leads[static_cast<std::size_t>(child)]) continue;
                // seen[child] becomes -2 - root once an edge reaches it.
                bool first = seen[static_cast<std::size_t>(child)] != -2 - root;
                seen[static_cast<std::size_t>(child)] = -2 - root;
                _edges.push_back({record.dst, child, source(record, k), first});
                if (record.kind == Kind::Computed) _computedSlopes.push_back(source(record, k));
            }
        }
        _edgeStarts.push_back(static_cast<int>(_edges.size()));
        _rowStarts.push_back(static_cast<int>(_columns.size()));
    }
    if (reals) {
        _adjoints.assign(registers, 0.0);
    } else {
        _intervalAdjoints.assign(registers, ZorWBRealInterval{});
    }
    _reached.assign(registers, 0u);
    std::sort(_computedSlopes.begin(), _computedSlopes.end());
    _computedSlopes.erase(std::unique(_computedSlopes.begin(), _computedSlopes.end()),
                          _computedSlopes.end());
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

void ZorWBCompiledJacobian::SweepEverySlope(const ZorWBRealProgram& program, double* jacobian) {
    double* adjoint = _adjoints.data();
    const double* slopes = program._registers.data();
    const std::size_t nbOfRoots = _rowStarts.size() - 1;
    for (std::size_t root = 0; root < nbOfRoots; ++root) {
        adjoint[program._results[root]] = 1.0;
        for (int i = _edgeStarts[root]; i < _edgeStarts[root + 1]; ++i) {
            const Edge& edge = _edges[static_cast<std::size_t>(i)];
            double term = adjoint[edge.node] * slopes[edge.slope];
            if (edge.first) {
                adjoint[edge.child] = term;
            } else {
                adjoint[edge.child] += term;
            }
        }
        for (int i = _rowStarts[root]; i < _rowStarts[root + 1]; ++i)
            jacobian[i] = adjoint[_columns[static_cast<std::size_t>(i)]];
    }
}

void ZorWBCompiledJacobian::Sweep(const ZorWBRealProgram& program, double* jacobian) {
    const double* slopes = program._registers.data();
    bool missing = false;
    for (int slope : _computedSlopes)
        missing = missing || ZorWBIsNoSlope(slopes[slope]);
    if (!missing) {
        SweepEverySlope(program, jacobian);
        return;
    }
    SweepWith(
        program, _adjoints, program._registers.data(), 0.0, 1.0,
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
