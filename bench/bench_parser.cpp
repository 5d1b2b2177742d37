// Reading speed of the equation language: a generated model of about 10 MB
// (the statements of a large mechanism: position equations with units,
// linear constraints and conditional equations over a few thousand
// variables) is parsed and checked, and then also filled into a factory.
// Both report the text's bytes per second.

#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

namespace {

class ModelText {
  public:
    explicit ModelText(unsigned int seed) : _random(seed) {}

    std::string Make(std::size_t size) {
        std::string text;
        text.reserve(size + 256);
        while (text.size() < size) {
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

const std::string& Text() {
    static const std::string text = ModelText(1).Make(10u << 20);
    return text;
}

void Parse(benchmark::State& state) {
    const std::string& text = Text();
    for (auto _ : state) {
        ZorWBModel model;
        ZorQelIntArray ids;
        ZorWBParserMessenger messenger;
        int errors = ZorWBParser::Parse(text.c_str(), model, ids, messenger);
        if (errors != 0) state.SkipWithError(messenger.GetString().GetString());
        benchmark::DoNotOptimize(model.GetNbOfEquations());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(text.size()));
}

void ParseAndFill(benchmark::State& state) {
    const std::string& text = Text();
    for (auto _ : state) {
        ZorWBModel model;
        ZorQelIntArray ids;
        ZorWBParserMessenger messenger;
        ZorWBParser::Parse(text.c_str(), model, ids, messenger);
        ZorWBFactory factory;
        ZorQelIntArray equationIds;
        if (model.FillFactory(factory, equationIds) != 0) state.SkipWithError("filling failed");
        benchmark::DoNotOptimize(factory.GetNbOfEquations());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(text.size()));
}

}  // namespace

BENCHMARK(Parse)->Unit(benchmark::kMillisecond);
BENCHMARK(ParseAndFill)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
