#ifndef ZORWB_SCANNERFAULT_H
#define ZORWB_SCANNERFAULT_H

#include "parser/ZorWBModelArena.h"

// A fatal fault of the generated scanner (flex's fixed texts, such as "out
// of dynamic memory in yy_scan_bytes()"). The scanner throws it instead of
// ending the process, and the parser's entry points catch it and report the
// text: it never leaves the library. Used inside the library only.
struct ZorWBScannerFault {
    const char* message;
};

[[noreturn]] inline void ZorWBThrowScannerFault(const char* message) {
    throw ZorWBScannerFault{message};
}

// What the scanner counts of a stream it reads: the bytes read so far, and
// whether the stream went on beyond the longest text the parser reads
// (ZorWBParser::MaxTextLength); the input then ends there. The texts of the
// identifiers it hands to the parser live in an arena freed with the parse.
struct ZorWBScannerInput {
    explicit ZorWBScannerInput(long long maximum) : limit(maximum) {}
    long long limit;
    long long read = 0;
    bool tooLong = false;
    ZorWBModelArena lexemes;
};

#endif
