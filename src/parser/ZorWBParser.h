#ifndef ZORWB_PARSER_H
#define ZORWB_PARSER_H

#include <cstdio>

#include "ZorWBxExport.h"
#include "expressions/ZorWBBlackBox.h"
#include "qel/ZorQelArray.h"

class ZorWBExpression;
class ZorWBFactory;
class ZorWBModel;
class ZorWBParserMessenger;

// Reads texts of the equation language into a parsed model.
//
// Resource limits:
// - the parser's stack holds at most 10000 entries: a text nested deeper
//   (brackets, unary minus signs, right-grouped powers, calls, conditions)
//   is refused with "memory exhausted" (reported as a syntax error would be)
//   and never overflows the machine stack;
// - the trees themselves may be deeper (a+b+c+... grows to the left without
//   using the parser's stack), so every walk over a model (checks, unit
//   kinds, printing, equality) uses an explicit stack on the heap, and
//   destroying a model walks no tree at all: the depth of a model is limited
//   by memory only;
// - reading is linear in the length of the text;
// - a text longer than MaxTextLength bytes (64 MiB) is refused with "text
//   too long, the parser reads at most 67108864 bytes" (code -1, as every
//   message outside the known list): a string is not read at all; a stream
//   is read up to the limit, the model keeps what that part built, and the
//   model check is not run.
//
// Invalid characters are skipped after "Invalid character" is printed on
// the standard output; they are not errors. A read error of the stream ends
// the input. When memory runs out while reading, "memory exhausted" is
// reported and the parse stops; a fault of the scanner (flex's fatal errors,
// such as "out of dynamic memory in yy_scan_bytes()") is reported with its
// text (code -1) and also ends the parse: nothing stops the process.
class ZORWBX_API ZorWBParser {
  public:
    // The longest text read, in bytes.
    static constexpr long long MaxTextLength = 64LL << 20;

    // Reads the stream to its end into the model: appends the id of every
    // equation added to equationIds, reports errors to the messenger, and
    // appends each black box the text declares to blackBoxes when given (the
    // caller then owns it; without a list the model owns it). Then runs the
    // model check with the same messenger. Returns the messenger's error
    // count (0 on success). A null stream reads as an empty text.
    static int Parse(std::FILE* input, ZorWBModel& model, ZorQelIntArray& equationIds,
                     ZorWBParserMessenger& messenger,
                     ZorQelListPZorWBBlackBox* blackBoxes = nullptr);
    // The same on a text, up to its terminating zero; a null text reads as
    // an empty one.
    static int Parse(const char* text, ZorWBModel& model, ZorQelIntArray& equationIds,
                     ZorWBParserMessenger& messenger,
                     ZorQelListPZorWBBlackBox* blackBoxes = nullptr);

    // Reads a text (normally one statement, such as "x^2 + 1;") into the
    // factory and returns the root of the factory's last equation, or null
    // when it has none. The text is parsed and checked in a model of the
    // factory's behaviour level; the black boxes it declares are appended to
    // blackBoxes. When anything was reported, this writes
    // "ReadZorWBExpression syntax error :TEXT" and the last message on the
    // standard error and ENDS THE PROCESS with exit status 100: callers that
    // must survive bad input use Parse. Otherwise the model fills the factory
    // (units converted, ZorWBModel::FillFactory), and the black boxes this
    // call appended are handed over to it (HandOverBlackBoxes). The root is returned even when the
    // filling failed, so it may then be that of an earlier equation.
    static ZorWBExpression* ReadZorWBExpression(const char* text, ZorWBFactory& factory,
                                                ZorQelListPZorWBBlackBox& blackBoxes);

    // After a model was filled into a factory: the black boxes of the list
    // from index first on that the factory calls belong to it from then on
    // (marked internal); the others, which nothing would own (those of a
    // failed filling, or of a conditional statement that added no equation),
    // are deleted and taken off the list.
    static void HandOverBlackBoxes(ZorQelListPZorWBBlackBox& blackBoxes, int first,
                                   const ZorWBFactory& factory);
};

#endif
