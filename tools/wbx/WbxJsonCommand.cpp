// wbx json FILE [--version N] [-o OUT]: the JSON document of the roots of
// every equation of a model (WBx2JSON, stream version N from 0 to 3, 3 by
// default).
//
// Standard output gets the document alone, on one line, so that it can be
// piped into JSON tools: the tool routes the library's echo (the line
// "Stream of expression in JSON format" and the document) away, and does
// not write the character of code 0 that ends the library's string. With
// -o OUT the document goes into the file OUT (followed by a line end) and
// standard output stays empty.
//
// The library's writer puts names between quotes as they are, so a name
// holding a character that JSON must escape (a black box called "f, as the
// language allows) would make a document that is not JSON: such a model is
// refused with one line, "wbx: 'FILE' cannot be written as JSON: the name
// 'NAME' holds a character that JSON must escape", and nothing on standard
// output.
//
// Exit status: 0; 1 when the model holds no equation, a name that JSON must
// escape or a node that cannot be written; 2 for a bad command line, a file
// that cannot be read or has diagnostics, or an OUT that cannot be written.

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBVariable.h"
#include "output/WBx2JSON.h"

namespace {

// The writer as the tool uses it: any stream version, no echo.
class ToolJsonWriter : public WBx2JSON {
  public:
    ToolJsonWriter(const ZorWBFactory& factory, int version) : WBx2JSON(factory) {
        ForceVersionOfStream(version);
    }

  protected:
    void EchoDocument(const ZorQelString& /*text*/) const override {}
};

struct Options {
    std::string path;
    std::string output;
    int version = WBx2JSON::GetVersionOfStreamDefault();
};

// Characters that a JSON string holds only escaped.
bool NeedsJsonEscape(const ZorQelString& name) {
    for (unsigned char c : name.GetStdString())
        if (c == '"' || c == '\\' || c < 0x20) return true;
    return false;
}

// The first name of a variable or black box that the document would hold
// unescaped; null when there is none.
const ZorQelString* NameJsonCannotHold(const ZorWBFactory& factory) {
    for (int i = 0; i < factory.GetNbOfVariables(); ++i) {
        const ZorQelString& name = factory.GetVariable(i)->GetName();
        if (NeedsJsonEscape(name)) return &name;
    }
    for (int i = 0; i < factory.GetNbOfBlackBoxes(); ++i) {
        const ZorQelString& name = factory.GetBlackBox(i)->GetName();
        if (NeedsJsonEscape(name)) return &name;
    }
    return nullptr;
}

int ReadOptions(WbxContext& context, Options& options) {
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--version") {
            const std::string version = i + 1 < arguments.size() ? arguments[++i] : "";
            if (version.size() != 1 || version[0] < '0' || version[0] > '3')
                return WbxUsageError(context, "--version needs 0, 1, 2 or 3");
            options.version = version[0] - '0';
        } else if (argument == "-o") {
            if (i + 1 == arguments.size()) return WbxUsageError(context, "-o needs a file name");
            options.output = arguments[++i];
        } else if (argument.rfind("-", 0) == 0 || !options.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            options.path = argument;
        }
    }
    if (options.path.empty()) return WbxUsageError(context, "json needs a FILE");
    return WbxExit::Success;
}

}  // namespace

int WbxJsonCommand(WbxContext& context) {
    Options options;
    if (ReadOptions(context, options) != WbxExit::Success) return WbxExit::Usage;
    WbxModelFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    if (!file.HasEquations(context, "write")) return WbxExit::Failure;
    ZorWBFactory& factory = file.GetFactory();
    if (const ZorQelString* name = NameJsonCannotHold(factory)) {
        context.err << "wbx: '" << options.path << "' cannot be written as JSON: the name '"
                    << name->GetString() << "' holds a character that JSON must escape\n";
        return WbxExit::Failure;
    }
    ToolJsonWriter writer(factory, options.version);
    for (int i = 0; i < factory.GetNbOfEquations(); ++i)
        writer.Append(factory.GetEquation(i)->GetRoot());
    ZorQelString document;
    if (writer.WriteToString(document) != 1) {
        context.err << "wbx: the JSON document of '" << options.path << "' could not be written\n";
        return WbxExit::Failure;
    }
    if (options.output.empty()) {
        context.out << document.GetString() << "\n";
        return WbxExit::Success;
    }
    if (writer.WriteToFile(options.output) != 1)
        return WbxUsageError(context, "cannot write '" + options.output + "'");
    return WbxExit::Success;
}
