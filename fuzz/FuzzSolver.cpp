// Propagation and the solver on small random systems built around a planted
// point: each relation is a sum of random terms compared with its value at
// the point (with slack for the inequalities, and an interval constant
// around the value for the terms whose value is rounded), so the point
// satisfies every relation exactly. Propagation over a box around the point
// must keep it, and the solver must keep it in one of its boxes.

#include <cmath>
#include <string>
#include <vector>

#include "FuzzBytes.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBEquationPrinter.h"
#include "solver/ZorWBPropagator.h"
#include "solver/ZorWBSolver.h"

namespace {

class PlantedSystem {
  public:
    PlantedSystem(ZorWBFactory& f, FuzzBytes& in) : _f(f), _in(in) {
        for (int i = 1 + in.Index(3); i > 0; --i) {
            _variables.push_back(f.CreateVariable());
            // Multiples of 1/8: polynomial terms are exact at the point.
            point.push_back((in.Index(33) - 16) / 8.0);
        }
        for (int i = 1 + in.Index(3); i > 0; --i)
            AddRelation();
        for (std::size_t i = 0; i < _variables.size(); ++i) {
            const double below = in.Index(17) / 4.0, above = in.Index(17) / 4.0;
            domains.push_back({point[i] - below, point[i] + above});
        }
    }

    void SetDomains() {
        for (std::size_t i = 0; i < _variables.size(); ++i)
            _variables[i]->SetExprValue(ZorWBValue(domains[i]));
    }

    std::string Describe() const {
        std::string text = ZorWBEquationPrinter::Print(_f).GetStdString() + "point:";
        for (std::size_t i = 0; i < point.size(); ++i) {
            text += " " + std::to_string(point[i]) + " in [" + std::to_string(domains[i].low) +
                    ", " + std::to_string(domains[i].high) + "]";
        }
        return text;
    }

    std::vector<double> point;
    std::vector<ZorWBRealInterval> domains;

  private:
    ZorWBExpression* Variable() {
        return _variables[static_cast<std::size_t>(_in.Index(static_cast<int>(_variables.size())))];
    }

    // A factor; rounded tells whether its value at the point may be inexact.
    ZorWBExpression* Factor(bool& rounded) {
        ZorWBExpression* x = Variable();
        const int form = _in.Index(12);
        rounded = rounded || form >= 4;
        switch (form) {
            case 0:
                return x;
            case 1:
                return _f.CreatePower(x, 2);
            case 2:
                return _f.CreatePower(x, 3);
            case 3:
                return _f.CreateProduct(x, Variable());
            case 4:
                return _f.CreateSin(x);
            case 5:
                return _f.CreateCos(_f.CreateSum(x, Variable()));
            case 6:
                return _f.CreateExp(_f.CreateQuotient(x, _f.GetTwo()));
            case 7:
                return _f.CreateSqrt(_f.CreateSum(_f.CreatePower(x, 2), _f.GetOne()));
            case 8:
                return _f.CreateAtan(x);
            case 9:
                return _f.CreateQuotient(x,
                                         _f.CreateSum(_f.CreatePower(Variable(), 2), _f.GetOne()));
            case 10:  // through the value functions
                return _f.CreateAtan2(x, _f.CreateSum(Variable(), _f.CreateIntegerConstant(5)));
            default:
                return _f.CreateMax(_f.CreateAbs(x), Variable());
        }
    }

    double ValueAtPoint(const ZorWBExpression* e) {
        for (std::size_t i = 0; i < _variables.size(); ++i)
            _variables[i]->SetExprValue(ZorWBValue(point[i]));
        return e->Eval();
    }

    void AddRelation() {
        bool rounded = false;
        ZorWBExpression* sum = nullptr;
        for (int k = 1 + _in.Index(3); k > 0; --k) {
            ZorWBExpression* term =
                _f.CreateProduct(_f.CreateIntegerConstant(_in.Index(9) - 4), Factor(rounded));
            sum = sum ? _f.CreateSum(sum, term) : term;
        }
        const double value = ValueAtPoint(sum);
        if (!std::isfinite(value)) return;
        static const ZorWBEquationType relations[] = {ZorWBEqualZero, ZorWBEqualZero,
                                                      ZorWBLessEqualZero, ZorWBGreaterEqualZero};
        const ZorWBEquationType type = relations[_in.Index(4)];
        const double margin = rounded ? 1e-9 * (1.0 + std::fabs(value)) : 0.0;
        const double slack = type == ZorWBEqualZero ? 0.0 : _in.Index(3) / 2.0 + margin;
        ZorWBValue constant(value);
        if (type == ZorWBEqualZero && rounded)
            constant = ZorWBValue(ZorWBRealInterval{value - margin, value + margin});
        if (type == ZorWBLessEqualZero) constant = ZorWBValue(value + slack);
        if (type == ZorWBGreaterEqualZero) constant = ZorWBValue(value - slack);
        _f.AddEquation(sum, type, _f.CreateConstant(constant));
    }

    ZorWBFactory& _f;
    FuzzBytes& _in;
    std::vector<ZorWBVariable*> _variables;
};

bool Holds(const ZorWBSolverBox& box, const std::vector<double>& point) {
    for (std::size_t v = 0; v < point.size(); ++v) {
        if (!box.GetInterval(static_cast<int>(v)).Contains(point[v])) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzBytes in(data, size);
    ZorWBFactory f;
    PlantedSystem system(f, in);
    system.SetDomains();
    ZorWBPropagator propagator(f);
    ZorWBPropagationResult result = propagator.Propagate();
    FUZZ_CHECK(result.consistent, "propagation proved inconsistent:\n" + system.Describe());
    for (std::size_t i = 0; i < system.point.size(); ++i) {
        ZorWBRealInterval domain =
            f.GetVariable(static_cast<int>(i))->GetExprValue().GetAsRealInterval();
        FUZZ_CHECK(domain.low <= system.point[i] && system.point[i] <= domain.high,
                   "propagation lost the point:\n" + system.Describe());
    }
    system.SetDomains();
    ZorWBSolver solver(f);
    ZorWBSolverOptions options;
    options.eps = 1e-6;
    options.maxCells = 300;
    options.threads = 1 + in.Index(2);
    solver.SetOptions(options);
    ZorWBSolverStatus status = solver.Solve();
    FUZZ_CHECK(status != ZorWBSolverStatus::Failed && status != ZorWBSolverStatus::Infeasible,
               "the solver found no solution:\n" + system.Describe());
    bool kept = false;
    for (int i = 0; i < solver.GetNbOfBoxes() && !kept; ++i)
        kept = Holds(solver.GetBox(i), system.point);
    FUZZ_CHECK(kept, "the solver lost the point:\n" + system.Describe());
    return 0;
}
