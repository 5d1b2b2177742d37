#ifndef ZORWB_BENCH_LOOPS_H
#define ZORWB_BENCH_LOOPS_H

// The workload formulas written as compiled loops over the input array (in
// the variable layout of Formula): what a programmer who knows the formula
// at compile time writes, and so the limit for the interpreters. Templates,
// so that the same loop runs on doubles and on Boost intervals (whose
// square, sin and cos are found by argument-dependent lookup; square is the
// tight square of an interval, not the product of two independent factors).

#include <cmath>

namespace bench {

inline double square(double v) {
    return v * v;
}

template <class T>
T ChainTerm(const T* v, int n, int i) {
    const T* x = v;
    const T* y = v + n + 1;
    const T* d = y + n + 1;
    return square(x[i] - x[i + 1]) + square(y[i] - y[i + 1]) - square(d[i]);
}

template <class T>
T TrigTerm(const T* v, int n, int i) {
    using std::cos;
    using std::sin;
    const T* a = v;
    const T* x = v + n;
    const T* y = x + n;
    return cos(a[i]) * x[i] - sin(a[i]) * y[i];
}

template <class T>
T ChainSum(const T* v, int n) {
    T sum(0.0);
    for (int i = 0; i < n; ++i)
        sum += ChainTerm(v, n, i);
    return sum;
}

template <class T>
T TrigSum(const T* v, int n) {
    T sum(0.0);
    for (int i = 0; i < n; ++i)
        sum += TrigTerm(v, n, i);
    return sum;
}

}  // namespace bench

#endif
