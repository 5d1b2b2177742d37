// The editor keeps its history as a list of steps, each knowing how to
// apply itself forwards and backwards with two primitives: Insert makes an
// equation of an entry (a root, a type and a name) at a place of the list,
// Erase removes one from the factory and gives its entry back. Since no
// primitive destroys a node, undoing restores the very roots an edit took
// away, with their cached values. Each edit costs its parse and conversion
// plus a linear move in the list.

#include "editor/ZorWBEditor.h"

#include <cstdio>
#include <string>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserResult.h"

namespace {

const int Success = ZorWBParserResult::Success;
const int Failure = ZorWBParserResult::Failure;

// Converts a one-statement model into the factory's expressions; false when
// the factory cannot build it.
bool Fill(ZorWBModel& model, ZorWBFactory& factory, ZorWBExpression*& root) {
    ZorQelArray<ZorWBExpression*> roots;
    if (model.FillFactory(factory, true, nullptr, nullptr, roots) != Success) return false;
    root = roots.GetSize() == 1 ? roots.Get(0) : nullptr;
    return root != nullptr;
}

// Whether a text reads as a variable, and nothing else.
bool IsVariableName(const char* name, unsigned int level) {
    ZorWBModel model(level);
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    std::string text = std::string(name) + ";";
    if (ZorWBParser::Parse(text.c_str(), model, ids, messenger) != 0) return false;
    const ZorWBEqNode* equation = model.GetFirstEquation();
    if (!equation || model.GetNbOfEquations() != 1) return false;
    const ZorWBNode* term = equation->GetLeftTerm();
    return term && term->GetNodeKind() == ZorWBVariableNode && !term->HasUnit() &&
           static_cast<const ZorWBVarNode*>(term)->GetName() == name;
}

}  // namespace

ZorWBEditor::ZorWBEditor(ZorWBFactory& factory)
    : _factory(factory), _diagnostics(std::make_unique<ZorWBParserMessenger>()) {
    for (int i = 0; i < factory.GetNbOfEquations(); ++i)
        _equations.push_back(factory.GetEquation(i));
}

ZorWBEquation* ZorWBEditor::GetEquation(int i) const {
    return IsIndex(i) ? _equations[static_cast<std::size_t>(i)] : nullptr;
}

ZorQelString ZorWBEditor::GetStatement(int i) const {
    return IsIndex(i) ? ZorWBEquationPrinter::Print(GetEquation(i)) : ZorQelString();
}

ZorQelString ZorWBEditor::GetText() const {
    ZorQelString text;
    for (int i = 0; i < GetNbOfEquations(); ++i)
        text += GetStatement(i) + "\n";
    return text;
}

void ZorWBEditor::StartEdit() {
    _diagnostics = std::make_unique<ZorWBParserMessenger>();  // the messenger cannot be cleared
}

ZorWBEditor::Entry ZorWBEditor::EntryOf(int i) const {
    ZorWBEquation* equation = GetEquation(i);
    return {equation->GetRoot(), equation->GetType(), equation->GetName()};
}

int ZorWBEditor::Fail(const char* message) {
    _diagnostics->ReportError(nullptr, message);
    return Failure;
}

int ZorWBEditor::Convert(const char* statement, Entry& entry) {
    ZorWBModel model(_factory.GetWBLevel());
    ZorQelIntArray ids;
    ZorQelListPZorWBBlackBox blackBoxes;
    if (ZorWBParser::Parse(statement, model, ids, *_diagnostics, &blackBoxes) != 0) {
        ZorWBParser::HandOverBlackBoxes(blackBoxes, 0, _factory);  // deletes them all
        return Failure;
    }
    int status = Success;
    if (model.GetNbOfEquations() != 1) {
        status = Fail(ZorQelString("expected one statement, the text holds ")
                          .AppendInt(model.GetNbOfEquations()));
    } else {
        ZorWBFactory scratch(_factory.GetWBLevel());
        ZorWBExpression* root = nullptr;
        if (!Fill(model, scratch, root) || !Fill(model, _factory, root)) {
            status = Fail("conversion error, the factory cannot build this");
        } else {
            entry.root = root;
            entry.type = model.GetFirstEquation()->GetWBEqType();
        }
    }
    ZorWBParser::HandOverBlackBoxes(blackBoxes, 0, _factory);
    return status;
}

void ZorWBEditor::Insert(int i, const Entry& entry) {
    ZorWBEquation* equation = _factory.AddEquation(entry.root, entry.type);
    if (!equation) return;
    if (!entry.name.IsEmpty()) equation->SetName(entry.name);
    _equations.insert(_equations.begin() + i, equation);
}

ZorWBEditor::Entry ZorWBEditor::Erase(int i) {
    ZorWBEquation* equation = _equations[static_cast<std::size_t>(i)];
    Entry entry = EntryOf(i);
    _equations.erase(_equations.begin() + i);
    _factory.RemoveEquation(equation);
    return entry;
}

void ZorWBEditor::Apply(const Step& step, bool forward) {
    switch (step.kind) {
        case Kind::Add:
            if (forward)
                Insert(step.index, step.after);
            else
                Erase(step.index);
            return;
        case Kind::Delete:
            if (forward)
                Erase(step.index);
            else
                Insert(step.index, step.before);
            return;
        case Kind::Replace:
            Erase(step.index);
            Insert(step.index, forward ? step.after : step.before);
            return;
        case Kind::Rename:
            step.variable->SetName(forward ? step.newName : step.oldName);
            return;
    }
}

// Applies a new step and makes it the last of the history.
int ZorWBEditor::Record(const Step& step) {
    Apply(step, true);
    _history.resize(static_cast<std::size_t>(_done));
    _history.push_back(step);
    ++_done;
    return Success;
}

int ZorWBEditor::Add(const char* statement) {
    StartEdit();
    Step step{Kind::Add, GetNbOfEquations(), {}, {}, nullptr, {}, {}};
    if (Convert(statement, step.after) != Success) return Failure;
    return Record(step);
}

int ZorWBEditor::Replace(int i, const char* statement) {
    StartEdit();
    if (!IsIndex(i)) return Fail(ZorQelString("no equation of index ").AppendInt(i));
    Step step{Kind::Replace, i, {}, {}, nullptr, {}, {}};
    if (Convert(statement, step.after) != Success) return Failure;
    step.before = EntryOf(i);
    return Record(step);
}

int ZorWBEditor::Delete(int i) {
    StartEdit();
    if (!IsIndex(i)) return Fail(ZorQelString("no equation of index ").AppendInt(i));
    return Record({Kind::Delete, i, EntryOf(i), {}, nullptr, {}, {}});
}

int ZorWBEditor::Rename(const char* oldName, const char* newName) {
    StartEdit();
    ZorQelString from(oldName), to(newName);
    ZorWBVariable* variable = oldName ? _factory.GetVariable(from) : nullptr;
    if (!variable) return Fail("unknown variable '" + from + "'");
    if (!newName || !IsVariableName(newName, _factory.GetWBLevel()))
        return Fail("'" + to + "' is not a variable name");
    if (_factory.GetVariable(to)) return Fail("'" + to + "' names a variable already");
    return Record({Kind::Rename, -1, {}, {}, variable, from, to});
}

int ZorWBEditor::Undo() {
    StartEdit();
    if (!CanUndo()) return Fail("nothing to undo");
    Apply(_history[static_cast<std::size_t>(--_done)], false);
    return Success;
}

int ZorWBEditor::Redo() {
    StartEdit();
    if (!CanRedo()) return Fail("nothing to redo");
    Apply(_history[static_cast<std::size_t>(_done++)], true);
    return Success;
}

ZorQelString ZorWBEditor::NameOf(const Step& step) const {
    static const char* const verbs[] = {"add ", "replace ", "delete "};
    if (step.kind == Kind::Rename) return "rename " + step.oldName + " to " + step.newName;
    return ZorQelString(verbs[static_cast<int>(step.kind)]).AppendInt(step.index + 1);
}

ZorQelString ZorWBEditor::GetUndoName() const {
    return CanUndo() ? NameOf(_history[static_cast<std::size_t>(_done - 1)]) : ZorQelString();
}

ZorQelString ZorWBEditor::GetRedoName() const {
    return CanRedo() ? NameOf(_history[static_cast<std::size_t>(_done)]) : ZorQelString();
}

int ZorWBEditor::Write(const char* path) {
    StartEdit();
    ZorQelString text = GetText();
    std::FILE* file = path ? std::fopen(path, "wb") : nullptr;
    bool written =
        file && std::fwrite(text.GetString(), 1, static_cast<std::size_t>(text.GetLength()),
                            file) == static_cast<std::size_t>(text.GetLength());
    if (file && std::fclose(file) != 0) written = false;
    return written ? Success : Fail("cannot write '" + ZorQelString(path) + "'");
}
