#include "output/ZorWBValueText.h"

#include <limits>
#include <type_traits>
#include <vector>

namespace {

constexpr char FractionHead[] = "frac";

void AppendReal(ZorQelString& out, double value, bool marked) {
    ZorQelString text;
    text.AppendDouble(value, 17);
    out.Append(text);
    // "nan" and "inf" hold an 'n'; any other real text shows '.' or 'e'
    // unless it has integer digits only.
    if (marked && text.Find(".") < 0 && text.Find("e") < 0 && text.Find("n") < 0) out.Append(".0");
}

template <class Number, class AppendNumber>
void AppendScalar(ZorQelString& out, Number value, AppendNumber append) {
    if (value < 0) out.AppendChar('(');
    append(out, value);
    if (value < 0) out.AppendChar(')');
}

template <class Enumeration, class AppendNumber>
void AppendEntries(ZorQelString& out, const Enumeration& enumeration, AppendNumber append) {
    out.AppendChar('{');
    for (int i = 0; i < enumeration.GetSize(); ++i) {
        if (i > 0) out.Append(", ");
        append(out, enumeration.Get(i));
    }
    out.AppendChar('}');
}

template <class Bound, class AppendNumber>
void AppendInterval(ZorQelString& out, Bound low, Bound high, AppendNumber append) {
    out.AppendChar('[');
    append(out, low);
    out.Append(", ");
    append(out, high);
    out.AppendChar(']');
}

// ------------------------------------------------------------ reading

std::string Trim(const std::string& text) {
    std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return std::string();
    std::size_t last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

// The text between an opening and a closing character, split at ", ".
bool SplitEnclosed(const std::string& text, char open, char close,
                   std::vector<std::string>& items) {
    if (text.size() < 2 || text.front() != open || text.back() != close) return false;
    std::string inside = text.substr(1, text.size() - 2);
    items.clear();
    if (Trim(inside).empty()) return true;
    std::size_t start = 0;
    while (true) {
        std::size_t comma = inside.find(',', start);
        items.push_back(Trim(inside.substr(start, comma - start)));
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return true;
}

bool EqualsIgnoringCase(const std::string& text, const char* lower) {
    return ZorQelString(text).ToLower() == lower;
}

// The numbers of a list; all integers tells whether every one reads as an
// integer.
bool ReadNumbers(const std::vector<std::string>& items, std::vector<double>& reals,
                 std::vector<int>& integers, bool& allIntegers) {
    allIntegers = true;
    for (const std::string& item : items) {
        bool isInteger = false;
        int integer = 0;
        double real = 0.0;
        if (!ZorWBValueText::ReadNumber(item, isInteger, integer, real)) return false;
        allIntegers = allIntegers && isInteger;
        integers.push_back(integer);
        reals.push_back(real);
    }
    return true;
}

bool ReadInterval(const std::string& text, int kind, ZorWBValue& value) {
    std::vector<std::string> items;
    std::vector<double> reals;
    std::vector<int> integers;
    bool allIntegers = false;
    if (!SplitEnclosed(text, '[', ']', items) || items.size() != 2 ||
        !ReadNumbers(items, reals, integers, allIntegers))
        return false;
    if (kind == ZorWBIntegerIntervalType && !allIntegers) return false;
    if (kind == ZorWBIntegerIntervalType || (kind < 0 && allIntegers))
        value.Set(ZorWBIntegerInterval{integers[0], integers[1]});
    else
        value.Set(ZorWBRealInterval{reals[0], reals[1]});
    return true;
}

// Entries are kept in the order written; no entries reads as "any".
bool ReadEnumeration(const std::string& text, int kind, ZorWBValue& value) {
    std::vector<std::string> items;
    std::vector<double> reals;
    std::vector<int> integers;
    bool allIntegers = false;
    if (!SplitEnclosed(text, '{', '}', items) || !ReadNumbers(items, reals, integers, allIntegers))
        return false;
    if (kind == ZorWBIntegerEnumType && !allIntegers) return false;
    if (kind == ZorWBIntegerEnumType || (kind < 0 && allIntegers)) {
        ZorWBIntegerEnum enumeration(items.empty() ? ZorWBEnumAny : ZorWBEnumList);
        for (int element : integers) {
            if (!enumeration.Append(element)) return false;
        }
        value.Set(enumeration);
    } else {
        ZorWBRealEnum enumeration(items.empty() ? ZorWBEnumAny : ZorWBEnumList);
        for (double element : reals) {
            if (!enumeration.Append(element)) return false;
        }
        value.Set(enumeration);
    }
    return true;
}

bool ReadBoolean(const std::string& text, ZorWBValue& value) {
    if (text != "True" && text != "False") return false;
    value.Set(text == "True" ? ZorWBTrue : ZorWBFalse);
    return true;
}

bool ReadScalar(const std::string& text, int kind, ZorWBValue& value) {
    bool isInteger = false;
    int integer = 0;
    double real = 0.0;
    if (!ZorWBValueText::ReadNumber(text, isInteger, integer, real)) return false;
    if (kind == ZorWBIntegerType && !isInteger) return false;
    if (kind == ZorWBRealType || (kind < 0 && !isInteger))
        value.Set(real);
    else
        value.Set(integer);
    return true;
}

bool ReadFractionValue(const std::string& text, ZorWBValue& value) {
    ZorWBFraction fraction;
    if (!ZorWBValueText::ReadFraction(text, fraction)) return false;
    value.Set(fraction);
    return true;
}

// A text whose kind is not given: the first character tells most kinds.
bool ReadAnyKind(const std::string& text, ZorWBValue& value) {
    if (text == "any") {
        value = ZorWBValue();
        return true;
    }
    if (text.empty()) return false;
    if (text.front() == '[') return ReadInterval(text, -1, value);
    if (text.front() == '{') return ReadEnumeration(text, -1, value);
    return ReadBoolean(text, value) || ReadFractionValue(text, value) ||
           ReadScalar(text, -1, value);
}

// ------------------------------------------------------------ printed forms

bool ReadPrintedReal(const std::string& text, double& real) {
    if (text == "1e999" || text == "-1e999") {
        real = (text[0] == '-' ? -1 : 1) * std::numeric_limits<double>::infinity();
        return true;
    }
    if (text == "(0.0 / 0.0)") {
        real = std::numeric_limits<double>::quiet_NaN();
        return true;
    }
    return ZorQelString::ParseDouble(text.c_str(), real);
}

template <class Number>
bool ReadPrintedNumber(const std::string& text, Number& number) {
    if constexpr (std::is_same_v<Number, double>)
        return ReadPrintedReal(text, number);
    else
        return ZorQelString::ParseInt(text.c_str(), number);
}

// (n[/d][*Pi[^p]]), or Pi.
bool ReadPrintedFraction(const std::string& text, ZorWBFraction& fraction) {
    if (text == "Pi") {
        fraction = ZorWBCreateFraction(1, 1, 1, 0);
        return true;
    }
    if (text.size() < 3 || text.front() != '(' || text.back() != ')') return false;
    std::string inside = text.substr(1, text.size() - 2);
    ZorWBFraction read{0, 1, 0};
    std::size_t pi = inside.find("*Pi");
    if (pi != std::string::npos) {
        std::string power = inside.substr(pi + 3);
        read.power = 1;
        if (!power.empty() &&
            (power[0] != '^' || !ZorQelString::ParseInt(power.c_str() + 1, read.power)))
            return false;
        inside.resize(pi);
    }
    std::size_t slash = inside.find('/');
    if (slash != std::string::npos) {
        if (!ZorQelString::ParseInt(inside.c_str() + slash + 1, read.denominator)) return false;
        inside.resize(slash);
    }
    if (!ZorQelString::ParseInt(inside.c_str(), read.numerator)) return false;
    fraction = read;
    return true;
}

template <class Enumeration, class Number>
bool ReadPrintedEnumeration(const std::string& text, Enumeration& enumeration) {
    if (text == "{any}" || text == "{}") {
        enumeration.Reset(text == "{}" ? ZorWBEnumNil : ZorWBEnumAny);
        return true;
    }
    std::size_t range = text.find(" .. ");
    if (range != std::string::npos) {
        Number low, high;
        if (text.front() != '{' || text.back() != '}' ||
            !ReadPrintedNumber(text.substr(1, range - 1), low) ||
            !ReadPrintedNumber(text.substr(range + 4, text.size() - range - 5), high))
            return false;
        enumeration.Reset(ZorWBEnumList);
        if constexpr (std::is_same_v<Number, double>)
            enumeration.SetAsRealInterval({low, high});
        else
            enumeration.SetAsIntegerInterval({low, high});
        return true;
    }
    std::vector<std::string> items;
    if (!SplitEnclosed(text, '{', '}', items)) return false;
    enumeration.Reset(ZorWBEnumList);
    for (const std::string& item : items) {
        Number element;
        if (!ReadPrintedNumber(item, element) || !enumeration.Append(element)) return false;
    }
    return true;
}

template <class Number, class Interval>
bool ReadPrintedInterval(const std::string& text, ZorWBValue& value) {
    std::vector<std::string> items;
    Number low, high;
    if (!SplitEnclosed(text, '[', ']', items) || items.size() != 2 ||
        !ReadPrintedNumber(items[0], low) || !ReadPrintedNumber(items[1], high))
        return false;
    value.Set(Interval{low, high});
    return true;
}

bool ReadPrintedBoolean(const std::string& text, ZorWBValue& value) {
    static const char* const names[] = {"false", "true", "unknown", "empty"};
    for (int state = 0; state < 4; ++state) {
        if (text == names[state]) {
            value.Set(static_cast<ZorWBBoolean>(state));
            return true;
        }
    }
    return false;
}

}  // namespace

bool ZorWBValueText::ReadPrinted(const ZorQelString& text, int kind, ZorWBValue& value) {
    const std::string& printed = text.GetStdString();
    ZorWBValue read;
    bool ok = false;
    switch (kind) {
        case ZorWBUndefinedType:
            ok = printed == "undefined";
            break;
        case ZorWBIntegerType: {
            int integer = 0;
            ok = ZorQelString::ParseInt(printed.c_str(), integer);
            read.Set(integer);
            break;
        }
        case ZorWBRealType: {
            double real = 0.0;
            ok = ReadPrintedReal(printed, real);
            read.Set(real);
            break;
        }
        case ZorWBIntegerIntervalType:
            ok = ReadPrintedInterval<int, ZorWBIntegerInterval>(printed, read);
            break;
        case ZorWBRealIntervalType:
            ok = ReadPrintedInterval<double, ZorWBRealInterval>(printed, read);
            break;
        case ZorWBIntegerEnumType: {
            ZorWBIntegerEnum enumeration;
            ok = ReadPrintedEnumeration<ZorWBIntegerEnum, int>(printed, enumeration);
            read.Set(enumeration);
            break;
        }
        case ZorWBRealEnumType: {
            ZorWBRealEnum enumeration;
            ok = ReadPrintedEnumeration<ZorWBRealEnum, double>(printed, enumeration);
            read.Set(enumeration);
            break;
        }
        case ZorWBBooleanType:
            ok = ReadPrintedBoolean(printed, read);
            break;
        case ZorWBFractionType: {
            ZorWBFraction fraction;
            ok = ReadPrintedFraction(printed, fraction);
            if (ok) read.Set(fraction);
            break;
        }
        default:
            break;
    }
    if (ok) value = read;
    return ok;
}

ZorQelString ZorWBValueText::WriteFraction(const ZorWBFraction& fraction,
                                           const ZorQelString& head) {
    int n = fraction.numerator;
    int d = fraction.denominator;
    int p = fraction.power;
    if (n == 1 && d == 1 && p == 1) return "Pi";
    if (n == 1 && d == 180 && p == 1) return "DTOR";
    if (n == 180 && d == 1 && p == -1) return "RTOD";
    ZorQelString text(head);
    text.AppendChar('(').AppendInt(n).Append(", ").AppendInt(d);
    if (p != 0) text.Append(", ").AppendInt(p);
    return text.AppendChar(')');
}

ZorQelString ZorWBValueText::Write(const ZorWBValue& value, bool markReals) {
    auto appendInteger = [](ZorQelString& out, int number) { out.AppendInt(number); };
    auto appendReal = [markReals](ZorQelString& out, double number) {
        AppendReal(out, number, markReals);
    };
    ZorQelString text;
    switch (value.GetType()) {
        case ZorWBUndefinedType:
            return "any";
        case ZorWBIntegerType:
            AppendScalar(text, value.GetAsInteger(), appendInteger);
            break;
        case ZorWBRealType:
            AppendScalar(text, value.GetAsReal(), appendReal);
            break;
        case ZorWBFractionType:
            return WriteFraction(value.GetAsFraction(), "Frac");
        case ZorWBIntegerIntervalType: {
            ZorWBIntegerInterval interval = value.GetAsIntegerInterval();
            AppendInterval(text, interval.low, interval.high, appendInteger);
            break;
        }
        case ZorWBRealIntervalType: {
            ZorWBRealInterval interval = value.GetAsRealInterval();
            AppendInterval(text, interval.low, interval.high, appendReal);
            break;
        }
        case ZorWBIntegerEnumType:
            AppendEntries(text, value.GetIntegerEnum(), appendInteger);
            break;
        case ZorWBRealEnumType:
            AppendEntries(text, value.GetRealEnum(), appendReal);
            break;
        case ZorWBBooleanType:
            return value.GetAsBoolean() == ZorWBFalse ? "False" : "True";
    }
    return text;
}

bool ZorWBValueText::ReadNumber(const ZorQelString& text, bool& isInteger, int& integer,
                                double& real) {
    std::string number = Trim(text.GetStdString());
    if (number.size() >= 2 && number.front() == '(' && number.back() == ')')
        number = Trim(number.substr(1, number.size() - 2));
    if (ZorQelString::ParseInt(number.c_str(), integer)) {
        isInteger = true;
        // "-0" is the integer 0 but the real minus zero.
        real = integer == 0 && number[0] == '-' ? -0.0 : integer;
        return true;
    }
    isInteger = false;
    return ZorQelString::ParseDouble(number.c_str(), real);
}

bool ZorWBValueText::ReadFraction(const ZorQelString& text, ZorWBFraction& fraction) {
    std::string name = Trim(text.GetStdString());
    if (name == "Pi" || name == "DTOR" || name == "RTOD") {
        fraction.numerator = name == "RTOD" ? 180 : 1;
        fraction.denominator = name == "DTOR" ? 180 : 1;
        fraction.power = name == "RTOD" ? -1 : 1;
        return true;
    }
    const std::size_t headLength = sizeof FractionHead - 1;
    if (name.size() <= headLength || !EqualsIgnoringCase(name.substr(0, headLength), FractionHead))
        return false;
    std::vector<std::string> items;
    int parts[3] = {0, 1, 0};
    if (!SplitEnclosed(name.substr(headLength), '(', ')', items) || items.size() < 2 ||
        items.size() > 3)
        return false;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!ZorQelString::ParseInt(items[i].c_str(), parts[i])) return false;
    }
    fraction.numerator = parts[0];
    fraction.denominator = parts[1];
    fraction.power = parts[2];
    return true;
}

bool ZorWBValueText::Read(const ZorQelString& text, int kind, ZorWBValue& value) {
    std::string trimmed = Trim(text.GetStdString());
    ZorWBValue read;
    bool ok = false;
    switch (kind) {
        case -1:
            ok = ReadAnyKind(trimmed, read);
            break;
        case ZorWBUndefinedType:
            ok = trimmed == "any";
            break;
        case ZorWBIntegerType:
        case ZorWBRealType:
            ok = ReadScalar(trimmed, kind, read);
            break;
        case ZorWBIntegerIntervalType:
        case ZorWBRealIntervalType:
            ok = ReadInterval(trimmed, kind, read);
            break;
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType:
            ok = ReadEnumeration(trimmed, kind, read);
            break;
        case ZorWBBooleanType:
            ok = ReadBoolean(trimmed, read);
            break;
        case ZorWBFractionType:
            ok = ReadFractionValue(trimmed, read);
            break;
        default:
            break;
    }
    if (ok) value = read;
    return ok;
}
