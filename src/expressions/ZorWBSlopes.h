#ifndef ZORWB_SLOPES_H
#define ZORWB_SLOPES_H

#include <cstring>

#include "expressions/ZorWBExpressionType.h"
#include "values/ZorWBInterval.h"

class ZorWBEnvironment;
class ZorWBExpression;
class ZorWBOperator;
class ZorWBValue;

// The partial derivatives of an operator by each of its children at a
// point, or their enclosures over a box: the rules by which the symbolic
// derivatives are built (ZorWBOperator::DifferentiateChild), evaluated
// rather than built, for the automatic differentiation of compiled
// functions. The conventions are those of the symbolic rules: a Min or Max
// follows its first extremum, |x| has slope 1 at 0, rounding functions and
// comparisons have slope 0, a piece is chosen by the same comparisons
// (under the environment's tolerance), and an IfThenElse passes the slope
// of the branch its condition chooses (NaN for both where the condition is
// NaN).

// A child whose term the symbolic derivative leaves out (a piece that the
// point does not select, a function constant by pieces, a comparison)
// gets no slope: a marker, which the sweeps pass nothing through, not even
// 0 times an infinite slope further down, as the symbolic derivative does
// not evaluate the term at all. Over a box, only a piece that no point
// selects gets it.
constexpr unsigned long long ZorWBNoSlopeBits = 0x7FF80000000B10CAull;
inline bool ZorWBIsNoSlope(double slope) {
    unsigned long long bits;
    std::memcpy(&bits, &slope, sizeof bits);
    return bits == ZorWBNoSlopeBits;
}
inline bool ZorWBIsNoSlope(const ZorWBRealInterval& slope) {
    return ZorWBIsNoSlope(slope.low);
}
double ZorWBRealNoSlope();
ZorWBRealInterval ZorWBIntervalNoSlope();

// The real reading of a constant node holding an exact number (integer,
// real or fraction): how the rules, symbolic or evaluated, recognise a
// constant exponent or step.
bool ZorWBExactNumber(const ZorWBExpression* e, double& number);

// Whether the partial derivatives of the type have a rule here: every
// operator but black boxes and Integrate.
bool ZorWBHasSlopes(ZorWBExpressionType type);

// The partial derivatives of node by its n children, whose reals are
// registers[arguments[0 .. n)], node's own real being value, into
// slopes[0 .. n).
void ZorWBRealSlopes(const ZorWBOperator& node, const double* registers, const int* arguments,
                     int n, double value, double tolerance, double* slopes);

// Enclosures of the partial derivatives of node over the values of its n
// children, registers[arguments[0 .. n)] (of any kind, read as real
// intervals), node's own value being value; computed with the interval
// functions in scratch, whose error word they leave as they please. An
// enclosure may be the whole line.
void ZorWBIntervalSlopes(const ZorWBOperator& node, const ZorWBValue* registers,
                         const int* arguments, int n, const ZorWBValue& value,
                         const ZorWBEnvironment& scratch, ZorWBRealInterval* slopes);

#endif
