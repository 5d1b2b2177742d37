// The univariate polynomial value: arithmetic, division with remainder,
// evaluation and text. Schoolbook algorithms on the rational coefficients;
// the algorithms of the other files convert to GMP's integers once and work
// there.

#include "polynomial/ZorWBPolynomial.h"

#include <exception>
#include <utility>

#include "polynomial/internal/ZorWBFieldPolynomials.h"

namespace ZorWBExact {

QPoly ToGmp(const ZorWBPolynomial& p) {
    QPoly result;
    result.reserve(p.GetCoefficients().size());
    for (const ZorWBRational& c : p.GetCoefficients())
        result.push_back(ToGmp(c));
    return result;
}

}  // namespace ZorWBExact

const char* ZorWBPolynomialStatusText(ZorWBPolynomialStatus status) {
    switch (status) {
        case ZorWBPolynomialStatus::Success:
            return "success";
        case ZorWBPolynomialStatus::ZeroOperand:
            return "zero polynomial where a non-zero one is needed";
        case ZorWBPolynomialStatus::TooLarge:
            return "polynomial too large: degree above 4096 or coefficients above 16777216 bits";
        case ZorWBPolynomialStatus::RootsBeyondQuadratic:
            return "the antiderivative needs roots of degree above 2";
        case ZorWBPolynomialStatus::BadVariable:
            return "no such variable";
        case ZorWBPolynomialStatus::BadInterval:
            return "the interval does not isolate a root";
        case ZorWBPolynomialStatus::Unhandled:
            return "an exact step did not come out exact";
    }
    return "unknown status";
}

namespace {

const ZorWBRational& ZeroRational() {
    static const ZorWBRational zero;
    return zero;
}

}  // namespace

ZorWBPolynomial::ZorWBPolynomial(const ZorWBRational& constant) : _coefficients{constant} {
    Trim();
}

ZorWBPolynomial::ZorWBPolynomial(std::vector<ZorWBRational> coefficients)
    : _coefficients(std::move(coefficients)) {
    Trim();
}

ZorWBPolynomial ZorWBPolynomial::FromIntegers(std::initializer_list<long long> coefficients) {
    std::vector<ZorWBRational> rationals;
    for (long long c : coefficients)
        rationals.emplace_back(c);
    return ZorWBPolynomial(std::move(rationals));
}

ZorWBPolynomial ZorWBPolynomial::Monomial(const ZorWBRational& coefficient, int degree) {
    if (degree < 0) return ZorWBPolynomial();
    std::vector<ZorWBRational> coefficients(static_cast<std::size_t>(degree) + 1);
    coefficients.back() = coefficient;
    return ZorWBPolynomial(std::move(coefficients));
}

ZorWBPolynomial ZorWBPolynomial::Linear(const ZorWBRational& root) {
    return ZorWBPolynomial({-root, ZorWBRational(1)});
}

void ZorWBPolynomial::Trim() {
    while (!_coefficients.empty() && _coefficients.back().IsZero())
        _coefficients.pop_back();
}

const ZorWBRational& ZorWBPolynomial::GetCoefficient(int i) const {
    if (i < 0 || i > GetDegree()) return ZeroRational();
    return _coefficients[static_cast<std::size_t>(i)];
}

long long ZorWBPolynomial::GetNbOfBits() const {
    long long bits = 0;
    for (const ZorWBRational& c : _coefficients)
        bits += c.GetNbOfBits();
    return bits;
}

bool ZorWBPolynomial::IsWithinLimits() const {
    return GetDegree() <= ZorWBPolynomialMaxDegree && GetNbOfBits() <= ZorWBPolynomialMaxBits;
}

ZorWBPolynomial ZorWBPolynomial::operator-() const {
    ZorWBPolynomial negated(*this);
    for (ZorWBRational& c : negated._coefficients)
        c = -c;
    return negated;
}

ZorWBPolynomial& ZorWBPolynomial::operator+=(const ZorWBPolynomial& other) {
    if (other._coefficients.size() > _coefficients.size())
        _coefficients.resize(other._coefficients.size());
    for (std::size_t i = 0; i < other._coefficients.size(); ++i)
        _coefficients[i] += other._coefficients[i];
    Trim();
    return *this;
}

ZorWBPolynomial& ZorWBPolynomial::operator-=(const ZorWBPolynomial& other) {
    return *this += -other;
}

ZorWBPolynomial& ZorWBPolynomial::operator*=(const ZorWBPolynomial& other) {
    ZorWBExact::RationalField field;
    ZorWBExact::RationalPolynomials polys(field);
    *this = ZorWBExact::FromGmp(polys.Mul(ZorWBExact::ToGmp(*this), ZorWBExact::ToGmp(other)));
    return *this;
}

ZorWBPolynomial ZorWBPolynomial::Power(int n) const {
    ZorWBPolynomial result(ZorWBRational(1));
    ZorWBPolynomial base(*this);
    while (n > 0) {
        if (n & 1) result *= base;
        n >>= 1;
        if (n > 0) base *= base;
    }
    return result;
}

ZorWBPolynomial ZorWBPolynomial::Derivative() const {
    std::vector<ZorWBRational> coefficients;
    for (std::size_t i = 1; i < _coefficients.size(); ++i)
        coefficients.push_back(_coefficients[i] * ZorWBRational(static_cast<long long>(i)));
    return ZorWBPolynomial(std::move(coefficients));
}

ZorWBPolynomial ZorWBPolynomial::AntiDerivative() const {
    if (IsZero()) return ZorWBPolynomial();
    std::vector<ZorWBRational> coefficients(_coefficients.size() + 1);
    for (std::size_t i = 0; i < _coefficients.size(); ++i)
        coefficients[i + 1] = _coefficients[i] / ZorWBRational(static_cast<long long>(i + 1));
    return ZorWBPolynomial(std::move(coefficients));
}

ZorWBRational ZorWBPolynomial::Evaluate(const ZorWBRational& x) const {
    ZorWBRational value;
    for (std::size_t i = _coefficients.size(); i-- > 0;)
        value = value * x + _coefficients[i];
    return value;
}

double ZorWBPolynomial::Evaluate(double x) const {
    double value = 0.0;
    for (std::size_t i = _coefficients.size(); i-- > 0;)
        value = value * x + _coefficients[i].ToReal();
    return value;
}

ZorWBPolynomial ZorWBPolynomial::Compose(const ZorWBPolynomial& q) const {
    ZorWBPolynomial value;
    for (std::size_t i = _coefficients.size(); i-- > 0;)
        value = value * q + ZorWBPolynomial(_coefficients[i]);
    return value;
}

ZorWBPolynomial ZorWBPolynomial::Monic() const {
    if (IsZero()) return *this;
    ZorWBPolynomial monic(*this);
    ZorWBRational lead = _coefficients.back();
    for (ZorWBRational& c : monic._coefficients)
        c /= lead;
    return monic;
}

std::string ZorWBPolynomial::ToText(const std::string& variable) const {
    if (IsZero()) return "0";
    std::string text;
    for (int k = GetDegree(); k >= 0; --k) {
        const ZorWBRational& c = _coefficients[static_cast<std::size_t>(k)];
        if (c.IsZero()) continue;
        bool negative = c.GetSign() < 0;
        if (text.empty())
            text = negative ? "-" : "";
        else
            text += negative ? " - " : " + ";
        ZorWBRational magnitude = c.Abs();
        bool unit = magnitude == ZorWBRational(1);
        if (k == 0 || !unit) text += magnitude.ToText();
        if (k > 0) text += (unit ? "" : "*") + variable;
        if (k > 1) text += "^" + std::to_string(k);
    }
    return text;
}

ZorWBPolynomialStatus ZorWBPolynomial::Divide(const ZorWBPolynomial& a, const ZorWBPolynomial& b,
                                              ZorWBPolynomial& quotient,
                                              ZorWBPolynomial& remainder) try {
    if (b.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!a.IsWithinLimits() || !b.IsWithinLimits()) return ZorWBPolynomialStatus::TooLarge;
    ZorWBExact::RationalField field;
    ZorWBExact::RationalPolynomials polys(field);
    ZorWBExact::QPoly q, r;
    polys.DivMod(ZorWBExact::ToGmp(a), ZorWBExact::ToGmp(b), q, r);
    quotient = ZorWBExact::FromGmp(q);
    remainder = ZorWBExact::FromGmp(r);
    return ZorWBPolynomialStatus::Success;
} catch (const std::exception&) {
    return ZorWBPolynomialStatus::TooLarge;
}
