// Resultants and subresultants of polynomials in several variables with
// respect to one of them.
//
// Resultant, by the modular method: F and G are the integer multiples of f
// and g, of degrees m and n in the eliminated variable x. The resultant is
// the determinant of the Sylvester matrix of formal degrees m and n, a
// polynomial in the other variables y_j of degree at most
// D_j = m deg_yj(G) + n deg_yj(F), whose coefficients are at most
// B = |F|_1^n |G|_1^m (each row of the matrix sums to |F|_1 or |G|_1 and
// the determinant is at most the product of the row sums). Modulo a prime
// p it is found on the grid y_j in {0, ..., D_j}: at each point the two
// univariate resultants by Euclid's algorithm over F_p, corrected to the
// formal degrees where a leading coefficient vanishes there
// (Res_{m,n} = (-1)^(n (m - m')) lc(G)^(m - m') Res_{m',n} when F drops to
// degree m', Res_{m,n} = lc(F)^(n - n') Res_{m,n'} when G does, 0 when both
// do), then Newton interpolation along each variable in turn. The residues
// of enough primes (their product above 2 B) give the integer coefficients
// by Chinese remaindering. No point or prime is unlucky.
//
// Cost per prime: one evaluation of F and G (O(terms)) and one Euclid
// (O(m n)) per grid point, and O(N D_j) for the interpolation over the N
// grid points. The grid and the coefficient bound are checked against the
// size limits before any work.
//
// Subresultants, by the subresultant sequence (ZorWBSubresultants.h) over
// the integer polynomials in the other variables, held sparse with exact
// division by leading terms in lexicographic order.

#include <algorithm>
#include <utility>

#include "polynomial/ZorWBMultiPolynomial.h"
#include "polynomial/internal/ZorWBPrimeField.h"
#include "polynomial/internal/ZorWBSubresultants.h"

using namespace ZorWBExact;

namespace {

// Grid points times coefficient bits beyond which the resultant is too
// large to compute.
constexpr long long MaxGridBits = 8 * ZorWBPolynomialMaxBits;

// A term of an integer polynomial: its exponents (one per variable) and
// its coefficient.
struct Term {
    std::vector<int> exponents;
    mpz_class coefficient;
};

// The integer multiple common * p, as terms over n variables.
std::vector<Term> IntegerTerms(const ZorWBMultiPolynomial& p, int n, mpz_class& common) {
    common = 1;
    for (int i = 0; i < p.GetNbOfTerms(); ++i)
        mpz_lcm(common.get_mpz_t(), common.get_mpz_t(), ToGmp(p.GetCoefficient(i)).get_den_mpz_t());
    std::vector<Term> terms;
    for (int i = 0; i < p.GetNbOfTerms(); ++i) {
        mpq_class c = ToGmp(p.GetCoefficient(i));
        Term term{std::vector<int>(static_cast<std::size_t>(n), 0),
                  c.get_num() * (common / c.get_den())};
        for (int v = 0; v < n; ++v)
            term.exponents[static_cast<std::size_t>(v)] = p.GetExponent(i, v);
        terms.push_back(std::move(term));
    }
    return terms;
}

mpz_class NormOne(const std::vector<Term>& terms) {
    mpz_class norm = 0;
    for (const Term& term : terms)
        norm += abs(term.coefficient);
    return norm;
}

int DegreeIn(const std::vector<Term>& terms, int variable) {
    int degree = 0;
    for (const Term& term : terms)
        degree = std::max(degree, term.exponents[static_cast<std::size_t>(variable)]);
    return degree;
}

// The resultant modulo one prime on the grid of the other variables.
class ModularResultant {
  public:
    ModularResultant(const std::vector<Term>& f, const std::vector<Term>& g, int variable,
                     const std::vector<int>& others, const std::vector<int>& bounds)
        : _f(f), _g(g), _variable(variable), _others(others), _bounds(bounds) {
        _m = DegreeIn(f, variable);
        _n = DegreeIn(g, variable);
        _size = 1;
        for (int bound : bounds)
            _size *= static_cast<std::size_t>(bound) + 1;
    }

    std::size_t GetSize() const { return _size; }

    // The coefficients of the resultant modulo p, one per grid index (the
    // exponent of other j is the j-th mixed-radix digit of the index).
    std::vector<Word> Run(Word p) const {
        PrimeField field(p);
        PrimePolynomials polys(field);
        std::vector<Word> values(_size);
        std::vector<int> point(_others.size(), 0);
        Powers powers = PowerTables(field);
        for (std::size_t index = 0; index < _size; ++index) {
            values[index] = AtPoint(polys, powers, point);
            for (std::size_t j = 0; j < point.size(); ++j) {
                if (++point[j] <= _bounds[j]) break;
                point[j] = 0;
            }
        }
        Interpolate(field, values);
        return values;
    }

  private:
    // powers[j][a][e] = a^e mod p for the grid values a of other j.
    using Powers = std::vector<std::vector<std::vector<Word>>>;

    Powers PowerTables(const PrimeField& field) const {
        Powers powers(_others.size());
        for (std::size_t j = 0; j < _others.size(); ++j) {
            int top = std::max(DegreeIn(_f, _others[j]), DegreeIn(_g, _others[j]));
            powers[j].resize(static_cast<std::size_t>(_bounds[j]) + 1);
            for (int a = 0; a <= _bounds[j]; ++a) {
                std::vector<Word>& row = powers[j][static_cast<std::size_t>(a)];
                row.assign(static_cast<std::size_t>(top) + 1, 1);
                for (int e = 1; e <= top; ++e)
                    row[static_cast<std::size_t>(e)] =
                        field.Mul(row[static_cast<std::size_t>(e) - 1], static_cast<Word>(a));
            }
        }
        return powers;
    }

    PPoly Specialize(const PrimeField& field, const Powers& powers, const std::vector<Term>& terms,
                     int degree, const std::vector<int>& point) const {
        PPoly p(static_cast<std::size_t>(degree) + 1, 0);
        for (const Term& term : terms) {
            Word value = field.Reduce(term.coefficient);
            for (std::size_t j = 0; j < _others.size() && value != 0; ++j) {
                int e = term.exponents[static_cast<std::size_t>(_others[j])];
                value = field.Mul(
                    value,
                    powers[j][static_cast<std::size_t>(point[j])][static_cast<std::size_t>(e)]);
            }
            Word& target =
                p[static_cast<std::size_t>(term.exponents[static_cast<std::size_t>(_variable)])];
            target = field.Add(target, value);
        }
        while (!p.empty() && p.back() == 0)
            p.pop_back();
        return p;
    }

    // The resultant of formal degrees m and n at one point. With a formal
    // degree 0 it is the power of that constant whatever the other operand:
    // Res_{m,0}(F, g) = g^m and Res_{0,n}(f, G) = f^n.
    Word AtPoint(const PrimePolynomials& polys, const Powers& powers,
                 const std::vector<int>& point) const {
        const PrimeField& field = polys.GetField();
        PPoly f = Specialize(field, powers, _f, _m, point);
        PPoly g = Specialize(field, powers, _g, _n, point);
        if (_n == 0) return g.empty() ? 0 : polys.Power(g[0], _m);
        if (_m == 0) return f.empty() ? 0 : polys.Power(f[0], _n);
        int m = PrimePolynomials::Degree(f), n = PrimePolynomials::Degree(g);
        if (m < 0 || n < 0 || (m < _m && n < _n)) return 0;
        Word result = polys.Resultant(f, g);
        if (m < _m) {
            result = field.Mul(result, polys.Power(g.back(), _m - m));
            if ((_m - m) % 2 == 1 && _n % 2 == 1) result = field.Neg(result);
        }
        if (n < _n) result = field.Mul(result, polys.Power(f.back(), _n - n));
        return result;
    }

    // Values on the grid to monomial coefficients, one variable at a time.
    void Interpolate(const PrimeField& field, std::vector<Word>& values) const {
        std::size_t stride = 1;
        for (std::size_t j = 0; j < _bounds.size(); ++j) {
            std::size_t length = static_cast<std::size_t>(_bounds[j]) + 1;
            std::vector<Word> inverses(length, 1);
            for (std::size_t k = 1; k < length; ++k)
                inverses[k] = field.Inverse(static_cast<Word>(k));
            std::vector<Word> fiber(length);
            for (std::size_t start = 0; start < _size; ++start) {
                if ((start / stride) % length != 0) continue;
                for (std::size_t a = 0; a < length; ++a)
                    fiber[a] = values[start + a * stride];
                NewtonToMonomials(field, inverses, fiber);
                for (std::size_t a = 0; a < length; ++a)
                    values[start + a * stride] = fiber[a];
            }
            stride *= length;
        }
    }

    // Values at 0, 1, ..., D to the coefficients of the interpolating
    // polynomial: divided differences, then the Newton form expanded.
    static void NewtonToMonomials(const PrimeField& field, const std::vector<Word>& inverses,
                                  std::vector<Word>& c) {
        std::size_t d = c.size() - 1;
        for (std::size_t k = 1; k <= d; ++k) {
            for (std::size_t i = d; i >= k; --i)
                c[i] = field.Mul(field.Sub(c[i], c[i - 1]), inverses[k]);
        }
        std::vector<Word> poly{c[d]};
        for (std::size_t i = d; i-- > 0;) {
            // poly = poly * (x - i) + c[i]
            poly.insert(poly.begin(), 0);
            Word shift = static_cast<Word>(i);
            for (std::size_t k = 0; k + 1 < poly.size(); ++k)
                poly[k] = field.Sub(poly[k], field.Mul(poly[k + 1], shift));
            poly[0] = field.Add(poly[0], c[i]);
        }
        c = std::move(poly);
    }

    const std::vector<Term>& _f;
    const std::vector<Term>& _g;
    int _variable;
    std::vector<int> _others;
    std::vector<int> _bounds;
    int _m = 0;
    int _n = 0;
    std::size_t _size = 1;
};

// ------------------------------------------------------------ sparse ring

using Sparse = std::vector<Term>;  // sorted by exponents, no zero coefficient

bool ExponentsBelow(const Term& a, const Term& b) {
    return a.exponents < b.exponents;
}

Sparse Normalized(Sparse terms) {
    std::sort(terms.begin(), terms.end(), ExponentsBelow);
    Sparse merged;
    for (Term& term : terms) {
        if (!merged.empty() && merged.back().exponents == term.exponents)
            merged.back().coefficient += term.coefficient;
        else
            merged.push_back(std::move(term));
        if (sgn(merged.back().coefficient) == 0) merged.pop_back();
    }
    return merged;
}

// The integer polynomials in the variables other than the eliminated one.
class SparseRing {
  public:
    using Element = Sparse;

    explicit SparseRing(int nbOfVariables) : _n(nbOfVariables) {}

    bool IsZero(const Sparse& a) const { return a.empty(); }
    Sparse Zero() const { return Sparse(); }
    Sparse One() const {
        return Sparse{Term{std::vector<int>(static_cast<std::size_t>(_n), 0), 1}};
    }
    Sparse Neg(const Sparse& a) const {
        Sparse negated(a);
        for (Term& term : negated)
            term.coefficient = -term.coefficient;
        return negated;
    }
    Sparse Sub(const Sparse& a, const Sparse& b) const {
        Sparse all(a);
        for (const Term& term : b)
            all.push_back({term.exponents, -term.coefficient});
        return Normalized(std::move(all));
    }
    Sparse Mul(const Sparse& a, const Sparse& b) const {
        Sparse all;
        all.reserve(a.size() * b.size());
        for (const Term& x : a) {
            for (const Term& y : b) {
                Term product{x.exponents, x.coefficient * y.coefficient};
                for (std::size_t v = 0; v < product.exponents.size(); ++v)
                    product.exponents[v] += y.exponents[v];
                all.push_back(std::move(product));
            }
        }
        return Normalized(std::move(all));
    }
    // a / b by leading terms; b divides a (Unhandled otherwise).
    Sparse ExactDiv(const Sparse& a, const Sparse& b) const {
        Sparse quotient, rest(a);
        const Term& lead = b.back();
        while (!rest.empty()) {
            const Term& top = rest.back();
            Term factor{top.exponents, 0};
            for (std::size_t v = 0; v < factor.exponents.size(); ++v) {
                factor.exponents[v] -= lead.exponents[v];
                if (factor.exponents[v] < 0) throw Unhandled();
            }
            if (!mpz_divisible_p(top.coefficient.get_mpz_t(), lead.coefficient.get_mpz_t()))
                throw Unhandled();
            mpz_divexact(factor.coefficient.get_mpz_t(), top.coefficient.get_mpz_t(),
                         lead.coefficient.get_mpz_t());
            rest = Sub(rest, Mul(Sparse{factor}, b));
            quotient.push_back(std::move(factor));
            CheckBits(Bits(rest));
        }
        return Normalized(std::move(quotient));
    }
    long long Bits(const Sparse& a) const {
        long long bits = 0;
        for (const Term& term : a)
            bits += ZorWBExact::Bits(term.coefficient);
        return bits;
    }

  private:
    int _n;
};

// The terms as a dense polynomial in the variable over the sparse ring.
std::vector<Sparse> DenseIn(const std::vector<Term>& terms, int variable) {
    std::vector<Sparse> dense(static_cast<std::size_t>(DegreeIn(terms, variable)) + 1);
    for (const Term& term : terms) {
        Term coefficient = term;
        std::size_t power =
            static_cast<std::size_t>(coefficient.exponents[static_cast<std::size_t>(variable)]);
        coefficient.exponents[static_cast<std::size_t>(variable)] = 0;
        dense[power].push_back(std::move(coefficient));
    }
    for (Sparse& coefficient : dense)
        coefficient = Normalized(std::move(coefficient));
    return dense;
}

ZorWBMultiPolynomial FromDense(const std::vector<Sparse>& dense, int variable, int n) {
    ZorWBMultiPolynomial p(n);
    for (std::size_t power = 0; power < dense.size(); ++power) {
        for (const Term& term : dense[power]) {
            std::vector<int> exponents = term.exponents;
            exponents[static_cast<std::size_t>(variable)] = static_cast<int>(power);
            p.AddTerm(FromGmp(term.coefficient), exponents);
        }
    }
    return p;
}

}  // namespace

ZorWBPolynomialStatus ZorWBMultiResultant::Resultant(const ZorWBMultiPolynomial& f,
                                                     const ZorWBMultiPolynomial& g, int variable,
                                                     ZorWBMultiPolynomial& resultant) {
    int n = std::max(f.GetNbOfVariables(), g.GetNbOfVariables());
    if (variable < 0 || variable >= n) return ZorWBPolynomialStatus::BadVariable;
    if (!f.IsWithinLimits() || !g.IsWithinLimits()) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        if (f.IsZero() || g.IsZero()) {
            resultant = ZorWBMultiPolynomial(n);
            return ZorWBPolynomialStatus::Success;
        }
        mpz_class commonF, commonG;
        std::vector<Term> F = IntegerTerms(f, n, commonF), G = IntegerTerms(g, n, commonG);
        int m = DegreeIn(F, variable), k = DegreeIn(G, variable);
        std::vector<int> others, bounds;
        long long gridSize = 1;
        for (int v = 0; v < n; ++v) {
            if (v == variable) continue;
            long long bound = static_cast<long long>(m) * DegreeIn(G, v) +
                              static_cast<long long>(k) * DegreeIn(F, v);
            if (bound > ZorWBPolynomialMaxDegree) return ZorWBPolynomialStatus::TooLarge;
            others.push_back(v);
            bounds.push_back(static_cast<int>(bound));
            gridSize *= bound + 1;
            if (gridSize > MaxGridBits) return ZorWBPolynomialStatus::TooLarge;
        }
        long long boundBits = static_cast<long long>(k) * Bits(NormOne(F)) +
                              static_cast<long long>(m) * Bits(NormOne(G)) + 2;
        if (boundBits > MaxGridBits / gridSize) return ZorWBPolynomialStatus::TooLarge;
        ModularResultant modular(F, G, variable, others, bounds);
        std::vector<mpz_class> combined(modular.GetSize(), 0);
        mpz_class modulus = 1;
        for (int i = 0; Bits(modulus) <= boundBits; ++i) {
            Word p = Prime(i);
            std::vector<Word> residues = modular.Run(p);
            PrimeField field(p);
            Word inverse = field.Inverse(field.Reduce(modulus));
            for (std::size_t index = 0; index < combined.size(); ++index) {
                mpz_class& c = combined[index];
                Word step = field.Mul(field.Sub(residues[index], field.Reduce(c)), inverse);
                c += modulus * static_cast<unsigned long>(step);
            }
            modulus *= static_cast<unsigned long>(p);
        }
        // Back from the residues to signed integers, and from F, G to f, g:
        // res(F, G) = commonF^k commonG^m res(f, g).
        mpz_class half = modulus / 2, scaleF, scaleG;
        mpz_pow_ui(scaleF.get_mpz_t(), commonF.get_mpz_t(), static_cast<unsigned long>(k));
        mpz_pow_ui(scaleG.get_mpz_t(), commonG.get_mpz_t(), static_cast<unsigned long>(m));
        mpz_class scale = scaleF * scaleG;
        ZorWBMultiPolynomial result(n);
        std::vector<int> exponents(static_cast<std::size_t>(n), 0);
        for (std::size_t index = 0; index < combined.size(); ++index) {
            mpz_class& c = combined[index];
            if (c > half) c -= modulus;
            if (sgn(c) == 0) continue;
            std::size_t rest = index;
            for (std::size_t j = 0; j < others.size(); ++j) {
                std::size_t length = static_cast<std::size_t>(bounds[j]) + 1;
                exponents[static_cast<std::size_t>(others[j])] = static_cast<int>(rest % length);
                rest /= length;
            }
            mpq_class value(c, scale);
            value.canonicalize();
            result.AddTerm(FromGmp(value), exponents);
        }
        resultant = std::move(result);
        return ZorWBPolynomialStatus::Success;
    });
}

ZorWBPolynomialStatus ZorWBMultiResultant::Subresultants(
    const ZorWBMultiPolynomial& f, const ZorWBMultiPolynomial& g, int variable,
    std::vector<ZorWBMultiPolynomial>& sequence) {
    int n = std::max(f.GetNbOfVariables(), g.GetNbOfVariables());
    if (variable < 0 || variable >= n) return ZorWBPolynomialStatus::BadVariable;
    if (f.IsZero() || g.IsZero()) return ZorWBPolynomialStatus::ZeroOperand;
    if (!f.IsWithinLimits() || !g.IsWithinLimits()) return ZorWBPolynomialStatus::TooLarge;
    return Guarded([&] {
        mpz_class commonF, commonG;
        std::vector<Sparse> x = DenseIn(IntegerTerms(f, n, commonF), variable);
        std::vector<Sparse> y = DenseIn(IntegerTerms(g, n, commonG), variable);
        if (x.size() < y.size()) std::swap(x, y);
        SparseRing ring(n);
        std::vector<std::vector<Sparse>> chain;
        SubresultantSequence<SparseRing>(ring).Run(x, y, chain);
        std::vector<ZorWBMultiPolynomial> result;
        for (const std::vector<Sparse>& element : chain)
            result.push_back(FromDense(element, variable, n));
        sequence = std::move(result);
        return ZorWBPolynomialStatus::Success;
    });
}
