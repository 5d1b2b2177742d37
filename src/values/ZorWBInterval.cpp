#include "values/ZorWBInterval.h"

const ZorWBIntegerInterval ZorWBInteger_Any = {-ZorWBIntegerMax, ZorWBIntegerMax};
const ZorWBIntegerInterval ZorWBInteger_Nil = {ZorWBIntegerMax, -ZorWBIntegerMax};
const ZorWBRealInterval ZorWBReal_Any = {-ZorWBRealLimit, ZorWBRealLimit};
const ZorWBRealInterval ZorWBReal_Nil = {ZorWBRealLimit, -ZorWBRealLimit};
