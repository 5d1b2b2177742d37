#include <gtest/gtest.h>

#include "SymbolicTestSupport.h"
#include "qel/ZorQelStorage.h"
#include "symbolic/ZorWBSymbolicReplay.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

namespace {

using ST = ZorWBSymbolicTransformations;

// Records one run over f, with the operator at the factory's level as hosts
// make it, and returns the recording.
std::string Record(ZorWBFactory& f, unsigned int mode, std::vector<int> ids = {}) {
    ZorQelStream stream;
    stream.OpenMemory();
    ST* st = ZorCreateWBSymbolicTransformations(f.GetWBLevel(), f);
    st->SetMode(mode);
    for (int id : ids)
        st->SetEquationToSimplify(id);
    st->SetReplayStream(&stream);
    st->Run();
    ZorRemove(st);
    return stream.GetText();
}

void Build(ZorWBFactory& f) {
    ZorWBVariable* x = NamedVariable(f, "x");
    ZorWBVariable* y = NamedVariable(f, "y");
    x->SetExprValue(ZorWBValue(2));
    f.AddEquation(f.CreateSum(f.CreateProduct(Int(f, 2), x), f.CreateProduct(Int(f, 3), y)),
                  ZorWBEqualZero, Int(f, 12));
    f.AddEquation(f.CreateSub(x, y), ZorWBLessEqualZero, Int(f, 1));
}

TEST(SymbolicReplayTest, SectionsOfTheNewEngine) {
    ZorWBFactory f;
    Build(f);
    std::string text = Record(f, 18, {1, 42});
    EXPECT_EQ(
        text.find(
            "#!PART 1\n#!OPERATOR QelWBReplay ZorWBSymbolicTransformations ST 1 4294967295\n"),
        0u)
        << text;
    for (const char* expected :
         {"#!VARIABLES 2\nInteger x;\nUndefined y;\n", "#!EQUATIONS 2\n", "#!SIMPLIFY 2\neq1;\n",
          "#!MODE 18\n#!PART 2\n#!RESULT 0\n", "#!INCONSISTENCIES NOTFOUND\n#!VARIABLES 2\n"}) {
        EXPECT_NE(text.find(expected), std::string::npos) << expected << " in\n" << text;
    }
    // The mode written is the one set; the run forces bit 0 afterwards.
    ZorQelStorage storage;
    ASSERT_TRUE(storage.Read(text));
    const ZorQelStorage::Section* equations =
        storage.FindSection("#!EQUATIONS", ZorQelStorage::OutputPart);
    ASSERT_NE(equations, nullptr);
    EXPECT_EQ(equations->header, "2");
}

TEST(SymbolicReplayTest, OldEngineWritesNoListAndNoCheck) {
    ZorWBFactory f;
    f.GetEnvironment().SetUseOldSymbolicTransformations(true);
    Build(f);
    std::string text = Record(f, 18, {1});
    EXPECT_EQ(text.find("#!SIMPLIFY"), std::string::npos);
    EXPECT_EQ(text.find("#!INCONSISTENCIES"), std::string::npos);
    EXPECT_NE(text.find("#!MODE 18\n"), std::string::npos);
}

TEST(SymbolicReplayTest, FreshOperatorWithoutEliminationSaysNotFound) {
    ZorWBFactory f;
    f.AddEquation(Int(f, 1), ZorWBGreaterEqualZero);
    EXPECT_NE(Record(f, 16).find("#!INCONSISTENCIES NOTFOUND\n"), std::string::npos);
    ZorWBFactory g;
    g.CreateVariable();
    g.AddEquation(Int(g, 1), ZorWBGreaterEqualZero);
    EXPECT_NE(Record(g, 18).find("#!INCONSISTENCIES FOUND\n"), std::string::npos);
}

TEST(SymbolicReplayTest, RecordedRunsReplayIdentically) {
    for (unsigned int mode : {0u, 2u, 4u, 6u, 14u, 18u, 31u}) {
        ZorWBFactory f;
        Build(f);
        f.AddEquation(f.CreateSum(f.CreatePower(f.CreateSin(f.GetVariable(0)), 2),
                                  f.CreatePower(f.CreateCos(f.GetVariable(0)), 2)),
                      ZorWBGreaterZero, f.CreateQuotient(Int(f, 1), Int(f, 3)));
        ZorQelStorage recorded;
        ASSERT_TRUE(recorded.Read(Record(f, mode, {2})));
        ZorQelString difference;
        EXPECT_TRUE(ZorWBSymbolicReplay::Replay(recorded, difference))
            << "mode " << mode << ": " << difference.c_str();
        EXPECT_TRUE(difference.IsEmpty());

        ZorWBFactory rebuilt;
        ZorWBSymbolicReplay::Input input;
        ASSERT_TRUE(ZorWBSymbolicReplay::ReadInput(recorded, rebuilt, input));
        EXPECT_EQ(input.mode, mode);
        EXPECT_EQ(input.operatorLevel, f.GetWBLevel());
        EXPECT_EQ(input.equationsToSimplify, ZorQelIntArray(1, 2));
        EXPECT_EQ(rebuilt.GetNbOfEquations(), 3);
    }
}

TEST(SymbolicReplayTest, ARunRecordedAtAnOlderLevelReplaysAtThatLevel) {
    // Below this level the simplifier's final normalisation writes u - v as
    // Sum(u, UnaryMinus(v)); from it on, as Sum(u, Product(-1, v)).
    const unsigned int older = Below(ZorWBLevel::NoFinalNormalisation);
    ZorWBFactory f(older);
    f.AddEquation(f.CreateSub(NamedVariable(f, "u"), NamedVariable(f, "v")), ZorWBLessEqualZero);
    ZorQelStorage recorded;
    ASSERT_TRUE(recorded.Read(Record(f, 4)));
    EXPECT_EQ(ZorWBSymbolicReplay::GetRecordedLevel(recorded), older);
    ZorQelString difference;
    EXPECT_TRUE(ZorWBSymbolicReplay::Replay(recorded, difference)) << difference.c_str();

    // The same run at the newest level records another output.
    ZorWBFactory g;
    g.AddEquation(g.CreateSub(NamedVariable(g, "u"), NamedVariable(g, "v")), ZorWBLessEqualZero);
    ZorQelStorage newest;
    ASSERT_TRUE(newest.Read(Record(g, 4)));
    EXPECT_FALSE(ZorWBSymbolicReplay::FirstDifference(recorded, newest).IsEmpty());

    // Without "#!OPERATOR" the level is a default factory's.
    ZorQelStorage bare;
    EXPECT_EQ(ZorWBSymbolicReplay::GetRecordedLevel(bare), ZorWBFactory().GetWBLevel());
}

TEST(SymbolicReplayTest, DifferencesAreNamed) {
    ZorWBFactory f;
    Build(f);
    std::string text = Record(f, 2);
    ZorQelStorage recorded;
    ASSERT_TRUE(recorded.Read(text));
    // A changed line of the output system.
    std::string changed = text;
    std::size_t at = changed.find("#!PART 2");
    at = changed.find("#!EQUATIONS", at);
    at = changed.find('\n', at) + 1;
    changed.insert(at, "eq9 = x;\n");
    ZorQelStorage altered;
    ASSERT_TRUE(altered.Read(changed));
    ZorQelString difference;
    EXPECT_FALSE(ZorWBSymbolicReplay::Replay(altered, difference));
    EXPECT_EQ(
        difference.GetStdString().find("#!EQUATIONS line 1: recorded 'eq9 = x;', replayed 'eq"), 0u)
        << difference.c_str();
    // Missing and extra sections, and headers.
    ZorQelStorage shorter;
    shorter.Read(text.substr(0, text.find("#!VALUES", text.find("#!PART 2"))));
    EXPECT_EQ(ZorWBSymbolicReplay::FirstDifference(shorter, recorded),
              "#!VALUES: only in the replayed output");
    EXPECT_EQ(ZorWBSymbolicReplay::FirstDifference(recorded, shorter),
              "#!VALUES: only in the recorded output");
    ZorQelStorage header;
    std::string other = text;
    other.replace(other.find("#!RESULT 0"), 10, "#!RESULT 5");
    header.Read(other);
    EXPECT_EQ(ZorWBSymbolicReplay::FirstDifference(header, recorded),
              "#!RESULT: recorded header '5', replayed '0'");
    EXPECT_EQ(ZorWBSymbolicReplay::FirstDifference(recorded, recorded), "");
    // A recording without a mode does not replay.
    ZorQelStorage empty;
    EXPECT_FALSE(ZorWBSymbolicReplay::Replay(empty, difference));
    EXPECT_EQ(difference, "the recorded input does not read");
}

}  // namespace
