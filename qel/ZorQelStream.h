#ifndef ZORQEL_STREAM_H
#define ZORQEL_STREAM_H

#include <cstdio>
#include <string>

#include "qel/ZorQelExport.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelString.h"

// An output stream for traces, dumps and replays: a file of its own, the
// standard output, or a text in memory. A stream also carries the replay
// storage that operators fill with sections before writing them.
class ZORQEL_API ZorQelStream {
  public:
    enum Target { Closed, File, StandardOutput, Memory };

    ZorQelStream() = default;
    ~ZorQelStream();
    ZorQelStream(const ZorQelStream&) = delete;
    ZorQelStream& operator=(const ZorQelStream&) = delete;

    // Opens (truncates) a file for writing; false when it cannot be opened.
    bool OpenFile(const ZorQelString& path);
    void OpenStandardOutput();
    void OpenMemory();
    void Close();

    Target GetTarget() const { return _target; }
    bool IsOpen() const { return _target != Closed; }

    bool Write(const char* text);
    bool Write(const ZorQelString& text) { return Write(text.GetString()); }
    bool Printf(const char* format, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 2, 3)))
#endif
        ;
    void Flush();

    // What a memory stream holds so far (empty for the other targets).
    const std::string& GetText() const {
        return _memory;
    }

    ZorQelStorage& GetStorage() {
        return _storage;
    }
    // Writes the sections of one part of the storage, then drops them from it.
    bool WriteSections(ZorQelStorage::ReplayPart part);

  private:
    Target _target = Closed;
    std::FILE* _file = nullptr;
    std::string _memory;
    ZorQelStorage _storage;
};

#endif
