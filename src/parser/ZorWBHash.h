#ifndef ZORWB_HASH_H
#define ZORWB_HASH_H

#include <cstddef>

// Mixes a value into a running digest (the usual golden-ratio mix).
inline std::size_t ZorWBCombineHash(std::size_t seed, std::size_t value) {
    return seed ^
           (value + static_cast<std::size_t>(0x9e3779b97f4a7c15ull) + (seed << 6) + (seed >> 2));
}

#endif
