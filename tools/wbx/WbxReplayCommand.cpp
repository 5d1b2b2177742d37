// wbx replay FILE: repeats a run recorded by wbx transform --replay. The
// recorded input system is rebuilt into a new factory at the recorded
// behaviour level (that of "#!OPERATOR"), the transformations run again
// with the recorded mode and equations to simplify, and their output
// sections are compared with the recorded ones. Prints "identical" and
// exits 0 when they are; prints "differs: " and the first difference (the
// section, and the line with both texts) and exits 1 otherwise; exits 2 for
// a bad command line or a file that holds no readable recording.

#include "WbxCommand.h"
#include "expressions/ZorWBFactory.h"
#include "qel/ZorQelStorage.h"
#include "symbolic/ZorWBSymbolicReplay.h"

int WbxReplayCommand(WbxContext& context) {
    if (context.arguments.size() != 1) return WbxUsageError(context, "replay needs one FILE");
    const std::string& path = context.arguments[0];
    ZorQelStorage recorded;
    if (!recorded.ReadFile(ZorQelString(path)))
        return WbxUsageError(context, "cannot read '" + path + "' as a replay");
    ZorWBFactory check(ZorWBSymbolicReplay::GetRecordedLevel(recorded));
    ZorWBSymbolicReplay::Input input;
    if (!ZorWBSymbolicReplay::ReadInput(recorded, check, input))
        return WbxUsageError(context, "'" + path + "' holds no recorded transformation");
    ZorQelString difference;
    if (ZorWBSymbolicReplay::Replay(recorded, difference)) {
        context.out << "identical\n";
        return WbxExit::Success;
    }
    context.out << "differs: " << difference.GetString() << "\n";
    return WbxExit::Failure;
}
