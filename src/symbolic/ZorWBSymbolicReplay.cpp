#include "symbolic/ZorWBSymbolicReplay.h"

#include <exception>
#include <sstream>
#include <string>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquations.h"
#include "qel/ZorQelGlobalParameters.h"
#include "qel/ZorQelStream.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

namespace {

bool ReadUnsigned(const std::string& text, unsigned int& value) {
    std::istringstream in(text);
    unsigned long long read = 0;
    if (!(in >> read) || read > 0xFFFFFFFFull) return false;
    std::string rest;
    if (in >> rest) return false;
    value = static_cast<unsigned int>(read);
    return true;
}

// The last word of the "#!OPERATOR" header: the operator's level.
bool ReadOperatorLevel(const ZorQelStorage& recorded, unsigned int& level) {
    const ZorQelStorage::Section* section =
        recorded.FindSection("#!OPERATOR", ZorQelStorage::InputPart);
    if (!section) return false;
    const std::string& header = section->header.GetStdString();
    std::size_t last = header.find_last_of(' ');
    return ReadUnsigned(last == std::string::npos ? header : header.substr(last + 1), level);
}

std::vector<std::string> Lines(const ZorQelString& body) {
    std::vector<std::string> lines;
    std::istringstream in(body.GetStdString());
    std::string line;
    while (std::getline(in, line))
        lines.push_back(line);
    return lines;
}

ZorQelString Quoted(const std::string& text) {
    return ZorQelString("'") + text.c_str() + "'";
}

ZorQelString BodyDifference(const ZorQelStorage::Section& recorded,
                            const ZorQelStorage::Section& replayed) {
    std::vector<std::string> a = Lines(recorded.body);
    std::vector<std::string> b = Lines(replayed.body);
    for (std::size_t i = 0; i < a.size() || i < b.size(); ++i) {
        std::string x = i < a.size() ? a[i] : "(no line)";
        std::string y = i < b.size() ? b[i] : "(no line)";
        if (x == y) continue;
        return recorded.name + " line " + static_cast<long long>(i + 1) + ": recorded " +
               Quoted(x) + ", replayed " + Quoted(y);
    }
    return ZorQelString();
}

}  // namespace

unsigned int ZorWBSymbolicReplay::GetRecordedLevel(const ZorQelStorage& recorded) {
    unsigned int level = 0;
    if (ReadOperatorLevel(recorded, level)) return level;
    return ZorQelGlobalParameters::GetGlobalParameters().GetQelFullOpenConfigurationLevel();
}

bool ZorWBSymbolicReplay::ReadInput(const ZorQelStorage& recorded, ZorWBFactory& factory,
                                    Input& input) try {
    const ZorQelStorage::Section* mode = recorded.FindSection("#!MODE", ZorQelStorage::InputPart);
    if (!mode || !ReadUnsigned(mode->header.GetStdString(), input.mode)) return false;
    if (!ReadOperatorLevel(recorded, input.operatorLevel)) input.operatorLevel = 0;
    ZorWBEquations system(factory, ZorQelStorage::InputPart,
                          ZorWBSymbolicTransformations::_CurrentStreamVersion);
    if (!system.Read(recorded, ZorQelStorage::InputPart)) return false;
    system.GetListEqToSimplify(input.equationsToSimplify);
    return true;
} catch (const std::exception&) {
    return false;
}

bool ZorWBSymbolicReplay::Replay(const ZorQelStorage& recorded, ZorQelString& difference) try {
    ZorWBFactory factory(GetRecordedLevel(recorded));
    Input input;
    if (!ReadInput(recorded, factory, input)) {
        difference = "the recorded input does not read";
        return false;
    }
    ZorWBSymbolicTransformations* transformations =
        ZorCreateWBSymbolicTransformations(input.operatorLevel, factory);
    if (!transformations) {
        difference = "the operator could not be created";
        return false;
    }
    transformations->SetMode(input.mode);
    for (int id : input.equationsToSimplify)
        transformations->SetEquationToSimplify(id);
    ZorQelStream memory;
    memory.OpenMemory();
    transformations->SetReplayStream(&memory);
    transformations->Run();
    ZorRemove(transformations);
    ZorQelStorage replayed;
    if (!replayed.Read(memory.GetText())) {
        difference = "the replayed output does not read";
        return false;
    }
    difference = FirstDifference(recorded, replayed);
    return difference.IsEmpty();
} catch (const std::exception&) {
    difference = "out of memory";
    return false;
}

ZorQelString ZorWBSymbolicReplay::FirstDifference(const ZorQelStorage& recorded,
                                                  const ZorQelStorage& replayed) try {
    std::vector<const ZorQelStorage::Section*> a = recorded.GetSections(ZorQelStorage::OutputPart);
    std::vector<const ZorQelStorage::Section*> b = replayed.GetSections(ZorQelStorage::OutputPart);
    for (std::size_t i = 0; i < a.size() || i < b.size(); ++i) {
        if (i >= a.size()) return b[i]->name + ": only in the replayed output";
        if (i >= b.size()) return a[i]->name + ": only in the recorded output";
        if (a[i]->name != b[i]->name)
            return ZorQelString("output section ") + static_cast<long long>(i + 1) + ": recorded " +
                   a[i]->name + ", replayed " + b[i]->name;
        if (a[i]->header != b[i]->header)
            return a[i]->name + ": recorded header " + Quoted(a[i]->header.GetStdString()) +
                   ", replayed " + Quoted(b[i]->header.GetStdString());
        ZorQelString body = BodyDifference(*a[i], *b[i]);
        if (!body.IsEmpty()) return body;
    }
    return ZorQelString();
} catch (const std::exception&) {
    return "out of memory";
}
