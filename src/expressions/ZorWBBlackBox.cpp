#include "expressions/ZorWBBlackBox.h"

#include <limits>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBRealFunctions.h"

namespace {
const ZorWBValue UndefinedArgument;
}

int ZorWBBlackBox::GetNbOfArguments() const {
    return _operator ? _operator->GetNbOfChildren() : 0;
}

const ZorWBValue& ZorWBBlackBox::GetArgumentValue(int i) const {
    return _operator ? _operator->GetArgumentValue(i) : UndefinedArgument;
}

double ZorWBBlackBox::GetArgument(int i) const {
    if (i < 0 || i >= GetNbOfArguments()) return std::numeric_limits<double>::quiet_NaN();
    return ZorWBRealReading(GetArgumentValue(i));
}

double ZorWBBBx::Eval() {
    return std::numeric_limits<double>::quiet_NaN();
}
