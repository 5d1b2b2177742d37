#include "parser/ZorWBNumberText.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The decimal order of magnitude of a number out of double range: positive
// when it overflowed, not positive when it underflowed. Only its sign matters,
// so the exponent saturates.
long long OrderOfMagnitude(const char* text, const char* end) {
    long long order = 0;
    bool seenNonZero = false, afterPoint = false;
    const char* p = text;
    for (; p < end && (IsDigit(*p) || *p == '.'); ++p) {
        if (*p == '.') {
            afterPoint = true;
        } else if (!seenNonZero) {
            if (*p != '0') {
                seenNonZero = true;
                if (!afterPoint) order = 1;
            } else if (afterPoint) {
                --order;
            }
        } else if (!afterPoint) {
            ++order;
        }
    }
    if (p < end && (*p == 'e' || *p == 'E')) {
        ++p;
        bool negative = p < end && *p == '-';
        if (p < end && (*p == '-' || *p == '+')) ++p;
        long long exponent = 0;
        for (; p < end && IsDigit(*p); ++p) {
            if (exponent < 1000000000) exponent = exponent * 10 + (*p - '0');
        }
        order += negative ? -exponent : exponent;
    }
    return order;
}

}  // namespace

double ZorWBReadDecimal(const char* text, std::size_t length) {
    if (!text) return 0.0;
    const char* end = text + length;
    double value = 0.0;
    std::from_chars_result result = std::from_chars(text, end, value);
    if (result.ec == std::errc::result_out_of_range) {
        return OrderOfMagnitude(text, end) > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return result.ec == std::errc() ? value : 0.0;
}
