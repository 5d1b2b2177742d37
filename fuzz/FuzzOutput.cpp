// The writers on generated graphs: the JSON document parses (nlohmann-json)
// and lists every collected node once with children that it lists too; the
// replay sections of a system read back into a new factory and write again
// to the same text; printing, evaluation, differentiation and destruction
// run without fault.

#include <nlohmann/json.hpp>

#include <set>
#include <string>

#include "FuzzBytes.h"
#include "FuzzGraph.h"
#include "expressions/ZorWBEquation.h"
#include "output/WBx2JSON.h"
#include "output/ZorWBEquationPrinter.h"
#include "output/ZorWBEquations.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelStream.h"

namespace {

// The writer without its echo on the standard output.
class QuietJson : public WBx2JSON {
  public:
    using WBx2JSON::WBx2JSON;

  protected:
    void EchoDocument(const ZorQelString&) const override {}
};

// Names are written unescaped, so only a document of readable names must
// parse.
void CheckJson(const ZorWBFactory& factory, FuzzGraph& graph, FuzzBytes& in, bool readableNames) {
    QuietJson writer(factory);
    for (int i = 1 + in.Index(3); i > 0; --i)
        writer.Append(graph.AnyNode());
    ZorQelString text;
    if (!writer.WriteToString(text)) return;
    std::string document = text.GetStdString();
    FUZZ_CHECK(!document.empty() && document.back() == '\0', "the document lacks its final zero");
    document.pop_back();
    if (!readableNames) return;
    nlohmann::json parsed = nlohmann::json::parse(document, nullptr, false);
    FUZZ_CHECK(!parsed.is_discarded(), "the JSON document does not parse:\n" + document);
    FUZZ_CHECK(parsed.is_object() && parsed.contains("Exprs") && parsed["Exprs"].is_array(),
               "the JSON document has no list of expressions");
    FUZZ_CHECK(static_cast<int>(parsed["Exprs"].size()) == writer.GetNodeTags().GetSize(),
               "the JSON document does not list every collected node once");
}

std::string WriteSystem(ZorWBFactory& factory, ZorQelStorage::ReplayPart part, int version,
                        const ZorQelIntArray& simplify) {
    ZorWBEquations writer(factory, part, version);
    writer.SetListEqToSimplify(simplify);
    ZorQelStream stream;
    stream.OpenMemory();
    writer.Write(stream, true);
    writer.WriteEquationNames(stream);
    return stream.GetStorage().WritePart(part).GetStdString();
}

void CheckReplay(ZorWBFactory& factory, FuzzBytes& in, bool readableNames) {
    ZorQelStorage::ReplayPart part =
        in.Chance(50) ? ZorQelStorage::InputPart : ZorQelStorage::OutputPart;
    int version = in.Index(2);
    ZorQelIntArray simplify;
    for (int i = in.Index(3); i > 0; --i)
        simplify.Add(in.Index(8));
    std::string text = WriteSystem(factory, part, version, simplify);
    ZorQelStorage storage;
    bool stored = storage.Read(ZorQelString(text.c_str()));
    if (!readableNames) return;
    FUZZ_CHECK(stored, "the replay text does not store:\n" + text);
    ZorWBFactory copy;
    ZorWBEquations reader(copy, part, version);
    FUZZ_CHECK(reader.Read(storage, part), "the replay text does not read back:\n" + text);
    ZorQelIntArray readSimplify;
    reader.GetListEqToSimplify(readSimplify);
    std::string again = WriteSystem(copy, part, version, readSimplify);
    FUZZ_CHECK(again == text, "the replay text reads back different:\n" + text + "\n" + again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzBytes in(data, size);
    bool readableNames = in.Chance(80);
    ZorWBFactory factory;
    FuzzGraph graph(factory, in, readableNames);
    graph.Build(1 + in.Index(4), 4 + in.Index(40));
    for (int i = in.Index(5); i > 0; --i) {
        ZorWBEquation* equation =
            factory.AddEquation(graph.AnyNode(), static_cast<ZorWBEquationType>(in.Index(9)));
        if (equation && in.Chance(30)) {
            std::string name = readableNames ? "e" + std::to_string(equation->GetId()) : in.Text(4);
            equation->SetName(ZorQelString(name.c_str()));
        }
    }
    CheckJson(factory, graph, in, readableNames);
    // The writers without sharing unfold the graph: keep to graphs whose
    // text stays small, so that each run stays quick (the limit on larger
    // ones has tests of its own).
    bool small = true;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i)
        small = small &&
                FuzzGraph::UnfoldedSize(factory.GetEquation(i)->GetRoot(), 1 << 16) < (1 << 16);
    if (small) {
        CheckReplay(factory, in, readableNames);
        (void)ZorWBEquationPrinter::Print(factory);
    }
    // Unbuffered nodes are computed at each request: keep to graphs where
    // that stays small, so that each run stays quick.
    auto quick = [](const ZorWBExpression* e) {
        return FuzzGraph::UnfoldedSize(e, 1 << 16, true) < (1 << 16);
    };
    ZorWBExpression* node = graph.AnyNode();
    if (node && quick(node)) {
        (void)node->GetValue();
        if (!graph.variables.empty()) {
            ZorWBVariable* x = graph.variables[static_cast<std::size_t>(
                in.Index(static_cast<int>(graph.variables.size())))];
            ZorWBExpression* derivative = factory.CreateDerivative(node, x);
            if (derivative && quick(derivative)) (void)derivative->GetValue();
            x->SetExprValue(graph.Value());
            (void)node->GetValue();
        }
    }
    return 0;
}
