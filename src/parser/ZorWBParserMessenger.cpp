#include "parser/ZorWBParserMessenger.h"

#include <cstring>
#include <new>

namespace {

struct MessageCode {
    const char* message;
    int code;
};

// Known messages: the grammar's most frequent syntax errors, the model
// check's semantic errors and the unit computation's internal error. The two
// semi-colon messages share one code.
const MessageCode MessageCodes[] = {
    {"syntax error, unexpected end of input", 1},
    {"syntax error, unexpected identifier", 2},
    {"syntax error, unexpected integer", 3},
    {"syntax error, unexpected real", 4},
    {"syntax error, unexpected left bracket", 5},
    {"syntax error, unexpected integer, expecting left bracket", 6},
    {"syntax error, unexpected semi-colon", 7},
    {"syntax error, unexpected semi-colon, expecting right bracket", 7},
    {"semantic error, unknown variable name", 21},
    {"semantic error, unknown unit", 22},
    {"semantic error, inconsistent unit", 23},
    {"semantic error, invalid operation with unit", 24},
    {"semantic error, ambiguous Pi", 25},
    {"internal error, unit computation not available", 100},
};

constexpr int UnknownMessageCode = -1;

}  // namespace

ZorWBParserMessenger::~ZorWBParserMessenger() = default;

int ZorWBParserMessenger::CodeOfMessage(const char* message) {
    if (!message) return UnknownMessageCode;
    for (const MessageCode& entry : MessageCodes) {
        if (std::strcmp(entry.message, message) == 0) return entry.code;
    }
    return UnknownMessageCode;
}

int ZorWBParserMessenger::ReportError(const ZorWBLocation* location, const char* message) {
    _text = ZorQelString(message);
    _messages.push_back(_text);
    // A location that cannot be copied for lack of memory is kept as none.
    _locations.emplace_back(location ? new (std::nothrow) ZorWBLocation(*location) : nullptr);
    _codes.Add(CodeOfMessage(message));
    ++_errorCount;
    return ZorWBParserResult::Success;
}

int ZorWBParserMessenger::GetError(int i, int& code, ZorWBLocation& location) const {
    if (!_codes.IsValidIndex(i)) return ZorWBParserResult::Failure;
    code = _codes.Get(i);
    const ZorWBLocation* stored = _locations[static_cast<std::size_t>(i)].get();
    if (!stored) {
        location.Reset();
        return ZorWBParserResult::NotApplicable;
    }
    location = *stored;
    return ZorWBParserResult::Success;
}

void ZorWBParserMessenger::GetErrors(ZorQelIntArray& codes,
                                     ZorQelArray<const ZorWBLocation*>& locations) const {
    for (int code : _codes)
        codes.Add(code);
    for (const std::unique_ptr<ZorWBLocation>& location : _locations)
        locations.Add(location.get());
}

const ZorQelString& ZorWBParserMessenger::GetMessage(int i) const {
    static const ZorQelString none;
    if (i < 0 || i >= static_cast<int>(_messages.size())) return none;
    return _messages[static_cast<std::size_t>(i)];
}
