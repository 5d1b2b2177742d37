#ifndef ZORWB_PARENTLIST_H
#define ZORWB_PARENTLIST_H

#include "ZorWBxExport.h"

class ZorWBExpression;

// The parents of a node: every operator that holds the node as a child, once
// per holding. Most nodes have a single parent, which is kept inline; a
// second one moves the list to the heap. Allocation failures are reported,
// never thrown.
class ZORWBX_API ZorWBParentList {
  public:
    ZorWBParentList() = default;
    ZorWBParentList(const ZorWBParentList&) = delete;
    ZorWBParentList& operator=(const ZorWBParentList&) = delete;
    ~ZorWBParentList() { Clear(); }

    int GetSize() const { return _size; }
    bool IsEmpty() const { return _size == 0; }
    ZorWBExpression* Get(int i) const {
        if (i < 0 || i >= _size) return nullptr;
        return _capacity == 0 ? _one : _many[i];
    }
    ZorWBExpression* GetLast() const { return Get(_size - 1); }
    // Appends a parent; false when memory is short.
    bool Add(ZorWBExpression* parent);
    // Removes one occurrence of parent, searching from the most recent one
    // (the parent removed most often: nodes die in reverse creation order);
    // false when it is absent.
    bool Remove(const ZorWBExpression* parent);
    // Removes every entry for which drop(entry) holds, keeping the order of
    // the others: one pass, however many go.
    template <class Drop>
    void RemoveIf(Drop&& drop) {
        int kept = 0;
        for (int i = 0; i < _size; ++i) {
            ZorWBExpression* parent = Get(i);
            if (drop(parent)) continue;
            if (_capacity == 0) {
                _one = parent;
            } else {
                _many[kept] = parent;
            }
            ++kept;
        }
        if (_capacity == 0 && kept == 0) _one = nullptr;
        _size = kept;
    }
    void Clear();

  private:
    // _capacity 0: at most one parent, held in _one; otherwise _many.
    union {
        ZorWBExpression* _one = nullptr;
        ZorWBExpression** _many;
    };
    int _size = 0;
    int _capacity = 0;
};

#endif
