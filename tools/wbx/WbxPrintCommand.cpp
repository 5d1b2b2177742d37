// wbx print FILE: the equations of a model, one a line, in the equation
// language (as ZorWBEquationPrinter writes them: units converted, each root
// the difference of its two sides). Exit status 0, or 2 for a missing or
// extra argument and for a file that cannot be read or has diagnostics.

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "output/ZorWBEquationPrinter.h"

int WbxPrintCommand(WbxContext& context) {
    if (context.arguments.size() != 1) return WbxUsageError(context, "print needs one FILE");
    WbxModelFile file;
    if (file.Load(context, context.arguments[0]) != WbxExit::Success) return WbxExit::Usage;
    context.out << ZorWBEquationPrinter::Print(file.GetFactory()).GetString();
    return WbxExit::Success;
}
