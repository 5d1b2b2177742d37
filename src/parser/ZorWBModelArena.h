#ifndef ZORWB_MODELARENA_H
#define ZORWB_MODELARENA_H

#include <cstddef>

#include "ZorWBxExport.h"

// The memory of a parsed model's nodes: handed out in order from blocks
// that grow with the model (4 KiB, doubling up to 256 KiB), and given back
// all at once when the model dies; a node removed earlier keeps its room
// until then. A parse thus allocates a few blocks instead of one heap block
// per node, and the nodes of a statement lie side by side. Allocation
// failures give null, never throw.
class ZORWBX_API ZorWBModelArena {
  public:
    // Every piece is aligned for the nodes, their child arrays and values.
    static constexpr std::size_t Alignment = 8;

    ZorWBModelArena() = default;
    ~ZorWBModelArena();
    ZorWBModelArena(const ZorWBModelArena&) = delete;
    ZorWBModelArena& operator=(const ZorWBModelArena&) = delete;

    // Room for size bytes; null when memory is short.
    void* Allocate(std::size_t size) {
        size = (size + Alignment - 1) & ~(Alignment - 1);
        if (size <= static_cast<std::size_t>(_end - _next)) {
            void* room = _next;
            _next += size;
            return room;
        }
        return AllocateInNewBlock(size);
    }
    // Bytes taken from the heap so far (block headers included).
    std::size_t GetReservedSize() const { return _reserved; }

  private:
    struct Block {
        Block* previous;
    };
    void* AllocateInNewBlock(std::size_t size);

    Block* _last = nullptr;
    char* _next = nullptr;
    char* _end = nullptr;
    std::size_t _nextBlockSize = 4096;
    std::size_t _reserved = 0;
};

#endif
