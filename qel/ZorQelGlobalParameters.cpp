#include "qel/ZorQelGlobalParameters.h"

ZorQelGlobalParameters::ZorQelGlobalParameters() {
    _standardOutput.OpenStandardOutput();
}

ZorQelGlobalParameters& ZorQelGlobalParameters::GetGlobalParameters() {
    static ZorQelGlobalParameters parameters;
    return parameters;
}

ZorQelStream* ZorQelGlobalParameters::GetTraceStream() {
    return _hostTraceStream ? _hostTraceStream : &_standardOutput;
}

void ZorQelGlobalParameters::Reset() {
    _configurationLevel = DefaultConfigurationLevel;
    _useOldST = false;
    _traceLevel = 0;
    _transformationTraceLevel = 0;
    _hostTraceStream = nullptr;
}
