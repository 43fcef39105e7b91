#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes a tree of N small files for the benchmarks: folders of about sixty files, names of which many
occur twice, sizes from a small range, write times within one minute. The same N gives the same tree.

    make_tree.py FOLDER N            the tree
    make_tree.py --flat FOLDER N     all files in one folder
"""
import os
import random
import sys

FILES_PER_FOLDER = 60
MOMENT = 1_700_000_000
WORDS = ["holiday", "invoice", "meeting", "photo", "draft", "letter", "notes", "scan", "track", "report"]
ENDINGS = ["jpg", "txt", "pdf", "doc", "mp3", "png", "xml", "c", "h", "dat"]


def make_tree(root, count, flat=False):
    """Fills `root` unless it holds the finished tree already."""
    mark = f"{root.rstrip('/')}.{count}{'.flat' if flat else ''}.done"
    if os.path.exists(mark):
        return
    rng = random.Random(count)
    os.makedirs(root, exist_ok=True)
    zeros = bytes(4096)
    folder = None
    for number in range(count):
        if folder is None or (not flat and number % FILES_PER_FOLDER == 0):
            if folder is not None:
                os.close(folder)
            step = number // FILES_PER_FOLDER
            path = root if flat else os.path.join(
                root, f"part {step // 400:03d}", f"{rng.choice(WORDS)} {step // 20:04d}", f"{step:05d}")
            os.makedirs(path, exist_ok=True)
            folder = os.open(path, os.O_RDONLY | os.O_DIRECTORY)
        serial = number if flat or rng.random() < 0.5 else rng.randrange(max(1, count // 100))
        name = f"{rng.choice(WORDS)}_{serial:07d}.{rng.choice(ENDINGS)}"
        try:
            handle = os.open(name, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644, dir_fd=folder)
        except FileExistsError:
            continue
        os.write(handle, zeros[:rng.randrange(1, 64)])
        os.utime(handle, (MOMENT, MOMENT + rng.randrange(60)))
        os.close(handle)
    os.close(folder)
    with open(mark, "w", encoding="ascii"):
        pass


if __name__ == "__main__":
    arguments = [argument for argument in sys.argv[1:] if argument != "--flat"]
    if len(arguments) != 2:
        sys.exit(__doc__)
    make_tree(arguments[0], int(arguments[1]), flat="--flat" in sys.argv)
