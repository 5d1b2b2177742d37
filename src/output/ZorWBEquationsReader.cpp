// Reading replay sections back into a factory: terms into nodes, and the
// sections of a whole equation system.

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>
#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBEquations.h"
#include "output/ZorWBValueText.h"

namespace {

using Type = ZorWBExpressionType;

// Builds nodes from terms, without recursion.
class TermBuilder {
  public:
    TermBuilder(ZorWBFactory& factory, int version) : _factory(factory), _version(version) {
        for (int i = factory.GetNbOfVariables() - 1; i >= 0; --i) {
            ZorWBVariable* variable = factory.GetVariable(i);
            _variables[variable->GetName().GetStdString()] = variable;  // the first one wins
        }
    }

    ZorWBExpression* Build(const ZorQelExpressionTerm* term);

  private:
    struct Frame {
        const ZorQelExpressionTerm* term;
        Type type;
        int next;  // next child to build
        int end;   // one past the last operand
        std::vector<ZorWBExpression*> operands;
    };

    // The type of an operator name, in this version's spelling or the other.
    Type TypeOf(const ZorQelString& name) const {
        Type type = ZorWBEquations::StringParseToExprType(name, _version);
        if (type == Type::None) type = ZorWBEquations::StringParseToExprType(name, 1 - _version);
        return type;
    }
    bool MakeFrame(const ZorQelExpressionTerm* term, Frame& frame) const;
    ZorWBExpression* BuildLeaf(const ZorQelString& text);
    ZorWBExpression* BuildConstant(const ZorQelString& text);
    ZorWBExpression* BuildFraction(const ZorQelExpressionTerm* term);
    ZorWBExpression* BuildOperator(const Frame& frame);
    ZorWBExpression* BuildStep(const Frame& frame);
    ZorWBExpression* BuildBlackBoxCall(const Frame& frame);

    ZorWBFactory& _factory;
    int _version;
    std::unordered_map<std::string, ZorWBVariable*> _variables;
};

bool IsFractionType(Type type) {
    return static_cast<int>(type) == ZorWBEquations::FractionTypeNumber;
}

bool TermIsLeaf(const ZorQelExpressionTerm* term, int i) {
    const ZorQelExpressionTerm* child = term->GetChild(i);
    return child && child->IsLeaf();
}

// Which children of an operator term are operands: a black-box call starts
// with its name, a Step ends with its four parameters.
bool TermBuilder::MakeFrame(const ZorQelExpressionTerm* term, Frame& frame) const {
    frame.term = term;
    frame.type = TypeOf(term->GetText());
    frame.next = 0;
    frame.end = term->GetNbOfChildren();
    if (frame.type == Type::BlackBox) {
        if (!TermIsLeaf(term, 0)) return false;
        frame.next = 1;
    } else if (frame.type == Type::Step) {
        if (frame.end != 5) return false;
        frame.end = 1;
    }
    return true;
}

// The number of brackets that enclose the whole text: 2 for "((x))", 0 for
// "(a)(b)". One pass: the bracket opened at position p of the leading run
// closes where the depth first falls back to p.
std::size_t WholeBracketLayers(const std::string& text) {
    std::size_t lead = std::min(text.find_first_not_of('('), text.size());
    std::vector<std::size_t> closing(lead, std::string::npos);
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(') {
            ++depth;
        } else if (text[i] == ')' && depth > 0) {
            --depth;
            if (depth < lead && closing[depth] == std::string::npos) closing[depth] = i;
        }
    }
    std::size_t layers = 0;
    while (layers < lead && closing[layers] == text.size() - 1 - layers)
        ++layers;
    return layers;
}

ZorWBExpression* TermBuilder::BuildLeaf(const ZorQelString& text) {
    auto found = _variables.find(text.GetStdString());
    if (found != _variables.end()) return found->second;
    if (ZorWBExpression* constant = BuildConstant(text)) return constant;
    // A constant written in brackets so as not to read as a variable: its
    // text is inside the whole brackets, with at most one pair of its own
    // ("(-3)").
    const std::string& written = text.GetStdString();
    std::size_t layers = WholeBracketLayers(written);
    for (std::size_t strip = layers > 1 ? layers - 1 : layers; strip >= 1 && strip <= layers;
         ++strip) {
        std::string inner = written.substr(strip, written.size() - 2 * strip);
        if (ZorWBExpression* constant = BuildConstant(inner)) return constant;
    }
    return nullptr;
}

ZorWBExpression* TermBuilder::BuildConstant(const ZorQelString& text) {
    if (text == "Pi") return _factory.CreateConstantPi();
    if (text == "DTOR") return _factory.CreateConstantDTOR();
    if (text == "RTOD") return _factory.CreateConstantRTOD();
    if (text == "PiByTwo") return _factory.GetPiByTwo();
    if (text == "Indefinite") return _factory.GetIndefinite();
    if (text == "Invalid") return _factory.GetInvalid();
    ZorWBValue value;
    if (!ZorWBValueText::Read(text, -1, value)) return nullptr;
    return _factory.CreateConstant(value);
}

ZorWBExpression* TermBuilder::BuildFraction(const ZorQelExpressionTerm* term) {
    ZorQelString text = term->ToString(true);
    ZorWBFraction fraction;
    if (!ZorWBValueText::ReadFraction(text, fraction)) return nullptr;
    return _factory.CreateConstant(ZorWBValue(fraction));
}

ZorWBExpression* TermBuilder::BuildStep(const Frame& frame) {
    double parameters[4];
    for (int i = 0; i < 4; ++i) {
        bool isInteger = false;
        int integer = 0;
        if (!TermIsLeaf(frame.term, i + 1) ||
            !ZorWBValueText::ReadNumber(frame.term->GetChild(i + 1)->GetText(), isInteger, integer,
                                        parameters[i]))
            return nullptr;
    }
    return _factory.CreateStep(frame.operands[0], parameters[0], parameters[1], parameters[2],
                               parameters[3]);
}

// The black box of that name in the factory, or a new internal one.
ZorWBExpression* TermBuilder::BuildBlackBoxCall(const Frame& frame) {
    const ZorQelString& name = frame.term->GetChild(0)->GetText();
    ZorWBBlackBox* blackBox = _factory.GetBlackBoxByName(name);
    bool isNew = !blackBox;
    if (isNew) blackBox = new (std::nothrow) ZorWBBBx(name);
    if (!blackBox) return nullptr;
    ZorWBExpression* call = _factory.DeclareBlackBox(
        blackBox, static_cast<int>(frame.operands.size()), frame.operands.data(), isNew);
    if (!call && isNew && _factory.GetBlackBoxByName(name) != blackBox) delete blackBox;
    return call;
}

ZorWBExpression* TermBuilder::BuildOperator(const Frame& frame) {
    switch (frame.type) {
        case Type::Step:
            return BuildStep(frame);
        case Type::BlackBox:
            return BuildBlackBoxCall(frame);
        case Type::None:
        case Type::Variable:
        case Type::Constant:
            return nullptr;
        default:
            return _factory.CreateOperator(frame.type, static_cast<int>(frame.operands.size()),
                                           frame.operands.data());
    }
}

ZorWBExpression* TermBuilder::Build(const ZorQelExpressionTerm* root) {
    if (!root) return nullptr;
    if (root->IsLeaf()) return BuildLeaf(root->GetText());
    if (IsFractionType(TypeOf(root->GetText()))) return BuildFraction(root);
    std::vector<Frame> stack(1);
    if (!MakeFrame(root, stack.back())) return nullptr;
    while (true) {
        Frame& frame = stack.back();
        if (frame.next < frame.end) {
            const ZorQelExpressionTerm* child = frame.term->GetChild(frame.next++);
            ZorWBExpression* built = nullptr;
            if (child->IsLeaf()) {
                built = BuildLeaf(child->GetText());
            } else if (IsFractionType(TypeOf(child->GetText()))) {
                built = BuildFraction(child);
            } else {
                stack.emplace_back();
                if (!MakeFrame(child, stack.back())) return nullptr;
                continue;
            }
            if (!built) return nullptr;
            frame.operands.push_back(built);
            continue;
        }
        ZorWBExpression* built = BuildOperator(frame);
        stack.pop_back();
        if (!built || stack.empty()) return built;
        stack.back().operands.push_back(built);
    }
}

// ------------------------------------------------------------ sections

// The lines of a section without their closing ";", after checking the
// count in the header: exactly that many lines, or at most that many.
bool SectionLines(const ZorQelStorage::Section* section, bool countIsExact,
                  std::vector<std::string>& lines, int& count) {
    lines.clear();
    count = 0;
    if (!section) return true;
    if (!ZorQelString::ParseInt(section->header.GetString(), count) || count < 0) return false;
    const std::string& body = section->body.GetStdString();
    std::size_t start = 0;
    while (start < body.size()) {
        std::size_t end = body.find('\n', start);
        if (end == std::string::npos) end = body.size();
        std::string line = body.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line.back() != ';') return false;
        line.pop_back();
        lines.push_back(line);
    }
    int nbOfLines = static_cast<int>(lines.size());
    return countIsExact ? nbOfLines == count : nbOfLines <= count;
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

int ValueKindOf(const std::string& name) {
    for (int kind = ZorWBUndefinedType; kind <= ZorWBFractionType; ++kind) {
        if (ZorWBEquations::ValueTypeToString(static_cast<ZorWBValueType>(kind)) == name.c_str())
            return kind;
    }
    return -1;
}

int EquationTypeOf(const std::string& symbol) {
    for (int type = 0; type <= static_cast<int>(ZorWBMaximize); ++type) {
        if (ZorWBEquations::EquationTypeToString(static_cast<ZorWBEquationType>(type)) ==
            symbol.c_str())
            return type;
    }
    return -1;
}

// "eq" id: the id of a default equation name; false for any other text.
bool ReadDefaultName(const std::string& text, int& id) {
    return text.compare(0, 2, "eq") == 0 && text.size() > 2 && text[2] != '+' &&
           ZorQelString::ParseInt(text.c_str() + 2, id) && id >= 0;
}

// Reads the sections of one part into a factory.
class SystemReader {
  public:
    SystemReader(ZorWBEquations& owner, const ZorQelStorage& storage,
                 ZorQelStorage::ReplayPart part)
        : _owner(owner), _factory(owner.GetFactory()), _storage(storage), _part(part) {}

    bool Run() {
        return ReadVariables() && ReadValues() && ReadEquations() && ReadNames() && ReadSimplify();
    }

  private:
    const ZorQelStorage::Section* Find(const char* name) const {
        return _storage.FindSection(name, _part);
    }

    // "Kind name" or "Kind name = fixed".
    bool ReadVariables() {
        std::vector<std::string> lines;
        int count = 0;
        if (!SectionLines(Find("#!VARIABLES"), true, lines, count)) return false;
        for (const std::string& line : lines) {
            std::size_t blank = line.find(' ');
            int kind = ValueKindOf(line.substr(0, blank));
            if (blank == std::string::npos || kind < 0) return false;
            std::string name = line.substr(blank + 1);
            bool fixed = EndsWith(name, " = fixed");
            if (fixed) name.resize(name.size() - 8);
            ZorWBVariable* variable = _factory.CreateVariable();
            if (!variable) return false;
            variable->SetName(name);
            variable->Fix(fixed);
            _kinds.push_back(kind);
        }
        return true;
    }

    // "name = value", one line per variable in index order.
    bool ReadValues() {
        std::vector<std::string> lines;
        int count = 0;
        const ZorQelStorage::Section* section = Find("#!VALUES");
        if (!section) return true;
        if (!SectionLines(section, true, lines, count) || count != static_cast<int>(_kinds.size()))
            return false;
        for (int i = 0; i < count; ++i) {
            ZorWBVariable* variable = _factory.GetVariable(_firstVariable + i);
            std::string prefix = variable->GetName().GetStdString() + " = ";
            const std::string& line = lines[static_cast<std::size_t>(i)];
            ZorWBValue value;
            if (line.compare(0, prefix.size(), prefix) != 0 ||
                !ReadValue(line.substr(prefix.size()), _kinds[static_cast<std::size_t>(i)], value))
                return false;
            variable->SetExprValue(value);
        }
        return true;
    }

    // Values are written in the older text below version 1, as the equation
    // printer writes them from version 1 on.
    bool ReadValue(const std::string& text, int kind, ZorWBValue& value) const {
        if (_owner.GetVersion() >= 1) return ZorWBValueText::ReadPrinted(text, kind, value);
        return ZorWBValueText::Read(text, kind, value);
    }

    // "eq" id symbol " " term.
    bool ReadEquations() {
        std::vector<std::string> lines;
        int count = 0;
        if (!SectionLines(Find("#!EQUATIONS"), true, lines, count)) return false;
        TermBuilder builder(_factory, _owner.GetVersion());
        for (const std::string& line : lines) {
            std::size_t blank = line.find(' ');
            if (blank == std::string::npos || line.compare(0, 2, "eq") != 0) return false;
            std::size_t symbol = line.find_first_not_of("0123456789", 2);
            int id = 0;
            int type = EquationTypeOf(line.substr(symbol, blank - symbol));
            if (symbol == 2 || symbol > blank || type < 0 ||
                !ZorQelString::ParseInt(line.substr(2, symbol - 2).c_str(), id))
                return false;
            std::unique_ptr<ZorQelExpressionTerm> term(
                ZorQelExpressionTerm::Parse(line.substr(blank + 1)));
            ZorWBExpression* root = builder.Build(term.get());
            if (!root || !AddEquation(root, static_cast<ZorWBEquationType>(type), id)) return false;
        }
        return true;
    }

    // The factory numbers equations itself: ids below the wanted one are
    // used up by adding and removing an equation.
    bool AddEquation(ZorWBExpression* root, ZorWBEquationType type, int id) {
        while (true) {
            ZorWBEquation* equation = _factory.AddEquation(root, type);
            if (!equation) return false;
            if (equation->GetId() == id) return true;
            bool usable = equation->GetId() < id && ++_skippedIds <= ZorWBEquations::MaxSkippedIds;
            _factory.RemoveEquation(equation);
            if (!usable) return false;
        }
    }

    // "eq" id " = " name.
    bool ReadNames() {
        std::vector<std::string> lines;
        int count = 0;
        if (!SectionLines(Find("#!EQUATIONNAMES"), true, lines, count)) return false;
        for (const std::string& line : lines) {
            std::size_t separator = line.find(" = ");
            int id = 0;
            if (separator == std::string::npos || !ReadDefaultName(line.substr(0, separator), id))
                return false;
            ZorWBEquation* equation = _factory.GetEquationById(id);
            if (!equation) return false;
            equation->SetName(line.substr(separator + 3));
        }
        return true;
    }

    bool ReadSimplify() {
        std::vector<std::string> lines;
        int count = 0;
        if (!SectionLines(Find("#!SIMPLIFY"), false, lines, count)) return false;
        ZorQelIntArray ids;
        for (const std::string& name : lines) {
            ZorWBEquation* equation = _factory.GetEquationByName(name);
            if (!equation) return false;
            ids.Add(equation->GetId());
        }
        while (ids.GetSize() < count)
            ids.Add(-1);
        _owner.SetListEqToSimplify(ids);
        return true;
    }

    ZorWBEquations& _owner;
    ZorWBFactory& _factory;
    const ZorQelStorage& _storage;
    ZorQelStorage::ReplayPart _part;
    int _firstVariable = _factory.GetNbOfVariables();
    std::vector<int> _kinds;
    int _skippedIds = 0;
};

}  // namespace

ZorWBExpression* ZorWBEquations::CreateExpression(const ZorQelExpressionTerm* term) {
    try {
        return TermBuilder(*_factory, _version).Build(term);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool ZorWBEquations::Read(const ZorQelStorage& storage, ZorQelStorage::ReplayPart part) {
    try {
        return SystemReader(*this, storage, part).Run();
    } catch (const std::bad_alloc&) {
        return false;
    }
}
