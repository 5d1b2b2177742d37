// Generated systems: every equation is built to hold at a known point (random
// linear equalities, inequalities with slack, nonlinear equations), so every
// equation of the transformed system must hold there too.

#include <gtest/gtest.h>

#include "SymbolicTestSupport.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

namespace {

class RandomSystem {
  public:
    RandomSystem(ZorWBFactory& f, unsigned int seed) : _f(f), _random(seed) {
        int n = 2 + Index(6);
        for (int i = 0; i < n; ++i) {
            ZorWBVariable* v = f.CreateVariable();
            _variables.push_back(v);
            _point.push_back(Index(2) ? Index(9) - 4 : Uniform(-3.0, 3.0));
        }
        int equalities = Index(n + 2);
        for (int i = 0; i < equalities; ++i)
            AddLinear(ZorWBEqualZero, 0.0);
        for (int i = Index(4); i > 0; --i)
            AddNonlinear();
        static const ZorWBEquationType relations[] = {ZorWBLessEqualZero, ZorWBLessZero,
                                                      ZorWBGreaterEqualZero, ZorWBGreaterZero};
        for (int i = Index(5); i > 0; --i)
            AddLinear(relations[Index(4)], Uniform(0.5, 2.0));
    }

    void AssignPoint() {
        for (std::size_t i = 0; i < _variables.size(); ++i)
            _variables[i]->SetExprValue(ZorWBValue(_point[i]));
    }

  private:
    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(_random);
    }
    ZorWBVariable* Pick(int& i) {
        i = Index(int(_variables.size()));
        return _variables[std::size_t(i)];
    }

    // sum c_i x_i (relation) b, with b placed so that the point satisfies it
    // with the given slack.
    void AddLinear(ZorWBEquationType type, double slack) {
        // Variables may repeat within one equation.
        std::vector<ZorWBExpression*> terms;
        double value = 0.0;
        for (int k = 1 + Index(3); k > 0; --k) {
            int i = 0;
            ZorWBVariable* v = Pick(i);
            int c = Index(9) - 4;
            if (c == 0) c = 1;
            terms.push_back(c == 1 ? static_cast<ZorWBExpression*>(v)
                                   : _f.CreateProduct(_f.CreateIntegerConstant(c), v));
            value += c * _point[std::size_t(i)];
        }
        ZorWBExpression* left =
            terms.size() == 1 ? terms.front() : _f.CreateSum(int(terms.size()), terms.data());
        bool below = type == ZorWBLessEqualZero || type == ZorWBLessZero;
        double right = value + (below ? slack : -slack);
        _f.AddEquation(left, type, _f.CreateRealConstant(right));
    }

    void AddNonlinear() {
        int i = 0;
        int j = 0;
        ZorWBVariable* a = Pick(i);
        ZorWBVariable* b = Pick(j);
        double u = _point[std::size_t(i)];
        double w = _point[std::size_t(j)];
        switch (Index(3)) {
            case 0:
                _f.AddEquation(_f.CreateProduct(a, b), ZorWBEqualZero,
                               _f.CreateRealConstant(u * w));
                break;
            case 1:
                _f.AddEquation(_f.CreateSum(_f.CreateSin(a), b), ZorWBEqualZero,
                               _f.CreateRealConstant(std::sin(u) + w));
                break;
            default:
                _f.AddEquation(_f.CreateSum(_f.CreatePower(a, 2),
                                            _f.CreateProduct(_f.CreateIntegerConstant(3), b)),
                               ZorWBGreaterEqualZero, _f.CreateRealConstant(u * u + 3 * w - 1.0));
                break;
        }
    }

    ZorWBFactory& _f;
    std::mt19937 _random;
    std::vector<ZorWBVariable*> _variables;
    std::vector<double> _point;
};

void CheckSystems(bool oldEngine) {
    static const unsigned int modes[] = {2, 3, 4, 6, 7, 14, 18, 22, 30};
    int checked = 0;
    for (unsigned int seed = 1; seed <= 400; ++seed) {
        ZorWBFactory f;
        f.GetEnvironment().SetUseOldSymbolicTransformations(oldEngine);
        RandomSystem system(f, seed);
        system.AssignPoint();
        for (ZorWBEquation* e = f.GetFirstEquation(); e; e = e->GetNext())
            ASSERT_TRUE(Holds(e)) << "seed " << seed << ": the generator is wrong";
        unsigned int mode = modes[seed % (sizeof(modes) / sizeof(modes[0]))];
        ZorWBSymbolicTransformations* st = ZorCreateWBSymbolicTransformations(0, f);
        st->SetMode(mode);
        st->Run();
        ZorRemove(st);
        system.AssignPoint();
        for (ZorWBEquation* e = f.GetFirstEquation(); e; e = e->GetNext()) {
            ++checked;
            EXPECT_TRUE(Holds(e)) << "seed " << seed << " mode " << mode << ": "
                                  << Text(e->GetRoot()) << ZorWBDebug::Str(e->GetType()).c_str()
                                  << " is " << Evaluate(e->GetRoot());
        }
    }
    EXPECT_GT(checked, 1000);
}

TEST(TransformationPropertyTest, TransformedEquationsHoldWhereTheSystemHolds) {
    CheckSystems(false);
}

TEST(TransformationPropertyTest, OldEngineToo) {
    CheckSystems(true);
}

TEST(TransformationPropertyTest, EliminationLeavesOneDefinitionPerSolvedVariable) {
    // A square regular system: x_i - x_{i+1} = i, x_{n-1} = 7.
    for (int n : {1, 2, 5, 40}) {
        ZorWBFactory f;
        std::vector<ZorWBVariable*> x;
        for (int i = 0; i < n; ++i)
            x.push_back(f.CreateVariable());
        for (int i = 0; i + 1 < n; ++i)
            f.AddEquation(f.CreateSub(x[std::size_t(i)], x[std::size_t(i + 1)]), ZorWBEqualZero,
                          f.CreateIntegerConstant(i));
        f.AddEquation(x.back(), ZorWBEqualZero, f.CreateIntegerConstant(7));
        ZorWBSymbolicTransformations* st = ZorCreateWBSymbolicTransformations(0, f);
        st->SetMode(2);
        st->Run();
        ZorRemove(st);
        ASSERT_EQ(f.GetNbOfEquations(), n);
        // Every equation is x_i - c_i with c_i = 7 + sum of the later i's.
        for (ZorWBEquation* e = f.GetFirstEquation(); e; e = e->GetNext()) {
            ZorQelListPZorWBVariable present;
            ASSERT_TRUE(e->FindPresentVariables(present));
            ASSERT_EQ(present.GetSize(), 1);
            int i = present.Get(0)->GetIdx();
            double expected = 7.0;
            for (int k = i; k + 1 < n; ++k)
                expected += k;
            present.Get(0)->SetExprValue(ZorWBValue(expected));
            EXPECT_NEAR(Evaluate(e->GetRoot()), 0.0, 1e-9) << "n " << n << " x" << i;
        }
    }
}

}  // namespace
