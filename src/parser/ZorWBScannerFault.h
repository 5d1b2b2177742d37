#ifndef ZORWB_SCANNERFAULT_H
#define ZORWB_SCANNERFAULT_H

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

#endif
