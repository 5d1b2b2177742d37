#include "qel/ZorQelArray.h"

bool ZorQelBoolArray::Check() {
    _count = static_cast<int>(std::count(_flags.begin(), _flags.end(), 1));
    return _count > 0;
}
