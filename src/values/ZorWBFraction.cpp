#include "values/ZorWBFraction.h"

#include <cmath>

ZorWBFraction ZorWBCreateFraction(int numerator, int denominator, int power, int /*unused*/) {
    ZorWBFraction fraction;
    fraction.numerator = numerator;
    fraction.denominator = denominator;
    fraction.power = power;
    return fraction;
}

double ZorWBFractionToReal(const ZorWBFraction& fraction) {
    double ratio =
        static_cast<double>(fraction.numerator) / static_cast<double>(fraction.denominator);
    return fraction.power == 0 ? ratio : ratio * std::pow(ZorWBPi, fraction.power);
}

long long ZorWBGcd(long long a, long long b) {
    if (a < 0) a = -a;
    if (b < 0) b = -b;
    while (b != 0) {
        long long remainder = a % b;
        a = b;
        b = remainder;
    }
    return a;
}
