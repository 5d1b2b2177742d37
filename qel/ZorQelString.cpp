#include "qel/ZorQelString.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

// Appends what std::to_chars wrote; to_chars ignores the locale.
template <class... Args>
void AppendChars(std::string& text, Args... args) {
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, args...);
    text.append(buffer, result.ptr);
}

bool AppendNonFinite(std::string& text, double value) {
    if (std::isnan(value)) {
        text += "nan";
    } else if (std::isinf(value)) {
        text += value > 0 ? "inf" : "-inf";
    } else {
        return false;
    }
    return true;
}

}  // namespace

char ZorQelString::GetAt(int i) const {
    if (i < 0 || i >= GetLength()) return '\0';
    return _text[static_cast<std::size_t>(i)];
}

ZorQelString& ZorQelString::Append(const char* text) {
    if (text) _text += text;
    return *this;
}

ZorQelString& ZorQelString::Append(const char* text, int length) {
    if (text && length > 0) _text.append(text, static_cast<std::size_t>(length));
    return *this;
}

ZorQelString& ZorQelString::AppendChar(char c) {
    _text += c;
    return *this;
}

ZorQelString& ZorQelString::AppendInt(long long value) {
    AppendChars(_text, value);
    return *this;
}

ZorQelString& ZorQelString::AppendDouble(double value) {
    if (!AppendNonFinite(_text, value)) AppendChars(_text, value);
    return *this;
}

ZorQelString& ZorQelString::AppendDouble(double value, int significantDigits) {
    if (!AppendNonFinite(_text, value))
        AppendChars(_text, value, std::chars_format::general, significantDigits);
    return *this;
}

ZorQelString& ZorQelString::AppendFixed(double value, int digitsAfterPoint) {
    if (!AppendNonFinite(_text, value))
        AppendChars(_text, value, std::chars_format::fixed, digitsAfterPoint);
    return *this;
}

ZorQelString ZorQelString::ToLower() const {
    std::string lower = _text;
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ZorQelString(std::move(lower));
}

bool ZorQelString::StartsWith(const char* prefix) const {
    if (!prefix) return false;
    return _text.compare(0, std::strlen(prefix), prefix) == 0;
}

int ZorQelString::Find(const char* text, int from) const {
    if (!text || from < 0 || from > GetLength()) return -1;
    std::size_t position = _text.find(text, static_cast<std::size_t>(from));
    return position == std::string::npos ? -1 : static_cast<int>(position);
}

ZorQelString ZorQelString::Mid(int first, int count) const {
    if (first < 0 || first >= GetLength()) return ZorQelString();
    std::size_t length = count < 0 ? std::string::npos : static_cast<std::size_t>(count);
    return ZorQelString(_text.substr(static_cast<std::size_t>(first), length));
}

namespace {

// The whole of text as one number. std::from_chars reads a minus sign only:
// a leading plus sign is passed here, but not when another sign follows it,
// since a number carries at most one sign.
template <class Number>
bool ParseWhole(const char* text, Number& value) {
    if (!text || !*text) return false;
    const char* end = text + std::strlen(text);
    if (*text == '+' && text[1] != '-') ++text;
    auto result = std::from_chars(text, end, value);
    return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

bool ZorQelString::ParseDouble(const char* text, double& value) {
    return ParseWhole(text, value);
}

bool ZorQelString::ParseInt(const char* text, int& value) {
    return ParseWhole(text, value);
}
