// wbx edit FILE: edits the equations of a model file (ZorWBEditor), one
// command a line:
//   list                    the equations, numbered from 1: "1: x + y = 3;"
//   add STATEMENT           appends an equation; prints "N: STATEMENT"
//   replace N STATEMENT     puts a statement in place of equation N
//   delete N                removes equation N; prints "deleted N: STATEMENT"
//   rename OLD NEW          renames a variable
//   set NAME = VALUE        gives a variable a value (in base units, as
//                           --set of wbx eval reads it); not an edit
//   eval                    the table of wbx eval, equations by number
//   diff NAME               the derivative of each root, as wbx diff
//   undo, redo              takes back or makes again the last edit
//   write [FILE]            writes the system, in the language, into FILE
//                           or back into the file edited
//   help                    lists the commands
//   quit                    ends (so does the end of input)
// Blank lines and lines starting with # are skipped. Statements are read
// with units, as in a file; the system is written in base units, one
// statement a line, and reads back (wbx check) to the same equations.
// Variables that no set gave a value range over the whole real line.
//
// At a terminal the command prompts ("wbx> ") and keeps a history of the
// lines typed (Up and Down recall them, WbxLineEditor). Otherwise it reads
// the standard input and writes only results (standard output) and
// diagnostics (standard error), so that it can be scripted. A statement's
// diagnostics read "edit:LINE:COLUMN: MESSAGE [code N]" (the line and
// column in the statement), the editor's own "edit: MESSAGE [code -1]",
// and those of the command line "wbx: MESSAGE".
//
// Exit status: 0 when every command succeeded, 1 when one failed, 2 for a
// bad command line or a file that cannot be read or has diagnostics.

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <sstream>

#include "WbxCommand.h"
#include "WbxEvaluation.h"
#include "WbxLineEditor.h"
#include "WbxModelFile.h"
#include "WbxValueText.h"
#include "editor/ZorWBEditor.h"
#include "output/ZorWBEquationPrinter.h"

namespace {

// What a command line may hold around its words (a line end of a file
// written elsewhere included).
const char* const Blanks = " \t\r";

const char* const Help =
    "  list                  the equations, numbered from 1\n"
    "  add STATEMENT         appends an equation (x + y = 3;)\n"
    "  replace N STATEMENT   puts a statement in place of equation N\n"
    "  delete N              removes equation N\n"
    "  rename OLD NEW        renames a variable\n"
    "  set NAME = VALUE      gives a variable a value (base units)\n"
    "  eval                  evaluates every equation\n"
    "  diff NAME             the derivative of every root with respect to NAME\n"
    "  undo, redo            takes back or makes again the last edit\n"
    "  write [FILE]          writes the system into FILE or the file edited\n"
    "  quit                  ends\n";

class Session {
  public:
    Session(WbxContext& context, WbxModelFile& file, const std::string& path)
        : _context(context), _factory(file.GetFactory()), _editor(_factory), _path(path) {
        WbxReleaseVariables(_factory);
    }

    bool IsOver() const { return _over; }

    // Runs one command line: WbxExit::Success or WbxExit::Failure.
    int Run(const std::string& line) {
        std::istringstream words(line);
        std::string command;
        if (!(words >> command) || command[0] == '#') return WbxExit::Success;
        std::string rest;
        std::getline(words, rest);
        rest = WbxTrim(rest, Blanks);
        int variables = _factory.GetNbOfVariables();
        int status = Dispatch(command, rest);
        WbxReleaseVariables(_factory, variables);  // those the edit made
        return status;
    }

  private:
    int Dispatch(const std::string& command, const std::string& rest) {
        if (command == "list") return List();
        if (command == "add") return Add(rest);
        if (command == "replace") return Replace(rest);
        if (command == "delete") return Delete(rest);
        if (command == "rename") return Rename(rest);
        if (command == "set") return Set(rest);
        if (command == "eval") return Eval();
        if (command == "diff") return Diff(rest);
        if (command == "undo") return Step(true);
        if (command == "redo") return Step(false);
        if (command == "write") return Write(rest);
        if (command == "help") {
            _context.out << Help;
            return WbxExit::Success;
        }
        if (command == "quit" || command == "exit") {
            _over = true;
            return WbxExit::Success;
        }
        return Usage("unknown command '" + command + "' (help lists the commands)");
    }

    int Usage(const std::string& message) {
        WbxUsageError(_context, message);
        return WbxExit::Failure;
    }

    std::string Numbered(int i) const {
        return std::to_string(i + 1) + ": " + _editor.GetStatement(i).GetString();
    }

    // An edit's outcome: the result line, or the editor's diagnostics.
    int Report(int status, const std::string& result) {
        if (status == 0) {
            _context.out << result << "\n";
            return WbxExit::Success;
        }
        const ZorWBParserMessenger& diagnostics = _editor.GetDiagnostics();
        for (int i = 0; i < diagnostics.GetErrorNumber(); ++i)
            WbxReportDiagnostic(_context, "edit", diagnostics, i);
        return WbxExit::Failure;
    }

    // The equation number that starts text (from 1), as an index; -1 after
    // a message when there is none.
    int Index(const std::string& text, const char* usage, std::string& rest) {
        std::istringstream words(text);
        long long number = 0;
        if (!(words >> number)) {
            Usage(usage);
            return -1;
        }
        std::getline(words, rest);
        if (number < 1 || number > _editor.GetNbOfEquations()) {
            Usage("no equation " + std::to_string(number) + " (the system holds " +
                  std::to_string(_editor.GetNbOfEquations()) + ")");
            return -1;
        }
        return static_cast<int>(number - 1);
    }

    int List() {
        for (int i = 0; i < _editor.GetNbOfEquations(); ++i)
            _context.out << Numbered(i) << "\n";
        return WbxExit::Success;
    }

    int Add(const std::string& statement) {
        int status = _editor.Add(statement.c_str());
        return Report(status, status == 0 ? Numbered(_editor.GetNbOfEquations() - 1) : "");
    }

    int Replace(const std::string& text) {
        std::string statement;
        int i = Index(text, "replace needs N STATEMENT", statement);
        if (i < 0) return WbxExit::Failure;
        int status = _editor.Replace(i, statement.c_str());
        return Report(status, status == 0 ? Numbered(i) : "");
    }

    int Delete(const std::string& text) {
        std::string extra;
        int i = Index(text, "delete needs N", extra);
        if (i < 0) return WbxExit::Failure;
        if (!WbxTrim(extra, Blanks).empty())
            return Usage("delete needs N alone, not '" + text + "'");
        std::string deleted = "deleted " + Numbered(i);
        return Report(_editor.Delete(i), deleted);
    }

    int Rename(const std::string& text) {
        std::istringstream words(text);
        std::string from, to, extra;
        if (!(words >> from >> to) || (words >> extra)) return Usage("rename needs OLD NEW");
        return Report(_editor.Rename(from.c_str(), to.c_str()), "renamed " + from + " to " + to);
    }

    int Set(const std::string& setting) {
        if (WbxApplySetting(_context, _factory, setting, "set") != WbxExit::Success)
            return WbxExit::Failure;
        std::string name = WbxSettingName(setting);
        const ZorWBValue& value = _factory.GetVariable(ZorQelString(name))->GetExprValue();
        _context.out << name << " = " << ZorWBEquationPrinter::PrintValue(value).GetString()
                     << "\n";
        return WbxExit::Success;
    }

    int Eval() {
        _factory.GetEnvironment().ClearError();
        unsigned int error = 0;
        for (int i = 0; i < _editor.GetNbOfEquations(); ++i) {
            const ZorWBEquation& equation = *_editor.GetEquation(i);
            WbxEquationResult result = WbxEvaluate(equation);
            error |= result.errorWord;
            _context.out << WbxResultLine(std::to_string(i + 1), equation.GetType(), result)
                         << "\n";
        }
        if (error != 0) _context.out << "error word: " << error << "\n";
        return WbxExit::Success;
    }

    int Diff(const std::string& name) {
        ZorWBVariable* variable = _factory.GetVariable(ZorQelString(name));
        if (!variable) return Usage("unknown variable '" + name + "' in diff");
        int status = WbxExit::Success;
        for (int i = 0; i < _editor.GetNbOfEquations(); ++i) {
            if (!WbxWriteDerivative(_context, _factory, _editor.GetEquation(i)->GetRoot(), variable,
                                    std::to_string(i + 1)))
                status = WbxExit::Failure;
        }
        return status;
    }

    int Step(bool back) {
        std::string name = (back ? _editor.GetUndoName() : _editor.GetRedoName()).GetString();
        int status = back ? _editor.Undo() : _editor.Redo();
        return Report(status, (back ? "undone: " : "redone: ") + name);
    }

    int Write(const std::string& file) {
        std::string path = file.empty() ? _path : file;
        return Report(
            _editor.Write(path.c_str()),
            "wrote " + path + " (" + std::to_string(_editor.GetNbOfEquations()) + " equations)");
    }

    WbxContext& _context;
    ZorWBFactory& _factory;
    ZorWBEditor _editor;
    std::string _path;
    bool _over = false;
};

}  // namespace

int WbxEditCommand(WbxContext& context) {
    if (context.arguments.size() != 1 || context.arguments[0].rfind("--", 0) == 0)
        return WbxUsageError(context, "edit needs one FILE");
    const std::string& path = context.arguments[0];
    WbxModelFile file;
    if (file.Load(context, path) != WbxExit::Success) return WbxExit::Usage;
    Session session(context, file, path);
    int status = WbxExit::Success;
    std::string line;
    if (!context.in && isatty(STDIN_FILENO)) {
        WbxLineEditor terminal(STDIN_FILENO, context.out);
        context.out << "editing " << path << " (help lists the commands)\n";
        while (!session.IsOver() && terminal.ReadLine("wbx> ", line))
            status = std::max(status, session.Run(line));
        return status;
    }
    std::istream& input = context.in ? *context.in : std::cin;
    while (!session.IsOver() && std::getline(input, line))
        status = std::max(status, session.Run(line));
    return status;
}
