// Segment functions and interpolating polynomials, built from ordinary
// nodes so that evaluation, differentiation and printing need nothing
// special.

#include <exception>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBSegmentFunction.h"
#include "expressions/ZorWBTermBuilder.h"

using Interval = ZorWBSegmentFunctionInterval;

// ------------------------------------------------------------ shapes

ZorWBExpression* ZorWBFactory::CreateSegmentFunction_X(ZorWBExpression* x,
                                                       const ZorWBSegmentFunctionDataPt& start,
                                                       const ZorWBSegmentFunctionDataPt& end) {
    ZorWBTermBuilder build(*this);
    ZorWBExpression* xa = CreateConstant(start.GetX());
    return CreateQuotient(build.Difference(x, xa),
                          build.Difference(CreateConstant(end.GetX()), xa));
}

ZorWBExpression* ZorWBFactory::CreateSegmentFunction_Y(ZorWBExpression* u,
                                                       const ZorWBSegmentFunctionDataPt& start,
                                                       const ZorWBSegmentFunctionDataPt& end) {
    ZorWBTermBuilder build(*this);
    ZorWBExpression* ya = CreateConstant(start.GetY());
    return CreateSum(ya, CreateProduct(build.Difference(CreateConstant(end.GetY()), ya), u));
}

ZorWBExpression* ZorWBFactory::CreateSegmentFunction_Linear(ZorWBExpression* x,
                                                            const ZorWBSegmentFunctionDataPt& start,
                                                            const ZorWBSegmentFunctionDataPt& end) {
    return CreateSegmentFunction_Y(CreateSegmentFunction_X(x, start, end), start, end);
}

ZorWBExpression* ZorWBFactory::CreateSegmentFunction_Quadratic(
    ZorWBExpression* x, const ZorWBSegmentFunctionDataPt& start,
    const ZorWBSegmentFunctionDataPt& end) {
    ZorWBExpression* t = CreateSegmentFunction_X(x, start, end);
    return CreateSegmentFunction_Y(CreatePower(t, GetTwo()), start, end);
}

ZorWBExpression* ZorWBFactory::CreateSegmentFunction_Cubic(ZorWBExpression* x,
                                                           const ZorWBSegmentFunctionDataPt& start,
                                                           const ZorWBSegmentFunctionDataPt& end) {
    ZorWBExpression* t = CreateSegmentFunction_X(x, start, end);
    ZorWBExpression* smooth = CreateSum(
        CreateProduct(GetThree(), CreatePower(t, GetTwo())),
        CreateProduct(CreateProduct(GetTwo(), CreatePower(t, GetThree())), GetMinusOne()));
    return CreateSegmentFunction_Y(smooth, start, end);
}

ZorWBExpression* ZorWBFactory::CreateSegmentFunction_QuarterSin(
    ZorWBExpression* x, const ZorWBSegmentFunctionDataPt& start,
    const ZorWBSegmentFunctionDataPt& end) {
    ZorWBExpression* t = CreateSegmentFunction_X(x, start, end);
    return CreateSegmentFunction_Y(CreateSin(CreateProduct(t, GetPiByTwo())), start, end);
}

ZorWBExpression* ZorWBFactory::CreateSegmentFunction_QuarterCos(
    ZorWBExpression* x, const ZorWBSegmentFunctionDataPt& start,
    const ZorWBSegmentFunctionDataPt& end) {
    ZorWBTermBuilder build(*this);
    ZorWBExpression* t = CreateSegmentFunction_X(x, start, end);
    ZorWBExpression* cosine = CreateCos(CreateProduct(t, GetPiByTwo()));
    return CreateSegmentFunction_Y(build.Difference(GetOne(), cosine), start, end);
}

// ------------------------------------------------------------ segment functions

ZorWBExpression* ZorWBFactory::CreateSegmentPiece(ZorWBExpression* x, const Interval& interval) {
    const ZorWBSegmentFunctionDataPt& start = interval.GetStart();
    const ZorWBSegmentFunctionDataPt& end = interval.GetEnd();
    switch (interval.GetType()) {
        case Interval::Linear:
            return CreateSegmentFunction_Linear(x, start, end);
        case Interval::Quadratic:
            return CreateSegmentFunction_Quadratic(x, start, end);
        case Interval::Cubic:
            return CreateSegmentFunction_Cubic(x, start, end);
        case Interval::QuarterSin:
            return CreateSegmentFunction_QuarterSin(x, start, end);
        case Interval::QuarterCos:
            return CreateSegmentFunction_QuarterCos(x, start, end);
        default:
            return nullptr;
    }
}

ZorWBExpression* ZorWBFactory::CreateSegmentFunction(ZorWBExpression* x,
                                                     const ZorWBSegmentFunction& sf) {
    if (!x) return nullptr;
    ZorWBExpression* result = GetIndefinite();
    if (sf.GetNumIntervals() == 0) {
        // Deliberately: an empty segment function leaves its argument unbuffered.
        if (_environment.CheckLevel(ZorWBLevel::EmptySegmentNoBuffer))
            x->SetAllowBufferEval(false, true, false);
        return result;
    }
    // Right of a given end point the value is indefinite.
    auto beyond = [this, x](const ZorWBValue& endX, ZorWBExpression* inside) {
        return CreateIfThenElse(CreateNot(CreateLessEqual(x, CreateConstant(endX))),
                                GetIndefinite(), inside);
    };
    const Interval* previous = nullptr;
    for (int i = 0; i < sf.GetNumIntervals() && result; ++i) {
        const Interval* interval = sf.GetInterval(i);
        if (!interval) continue;
        const ZorWBValue& startX = interval->GetStart().GetX();
        if (previous && !previous->GetEnd().GetX().IsEqualTo(_environment, startX))
            result = beyond(previous->GetEnd().GetX(), result);  // a gap
        ZorWBExpression* piece = CreateSegmentPiece(x, *interval);
        // An inner boundary point belongs to the earlier interval, the first
        // start point to the first interval.
        ZorWBExpression* start = CreateConstant(startX);
        ZorWBExpression* before =
            previous ? CreateLessEqual(x, start) : CreateNot(CreateLessEqual(start, x));
        result = piece && before && result ? CreateIfThenElse(before, result, piece) : nullptr;
        previous = interval;
    }
    return result && previous ? beyond(previous->GetEnd().GetX(), result) : result;
}

// ------------------------------------------------------------ interpolation

namespace {

// The Lagrange polynomial through the points (xs[i], ys[i]):
// sum of ys[i] * prod over j != i of (x - xs[j]) / (xs[i] - xs[j]).
ZorWBExpression* Lagrange(ZorWBFactory& factory, ZorWBExpression* x,
                          const std::vector<ZorWBExpression*>& xs,
                          const std::vector<ZorWBExpression*>& ys) try {
    if (!x) return nullptr;
    for (std::size_t i = 0; i < xs.size(); ++i) {
        if (!xs[i] || !ys[i]) return nullptr;
    }
    ZorWBTermBuilder build(factory);
    std::vector<ZorWBExpression*> fromPoint;  // x - xs[j], shared by the terms
    for (ZorWBExpression* point : xs)
        fromPoint.push_back(build.Difference(x, point));
    std::vector<ZorWBExpression*> terms;
    std::vector<ZorWBExpression*> numerator;
    std::vector<ZorWBExpression*> denominator;
    for (std::size_t i = 0; i < xs.size(); ++i) {
        numerator.clear();
        denominator.clear();
        for (std::size_t j = 0; j < xs.size(); ++j) {
            if (j == i) continue;
            numerator.push_back(fromPoint[j]);
            denominator.push_back(build.Difference(xs[i], xs[j]));
        }
        ZorWBExpression* basis =
            factory.CreateQuotient(build.Product(numerator), build.Product(denominator));
        terms.push_back(factory.CreateProduct(ys[i], basis));
    }
    return build.Sum(terms);
} catch (const std::exception&) {
    return nullptr;
}

}  // namespace

ZorWBExpression* ZorWBFactory::CreateLinearInterpolation01(ZorWBExpression* t, ZorWBExpression* y0,
                                                           ZorWBExpression* y1) {
    if (!t || !y0 || !y1) return nullptr;
    ZorWBTermBuilder build(*this);
    return CreateSum(y0, CreateProduct(build.Difference(y1, y0), t));
}

ZorWBExpression* ZorWBFactory::CreateLinearInterpolation2P(ZorWBExpression* x, ZorWBExpression* x0,
                                                           ZorWBExpression* y0, ZorWBExpression* x1,
                                                           ZorWBExpression* y1) {
    if (!x || !x0 || !x1) return nullptr;
    ZorWBTermBuilder build(*this);
    ZorWBExpression* t = CreateQuotient(build.Difference(x, x0), build.Difference(x1, x0));
    return CreateLinearInterpolation01(t, y0, y1);
}

ZorWBExpression* ZorWBFactory::CreateQuadraticInterpolation3P(
    ZorWBExpression* x, ZorWBExpression* x0, ZorWBExpression* y0, ZorWBExpression* x1,
    ZorWBExpression* y1, ZorWBExpression* x2, ZorWBExpression* y2) {
    return Lagrange(*this, x, {x0, x1, x2}, {y0, y1, y2});
}

ZorWBExpression* ZorWBFactory::CreateCubicInterpolation4P(ZorWBExpression* x, ZorWBExpression* x0,
                                                          ZorWBExpression* y0, ZorWBExpression* x1,
                                                          ZorWBExpression* y1, ZorWBExpression* x2,
                                                          ZorWBExpression* y2, ZorWBExpression* x3,
                                                          ZorWBExpression* y3) {
    return Lagrange(*this, x, {x0, x1, x2, x3}, {y0, y1, y2, y3});
}

ZorWBExpression* ZorWBFactory::CreateCubicInterpolation01(ZorWBExpression* t, ZorWBExpression* y0,
                                                          ZorWBExpression* y1, ZorWBExpression* d0,
                                                          ZorWBExpression* d1) {
    if (!t || !y0 || !y1 || !d0 || !d1) return nullptr;
    ZorWBTermBuilder build(*this);
    ZorWBExpression* rise = build.Difference(y1, y0);
    ZorWBExpression* c2 = build.Difference(
        build.Difference(CreateProduct(GetThree(), rise), CreateProduct(GetTwo(), d0)), d1);
    ZorWBExpression* c3 = build.Difference(CreateSum(d0, d1), CreateProduct(GetTwo(), rise));
    ZorWBExpression* inner = CreateSum(c2, CreateProduct(t, c3));
    return CreateSum(y0, CreateProduct(t, CreateSum(d0, CreateProduct(t, inner))));
}

ZorWBExpression* ZorWBFactory::CreateCubicInterpolation2P2D(
    ZorWBExpression* x, ZorWBExpression* x0, ZorWBExpression* y0, ZorWBExpression* x1,
    ZorWBExpression* y1, ZorWBExpression* d0, ZorWBExpression* d1) {
    if (!x || !x0 || !x1 || !d0 || !d1) return nullptr;
    ZorWBTermBuilder build(*this);
    ZorWBExpression* width = build.Difference(x1, x0);
    ZorWBExpression* t = CreateQuotient(build.Difference(x, x0), width);
    return CreateCubicInterpolation01(t, y0, y1, CreateProduct(d0, width),
                                      CreateProduct(d1, width));
}
