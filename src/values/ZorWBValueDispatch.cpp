#include "values/ZorWBValueDispatch.h"

#include <algorithm>
#include <new>

#include "values/ZorWBLevel.h"
#include "values/ZorWBValueFunctions.h"

namespace ZorWBDispatch {

ZorWBRealInterval RealIntervalDomainError(const ZorWBEnvironment& environment) {
    environment.SetError(ZorWBError::Domain);
    return ZorWBReal_Nil;
}

ZorWBIntegerInterval IntegerIntervalDomainError(const ZorWBEnvironment& environment) {
    environment.SetError(ZorWBError::Domain);
    return ZorWBInteger_Nil;
}

ZorWBValue ValueOfImage(const ZorWBRealInterval& image) {
    if (ZorWBIsExact(image)) return ZorWBValue(image.low);
    return ZorWBValue(image);
}

ZorWBBoolean BooleanOfIntegerSet(const ZorWBIntegerInterval& set) {
    if (set.low > set.high) return ZorWBEmpty;
    if (set.low == set.high) return set.low == 0 ? ZorWBFalse : ZorWBTrue;
    return ZorWBUnknown;
}

namespace {

bool FractionReadsAsReal(const ZorWBEnvironment& environment) {
    return environment.CheckLevel(ZorWBLevel::FractionAsReal);
}

// The operand itself, or its simplified reading kept in holder.
const ZorWBValue* ReadOperand(const ZorWBEnvironment& environment, const ZorWBValue& value,
                              std::optional<ZorWBValue>& holder) {
    if (!value.IsAFraction() || FractionReadsAsReal(environment)) return &value;
    holder.emplace(value);
    holder->SimplifyFraction(true);
    return &*holder;
}

}  // namespace

ZorWBValueType LookupKind(const ZorWBEnvironment& environment, const ZorWBValue& value) {
    if (!value.IsAFraction()) return value.GetType();
    if (FractionReadsAsReal(environment)) return ZorWBRealType;
    ZorWBValue simplified(value);
    simplified.SimplifyFraction(true);
    return simplified.GetType();
}

OperandPair::OperandPair(const ZorWBEnvironment& environment, const ZorWBValue& first,
                         const ZorWBValue& second)
    : _first(ReadOperand(environment, first, _firstReading)),
      _second(ReadOperand(environment, second, _secondReading)),
      _commonType(TableKind(LookupKind(environment, *_first), LookupKind(environment, *_second))) {}

ZorWBValue IncompatibleKinds(const ZorWBEnvironment& environment) {
    environment.SetError(ZorWBError::IncompatibleKinds);
    return ZorWBValue(ZorWBReal_Nil);
}

ZorWBValue UndefinedOperand(const ZorWBEnvironment& environment) {
    if (environment.CheckLevel(ZorWBLevel::QuietIncompatibleTests)) return ZorWBValue();
    return IncompatibleKinds(environment);
}

bool ReportIncompatibleTest(const ZorWBEnvironment& environment) {
    if (environment.CheckLevel(ZorWBLevel::QuietIncompatibleTests)) return false;
    environment.SetError(ZorWBError::IncompatibleKinds);
    return true;
}

// ------------------------------------------------------------ enumerations

ZorWBValue ReadEnum(const ZorWBEnvironment& environment, const ZorWBValue& value, bool integers) {
    ZorWBValue enumeration(integers ? ZorWBIntegerEnumType : ZorWBRealEnumType);
    enumeration.Assign(environment, value);
    return enumeration;
}

bool IsNilEnum(const ZorWBValue& enumeration) {
    if (enumeration.IsAKindOf(ZorWBIntegerEnumType)) return enumeration.GetIntegerEnum().IsNil();
    return enumeration.GetRealEnum().IsNil();
}

bool IsListEnum(const ZorWBValue& enumeration) {
    if (enumeration.IsAKindOf(ZorWBIntegerEnumType))
        return enumeration.GetIntegerEnum().GetRep() == ZorWBEnumList;
    return enumeration.GetRealEnum().GetRep() == ZorWBEnumList;
}

int EnumSize(const ZorWBValue& enumeration) {
    if (enumeration.IsAKindOf(ZorWBIntegerEnumType)) return enumeration.GetIntegerEnum().GetSize();
    return enumeration.GetRealEnum().GetSize();
}

ZorWBValue NilEnum(bool integers) {
    if (integers) return ZorWBValue(ZorWBIntegerEnum(ZorWBEnumNil));
    return ZorWBValue(ZorWBRealEnum(ZorWBEnumNil));
}

ZorWBValue EnumFromInterval(const ZorWBEnvironment& environment, const ZorWBValue& interval) {
    if (interval.IsAKindOf(ZorWBIntegerIntervalType)) {
        ZorWBIntegerInterval hull = interval.GetAsIntegerInterval();
        ZorWBIntegerEnum enumeration(ZorWBEnumAny);
        if (!ZorWBIsInfinite(hull)) enumeration.SetAsIntegerInterval(hull);
        enumeration.Correct(environment);
        return ZorWBValue(enumeration);
    }
    ZorWBRealInterval hull = interval.GetAsRealInterval();
    ZorWBRealEnum enumeration(ZorWBEnumAny);
    if (ZorWBIsEmpty(hull))
        enumeration.SetNil();
    else if (!ZorWBIsInfinite(hull))
        enumeration.SetAsRealInterval(hull);
    return ZorWBValue(enumeration);
}

ElementCollector::ElementCollector(const ZorWBEnvironment& environment, long long capacity)
    : _environment(environment),
      _local(environment),
      _values(new (std::nothrow) double[static_cast<std::size_t>(std::max(capacity, 1LL))]),
      _capacity(capacity) {}

void ElementCollector::Add(const ZorWBValue& result) {
    if (result.IsAKindOf(ZorWBIntegerType))
        Store(IntegerToReal(result.GetAsInteger()), true);  // markers as real infinities
    else if (result.IsAKindOf(ZorWBIntegerIntervalType))
        AddSet(result.GetAsIntegerInterval());
    else
        Store(result.GetAsReal(), false);
}

// A set of integers: one number is an element, a wider set spreads the
// result to a hull.
void ElementCollector::AddSet(const ZorWBIntegerInterval& result) {
    if (result.low == result.high) {
        Store(IntegerToReal(result.low), true);
        return;
    }
    if (!Failed(0.0)) _spread = ZorWBUnite(_spread, ZorWBCreateRealInterval(result));
}

// Whether the element just computed failed (a NaN is a domain error); the
// codes of the failure are kept for the environment.
bool ElementCollector::Failed(double result) {
    unsigned int codes = _local.GetError();
    if (result != result) codes |= ZorWBError::Domain;
    _errors |= codes;
    return codes != ZorWBError::None;
}

void ElementCollector::Store(double result, bool isInteger) {
    if (Failed(result) || _count >= _capacity) return;
    _values[_count++] = result;
    _allIntegers = _allIntegers && isInteger;
}

namespace {

// An integer result stored as a real: the infinities become the markers.
int StoredInteger(double value) {
    if (value > ZorWBIntegerMax) return ZorWBIntegerPlusInfinity;
    if (value < -ZorWBIntegerMax) return ZorWBIntegerMinusInfinity;
    return static_cast<int>(value);
}

ZorWBValue IntegerElements(const ZorWBEnvironment& environment, const double* values, int count) {
    ZorWBIntegerEnum enumeration(ZorWBEnumList);
    if (count > environment.GetMaxEnumSize()) {
        ZorWBIntegerInterval hull = {StoredInteger(values[0]), StoredInteger(values[count - 1])};
        return EnumFromInterval(environment, ZorWBValue(hull));
    }
    if (!enumeration.SetSize(count)) return NilEnum(true);
    for (int i = 0; i < count; ++i)
        enumeration.Set(i, StoredInteger(values[i]));
    return ZorWBValue(enumeration);
}

ZorWBValue RealElements(const ZorWBEnvironment& environment, const double* values, int count) {
    ZorWBRealEnum enumeration(ZorWBEnumList);
    if (count > environment.GetMaxEnumSize()) {
        ZorWBRealInterval hull = {std::max(values[0], -ZorWBRealLimit),
                                  std::min(values[count - 1], ZorWBRealLimit)};
        return EnumFromInterval(environment, ZorWBValue(hull));
    }
    if (!enumeration.SetSize(count)) return NilEnum(false);
    for (int i = 0; i < count; ++i)
        enumeration.Set(i, values[i]);
    return ZorWBValue(enumeration);
}

}  // namespace

// The hull of the elements and of the wider results, as an enumeration.
ZorWBValue ElementCollector::Hull(const double* values, long long count) const {
    ZorWBRealInterval hull = _spread;
    if (count > 0) hull = ZorWBUnite(hull, {values[0], values[count - 1]});
    if (_allIntegers) return EnumFromInterval(_environment, ZorWBCreateIntegerInterval(hull));
    return EnumFromInterval(_environment, hull);
}

ZorWBValue ElementCollector::Finish(bool integersWhenEmpty) {
    if (_errors != ZorWBError::None) _environment.SetError(_errors);
    bool spread = !ZorWBIsEmpty(_spread);
    if (_count == 0 && !spread) return NilEnum(integersWhenEmpty);
    double* first = _values.get();
    std::sort(first, first + _count);
    if (spread) return Hull(first, _count);
    double tolerance = _allIntegers ? 0.5 : _environment.GetTolerance();
    long long distinct = 1;
    for (long long i = 1; i < _count; ++i) {
        double gap = first[i] - first[distinct - 1];
        if (gap > 0.0 && gap >= tolerance) first[distinct++] = first[i];
    }
    int count = static_cast<int>(distinct);
    if (_allIntegers) return IntegerElements(_environment, first, count);
    return RealElements(_environment, first, count);
}

}  // namespace ZorWBDispatch

ZorWBValueType ZorWBGetCommonType(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                  const ZorWBValue& b) {
    ZorWBDispatch::OperandPair operands(environment, a, b);
    return operands.CommonType();
}
