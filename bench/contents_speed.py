#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures a search by size and contents against its floor, in one run and on one warm tree.

The floor is looking at every file once, and reading every candidate once and throwing it away:
    find TREE -type f -printf '%s %T@ %p\\n'   and then   bare_read LIST
Candidates are the files that share their size with another. Runs alternate, since machines are
shared and noisy, and the best of each is compared.

    contents_speed.py FOLDER_OF_PROGRAMS TREE...
"""
import os
import sys
import tempfile

from search_speed import ALL, best_of, run


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    folder = sys.argv[1]
    program = os.path.join(folder, "quillmarsh-cli")
    print(f"{'tree':40} {'find s':>8} {'read s':>8} {'search':>8} {'ratio':>6}")
    for tree in sys.argv[2:]:
        search = [program, "search", *ALL, "--quiet", "--format", "null", "--match"]
        with tempfile.NamedTemporaryFile() as listing:
            run([*search, "size", tree], listing)
            # Groups end with a NUL more.
            listing.seek(0)
            paths = [path for path in listing.read().split(b"\0") if path]
            listing.seek(0)
            listing.truncate()
            listing.write(b"".join(path + b"\0" for path in paths))
            listing.flush()
            results = best_of({
                "find": ["find", tree, "-type", "f", "-printf", r"%s %T@ %p\n"],
                "read": [os.path.join(folder, "bare_read"), listing.name],
                "search": [*search, "size,contents", tree],
            })
        floor = results["find"][0] + results["read"][0]
        found = results["search"][0]
        print(f"{tree:40} {results['find'][0]:8.3f} {results['read'][0]:8.3f} {found:8.3f} "
              f"{found / floor:6.2f}")


if __name__ == "__main__":
    main()
