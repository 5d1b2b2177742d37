#ifndef ZORQEL_GLOBALPARAMETERS_H
#define ZORQEL_GLOBALPARAMETERS_H

#include "qel/ZorQelExport.h"
#include "qel/ZorQelStream.h"

// The process-wide settings that the host may change before it creates
// factories and operators: the behaviour level of new factories, the choice of
// the old symbolic transformations, and the trace levels and stream.
//
// The default behaviour level is 0xFFFFFFFF, the "all features" level: every
// behaviour that changed between releases takes its newest form, and nodes do
// not keep a copy of their previous value. A host that replays data recorded
// under an older release sets that release's level here (or passes it to the
// factory directly).
class ZORQEL_API ZorQelGlobalParameters {
  public:
    static constexpr unsigned int DefaultConfigurationLevel = 0xFFFFFFFFu;

    // The one instance, created on first use.
    static ZorQelGlobalParameters& GetGlobalParameters();

    unsigned int GetQelFullOpenConfigurationLevel() const { return _configurationLevel; }
    void SetQelFullOpenConfigurationLevel(unsigned int level) { _configurationLevel = level; }

    bool IsUseOldST() const { return _useOldST; }
    void SetUseOldST(bool useOld) { _useOldST = useOld; }

    // General trace level (0 off); read by the unit checks.
    int GetTraceLevel() const { return _traceLevel; }
    void SetTraceLevel(int level) { _traceLevel = level; }

    // Trace level of the symbolic transformations (0 off, 1 and 2 more detail).
    int GetTransformationTraceLevel() const { return _transformationTraceLevel; }
    void SetTransformationTraceLevel(int level) { _transformationTraceLevel = level; }

    // Where traces go: the standard output unless the host gives a stream,
    // which it keeps owning and must keep open while it is set.
    ZorQelStream* GetTraceStream();
    void SetTraceStream(ZorQelStream* stream) { _hostTraceStream = stream; }

    // Restores every default (used by tests and by hosts that start over).
    void Reset();

  private:
    ZorQelGlobalParameters();

    unsigned int _configurationLevel = DefaultConfigurationLevel;
    bool _useOldST = false;
    int _traceLevel = 0;
    int _transformationTraceLevel = 0;
    ZorQelStream* _hostTraceStream = nullptr;
    ZorQelStream _standardOutput;
};

#endif
