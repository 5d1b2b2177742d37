#include "expressions/ZorWBParentList.h"

#include <climits>
#include <new>

bool ZorWBParentList::Add(ZorWBExpression* parent) {
    if (_capacity == 0 && _size == 0) {
        _one = parent;
        _size = 1;
        return true;
    }
    if (_size == _capacity || _capacity == 0) {
        if (_size > INT_MAX / 2) return false;
        int capacity = _size < 2 ? 4 : _size * 2;
        ZorWBExpression** grown = new (std::nothrow) ZorWBExpression*[capacity];
        if (!grown) return false;
        for (int i = 0; i < _size; ++i)
            grown[i] = Get(i);
        if (_capacity != 0) delete[] _many;
        _many = grown;
        _capacity = capacity;
    }
    _many[_size++] = parent;
    return true;
}

bool ZorWBParentList::Remove(const ZorWBExpression* parent) {
    for (int i = _size - 1; i >= 0; --i) {
        if (Get(i) != parent) continue;
        if (_capacity == 0) {
            _one = nullptr;
        } else {
            for (int j = i + 1; j < _size; ++j)
                _many[j - 1] = _many[j];
        }
        --_size;
        return true;
    }
    return false;
}

void ZorWBParentList::Clear() {
    if (_capacity != 0) delete[] _many;
    _one = nullptr;
    _size = 0;
    _capacity = 0;
}
