#ifndef ZORWB_COMPILEDJACOBIAN_H
#define ZORWB_COMPILEDJACOBIAN_H

#include <vector>

#include "values/ZorWBEnvironment.h"
#include "values/ZorWBInterval.h"

class ZorWBRealProgram;

// The reverse sweeps that turn the slopes of a program compiled with
// slopes (ZorWBRealProgram) into the sparse Jacobian of its roots by its
// inputs.
//
// Method: reverse differentiation, one sweep per root over the part of the
// graph below it that leads to an input (its cone), the nodes in reverse
// order of computation: each node passes its adjoint, times its slope by
// a child, on to that child; the adjoints of the inputs are then the row.
// A node that no slope reaches (every path from the root goes through a
// piece not selected, see ZorWBIsNoSlope) passes nothing on, and its
// inputs read 0: the terms the symbolic derivative leaves out. The cones,
// their edges and the pattern (the inputs of each cone, in increasing
// order) are fixed at construction; a node emitted twice (in two
// branches) has both copies in the cone, and the copy that did not run
// gives no slope. Sweeping for every root costs the sum of the cones' edges;
// nothing is allocated.
class ZorWBCompiledJacobian {
  public:
    // Throws std::bad_alloc when memory runs short.
    ZorWBCompiledJacobian(const ZorWBRealProgram& program, int nbOfRoots);

    const std::vector<int>& GetRowStarts() const { return _rowStarts; }
    const std::vector<int>& GetColumns() const { return _columns; }

    // The entries from the slopes of the program's last run with reals.
    void Sweep(const ZorWBRealProgram& program, double* jacobian);
    // The same from the interval slopes of its last run over values, with
    // the interval functions in scratch (its error word is overwritten).
    void Sweep(const ZorWBRealProgram& program, const ZorWBEnvironment& scratch,
               ZorWBRealInterval* jacobian);

  private:
    // The adjoint of node passes to child, times slope number slope; the
    // first edge of a sweep to reach child sets its adjoint.
    struct Edge {
        int node;
        int child;
        int slope;
        bool first;
    };
    template <class Number, class Product, class Sum>
    void SweepWith(const ZorWBRealProgram& program, std::vector<Number>& adjoints,
                   const Number* slopes, Number zero, Number one, Product&& product, Sum&& sum,
                   Number* jacobian);

    // The plain sweep, when no slope that an edge reads is missing: the
    // adjoints added up edge by edge.
    void SweepEverySlope(const ZorWBRealProgram& program, double* jacobian);

    // Per root: the edges, the entries (the inputs' registers are the
    // columns).
    std::vector<int> _edgeStarts;
    std::vector<Edge> _edges;
    std::vector<int> _rowStarts;
    std::vector<int> _columns;
    std::vector<double> _adjoints;
    std::vector<ZorWBRealInterval> _intervalAdjoints;
    // A register is reached in the sweep of the current root when its
    // stamp is the sweep's.
    std::vector<unsigned int> _reached;
    unsigned int _sweep = 0;
    // The computed slopes that edges read (with reals).
    std::vector<int> _computedSlopes;
};

#endif
