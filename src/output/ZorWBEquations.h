#ifndef ZORWB_EQUATIONS_H
#define ZORWB_EQUATIONS_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpressionType.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelExpressionTerm.h"
#include "qel/ZorQelOperator.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBFraction.h"
#include "values/ZorWBValue.h"

class ZorWBEquation;
class ZorWBExpression;
class ZorWBFactory;

// Writes the equation system of a factory as replay sections, and reads it
// back into another factory.
//
// Replay sections (each body line ends with ";" and a line end; the header
// of each section is its number of entries):
//   "#!VARIABLES n"  per variable in index order: the kind name of its value
//                    ("Integer", "RealInterval", ...), a blank, its name,
//                    and " = fixed" for a fixed variable.
//   "#!EQUATIONS n"  per equation in list order: "eq", the id, the relation
//                    symbol ("=", "!=", "<=", "<", ">=", ">", "<minimize>",
//                    "<maximize>", nothing when unset), a blank and the
//                    root's term.
//   "#!VALUES n"     per variable: its name, " = " and its value text
//                    (ValueToString at the writer's version).
//   "#!SIMPLIFY n"   input part only: the names of the equations to
//                    simplify; n counts the listed ids, also those that name
//                    no equation and have no line.
// A section is left out when it has nothing to count.
//
// Terms (CreateTerm) are written in the functional form Name(child, ...):
//   variable              its name
//   constant              its value text, with reals always showing a point
//                         or an exponent ("2.0") so that they read back as
//                         reals; Pi, DTOR and RTOD by name, a fraction as
//                         Frac(numerator, denominator[, power]), and the
//                         predefined PiByTwo, Indefinite and Invalid by these
//                         names
//   Step                  Step(x, p1, p2, p3, p4) with its four parameters
//   black-box call        Bbx(name, argument, ...) with the black box's name
//   any other operator    its parse name over its children's terms
// A shared node is written once per use. Reading maps a leaf to the variable
// of that name first, then to a constant; so a constant whose text is the
// name of a variable of the factory ("inf", "True", "Pi") is written in
// brackets, "(inf)" (again in brackets while that too is a name), and
// reading a leaf that is no variable and no constant text drops its outer
// brackets. A black box is looked up by name in the factory and, when
// missing, declared as an internal ZorWBBBx of that name (which evaluates
// to NaN until the host replaces it).
//
// Names that contain ";", line ends, commas or brackets, or that begin or
// end with a blank, do not read back.
class ZORWBX_API ZorWBEquations : public ZorQelOperator {
  public:
    ZorWBEquations(ZorWBFactory& factory, ZorQelStorage::ReplayPart part, int version);
    ~ZorWBEquations() override;

    // Adds "#!VARIABLES", "#!EQUATIONS", "#!VALUES" and, for the input part,
    // "#!SIMPLIFY" to the stream's storage; functional is the form of the
    // equation terms (the reader needs the functional form).
    void Write(ZorQelStream& stream, bool functional) const;
    void WriteVariables(ZorQelStream& stream) const;
    void WriteEquations(ZorQelStream& stream, bool functional) const;
    void WriteValues(ZorQelStream& stream) const;
    void WriteEquationsToSimplify(ZorQelStream& stream) const;
    // The environment is not part of the replay: writes nothing.
    void WriteEnvironment(ZorQelStream& stream) const;
    // Adds "#!EQUATIONNAMES n" with one line "eq" id " = " name per equation
    // whose name is not its default "eq" + id; nothing when there is none.
    // Write does not call it: a caller that wants custom names to survive a
    // replay adds it after Write.
    void WriteEquationNames(ZorQelStream& stream) const;

    // Rebuilds the system written in one part of a storage into this
    // writer's factory, which should be fresh: variables with their names,
    // fixed state and values, equations with their types, ids, roots and
    // (from "#!EQUATIONNAMES") names, and the list of equations to simplify
    // (listed ids that named no equation come back as -1, so the count is
    // kept). Returns false on text that does not read; the factory then
    // keeps what was built before the error.
    //
    // Ids are restored by using up the ids in between (adding and removing
    // an equation), so they must grow along the list, start at or above the
    // factory's next id, and skip at most MaxSkippedIds in all.
    bool Read(const ZorQelStorage& storage, ZorQelStorage::ReplayPart part);
    static constexpr int MaxSkippedIds = 1 << 20;

    void SetListEqToSimplify(const ZorQelIntArray& ids) { _listEqToSimplify = ids; }
    void GetListEqToSimplify(ZorQelIntArray& ids) const { ids = _listEqToSimplify; }

    ZorWBFactory& GetFactory() const { return *_factory; }
    ZorQelStorage::ReplayPart GetReplayPart() const { return _part; }
    int GetVersion() const { return _version; }

    // ------------------------------------------------------------ name tables
    // The word of a type in replay text: as stored below version 1 ("Sum",
    // "aSin"), in lower case from version 1 on except "Int". Types 0 to 48
    // (48 is "Frac", the name of fractions); "None" for any other number.
    ZorQelString ExprTypeToStringParse(ZorWBExpressionType type) const {
        return ExprTypeToStringParse(type, _version);
    }
    static ZorQelString ExprTypeToStringParse(ZorWBExpressionType type, int version);
    // The symbol of a type ("+", " && "); a type without a symbol answers
    // with its parse name; "None" for an unknown type.
    ZorQelString ExprTypeToStringPrint(ZorWBExpressionType type) const {
        return ExprTypeToStringPrint(type, _version);
    }
    static ZorQelString ExprTypeToStringPrint(ZorWBExpressionType type, int version);
    // The first type whose parse name at this version is text; None when
    // there is none.
    ZorWBExpressionType StringParseToExprType(const ZorQelString& text) const {
        return StringParseToExprType(text, _version);
    }
    static ZorWBExpressionType StringParseToExprType(const ZorQelString& text, int version);

    // "Undefined", "Integer", "Real", "IntegerInterval", "RealInterval",
    // "IntegerEnum", "RealEnum", "Boolean", and "Fraction" for kind 8 (the
    // kind of a variable holding a fraction); empty for any other number.
    static ZorQelString ValueTypeToString(ZorWBValueType type);
    // "False" or "True".
    static ZorQelString BooleanToString(bool value);
    // "=", "!=", ... for the equation types 1 to 8; empty otherwise.
    static ZorQelString EquationTypeToString(ZorWBEquationType type);

    // The text of a value at this writer's version (see the static form).
    ZorQelString ValueToString(const ZorWBValue& value) const {
        return ValueToString(value, _version);
    }
    // Below version 1: "any"; integers and reals (17 significant digits)
    // with a negative one in parentheses, "(-3)"; fractions by
    // FractionToName; intervals "[low, high]"; enumerations "{a, b}" with
    // their stored entries (nothing for any and nil); booleans "False", and
    // "True" for every other state. From version 1 on, the equation printer's
    // text (ZorWBEquationPrinter::PrintValue): -3, 2.0, (1/2*Pi), [1, 2],
    // {1 .. 9}, {any}, true, unknown, undefined, ... which keeps
    // enumeration representations and the four Boolean states.
    static ZorQelString ValueToString(const ZorWBValue& value, int version);
    // "Pi", "DTOR", "RTOD" for 1/1·Pi, 1/180·Pi and 180/1·Pi^-1; otherwise
    // Frac(numerator, denominator) with ", power" before the ")" when the
    // power is not 0 (the name as ExprTypeToStringPrint gives it for 48).
    ZorQelString FractionToName(const ZorWBFraction& fraction) const {
        return FractionToName(fraction, _version);
    }
    static ZorQelString FractionToName(const ZorWBFraction& fraction, int version);

    // ------------------------------------------------------------ terms
    // A new term for e (see the class notes), owned by the caller; null for
    // a null e, a node that has no term, or an e whose shared nodes unfold
    // to a term of more than 16777216 nodes (ZorWBGraphWalk::MaxUnfoldedSize;
    // the equation line of such a root stays open, so the section does not
    // read back). With functional false the
    // operators carry their symbols for the infix form.
    ZorQelExpressionTerm* CreateTerm(const ZorWBExpression* e, bool functional) const;
    // Builds the nodes of a term in the factory; null when the term does not
    // read (unknown name, wrong number of operands, bad constant text).
    ZorWBExpression* CreateExpression(const ZorQelExpressionTerm* term);

    // ------------------------------------------------------------ operator
    // The writer has no work of its own: writing happens through Write.
    int RunOperator() override { return 0; }
    ZorQelString GetOperatorName() const override { return "ZorWBEquations"; }
    ZorQelString GetOperatorShortName() const override { return "EQS"; }
    OperatorInfo& GetOperatorInfo() override;

    // The number of the fraction name in the type tables (one past the node
    // types).
    static constexpr int FractionTypeNumber = 48;

  private:
    // The names of the factory's variables, gathered when first needed.
    class VariableNames;

    ZorQelExpressionTerm* CreateTerm(const ZorWBExpression* e, bool functional,
                                     VariableNames& names) const;
    ZorQelString EquationLine(ZorWBEquation* equation, bool functional, VariableNames& names) const;

    ZorQelIntArray _listEqToSimplify;
    ZorWBFactory* _factory;
    ZorQelStorage::ReplayPart _part;
    int _version;
};

#endif
