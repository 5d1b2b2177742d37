#!/usr/bin/python3
"""SymPy's side of the polynomial benchmark (scripts/bench-polynomial.sh).

Reads the cases of polynomial_cases.py and prints, per case, one line
    KIND  NAME  CLOSED  SECONDS  DETAIL
with CLOSED 1 when SymPy gives a closed form (integrate: no Integral and no
RootSum left), 0 when not, "timeout" past the time limit; SECONDS the median
of up to three runs, each after clearing SymPy's cache; DETAIL the number of
real roots (roots) or the resultant at y = 3 modulo 2^61 - 1 (resultant).

Usage: sympy_polynomial.py CASES [TIMEOUT_SECONDS]
"""

import signal
import statistics
import sys
import time
from fractions import Fraction

from sympy import Integral, Poly, RootSum, integrate, symbols, sympify
from sympy.core.cache import clear_cache

X, Y = symbols("x y")
MODULUS = 2**61 - 1


class Timeout(Exception):
    pass


def on_alarm(signum, frame):
    raise Timeout()


def timed(work):
    seconds = []
    result = None
    for _ in range(3):
        clear_cache()
        start = time.perf_counter()
        result = work()
        seconds.append(time.perf_counter() - start)
        if seconds[-1] > 1.0:
            break
    return result, statistics.median(seconds)


def run(kind, texts):
    exprs = [sympify(t.replace("^", "**"), locals={"x": X, "y": Y}) for t in texts]
    if kind == "integrate":
        result, seconds = timed(lambda: integrate(exprs[0], X))
        return int(not result.has(Integral) and not result.has(RootSum)), seconds, ""
    if kind == "roots":
        p = Poly(exprs[0], X)
        result, seconds = timed(lambda: p.intervals(eps=Fraction(1, 10**10)))
        return 1, seconds, f"{len(result)} roots"
    f, g = Poly(exprs[0], X, Y), Poly(exprs[1], X, Y)
    result, seconds = timed(lambda: f.resultant(g))
    value = Poly(result, Y).eval(3) if not result.is_Number else result
    return 1, seconds, f"{int(value) % MODULUS}"


def main():
    timeout = int(sys.argv[2]) if len(sys.argv) > 2 else 60
    signal.signal(signal.SIGALRM, on_alarm)
    with open(sys.argv[1], encoding="ascii") as cases:
        for line in cases:
            kind, name, *texts = line.rstrip("\n").split("\t")
            signal.alarm(timeout)
            try:
                closed, seconds, detail = run(kind, texts)
                signal.alarm(0)
                print(f"{kind}\t{name}\t{closed}\t{seconds:.6f}\t{detail}", flush=True)
            except Timeout:
                print(f"{kind}\t{name}\ttimeout\t{timeout}\t", flush=True)


if __name__ == "__main__":
    main()
