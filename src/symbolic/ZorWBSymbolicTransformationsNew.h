#ifndef ZORWB_SYMBOLICTRANSFORMATIONSNEW_H
#define ZORWB_SYMBOLICTRANSFORMATIONSNEW_H

#include <vector>

#include "ZorWBxExport.h"
#include "qel/ZorQelArray.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

class ZorWBEquation;
class ZorWBSimplifier;

// The current engine of the symbolic transformations.
//
// A run: temporary storage on; every eligible equation (all of them with
// mode bit 1 or an empty list, else those named by SetEquationToSimplify),
// last to first, gets a private copy of its root, its properties, flattening
// (bits 1 or 2) and the full simplifier (bit 2); then the elimination (bit
// 1, with the consistency check of bit 4); then, below the level
// ZorWBLevel::NoFinalNormalisation, the simplifier's final normalisation, and
// binarisation (bit 3, IfThenElse kept from ZorWBLevel::KeepIfThenElseTernary
// on). The list of equations to simplify is emptied at the end of every run;
// the mode and the inconsistency flag stay.
class ZORWBX_API ZorWBSymbolicTransformationsNew : public ZorWBSymbolicTransformations {
  public:
    ZorWBSymbolicTransformationsNew(unsigned int level, ZorWBFactory& factory);
    ~ZorWBSymbolicTransformationsNew() override;

    int RunOperator() override;
    // Input: the base sections, the equation system with the list of
    // equations to simplify, and "#!MODE". Output: the base sections,
    // "#!INCONSISTENCIES" (mode bit 4) and the transformed system.
    void WriteInput(ZorQelStream& stream) override;
    void WriteOutput(ZorQelStream& stream) override;
    bool SetEquationToSimplify(int id) override;
    bool AreInequalitiesInconsistent() override { return _inconsistencyFound; }

    const ZorQelIntArray& GetEquationsToSimplify() const { return _equationsToSimplify; }

  private:
    bool IsEligible(const ZorWBEquation* equation) const;
    // Steps of one eligible equation before the elimination; false when the
    // equation was removed.
    void PrepareEquation(ZorWBEquation* equation, ZorWBSimplifier& simplifier);
    void Eliminate(ZorWBSimplifier& simplifier);
    // The consistency check of the constant inequalities.
    void CheckInequalities();

    ZorQelArray<ZorWBExpression*> _expressionsForVariables;
    std::vector<ZorQelBoolArray> _variableDependencies;
    bool _inconsistencyFound = false;
    ZorQelIntArray _equationsToSimplify;
};

#endif
