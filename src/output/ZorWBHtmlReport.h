#ifndef ZORWB_HTMLREPORT_H
#define ZORWB_HTMLREPORT_H

#include <vector>

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"

class ZorWBModel;

// A self-contained HTML page about a system of equations: the system
// typeset in MathML, the values given to its variables, the value of each
// equation's root and whether its relation holds, and SVG plots. Nothing is
// loaded from elsewhere (the style is inline, there is no script).
//
// The page is polyglot HTML5: an HTML document that is also well-formed XML
// (XHTML namespace, every element closed, only the XML entities and
// numeric character references, ASCII only), so any XML parser reads it.
// It holds exactly one <math> element per equation of the system, in the
// numbered list of the "System" section; every other text is plain.
class ZORWBX_API ZorWBHtmlReport {
  public:
    explicit ZorWBHtmlReport(const ZorQelString& title) : _title(title) {}

    // The system, one numbered item per equation of the model, written by
    // ZorWBEquationMLPrinter with the model's units.
    void SetSystem(const ZorWBModel& model);
    // A variable and the value given to it, as text.
    void AddGivenValue(const ZorQelString& name, const ZorQelString& value);
    // One row of the results: the equation's name, the value of its root, its
    // relation ("=", "<=", ...; "minimize", "none") and whether it holds
    // ("true", "false", "unknown", "empty"; empty text without relation).
    void AddResult(const ZorQelString& name, const ZorQelString& value,
                   const ZorQelString& relation, const ZorQelString& holds);
    // The environment's error word after the evaluation, shown when not 0.
    void SetErrorWord(unsigned int errorWord) { _errorWord = errorWord; }
    // A figure: an <svg> element (ZorWBSvgPlot) and its caption; a caption
    // alone, with an empty svg, is a note in the plots section.
    void AddPlot(const ZorQelString& caption, const ZorQelString& svg);

    // The whole page.
    ZorQelString Write() const;

  private:
    struct Row {
        ZorQelString name, value, relation, holds;
    };
    struct Figure {
        ZorQelString caption, svg;
    };

    void WriteSystem(ZorQelString& out) const;
    void WriteValues(ZorQelString& out) const;
    void WriteResults(ZorQelString& out) const;
    void WritePlots(ZorQelString& out) const;

    ZorQelString _title;
    std::vector<ZorQelString> _equations;  // one <math> element each
    std::vector<std::pair<ZorQelString, ZorQelString>> _given;
    std::vector<Row> _results;
    unsigned int _errorWord = 0;
    std::vector<Figure> _figures;
};

#endif
