// The limits of what the parser reads: beyond each, one clear message and
// the parse fails, without a crash and without reading further.

#include <cstdio>
#include <string>

#include "ParserTestSupport.h"

namespace {

constexpr const char* TooLong = "text too long, the parser reads at most 67108864 bytes";

// A text of exactly size bytes: "x = 1;" and blanks.
std::string TextOfSize(long long size) {
    std::string text(static_cast<std::size_t>(size), ' ');
    text.replace(0, 6, "x = 1;");
    return text;
}

}  // namespace

TEST(ZorWBParserLimits, TextsUpToTheLimitReadAndLongerOnesAreRefused) {
    ASSERT_EQ(ZorWBParser::MaxTextLength, 64LL << 20);
    {
        std::string text = TextOfSize(ZorWBParser::MaxTextLength);
        ParsedText parsed(text.c_str());
        EXPECT_EQ(parsed.errors, 0);
        EXPECT_EQ(parsed.model.GetNbOfEquations(), 1);
    }
    {
        std::string text = TextOfSize(ZorWBParser::MaxTextLength + 1);
        ParsedText parsed(text.c_str());
        ASSERT_EQ(parsed.errors, 1);
        EXPECT_EQ(parsed.messenger.GetString(), TooLong);
        EXPECT_EQ(parsed.Errors()[0], "-1 (1,0,1,0)");  // no place
        EXPECT_EQ(parsed.model.GetNbOfEquations(), 0) << "a string that long is not read at all";
    }
}

TEST(ZorWBParserLimits, StreamsStopAtTheLimit) {
    for (long long size : {ZorWBParser::MaxTextLength, ZorWBParser::MaxTextLength + 1}) {
        std::FILE* stream = std::tmpfile();
        ASSERT_NE(stream, nullptr);
        std::string text = TextOfSize(size);
        ASSERT_EQ(std::fwrite(text.data(), 1, text.size(), stream), text.size());
        std::rewind(stream);
        ZorWBModel model;
        ZorQelIntArray ids;
        ZorWBParserMessenger messenger;
        int errors = ZorWBParser::Parse(stream, model, ids, messenger);
        std::fclose(stream);
        if (size == ZorWBParser::MaxTextLength) {
            EXPECT_EQ(errors, 0);
        } else {
            // What the accepted part holds stays in the model; the message is
            // the last one.
            ASSERT_GE(errors, 1);
            EXPECT_EQ(messenger.GetString(), TooLong);
        }
        EXPECT_EQ(model.GetNbOfEquations(), 1);
    }
}

// A token longer than the scanner's buffer (a name, a comment line, a run of
// blanks of many megabytes) is read from a stream in one pass: with reads of
// a fixed size it would be scanned again after every read, so that these
// streams would take hours.
TEST(ZorWBParserLimits, LongTokensInStreamsReadInOnePass) {
    const std::size_t length = 16u << 20;
    const std::string name(length, 'v');
    const std::string texts[] = {name + " = 1;", "/*" + std::string(length, 'c') + "*/ x = 1;",
                                 "x =" + std::string(length, '\t') + "1;"};
    for (const std::string& text : texts) {
        std::FILE* stream = std::tmpfile();
        ASSERT_NE(stream, nullptr);
        ASSERT_EQ(std::fwrite(text.data(), 1, text.size(), stream), text.size());
        std::rewind(stream);
        ZorWBModel model;
        ZorQelIntArray ids;
        ZorWBParserMessenger messenger;
        EXPECT_EQ(ZorWBParser::Parse(stream, model, ids, messenger), 0);
        std::fclose(stream);
        EXPECT_EQ(model.GetNbOfEquations(), 1);
    }
}
