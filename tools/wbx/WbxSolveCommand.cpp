// wbx solve FILE [--set NAME=VALUE]... [--eps E] [--timeout SECONDS]
//                [--max-cells N] [--max-solutions N] [--threads N] [--json]
// finds boxes that hold every solution of the relations of a model, with
// the certified branch-and-prune solver (ZorWBSolver).
//
// FILE is a model in the equation language or a problem in the interval
// benchmark format (a text whose first word is "Variables" or "Constants").
// The initial box: the bounds of single variables among the relations
// (x >= a; x <= b;), the domains of the benchmark format, and --set NAME=
// VALUE (a number, [low, high], {a, b, c}, true or false, in base units),
// which replaces a variable's domain; other variables range over the whole
// real line.
//
// Text output: one line per box, "solution  x = [low, high]  y = [...]"
// (types solution, boundary, unknown, pending; bounds in the shortest
// decimals that read back to the same doubles, infinite ends as -inf and
// inf), then a summary line. With --json, one JSON document:
//   {"status": "complete" | "infeasible" | "incomplete",
//    "boxes": [{"type": "solution", "box": {"x": [low, high], ...}}, ...],
//    "cells": N, "seconds": S}
// (infinite ends as the real infinity markers ±3.4028234663852886e+39).
//
// While the search runs and standard error is a terminal, a progress line
// there (cells, boxes by type, seconds) is rewritten in place.
//
// Limits: --timeout 60 seconds unless given (0 for none), --max-cells and
// --max-solutions none unless given; --eps 1e-8; --threads 1 (0 for one per
// hardware thread).
//
// Exit status: 0 when the search completed with at least one box; 1 when it
// proved that no solution exists; 3 when a limit stopped it; 2 for a bad
// command line, a file that cannot be read or has diagnostics, a model
// without relations, or a system the solver cannot take (black boxes).

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "WbxValueText.h"
#include "expressions/ZorWBEquation.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/ZorWBBenchmarkReader.h"
#include "parser/ZorWBParserMessenger.h"
#include "solver/ZorWBSolver.h"

namespace {

struct Options {
    std::string path;
    std::vector<std::string> settings;
    ZorWBSolverOptions solver;
    bool json = false;
};

// A positive real, or any non-negative one with allowZero.
bool ReadReal(const std::string& text, double& value, bool allowZero) {
    const char* end = text.c_str() + text.size();
    std::from_chars_result result = std::from_chars(text.c_str(), end, value);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value) &&
           (value > 0.0 || (allowZero && value == 0.0));
}

template <class Integer>
bool ReadCount(const std::string& text, Integer& value, Integer low, Integer high) {
    const char* end = text.c_str() + text.size();
    std::from_chars_result result = std::from_chars(text.c_str(), end, value);
    return result.ec == std::errc() && result.ptr == end && value >= low && value <= high;
}

int ReadOptions(WbxContext& context, Options& options) {
    options.solver.timeout = 60.0;
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool valued = argument == "--set" || argument == "--eps" || argument == "--timeout" ||
                            argument == "--max-cells" || argument == "--max-solutions" ||
                            argument == "--threads";
        if (valued && i + 1 == arguments.size())
            return WbxUsageError(context, argument + " needs a value");
        const std::string value = valued ? arguments[i + 1] : "";
        bool good = true;
        if (argument == "--json") {
            options.json = true;
        } else if (argument == "--set") {
            options.settings.push_back(value);
        } else if (argument == "--eps") {
            good = ReadReal(value, options.solver.eps, false);
        } else if (argument == "--timeout") {
            good = ReadReal(value, options.solver.timeout, true);
        } else if (argument == "--max-cells") {
            good = ReadCount(value, options.solver.maxCells, 0LL, 1LL << 53);
        } else if (argument == "--max-solutions") {
            good = ReadCount(value, options.solver.maxSolutions, 0, 1 << 30);
        } else if (argument == "--threads") {
            good = ReadCount(value, options.solver.threads, 0, 64);
        } else if (argument.rfind("--", 0) == 0 || !options.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            options.path = argument;
        }
        if (!good) return WbxUsageError(context, "bad value '" + value + "' for " + argument);
        if (valued) ++i;
    }
    if (options.path.empty()) return WbxUsageError(context, "solve needs a FILE");
    return WbxExit::Success;
}

// A model or a benchmark problem, read into a factory.
class ProblemFile {
  public:
    int Load(WbxContext& context, const std::string& path) {
        std::string text;
        if (!ReadText(path, text, context)) return WbxExit::Usage;
        if (!ZorWBBenchmarkReader::IsBenchmarkText(text.c_str())) {
            _model = true;
            return _file.Load(context, path) == WbxExit::Success ? WbxExit::Success
                                                                 : WbxExit::Usage;
        }
        ZorWBParserMessenger messenger;
        if (ZorWBBenchmarkReader::Read(text.c_str(), _benchmark, messenger) == 0)
            return WbxExit::Success;
        WbxReportDiagnostic(context, path, messenger, 0);
        return WbxExit::Usage;
    }
    ZorWBFactory& GetFactory() { return _model ? _file.GetFactory() : _benchmark; }

  private:
    static bool ReadText(const std::string& path, std::string& text, WbxContext& context) {
        std::FILE* file = std::fopen(path.c_str(), "rb");
        int error = file ? 0 : errno;
        char buffer[65536];
        for (std::size_t read = 1; file && read > 0;) {
            read = std::fread(buffer, 1, sizeof buffer, file);
            text.append(buffer, read);
        }
        if (file && std::ferror(file)) error = errno;
        if (file) std::fclose(file);
        if (error == 0) return true;
        WbxUsageError(context, "cannot read '" + path + "': " + std::string(std::strerror(error)));
        return false;
    }

    bool _model = false;
    WbxModelFile _file;
    ZorWBFactory _benchmark;
};

int ApplySettings(WbxContext& context, ZorWBFactory& factory, ZorWBSolver& solver,
                  const std::vector<std::string>& settings) {
    for (const std::string& setting : settings) {
        const std::size_t equals = setting.find('=');
        if (equals == std::string::npos)
            return WbxUsageError(context, "--set needs NAME=VALUE, not '" + setting + "'");
        const std::string name = setting.substr(0, equals), text = setting.substr(equals + 1);
        ZorWBVariable* variable = factory.GetVariable(ZorQelString(name.c_str()));
        if (!variable) return WbxUsageError(context, "unknown variable '" + name + "' in --set");
        ZorWBValue value;
        if (!WbxReadValue(text, value) || !solver.SetDomain(variable->GetIdx(), value)) {
            return WbxUsageError(context, "bad value '" + text + "' for " + name +
                                              " (a number, [low, high], {a, b, ...}, true or "
                                              "false)");
        }
    }
    return WbxExit::Success;
}

bool HasRelation(const ZorWBFactory& factory) {
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        if (ZorWBIsRelation(factory.GetEquation(i)->GetType())) return true;
    }
    return false;
}

// The shortest decimal that reads back to x; infinite ends as text.
std::string Number(double x, const char* infinity) {
    if (std::isinf(x)) return x < 0 ? std::string("-") + infinity : infinity;
    char text[32];
    std::to_chars_result result = std::to_chars(text, text + sizeof text, x);
    return std::string(text, result.ptr);
}

std::string NameOf(ZorWBFactory& factory, int v) {
    return factory.GetVariable(v)->GetName().GetString();
}

void PrintText(WbxContext& context, ZorWBFactory& factory, const ZorWBSolverBox& box) {
    context.out << ZorWBBoxTypeName(box.GetType());
    for (int v = 0; v < box.GetNbOfVariables(); ++v) {
        const ZorWBValue value = box.GetValue(v);
        const bool listed = value.GetType() == ZorWBIntegerEnumType ||
                            value.GetType() == ZorWBRealEnumType ||
                            value.GetType() == ZorWBBooleanType;
        const ZorWBRoundedInterval x = box.GetInterval(v);
        context.out << "  " << NameOf(factory, v) << " = "
                    << (listed ? ZorWBEquationPrinter::PrintValue(value).GetString()
                               : "[" + Number(x.low, "inf") + ", " + Number(x.high, "inf") + "]");
    }
    context.out << "\n";
}

void PrintJson(WbxContext& context, ZorWBFactory& factory, const ZorWBSolver& solver,
               const char* status) {
    const char* const infinity = "3.4028234663852886e+39";
    context.out << "{\"status\": \"" << status << "\", \"boxes\": [";
    for (int i = 0; i < solver.GetNbOfBoxes(); ++i) {
        const ZorWBSolverBox& box = solver.GetBox(i);
        context.out << (i ? ",\n  " : "\n  ") << "{\"type\": \"" << ZorWBBoxTypeName(box.GetType())
                    << "\", \"box\": {";
        for (int v = 0; v < box.GetNbOfVariables(); ++v) {
            const ZorWBRoundedInterval x = box.GetInterval(v);
            context.out << (v ? ", " : "") << WbxJsonString(NameOf(factory, v)) << ": ["
                        << Number(x.low, infinity) << ", " << Number(x.high, infinity) << "]";
        }
        context.out << "}}";
    }
    const ZorWBSolverStatistics& statistics = solver.GetStatistics();
    context.out << (solver.GetNbOfBoxes() ? "\n" : "") << "], \"cells\": " << statistics.cells
                << ", \"seconds\": " << Number(statistics.seconds, "0") << "}\n";
}

const char* StopText(ZorWBStopReason reason) {
    switch (reason) {
        case ZorWBStopReason::Time:
            return "time limit";
        case ZorWBStopReason::Cells:
            return "cell limit";
        case ZorWBStopReason::Solutions:
            return "solution limit";
        default:
            return "limit";
    }
}

void PrintSummary(WbxContext& context, ZorWBFactory& factory, const ZorWBSolver& solver) {
    const ZorWBSolverStatistics& s = solver.GetStatistics();
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.3f", s.seconds);
    switch (solver.GetStatus()) {
        case ZorWBSolverStatus::Infeasible: {
            context.out << "infeasible: no solution";
            ZorWBEquation* equation = factory.GetEquationById(solver.GetEmptyingEquationId());
            if (equation)
                context.out << " (" << equation->GetName().GetString() << " empties a domain)";
            break;
        }
        case ZorWBSolverStatus::Incomplete:
            context.out << "incomplete (" << StopText(s.stopReason) << "): " << s.solutions
                        << " solution, " << s.boundaries << " boundary, " << s.unknowns
                        << " unknown, " << s.pendings << " pending";
            break;
        default:
            context.out << "complete: " << s.solutions << " solution, " << s.boundaries
                        << " boundary, " << s.unknowns << " unknown";
            break;
    }
    context.out << "; " << s.cells << " cells in " << seconds << " s\n";
}

// A note on the variables that a limit left without bounds.
void ExplainUnbounded(WbxContext& context, ZorWBFactory& factory, const ZorWBSolver& solver) {
    std::string names;
    for (int v : solver.GetUnknowns()) {
        for (int i = 0; i < solver.GetNbOfBoxes(); ++i) {
            const ZorWBSolverBox& box = solver.GetBox(i);
            if (box.GetType() == ZorWBBoxType::Pending && !box.GetInterval(v).IsBounded()) {
                names += (names.empty() ? "" : ", ") + NameOf(factory, v);
                break;
            }
        }
    }
    if (names.empty()) return;
    context.err << "wbx: the search stopped at a limit with unbounded domains: " << names
                << " (bound them with x >= a; x <= b; or --set x=[a, b])\n";
}

// The progress line on a terminal: cells, boxes by type, seconds.
void ShowProgress(const ZorWBSolverStatistics& s, void*) {
    char line[160];
    std::snprintf(line, sizeof line,
                  "\r%lld cells, %d solution, %d boundary, %d unknown, %.1f s   ", s.cells,
                  s.solutions, s.boundaries, s.unknowns, s.seconds);
    std::cerr << line << std::flush;
}

}  // namespace

int WbxSolveCommand(WbxContext& context) {
    Options options;
    if (ReadOptions(context, options) != WbxExit::Success) return WbxExit::Usage;
    ProblemFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    ZorWBFactory& factory = file.GetFactory();
    if (!HasRelation(factory))
        return WbxUsageError(context, "'" + options.path + "' holds no equation to solve");
    ZorWBSolver solver(factory);
    if (ApplySettings(context, factory, solver, options.settings) != WbxExit::Success)
        return WbxExit::Usage;
    const bool terminal = &context.err == &std::cerr && isatty(STDERR_FILENO);
    if (terminal) options.solver.progress = ShowProgress;
    solver.SetOptions(options.solver);
    const ZorWBSolverStatus status = solver.Solve();
    if (terminal) std::cerr << "\r" << std::string(70, ' ') << "\r" << std::flush;
    if (status == ZorWBSolverStatus::Failed)
        return WbxUsageError(
            context, std::string("cannot solve '") + options.path + "': " + solver.GetMessage());
    if (options.json) {
        PrintJson(context, factory, solver,
                  status == ZorWBSolverStatus::Complete     ? "complete"
                  : status == ZorWBSolverStatus::Infeasible ? "infeasible"
                                                            : "incomplete");
    } else {
        for (int i = 0; i < solver.GetNbOfBoxes(); ++i)
            PrintText(context, factory, solver.GetBox(i));
        PrintSummary(context, factory, solver);
    }
    ExplainUnbounded(context, factory, solver);
    switch (status) {
        case ZorWBSolverStatus::Complete:
            return WbxExit::Success;
        case ZorWBSolverStatus::Infeasible:
            return WbxExit::Failure;
        default:
            return WbxExit::Limit;
    }
}
