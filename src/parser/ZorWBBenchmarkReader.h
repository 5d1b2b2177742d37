#ifndef ZORWB_BENCHMARKREADER_H
#define ZORWB_BENCHMARKREADER_H

#include "ZorWBxExport.h"

class ZorWBFactory;
class ZorWBParserMessenger;

// Reads the plain text format of the public interval benchmark problems
// into a factory:
//
//   Constants  b0 = 2; n = 8;                 (optional)
//   Variables  x in [-1e8, 1e8]; y; v[n] in [0, 2*pi];
//   Constraints
//     x^2 + y^2 = 1;  x - y <= v(1);  ...
//   end
//
// Keywords in any letter case; statements end with ';' (variables may also
// be separated by ','); comments are // to the end of the line and /* */.
// Expressions: numbers, + - * / ^, parentheses, pi, the constants, the
// variables, and the functions sqr, sqrt, exp, ln and log (both natural),
// sin, cos, tan, asin, acos, atan, atan2, sinh, cosh, tanh, asinh, acosh,
// atanh, abs, min, max. A vector v[n] gives the variables "v(1)" .. "v(n)",
// read as v(i) (counted from 1) or v[i] (counted from 0), i a constant
// expression. Loops, matrices and function definitions are refused with a
// message.
//
// Each variable is created with its domain as its value: the real interval
// of its bounds (a bound computed from an expression is widened by two units
// in the last place, so that the rounding of the computation loses nothing;
// a bound written as a number is that number), or undefined (the whole real
// line) without bounds. Each constraint becomes an equation whose root is
// left - right (left alone when right is the number 0), of type = 0, <= 0,
// >= 0, < 0 or > 0.
class ZORWBX_API ZorWBBenchmarkReader {
  public:
    // Whether the text's first word, after blanks and comments, is
    // "Constants" or "Variables" (any letter case).
    static bool IsBenchmarkText(const char* text);

    // Reads text into factory: ZorWBParserResult::Success, or Failure with
    // one located message in the messenger (lines counted from 1, columns
    // from 0); the factory then holds what was read before the error. Nesting
    // deeper than 1000 brackets or calls is refused.
    static int Read(const char* text, ZorWBFactory& factory, ZorWBParserMessenger& messenger);
};

#endif
