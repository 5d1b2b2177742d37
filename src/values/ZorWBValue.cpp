#include "values/ZorWBValue.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <new>
#include <vector>

#include "values/ZorWBEnvironment.h"

namespace {

// The infinity markers and bounds beyond the finite range read as the real
// infinite ends.
double IntegerBoundToReal(int bound) {
    if (bound >= ZorWBIntegerMax) return ZorWBRealLimit;
    if (bound <= -ZorWBIntegerMax) return -ZorWBRealLimit;
    return bound;
}

// An integral real as an interval bound; beyond the finite range it is the
// infinite end.
int ClampToIntegerBound(double integral) {
    if (integral >= ZorWBIntegerMax) return ZorWBIntegerMax;
    if (integral <= -ZorWBIntegerMax) return -ZorWBIntegerMax;
    return static_cast<int>(integral);
}

// A real bound snapped to a near integer, so that 1.9999999999999998 counts
// as 2 when the integers inside a real interval are taken.
double SnapToInteger(double value) {
    double nearest = std::round(value);
    double slack = std::max(1.0, std::fabs(value)) * ZorWBIntervalTolerance;
    return std::fabs(value - nearest) <= slack ? nearest : value;
}

// The integers inside a real interval; the infinite ends become the infinite
// integer bounds.
ZorWBIntegerInterval IntegersInside(const ZorWBRealInterval& interval) {
    if (std::isnan(interval.low) || std::isnan(interval.high) || interval.low > interval.high)
        return ZorWBInteger_Nil;
    double low = std::ceil(SnapToInteger(interval.low));
    double high = std::floor(SnapToInteger(interval.high));
    if (low > high) return ZorWBInteger_Nil;
    return {ClampToIntegerBound(low), ClampToIntegerBound(high)};
}

ZorWBRealInterval ToRealInterval(const ZorWBIntegerInterval& interval) {
    if (interval.low > interval.high) return ZorWBReal_Nil;
    return {IntegerBoundToReal(interval.low), IntegerBoundToReal(interval.high)};
}

ZorWBIntegerInterval BooleanToIntegerInterval(int state) {
    switch (state) {
        case ZorWBFalse:
            return {0, 0};
        case ZorWBTrue:
            return {1, 1};
        case ZorWBUnknown:
            return {0, 1};
        default:
            return ZorWBInteger_Nil;
    }
}

// False when the set is {0}, true when it excludes 0, unknown when it holds 0
// and more, empty when it is empty.
ZorWBBoolean BooleanOfHull(double low, double high) {
    if (low > high) return ZorWBEmpty;
    if (low == 0.0 && high == 0.0) return ZorWBFalse;
    if (low > 0.0 || high < 0.0) return ZorWBTrue;
    return ZorWBUnknown;
}

double Midpoint(const ZorWBRealInterval& interval) {
    return interval.low + (interval.high - interval.low) / 2.0;
}

}  // namespace

ZorWBValue::ZorWBValue(ZorWBValueType type) : _type(type) {
    switch (type) {
        case ZorWBRealType:
        case ZorWBRealIntervalType:
            _payload.reals[0] = _payload.reals[1] = 0.0;
            break;
        case ZorWBFractionType:
            _type = ZorWBIntegerType;
            break;
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType:
            _payload.enums = nullptr;  // "any"
            break;
        default:
            break;  // every other kind starts from the zero payload
    }
}

namespace {

// What the enumeration getters give for a value without an enumeration of
// their kind: "any", with no element.
const ZorWBIntegerEnum AnyIntegers;
const ZorWBRealEnum AnyReals;

template <class Enum>
Enum& Scratch() {
    thread_local Enum scratch;
    scratch.SetAny();
    return scratch;
}

}  // namespace

ZorWBValue& ZorWBValue::AssignWithEnums(const ZorWBValue& other) {
    if (this == &other) return *this;
    // An enumeration held of the same kind takes the copy in place.
    if (_type == other._type && _payload.enums && other._payload.enums) {
        if (_type == ZorWBIntegerEnumType)
            *static_cast<ZorWBIntegerEnum*>(_payload.enums) = other.GetIntegerEnum();
        else
            *static_cast<ZorWBRealEnum*>(_payload.enums) = other.GetRealEnum();
        _environment = other._environment;
        return *this;
    }
    if (IsEnumKind(_type)) ReleaseEnums();
    CopyScalar(other);
    if (IsEnumKind(other._type)) CopyEnums(other);
    return *this;
}

ZorWBValue& ZorWBValue::MoveAssignWithEnums(ZorWBValue& other) noexcept {
    if (this == &other) return *this;
    if (IsEnumKind(_type)) ReleaseEnums();
    CopyScalar(other);
    if (IsEnumKind(other._type)) other._payload.enums = nullptr;
    return *this;
}

void ZorWBValue::ReleaseEnums() noexcept {
    if (_type == ZorWBIntegerEnumType)
        delete static_cast<ZorWBIntegerEnum*>(_payload.enums);
    else
        delete static_cast<ZorWBRealEnum*>(_payload.enums);
    _payload.enums = nullptr;
}

void ZorWBValue::CopyEnums(const ZorWBValue& other) {
    _payload.enums = nullptr;
    if (!other._payload.enums) return;
    if (other._type == ZorWBIntegerEnumType)
        _payload.enums = new (std::nothrow) ZorWBIntegerEnum(other.GetIntegerEnum());
    else
        _payload.enums = new (std::nothrow) ZorWBRealEnum(other.GetRealEnum());
}

ZorWBIntegerEnum* ZorWBValue::IntegerEnumBlock() {
    if (!_payload.enums) _payload.enums = new (std::nothrow) ZorWBIntegerEnum();
    return static_cast<ZorWBIntegerEnum*>(_payload.enums);
}

ZorWBRealEnum* ZorWBValue::RealEnumBlock() {
    if (!_payload.enums) _payload.enums = new (std::nothrow) ZorWBRealEnum();
    return static_cast<ZorWBRealEnum*>(_payload.enums);
}

const ZorWBIntegerEnum& ZorWBValue::GetIntegerEnum() const {
    if (_type == ZorWBIntegerEnumType && _payload.enums)
        return *static_cast<const ZorWBIntegerEnum*>(_payload.enums);
    return AnyIntegers;
}

const ZorWBRealEnum& ZorWBValue::GetRealEnum() const {
    if (_type == ZorWBRealEnumType && _payload.enums)
        return *static_cast<const ZorWBRealEnum*>(_payload.enums);
    return AnyReals;
}

ZorWBIntegerEnum& ZorWBValue::GetIntegerEnum() {
    ZorWBIntegerEnum* block = _type == ZorWBIntegerEnumType ? IntegerEnumBlock() : nullptr;
    return block ? *block : Scratch<ZorWBIntegerEnum>();
}

ZorWBRealEnum& ZorWBValue::GetRealEnum() {
    ZorWBRealEnum* block = _type == ZorWBRealEnumType ? RealEnumBlock() : nullptr;
    return block ? *block : Scratch<ZorWBRealEnum>();
}

void ZorWBValue::Load(const ZorWBFraction& fraction) {
    SetScalarKind(ZorWBFractionType);
    _payload.ints[0] = fraction.numerator;
    _payload.ints[1] = fraction.denominator;
    _payload.ints[2] = fraction.power;
}

template <class Enum>
void ZorWBValue::SetEnum(ZorWBValueType type, const Enum& value) {
    if (_type == type && _payload.enums) {
        // value may be this value's own enumeration: assigned in place.
        *static_cast<Enum*>(_payload.enums) = value;
        return;
    }
    Enum* block = new (std::nothrow) Enum(value);
    if (IsEnumKind(_type)) ReleaseEnums();
    _type = type;
    _payload.enums = block;
}

void ZorWBValue::Set(const ZorWBIntegerEnum& value) {
    SetEnum(ZorWBIntegerEnumType, value);
}

void ZorWBValue::Set(const ZorWBRealEnum& value) {
    SetEnum(ZorWBRealEnumType, value);
}

namespace {

bool IsNaN(int) {
    return false;
}
bool IsNaN(double value) {
    return std::isnan(value);
}

void SetHull(ZorWBIntegerEnum& enumeration, int low, int high) {
    enumeration.SetAsIntegerInterval({low, high});
}
void SetHull(ZorWBRealEnum& enumeration, double low, double high) {
    enumeration.SetAsRealInterval({low, high});
}

// The elements sorted and without repeats (or NaN); false when there are too
// many of them or memory is short.
template <class T>
bool SortedElements(int count, const T* values, std::vector<T>& sorted) {
    if (count > ZorWBMaxEnumSize) return false;
    try {
        sorted.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            if (!IsNaN(values[i])) sorted.push_back(values[i]);
    } catch (...) {
        return false;
    }
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    return true;
}

// The enumeration of the elements: their list, or else their hull.
template <class Enum, class T>
Enum EnumerationOf(int count, const T* values) {
    Enum enumeration(ZorWBEnumList);
    if (!values || count <= 0) return enumeration;
    std::vector<T> sorted;
    if (SortedElements(count, values, sorted) &&
        enumeration.SetSize(static_cast<int>(sorted.size()))) {
        for (std::size_t i = 0; i < sorted.size(); ++i)
            enumeration.Set(static_cast<int>(i), sorted[i]);
        return enumeration;
    }
    bool any = false;
    T low = T();
    T high = T();
    for (int i = 0; i < count; ++i) {
        if (IsNaN(values[i])) continue;
        low = any ? std::min(low, values[i]) : values[i];
        high = any ? std::max(high, values[i]) : values[i];
        any = true;
    }
    if (any) SetHull(enumeration, low, high);
    return enumeration;
}

}  // namespace

void ZorWBValue::Set(int count, const int* values) {
    Set(EnumerationOf<ZorWBIntegerEnum>(count, values));
}

void ZorWBValue::Set(int count, const double* values) {
    Set(EnumerationOf<ZorWBRealEnum>(count, values));
}

void ZorWBValue::SetIndefinite() {
    switch (_type) {
        case ZorWBIntegerIntervalType:
            Set(ZorWBInteger_Any);
            break;
        case ZorWBRealIntervalType:
            Set(ZorWBReal_Any);
            break;
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType:
            ReleaseEnums();  // no enumeration reads as "any"
            break;
        case ZorWBBooleanType:
            Set(ZorWBUnknown);
            break;
        default:
            break;
    }
}

bool ZorWBValue::IsConvertible(ZorWBValueType type) const {
    if (type == _type) return true;
    switch (type) {
        case ZorWBIntegerType:
            return _type == ZorWBBooleanType;
        case ZorWBRealType:
            return _type == ZorWBIntegerType;
        case ZorWBIntegerIntervalType:
            return true;
        case ZorWBRealIntervalType:
            return _type != ZorWBBooleanType;
        case ZorWBBooleanType:
            return _type == ZorWBIntegerType || _type == ZorWBIntegerIntervalType ||
                   _type == ZorWBIntegerEnumType;
        default:
            return false;
    }
}

// An integer reads a boolean (true is 1); every other kind gives the
// default 0.
int ZorWBValue::ConvertToInteger() const {
    if (_type == ZorWBBooleanType) return _payload.ints[0] == ZorWBTrue ? 1 : 0;
    return 0;
}

// A real reads an integer and a fraction (every real function takes a
// fraction by its real); every other kind gives the default 0.0.
double ZorWBValue::ConvertToReal() const {
    switch (_type) {
        case ZorWBIntegerType:
            return IntegerAsReal(_payload.ints[0]);
        case ZorWBRealType:
            return _payload.reals[0];
        case ZorWBFractionType: {
            ZorWBValue simplified(*this);
            simplified.SimplifyFraction(true);
            return simplified.GetAsReal();  // simplifying to reals leaves no fraction
        }
        default:
            return 0.0;
    }
}

ZorWBBoolean ZorWBValue::GetAsBoolean() const {
    switch (_type) {
        case ZorWBUndefinedType:
            return ZorWBUnknown;
        case ZorWBBooleanType:
            return static_cast<ZorWBBoolean>(_payload.ints[0]);
        case ZorWBIntegerType:
            return _payload.ints[0] != 0 ? ZorWBTrue : ZorWBFalse;
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType: {
            ZorWBIntegerInterval hull = GetAsIntegerInterval();
            return BooleanOfHull(hull.low, hull.high);
        }
        case ZorWBFractionType: {
            // The number it simplifies to (an integer or a real) is true
            // when it is not 0.
            double number = GetAsReal();
            return BooleanOfHull(number, number);
        }
        default:
            return ZorWBUnknown;  // the real kinds, as an undefined value
    }
}

ZorWBFraction ZorWBValue::GetAsFraction() const {
    if (_type == ZorWBFractionType)
        return ZorWBCreateFraction(_payload.ints[0], _payload.ints[1], _payload.ints[2], 0);
    if (_type == ZorWBIntegerType) return ZorWBCreateFraction(_payload.ints[0], 1, 0, 0);
    return ZorWBCreateFraction(0, 1, 0, 0);
}

ZorWBIntegerInterval ZorWBValue::ConvertToIntegerInterval() const {
    switch (_type) {
        case ZorWBIntegerType:
            return {_payload.ints[0], _payload.ints[0]};
        case ZorWBIntegerIntervalType:
            return {_payload.ints[0], _payload.ints[1]};
        case ZorWBIntegerEnumType:
            return GetIntegerEnum().GetAsIntegerInterval();
        case ZorWBBooleanType:
            return BooleanToIntegerInterval(_payload.ints[0]);
        case ZorWBUndefinedType:
            return ZorWBInteger_Any;
        case ZorWBRealType:
        case ZorWBFractionType: {
            double value = GetAsReal();
            return IntegersInside({value, value});
        }
        case ZorWBRealIntervalType:
        case ZorWBRealEnumType:
            return IntegersInside(GetAsRealInterval());
        default:
            return ZorWBInteger_Any;
    }
}

ZorWBRealInterval ZorWBValue::ConvertToRealInterval() const {
    switch (_type) {
        case ZorWBRealType:
        case ZorWBIntegerType:
        case ZorWBFractionType: {
            double value = GetAsReal();
            return {value, value};
        }
        case ZorWBRealIntervalType:
            return {_payload.reals[0], _payload.reals[1]};
        case ZorWBRealEnumType:
            return GetRealEnum().GetAsRealInterval();
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType:
            return ToRealInterval(GetAsIntegerInterval());
        default:
            return ZorWBReal_Any;  // an undefined value or a boolean
    }
}

void ZorWBValue::GetAsIntegerEnum(ZorWBIntegerEnum& out) const {
    switch (_type) {
        case ZorWBIntegerEnumType:
            out = GetIntegerEnum();
            return;
        case ZorWBIntegerType:
            out.Reset(ZorWBEnumList);
            out.Append(_payload.ints[0]);
            return;
        case ZorWBUndefinedType:
            out.SetAny();
            return;
        case ZorWBRealEnumType:
            if (GetRealEnum().GetRep() == ZorWBEnumList) {
                const ZorWBRealEnum& reals = GetRealEnum();
                out.Reset(ZorWBEnumList);
                for (int i = 0; i < reals.GetSize(); ++i) {
                    double element = SnapToInteger(reals.Get(i));
                    if (element == std::floor(element) && std::fabs(element) < ZorWBIntegerMax)
                        out.Insert(static_cast<int>(element));
                }
                return;
            }
            break;
        default:
            break;
    }
    ZorWBIntegerInterval hull = GetAsIntegerInterval();
    if (hull.low > hull.high)
        out.SetNil();
    else
        out.SetAsIntegerInterval(hull);
}

void ZorWBValue::GetAsRealEnum(ZorWBRealEnum& out) const {
    switch (_type) {
        case ZorWBRealEnumType:
            out = GetRealEnum();
            return;
        case ZorWBRealType:
        case ZorWBIntegerType:
        case ZorWBFractionType:
            out.Reset(ZorWBEnumList);
            out.Append(GetAsReal());
            return;
        case ZorWBUndefinedType:
            out.SetAny();
            return;
        case ZorWBIntegerEnumType:
            if (GetIntegerEnum().GetRep() != ZorWBEnumInterval) {
                out = GetIntegerEnum();
                return;
            }
            break;
        default:
            break;
    }
    ZorWBRealInterval hull = GetAsRealInterval();
    if (hull.low > hull.high)
        out.SetNil();
    else
        out.SetAsRealInterval(hull);
}

double ZorWBValue::GetMAG() const {
    ZorWBRealInterval hull = GetAsRealInterval();
    return std::max(std::fabs(hull.low), std::fabs(hull.high));
}

double ZorWBValue::GetMiddle() const {
    return Midpoint(GetAsRealInterval());
}

double ZorWBValue::GetWidth() const {
    ZorWBRealInterval hull = GetAsRealInterval();
    return hull.high - hull.low;
}

void ZorWBValue::Assign(const ZorWBEnvironment& environment, const ZorWBValue& other) {
    RecordEnv(environment);
    switch (_type) {
        case ZorWBIntegerType:
            Set(other.GetAsInteger());
            break;
        case ZorWBRealType:
            Set(other.GetAsReal());
            break;
        case ZorWBIntegerIntervalType:
            Set(other.GetAsIntegerInterval());
            break;
        case ZorWBRealIntervalType:
            Set(other.GetAsRealInterval());
            break;
        case ZorWBIntegerEnumType:
            if (ZorWBIntegerEnum* integers = IntegerEnumBlock()) {
                other.GetAsIntegerEnum(*integers);
                integers->Correct(environment);
            }
            break;
        case ZorWBRealEnumType:
            if (other.IsAKindOf(ZorWBIntegerType) || other.IsAKindOf(ZorWBIntegerIntervalType) ||
                other.IsAKindOf(ZorWBIntegerEnumType)) {
                ZorWBIntegerEnum integers;
                other.GetAsIntegerEnum(integers);
                integers.Correct(environment);
                if (ZorWBRealEnum* reals = RealEnumBlock()) *reals = integers;
            } else if (ZorWBRealEnum* reals = RealEnumBlock()) {
                other.GetAsRealEnum(*reals);
                reals->Correct(environment);
            }
            break;
        case ZorWBBooleanType:
            Set(other.GetAsBoolean());
            break;
        case ZorWBFractionType:
            if (other.IsAFraction())
                Load(other.GetAsFraction());
            else if (other.IsAKindOf(ZorWBIntegerType))
                Set(other.GetAsInteger());
            else if (other.IsAKindOf(ZorWBRealType))
                Set(other.GetAsReal());
            break;
        default:
            break;
    }
}

void ZorWBValue::AssignWithType(const ZorWBEnvironment& environment, const ZorWBValue& other) {
    if (_type == ZorWBUndefinedType) {
        _type = other._type;
        if (IsEnumKind(_type)) _payload.enums = nullptr;
    }
    Assign(environment, other);
}

void ZorWBValue::SimplifyFraction(bool toReal) {
    if (_type != ZorWBFractionType) return;
    long long numerator = _payload.ints[0];
    long long denominator = _payload.ints[1];
    int power = _payload.ints[2];
    auto isMarker = [&](int marker) {
        return numerator == marker || denominator == marker || power == marker;
    };
    if (denominator == 0) {
        // 0/0 reads as plus infinity and n/0 as minus infinity, whatever the
        // sign of n: old data depends on this pairing.
        Set(numerator == 0 ? ZorWBIntegerPlusInfinity : ZorWBIntegerMinusInfinity);
    } else if (isMarker(ZorWBIntegerMinusInfinity)) {
        Set(ZorWBIntegerMinusInfinity);
    } else if (numerator == 0) {
        Set(0);
    } else if (isMarker(ZorWBIntegerPlusInfinity)) {
        Set(ZorWBRealPlusInfinity);
    } else if (power == 0 && numerator % denominator == 0) {
        long long quotient = numerator / denominator;
        if (quotient >= -ZorWBIntegerMax && quotient <= ZorWBIntegerMax)
            Set(static_cast<int>(quotient));
        else
            Set(static_cast<double>(quotient));  // beyond 32 bits: keep it exact as a real
    } else if (toReal) {
        Set(std::pow(ZorWBPi, power) * static_cast<double>(numerator) /
            static_cast<double>(denominator));
    } else {
        if (denominator < 0) {
            numerator = -numerator;
            denominator = -denominator;
        }
        long long divisor = ZorWBGcd(numerator, denominator);
        numerator /= divisor;
        denominator /= divisor;
        if (numerator >= INT_MIN && numerator <= INT_MAX && denominator <= INT_MAX) {
            _payload.ints[0] = static_cast<int>(numerator);
            _payload.ints[1] = static_cast<int>(denominator);
        } else {
            Set(std::pow(ZorWBPi, power) * static_cast<double>(numerator) /
                static_cast<double>(denominator));
        }
    }
}

ZorQelString ZorWBValue::Str() const {
    ZorQelString text;
    switch (_type) {
        case ZorWBUndefinedType:
            return "ERROR (undefined value)";
        case ZorWBIntegerType:
            return text.AppendInt(_payload.ints[0]);
        case ZorWBRealType:
            return text.AppendDouble(_payload.reals[0]);
        case ZorWBIntegerIntervalType:
            return text.Append("Integer interval [")
                .AppendInt(_payload.ints[0])
                .Append(" -> ")
                .AppendInt(_payload.ints[1])
                .Append("]");
        case ZorWBRealIntervalType:
            return text.Append("Real interval [")
                .AppendDouble(_payload.reals[0])
                .Append(" -> ")
                .AppendDouble(_payload.reals[1])
                .Append("]");
        case ZorWBIntegerEnumType:
            return "Integer enum";
        case ZorWBRealEnumType:
            return "Real enum";
        case ZorWBBooleanType:
            // Unknown and empty print TRUE too: only false is stored as 0.
            return _payload.ints[0] != 0 ? "TRUE" : "FALSE";
        case ZorWBFractionType:
            return "Fraction";
        default:
            return "ERROR (unknown value type)";
    }
}
