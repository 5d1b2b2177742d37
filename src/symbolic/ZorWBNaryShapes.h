#ifndef ZORWB_NARYSHAPES_H
#define ZORWB_NARYSHAPES_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpression.h"

class ZorWBFactory;

// The two reshapings of n-ary operators that the symbolic transformations
// run over whole equation roots. Both return the new root; nodes are copied,
// never changed (other owners keep theirs), and rebuilt nodes keep the
// properties of the nodes they replace. Both run in time and memory linear
// in the size of the graph and of the result.

// Nested Sum, Product, Min and Max merged into their parents: a child of the
// parent's own type leaves its place and its operands, already merged, go
// to the end of the parent's list, the last such child first. So
// Sum(Sum(Sum(a, b), c), d) becomes Sum(d, c, a, b).
ZORWBX_API ZorWBExpression* ZorWBFlatten(ZorWBFactory& factory, ZorWBExpression* root);

// Operators of more than two operands made binary from the left: a+b+c+d
// becomes ((a+b)+c)+d. With keepIfThenElse, IfThenElse nodes are left alone;
// a type that has no two-operand form (IfThenElse, Round, black boxes) stays
// as it is.
ZORWBX_API ZorWBExpression* ZorWBBinarise(ZorWBFactory& factory, ZorWBExpression* root,
                                          bool keepIfThenElse);

#endif
