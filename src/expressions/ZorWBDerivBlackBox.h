#ifndef ZORWB_DERIVBLACKBOX_H
#define ZORWB_DERIVBLACKBOX_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBBlackBox.h"

class ZorWBVariable;

// The derivative of a black box (its primitive), computed by the central
// difference (f(a + h) - f(a - h)) / 2h. The step h is the environment's
// black-box precision (ZorWBEnvironment::GetBBPrecision) when the derivative
// is made. It comes in two forms:
// - by a variable: the variable is set to x0 - h and to x0 + h through its
//   value assignment (which invalidates the buffers above it), the
//   primitive is called each time on the freshly evaluated arguments of the
//   call, and the variable gets its former value back;
// - by argument i of the call (what differentiation makes at current
//   levels): the primitive is called on the call's argument values with
//   argument i moved to a - h and a + h (a its real reading); an argument
//   that is a variable is moved through its value assignment as well, and
//   gets its former value back. The other arguments keep their values.
// The primitive is called as if from the derivative's call node, so it
// reads the arguments of that node. The result is NaN without a primitive,
// without a call node, with a step that is not a positive finite number or
// at an undefined point.
class ZORWBX_API ZorWBDerivBlackBox : public ZorWBBlackBox {
  public:
    // By a variable, named "d" + the variable's name + the primitive's name
    // (dva0BBx1). Without a primitive or a variable the step is 0.0 and the
    // name stays the default one.
    ZorWBDerivBlackBox(ZorWBBlackBox* primitive, ZorWBVariable* variable);
    // By argument i of the call, named "d" + "arg" + i + the primitive's
    // name (darg0BBx1).
    ZorWBDerivBlackBox(ZorWBBlackBox* primitive, int argument, double step);

    void Eval(ZorWBValue& value) override { value.Set(Eval()); }
    double Eval() override;
    bool IsADerivative() const override { return true; }

    ZorWBBlackBox* GetAPrimitive() const { return _primitive; }
    bool IsAPrimitive(const ZorWBBlackBox* bb) const { return bb && bb == _primitive; }
    bool IsTheDiffVariable(const ZorWBVariable* variable) const {
        return variable && variable == _variable;
    }
    ZorWBVariable* GetDiffVariable() const { return _variable; }
    // The argument of the second form; -1 in the first one.
    int GetDiffArgument() const { return _argument; }
    double GetStep() const { return _step; }

  private:
    double ByVariable(ZorWBBlackBoxOperator& call);
    double ByArgument(ZorWBBlackBoxOperator& call);
    double Difference(double below, double above) const;

    ZorWBBlackBox* _primitive;
    ZorWBVariable* _variable = nullptr;
    int _argument = -1;
    double _step = 0.0;
};

#endif
