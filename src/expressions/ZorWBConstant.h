#ifndef ZORWB_CONSTANT_H
#define ZORWB_CONSTANT_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpression.h"

// The eleven constants that a factory shares, by index.
enum ZorWBPredefinedConst : int {
    ZorWBConstPi = 0,          // fraction 1/1 * Pi
    ZorWBConstPiByTwo = 1,     // fraction 1/2 * Pi
    ZorWBConstDToR = 2,        // fraction 1/180 * Pi (degrees to radians)
    ZorWBConstRToD = 3,        // fraction 180/1 * Pi^-1 (radians to degrees)
    ZorWBConstIndefinite = 4,  // the undefined value
    ZorWBConstInvalid = 5,     // the real minus-infinity marker
    ZorWBConstMinusOne = 6,
    ZorWBConstZero = 7,
    ZorWBConstOne = 8,
    ZorWBConstTwo = 9,
    ZorWBConstThree = 10,
};
constexpr int ZorWBNbOfPredefinedConstants = 11;

// A node holding a value. Its buffer holds the constant value once
// evaluated; changing the value invalidates the buffers above it.
//
// The constant value is kept in the buffer itself: the two differ only when
// a value is assigned while the buffer stays valid (below the level
// ZorWBLevel::ResetBufferUpward, where assigning resets nothing), and the
// assigned value then waits in the node's annex until the buffer is
// computed again.
class ZORWBX_API ZorWBConstant : public ZorWBExpression {
  public:
    // The constant value.
    const ZorWBValue& GetExprValue() const override {
        return (_traits & HeldValueTrait) ? HeldValue() : _value;
    }
    // Same as SetValue(value, null).
    void SetExprValue(const ZorWBValue& value) override;
    bool IsEqualTo(const ZorWBExpression* other) const override;

    // Whether the value is 0 or 1. From the level ZorWBLevel::PredefinedZeroOne
    // on, the shared Zero and One answer by identity, whatever their value;
    // every other constant compares its value with 0.0 and 1.0 under the
    // environment's tolerance.
    virtual void IsZeroOrOne(bool& isZero, bool& isOne) const;
    // Assigns the value; from the level ZorWBLevel::ResetBufferUpward on, the
    // buffers above this node are invalidated; those above alsoReset always.
    virtual void SetValue(const ZorWBValue& value, ZorWBExpression* alsoReset);

  protected:
    friend class ZorWBFactory;
    ZorWBConstant(ZorWBFactory* factory, ZorWBExpressionType type, int tag);
    ZorWBConstant(ZorWBFactory* factory, int tag, const ZorWBValue& value);
    ~ZorWBConstant() override = default;

    void DoEval(ZorWBValue& value) const override;
    double DoEval() const override;
    ZorWBExpression* IntegrateTableProtected(ZorWBVariable* variable, bool& done) override;
    ZorWBExpression* DifferentiateProtected(ZorWBVariable* variable) override;

  private:
    // The value assigned while the buffer held an older one.
    const ZorWBValue& HeldValue() const;
    // Makes value the constant value (see the class comment).
    void StoreValue(const ZorWBValue& value);
};

// One of the eleven shared constants of a factory; its value comes from its
// index.
class ZORWBX_API ZorWBPredefinedConstant : public ZorWBConstant {
  public:
    ZorWBPredefinedConst GetPredefinedIndex() const { return _index; }

  protected:
    friend class ZorWBFactory;
    ZorWBPredefinedConstant(ZorWBFactory* factory, int tag, ZorWBPredefinedConst index);
    ~ZorWBPredefinedConstant() override = default;

  private:
    ZorWBPredefinedConst _index;
};

#endif
