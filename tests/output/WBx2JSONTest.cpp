#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>

#include "OutputTestSupport.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "output/WBx2JSON.h"

namespace {

using nlohmann::json;

// Opens the protected operations and keeps the echo out of the test log.
class TestWriter : public WBx2JSON {
  public:
    explicit TestWriter(const ZorWBFactory& factory, int version = 3) : WBx2JSON(factory) {
        ForceVersionOfStream(version);
    }
    using WBx2JSON::AppendProtected;
    using WBx2JSON::ForceVersionOfStream;
    mutable int echoes = 0;
    mutable std::string echoed;

  protected:
    void EchoDocument(const ZorQelString& text) const override {
        ++echoes;
        echoed = text.GetString();
    }
};

// The document written for the expressions, without its closing zero.
std::string Document(const ZorWBFactory& factory, std::vector<const ZorWBExpression*> roots,
                     int version = 3) {
    TestWriter writer(factory, version);
    for (const ZorWBExpression* root : roots)
        writer.Append(root);
    ZorQelString text;
    if (writer.WriteToString(text) != 1) return "<failed>";
    return text.GetString();
}

std::string T(const ZorWBExpression* e) {
    return std::to_string(e->GetTag());
}

}  // namespace

TEST(WBx2JSON, DocumentOfOneIntegerConstant) {
    ZorWBFactory factory;
    ZorWBExpression* five = factory.CreateIntegerConstant(5);
    std::string t = T(five);
    EXPECT_EQ(Document(factory, {five}), "{\"ExprTags\":[" + t + "],\"Exprs\":[{\"Tag\":" + t +
                                             ",\"Type\":2,\"ValData\":5,\"ValType\":1}],"
                                             "\"VersionStr\":3}");
    EXPECT_EQ(Document(factory, {five}, 2), "{\"Exprs\":[{\"Tag\":" + t +
                                                ",\"Type\":2,\"ValData\":5,\"ValType\":1}],"
                                                "\"VersionStr\":2}");
}

TEST(WBx2JSON, NothingAppendedFailsAndLeavesTheStringAlone) {
    ZorWBFactory factory;
    ZorWBFactory other;
    TestWriter writer(factory);
    writer.Append(nullptr);
    writer.Append(other.CreateVariable());
    ZorQelString text("kept");
    EXPECT_EQ(writer.WriteToString(text), 0);
    EXPECT_EQ(text.GetStdString(), "kept");
    EXPECT_EQ(writer.echoes, 0);
    EXPECT_TRUE(writer.GetRootTags().IsEmpty());
}

TEST(WBx2JSON, SuccessEchoesOnStandardOutputAndEndsWithZero) {
    ZorWBFactory factory;
    ZorWBExpression* x = factory.CreateVariable();
    WBx2JSON writer(factory);
    writer.Append(x);
    ZorQelString text("prefix:");
    testing::internal::CaptureStdout();
    ASSERT_EQ(writer.WriteToString(text), 1);
    std::string out = testing::internal::GetCapturedStdout();
    std::string document = text.GetString();
    EXPECT_EQ(out, "Stream of expression in JSON format\n" + document + "\n");
    EXPECT_EQ(document.rfind("prefix:{", 0), 0u);
    ASSERT_EQ(text.GetLength(), static_cast<int>(document.size()) + 1);
    EXPECT_EQ(text.GetAt(text.GetLength() - 1), '\0');
    EXPECT_EQ(writer.GetFirstFlag(), 1);
    EXPECT_EQ(writer.GetSecondFlag(), 1);
}

TEST(WBx2JSON, AppendingTwiceKeepsOneTagOfEach) {
    ZorWBFactory factory;
    ZorWBExpression* x = factory.CreateVariable();
    ZorWBExpression* sum = factory.CreateSum(x, x);
    TestWriter writer(factory);
    writer.Append(sum);
    writer.Append(sum);
    writer.Append(x);
    ASSERT_EQ(writer.GetRootTags().GetSize(), 2);
    EXPECT_EQ(writer.GetRootTags().Get(0), sum->GetTag());
    EXPECT_EQ(writer.GetRootTags().Get(1), x->GetTag());
    EXPECT_EQ(writer.GetNodeTags().GetSize(), 2);
    // A copy duplicates both tag arrays.
    TestWriter copy(writer);
    copy.Append(factory.CreateSin(x));
    EXPECT_EQ(copy.GetNodeTags().GetSize(), 3);
    EXPECT_EQ(writer.GetNodeTags().GetSize(), 2);
}

TEST(WBx2JSON, NodeOrderDependsOnTheVersion) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBExpression* cosine = factory.CreateCos(x);
    ZorWBExpression* sine = factory.CreateSin(x);
    ZorWBExpression* sum = factory.CreateSum(sine, cosine);
    const int X = x->GetTag(), C = cosine->GetTag(), S = sine->GetTag(), R = sum->GetTag();
    for (int version = 0; version < 4; ++version) {
        SCOPED_TRACE(version);
        TestWriter writer(factory, version);
        writer.Append(sum);
        // Collected parents first below version 2, children first from 2 on.
        std::vector<int> collected(writer.GetNodeTags().begin(), writer.GetNodeTags().end());
        const std::vector<int> parentsFirst{R, S, X, C}, childrenFirst{X, S, C, R},
            ascending{X, C, S, R};
        EXPECT_EQ(collected, version < 2 ? parentsFirst : childrenFirst);
        ZorQelString text;
        ASSERT_EQ(writer.WriteToString(text), 1);
        std::vector<int> written;
        json document = json::parse(text.GetString());
        for (const json& node : document["Exprs"])
            written.push_back(node["Tag"].get<int>());
        // Written in ascending tag order below version 2.
        EXPECT_EQ(written, version < 2 ? ascending : childrenFirst);
    }
}

TEST(WBx2JSON, SumOfVariableAndConstant) {
    ZorWBFactory factory;
    ZorWBExpression* sum = nullptr;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBExpression* two = factory.CreateRealConstant(2.0);
    sum = factory.CreateSum(x, two);
    std::string expectedNodes =
        "{\"Divided\":1,\"Fixed\":0,\"HasPref\":0,\"Name\":\"va0\",\"Tag\":" + T(x) +
        ",\"Type\":1,\"ValType\":0},{\"Tag\":" + T(two) +
        ",\"Type\":2,\"ValData\":2.000000,\"ValType\":2},{\"OpChildren\":[" + T(x) + "," + T(two) +
        "],\"Tag\":" + T(sum) + ",\"Type\":10}";
    EXPECT_EQ(Document(factory, {sum}, 3),
              "{\"ExprTags\":[" + T(sum) + "],\"Exprs\":[" + expectedNodes + "],\"VersionStr\":3}");
    EXPECT_EQ(Document(factory, {sum}, 1), "{\"Exprs\":[" + expectedNodes + "],\"VersionStr\":1}");
}

TEST(WBx2JSON, PredefinedConstantsFromVersionOne) {
    ZorWBFactory factory;
    ZorWBExpression* one = factory.GetOne();
    std::string t = T(one);
    EXPECT_EQ(Document(factory, {one}, 0), "{\"Exprs\":[{\"Tag\":" + t +
                                               ",\"Type\":2,\"ValData\":1,\"ValType\":1}],"
                                               "\"VersionStr\":0}");
    EXPECT_EQ(Document(factory, {one}, 1),
              "{\"Exprs\":[{\"PreDefined\":8,\"Tag\":" + t + ",\"Type\":2}],\"VersionStr\":1}");
    ZorWBExpression* pi = factory.GetPi();
    EXPECT_EQ(Document(factory, {pi}, 0), "{\"Exprs\":[{\"FracData\":[1,1,1],\"Tag\":" + T(pi) +
                                              ",\"Type\":2,\"ValType\":8}],\"VersionStr\":0}");
}

TEST(WBx2JSON, VariableMembersAndUnescapedNames) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    x->SetName("say \"hi\"");
    x->SetPreferedValue(0.5);
    x->Fix(true);
    x->SetDividedFlag(3);
    x->SetExprValue(ZorWBValue(-4));
    EXPECT_EQ(Document(factory, {x}, 0),
              "{\"Exprs\":[{\"Divided\":3,\"Fixed\":1,\"HasPref\":1,\"Name\":\"say \"hi\"\","
              "\"PrefValue\":0.500000,\"Tag\":" +
                  T(x) + ",\"Type\":1,\"ValData\":-4,\"ValType\":1}],\"VersionStr\":0}");
}

TEST(WBx2JSON, EveryValueKind) {
    ZorWBFactory factory;
    auto valueMembers = [&](const ZorWBValue& value) {
        ZorWBExpression* c = factory.CreateConstant(value);
        std::string document = Document(factory, {c}, 2);
        std::string head = "{\"Exprs\":[{";
        std::size_t start = document.find(",\"Type\":2") + 9;
        return document.substr(0, head.size()) == head
                   ? document.substr(head.size(), document.find("\"Tag\"") - head.size()) + "|" +
                         document.substr(start, document.find("}],") - start)
                   : document;
    };
    EXPECT_EQ(valueMembers(ZorWBValue()), "|,\"ValType\":0");
    EXPECT_EQ(valueMembers(ZorWBValue(2.25)), "|,\"ValData\":2.250000,\"ValType\":2");
    EXPECT_EQ(valueMembers(ZorWBValue(ZorWBIntegerInterval{-1, 5})),
              "|,\"ValData\":[-1,5],\"ValType\":3");
    EXPECT_EQ(valueMembers(ZorWBValue(ZorWBRealInterval{-1, 5})),
              "|,\"ValData\":[-1.000000,5.000000],\"ValType\":4");
    ZorWBValue list;
    const int elements[] = {3, 1};
    list.Set(2, elements);
    EXPECT_EQ(valueMembers(list), "|,\"ValData\":[1,3],\"ValEType\":0,\"ValType\":5");
    ZorWBIntegerEnum interval(ZorWBEnumAny);
    interval.SetAsIntegerInterval({2, 900});
    EXPECT_EQ(valueMembers(ZorWBValue(interval)),
              "|,\"ValData\":[2,900],\"ValEType\":1,\"ValType\":5,\"ValType\":3");
    ZorWBRealEnum realInterval(ZorWBEnumAny);
    realInterval.SetAsRealInterval({0.5, 1.5});
    EXPECT_EQ(valueMembers(ZorWBValue(realInterval)),
              "|,\"ValData\":[0.500000,1.500000],\"ValEType\":1,\"ValType\":6,\"ValType\":4");
    ZorWBValue reals;
    const double realElements[] = {0.25};
    reals.Set(1, realElements);
    EXPECT_EQ(valueMembers(reals), "|,\"ValData\":[0.250000],\"ValEType\":0,\"ValType\":6");
    EXPECT_EQ(valueMembers(ZorWBValue(ZorWBIntegerEnum(ZorWBEnumAny))),
              "|,\"ValEType\":2,\"ValType\":5");
    EXPECT_EQ(valueMembers(ZorWBValue(ZorWBRealEnum(ZorWBEnumNil))),
              "|,\"ValEType\":3,\"ValType\":6");
    EXPECT_EQ(valueMembers(ZorWBValue(ZorWBUnknown)), "|,\"ValData\":2,\"ValType\":7");
    EXPECT_EQ(valueMembers(ZorWBValue(ZorWBCreateFraction(-2, 3, -1, 0))),
              "\"FracData\":[-2,3,-1],|,\"ValType\":8");
}

TEST(WBx2JSON, OperatorMembers) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBExpression* step = factory.CreateStep(x, 1, -2, 0.5, 4);
    std::string document = Document(factory, {step});
    EXPECT_NE(
        document.find("{\"OpChildren\":[" + T(x) + "],\"Tag\":" + T(step) +
                      ",\"Type\":28,\"UnaryOpParams\":[1.000000,-2.000000,0.500000,4.000000]}"),
        std::string::npos);
    ZorWBExpression* root = factory.CreateSqrt(x);
    EXPECT_NE(Document(factory, {root}).find("\"Type\":15,\"UnaryOpParams\":[]}"),
              std::string::npos);
    ZorWBExpression* sine = factory.CreateSin(x);
    EXPECT_NE(Document(factory, {sine})
                  .find("{\"OpChildren\":[" + T(x) + "],\"Tag\":" + T(sine) + ",\"Type\":19}"),
              std::string::npos);
    ZorWBBBx* named = new ZorWBBBx("curve");
    ZorWBExpression* args[] = {x, x};
    ZorWBExpression* call = factory.DeclareBlackBox(named, 2, args, true);
    EXPECT_NE(Document(factory, {call})
                  .find("{\"BBxInternal\":1,\"BBxName\":\"curve\","
                        "\"BBxNameFlag\":1,\"OpChildren\":[" +
                        T(x) + "," + T(x) + "],\"Tag\":" + T(call) + ",\"Type\":44}"),
              std::string::npos);
    ZorWBBBx* defaultNamed = new ZorWBBBx();
    ZorWBExpression* empty = factory.DeclareBlackBox(defaultNamed, 0, nullptr, true);
    std::string name = static_cast<ZorWBBlackBoxOperator*>(empty)->GetBlackBoxName().GetString();
    EXPECT_EQ(Document(factory, {empty}),
              "{\"ExprTags\":[" + T(empty) + "],\"Exprs\":[{\"BBxInternal\":1,\"BBxName\":\"" +
                  name + "\",\"BBxNameFlag\":0,\"OpChildren\":[],\"Tag\":" + T(empty) +
                  ",\"Type\":44}],\"VersionStr\":3}");
}

TEST(WBx2JSON, NodesThatCannotBeWrittenFailTheDocument) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    ZorWBExpression* kept = factory.CreateSin(x);
    factory.UseTemporaryStorage(true);
    ZorWBExpression* temporary = factory.CreateCos(x);  // not found by its tag
    TestWriter writer(factory);
    writer.Append(kept);
    writer.Append(temporary);
    ZorQelString text("unchanged");
    EXPECT_EQ(writer.WriteToString(text), 0);
    EXPECT_EQ(text.GetStdString(), "unchanged");
    EXPECT_EQ(writer.echoes, 0);
    factory.UseTemporaryStorage(false);
}

TEST(WBx2JSON, VersionIsForcedOnlyToZeroUpToThree) {
    ZorWBFactory factory;
    TestWriter writer(factory);
    EXPECT_EQ(writer.GetVersionOfStream(), 3);
    EXPECT_EQ(WBx2JSON::GetVersionOfStreamDefault(), 3);
    writer.ForceVersionOfStream(4);
    EXPECT_EQ(writer.GetVersionOfStream(), 3);
    writer.ForceVersionOfStream(-1);
    EXPECT_EQ(writer.GetVersionOfStream(), 3);
    for (int version : {0, 1, 2, 3}) {
        writer.ForceVersionOfStream(version);
        EXPECT_EQ(writer.GetVersionOfStream(), version);
    }
}

TEST(WBx2JSON, WritesFiles) {
    std::filesystem::path directory = FreshDirectory("json_files");
    ZorWBFactory factory;
    ZorWBExpression* x = factory.CreateVariable();
    TestWriter writer(factory);
    writer.Append(x);
    std::string path = (directory / "doc.json").string();
    ASSERT_EQ(writer.WriteToFile(path), 1);
    std::ifstream file(path);
    std::stringstream content;
    content << file.rdbuf();
    EXPECT_EQ(content.str(), writer.echoed + "\n");
    EXPECT_FALSE(json::parse(writer.echoed, nullptr, false).is_discarded());
    EXPECT_EQ(writer.WriteToFile((directory / "missing" / "doc.json").string()), 0);
    // A document that cannot be written leaves an empty line.
    TestWriter empty(factory);
    std::string emptyPath = (directory / "empty.json").string();
    ASSERT_EQ(empty.WriteToFile(emptyPath), 1);
    std::ifstream emptyFile(emptyPath);
    std::stringstream emptyContent;
    emptyContent << emptyFile.rdbuf();
    EXPECT_EQ(emptyContent.str(), "\n");
}

TEST(WBx2JSON, RandomGraphsGiveValidDocumentsOfTheirNodes) {
    for (unsigned int seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        ZorWBFactory factory;
        RandomSystem system(factory, seed);
        for (int i = 0; i < 3; ++i)
            system.AddVariable()->SetExprValue(system.Value(true));
        std::vector<const ZorWBExpression*> roots;
        for (int i = 0; i < 3; ++i)
            roots.push_back(system.Expression(1 + system.Index(20)));
        int version = static_cast<int>(seed % 4);
        json document = json::parse(Document(factory, roots, version));
        EXPECT_EQ(document["VersionStr"], version);
        // Every node reached is written once; children refer to written nodes.
        std::set<int> reached;
        for (const ZorWBExpression* root : roots) {
            std::vector<const ZorWBExpression*> stack{root};
            while (!stack.empty()) {
                const ZorWBExpression* node = stack.back();
                stack.pop_back();
                reached.insert(node->GetTag());
                for (int i = 0; i < node->GetNbOfChildren(); ++i)
                    stack.push_back(node->GetChild(i));
            }
        }
        std::map<int, int> position;
        for (const json& node : document["Exprs"]) {
            int tag = node["Tag"];
            EXPECT_TRUE(position.emplace(tag, static_cast<int>(position.size())).second);
            const ZorWBExpression* e = factory.GetExpressionFromTag(tag);
            ASSERT_NE(e, nullptr);
            EXPECT_EQ(node["Type"], static_cast<int>(e->GetType()));
            if (e->IsLeaf()) continue;
            ASSERT_EQ(node["OpChildren"].size(), static_cast<std::size_t>(e->GetNbOfChildren()));
            for (int i = 0; i < e->GetNbOfChildren(); ++i)
                EXPECT_EQ(node["OpChildren"][static_cast<std::size_t>(i)],
                          e->GetChild(i)->GetTag());
        }
        EXPECT_EQ(position.size(), reached.size());
        for (int tag : reached)
            EXPECT_EQ(position.count(tag), 1u);
        for (const json& node : document["Exprs"]) {
            if (!node.contains("OpChildren")) continue;
            for (int child : node["OpChildren"]) {
                if (version >= 2) {
                    EXPECT_LT(position[child], position[node["Tag"]]);
                }
            }
        }
        if (version < 2) {
            std::vector<int> tags;
            for (const auto& entry : position)
                tags.push_back(entry.second);
            EXPECT_TRUE(std::is_sorted(tags.begin(), tags.end()));
        }
        if (version == 3) {
            std::vector<int> expected;
            for (const ZorWBExpression* root : roots) {
                if (std::find(expected.begin(), expected.end(), root->GetTag()) == expected.end())
                    expected.push_back(root->GetTag());
            }
            EXPECT_EQ(document["ExprTags"].get<std::vector<int>>(), expected);
        } else {
            EXPECT_FALSE(document.contains("ExprTags"));
        }
    }
}

TEST(WBx2JSON, GraphAMillionNodesDeepIsWritten) {
    const int depth = 1000000;
    ZorWBFactory factory;
    ZorWBExpression* e = factory.CreateVariable();
    for (int i = 0; i < depth; ++i)
        e = factory.CreateUnaryMinus(e);
    TestWriter writer(factory, 3);
    writer.Append(e);
    ASSERT_EQ(writer.GetNodeTags().GetSize(), depth + 1);
    EXPECT_EQ(writer.GetNodeTags().Get(0), 0);
    EXPECT_EQ(writer.GetNodeTags().Get(depth), e->GetTag());
    ZorQelString text;
    ASSERT_EQ(writer.WriteToString(text), 1);
    std::string tail = "{\"OpChildren\":[" + std::to_string(depth - 1) + "],\"Tag\":" + T(e) +
                       ",\"Type\":45,\"UnaryOpParams\":[]}],\"VersionStr\":3}";
    EXPECT_EQ(std::string(text.GetString()).substr(std::strlen(text.GetString()) - tail.size()),
              tail);
    TestWriter parentsFirst(factory, 0);
    parentsFirst.Append(e);
    EXPECT_EQ(parentsFirst.GetNodeTags().Get(0), e->GetTag());
    EXPECT_EQ(parentsFirst.GetNodeTags().Get(depth), 0);
}
