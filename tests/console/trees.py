# SPDX-License-Identifier: MIT
"""Random trees with everything in them that has ever made a walk go wrong."""
import os
import random

MOMENTS = [0, 1, -1, -86400 * 3650, 315532800, 1700000000, 1700000000, 1700000001]
NAMES = [b"report.doc", b"Report.DOC", b"REPORT.doc", b"a.txt", b"A.TXT", b"noextension",
         b"\xc3\xa9t\xc3\xa9.jpg", b"\xc3\x89T\xc3\x89.JPG", b"line\nbreak", b"tab\tname", b"quote\"d",
         b"back\\slash", b"co:lon", b"st*r", b"what?", b"less<more>", b"pi|pe", b"\xff\xfebytes",
         b"\xef\x80\xaa.private", b"*.private", b"\xed\xa0\x80lone", b"\xf0\x9f\x98\x80.png", b"trailing ",
         b"trailing.", b"\x01control", b"{brace},comma", b"-dash", b"scratch.tmp", b"SCRATCH.TMP",
         b".hidden", b".HIDDEN", b"semi;colon"]

# Sizes with several contents each, that differ in their last byte or their first; some are as long
# as a block of a checksum, give or take a byte.
SMALL = [b"", b"", b"x", b"x" * 10, b"x" * 10, b"x" * 9 + b"y", b"y" * 10, b"x" * 11, b"x" * 5000,
         b"x" * 4999 + b"y"]
BLOCKS = [start + b"x" * size + end for size in (131069, 131070, 131071)
          for start, end in ((b"x", b"x"), (b"x", b"y"), (b"y", b"x"))]
LARGE = [b"x" * (5 << 20) + end for end in (b"x", b"x", b"y", b"y", b"z")]


def make_random_tree(root, seed, folders=40, files=400, hard_to_read=True):
    """Fills the folder `root`. Answers nothing: the tree is what is there to be looked at."""
    rng = random.Random(seed)
    root = os.fsencode(root)
    os.makedirs(root, exist_ok=True)
    places = [root]
    for number in range(folders):
        name = rng.choice([b"folder%d" % number, b"Folder%d" % (number // 2), b".dot%d" % number,
                           b"with space %d" % number, b"\xc3\xbc%d" % number, b"\xfe%d" % number,
                           b"new\nline%d" % number, b"back\\%d" % number])
        path = os.path.join(rng.choice(places), name)
        if not os.path.lexists(path):
            os.mkdir(path)
            places.append(path)
    for number in range(files):
        name = rng.choice(NAMES) if rng.random() < 0.8 else b"file%d.bin" % rng.randrange(files // 8)
        path = os.path.join(rng.choice(places), name)
        if os.path.lexists(path):
            continue
        with open(path, "wb") as file:
            if number < len(LARGE):
                file.write(LARGE[number])
            else:
                file.write(rng.choice(BLOCKS if number % 8 == 0 else SMALL))
        moment = rng.choice(MOMENTS) * 1_000_000_000 + rng.choice([0, 1, 999_999_999, 999_999_950, 5])
        os.utime(path, ns=(moment, moment))
        if rng.random() < 0.1:
            os.chmod(path, 0o444)
    if hard_to_read:
        add_special_entries(rng, places)
    return places


def add_special_entries(rng, places):
    for number in range(12):
        place = rng.choice(places)
        target = rng.choice(places)
        for make, name in [(lambda p, t=target: os.symlink(t, p), b"linkdir%d" % number),
                           (lambda p: os.symlink(b".", p), b"loop%d" % number),
                           (lambda p: os.symlink(b"..", p), b"upward%d" % number),
                           (lambda p: os.symlink(b"report.doc", p), b"linkfile%d" % number),
                           (lambda p: os.symlink(b"nowhere", p), b"broken%d" % number),
                           (os.mkfifo, b"pipe%d" % number)]:
            path = os.path.join(place, name)
            if not os.path.lexists(path):
                make(path)


def make_deep_tree(root, levels=60, step=b"d" * 100):
    """A chain of folders whose path is longer than 4,096 bytes, with two equal files at its end."""
    os.makedirs(root, exist_ok=True)
    here = os.open(root, os.O_RDONLY | os.O_DIRECTORY)
    for _ in range(levels):
        os.mkdir(step, dir_fd=here)
        below = os.open(step, os.O_RDONLY | os.O_DIRECTORY, dir_fd=here)
        os.close(here)
        here = below
    for name in (b"deep one.bin", b"deep two.bin"):
        handle = os.open(name, os.O_WRONLY | os.O_CREAT, 0o644, dir_fd=here)
        os.write(handle, b"deep down here")
        os.close(handle)
    os.close(here)
