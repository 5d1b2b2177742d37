#ifndef ZORQEL_STORAGE_H
#define ZORQEL_STORAGE_H

#include <vector>

#include "qel/ZorQelExport.h"
#include "qel/ZorQelString.h"

// Named text sections of a replay, grouped by replay part.
//
// Replay text format: a part begins with the line "#!PART n"; a section is a
// line "#!NAME HEADER" (the header may be empty) followed by its body lines,
// up to the next line that begins with "#!". Bodies never contain such lines.
class ZORQEL_API ZorQelStorage {
  public:
    enum ReplayPart { NoPart = 0, InputPart = 1, OutputPart = 2 };
    // Flags of AddSection.
    enum SectionFlags { AppendSection = 0, ReplaceSection = 1 };

    struct Section {
        ZorQelString name;    // "#!VARIABLES", "#!MODE", ...
        ZorQelString header;  // what follows the name on its line (a count, a mode)
        ZorQelString body;    // the lines of the section, each ending with a line end
        ReplayPart part = NoPart;
    };

    // Appends a section, or with ReplaceSection replaces the first section of
    // the same name and part (appending when there is none).
    void AddSection(const ZorQelString& name, const ZorQelString& header, const ZorQelString& body,
                    ReplayPart part, int flags);

    int GetNbOfSections() const { return static_cast<int>(_sections.size()); }
    const Section* GetSection(int i) const;
    const Section* FindSection(const ZorQelString& name, ReplayPart part) const;
    // The sections of one part, in the order they were added.
    std::vector<const Section*> GetSections(ReplayPart part) const;
    void RemoveSections(ReplayPart part);
    void Clear() { _sections.clear(); }

    // The replay text of one part, beginning with its "#!PART" line.
    ZorQelString WritePart(ReplayPart part) const;
    // Adds the sections of a replay text; false (storage unchanged) when a
    // body line comes before any section or a part number is not 1 or 2.
    bool Read(const ZorQelString& text);
    bool ReadFile(const ZorQelString& path);

  private:
    std::vector<Section> _sections;
};

#endif
