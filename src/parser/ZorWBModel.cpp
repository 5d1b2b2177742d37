#include "parser/ZorWBModel.h"

#include <functional>
#include <new>
#include <utility>

#include "parser/ZorWBHash.h"
#include "parser/ZorWBParserResult.h"
#include "parser/ZorWBVisitor.h"

ZorWBModel::ZorWBModel() = default;

ZorWBModel::ZorWBModel(unsigned int level) : _environment(level) {}

// The nodes end where they lie; the arena frees their memory after.
ZorWBModel::~ZorWBModel() {
    for (ZorWBEqNode* equation : _equationsById) {
        if (equation) equation->~ZorWBEqNode();
    }
    for (NodeChunk* chunk = _lastChunk; chunk; chunk = chunk->previous) {
        for (int i = 0; i < chunk->size; ++i)
            chunk->nodes[i]->~ZorWBNode();
    }
}

bool ZorWBModel::List(ZorWBNode* node) {
    if (!_lastChunk || _lastChunk->size == NodeChunk::Capacity) {
        void* room = _arena.Allocate(sizeof(NodeChunk));
        if (!room) return false;
        _lastChunk = new (room) NodeChunk{_lastChunk, 0, {}};
    }
    _lastChunk->nodes[_lastChunk->size++] = node;
    ++_nbOfNodes;
    return true;
}

std::size_t ZorWBModel::PlaceHash::operator()(const Place& place) const {
    std::size_t hash = ZorWBHashText(*place.name);
    int values[4];
    place.location.GetLocation(values[0], values[1], values[2], values[3]);
    for (int value : values)
        hash = ZorWBCombineHash(hash, std::hash<int>()(value));
    return hash;
}

template <class Node, class... Arguments>
Node* ZorWBModel::Make(Arguments&&... arguments) {
    static_assert(alignof(Node) <= ZorWBModelArena::Alignment, "the arena aligns for the nodes");
    void* room = _arena.Allocate(sizeof(Node));
    if (!room) return nullptr;
    Node* node = new (room) Node(std::forward<Arguments>(arguments)...);
    if (List(node)) return node;
    node->~Node();
    return nullptr;
}

ZorWBConstNode* ZorWBModel::CreateConstant(const ZorWBLocation& location, const ZorWBValue& value) {
    return Make<ZorWBConstNode>(location, &_environment, value);
}

ZorWBConstNode* ZorWBModel::CreateConstant(const ZorWBLocation& location, const ZorWBValue& value,
                                           const ZorWBLocation& unitLocation,
                                           const ZorQelString& unitName) {
    ZorWBConstNode* node = CreateConstant(location, value);
    if (node) node->SetUnitData(unitLocation, unitName);
    return node;
}

ZorWBVarNode* ZorWBModel::CreateVariable(const ZorWBLocation& location, const ZorQelString& name) {
    ZorWBVarNode* node = Make<ZorWBVarNode>(location, &_environment, name);
    if (!node) return nullptr;
    try {
        auto chain = _variablesByName.try_emplace(name.GetStdString(), NameChain{node, node, 0});
        NameChain& nodes = chain.first->second;
        if (!chain.second) nodes.last = nodes.last->_nextOfName = node;
        ++nodes.count;
    } catch (...) {
        // The node stays owned but unlisted; the caller sees a failure.
        return nullptr;
    }
    ++_nbOfVariables;
    int line = location.GetFirstLine(), column = location.GetFirstColumn();
    if (line > _furthestLine || (line == _furthestLine && column > _furthestColumn)) {
        _furthestLine = line;
        _furthestColumn = column;
    }
    if (_placesIndexed) {
        try {
            _variablesByPlace.emplace(Place{&node->GetName().GetStdString(), location}, node);
        } catch (...) {
            _placesIndexed = false;  // built again on the next lookup
            _variablesByPlace.clear();
        }
    }
    return node;
}

bool ZorWBModel::MayHoldPlace(const ZorWBLocation& location) const {
    int line = location.GetFirstLine(), column = location.GetFirstColumn();
    return line < _furthestLine || (line == _furthestLine && column <= _furthestColumn);
}

bool ZorWBModel::IndexPlaces() const {
    if (_placesIndexed) return true;
    try {
        for (const auto& entry : _variablesByName) {
            for (ZorWBVarNode* node = entry.second.first; node; node = node->_nextOfName)
                _variablesByPlace.emplace(
                    Place{&node->GetName().GetStdString(), node->GetLocation()}, node);
        }
        _placesIndexed = true;
    } catch (...) {
        _variablesByPlace.clear();
    }
    return _placesIndexed;
}

ZorWBOpNode* ZorWBModel::MakeOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                                      ZorWBComparisonType comparison, int n,
                                      ZorWBNode* const* children, ZorWBBlackBox* blackBox) {
    if (n < 0 || (n > 0 && !children)) return nullptr;
    auto* own =
        static_cast<ZorWBNode**>(_arena.Allocate(sizeof(ZorWBNode*) * static_cast<std::size_t>(n)));
    if (n > 0 && !own) return nullptr;
    for (int i = 0; i < n; ++i)
        own[i] = children[i];
    ZorWBOpNode* node =
        Make<ZorWBOpNode>(location, &_environment, type, comparison, n, own, blackBox);
    if (!node) return nullptr;
    for (int i = 0; i < n; ++i) {
        if (!own[i]) continue;
        own[i]->SetParentNode(node);
        own[i]->SetItsIndexAsChild(i);
    }
    return node;
}

ZorWBOpNode* ZorWBModel::CreateOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                                        const ZorWBNodeList& children) {
    return CreateOperator(location, type, ZorWBNoComparison, children);
}

ZorWBOpNode* ZorWBModel::CreateOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                                        ZorWBComparisonType comparison,
                                        const ZorWBNodeList& children) {
    return CreateOperator(location, type, comparison, children.GetSize(), children.GetData());
}

ZorWBOpNode* ZorWBModel::CreateOperator(const ZorWBLocation& location, ZorWBExpressionType type,
                                        ZorWBComparisonType comparison, int n,
                                        ZorWBNode* const* children) {
    int number = static_cast<int>(type);
    bool isOperator = number >= static_cast<int>(ZorWBExpressionType::Not) &&
                      number < ZorWBNbOfExpressionTypes && type != ZorWBExpressionType::BlackBox;
    if (!isOperator || comparison < ZorWBNoComparison || comparison > ZorWBComparisonGreater)
        return nullptr;
    return MakeOperator(location, type, comparison, n, children, nullptr);
}

std::size_t ZorWBModel::BlackBoxCallKey(const ZorQelString& name, int n,
                                        ZorWBNode* const* arguments) {
    std::size_t key = ZorWBHashText(name.GetStdString());
    for (int i = 0; i < n; ++i)
        key = ZorWBCombineHash(key, arguments[i] ? arguments[i]->GetShapeHash() : 0);
    return key;
}

ZorWBOpNode* ZorWBModel::DeclareBlackBox(const ZorWBLocation& location, ZorWBBlackBox* blackBox,
                                         const ZorWBNodeList& arguments) {
    if (!blackBox) return nullptr;
    // Only the first of equal calls is listed: repeats would pile up under one
    // key and make every later lookup slower.
    bool repeated = GetBBxOp(blackBox->GetName(), arguments) != nullptr;
    int n = arguments.GetSize();
    ZorWBOpNode* node = MakeOperator(location, ZorWBExpressionType::BlackBox, ZorWBNoComparison, n,
                                     arguments.GetData(), blackBox);
    if (!node) return nullptr;
    try {
        if (!repeated)
            _blackBoxCalls.emplace(BlackBoxCallKey(blackBox->GetName(), n, arguments.GetData()),
                                   node);
        if (_declaredSet.insert(blackBox).second) _declaredBlackBoxes.push_back(blackBox);
    } catch (...) {
        return nullptr;
    }
    return node;
}

ZorWBOpNode* ZorWBModel::GetBBxOp(const ZorQelString& name, const ZorWBNodeList& arguments) const {
    auto range =
        _blackBoxCalls.equal_range(BlackBoxCallKey(name, arguments.GetSize(), arguments.GetData()));
    for (auto it = range.first; it != range.second; ++it) {
        ZorWBOpNode* call = it->second;
        if (call->GetBlackBox()->GetName() != name) continue;
        if (call->GetNbOfChildren() != arguments.GetSize()) continue;
        bool same = true;
        for (int i = 0; same && i < arguments.GetSize(); ++i) {
            ZorWBNode* argument = arguments.Get(i);
            ZorWBNode* known = call->GetChild(i);
            same = known ? known->IsEqual(argument) : argument == nullptr;
        }
        if (same) return call;
    }
    return nullptr;
}

void ZorWBModel::AdoptBlackBox(ZorWBBlackBox* blackBox) {
    if (!blackBox) return;
    if (_ownedBlackBoxes.count(blackBox)) return;
    try {
        _ownedBlackBoxes.emplace(blackBox, std::unique_ptr<ZorWBBlackBox>(blackBox));
    } catch (...) {
        delete blackBox;  // cannot be kept: freed now rather than leaked
    }
}

ZorWBEqNode* ZorWBModel::Append(ZorWBEqNode* equation) {
    if (!equation) return nullptr;
    try {
        _equationsById.push_back(equation);  // at its id, the count so far
    } catch (...) {
        equation->~ZorWBEqNode();
        return nullptr;
    }
    ++_nextEquationId;
    ++_nbOfEquations;
    equation->_prev = _lastEquation;
    if (_lastEquation)
        _lastEquation->_next = equation;
    else
        _firstEquation = equation;
    _lastEquation = equation;
    return equation;
}

ZorWBEqNode* ZorWBModel::AddEquation(const ZorWBLocation& location, ZorWBNode* left,
                                     ZorWBEquationType type, ZorWBNode* right) {
    bool relation = type >= ZorWBEqualZero && type <= ZorWBGreaterZero;
    bool objective = type == ZorWBMinimize || type == ZorWBMaximize;
    if (!left || !(relation ? right != nullptr : objective)) return nullptr;
    return Append(NewEquation(location, left, type, right));
}

ZorWBEqNode* ZorWBModel::AddEquation(ZorWBNode* term) {
    if (!term) return nullptr;
    return Append(NewEquation(ZorWBLocation(), term, ZorWBEquationUnset, nullptr));
}

ZorWBEqNode* ZorWBModel::NewEquation(const ZorWBLocation& location, ZorWBNode* left,
                                     ZorWBEquationType type, ZorWBNode* right) {
    void* room = _arena.Allocate(sizeof(ZorWBEqNode));
    if (!room) return nullptr;
    return new (room) ZorWBEqNode(location, &_environment, left, type, right, _nextEquationId);
}

ZorWBVarNode* ZorWBModel::GetVariable(const ZorQelString& name) const {
    auto it = _variablesByName.find(name.GetStdString());
    return it == _variablesByName.end() ? nullptr : it->second.first;
}

ZorWBVarNode* ZorWBModel::GetVariable(const ZorQelString& name,
                                      const ZorWBLocation& location) const {
    if (!MayHoldPlace(location)) return nullptr;
    if (IndexPlaces()) {
        auto it = _variablesByPlace.find(Place{&name.GetStdString(), location});
        return it == _variablesByPlace.end() ? nullptr : it->second;
    }
    // Without memory for the index: along the nodes of the name.
    for (ZorWBVarNode* node = GetVariable(name); node; node = node->_nextOfName) {
        if (node->GetLocation().Compare(location)) return node;
    }
    return nullptr;
}

int ZorWBModel::GetVariable(const ZorQelString& name, ZorQelArray<ZorWBVarNode*>& list) const {
    ZorWBVarNode* first = GetVariable(name);
    int count = 0;
    for (ZorWBVarNode* node = first; node; node = node->_nextOfName, ++count)
        list.Add(node);
    return count;
}

ZorWBEqNode* ZorWBModel::GetNextEquation(const ZorWBEqNode* equation) const {
    return equation ? equation->GetNext() : nullptr;
}

ZorWBEqNode* ZorWBModel::GetPrevEquation(const ZorWBEqNode* equation) const {
    return equation ? equation->GetPrev() : nullptr;
}

ZorWBEqNode* ZorWBModel::GetEquationById(int id) const {
    bool known = id >= 0 && static_cast<std::size_t>(id) < _equationsById.size();
    return known ? _equationsById[static_cast<std::size_t>(id)] : nullptr;
}

int ZorWBModel::RemoveEquation(ZorWBEqNode*& equation) {
    if (!equation || GetEquationById(equation->GetId()) != equation)
        return ZorWBParserResult::Failure;
    ZorWBEqNode* prev = equation->_prev;
    ZorWBEqNode* next = equation->_next;
    (prev ? prev->_next : _firstEquation) = next;
    (next ? next->_prev : _lastEquation) = prev;
    _equationsById[static_cast<std::size_t>(equation->GetId())] = nullptr;
    --_nbOfEquations;
    equation->~ZorWBEqNode();  // its room stays in the arena
    equation = nullptr;
    return ZorWBParserResult::Success;
}

void ZorWBModel::GetBlackBoxes(ZorQelListPZorWBBlackBox* list) const {
    if (!list) return;
    for (ZorWBBlackBox* blackBox : _declaredBlackBoxes)
        list->Add(blackBox);
}

int ZorWBModel::Accept(ZorWBVisitor& visitor) {
    return visitor.VisitModel(*this);
}

bool ZorWBModel::IsEqual(const ZorWBModel& other) const {
    if (GetNbOfEquations() != other.GetNbOfEquations()) return false;
    for (const ZorWBEqNode *a = _firstEquation, *b = other._firstEquation; a && b;
         a = a->GetNext(), b = b->GetNext()) {
        if (!a->IsEqual(b)) return false;
    }
    return true;
}
