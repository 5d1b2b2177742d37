#include "parser/ZorWBModelArena.h"

#include <new>

namespace {
constexpr std::size_t LargestBlock = 256 * 1024;
constexpr std::size_t HeaderSize = ZorWBModelArena::Alignment;
}  // namespace

ZorWBModelArena::~ZorWBModelArena() {
    while (_last) {
        Block* previous = _last->previous;
        ::operator delete(_last);
        _last = previous;
    }
}

// A piece larger than a block gets a block of its own; the current block
// stays open for the smaller pieces that follow.
void* ZorWBModelArena::AllocateInNewBlock(std::size_t size) {
    static_assert(sizeof(Block) <= HeaderSize, "the header keeps the pieces aligned");
    if (size > LargestBlock) {
        void* memory = ::operator new(HeaderSize + size, std::nothrow);
        if (!memory) return nullptr;
        Block* block = static_cast<Block*>(memory);
        if (_last) {
            // Slipped behind the current block, which keeps taking pieces.
            block->previous = _last->previous;
            _last->previous = block;
        } else {
            block->previous = nullptr;
            _last = block;
            _next = _end = static_cast<char*>(memory) + HeaderSize + size;
        }
        _reserved += HeaderSize + size;
        return static_cast<char*>(memory) + HeaderSize;
    }
    std::size_t blockSize = _nextBlockSize;
    void* memory = ::operator new(HeaderSize + blockSize, std::nothrow);
    if (!memory) return nullptr;
    Block* block = static_cast<Block*>(memory);
    block->previous = _last;
    _last = block;
    _next = static_cast<char*>(memory) + HeaderSize;
    _end = _next + blockSize;
    _reserved += HeaderSize + blockSize;
    if (_nextBlockSize < LargestBlock) _nextBlockSize *= 2;
    void* room = _next;
    _next += size;
    return room;
}
