// The parser on any text: it parses and checks without fault, every
// diagnostic has a text; a text read without error prints back to a text
// that reads without error into the same model; the model fills a factory
// whose printed equations read back without error, and whose roots
// evaluate. Reading from a stream gives what reading the same string gives.

#include <cstdio>
#include <string>

#include "FuzzBytes.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBModelPrinter.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

namespace {

// One parse with everything it produced; owns the black boxes it declared
// until a factory takes them.
struct Parsed {
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    ZorQelListPZorWBBlackBox blackBoxes;
    int errors = 0;

    explicit Parsed(const char* text) {
        errors = ZorWBParser::Parse(text, model, ids, messenger, &blackBoxes);
    }
    explicit Parsed(std::FILE* stream) {
        errors = ZorWBParser::Parse(stream, model, ids, messenger, &blackBoxes);
    }
    ~Parsed() {
        for (ZorWBBlackBox* blackBox : blackBoxes)
            delete blackBox;
    }

    std::string Printed() const { return ZorWBModelPrinter::Print(model).GetStdString(); }

    void CheckMessages() const {
        FUZZ_CHECK(errors == messenger.GetErrorNumber(),
                   "error count differs from the messenger's");
        for (int i = 0; i < errors; ++i)
            FUZZ_CHECK(!messenger.GetMessage(i).GetStdString().empty(),
                       "a diagnostic without text");
    }
};

void CheckReprint(const Parsed& parsed) {
    std::string printed = parsed.Printed();
    Parsed again(printed.c_str());
    again.CheckMessages();
    FUZZ_CHECK(again.errors == 0, "the printed model does not read back:\n" + printed + "\n" +
                                      again.messenger.GetString().GetStdString());
    FUZZ_CHECK(again.Printed() == printed,
               "the printed model reads back different:\n" + printed + "\n" + again.Printed());
}

void CheckFactory(Parsed& parsed) {
    ZorWBFactory factory;
    ZorQelIntArray ids;
    int filled = parsed.model.FillFactory(factory, ids);
    // The black boxes left on the list belong to the factory from now on.
    ZorWBParser::HandOverBlackBoxes(parsed.blackBoxes, 0, factory);
    parsed.blackBoxes.RemoveAll();
    for (ZorWBEquation* e = factory.GetFirstEquation(); e; e = e->GetNext())
        if (e->GetRoot()) (void)e->GetRoot()->GetValue();
    std::string printed = ZorWBEquationPrinter::Print(factory).GetStdString();
    if (filled != 0 || parsed.errors != 0) return;
    Parsed again(printed.c_str());
    again.CheckMessages();
    FUZZ_CHECK(again.errors == 0, "the printed factory does not read back:\n" + printed + "\n" +
                                      again.messenger.GetString().GetStdString() +
                                      "\nfrom the model:\n" + parsed.Printed());
}

void CheckStream(const std::string& text, const Parsed& parsed) {
    if (text.find('\0') != std::string::npos) return;
    std::FILE* stream = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    if (!stream) return;
    Parsed fromStream(stream);
    std::fclose(stream);
    FUZZ_CHECK(fromStream.errors == parsed.errors, "a stream reads with other errors");
    FUZZ_CHECK(fromStream.Printed() == parsed.Printed(), "a stream reads another model");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    Parsed parsed(text.c_str());
    parsed.CheckMessages();
    if (!text.empty()) CheckStream(text, parsed);
    if (parsed.errors == 0) CheckReprint(parsed);
    CheckFactory(parsed);
    return 0;
}
