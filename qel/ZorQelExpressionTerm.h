#ifndef ZORQEL_EXPRESSIONTERM_H
#define ZORQEL_EXPRESSIONTERM_H

#include <vector>

#include "qel/ZorQelExport.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"

// An expression as replays write it: a leaf holds a text (a variable's name
// or a constant's text), an operator holds its name, an optional symbol for
// infix printing, and owns its children.
//
// The functional text form, Name(child, child), is the one Parse reads back.
// A leaf is whatever lies between the separators: a run of characters up to
// the next "," or ")" outside brackets, so "(-3)", "[1, 2]" and "{1, 2}" are
// single leaves. Names must not contain blanks, commas or brackets.
// Printing, parsing and destruction use no recursion, so terms of any depth
// are safe.
class ZORQEL_API ZorQelExpressionTerm {
  public:
    static ZorQelExpressionTerm* CreateLeaf(const ZorQelString& text);
    static ZorQelExpressionTerm* CreateOperator(const ZorQelString& name,
                                                const ZorQelString& symbol = "");
    ZorQelExpressionTerm(const ZorQelExpressionTerm&) = delete;
    ZorQelExpressionTerm& operator=(const ZorQelExpressionTerm&) = delete;
    ~ZorQelExpressionTerm();

    bool IsLeaf() const { return _leaf; }
    // The leaf's text, or the operator's name.
    const ZorQelString& GetText() const { return _text; }
    const ZorQelString& GetSymbol() const { return _symbol; }
    int GetNbOfChildren() const { return static_cast<int>(_children.size()); }
    const ZorQelExpressionTerm* GetChild(int i) const;
    // Takes ownership; ignored for a null child or a leaf.
    void AddChild(ZorQelExpressionTerm* child);

    // functional: Name(a, b); otherwise infix with the symbols, for people.
    void Print(ZorQelStream& stream, bool functional) const;
    ZorQelString ToString(bool functional) const;

    // Reads the functional form; null when the text is not one whole term.
    static ZorQelExpressionTerm* Parse(const ZorQelString& text);

  private:
    ZorQelExpressionTerm(const ZorQelString& text, const ZorQelString& symbol, bool leaf)
        : _text(text), _symbol(symbol), _leaf(leaf) {}

    ZorQelString _text;
    ZorQelString _symbol;
    bool _leaf;
    std::vector<ZorQelExpressionTerm*> _children;
};

#endif
