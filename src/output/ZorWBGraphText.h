#ifndef ZORWB_GRAPHTEXT_H
#define ZORWB_GRAPHTEXT_H

#include "ZorWBxExport.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"

// The lines of the two graph formats that the graph dumps write (the
// ".WBGraph" text and Graphviz DOT), shared by the dumps of factories
// (ZorWBFactoryGraph) and of parsed models (ZorWBModelGraph).
class ZORWBX_API ZorWBGraphText {
  public:
    // How an edge ends at its child: ordered operators mark their first
    // operand with a diamond and the others with an empty one.
    enum Arrow { Plain = 0, Diamond = 1, EmptyDiamond = 2 };

    // "  #ID : S(SHAPE) : L(LABEL) : PSL#", without the S part when shape is
    // null.
    static void WBGraphNode(ZorQelStream& stream, const char* id, const char* shape,
                            const char* label);
    // "  #FROM : T(TO) : OT#", or with " : A(diamond) : OTA#" or
    // " : A(ediamond) : OTA#".
    static void WBGraphEdge(ZorQelStream& stream, const char* from, const char* to, Arrow arrow);

    // "  ID [shape=SHAPE, label="LABEL"];" with the label quoted as
    // DotQuoted writes it.
    static void DotNode(ZorQelStream& stream, const char* id, const char* shape,
                        const ZorQelString& label);
    // "  FROM -> TO;", with [arrowhead=diamond] or [arrowhead=odiamond].
    static void DotEdge(ZorQelStream& stream, const char* from, const char* to, Arrow arrow);
    // A DOT string: in double quotes, with " and \ escaped, a line break as
    // the two characters \n (a centred line break of the label), and each
    // byte of 0x80 and above as an HTML character reference (&#176; for the
    // degree sign), so that any 8-bit text makes valid UTF-8.
    static ZorQelString DotQuoted(const ZorQelString& text);
};

#endif
