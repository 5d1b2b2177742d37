#ifndef WBX2JSON_H
#define WBX2JSON_H

#include <unordered_set>

#include "ZorWBxExport.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelString.h"

class ZorWBExpression;
class ZorWBFactory;
class ZorWBJsonValue;

// Writes expressions of one factory, with every node below them, as one JSON
// document: a flat list "Exprs" of node objects that name their children by
// tag, the stream version "VersionStr" and, from version 3 on, the tags of
// the appended expressions "ExprTags". Nodes come in ascending tag order
// below version 2, and children before their parents from version 2 on.
//
// Every successful WriteToString also echoes the document on the standard
// output, after the line "Stream of expression in JSON format" (a derived
// class may route the echo elsewhere through EchoDocument), and ends the
// string with a character of code 0: the string's length counts it and its
// C text stops before it.
//
// A document may hold repeated keys: an enumeration held as an interval is
// written with its enumeration kind and then as the interval, so its object
// has two "ValType" members.
//
// Graphs of any depth are collected and written without recursion.
class ZORWBX_API WBx2JSON {
  public:
    explicit WBx2JSON(const ZorWBFactory& factory);
    WBx2JSON(const WBx2JSON&) = default;
    WBx2JSON& operator=(const WBx2JSON&) = default;
    virtual ~WBx2JSON() = default;

    // Adds e to the roots (once) and its graph to the nodes to write; null
    // is ignored.
    void Append(const ZorWBExpression* e);

    int GetVersionOfStream() const { return _versionOfStream; }
    static int GetVersionOfStreamDefault() { return 3; }

    // Appends the document to s; 1 on success, 0 when there is nothing to
    // write or a node cannot be written (s is then left unchanged).
    int WriteToString(ZorQelString& s);
    // Writes the document and a line end into a new text file; 1, or 0 when
    // the file cannot be opened. A document that cannot be written gives an
    // empty line.
    int WriteToFile(const ZorQelString& path);

    // The tags to write, in collection order, and the appended roots.
    const ZorQelIntArray& GetNodeTags() const { return _nodeTags; }
    const ZorQelIntArray& GetRootTags() const { return _rootTags; }

    // Two option words kept for callers, both 1 at construction. The writer
    // does not read them.
    int GetFirstFlag() const { return _firstFlag; }
    int GetSecondFlag() const { return _secondFlag; }
    void SetFlags(int first, int second) {
        _firstFlag = first;
        _secondFlag = second;
    }

  protected:
    // Adds e and every node below it to the node tags (see the class notes
    // for the order); nodes already there are skipped.
    void AppendProtected(const ZorWBExpression* e);
    // Versions 0 to 3; any other value is ignored.
    void ForceVersionOfStream(int version);
    // Writes the line "Stream of expression in JSON format" and then text on
    // the standard output.
    virtual void EchoDocument(const ZorQelString& text) const;

  private:
    void CollectParentsFirst(const ZorWBExpression* e);
    void CollectChildrenFirst(const ZorWBExpression* e);
    bool AddNodeTag(int tag);
    bool BuildDocument(ZorWBJsonValue& root) const;

    int _versionOfStream;
    const ZorWBFactory* _factory;
    ZorQelIntArray _nodeTags;
    ZorQelIntArray _rootTags;
    // The same tags as sets, for constant-time membership.
    std::unordered_set<int> _nodeTagSet;
    std::unordered_set<int> _rootTagSet;
    int _firstFlag = 1;
    int _secondFlag = 1;
};

#endif
