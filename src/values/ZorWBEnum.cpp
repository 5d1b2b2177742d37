#include "values/ZorWBEnum.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "values/ZorWBEnvironment.h"

template <class T>
ZorWBEnumBase<T>::ZorWBEnumBase(const ZorWBEnumBase& other)
    : _representation(other._representation) {
    if (other._size > 0 && EnsureSize(other._size)) {
        std::memcpy(_data, other._data, sizeof(T) * static_cast<std::size_t>(other._size));
        _size = other._size;
    }
}

template <class T>
ZorWBEnumBase<T>& ZorWBEnumBase<T>::operator=(const ZorWBEnumBase& other) {
    if (this == &other) return *this;
    _size = 0;
    _representation = other._representation;
    if (other._size > 0 && EnsureSize(other._size)) {
        std::memcpy(_data, other._data, sizeof(T) * static_cast<std::size_t>(other._size));
        _size = other._size;
    }
    return *this;
}

template <class T>
ZorWBEnumBase<T>& ZorWBEnumBase<T>::operator=(ZorWBEnumBase&& other) noexcept {
    if (this == &other) return *this;
    delete[] _data;
    _data = other._data;
    _size = other._size;
    _capacity = other._capacity;
    _representation = other._representation;
    other._data = nullptr;
    other._size = other._capacity = 0;
    return *this;
}

template <class T>
bool ZorWBEnumBase<T>::EnsureSize(int size) {
    if (size <= _capacity) return true;
    int capacity = std::max(_capacity, 4);
    while (capacity < size)
        capacity = capacity > (1 << 29) ? size : capacity * 2;
    T* data = new (std::nothrow) T[static_cast<std::size_t>(capacity)];
    if (!data) return false;
    if (_size > 0) std::memcpy(data, _data, sizeof(T) * static_cast<std::size_t>(_size));
    delete[] _data;
    _data = data;
    _capacity = capacity;
    return true;
}

template <class T>
bool ZorWBEnumBase<T>::SetSize(int size) {
    if (size < 0 || !EnsureSize(size)) return false;
    for (int i = _size; i < size; ++i)
        _data[i] = T();
    _size = size;
    return true;
}

template <class T>
bool ZorWBEnumBase<T>::Set(int i, T value) {
    if (i < 0 || i >= _size) return false;
    _data[i] = value;
    return true;
}

template <class T>
bool ZorWBEnumBase<T>::RemovePosition(int first, int count) {
    if (first < 0 || first >= _size || count < 0) return false;
    count = std::min(count, _size - first);
    std::memmove(_data + first, _data + first + count,
                 sizeof(T) * static_cast<std::size_t>(_size - first - count));
    _size -= count;
    return true;
}

template <class T>
int ZorWBEnumBase<T>::FindGT(T value) const {
    if (_representation != ZorWBEnumList) return -1;
    const T* position = std::upper_bound(_data, _data + _size, value);
    return position == _data + _size ? -1 : static_cast<int>(position - _data);
}

template <class T>
int ZorWBEnumBase<T>::FindLT(T value) const {
    if (_representation != ZorWBEnumList) return -1;
    const T* position = std::lower_bound(_data, _data + _size, value);
    return static_cast<int>(position - _data) - 1;
}

template <class T>
bool ZorWBEnumBase<T>::InsertAt(int position, T value) {
    if (position < 0 || position > _size || !EnsureSize(_size + 1)) return false;
    std::memmove(_data + position + 1, _data + position,
                 sizeof(T) * static_cast<std::size_t>(_size - position));
    _data[position] = value;
    ++_size;
    return true;
}

template <class T>
void ZorWBEnumBase<T>::StoreInterval(T low, T high) {
    _size = 0;
    // Without room for its two ends the interval widens to any value.
    _representation = ZorWBEnumAny;
    if (EnsureSize(2)) {
        _representation = ZorWBEnumInterval;
        _data[0] = low;
        _data[1] = high;
        _size = 2;
    }
}

template class ZorWBEnumBase<int>;
template class ZorWBEnumBase<double>;

// ---------------------------------------------------------------- integers

bool ZorWBIntegerEnum::MakeListForUpdate() {
    switch (GetRep()) {
        case ZorWBEnumList:
            return true;
        case ZorWBEnumInterval:
            return ExpandInterval();
        default:
            Reset(ZorWBEnumList);
            return true;
    }
}

namespace {

// The largest finite integers are elements like any other; only the bounds
// beyond them (the infinity markers) are infinite ends.
bool IsFiniteHull(const ZorWBIntegerInterval& hull) {
    return hull.low >= -ZorWBIntegerMax && hull.high <= ZorWBIntegerMax;
}

}  // namespace

bool ZorWBIntegerEnum::ExpandInterval() {
    ZorWBIntegerInterval hull = GetAsIntegerInterval();
    long long width = static_cast<long long>(hull.high) - hull.low;
    if (width >= MaxExpansion || !IsFiniteHull(hull)) return false;
    Reset(ZorWBEnumList);
    if (width < 0) return true;
    if (!SetSize(static_cast<int>(width) + 1)) {
        StoreInterval(hull.low, hull.high);  // memory is short: stays the interval
        return false;
    }
    for (int i = 0; i <= width; ++i)
        Set(i, hull.low + i);
    return true;
}

bool ZorWBIntegerEnum::Append(int value) {
    if (!MakeListForUpdate()) return false;
    return SetSize(GetSize() + 1) && Set(GetSize() - 1, value);
}

bool ZorWBIntegerEnum::Insert(int value) {
    if (!MakeListForUpdate()) return false;
    const int* first = GetData();
    const int* position = std::lower_bound(first, first + GetSize(), value);
    if (position != first + GetSize() && *position == value) return false;
    return InsertAt(static_cast<int>(position - first), value);
}

bool ZorWBIntegerEnum::Remove(int value) {
    if (GetRep() == ZorWBEnumInterval) {
        ZorWBIntegerInterval hull = GetAsIntegerInterval();
        if (value == hull.low && value < hull.high) return Set(0, hull.low + 1);
        if (value == hull.high && value > hull.low) return Set(1, hull.high - 1);
        if (value == hull.low && value == hull.high) {
            SetNil();
            return true;
        }
        if (value < hull.low || value > hull.high || !ExpandInterval()) return false;
    }
    int position = 0;
    return GetRep() == ZorWBEnumList && Find(value, position) && RemovePosition(position, 1);
}

bool ZorWBIntegerEnum::Find(int value, int& position) const {
    position = -1;
    switch (GetRep()) {
        case ZorWBEnumList: {
            const int* first = GetData();
            const int* found = std::lower_bound(first, first + GetSize(), value);
            if (found == first + GetSize() || *found != value) return false;
            position = static_cast<int>(found - first);
            return true;
        }
        case ZorWBEnumInterval: {
            ZorWBIntegerInterval hull = GetAsIntegerInterval();
            if (value < hull.low || value > hull.high) return false;
            position = static_cast<int>(static_cast<long long>(value) - hull.low);
            return true;
        }
        case ZorWBEnumAny:
            return true;
        default:
            return false;
    }
}

bool ZorWBIntegerEnum::Contains(int value) const {
    int position = 0;
    return Find(value, position);
}

ZorWBIntegerInterval ZorWBIntegerEnum::GetAsIntegerInterval() const {
    switch (GetRep()) {
        case ZorWBEnumList:
            if (GetSize() == 0) return ZorWBInteger_Nil;
            return {*std::min_element(GetData(), GetData() + GetSize()),
                    *std::max_element(GetData(), GetData() + GetSize())};
        case ZorWBEnumInterval:
            return {Get(0), Get(1)};
        case ZorWBEnumAny:
            return ZorWBInteger_Any;
        default:
            return ZorWBInteger_Nil;
    }
}

void ZorWBIntegerEnum::SetAsIntegerInterval(const ZorWBIntegerInterval& interval) {
    StoreInterval(interval.low, interval.high);
}

void ZorWBIntegerEnum::Correct(const ZorWBEnvironment& environment) {
    if (GetRep() == ZorWBEnumInterval) {
        ZorWBIntegerInterval hull = GetAsIntegerInterval();
        long long width = static_cast<long long>(hull.high) - hull.low;
        if (width < 0)
            SetNil();
        else if (IsFiniteHull(hull) && width < environment.GetMaxEnumSize())
            ExpandInterval();
    } else if (GetRep() == ZorWBEnumList && GetSize() == 0) {
        SetNil();
    }
}

// ---------------------------------------------------------------- reals

ZorWBRealEnum& ZorWBRealEnum::operator=(const ZorWBIntegerEnum& integers) {
    Reset(integers.GetRep());
    if (SetSize(integers.GetSize())) {
        for (int i = 0; i < integers.GetSize(); ++i)
            Set(i, integers.Get(i));
    }
    return *this;
}

bool ZorWBRealEnum::MakeListForUpdate() {
    if (GetRep() == ZorWBEnumInterval) return false;
    if (GetRep() != ZorWBEnumList) Reset(ZorWBEnumList);
    return true;
}

bool ZorWBRealEnum::Append(double value) {
    if (!MakeListForUpdate()) return false;
    return SetSize(GetSize() + 1) && Set(GetSize() - 1, value);
}

bool ZorWBRealEnum::Insert(double value, double tolerance) {
    if (!MakeListForUpdate()) return false;
    int position = 0;
    if (Find(value, position, tolerance)) return false;
    const double* first = GetData();
    const double* at = std::lower_bound(first, first + GetSize(), value);
    return InsertAt(static_cast<int>(at - first), value);
}

bool ZorWBRealEnum::Remove(double value, double tolerance) {
    int position = 0;
    return GetRep() == ZorWBEnumList && Find(value, position, tolerance) &&
           RemovePosition(position, 1);
}

bool ZorWBRealEnum::Find(double value, int& position, double tolerance) const {
    position = -1;
    switch (GetRep()) {
        case ZorWBEnumList: {
            const double* first = GetData();
            const double* at = std::lower_bound(first, first + GetSize(), value - tolerance);
            bool found =
                at != first + GetSize() && (std::fabs(*at - value) < tolerance || *at == value);
            if (!found) return false;
            position = static_cast<int>(at - first);
            return true;
        }
        case ZorWBEnumInterval: {
            ZorWBRealInterval hull = GetAsRealInterval();
            if (hull.low - value >= tolerance || value - hull.high >= tolerance) return false;
            position = 0;
            return true;
        }
        case ZorWBEnumAny:
            return true;
        default:
            return false;
    }
}

bool ZorWBRealEnum::Contains(double value, double tolerance) const {
    int position = 0;
    return Find(value, position, tolerance);
}

ZorWBRealInterval ZorWBRealEnum::GetAsRealInterval() const {
    switch (GetRep()) {
        case ZorWBEnumList:
            if (GetSize() == 0) return ZorWBReal_Nil;
            return {*std::min_element(GetData(), GetData() + GetSize()),
                    *std::max_element(GetData(), GetData() + GetSize())};
        case ZorWBEnumInterval:
            return {Get(0), Get(1)};
        case ZorWBEnumAny:
            return ZorWBReal_Any;
        default:
            return ZorWBReal_Nil;
    }
}

void ZorWBRealEnum::SetAsRealInterval(const ZorWBRealInterval& interval) {
    StoreInterval(interval.low, interval.high);
}

void ZorWBRealEnum::Correct(const ZorWBEnvironment& environment) {
    if (GetRep() == ZorWBEnumInterval) {
        ZorWBRealInterval hull = GetAsRealInterval();
        if (hull.low - hull.high > environment.GetTolerance()) SetNil();
    } else if (GetRep() == ZorWBEnumList && GetSize() == 0) {
        SetNil();
    }
}
