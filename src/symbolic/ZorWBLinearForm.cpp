#include "symbolic/ZorWBLinearForm.h"

#include <algorithm>
#include <exception>
#include <unordered_map>
#include <utility>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBFactory.h"
#include "symbolic/ZorWBConstantArithmetic.h"
#include "values/ZorWBLevel.h"
#include "values/ZorWBValueFunctions.h"

using Type = ZorWBExpressionType;

namespace {

unsigned int KindOfNumber(double d) {
    if (d == 0.0) return ZorWBLinearForm::AbsentKind;
    if (d == 1.0) return ZorWBLinearForm::OneKind;
    if (d == -1.0) return ZorWBLinearForm::MinusOneKind;
    return ZorWBLinearForm::GeneralKind;
}

// A constant times a variable, in either order.
bool IsCoefficientTimesVariable(const ZorWBExpression* e, const ZorWBVariable*& variable,
                                const ZorWBValue*& coefficient) {
    if (!e || e->GetType() != Type::Product || e->GetNbOfChildren() != 2) return false;
    const ZorWBExpression* a = e->GetChild(0);
    const ZorWBExpression* b = e->GetChild(1);
    if (!a || !b) return false;
    if (a->GetType() == Type::Variable) std::swap(a, b);
    if (a->GetType() != Type::Constant || b->GetType() != Type::Variable) return false;
    variable = static_cast<const ZorWBVariable*>(b);
    coefficient = &a->GetExprValue();
    return true;
}

// A variable (coefficient 1) or a constant times a variable.
bool TermOfVariable(const ZorWBExpression* e, int& variable, ZorWBValue& coefficient) {
    const ZorWBVariable* x = nullptr;
    const ZorWBValue* value = nullptr;
    if (e && e->GetType() == Type::Variable) {
        variable = static_cast<const ZorWBVariable*>(e)->GetIdx();
        coefficient = ZorWBValue(1);
        return true;
    }
    if (!IsCoefficientTimesVariable(e, x, value)) return false;
    variable = x->GetIdx();
    coefficient = *value;
    return true;
}

bool HasNullChild(const ZorWBExpression* e) {
    for (int i = 0; i < e->GetNbOfChildren(); ++i) {
        if (!e->GetChild(i)) return true;
    }
    return false;
}

}  // namespace

void ZorWBLinearForm::Reset(int nbOfVariables) {
    _nbOfVariables = std::max(nbOfVariables, 0);
    _entries.clear();
    _pivot = NoPivot;
    _remainder = nullptr;
    _hasConstant = false;
    _constant = ZorWBValue();
}

unsigned int ZorWBLinearForm::Classify(const ZorWBValue& value, unsigned int level) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType:
            return KindOfNumber(value.GetAsReal());
        case ZorWBIntegerIntervalType:
        case ZorWBRealIntervalType:
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType: {
            ZorWBRealInterval hull = value.GetAsRealInterval();
            return hull.low == hull.high ? KindOfNumber(hull.low) : GeneralKind;
        }
        case ZorWBFractionType:
            return ZorWBCheckLevel(level, ZorWBLevel::FractionAsReal)
                       ? KindOfNumber(value.GetAsReal())
                       : GeneralKind;
        default:
            return GeneralKind;
    }
}

std::vector<ZorWBLinearForm::Entry>::iterator ZorWBLinearForm::Find(int j) {
    return std::lower_bound(_entries.begin(), _entries.end(), j,
                            [](const Entry& e, int v) { return e.variable < v; });
}

std::vector<ZorWBLinearForm::Entry>::const_iterator ZorWBLinearForm::Find(int j) const {
    return std::lower_bound(_entries.begin(), _entries.end(), j,
                            [](const Entry& e, int v) { return e.variable < v; });
}

unsigned int ZorWBLinearForm::GetKind(int j) const {
    auto found = Find(j);
    return found != _entries.end() && found->variable == j ? found->kind : AbsentKind;
}

ZorWBValue ZorWBLinearForm::GetCoefficient(int j) const {
    auto found = Find(j);
    if (found == _entries.end() || found->variable != j) return ZorWBValue(0);
    if (found->kind == OneKind) return ZorWBValue(1);
    if (found->kind == MinusOneKind) return ZorWBValue(-1);
    return found->value;
}

void ZorWBLinearForm::SetCoefficient(int j, const ZorWBValue& value, unsigned int level) try {
    if (j < 0 || j >= _nbOfVariables) return;
    unsigned int kind = Classify(value, level);
    auto found = Find(j);
    bool present = found != _entries.end() && found->variable == j;
    if (kind == AbsentKind) {
        if (present) _entries.erase(found);
        return;
    }
    ZorWBValue stored = kind == GeneralKind ? value : ZorWBValue();
    if (present) {
        found->kind = kind;
        found->value = stored;
    } else {
        _entries.insert(found, Entry{j, kind, stored});
    }
} catch (const std::exception&) {
}

void ZorWBLinearForm::SetKind(int j, unsigned int kind) {
    if (kind == OneKind) SetCoefficient(j, ZorWBValue(1), 0);
    if (kind == MinusOneKind) SetCoefficient(j, ZorWBValue(-1), 0);
    if (kind == AbsentKind) SetCoefficient(j, ZorWBValue(0), 0);
}

// ------------------------------------------------------------ remainder

ZorWBExpression* ZorWBLinearForm::GetRemainder(ZorWBFactory& factory) const {
    ZorWBExpression* constant = _hasConstant ? factory.CreateConstant(_constant) : nullptr;
    if (_remainder && constant) return factory.CreateSum(_remainder, constant);
    return _remainder ? _remainder : constant;
}

void ZorWBLinearForm::SetRemainder(ZorWBExpression* remainder) {
    _remainder = nullptr;
    _hasConstant = false;
    _constant = ZorWBValue();
    if (remainder && remainder->GetType() == Type::Constant) {
        _constant = remainder->GetExprValue();
        _hasConstant = true;
    } else {
        _remainder = remainder;
    }
}

void ZorWBLinearForm::AddRemainderTerm(ZorWBFactory& factory, ZorWBExpression* term) {
    if (!term) return;
    if (term->GetType() == Type::Constant) {
        AddRemainderConstant(factory, term->GetExprValue());
        return;
    }
    _remainder = _remainder ? factory.CreateSum(_remainder, term) : term;
}

void ZorWBLinearForm::AddRemainderConstant(ZorWBFactory& factory, const ZorWBValue& value) {
    if (!_hasConstant) {
        _constant = value;
        _hasConstant = true;
        return;
    }
    ZorWBValue sum;
    if (ZorWBConstantArithmetic::Sum(factory.GetEnvironment(), _constant, value, false, sum)) {
        _constant = sum;
        return;
    }
    // No exact sum (different powers of Pi): the value stays a term.
    ZorWBExpression* term = factory.CreateConstant(value);
    if (term) _remainder = _remainder ? factory.CreateSum(_remainder, term) : term;
}

void ZorWBLinearForm::ScaleRemainder(ZorWBFactory& factory, const ZorWBValue& factor) {
    const ZorWBEnvironment& environment = factory.GetEnvironment();
    if (_remainder) _remainder = factory.CreateProduct(factory.CreateConstant(factor), _remainder);
    if (!_hasConstant) return;
    ZorWBValue product;
    if (ZorWBConstantArithmetic::Product(environment, factor, _constant, product)) {
        _constant = product;
        return;
    }
    ZorWBExpression* term =
        factory.CreateProduct(factory.CreateConstant(factor), factory.CreateConstant(_constant));
    _hasConstant = false;
    AddRemainderTerm(factory, term);
}

void ZorWBLinearForm::AddRemainder(ZorWBFactory& factory, const ZorWBLinearForm& other,
                                   const ZorWBValue& b, bool bIsOne) {
    if (other._hasConstant) {
        ZorWBValue product;
        if (bIsOne) {
            AddRemainderConstant(factory, other._constant);
        } else if (ZorWBConstantArithmetic::Product(factory.GetEnvironment(), b, other._constant,
                                                    product)) {
            AddRemainderConstant(factory, product);
        } else {
            AddRemainderTerm(factory,
                             factory.CreateProduct(factory.CreateConstant(b),
                                                   factory.CreateConstant(other._constant)));
        }
    }
    if (other._remainder) {
        AddRemainderTerm(
            factory, bIsOne ? other._remainder
                            : factory.CreateProduct(factory.CreateConstant(b), other._remainder));
    }
}

// ------------------------------------------------------------ elimination

bool ZorWBLinearForm::FillValues(ZorWBFactory& factory, ZorWBExpression* root) try {
    Reset(factory.GetNbOfVariables());
    if (!root) return false;
    unsigned int level = factory.GetWBLevel();
    const ZorWBVariable* variable = nullptr;
    const ZorWBValue* coefficient = nullptr;
    Type type = root->GetType();
    if (type == Type::Variable) {
        SetKind(static_cast<const ZorWBVariable*>(root)->GetIdx(), OneKind);
        return true;
    }
    if (type == Type::Product) {
        if (!IsCoefficientTimesVariable(root, variable, coefficient)) return false;
        SetCoefficient(variable->GetIdx(), *coefficient, level);
        return true;
    }
    if (type != Type::Sum) return false;
    // Each term, in order; a later term of a variable replaces an earlier one.
    std::vector<ZorWBExpression*> others;
    for (int i = 0; i < root->GetNbOfChildren(); ++i) {
        ZorWBExpression* child = root->GetChild(i);
        if (!child) continue;
        if (child->GetType() == Type::Variable) {
            SetKind(static_cast<ZorWBVariable*>(child)->GetIdx(), OneKind);
        } else if (IsCoefficientTimesVariable(child, variable, coefficient)) {
            SetCoefficient(variable->GetIdx(), *coefficient, level);
        } else if (child->GetType() == Type::Product && child->GetNbOfChildren() == 2 &&
                   HasNullChild(child)) {
            continue;
        } else {
            others.push_back(child);
        }
    }
    // A variable that also occurs inside a compound term is not an unknown
    // of the form: its term joins the remainder.
    bool compound = std::any_of(others.begin(), others.end(),
                                [](const ZorWBExpression* e) { return !e->IsConstant(); });
    if (compound) {
        ZorQelArray<unsigned char> present(_nbOfVariables, 0);
        for (const ZorWBExpression* term : others)
            term->FillPresentVariables(present.GetData());
        std::vector<Entry> kept;
        for (const Entry& entry : _entries) {
            if (!present.Get(entry.variable)) {
                kept.push_back(entry);
                continue;
            }
            ZorWBExpression* x = factory.GetVariable(entry.variable);
            others.push_back(entry.kind == OneKind
                                 ? x
                                 : factory.CreateProduct(
                                       factory.CreateConstant(GetCoefficient(entry.variable)), x));
        }
        _entries.swap(kept);
    }
    std::vector<ZorWBExpression*> compoundTerms;
    for (ZorWBExpression* term : others) {
        if (term && term->GetType() == Type::Constant) {
            AddRemainderConstant(factory, term->GetExprValue());
        } else if (term) {
            compoundTerms.push_back(term);
        }
    }
    if (compoundTerms.size() == 1) {
        _remainder = compoundTerms.front();
    } else if (compoundTerms.size() > 1) {
        _remainder = factory.CreateOperator(Type::Sum, static_cast<int>(compoundTerms.size()),
                                            compoundTerms.data());
    }
    if (_entries.empty()) {
        Reset(_nbOfVariables);
        return false;
    }
    return true;
} catch (const std::exception&) {
    Reset(_nbOfVariables);
    return false;
}

ZorWBExpression* ZorWBLinearForm::MergeRepeatedVariables(ZorWBFactory& factory,
                                                         ZorWBExpression* root) try {
    if (!root || root->GetType() != Type::Sum) return root;
    const ZorWBEnvironment& environment = factory.GetEnvironment();
    int n = root->GetNbOfChildren();
    // The variable of each child that is a term of one (-1 otherwise), and
    // for each variable its first term and the sum of its coefficients.
    std::vector<int> variableOf(static_cast<std::size_t>(n), -1);
    std::unordered_map<int, std::pair<int, ZorWBValue>> totals;
    bool repeated = false;
    for (int i = 0; i < n; ++i) {
        int v = -1;
        ZorWBValue coefficient;
        if (!TermOfVariable(root->GetChild(i), v, coefficient)) continue;
        variableOf[std::size_t(i)] = v;
        auto entry = totals.emplace(v, std::make_pair(i, coefficient));
        if (entry.second) continue;
        repeated = true;
        ZorWBValue& total = entry.first->second.second;
        if (!ZorWBConstantArithmetic::Sum(environment, total, coefficient, true, total))
            return root;
    }
    if (!repeated) return root;
    std::vector<ZorWBExpression*> children;
    for (int i = 0; i < n; ++i) {
        int v = variableOf[std::size_t(i)];
        if (v < 0) {
            children.push_back(root->GetChild(i));
            continue;
        }
        const std::pair<int, ZorWBValue>& entry = totals[v];
        if (entry.first != i || ZorWBConstantArithmetic::IsExactly(entry.second, 0.0)) continue;
        ZorWBExpression* x = factory.GetVariable(v);
        bool one = entry.second.IsAKindOf(ZorWBIntegerType) && entry.second.GetAsInteger() == 1;
        children.push_back(one ? x
                               : factory.CreateProduct(factory.CreateConstant(entry.second), x));
    }
    if (children.empty()) return factory.CreateIntegerConstant(0);
    if (children.size() == 1) return children.front();
    return factory.CreateOperator(Type::Sum, static_cast<int>(children.size()), children.data());
} catch (const std::exception&) {
    return root;
}

bool ZorWBLinearForm::HasInexactCoefficient(const ZorWBEnvironment& environment) const {
    return std::any_of(_entries.begin(), _entries.end(), [&environment](const Entry& entry) {
        return entry.kind == GeneralKind && !entry.value.IsExact(environment);
    });
}

void ZorWBLinearForm::ScaleCoefficients(const ZorWBEnvironment& environment, unsigned int level,
                                        int p, const ZorWBValue& factor) try {
    std::vector<Entry> scaled;
    scaled.reserve(_entries.size());
    for (const Entry& entry : _entries) {
        if (entry.variable == p) {
            scaled.push_back(entry);
            continue;
        }
        ZorWBValue value = ZorWBMul(environment, factor, GetCoefficient(entry.variable));
        unsigned int kind = Classify(value, level);
        if (kind != AbsentKind)
            scaled.push_back({entry.variable, kind, kind == GeneralKind ? value : ZorWBValue()});
    }
    _entries.swap(scaled);
} catch (const std::exception&) {
}

void ZorWBLinearForm::AddScaledRow(const ZorWBEnvironment& environment, unsigned int level,
                                   const ZorWBLinearForm& row, int p, const ZorWBValue& b,
                                   std::vector<int>& appeared) try {
    std::vector<Entry> merged;
    merged.reserve(_entries.size() + row._entries.size());
    auto mine = _entries.begin();
    for (const Entry& entry : row._entries) {
        if (entry.variable == p) continue;
        for (; mine != _entries.end() && mine->variable < entry.variable; ++mine)
            merged.push_back(*mine);
        bool present = mine != _entries.end() && mine->variable == entry.variable;
        ZorWBValue current = present ? GetCoefficient(entry.variable) : ZorWBValue(0);
        ZorWBValue sum = ZorWBSum(environment, current,
                                  ZorWBMul(environment, row.GetCoefficient(entry.variable), b));
        unsigned int kind = Classify(sum, level);
        if (kind != AbsentKind) {
            merged.push_back({entry.variable, kind, kind == GeneralKind ? sum : ZorWBValue()});
            if (!present) appeared.push_back(entry.variable);
        }
        if (present) ++mine;
    }
    for (; mine != _entries.end(); ++mine)
        merged.push_back(*mine);
    _entries.swap(merged);
} catch (const std::exception&) {
}

ZorQelString ZorWBLinearForm::ToString(ZorWBFactory& factory) const try {
    ZorQelString text;
    for (const Entry& entry : _entries) {
        ZorWBVariable* variable = factory.GetVariable(entry.variable);
        ZorQelString name = variable ? variable->GetName() : ZorQelString("??");
        if (entry.kind == MinusOneKind) {
            text += " - ";
        } else if (entry.kind == OneKind) {
            text += " + ";
        } else {
            text += " + ";
            switch (entry.value.GetType()) {
                case ZorWBIntegerType:
                case ZorWBRealType:
                    text.AppendDouble(entry.value.GetAsReal());
                    break;
                case ZorWBIntegerIntervalType:
                case ZorWBRealIntervalType:
                case ZorWBIntegerEnumType:
                case ZorWBRealEnumType: {
                    ZorWBRealInterval hull = entry.value.GetAsRealInterval();
                    text += "[";
                    text.AppendDouble(hull.low);
                    text += ", ";
                    text.AppendDouble(hull.high);
                    text += "]";
                    break;
                }
                default:
                    text += "??";
                    break;
            }
            text += " * ";
        }
        text += name;
    }
    if (HasRemainder()) {
        text += " + ##";
        text += ZorWBDebug::ExpStr(GetRemainder(factory));
        text += " ##";
    }
    text += "\n";
    return text;
} catch (const std::exception&) {
    return ZorQelString();
}
