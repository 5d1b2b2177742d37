#ifndef ZORWB_VALUE_H
#define ZORWB_VALUE_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBEnum.h"
#include "values/ZorWBFraction.h"
#include "values/ZorWBInterval.h"

class ZorWBEnvironment;
class ZorWBFactory;

// The kind of a value; the numbers are stored by printers and writers.
enum ZorWBValueType : int {
    ZorWBUndefinedType = 0,
    ZorWBIntegerType = 1,
    ZorWBRealType = 2,
    ZorWBIntegerIntervalType = 3,
    ZorWBRealIntervalType = 4,
    ZorWBIntegerEnumType = 5,
    ZorWBRealEnumType = 6,
    ZorWBBooleanType = 7,
    ZorWBFractionType = 8,
};

// Four-state logic: unknown means "either", empty means "contradictory".
enum ZorWBBoolean : int {
    ZorWBFalse = 0,
    ZorWBTrue = 1,
    ZorWBUnknown = 2,
    ZorWBEmpty = 3,
};

// The one value type of the library: undefined, an exact integer, a real, a
// closed integer or real interval, a finite integer or real enumeration, a
// four-state boolean, or a fraction of a power of Pi.
//
// Scalar kinds live in a small inline payload: constructing, copying and
// assigning them never allocates. An enumeration lives in a block of its own
// that the payload points to (made when the value first holds elements or
// is changed through its enumeration getter; without one it reads as "any"),
// so that a value takes 32 bytes, which every expression node holds.
//
// Conversions never fail. Those that the kind table of IsConvertible does not
// list give the default result, what the same getter gives for an undefined
// value: 0, 0.0, the whole line, unknown (so a real 3.7 reads as the integer
// 0). Beyond the table, a fraction reads as its real (every real function
// takes it so), an integer interval reads the integers inside any value, and
// the enumeration getters read the scalars, intervals and enumerations that
// an enumeration of their number type absorbs. GetMiddle is the midpoint of
// a value's hull.
class ZORWBX_API ZorWBValue {
  public:
    ZorWBValue() = default;
    // A zero value of the kind; the fraction kind gives the integer 0, and a
    // number outside 1..8 is kept as the kind with no payload.
    explicit ZorWBValue(ZorWBValueType type);
    ZorWBValue(int value) { Set(value); }
    ZorWBValue(double value) { Set(value); }
    ZorWBValue(ZorWBBoolean value) { Set(value); }
    ZorWBValue(const ZorWBIntegerInterval& value) { Set(value); }
    ZorWBValue(const ZorWBRealInterval& value) { Set(value); }
    ZorWBValue(const ZorWBIntegerEnum& value) { Set(value); }
    ZorWBValue(const ZorWBRealEnum& value) { Set(value); }
    ZorWBValue(const ZorWBFraction& value) { Load(value); }
    // Copies and moves of scalar kinds are inline and touch only the payload;
    // enumerations take the out-of-line path.
    ZorWBValue(const ZorWBValue& other)
        : _type(other._type), _payload(other._payload), _environment(other._environment) {
        if (IsEnumKind(other._type)) CopyEnums(other);
    }
    ZorWBValue(ZorWBValue&& other) noexcept
        : _type(other._type), _payload(other._payload), _environment(other._environment) {
        if (IsEnumKind(other._type)) other._payload.enums = nullptr;
    }
    ZorWBValue& operator=(const ZorWBValue& other) {
        if (IsEnumKind(_type) || IsEnumKind(other._type)) return AssignWithEnums(other);
        CopyScalar(other);
        return *this;
    }
    ZorWBValue& operator=(ZorWBValue&& other) noexcept {
        if (IsEnumKind(_type) || IsEnumKind(other._type)) return MoveAssignWithEnums(other);
        CopyScalar(other);
        return *this;
    }
    ~ZorWBValue() {
        if (IsEnumKind(_type)) ReleaseEnums();
    }

    // A heap copy owned by the caller.
    ZorWBValue* Clone() const { return new ZorWBValue(*this); }

    void Set(int value) {
        SetScalarKind(ZorWBIntegerType);
        _payload.ints[0] = value;
    }
    void Set(double value) {
        SetScalarKind(ZorWBRealType);
        _payload.reals[0] = value;
    }
    void Set(ZorWBBoolean value) {
        SetScalarKind(ZorWBBooleanType);
        _payload.ints[0] = value;
    }
    void Set(const ZorWBIntegerInterval& value) {
        SetScalarKind(ZorWBIntegerIntervalType);
        _payload.ints[0] = value.low;
        _payload.ints[1] = value.high;
    }
    void Set(const ZorWBRealInterval& value) {
        SetScalarKind(ZorWBRealIntervalType);
        _payload.reals[0] = value.low;
        _payload.reals[1] = value.high;
    }
    void Set(const ZorWBFraction& value) { Load(value); }
    // The same as *this = ZorWBValue(value): the interval, with no
    // environment recorded (what a value function returns).
    void AssignResult(const ZorWBRealInterval& value) {
        if (IsEnumKind(_type)) {
            *this = ZorWBValue(value);
            return;
        }
        _type = ZorWBRealIntervalType;
        _payload.reals[0] = value.low;
        _payload.reals[1] = value.high;
        _environment = nullptr;
    }
    void Set(const ZorWBIntegerEnum& value);
    void Set(const ZorWBRealEnum& value);
    // An integer (real) enumeration in list form: the elements sorted and
    // without repeats. A null array or a count below 1 gives an empty list;
    // NaN elements are left out. More than ZorWBMaxEnumSize elements (or a
    // list that memory cannot hold) give the enumeration held as the hull of
    // the elements, read once without allocating.
    void Set(int count, const int* values);
    void Set(int count, const double* values);
    // The widest value of the current kind: the whole line for intervals, any
    // for enumerations, unknown for booleans; other kinds are left unchanged.
    void SetIndefinite();

    ZorWBValueType GetType() const { return _type; }
    bool IsAKindOf(ZorWBValueType type) const { return _type == type; }
    bool IsAFraction() const { return _type == ZorWBFractionType; }
    bool IsConvertible(ZorWBValueType type) const;

    int GetAsInteger() const {
        return _type == ZorWBIntegerType ? _payload.ints[0] : ConvertToInteger();
    }
    double GetAsReal() const {
        if (_type == ZorWBRealType) return _payload.reals[0];
        if (_type == ZorWBIntegerType) return IntegerAsReal(_payload.ints[0]);
        return ConvertToReal();
    }
    double GetAsDouble() const { return GetAsReal(); }
    ZorWBBoolean GetAsBoolean() const;
    ZorWBFraction GetAsFraction() const;
    ZorWBIntegerInterval GetAsIntegerInterval() const {
        if (_type == ZorWBIntegerIntervalType) return {_payload.ints[0], _payload.ints[1]};
        return ConvertToIntegerInterval();
    }
    ZorWBRealInterval GetAsRealInterval() const {
        if (_type == ZorWBRealIntervalType) return {_payload.reals[0], _payload.reals[1]};
        if (_type == ZorWBRealType) return {_payload.reals[0], _payload.reals[0]};
        if (_type == ZorWBIntegerType) {
            double value = IntegerAsReal(_payload.ints[0]);
            return {value, value};
        }
        return ConvertToRealInterval();
    }
    void GetAsIntegerEnum(ZorWBIntegerEnum& out) const;
    void GetAsRealEnum(ZorWBRealEnum& out) const;
    // The enumeration of a value of that kind ("any" until it is set). On a
    // value of another kind the getters give an empty "any" enumeration: the
    // constant one, or a scratch copy whose changes the value does not keep.
    ZorWBIntegerEnum& GetIntegerEnum();
    const ZorWBIntegerEnum& GetIntegerEnum() const;
    ZorWBRealEnum& GetRealEnum();
    const ZorWBRealEnum& GetRealEnum() const;

    // Largest magnitude, midpoint and width of the value's real reading.
    double GetMAG() const;
    double GetMiddle() const;
    double GetWidth() const;

    // Set operations under an environment's tolerance. Intersect answers
    // whether the intersection is consistent.
    bool Intersect(const ZorWBEnvironment& environment, const ZorWBValue& other);
    void Unite(const ZorWBEnvironment& environment, const ZorWBValue& other);
    void Exclude(const ZorWBEnvironment& environment, const ZorWBValue& other);
    // Takes the other value converted to this value's kind (see the kind
    // rules of each target kind); an undefined value stays undefined.
    void Assign(const ZorWBEnvironment& environment, const ZorWBValue& other);
    // As Assign, but an undefined value first adopts the other's kind.
    void AssignWithType(const ZorWBEnvironment& environment, const ZorWBValue& other);

    bool IsEmpty(const ZorWBEnvironment& environment) const;
    bool IsConsistent(const ZorWBEnvironment& environment) const { return !IsEmpty(environment); }
    bool IsExact(const ZorWBEnvironment& environment) const;
    bool IsIndefinite(const ZorWBEnvironment& environment) const;
    bool IsEqualTo(const ZorWBEnvironment& environment, const ZorWBValue& other) const;

    // Normalises a fraction (see the rules in the implementation); with
    // toReal, a fraction that is not an integer becomes its real reading.
    void SimplifyFraction(bool toReal);

    ZorQelString Str() const;

    // The environment last used with this value. Operations that take an
    // environment record it only while none is recorded (first come);
    // UpdateEnv replaces it.
    const ZorWBEnvironment* GetEnvironment() const { return _environment; }
    void UpdateEnv(const ZorWBEnvironment& environment) const { _environment = &environment; }
    void UpdateEnv(const ZorWBFactory& factory) const;
    void RecordEnv(const ZorWBEnvironment& environment) const {
        if (!_environment) _environment = &environment;
    }

  private:
    void Load(const ZorWBFraction& fraction);
    // Switches to a scalar kind; an enumeration held is released.
    void SetScalarKind(ZorWBValueType type) {
        if (IsEnumKind(_type)) ReleaseEnums();
        _type = type;
    }
    // Frees the enumeration block of an enumeration kind (the payload then
    // points to none).
    void ReleaseEnums() noexcept;
    // Gives this value (of other's enumeration kind, its payload not yet
    // set) a copy of other's enumeration.
    void CopyEnums(const ZorWBValue& other);
    ZorWBValue& AssignWithEnums(const ZorWBValue& other);
    ZorWBValue& MoveAssignWithEnums(ZorWBValue& other) noexcept;
    // The enumeration block of an integer (real) enumeration kind, made at
    // first need; null when memory is short.
    ZorWBIntegerEnum* IntegerEnumBlock();
    ZorWBRealEnum* RealEnumBlock();
    // Switches to an enumeration kind holding a copy of value.
    template <class Enum>
    void SetEnum(ZorWBValueType type, const Enum& value);
    void CopyScalar(const ZorWBValue& other) {
        _type = other._type;
        _payload = other._payload;
        _environment = other._environment;
    }
    static bool IsEnumKind(ZorWBValueType type) {
        return type == ZorWBIntegerEnumType || type == ZorWBRealEnumType;
    }

    // An integer's real reading: its infinity markers are the real ones.
    static double IntegerAsReal(int value) {
        if (value == ZorWBIntegerPlusInfinity) return ZorWBRealPlusInfinity;
        if (value == ZorWBIntegerMinusInfinity) return ZorWBRealMinusInfinity;
        return value;
    }
    int ConvertToInteger() const;
    double ConvertToReal() const;
    ZorWBIntegerInterval ConvertToIntegerInterval() const;
    ZorWBRealInterval ConvertToRealInterval() const;

    // Every kind shares one inline payload: ints[0] the integer, boolean or
    // numerator; ints[0..1] the integer interval; ints[0..2] the fraction;
    // reals[0] the real; reals[0..1] the real interval; for the enumeration
    // kinds the block of the enumeration (a ZorWBIntegerEnum or a
    // ZorWBRealEnum by the kind, owned by the value; null for "any").
    union Payload {
        int ints[3];
        double reals[2];
        void* enums;
    };

    ZorWBValueType _type = ZorWBUndefinedType;
    Payload _payload = {{0, 0, 0}};
    mutable const ZorWBEnvironment* _environment = nullptr;
};

#endif
