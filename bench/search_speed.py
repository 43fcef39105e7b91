#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures a search against its floor, in one run and on one warm tree, and prints ratios.

The floor is what the system charges for looking at every file once:
    find TREE -type f -printf '%s %T@ %p\\n'
Runs of both alternate, since machines are shared and noisy, and the best of each is compared.

    search_speed.py PROGRAM TREE...      trees as make_tree.py makes them, or any other
"""
import os
import subprocess
import sys
import time

ROUNDS = 5
MASKS = 500
ALL = ["--no-ignore", "zero,system,hidden,temporary,windows"]


def run(command, output=subprocess.DEVNULL):
    """Seconds of wall time and the peak memory in KiB of one run."""
    begin = time.perf_counter()
    process = subprocess.Popen(command, stdout=output)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.perf_counter() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{command[0]} ended with {process.returncode}")
    return seconds, usage.ru_maxrss


def best_of(commands):
    """The shortest time and the highest memory of each command, run in turns."""
    results = {name: (float("inf"), 0) for name in commands}
    for _ in range(ROUNDS):
        for name, command in commands.items():
            seconds, memory = run(command)
            results[name] = (min(results[name][0], seconds), max(results[name][1], memory))
    return results


def masks():
    """Plain endings and others, none of which leaves out many files."""
    plain = [f"*.e{number}x" for number in range(MASKS // 2)]
    others = [f"prefix{number}*.t?t" if number % 2 else f"*word{number}*" for number in range(MASKS // 2)]
    options = []
    for mask in plain + others:
        options += ["--exclude-file", mask]
    return options


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    program = sys.argv[1]
    print(f"{'tree':40} {'files':>8} {'find s':>8} {'search':>8} {'ratio':>6} {'masks':>6} "
          f"{'MB':>6} {'limit':>6}")
    for tree in sys.argv[2:]:
        listing = subprocess.run(["find", tree, "-type", "f", "-printf", "x"], stdout=subprocess.PIPE,
                                 stderr=subprocess.DEVNULL, check=False).stdout
        search = [program, "search", *ALL, "--match", "name,size", "--format", "null", tree]
        results = best_of({
            "find": ["find", tree, "-type", "f", "-printf", r"%s %T@ %p\n"],
            "search": search,
            "masks": search + masks(),
        })
        floor, found = results["find"][0], results["search"][0]
        limit = 60 + 220 * len(listing) / 1e6
        print(f"{tree:40} {len(listing):8} {floor:8.3f} {found:8.3f} {found / floor:6.2f} "
              f"{results['masks'][0] / found:6.2f} {results['search'][1] * 1024 / 1e6:6.0f} {limit:6.0f}")


if __name__ == "__main__":
    main()
