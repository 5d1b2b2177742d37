// wbx html and wbx graph --model on the bundled examples, checked with the
// tools people would open their output with: an XML parser (libxml2 and
// xmllint), headless Chromium, and Graphviz's dot.

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "PngImage.h"
#include "WbxRunner.h"
#include "WbxTestFiles.h"

namespace {

namespace fs = std::filesystem;

// Each example with settings and a plot that make its page interesting.
struct Example {
    const char* name;
    std::vector<std::string> options;
};

const Example Examples[] = {
    {"linkage.wbx", {"--set", "a2=0.5", "--set", "px=400", "--plot", "a1=-1.6:1.6"}},
    {"two_statements.wbx", {"--set", "y=2", "--plot", "x=-5:5", "--plot", "y=0:1"}},
    {"conditional.wbx", {"--set", "w=20", "--set", "t=2", "--plot", "c=0:12"}},
};

int Shell(const std::string& command) {
    int raw = std::system(command.c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

// The number of elements of each name in an XML document (empty when it is
// not well-formed).
std::map<std::string, int> ElementCounts(const std::string& xml) {
    std::map<std::string, int> counts;
    xmlDoc* document = xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "page.html", nullptr,
                                     XML_PARSE_NONET | XML_PARSE_NOERROR);
    if (!document) return counts;
    std::vector<xmlNode*> stack{xmlDocGetRootElement(document)};
    while (!stack.empty()) {
        xmlNode* node = stack.back();
        stack.pop_back();
        ++counts[reinterpret_cast<const char*>(node->name)];
        for (xmlNode* child = node->children; child; child = child->next)
            if (child->type == XML_ELEMENT_NODE) stack.push_back(child);
    }
    xmlFreeDoc(document);
    return counts;
}

int Equations(const char* example) {
    WbxRun run = RunWbx({"print", ExamplePath(example).c_str()});
    return static_cast<int>(std::count(run.out.begin(), run.out.end(), '\n'));
}

fs::path WritePage(const Example& example, const fs::path& directory) {
    fs::path page = directory / (std::string(example.name) + ".html");
    std::vector<std::string> arguments{"html", ExamplePath(example.name)};
    arguments.insert(arguments.end(), example.options.begin(), example.options.end());
    arguments.insert(arguments.end(), {"-o", page.string()});
    WbxRun run = RunWbxArguments(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out + run.err, "");
    return page;
}

}  // namespace

TEST(WbxHtml, EveryExamplePageIsXmlWithOneMathElementPerEquationAndItsPlots) {
    fs::path directory = ScratchDirectory("wbx_html_pages");
    for (const Example& example : Examples) {
        SCOPED_TRACE(example.name);
        fs::path page = WritePage(example, directory);
        EXPECT_EQ(Shell("xmllint --noout '" + page.string() + "'"), 0);
        std::string html = ReadFile(page);
        std::map<std::string, int> counts = ElementCounts(html);
        ASSERT_FALSE(counts.empty()) << "not well-formed";
        EXPECT_EQ(counts["math"], Equations(example.name));
        EXPECT_GE(counts["svg"], 1);
        // The rows: a header and one per value given, a header and one per
        // equation.
        int given = static_cast<int>(
            std::count(example.options.begin(), example.options.end(), std::string("--set")));
        EXPECT_EQ(counts["tr"], 1 + given + 1 + Equations(example.name));
        // Self-contained: nothing is loaded from elsewhere.
        for (const char* outside : {"<script", "<link", "<img", "src=", "href=", "@import"})
            EXPECT_EQ(html.find(outside), std::string::npos) << outside;
    }
}

TEST(WbxHtml, PlotsOfAKnownRootMarkItsZeros) {
    fs::path directory = ScratchDirectory("wbx_html_zeros");
    std::ofstream(directory / "cubic.wbx") << "x^3 - 2*x;\n";
    fs::path page = directory / "cubic.html";
    WbxRun run = RunWbxArguments(
        {"html", (directory / "cubic.wbx").string(), "--plot", "x=-2:2", "-o", page.string()});
    ASSERT_EQ(run.status, 0) << run.err;
    std::string html = ReadFile(page);
    EXPECT_NE(html.find("eq0 against x on [-2.0, 2.0], zeros at -1.41421, 0, 1.41421"),
              std::string::npos);
    EXPECT_EQ(ElementCounts(html)["circle"], 3);
}

TEST(WbxHtml, TheExamplePagesRenderInHeadlessChromium) {
    fs::path directory = ScratchDirectory("wbx_html_render");
    for (const Example& example : Examples) {
        SCOPED_TRACE(example.name);
        fs::path page = WritePage(example, directory);
        fs::path png = directory / (std::string(example.name) + ".png");
        fs::path profile = directory / (std::string(example.name) + ".profile");
        fs::create_directories(profile);
        std::string command =
            "timeout 120 chromium --headless --no-sandbox --disable-gpu --disable-quic "
            "--no-first-run --disable-background-networking --disable-component-update "
            "--disable-sync --user-data-dir='" +
            profile.string() + "' --screenshot='" + png.string() +
            "' --window-size=800,1400 'file://" + page.string() + "' >/dev/null 2>&1";
        ASSERT_EQ(Shell(command), 0) << command;
        PngImage image(png.string());
        ASSERT_EQ(image.width, 800);
        ASSERT_EQ(image.height, 1400);
        // Text and lines in several shades, and the curve's blue.
        EXPECT_GT(image.Colours(), 32u);
        EXPECT_GT(image.Count(0x1f, 0x5f, 0xa8, 40), 100);
        int white = image.Count(255, 255, 255, 0);
        EXPECT_LT(white, image.width * image.height * 98 / 100);
    }
}

TEST(WbxGraph, TheModelGraphOfEveryExampleIsAcceptedByDot) {
    fs::path directory = ScratchDirectory("wbx_html_model_graph");
    for (const Example& example : Examples) {
        SCOPED_TRACE(example.name);
        WbxRun dot = RunWbx({"graph", ExamplePath(example.name).c_str(), "--model", "--dot"});
        ASSERT_EQ(dot.status, 0) << dot.err;
        EXPECT_EQ(dot.out.substr(0, 18), "digraph WBModel {\n");
        fs::path file = directory / (std::string(example.name) + ".dot");
        std::ofstream(file) << dot.out;
        EXPECT_EQ(Shell("dot -Tsvg '" + file.string() + "' -o /dev/null"), 0);
        std::string out = directory.string();
        WbxRun text =
            RunWbx({"graph", ExamplePath(example.name).c_str(), "--model", "--out", out.c_str()});
        ASSERT_EQ(text.status, 0) << text.err;
        std::string stem = fs::path(example.name).stem().string();
        EXPECT_EQ(text.out, (directory / ("wbx_" + stem + "_model.WBGraph")).string() + "\n");
        std::string graph = ReadFile(directory / ("wbx_" + stem + "_model.WBGraph"));
        EXPECT_EQ(graph.substr(0, 14), "WBGraph\nstart\n");
        EXPECT_EQ(graph.substr(graph.size() - 4), "end\n");
    }
}
