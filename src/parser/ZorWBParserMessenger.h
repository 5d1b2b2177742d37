#ifndef ZORWB_PARSERMESSENGER_H
#define ZORWB_PARSERMESSENGER_H

#include <memory>
#include <vector>

#include "ZorWBxExport.h"
#include "parser/ZorWBLocation.h"
#include "parser/ZorWBParserResult.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelString.h"

// Collects the diagnostics of a parse: for every reported error its text, a
// code (derived from the text) and a copy of its location; GetString gives
// the text of the most recent one.
class ZORWBX_API ZorWBParserMessenger {
  public:
    ZorWBParserMessenger() = default;
    ZorWBParserMessenger(const ZorWBParserMessenger&) = delete;
    ZorWBParserMessenger& operator=(const ZorWBParserMessenger&) = delete;
    virtual ~ZorWBParserMessenger();

    // Records an error; location may be null. A null message is recorded as
    // an empty text (code -1). Returns 0.
    int ReportError(const ZorWBLocation* location, const char* message);

    int GetErrorNumber() const { return _errorCount; }
    // The code and location of the i-th error: 0 when it has a location, 1
    // when it was reported without one (location is then reset), 0x80004005
    // for an index out of range (code and location untouched).
    int GetError(int i, int& code, ZorWBLocation& location) const;
    // Appends every code, and every location (null where an error had none);
    // the pointers stay valid as long as the messenger lives.
    void GetErrors(ZorQelIntArray& codes, ZorQelArray<const ZorWBLocation*>& locations) const;
    // The text of the most recent message, as reported.
    const ZorQelString& GetString() const { return _text; }
    // The text of the i-th message (empty for an index out of range).
    const ZorQelString& GetMessage(int i) const;

    // The code that ReportError assigns to a message text.
    static int CodeOfMessage(const char* message);

  private:
    ZorQelString _text;
    std::vector<ZorQelString> _messages;
    std::vector<std::unique_ptr<ZorWBLocation>> _locations;
    ZorQelIntArray _codes;
    int _errorCount = 0;
};

#endif
