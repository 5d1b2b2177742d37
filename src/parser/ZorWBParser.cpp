#include "parser/ZorWBParser.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "ZorWBGrammar.h"
#include "parser/ZorWBScannerFault.h"  // before the scanner's interface, which names it
// The scanner's interface names the value and location types without the
// grammar's prefix.
#define YYSTYPE ZORWB_YYSTYPE
#define YYLTYPE ZORWB_YYLTYPE
#include "ZorWBScanner.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBModelCheck.h"
#include "parser/ZorWBParserMessenger.h"

namespace {

const char* const MemoryExhausted = "memory exhausted";
const char* const TextTooLong = "text too long, the parser reads at most 67108864 bytes";
static_assert(ZorWBParser::MaxTextLength == 67108864, "the message states the limit");

// Which input the scanner reads.
struct Input {
    std::FILE* file;
    const char* text;
};

// Parses with a scanner of its own, then checks the model. Running out of
// memory anywhere stops the work with "memory exhausted".
int ParseInput(const Input& input, ZorWBModel& model, ZorQelIntArray& equationIds,
               ZorWBParserMessenger& messenger, ZorQelListPZorWBBlackBox* blackBoxes) {
    const char* text = input.text ? input.text : "";
    if (!input.file && std::strlen(text) > static_cast<std::size_t>(ZorWBParser::MaxTextLength)) {
        messenger.ReportError(nullptr, TextTooLong);
        return messenger.GetErrorNumber();
    }
    ZorWBScannerInput counter(ZorWBParser::MaxTextLength);
    yyscan_t scanner = nullptr;
    if (zorwb_yylex_init_extra(&counter, &scanner) != 0) {
        messenger.ReportError(nullptr, MemoryExhausted);
        return messenger.GetErrorNumber();
    }
    try {
        if (input.file) {
            zorwb_yyset_in(input.file, scanner);
            zorwb_yyparse(scanner, model, equationIds, messenger, blackBoxes);
        } else {
            zorwb_yy_scan_string(text, scanner);
            zorwb_yyparse(scanner, model, equationIds, messenger, blackBoxes);
        }
        if (counter.tooLong)
            messenger.ReportError(nullptr, TextTooLong);
        else
            ZorWBModelCheck(&model, &messenger).Run();
    } catch (const ZorWBScannerFault& fault) {
        messenger.ReportError(nullptr, fault.message);
    } catch (...) {
        messenger.ReportError(nullptr, MemoryExhausted);
    }
    zorwb_yylex_destroy(scanner);
    return messenger.GetErrorNumber();
}

}  // namespace

int ZorWBParser::Parse(std::FILE* input, ZorWBModel& model, ZorQelIntArray& equationIds,
                       ZorWBParserMessenger& messenger, ZorQelListPZorWBBlackBox* blackBoxes) {
    return ParseInput({input, nullptr}, model, equationIds, messenger, blackBoxes);
}

int ZorWBParser::Parse(const char* text, ZorWBModel& model, ZorQelIntArray& equationIds,
                       ZorWBParserMessenger& messenger, ZorQelListPZorWBBlackBox* blackBoxes) {
    return ParseInput({nullptr, text}, model, equationIds, messenger, blackBoxes);
}

ZorWBExpression* ZorWBParser::ReadZorWBExpression(const char* text, ZorWBFactory& factory,
                                                  ZorQelListPZorWBBlackBox& blackBoxes) {
    ZorWBModel model(factory.GetWBLevel());
    ZorQelIntArray equationIds;
    ZorWBParserMessenger messenger;
    int first = blackBoxes.GetSize();
    Parse(text, model, equationIds, messenger, &blackBoxes);
    if (messenger.GetErrorNumber() > 0) {
        std::fprintf(stderr, "ReadZorWBExpression syntax error :%s\n%s\n", text ? text : "",
                     messenger.GetString().GetString());
        std::exit(100);
    }
    model.FillFactory(factory, equationIds);
    HandOverBlackBoxes(blackBoxes, first, factory);
    ZorWBEquation* last = factory.GetLastEquation();
    return last ? last->GetRoot() : nullptr;
}

void ZorWBParser::HandOverBlackBoxes(ZorQelListPZorWBBlackBox& blackBoxes, int first,
                                     const ZorWBFactory& factory) {
    for (int i = blackBoxes.GetSize() - 1; i >= first && i >= 0; --i) {
        ZorWBBlackBox* blackBox = blackBoxes.Get(i);
        bool called = false;
        for (int k = 0; !called && k < factory.GetNbOfBlackBoxes(); ++k)
            called = factory.GetBlackBox(k) == blackBox;
        if (called) {
            blackBox->SetInternal();
        } else {
            delete blackBox;
            blackBoxes.RemoveAt(i);
        }
    }
}
