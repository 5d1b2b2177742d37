#ifndef ZORWB_EXPRESSIONTYPE_H
#define ZORWB_EXPRESSIONTYPE_H

#include "ZorWBxExport.h"

// The node classes that a type is built with.
enum class ZorWBNodeFamily : int {
    NoNode,         // names only: no node has this type
    Leaf,           // variables and constants
    Not,            // ZorWBNotOperator
    Boolean,        // ZorWBBooleanOperator
    Algebraic,      // ZorWBAlgebraicOperator, n children
    Binary,         // ZorWBBinaryOperator
    Unary,          // ZorWBUnaryOperator (Round also as ZorWBRound3Operator)
    Trigonometric,  // ZorWBTrigonometricOperator
    IfThenElse,     // ZorWBIfThenElseOperator
    BlackBox,       // ZorWBBlackBoxOperator
    Integrate,      // ZorWBIntegrateOperator
};

// Every node type, one line each: number, member name, family, number of
// children (-1: at least two), the replay writer's parse and print names,
// the graph dump label, and the equation language's function name.
// clang-format off
#define ZORWB_EXPRESSION_TYPES(X) \
    X(0,  None,        NoNode,        0,  "none",       "None", "non defined operator", "")      \
    X(1,  Variable,    Leaf,          0,  "variable",   "",     "",                     "")      \
    X(2,  Constant,    Leaf,          0,  "constant",   "",     "",                     "")      \
    X(3,  Not,         Not,           1,  "Not",        "!",    "!",                    "")      \
    X(4,  Or,          Boolean,       2,  "Or",         " || ", "||",                   "")      \
    X(5,  And,         Boolean,       2,  "And",        " && ", "& ",                   "")      \
    X(6,  Equal,       Boolean,       2,  "Equal",      "==",   "= ",                   "")      \
    X(7,  NotEqual,    Boolean,       2,  "nEqual",     "!=",   "!= ",                  "")      \
    X(8,  LessEqual,   Boolean,       2,  "lEqual",     "<=",   "non defined operator", "")      \
    X(9,  Implication, Boolean,       2,  "imply",      "",     "=>",                   "")      \
    X(10, Sum,         Algebraic,     -1, "Sum",        "+",    "+",                    "")      \
    X(11, Product,     Algebraic,     -1, "Product",    "*",    "*",                    "")      \
    X(12, Quotient,    Binary,        2,  "Quotient",   "/",    "./. ",                 "")      \
    X(13, Power,       Binary,        2,  "Pow",        "^",    "^",                    "")      \
    X(14, Root,        Binary,        2,  "Root",       "",     "()^(1/N)",             "")      \
    X(15, Sqrt,        Unary,         1,  "Sqrt",       "",     "()^(1/2)",             "sqrt")  \
    X(16, Log,         Unary,         1,  "Log",        "",     "Log",                  "log")   \
    X(17, Ln,          Unary,         1,  "Ln",         "",     "Ln",                   "ln")    \
    X(18, Exp,         Unary,         1,  "Exp",        "",     "Exp",                  "exp")   \
    X(19, Sin,         Trigonometric, 1,  "Sin",        "",     "Sin",                  "sin")   \
    X(20, Cos,         Trigonometric, 1,  "Cos",        "",     "Cos",                  "cos")   \
    X(21, Tan,         Trigonometric, 1,  "Tan",        "",     "Tan",                  "tan")   \
    X(22, Asin,        Trigonometric, 1,  "aSin",       "",     " Asin",                "asin")  \
    X(23, Acos,        Trigonometric, 1,  "aCos",       "",     "Acos ",                "acos")  \
    X(24, Atan,        Trigonometric, 1,  "aTan",       "",     "Atan",                 "atan")  \
    X(25, Atan2,       Binary,        2,  "aTan2",      "",     "non defined operator", "atan2") \
    X(26, Dim,         Binary,        2,  "Dim",        "",     "non defined operator", "dim")   \
    X(27, Sign,        Binary,        2,  "Sign",       "",     "non defined operator", "sign")  \
    X(28, Step,        Unary,         1,  "Step",       "",     "non defined operator", "step")  \
    X(29, Sinh,        Trigonometric, 1,  "Sinh",       "",     "Sinh",                 "sinh")  \
    X(30, Cosh,        Trigonometric, 1,  "Cosh",       "",     "Cosh",                 "cosh")  \
    X(31, Tanh,        Trigonometric, 1,  "Tanh",       "",     "Tanh",                 "tanh")  \
    X(32, Asinh,       Trigonometric, 1,  "aSinh",      "",     "Asinh",                "asinh") \
    X(33, Acosh,       Trigonometric, 1,  "aCosh",      "",     "Acosh",                "acosh") \
    X(34, Atanh,       Trigonometric, 1,  "aTanh",      "",     "ATanh",                "atanh") \
    X(35, Abs,         Unary,         1,  "Abs",        "",     "|.|",                  "abs")   \
    X(36, Ceil,        Unary,         1,  "Ceil",       "",     "Ceil",                 "ceil")  \
    X(37, Floor,       Unary,         1,  "Floor",      "",     "Floor",                "floor") \
    X(38, Round,       Unary,         1,  "Round",      "",     "Round",                "round") \
    X(39, Trunc,       Unary,         1,  "Trunc",      "",     "Trunc",                "trunc") \
    X(40, Mod,         Binary,        2,  "Mod",        "",     "Mod",                  "mod")   \
    X(41, Min,         Algebraic,     -1, "Min",        "",     "Min",                  "min")   \
    X(42, Max,         Algebraic,     -1, "Max",        "",     "Max",                  "max")   \
    X(43, IfThenElse,  IfThenElse,    3,  "IfThenElse", "",     "non defined operator", "")      \
    X(44, BlackBox,    BlackBox,      -1, "Bbx",        "",     "BB",                   "")      \
    X(45, UnaryMinus,  Unary,         1,  "Minus",      "-",    "non defined operator", "")      \
    X(46, Minus,       NoNode,        2,  "Minus",      "-",    "non defined operator", "")      \
    X(47, Integrate,   Integrate,     2,  "Int",        "",     "non defined operator", "int")
// clang-format on

enum class ZorWBExpressionType : int {
#define ZORWB_DECLARE_TYPE(number, member, family, children, parseName, printName, graphLabel, \
                           function)                                                           \
    member = number,
    ZORWB_EXPRESSION_TYPES(ZORWB_DECLARE_TYPE)
#undef ZORWB_DECLARE_TYPE
};

// The number of types (one past the last).
constexpr int ZorWBNbOfExpressionTypes = 48;

// The family of each type by number, for the walks that ask it at every node.
inline constexpr ZorWBNodeFamily ZorWBNodeFamilies[] = {
#define ZORWB_TYPE_FAMILY(number, member, family, children, parseName, printName, graphLabel, \
                          function)                                                           \
    ZorWBNodeFamily::family,
    ZORWB_EXPRESSION_TYPES(ZORWB_TYPE_FAMILY)
#undef ZORWB_TYPE_FAMILY
};
static_assert(sizeof ZorWBNodeFamilies / sizeof ZorWBNodeFamilies[0] == ZorWBNbOfExpressionTypes,
              "one family per type");

// Whether nodes of the type fold their children from the left (Sum,
// Product, Min, Max: the algebraic family).
inline bool ZorWBIsFoldType(ZorWBExpressionType type) {
    unsigned int i = static_cast<unsigned int>(type);
    return i < ZorWBNbOfExpressionTypes && ZorWBNodeFamilies[i] == ZorWBNodeFamily::Algebraic;
}

// What the table says of one type.
struct ZorWBExpressionTypeInfo {
    ZorWBExpressionType type;
    const char* name;  // the member name: "Sum", "IfThenElse", ...
    ZorWBNodeFamily family;
    int children;            // -1 for the n-ary types
    const char* parseName;   // replay text, oldest spelling
    const char* printName;   // replay symbol, empty where there is none
    const char* graphLabel;  // graph dump label of an operator
    const char* function;    // equation language function name, or empty
};

// The table row of a type, or null for a number outside 0..47.
ZORWBX_API const ZorWBExpressionTypeInfo* ZorWBGetExpressionTypeInfo(int type);
inline const ZorWBExpressionTypeInfo* ZorWBGetExpressionTypeInfo(ZorWBExpressionType type) {
    return ZorWBGetExpressionTypeInfo(static_cast<int>(type));
}

// Whether nodes of the type give truth values: Not, the logic operators and
// the comparisons.
inline bool ZorWBIsLogicalType(ZorWBExpressionType type) {
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
    return info &&
           (info->family == ZorWBNodeFamily::Not || info->family == ZorWBNodeFamily::Boolean);
}
// The member name of a type, "ERROR" for any other number.
ZORWBX_API const char* ZorWBExpressionTypeName(int type);
inline const char* ZorWBExpressionTypeName(ZorWBExpressionType type) {
    return ZorWBExpressionTypeName(static_cast<int>(type));
}
// The type whose equation language function is called name ("Int" also
// names Integrate); false when there is none.
ZORWBX_API bool ZorWBFindFunctionType(const char* name, ZorWBExpressionType& type);

#endif
