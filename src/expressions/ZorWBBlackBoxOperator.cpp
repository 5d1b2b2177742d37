#include "expressions/ZorWBBlackBoxOperator.h"

#include <exception>
#include <limits>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBTermBuilder.h"

namespace {
const ZorWBValue NoArgument;
}  // namespace

// While the black box runs, it reads the arguments of the calling node.
class ZorWBBlackBoxOperator::CallScope {
  public:
    CallScope(ZorWBBlackBox* bb, const ZorWBBlackBoxOperator* node)
        : _blackBox(bb), _outer(_blackBox ? _blackBox->GetOperator() : nullptr) {
        if (_blackBox) _blackBox->SetOperator(const_cast<ZorWBBlackBoxOperator*>(node));
    }
    explicit CallScope(const ZorWBBlackBoxOperator* node) : CallScope(node->_blackBox, node) {}
    ~CallScope() {
        if (_blackBox) _blackBox->SetOperator(_outer);
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

  private:
    ZorWBBlackBox* _blackBox;
    ZorWBBlackBoxOperator* _outer;
};

ZorWBBlackBoxOperator::ZorWBBlackBoxOperator(ZorWBFactory* factory, int tag, int n,
                                             ZorWBExpression* const* args, ZorWBBlackBox* bb,
                                             int serialNumber)
    : ZorWBOperator(factory, ZorWBExpressionType::BlackBox, tag, n, args),
      _blackBox(bb),
      _serialNumber(serialNumber) {}

ZorWBBlackBoxOperator::~ZorWBBlackBoxOperator() {
    RemoveBlackBox(true);
}

void ZorWBBlackBoxOperator::RemoveBlackBox(bool clearOperator) {
    NoteStructureChange();
    if (clearOperator && _blackBox && _blackBox->GetOperator() == this)
        _blackBox->SetOperator(nullptr);
    _blackBox = nullptr;
}

ZorQelString ZorWBBlackBoxOperator::GetBlackBoxName() const {
    return _blackBox ? _blackBox->GetName() : GetDefaultBlackBoxName(this);
}

void ZorWBBlackBoxOperator::SetBlackBoxName(const ZorQelString& name) {
    if (_blackBox) _blackBox->SetName(name);
}

ZorQelString ZorWBBlackBoxOperator::GetDefaultBlackBoxName(const ZorWBBlackBoxOperator* node) {
    ZorQelString name("BBx");
    if (node) name += node->_serialNumber;
    return name;
}

const ZorWBValue& ZorWBBlackBoxOperator::GetArgumentValue(int i) const {
    if (i < 0 || i >= GetNbOfChildren()) return NoArgument;
    return _givenArguments ? _givenArguments[i] : ChildValue(i);
}

double ZorWBBlackBoxOperator::CallWith(ZorWBBlackBox* bb, const ZorWBValue* arguments) const {
    if (!bb || !arguments) return std::numeric_limits<double>::quiet_NaN();
    const ZorWBValue* outer = _givenArguments;
    _givenArguments = arguments;
    double result;
    {
        CallScope scope(bb, this);
        result = bb->Eval();
    }
    _givenArguments = outer;
    return result;
}

bool ZorWBBlackBoxOperator::HasSameHead(const ZorWBOperator* other) const {
    if (!ZorWBOperator::HasSameHead(other)) return false;
    if (!GetEnvironment().CheckLevel(ZorWBLevel::BlackBoxEqualityByObject)) return true;
    return static_cast<const ZorWBBlackBoxOperator*>(other)->_blackBox == _blackBox;
}

bool ZorWBBlackBoxOperator::ValidateAllowBufferEval() const {
    if (GetEnvironment().CheckLevel(ZorWBLevel::ResetBufferUpward)) return false;
    return ZorWBOperator::ValidateAllowBufferEval();
}

void ZorWBBlackBoxOperator::DoEval(ZorWBValue& value) const {
    if (!_blackBox) {
        value = ZorWBValue();
        return;
    }
    CallScope scope(this);
    _blackBox->Eval(value);
}

double ZorWBBlackBoxOperator::DoEval() const {
    if (!_blackBox) return std::numeric_limits<double>::quiet_NaN();
    CallScope scope(this);
    return _blackBox->Eval();
}

// ------------------------------------------------------------ derivatives

// From the level ZorWBLevel::PredefinedZeroOne on: the chain rule, with one
// term per argument (DifferentiateChild). Below it, the older rule: by a
// variable that is one of the arguments, a call of the derivative black box
// of this black box by that variable (the one registered first, else a new
// internal one); by any other variable, none (null).
ZorWBExpression* ZorWBBlackBoxOperator::DifferentiateProtected(ZorWBVariable* variable) {
    if (!variable) return this;
    if (GetEnvironment().CheckLevel(ZorWBLevel::PredefinedZeroOne))
        return DoDifferentiate(variable);
    for (int i = 0; i < GetNbOfChildren(); ++i) {
        if (GetChild(i) == variable) return GetFactory()->DeclareDerivativeCall(this, variable);
    }
    return nullptr;
}

// The partial derivative by argument i is a call, on the same arguments, of
// an internal derivative black box by that argument (made once per black
// box and argument): it moves argument i by the step and calls this node's
// black box. The term is that call times dChild.
ZorWBExpression* ZorWBBlackBoxOperator::DifferentiateChild(int i, ZorWBExpression* dChild) try {
    if (!dChild || i < 0 || i >= GetNbOfChildren()) return nullptr;
    ZorWBFactory& factory = *GetFactory();
    return ZorWBTermBuilder(factory).Product(
        {factory.DeclarePartialDerivativeCall(this, i), dChild});
} catch (const std::exception&) {
    return nullptr;
}
