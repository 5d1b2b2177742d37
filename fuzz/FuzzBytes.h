#ifndef FUZZ_FUZZ_BYTES_H
#define FUZZ_FUZZ_BYTES_H

// Reads the fuzzer's bytes as a stream of small decisions. Once the bytes
// run out every decision is 0, so that any input, even an empty one, makes
// a complete (if small) case.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

class FuzzBytes {
  public:
    FuzzBytes(const std::uint8_t* data, std::size_t size) : _data(data), _size(size) {}

    bool Empty() const { return _position >= _size; }

    std::uint8_t Byte() { return _position < _size ? _data[_position++] : 0; }

    // A number in [0, n); n at most 65536.
    int Index(int n) {
        if (n <= 1) return 0;
        unsigned value = Byte();
        if (n > 256) value = (value << 8) | Byte();
        return static_cast<int>(value % static_cast<unsigned>(n));
    }

    bool Chance(int percent) { return Index(100) < percent; }

    std::uint32_t Word() {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = (value << 8) | Byte();
        return value;
    }

    // Any double bit pattern, NaN and the infinities included.
    double AnyDouble() {
        std::uint64_t bits = (static_cast<std::uint64_t>(Word()) << 32) | Word();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    // Integers: mostly small, sometimes near the ends of the range or the
    // infinity markers.
    int Integer() {
        switch (Index(8)) {
            case 0:
                return static_cast<int>(Word());
            case 1: {
                static const int ends[] = {2147483647, -2147483647 - 1, 2147483646, -2147483647,
                                           1 << 30,    -(1 << 30),      65536,      -65536};
                return ends[Index(8)];
            }
            default:
                return Index(41) - 20;
        }
    }

    // Reals: mostly small, sometimes integral, huge, tiny, at the limits or
    // any bit pattern.
    double Real() {
        switch (Index(10)) {
            case 0:
                return AnyDouble();
            case 1: {
                static const double ends[] = {3.4028234663852886e+38,
                                              -3.4028234663852886e+38,
                                              3.4028234663852886e+39,
                                              -3.4028234663852886e+39,
                                              1e300,
                                              -1e300,
                                              1e-300,
                                              0.0,
                                              -0.0,
                                              2147483647.0};
                return ends[Index(10)];
            }
            case 2:
                return std::ldexp(static_cast<double>(Index(2001) - 1000), Index(200) - 100);
            case 3:
            case 4:
                return static_cast<double>(Index(25) - 12);
            default:
                return (Index(65536) - 32768) / 4096.0;
        }
    }

    // A short text of the remaining bytes' choice.
    std::string Text(int maxLength) {
        std::string text;
        for (int n = Index(maxLength + 1); n > 0 && !Empty(); --n)
            text.push_back(static_cast<char>(Byte()));
        return text;
    }

  private:
    const std::uint8_t* _data;
    std::size_t _size;
    std::size_t _position = 0;
};

// Ends the run with a message when a property fails: libFuzzer records the
// input as a crash.
[[noreturn]] void FuzzFail(const std::string& message);

#define FUZZ_CHECK(condition, message)       \
    do {                                     \
        if (!(condition)) FuzzFail(message); \
    } while (false)

#endif
