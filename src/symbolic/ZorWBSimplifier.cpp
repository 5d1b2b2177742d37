#include "symbolic/ZorWBSimplifier.h"

#include <exception>
#include <new>
#include <unordered_map>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "qel/ZorQelGlobalParameters.h"
#include "symbolic/ZorWBConstantArithmetic.h"
#include "symbolic/ZorWBSimplifierEngine.h"
#include "values/ZorWBLevel.h"

namespace {

// The level of the trace that shows each simplified expression.
constexpr int ExpressionTraceLevel = 2;

}  // namespace

ZorWBSimplifier::ZorWBSimplifier(ZorWBFactory& factory)
    : _factory(factory), _engine(new (std::nothrow) ZorWBSimplifierEngine(factory)) {}

ZorWBSimplifier::~ZorWBSimplifier() = default;

void ZorWBSimplifier::SetDefinitions(ZorWBExpression* const* expressions,
                                     const ZorQelBoolArray* dependencies, int n) try {
    if (_engine) _engine->SetDefinitions(expressions, dependencies, n);
} catch (const std::exception&) {
    ClearDefinitions();
}

void ZorWBSimplifier::ClearDefinitions() {
    if (_engine) _engine->SetDefinitions(nullptr, nullptr, 0);
}

bool ZorWBSimplifier::Vanishes(const ZorWBExpression* expression, bool keepConstantRoots) const {
    return !keepConstantRoots && expression &&
           expression->GetType() == ZorWBExpressionType::Constant &&
           ZorWBConstantArithmetic::IsExactly(expression->GetExprValue(), 0.0);
}

ZorWBExpression* ZorWBSimplifier::Simplify(ZorWBExpression* expression, bool keepConstantRoots) {
    if (!expression || !_engine) return expression;
    try {
        ZorWBSimplifierEngine& engine = *_engine;
        unsigned int level = _factory.GetWBLevel();
        ZorWBExpression* result = engine.RunPass(ZorWBSimplifierPass::Prepare, expression);
        if (Vanishes(result, keepConstantRoots)) return Finish(expression, nullptr);
        result = engine.RunPass(ZorWBSimplifierPass::CosTan, result);
        if (Vanishes(result, keepConstantRoots)) return Finish(expression, nullptr);
        int rounds = ZorWBCheckLevel(level, ZorWBLevel::ThreeSimplifyRounds) ? 3 : 1;
        for (int round = 0; round < rounds; ++round) {
            ZorWBExpression* next = engine.RunPass(ZorWBSimplifierPass::Round, result);
            if (Vanishes(next, keepConstantRoots)) return Finish(expression, nullptr);
            bool settled = next == result || next->IsEqualTo(result);
            result = next;
            if (settled) break;
        }
        result = engine.RunPass(ZorWBSimplifierPass::SinCos, result);
        if (Vanishes(result, keepConstantRoots)) return Finish(expression, nullptr);
        if (ZorWBCheckLevel(level, ZorWBLevel::MergeLikeTermsPass)) {
            result = engine.RunPass(ZorWBSimplifierPass::MergeLikeTerms, result);
            if (Vanishes(result, keepConstantRoots)) return Finish(expression, nullptr);
        }
        return Finish(expression, result);
    } catch (const std::exception&) {
        _engine->ForgetResults();
        return expression;
    }
}

ZorWBExpression* ZorWBSimplifier::SimplifyOnce(ZorWBExpression* expression,
                                               bool keepConstantRoots) {
    if (!expression || !_engine) return expression;
    try {
        ZorWBExpression* result = _engine->RunPass(ZorWBSimplifierPass::Prepare, expression);
        if (!Vanishes(result, keepConstantRoots))
            result = _engine->RunPass(ZorWBSimplifierPass::Round, result);
        return Finish(expression, Vanishes(result, keepConstantRoots) ? nullptr : result);
    } catch (const std::exception&) {
        _engine->ForgetResults();
        return expression;
    }
}

ZorWBExpression* ZorWBSimplifier::FinalNormalisation(ZorWBExpression* expression) {
    if (!expression || !_engine) return expression;
    try {
        return _engine->RunPass(ZorWBSimplifierPass::Final, expression);
    } catch (const std::exception&) {
        _engine->ForgetResults();
        return expression;
    }
}

ZorWBExpression* ZorWBSimplifier::Finish(ZorWBExpression* input, ZorWBExpression* result) {
    ZorQelGlobalParameters& parameters = ZorQelGlobalParameters::GetGlobalParameters();
    if (parameters.GetTransformationTraceLevel() < ExpressionTraceLevel) return result;
    ZorQelStream* stream = parameters.GetTraceStream();
    if (!stream) return result;
    ZorQelString text("Expr: ");
    text += ZorWBDebug::ExpStr(input);
    text += " with weight (";
    text += Weight(input);
    text += ") simplified to ";
    text += result ? ZorWBDebug::ExpStr(result) : ZorQelString("NULL");
    text += "\n";
    stream->Write(text);
    return result;
}

long long ZorWBSimplifier::Weight(const ZorWBExpression* expression) try {
    if (!expression) return 0;
    std::unordered_map<const ZorWBExpression*, long long> weights;
    return ZorWBGraphWalk::PostOrder<long long>(
        expression, weights, [&weights](const ZorWBExpression* node) {
            long long weight = 1;
            for (int i = 0; i < node->GetNbOfChildren(); ++i) {
                const ZorWBExpression* child = node->GetChild(i);
                if (!child) continue;
                weight += weights[child];
                if (weight > ZorWBSimplifierEngine::WeightLimit)
                    weight = ZorWBSimplifierEngine::WeightLimit;
            }
            return weight;
        });
} catch (const std::exception&) {
    return ZorWBSimplifierEngine::WeightLimit;
}
