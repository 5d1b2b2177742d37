#include "expressions/ZorWBBlackBoxOperator.h"

#include <limits>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBFactory.h"

namespace {
const ZorWBValue NoArgument;
}  // namespace

// While the black box runs, it reads the arguments of the calling node.
class ZorWBBlackBoxOperator::CallScope {
  public:
    explicit CallScope(const ZorWBBlackBoxOperator* node)
        : _blackBox(node->_blackBox), _outer(_blackBox ? _blackBox->GetOperator() : nullptr) {
        if (_blackBox) _blackBox->SetOperator(const_cast<ZorWBBlackBoxOperator*>(node));
    }
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
    return ChildValue(i);
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
