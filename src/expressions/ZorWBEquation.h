#ifndef ZORWB_EQUATION_H
#define ZORWB_EQUATION_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpression.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelString.h"

class ZorWBFactory;

// A relation between an expression (the root) and zero, or an extremum to
// seek. Equations belong to their factory, which numbers them (ids are never
// reused) and links them in creation order.
class ZORWBX_API ZorWBEquation {
  public:
    ZorWBEquation(const ZorWBEquation&) = delete;
    ZorWBEquation& operator=(const ZorWBEquation&) = delete;

    ZorWBFactory* GetFactory() const { return _factory; }
    ZorWBExpression* GetRoot() const { return _root; }
    // Only replaces the pointer: the old root stays in the factory. A node of
    // another factory is refused (false, the root unchanged); null is taken.
    bool SetRoot(ZorWBExpression* root);
    ZorWBEquationType GetType() const { return _type; }
    int GetId() const { return _id; }
    // "eq" followed by the id until a name is set.
    const ZorQelString& GetName();
    virtual void SetName(const ZorQelString& name) { _name = name; }
    ZorWBEquation* GetNext() const { return _next; }
    ZorWBEquation* GetPrev() const { return _previous; }

    // A state word for the solvers (1 at creation; the library gives it no
    // further meaning).
    int GetState() const { return _state; }
    void SetState(int state) { _state = state; }

    // The variables the equation is meant to involve, by index. Set appends
    // the list's indices, Get appends the equation's to out; null does nothing.
    void GetTheoreticalVarList(ZorQelIntArray* out) const;
    void SetTheoreticalVarList(ZorQelIntArray* list);
    // True when the theoretical list is empty, or when every variable of the
    // root is in it.
    bool AreVarConsistent() const;
    // The variables of the root in index order; false (out untouched) when
    // the root is null or the factory has no variable.
    bool FindPresentVariables(ZorQelListPZorWBVariable& out) const;
    // Replaces the root by a copy: variables and black-box calls are shared,
    // constants and other operators copied (shared nodes once).
    void DuplicateRoot();

  protected:
    friend class ZorWBFactory;
    ZorWBEquation(ZorWBFactory* factory, ZorWBExpression* root, ZorWBEquationType type, int id,
                  ZorWBEquation* previous);
    // Unlinks the equation from its neighbours; the root stays.
    virtual ~ZorWBEquation();

  private:
    ZorWBExpression* Clone(ZorWBExpression* e);
    // The variable of that index was removed: it leaves the theoretical
    // list, and the indices above it move down one.
    void ForgetVariableIndex(int index);
    // The present-variable bytes of the root, one per factory variable.
    bool MarkPresentVariables(ZorQelArray<unsigned char>& present) const;

    ZorWBFactory* _factory;
    ZorWBExpression* _root;
    ZorWBEquationType _type;
    int _id;
    ZorQelString _name;
    ZorQelIntArray _theoreticalVariables;
    int _state = 1;
    ZorWBEquation* _previous;
    ZorWBEquation* _next = nullptr;
};

#endif
