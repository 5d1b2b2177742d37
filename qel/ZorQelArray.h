#ifndef ZORQEL_ARRAY_H
#define ZORQEL_ARRAY_H

#include <algorithm>
#include <vector>

#include "qel/ZorQelExport.h"

// A growable array of plain elements (pointers or integers). Out-of-range
// reads give a default element and out-of-range writes are ignored, so that
// no index coming from outside can corrupt memory.
template <class T>
class ZorQelArray {
  public:
    ZorQelArray() = default;
    explicit ZorQelArray(int size, T value = T()) : _items(size > 0 ? size : 0, value) {}

    int GetSize() const { return static_cast<int>(_items.size()); }
    bool IsEmpty() const { return _items.empty(); }
    bool IsValidIndex(int i) const { return i >= 0 && i < GetSize(); }

    T Get(int i) const { return IsValidIndex(i) ? _items[static_cast<std::size_t>(i)] : T(); }
    T operator[](int i) const { return Get(i); }
    bool Set(int i, T value) {
        if (!IsValidIndex(i)) return false;
        _items[static_cast<std::size_t>(i)] = value;
        return true;
    }
    T GetLast() const { return _items.empty() ? T() : _items.back(); }

    void Add(T value) { _items.push_back(value); }
    bool InsertAt(int i, T value) {
        if (i < 0 || i > GetSize()) return false;
        _items.insert(_items.begin() + i, value);
        return true;
    }
    bool RemoveAt(int i, int count = 1) {
        if (!IsValidIndex(i) || count < 0) return false;
        count = std::min(count, GetSize() - i);
        _items.erase(_items.begin() + i, _items.begin() + i + count);
        return true;
    }
    // Removes the first element equal to value; false when there is none.
    bool Remove(T value) {
        int i = Find(value);
        return i >= 0 && RemoveAt(i);
    }
    int Find(T value) const {
        auto it = std::find(_items.begin(), _items.end(), value);
        return it == _items.end() ? -1 : static_cast<int>(it - _items.begin());
    }
    bool Contains(T value) const { return Find(value) >= 0; }

    void SetSize(int size, T value = T()) { _items.resize(size > 0 ? size : 0, value); }
    void Fill(T value) { std::fill(_items.begin(), _items.end(), value); }
    void RemoveAll() { _items.clear(); }
    void Reserve(int capacity) {
        if (capacity > 0) _items.reserve(static_cast<std::size_t>(capacity));
    }
    int GetCapacity() const { return static_cast<int>(_items.capacity()); }

    void Sort() { std::sort(_items.begin(), _items.end()); }
    // Index of value in an ascending array, or -1.
    int BinarySearch(T value) const {
        auto it = std::lower_bound(_items.begin(), _items.end(), value);
        return (it != _items.end() && !(value < *it)) ? static_cast<int>(it - _items.begin()) : -1;
    }

    T* GetData() { return _items.data(); }
    const T* GetData() const { return _items.data(); }
    typename std::vector<T>::const_iterator begin() const { return _items.begin(); }
    typename std::vector<T>::const_iterator end() const { return _items.end(); }

    friend bool operator==(const ZorQelArray& a, const ZorQelArray& b) {
        return a._items == b._items;
    }
    friend bool operator!=(const ZorQelArray& a, const ZorQelArray& b) {
        return a._items != b._items;
    }

  private:
    std::vector<T> _items;
};

using ZorQelIntArray = ZorQelArray<int>;

// An array of flags that also keeps count of the flags that are set: Check()
// recounts them after direct writes, IsAnySet() reads the count.
class ZORQEL_API ZorQelBoolArray {
  public:
    ZorQelBoolArray() = default;
    explicit ZorQelBoolArray(int size, bool value = false) { SetSize(size, value); }

    int GetSize() const { return _flags.GetSize(); }
    bool Get(int i) const { return _flags.Get(i) != 0; }
    bool operator[](int i) const { return Get(i); }
    void Set(int i, bool value) { _flags.Set(i, value ? 1 : 0); }
    void SetSize(int size, bool value = false) {
        _flags.SetSize(size, value ? 1 : 0);
        Check();
    }
    void Fill(bool value) {
        _flags.Fill(value ? 1 : 0);
        _count = value ? GetSize() : 0;
    }
    unsigned char* GetData() { return _flags.GetData(); }

    // Recounts the set flags; returns whether any is set.
    bool Check();
    int GetNbOfSet() const { return _count; }
    bool IsAnySet() const { return _count > 0; }

  private:
    ZorQelArray<unsigned char> _flags;
    int _count = 0;
};

#endif
