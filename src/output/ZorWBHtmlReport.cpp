#include "output/ZorWBHtmlReport.h"

#include "output/ZorWBEquationMLPrinter.h"
#include "output/ZorWBMathMLText.h"
#include "parser/ZorWBModel.h"

namespace {

const char* const Style =
    "body{font-family:sans-serif;margin:2em auto;max-width:60em;color:#222}"
    "h1{font-size:1.5em}h2{font-size:1.2em;margin-top:1.6em;border-bottom:1px solid #ccc}"
    "ol.system li{margin:.4em 0}"
    "ol.system math{display:inline math;math-style:normal;font-size:1.15em}"
    "table{border-collapse:collapse}"
    "th,td{border:1px solid #ccc;padding:.25em .6em;text-align:left}"
    "td.value{font-family:monospace}.true{color:#1e7b34}.false{color:#b3261e;font-weight:bold}"
    ".unknown{color:#8a6d00}.empty{color:#b3261e}figure{margin:1em 0}"
    "figcaption{font-size:.9em;color:#555}";

ZorQelString Escaped(const ZorQelString& text) {
    ZorQelString escaped;
    ZorWBMathMLText::AppendEscaped(escaped, text.GetString());
    return escaped;
}

void Cell(ZorQelString& out, const ZorQelString& text, const char* cssClass = nullptr) {
    out += "<td";
    if (cssClass) {
        out += " class=\"";
        out += cssClass;
        out += "\"";
    }
    out += ">";
    out += Escaped(text);
    out += "</td>";
}

}  // namespace

void ZorWBHtmlReport::SetSystem(const ZorWBModel& model) {
    _equations.clear();
    for (const ZorWBEqNode* equation = model.GetFirstEquation(); equation;
         equation = equation->GetNext())
        _equations.push_back(ZorWBEquationMLPrinter::Print(equation));
}

void ZorWBHtmlReport::AddGivenValue(const ZorQelString& name, const ZorQelString& value) {
    _given.emplace_back(name, value);
}

void ZorWBHtmlReport::AddResult(const ZorQelString& name, const ZorQelString& value,
                                const ZorQelString& relation, const ZorQelString& holds) {
    _results.push_back({name, value, relation, holds});
}

void ZorWBHtmlReport::AddPlot(const ZorQelString& caption, const ZorQelString& svg) {
    _figures.push_back({caption, svg});
}

ZorQelString ZorWBHtmlReport::Write() const {
    ZorQelString title = Escaped(_title);
    ZorQelString out(
        "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n<head>\n"
        "<meta charset=\"UTF-8\"/>\n<title>");
    out +=
        title + "</title>\n<style>" + Style + "</style>\n</head>\n<body>\n<h1>" + title + "</h1>\n";
    WriteSystem(out);
    WriteValues(out);
    WriteResults(out);
    WritePlots(out);
    return out + "</body>\n</html>\n";
}

void ZorWBHtmlReport::WriteSystem(ZorQelString& out) const {
    out += "<h2>System</h2>\n";
    if (_equations.empty()) {
        out += "<p>No equation.</p>\n";
        return;
    }
    out += "<ol class=\"system\">\n";
    for (const ZorQelString& math : _equations)
        out += "<li>" + math + "</li>\n";
    out += "</ol>\n";
}

void ZorWBHtmlReport::WriteValues(ZorQelString& out) const {
    out += "<h2>Values given</h2>\n";
    if (_given.empty()) {
        out += "<p>None: every variable ranges over the whole real line.</p>\n";
        return;
    }
    out += "<table>\n<tr><th>variable</th><th>value</th></tr>\n";
    for (const auto& [name, value] : _given) {
        out += "<tr>";
        Cell(out, name);
        Cell(out, value, "value");
        out += "</tr>\n";
    }
    out += "</table>\n<p>The other variables range over the whole real line.</p>\n";
}

void ZorWBHtmlReport::WriteResults(ZorQelString& out) const {
    out +=
        "<h2>Equations</h2>\n<table>\n<tr><th>#</th><th>equation</th><th>value</th>"
        "<th>relation</th><th>holds</th></tr>\n";
    int number = 0;
    for (const Row& row : _results) {
        out += "<tr><td>";
        out.AppendInt(++number);
        out += "</td>";
        Cell(out, row.name);
        Cell(out, row.value, "value");
        Cell(out, row.relation);
        Cell(out, row.holds, row.holds.IsEmpty() ? nullptr : Escaped(row.holds).GetString());
        out += "</tr>\n";
    }
    out += "</table>\n";
    if (_errorWord != 0) {
        out += "<p>error word: ";
        out.AppendInt(_errorWord);
        out += "</p>\n";
    }
}

void ZorWBHtmlReport::WritePlots(ZorQelString& out) const {
    if (_figures.empty()) return;
    out += "<h2>Plots</h2>\n";
    for (const Figure& figure : _figures) {
        if (figure.svg.IsEmpty()) {
            out += "<p>" + Escaped(figure.caption) + "</p>\n";
            continue;
        }
        out += "<figure>" + figure.svg + "<figcaption>" + Escaped(figure.caption) +
               "</figcaption></figure>\n";
    }
}
