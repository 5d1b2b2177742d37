#!/usr/bin/python3
"""The cases of the polynomial benchmark, shared by ZorWBx and SymPy.

Writes one case per line, tab-separated, in the syntax of ZorWBx's equation
language (the SymPy side turns ^ into **):
    integrate  NAME  INTEGRAND                 (in x)
    roots      NAME  POLYNOMIAL                (in x)
    resultant  NAME  F  G                      (in x and y, eliminating x)
Everything is deterministic: the same file on every machine.

Usage: polynomial_cases.py OUT
"""

import sys
from fractions import Fraction

INTEGRANDS = [
    ("atan", "1/(x^2+1)"),
    ("log-pair", "1/(x^2-1)"),
    ("cubic-sum", "1/(x^3+1)"),
    ("quartic", "1/(x^4+1)"),
    ("x-over-quartic", "x/(x^4+1)"),
    ("biquadratic", "1/(x^4+x^2+1)"),
    ("sixth", "1/(x^6-1)"),
    ("eighth", "1/(x^8-1)"),
    ("fifth", "1/(x^5+1)"),
    ("irreducible-cubic", "1/(x^3+x+1)"),
    ("cube-root", "1/(x^3-2)"),
    ("fourth-root", "1/(x^4-2)"),
    ("sqrt2-logs", "1/(x^2-2)"),
    ("shifted", "(2*x+3)/(x^2+3*x+5)^2"),
    ("scaled", "1/(4*x^2+4*x+5)"),
    ("hermite-square", "x^3/(x^2+1)^2"),
    ("hermite-cube", "(3*x^5-2*x+1)/(x^2+1)^3"),
    ("hermite-fourth", "1/(x^2+x+1)^4"),
    ("poles-multiple", "1/((x-1)^3*(x+2)^2)"),
    ("mixed", "(x^5+1)/((x-1)^2*(x^2+2)*(x^2+1))"),
    ("four-quadratics", "1/((x^2+1)*(x^2+2)*(x^2+3)*(x^2+4))"),
    ("ten-poles", "1/((x-1)*(x-2)*(x-3)*(x-4)*(x-5)*(x-6)*(x-7)*(x-8)*(x-9)*(x-10))"),
    ("polynomial-part", "x^10/(x^2+1)"),
    ("improper", "(x^3+1)/(x^2-5*x+6)"),
    ("pole-at-zero", "1/(x*(x^2+1)^2)"),
    ("high-hermite", "(x^15+3*x^7-x+4)/((x^2+1)^5*(x-3)^4)"),
    ("rational-roots", "(7*x^2-3)/((2*x-1)*(3*x+2)*(5*x-4))"),
    ("large-coefficients", "123456789/(987654321*x^2+123456789*x+555555555)"),
    ("log-derivative", "(3*x^2+2)/(x^3+2*x+7)"),
    ("nested-square", "(x^2+3)/((x^2+2*x+2)^2*(x^2-2*x+5))"),
    ("quartic-residues", "1/(x^4+3*x^2+1)"),
    ("degree-12", "(x^11+1)/((x^2+1)^3*(x^2+x+1)^2*(x-1)^2)"),
]


def expand(factors):
    """The integer coefficients (constant first) of a product of
    polynomials given by their integer coefficients."""
    result = [1]
    for factor in factors:
        product = [0] * (len(result) + len(factor) - 1)
        for i, a in enumerate(result):
            for j, b in enumerate(factor):
                product[i + j] += a * b
        result = product
    return result


def text(coefficients, variable="x"):
    terms = []
    for k in range(len(coefficients) - 1, -1, -1):
        c = coefficients[k]
        if c == 0:
            continue
        c = Fraction(c)
        magnitude = abs(c)
        monomial = "" if k == 0 else (variable if k == 1 else f"{variable}^{k}")
        if monomial and magnitude == 1:
            body = monomial
        elif monomial:
            body = f"{magnitude}*{monomial}"
        else:
            body = str(magnitude)
        terms.append(("-" if c < 0 else "+") + body)
    joined = "".join(terms) or "0"
    return joined[1:] if joined.startswith("+") else joined


def chebyshev(n):
    previous, current = [1], [0, 1]
    for _ in range(n - 1):
        nxt = [0] + [2 * c for c in current]
        for i, c in enumerate(previous):
            nxt[i] -= c
        previous, current = current, nxt
    return current


def polynomials():
    cases = []
    cases.append(("wilkinson-10", expand([[-k, 1] for k in range(1, 11)])))
    cases.append(("wilkinson-20", expand([[-k, 1] for k in range(1, 21)])))
    cases.append(("multiple-5", expand([[-1, 1]] * 3 + [[-2, 1]] * 2)))
    cases.append(("multiple-12", expand([[-1, 1]] * 4 + [[1, 1]] * 3 + [[-2, 0, 1]] * 2 + [[3, 1]])))
    close = 10 ** 12
    cases.append(("close-1e-12", expand([[-close, close], [-close - 1, close], [-2, 0, 1]])))
    cases.append(("close-quadratics-8", expand([[-2 * 10**10, 0, 10**10], [-2 * 10**10 - 1, 0, 10**10],
                                                [-3, 0, 1], [-3, 0, 1]])))
    cases.append(("close-pairs-20", expand([[-close * k, close] for k in range(1, 6)] +
                                           [[-close * k - 1, close] for k in range(1, 6)] +
                                           [[1, 0, 1]] * 5)))
    for n in (10, 20, 40, 60):
        cases.append((f"chebyshev-{n}", chebyshev(n)))
    for n in (10, 20, 30):
        # x^n - 2 (100 x - 1)^2: two roots about 10^(-2 - n/2) apart near 1/100.
        mignotte = [0] * (n + 1)
        mignotte[n] = 1
        for i, c in enumerate(expand([[-1, 100], [-1, 100]])):
            mignotte[i] -= 2 * c
        cases.append((f"mignotte-{n}", mignotte))
    for n in (15, 30, 45, 60):
        cases.append((f"dense-{n}", [((k * k * 7 + 3 * k + 1) % 23) - 11 for k in range(n)] + [1]))
    cases.append(("squared-dense-30", expand([[((k * 5 + 2) % 13) - 6 for k in range(15)] + [1]] * 2)))
    cases.append(("multiple-60", expand([[-k, 1] for k in range(1, 11)] * 3 + [[1, 0, 1]] * 15)))
    return [(name, text(c)) for name, c in cases]


def bivariate(degree, a, b, modulus, shift):
    terms = []
    for i in range(degree + 1):
        for j in range(degree + 1):
            c = ((i * a + j * b + 5) % modulus) - shift
            if c:
                monomial = "*".join(m for m in (
                    "" if i == 0 else ("x" if i == 1 else f"x^{i}"),
                    "" if j == 0 else ("y" if j == 1 else f"y^{j}")) if m)
                terms.append(f"{c}*{monomial}" if monomial else str(c))
    return "+".join(terms).replace("+-", "-")


def main():
    lines = [f"integrate\t{name}\t{expr}" for name, expr in INTEGRANDS]
    lines += [f"roots\t{name}\t{poly}" for name, poly in polynomials()]
    for degree in (10, 15, 20, 25, 30):
        f = bivariate(degree, 7, 13, 19, 9)
        g = bivariate(degree, 11, 3, 17, 8)
        lines.append(f"resultant\tdense-{degree}\t{f}\t{g}")
    with open(sys.argv[1], "w", encoding="ascii") as out:
        out.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
