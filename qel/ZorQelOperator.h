#ifndef ZORQEL_OPERATOR_H
#define ZORQEL_OPERATOR_H

#include "qel/ZorQelExport.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"

// Base of replayable operators. The host creates an operator, configures it
// and calls Run. When the host has given a replay stream (and the replay
// filter lets this operator through), Run records the operator's input
// before the work and its output after it, as sections of the stream, so
// that the run can be reproduced and compared later.
class ZORQEL_API ZorQelOperator {
  public:
    // The identity of an operator class, shared by its instances.
    class ZORQEL_API OperatorInfo {
      public:
        OperatorInfo(const ZorQelString& name, const ZorQelString& shortName,
                     const ZorQelString& replayKeyword)
            : _name(name), _shortName(shortName), _replayKeyword(replayKeyword) {}
        const ZorQelString& GetName() const { return _name; }
        const ZorQelString& GetShortName() const { return _shortName; }
        const ZorQelString& GetReplayKeyword() const { return _replayKeyword; }

      private:
        ZorQelString _name;
        ZorQelString _shortName;
        ZorQelString _replayKeyword;
    };

    ZorQelOperator() = default;
    ZorQelOperator(const ZorQelOperator&) = delete;
    ZorQelOperator& operator=(const ZorQelOperator&) = delete;

    virtual ~ZorQelOperator() = default;
    virtual void InitWithEnv() {}
    // Asks a running operator to stop at its next check (IsInterrupted).
    virtual void SetInterrupt(bool interrupt) { _interrupted = interrupt; }
    virtual int RunOperator() = 0;
    // Whether this run is recorded: a replay stream is set and the filter is
    // empty or names this operator's short name.
    virtual bool FilterReplay() const;
    virtual int GetVersionOfStream() const { return 1; }
    virtual bool CheckInput(ZorQelStream& /*stream*/) { return true; }
    virtual bool CheckOutput(ZorQelStream& /*stream*/) { return true; }
    // Adds the section "#!OPERATOR" with the replay keyword, the operator's
    // name and short name, the stream version and the level.
    virtual void WriteInput(ZorQelStream& stream);
    // Adds the section "#!RESULT" with the value RunOperator returned.
    virtual void WriteOutput(ZorQelStream& stream);
    virtual ZorQelString GetOperatorName() const = 0;
    virtual ZorQelString GetOperatorShortName() const = 0;
    virtual void SetQelLevel(unsigned int level) { _qelLevel = level; }
    virtual void Remove() { delete this; }
    virtual OperatorInfo& GetOperatorInfo() = 0;

    // Records the input (when replay is on), runs RunOperator, records the
    // output, and returns what RunOperator returned.
    int Run();

    unsigned int GetQelLevel() const { return _qelLevel; }
    bool IsInterrupted() const { return _interrupted; }

    // Recording: the host keeps owning the stream; null turns recording off.
    void SetReplayStream(ZorQelStream* stream) { _replayStream = stream; }
    ZorQelStream* GetReplayStream() const { return _replayStream; }
    // Short names of the operators to record, separated by blanks; empty
    // records every operator.
    void SetReplayFilter(const ZorQelString& shortNames) { _replayFilter = shortNames; }

  private:
    unsigned int _qelLevel = 0;
    bool _interrupted = false;
    int _lastResult = 0;
    ZorQelStream* _replayStream = nullptr;
    ZorQelString _replayFilter;
};

#endif
