#ifndef TESTS_PARSER_SUPPORT_H
#define TESTS_PARSER_SUPPORT_H

#include <gtest/gtest.h>

#include <clocale>
#include <initializer_list>
#include <string>
#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBModelPrinter.h"
#include "parser/ZorWBNode.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

// One parse of a text with everything it produced. The standard output is
// captured during the parse, so that "Invalid character" lines can be
// counted.
struct ParsedText {
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    ZorQelListPZorWBBlackBox blackBoxes;
    int errors = 0;
    std::string output;

    explicit ParsedText(const char* text) {
        testing::internal::CaptureStdout();
        errors = ZorWBParser::Parse(text, model, ids, messenger, &blackBoxes);
        output = testing::internal::GetCapturedStdout();
    }
    ~ParsedText() {
        for (ZorWBBlackBox* blackBox : blackBoxes)
            delete blackBox;
    }

    // Every error as "code (l,c,l,c)", in order of report.
    std::vector<std::string> Errors() const {
        std::vector<std::string> list;
        for (int i = 0; i < messenger.GetErrorNumber(); ++i) {
            int code = 0;
            ZorWBLocation location;
            messenger.GetError(i, code, location);
            list.push_back(std::to_string(code) + " " + location.Write().GetString());
        }
        return list;
    }

    ZorWBEqNode* Equation(int index) const {
        ZorWBEqNode* equation = model.GetFirstEquation();
        for (int i = 0; i < index && equation; ++i)
            equation = equation->GetNext();
        return equation;
    }

    int InvalidCharacters() const {
        int count = 0;
        for (std::size_t at = output.find("Invalid character\n"); at != std::string::npos;
             at = output.find("Invalid character\n", at + 1))
            ++count;
        return count;
    }

    std::string Printed() const { return ZorWBModelPrinter::Print(model).GetString(); }
};

// A list of nodes, for building models by hand.
inline ZorWBNodeList List(std::initializer_list<ZorWBNode*> nodes) {
    ZorWBNodeList list;
    for (ZorWBNode* node : nodes)
        list.Add(node);
    return list;
}

// Switches the process to a decimal-comma locale for one scope.
class DecimalCommaLocale {
  public:
    DecimalCommaLocale() {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8"}) {
            if (std::setlocale(LC_ALL, name)) {
                _active = true;
                return;
            }
        }
    }
    ~DecimalCommaLocale() { std::setlocale(LC_ALL, "C"); }
    bool IsActive() const { return _active; }

  private:
    bool _active = false;
};

// The structure of a subtree, for exact comparisons: operators by their type
// name with their children, LessEqual with its comparison type, constants by
// value (Pi as "Pi"), variables by name, and units in brackets.
inline std::string Describe(const ZorWBNode* node) {
    if (!node) return "null";
    std::string text;
    switch (node->GetNodeKind()) {
        case ZorWBConstantNode: {
            const ZorWBConstNode& constant = *static_cast<const ZorWBConstNode*>(node);
            const ZorWBValue& value = constant.GetValue();
            if (constant.IsPi())
                text = "Pi";
            else if (value.GetType() == ZorWBRealType)
                text = "real " + std::string(value.Str().GetString());
            else
                text = value.Str().GetString();
            break;
        }
        case ZorWBVariableNode:
            text = static_cast<const ZorWBVarNode*>(node)->GetName().GetString();
            break;
        case ZorWBOperatorNode: {
            const ZorWBOpNode& op = *static_cast<const ZorWBOpNode*>(node);
            text = ZorWBExpressionTypeName(op.GetType());
            if (op.GetType() == ZorWBExpressionType::BlackBox && op.GetBlackBox())
                text += std::string(":") + op.GetBlackBox()->GetName().GetString();
            if (op.GetComparisonType() != ZorWBNoComparison)
                text += "<" + std::to_string(op.GetComparisonType()) + ">";
            text += "(";
            for (int i = 0; i < op.GetNbOfChildren(); ++i)
                text += (i ? ", " : "") + Describe(op.GetChild(i));
            text += ")";
            break;
        }
        case ZorWBEquationNode: {
            const ZorWBEqNode& equation = *static_cast<const ZorWBEqNode*>(node);
            text = "Eq" + std::to_string(equation.GetWBEqType()) + "(" +
                   Describe(equation.GetLeftTerm());
            if (equation.GetRightTerm()) text += ", " + Describe(equation.GetRightTerm());
            text += ")";
            break;
        }
    }
    if (node->HasUnit()) text += std::string("[") + node->GetUnitName().GetString() + "]";
    return text;
}

// The structure of a one-equation text's equation (or "none").
inline std::string DescribeOnly(const char* text) {
    ParsedText parsed(text);
    return parsed.model.GetNbOfEquations() == 1 ? Describe(parsed.model.GetFirstEquation())
                                                : "none";
}

#endif
