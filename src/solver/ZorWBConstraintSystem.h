#ifndef ZORWB_CONSTRAINTSYSTEM_H
#define ZORWB_CONSTRAINTSYSTEM_H

#include <memory>
#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "solver/ZorWBConstraintTape.h"
#include "solver/ZorWBDomainBox.h"
#include "solver/ZorWBValueConstraint.h"
#include "values/ZorWBEnvironment.h"

class ZorWBEquation;
class ZorWBExpression;
class ZorWBFactory;

// How a propagation runs.
struct ZorWBPropagationSettings {
    // A constraint is revised again after one of its variables shrank by more
    // than this part of its width (or lost an infinite end).
    double ratio = 0.01;
    // The tolerance of the relations; -1.0 for the environment's.
    double tolerance = -1.0;
};

// What a propagation found.
struct ZorWBPropagationReport {
    bool consistent = true;
    // The equation whose revision emptied a domain, -1 while consistent.
    int emptyingEquationId = -1;
    int nbOfRevisions = 0;
};

// The relations among a list of equations, compiled for propagation, and
// the propagation itself (HC4 with a queue).
//
// Each relation (types 1 to 6; objectives and equations without relation
// are left out) is compiled onto one shared ZorWBConstraintTape when its
// root allows, so that equal sub-expressions of different equations share
// their slots, and otherwise kept as a ZorWBValueConstraint that goes
// through the value functions. Each variable knows the constraints whose
// root's subgraph holds it (found once, at compilation), so that a
// propagation started from a few variables revisits only the equations
// above them.
//
// Propagation: a first-in first-out queue of constraints, each revised in
// turn (HC4-revise: the root evaluated on the domains, narrowed to what the
// relation allows, and projected back to the variables). A variable that
// shrank by more than the ratio puts the other constraints that read it back
// in the queue. It stops when the queue is empty, when a domain becomes
// empty (a proof that nothing in the domains satisfies the system, reported
// with the equation that emptied it), or after a budget of revisions (50
// per constraint and 1,000 more) that guarantees an end whatever the
// ratio; a propagation cut short by the budget is sound, only weaker.
// Integer domains keep integer bounds and listed domains drop the elements
// outside their new hull after each revision.
//
// A system is used by one thread at a time: it keeps its working slots.
class ZORWBX_API ZorWBConstraintSystem {
  public:
    struct Constraint {
        int equationId;
        ZorWBEquationType relation;
        int root = -1;             // tape slot of the root, -1 off the tape
        std::vector<int> program;  // tape instructions of the root
        std::vector<int> variables;
        std::unique_ptr<ZorWBValueConstraint> values;  // off the tape
        bool IsOnTape() const { return root >= 0; }
    };

    // The factory gives the environment (tolerance, error word) and the
    // number of variables; the equations must be the factory's.
    ZorWBConstraintSystem(const ZorWBFactory& factory,
                          const std::vector<ZorWBEquation*>& equations);
    ZorWBConstraintSystem(const ZorWBConstraintSystem&) = delete;
    ZorWBConstraintSystem& operator=(const ZorWBConstraintSystem&) = delete;

    int GetNbOfVariables() const { return _tape.GetNbOfVariables(); }
    int GetNbOfConstraints() const { return static_cast<int>(_constraints.size()); }
    const Constraint& GetConstraint(int i) const { return _constraints[i]; }
    // The constraints that read a variable.
    const std::vector<int>& GetConstraintsOf(int variable) const {
        return _constraintsOf[variable];
    }
    ZorWBConstraintTape& GetTape() { return _tape; }
    const ZorWBEnvironment& GetEnvironment() const { return _environment; }
    // The tolerance settings resolve to.
    double ResolveTolerance(const ZorWBPropagationSettings& settings) const;

    // The kinds of the variables' domains (all real until set).
    void SetKinds(const std::vector<ZorWBDomainKind>& kinds);
    ZorWBDomainKind GetKind(int variable) const { return _kinds[variable]; }

    // Narrows box: every constraint, or (with seeds) those that read one of
    // the seed variables. False when a domain became empty.
    bool Propagate(ZorWBDomainBox& box, const ZorWBPropagationSettings& settings,
                   ZorWBPropagationReport& report, const std::vector<int>* seeds = nullptr);

    // The enclosure of a constraint's root over box.
    ZorWBRoundedInterval EvaluateRoot(int constraint, const ZorWBDomainBox& box);
    // Compiles another expression of the factory onto the tape (a
    // derivative, say): its slot, -1 when the tape cannot hold it.
    int CompileExpression(const ZorWBExpression* expression);
    // The working slots of the tape (variables first): what EvaluateRoot
    // and Propagate leave there can be read until the next call.
    std::vector<ZorWBRoundedInterval>& GetSlots() { return _slots; }

  private:
    class Run;

    // The domains of a constraint's variables as values of their kinds, for
    // the value path: intervals by variable, listed values from box.
    std::vector<ZorWBValue>& ValueDomains(const Constraint& constraint,
                                          const ZorWBRoundedInterval* intervals,
                                          const ZorWBDomainBox& box);

    const ZorWBEnvironment& _environment;
    ZorWBConstraintTape _tape;
    std::vector<ZorWBRoundedInterval> _slots;
    std::vector<Constraint> _constraints;
    std::vector<std::vector<int>> _constraintsOf;
    std::vector<ZorWBDomainKind> _kinds;
    // Scratch of Propagate and of the value constraints.
    std::vector<char> _queued;
    std::vector<int> _queue;
    std::vector<ZorWBRoundedInterval> _before;
    std::vector<ZorWBValue> _valueDomains;
};

#endif
