#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <random>

#include "qel/ZorQelString.h"

TEST(ZorQelString, AppendsTextCharactersAndIntegers) {
    ZorQelString text("ab");
    text.Append("cd").AppendChar('e').AppendInt(-42).Append(nullptr);
    text += 7;
    EXPECT_EQ(text, "abcde-427");
    EXPECT_EQ(text.GetLength(), 9);
    EXPECT_EQ(text.GetAt(0), 'a');
    EXPECT_EQ(text.GetAt(99), '\0');
    EXPECT_EQ(text.GetAt(-1), '\0');
    EXPECT_EQ(ZorQelString(nullptr), "");
}

TEST(ZorQelString, DoublesUseTheShortestTextThatReadsBack) {
    EXPECT_EQ(ZorQelString::FromDouble(0.1), "0.1");
    EXPECT_EQ(ZorQelString::FromDouble(-2.0), "-2");
    EXPECT_EQ(ZorQelString::FromDouble(1.5707963267948966), "1.5707963267948966");
    EXPECT_EQ(ZorQelString::FromDouble(3.4028234663852886e+39), "3.4028234663852886e+39");
    EXPECT_EQ(ZorQelString::FromDouble(NAN), "nan");
    EXPECT_EQ(ZorQelString::FromDouble(-INFINITY), "-inf");

    std::mt19937_64 random(7);
    std::uniform_int_distribution<unsigned long long> bits;
    for (int i = 0; i < 20000; ++i) {
        unsigned long long pattern = bits(random);
        double value;
        std::memcpy(&value, &pattern, sizeof value);
        if (!std::isfinite(value)) continue;
        double back = 0;
        ASSERT_TRUE(ZorQelString::ParseDouble(ZorQelString::FromDouble(value).GetString(), back));
        ASSERT_EQ(back, value) << ZorQelString::FromDouble(value).GetString();
    }
}

TEST(ZorQelString, NumbersIgnoreTheProcessLocale) {
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    std::string saved = previous ? previous : "C";
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8") && !std::setlocale(LC_NUMERIC, "fr_FR.UTF-8")) {
        GTEST_SKIP() << "no locale with a decimal comma installed";
    }
    EXPECT_EQ(ZorQelString::FromDouble(1.5), "1.5");
    double value = 0;
    EXPECT_TRUE(ZorQelString::ParseDouble("1.5", value));
    EXPECT_EQ(value, 1.5);
    std::setlocale(LC_NUMERIC, saved.c_str());
}

TEST(ZorQelString, ParsesOnlyWholeNumbers) {
    int integer = 0;
    double real = 0;
    EXPECT_TRUE(ZorQelString::ParseInt("-12", integer));
    EXPECT_EQ(integer, -12);
    EXPECT_TRUE(ZorQelString::ParseInt("+3", integer));
    EXPECT_FALSE(ZorQelString::ParseInt("12x", integer));
    EXPECT_FALSE(ZorQelString::ParseInt("99999999999", integer));
    EXPECT_FALSE(ZorQelString::ParseInt("", integer));
    EXPECT_FALSE(ZorQelString::ParseInt(nullptr, integer));
    EXPECT_TRUE(ZorQelString::ParseDouble("1e-3", real));
    EXPECT_EQ(real, 1e-3);
    EXPECT_FALSE(ZorQelString::ParseDouble("1,5", real));
}

// A number carries at most one sign: a plus sign followed by another sign
// is not a number.
TEST(ZorQelString, TwoSignsAreNotANumber) {
    int integer = 0;
    double real = 0;
    for (const char* text : {"+-7", "++7", "-+7", "--7", "+", "-"})
        EXPECT_FALSE(ZorQelString::ParseInt(text, integer)) << text;
    for (const char* text : {"+-1.5", "++1.5", "-+1.5", "--1.5", "+-inf", "+", "-"})
        EXPECT_FALSE(ZorQelString::ParseDouble(text, real)) << text;
    EXPECT_TRUE(ZorQelString::ParseDouble("+1.5", real));
    EXPECT_EQ(real, 1.5);
    EXPECT_TRUE(ZorQelString::ParseDouble("-1.5", real));
    EXPECT_EQ(real, -1.5);
    EXPECT_TRUE(ZorQelString::ParseInt("+7", integer));
    EXPECT_EQ(integer, 7);
}

TEST(ZorQelString, FormsFixedAndSignificantDigits) {
    EXPECT_EQ(ZorQelString().AppendFixed(0.5, 6), "0.500000");
    EXPECT_EQ(ZorQelString().AppendDouble(1.0 / 3.0, 17), "0.33333333333333331");
    EXPECT_EQ(ZorQelString("AbC").ToLower(), "abc");
    EXPECT_EQ(ZorQelString("hello").Mid(1, 3), "ell");
    EXPECT_EQ(ZorQelString("hello").Mid(9), "");
    EXPECT_EQ(ZorQelString("hello").Find("l"), 2);
    EXPECT_EQ(ZorQelString("hello").Find("z"), -1);
    EXPECT_TRUE(ZorQelString("#!MODE").StartsWith("#!"));
}
