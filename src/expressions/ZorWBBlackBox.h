#ifndef ZORWB_BLACKBOX_H
#define ZORWB_BLACKBOX_H

#include "ZorWBxExport.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

class ZorWBBlackBoxOperator;
class ZorWBFactory;

// A function supplied by the host whose formula the library cannot see. The
// host derives from it and provides the evaluation; the library calls it from
// the ZorWBBlackBoxOperator node that stands for the call in a graph.
class ZORWBX_API ZorWBBlackBox {
  public:
    ZorWBBlackBox() = default;
    ZorWBBlackBox(const ZorWBBlackBox&) = delete;
    ZorWBBlackBox& operator=(const ZorWBBlackBox&) = delete;
    virtual ~ZorWBBlackBox() = default;

    virtual void Eval(ZorWBValue& value) = 0;
    virtual double Eval() = 0;
    virtual bool IsADerivative() const { return false; }

    const ZorQelString& GetName() const { return _name; }
    // The name, and whether one was set other than the default "BBx".
    const ZorQelString& GetName(bool& isSet) const {
        isSet = _nameSet;
        return _name;
    }
    void SetName(const ZorQelString& name) {
        _name = name;
        _nameSet = true;
    }

    ZorWBBlackBoxOperator* GetOperator() const { return _operator; }

    // The arguments of the running call, as evaluated by the calling node
    // before it called Eval: their number, their values (undefined outside
    // the arguments or without a node) and their real readings (NaN there).
    int GetNbOfArguments() const;
    const ZorWBValue& GetArgumentValue(int i) const;
    double GetArgument(int i) const;
    bool IsInternal() const { return _internal; }
    void SetInternal() { _internal = true; }
    void SetExternal() { _internal = false; }

  private:
    friend class ZorWBFactory;
    friend class ZorWBBlackBoxOperator;
    void SetOperator(ZorWBBlackBoxOperator* node) { _operator = node; }
    void ClearName() { SetDefaultName("BBx"); }
    // A name given by the library; GetName(isSet) still answers false.
    void SetDefaultName(const ZorQelString& name) {
        _name = name;
        _nameSet = false;
    }

    ZorWBBlackBoxOperator* _operator = nullptr;
    ZorQelString _name = "BBx";
    bool _nameSet = false;
    bool _internal = false;
};

// A black box of reals: Eval(value) stores the real that Eval() returns.
// The library's own instances (made by the parser for calls such as f(x))
// return NaN until a host gives them a body by deriving.
class ZORWBX_API ZorWBBBx : public ZorWBBlackBox {
  public:
    ZorWBBBx() = default;
    explicit ZorWBBBx(const ZorQelString& name) { SetName(name); }
    void Eval(ZorWBValue& value) override { value.Set(Eval()); }
    double Eval() override;
};

using ZorQelListPZorWBBlackBox = ZorQelArray<ZorWBBlackBox*>;

#endif
