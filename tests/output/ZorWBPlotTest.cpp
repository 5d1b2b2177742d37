#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "MathMLText.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBHtmlReport.h"
#include "output/ZorWBPlotSampler.h"
#include "output/ZorWBSvgPlot.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"

namespace {

struct Pixel {
    double x, y;
};

// What a test reads back from an SVG plot with an XML parser.
struct Drawing {
    bool wellFormed = false;
    double frameLeft = 0.0, frameWidth = 0.0;
    std::vector<std::vector<Pixel>> curves;
    std::vector<std::pair<double, double>> zeros;  // data-x and cx

    explicit Drawing(const std::string& svg) {
        xmlDoc* document = xmlReadMemory(svg.data(), static_cast<int>(svg.size()), "plot.svg",
                                         nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR);
        if (!document) return;
        wellFormed = true;
        Read(xmlDocGetRootElement(document));
        xmlFreeDoc(document);
    }

    static std::string Attribute(xmlNode* node, const char* name) {
        xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
        std::string text = value ? reinterpret_cast<const char*>(value) : "";
        xmlFree(value);
        return text;
    }

    void Read(xmlNode* node) {
        for (xmlNode* child : MathMLText::Children(node)) {
            std::string name = MathMLText::Name(child), type = Attribute(child, "class");
            if (name == "rect" && type == "frame") {
                frameLeft = std::stod(Attribute(child, "x"));
                frameWidth = std::stod(Attribute(child, "width"));
            } else if (name == "polyline") {
                curves.emplace_back();
                std::string points = Attribute(child, "points");
                for (char& c : points)
                    if (c == ',') c = ' ';
                std::istringstream list(points);
                Pixel pixel;
                while (list >> pixel.x >> pixel.y)
                    curves.back().push_back(pixel);
            } else if (name == "circle" && type == "zero") {
                zeros.emplace_back(std::stod(Attribute(child, "data-x")),
                                   std::stod(Attribute(child, "cx")));
            }
        }
    }

    // The distance, in pixels, between the two samples of a curve around
    // pixel column x; 0 when no curve passes there.
    double SpacingAround(double x) const {
        for (const std::vector<Pixel>& curve : curves)
            for (std::size_t i = 0; i + 1 < curve.size(); ++i)
                if (curve[i].x <= x && x <= curve[i + 1].x) return curve[i + 1].x - curve[i].x;
        return 0.0;
    }
};

// A polynomial c (x - r1) ... (x - rk) of roots spread over [low, high], as
// the coefficients CreatePolynomialTerm takes (highest power first).
std::vector<double> Polynomial(const std::vector<double>& roots, double scale) {
    std::vector<double> coefficients{scale};
    for (double root : roots) {
        coefficients.push_back(0.0);
        for (std::size_t i = coefficients.size() - 1; i > 0; --i)
            coefficients[i] -= root * coefficients[i - 1];
    }
    return coefficients;
}

std::vector<double> SpreadRoots(std::mt19937& random, double low, double high, int count) {
    std::uniform_real_distribution<double> place(low, high);
    std::vector<double> roots;
    while (static_cast<int>(roots.size()) < count) {
        double root = place(random);
        bool apart = std::all_of(roots.begin(), roots.end(), [&](double other) {
            return std::fabs(other - root) > 0.03 * (high - low);
        });
        if (apart && std::fabs(root - low) > 1e-3 && std::fabs(high - root) > 1e-3)
            roots.push_back(root);
    }
    return roots;
}

}  // namespace

// A generated polynomial of planted roots, in product form (its value
// near each root is exact to rounding) or expanded (its value near a root
// is mostly rounding noise).
struct PlantedPolynomial {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    double low, high;
    std::vector<double> roots;
    ZorWBExpression* root = nullptr;

    PlantedPolynomial(std::mt19937& random, int degree, bool expanded) {
        x->SetName("x");
        low = std::uniform_real_distribution<double>(-50.0, 10.0)(random);
        high = low + std::uniform_real_distribution<double>(0.5, 80.0)(random);
        roots = SpreadRoots(random, low, high, degree);
        double scale = std::pow(10.0, std::uniform_int_distribution<int>(-3, 3)(random)) *
                       (random() % 2 ? 1.0 : -1.0);
        if (expanded) {
            std::vector<double> coefficients = Polynomial(roots, scale);
            root = factory.CreatePolynomialTerm(degree, coefficients.data(), x);
        } else {
            root = factory.CreateRealConstant(scale);
            for (double r : roots)
                root = factory.CreateProduct(root,
                                             factory.CreateSub(x, factory.CreateRealConstant(r)));
        }
        std::sort(roots.begin(), roots.end());
    }

    // Plots the polynomial and checks each marker against its root: at most
    // one sample away, or tolerance pixels where samples are closer.
    void CheckMarkers(double tolerance) {
        ZorWBPlotData data = ZorWBPlotSampler::SampleRoot(root, x, low, high);
        Drawing drawing(ZorWBSvgPlot::Write(data, "x", "p(x)", "plot").GetStdString());
        ASSERT_TRUE(drawing.wellFormed);
        ASSERT_EQ(drawing.zeros.size(), roots.size())
            << "[" << low << ", " << high << "] roots " << ::testing::PrintToString(roots)
            << " zeros " << ::testing::PrintToString(data.zeros);
        double pixelWidth = (high - low) / drawing.frameWidth;
        for (std::size_t i = 0; i < roots.size(); ++i) {
            auto [dataX, cx] = drawing.zeros[i];
            double pixel = drawing.frameLeft + (roots[i] - low) / pixelWidth;
            double spacing = std::max(drawing.SpacingAround(pixel), tolerance);
            EXPECT_LE(std::fabs(cx - pixel), spacing) << roots[i];
            EXPECT_LE(std::fabs(dataX - roots[i]), spacing * pixelWidth) << roots[i];
        }
    }
};

// The property plots are drawn for: every zero of the function is marked,
// within one sample of where it truly is, and no other point is. (Pixel
// coordinates are written to 0.01 pixel.)
TEST(ZorWBPlot, ZerosOfGeneratedPolynomialsAreMarkedWithinOneSample) {
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        PlantedPolynomial(random, 1 + round % 6, false).CheckMarkers(0.01);
    }
}

// Rounding makes an expanded polynomial cross 0 several times around each
// root: still one marker each, within half a pixel.
TEST(ZorWBPlot, ExpandedPolynomialsGetOneMarkerPerZeroDespiteRounding) {
    std::mt19937 random(12);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        PlantedPolynomial(random, 1 + round % 5, true).CheckMarkers(0.5);
    }
}

TEST(ZorWBPlot, DomainErrorsAreGapsThatEndWhereTheDomainDoes) {
    ZorWBPlotData data = ZorWBPlotSampler::Sample([](double x) { return std::sqrt(x); }, -1.0, 1.0);
    auto first = std::find_if(data.samples.begin(), data.samples.end(),
                              [](const ZorWBPlotPoint& p) { return !std::isnan(p.y); });
    ASSERT_NE(first, data.samples.end());
    EXPECT_GE(first->x, 0.0);
    EXPECT_LT(first->x, 1e-6);
    EXPECT_TRUE(std::isnan((first - 1)->y));
    Drawing drawing(ZorWBSvgPlot::Write(data, "x", "sqrt", "p").GetStdString());
    EXPECT_EQ(drawing.curves.size(), 1u);
    ASSERT_EQ(data.zeros.size(), 1u);
    EXPECT_EQ(data.zeros[0], 0.0);
}

TEST(ZorWBPlot, JumpsAndPolesBreakTheCurveWithoutFalseZeros) {
    ZorWBPlotData pole = ZorWBPlotSampler::Sample([](double x) { return 1.0 / x; }, -1.0, 1.0);
    EXPECT_TRUE(pole.zeros.empty());
    EXPECT_EQ(Drawing(ZorWBSvgPlot::Write(pole, "x", "1/x", "p").GetStdString()).curves.size(), 2u);
    ZorWBPlotData steps =
        ZorWBPlotSampler::Sample([](double x) { return std::floor(x) - 1.5; }, 0.0, 3.5);
    EXPECT_TRUE(steps.zeros.empty());
    EXPECT_EQ(Drawing(ZorWBSvgPlot::Write(steps, "x", "f", "p").GetStdString()).curves.size(), 4u);
    ZorWBPlotData tangent =
        ZorWBPlotSampler::Sample([](double x) { return std::tan(x); }, -4.0, 4.0);
    ASSERT_EQ(tangent.zeros.size(), 3u);
    EXPECT_NEAR(tangent.zeros[0], -M_PI, 1e-9);
    EXPECT_NEAR(tangent.zeros[2], M_PI, 1e-9);
}

TEST(ZorWBPlot, SteepPartsGetTheSamplesTheirDrawingNeeds) {
    auto f = [](double x) { return std::tanh(100.0 * x); };
    ZorWBPlotData data = ZorWBPlotSampler::Sample(f, -1.0, 1.0);
    double tolerance = (data.yHigh - data.yLow) * ZorWBPlotSampler::Flatness;
    double steepSpacing = 0.0, flatSpacing = 1.0;
    for (std::size_t i = 0; i + 1 < data.samples.size(); ++i) {
        const ZorWBPlotPoint &a = data.samples[i], &b = data.samples[i + 1];
        double middle = 0.5 * (a.x + b.x);
        EXPECT_LE(std::fabs(f(middle) - 0.5 * (a.y + b.y)), tolerance) << middle;
        if (std::fabs(a.x) < 0.01) steepSpacing = std::max(steepSpacing, b.x - a.x);
        if (std::fabs(a.x) > 0.9) flatSpacing = std::min(flatSpacing, b.x - a.x);
    }
    EXPECT_LT(steepSpacing, flatSpacing / 3.0);
    EXPECT_LT(data.samples.size(), 2000u);
}

TEST(ZorWBPlot, TicksAreNiceStepsWithinTheRange) {
    EXPECT_EQ(ZorWBSvgPlot::Ticks(0.0, 1.0, 5),
              (std::vector<double>{0.0, 0.2, 0.4, 0.6000000000000001, 0.8, 1.0}));
    std::vector<double> ticks = ZorWBSvgPlot::Ticks(-37.0, 912.0, 6);
    EXPECT_EQ(ticks.front(), 0.0);
    EXPECT_EQ(ticks[1] - ticks[0], 200.0);
    EXPECT_EQ(ZorWBSvgPlot::TickLabel(0.6000000000000001, 0.2).GetStdString(), "0.6");
    EXPECT_EQ(ZorWBSvgPlot::TickLabel(-2e-17, 0.2).GetStdString(), "0.0");
    EXPECT_EQ(ZorWBSvgPlot::TickLabel(400.0, 200.0).GetStdString(), "400");
    EXPECT_EQ(ZorWBSvgPlot::TickLabel(3e12, 1e12).GetStdString(), "3e+12");
    EXPECT_TRUE(ZorWBSvgPlot::Ticks(1.0, 1.0, 5).empty());
    EXPECT_TRUE(ZorWBSvgPlot::Ticks(0.0, INFINITY, 5).empty());
}

TEST(ZorWBPlot, NothingToSampleGivesAnEmptyFrame) {
    ZorWBPlotData none = ZorWBPlotSampler::Sample([](double x) { return x; }, 1.0, 1.0);
    EXPECT_TRUE(none.samples.empty());
    ZorWBPlotData nan = ZorWBPlotSampler::Sample([](double) { return NAN; }, 0.0, 1.0);
    EXPECT_TRUE(nan.zeros.empty());
    EXPECT_EQ(ZorWBPlotSampler::SampleRoot(nullptr, nullptr, 0.0, 1.0).samples.size(), 0u);
    for (const ZorWBPlotData& data : {none, nan}) {
        Drawing drawing(ZorWBSvgPlot::Write(data, "<x>", "&", "p").GetStdString());
        EXPECT_TRUE(drawing.wellFormed);
        EXPECT_TRUE(drawing.curves.empty());
    }
}

TEST(ZorWBHtmlReport, APageOfOneMathElementPerEquationThatXmlReads) {
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    ZorWBParser::Parse("x = 10 mm;\ny <= x / 2;\nsin(y);", model, ids, messenger);
    ZorWBHtmlReport report("a <model> & more");
    report.SetSystem(model);
    report.AddGivenValue("x", "2.5");
    report.AddResult("eq0", "[0, 1]", "=", "unknown");
    report.AddResult("eq2", "1.0", "none", "");
    report.SetErrorWord(1);
    report.AddPlot("eq0 against x",
                   ZorWBSvgPlot::Write(ZorWBPlotSampler::Sample([](double v) { return v; }, 0, 1),
                                       "x", "eq0", "plot-1"));
    report.AddPlot("no equation depends on z", "");
    std::string page = report.Write().GetStdString();
    EXPECT_EQ(page.substr(0, 16), "<!DOCTYPE html>\n");
    xmlDoc* document = xmlReadMemory(page.data(), static_cast<int>(page.size()), "page.html",
                                     nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR);
    ASSERT_NE(document, nullptr) << page;
    int maths = 0, svgs = 0, rows = 0;
    std::vector<xmlNode*> stack{xmlDocGetRootElement(document)};
    while (!stack.empty()) {
        xmlNode* node = stack.back();
        stack.pop_back();
        std::string name = MathMLText::Name(node);
        maths += name == "math";
        svgs += name == "svg";
        rows += name == "tr";
        for (xmlNode* child : MathMLText::Children(node))
            stack.push_back(child);
    }
    xmlFreeDoc(document);
    EXPECT_EQ(maths, 3);
    EXPECT_EQ(svgs, 1);
    EXPECT_EQ(rows, 2 + 3);
    EXPECT_NE(page.find("<h1>a &lt;model&gt; &amp; more</h1>"), std::string::npos);
    EXPECT_NE(page.find("<p>error word: 1</p>"), std::string::npos);
    for (unsigned char c : page)
        EXPECT_LT(c, 0x80);
}
