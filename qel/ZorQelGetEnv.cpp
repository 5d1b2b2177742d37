#include "qel/ZorQelGetEnv.h"

#include <cstdlib>

namespace {
#if defined(_WIN32)
constexpr char PathSeparator = '\\';
#else
constexpr char PathSeparator = '/';
#endif

bool IsSeparator(char c) {
    return c == '/' || c == PathSeparator;
}
}  // namespace

ZorQelString ZorQelGetEnv(const char* name) {
    if (!name) return ZorQelString();
    const char* value = std::getenv(name);
    return ZorQelString(value);
}

int ZorQelGetEnvI(const char* name) {
    int value = 0;
    ZorQelString text = ZorQelGetEnv(name);
    return ZorQelString::ParseInt(text.GetString(), value) ? value : 0;
}

ZorQelString ZorQelMakePath(const ZorQelString& directory, const ZorQelString& fileName) {
    if (directory.IsEmpty()) return fileName;
    ZorQelString path = directory;
    if (!IsSeparator(path.GetAt(path.GetLength() - 1))) path.AppendChar(PathSeparator);
    return path.Append(fileName);
}
