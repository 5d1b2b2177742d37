#ifndef ZORWB_PROPAGATOR_H
#define ZORWB_PROPAGATOR_H

#include <memory>

#include "ZorWBxExport.h"
#include "solver/ZorWBConstraintSystem.h"

class ZorWBFactory;
class ZorWBVariable;

// What a propagation on a factory found.
struct ZorWBPropagationResult {
    // False when some variable's domain became empty: no assignment of the
    // domains satisfies every relation.
    bool consistent = true;
    // The equation whose revision emptied a domain (-1 while consistent).
    int equationId = -1;
    int nbOfRevisions = 0;
    // Variables whose value the propagation narrowed.
    int nbOfNarrowedVariables = 0;
};

// Constraint propagation over a factory's equations, for a host that keeps
// its domains in the variables' values: a variable's value (an interval, an
// enumeration, a boolean, a number, or undefined for the whole real line)
// is its domain, and a propagation narrows the values in place.
//
//   ZorWBPropagator propagator(factory);             // compiles the relations
//   x->SetExprValue(ZorWBValue(ZorWBRealInterval{0, 10}));
//   ZorWBPropagationResult result = propagator.Propagate();
//   ...
//   result = propagator.Narrow(y, ZorWBValue(ZorWBRealInterval{1, 2}));
//
// The relations (= 0, <> 0, <= 0, < 0, >= 0, > 0, under the environment's
// tolerance) are compiled at construction; after equations are added or
// changed, make a new propagator. Narrowing is sound: no point that
// satisfies every relation is removed from the domains (rounding is
// outward on the compiled path, and the value path widens what the value
// functions give by a relative hair). Domains keep their kinds: integer
// values and intervals keep integer bounds, enumerations drop elements.
// When a propagation proves the system inconsistent, the variables keep the
// values they had before it; when memory runs short it narrows nothing.
//
// The propagator uses the factory, which must outlive it, from the calling
// thread only.
class ZORWBX_API ZorWBPropagator {
  public:
    explicit ZorWBPropagator(ZorWBFactory& factory);
    ~ZorWBPropagator();
    ZorWBPropagator(const ZorWBPropagator&) = delete;
    ZorWBPropagator& operator=(const ZorWBPropagator&) = delete;

    // A variable is revised again after shrinking by more than this part of
    // its width (default 0.01).
    void SetRatio(double ratio);
    // The tolerance of the relations (-1.0, the default, for the
    // environment's).
    void SetTolerance(double tolerance);

    // Propagates over every relation.
    ZorWBPropagationResult Propagate();
    // Intersects the variable's value with value, then propagates through
    // the relations above that variable only. A null or foreign variable
    // changes nothing.
    ZorWBPropagationResult Narrow(ZorWBVariable* variable, const ZorWBValue& value);

    // Null when memory ran short at construction (propagations then narrow
    // nothing).
    const ZorWBConstraintSystem* GetSystem() const { return _system.get(); }

  private:
    ZorWBPropagationResult Run(const std::vector<int>* seeds, ZorWBDomainBox& box);
    ZorWBDomainBox ReadDomains();

    ZorWBFactory& _factory;
    std::unique_ptr<ZorWBConstraintSystem> _system;
    ZorWBPropagationSettings _settings;
};

#endif
