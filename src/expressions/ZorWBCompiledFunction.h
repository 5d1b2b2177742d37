#ifndef ZORWB_COMPILEDFUNCTION_H
#define ZORWB_COMPILEDFUNCTION_H

#include <memory>
#include <utility>
#include <vector>

#include "ZorWBxExport.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBValue.h"

class ZorWBCompiledJacobian;
class ZorWBExpression;
class ZorWBFactory;
class ZorWBRealProgram;
class ZorWBVariable;

// What a compiled function answers; ZorWBCompiledStatusText says it in words.
enum class ZorWBCompiledStatus : int {
    Ok = 0,
    // Nothing was compiled: no root, a null root or variable, one of
    // another factory, a variable listed twice, a cycle, or memory short.
    NotCompiled = 1,
    // The graph changed after compilation (a node removed, a child replaced,
    // a Step parameter set, buffering turned on or off): compile again.
    GraphChanged = 2,
    // The factory of the roots is gone.
    FactoryDestroyed = 3,
    // A root reaches a node without partial derivatives (a black-box call,
    // an Integrate node): no Jacobian.
    NoDerivative = 4,
    // A root reaches a black-box call: no evaluation over intervals.
    NoIntervalForm = 5,
    // A null array where one is needed, or an index outside the variables.
    BadArgument = 6,
};

ZORWBX_API const char* ZorWBCompiledStatusText(ZorWBCompiledStatus status);

// Roots of one factory compiled over a list of their variables, for a host
// that evaluates them at many points: the residuals f(x) at a point x given
// as an array of doubles, the sparse Jacobian (the derivative of every root
// by every listed variable it depends on), and the interval forms of both
// over a box, for interval Newton. Calls allocate nothing and never touch
// the listed variables' nodes (their values stay as they are), but for one
// case: a black box reads its arguments through the graph, so a root that
// calls one on a listed variable gives that variable the point (as
// SetExprValue would) before each real evaluation. The other leaves are
// read from their nodes at each call.
//
// Evaluate gives, to the bit, what Eval() of each root gives once the
// variables hold the point (NaN for undefined values, black boxes called as
// often); the Jacobian comes from reverse differentiation over the same
// program, following the rules of the symbolic derivatives
// (ZorWBSlopes.h); EvaluateIntervals gives, to the bit, the values that
// GetValue() of the roots in order gives once the variables hold the box
// and every buffer is invalid, and leaves the environment's error word as
// that evaluation leaves it. The interval Jacobian encloses the derivatives
// over the box, with the library's interval functions (bounds rounded to
// nearest).
//
// A change of the graph's structure after compilation makes every call
// refuse with GraphChanged (nothing is read), as does the factory's
// destruction with FactoryDestroyed. Not for use by two threads at once,
// like the factory.
//
// Cost: compilation is linear in the nodes and edges of the roots'
// subgraphs; residuals cost one instruction or so per node; the Jacobian
// adds, per root, the edges below it that lead to a listed variable (a
// root over a shared subgraph walks it again).
class ZORWBX_API ZorWBCompiledFunction {
  public:
    ZorWBCompiledFunction(int nbOfRoots, const ZorWBExpression* const* roots, int nbOfVariables,
                          ZorWBVariable* const* variables);
    ~ZorWBCompiledFunction();
    ZorWBCompiledFunction(const ZorWBCompiledFunction&) = delete;
    ZorWBCompiledFunction& operator=(const ZorWBCompiledFunction&) = delete;

    // What a call of Evaluate would answer now for the graph (Ok,
    // NotCompiled, GraphChanged or FactoryDestroyed).
    ZorWBCompiledStatus GetStatus() const;
    int GetNbOfRoots() const { return _nbOfRoots; }
    int GetNbOfVariables() const { return _nbOfVariables; }

    // Variable i reads *slot at each real evaluation instead of point[i]
    // (the host writes it directly); a null slot reads the point again.
    // The interval forms read every variable from the box. False for an
    // index outside the variables.
    bool BindSlot(int variable, const double* slot);

    // residuals[i] = root i at point (point[i] the value of variable i;
    // point may be null when every variable is bound to a slot).
    ZorWBCompiledStatus Evaluate(const double* point, double* residuals);

    // The Jacobian's pattern, rows by root: the entries of root i are
    // jacobian[GetRowStarts()[i] .. GetRowStarts()[i + 1]), for the variables
    // GetColumns()[...] in increasing order.
    int GetNbOfNonZeros() const;
    const int* GetRowStarts() const;
    const int* GetColumns() const;
    // The residuals and the Jacobian's entries at point (GetNbOfNonZeros()
    // of them).
    ZorWBCompiledStatus EvaluateJacobian(const double* point, double* residuals, double* jacobian);

    // The images of the roots over the box (box[i] the interval of variable
    // i); a root's value of another kind is read as a real interval (an
    // undefined value as the whole line). GetIntervalResult(i) keeps the
    // value itself.
    ZorWBCompiledStatus EvaluateIntervals(const ZorWBRealInterval* box,
                                          ZorWBRealInterval* residuals);
    // The same and the interval Jacobian's entries over the box.
    ZorWBCompiledStatus EvaluateIntervalJacobian(const ZorWBRealInterval* box,
                                                 ZorWBRealInterval* residuals,
                                                 ZorWBRealInterval* jacobian);
    const ZorWBValue& GetIntervalResult(int root) const;

  private:
    friend class ZorWBFactory;

    ZorWBCompiledStatus Check() const;
    // The factory is being destroyed: every call refuses from now on.
    void ForgetFactory() { _factory = nullptr; }
    void Compile(const ZorWBExpression* const* roots, ZorWBVariable* const* variables);
    // The listed variables below black-box calls, which are given the
    // point through their nodes.
    void FindVariablesOfCalls(ZorWBVariable* const* variables);
    // Gives those variables the values of inputs (where they differ).
    void GiveCallsThePoint(const double* inputs) const;
    // The point (or the slots) into the program's inputs.
    void ReadPoint(const double* point, double* inputs) const;
    bool NeedsPoint() const;
    // The residual images by program (after the checks of the call).
    ZorWBCompiledStatus RunIntervals(ZorWBRealProgram& program, const ZorWBRealInterval* box,
                                     ZorWBRealInterval* residuals);

    ZorWBFactory* _factory = nullptr;
    unsigned long long _structureVersion = 0;
    int _nbOfRoots = 0;
    int _nbOfVariables = 0;
    bool _compiled = false;
    std::vector<const double*> _slots;
    int _nbOfBound = 0;
    std::vector<std::pair<int, ZorWBVariable*>> _variablesOfCalls;
    // Residuals; the program with slopes for the Jacobian, and its sweeps;
    // the programs over values in the walk's order for the residual images
    // (registers reused) and for the interval Jacobian (with slopes), and
    // its sweeps. Null where the roots do not allow them.
    std::unique_ptr<ZorWBRealProgram> _residuals;
    std::unique_ptr<ZorWBRealProgram> _slopes;
    std::unique_ptr<ZorWBCompiledJacobian> _jacobian;
    std::unique_ptr<ZorWBRealProgram> _intervals;
    std::unique_ptr<ZorWBRealProgram> _intervalSlopes;
    std::unique_ptr<ZorWBCompiledJacobian> _intervalJacobian;
    // The program whose values GetIntervalResult reads.
    const ZorWBRealProgram* _lastIntervals = nullptr;
};

#endif
