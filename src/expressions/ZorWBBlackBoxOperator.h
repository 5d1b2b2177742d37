#ifndef ZORWB_BLACKBOXOPERATOR_H
#define ZORWB_BLACKBOXOPERATOR_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBOperator.h"
#include "qel/ZorQelString.h"

class ZorWBBlackBox;

// A call of a host-supplied function: the children are its arguments. The
// node evaluates its arguments first and then calls the black box, which
// reads them through ZorWBBlackBox::GetArgumentValue / GetArgument (while
// the call runs, the black box's operator is this node, so one black box
// may serve several nodes).
class ZORWBX_API ZorWBBlackBoxOperator : public ZorWBOperator {
  public:
    ZorWBBlackBox* GetBlackBox() const { return _blackBox; }
    int GetSerialNumber() const { return _serialNumber; }
    // The black box's name ("BBx" and the serial number until one is set).
    ZorQelString GetBlackBoxName() const;
    void SetBlackBoxName(const ZorQelString& name);
    // "BBx" followed by the node's serial number ("BBx" alone for null).
    static ZorQelString GetDefaultBlackBoxName(const ZorWBBlackBoxOperator* node);

    // The evaluated value of argument i (undefined outside the arguments);
    // during CallWith, the value given for it.
    const ZorWBValue& GetArgumentValue(int i) const;
    // Calls bb as if from this node, on arguments[j] for each argument j
    // (one value per argument) instead of the arguments' own values: how a
    // derivative black box calls its primitive at moved points.
    double CallWith(ZorWBBlackBox* bb, const ZorWBValue* arguments) const;

  protected:
    friend class ZorWBFactory;
    ZorWBBlackBoxOperator(ZorWBFactory* factory, int tag, int n, ZorWBExpression* const* args,
                          ZorWBBlackBox* bb, int serialNumber);
    ~ZorWBBlackBoxOperator() override;

    // Equal as operators (children in order) and, from the level
    // ZorWBLevel::BlackBoxEqualityByObject on, calling the same black box.
    bool HasSameHead(const ZorWBOperator* other) const override;
    // From the level ZorWBLevel::ResetBufferUpward on, a black-box call is
    // never buffered whatever its arguments: giving buffering back to the
    // nodes below does not reach it.
    bool ValidateAllowBufferEval() const override;
    ZORWB_OPERATOR_FAMILY_OVERRIDES

  private:
    // Forgets the black box; with clearOperator, the black box no longer
    // refers to this node either.
    void RemoveBlackBox(bool clearOperator);
    // Makes this node the black box's operator for the duration of a call.
    class CallScope;

    ZorWBBlackBox* _blackBox;
    int _serialNumber;
    // The argument values of the running CallWith, if any.
    mutable const ZorWBValue* _givenArguments = nullptr;
};

#endif
