#include "output/WBx2JSON.h"

#include <cstdio>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBJsonTree.h"

namespace {

using Type = ZorWBExpressionType;

// Object members are added one after the other; the first failure (memory
// short, a value that cannot be written) sticks.
class ObjectWriter {
  public:
    explicit ObjectWriter(ZorWBJsonValue& object) : _object(object) {}

    void Add(const char* key, const ZorWBJsonValue& value) {
        if (_ok) _ok = _object.AddMember(key, value);
    }
    void Add(const char* key, int value) { Add(key, ZorWBJsonValue(value)); }
    void AddReal(const char* key, double value) { Add(key, ZorWBJsonValue(value)); }
    void AddBoolean(const char* key, bool value) { Add(key, ZorWBJsonValue(value)); }
    template <class T>
    void AddList(const char* key, const T* items, int count) {
        ZorWBJsonValue list = ZorWBJsonValue::MakeList();
        for (int i = 0; i < count && _ok; ++i)
            _ok = list.Append(ZorWBJsonValue(items[i]));
        Add(key, list);
    }
    void Fail() { _ok = false; }
    bool IsOk() const { return _ok; }

  private:
    ZorWBJsonValue& _object;
    bool _ok = true;
};

void AddIntegerInterval(ObjectWriter& writer, const ZorWBIntegerInterval& interval) {
    const int bounds[] = {interval.low, interval.high};
    writer.Add("ValType", ZorWBIntegerIntervalType);
    writer.AddList("ValData", bounds, 2);
}

void AddRealInterval(ObjectWriter& writer, const ZorWBRealInterval& interval) {
    const double bounds[] = {interval.low, interval.high};
    writer.Add("ValType", ZorWBRealIntervalType);
    writer.AddList("ValData", bounds, 2);
}

// An enumeration: its representation, then its elements as a list, or the
// members of the equivalent interval value when it is held as an interval.
template <class Enumeration, class AddInterval>
void AddEnumeration(ObjectWriter& writer, ZorWBValueType kind, const Enumeration& enumeration,
                    AddInterval addInterval) {
    writer.Add("ValType", kind);
    writer.Add("ValEType", enumeration.GetRep());
    if (enumeration.GetRep() == ZorWBEnumList)
        writer.AddList("ValData", enumeration.GetData(), enumeration.GetSize());
    else if (enumeration.GetRep() == ZorWBEnumInterval)
        addInterval(writer, enumeration);
}

void AddValue(ObjectWriter& writer, const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBUndefinedType:
            writer.Add("ValType", ZorWBUndefinedType);
            return;
        case ZorWBIntegerType:
            writer.Add("ValType", ZorWBIntegerType);
            writer.Add("ValData", value.GetAsInteger());
            return;
        case ZorWBRealType:
            writer.Add("ValType", ZorWBRealType);
            writer.AddReal("ValData", value.GetAsReal());
            return;
        case ZorWBIntegerIntervalType:
            AddIntegerInterval(writer, value.GetAsIntegerInterval());
            return;
        case ZorWBRealIntervalType:
            AddRealInterval(writer, value.GetAsRealInterval());
            return;
        case ZorWBIntegerEnumType:
            AddEnumeration(writer, ZorWBIntegerEnumType, value.GetIntegerEnum(),
                           [](ObjectWriter& w, const ZorWBIntegerEnum& e) {
                               AddIntegerInterval(w, e.GetAsIntegerInterval());
                           });
            return;
        case ZorWBRealEnumType:
            AddEnumeration(writer, ZorWBRealEnumType, value.GetRealEnum(),
                           [](ObjectWriter& w, const ZorWBRealEnum& e) {
                               AddRealInterval(w, e.GetAsRealInterval());
                           });
            return;
        case ZorWBBooleanType:
            writer.Add("ValType", ZorWBBooleanType);
            writer.Add("ValData", static_cast<int>(value.GetAsBoolean()));
            return;
        case ZorWBFractionType: {
            ZorWBFraction fraction = value.GetAsFraction();
            const int parts[] = {fraction.numerator, fraction.denominator, fraction.power};
            writer.Add("ValType", ZorWBFractionType);
            writer.AddList("FracData", parts, 3);
            return;
        }
    }
    writer.Add("ValType", static_cast<int>(value.GetType()));
    writer.Fail();
}

// Variables and constants: the predefined constants by index from version
// 1 on, every other one by its current value.
void AddLeafValue(ObjectWriter& writer, const ZorWBFactory& factory, const ZorWBExpression* node,
                  int version) {
    ZorWBPredefinedConst index;
    if (version >= 1 &&
        factory.IsPredefinedConstant(static_cast<const ZorWBConstant*>(node), index)) {
        writer.Add("PreDefined", static_cast<int>(index));
        return;
    }
    AddValue(writer, node->GetValue());
}

void AddVariable(ObjectWriter& writer, const ZorWBExpression* node) {
    // GetName stores the default name on first use; the node is not const
    // in the factory that made it.
    auto* variable = const_cast<ZorWBVariable*>(static_cast<const ZorWBVariable*>(node));
    writer.Add("Name", ZorWBJsonValue(variable->GetName()));
    double preferred = 0.0;
    bool hasPreferred = variable->GetPreferedValue(preferred);
    writer.AddBoolean("HasPref", hasPreferred);
    if (hasPreferred) writer.AddReal("PrefValue", preferred);
    writer.AddBoolean("Fixed", variable->IsFixed());
    writer.Add("Divided", variable->GetDividedFlag());
}

bool HasParameterList(Type type) {
    switch (type) {
        case Type::Sqrt:
        case Type::Log:
        case Type::Ln:
        case Type::Exp:
        case Type::Step:
        case Type::Abs:
        case Type::Ceil:
        case Type::Floor:
        case Type::Round:
        case Type::Trunc:
        case Type::UnaryMinus:
            return true;
        default:
            return false;
    }
}

void AddChildren(ObjectWriter& writer, const ZorWBExpression* node) {
    int count = node->GetNbOfChildren();
    if (count <= 0 && node->GetType() != Type::BlackBox) writer.Fail();
    std::vector<int> tags;
    for (int i = 0; i < count && writer.IsOk(); ++i) {
        const ZorWBExpression* child = node->GetChild(i);
        if (!child) {
            writer.Fail();
            break;
        }
        tags.push_back(child->GetTag());
    }
    writer.AddList("OpChildren", tags.data(), static_cast<int>(tags.size()));
}

void AddParameters(ObjectWriter& writer, const ZorWBExpression* node) {
    std::vector<double> parameters;
    for (int i = 0; i < node->GetNbOfParameters(); ++i)
        parameters.push_back(node->GetParameter(i));
    writer.AddList("UnaryOpParams", parameters.data(), static_cast<int>(parameters.size()));
}

// A call whose black box is gone is written with its default name.
void AddBlackBox(ObjectWriter& writer, const ZorWBExpression* node) {
    const auto* call = static_cast<const ZorWBBlackBoxOperator*>(node);
    const ZorWBBlackBox* blackBox = call->GetBlackBox();
    bool nameSet = false;
    ZorQelString name = blackBox ? blackBox->GetName(nameSet) : call->GetBlackBoxName();
    writer.Add("BBxName", ZorWBJsonValue(name));
    writer.AddBoolean("BBxNameFlag", nameSet);
    writer.AddBoolean("BBxInternal", blackBox && blackBox->IsInternal());
}

// Writes one node into object; false when it cannot be written.
bool WriteNode(const ZorWBFactory& factory, const ZorWBExpression* node, int version,
               ZorWBJsonValue& object) {
    ObjectWriter writer(object);
    int typeNumber = static_cast<int>(node->GetType());
    writer.Add("Tag", node->GetTag());
    writer.Add("Type", typeNumber);
    if (typeNumber < 1 || typeNumber > 47) return false;
    Type type = node->GetType();
    if (type == Type::Variable || type == Type::Constant) {
        AddLeafValue(writer, factory, node, version);
        if (type == Type::Variable) AddVariable(writer, node);
        return writer.IsOk();
    }
    AddChildren(writer, node);
    if (HasParameterList(type)) AddParameters(writer, node);
    if (type == Type::BlackBox) AddBlackBox(writer, node);
    return writer.IsOk();
}

}  // namespace

WBx2JSON::WBx2JSON(const ZorWBFactory& factory)
    : _versionOfStream(GetVersionOfStreamDefault()), _factory(&factory) {}

void WBx2JSON::Append(const ZorWBExpression* e) {
    if (!e) return;
    try {
        if (_rootTagSet.insert(e->GetTag()).second) _rootTags.Add(e->GetTag());
    } catch (const std::bad_alloc&) {
        return;
    }
    AppendProtected(e);
}

void WBx2JSON::ForceVersionOfStream(int version) {
    if (static_cast<unsigned int>(version) < 4u) _versionOfStream = version;
}

bool WBx2JSON::AddNodeTag(int tag) {
    if (!_nodeTagSet.insert(tag).second) return false;
    _nodeTags.Add(tag);
    return true;
}

void WBx2JSON::AppendProtected(const ZorWBExpression* e) {
    if (!e) return;
    try {
        if (_versionOfStream < 2)
            CollectParentsFirst(e);
        else
            CollectChildrenFirst(e);
    } catch (const std::bad_alloc&) {
        // The nodes collected so far stay; the rest is missing.
    }
}

// Each node, then its children in order, depth first: the order of the
// recursive walk, kept on an explicit stack.
void WBx2JSON::CollectParentsFirst(const ZorWBExpression* e) {
    std::vector<const ZorWBExpression*> stack{e};
    while (!stack.empty()) {
        const ZorWBExpression* node = stack.back();
        stack.pop_back();
        if (!node || !AddNodeTag(node->GetTag()) || node->IsLeaf()) continue;
        for (int i = node->GetNbOfChildren() - 1; i >= 0; --i)
            stack.push_back(node->GetChild(i));
    }
}

// Children in order, each before its parent.
void WBx2JSON::CollectChildrenFirst(const ZorWBExpression* e) {
    struct Frame {
        const ZorWBExpression* node;
        int next;
    };
    if (_nodeTagSet.count(e->GetTag())) return;
    std::vector<Frame> stack{{e, 0}};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next < frame.node->GetNbOfChildren()) {
            const ZorWBExpression* child = frame.node->GetChild(frame.next++);
            if (child && !_nodeTagSet.count(child->GetTag())) stack.push_back({child, 0});
            continue;
        }
        AddNodeTag(frame.node->GetTag());
        stack.pop_back();
    }
}

bool WBx2JSON::BuildDocument(ZorWBJsonValue& root) const {
    // The first permanent node of each tag, as GetExpressionFromTag finds it,
    // looked up once for all nodes.
    std::unordered_map<int, const ZorWBExpression*> byTag;
    for (const ZorWBExpression* node : _factory->GetExpressions())
        byTag.emplace(node->GetTag(), node);
    ZorWBJsonValue nodes = ZorWBJsonValue::MakeList();
    for (int tag : _nodeTags) {
        auto found = byTag.find(tag);
        ZorWBJsonValue object = ZorWBJsonValue::MakeObject();
        if (found == byTag.end() || !WriteNode(*_factory, found->second, _versionOfStream, object))
            return false;
        if (!nodes.Append(object)) return false;
    }
    ObjectWriter writer(root);
    writer.Add("Exprs", nodes);
    if (_versionOfStream >= 3) writer.AddList("ExprTags", _rootTags.GetData(), _rootTags.GetSize());
    return writer.IsOk();
}

int WBx2JSON::WriteToString(ZorQelString& s) {
    try {
        ZorWBJsonValue root = ZorWBJsonValue::MakeObject();
        if (!root.AddMember("VersionStr", ZorWBJsonValue(_versionOfStream))) return 0;
        if (_versionOfStream < 2) _nodeTags.Sort();
        if (_nodeTags.IsEmpty() || !BuildDocument(root)) return 0;
        ZorQelString written(s);
        if (!root.Print(written)) return 0;
        written.AppendChar('\0');
        s = std::move(written);
        // The echo reads the C text, which stops before the zero character.
        EchoDocument(s);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 1;
}

void WBx2JSON::EchoDocument(const ZorQelString& text) const {
    std::printf("Stream of expression in JSON format\n%s\n", text.GetString());
    std::fflush(stdout);
}

int WBx2JSON::WriteToFile(const ZorQelString& path) {
    ZorQelString document;
    WriteToString(document);
    std::FILE* file = std::fopen(path.GetString(), "wt");
    if (!file) return 0;
    std::fprintf(file, "%s\n", document.GetString());
    std::fclose(file);
    return 1;
}
