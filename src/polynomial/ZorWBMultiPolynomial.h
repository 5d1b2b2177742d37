#ifndef ZORWB_MULTIPOLYNOMIAL_H
#define ZORWB_MULTIPOLYNOMIAL_H

#include <string>
#include <vector>

#include "ZorWBxExport.h"
#include "polynomial/ZorWBPolynomial.h"

// A polynomial in a fixed number of variables x_0, ..., x_(n-1) with
// rational coefficients, held as its non-zero terms (coefficient and one
// exponent per variable), sorted by their exponents in lexicographic
// order. A plain copyable value; operands over different numbers of
// variables combine over the larger number (the missing exponents are 0).
class ZORWBX_API ZorWBMultiPolynomial {
  public:
    // The zero polynomial in nbOfVariables variables (0 or more).
    explicit ZorWBMultiPolynomial(int nbOfVariables = 1);
    static ZorWBMultiPolynomial Constant(int nbOfVariables, const ZorWBRational& value);
    // x_variable (zero for an index outside the variables).
    static ZorWBMultiPolynomial Variable(int nbOfVariables, int variable);
    // p in x_variable.
    static ZorWBMultiPolynomial FromUnivariate(int nbOfVariables, int variable,
                                               const ZorWBPolynomial& p);

    int GetNbOfVariables() const { return _nbOfVariables; }
    int GetNbOfTerms() const { return static_cast<int>(_coefficients.size()); }
    bool IsZero() const { return _coefficients.empty(); }
    // The coefficient of term i (zero outside the terms).
    const ZorWBRational& GetCoefficient(int term) const;
    // The exponent of a variable in term i (0 outside).
    int GetExponent(int term, int variable) const;
    // Adds value times the monomial; false, nothing changed, unless
    // exponents has one non-negative entry per variable.
    bool AddTerm(const ZorWBRational& value, const std::vector<int>& exponents);
    // The degree in one variable (-1 for the zero polynomial).
    int GetDegree(int variable) const;
    int GetTotalDegree() const;
    long long GetNbOfBits() const;
    // Degrees and bits within the limits of ZorWBPolynomial.
    bool IsWithinLimits() const;

    ZorWBMultiPolynomial operator-() const;
    ZorWBMultiPolynomial& operator+=(const ZorWBMultiPolynomial& other);
    ZorWBMultiPolynomial& operator-=(const ZorWBMultiPolynomial& other);
    ZorWBMultiPolynomial& operator*=(const ZorWBMultiPolynomial& other);
    friend ZorWBMultiPolynomial operator+(ZorWBMultiPolynomial a, const ZorWBMultiPolynomial& b) {
        return a += b;
    }
    friend ZorWBMultiPolynomial operator-(ZorWBMultiPolynomial a, const ZorWBMultiPolynomial& b) {
        return a -= b;
    }
    friend ZorWBMultiPolynomial operator*(ZorWBMultiPolynomial a, const ZorWBMultiPolynomial& b) {
        return a *= b;
    }
    // Equal terms (the numbers of variables may differ).
    friend bool operator==(const ZorWBMultiPolynomial& a, const ZorWBMultiPolynomial& b) {
        return IsEqual(a, b);
    }
    friend bool operator!=(const ZorWBMultiPolynomial& a, const ZorWBMultiPolynomial& b) {
        return !IsEqual(a, b);
    }

    // The value at a point (missing coordinates are 0).
    ZorWBRational Evaluate(const std::vector<ZorWBRational>& point) const;
    double Evaluate(const std::vector<double>& point) const;
    // The polynomial in x_variable when no other variable occurs.
    bool ToUnivariate(int variable, ZorWBPolynomial& p) const;
    // Text such as "2*x^2*y - 3*y + 1/2" with the given names (x0, x1, ...
    // for variables without one).
    std::string ToText(const std::vector<std::string>& names = {}) const;

  private:
    static bool IsEqual(const ZorWBMultiPolynomial& a, const ZorWBMultiPolynomial& b);
    // Brings the terms back to order, merging equal monomials and dropping
    // zero coefficients.
    void Normalize();
    void Widen(int nbOfVariables);
    const int* Exponents(int term) const {
        return _exponents.data() + static_cast<std::size_t>(term) * _nbOfVariables;
    }

    int _nbOfVariables;
    std::vector<ZorWBRational> _coefficients;
    std::vector<int> _exponents;  // _nbOfVariables per term
};

// Elimination of one variable between two polynomials in several
// variables. Each answers a status and leaves its outputs untouched unless
// it is Success.
class ZORWBX_API ZorWBMultiResultant {
  public:
    // The resultant of f and g with respect to x_variable, a polynomial in
    // the other variables (over the larger number of variables, x_variable
    // absent): zero at a point of the others exactly when f and g, taken
    // there, have a common root in x_variable or both lose their leading
    // coefficient. Computed modulo primes by evaluation and interpolation,
    // then by Chinese remaindering up to a proven coefficient bound.
    // BadVariable for an index outside the variables.
    static ZorWBPolynomialStatus Resultant(const ZorWBMultiPolynomial& f,
                                           const ZorWBMultiPolynomial& g, int variable,
                                           ZorWBMultiPolynomial& resultant);
    // The subresultant remainder sequence in x_variable of the integer
    // multiples of f and g (denominators cleared), over the integer
    // polynomials in the other variables, the one of higher degree in
    // x_variable first: each element after the first two is, up to sign,
    // the subresultant of its degree (the top one of its block where the
    // degree drops by more than one). The last one is free of x_variable
    // exactly when f and g have no common factor that holds x_variable.
    // ZeroOperand when f or g is zero; BadVariable for an index outside
    // the variables.
    static ZorWBPolynomialStatus Subresultants(const ZorWBMultiPolynomial& f,
                                               const ZorWBMultiPolynomial& g, int variable,
                                               std::vector<ZorWBMultiPolynomial>& sequence);
};

#endif
