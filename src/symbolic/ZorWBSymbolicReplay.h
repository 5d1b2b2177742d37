#ifndef ZORWB_SYMBOLICREPLAY_H
#define ZORWB_SYMBOLICREPLAY_H

#include "ZorWBxExport.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelString.h"

class ZorWBFactory;

// Repeats a recorded run of the symbolic transformations: the input part of
// a recording holds the operator's identity and level ("#!OPERATOR"), the
// equation system and "#!MODE"; the output part holds "#!RESULT", the
// optional "#!INCONSISTENCIES" and the transformed system.
class ZORWBX_API ZorWBSymbolicReplay {
  public:
    struct Input {
        unsigned int mode = 0;
        unsigned int operatorLevel = 0;
        // Ids of the equations to simplify (-1 for a recorded name that named
        // no equation).
        ZorQelIntArray equationsToSimplify;
    };

    // The behaviour level of the recorded run, which a replay must run at:
    // the operator's level of "#!OPERATOR" (a host creates the operator at
    // its factory's level, as wbx transform does), or, without one, the
    // level of a default factory.
    static unsigned int GetRecordedLevel(const ZorQelStorage& recorded);

    // Rebuilds the recorded input system into factory, which should be
    // fresh and made at GetRecordedLevel, and reads the mode, the operator's
    // level (0 without one) and the list of equations to simplify. False
    // when "#!MODE" is missing or unreadable, or the system does not read
    // back.
    static bool ReadInput(const ZorQelStorage& recorded, ZorWBFactory& factory, Input& input);

    // Runs the transformations again on the recorded input, in a new factory
    // at the recorded level, and compares the output sections with the
    // recorded ones. True when they are identical; otherwise difference
    // describes the first difference.
    static bool Replay(const ZorQelStorage& recorded, ZorQelString& difference);

    // The first difference between the output parts of two recordings, or
    // an empty text when they are identical: a section missing on one side,
    // a different header, or the first different body line, quoted.
    static ZorQelString FirstDifference(const ZorQelStorage& recorded,
                                        const ZorQelStorage& replayed);
};

#endif
