#ifndef ZORWB_POLYNOMIAL_H
#define ZORWB_POLYNOMIAL_H

#include <initializer_list>
#include <string>
#include <vector>

#include "ZorWBxExport.h"
#include "polynomial/ZorWBRational.h"

// What the polynomial algorithms answer. Nothing in them throws; an
// operation that cannot give its result says why.
enum class ZorWBPolynomialStatus : int {
    Success = 0,
    // An operand that must not be the zero polynomial is (a divisor, a
    // denominator, both operands of a greatest common divisor of two zeros
    // is fine and gives zero).
    ZeroOperand = 1,
    // An operand or an intermediate result passes the size limits below.
    TooLarge = 2,
    // The antiderivative needs roots of degree above 2 (see
    // ZorWBRationalIntegration).
    RootsBeyondQuadratic = 3,
    // A variable index outside the polynomial's variables, or operands over
    // different numbers of variables.
    BadVariable = 4,
    // An interval given to refine does not isolate a root (no sign change,
    // or an end that is a root).
    BadInterval = 5,
    // An exact division that the theory promises did not come out exact:
    // the algorithm stops rather than answer wrongly (never seen).
    Unhandled = 6,
};

// The message of a status, for instance "polynomial too large: degree above
// 4096 or coefficients above 16777216 bits".
ZORWBX_API const char* ZorWBPolynomialStatusText(ZorWBPolynomialStatus status);

// The size limits of every polynomial that the algorithms read or make
// (operands, intermediate results and results): beyond them they stop with
// ZorWBPolynomialStatus::TooLarge instead of exhausting memory. The bits are
// those of all numerators and denominators together.
constexpr int ZorWBPolynomialMaxDegree = 4096;
constexpr long long ZorWBPolynomialMaxBits = 1LL << 24;

// A polynomial in one variable with rational coefficients of unbounded size,
// held as its coefficients from the constant term up, without zero leading
// coefficient (the zero polynomial has none and degree -1). A plain
// copyable value; the arithmetic is exact.
class ZORWBX_API ZorWBPolynomial {
  public:
    // The zero polynomial.
    ZorWBPolynomial() = default;
    // A constant.
    ZorWBPolynomial(const ZorWBRational& constant);
    // From the coefficients, constant term first (zero leading coefficients
    // are dropped).
    explicit ZorWBPolynomial(std::vector<ZorWBRational> coefficients);
    // From integer coefficients, constant term first: {-1, 0, 1} is x^2 - 1.
    static ZorWBPolynomial FromIntegers(std::initializer_list<long long> coefficients);
    // coefficient * x^degree (zero for a negative degree).
    static ZorWBPolynomial Monomial(const ZorWBRational& coefficient, int degree);
    // x - root.
    static ZorWBPolynomial Linear(const ZorWBRational& root);

    int GetDegree() const { return static_cast<int>(_coefficients.size()) - 1; }
    bool IsZero() const { return _coefficients.empty(); }
    // The coefficient of x^i (zero outside 0..degree).
    const ZorWBRational& GetCoefficient(int i) const;
    // The coefficient of the highest power (zero for the zero polynomial).
    const ZorWBRational& GetLeadingCoefficient() const { return GetCoefficient(GetDegree()); }
    const std::vector<ZorWBRational>& GetCoefficients() const { return _coefficients; }
    // The size the limits count: bits of all numerators and denominators.
    long long GetNbOfBits() const;
    // Whether the degree and the bits are within the limits.
    bool IsWithinLimits() const;

    ZorWBPolynomial operator-() const;
    ZorWBPolynomial& operator+=(const ZorWBPolynomial& other);
    ZorWBPolynomial& operator-=(const ZorWBPolynomial& other);
    ZorWBPolynomial& operator*=(const ZorWBPolynomial& other);
    friend ZorWBPolynomial operator+(ZorWBPolynomial a, const ZorWBPolynomial& b) { return a += b; }
    friend ZorWBPolynomial operator-(ZorWBPolynomial a, const ZorWBPolynomial& b) { return a -= b; }
    friend ZorWBPolynomial operator*(ZorWBPolynomial a, const ZorWBPolynomial& b) { return a *= b; }
    friend bool operator==(const ZorWBPolynomial& a, const ZorWBPolynomial& b) {
        return a._coefficients == b._coefficients;
    }
    friend bool operator!=(const ZorWBPolynomial& a, const ZorWBPolynomial& b) { return !(a == b); }

    // p^n for n >= 0 (One for n = 0).
    ZorWBPolynomial Power(int n) const;
    ZorWBPolynomial Derivative() const;
    // The antiderivative without constant term.
    ZorWBPolynomial AntiDerivative() const;
    // The value at a rational point (Horner).
    ZorWBRational Evaluate(const ZorWBRational& x) const;
    // The value at a double, in doubles (Horner on the nearest doubles of
    // the coefficients).
    double Evaluate(double x) const;
    // p(q(x)).
    ZorWBPolynomial Compose(const ZorWBPolynomial& q) const;
    // The polynomial divided by its leading coefficient (zero stays zero).
    ZorWBPolynomial Monic() const;
    // Text such as "3*x^2 - 1/2*x + 1" with the variable's name.
    std::string ToText(const std::string& variable = "x") const;

    // Division with remainder: a = quotient * b + remainder with
    // deg remainder < deg b. ZeroOperand for a zero b (outputs untouched).
    static ZorWBPolynomialStatus Divide(const ZorWBPolynomial& a, const ZorWBPolynomial& b,
                                        ZorWBPolynomial& quotient, ZorWBPolynomial& remainder);

  private:
    void Trim();

    std::vector<ZorWBRational> _coefficients;
};

#endif
