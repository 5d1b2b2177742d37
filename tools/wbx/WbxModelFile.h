#ifndef WBX_MODEL_FILE_H
#define WBX_MODEL_FILE_H

#include <string>

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
// Writes the i-th diagnostic of a messenger as described above, SOURCE in
// place of FILE.
void WbxReportDiagnostic(WbxContext& context, const std::string& source,
                         const ZorWBParserMessenger& messenger, int i);

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

#endif
