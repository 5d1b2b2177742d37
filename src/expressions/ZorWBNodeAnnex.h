#ifndef ZORWB_NODEANNEX_H
#define ZORWB_NODEANNEX_H

#include <memory>
#include <vector>

#include "values/ZorWBValue.h"

// The data of a node that few nodes need, kept apart so that the others do
// not carry it: a node gets its annex at the first need (through its parent
// list, see ZorWBParentList) and loses it when it dies. Used inside the
// library.
struct ZorWBNodeAnnex {
    // Below the "all" level: the copy of the last evaluated value.
    std::unique_ptr<ZorWBValue> previousValue;
    // Property values by index; -1 marks a slot never set.
    std::vector<int> properties;
    // A leaf whose buffer still holds a value assigned earlier (a change
    // that did not invalidate it): the value assigned since.
    std::unique_ptr<ZorWBValue> heldValue;
    // A variable's settings other than its value.
    bool hasPreferredValue = false;
    double preferredValue = 0.0;
    int dividedFlag = 1;
};

#endif
