#ifndef ZORWB_VARIABLE_H
#define ZORWB_VARIABLE_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBConstant.h"
#include "qel/ZorQelString.h"

// An unknown of the problem: a constant of type Variable whose value the host
// assigns (an exact value, an interval or an enumeration). Its index is its
// position in the factory's variable list: the number of variables made
// before it, less those removed since (see ZorWBFactory::RemoveExpression).
class ZORWBX_API ZorWBVariable : public ZorWBConstant {
  public:
    int GetIdx() const { return _count; }

    // "va" followed by the index until a name is set.
    const ZorQelString& GetName();
    void SetName(const ZorQelString& name) { _name = name; }

    void SetPreferedValue(double value);
    double GetPreferedValue() const;
    // False, leaving value alone, while no preferred value was set.
    bool GetPreferedValue(double& value) const;

    // Changing the fixed state invalidates every buffer of the factory.
    void Fix(bool fixed);
    bool IsFixed() const { return (_traits & FixedTrait) != 0; }

    // 1 until set.
    void SetDividedFlag(int flag);
    int GetDividedFlag() const;

    bool IsEqualTo(const ZorWBExpression* other) const override;

  protected:
    friend class ZorWBFactory;
    ZorWBVariable(ZorWBFactory* factory, int tag, int index);
    ~ZorWBVariable() override = default;

    ZorWBExpression* IntegrateTableProtected(ZorWBVariable* variable, bool& done) override;
    ZorWBExpression* DifferentiateProtected(ZorWBVariable* variable) override;

  private:
    // A new index after a removal; a name that was only the default one
    // ("va" and the old index) follows it.
    void SetIndex(int index);

    // The index is the node's count field, and the settings other than the
    // value and the name live in the annex: few variables have them.
    ZorQelString _name;
};

#endif
