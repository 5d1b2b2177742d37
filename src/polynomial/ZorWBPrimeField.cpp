// Arithmetic modulo primes below 2^31.
//
// The primes are found once, on first use, by Miller-Rabin with the bases
// 2, 3, 5 and 7, which decide primality exactly below 3,215,031,751: the
// 4096 primes below 2^31 from the largest down (about 85,000 candidates,
// a few milliseconds).

#include <vector>

#include "polynomial/internal/ZorWBPrimeField.h"

namespace ZorWBExact {

namespace {

constexpr int NbOfPrimes = 4096;

Word PowerModulo(Word base, Word exponent, Word modulus) {
    Word result = 1 % modulus;
    base %= modulus;
    while (exponent > 0) {
        if (exponent & 1) result = result * base % modulus;
        base = base * base % modulus;
        exponent >>= 1;
    }
    return result;
}

bool IsPrime(Word n) {
    if (n < 2) return false;
    for (Word small : {2u, 3u, 5u, 7u}) {
        if (n % small == 0) return n == small;
    }
    Word odd = n - 1;
    int twos = 0;
    while (odd % 2 == 0) {
        odd /= 2;
        ++twos;
    }
    for (Word base : {2u, 3u, 5u, 7u}) {
        Word x = PowerModulo(base, odd, n);
        if (x == 1 || x == n - 1) continue;
        bool composite = true;
        for (int i = 1; i < twos && composite; ++i) {
            x = x * x % n;
            composite = x != n - 1;
        }
        if (composite) return false;
    }
    return true;
}

const std::vector<Word>& Primes() {
    static const std::vector<Word> primes = [] {
        std::vector<Word> found;
        found.reserve(NbOfPrimes);
        for (Word candidate = (Word(1) << 31) - 1; found.size() < NbOfPrimes; candidate -= 2) {
            if (IsPrime(candidate)) found.push_back(candidate);
        }
        return found;
    }();
    return primes;
}

}  // namespace

Word PrimeField::Power(Word base, Word exponent) const {
    return PowerModulo(base, exponent, _p);
}

Word PrimeField::Reduce(const mpz_class& z) const {
    return mpz_fdiv_ui(z.get_mpz_t(), static_cast<unsigned long>(_p));
}

Word Prime(int i) {
    const std::vector<Word>& primes = Primes();
    if (i < 0 || i >= static_cast<int>(primes.size())) throw LimitExceeded();
    return primes[static_cast<std::size_t>(i)];
}

PPoly Reduce(const ZPoly& p, const PrimeField& field) {
    PPoly reduced;
    reduced.reserve(p.size());
    for (const mpz_class& c : p)
        reduced.push_back(field.Reduce(c));
    while (!reduced.empty() && reduced.back() == 0)
        reduced.pop_back();
    return reduced;
}

PPoly PowerMod(const PrimePolynomials& polys, const PPoly& base, const mpz_class& exponent,
               const PPoly& m) {
    PPoly power = polys.Rem(base, m);
    PPoly result = polys.Rem(PPoly{1}, m);
    for (long long bit = static_cast<long long>(mpz_sizeinbase(exponent.get_mpz_t(), 2)) - 1;
         bit >= 0 && sgn(exponent) > 0; --bit) {
        result = polys.Rem(polys.Mul(result, result), m);
        if (mpz_tstbit(exponent.get_mpz_t(), static_cast<mp_bitcnt_t>(bit)))
            result = polys.Rem(polys.Mul(result, power), m);
    }
    return result;
}

}  // namespace ZorWBExact
