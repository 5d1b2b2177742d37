#ifndef ZORQEL_STRING_H
#define ZORQEL_STRING_H

#include <cstddef>
#include <string>

#include "qel/ZorQelExport.h"

// An 8-bit text. Appending a double writes the shortest decimal form that
// reads back to the same double ("0.1", "1e+300", "-2"), independently of the
// process locale.
class ZORQEL_API ZorQelString {
  public:
    ZorQelString() = default;
    ZorQelString(const char* text) : _text(text ? text : "") {}  // NOLINT: implicit on purpose
    ZorQelString(const char* text, std::size_t length)
        : _text(text ? text : "", text ? length : 0) {}
    ZorQelString(std::string text) : _text(std::move(text)) {}  // NOLINT: implicit on purpose

    const char* GetString() const { return _text.c_str(); }
    const char* c_str() const { return _text.c_str(); }
    const std::string& GetStdString() const { return _text; }
    int GetLength() const { return static_cast<int>(_text.size()); }
    bool IsEmpty() const { return _text.empty(); }
    char GetAt(int i) const;

    void Empty() { _text.clear(); }
    ZorQelString& Append(const char* text);
    ZorQelString& Append(const ZorQelString& text) {
        return Append(text.GetString(), text.GetLength());
    }
    ZorQelString& Append(const char* text, int length);
    ZorQelString& AppendChar(char c);
    ZorQelString& AppendInt(long long value);
    ZorQelString& AppendDouble(double value);
    ZorQelString& AppendDouble(double value, int significantDigits);
    ZorQelString& AppendFixed(double value, int digitsAfterPoint);

    ZorQelString& operator+=(const ZorQelString& text) { return Append(text); }
    ZorQelString& operator+=(const char* text) { return Append(text); }
    ZorQelString& operator+=(char c) { return AppendChar(c); }
    ZorQelString& operator+=(int value) { return AppendInt(value); }
    ZorQelString& operator+=(unsigned value) { return AppendInt(value); }
    ZorQelString& operator+=(long value) { return AppendInt(value); }
    ZorQelString& operator+=(long long value) { return AppendInt(value); }
    ZorQelString& operator+=(double value) { return AppendDouble(value); }

    ZorQelString ToLower() const;
    bool StartsWith(const char* prefix) const;
    int Find(const char* text, int from = 0) const;
    ZorQelString Mid(int first, int count = -1) const;

    static ZorQelString FromInt(long long value) { return ZorQelString().AppendInt(value); }
    static ZorQelString FromDouble(double value) { return ZorQelString().AppendDouble(value); }
    // Reads a double written in C-locale notation; false when text is not
    // entirely a number.
    static bool ParseDouble(const char* text, double& value);
    // Reads a decimal integer; false when text is not entirely an integer or
    // does not fit in an int.
    static bool ParseInt(const char* text, int& value);

    friend bool operator==(const ZorQelString& a, const ZorQelString& b) {
        return a._text == b._text;
    }
    friend bool operator!=(const ZorQelString& a, const ZorQelString& b) {
        return a._text != b._text;
    }
    friend bool operator<(const ZorQelString& a, const ZorQelString& b) {
        return a._text < b._text;
    }
    friend bool operator==(const ZorQelString& a, const char* b) { return a._text == (b ? b : ""); }
    friend bool operator!=(const ZorQelString& a, const char* b) { return !(a == b); }

  private:
    std::string _text;
};

template <class T>
ZorQelString operator+(ZorQelString left, const T& right) {
    left += right;
    return left;
}

#endif
