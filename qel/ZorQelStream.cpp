#include "qel/ZorQelStream.h"

#include <cstdarg>
#include <vector>

ZorQelStream::~ZorQelStream() {
    Close();
}

bool ZorQelStream::OpenFile(const ZorQelString& path) {
    Close();
    _file = std::fopen(path.GetString(), "w");
    if (!_file) return false;
    _target = File;
    return true;
}

void ZorQelStream::OpenStandardOutput() {
    Close();
    _target = StandardOutput;
}

void ZorQelStream::OpenMemory() {
    Close();
    _memory.clear();
    _target = Memory;
}

void ZorQelStream::Close() {
    if (_target == File && _file) std::fclose(_file);
    if (_target == StandardOutput) std::fflush(stdout);
    _file = nullptr;
    _target = Closed;
}

bool ZorQelStream::Write(const char* text) {
    if (!text) return false;
    switch (_target) {
        case File:
            return std::fputs(text, _file) >= 0;
        case StandardOutput:
            return std::fputs(text, stdout) >= 0;
        case Memory:
            _memory += text;
            return true;
        case Closed:
            break;
    }
    return false;
}

bool ZorQelStream::Printf(const char* format, ...) {
    if (!format || _target == Closed) return false;
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    bool written = false;
    if (length >= 0) {
        std::vector<char> buffer(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(buffer.data(), buffer.size(), format, args);
        written = Write(buffer.data());
    }
    va_end(args);
    return written;
}

void ZorQelStream::Flush() {
    if (_target == File) std::fflush(_file);
    if (_target == StandardOutput) std::fflush(stdout);
}

bool ZorQelStream::WriteSections(ZorQelStorage::ReplayPart part) {
    bool written = Write(_storage.WritePart(part));
    _storage.RemoveSections(part);
    return written;
}
