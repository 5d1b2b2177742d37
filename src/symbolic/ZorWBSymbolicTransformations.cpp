#include "symbolic/ZorWBSymbolicTransformations.h"

#include <exception>
#include <new>
#include <unordered_map>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "output/ZorWBEquations.h"
#include "qel/ZorQelGlobalParameters.h"
#include "symbolic/ZorWBNaryShapes.h"
#include "symbolic/ZorWBSymbolicTransformationsNew.h"
#include "symbolic/ZorWBSymbolicTransformationsOld.h"

using Type = ZorWBExpressionType;

const int ZorWBSymbolicTransformations::_CurrentStreamVersion = 1;
ZorQelOperator::OperatorInfo* ZorWBSymbolicTransformations::_pInfo = nullptr;

namespace {

const char* const PropertyNames[2] = {"constant", "linear"};

}  // namespace

ZorWBSymbolicTransformations::ZorWBSymbolicTransformations(unsigned int level,
                                                           ZorWBFactory& factory)
    : _factory(factory) {
    SetQelLevel(level);
}

ZorWBSymbolicTransformations::~ZorWBSymbolicTransformations() = default;

int ZorWBSymbolicTransformations::RunOperator() {
    return 0;
}

ZorQelOperator::OperatorInfo& ZorWBSymbolicTransformations::GetOperatorInfo() {
    if (!_pInfo) {
        static OperatorInfo info("ZorWBSymbolicTransformations", "ST", "QelWBReplay");
        _pInfo = &info;
    }
    return *_pInfo;
}

bool ZorWBSymbolicTransformations::SetEquationToSimplify(int /*id*/) {
    return false;
}

bool ZorWBSymbolicTransformations::AreInequalitiesInconsistent() {
    return false;
}

// ------------------------------------------------------------ properties

void ZorWBSymbolicTransformations::RegisterProperty(ZorWBProperty property) {
    _propertyIds[property] = _factory.RegisterProperty(PropertyNames[property], 0);
}

bool ZorWBSymbolicTransformations::GetProperty(ZorWBExpression* expression,
                                               ZorWBProperty property) {
    return expression && expression->GetProperty(_propertyIds[property]) == 1;
}

void ZorWBSymbolicTransformations::SetProperty(ZorWBExpression* expression, ZorWBProperty property,
                                               bool value) {
    if (!expression) return;
    int stored = value ? 1 : 0;
    // Storing the same value again would only invalidate buffers above.
    if (expression->GetProperty(_propertyIds[property]) != stored)
        expression->SetProperty(_propertyIds[property], stored);
}

void ZorWBSymbolicTransformations::SetProperties(ZorWBExpression* expression) try {
    if (!expression) return;
    bool linearToo = (_mode & ComputeLinearMode) != 0;
    std::unordered_map<const ZorWBExpression*, bool> done;
    ZorWBGraphWalk::PostOrder<bool>(expression, done, [&](const ZorWBExpression* node) {
        ZorWBExpression* e = const_cast<ZorWBExpression*>(node);
        Type type = e->GetType();
        if (type == Type::Variable || type == Type::Constant) {
            if (type == Type::Constant) SetProperty(e, ZorWBConstantProperty, true);
            if (linearToo) SetProperty(e, ZorWBLinearProperty, true);
            return true;
        }
        int n = e->GetNbOfChildren();
        int constants = 0;
        int linears = 0;
        for (int i = 0; i < n; ++i) {
            ZorWBExpression* child = e->GetChild(i);
            if (!child) continue;
            if (GetProperty(child, ZorWBConstantProperty)) ++constants;
            if (GetProperty(child, ZorWBLinearProperty)) ++linears;
        }
        SetProperty(e, ZorWBConstantProperty, constants == n);
        // "linear" is only ever set on operators, never cleared.
        bool linear = (type == Type::Sum && linears == n) ||
                      (type == Type::Product && linears == n && linears - constants <= 1);
        if (linearToo && linear) SetProperty(e, ZorWBLinearProperty, true);
        return true;
    });
} catch (const std::exception&) {
}

// ------------------------------------------------------------ shapes

ZorWBExpression* ZorWBSymbolicTransformations::Flatten(ZorWBExpression* root) {
    return ZorWBFlatten(_factory, root);
}

ZorWBExpression* ZorWBSymbolicTransformations::Binarise(ZorWBExpression* root,
                                                        bool keepIfThenElse) {
    return ZorWBBinarise(_factory, root, keepIfThenElse);
}

// ------------------------------------------------------------ replay

void ZorWBSymbolicTransformations::AddSystemSections(ZorQelStream& stream,
                                                     ZorQelStorage::ReplayPart part,
                                                     const ZorQelIntArray* equationsToSimplify) {
    ZorWBEquations system(_factory, part, _CurrentStreamVersion);
    if (equationsToSimplify) system.SetListEqToSimplify(*equationsToSimplify);
    system.Write(stream, true);
}

void ZorWBSymbolicTransformations::WriteInputSections(ZorQelStream& stream,
                                                      const ZorQelIntArray* equationsToSimplify) {
    ZorQelOperator::WriteInput(stream);
    AddSystemSections(stream, ZorQelStorage::InputPart, equationsToSimplify);
    stream.GetStorage().AddSection("#!MODE", ZorQelString::FromInt(_mode), "",
                                   ZorQelStorage::InputPart, ZorQelStorage::AppendSection);
    stream.WriteSections(ZorQelStorage::InputPart);
}

// ------------------------------------------------------------ trace

int ZorWBSymbolicTransformations::TraceLevel() {
    return ZorQelGlobalParameters::GetGlobalParameters().GetTransformationTraceLevel();
}

void ZorWBSymbolicTransformations::Trace(const ZorQelString& text) {
    ZorQelStream* stream = ZorQelGlobalParameters::GetGlobalParameters().GetTraceStream();
    if (stream) stream->Write(text);
}

void ZorWBSymbolicTransformations::TraceSystem(ZorWBExpression* const* definitions,
                                               int nbOfDefinitions) {
    int index = 0;
    for (ZorWBEquation* equation = _factory.GetFirstEquation(); equation;
         equation = equation->GetNext(), ++index) {
        Trace(ZorQelString("Eq[") + index + "] = " + ZorWBDebug::ExpStr(equation->GetRoot()) +
              "\n");
    }
    if (!definitions || nbOfDefinitions != _factory.GetNbOfVariables()) return;
    for (int i = 0; i < nbOfDefinitions; ++i)
        Trace(ZorQelString("Var[") + i + "] = " + ZorWBDebug::ExpStr(definitions[i]) + "\n");
}

// ------------------------------------------------------------ creation

ZorWBSymbolicTransformations* ZorCreateWBSymbolicTransformations(unsigned int level,
                                                                 ZorWBFactory& factory) {
    try {
        if (!factory.GetEnvironment().IsUseOldSymbolicTransformations())
            return new (std::nothrow) ZorWBSymbolicTransformationsNew(level, factory);
        return new (std::nothrow) ZorWBSymbolicTransformationsOld(level, factory);
    } catch (const std::exception&) {
        return nullptr;
    }
}

void ZorRemove(ZorWBSymbolicTransformations* transformations) {
    delete transformations;
}
