#!/usr/bin/env python3
"""Compares the [RESULTS] blocks of two result files of the same job.

Prints the patterns whose good flag differs, the largest difference of the
centre displacement (u, v) and of the bilinear coefficients over the patterns
good in both, and how many took a different number of iterations. Exits with
status 1 when a flag differs or a displacement differs by more than the
tolerance (1e-4 pixel unless --tolerance is given).
"""
import argparse
import sys


def patterns(path):
    with open(path, encoding="latin-1") as f:
        lines = f.read().splitlines()
    start = next(i for i, line in enumerate(lines) if line.strip().lower().startswith("[results]"))
    block = [line.split() for line in lines[start + 1:] if line.strip()]
    out = []
    for i in range(0, len(block) - 3, 4):
        head, u, v, tail = block[i:i + 4]
        out.append({
            "good": head[0] == "-1",
            "at": (int(head[1]), int(head[2])),
            "uv": (float(head[3]), float(head[4])),
            "coefficients": [float(c) for c in u + v],
            "iterations": int(tail[0]),
        })
    return out


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("first")
    parser.add_argument("second")
    parser.add_argument("--tolerance", type=float, default=1e-4)
    args = parser.parse_args()
    a, b = patterns(args.first), patterns(args.second)
    if len(a) != len(b) or any(p["at"] != q["at"] for p, q in zip(a, b)):
        print("the two results don't hold the same patterns")
        return 1
    flags = sum(p["good"] != q["good"] for p, q in zip(a, b))
    both = [(p, q) for p, q in zip(a, b) if p["good"] and q["good"]]
    displacement = max((abs(x - y) for p, q in both for x, y in zip(p["uv"], q["uv"])), default=0.0)
    coefficient = max((abs(x - y) for p, q in both for x, y in zip(p["coefficients"], q["coefficients"])), default=0.0)
    iterations = sum(p["iterations"] != q["iterations"] for p, q in both)
    print(f"patterns {len(a)}, good in both {len(both)}, good flag differs {flags}")
    print(f"largest displacement difference {displacement:.6f} px, largest coefficient difference {coefficient:.6f}")
    print(f"patterns with another iteration count {iterations}")
    return 0 if flags == 0 and displacement <= args.tolerance else 1


if __name__ == "__main__":
    sys.exit(main())
