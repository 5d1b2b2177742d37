#ifndef WBX_EVALUATION_H
#define WBX_EVALUATION_H

#include <string>
#include <vector>

#include "WbxCommand.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"

// What wbx eval, diff, html and edit compute on a system and show.

// Gives the variables of the factory from index first on the whole real
// line: a variable no one gave a value ranges over everything.
void WbxReleaseVariables(ZorWBFactory& factory, int first = 0);

// Applies one setting "NAME=VALUE" (blanks around the name and the value
// allowed; VALUE as WbxReadValue reads it). WbxExit::Usage for a setting
// without "=", an unknown variable or a bad value, with one message naming
// where the setting came from (source: "--set", "set"):
//   wbx: SOURCE needs NAME=VALUE, not 'SETTING'
//   wbx: unknown variable 'NAME' in SOURCE
//   wbx: bad value 'VALUE' for NAME (an integer, a real, [low, high], ...)
int WbxApplySetting(WbxContext& context, ZorWBFactory& factory, const std::string& setting,
                    const char* source);

// The NAME of a setting "NAME=VALUE", without blanks around it.
std::string WbxSettingName(const std::string& setting);

// Releases every variable, then applies the settings of --set in order.
int WbxAssignVariables(WbxContext& context, ZorWBFactory& factory,
                       const std::vector<std::string>& settings);

// "=", "!=", "<=", "<", ">=", ">", "minimize", "maximize", or "none".
const char* WbxRelationName(ZorWBEquationType type);

// What the evaluation of one equation gives.
struct WbxEquationResult {
    ZorWBValue value;    // of the root
    bool relation;       // whether the type is a relation (=, <=, ...)
    ZorWBBoolean holds;  // four-state, for a relation: value REL 0
    std::string valueText;
    std::string holdsText;   // "true", "false", "unknown" or "empty"
    unsigned int errorWord;  // what computing the root's nodes reported
};

// Evaluates the root of an equation (GetValue) and whether its relation
// holds. The error word gathers the error reported by each node computed.
WbxEquationResult WbxEvaluate(const ZorWBEquation& equation);

// The table line "LABEL: VALUE REL 0 -> VERDICT", "LABEL: VALUE" without
// relation, "LABEL: VALUE (minimize)" for an extremum.
std::string WbxResultLine(const std::string& label, ZorWBEquationType type,
                          const WbxEquationResult& result);

// Writes the derivative of root with respect to variable as a statement and
// a comment naming it, "TEXT; /* d LABEL / d NAME */", or
// "/* d LABEL / d NAME: none */" when it has none (false then).
bool WbxWriteDerivative(WbxContext& context, ZorWBFactory& factory, ZorWBExpression* root,
                        ZorWBVariable* variable, const std::string& label);

#endif
