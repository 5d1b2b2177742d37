#include "qel/ZorQelOperator.h"

#include <sstream>

bool ZorQelOperator::FilterReplay() const {
    if (!_replayStream) return false;
    if (_replayFilter.IsEmpty()) return true;
    std::istringstream names(_replayFilter.GetStdString());
    std::string name;
    while (names >> name) {
        if (GetOperatorShortName() == name.c_str()) return true;
    }
    return false;
}

void ZorQelOperator::WriteInput(ZorQelStream& stream) {
    OperatorInfo& info = GetOperatorInfo();
    ZorQelString header = info.GetReplayKeyword();
    header.AppendChar(' ').Append(GetOperatorName()).AppendChar(' ').Append(GetOperatorShortName());
    header.AppendChar(' ').AppendInt(GetVersionOfStream()).AppendChar(' ').AppendInt(_qelLevel);
    stream.GetStorage().AddSection("#!OPERATOR", header, "", ZorQelStorage::InputPart,
                                   ZorQelStorage::ReplaceSection);
}

void ZorQelOperator::WriteOutput(ZorQelStream& stream) {
    stream.GetStorage().AddSection("#!RESULT", ZorQelString::FromInt(_lastResult), "",
                                   ZorQelStorage::OutputPart, ZorQelStorage::ReplaceSection);
}

int ZorQelOperator::Run() {
    bool record = FilterReplay();
    if (record) WriteInput(*_replayStream);
    _lastResult = RunOperator();
    if (record) WriteOutput(*_replayStream);
    return _lastResult;
}
