#ifndef WBX_MODEL_FILE_H
#define WBX_MODEL_FILE_H

#include <map>
#include <string>
#include <vector>

#include "WbxCommand.h"
#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParserMessenger.h"
#include "qel/ZorQelArray.h"

// A model file as every command reads it: parsed, checked, and filled into a
// factory of its own (units converted to millimetres and radians).
//
// Each diagnostic is written on the error stream as
//   FILE:LINE:COLUMN: MESSAGE [code N]
// with lines and columns counted from 1 (a diagnostic without a place, such
// as "memory exhausted", as "FILE: MESSAGE [code N]"). A statement that the
// check accepts but the factory cannot build (a function with a wrong number
// of arguments, such as "sin(x, y)") is reported the same way, with the
// message "conversion error, the factory cannot build this" and the code -1.
class WbxModelFile {
  public:
    WbxModelFile() = default;
    WbxModelFile(const WbxModelFile&) = delete;
    WbxModelFile& operator=(const WbxModelFile&) = delete;
    ~WbxModelFile();

    // Reads the file. WbxExit::Success when it is clean and filled,
    // WbxExit::Failure when it had diagnostics (the factory then holds the
    // equations converted before the first one that failed, if any),
    // WbxExit::Usage when it cannot be read (one line "wbx: cannot read
    // 'FILE': REASON" on the error stream).
    int Load(WbxContext& context, const std::string& path);

    // Whether the factory holds an equation; when it holds none, says so on
    // the error stream as "wbx: 'FILE' holds no equation to ACTION".
    bool HasEquations(WbxContext& context, const char* action);

    ZorWBFactory& GetFactory() { return _factory; }
    const ZorWBModel& GetModel() const { return _model; }
    int GetNbOfDiagnostics() const { return _messenger.GetErrorNumber(); }

  private:
    std::string _path;
    ZorWBModel _model;
    ZorWBParserMessenger _messenger;
    ZorQelListPZorWBBlackBox _blackBoxes;
    ZorWBFactory _factory;
};

// Writes the i-th diagnostic of a messenger as WbxModelFile writes its own,
// SOURCE in place of FILE.
void WbxReportDiagnostic(WbxContext& context, const std::string& source,
                         const ZorWBParserMessenger& messenger, int i);

// The command line FILE --wrt NAME [OPTION VALUE]... of the commands that
// work by one variable (diff, integrate, roots).
struct WbxVariableCommandLine {
    std::string path;
    std::string name;
    // The values of the other options, by option ("--from": "0"); the last
    // one given wins.
    std::map<std::string, std::string> values;
};

// Reads the arguments of command into line; valueOptions lists the options
// other than --wrt that take a value. WbxExit::Success, or WbxExit::Usage
// after its message ("--wrt needs a NAME", "unexpected argument '...'",
// "COMMAND needs FILE --wrt NAME").
int WbxReadVariableCommandLine(WbxContext& context, const std::string& command,
                               const std::vector<std::string>& valueOptions,
                               WbxVariableCommandLine& line);

// Loads the model of line.path into file and finds the variable line.name:
// WbxExit::Success, or WbxExit::Usage after its message (an unreadable file,
// diagnostics, "unknown variable 'NAME'").
int WbxLoadVariable(WbxContext& context, const WbxVariableCommandLine& line, WbxModelFile& file,
                    ZorWBVariable*& variable);

#endif
