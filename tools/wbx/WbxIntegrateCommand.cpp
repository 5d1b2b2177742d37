// wbx integrate FILE --wrt NAME [--from A --to B]: the antiderivative of
// every equation root with respect to the variable NAME, one a line, as
// wbx diff writes derivatives:
//   atan(x); /* int eq0 d x */
// With --from A --to B (numbers as --set reads them, in base units) the
// definite integral from A to B instead: its value when no other variable
// remains in it, its expression otherwise:
//   1.1071487177940904; /* int eq0 d x from 0 to 2 */
// A root without antiderivative in closed form, or whose definite integral
// diverges (a rational integrand with a pole between the bounds), gets the
// line "/* int eq0 d x: none */" and makes the exit status 1. Exit status
// 2 for a bad command line (one bound without the other, a bound that is
// not a number), an unknown variable or a file that cannot be read or has
// diagnostics.

#include <cmath>

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "WbxValueText.h"
#include "expressions/ZorWBEquation.h"
#include "output/ZorWBEquationPrinter.h"

namespace {

// A bound: an integer or a finite real.
bool ReadBound(const std::string& text, ZorWBValue& bound) {
    if (!WbxReadValue(text, bound)) return false;
    return bound.IsAKindOf(ZorWBIntegerType) ||
           (bound.IsAKindOf(ZorWBRealType) && std::isfinite(bound.GetAsReal()));
}

// The text of a definite integral: its value when it is a number.
std::string DefiniteText(ZorWBExpression* integral) {
    if (integral->IsConstant())
        return ZorWBEquationPrinter::PrintValue(integral->GetValue()).GetString();
    return ZorWBEquationPrinter::Print(integral).GetString();
}

}  // namespace

int WbxIntegrateCommand(WbxContext& context) {
    WbxVariableCommandLine line;
    if (WbxReadVariableCommandLine(context, "integrate", {"--from", "--to"}, line) !=
        WbxExit::Success)
        return WbxExit::Usage;
    bool definite = !line.values.empty();
    ZorWBValue low, high;
    if (definite) {
        if (line.values.size() != 2) return WbxUsageError(context, "--from and --to go together");
        for (auto& [option, bound] : {std::pair<const char*, ZorWBValue*>{"--from", &low},
                                      std::pair<const char*, ZorWBValue*>{"--to", &high}}) {
            const std::string& text = line.values[option];
            if (!ReadBound(text, *bound)) return WbxUsageError(context, "bad bound '" + text + "'");
        }
    }
    WbxModelFile file;
    ZorWBVariable* variable = nullptr;
    if (WbxLoadVariable(context, line, file, variable) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    int status = WbxExit::Success;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        ZorWBEquation* equation = factory.GetEquation(i);
        std::string label =
            std::string("int ") + equation->GetName().GetString() + " d " + line.name;
        bool done = false;
        ZorWBExpression* result = nullptr;
        if (definite) {
            label += " from " + line.values["--from"] + " to " + line.values["--to"];
            result = factory.CreateAntiDerivative(equation->GetRoot(), variable, low, high, done);
        } else {
            result = factory.CreateAntiDerivative(equation->GetRoot(), variable, done);
        }
        if (done && result) {
            std::string text =
                definite ? DefiniteText(result) : ZorWBEquationPrinter::Print(result).GetString();
            context.out << text << "; /* " << label << " */\n";
        } else {
            context.out << "/* " << label << ": none */\n";
            status = WbxExit::Failure;
        }
    }
    return status;
}
