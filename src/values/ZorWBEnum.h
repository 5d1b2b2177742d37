#ifndef ZORWB_ENUM_H
#define ZORWB_ENUM_H

#include "ZorWBxExport.h"
#include "values/ZorWBInterval.h"

class ZorWBEnvironment;

// The most elements an enumeration holds as a list. Beyond it an enumeration
// is held as its hull (an interval), whatever the environment's maximum
// enumeration size (which is clamped to this) or the count a caller passes.
constexpr int ZorWBMaxEnumSize = 1 << 20;

// How an enumeration holds its elements.
enum ZorWBEnumRepresentation : int {
    ZorWBEnumList = 0,      // the sorted list of the elements
    ZorWBEnumInterval = 1,  // every number between the first two entries
    ZorWBEnumAny = 2,       // every value; no entries
    ZorWBEnumNil = 3,       // no value; no entries
};

// The storage shared by integer and real enumerations: a growable buffer of
// entries that allocates nothing while it is empty, and the representation.
// Indices outside the entries read as 0 and are ignored on writes.
template <class T>
class ZORWBX_API ZorWBEnumBase {
  public:
    explicit ZorWBEnumBase(ZorWBEnumRepresentation representation = ZorWBEnumAny)
        : _representation(representation) {}
    ZorWBEnumBase(const ZorWBEnumBase& other);
    ZorWBEnumBase(ZorWBEnumBase&& other) noexcept
        : _data(other._data),
          _size(other._size),
          _capacity(other._capacity),
          _representation(other._representation) {
        other._data = nullptr;
        other._size = other._capacity = 0;
    }
    ZorWBEnumBase& operator=(const ZorWBEnumBase& other);
    ZorWBEnumBase& operator=(ZorWBEnumBase&& other) noexcept;
    // Inline so that the common empty enumeration costs one test.
    ~ZorWBEnumBase() {
        if (_data) delete[] _data;
    }

    int GetSize() const { return _size; }
    // Resizes the entries (new ones are 0); false when memory is short.
    bool SetSize(int size);
    T Get(int i) const { return (i >= 0 && i < _size) ? _data[i] : T(); }
    bool Set(int i, T value);

    ZorWBEnumRepresentation GetRep() const { return _representation; }
    void SetRep(ZorWBEnumRepresentation representation) { _representation = representation; }
    bool IsAny() const { return _representation == ZorWBEnumAny; }
    bool IsNil() const { return _representation == ZorWBEnumNil; }
    void SetAny() { Reset(ZorWBEnumAny); }
    void SetNil() { Reset(ZorWBEnumNil); }
    // Empties the entries (keeping the buffer) and sets the representation.
    void Reset(ZorWBEnumRepresentation representation) {
        _size = 0;
        _representation = representation;
    }

    // Removes count entries from first on; false when first is out of range.
    bool RemovePosition(int first, int count);
    // Index of the first entry greater than value, or -1 (list only).
    int FindGT(T value) const;
    // Index of the last entry less than value, or -1 (list only).
    int FindLT(T value) const;

    const T* GetData() const { return _data; }

  protected:
    bool EnsureSize(int size);
    // Inserts at a position of the list, growing it; false when memory is short.
    bool InsertAt(int position, T value);
    void StoreInterval(T low, T high);

  private:
    T* _data = nullptr;
    int _size = 0;
    int _capacity = 0;
    ZorWBEnumRepresentation _representation;
};

extern template class ZorWBEnumBase<int>;
extern template class ZorWBEnumBase<double>;

// A finite set of integers, held as a sorted list, as an interval, or as
// any / nil.
class ZORWBX_API ZorWBIntegerEnum : public ZorWBEnumBase<int> {
  public:
    // The largest interval that the list operations expand into a list.
    static constexpr int MaxExpansion = ZorWBMaxEnumSize;

    explicit ZorWBIntegerEnum(ZorWBEnumRepresentation representation = ZorWBEnumAny)
        : ZorWBEnumBase<int>(representation) {}

    // Appends at the end of the list (the caller keeps the order). An any or
    // nil enumeration becomes a list first, and an interval one is expanded
    // when it is small enough; false when it cannot be.
    bool Append(int value);
    // Inserts in sorted position unless already present; same rules.
    bool Insert(int value);
    // Removes an element; an interval loses it only at one of its ends.
    bool Remove(int value);
    // Whether the element is present, and its position in the list (or its
    // offset from the low end of an interval).
    bool Find(int value, int& position) const;
    bool Contains(int value) const;

    // The hull: the whole line for any, an empty interval for nil.
    ZorWBIntegerInterval GetAsIntegerInterval() const;
    void SetAsIntegerInterval(const ZorWBIntegerInterval& interval);

    // Normalises: an empty interval or list becomes nil; a finite interval
    // narrower than the environment's maximum enumeration size becomes a list.
    void Correct(const ZorWBEnvironment& environment);

  private:
    bool MakeListForUpdate();
    bool ExpandInterval();
};

// A finite set of reals, held as a sorted list, as an interval, or as
// any / nil. Intervals are never expanded.
class ZORWBX_API ZorWBRealEnum : public ZorWBEnumBase<double> {
  public:
    explicit ZorWBRealEnum(ZorWBEnumRepresentation representation = ZorWBEnumAny)
        : ZorWBEnumBase<double>(representation) {}
    // The elements converted to reals; the representation is kept.
    explicit ZorWBRealEnum(const ZorWBIntegerEnum& integers) { *this = integers; }
    ZorWBRealEnum& operator=(const ZorWBIntegerEnum& integers);

    // Appends at the end of the list; an any or nil enumeration becomes a
    // list first; false for an interval.
    bool Append(double value);
    // Inserts in sorted position unless an element lies within tolerance.
    bool Insert(double value, double tolerance);
    bool Remove(double value, double tolerance);
    bool Find(double value, int& position, double tolerance) const;
    bool Contains(double value, double tolerance) const;

    ZorWBRealInterval GetAsRealInterval() const;
    void SetAsRealInterval(const ZorWBRealInterval& interval);

    // Normalises: an empty interval or list becomes nil.
    void Correct(const ZorWBEnvironment& environment);

  private:
    bool MakeListForUpdate();
};

#endif
