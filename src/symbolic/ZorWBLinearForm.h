#ifndef ZORWB_LINEARFORM_H
#define ZORWB_LINEARFORM_H

#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBExpression.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

class ZorWBFactory;

// One linear equality of the elimination: sum of a_j * x_j + remainder = 0,
// one coefficient per factory variable. Only the variables that are present
// are stored (in index order), so a form costs memory in proportion to its
// terms, not to the number of variables.
//
// The remainder is what is not a coefficient times a variable (constant
// terms and compound terms). Its constant part is kept folded as a value, so
// that the repeated substitutions of a long elimination do not build chains
// of constant arithmetic; GetRemainder gives it back as an expression.
class ZORWBX_API ZorWBLinearForm {
  public:
    // Kinds of a coefficient.
    static constexpr unsigned int AbsentKind = 0;
    static constexpr unsigned int OneKind = 1;
    static constexpr unsigned int GeneralKind = 2;
    static constexpr unsigned int MinusOneKind = 0xFFFFFFFFu;
    // Pivot states.
    static constexpr int NoPivot = -1;
    static constexpr int DroppedPivot = -2;

    struct Entry {
        int variable;
        unsigned int kind;
        ZorWBValue value;  // meaningful for the general kind only
    };

    ZorWBLinearForm() = default;

    // Forgets everything: n variables all absent, no remainder, no pivot.
    void Reset(int nbOfVariables);
    int GetNbOfVariables() const { return _nbOfVariables; }

    // The kind a value takes as a coefficient: exactly 0, 1 or -1 give the
    // absent, one and minus-one kinds, anything else the general kind. An
    // integer or real is compared by its real reading, an interval or
    // enumeration by both bounds; a fraction by its real reading from the
    // level ZorWBLevel::FractionAsReal on and never below it; undefined and
    // Boolean values are always general.
    static unsigned int Classify(const ZorWBValue& value, unsigned int level);

    unsigned int GetKind(int j) const;
    // 1, -1, 0 or the stored value.
    ZorWBValue GetCoefficient(int j) const;
    // Classifies value and stores it; ignored outside the variables.
    void SetCoefficient(int j, const ZorWBValue& value, unsigned int level);
    // Sets the one, minus-one or absent kind directly (others are ignored).
    void SetKind(int j, unsigned int kind);
    // The present variables in index order.
    const std::vector<Entry>& GetEntries() const { return _entries; }
    bool HasNonZeroKind() const { return !_entries.empty(); }

    int GetPivot() const { return _pivot; }
    void SetPivot(int pivot) { _pivot = pivot; }

    // ------------------------------------------------------------ remainder
    bool HasRemainder() const { return _remainder || _hasConstant; }
    // The remainder as an expression (a new node for its constant part), or
    // null when there is none.
    ZorWBExpression* GetRemainder(ZorWBFactory& factory) const;
    // Replaces the remainder; null clears it.
    void SetRemainder(ZorWBExpression* remainder);
    // remainder := factor * remainder.
    void ScaleRemainder(ZorWBFactory& factory, const ZorWBValue& factor);
    // remainder := remainder + b * other's remainder (the other remainder
    // itself when b is of the one kind).
    void AddRemainder(ZorWBFactory& factory, const ZorWBLinearForm& other, const ZorWBValue& b,
                      bool bIsOne);

    // ------------------------------------------------------------ elimination
    // The form of a linear root: a variable, a constant times a variable, or
    // a sum of such terms and others (the others make the remainder, and a
    // variable that also occurs in them is moved there). False, with the form
    // reset, when no variable is left.
    bool FillValues(ZorWBFactory& factory, ZorWBExpression* root);
    // A sum read term by term gives each variable its last term only; this
    // gives root with the terms of each repeated variable merged into its
    // first one (coefficients added, a term that cancels dropped), or root
    // itself when no variable repeats. The factory does not merge like terms
    // when it creates nodes, and the simplifier keeps x + x where 2 * x would
    // be heavier, so the elimination merges them before FillValues.
    static ZorWBExpression* MergeRepeatedVariables(ZorWBFactory& factory, ZorWBExpression* root);
    // Whether a general coefficient is not exact.
    bool HasInexactCoefficient(const ZorWBEnvironment& environment) const;
    // this_j := this_j + a_j * b for every variable j of row but p, where a_j
    // is row's coefficient; appends to appeared the variables that were
    // absent here and are present now.
    void AddScaledRow(const ZorWBEnvironment& environment, unsigned int level,
                      const ZorWBLinearForm& row, int p, const ZorWBValue& b,
                      std::vector<int>& appeared);
    // Every coefficient but p's multiplied by factor.
    void ScaleCoefficients(const ZorWBEnvironment& environment, unsigned int level, int p,
                           const ZorWBValue& factor);

    // The trace text: " - x" (kind -1), " + x" (kind 1), " + c * x" (general;
    // integers and reals by their real reading, intervals and enumerations as
    // "[low, high]", other kinds "??"), then " + ##" remainder " ##", then a
    // line end.
    ZorQelString ToString(ZorWBFactory& factory) const;

  private:
    std::vector<Entry>::iterator Find(int j);
    std::vector<Entry>::const_iterator Find(int j) const;
    void AddRemainderTerm(ZorWBFactory& factory, ZorWBExpression* term);
    void AddRemainderConstant(ZorWBFactory& factory, const ZorWBValue& value);

    int _nbOfVariables = 0;
    std::vector<Entry> _entries;
    int _pivot = NoPivot;
    ZorWBExpression* _remainder = nullptr;  // the part that is not a folded constant
    ZorWBValue _constant;                   // the folded constant part
    bool _hasConstant = false;
};

#endif
