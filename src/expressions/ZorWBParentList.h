#ifndef ZORWB_PARENTLIST_H
#define ZORWB_PARENTLIST_H

#include <cstdint>

#include "ZorWBxExport.h"

class ZorWBExpression;
struct ZorWBNodeAnnex;

// The parents of a node: every operator that holds the node as a child, once
// per holding; and, beside them, the node's annex (the data that few nodes
// need, see ZorWBNodeAnnex), which the list keeps but does not own.
//
// The list takes one word in the node. Most nodes have a single parent and
// no annex: the word is then that parent. A second parent or an annex moves
// the list into a block on the heap, which the word points to, marked by
// its lowest bit (no node address has it): the size and capacity, the
// entries, and a last slot for the annex, present only when the next bit of
// the word says so. Allocation failures are reported, never thrown.
class ZORWBX_API ZorWBParentList {
  public:
    ZorWBParentList() = default;
    ZorWBParentList(const ZorWBParentList&) = delete;
    ZorWBParentList& operator=(const ZorWBParentList&) = delete;
    ~ZorWBParentList() { Release(); }

    int GetSize() const {
        if (IsBlock()) return GetBlock()->size;
        return _word ? 1 : 0;
    }
    bool IsEmpty() const { return _word == 0 || (IsBlock() && GetBlock()->size == 0); }
    ZorWBExpression* Get(int i) const {
        if (IsBlock()) {
            const Block* block = GetBlock();
            return i >= 0 && i < block->size ? block->Entries()[i] : nullptr;
        }
        return i == 0 ? reinterpret_cast<ZorWBExpression*>(_word) : nullptr;
    }
    ZorWBExpression* GetLast() const { return Get(GetSize() - 1); }
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
        if (!IsBlock()) {
            if (_word && drop(reinterpret_cast<ZorWBExpression*>(_word))) _word = 0;
            return;
        }
        Block* block = GetBlock();
        ZorWBExpression** entries = block->Entries();
        int kept = 0;
        for (int i = 0; i < block->size; ++i) {
            if (!drop(entries[i])) entries[kept++] = entries[i];
        }
        block->size = kept;
    }
    // Forgets every parent; the annex stays.
    void Clear();

    // The annex kept beside the parents (null when there is none).
    ZorWBNodeAnnex* GetAnnex() const { return HasAnnexSlot() ? *AnnexSlot() : nullptr; }
    // Keeps annex (or none); false, keeping the one before, when memory is
    // short.
    bool SetAnnex(ZorWBNodeAnnex* annex);

  private:
    // The entries follow the header, then the annex slot when there is one.
    struct Block {
        int size;
        int capacity;
        ZorWBExpression** Entries() { return reinterpret_cast<ZorWBExpression**>(this + 1); }
        ZorWBExpression* const* Entries() const {
            return reinterpret_cast<ZorWBExpression* const*>(this + 1);
        }
    };
    static constexpr std::uintptr_t BlockBit = 1;
    static constexpr std::uintptr_t AnnexSlotBit = 2;
    static constexpr std::uintptr_t TagBits = BlockBit | AnnexSlotBit;

    bool IsBlock() const { return (_word & BlockBit) != 0; }
    bool HasAnnexSlot() const { return (_word & AnnexSlotBit) != 0; }
    Block* GetBlock() const { return reinterpret_cast<Block*>(_word & ~TagBits); }
    ZorWBNodeAnnex** AnnexSlot() const {
        Block* block = GetBlock();
        return reinterpret_cast<ZorWBNodeAnnex**>(block->Entries() + block->capacity);
    }
    // Moves the list into a block of at least capacity entries, with an
    // annex slot if withAnnexSlot or it has one already; false when memory
    // is short.
    bool Reserve(int capacity, bool withAnnexSlot);
    void Release();

    // Null, the only parent, or the block's address plus its tag bits.
    std::uintptr_t _word = 0;
};

#endif
