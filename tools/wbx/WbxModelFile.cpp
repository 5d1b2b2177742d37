#include "WbxModelFile.h"

#include <algorithm>
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

int WbxReadVariableCommandLine(WbxContext& context, const std::string& command,
                               const std::vector<std::string>& valueOptions,
                               WbxVariableCommandLine& line) {
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool takesValue = argument == "--wrt" || std::find(valueOptions.begin(), valueOptions.end(),
                                                           argument) != valueOptions.end();
        if (takesValue) {
            if (i + 1 == arguments.size())
                return WbxUsageError(
                    context, argument + (argument == "--wrt" ? " needs a NAME" : " needs a VALUE"));
            const std::string& value = arguments[++i];
            if (argument == "--wrt")
                line.name = value;
            else
                line.values[argument] = value;
        } else if (argument.rfind("--", 0) == 0 || !line.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            line.path = argument;
        }
    }
    if (line.path.empty() || line.name.empty())
        return WbxUsageError(context, command + " needs FILE --wrt NAME");
    return WbxExit::Success;
}

int WbxLoadVariable(WbxContext& context, const WbxVariableCommandLine& line, WbxModelFile& file,
                    ZorWBVariable*& variable) {
    if (file.Load(context, line.path) != WbxExit::Success) return WbxExit::Usage;
    variable = file.GetFactory().GetVariable(ZorQelString(line.name));
    if (!variable) return WbxUsageError(context, "unknown variable '" + line.name + "'");
    return WbxExit::Success;
}
