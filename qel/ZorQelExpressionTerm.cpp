#include "qel/ZorQelExpressionTerm.h"

#include <memory>
#include <new>

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool IsOpening(char c) {
    return c == '(' || c == '[' || c == '{';
}
bool IsClosing(char c) {
    return c == ')' || c == ']' || c == '}';
}
bool IsNameCharacter(char c) {
    return !IsBlank(c) && !IsOpening(c) && !IsClosing(c) && c != ',' && c != '\0';
}

// Reads terms of the functional form with an explicit stack of the open
// operators.
class TermReader {
  public:
    explicit TermReader(const char* text) : _text(text) {}

    ZorQelExpressionTerm* Read() {
        std::unique_ptr<ZorQelExpressionTerm> root;
        std::vector<ZorQelExpressionTerm*> open;
        bool expectTerm = true;
        for (SkipBlanks(); *_text; SkipBlanks()) {
            if (expectTerm) {
                bool isOperator = false;
                ZorQelExpressionTerm* term = ReadTerm(isOperator);
                if (!term || !Attach(term, root, open)) return nullptr;
                expectTerm = isOperator;
                if (!isOperator) continue;
                open.push_back(term);
                SkipBlanks();
                if (*_text == ')') {  // an operator without operands
                    ++_text;
                    open.pop_back();
                    expectTerm = false;
                }
            } else if (!open.empty() && *_text == ',') {
                ++_text;
                expectTerm = true;
            } else if (!open.empty() && *_text == ')') {
                ++_text;
                open.pop_back();
            } else {
                return nullptr;
            }
        }
        if (expectTerm || !open.empty()) return nullptr;
        return root.release();
    }

  private:
    void SkipBlanks() {
        while (IsBlank(*_text))
            ++_text;
    }

    static bool Attach(ZorQelExpressionTerm* term, std::unique_ptr<ZorQelExpressionTerm>& root,
                       const std::vector<ZorQelExpressionTerm*>& open) {
        if (!open.empty()) {
            open.back()->AddChild(term);
            return true;
        }
        if (root) {
            delete term;
            return false;
        }
        root.reset(term);
        return true;
    }

    // A name directly followed by "(" opens an operator; anything else is a
    // leaf running to the next separator outside brackets.
    ZorQelExpressionTerm* ReadTerm(bool& isOperator) {
        const char* start = _text;
        while (IsNameCharacter(*_text))
            ++_text;
        if (_text > start && *_text == '(') {
            ZorQelString name(start, static_cast<std::size_t>(_text - start));
            ++_text;
            isOperator = true;
            return ZorQelExpressionTerm::CreateOperator(name);
        }
        int depth = 0;
        for (; *_text; ++_text) {
            if (IsOpening(*_text)) ++depth;
            if (IsClosing(*_text) && --depth < 0) break;
            if (*_text == ',' && depth == 0) break;
        }
        if (depth > 0) return nullptr;
        const char* end = _text;
        while (end > start && IsBlank(end[-1]))
            --end;
        if (end == start) return nullptr;
        return ZorQelExpressionTerm::CreateLeaf(
            ZorQelString(start, static_cast<std::size_t>(end - start)));
    }

    const char* _text;
};

// One step of printing: a term to open, or a piece of text between children.
struct PrintStep {
    const ZorQelExpressionTerm* term;
    const char* text;
};

void OpenTerm(const ZorQelExpressionTerm* term, bool functional, ZorQelString& out,
              std::vector<PrintStep>& steps) {
    if (term->IsLeaf()) {
        out.Append(term->GetText());
        return;
    }
    int count = term->GetNbOfChildren();
    bool infix = !functional && !term->GetSymbol().IsEmpty();
    if (infix && count == 1) {
        out.Append(term->GetSymbol());
        steps.push_back({term->GetChild(0), nullptr});
        return;
    }
    if (!infix) out.Append(term->GetText());
    out.AppendChar('(');
    steps.push_back({nullptr, ")"});
    const char* separator = infix ? term->GetSymbol().GetString() : ", ";
    for (int i = count - 1; i >= 0; --i) {
        steps.push_back({term->GetChild(i), nullptr});
        if (i > 0) steps.push_back({nullptr, separator});
    }
}

}  // namespace

ZorQelExpressionTerm* ZorQelExpressionTerm::CreateLeaf(const ZorQelString& text) {
    return new (std::nothrow) ZorQelExpressionTerm(text, ZorQelString(), true);
}

ZorQelExpressionTerm* ZorQelExpressionTerm::CreateOperator(const ZorQelString& name,
                                                           const ZorQelString& symbol) {
    return new (std::nothrow) ZorQelExpressionTerm(name, symbol, false);
}

ZorQelExpressionTerm::~ZorQelExpressionTerm() {
    std::vector<ZorQelExpressionTerm*> pending;
    pending.swap(_children);
    while (!pending.empty()) {
        ZorQelExpressionTerm* term = pending.back();
        pending.pop_back();
        pending.insert(pending.end(), term->_children.begin(), term->_children.end());
        term->_children.clear();
        delete term;
    }
}

const ZorQelExpressionTerm* ZorQelExpressionTerm::GetChild(int i) const {
    if (i < 0 || i >= GetNbOfChildren()) return nullptr;
    return _children[static_cast<std::size_t>(i)];
}

void ZorQelExpressionTerm::AddChild(ZorQelExpressionTerm* child) {
    if (!child) return;
    if (_leaf) {
        delete child;
        return;
    }
    _children.push_back(child);
}

ZorQelString ZorQelExpressionTerm::ToString(bool functional) const {
    ZorQelString out;
    std::vector<PrintStep> steps{{this, nullptr}};
    while (!steps.empty()) {
        PrintStep step = steps.back();
        steps.pop_back();
        if (step.term)
            OpenTerm(step.term, functional, out, steps);
        else
            out.Append(step.text);
    }
    return out;
}

void ZorQelExpressionTerm::Print(ZorQelStream& stream, bool functional) const {
    stream.Write(ToString(functional));
}

ZorQelExpressionTerm* ZorQelExpressionTerm::Parse(const ZorQelString& text) {
    return TermReader(text.GetString()).Read();
}
