#include <gtest/gtest.h>

#include <unistd.h>
#include <cstdio>
#include <memory>
#include <random>

#include "qel/ZorQelExpressionTerm.h"
#include "qel/ZorQelOperator.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelStream.h"

namespace {

using Term = std::unique_ptr<ZorQelExpressionTerm>;

Term RandomTerm(std::mt19937& random, int depth) {
    static const char* leaves[] = {"x",     "va3", "(-3)", "[1, 2]", "{1, 2.5}",
                                   "1e-07", "Pi",  "any",  "%_a'b\""};
    static const char* names[] = {"Sum", "Product", "Sin", "aTan2", "Frac", "IfThenElse"};
    if (depth == 0 || random() % 3 == 0)
        return Term(ZorQelExpressionTerm::CreateLeaf(leaves[random() % 9]));
    Term term(ZorQelExpressionTerm::CreateOperator(names[random() % 6], "+"));
    int children = static_cast<int>(random() % 4);
    for (int i = 0; i < children; ++i)
        term->AddChild(RandomTerm(random, depth - 1).release());
    return term;
}

class CountingOperator : public ZorQelOperator {
  public:
    int RunOperator() override {
        ++runs;
        return 7;
    }
    ZorQelString GetOperatorName() const override { return "CountingOperator"; }
    ZorQelString GetOperatorShortName() const override { return "CO"; }
    OperatorInfo& GetOperatorInfo() override {
        static OperatorInfo info("CountingOperator", "CO", "QelTestReplay");
        return info;
    }
    int runs = 0;
};

}  // namespace

TEST(ZorQelStorage, SectionsByPartWithAppendOrReplace) {
    ZorQelStorage storage;
    storage.AddSection("#!MODE", "2", "", ZorQelStorage::InputPart, ZorQelStorage::AppendSection);
    storage.AddSection("#!VALUES", "1", "x = 1;\n", ZorQelStorage::InputPart, 0);
    storage.AddSection("#!VALUES", "1", "x = 2;\n", ZorQelStorage::OutputPart, 0);
    storage.AddSection("#!MODE", "6", "", ZorQelStorage::InputPart, ZorQelStorage::ReplaceSection);
    ASSERT_EQ(storage.GetNbOfSections(), 3);
    EXPECT_EQ(storage.FindSection("#!MODE", ZorQelStorage::InputPart)->header, "6");
    EXPECT_EQ(storage.FindSection("#!VALUES", ZorQelStorage::OutputPart)->body, "x = 2;\n");
    EXPECT_EQ(storage.FindSection("#!MODE", ZorQelStorage::OutputPart), nullptr);
    EXPECT_EQ(storage.GetSection(3), nullptr);
    EXPECT_EQ(storage.WritePart(ZorQelStorage::InputPart),
              "#!PART 1\n#!MODE 6\n#!VALUES 1\nx = 1;\n");
    storage.RemoveSections(ZorQelStorage::InputPart);
    EXPECT_EQ(storage.GetNbOfSections(), 1);
}

TEST(ZorQelStorage, ReadsBackWhatItWrites) {
    ZorQelStorage written;
    written.AddSection("#!VARIABLES", "2", "Real x;\nInteger y = fixed;\n",
                       ZorQelStorage::InputPart, 0);
    written.AddSection("#!MODE", "18", "", ZorQelStorage::InputPart, 0);
    written.AddSection("#!INCONSISTENCIES", "FOUND", "", ZorQelStorage::OutputPart, 0);
    ZorQelString text = written.WritePart(ZorQelStorage::InputPart);
    text.Append(written.WritePart(ZorQelStorage::OutputPart));

    ZorQelStorage read;
    ASSERT_TRUE(read.Read(text));
    EXPECT_EQ(read.WritePart(ZorQelStorage::InputPart),
              written.WritePart(ZorQelStorage::InputPart));
    EXPECT_EQ(read.FindSection("#!INCONSISTENCIES", ZorQelStorage::OutputPart)->header, "FOUND");

    ZorQelStorage rejected;
    EXPECT_FALSE(rejected.Read("body before any section;\n"));
    EXPECT_FALSE(rejected.Read("#!PART 9\n"));
    EXPECT_EQ(rejected.GetNbOfSections(), 0);
    EXPECT_TRUE(rejected.Read("#!PART 1\r\n#!MODE 2\r\n"));
    EXPECT_EQ(rejected.FindSection("#!MODE", ZorQelStorage::InputPart)->header, "2");
    EXPECT_FALSE(rejected.ReadFile("/nonexistent/replay.txt"));
}

TEST(ZorQelStream, WritesAndDropsOnePartOfItsStorage) {
    ZorQelStream stream;
    stream.OpenMemory();
    stream.GetStorage().AddSection("#!MODE", "2", "", ZorQelStorage::InputPart, 0);
    stream.GetStorage().AddSection("#!RESULT", "0", "", ZorQelStorage::OutputPart, 0);
    EXPECT_TRUE(stream.WriteSections(ZorQelStorage::InputPart));
    EXPECT_EQ(stream.GetText(), "#!PART 1\n#!MODE 2\n");
    EXPECT_EQ(stream.GetStorage().GetNbOfSections(), 1);

    char path[] = "/tmp/zorqel-replay-XXXXXX";
    int descriptor = mkstemp(path);
    ASSERT_GE(descriptor, 0);
    close(descriptor);
    ZorQelStream file;
    ASSERT_TRUE(file.OpenFile(path));
    file.GetStorage().AddSection("#!MODE", "4", "", ZorQelStorage::InputPart, 0);
    file.WriteSections(ZorQelStorage::InputPart);
    file.Close();
    ZorQelStorage read;
    EXPECT_TRUE(read.ReadFile(path));
    EXPECT_EQ(read.FindSection("#!MODE", ZorQelStorage::InputPart)->header, "4");
    std::remove(path);
}

TEST(ZorQelExpressionTerm, FunctionalTextReadsBackToTheSameTerm) {
    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        Term term = RandomTerm(random, 5);
        ZorQelString text = term->ToString(true);
        Term read(ZorQelExpressionTerm::Parse(text));
        ASSERT_NE(read, nullptr) << text.GetString();
        ASSERT_EQ(read->ToString(true), text);
    }
}

TEST(ZorQelExpressionTerm, PrintsBothForms) {
    Term sum(ZorQelExpressionTerm::CreateOperator("Sum", "+"));
    sum->AddChild(ZorQelExpressionTerm::CreateLeaf("x"));
    Term minus(ZorQelExpressionTerm::CreateOperator("Minus", "-"));
    minus->AddChild(ZorQelExpressionTerm::CreateLeaf("(-3)"));
    sum->AddChild(minus.release());
    EXPECT_EQ(sum->ToString(true), "Sum(x, Minus((-3)))");
    EXPECT_EQ(sum->ToString(false), "(x+-(-3))");
    ZorQelStream stream;
    stream.OpenMemory();
    sum->Print(stream, true);
    EXPECT_EQ(stream.GetText(), "Sum(x, Minus((-3)))");
    Term empty(ZorQelExpressionTerm::Parse("f()"));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->GetNbOfChildren(), 0);
    EXPECT_EQ(empty->ToString(true), "f()");
}

TEST(ZorQelExpressionTerm, MalformedTextGivesNull) {
    for (const char* text : {"", "   ", "Sum(x, y", "Sum(x,, y)", "Sum(x) y", ")", "Sum(x))",
                             "[1, 2", "Sum(,x)", "Sum(x,)"}) {
        EXPECT_EQ(ZorQelExpressionTerm::Parse(text), nullptr) << text;
    }
    EXPECT_EQ(Term(ZorQelExpressionTerm::CreateLeaf("x"))->GetChild(0), nullptr);
}

TEST(ZorQelExpressionTerm, DeepTermsNeedNoDeepStack) {
    const int depth = 1000000;
    std::string text;
    text.reserve(depth * 6 + 1);
    for (int i = 0; i < depth; ++i)
        text += "Sin(";
    text += "x";
    text.append(depth, ')');
    Term term(ZorQelExpressionTerm::Parse(text));
    ASSERT_NE(term, nullptr);
    EXPECT_EQ(term->ToString(true).GetLength(), static_cast<int>(text.size()));
}

TEST(ZorQelOperator, RecordsInputAndOutputOnlyWhenReplayIsOn) {
    CountingOperator quiet;
    EXPECT_EQ(quiet.Run(), 7);
    EXPECT_FALSE(quiet.FilterReplay());

    ZorQelStream stream;
    stream.OpenMemory();
    CountingOperator recorded;
    recorded.SetQelLevel(52363264);
    recorded.SetReplayStream(&stream);
    recorded.SetReplayFilter("ST CO");
    EXPECT_EQ(recorded.Run(), 7);
    stream.WriteSections(ZorQelStorage::InputPart);
    stream.WriteSections(ZorQelStorage::OutputPart);
    EXPECT_EQ(stream.GetText(),
              "#!PART 1\n#!OPERATOR QelTestReplay CountingOperator CO 1 52363264\n#!PART "
              "2\n#!RESULT 7\n");

    CountingOperator filtered;
    filtered.SetReplayStream(&stream);
    filtered.SetReplayFilter("ST");
    EXPECT_FALSE(filtered.FilterReplay());
    filtered.SetInterrupt(true);
    EXPECT_TRUE(filtered.IsInterrupted());
}
