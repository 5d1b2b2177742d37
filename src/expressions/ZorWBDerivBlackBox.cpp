#include "expressions/ZorWBDerivBlackBox.h"

#include <cmath>
#include <exception>
#include <limits>
#include <vector>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBRealFunctions.h"
#include "expressions/ZorWBVariable.h"

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// Moves a variable (none: nothing) through its value assignment, which
// invalidates the buffers above it, and gives it its whole former value
// back at the end of the scope.
class VariableShift {
  public:
    explicit VariableShift(ZorWBVariable* variable) : _variable(variable) {
        if (_variable) _former = _variable->GetExprValue();
    }
    ~VariableShift() {
        if (_variable) _variable->SetValue(_former, _variable);
    }
    VariableShift(const VariableShift&) = delete;
    VariableShift& operator=(const VariableShift&) = delete;
    void MoveTo(double x) {
        if (_variable) _variable->SetValue(ZorWBValue(x), _variable);
    }

  private:
    ZorWBVariable* _variable;
    ZorWBValue _former;
};

}  // namespace

ZorWBDerivBlackBox::ZorWBDerivBlackBox(ZorWBBlackBox* primitive, ZorWBVariable* variable)
    : _primitive(primitive), _variable(variable) {
    if (!primitive || !variable) return;
    _step = variable->GetEnvironment().GetBBPrecision();
    ZorQelString name("d");
    name += variable->GetName();
    name += primitive->GetName();
    SetName(name);
}

ZorWBDerivBlackBox::ZorWBDerivBlackBox(ZorWBBlackBox* primitive, int argument, double step)
    : _primitive(primitive), _argument(argument), _step(step) {
    if (!primitive) return;
    ZorQelString name("darg");
    name += argument;
    name += primitive->GetName();
    SetName(name);
}

double ZorWBDerivBlackBox::Eval() try {
    ZorWBBlackBoxOperator* call = GetOperator();
    if (!_primitive || !call || !(_step > 0.0) || !std::isfinite(_step)) return NaN;
    return _variable ? ByVariable(*call) : ByArgument(*call);
} catch (const std::exception&) {
    return NaN;
}

double ZorWBDerivBlackBox::Difference(double below, double above) const {
    return (above - below) / (2.0 * _step);
}

double ZorWBDerivBlackBox::ByVariable(ZorWBBlackBoxOperator& call) {
    double x0 = _variable->Eval();
    if (std::isnan(x0)) return NaN;
    std::vector<ZorWBValue> arguments(static_cast<std::size_t>(call.GetNbOfChildren()));
    VariableShift shift(_variable);
    auto primitiveAt = [&](double x) {
        shift.MoveTo(x);
        for (int j = 0; j < call.GetNbOfChildren(); ++j)
            arguments[static_cast<std::size_t>(j)] = call.GetChild(j)->GetValue();
        return call.CallWith(_primitive, arguments.data());
    };
    double below = primitiveAt(x0 - _step);
    double above = primitiveAt(x0 + _step);
    return Difference(below, above);
}

// The other arguments keep their values; an argument that is a variable
// moves through the variable too, for a primitive that reads it there.
double ZorWBDerivBlackBox::ByArgument(ZorWBBlackBoxOperator& call) {
    int n = call.GetNbOfChildren();
    if (_argument < 0 || _argument >= n) return NaN;
    std::vector<ZorWBValue> arguments;
    arguments.reserve(static_cast<std::size_t>(n));
    for (int j = 0; j < n; ++j)
        arguments.push_back(call.GetArgumentValue(j));
    ZorWBValue& moved = arguments[static_cast<std::size_t>(_argument)];
    double a = ZorWBRealReading(moved);
    if (std::isnan(a)) return NaN;
    ZorWBExpression* argument = call.GetChild(_argument);
    VariableShift shift(argument->GetType() == ZorWBExpressionType::Variable
                            ? static_cast<ZorWBVariable*>(argument)
                            : nullptr);
    auto primitiveAt = [&](double x) {
        moved = ZorWBValue(x);
        shift.MoveTo(x);
        return call.CallWith(_primitive, arguments.data());
    };
    double below = primitiveAt(a - _step);
    double above = primitiveAt(a + _step);
    return Difference(below, above);
}
