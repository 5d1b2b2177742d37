#!/usr/bin/python3
"""Joins the two sides of the polynomial benchmark into one Markdown table:
per case the time of each (milliseconds), whether each closes, the ratio
SymPy / ZorWBx, and whether their answers agree (the number of real roots,
the resultant at y = 3 modulo 2^61 - 1); then per kind the count of cases
each closes and the geometric mean of the ratios over the cases both close.

Usage: polynomial_table.py ZORWBX_TSV SYMPY_TSV
"""

import math
import sys

MODULUS = 2**61 - 1


def read(path):
    rows = {}
    with open(path, encoding="ascii") as lines:
        for line in lines:
            kind, name, closed, seconds, detail = (line.rstrip("\n").split("\t") + [""])[:5]
            rows[(kind, name)] = (closed, float(seconds), detail)
    return rows


def fingerprint(kind, detail):
    if kind == "resultant" and detail.lstrip("-").isdigit():
        return str(int(detail) % MODULUS)
    return detail


def main():
    ours, theirs = read(sys.argv[1]), read(sys.argv[2])
    print("| case | ZorWBx ms | closes | SymPy ms | closes | SymPy / ZorWBx | agree |")
    print("|---|---:|:---:|---:|:---:|---:|:---:|")
    summary = {}
    for key, (closed, seconds, detail) in ours.items():
        kind, name = key
        other = theirs.get(key, ("missing", float("nan"), ""))
        both = closed == "1" and other[0] == "1"
        ratio = other[1] / seconds if both and seconds > 0 else float("nan")
        agree = "" if not both or kind == "integrate" else (
            "yes" if fingerprint(kind, detail) == fingerprint(kind, other[2]) else "NO")
        if detail == "WRONG":
            agree = "WRONG"
        sympy_ms = f"> {other[1] * 1000:.0f}" if other[0] == "timeout" else f"{other[1] * 1000:.3f}"
        ratio_text = "-" if math.isnan(ratio) else f"{ratio:.1f}x" if ratio < 10 else f"{ratio:.0f}x"
        print(f"| {kind} {name} | {seconds * 1000:.3f} | {'yes' if closed == '1' else 'no'} | "
              f"{sympy_ms} | {'yes' if other[0] == '1' else other[0].replace('0', 'no')} | "
              f"{ratio_text} | {agree} |")
        entry = summary.setdefault(kind, {"cases": 0, "ours": 0, "theirs": 0, "logs": []})
        entry["cases"] += 1
        entry["ours"] += closed == "1"
        entry["theirs"] += other[0] == "1"
        if both and seconds > 0:
            entry["logs"].append(math.log(ratio))
    print()
    for kind, entry in summary.items():
        mean = math.exp(sum(entry["logs"]) / len(entry["logs"])) if entry["logs"] else float("nan")
        print(f"- {kind}: {entry['cases']} cases; ZorWBx closes {entry['ours']}, SymPy "
              f"{entry['theirs']}; geometric mean of SymPy / ZorWBx over the cases both close: "
              f"{mean:.0f}x")


if __name__ == "__main__":
    main()
