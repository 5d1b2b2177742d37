#include "polynomial/ZorWBRational.h"

#include <cmath>
#include <cstdint>

#include "polynomial/internal/ZorWBExact.h"

static_assert(sizeof(__mpq_struct) <= 32, "ZorWBRational's storage holds a GMP rational");
static_assert(alignof(__mpq_struct) <= 8, "ZorWBRational's storage is aligned for a GMP rational");

namespace {

mpq_ptr Raw(ZorWBRational& r) {
    return ZorWBRationalAccess::Get(r);
}
mpq_srcptr Raw(const ZorWBRational& r) {
    return ZorWBRationalAccess::Get(r);
}

bool AllDigits(const std::string& text, std::size_t begin, std::size_t end) {
    if (begin >= end) return false;
    for (std::size_t i = begin; i < end; ++i) {
        if (text[i] < '0' || text[i] > '9') return false;
    }
    return true;
}

// |numerator / denominator| rounded to the nearest double (ties to even),
// both positive: a quotient of at least 55 bits, a sticky bit for what the
// division left, then one rounding to 53 bits.
double NearestDouble(const mpz_class& numerator, const mpz_class& denominator) {
    long long shift = 55 - (static_cast<long long>(mpz_sizeinbase(numerator.get_mpz_t(), 2)) -
                            static_cast<long long>(mpz_sizeinbase(denominator.get_mpz_t(), 2)));
    mpz_class scaled = numerator, divisor = denominator;
    if (shift >= 0)
        scaled <<= static_cast<mp_bitcnt_t>(shift);
    else
        divisor <<= static_cast<mp_bitcnt_t>(-shift);
    mpz_class quotient, remainder;
    mpz_tdiv_qr(quotient.get_mpz_t(), remainder.get_mpz_t(), scaled.get_mpz_t(),
                divisor.get_mpz_t());
    bool sticky = sgn(remainder) != 0;
    int extra = static_cast<int>(mpz_sizeinbase(quotient.get_mpz_t(), 2)) - 53;
    mpz_class rest = quotient & ((mpz_class(1) << extra) - 1);
    mpz_class mantissa = quotient >> extra;
    mpz_class half = mpz_class(1) << (extra - 1);
    int versusHalf = cmp(rest, half);
    bool odd = mpz_odd_p(mantissa.get_mpz_t()) != 0;
    if (versusHalf > 0 || (versusHalf == 0 && (sticky || odd))) ++mantissa;
    double value = static_cast<double>(mpz_get_ui(mantissa.get_mpz_t()));
    long long exponent = extra - shift;
    if (exponent > 4096) return HUGE_VAL;
    if (exponent < -4096) return 0.0;
    return std::ldexp(value, static_cast<int>(exponent));
}

}  // namespace

ZorWBRational::ZorWBRational() {
    mpq_init(Raw(*this));
}

ZorWBRational::ZorWBRational(int value) : ZorWBRational(static_cast<long long>(value)) {}

ZorWBRational::ZorWBRational(long long value) : ZorWBRational() {
    mpz_class integer(std::to_string(value));
    mpq_set_z(Raw(*this), integer.get_mpz_t());
}

ZorWBRational::ZorWBRational(long long numerator, long long denominator) : ZorWBRational() {
    if (denominator == 0) return;
    mpq_class value(mpz_class(std::to_string(numerator)), mpz_class(std::to_string(denominator)));
    value.canonicalize();
    mpq_set(Raw(*this), value.get_mpq_t());
}

ZorWBRational::ZorWBRational(const ZorWBRational& other) : ZorWBRational() {
    mpq_set(Raw(*this), Raw(other));
}

ZorWBRational::ZorWBRational(ZorWBRational&& other) noexcept : ZorWBRational() {
    mpq_swap(Raw(*this), Raw(other));
}

ZorWBRational& ZorWBRational::operator=(const ZorWBRational& other) {
    if (this != &other) mpq_set(Raw(*this), Raw(other));
    return *this;
}

ZorWBRational& ZorWBRational::operator=(ZorWBRational&& other) noexcept {
    mpq_swap(Raw(*this), Raw(other));
    return *this;
}

ZorWBRational::~ZorWBRational() {
    mpq_clear(Raw(*this));
}

bool ZorWBRational::FromReal(double value, ZorWBRational& result) {
    if (!std::isfinite(value)) return false;
    mpq_set_d(Raw(result), value);
    return true;
}

bool ZorWBRational::FromText(const std::string& text, ZorWBRational& result) {
    std::size_t begin = !text.empty() && text[0] == '-' ? 1 : 0;
    std::size_t slash = text.find('/');
    std::size_t end = slash == std::string::npos ? text.size() : slash;
    if (!AllDigits(text, begin, end)) return false;
    mpq_class value;
    if (slash == std::string::npos) {
        value = mpz_class(text, 10);
    } else {
        if (!AllDigits(text, slash + 1, text.size())) return false;
        mpz_class numerator(text.substr(0, slash), 10);
        mpz_class denominator(text.substr(slash + 1), 10);
        if (sgn(denominator) == 0) return false;
        value = mpq_class(numerator, denominator);
        value.canonicalize();
    }
    mpq_set(Raw(result), value.get_mpq_t());
    return true;
}

bool ZorWBRational::IsZero() const {
    return mpq_sgn(Raw(*this)) == 0;
}

bool ZorWBRational::IsInteger() const {
    return mpz_cmp_ui(mpq_denref(Raw(*this)), 1) == 0;
}

int ZorWBRational::GetSign() const {
    return mpq_sgn(Raw(*this));
}

std::string ZorWBRational::ToText() const {
    return ZorWBExact::ToGmp(*this).get_str(10);
}

double ZorWBRational::ToReal() const {
    mpq_class value = ZorWBExact::ToGmp(*this);
    if (sgn(value) == 0) return 0.0;
    double magnitude = NearestDouble(abs(value.get_num()), value.get_den());
    return sgn(value) < 0 ? -magnitude : magnitude;
}

bool ZorWBRational::GetSmallParts(int& numerator, int& denominator) const {
    mpz_srcptr n = mpq_numref(Raw(*this));
    mpz_srcptr d = mpq_denref(Raw(*this));
    if (!mpz_fits_sint_p(n) || !mpz_fits_sint_p(d)) return false;
    numerator = static_cast<int>(mpz_get_si(n));
    denominator = static_cast<int>(mpz_get_si(d));
    return true;
}

bool ZorWBRational::GetExactRealParts(double& numerator, double& denominator) const {
    mpz_srcptr n = mpq_numref(Raw(*this));
    mpz_srcptr d = mpq_denref(Raw(*this));
    if (mpz_sizeinbase(n, 2) > 53 || mpz_sizeinbase(d, 2) > 53) return false;
    numerator = mpz_get_d(n);
    denominator = mpz_get_d(d);
    return true;
}

long long ZorWBRational::GetNbOfBits() const {
    return ZorWBExact::Bits(ZorWBExact::ToGmp(*this));
}

ZorWBRational ZorWBRational::operator-() const {
    ZorWBRational result(*this);
    mpq_neg(Raw(result), Raw(result));
    return result;
}

ZorWBRational ZorWBRational::Abs() const {
    ZorWBRational result(*this);
    mpq_abs(Raw(result), Raw(result));
    return result;
}

ZorWBRational& ZorWBRational::operator+=(const ZorWBRational& other) {
    mpq_add(Raw(*this), Raw(*this), Raw(other));
    return *this;
}

ZorWBRational& ZorWBRational::operator-=(const ZorWBRational& other) {
    mpq_sub(Raw(*this), Raw(*this), Raw(other));
    return *this;
}

ZorWBRational& ZorWBRational::operator*=(const ZorWBRational& other) {
    mpq_mul(Raw(*this), Raw(*this), Raw(other));
    return *this;
}

ZorWBRational& ZorWBRational::operator/=(const ZorWBRational& other) {
    if (other.IsZero())
        mpq_set_ui(Raw(*this), 0, 1);
    else
        mpq_div(Raw(*this), Raw(*this), Raw(other));
    return *this;
}

int ZorWBRational::Compare(const ZorWBRational& a, const ZorWBRational& b) {
    int order = mpq_cmp(Raw(a), Raw(b));
    return (order > 0) - (order < 0);
}
