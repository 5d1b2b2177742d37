#include "qel/ZorQelStorage.h"

#include <cstdio>

namespace {

const char PartMarker[] = "#!PART";

bool IsSectionLine(const std::string& line) {
    return line.compare(0, 2, "#!") == 0;
}

// Splits "#!NAME HEADER" at the first blank.
void SplitSectionLine(const std::string& line, ZorQelString& name, ZorQelString& header) {
    std::size_t blank = line.find(' ');
    name = line.substr(0, blank);
    header = blank == std::string::npos ? std::string() : line.substr(blank + 1);
}

}  // namespace

void ZorQelStorage::AddSection(const ZorQelString& name, const ZorQelString& header,
                               const ZorQelString& body, ReplayPart part, int flags) {
    if (flags & ReplaceSection) {
        for (Section& section : _sections) {
            if (section.name == name && section.part == part) {
                section.header = header;
                section.body = body;
                return;
            }
        }
    }
    _sections.push_back({name, header, body, part});
}

const ZorQelStorage::Section* ZorQelStorage::GetSection(int i) const {
    if (i < 0 || i >= GetNbOfSections()) return nullptr;
    return &_sections[static_cast<std::size_t>(i)];
}

const ZorQelStorage::Section* ZorQelStorage::FindSection(const ZorQelString& name,
                                                         ReplayPart part) const {
    for (const Section& section : _sections) {
        if (section.name == name && section.part == part) return &section;
    }
    return nullptr;
}

std::vector<const ZorQelStorage::Section*> ZorQelStorage::GetSections(ReplayPart part) const {
    std::vector<const Section*> sections;
    for (const Section& section : _sections) {
        if (section.part == part) sections.push_back(&section);
    }
    return sections;
}

void ZorQelStorage::RemoveSections(ReplayPart part) {
    std::vector<Section> kept;
    for (Section& section : _sections) {
        if (section.part != part) kept.push_back(std::move(section));
    }
    _sections.swap(kept);
}

ZorQelString ZorQelStorage::WritePart(ReplayPart part) const {
    ZorQelString text(PartMarker);
    text.AppendChar(' ').AppendInt(part).AppendChar('\n');
    for (const Section* section : GetSections(part)) {
        text.Append(section->name);
        if (!section->header.IsEmpty()) text.AppendChar(' ').Append(section->header);
        text.AppendChar('\n').Append(section->body);
    }
    return text;
}

bool ZorQelStorage::Read(const ZorQelString& text) {
    std::vector<Section> read;
    ReplayPart part = NoPart;
    const std::string& all = text.GetStdString();
    std::size_t start = 0;
    while (start < all.size()) {
        std::size_t end = all.find('\n', start);
        std::size_t next = end == std::string::npos ? all.size() : end + 1;
        std::string line = all.substr(start, next - start);
        start = next;
        if (!IsSectionLine(line)) {
            if (read.empty()) return false;
            read.back().body.Append(line.c_str());
            if (line.back() != '\n') read.back().body.AppendChar('\n');
            continue;
        }
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
            line.pop_back();
        Section section;
        SplitSectionLine(line, section.name, section.header);
        if (section.name == PartMarker) {
            int number = 0;
            if (!ZorQelString::ParseInt(section.header.GetString(), number) ||
                (number != 1 && number != 2))
                return false;
            part = static_cast<ReplayPart>(number);
            continue;
        }
        section.part = part;
        read.push_back(std::move(section));
    }
    for (Section& section : read)
        _sections.push_back(std::move(section));
    return true;
}

bool ZorQelStorage::ReadFile(const ZorQelString& path) {
    std::FILE* file = std::fopen(path.GetString(), "rb");
    if (!file) return false;
    ZorQelString text;
    char buffer[65536];
    std::size_t count;
    while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0)
        text.Append(buffer, static_cast<int>(count));
    bool failed = std::ferror(file) != 0;
    std::fclose(file);
    return !failed && Read(text);
}
