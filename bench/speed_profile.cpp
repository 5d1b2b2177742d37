// Runs one workload of speed_workloads.h a given number of times, for
// instruction counts under callgrind: only the repeated part is collected,
//   valgrind --tool=callgrind --collect-atstart=no --toggle-collect='*Repeat*'
//            build/bench/speed_profile real-chain 10
// and the total divided by the repetitions is the cost of one run.
// Workloads: real-chain real-trig interval-chain interval-trig system
// derivative parse parse-fill remove-deep; real-chain-walk and real-trig-walk
// evaluate without compiled programs; function-chain and function-trig
// evaluate the sum by a compiled function at a point,
// function-interval-chain and function-interval-trig over a box; residuals-system and
// jacobian-system the system's residuals, and with its sparse Jacobian.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "expressions/ZorWBCompiledFunction.h"
#include "speed_workloads.h"

namespace {

constexpr int NbOfTerms = 1000;

// Also prints the fastest of the runs, in nanoseconds (outside callgrind).
__attribute__((noinline)) void Repeat(int times, const std::function<void()>& run) {
    double fastest = 1e300;
    for (int i = 0; i < times; ++i) {
        auto start = std::chrono::steady_clock::now();
        run();
        std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - start;
        fastest = std::min(fastest, spent.count());
    }
    std::printf("fastest run: %.0f ns\n", fastest);
}

std::string ShortEquations(int n) {
    std::mt19937 random(7);
    auto index = [&random]() { return std::to_string(random() % 1000); };
    std::string text;
    for (int i = 0; i < n; ++i)
        text +=
            "x" + index() + " + 2*y" + index() + " - sin(a" + index() + ")*z" + index() + " = 4;\n";
    return text;
}

int Usage() {
    std::fprintf(stderr,
                 "usage: speed_profile WORKLOAD TIMES\n"
                 "  real-chain real-trig interval-chain interval-trig system derivative\n"
                 "  parse parse-fill remove-deep function-chain function-trig\n"
                 "  function-interval-chain function-interval-trig residuals-system\n"
                 "  jacobian-system\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return Usage();
    std::string name = argv[1];
    int times = std::atoi(argv[2]);
    ZorWBFactory factory;
    bool trig = name.find("trig") != std::string::npos;
    double sink = 0.0;

    // With "-walk", Eval() walks the nodes instead of running a compiled program.
    bool walk = name.size() > 5 && name.compare(name.size() - 5, 5, "-walk") == 0;
    if (walk) name.resize(name.size() - 5);
    factory.EnableRealPrograms(!walk);
    if (name == "real-chain" || name == "real-trig" || name == "interval-chain" ||
        name == "interval-trig") {
        bool intervals = name.rfind("interval", 0) == 0;
        std::string text = trig ? speed::SumText(NbOfTerms, speed::TrigTerm)
                                : speed::SumText(NbOfTerms, speed::ChainTerm);
        ZorWBExpression* root = speed::Fill(factory, text).front();
        speed::SetVariables(factory, intervals);
        std::printf("%d nodes\n", speed::CountNodes(root));
        if (intervals) {
            Repeat(times, [&] {
                factory.ResetBuffer(nullptr);
                sink += root->GetValue().GetAsRealInterval().high;
            });
        } else {
            Repeat(times, [&] { sink += root->Eval(); });
        }
    } else if (name == "function-chain" || name == "function-trig" ||
               name == "function-interval-chain" || name == "function-interval-trig" ||
               name == "residuals-system" || name == "jacobian-system") {
        bool system = name.find("system") != std::string::npos;
        std::string text = system ? speed::SystemText(NbOfTerms, speed::ChainTerm)
                           : trig ? speed::SumText(NbOfTerms, speed::TrigTerm)
                                  : speed::SumText(NbOfTerms, speed::ChainTerm);
        std::vector<ZorWBExpression*> filled = speed::Fill(factory, text);
        std::vector<const ZorWBExpression*> roots(filled.begin(), filled.end());
        std::vector<ZorWBVariable*> variables;
        for (int i = 0; i < factory.GetNbOfVariables(); ++i)
            variables.push_back(factory.GetVariable(i));
        ZorWBCompiledFunction function(static_cast<int>(roots.size()), roots.data(),
                                       static_cast<int>(variables.size()), variables.data());
        std::vector<double> point(variables.size());
        std::vector<ZorWBRealInterval> box(variables.size());
        for (std::size_t i = 0; i < point.size(); ++i) {
            point[i] = 0.5 + std::fmod(0.6180339887498949 * static_cast<double>(i), 1.0);
            box[i] = {point[i] - 0.005, point[i] + 0.005};
        }
        std::vector<double> residuals(roots.size());
        std::vector<double> jacobian(static_cast<std::size_t>(function.GetNbOfNonZeros()));
        std::vector<ZorWBRealInterval> images(roots.size());
        std::printf("%d roots, %d variables, %d entries\n", static_cast<int>(roots.size()),
                    static_cast<int>(variables.size()), function.GetNbOfNonZeros());
        Repeat(times, [&] {
            if (name == "jacobian-system") {
                function.EvaluateJacobian(point.data(), residuals.data(), jacobian.data());
            } else if (name.rfind("function-interval", 0) == 0) {
                function.EvaluateIntervals(box.data(), images.data());
                residuals[0] = images[0].high;
            } else {
                function.Evaluate(point.data(), residuals.data());
            }
            sink += residuals[0];
        });
    } else if (name == "system") {
        auto roots = speed::Fill(factory, speed::SystemText(NbOfTerms, speed::ChainTerm));
        speed::SetVariables(factory, false);
        ZorWBVariable* x = factory.GetVariable(ZorQelString("x500"));
        int i = 0;
        Repeat(times, [&] {
            x->SetExprValue(ZorWBValue(0.25 + 0.001 * (i++ & 15)));
            for (const ZorWBExpression* root : roots)
                sink += root->GetValue().GetAsReal();
        });
    } else if (name == "derivative") {
        ZorWBExpression* root =
            speed::Fill(factory, speed::SumText(NbOfTerms, speed::ChainTerm)).front();
        ZorWBVariable* x = factory.GetVariable(ZorQelString("x500"));
        Repeat(times, [&] {
            ZorWBExpression* derivative = factory.CreateDerivative(root, x);
            sink += derivative ? 1.0 : 0.0;
        });
    } else if (name == "parse" || name == "parse-fill") {
        std::string text = ShortEquations(10000);
        Repeat(times, [&] {
            ZorWBModel model;
            ZorQelIntArray ids;
            ZorWBParserMessenger messenger;
            ZorWBParser::Parse(text.c_str(), model, ids, messenger);
            if (name == "parse-fill") {
                ZorWBFactory filled;
                ZorQelIntArray equationIds;
                model.FillFactory(filled, equationIds);
            }
            sink += model.GetNbOfEquations();
        });
    } else if (name == "remove-deep") {
        Repeat(times, [&] {
            ZorWBExpression* e = factory.CreateVariable();
            for (int i = 0; i < 20000; ++i)
                e = factory.CreateSin(e);
            factory.RemoveExpression(e);
        });
    } else {
        return Usage();
    }
    std::printf("%g\n", sink);
    return 0;
}
