#include "output/ZorWBJsonTree.h"

#include <clocale>
#include <cstdio>
#include <new>
#include <unordered_set>
#include <vector>

struct ZorWBJsonEntry {
    ZorQelString key;  // empty in lists
    ZorWBJsonValue value;
};

struct ZorWBJsonContainer {
    static constexpr std::size_t InitialRoom = 10;

    int references = 1;
    // Chains containers waiting for destruction, so that releasing a deeply
    // nested tree needs neither recursion nor memory.
    ZorWBJsonContainer* nextToDestroy = nullptr;
    std::vector<ZorWBJsonEntry> entries;

    // Room for one more entry: 10 at first, then twice the current room.
    bool MakeRoom() {
        if (entries.size() < entries.capacity()) return true;
        std::size_t room = entries.capacity() == 0 ? InitialRoom : 2 * entries.capacity();
        try {
            entries.reserve(room);
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }
};

namespace {

// The fixed six-decimal format, assembled at run time.
const ZorQelString& RealFormat() {
    static const ZorQelString format = ZorQelString("%").Append(".").AppendInt(6).Append("f");
    return format;
}

// printf-style text of a real; the locale's decimal point, if it is not a
// point, is put back to a point so that the document stays JSON.
void AppendReal(ZorQelString& out, double value) {
    char small[64];
    int length = std::snprintf(small, sizeof small, RealFormat().GetString(), value);
    if (length < 0) return;
    std::string text;
    if (static_cast<std::size_t>(length) < sizeof small) {
        text.assign(small, static_cast<std::size_t>(length));
    } else {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::snprintf(&text[0], text.size(), RealFormat().GetString(), value);
        text.resize(static_cast<std::size_t>(length));
    }
    const char* point = std::localeconv()->decimal_point;
    if (point && point[0] && point[0] != '.' && point[1] == '\0') {
        for (char& c : text) {
            if (c == point[0]) c = '.';
        }
    }
    out.Append(text.c_str(), length);
}

}  // namespace

ZorWBJsonValue::ZorWBJsonValue(ZorWBJsonContainer* container, Kind kind)
    : _kind(container ? kind : Invalid), _container(container) {}

ZorWBJsonValue::ZorWBJsonValue(const ZorWBJsonValue& other)
    : _kind(other._kind),
      _integer(other._integer),
      _real(other._real),
      _boolean(other._boolean),
      _string(other._string),
      _container(other._container) {
    if (_container) ++_container->references;
}

ZorWBJsonValue& ZorWBJsonValue::operator=(const ZorWBJsonValue& other) {
    if (this == &other) return *this;
    if (other._container) ++other._container->references;
    Release();
    _kind = other._kind;
    _integer = other._integer;
    _real = other._real;
    _boolean = other._boolean;
    _string = other._string;
    _container = other._container;
    return *this;
}

ZorWBJsonValue::~ZorWBJsonValue() {
    Release();
}

void ZorWBJsonValue::Release() {
    ZorWBJsonContainer* container = _container;
    _container = nullptr;
    _kind = Invalid;
    if (!container || --container->references > 0) return;
    ZorWBJsonContainer* pending = container;
    while (pending) {
        ZorWBJsonContainer* current = pending;
        pending = current->nextToDestroy;
        for (ZorWBJsonEntry& entry : current->entries) {
            ZorWBJsonContainer* inner = entry.value._container;
            entry.value._container = nullptr;
            if (inner && --inner->references == 0) {
                inner->nextToDestroy = pending;
                pending = inner;
            }
        }
        delete current;
    }
}

ZorWBJsonValue ZorWBJsonValue::MakeObject() {
    return ZorWBJsonValue(new (std::nothrow) ZorWBJsonContainer, Object);
}

ZorWBJsonValue ZorWBJsonValue::MakeList() {
    return ZorWBJsonValue(new (std::nothrow) ZorWBJsonContainer, List);
}

int ZorWBJsonValue::GetNbOfEntries() const {
    return _container ? static_cast<int>(_container->entries.size()) : 0;
}

int ZorWBJsonValue::CompareKeys(const ZorQelString& a, const ZorQelString& b) {
    int common = a.GetLength() < b.GetLength() ? a.GetLength() : b.GetLength();
    for (int i = 0; i < common; ++i) {
        auto x = static_cast<signed char>(a.GetAt(i));
        auto y = static_cast<signed char>(b.GetAt(i));
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.GetLength() == b.GetLength()) return 0;
    return a.GetLength() < b.GetLength() ? -1 : 1;
}

bool ZorWBJsonValue::WouldMakeCycle(const ZorWBJsonContainer* target, const ZorWBJsonValue& value) {
    // The caller's handle is the only reference to a target that no
    // container holds, so nothing inside value can lead back to it.
    if (!value._container) return false;
    if (value._container == target) return true;
    if (target->references == 1) return false;
    std::vector<const ZorWBJsonContainer*> stack{value._container};
    std::unordered_set<const ZorWBJsonContainer*> seen{value._container};
    while (!stack.empty()) {
        const ZorWBJsonContainer* current = stack.back();
        stack.pop_back();
        if (current == target) return true;
        for (const ZorWBJsonEntry& entry : current->entries) {
            const ZorWBJsonContainer* inner = entry.value._container;
            if (inner && seen.insert(inner).second) stack.push_back(inner);
        }
    }
    return false;
}

bool ZorWBJsonValue::Insert(int position, const ZorQelString& key, const ZorWBJsonValue& value) {
    try {
        if (WouldMakeCycle(_container, value) || !_container->MakeRoom()) return false;
        _container->entries.insert(_container->entries.begin() + position, {key, value});
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

bool ZorWBJsonValue::AddMember(const ZorQelString& key, const ZorWBJsonValue& value) {
    if (_kind != Object) return false;
    int position = 0;
    int size = GetNbOfEntries();
    while (position < size &&
           CompareKeys(_container->entries[static_cast<std::size_t>(position)].key, key) <= 0)
        ++position;
    return Insert(position, key, value);
}

bool ZorWBJsonValue::Append(const ZorWBJsonValue& value) {
    if (_kind != List) return false;
    return Insert(GetNbOfEntries(), ZorQelString(), value);
}

void ZorWBJsonValue::PrintScalar(ZorQelString& out) const {
    switch (_kind) {
        case Integer:
            out.AppendInt(_integer);
            break;
        case Real:
            AppendReal(out, _real);
            break;
        case Boolean:
            out.AppendInt(_boolean);
            break;
        case String:
            out.AppendChar('"').Append(_string).AppendChar('"');
            break;
        default:
            out.Append("ERROR");
            break;
    }
}

bool ZorWBJsonValue::Print(ZorQelString& out) const {
    try {
        PrintTree(out);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

void ZorWBJsonValue::PrintTree(ZorQelString& out) const {
    if (!_container) {
        PrintScalar(out);
        return;
    }
    // Containers are opened on an explicit stack, so nesting of any depth
    // prints without recursion.
    struct Frame {
        const ZorWBJsonContainer* container;
        bool isObject;
        std::size_t next;
    };
    std::vector<Frame> stack{{_container, _kind == Object, 0}};
    out.AppendChar(_kind == Object ? '{' : '[');
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next == frame.container->entries.size()) {
            out.AppendChar(frame.isObject ? '}' : ']');
            stack.pop_back();
            continue;
        }
        if (frame.next > 0) out.AppendChar(',');
        const ZorWBJsonEntry& entry = frame.container->entries[frame.next++];
        if (frame.isObject) out.AppendChar('"').Append(entry.key).Append("\":");
        const ZorWBJsonValue& value = entry.value;
        if (value._container) {
            out.AppendChar(value._kind == Object ? '{' : '[');
            stack.push_back({value._container, value._kind == Object, 0});
        } else {
            value.PrintScalar(out);
        }
    }
}
