// The polynomial value in several variables: sparse terms in lexicographic
// order of their exponents. Products multiply every pair of terms and
// normalize once (sort and merge): O(t1 t2 log(t1 t2)) for t1 and t2 terms.

#include "polynomial/ZorWBMultiPolynomial.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace {

const ZorWBRational& ZeroRational() {
    static const ZorWBRational zero;
    return zero;
}

}  // namespace

ZorWBMultiPolynomial::ZorWBMultiPolynomial(int nbOfVariables)
    : _nbOfVariables(std::max(0, nbOfVariables)) {}

ZorWBMultiPolynomial ZorWBMultiPolynomial::Constant(int nbOfVariables, const ZorWBRational& value) {
    ZorWBMultiPolynomial p(nbOfVariables);
    p.AddTerm(value, std::vector<int>(static_cast<std::size_t>(p._nbOfVariables), 0));
    return p;
}

ZorWBMultiPolynomial ZorWBMultiPolynomial::Variable(int nbOfVariables, int variable) {
    ZorWBMultiPolynomial p(nbOfVariables);
    if (variable < 0 || variable >= p._nbOfVariables) return p;
    std::vector<int> exponents(static_cast<std::size_t>(p._nbOfVariables), 0);
    exponents[static_cast<std::size_t>(variable)] = 1;
    p.AddTerm(ZorWBRational(1), exponents);
    return p;
}

ZorWBMultiPolynomial ZorWBMultiPolynomial::FromUnivariate(int nbOfVariables, int variable,
                                                          const ZorWBPolynomial& p) {
    ZorWBMultiPolynomial result(nbOfVariables);
    if (variable < 0 || variable >= result._nbOfVariables) return result;
    std::vector<int> exponents(static_cast<std::size_t>(result._nbOfVariables), 0);
    for (int k = 0; k <= p.GetDegree(); ++k) {
        exponents[static_cast<std::size_t>(variable)] = k;
        result.AddTerm(p.GetCoefficient(k), exponents);
    }
    return result;
}

const ZorWBRational& ZorWBMultiPolynomial::GetCoefficient(int term) const {
    if (term < 0 || term >= GetNbOfTerms()) return ZeroRational();
    return _coefficients[static_cast<std::size_t>(term)];
}

int ZorWBMultiPolynomial::GetExponent(int term, int variable) const {
    if (term < 0 || term >= GetNbOfTerms() || variable < 0 || variable >= _nbOfVariables) return 0;
    return Exponents(term)[variable];
}

bool ZorWBMultiPolynomial::AddTerm(const ZorWBRational& value, const std::vector<int>& exponents) {
    if (static_cast<int>(exponents.size()) != _nbOfVariables) return false;
    for (int e : exponents) {
        if (e < 0) return false;
    }
    if (value.IsZero()) return true;
    // The place of the monomial in the sorted terms.
    int low = 0, high = GetNbOfTerms();
    while (low < high) {
        int middle = (low + high) / 2;
        if (std::lexicographical_compare(Exponents(middle), Exponents(middle) + _nbOfVariables,
                                         exponents.begin(), exponents.end()))
            low = middle + 1;
        else
            high = middle;
    }
    std::size_t place = static_cast<std::size_t>(low);
    if (low < GetNbOfTerms() && std::equal(exponents.begin(), exponents.end(), Exponents(low))) {
        _coefficients[place] += value;
        if (_coefficients[place].IsZero()) {
            _coefficients.erase(_coefficients.begin() + low);
            auto first = _exponents.begin() + low * _nbOfVariables;
            _exponents.erase(first, first + _nbOfVariables);
        }
        return true;
    }
    _coefficients.insert(_coefficients.begin() + low, value);
    _exponents.insert(_exponents.begin() + low * _nbOfVariables, exponents.begin(),
                      exponents.end());
    return true;
}

int ZorWBMultiPolynomial::GetDegree(int variable) const {
    if (IsZero()) return -1;
    if (variable < 0 || variable >= _nbOfVariables) return 0;
    int degree = 0;
    for (int i = 0; i < GetNbOfTerms(); ++i)
        degree = std::max(degree, Exponents(i)[variable]);
    return degree;
}

int ZorWBMultiPolynomial::GetTotalDegree() const {
    if (IsZero()) return -1;
    int degree = 0;
    for (int i = 0; i < GetNbOfTerms(); ++i) {
        const int* e = Exponents(i);
        degree = std::max(degree, std::accumulate(e, e + _nbOfVariables, 0));
    }
    return degree;
}

long long ZorWBMultiPolynomial::GetNbOfBits() const {
    long long bits = 0;
    for (const ZorWBRational& c : _coefficients)
        bits += c.GetNbOfBits();
    return bits;
}

bool ZorWBMultiPolynomial::IsWithinLimits() const {
    for (int v = 0; v < _nbOfVariables; ++v) {
        if (GetDegree(v) > ZorWBPolynomialMaxDegree) return false;
    }
    return GetNbOfBits() <= ZorWBPolynomialMaxBits;
}

void ZorWBMultiPolynomial::Normalize() {
    std::size_t n = _coefficients.size();
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), 0);
    int width = _nbOfVariables;
    auto exponents = [this, width](std::size_t i) { return _exponents.data() + i * width; };
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return std::lexicographical_compare(exponents(a), exponents(a) + width, exponents(b),
                                            exponents(b) + width);
    });
    std::vector<ZorWBRational> coefficients;
    std::vector<int> merged;
    for (std::size_t k = 0; k < n;) {
        std::size_t i = order[k];
        ZorWBRational sum = _coefficients[i];
        std::size_t next = k + 1;
        while (next < n && std::equal(exponents(i), exponents(i) + width, exponents(order[next])))
            sum += _coefficients[order[next++]];
        if (!sum.IsZero()) {
            coefficients.push_back(std::move(sum));
            merged.insert(merged.end(), exponents(i), exponents(i) + width);
        }
        k = next;
    }
    _coefficients = std::move(coefficients);
    _exponents = std::move(merged);
}

void ZorWBMultiPolynomial::Widen(int nbOfVariables) {
    if (nbOfVariables <= _nbOfVariables) return;
    std::vector<int> wider;
    wider.reserve(_coefficients.size() * static_cast<std::size_t>(nbOfVariables));
    for (int i = 0; i < GetNbOfTerms(); ++i) {
        wider.insert(wider.end(), Exponents(i), Exponents(i) + _nbOfVariables);
        wider.insert(wider.end(), static_cast<std::size_t>(nbOfVariables - _nbOfVariables), 0);
    }
    _exponents = std::move(wider);
    _nbOfVariables = nbOfVariables;
}

bool ZorWBMultiPolynomial::IsEqual(const ZorWBMultiPolynomial& a, const ZorWBMultiPolynomial& b) {
    ZorWBMultiPolynomial x(a), y(b);
    x.Widen(b._nbOfVariables);
    y.Widen(a._nbOfVariables);
    return x._coefficients == y._coefficients && x._exponents == y._exponents;
}

ZorWBMultiPolynomial ZorWBMultiPolynomial::operator-() const {
    ZorWBMultiPolynomial negated(*this);
    for (ZorWBRational& c : negated._coefficients)
        c = -c;
    return negated;
}

ZorWBMultiPolynomial& ZorWBMultiPolynomial::operator+=(const ZorWBMultiPolynomial& other) {
    ZorWBMultiPolynomial addend(other);
    addend.Widen(_nbOfVariables);
    Widen(addend._nbOfVariables);
    _coefficients.insert(_coefficients.end(), addend._coefficients.begin(),
                         addend._coefficients.end());
    _exponents.insert(_exponents.end(), addend._exponents.begin(), addend._exponents.end());
    Normalize();
    return *this;
}

ZorWBMultiPolynomial& ZorWBMultiPolynomial::operator-=(const ZorWBMultiPolynomial& other) {
    return *this += -other;
}

ZorWBMultiPolynomial& ZorWBMultiPolynomial::operator*=(const ZorWBMultiPolynomial& other) {
    ZorWBMultiPolynomial factor(other);
    factor.Widen(_nbOfVariables);
    Widen(factor._nbOfVariables);
    ZorWBMultiPolynomial product(_nbOfVariables);
    std::size_t width = static_cast<std::size_t>(_nbOfVariables);
    for (int i = 0; i < GetNbOfTerms(); ++i) {
        for (int j = 0; j < factor.GetNbOfTerms(); ++j) {
            product._coefficients.push_back(_coefficients[static_cast<std::size_t>(i)] *
                                            factor._coefficients[static_cast<std::size_t>(j)]);
            for (std::size_t v = 0; v < width; ++v)
                product._exponents.push_back(Exponents(i)[v] + factor.Exponents(j)[v]);
        }
    }
    product.Normalize();
    *this = std::move(product);
    return *this;
}

ZorWBRational ZorWBMultiPolynomial::Evaluate(const std::vector<ZorWBRational>& point) const {
    ZorWBRational value;
    for (int i = 0; i < GetNbOfTerms(); ++i) {
        ZorWBRational term = _coefficients[static_cast<std::size_t>(i)];
        for (int v = 0; v < _nbOfVariables; ++v) {
            ZorWBRational x = v < static_cast<int>(point.size())
                                  ? point[static_cast<std::size_t>(v)]
                                  : ZorWBRational();
            for (int k = 0; k < Exponents(i)[v]; ++k)
                term *= x;
        }
        value += term;
    }
    return value;
}

double ZorWBMultiPolynomial::Evaluate(const std::vector<double>& point) const {
    double value = 0.0;
    for (int i = 0; i < GetNbOfTerms(); ++i) {
        double term = _coefficients[static_cast<std::size_t>(i)].ToReal();
        for (int v = 0; v < _nbOfVariables; ++v) {
            double x =
                v < static_cast<int>(point.size()) ? point[static_cast<std::size_t>(v)] : 0.0;
            term *= std::pow(x, Exponents(i)[v]);
        }
        value += term;
    }
    return value;
}

bool ZorWBMultiPolynomial::ToUnivariate(int variable, ZorWBPolynomial& p) const {
    if (variable < 0 || variable >= _nbOfVariables) return false;
    std::vector<ZorWBRational> coefficients(static_cast<std::size_t>(GetDegree(variable) + 1));
    for (int i = 0; i < GetNbOfTerms(); ++i) {
        for (int v = 0; v < _nbOfVariables; ++v) {
            if (v != variable && Exponents(i)[v] != 0) return false;
        }
        coefficients[static_cast<std::size_t>(Exponents(i)[variable])] =
            _coefficients[static_cast<std::size_t>(i)];
    }
    p = ZorWBPolynomial(std::move(coefficients));
    return true;
}

std::string ZorWBMultiPolynomial::ToText(const std::vector<std::string>& names) const {
    if (IsZero()) return "0";
    std::string text;
    // Highest terms first, as ZorWBPolynomial writes them.
    for (int i = GetNbOfTerms() - 1; i >= 0; --i) {
        const ZorWBRational& c = _coefficients[static_cast<std::size_t>(i)];
        bool negative = c.GetSign() < 0;
        if (text.empty())
            text = negative ? "-" : "";
        else
            text += negative ? " - " : " + ";
        std::string monomial;
        for (int v = 0; v < _nbOfVariables; ++v) {
            int e = Exponents(i)[v];
            if (e == 0) continue;
            std::string name = v < static_cast<int>(names.size())
                                   ? names[static_cast<std::size_t>(v)]
                                   : "x" + std::to_string(v);
            monomial += (monomial.empty() ? "" : "*") + name;
            if (e > 1) monomial += "^" + std::to_string(e);
        }
        ZorWBRational magnitude = c.Abs();
        if (monomial.empty())
            text += magnitude.ToText();
        else if (magnitude == ZorWBRational(1))
            text += monomial;
        else
            text += magnitude.ToText() + "*" + monomial;
    }
    return text;
}
