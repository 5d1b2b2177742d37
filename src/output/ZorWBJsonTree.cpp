#include "output/ZorWBJsonTree.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <new>
#include <unordered_set>
#include <vector>

#include "values/ZorWBInterval.h"

struct ZorWBJsonMember {
    ZorQelString key;
    ZorWBJsonValue value;
};

// The shared part of an object, a list or a string.
struct ZorWBJsonContainer {
    static constexpr std::size_t InitialRoom = 10;

    int references = 1;
    // Chains containers waiting for destruction, so that releasing a deeply
    // nested tree needs neither recursion nor memory.
    ZorWBJsonContainer* nextToDestroy = nullptr;
    ZorQelString text;                     // a string
    std::vector<ZorWBJsonMember> members;  // an object
    std::vector<ZorWBJsonValue> items;     // a list

    // Room for one more entry: 10 at first, then twice the current room.
    template <class Entries>
    static bool MakeRoom(Entries& entries) {
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
// point, is put back to a point so that the document stays JSON. JSON has
// no infinities and no NaN: an infinity is written as the library's real
// infinity marker of its sign (in the same fixed notation), NaN as null.
void AppendReal(ZorQelString& out, double value) {
    if (std::isnan(value)) {
        out.Append("null");
        return;
    }
    if (std::isinf(value)) value = value > 0 ? ZorWBRealPlusInfinity : ZorWBRealMinusInfinity;
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

ZorWBJsonValue::ZorWBJsonValue(const ZorQelString& value)
    : ZorWBJsonValue(new (std::nothrow) ZorWBJsonContainer, String) {
    if (!_container) return;
    try {
        _container->text = value;
    } catch (const std::bad_alloc&) {
        Release();
    }
}

bool ZorWBJsonValue::HoldsContainer() const {
    return _kind == Object || _kind == List || _kind == String;
}

void ZorWBJsonValue::CopyPayload(const ZorWBJsonValue& other) {
    _kind = other._kind;
    switch (_kind) {
        case Integer:
            _integer = other._integer;
            break;
        case Real:
            _real = other._real;
            break;
        case Boolean:
            _boolean = other._boolean;
            break;
        case Invalid:
            _container = nullptr;
            break;
        default:
            _container = other._container;
            ++_container->references;
            break;
    }
}

ZorWBJsonValue::ZorWBJsonValue(const ZorWBJsonValue& other) {
    CopyPayload(other);
}

ZorWBJsonValue& ZorWBJsonValue::operator=(const ZorWBJsonValue& other) {
    if (this == &other) return *this;
    // other may live inside the container that this value releases.
    ZorWBJsonValue kept(other);
    Release();
    CopyPayload(kept);
    return *this;
}

ZorWBJsonValue::~ZorWBJsonValue() {
    Release();
}

// Takes the container out of a value about to be destroyed with its
// holder, and chains it for destruction when it was the last reference.
void ZorWBJsonValue::Detach(ZorWBJsonValue& value, ZorWBJsonContainer*& pending) {
    if (!value.HoldsContainer()) return;
    ZorWBJsonContainer* inner = value._container;
    value._kind = Invalid;
    value._container = nullptr;
    if (--inner->references == 0) {
        inner->nextToDestroy = pending;
        pending = inner;
    }
}

void ZorWBJsonValue::Release() {
    ZorWBJsonContainer* pending = nullptr;
    Detach(*this, pending);
    while (pending) {
        ZorWBJsonContainer* current = pending;
        pending = current->nextToDestroy;
        for (ZorWBJsonMember& member : current->members)
            Detach(member.value, pending);
        for (ZorWBJsonValue& item : current->items)
            Detach(item, pending);
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
    if (_kind == Object) return static_cast<int>(_container->members.size());
    if (_kind == List) return static_cast<int>(_container->items.size());
    return 0;
}

int ZorWBJsonValue::GetRoom() const {
    if (_kind == Object) return static_cast<int>(_container->members.capacity());
    if (_kind == List) return static_cast<int>(_container->items.capacity());
    return 0;
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
    if (value._kind != Object && value._kind != List) return false;
    if (value._container == target) return true;
    // The caller's handle is the only reference to a target that no
    // container holds, so nothing inside value can lead back to it.
    if (target->references == 1) return false;
    std::vector<const ZorWBJsonContainer*> stack{value._container};
    std::unordered_set<const ZorWBJsonContainer*> seen{value._container};
    auto visit = [&](const ZorWBJsonValue& inner) {
        if ((inner._kind == Object || inner._kind == List) && seen.insert(inner._container).second)
            stack.push_back(inner._container);
    };
    while (!stack.empty()) {
        const ZorWBJsonContainer* current = stack.back();
        stack.pop_back();
        if (current == target) return true;
        for (const ZorWBJsonMember& member : current->members)
            visit(member.value);
        for (const ZorWBJsonValue& item : current->items)
            visit(item);
    }
    return false;
}

bool ZorWBJsonValue::AddMember(const ZorQelString& key, const ZorWBJsonValue& value) {
    if (_kind != Object) return false;
    std::vector<ZorWBJsonMember>& members = _container->members;
    std::size_t position = 0;
    while (position < members.size() && CompareKeys(members[position].key, key) <= 0)
        ++position;
    try {
        if (WouldMakeCycle(_container, value) || !ZorWBJsonContainer::MakeRoom(members))
            return false;
        members.insert(members.begin() + static_cast<std::ptrdiff_t>(position), {key, value});
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

bool ZorWBJsonValue::Append(const ZorWBJsonValue& value) {
    if (_kind != List) return false;
    try {
        if (WouldMakeCycle(_container, value) || !ZorWBJsonContainer::MakeRoom(_container->items))
            return false;
        _container->items.push_back(value);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
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
            out.AppendChar('"').Append(_container->text).AppendChar('"');
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
    if (_kind != Object && _kind != List) {
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
        const ZorWBJsonContainer* container = frame.container;
        std::size_t count = frame.isObject ? container->members.size() : container->items.size();
        if (frame.next == count) {
            out.AppendChar(frame.isObject ? '}' : ']');
            stack.pop_back();
            continue;
        }
        if (frame.next > 0) out.AppendChar(',');
        const ZorWBJsonValue* value = nullptr;
        if (frame.isObject) {
            const ZorWBJsonMember& member = container->members[frame.next];
            out.AppendChar('"').Append(member.key).Append("\":");
            value = &member.value;
        } else {
            value = &container->items[frame.next];
        }
        ++frame.next;
        if (value->_kind == Object || value->_kind == List) {
            out.AppendChar(value->_kind == Object ? '{' : '[');
            stack.push_back({value->_container, value->_kind == Object, 0});
        } else {
            value->PrintScalar(out);
        }
    }
}
