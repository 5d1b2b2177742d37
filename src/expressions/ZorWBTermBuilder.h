#ifndef ZORWB_TERMBUILDER_H
#define ZORWB_TERMBUILDER_H

#include <initializer_list>
#include <vector>

#include "expressions/ZorWBFactory.h"

// Builds the terms of derivatives, antiderivatives and interpolations:
// products that leave out the factor One, negations, quotients, sums and
// conditional terms. Every builder gives null when an operand is null, so a
// failure anywhere makes the whole term null. Used inside the library.
class ZorWBTermBuilder {
  public:
    explicit ZorWBTermBuilder(ZorWBFactory& factory) : _factory(factory) {}

    ZorWBFactory& Factory() { return _factory; }

    // Whether e is a constant that IsZeroOrOne reads as 0 (as 1).
    static bool IsZero(const ZorWBExpression* e);
    static bool IsOne(const ZorWBExpression* e);

    // The product of the factors in order, those that are One left out: One
    // when none is left, the factor itself when one is.
    ZorWBExpression* Product(std::initializer_list<ZorWBExpression*> factors);
    ZorWBExpression* Product(const std::vector<ZorWBExpression*>& factors);
    // MinusOne times the product of the factors.
    ZorWBExpression* Negative(std::initializer_list<ZorWBExpression*> factors);
    // a - b as Sum(a, Product(b, MinusOne)), as the segment shapes write it.
    ZorWBExpression* Difference(ZorWBExpression* a, ZorWBExpression* b);
    // The quotient; the numerator alone when the denominator is One.
    ZorWBExpression* Over(ZorWBExpression* numerator, ZorWBExpression* denominator);
    ZorWBExpression* Square(ZorWBExpression* a);
    // The sum of the terms in order: Zero when there is none, the term
    // itself when there is one.
    ZorWBExpression* Sum(const std::vector<ZorWBExpression*>& terms);
    // IfThenElse(condition, term, Zero).
    ZorWBExpression* Where(ZorWBExpression* condition, ZorWBExpression* term);

  private:
    ZorWBFactory& _factory;
};

#endif
