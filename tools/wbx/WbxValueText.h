#ifndef WBX_VALUE_TEXT_H
#define WBX_VALUE_TEXT_H

#include <string>

#include "values/ZorWBValue.h"

// Reads a value as the command line writes it, whatever the locale:
//   an integer            42, -7 (beyond the finite integers: a real)
//   a real                2.5, -1e-3, .5, 3.0
//   a real interval       [low, high] with low <= high, e.g. [0, 2.5]
//   an enumeration        {a, b, c}: of integers when all are integers, of
//                         reals otherwise
//   a boolean             true, false
// Blanks around the parts are allowed. False, value untouched, for any other
// text.
bool WbxReadValue(const std::string& text, ZorWBValue& value);

// The text without the blanks (by default spaces and tabs) around it.
std::string WbxTrim(const std::string& text, const char* blanks = " \t");

// The text as a JSON string: in double quotes, with quotes and backslashes
// escaped and control characters as \u00XX.
std::string WbxJsonString(const std::string& text);

#endif
