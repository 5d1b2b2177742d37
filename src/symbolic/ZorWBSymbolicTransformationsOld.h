#ifndef ZORWB_SYMBOLICTRANSFORMATIONSOLD_H
#define ZORWB_SYMBOLICTRANSFORMATIONSOLD_H

#include "ZorWBxExport.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

class ZorQelBoolArray;
class ZorWBSimplifier;

// The previous engine, kept so that replays made with it give the same
// results. Every equation takes part (no list of equations to simplify), the
// simplifier runs one round without the trigonometric rewrites, the
// elimination runs without the consistency check, there is no final
// normalisation, and binarisation has no level gate. The properties are
// registered at the start of each run.
class ZORWBX_API ZorWBSymbolicTransformationsOld : public ZorWBSymbolicTransformations {
  public:
    ZorWBSymbolicTransformationsOld(unsigned int level, ZorWBFactory& factory);
    ~ZorWBSymbolicTransformationsOld() override;

    int RunOperator() override;
    // The new engine's sections without the list of equations to simplify
    // and without "#!INCONSISTENCIES".
    void WriteInput(ZorQelStream& stream) override;
    void WriteOutput(ZorQelStream& stream) override;

  private:
    void Eliminate(ZorWBSimplifier& simplifier);
    void ReleaseEliminationArrays();

    // Allocated for the elimination step only.
    ZorWBExpression** _expressionsForVariables = nullptr;
    ZorQelBoolArray* _variableDependencies = nullptr;
};

#endif
