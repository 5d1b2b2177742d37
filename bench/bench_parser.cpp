// Reading speed of equation texts, in bytes of text per second.
//
// The comparison: 10,000 statements like "x12 + 2*y7 - sin(a3)*z1 = 4;"
// over a few thousand names, read by ZorWBParser::Parse (the whole text at
// once, checked), by Parse and then ZorWBModel::FillFactory into a new
// factory, by muparser and by GiNaC's parser. The two peers read
// expressions only, so each statement is handed to them as "lhs - (rhs)",
// one at a time to one parser; each is credited with the bytes of its own
// text. Every contestant's roots are checked, at values given to the
// variables by name, before it is timed.
//
// Besides, ZorWBx alone on a larger model of 100,000 statements of a
// mechanism (position equations with units, linear constraints,
// conditional equations).

#include <random>
#include <string>

#include "BenchSupport.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

#ifdef ZORWBX_BENCH_MUPARSER
#include "BenchMuparser.h"
#endif
#ifdef ZORWBX_BENCH_GINAC
#include "BenchGinac.h"
#endif

namespace {

using namespace bench;

constexpr int NbOfStatements = 10000;
constexpr int NbOfModelStatements = 100000;

const std::vector<Statement>& Statements() {
    static const std::vector<Statement> statements = MakeStatements(NbOfStatements);
    return statements;
}
const std::string& StatementText() {
    static const std::string text = EquationText(Statements());
    return text;
}

bool AgreesOnRoots(benchmark::State& state, const std::vector<double>& roots) {
    const std::vector<Statement>& statements = Statements();
    if (roots.size() != statements.size())
        return Agrees(state, "the number of equations", static_cast<double>(roots.size()),
                      static_cast<double>(statements.size()), 0.0);
    for (std::size_t i = 0; i < roots.size(); ++i) {
        double expected = ReferenceRoot(statements[i]);
        if (!Agrees(state, "statement " + std::to_string(i), roots[i], expected, expected))
            return false;
    }
    return true;
}

// Parses text into model; false (and the benchmark stopped) on errors.
bool ParseText(benchmark::State& state, const std::string& text, ZorWBModel& model) {
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    if (ZorWBParser::Parse(text.c_str(), model, ids, messenger) == 0) return true;
    Fail(state, std::string("ZorWBx: ") + messenger.GetString().GetString());
    return false;
}

bool Fill(benchmark::State& state, ZorWBModel& model, ZorWBFactory& factory) {
    ZorQelIntArray ids;
    if (model.FillFactory(factory, ids) == 0) return true;
    Fail(state, "ZorWBx: filling the factory failed");
    return false;
}

// The roots of a filled factory at the values StatementInput gives.
std::vector<double> FilledRoots(ZorWBFactory& factory) {
    for (int i = 0; i < factory.GetNbOfVariables(); ++i) {
        ZorWBVariable* variable = factory.GetVariable(i);
        variable->SetValue(ZorWBValue(StatementInput(variable->GetName().GetString())), nullptr);
    }
    std::vector<double> roots;
    for (const ZorWBEquation* e = factory.GetFirstEquation(); e; e = e->GetNext())
        roots.push_back(e->GetRoot()->GetValue().GetAsReal());
    return roots;
}

void ZorWBxParse(benchmark::State& state, const std::string& text, bool fill) {
    {
        ZorWBModel model;
        ZorWBFactory factory;
        if (!ParseText(state, text, model) || !Fill(state, model, factory)) return;
        if (&text == &StatementText() && !AgreesOnRoots(state, FilledRoots(factory))) return;
    }
    for (auto _ : state) {
        ZorWBModel model;
        if (!ParseText(state, text, model)) break;
        if (fill) {
            ZorWBFactory factory;
            if (!Fill(state, model, factory)) break;
            Keep(factory.GetNbOfEquations());
        } else {
            Keep(model.GetNbOfEquations());
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(text.size()));
}

#if defined(ZORWBX_BENCH_MUPARSER) || defined(ZORWBX_BENCH_GINAC)
const std::vector<std::string>& StatementRoots() {
    static const std::vector<std::string> roots = RootTexts(Statements());
    return roots;
}
std::size_t TotalSize(const std::vector<std::string>& texts) {
    std::size_t size = 0;
    for (const std::string& text : texts)
        size += text.size();
    return size;
}

// A peer reading the statements one by one, through parseAll (which
// appends the roots' values to its last argument when given one).
using ParseAll = int (*)(const std::vector<std::string>&, std::string&, std::vector<double>*);

void PeerParse(benchmark::State& state, ParseAll parseAll) {
    const std::vector<std::string>& texts = StatementRoots();
    std::string error;
    std::vector<double> roots;
    parseAll(texts, error, &roots);
    if (!error.empty()) return Fail(state, error);
    if (!AgreesOnRoots(state, roots)) return;
    for (auto _ : state)
        Keep(parseAll(texts, error, nullptr));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(TotalSize(texts)));
}
#endif

// ------------------------------------------------------------ the larger model
class ModelText {
  public:
    explicit ModelText(unsigned int seed) : _random(seed) {}

    std::string Make(int statements) {
        std::string text;
        for (int i = 0; i < statements; ++i) {
            switch (Pick(4)) {
                case 0:
                    text += Position();
                    break;
                case 1:
                    text += Conditional();
                    break;
                default:
                    text += Linear();
                    break;
            }
        }
        return text;
    }

  private:
    int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    std::string Name(const char* prefix) { return prefix + std::to_string(Pick(2000)); }
    std::string Number() {
        return Pick(2) ? std::to_string(Pick(1000))
                       : std::to_string(Pick(1000)) + "." + std::to_string(Pick(100));
    }

    std::string Position() {
        std::string a = Name("a"), b = Name("a");
        return "(" + Name("p") + ") mm = " + Number() + " mm * cos(" + a + ") + " + Number() +
               " mm * cos(" + a + " + " + b + ");\n";
    }
    std::string Linear() {
        const char* relations[] = {"=", "<=", ">=", "<", ">", "!="};
        return Number() + "*" + Name("x") + " + " + Number() + "*" + Name("y") + " - " + Name("z") +
               " " + relations[Pick(6)] + " " + Number() + ";\n";
    }
    std::string Conditional() {
        std::string c = Name("c");
        return "if (" + Name("t") + " <= " + Number() + " mm and " + Name("u") + " > 0) then (" +
               c + " = " + Number() + " mm) else (" + c + " = " + Number() + " mm);\n";
    }

    std::mt19937 _random;
};

const std::string& ModelTextOfMechanism() {
    static const std::string text = ModelText(1).Make(NbOfModelStatements);
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    const auto unit = benchmark::kMillisecond;
    Register("parse", "statements", "zorwbx_parse", NbOfStatements, unit,
             [](benchmark::State& state) { ZorWBxParse(state, StatementText(), false); });
    Register("parse", "statements", "zorwbx_parse_fill", NbOfStatements, unit,
             [](benchmark::State& state) { ZorWBxParse(state, StatementText(), true); });
#ifdef ZORWBX_BENCH_MUPARSER
    Register("parse", "statements", "muparser", NbOfStatements, unit,
             [](benchmark::State& state) { PeerParse(state, MuparserParseAll); });
#endif
#ifdef ZORWBX_BENCH_GINAC
    Register("parse", "statements", "ginac", NbOfStatements, unit,
             [](benchmark::State& state) { PeerParse(state, GinacParseAll); });
#endif
    Register("parse", "model", "zorwbx_parse", NbOfModelStatements, unit,
             [](benchmark::State& state) { ZorWBxParse(state, ModelTextOfMechanism(), false); });
    Register("parse", "model", "zorwbx_parse_fill", NbOfModelStatements, unit,
             [](benchmark::State& state) { ZorWBxParse(state, ModelTextOfMechanism(), true); });
    return RunBenchmarks(argc, argv);
}
