#ifndef ZORWB_HASH_H
#define ZORWB_HASH_H

#include <cstddef>
#include <string>

// Mixes a value into a running digest (the usual golden-ratio mix).
inline std::size_t ZorWBCombineHash(std::size_t seed, std::size_t value) {
    return seed ^
           (value + static_cast<std::size_t>(0x9e3779b97f4a7c15ull) + (seed << 6) + (seed >> 2));
}

// A digest of a text (FNV-1a): names are short, and this is cheaper than the
// standard library's hash, which the parser would pay at every identifier.
inline std::size_t ZorWBHashText(const char* text, std::size_t length) {
    std::size_t hash = static_cast<std::size_t>(0xcbf29ce484222325ull);
    for (std::size_t i = 0; i < length; ++i)
        hash = (hash ^ static_cast<unsigned char>(text[i])) *
               static_cast<std::size_t>(0x100000001b3ull);
    return hash;
}

inline std::size_t ZorWBHashText(const std::string& text) {
    return ZorWBHashText(text.data(), text.size());
}

// ZorWBHashText as the hash of an unordered container of texts.
struct ZorWBTextHash {
    std::size_t operator()(const std::string& text) const { return ZorWBHashText(text); }
};

#endif
