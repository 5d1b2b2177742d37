#include "expressions/ZorWBParentList.h"

#include <climits>
#include <new>

bool ZorWBParentList::Reserve(int capacity, bool withAnnexSlot) {
    withAnnexSlot = withAnnexSlot || HasAnnexSlot();
    if (IsBlock() && GetBlock()->capacity >= capacity && HasAnnexSlot() == withAnnexSlot)
        return true;
    std::size_t slots = static_cast<std::size_t>(capacity) + (withAnnexSlot ? 1 : 0);
    void* memory = ::operator new(sizeof(Block) + sizeof(void*) * slots, std::nothrow);
    if (!memory) return false;
    Block* grown = new (memory) Block{GetSize(), capacity};
    for (int i = 0; i < grown->size; ++i)
        grown->Entries()[i] = Get(i);
    std::uintptr_t word = reinterpret_cast<std::uintptr_t>(grown) | BlockBit;
    if (withAnnexSlot) {
        *reinterpret_cast<ZorWBNodeAnnex**>(grown->Entries() + capacity) = GetAnnex();
        word |= AnnexSlotBit;
    }
    Release();
    _word = word;
    return true;
}

bool ZorWBParentList::Add(ZorWBExpression* parent) {
    if (_word == 0) {
        _word = reinterpret_cast<std::uintptr_t>(parent);
        return true;
    }
    int size = GetSize();
    if (!IsBlock() || size == GetBlock()->capacity) {
        if (size > INT_MAX / 2) return false;
        if (!Reserve(size < 2 ? 2 : size * 2, false)) return false;
    }
    Block* block = GetBlock();
    block->Entries()[block->size++] = parent;
    return true;
}

bool ZorWBParentList::Remove(const ZorWBExpression* parent) {
    if (!IsBlock()) {
        if (_word == 0 || reinterpret_cast<const ZorWBExpression*>(_word) != parent) return false;
        _word = 0;
        return true;
    }
    Block* block = GetBlock();
    ZorWBExpression** entries = block->Entries();
    for (int i = block->size - 1; i >= 0; --i) {
        if (entries[i] != parent) continue;
        for (int j = i + 1; j < block->size; ++j)
            entries[j - 1] = entries[j];
        --block->size;
        return true;
    }
    return false;
}

void ZorWBParentList::Clear() {
    if (IsBlock()) {
        GetBlock()->size = 0;
    } else {
        _word = 0;
    }
}

bool ZorWBParentList::SetAnnex(ZorWBNodeAnnex* annex) {
    if (!HasAnnexSlot() && !Reserve(IsBlock() ? GetBlock()->capacity : 1, true)) return false;
    *AnnexSlot() = annex;
    return true;
}

void ZorWBParentList::Release() {
    if (IsBlock()) ::operator delete(GetBlock());
    _word = 0;
}
