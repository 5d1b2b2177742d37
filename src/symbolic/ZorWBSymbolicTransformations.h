#ifndef ZORWB_SYMBOLICTRANSFORMATIONS_H
#define ZORWB_SYMBOLICTRANSFORMATIONS_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpression.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelOperator.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelString.h"

class ZorWBFactory;
class ZorWBLinearElimination;

// Rewrites in place the equation system of one factory: marks constant and
// linear sub-expressions, flattens and binarises n-ary operators, simplifies
// each equation, eliminates the variables that linear equalities define and
// substitutes them everywhere, and can check the inequalities that became
// constant. A replayable operator: the host creates it with
// ZorCreateWBSymbolicTransformations, sets the mode, optionally names the
// equations to simplify, calls Run and releases it with ZorRemove.
//
// Two engines share this interface: ZorWBSymbolicTransformationsNew (the
// current one) and ZorWBSymbolicTransformationsOld (kept for replays made
// with it); the factory's environment chooses when the operator is created.
class ZORWBX_API ZorWBSymbolicTransformations : public ZorQelOperator {
  public:
    // The factory properties that the operator maintains on nodes.
    enum ZorWBProperty : int {
        ZorWBConstantProperty = 0,  // "constant": no variable below
        ZorWBLinearProperty = 1,    // "linear": affine in the variables
    };

    // Mode bits (SetMode).
    static constexpr unsigned int ComputeLinearMode = 1;
    static constexpr unsigned int EliminateMode = 2;
    static constexpr unsigned int SimplifyMode = 4;
    static constexpr unsigned int BinariseMode = 8;
    static constexpr unsigned int CheckInequalitiesMode = 16;

    static const int _CurrentStreamVersion;

    ZorWBSymbolicTransformations(unsigned int level, ZorWBFactory& factory);

    // ------------------------------------------------------------ virtual slots
    ~ZorWBSymbolicTransformations() override;
    void InitWithEnv() override {}
    int RunOperator() override = 0;
    int GetVersionOfStream() const override { return 1; }
    bool CheckInput(ZorQelStream& /*stream*/) override { return true; }
    bool CheckOutput(ZorQelStream& /*stream*/) override { return true; }
    ZorQelString GetOperatorName() const override { return "ZorWBSymbolicTransformations"; }
    ZorQelString GetOperatorShortName() const override { return "ST"; }
    void Remove() override { delete this; }
    // The one process-wide identity of the operator (keyword "QelWBReplay").
    OperatorInfo& GetOperatorInfo() override;
    // Adds an equation id to the list of equations to process (new engine).
    virtual bool SetEquationToSimplify(int id);
    // Whether the last check found a violated constant inequality (new engine).
    virtual bool AreInequalitiesInconsistent();

    // ------------------------------------------------------------ mode
    unsigned int GetMode() const { return _mode; }
    void SetMode(unsigned int mode) { _mode = mode; }
    ZorWBFactory& GetFactory() const { return _factory; }

  protected:
    friend class ZorWBLinearElimination;

    bool GetProperty(ZorWBExpression* expression, ZorWBProperty property);
    void SetProperty(ZorWBExpression* expression, ZorWBProperty property, bool value);
    // Recomputes "constant" (and, with mode bit 0, "linear") over a whole
    // graph, children first (each shared node once).
    void SetProperties(ZorWBExpression* expression);
    void RegisterProperty(ZorWBProperty property);

    // Nested Sum, Product, Min and Max merged into their parents (a child of
    // the parent's type gives its children, appended at the end). Returns the
    // new root; nodes are copied, not changed, and keep their properties.
    ZorWBExpression* Flatten(ZorWBExpression* root);
    // n-ary nodes made binary from the left: a+b+c+d becomes ((a+b)+c)+d.
    // With keepIfThenElse, IfThenElse nodes are left alone; a type that has
    // no two-child form (IfThenElse, Round, black boxes) stays as it is.
    ZorWBExpression* Binarise(ZorWBExpression* root, bool keepIfThenElse);

    // Replay: adds the equation system of the factory as sections of one
    // part (with the list of equations to simplify for the input part).
    void AddSystemSections(ZorQelStream& stream, ZorQelStorage::ReplayPart part,
                           const ZorQelIntArray* equationsToSimplify);
    // Writes the base input sections, the system and "#!MODE".
    void WriteInputSections(ZorQelStream& stream, const ZorQelIntArray* equationsToSimplify);

    // The transformation trace: its level and its output.
    static int TraceLevel();
    static void Trace(const ZorQelString& text);
    // "Eq[i] = " and each root, then "Var[i] = " and each definition when
    // definitions holds one slot per variable.
    void TraceSystem(ZorWBExpression* const* definitions, int nbOfDefinitions);

    ZorWBFactory& _factory;
    unsigned int _mode = 0;
    int _propertyIds[2] = {-1, -1};

  private:
    static OperatorInfo* _pInfo;
};

// Creates the engine that the factory's environment asks for; null when
// memory is short.
ZORWBX_API ZorWBSymbolicTransformations* ZorCreateWBSymbolicTransformations(unsigned int level,
                                                                            ZorWBFactory& factory);
// Deletes an operator; null is ignored.
ZORWBX_API void ZorRemove(ZorWBSymbolicTransformations* transformations);

#endif
