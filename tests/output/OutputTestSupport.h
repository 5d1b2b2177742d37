#ifndef TESTS_OUTPUT_TEST_SUPPORT_H
#define TESTS_OUTPUT_TEST_SUPPORT_H

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBEquations.h"
#include "qel/ZorQelStream.h"

// The replay text of one part after writing a factory's system (and, with
// names, the custom equation names).
inline std::string WriteSystem(ZorWBFactory& factory, ZorQelStorage::ReplayPart part, int version,
                               const ZorQelIntArray& simplify = ZorQelIntArray(),
                               bool names = true) {
    ZorWBEquations writer(factory, part, version);
    writer.SetListEqToSimplify(simplify);
    ZorQelStream stream;
    stream.OpenMemory();
    writer.Write(stream, true);
    if (names) writer.WriteEquationNames(stream);
    return stream.GetStorage().WritePart(part).GetStdString();
}

// Reads a replay text into a factory; false when it does not read.
inline bool ReadSystem(const std::string& text, ZorWBFactory& factory,
                       ZorQelStorage::ReplayPart part, int version,
                       ZorQelIntArray* simplify = nullptr) {
    ZorQelStorage storage;
    if (!storage.Read(text)) return false;
    ZorWBEquations reader(factory, part, version);
    bool read = reader.Read(storage, part);
    if (simplify) reader.GetListEqToSimplify(*simplify);
    return read;
}

// Sets an environment variable for the life of the object, then puts the
// previous state back.
class ScopedEnv {
  public:
    ScopedEnv(const char* name, const char* value) : _name(name) {
        const char* old = std::getenv(name);
        _had = old != nullptr;
        if (old) _old = old;
        if (value)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    }
    ~ScopedEnv() {
        if (_had)
            ::setenv(_name.c_str(), _old.c_str(), 1);
        else
            ::unsetenv(_name.c_str());
    }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

  private:
    std::string _name;
    std::string _old;
    bool _had = false;
};

// A fresh empty directory below the test temporary directory.
inline std::filesystem::path FreshDirectory(const std::string& name) {
    std::filesystem::path path = std::filesystem::path(::testing::TempDir()) / ("zorwbx_" + name);
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    return path;
}

// A black box that answers the sum of its arguments.
class SumBlackBox : public ZorWBBBx {
  public:
    explicit SumBlackBox(const char* name) : ZorWBBBx(name) {}
    double Eval() override {
        double sum = 0.0;
        for (int i = 0; i < GetNbOfArguments(); ++i)
            sum += GetArgument(i);
        return sum;
    }
};

// Random equation systems: variables holding values of every kind, and
// equations of every type over expressions that use every kind of node.
class RandomSystem {
  public:
    RandomSystem(ZorWBFactory& factory, unsigned int seed) : _factory(factory), _random(seed) {}

    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }
    bool Chance(int percent) { return Index(100) < percent; }
    double Real() {
        switch (Index(6)) {
            case 0:
                return std::uniform_real_distribution<double>(-1e6, 1e6)(_random);
            case 1:
                return std::ldexp(std::uniform_real_distribution<double>(-1, 1)(_random),
                                  Index(200) - 100);
            case 2:
                return static_cast<double>(Index(21) - 10);  // an integer-looking real
            case 3:
                return Chance(50) ? 3.4028234663852886e+39 : -3.4028234663852886e+39;
            default:
                return std::uniform_real_distribution<double>(-10, 10)(_random);
        }
    }
    int Integer() {
        switch (Index(4)) {
            case 0:
                return Chance(50) ? 2147483647 : -2147483647;
            case 1:
                return std::uniform_int_distribution<int>(-1000000, 1000000)(_random);
            default:
                return Index(21) - 10;
        }
    }

    // Any value. With forConstant, the values that a constant's term text
    // keeps exactly: defined (undefined values are never equal), booleans
    // true or false, enumerations as lists.
    ZorWBValue Value(bool forConstant = false) {
        ZorWBValue value;
        switch (forConstant ? 1 + Index(8) : Index(9)) {
            case 0:
                break;
            case 1:
                value.Set(Integer());
                break;
            case 2:
                value.Set(Real());
                break;
            case 3:
                value.Set(ZorWBIntegerInterval{Integer(), Integer()});
                break;
            case 4:
                value.Set(ZorWBRealInterval{Real(), Real()});
                break;
            case 5: {
                int representation = forConstant ? 0 : Index(4);
                ZorWBIntegerEnum enumeration(static_cast<ZorWBEnumRepresentation>(representation));
                if (representation == 0) {
                    int first = Integer() / 4;
                    for (int i = Index(4) + 1; i > 0; --i)
                        enumeration.Append(first += Index(5) + 1);
                } else if (representation == 1) {
                    enumeration.SetAsIntegerInterval({Index(100), 100 + Index(1000)});
                }
                value.Set(enumeration);
                break;
            }
            case 6: {
                int representation = forConstant ? 0 : Index(4);
                ZorWBRealEnum enumeration(static_cast<ZorWBEnumRepresentation>(representation));
                if (representation == 0) {
                    double first = Real() / 4;
                    for (int i = Index(4) + 1; i > 0; --i)
                        enumeration.Append(first += Index(5) + 0.25);
                } else if (representation == 1) {
                    enumeration.SetAsRealInterval({-Real(), Real()});
                }
                value.Set(enumeration);
                break;
            }
            case 7:
                value.Set(static_cast<ZorWBBoolean>(Index(forConstant ? 2 : 4)));
                break;
            default: {
                static const ZorWBFraction named[] = {{1, 1, 1}, {1, 180, 1}, {180, 1, -1}};
                value.Set(Chance(40) ? named[Index(3)]
                                     : ZorWBCreateFraction(Index(20) - 10, Index(20) + 1,
                                                           Index(5) - 2, 0));
                break;
            }
        }
        return value;
    }

    ZorWBVariable* AddVariable() {
        ZorWBVariable* variable = _factory.CreateVariable();
        if (Chance(70)) variable->SetName(ZorQelString("v_").AppendInt(variable->GetIdx()) + "x");
        variable->SetExprValue(Value());
        if (Chance(30)) variable->Fix(true);
        variables.push_back(variable);
        return variable;
    }

    ZorWBExpression* Constant() {
        switch (Index(6)) {
            case 0:
                return _factory.GetConstant(static_cast<ZorWBPredefinedConst>(Index(11)));
            case 1:
                return _factory.CreateIntegerConstant(Integer());
            case 2:
                return _factory.CreateRealConstant(Real());
            default:
                return _factory.CreateConstant(Value(true));
        }
    }

    ZorWBExpression* Leaf() {
        if (!variables.empty() && Chance(60))
            return variables[static_cast<std::size_t>(Index(static_cast<int>(variables.size())))];
        return Constant();
    }

    // Operands come from the nodes made so far (so nodes are shared) or are
    // new leaves.
    ZorWBExpression* Operand() {
        if (!_nodes.empty() && Chance(50))
            return _nodes[static_cast<std::size_t>(Index(static_cast<int>(_nodes.size())))];
        return Leaf();
    }

    ZorWBExpression* Node() {
        ZorWBFactory& f = _factory;
        using T = ZorWBExpressionType;
        ZorWBExpression* a = Operand();
        ZorWBExpression* b = Operand();
        ZorWBExpression* node = nullptr;
        switch (Index(12)) {
            case 0: {
                static const T unary[] = {T::Sqrt, T::Log,   T::Ln,    T::Exp,   T::Abs,
                                          T::Ceil, T::Floor, T::Round, T::Trunc, T::UnaryMinus};
                node = f.CreateUnaryOperator(unary[Index(10)], a);
                break;
            }
            case 1: {
                static const T trig[] = {T::Sin,  T::Cos,  T::Tan,  T::Asin,  T::Acos,  T::Atan,
                                         T::Sinh, T::Cosh, T::Tanh, T::Asinh, T::Acosh, T::Atanh};
                node = f.CreateTrigonometricOperator(trig[Index(12)], a);
                break;
            }
            case 2: {
                static const T binary[] = {T::Quotient, T::Power, T::Root, T::Atan2,
                                           T::Dim,      T::Sign,  T::Mod};
                node = f.CreateBinaryOperator(binary[Index(7)], a, b);
                break;
            }
            case 3: {
                static const T logic[] = {T::Or,       T::And,       T::Equal,
                                          T::NotEqual, T::LessEqual, T::Implication};
                node = Chance(20) ? f.CreateNot(a) : f.CreateBooleanOperator(logic[Index(6)], a, b);
                break;
            }
            case 4:
            case 5: {
                static const T nary[] = {T::Sum, T::Product, T::Min, T::Max};
                ZorWBExpression* operands[] = {a, b, Operand(), Operand()};
                node = f.CreateAlgebraicOperator(nary[Index(4)], 2 + Index(3), operands);
                break;
            }
            case 6:
                node = f.CreateIfThenElse(a, b, Operand());
                break;
            case 7:
                node = f.CreateStep(a, Real(), Real(), Index(3), -Index(3));
                break;
            case 8: {
                ZorWBExpression* operands[] = {a, b, Operand()};
                node = f.CreateOperator(T::Round, 3, operands);
                break;
            }
            case 9:
                node = f.CreateIntegrateOperator(a, b);
                break;
            case 10: {
                if (blackBoxes.empty()) {
                    blackBoxes.push_back(new SumBlackBox("f"));
                    blackBoxes.push_back(new SumBlackBox("g"));
                }
                ZorWBExpression* operands[] = {a, b};
                // Internal: the factory owns them.
                node = f.DeclareBlackBox(blackBoxes[static_cast<std::size_t>(Index(2))], Index(3),
                                         operands, true);
                break;
            }
            default:
                node = f.CreateSub(a, b);
                break;
        }
        _nodes.push_back(node);
        return node;
    }

    ZorWBExpression* Expression(int size) {
        ZorWBExpression* node = Leaf();
        for (int i = 0; i < size; ++i)
            node = Node();
        return node;
    }

    // Variables, then equations of every type (some removed again, so that
    // ids have gaps, some renamed), and a list of ids to simplify that also
    // names missing equations.
    void Build(int nbOfVariables, int nbOfEquations, int size) {
        for (int i = 0; i < nbOfVariables; ++i)
            AddVariable();
        for (int i = 0; i < nbOfEquations; ++i) {
            ZorWBEquation* equation = _factory.AddEquation(
                Expression(1 + Index(size)), static_cast<ZorWBEquationType>(Index(9)));
            if (Chance(15)) {
                _factory.RemoveEquation(equation);
                continue;
            }
            if (Chance(20)) equation->SetName(ZorQelString("row_").AppendInt(i));
            if (Chance(40)) simplify.Add(equation->GetId());
        }
        if (Chance(50)) simplify.Add(100000 + Index(10));
    }

    std::vector<ZorWBVariable*> variables;
    std::vector<ZorWBBlackBox*> blackBoxes;
    ZorQelIntArray simplify;

  private:
    ZorWBFactory& _factory;
    std::mt19937 _random;
    std::vector<ZorWBExpression*> _nodes;
};

#endif
