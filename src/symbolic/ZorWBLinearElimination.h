#ifndef ZORWB_LINEARELIMINATION_H
#define ZORWB_LINEARELIMINATION_H

#include <functional>
#include <vector>

#include "qel/ZorQelArray.h"
#include "symbolic/ZorWBLinearForm.h"

class ZorWBEquation;
class ZorWBExpression;
class ZorWBFactory;
class ZorWBSimplifier;
class ZorWBSymbolicTransformations;

// The elimination step of the symbolic transformations (mode bit 1).
//
// In passes, while a pass finds new ones: every linear equality becomes a
// linear form and leaves the factory; each new form is solved for its
// coefficient of largest magnitude (the lowest variable index on ties) by
// Gauss-Jordan elimination, its pivot row is substituted into every other
// form, the solved variables get their definitions, and the definitions are
// substituted into the remaining equalities (which may make new ones
// linear). Then the definitions are substituted into the other equations,
// the optional check runs, and the solved system is written back as
// equations x - definition = 0.
//
// Forms keep only their non-zero coefficients, and a column index finds the
// forms that hold a variable, so a sparse system costs time in proportion to
// the coefficients that its elimination fills in (at most quadratic in the
// number of equations).
class ZorWBLinearElimination {
  public:
    // definitions and dependencies have one slot per factory variable; the
    // operator provides the property computation and the trace.
    ZorWBLinearElimination(ZorWBSymbolicTransformations& transformations,
                           ZorWBSimplifier& simplifier, ZorWBExpression** definitions,
                           ZorQelBoolArray* dependencies, int nbOfVariables);

    // keepConstantRoots is handed to the simplifier for the equations that
    // are not equalities; check (may be empty) runs after their substitution.
    void Run(bool keepConstantRoots, const std::function<void()>& check);

  private:
    bool CollectPass();
    void ProcessForm(std::size_t k);
    void SubstitutePivot(std::size_t k, int p);
    void BuildDefinitions();
    void TraceDefinitions();
    // Substitutes the definitions into the equations whose type is (equalities)
    // or is not (the others) "=".
    void SubstituteInto(bool equalities, bool keepConstantRoots);
    void SimplifyRemainders();
    void WriteBack();
    // The terms of the form's variables (but skip), in variable order.
    std::vector<ZorWBExpression*> VariableTerms(const ZorWBLinearForm& form, int skip);
    void NoteAppeared(std::size_t form, const std::vector<int>& variables);
    ZorQelString FormText(std::size_t k, const char* head);

    ZorWBSymbolicTransformations& _transformations;
    ZorWBFactory& _factory;
    ZorWBSimplifier& _simplifier;
    ZorWBExpression** _definitions;
    ZorQelBoolArray* _dependencies;
    int _nbOfVariables;
    ZorWBExpression* _zero = nullptr;
    std::vector<ZorWBLinearForm> _forms;
    std::size_t _firstOfPass = 0;
    // For each variable, the forms that hold it (may also list forms that no
    // longer do; they are checked when read).
    std::vector<std::vector<std::size_t>> _column;
};

#endif
