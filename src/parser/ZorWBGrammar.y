/* The grammar of the equation language. It builds a ZorWBModel through the
 * model's creation operations, appends the id of every equation it adds to
 * the caller's array, reports syntax errors to the messenger, and hands each
 * black box it declares to the caller's list (or, without a list, to the
 * model). Nodes belong to the model; identifier texts and argument lists
 * live in the arena of the parse (the scanner's), so that nothing on the
 * parser's stack needs freeing, whatever error recovery discards. */

%require "3.2"
%define api.pure full
%define api.prefix {zorwb_yy}
%define parse.error verbose
%locations

%code requires {
#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpressionType.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParserMessenger.h"
#include "qel/ZorQelArray.h"

#ifndef YY_TYPEDEF_YY_SCANNER_T
#define YY_TYPEDEF_YY_SCANNER_T
typedef void* yyscan_t;
#endif

/* The arguments of a call, as the parser gathers them (in the arena of the
 * parse). */
struct ZorWBArgumentList {
    ZorWBNode** items;
    int size;
    int capacity;
};

/* The depth of the parser's stack: a text nested deeper (brackets, unary
 * minus signs, powers, function calls, conditions) is refused with "memory
 * exhausted" instead of growing the stack further. */
#define ZORWB_PARSER_MAX_DEPTH 10000
}

%code provides {
int zorwb_yylex(ZORWB_YYSTYPE* value, ZORWB_YYLTYPE* location, yyscan_t scanner);
}

%code {
#include <climits>
#include <new>

#include "parser/ZorWBLocation.h"
#include "parser/ZorWBNode.h"
#include "parser/ZorWBScannerFault.h"
#include "values/ZorWBFraction.h"
#include "values/ZorWBValue.h"

#define YYMAXDEPTH ZORWB_PARSER_MAX_DEPTH

// The scanner's state, which holds the arena of the parse.
ZorWBScannerInput* zorwb_yyget_extra(yyscan_t scanner);

namespace {

ZorWBLocation At(const ZORWB_YYLTYPE& location) {
    return ZorWBLocation(location.first_line, location.first_column, location.last_line,
                         location.last_column);
}

ZorWBValue PiValue() {
    return ZorWBValue(ZorWBCreateFraction(1, 1, 1, 0));
}

ZorWBModelArena& ArenaOf(yyscan_t scanner) {
    return zorwb_yyget_extra(scanner)->lexemes;
}

// A new empty list in the arena of the parse, null when memory is short.
ZorWBArgumentList* NewList(yyscan_t scanner) {
    void* room = ArenaOf(scanner).Allocate(sizeof(ZorWBArgumentList));
    return room ? new (room) ZorWBArgumentList{nullptr, 0, 0} : nullptr;
}

// Appends a node, doubling the room in the arena when full; false when
// memory is short.
bool Append(yyscan_t scanner, ZorWBArgumentList* list, ZorWBNode* node) {
    if (!list) return false;
    if (list->size == list->capacity) {
        if (list->capacity > INT_MAX / 2) return false;
        int capacity = list->capacity == 0 ? 4 : 2 * list->capacity;
        void* room =
            ArenaOf(scanner).Allocate(sizeof(ZorWBNode*) * static_cast<std::size_t>(capacity));
        if (!room) return false;
        auto* items = static_cast<ZorWBNode**>(room);
        for (int i = 0; i < list->size; ++i)
            items[i] = list->items[i];
        list->items = items;
        list->capacity = capacity;
    }
    list->items[list->size++] = node;
    return true;
}

bool IsComplete(const ZorWBArgumentList* list) {
    if (!list) return false;
    for (int i = 0; i < list->size; ++i) {
        if (!list->items[i]) return false;
    }
    return true;
}

ZorWBNodeList AsNodeList(const ZorWBArgumentList& list) {
    ZorWBNodeList nodes;
    for (int i = 0; i < list.size; ++i)
        nodes.Add(list.items[i]);
    return nodes;
}

ZorWBOpNode* Operator(ZorWBModel& model, const ZORWB_YYLTYPE& location, ZorWBExpressionType type,
                      ZorWBNode* first, ZorWBNode* second,
                      ZorWBComparisonType comparison = ZorWBNoComparison) {
    if (!first || !second) return nullptr;
    ZorWBNode* children[] = {first, second};
    return model.CreateOperator(At(location), type, comparison, 2, children);
}

ZorWBOpNode* Operator(ZorWBModel& model, const ZORWB_YYLTYPE& location, ZorWBExpressionType type,
                      ZorWBNode* operand) {
    if (!operand) return nullptr;
    return model.CreateOperator(At(location), type, ZorWBNoComparison, 1, &operand);
}

// A comparison of a condition: NotEqual for !=, LessEqual with the
// comparison type of <=, <, >= or > otherwise.
ZorWBOpNode* Comparison(ZorWBModel& model, const ZORWB_YYLTYPE& location, ZorWBNode* left,
                        ZorWBEquationType relation, ZorWBNode* right) {
    switch (relation) {
        case ZorWBNotEqualZero:
            return Operator(model, location, ZorWBExpressionType::NotEqual, left, right);
        case ZorWBLessEqualZero:
            return Operator(model, location, ZorWBExpressionType::LessEqual, left, right,
                            ZorWBComparisonLessEqual);
        case ZorWBLessZero:
            return Operator(model, location, ZorWBExpressionType::LessEqual, left, right,
                            ZorWBComparisonLess);
        case ZorWBGreaterEqualZero:
            return Operator(model, location, ZorWBExpressionType::LessEqual, left, right,
                            ZorWBComparisonGreaterEqual);
        case ZorWBGreaterZero:
            return Operator(model, location, ZorWBExpressionType::LessEqual, left, right,
                            ZorWBComparisonGreater);
        default:
            return nullptr;
    }
}

void AddEquation(ZorQelIntArray& ids, ZorWBEqNode* equation) {
    if (equation) ids.Add(equation->GetId());
}

// A quantity with Pi: the number (or bracketed node) times Pi, Pi carrying
// the unit when one is written.
ZorWBNode* TimesPi(ZorWBModel& model, const ZORWB_YYLTYPE& location, ZorWBNode* factor,
                   const char* unit, const ZORWB_YYLTYPE* unitLocation) {
    ZorWBNode* pi = unit ? model.CreateConstant(At(location), PiValue(), At(*unitLocation), unit)
                         : model.CreateConstant(At(location), PiValue());
    return Operator(model, location, ZorWBExpressionType::Product, factor, pi);
}

// A call of a function the library does not know: a black-box node. A call
// equal to an earlier one (same name, equal arguments) is that call's node
// itself, shared by both uses; otherwise a new black box named after the
// function is declared.
ZorWBNode* BlackBoxCall(ZorWBModel& model, ZorQelListPZorWBBlackBox* blackBoxes,
                        const ZORWB_YYLTYPE& location, const char* name,
                        const ZorWBNodeList& arguments) {
    if (!name) return nullptr;
    if (ZorWBOpNode* known = model.GetBBxOp(name, arguments)) return known;
    ZorWBBBx* blackBox = new (std::nothrow) ZorWBBBx(ZorQelString(name));
    if (!blackBox) return nullptr;
    ZorWBOpNode* call = model.DeclareBlackBox(At(location), blackBox, arguments);
    bool handed = false;
    if (call && blackBoxes) {
        try {
            blackBoxes->Add(blackBox);
            handed = true;
        } catch (...) {
        }
    }
    if (!handed) model.AdoptBlackBox(blackBox);
    return call;
}

// (e) unit: the unit goes on the node of e. A black-box call's node may be
// shared by other uses of the call, which the unit must not reach: the unit
// goes on a call node of its own, over the same arguments.
ZorWBNode* WithUnit(ZorWBModel& model, ZorWBNode* node, const ZORWB_YYLTYPE& unitLocation,
                    const char* unit) {
    if (!node || !unit) return node;
    if (node->IsOperator() && !node->HasUnit()) {
        auto* call = static_cast<ZorWBOpNode*>(node);
        if (call->GetType() == ZorWBExpressionType::BlackBox) {
            ZorWBNodeList arguments;
            for (int i = 0; i < call->GetNbOfChildren(); ++i)
                arguments.Add(call->GetChild(i));
            node = model.DeclareBlackBox(call->GetLocation(), call->GetBlackBox(), arguments);
            if (!node) return nullptr;
        }
    }
    node->SetUnitData(At(unitLocation), unit);
    return node;
}

}  // namespace

void zorwb_yyerror(ZORWB_YYLTYPE* location, yyscan_t scanner, ZorWBModel& model,
                   ZorQelIntArray& equationIds, ZorWBParserMessenger& messenger,
                   ZorQelListPZorWBBlackBox* blackBoxes, const char* message);
}

%param {yyscan_t scanner}
%parse-param {ZorWBModel& model} {ZorQelIntArray& equationIds}
%parse-param {ZorWBParserMessenger& messenger} {ZorQelListPZorWBBlackBox* blackBoxes}

%initial-action {
    @$.first_line = 1;
    @$.first_column = 0;
    @$.last_line = 1;
    @$.last_column = 0;
}

%union {
    int integer;
    double real;
    char* text;
    ZorWBNode* node;
    ZorWBArgumentList* list;
    ZorWBExpressionType operatorType;
    ZorWBEquationType equationType;
}

%token TOKEN_END 0 "end of input"
%token <operatorType> TOKEN_BUILTIN_FUNC
%token <text> TOKEN_IDENTIFIER "identifier"
%token <integer> TOKEN_INTEGER "integer"
%token <real> TOKEN_REAL "real"
%token TOKEN_ASSIGN "="
%token TOKEN_LT
%token TOKEN_LE
%token TOKEN_NE "!="
%token TOKEN_NOT "!"
%token TOKEN_EQ "=="
%token TOKEN_GT
%token TOKEN_GE
%token TOKEN_LEFT "left bracket"
%token TOKEN_RIGHT "right bracket"
%token TOKEN_EMPTYPAREN
%token TOKEN_PLUS "+"
%token TOKEN_MINUS "-"
%token TOKEN_TIMES "x"
%token TOKEN_DIVIDE "/"
%token TOKEN_COMMA
%token TOKEN_SEMICOLON "semi-colon"
%token TOKEN_HAT
%token TOKEN_AND
%token TOKEN_OR
%token TOKEN_IF
%token TOKEN_THEN
%token TOKEN_ELSE
%token TOKEN_PI "Pi"
%token UNARY_MINUS

%left "+" "-"
%left "x" "/"
%precedence UNARY_MINUS
%right TOKEN_HAT

%type <node> expression conditions condition
%type <equationType> equation_type inequality_type
%type <operatorType> boolean_relation
%type <list> function_args.opt function_args

%%

model:
    equations.opt
    ;

equations.opt:
    %empty
  | equations.opt equation
    ;

equation:
    expression TOKEN_SEMICOLON
        { if ($1) AddEquation(equationIds, model.AddEquation($1)); }
  | expression equation_type expression TOKEN_SEMICOLON
        { AddEquation(equationIds, model.AddEquation(At(@$), $1, $2, $3)); }
  | TOKEN_IF "left bracket" conditions "right bracket" TOKEN_THEN
    "left bracket" expression equation_type expression "right bracket" TOKEN_ELSE
    "left bracket" expression equation_type expression "right bracket" TOKEN_SEMICOLON
        {
            if ($3 && $7 && $9 && $13 && $15 && $8 == $14 && $7->IsEqual($13)) {
                ZorWBNode* children[] = {$3, $9, $15};
                ZorWBNode* choice = model.CreateOperator(At(@$), ZorWBExpressionType::IfThenElse,
                                                         ZorWBNoComparison, 3, children);
                AddEquation(equationIds, model.AddEquation(At(@$), $7, $8, choice));
            }
        }
  | error TOKEN_SEMICOLON
        /* Reporting resumes at once, so that an error in the very next
           statement is reported too. */
        { yyerrok; }
    ;

equation_type:
    "="                 { $$ = ZorWBEqualZero; }
  | inequality_type     { $$ = $1; }
    ;

inequality_type:
    TOKEN_LT            { $$ = ZorWBLessZero; }
  | TOKEN_GT            { $$ = ZorWBGreaterZero; }
  | TOKEN_LE            { $$ = ZorWBLessEqualZero; }
  | TOKEN_GE            { $$ = ZorWBGreaterEqualZero; }
  | "!="                { $$ = ZorWBNotEqualZero; }
    ;

expression:
    "integer" "Pi" "identifier"
        {
            $$ = TimesPi(model, @$, model.CreateConstant(At(@$), ZorWBValue($1)), $3, &@3);
        }
  | "Pi" "identifier"
        {
            $$ = $2 ? model.CreateConstant(At(@$), PiValue(), At(@2), $2) : nullptr;
        }
  | "integer" "identifier"
        {
            $$ = $2 ? model.CreateConstant(At(@$), ZorWBValue($1), At(@2), $2) : nullptr;
        }
  | "real" "identifier"
        {
            $$ = $2 ? model.CreateConstant(At(@$), ZorWBValue($1), At(@2), $2) : nullptr;
        }
  | "integer" "Pi"
        { $$ = TimesPi(model, @$, model.CreateConstant(At(@$), ZorWBValue($1)), nullptr, nullptr); }
  | "Pi"
        { $$ = model.CreateConstant(At(@$), PiValue()); }
  | "integer"
        { $$ = model.CreateConstant(At(@$), ZorWBValue($1)); }
  | "real"
        { $$ = model.CreateConstant(At(@$), ZorWBValue($1)); }
  | "identifier"
        {
            $$ = nullptr;
            if ($1) {
                ZorQelString name($1);
                $$ = model.GetVariable(name, At(@1));
                if (!$$) $$ = model.CreateVariable(At(@1), name);
            }
        }
  | "left bracket" expression "right bracket" "identifier"
        {
            $$ = WithUnit(model, $2, @4, $4);
        }
  | "left bracket" expression "right bracket" "Pi" "identifier"
        {
            $$ = $5 ? TimesPi(model, @$, $2, $5, &@5) : nullptr;
        }
  | "left bracket" expression "right bracket" "Pi"
        { $$ = TimesPi(model, @$, $2, nullptr, nullptr); }
  | "left bracket" expression "right bracket"
        { $$ = $2; }
  | expression "+" expression
        { $$ = Operator(model, @$, ZorWBExpressionType::Sum, $1, $3); }
  | expression "-" expression
        { $$ = Operator(model, @$, ZorWBExpressionType::Minus, $1, $3); }
  | "-" expression %prec UNARY_MINUS
        { $$ = Operator(model, @$, ZorWBExpressionType::UnaryMinus, $2); }
  | expression "x" expression
        { $$ = Operator(model, @$, ZorWBExpressionType::Product, $1, $3); }
  | expression "/" expression
        { $$ = Operator(model, @$, ZorWBExpressionType::Quotient, $1, $3); }
  | expression TOKEN_HAT expression
        { $$ = Operator(model, @$, ZorWBExpressionType::Power, $1, $3); }
  | TOKEN_IF "left bracket" conditions "right bracket" TOKEN_THEN "left bracket" expression
    "right bracket" TOKEN_ELSE "left bracket" expression "right bracket"
        {
            $$ = nullptr;
            if ($3 && $7 && $11) {
                ZorWBNode* children[] = {$3, $7, $11};
                $$ = model.CreateOperator(At(@$), ZorWBExpressionType::IfThenElse,
                                          ZorWBNoComparison, 3, children);
            }
        }
  | TOKEN_BUILTIN_FUNC "left bracket" function_args.opt "right bracket"
        {
            $$ = nullptr;
            if (IsComplete($3) && $3->size > 0)
                $$ = model.CreateOperator(At(@$), $1, ZorWBNoComparison, $3->size, $3->items);
        }
  | "identifier" "left bracket" function_args.opt "right bracket"
        {
            $$ = IsComplete($3) ? BlackBoxCall(model, blackBoxes, @$, $1, AsNodeList(*$3))
                                : nullptr;
        }
  | "identifier" TOKEN_EMPTYPAREN
        { $$ = BlackBoxCall(model, blackBoxes, @$, $1, ZorWBNodeList()); }
    ;

conditions:
    condition
        { $$ = $1; }
  | conditions boolean_relation condition
        { $$ = Operator(model, @$, $2, $1, $3); }
    ;

condition:
    expression "==" expression
        { $$ = Operator(model, @$, ZorWBExpressionType::Equal, $1, $3); }
  | expression inequality_type expression
        { $$ = Comparison(model, @$, $1, $2, $3); }
  | "left bracket" expression "==" expression "right bracket"
        { $$ = Operator(model, @$, ZorWBExpressionType::Equal, $2, $4); }
  | "left bracket" expression inequality_type expression "right bracket"
        { $$ = Comparison(model, @$, $2, $3, $4); }
  | "!" "left bracket" expression "==" expression "right bracket"
        /* The negation of an equality is not kept: the node is the equality. */
        { $$ = Operator(model, @$, ZorWBExpressionType::Equal, $3, $5); }
  | "!" "left bracket" expression inequality_type expression "right bracket"
        { $$ = Operator(model, @$, ZorWBExpressionType::Not, Comparison(model, @$, $3, $4, $5)); }
    ;

boolean_relation:
    TOKEN_AND           { $$ = ZorWBExpressionType::And; }
  | TOKEN_OR            { $$ = ZorWBExpressionType::Or; }
    ;

function_args.opt:
    %empty
        { $$ = NewList(scanner); }
  | function_args
        { $$ = $1; }
    ;

function_args:
    expression
        {
            $$ = NewList(scanner);
            if (!Append(scanner, $$, $1)) $$ = nullptr;
        }
  | function_args TOKEN_COMMA expression
        {
            $$ = $1;
            if (!Append(scanner, $$, $3)) $$ = nullptr;
        }
    ;

%%

void zorwb_yyerror(ZORWB_YYLTYPE* location, yyscan_t, ZorWBModel&, ZorQelIntArray&,
                   ZorWBParserMessenger& messenger, ZorQelListPZorWBBlackBox*,
                   const char* message) {
    if (location) {
        ZorWBLocation where = At(*location);
        messenger.ReportError(&where, message);
    } else {
        messenger.ReportError(nullptr, message);
    }
}
