#ifndef TESTS_MATHML_TEXT_H
#define TESTS_MATHML_TEXT_H

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

// Reads MathML with libxml2 and writes the tree it holds back in the
// equation language, so that a test can read the text and compare the
// expression with the one that was printed. Fractions, superscripts,
// radicals, bars, cases and integrals become the language's operators and
// calls, with brackets around each part (brackets add no node).
class MathMLText {
  public:
    // The document's text in the language, or "" with error set when the
    // document is not well-formed XML.
    static std::string Read(const std::string& xml, std::string& error) {
        std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> document(
            xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "mathml.xml", nullptr,
                          XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
            xmlFreeDoc);
        if (!document) {
            error = "not well-formed";
            return "";
        }
        return Text(xmlDocGetRootElement(document.get()));
    }

    // The element children of a node.
    static std::vector<xmlNode*> Children(xmlNode* node) {
        std::vector<xmlNode*> children;
        for (xmlNode* child = node->children; child; child = child->next)
            if (child->type == XML_ELEMENT_NODE) children.push_back(child);
        return children;
    }

    static std::string Name(xmlNode* node) { return reinterpret_cast<const char*>(node->name); }

    static std::string Content(xmlNode* node) {
        xmlChar* content = xmlNodeGetContent(node);
        std::string text = content ? reinterpret_cast<const char*>(content) : "";
        xmlFree(content);
        return text;
    }

  private:
    static bool IsOperator(xmlNode* node, const char* text) {
        return node && Name(node) == "mo" && Content(node) == text;
    }

    // An <mrow> of "(", one element, ")": the element.
    static xmlNode* Unbracketed(xmlNode* node) {
        std::vector<xmlNode*> parts = Children(node);
        bool group = Name(node) == "mrow" && parts.size() == 3 && IsOperator(parts[0], "(") &&
                     IsOperator(parts[2], ")");
        return group ? parts[1] : node;
    }

    static std::string Operator(const std::string& symbol) {
        static const std::map<std::string, std::string> symbols = {
            {"+", " + "},       {"\u2212", " - "},  {"\u22C5", " * "},   {"\u2062", " * "},
            {"=", " == "},      {"\u2260", " != "}, {"\u2264", " <= "},  {"<", " < "},
            {"\u2265", " >= "}, {">", " > "},       {"\u2227", " and "}, {"\u2228", " or "},
            {"\u00AC", "!"},    {",", ", "},        {"(", "("},          {")", ")"},
            {"\u2061", ""}};
        auto found = symbols.find(symbol);
        return found == symbols.end() ? "<unknown operator " + symbol + ">" : found->second;
    }

    static std::string Leaf(xmlNode* node) {
        std::string name = Name(node), content = Content(node);
        if (name == "mo") return Operator(content);
        if (content == "\u03C0") return "Pi";
        if (content == "\u221E") return "1e999";
        if (content == "NaN") return "(0.0 / 0.0)";
        return content;
    }

    static std::string Row(const std::vector<xmlNode*>& parts) {
        static const std::map<std::string, std::string> fences = {
            {"|", "abs"}, {"\u230A", "floor"}, {"\u2308", "ceil"}};
        if (parts.size() == 3 && Name(parts[0]) == "mo" && fences.count(Content(parts[0])))
            return fences.at(Content(parts[0])) + "(" + Text(parts[1]) + ")";
        if (parts.size() == 2 && IsOperator(parts[0], "{") && Name(parts[1]) == "mtable")
            return Cases(parts[1]);
        if (parts.size() == 4 && IsOperator(parts[0], "\u222B"))
            return "int(" + Text(parts[1]) + ", " + Text(parts[3]) + ")";
        std::string twice = DoubleNegation(parts);
        if (!twice.empty()) return twice;
        bool logic =
            parts.size() == 3 && (IsOperator(parts[1], "\u2227") || IsOperator(parts[1], "\u2228"));
        std::string text;
        for (xmlNode* part : parts)
            text += Text(logic ? Unbracketed(part) : part);
        return text;
    }

    // The language has no "!(!(...))": not(not(a <= b)) is written
    // "!(a > b)", which reads back as the same two negations.
    static std::string DoubleNegation(const std::vector<xmlNode*>& parts) {
        if (parts.size() != 2 || !IsOperator(parts[0], "\u00AC")) return "";
        std::vector<xmlNode*> inner = Children(Unbracketed(parts[1]));
        if (inner.size() != 2 || !IsOperator(inner[0], "\u00AC")) return "";
        std::vector<xmlNode*> relation = Children(Unbracketed(inner[1]));
        if (relation.size() != 3 || !IsOperator(relation[1], "\u2264")) return "";
        return "!(" + Text(relation[0]) + " > " + Text(relation[2]) + ")";
    }

    // { A if C ; B otherwise }
    static std::string Cases(xmlNode* table) {
        std::vector<xmlNode*> rows = Children(table);
        if (rows.size() != 2) return "<bad cases>";
        std::vector<xmlNode*> first = Children(rows[0]), second = Children(rows[1]);
        std::vector<xmlNode*> condition = Children(Children(first[1])[0]);
        return "if (" + Text(condition[1]) + ") then (" + Text(Children(first[0])[0]) + ") else (" +
               Text(Children(second[0])[0]) + ")";
    }

  public:
    static std::string Text(xmlNode* node) {
        std::string name = Name(node);
        std::vector<xmlNode*> parts = Children(node);
        if (name == "mn" || name == "mi" || name == "mo" || name == "mtext") return Leaf(node);
        if (name == "mspace") return "";
        if (name == "mfrac") return "((" + Text(parts[0]) + ") / (" + Text(parts[1]) + "))";
        if (name == "msup") return "((" + Text(parts[0]) + ") ^ (" + Text(parts[1]) + "))";
        if (name == "msqrt") return "sqrt(" + Text(parts[0]) + ")";
        if (name == "mroot") return "((" + Text(parts[0]) + ") ^ (1 / (" + Text(parts[1]) + ")))";
        if (name == "merror") return "?";
        return Row(parts);
    }
};

#endif
