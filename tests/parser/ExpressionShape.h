#ifndef TESTS_EXPRESSION_SHAPE_H
#define TESTS_EXPRESSION_SHAPE_H

#include <string>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBVariable.h"
#include "parser/ZorWBModelPrinter.h"

// The structure of a factory expression, for exact comparisons: operators by
// their type name with their children, black-box calls by their black box's
// name, constants by value (reals always with a point or an exponent, so
// that 25 and 25.0 differ), variables by name. Recursive: for small trees.
inline std::string Shape(const ZorWBExpression* e) {
    if (!e) return "null";
    if (e->GetType() == ZorWBExpressionType::Variable)
        return const_cast<ZorWBVariable*>(static_cast<const ZorWBVariable*>(e))
            ->GetName()
            .GetString();
    if (e->GetType() == ZorWBExpressionType::Constant) {
        ZorQelString text;
        ZorWBModelPrinter::AppendValue(text, e->GetExprValue());
        return text.GetString();
    }
    std::string text = ZorWBExpressionTypeName(e->GetType());
    if (e->GetType() == ZorWBExpressionType::BlackBox)
        text += std::string(":") +
                static_cast<const ZorWBBlackBoxOperator*>(e)->GetBlackBoxName().GetString();
    text += "(";
    for (int i = 0; i < e->GetNbOfChildren(); ++i)
        text += (i ? ", " : "") + Shape(e->GetChild(i));
    return text + ")";
}

#endif
