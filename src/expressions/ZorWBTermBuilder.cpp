#include "expressions/ZorWBTermBuilder.h"

#include "expressions/ZorWBConstant.h"

namespace {

bool ReadsAs(const ZorWBExpression* e, bool zero) {
    if (!e || e->GetType() != ZorWBExpressionType::Constant) return false;
    bool isZero = false;
    bool isOne = false;
    static_cast<const ZorWBConstant*>(e)->IsZeroOrOne(isZero, isOne);
    return zero ? isZero : isOne;
}

}  // namespace

bool ZorWBTermBuilder::IsZero(const ZorWBExpression* e) {
    return ReadsAs(e, true);
}

bool ZorWBTermBuilder::IsOne(const ZorWBExpression* e) {
    return ReadsAs(e, false);
}

ZorWBExpression* ZorWBTermBuilder::Product(std::initializer_list<ZorWBExpression*> factors) {
    return Product(std::vector<ZorWBExpression*>(factors));
}

ZorWBExpression* ZorWBTermBuilder::Product(const std::vector<ZorWBExpression*>& factors) {
    std::vector<ZorWBExpression*> kept;
    kept.reserve(factors.size());
    for (ZorWBExpression* factor : factors) {
        if (!factor) return nullptr;
        if (!IsOne(factor)) kept.push_back(factor);
    }
    if (kept.empty()) return _factory.GetOne();
    if (kept.size() == 1) return kept.front();
    return _factory.CreateProduct(static_cast<int>(kept.size()), kept.data());
}

ZorWBExpression* ZorWBTermBuilder::Negative(std::initializer_list<ZorWBExpression*> factors) {
    std::vector<ZorWBExpression*> all{_factory.GetMinusOne()};
    all.insert(all.end(), factors.begin(), factors.end());
    return Product(all);
}

ZorWBExpression* ZorWBTermBuilder::Difference(ZorWBExpression* a, ZorWBExpression* b) {
    return _factory.CreateDifference(a, b);
}

ZorWBExpression* ZorWBTermBuilder::Over(ZorWBExpression* numerator, ZorWBExpression* denominator) {
    if (!numerator || !denominator) return nullptr;
    return IsOne(denominator) ? numerator : _factory.CreateQuotient(numerator, denominator);
}

ZorWBExpression* ZorWBTermBuilder::Square(ZorWBExpression* a) {
    return _factory.CreatePower(a, _factory.GetTwo());
}

ZorWBExpression* ZorWBTermBuilder::Sum(const std::vector<ZorWBExpression*>& terms) {
    for (ZorWBExpression* term : terms) {
        if (!term) return nullptr;
    }
    if (terms.empty()) return _factory.CreateIntegerConstant(0);
    if (terms.size() == 1) return terms.front();
    return _factory.CreateOperator(ZorWBExpressionType::Sum, static_cast<int>(terms.size()),
                                   terms.data());
}

ZorWBExpression* ZorWBTermBuilder::Where(ZorWBExpression* condition, ZorWBExpression* term) {
    return _factory.CreateIfThenElse(condition, term, _factory.GetZero());
}
