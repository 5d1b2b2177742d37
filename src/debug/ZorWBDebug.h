#ifndef ZORWB_DEBUG_H
#define ZORWB_DEBUG_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpressionType.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

class ZorWBExpression;

// The library's trace facility: one process-wide object holding, for each
// trace category, the verbosity level read once from the environment variable
// "WBxTrace_" followed by the category's name (1 to 5; anything else is 0,
// off), and two counters that indent nested traces. Trace output goes to the
// standard output.
class ZORWBX_API ZorWBDebug {
  public:
    struct WBX_TRACE {
        enum WBX_TRACE_CAT : int {
            JSON = 0,   // JSON writing
            LIFE = 1,   // creation and deletion of objects
            EVAL = 2,   // evaluation
            DIFF = 3,   // differentiation
            EQPR = 4,   // equation printing
            TRANS = 5,  // symbolic transformations
            SOLVE = 6,  // solving
        };
        enum WBX_TRACE_LEVEL : int {
            LEVEL_1 = 1,
            LEVEL_2 = 2,
            LEVEL_3 = 3,
            LEVEL_4 = 4,
            LEVEL_5 = 5,
        };
    };
    static constexpr int NbOfCategories = 7;

    virtual ~ZorWBDebug() = default;

    // The instance, made on the first call (thread-safe) and never deleted.
    static ZorWBDebug* GetWBDebug();

    // Whether the category's level reaches level (false for an unknown category).
    bool ActiveTrace(WBX_TRACE::WBX_TRACE_CAT category, WBX_TRACE::WBX_TRACE_LEVEL level) const;
    int GetLevel(WBX_TRACE::WBX_TRACE_CAT category) const;

    void Tabs_Increase(int n) { _tabs += n; }
    void Tabs_Decrease(int n) { _tabs -= n; }
    // One tab character per tab; nothing while the count is below 1.
    void Tabs_Print() const;
    int GetTabs() const { return _tabs; }

    void Depth_Differentiate_Increase() { ++_depthDifferentiate; }
    void Depth_Differentiate_Decrease() { --_depthDifferentiate; }
    bool Depth_Differentiate_Equals(int depth) const { return _depthDifferentiate == depth; }

    // Writes before, the expression and after (null texts are skipped).
    void PrintExp(const char* before, const ZorWBExpression* expression, const char* after) const;
    // The text PrintExp writes for an expression: a variable's name; a
    // constant's value (a fraction as "{n/d * Pi^p}", the power part only
    // when it is not 0; integers and reals as reals; "??" for other kinds);
    // an operator's type name and its operands in parentheses, separated by
    // ", "; "null expression" for null.
    static ZorQelString ExpStr(const ZorWBExpression* expression);

    static ZorQelString Str(const ZorWBValue& value) { return value.Str(); }
    static ZorQelString Str(bool value) { return value ? "TRUE" : "FALSE"; }
    // "  = 0", " <> 0", " <= 0", " < 0", " >= 0", " > 0", "<minimize>",
    // "<maximize>", and " ? " for unset or unknown types.
    static ZorQelString Str(ZorWBEquationType type);
    // The type's member name, "ERROR" for an unknown number.
    static ZorQelString Str(ZorWBExpressionType type);

  protected:
    ZorWBDebug();
    ZorWBDebug(const ZorWBDebug&) = default;
    ZorWBDebug& operator=(const ZorWBDebug&) = default;

    bool CheckCategory(WBX_TRACE::WBX_TRACE_CAT category) const {
        return category >= 0 && category < NbOfCategories;
    }
    void CommonInitialize();
    // Reads the level of every category, once.
    void InitTraceFromEnv();
    void InitTraceFromEnv(WBX_TRACE::WBX_TRACE_CAT category, const char* name);

    static ZorWBDebug* _TheZorWBDebug;

  private:
    int _depthDifferentiate = 0;
    bool _initialized = false;
    int _levels[NbOfCategories] = {};
    int _tabs = 0;
};

#endif
