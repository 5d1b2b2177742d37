// Prints the table of medians from the JSON output of the benchmark
// programs, then the targets and how this run stands against them.
//
//   zorwbx_bench_table result.json...
//
// Benchmarks are named "task/workload/contestant/size" (see BenchSupport.h);
// the median of the repetitions is used (the single run when there was no
// repetition). Exits with 1 when a benchmark stopped with an error (a
// contestant that disagreed with the reference) or a file could not be read.

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using nlohmann::json;

struct Result {
    double nanoseconds = 0.0;  // real time per iteration
    double nodes = 0.0;
    double bytesPerNode = 0.0;
    double bytesPerSecond = 0.0;
    int repetitions = 1;
};

struct Key {
    std::string task, workload, contestant;
    int size = 0;
    bool operator<(const Key& o) const {
        return std::tie(task, workload, contestant, size) <
               std::tie(o.task, o.workload, o.contestant, o.size);
    }
};

std::map<Key, Result> results;
// Each failing benchmark once (its repetitions all report the error).
std::set<std::string> errors;
json context;

double Nanoseconds(double time, const std::string& unit) {
    if (unit == "us") return time * 1e3;
    if (unit == "ms") return time * 1e6;
    if (unit == "s") return time * 1e9;
    return time;
}

bool ParseName(const std::string& name, Key& key) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t slash; (slash = name.find('/', start)) != std::string::npos; start = slash + 1)
        parts.push_back(name.substr(start, slash - start));
    parts.push_back(name.substr(start));
    if (parts.size() != 4) return false;
    key = {parts[0], parts[1], parts[2], std::atoi(parts[3].c_str())};
    return true;
}

Result ReadResult(const json& entry) {
    Result r;
    r.nanoseconds = Nanoseconds(entry.value("real_time", 0.0), entry.value("time_unit", "ns"));
    r.nodes = entry.value("nodes", 0.0);
    r.bytesPerNode = entry.value("bytes_per_node", 0.0);
    r.bytesPerSecond = entry.value("bytes_per_second", 0.0);
    r.repetitions = entry.value("repetitions", 1);
    return r;
}

bool ReadFile(const char* path) {
    std::ifstream in(path);
    json document = json::parse(in, nullptr, false);
    if (document.is_discarded() || !document.contains("benchmarks")) {
        errors.insert(std::string(path) + ": not a benchmark JSON output");
        return false;
    }
    if (context.is_null()) context = document["context"];
    std::map<Key, Result> singles;
    for (const json& entry : document["benchmarks"]) {
        std::string name = entry.value("run_name", entry.value("name", ""));
        if (entry.value("error_occurred", false)) {
            errors.insert(name + ": " + entry.value("error_message", ""));
            continue;
        }
        Key key;
        if (!ParseName(name, key)) continue;
        if (entry.value("run_type", "") == "aggregate") {
            if (entry.value("aggregate_name", "") == "median") results[key] = ReadResult(entry);
        } else {
            singles[key] = ReadResult(entry);
        }
    }
    for (const auto& [key, result] : singles)
        results.emplace(key, result);  // only where no median was given
    return true;
}

// ------------------------------------------------------------ the table
struct Section {
    const char* task;
    const char* title;
    double (*metric)(const Result&);
};

double PerNode(const Result& r) {
    return r.nodes > 0 ? r.nanoseconds / r.nodes : 0.0;
}
double Micro(const Result& r) {
    return r.nanoseconds / 1e3;
}
double Milli(const Result& r) {
    return r.nanoseconds / 1e6;
}
double MegabytesPerSecond(const Result& r) {
    return r.bytesPerSecond / 1e6;
}
double BytesPerNode(const Result& r) {
    return r.bytesPerNode;
}

const Section sections[] = {
    {"real", "Real evaluation, whole formula (ns per node)", PerNode},
    {"interval", "Interval evaluation, inputs of width 1e-3 (ns per node)", PerNode},
    {"system",
     "Chain as one equation per term: change one variable, read every root "
     "(us per update)",
     Micro},
    {"jacobian",
     "Chain and trig as one equation per term at a new point: residuals, and residuals with "
     "the sparse Jacobian (us per call)",
     Micro},
    {"derivative", "Differentiation by one of ten variables (us per derivative)", Micro},
    {"parse", "Parsing (MB/s, 10^6 bytes)", MegabytesPerSecond},
    {"eliminate", "Elimination of a sparse linear system (ms per run)", Milli},
    {"build", "Building the formula through the API, and destroying it (ns per node)", PerNode},
    {"build", "Memory held by the built formula (bytes per node)", BytesPerNode},
};

const char* const workloadOrder[] = {"chain", "trig", "statements", "model", "sparse", "mixed"};
const char* const contestantOrder[] = {"zorwbx_eval",
                                       "zorwbx_value",
                                       "zorwbx_set",
                                       "zorwbx_function",
                                       "zorwbx_residuals",
                                       "zorwbx_jacobian",
                                       "zorwbx",
                                       "zorwbx_mode2",
                                       "zorwbx_parse",
                                       "zorwbx_parse_fill",
                                       "loop",
                                       "loop_residuals",
                                       "loop_jacobian",
                                       "muparser",
                                       "muparser_residuals",
                                       "ginac",
                                       "ginac_jacobian",
                                       "boost"};

int Rank(const std::string& name, const char* const* order, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        if (name == order[i]) return static_cast<int>(i);
    return static_cast<int>(count);
}

std::string DisplayName(const std::string& task, const std::string& contestant) {
    static const std::map<std::string, std::string> names = {
        {"zorwbx_eval", "ZorWBx Eval()"},
        {"zorwbx_value", "ZorWBx GetValue()"},
        {"zorwbx_set", "(ZorWBx: setting inputs only)"},
        {"zorwbx_function", "ZorWBx compiled function"},
        {"zorwbx_residuals", "ZorWBx residuals"},
        {"zorwbx_jacobian", "ZorWBx residuals + Jacobian"},
        {"loop_residuals", "compiled loop, residuals"},
        {"loop_jacobian", "compiled loop, residuals + Jacobian"},
        {"muparser_residuals", "muparser, residuals"},
        {"ginac_jacobian", "GiNaC subs + evalf of both"},
        {"zorwbx", "ZorWBx"},
        {"zorwbx_mode2", "ZorWBx, mode 2"},
        {"zorwbx_parse", "ZorWBx Parse"},
        {"zorwbx_parse_fill", "ZorWBx Parse + FillFactory"},
        {"loop", "compiled loop"},
        {"muparser", "muparser"},
        {"boost", "Boost.Interval loop"}};
    if (contestant == "ginac") {
        if (task == "real") return "GiNaC subs + evalf";
        if (task == "derivative") return "GiNaC diff";
        if (task == "parse") return "GiNaC parser";
        if (task == "eliminate") return "GiNaC lsolve";
        return "GiNaC";
    }
    auto found = names.find(contestant);
    return found != names.end() ? found->second : contestant;
}

std::string Number(double v) {
    char text[32];
    if (v >= 100.0)
        std::snprintf(text, sizeof text, "%.0f", v);
    else if (v >= 10.0)
        std::snprintf(text, sizeof text, "%.1f", v);
    else if (v >= 1.0)
        std::snprintf(text, sizeof text, "%.2f", v);
    else
        std::snprintf(text, sizeof text, "%.3g", v);
    return text;
}

// "-" for a figure that was not measured.
std::string Measured(double v) {
    return v > 0.0 ? Number(v) : "-";
}

void PrintRow(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
    std::printf("|");
    for (std::size_t i = 0; i < cells.size(); ++i)
        std::printf(i < 2 ? " %-*s |" : " %*s |", static_cast<int>(widths[i]), cells[i].c_str());
    std::printf("\n");
}

void PrintSection(const Section& section) {
    std::set<int> sizes;
    // Ordered by workload, then contestant.
    std::set<std::tuple<int, int, std::string, std::string>> rows;
    for (const auto& [key, result] : results) {
        if (key.task != section.task || section.metric(result) <= 0.0) continue;
        sizes.insert(key.size);
        rows.insert({Rank(key.workload, workloadOrder, std::size(workloadOrder)),
                     Rank(key.contestant, contestantOrder, std::size(contestantOrder)),
                     key.workload, key.contestant});
    }
    if (rows.empty()) return;
    std::vector<std::vector<std::string>> table = {{"workload", "contestant"}};
    for (int size : sizes)
        table[0].push_back("N=" + std::to_string(size));
    for (const auto& [workloadRank, contestantRank, workload, contestant] : rows) {
        std::vector<std::string> cells = {workload, DisplayName(section.task, contestant)};
        for (int size : sizes) {
            auto found = results.find({section.task, workload, contestant, size});
            cells.push_back(found == results.end() ? "-" : Number(section.metric(found->second)));
        }
        table.push_back(cells);
    }
    std::vector<std::size_t> widths(table[0].size(), 0);
    for (const auto& cells : table)
        for (std::size_t i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths[i], cells[i].size());
    std::printf("\n%s\n\n", section.title);
    PrintRow(table[0], widths);
    std::printf("|");
    for (std::size_t i = 0; i < widths.size(); ++i)
        std::printf("%s%s|", std::string(widths[i] + 1, '-').c_str(), i < 2 ? "-" : ":");
    std::printf("\n");
    for (std::size_t r = 1; r < table.size(); ++r)
        PrintRow(table[r], widths);
}

// ------------------------------------------------------------ targets
// The figure of one benchmark at N = 1000 (or the size given); 0 if absent.
double Figure(const char* task, const char* workload, const char* contestant,
              double (*metric)(const Result&), int size = 1000) {
    auto found = results.find({task, workload, contestant, size});
    return found == results.end() ? 0.0 : metric(found->second);
}

struct Absolute {
    const char* what;
    double measured;
    double low, high;  // the target, or its range
    const char* unit;
};

void PrintAbsolute(const Absolute& a) {
    std::string target = Number(a.low) + (a.high > a.low ? " to " + Number(a.high) : "");
    std::string ratio = "-";
    if (a.measured > 0.0) {
        double reference = a.high > a.low ? std::sqrt(a.low * a.high) : a.low;
        ratio = Number(a.measured / reference);
    }
    std::printf("| %-44s | %10s | %12s | %-9s | %8s |\n", a.what, Measured(a.measured).c_str(),
                target.c_str(), a.unit, ratio.c_str());
}

// numerator / denominator should reach at least minimum (or stay below
// maximum when maximum > 0).
void PrintRatio(const char* what, double numerator, double denominator, double minimum,
                double maximum) {
    std::string achieved = "-", verdict = "not measured";
    if (numerator > 0.0 && denominator > 0.0) {
        double ratio = numerator / denominator;
        achieved = Number(ratio) + "x";
        if (maximum > 0.0)
            verdict = ratio <= maximum ? "met" : "missed by " + Number(ratio / maximum) + "x";
        else
            verdict = ratio >= minimum ? "met" : "missed by " + Number(minimum / ratio) + "x";
    }
    std::string target =
        maximum > 0.0 ? "<= " + Number(maximum) + "x" : ">= " + Number(minimum) + "x";
    std::printf("| %-62s | %9s | %8s | %-18s |\n", what, achieved.c_str(), target.c_str(),
                verdict.c_str());
}

// measured should stay at most maximum (in unit).
void PrintLimit(const char* what, double measured, double maximum, const char* unit) {
    std::string achieved = "-", verdict = "not measured";
    if (measured > 0.0) {
        achieved = Number(measured) + unit;
        verdict = measured <= maximum ? "met" : "missed by " + Number(measured / maximum) + "x";
    }
    std::string target = "<= " + Number(maximum) + unit;
    std::printf("| %-62s | %9s | %8s | %-18s |\n", what, achieved.c_str(), target.c_str(),
                verdict.c_str());
}

// The targets of the compiled functions, their Jacobians and the interval
// evaluation, in the table of ratios.
void PrintCompiledTargets() {
    for (const char* workload : {"chain", "trig"})
        PrintRatio(
            (std::string("real, ") + workload + ": muparser / ZorWBx compiled function per node")
                .c_str(),
            Figure("real", workload, "muparser", PerNode),
            Figure("real", workload, "zorwbx_function", PerNode), 3.0, 0.0);
    PrintRatio("system, chain: ZorWBx residuals + Jacobian / residuals",
               Figure("jacobian", "chain", "zorwbx_jacobian", Micro),
               Figure("jacobian", "chain", "zorwbx_residuals", Micro), 0.0, 4.0);
    const struct {
        const char* workload;
        double maximum;
    } intervalLimits[] = {{"chain", 3.0}, {"trig", 20.0}};
    for (const auto& limit : intervalLimits) {
        for (const char* contestant : {"zorwbx_value", "zorwbx_function"})
            PrintLimit((std::string("interval, ") + limit.workload + ": " +
                        DisplayName("interval", contestant) + " per node")
                           .c_str(),
                       Figure("interval", limit.workload, contestant, PerNode), limit.maximum,
                       "ns");
    }
    const struct {
        const char* task;
        const char* contestant;
    } growing[] = {{"real", "zorwbx_function"},
                   {"interval", "zorwbx_value"},
                   {"interval", "zorwbx_function"},
                   {"jacobian", "zorwbx_residuals"},
                   {"jacobian", "zorwbx_jacobian"}};
    for (const auto& g : growing) {
        for (const char* workload : {"chain", "trig"})
            PrintRatio((std::string(g.task) + ", " + workload + ": " +
                        DisplayName(g.task, g.contestant) + ", 10000 / 1000")
                           .c_str(),
                       Figure(g.task, workload, g.contestant, PerNode, 10000),
                       Figure(g.task, workload, g.contestant, PerNode), 0.0, 1.5);
    }
}

void PrintTargets() {
    std::printf(
        "\nPeers against the figures of the reference machine (N = 1000; the last column "
        "is measured / target: above 1 is slower, or faster for MB/s)\n\n");
    std::printf("| %-44s | %10s | %12s | %-9s | %8s |\n", "figure", "measured", "target", "unit",
                "ratio");
    std::printf("|%s|%s|%s|%s|%s|\n", std::string(46, '-').c_str(), std::string(12, '-').c_str(),
                std::string(14, '-').c_str(), std::string(11, '-').c_str(),
                std::string(10, '-').c_str());
    const Absolute absolutes[] = {
        {"compiled loop, chain", Figure("real", "chain", "loop", PerNode), 0.08, 0.08, "ns/node"},
        {"compiled loop, trig", Figure("real", "trig", "loop", PerNode), 1.0, 1.0, "ns/node"},
        {"muparser, chain", Figure("real", "chain", "muparser", PerNode), 2.9, 2.9, "ns/node"},
        {"muparser, trig", Figure("real", "trig", "muparser", PerNode), 2.9, 2.9, "ns/node"},
        {"GiNaC subs + evalf, chain", Figure("real", "chain", "ginac", PerNode), 250, 860,
         "ns/node"},
        {"GiNaC subs + evalf, trig", Figure("real", "trig", "ginac", PerNode), 250, 860, "ns/node"},
        {"Boost.Interval loop, chain", Figure("interval", "chain", "boost", PerNode), 0.39, 0.39,
         "ns/node"},
        {"Boost.Interval loop, trig", Figure("interval", "trig", "boost", PerNode), 42, 42,
         "ns/node"},
        {"muparser, one-variable update of the system",
         Figure("system", "chain", "muparser", Micro), 38, 38, "us"},
        {"GiNaC diff, chain", Figure("derivative", "chain", "ginac", Micro), 1500, 1500, "us"},
        {"muparser parsing", Figure("parse", "statements", "muparser", MegabytesPerSecond, 10000),
         3, 3, "MB/s"},
        {"GiNaC parser", Figure("parse", "statements", "ginac", MegabytesPerSecond, 10000), 8.4,
         8.4, "MB/s"},
    };
    for (const Absolute& a : absolutes)
        PrintAbsolute(a);

    std::printf("\nZorWBx against the peers in this run (N = 1000)\n\n");
    std::printf("| %-62s | %9s | %8s | %-18s |\n", "ratio", "achieved", "target", "verdict");
    std::printf("|%s|%s|%s|%s|\n", std::string(64, '-').c_str(), std::string(11, '-').c_str(),
                std::string(10, '-').c_str(), std::string(20, '-').c_str());
    for (const char* workload : {"chain", "trig"})
        PrintRatio(
            (std::string("real, ") + workload + ": muparser / ZorWBx Eval() per node").c_str(),
            Figure("real", workload, "muparser", PerNode),
            Figure("real", workload, "zorwbx_eval", PerNode), 2.0, 0.0);
    PrintRatio("interval, chain: ZorWBx GetValue() / Boost.Interval loop",
               Figure("interval", "chain", "zorwbx_value", PerNode),
               Figure("interval", "chain", "boost", PerNode), 0.0, 8.0);
    PrintRatio("interval, trig: ZorWBx GetValue() / Boost.Interval loop",
               Figure("interval", "trig", "zorwbx_value", PerNode),
               Figure("interval", "trig", "boost", PerNode), 0.0, 1.0);
    PrintRatio("system update + read of 1000 roots: muparser / ZorWBx",
               Figure("system", "chain", "muparser", Micro),
               Figure("system", "chain", "zorwbx_value", Micro), 20.0, 0.0);
    for (const char* workload : {"chain", "trig"})
        PrintRatio((std::string("derivative, ") + workload + ": GiNaC diff / ZorWBx").c_str(),
                   Figure("derivative", workload, "ginac", Micro),
                   Figure("derivative", workload, "zorwbx", Micro), 10.0, 0.0);
    PrintRatio("parsing: ZorWBx Parse / GiNaC parser, MB/s",
               Figure("parse", "statements", "zorwbx_parse", MegabytesPerSecond, 10000),
               Figure("parse", "statements", "ginac", MegabytesPerSecond, 10000), 3.0, 0.0);
    PrintCompiledTargets();
    std::printf("\n10000 / 1000: the cost per node at N = 10000 over that at N = 1000.\n");
    std::printf("\nBytes per node (reported beside GiNaC's, no target):");
    for (const char* workload : {"chain", "trig"})
        std::printf(" %s: ZorWBx %s, GiNaC %s.", workload,
                    Measured(Figure("build", workload, "zorwbx", BytesPerNode)).c_str(),
                    Measured(Figure("build", workload, "ginac", BytesPerNode)).c_str());
    std::printf("\n");
}

void PrintContext() {
    int repetitions = 1;
    for (const auto& [key, result] : results)
        repetitions = std::max(repetitions, result.repetitions);
    std::printf("Medians of %d repetitions", repetitions);
    if (!context.is_null()) {
        std::printf("; %s; %d CPUs at %d MHz; load average at start",
                    context.value("date", "").c_str(), context.value("num_cpus", 0),
                    static_cast<int>(context.value("mhz_per_cpu", 0.0)));
        for (const json& load : context.value("load_avg", json::array()))
            std::printf(" %.2f", load.get<double>());
    }
    std::printf(
        ".\nPer-node figures divide by the node count of the formula as ZorWBx holds "
        "it, for every contestant.\n");
}

}  // namespace

int main(int argc, char** argv) {
    bool readable = argc > 1;
    for (int i = 1; i < argc; ++i)
        readable = ReadFile(argv[i]) && readable;
    PrintContext();
    for (const Section& section : sections)
        PrintSection(section);
    PrintTargets();
    if (!errors.empty()) {
        std::printf("\nBenchmarks that stopped with an error:\n");
        for (const std::string& error : errors)
            std::printf("  %s\n", error.c_str());
    }
    return readable && errors.empty() ? 0 : 1;
}
