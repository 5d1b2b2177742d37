#include "output/ZorWBEquations.h"

#include <memory>
#include <new>
#include <string>
#include <unordered_set>
#include <vector>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBEquationPrinter.h"
#include "output/ZorWBValueText.h"

namespace {

constexpr int NbOfTypeNames = ZorWBEquations::FractionTypeNumber + 1;

// The process-wide name table: parse and print names of every type, for the
// two spellings (below version 1, and from version 1 on).
struct TypeNameTable {
    ZorQelString parse[2][NbOfTypeNames];
    ZorQelString print[2][NbOfTypeNames];
    // Whether the print name is a symbol of its own rather than the parse
    // name standing in for one.
    bool hasSymbol[NbOfTypeNames] = {};

    TypeNameTable() {
        for (int type = 0; type < NbOfTypeNames; ++type) {
            const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
            ZorQelString name = info ? info->parseName : "Frac";
            ZorQelString symbol = info ? info->printName : "";
            hasSymbol[type] = !symbol.IsEmpty();
            parse[0][type] = name;
            parse[1][type] =
                type == static_cast<int>(ZorWBExpressionType::Integrate) ? name : name.ToLower();
            for (int spelling = 0; spelling < 2; ++spelling)
                print[spelling][type] = hasSymbol[type] ? symbol : parse[spelling][type];
        }
    }
};

const TypeNameTable& TypeNames() {
    static const TypeNameTable table;
    return table;
}

int Spelling(int version) {
    return version >= 1 ? 1 : 0;
}

bool IsKnownTypeNumber(int type) {
    return type >= 0 && type < NbOfTypeNames;
}

// The text after the count on a section's line.
ZorQelString Count(int count) {
    return ZorQelString::FromInt(count);
}

}  // namespace

ZorWBEquations::ZorWBEquations(ZorWBFactory& factory, ZorQelStorage::ReplayPart part, int version)
    : _factory(&factory), _part(part), _version(version) {}

ZorWBEquations::~ZorWBEquations() = default;

ZorQelOperator::OperatorInfo& ZorWBEquations::GetOperatorInfo() {
    static OperatorInfo info("ZorWBEquations", "EQS", "QelWBReplay");
    return info;
}

// ------------------------------------------------------------ name tables

ZorQelString ZorWBEquations::ExprTypeToStringParse(ZorWBExpressionType type, int version) {
    int number = static_cast<int>(type);
    if (!IsKnownTypeNumber(number)) return "None";
    return TypeNames().parse[Spelling(version)][number];
}

ZorQelString ZorWBEquations::ExprTypeToStringPrint(ZorWBExpressionType type, int version) {
    int number = static_cast<int>(type);
    if (!IsKnownTypeNumber(number)) return "None";
    return TypeNames().print[Spelling(version)][number];
}

ZorWBExpressionType ZorWBEquations::StringParseToExprType(const ZorQelString& text, int version) {
    const TypeNameTable& names = TypeNames();
    for (int type = 0; type < NbOfTypeNames; ++type) {
        if (names.parse[Spelling(version)][type] == text)
            return static_cast<ZorWBExpressionType>(type);
    }
    return ZorWBExpressionType::None;
}

ZorQelString ZorWBEquations::ValueTypeToString(ZorWBValueType type) {
    static const char* const names[] = {"Undefined",       "Integer",      "Real",
                                        "IntegerInterval", "RealInterval", "IntegerEnum",
                                        "RealEnum",        "Boolean",      "Fraction"};
    int number = static_cast<int>(type);
    if (number < 0 || number >= static_cast<int>(sizeof names / sizeof names[0])) return "";
    return names[number];
}

ZorQelString ZorWBEquations::BooleanToString(bool value) {
    return value ? "True" : "False";
}

ZorQelString ZorWBEquations::EquationTypeToString(ZorWBEquationType type) {
    static const char* const symbols[] = {"",   "=", "!=",         "<=",        "<",
                                          ">=", ">", "<minimize>", "<maximize>"};
    int number = static_cast<int>(type);
    if (number < 0 || number >= static_cast<int>(sizeof symbols / sizeof symbols[0])) return "";
    return symbols[number];
}

ZorQelString ZorWBEquations::FractionToName(const ZorWBFraction& fraction, int version) {
    return ZorWBValueText::WriteFraction(
        fraction,
        ExprTypeToStringPrint(static_cast<ZorWBExpressionType>(FractionTypeNumber), version));
}

ZorQelString ZorWBEquations::ValueToString(const ZorWBValue& value, int version) {
    if (version >= 1) return ZorWBEquationPrinter::PrintValue(value);
    return ZorWBValueText::Write(value, false);
}

// ------------------------------------------------------------ writing

class ZorWBEquations::VariableNames {
  public:
    explicit VariableNames(const ZorWBFactory& factory) : _factory(factory) {}

    bool Contains(const ZorQelString& text) {
        if (!_gathered) {
            for (int i = 0; i < _factory.GetNbOfVariables(); ++i)
                _names.insert(_factory.GetVariable(i)->GetName().GetStdString());
            _gathered = true;
        }
        return _names.count(text.GetStdString()) != 0;
    }

  private:
    const ZorWBFactory& _factory;
    std::unordered_set<std::string> _names;
    bool _gathered = false;
};

void ZorWBEquations::Write(ZorQelStream& stream, bool functional) const {
    WriteVariables(stream);
    WriteEquations(stream, functional);
    WriteValues(stream);
    if (_part == ZorQelStorage::InputPart) WriteEquationsToSimplify(stream);
}

void ZorWBEquations::WriteEnvironment(ZorQelStream& /*stream*/) const {}

void ZorWBEquations::WriteVariables(ZorQelStream& stream) const {
    int count = _factory->GetNbOfVariables();
    if (count == 0) return;
    ZorQelString body;
    for (int i = 0; i < count; ++i) {
        ZorWBVariable* variable = _factory->GetVariable(i);
        body.Append(ValueTypeToString(variable->GetValue().GetType()))
            .AppendChar(' ')
            .Append(variable->GetName());
        if (variable->IsFixed()) body.Append(" = fixed");
        body.Append(";\n");
    }
    stream.GetStorage().AddSection("#!VARIABLES", Count(count), body, _part, 0);
}

ZorQelString ZorWBEquations::EquationLine(ZorWBEquation* equation, bool functional,
                                          VariableNames& names) const {
    ZorQelString line("eq");
    line.AppendInt(equation->GetId())
        .Append(EquationTypeToString(equation->GetType()))
        .AppendChar(' ');
    std::unique_ptr<ZorQelExpressionTerm> term(CreateTerm(equation->GetRoot(), functional, names));
    // Without a term the line stays open, as the replay format has it.
    if (term) line.Append(term->ToString(functional)).Append(";\n");
    return line;
}

void ZorWBEquations::WriteEquations(ZorQelStream& stream, bool functional) const {
    int count = _factory->GetNbOfEquations();
    if (count == 0) return;
    ZorQelString body;
    VariableNames names(*_factory);
    for (ZorWBEquation* equation = _factory->GetNextEquation(nullptr); equation;
         equation = _factory->GetNextEquation(equation))
        body.Append(EquationLine(equation, functional, names));
    stream.GetStorage().AddSection("#!EQUATIONS", Count(count), body, _part, 0);
}

void ZorWBEquations::WriteValues(ZorQelStream& stream) const {
    int count = _factory->GetNbOfVariables();
    if (count == 0) return;
    ZorQelString body;
    for (int i = 0; i < count; ++i) {
        ZorWBVariable* variable = _factory->GetVariable(i);
        body.Append(variable->GetName())
            .Append(" = ")
            .Append(ValueToString(variable->GetValue()))
            .Append(";\n");
    }
    stream.GetStorage().AddSection("#!VALUES", Count(count), body, _part, 0);
}

void ZorWBEquations::WriteEquationsToSimplify(ZorQelStream& stream) const {
    if (_part != ZorQelStorage::InputPart || _listEqToSimplify.IsEmpty()) return;
    ZorQelString body;
    for (int id : _listEqToSimplify) {
        ZorWBEquation* equation = _factory->GetEquationById(id);
        if (equation) body.Append(equation->GetName()).Append(";\n");
    }
    stream.GetStorage().AddSection("#!SIMPLIFY", Count(_listEqToSimplify.GetSize()), body, _part,
                                   0);
}

void ZorWBEquations::WriteEquationNames(ZorQelStream& stream) const {
    int count = 0;
    ZorQelString body;
    for (ZorWBEquation* equation = _factory->GetNextEquation(nullptr); equation;
         equation = _factory->GetNextEquation(equation)) {
        ZorQelString defaultName = ZorQelString("eq").AppendInt(equation->GetId());
        if (equation->GetName() == defaultName) continue;
        body.Append(defaultName).Append(" = ").Append(equation->GetName()).Append(";\n");
        ++count;
    }
    if (count > 0) stream.GetStorage().AddSection("#!EQUATIONNAMES", Count(count), body, _part, 0);
}

// ------------------------------------------------------------ terms

namespace {

ZorQelString PredefinedName(ZorWBPredefinedConst index) {
    switch (index) {
        case ZorWBConstPiByTwo:
            return "PiByTwo";
        case ZorWBConstIndefinite:
            return "Indefinite";
        case ZorWBConstInvalid:
            return "Invalid";
        default:
            return "";
    }
}

// The term of a constant: its predefined name, its value text, or the name
// of its fraction (a leaf, or the Frac call).
ZorQelExpressionTerm* ConstantTerm(const ZorWBFactory& factory, const ZorWBExpression* node,
                                   int version) {
    ZorWBPredefinedConst index;
    if (factory.IsPredefinedConstant(static_cast<const ZorWBConstant*>(node), index) &&
        !PredefinedName(index).IsEmpty())
        return ZorQelExpressionTerm::CreateLeaf(PredefinedName(index));
    const ZorWBValue& value = node->GetValue();
    if (value.GetType() != ZorWBFractionType)
        return ZorQelExpressionTerm::CreateLeaf(ZorWBValueText::Write(value, true));
    return ZorQelExpressionTerm::Parse(
        ZorWBEquations::FractionToName(value.GetAsFraction(), version));
}

// Builds the term of one node; its operands are added by CreateTerm. A
// constant leaf that isName would read as a variable gets brackets until it
// does not.
template <class IsName>
ZorQelExpressionTerm* MakeNodeTerm(const ZorWBFactory& factory, const ZorWBExpression* node,
                                   int version, bool functional, IsName&& isName) {
    ZorWBExpressionType type = node->GetType();
    if (type == ZorWBExpressionType::Variable) {
        auto* variable = const_cast<ZorWBVariable*>(static_cast<const ZorWBVariable*>(node));
        return ZorQelExpressionTerm::CreateLeaf(variable->GetName());
    }
    if (type == ZorWBExpressionType::Constant) {
        std::unique_ptr<ZorQelExpressionTerm> term(ConstantTerm(factory, node, version));
        if (!term || !term->IsLeaf() || !isName(term->GetText())) return term.release();
        ZorQelString text = term->GetText();
        do {
            text = ZorQelString("(") + text + ")";
        } while (isName(text));
        return ZorQelExpressionTerm::CreateLeaf(text);
    }
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
    if (!info || info->family == ZorWBNodeFamily::NoNode) return nullptr;
    ZorQelString symbol;
    if (!functional && info->printName[0] != '\0')
        symbol = ZorWBEquations::ExprTypeToStringPrint(type, version);
    return ZorQelExpressionTerm::CreateOperator(
        ZorWBEquations::ExprTypeToStringParse(type, version), symbol);
}

// The leaves that an operator's term holds before or after its operands:
// the black box's name, the four parameters of a Step.
bool AddHeadLeaves(ZorQelExpressionTerm* term, const ZorWBExpression* node) {
    if (node->GetType() != ZorWBExpressionType::BlackBox) return true;
    ZorQelExpressionTerm* name = ZorQelExpressionTerm::CreateLeaf(
        static_cast<const ZorWBBlackBoxOperator*>(node)->GetBlackBoxName());
    if (!name) return false;
    term->AddChild(name);
    return true;
}

bool AddTailLeaves(ZorQelExpressionTerm* term, const ZorWBExpression* node) {
    if (node->GetType() != ZorWBExpressionType::Step) return true;
    for (int i = 0; i < node->GetNbOfParameters(); ++i) {
        ZorQelExpressionTerm* parameter =
            ZorQelExpressionTerm::CreateLeaf(ZorWBValueText::Write(node->GetParameter(i), true));
        if (!parameter) return false;
        term->AddChild(parameter);
    }
    return true;
}

}  // namespace

ZorQelExpressionTerm* ZorWBEquations::CreateTerm(const ZorWBExpression* e, bool functional) const {
    VariableNames names(*_factory);
    return CreateTerm(e, functional, names);
}

ZorQelExpressionTerm* ZorWBEquations::CreateTerm(const ZorWBExpression* e, bool functional,
                                                 VariableNames& names) const {
    if (!e || !ZorWBGraphWalk::IsUnfoldable(e)) return nullptr;
    auto isName = [&names](const ZorQelString& text) { return names.Contains(text); };
    // Each frame is a node whose term is made and whose operands are being
    // added in order; a shared node is expanded at each use.
    struct Frame {
        const ZorWBExpression* node;
        ZorQelExpressionTerm* term;
        int next;
    };
    std::unique_ptr<ZorQelExpressionTerm> root(
        MakeNodeTerm(*_factory, e, _version, functional, isName));
    if (!root) return nullptr;
    try {
        std::vector<Frame> stack{{e, root.get(), 0}};
        if (!AddHeadLeaves(root.get(), e)) return nullptr;
        while (!stack.empty()) {
            Frame& frame = stack.back();
            if (frame.node->IsLeaf() || frame.next == frame.node->GetNbOfChildren()) {
                if (!frame.node->IsLeaf() && !AddTailLeaves(frame.term, frame.node)) return nullptr;
                stack.pop_back();
                continue;
            }
            const ZorWBExpression* child = frame.node->GetChild(frame.next++);
            ZorQelExpressionTerm* term =
                child ? MakeNodeTerm(*_factory, child, _version, functional, isName) : nullptr;
            if (!term) return nullptr;
            frame.term->AddChild(term);
            if (!AddHeadLeaves(term, child)) return nullptr;
            stack.push_back({child, term, 0});
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return root.release();
}
