#ifndef ZORWBX_H
#define ZORWBX_H

// Umbrella header of the ZorWBx library and its utility library.

#include "ZorWBxExport.h"

#include "qel/ZorQelArray.h"
#include "qel/ZorQelExpressionTerm.h"
#include "qel/ZorQelGetEnv.h"
#include "qel/ZorQelGlobalParameters.h"
#include "qel/ZorQelOperator.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"

#include "values/ZorWBEnum.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBFraction.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBLevel.h"
#include "values/ZorWBValue.h"

#endif
