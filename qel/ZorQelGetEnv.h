#ifndef ZORQEL_GETENV_H
#define ZORQEL_GETENV_H

#include <climits>

#include "qel/ZorQelExport.h"
#include "qel/ZorQelString.h"

// Largest and smallest values of the platform's 32-bit signed integer.
constexpr int ZorQelintMax = INT_MAX;
constexpr int ZorQelintMin = INT_MIN;

// The value of an environment variable, empty when it is unset.
ZORQEL_API ZorQelString ZorQelGetEnv(const char* name);

// The integer value of an environment variable: 0 when it is unset, empty or
// not entirely a decimal integer that fits in an int.
ZORQEL_API int ZorQelGetEnvI(const char* name);

// Joins a directory and a file name with one separator ('/', or '\' on
// Windows); an empty directory gives the file name alone.
ZORQEL_API ZorQelString ZorQelMakePath(const ZorQelString& directory, const ZorQelString& fileName);

#endif
