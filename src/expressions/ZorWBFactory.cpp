// The factory's core: lifetime, registration of nodes, predefined constants,
// tags, the property registry, temporary storage and buffer resets (removal
// is in ZorWBFactoryRemoval.cpp).

#include "expressions/ZorWBFactory.h"

#include <algorithm>
#include <climits>
#include <exception>
#include <new>
#include <unordered_map>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBCompiledFunction.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBProgramCache.h"
#include "expressions/ZorWBRealProgram.h"
#include "expressions/ZorWBValueProgram.h"
#include "qel/ZorQelGlobalParameters.h"

void ZorWBValue::UpdateEnv(const ZorWBFactory& factory) const {
    UpdateEnv(factory.GetEnvironment());
}

ZorWBFactory::ZorWBFactory(unsigned int level) : _environment(level) {
    Initialize();
}

ZorWBFactory::ZorWBFactory()
    : _environment(
          ZorQelGlobalParameters::GetGlobalParameters().GetQelFullOpenConfigurationLevel()) {
    Initialize();
}

void ZorWBFactory::Initialize() {
    _temporaryProperty = RegisterProperty("temporary", 0);
}

// Nodes last made first, then equations, black boxes and temporary nodes.
// Everything goes, so the nodes skip telling each other.
ZorWBFactory::~ZorWBFactory() {
    _destroying = true;
    for (ZorWBCompiledFunction* function : _compiledFunctions)
        function->ForgetFactory();
    _realPrograms.reset();
    _valuePrograms.reset();
    for (int i = _expressions.GetSize() - 1; i >= 0; --i)
        delete _expressions[i];
    _expressions.RemoveAll();
    _variables.RemoveAll();
    for (int i = _equations.GetSize() - 1; i >= 0; --i)
        delete _equations[i];
    _equations.RemoveAll();
    for (ZorWBExpression* node : _temporaryExpressions) {
        if (node->GetType() == ZorWBExpressionType::BlackBox)
            static_cast<ZorWBBlackBoxOperator*>(node)->RemoveBlackBox(true);
    }
    BlackBoxDeletion();
    for (int i = _temporaryExpressions.GetSize() - 1; i >= 0; --i)
        delete _temporaryExpressions[i];
    _temporaryExpressions.RemoveAll();
    _properties.clear();
}

void ZorWBFactory::BlackBoxDeletion() {
    for (ZorWBBlackBox* bb : _blackBoxes) {
        if (bb && bb->IsInternal()) delete bb;
    }
    _blackBoxes.RemoveAll();
    _derivBlackBoxes.RemoveAll();
}

// ------------------------------------------------------------ registration

namespace {
// Appends to a list of the factory, which grows by half its size when full
// rather than doubling: the lists are part of what every node costs.
template <class T>
void Append(ZorQelArray<T>& list, T item) {
    int size = list.GetSize();
    if (size == list.GetCapacity() && size <= INT_MAX / 3) list.Reserve(size + size / 2 + 16);
    list.Add(item);
}
}  // namespace

ZorWBExpression* ZorWBFactory::Register(ZorWBExpression* node, bool alwaysPermanent) {
    if (!node) return nullptr;
    bool temporary = _temporaryMode && !alwaysPermanent;
    try {
        Append(temporary ? _temporaryExpressions : _expressions, node);
    } catch (const std::bad_alloc&) {
        delete node;
        return nullptr;
    }
    if (temporary) node->SetProperty(_temporaryProperty, 1);
    return node;
}

bool ZorWBFactory::OperandsBelongHere(int n, ZorWBExpression* const* operands) const {
    if (n > 0 && !operands) return false;
    for (int i = 0; i < n; ++i) {
        if (!operands[i] || operands[i]->GetFactory() != this) return false;
    }
    return true;
}

// ------------------------------------------------------------ variables

ZorWBVariable* ZorWBFactory::CreateVariable(const int* tag) {
    ZorWBVariable* variable =
        new (std::nothrow) ZorWBVariable(this, TakeTag(tag), _variables.GetSize());
    if (!variable) return nullptr;
    try {
        Append(_variables, variable);
    } catch (const std::bad_alloc&) {
        delete variable;
        return nullptr;
    }
    if (!Register(variable, true)) {
        _variables.RemoveAt(_variables.GetSize() - 1);
        return nullptr;
    }
    _variablesSorted = false;
    return variable;
}

ZorWBVariable* ZorWBFactory::GetVariable(const ZorQelString& name) const {
    for (ZorWBVariable* variable : _variables) {
        if (variable->GetName() == name) return variable;
    }
    return nullptr;
}

ZorWBVariable* ZorWBFactory::GetNextVariable(const ZorWBVariable* variable) const {
    if (!variable) return GetVariable(0);
    int index = variable->GetIdx();
    return index < INT_MAX ? GetVariable(index + 1) : nullptr;
}

// ------------------------------------------------------------ predefined constants

ZorWBValue ZorWBFactory::GetPredefinedValue(ZorWBPredefinedConst index) {
    switch (index) {
        case ZorWBConstPi:
            return ZorWBValue(ZorWBCreateFraction(1, 1, 1, 0));
        case ZorWBConstPiByTwo:
            return ZorWBValue(ZorWBCreateFraction(1, 2, 1, 0));
        case ZorWBConstDToR:
            return ZorWBValue(ZorWBCreateFraction(1, 180, 1, 0));
        case ZorWBConstRToD:
            return ZorWBValue(ZorWBCreateFraction(180, 1, -1, 0));
        case ZorWBConstInvalid:
            return ZorWBValue(ZorWBRealMinusInfinity);
        case ZorWBConstMinusOne:
            return ZorWBValue(-1);
        case ZorWBConstZero:
            return ZorWBValue(0);
        case ZorWBConstOne:
            return ZorWBValue(1);
        case ZorWBConstTwo:
            return ZorWBValue(2);
        case ZorWBConstThree:
            return ZorWBValue(3);
        default:
            return ZorWBValue();  // Indefinite, and any other index
    }
}

ZorWBConstant* ZorWBFactory::GetConstant(ZorWBPredefinedConst index, bool create) {
    if (index < 0 || index >= ZorWBNbOfPredefinedConstants) return nullptr;
    if (_predefined[index] || !create) return _predefined[index];
    ZorWBConstant* constant =
        new (std::nothrow) ZorWBPredefinedConstant(this, TakeTag(nullptr), index);
    _predefined[index] = static_cast<ZorWBConstant*>(Register(constant, true));
    return _predefined[index];
}

bool ZorWBFactory::IsPredefinedConstant(const ZorWBConstant* constant,
                                        ZorWBPredefinedConst& index) const {
    index = static_cast<ZorWBPredefinedConst>(-1);
    if (!constant) return false;
    for (int i = 0; i < ZorWBNbOfPredefinedConstants; ++i) {
        if (_predefined[i] == constant) {
            index = static_cast<ZorWBPredefinedConst>(i);
            return true;
        }
    }
    return false;
}

// ------------------------------------------------------------ tags

void ZorWBFactory::UpdateGlobalTag(int tag) {
    if (tag >= _globalTag) _globalTag = tag < MaxTag ? tag + 1 : MaxTag;
}

ZorWBExpression* ZorWBFactory::GetExpressionFromTag(int tag) const {
    for (ZorWBExpression* node : _expressions) {
        if (node->GetTag() == tag) return node;
    }
    return nullptr;
}

// ------------------------------------------------------------ properties

int ZorWBFactory::RegisterProperty(const ZorQelString& name, int defaultValue) {
    for (std::size_t i = 0; i < _properties.size(); ++i) {
        if (_properties[i].name == name) return static_cast<int>(i);
    }
    try {
        _properties.push_back({name, defaultValue});
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return static_cast<int>(_properties.size()) - 1;
}

int ZorWBFactory::GetDefaultPropertyValue(int i) const {
    if (i < 0 || i >= GetNbOfProperties()) return -1;
    return _properties[static_cast<std::size_t>(i)].defaultValue;
}

ZorQelString ZorWBFactory::GetPropertyName(int i) const {
    if (i < 0 || i >= GetNbOfProperties()) return ZorQelString();
    return _properties[static_cast<std::size_t>(i)].name;
}

// ------------------------------------------------------------ temporary storage

void ZorWBFactory::UseTemporaryStorage(bool use) try {
    _temporaryMode = use;
    if (use || _temporaryExpressions.IsEmpty()) return;
    std::unordered_map<const ZorWBExpression*, ZorWBExpression*> copies;
    for (ZorWBEquation* equation : _equations)
        equation->SetRoot(ReplaceTemporaryExpressions(equation->GetRoot(), copies));
    std::vector<ZorWBExpression*> temporaries(_temporaryExpressions.begin(),
                                              _temporaryExpressions.end());
    std::reverse(temporaries.begin(), temporaries.end());  // the last made first
    DestroyNodes(temporaries);
} catch (const std::exception&) {
}

ZorWBExpression* ZorWBFactory::ReplaceTemporaryExpressions(ZorWBExpression* e) try {
    std::unordered_map<const ZorWBExpression*, ZorWBExpression*> copies;
    return ReplaceTemporaryExpressions(e, copies);
} catch (const std::exception&) {
    return e;
}

// Each node once, children first: a temporary node is copied (permanent,
// with its properties but "temporary"), and every child position that holds
// a replaced node takes the replacement, in permanent nodes too.
ZorWBExpression* ZorWBFactory::ReplaceTemporaryExpressions(
    ZorWBExpression* e, std::unordered_map<const ZorWBExpression*, ZorWBExpression*>& copies) {
    if (!e || e->GetFactory() != this) return e;
    bool mode = _temporaryMode;
    _temporaryMode = false;
    int temporaryDefault = GetDefaultPropertyValue(_temporaryProperty);
    ZorWBExpression* result = ZorWBGraphWalk::PostOrder<ZorWBExpression*>(
        e, copies, [&](const ZorWBExpression* node) -> ZorWBExpression* {
            ZorWBExpression* replacement = const_cast<ZorWBExpression*>(node);
            if (node->GetProperty(_temporaryProperty) != temporaryDefault) {
                ZorWBExpression* copy = CreateOperator(node);
                if (!copy) return replacement;
                for (int p = 0; p < GetNbOfProperties(); ++p) {
                    int value = node->GetProperty(p);
                    if (p != _temporaryProperty && value != GetDefaultPropertyValue(p))
                        copy->SetProperty(p, value);
                }
                replacement = copy;
            }
            for (int i = 0; i < ZorWBGraphWalk::NbOfChildren(replacement); ++i) {
                ZorWBExpression* child = ZorWBGraphWalk::Child(replacement, i);
                auto found = copies.find(child);
                if (found != copies.end() && found->second && found->second != child)
                    static_cast<ZorWBOperator*>(replacement)
                        ->ReplaceChildUnchecked(i, found->second);
            }
            return replacement;
        });
    _temporaryMode = mode;
    return result;
}

// ------------------------------------------------------------ buffers

void ZorWBFactory::ResetBuffer(ZorWBExpression* e) {
    if (!_bufferUsed) return;
    if (e) {
        e->ResetBufferComplete();
        return;
    }
    for (ZorWBExpression* node : _expressions)
        node->ResetBufferPartial();
    // Temporary nodes keep their buffers, so while there are any a later
    // change must still travel up through them.
    if (_temporaryExpressions.IsEmpty()) _bufferUsed = false;
}
