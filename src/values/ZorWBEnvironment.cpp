#include "values/ZorWBEnvironment.h"

#include "qel/ZorQelGlobalParameters.h"

ZorWBEnvironment::ZorWBEnvironment(unsigned int level)
    : _useOldSymbolicTransformations(
          ZorQelGlobalParameters::GetGlobalParameters().IsUseOldST() ? 1 : 0),
      _level(level) {}

ZorWBEnvironment::ZorWBEnvironment()
    : ZorWBEnvironment(
          ZorQelGlobalParameters::GetGlobalParameters().GetQelFullOpenConfigurationLevel()) {}
