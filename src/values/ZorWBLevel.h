#ifndef ZORWB_LEVEL_H
#define ZORWB_LEVEL_H

#include "ZorWBxExport.h"

// Behaviour levels. A level is a release number, major release in the high
// 16 bits and minor number in the low 16 bits. Behaviour that changed between
// releases is kept, and every place that depends on it asks ZorWBCheckLevel.

// Ends a threshold list.
constexpr unsigned int ZorWBLevelListEnd = 65535u;

// True when the level reaches a threshold of the list (closed by
// ZorWBLevelListEnd): the first threshold when level >= threshold, every later
// one when level >= threshold within the same major release. A threshold of
// 0xFFFFFFFF is never reached; a null or empty list answers false.
ZORWBX_API bool ZorWBCheckLevel(unsigned int level, const unsigned int* thresholds);

// The single-threshold form used by most of the library.
ZORWBX_API bool ZorWBCheckLevel(unsigned int level, unsigned int threshold);

// The thresholds of the library, named after the behaviour that starts there.
namespace ZorWBLevel {
// The "all features" level: nodes keep no previous value.
constexpr unsigned int All = 0xFFFFFFFFu;
// Min and Max nodes can be differentiated.
constexpr unsigned int DifferentiateMinMax = 0x02DF0000u;
// Buffer resets travel to parents; property and constant changes reset buffers;
// black-box nodes are not buffered.
constexpr unsigned int ResetBufferUpward = 0x02E80000u;
// IsZeroOrOne by identity with the predefined constants; the general chain
// rule; the derivative of a constant is the shared Zero.
constexpr unsigned int PredefinedZeroOne = 0x02F30000u;
// Two black-box nodes are equal only when they call the same black box.
constexpr unsigned int BlackBoxEqualityByObject = 0x02F90000u;
// IfThenElse nodes keep their three children when binarised.
constexpr unsigned int KeepIfThenElseTernary = 0x03070000u;
// The simplifier's final normalisation is no longer applied.
constexpr unsigned int NoFinalNormalisation = 0x03100000u;
// New partial evaluation; the three-child Round; incompatible kinds in
// containment and equality tests answer false without an error.
constexpr unsigned int NewPartialEval = 0x031F0000u;
constexpr unsigned int RoundWithThreeChildren = 0x031F0000u;
constexpr unsigned int QuietIncompatibleTests = 0x031F0000u;
// CreateConstantPi and its kin return the shared predefined constants.
constexpr unsigned int SharedPiConstants = 0x03230000u;
// Fractions combine with other kinds as reals; linear-form coefficients that
// are fractions are compared by their real reading.
constexpr unsigned int FractionAsReal = 0x03240000u;
// Up to three rounds of simplification.
constexpr unsigned int ThreeSimplifyRounds = 0x03260000u;
// The simplifier ends with the pass that merges like terms.
constexpr unsigned int MergeLikeTermsPass = 0x03280000u;
// An empty segment function makes its argument unbuffered.
constexpr unsigned int EmptySegmentNoBuffer = 0x033E0000u;
}  // namespace ZorWBLevel

#endif
