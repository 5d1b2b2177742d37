#include "output/ZorWBGraphText.h"

void ZorWBGraphText::WBGraphNode(ZorQelStream& stream, const char* id, const char* shape,
                                 const char* label) {
    if (shape)
        stream.Printf("  #%s : S(%s) : L(%s) : PSL#\n", id, shape, label);
    else
        stream.Printf("  #%s : L(%s) : PSL#\n", id, label);
}

void ZorWBGraphText::WBGraphEdge(ZorQelStream& stream, const char* from, const char* to,
                                 Arrow arrow) {
    static const char* const formats[] = {"  #%s : T(%s) : OT#\n",
                                          "  #%s : T(%s) : A(diamond) : OTA#\n",
                                          "  #%s : T(%s) : A(ediamond) : OTA#\n"};
    stream.Printf(formats[arrow], from, to);
}

void ZorWBGraphText::DotNode(ZorQelStream& stream, const char* id, const char* shape,
                             const ZorQelString& label) {
    stream.Printf("  %s [shape=%s, label=%s];\n", id, shape, DotQuoted(label).GetString());
}

void ZorWBGraphText::DotEdge(ZorQelStream& stream, const char* from, const char* to, Arrow arrow) {
    static const char* const attributes[] = {"", " [arrowhead=diamond]", " [arrowhead=odiamond]"};
    stream.Printf("  %s -> %s%s;\n", from, to, attributes[arrow]);
}

ZorQelString ZorWBGraphText::DotQuoted(const ZorQelString& text) {
    ZorQelString quoted("\"");
    for (int i = 0; i < text.GetLength(); ++i) {
        unsigned char c = static_cast<unsigned char>(text.GetAt(i));
        if (c == '\n') {
            quoted.Append("\\n");
        } else if (c >= 0x80) {
            quoted.Append("&#").AppendInt(c).AppendChar(';');
        } else {
            if (c == '"' || c == '\\') quoted.AppendChar('\\');
            quoted.AppendChar(static_cast<char>(c));
        }
    }
    return quoted.AppendChar('"');
}
