#ifndef ZORWB_JSONTREE_H
#define ZORWB_JSONTREE_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"

struct ZorWBJsonContainer;

// A value of the small JSON document tree that the JSON writer builds: an
// integer, a real, a boolean, a string, or a container (an object of members
// or a list of values). Containers are shared by reference count when a
// value is copied, so adding a filled list to an object copies no entries.
//
// Containers start with room for 10 entries and double their room when
// full. An object keeps its members in ascending key order, comparing keys
// byte by byte as signed characters (a prefix counts as smaller); a key
// equal to an existing one goes after it and both are kept.
//
// Nothing throws: an operation that cannot get memory returns false, and a
// container that could not be made leaves the value invalid, which prints
// as "ERROR".
class ZORWBX_API ZorWBJsonValue {
  public:
    enum Kind { Invalid, Integer, Real, Boolean, String, Object, List };

    ZorWBJsonValue() : _container(nullptr) {}
    explicit ZorWBJsonValue(int value) : _kind(Integer), _integer(value) {}
    explicit ZorWBJsonValue(double value) : _kind(Real), _real(value) {}
    explicit ZorWBJsonValue(bool value) : _kind(Boolean), _boolean(value ? 1 : 0) {}
    // Invalid when memory is short.
    explicit ZorWBJsonValue(const ZorQelString& value);
    ZorWBJsonValue(const ZorWBJsonValue& other);
    ZorWBJsonValue& operator=(const ZorWBJsonValue& other);
    ~ZorWBJsonValue();

    // A new empty object or list (invalid when memory is short).
    static ZorWBJsonValue MakeObject();
    static ZorWBJsonValue MakeList();

    Kind GetKind() const { return _kind; }
    // Entries of a container (members of an object), 0 for other kinds.
    int GetNbOfEntries() const;
    // How many entries the container has room for before it grows.
    int GetRoom() const;

    // Inserts a member into an object at its sorted place; false for a
    // non-object or when memory is short.
    bool AddMember(const ZorQelString& key, const ZorWBJsonValue& value);
    // Appends an entry to a list; false for a non-list or when memory is short.
    bool Append(const ZorWBJsonValue& value);

    // Appends the compact text: no blanks or line ends, booleans as 0 or 1,
    // reals in fixed notation with six decimals, strings between double
    // quotes without escaping. False when memory ran out (out may then end
    // with part of the text).
    bool Print(ZorQelString& out) const;

    // Key order of objects: -1, 0 or 1 as a is below, equal to or above b,
    // bytes compared as signed characters.
    static int CompareKeys(const ZorQelString& a, const ZorQelString& b);

  private:
    explicit ZorWBJsonValue(ZorWBJsonContainer* container, Kind kind);
    bool HoldsContainer() const;
    void CopyPayload(const ZorWBJsonValue& other);
    void Release();
    static void Detach(ZorWBJsonValue& value, ZorWBJsonContainer*& pending);
    // Whether adding value into target would close a cycle of containers,
    // which could then be neither released nor printed.
    static bool WouldMakeCycle(const ZorWBJsonContainer* target, const ZorWBJsonValue& value);
    void PrintScalar(ZorQelString& out) const;
    void PrintTree(ZorQelString& out) const;

    // A value is 16 bytes: documents of a million nodes hold millions of
    // them. Strings live in a shared container of their own.
    Kind _kind = Invalid;
    union {
        int _integer;
        double _real;
        unsigned char _boolean;
        ZorWBJsonContainer* _container;
    };
};

#endif
