#ifndef ZORWB_EDITOR_H
#define ZORWB_EDITOR_H

#include <memory>
#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "parser/ZorWBParserMessenger.h"
#include "qel/ZorQelString.h"

class ZorWBEquation;
class ZorWBExpression;
class ZorWBFactory;
class ZorWBVariable;

// An editing session over the equations of a factory, by text: statements
// of the equation language are added, replace an equation or are deleted,
// variables are renamed, and every step can be undone and redone.
//
// The editor holds the system as an ordered list of the factory's
// equations, numbered from 0 (it starts with the factory's equations in
// their order). Statements go through the parser, the model check and the
// conversion with units (ZorWBParser::Parse, ZorWBModel::FillFactory), as
// when a file is read. An edit that fails changes nothing (the statement is
// first converted into a scratch factory, so that a statement the check
// accepts but the factory cannot build makes no node and no variable) and
// leaves its reasons in GetDiagnostics(): the parser's diagnostics with
// their locations in the statement, or one of the editor's messages (code
// -1):
//   "expected one statement, the text holds N"
//   "conversion error, the factory cannot build this"
//   "no equation of index N"
//   "unknown variable 'NAME'"
//   "'NAME' is not a variable name"
//   "'NAME' names a variable already"
//   "nothing to undo", "nothing to redo"
//   "cannot write 'PATH'"
//
// What an edit touches. Adding a statement makes new nodes only; deleting
// or replacing an equation removes the equation from the factory but never
// its nodes, so undoing it puts the same root back; renaming changes a
// name. So the roots of the equations an edit does not touch keep their
// nodes and their cached values, and undo and redo restore the very roots
// they took away (the equation objects are new: the factory numbers
// equations once, and lists them in the order they were made, while the
// editor's list keeps the system's order). The nodes of removed equations
// stay in the factory until it is destroyed. Setting variable values is not
// an edit; the host does it on the factory's variables.
class ZORWBX_API ZorWBEditor {
  public:
    explicit ZorWBEditor(ZorWBFactory& factory);
    ZorWBEditor(const ZorWBEditor&) = delete;
    ZorWBEditor& operator=(const ZorWBEditor&) = delete;

    ZorWBFactory& GetFactory() const { return _factory; }
    int GetNbOfEquations() const { return static_cast<int>(_equations.size()); }
    // The i-th equation of the system, null out of range.
    ZorWBEquation* GetEquation(int i) const;
    // The i-th equation as a statement ("x = 2;", ZorWBEquationPrinter);
    // empty out of range.
    ZorQelString GetStatement(int i) const;
    // Every statement in order, each followed by a line break.
    ZorQelString GetText() const;

    // The edits; each returns 0, or 0x80004005 when it changed nothing.
    // Add appends the equation of one statement; Replace puts it in place of
    // equation i.
    int Add(const char* statement);
    int Replace(int i, const char* statement);
    int Delete(int i);
    // Renames a variable of the factory; the new name must read as a
    // variable and not be that of another one.
    int Rename(const char* oldName, const char* newName);
    int Undo();
    int Redo();
    bool CanUndo() const { return _done > 0; }
    bool CanRedo() const { return _done < static_cast<int>(_history.size()); }
    // What the next Undo or Redo does, as "add 3", "replace 1", "delete 2"
    // or "rename x to y" (equations numbered from 1); empty when nothing.
    ZorQelString GetUndoName() const;
    ZorQelString GetRedoName() const;

    // Writes GetText() into a file: 0, or 0x80004005.
    int Write(const char* path);

    // The reasons of the last edit that failed (cleared by each edit).
    const ZorWBParserMessenger& GetDiagnostics() const { return *_diagnostics; }

  private:
    // What an equation is made of, to make it again.
    struct Entry {
        ZorWBExpression* root = nullptr;
        ZorWBEquationType type = ZorWBEquationUnset;
        ZorQelString name;
    };
    enum class Kind { Add, Replace, Delete, Rename };
    struct Step {
        Kind kind;
        int index;
        Entry before;             // Replace, Delete
        Entry after;              // Add, Replace
        ZorWBVariable* variable;  // Rename
        ZorQelString oldName, newName;
    };

    // Drops the diagnostics of the last edit.
    void StartEdit();
    // What the i-th equation is made of (i an index of the list).
    Entry EntryOf(int i) const;
    int Fail(const char* message);
    int Fail(const ZorQelString& message) { return Fail(message.GetString()); }
    bool IsIndex(int i) const { return i >= 0 && i < GetNbOfEquations(); }
    // Reads one statement into the factory: the root and type of its
    // equation, which is made and then taken out of the factory again.
    int Convert(const char* statement, Entry& entry);
    void Insert(int i, const Entry& entry);
    Entry Erase(int i);
    void Apply(const Step& step, bool forward);
    int Record(const Step& step);
    ZorQelString NameOf(const Step& step) const;

    ZorWBFactory& _factory;
    std::vector<ZorWBEquation*> _equations;
    std::vector<Step> _history;
    int _done = 0;  // steps of the history applied
    std::unique_ptr<ZorWBParserMessenger> _diagnostics;
};

#endif
