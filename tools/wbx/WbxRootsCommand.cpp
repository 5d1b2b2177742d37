// wbx roots FILE --wrt NAME: the real roots of every equation root that is
// a polynomial in NAME with exact coefficients (see ZorWBPolynomialTools:
// integers, fractions, reals read as the binary fractions they hold, no
// other variable), one line per real root in increasing order:
//   eq0: [741455/524288, 1482911/1048576] 1.4142135623730951
// the isolating interval (exact rationals: the root is the only root of the
// polynomial inside it, or the point itself when both ends are equal),
// then the root rounded to a double, 17 significant digits, and
// " (multiplicity 3)" for a multiple root. "eq0: no real root" when there
// is none. A root that is not such a polynomial, or is the zero polynomial,
// or passes the polynomial size limits, gets a comment line
// ("/* eq0: not a polynomial in x */", "/* eq0: zero polynomial */", or the
// limit's message) and makes the exit status 1. Exit status 2 for a bad
// command line, an unknown variable or a file that cannot be read or has
// diagnostics.

#include <cmath>

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBPolynomialTools.h"
#include "output/ZorWBEquationPrinter.h"
#include "polynomial/ZorWBRealRoots.h"

namespace {

// The root narrowed until its midpoint is the nearest double or nearly.
double Approximation(const ZorWBPolynomial& p, ZorWBRealRoot root) {
    double scale = std::fmax(std::fabs(root.GetApproximation()), std::ldexp(1.0, -64));
    ZorWBRational width;
    ZorWBRational::FromReal(std::ldexp(scale, -60), width);
    ZorWBRealRoots::Refine(p, width, root);
    return root.GetApproximation();
}

// The lines of one polynomial; false when it has none to give.
bool RootLines(const ZorWBPolynomial& p, const std::string& name, std::string& lines) {
    std::vector<ZorWBRealRoot> roots;
    ZorWBPolynomialStatus status = ZorWBRealRoots::Isolate(p, roots);
    if (status != ZorWBPolynomialStatus::Success) {
        lines = "/* " + name + ": " + ZorWBPolynomialStatusText(status) + " */\n";
        return false;
    }
    if (roots.empty()) lines = name + ": no real root\n";
    for (const ZorWBRealRoot& root : roots) {
        lines += name + ": [" + root.low.ToText() + ", " + root.high.ToText() + "] " +
                 ZorWBEquationPrinter::PrintValue(ZorWBValue(Approximation(p, root))).GetString();
        if (root.multiplicity > 1)
            lines += " (multiplicity " + std::to_string(root.multiplicity) + ")";
        lines += "\n";
    }
    return true;
}

}  // namespace

int WbxRootsCommand(WbxContext& context) {
    WbxVariableCommandLine line;
    if (WbxReadVariableCommandLine(context, "roots", {}, line) != WbxExit::Success)
        return WbxExit::Usage;
    WbxModelFile file;
    ZorWBVariable* variable = nullptr;
    if (WbxLoadVariable(context, line, file, variable) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    int status = WbxExit::Success;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        ZorWBEquation* equation = factory.GetEquation(i);
        std::string name = equation->GetName().GetString();
        ZorWBPolynomial p;
        std::string lines;
        bool found = false;
        if (!ZorWBPolynomialTools::ToPolynomial(equation->GetRoot(), variable, p))
            lines = "/* " + name + ": not a polynomial in " + line.name + " */\n";
        else if (p.IsZero())
            lines = "/* " + name + ": zero polynomial */\n";
        else
            found = RootLines(p, name, lines);
        context.out << lines;
        if (!found) status = WbxExit::Failure;
    }
    return status;
}
