// wbx html FILE [--set NAME=VALUE]... [--plot NAME=LOW:HIGH]... -o OUT.html:
// one self-contained page (ZorWBHtmlReport) with the system typeset in
// MathML, the values of --set, the table of wbx eval (each equation's
// value and whether its relation holds), and for each --plot an SVG plot of
// every equation root that depends on NAME against it over [LOW, HIGH], the
// other variables at their values (ZorWBPlotSampler, ZorWBSvgPlot; a value
// that is an interval or an enumeration counts as the middle of its hull,
// as Eval() reads it). Values are in base units, as for wbx eval; variables
// not set range over the whole real line, so a root that also depends on
// one is not plotted: a note says which variables it lacks.
//
// Exit status: 0 when the page is written; 2 for a bad command line, a file
// that cannot be read or has diagnostics, an unknown variable, a bad value
// or range, or a page that cannot be written.

#include <cmath>
#include <fstream>
#include <set>

#include "WbxCommand.h"
#include "WbxEvaluation.h"
#include "WbxModelFile.h"
#include "WbxValueText.h"
#include "output/ZorWBEquationPrinter.h"
#include "output/ZorWBHtmlReport.h"
#include "output/ZorWBPlotSampler.h"
#include "output/ZorWBSvgPlot.h"

namespace {

struct Plot {
    std::string name;
    double low;
    double high;
};

struct Options {
    std::string path;
    std::string out;
    std::vector<std::string> settings;
    std::vector<Plot> plots;
};

bool ReadBound(const std::string& text, double& bound) {
    ZorWBValue value;
    if (!WbxReadValue(text, value)) return false;
    if (value.GetType() != ZorWBIntegerType && value.GetType() != ZorWBRealType) return false;
    bound = value.GetAsReal();
    return std::isfinite(bound);
}

// NAME=LOW:HIGH with LOW < HIGH.
bool ReadPlot(const std::string& text, Plot& plot) {
    std::size_t equals = text.find('='), colon = text.find(':', equals);
    if (equals == std::string::npos || colon == std::string::npos) return false;
    plot.name = text.substr(0, equals);
    return ReadBound(text.substr(equals + 1, colon - equals - 1), plot.low) &&
           ReadBound(text.substr(colon + 1), plot.high) && plot.low < plot.high;
}

int ReadOptions(WbxContext& context, Options& options) {
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool last = i + 1 == arguments.size();
        if (argument == "--set") {
            if (last) return WbxUsageError(context, "--set needs NAME=VALUE");
            options.settings.push_back(arguments[++i]);
        } else if (argument == "--plot") {
            Plot plot;
            if (last || !ReadPlot(arguments[i + 1], plot))
                return WbxUsageError(context,
                                     "--plot needs NAME=LOW:HIGH, two numbers with LOW < "
                                     "HIGH" +
                                         (last ? "" : ", not '" + arguments[i + 1] + "'"));
            options.plots.push_back(plot);
            ++i;
        } else if (argument == "-o") {
            if (last) return WbxUsageError(context, "-o needs a file name");
            options.out = arguments[++i];
        } else if (argument.rfind("-", 0) == 0 || !options.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            options.path = argument;
        }
    }
    if (options.path.empty() || options.out.empty())
        return WbxUsageError(context, "html needs FILE and -o OUT.html");
    return WbxExit::Success;
}

std::string Text(const ZorWBValue& value) {
    return ZorWBEquationPrinter::PrintValue(value).GetString();
}

void AddResults(ZorWBFactory& factory, ZorWBHtmlReport& report) {
    factory.GetEnvironment().ClearError();
    unsigned int error = 0;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        ZorWBEquation* equation = factory.GetEquation(i);
        WbxEquationResult result = WbxEvaluate(*equation);
        error |= result.errorWord;
        report.AddResult(equation->GetName(), result.valueText.c_str(),
                         WbxRelationName(equation->GetType()),
                         result.relation ? result.holdsText.c_str() : "");
    }
    report.SetErrorWord(error);
}

std::string Caption(ZorWBEquation& equation, const Plot& plot, const ZorWBPlotData& data) {
    std::string caption = std::string(equation.GetName().GetString()) + " against " + plot.name +
                          " on [" + Text(ZorWBValue(plot.low)) + ", " +
                          Text(ZorWBValue(plot.high)) + "]";
    if (data.zeros.empty()) return caption + ", no zero";
    caption += data.zeros.size() == 1 ? ", zero at " : ", zeros at ";
    for (std::size_t i = 0; i < data.zeros.size(); ++i)
        caption += (i ? ", " : "") +
                   std::string(ZorQelString().AppendDouble(data.zeros[i], 6).GetString());
    return caption;
}

// The variables of a root, but the plotted one, that were given no value.
std::string Unset(const ZorWBExpression* root, const ZorWBVariable* plotted,
                  const std::set<std::string>& given) {
    ZorQelListPZorWBVariable variables;
    root->FindPresentVariables(variables);
    std::string names;
    for (ZorWBVariable* variable : variables) {
        std::string name = variable->GetName().GetString();
        if (variable != plotted && !given.count(name)) names += (names.empty() ? "" : ", ") + name;
    }
    return names;
}

int AddPlots(WbxContext& context, ZorWBFactory& factory, const std::vector<Plot>& plots,
             const std::set<std::string>& given, ZorWBHtmlReport& report) {
    int figures = 0;
    for (const Plot& plot : plots) {
        ZorWBVariable* variable = factory.GetVariable(ZorQelString(plot.name));
        if (!variable)
            return WbxUsageError(context, "unknown variable '" + plot.name + "' in --plot");
        bool any = false;
        for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
            ZorWBEquation* equation = factory.GetEquation(i);
            if (!equation->GetRoot() || equation->GetRoot()->IsFree(variable)) continue;
            any = true;
            std::string unset = Unset(equation->GetRoot(), variable, given);
            if (!unset.empty()) {
                report.AddPlot((std::string(equation->GetName().GetString()) + " against " +
                                plot.name + " is not drawn: it also depends on " + unset +
                                ", which no --set gives a value")
                                   .c_str(),
                               "");
                continue;
            }
            ZorWBPlotData data =
                ZorWBPlotSampler::SampleRoot(equation->GetRoot(), variable, plot.low, plot.high);
            ZorQelString id = ZorQelString("plot-").AppendInt(++figures);
            report.AddPlot(Caption(*equation, plot, data).c_str(),
                           ZorWBSvgPlot::Write(data, plot.name.c_str(), equation->GetName(), id));
        }
        if (!any) report.AddPlot(("no equation depends on " + plot.name).c_str(), "");
    }
    return WbxExit::Success;
}

}  // namespace

int WbxHtmlCommand(WbxContext& context) {
    Options options;
    if (ReadOptions(context, options) != WbxExit::Success) return WbxExit::Usage;
    WbxModelFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    if (WbxAssignVariables(context, factory, options.settings) != WbxExit::Success)
        return WbxExit::Usage;
    ZorWBHtmlReport report(options.path.c_str());
    report.SetSystem(file.GetModel());
    std::set<std::string> given;
    for (const std::string& setting : options.settings) {
        std::string name = WbxSettingName(setting);
        if (!given.insert(name).second) continue;
        ZorWBVariable* variable = factory.GetVariable(ZorQelString(name));
        report.AddGivenValue(name.c_str(), Text(variable->GetExprValue()).c_str());
    }
    AddResults(factory, report);
    if (AddPlots(context, factory, options.plots, given, report) != WbxExit::Success)
        return WbxExit::Usage;
    std::ofstream page(options.out, std::ios::binary);
    page << report.Write().GetStdString();
    page.close();
    if (!page) return WbxUsageError(context, "cannot write '" + options.out + "'");
    return WbxExit::Success;
}
