#ifndef ZORWB_NODEREBUILD_H
#define ZORWB_NODEREBUILD_H

#include <vector>

#include "expressions/ZorWBExpression.h"

class ZorWBFactory;

// Helpers of the symbolic transformations that make changed copies of nodes
// (nodes are never changed in place, so that other owners keep theirs).

// node over children: node itself when they are its children, otherwise a new
// node of its kind (step parameters and black box kept; Sum, Product, Min and
// Max take any number of children); null when the factory refuses.
ZorWBExpression* ZorWBRebuildNode(ZorWBFactory& factory, const ZorWBExpression* node,
                                  const std::vector<ZorWBExpression*>& children);

// Copies every property value of from but "temporary" onto to, so that a
// rebuilt node keeps the marks of the node it replaces.
void ZorWBCopyProperties(ZorWBFactory& factory, const ZorWBExpression* from, ZorWBExpression* to);

#endif
