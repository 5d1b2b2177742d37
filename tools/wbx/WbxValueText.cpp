#include "WbxValueText.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr long long LargestFiniteInteger = 2147483646;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Digits with an optional point and exponent, after an optional sign: the
// forms the language writes (no "inf", "nan" or hexadecimal).
bool LooksLikeNumber(const std::string& text) {
    std::size_t i = text[0] == '-' || text[0] == '+' ? 1 : 0;
    return i < text.size() && (IsDigit(text[i]) || text[i] == '.');
}

bool ReadNumber(const std::string& raw, ZorWBValue& value) {
    std::string text = WbxTrim(raw);
    if (text.empty() || !LooksLikeNumber(text)) return false;
    const char* begin = text.c_str() + (text[0] == '+' ? 1 : 0);
    const char* end = text.c_str() + text.size();
    long long integer = 0;
    std::from_chars_result whole = std::from_chars(begin, end, integer);
    if (whole.ec == std::errc() && whole.ptr == end && integer >= -LargestFiniteInteger &&
        integer <= LargestFiniteInteger) {
        value = ZorWBValue(static_cast<int>(integer));
        return true;
    }
    double real = 0.0;
    std::from_chars_result read = std::from_chars(begin, end, real);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(real)) return false;
    value = ZorWBValue(real);
    return true;
}

// The numbers of a list "a, b, c" (at least one).
bool ReadList(const std::string& text, std::vector<ZorWBValue>& numbers) {
    std::size_t start = 0;
    while (true) {
        std::size_t comma = text.find(',', start);
        ZorWBValue number;
        if (!ReadNumber(text.substr(start, comma - start), number)) return false;
        numbers.push_back(number);
        if (comma == std::string::npos) return true;
        start = comma + 1;
    }
}

bool IsEnclosed(const std::string& text, char open, char close) {
    return text.size() >= 2 && text.front() == open && text.back() == close;
}

bool ReadInterval(const std::string& inside, ZorWBValue& value) {
    std::vector<ZorWBValue> bounds;
    if (!ReadList(inside, bounds) || bounds.size() != 2) return false;
    double low = bounds[0].GetAsReal(), high = bounds[1].GetAsReal();
    if (low > high) return false;
    value = ZorWBValue(ZorWBRealInterval{low, high});
    return true;
}

bool ReadEnumeration(const std::string& inside, ZorWBValue& value) {
    std::vector<ZorWBValue> elements;
    if (!ReadList(inside, elements)) return false;
    bool integers = true;
    for (const ZorWBValue& element : elements)
        integers = integers && element.GetType() == ZorWBIntegerType;
    int count = static_cast<int>(elements.size());
    if (integers) {
        std::vector<int> list;
        for (const ZorWBValue& element : elements)
            list.push_back(element.GetAsInteger());
        value.Set(count, list.data());
    } else {
        std::vector<double> list;
        for (const ZorWBValue& element : elements)
            list.push_back(element.GetAsReal());
        value.Set(count, list.data());
    }
    return true;
}

}  // namespace

bool WbxReadValue(const std::string& raw, ZorWBValue& value) {
    std::string text = WbxTrim(raw);
    if (text == "true" || text == "false") {
        value = ZorWBValue(text == "true" ? ZorWBTrue : ZorWBFalse);
        return true;
    }
    if (IsEnclosed(text, '[', ']')) return ReadInterval(text.substr(1, text.size() - 2), value);
    if (IsEnclosed(text, '{', '}')) return ReadEnumeration(text.substr(1, text.size() - 2), value);
    return ReadNumber(text, value);
}

std::string WbxTrim(const std::string& text, const char* blanks) {
    std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string WbxJsonString(const std::string& text) {
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(c));
            quoted += escaped;
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}
