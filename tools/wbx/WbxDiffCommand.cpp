// wbx diff FILE --wrt NAME: the derivative of every equation root with
// respect to the variable NAME, one a line, each as a statement of the
// equation language followed by a comment naming it:
//   2 * x; /* d eq0 / d x */
// so that the output is itself a model. A root without a derivative (a
// black-box call without derivative, for instance) gets the line
// "/* d eq0 / d x: none */" and makes the exit status 1. Exit status 2 for a
// missing argument, an unknown variable or a file that cannot be read or has
// diagnostics.

#include "WbxCommand.h"
#include "WbxEvaluation.h"
#include "WbxModelFile.h"
#include "expressions/ZorWBEquation.h"

int WbxDiffCommand(WbxContext& context) {
    WbxVariableCommandLine line;
    if (WbxReadVariableCommandLine(context, "diff", {}, line) != WbxExit::Success)
        return WbxExit::Usage;
    WbxModelFile file;
    ZorWBVariable* variable = nullptr;
    if (WbxLoadVariable(context, line, file, variable) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    int status = WbxExit::Success;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        ZorWBEquation* equation = factory.GetEquation(i);
        if (!WbxWriteDerivative(context, factory, equation->GetRoot(), variable,
                                equation->GetName().GetString()))
            status = WbxExit::Failure;
    }
    return status;
}
