#include "WbxModelFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserResult.h"

namespace {

const char* const ConversionError = "conversion error, the factory cannot build this";

int CannotRead(WbxContext& context, const std::string& path, int error) {
    return WbxUsageError(context,
                         "cannot read '" + path + "': " + std::string(std::strerror(error)));
}

}  // namespace

WbxModelFile::~WbxModelFile() {
    // The black boxes the factory does not call are not owned by it.
    for (ZorWBBlackBox* blackBox : _blackBoxes) {
        if (!blackBox->IsInternal()) delete blackBox;
    }
}

int WbxModelFile::Load(WbxContext& context, const std::string& path) {
    _path = path;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return CannotRead(context, path, errno);
    ZorQelIntArray ids;
    ZorWBParser::Parse(file, _model, ids, _messenger, &_blackBoxes);
    int readError = std::ferror(file) ? errno : 0;
    std::fclose(file);
    if (readError != 0) return CannotRead(context, path, readError);
    if (_messenger.GetErrorNumber() == 0) {
        ZorQelIntArray equationIds;
        if (_model.FillFactory(_factory, equationIds) != ZorWBParserResult::Success) {
            const ZorWBNode* failed = _model.GetFailedNode();
            _messenger.ReportError(failed ? &failed->GetLocation() : nullptr, ConversionError);
        }
        ZorWBParser::HandOverBlackBoxes(_blackBoxes, 0, _factory);
    }
    for (int i = 0; i < _messenger.GetErrorNumber(); ++i)
        WbxReportDiagnostic(context, _path, _messenger, i);
    return _messenger.GetErrorNumber() == 0 ? WbxExit::Success : WbxExit::Failure;
}

bool WbxModelFile::HasEquations(WbxContext& context, const char* action) {
    if (_factory.GetNbOfEquations() > 0) return true;
    context.err << "wbx: '" << _path << "' holds no equation to " << action << "\n";
    return false;
}

void WbxReportDiagnostic(WbxContext& context, const std::string& source,
                         const ZorWBParserMessenger& messenger, int i) {
    int code = 0;
    ZorWBLocation location;
    bool placed = messenger.GetError(i, code, location) == ZorWBParserResult::Success;
    context.err << source << ":";
    if (placed)
        context.err << location.GetFirstLine() << ":"
                    << static_cast<long long>(location.GetFirstColumn()) + 1 << ":";
    context.err << " " << messenger.GetMessage(i).GetString() << " [code " << code << "]\n";
}
