#ifndef ZORWB_VALUETEXT_H
#define ZORWB_VALUETEXT_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

// The one-line text of values used by the replay sections and the graph
// dumps, and its reading:
//   undefined     any
//   integer       5, (-3)              negative scalars in parentheses
//   real          0.5, (-2.5)          17 significant digits
//   fraction      Pi, DTOR, RTOD, Frac(1, 2), Frac(1, 3, 2)
//   intervals     [1, 2], [-0.5, 2.25]
//   enumerations  {1, 2, 5}            the stored entries; {} for any and nil
//   boolean       False, True          every state but false reads "True"
// With marked reals, a real that would look like an integer gets ".0"
// ("2.0", "[1.0, 2.5]"), so that the text alone tells integers from reals.
class ZORWBX_API ZorWBValueText {
  public:
    static ZorQelString Write(const ZorWBValue& value, bool markReals);
    // Frac(numerator, denominator[, power]) with the given head, or the
    // names Pi, DTOR and RTOD.
    static ZorQelString WriteFraction(const ZorWBFraction& fraction, const ZorQelString& head);

    // Reads a text of the kind given, or, with kind -1, of the kind that the
    // text shows (integers and reals told apart by their digits; "{}" reads
    // as an integer enumeration "any"). "Frac" is read in any letter case.
    // False, value untouched, when the text does not read.
    static bool Read(const ZorQelString& text, int kind, ZorWBValue& value);
    // Reads a number: an integer or a real, each possibly in parentheses;
    // real holds its reading as a real in both cases ("-0" is minus zero).
    static bool ReadNumber(const ZorQelString& text, bool& isInteger, int& integer, double& real);
    // Reads Pi, DTOR, RTOD or Frac(n, d[, p]) (any letter case of "Frac").
    static bool ReadFraction(const ZorQelString& text, ZorWBFraction& fraction);

    // Reads a value of the given kind as the equation printer writes it
    // (ZorWBEquationPrinter::PrintValue): "undefined", 42, 2.0, 1e999,
    // (0.0 / 0.0), Pi, (1/2*Pi), (180*Pi^-1), [low, high], {a, b},
    // {low .. high}, {any}, {}, true, false, unknown, empty.
    static bool ReadPrinted(const ZorQelString& text, int kind, ZorWBValue& value);
};

#endif
