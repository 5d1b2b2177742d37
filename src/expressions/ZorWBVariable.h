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
    int GetIdx() const { return _index; }

    // "va" followed by the index until a name is set.
    const ZorQelString& GetName();
    void SetName(const ZorQelString& name) { _name = name; }

    void SetPreferedValue(double value) {
        _preferredValue = value;
        _hasPreferredValue = true;
    }
    double GetPreferedValue() const { return _preferredValue; }
    // False, leaving value alone, while no preferred value was set.
    bool GetPreferedValue(double& value) const {
        if (!_hasPreferredValue) return false;
        value = _preferredValue;
        return true;
    }

    // Changing the fixed state invalidates every buffer of the factory.
    void Fix(bool fixed);
    bool IsFixed() const { return _fixed; }

    void SetDividedFlag(int flag) { _dividedFlag = flag; }
    int GetDividedFlag() const { return _dividedFlag; }

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

    int _index;
    double _preferredValue = 0.0;
    bool _hasPreferredValue = false;
    bool _fixed = false;
    int _dividedFlag = 1;
    ZorQelString _name;
};

#endif
