# SPDX-License-Identifier: MIT
"""A removal while somebody else works in the same folders. The program is held before one of its
system calls, the disk is changed, and it goes on: no file is lost, and the report tells what became of
it. QUILLMARSH_ATTACK=full holds it before each call in turn, for each change; otherwise before a few."""
import collections
import contextlib
import ctypes
import json
import mmap
import os
import random
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest

import oracle

STEPS = os.environ.get("QUILLMARSH_STEPS", "step_by_step")
IS_FULL = os.environ.get("QUILLMARSH_ATTACK") == "full"
IS_SLOW = os.environ.get("QUILLMARSH_SLOWNESS", "1") != "1"
IN_NAMESPACE = "QUILLMARSH_IN_NAMESPACE" in os.environ
NAMESPACE = ["unshare", "--user", "--map-root-user", "--mount"]
FINDINGS = ("lost copy", "lost change", "misplaced", "false outcome", "leftover")

# More than the program reads at a time; the byte that differs is in what it reads first.
OLD = random.Random(1).randbytes(300_000)
NEW = bytes([OLD[0] ^ 1]) + OLD[1:]
WHEN = (1_700_000_000_000_000_000,) * 2


def setUpModule():
    if not IN_NAMESPACE and subprocess.run([*NAMESPACE, "true"], stderr=subprocess.DEVNULL).returncode == 0:
        os.environ["QUILLMARSH_IN_NAMESPACE"] = "1"
        os.execvp(NAMESPACE[0], [*NAMESPACE, *sys.orig_argv])
    # On one processor the program and its tracer wait less for each other.
    os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})


def is_own(path):
    """What only the program gives names to: a file on its way, and a note of the trash."""
    return os.path.basename(path).startswith(".quillmarsh-") or path.endswith(".trashinfo")


def exchange(one, other):
    at_cwd, exchanging = -100, 2
    if ctypes.CDLL(None).renameat2(at_cwd, os.fsencode(one), at_cwd, os.fsencode(other), exchanging) != 0:
        raise OSError("they cannot be exchanged")


def replace_by_link(path, to, make):
    make(to, path + ".new")
    os.replace(path + ".new", path)


class Tree:
    """A file that the program is to remove, a copy of it, and what others do with the two."""

    def __init__(self, near, far, target):
        self.near, self.far, self.target = near, far, target
        for entry in [*os.scandir(near), *os.scandir(far)]:
            shutil.rmtree(entry.path) if entry.is_dir() else os.unlink(entry.path)
        self.dup, self.keep, self.away = (f"{near}/{name}" for name in ("tree/dup", "tree/keep", "away"))
        self.file, self.copy = self.dup + "/a.txt", self.keep + "/a.txt"
        self.write(self.file, OLD), self.write(self.copy, OLD)
        os.mkdir(self.away)
        self.write(f"{near}/.Trash-{os.getuid()}", b"")  # so that there is no trash at the top of a volume
        # While it is open, no other file gets its number.
        self.pin = os.open(self.file, os.O_PATH)
        self.number = os.fstat(self.pin).st_ino
        self.writer, self.promised = threading.Thread(), {}

    def write(self, path, data=NEW):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "xb") as file:
            file.write(data)
        os.utime(path, ns=WHEN)
        return path

    def save(self, path):
        os.replace(self.write(self.away + "/new"), path)

    def overwrite(self, path, data, flags=0, puts_time_back=False):
        file = os.open(path, os.O_WRONLY | os.O_NONBLOCK | flags)  # waits for no lease
        os.write(file, data)
        os.close(file)
        if puts_time_back:
            os.utime(path, ns=WHEN)

    def make_anew(self):
        os.close(self.pin)
        self.pin, self.number = os.open(self.near, os.O_PATH), None
        os.unlink(self.file)
        self.write(self.file)

    def written_by_handle(self, path):
        file = os.open(path, os.O_WRONLY)

        def write():
            os.write(file, NEW)
            os.utime(file, ns=WHEN)
            os.close(file)
        return write

    def written_by_mapping(self, path):
        with open(path, "r+b") as file:
            mapped = mmap.mmap(file.fileno(), 0)
        mapped[:1] = mapped[:1]  # from now on the file system does not see when it is written to

        def write():
            mapped[:1] = NEW[:1]
            mapped.close()
        return write

    def open_and_write(self):
        """As most programs do, which wait for as long as the file is leased."""
        def write():
            try:
                file = os.open(self.file, os.O_WRONLY)
            except OSError:
                return
            os.write(file, NEW)
            os.close(file)
            self.promised[self.file] = NEW
        self.writer = threading.Thread(target=write)
        self.writer.start()
        self.writer.join(0.02)

    def snapshot(self):
        """Number and contents of each file and link, but for the program's own settings and history."""
        found = {}
        for folder, _, names in [*os.walk(self.near), *os.walk(self.far)]:
            for path in (f"{folder}/{name}" for name in names if "/Harrow Fen/" not in folder + "/"):
                if os.path.islink(path):
                    found[path] = (0, b"link to " + os.fsencode(os.readlink(path)))
                    continue
                with open(path, "rb") as file:
                    found[path] = (os.fstat(file.fileno()).st_ino, file.read())
        return found


# Each is called before the program starts; what it answers is done where the program is held.
CHANGES = {
    "the file is replaced": lambda t: lambda: t.save(t.file),
    "the file is deleted": lambda t: lambda: os.unlink(t.file),
    "the file is deleted and made anew": lambda t: t.make_anew,
    "the file is rewritten": lambda t: lambda: t.overwrite(t.file, NEW),
    "the file is rewritten, its time put back": lambda t: lambda: t.overwrite(t.file, NEW, puts_time_back=True),
    "the file is appended to": lambda t: lambda: t.overwrite(t.file, b"more", os.O_APPEND),
    "the file is written by an old handle": lambda t: t.written_by_handle(t.file),
    "the file is written by an old mapping": lambda t: t.written_by_mapping(t.file),
    "the file is opened and written": lambda t: t.open_and_write,
    "the file is exchanged": lambda t: lambda: exchange(t.write(t.away + "/new"), t.file),
    "the file is moved away": lambda t: lambda: os.rename(t.file, t.away + "/moved"),
    "the file is moved over the copy": lambda t: lambda: os.rename(t.file, t.copy),
    "the file becomes a folder": lambda t: lambda: (os.unlink(t.file), t.write(t.file + "/inside")),
    "the file becomes a symlink to the copy": lambda t: lambda: replace_by_link(t.file, t.copy, os.symlink),
    "the file becomes a link to the copy": lambda t: lambda: replace_by_link(t.file, t.copy, os.link),
    "the file's folder is replaced": lambda t: lambda: (os.rename(t.dup, t.away + "/dup"), t.write(t.file)),
    "the copy is deleted": lambda t: lambda: os.unlink(t.copy),
    "the copy is deleted, the file replaced": lambda t: lambda: (os.unlink(t.copy), t.save(t.file)),
    "the copy is moved away": lambda t: lambda: os.rename(t.copy, t.away + "/moved"),
    "the copy is moved over the file": lambda t: lambda: os.rename(t.copy, t.file),
    "the copy is replaced": lambda t: lambda: t.save(t.copy),
    "the copy is emptied": lambda t: lambda: t.overwrite(t.copy, b"", os.O_TRUNC),
    "the copy is rewritten, its time put back": lambda t: lambda: t.overwrite(t.copy, NEW, puts_time_back=True),
    "the copy is written by an old handle": lambda t: t.written_by_handle(t.copy),
    "the copy is written by an old mapping": lambda t: t.written_by_mapping(t.copy),
    "the copy becomes a symlink to the file": lambda t: lambda: replace_by_link(t.copy, t.file, os.symlink),
    "the copy becomes a link to the file": lambda t: lambda: replace_by_link(t.copy, t.file, os.link),
    "the copy's folder is replaced": lambda t: lambda: (os.rename(t.keep, t.away + "/keep"), os.mkdir(t.keep)),
    "the copy's folder becomes a symlink to the file's":
        lambda t: lambda: (shutil.rmtree(t.keep), os.symlink(t.dup, t.keep)),
    "the copy's folder is covered by a mount":
        lambda t: lambda: subprocess.run(["mount", "-t", "tmpfs", "none", t.keep], check=True),
    "the two are exchanged": lambda t: lambda: exchange(t.file, t.copy),
    "the two folders are exchanged": lambda t: lambda: exchange(t.dup, t.keep),
    "the name in the target is taken": lambda t: lambda: t.write(t.target),
}


class Run:
    """One removal, held before a step for a change, and what came of it."""

    def __init__(self, tree, method, step=0, change=None):
        self.tree, self.log, self.held, self.is_made, self.code = tree, [], None, False, None
        act = CHANGES[change](tree) if change else None
        told, tell = os.pipe()
        listen, answer = os.pipe()
        process = subprocess.Popen(
            [STEPS, str(step), str(tell), str(listen), oracle.PROGRAM, "remove", "--yes", "--format", "json",
             "--match", "name,size,contents", "--no-ignore", "zero,system,hidden,temporary,windows",
             "--rule", "folder=" + tree.dup, "--method", method, tree.near + "/tree"],
            pass_fds=(tell, listen), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            env={**os.environ, "XDG_DATA_HOME": tree.far + "/data", "ASAN_OPTIONS": "detect_leaks=0"})
        limit = threading.Timer(60, process.kill)
        limit.daemon = True
        limit.start()
        os.close(tell), os.close(listen)
        with open(told, encoding="utf-8") as lines, open(answer, "wb", 0) as go_on:
            for line in lines:
                first, *rest = line.rstrip("\n").split("\t")
                if first == "stop":
                    self.held = " ".join(rest)
                    with contextlib.suppress(OSError):  # what it is about may not be there just now
                        act()
                        self.is_made = True
                    self.after = tree.snapshot()
                    go_on.write(b"\n")
                elif first == "exit":
                    self.code = int(rest[0])
                elif first == "refused":
                    raise unittest.SkipTest("no program may be traced here")
                else:
                    self.log.append((int(first), *rest))
        output, self.told = process.communicate()
        limit.cancel()
        if os.path.ismount(tree.keep):
            subprocess.run(["umount", tree.keep], check=True)
        if tree.writer.is_alive():
            tree.writer.join()
        os.close(tree.pin)
        self.end = tree.snapshot()
        self.files = json.loads(output)["files"] if output.endswith(b"}\n") else []

    def telling_steps(self):
        """The end of the comparison, and those that take a name of the file: its own, or one for a moment."""
        taking = [step for step, call, path, *_, outcome in self.log
                  if call.startswith(("unlink", "rename")) and path.startswith(self.tree.dup) and outcome == "0"]
        reading = [step for step, call, path, *_ in self.log if call == "pread64" and path == self.tree.copy]
        return [max(step for step in reading if step < taking[0]), *taking]

    def findings(self):
        """Pairs of a kind and what is wrong."""
        tree, after, end = self.tree, self.after, self.end
        proper = {path: data for path, (_, data) in end.items() if not is_own(path)}
        copies = [path for path, (_, data) in end.items() if data == OLD]
        # What the program has written into the target by then is not what people have.
        theirs = {path: data for path, (_, data) in after.items() if path.startswith(tree.near) or not is_own(path)}
        if any(data == OLD and path.startswith(tree.near) for path, data in theirs.items()) and not copies:
            yield "lost copy", "no copy is left"
        for path, data in (theirs | tree.promised).items():
            places = [place for place, found in proper.items() if found == data]
            home = tree.file if is_own(path) else path
            if data not in (OLD, b"") and home not in places:
                yield "misplaced" if places else "lost change", f"what was in {path} is in {places}"
        for path in end:
            trashed = path.replace("/info/", "/files/").removesuffix(".trashinfo")
            if is_own(path) and trashed not in proper and not path.endswith("/.quillmarsh-dupes"):
                yield "leftover", path
        if len(self.files) != 1 or self.files[0]["path"] != tree.file:
            yield "false outcome", f"exit code {self.code}, {self.files}, {self.told}"
            return
        outcome, target = self.files[0]["outcome"], self.files[0].get("target")
        told = f"{outcome} with exit code {self.code}: {self.files[0].get('reason')} {self.told}"
        if self.code != (1 if outcome == "left" else 0):
            yield "false outcome", told
        if outcome == "left":
            was = [data for number, data in after.values() if number == tree.number]
            stays = [path for path, data in proper.items() if path.startswith(tree.near) and was and
                     (end[path][0] == tree.number or (data == was[0] and (path == tree.file or path not in after)))]
            if was and not stays:
                yield "false outcome", f"{told}, but it is not there"
            named = str(self.files[0].get("reason"))
            if len({path.startswith(tree.far) for path in copies if path not in named}) == 2:
                yield "leftover", f"{told}, but there are {copies}"
        elif tree.number and end.get(tree.file, [None])[0] == tree.number:
            yield "false outcome", f"{told}, but it is still there"
        elif outcome == "moved" and proper.get(target) != OLD:
            yield "false outcome", f"{told}, but {target} does not hold it"
        elif outcome == "trashed" and not any("/Trash/files/" in path for path in copies):
            yield "false outcome", f"{told}, but the trash does not hold it"


class OneVolume(unittest.TestCase):
    volumes = 1

    @classmethod
    def setUpClass(cls):
        cls.base = tempfile.mkdtemp(prefix="quillmarsh-")
        cls.addClassCleanup(shutil.rmtree, cls.base, ignore_errors=True)
        cls.near, cls.far = cls.base + "/near", cls.base + "/far"
        os.mkdir(cls.near), os.mkdir(cls.far)
        print("\nmethod", "volumes", "steps", "changes", "runs", "changed", *FINDINGS, sep=" | ", file=sys.stderr)

    def chosen_steps(self, telling, number):
        """All until the file is gone; or in turn a telling one, a late one and any, and mostly the last one too."""
        last = telling[-1]
        if IS_FULL:
            return range(1, last + 1)
        number += len(self.id()) + self.volumes
        step = (last - 1 - number // 4 % 8, telling[0], telling[1], 1 + number * 37 % last)[number % 4]
        return [step] if IS_SLOW or number % 4 == 0 else sorted({step, last})

    def attack(self, method):
        method = method.format(far=self.far)
        plain = Run(Tree(self.near, self.far, None), method)
        self.assertEqual((plain.code, len(plain.files)), (0, 1), plain.told)
        target = plain.files[0].get("target", self.far + "/data/Trash/files/a.txt")
        telling = plain.telling_steps()
        runs = held = made = 0
        counts, details = collections.Counter(), []
        for number, change in enumerate(CHANGES):
            if "mount" in change and not IN_NAMESPACE:
                continue
            for step in self.chosen_steps(telling, number):
                run = Run(Tree(self.near, self.far, target), method, step, change)
                runs, held, made = runs + 1, held + (run.held is not None), made + run.is_made
                findings = list(run.findings()) if run.held else []
                counts.update({kind for kind, _ in findings})
                details += (f"{change} before step {step}, {run.held}: {kind}: {text}".replace(self.base, "")
                            for kind, text in findings)
        print(method.split("=")[0], self.volumes, telling[-1], len(CHANGES), runs, made,
              *(counts[kind] for kind in FINDINGS), sep=" | ", file=sys.stderr)
        # A file that is open elsewhere is left early.
        self.assertGreater(held, runs * 0.8, "the program takes other steps each time")
        self.assertGreater(made, runs / 3, "most changes could not be made")
        if details:
            self.fail("\n".join([f"{len(details)} findings", *details[:None if IS_FULL else 10]]))

    def test_delete(self):
        self.attack("delete")

    def test_recycle(self):
        self.attack("recycle")

    def test_dupes(self):
        self.attack("dupes={far}/D")

    def test_move(self):
        self.attack("move={far}/M")


class TwoVolumes(OneVolume):
    """What is removed lies in memory, the target on the disk."""
    volumes = 2

    @classmethod
    def setUpClass(cls):
        if not IN_NAMESPACE:
            raise unittest.SkipTest("user namespaces are refused here")
        super().setUpClass()
        subprocess.run(["mount", "-t", "tmpfs", "none", cls.near], check=True)
        cls.addClassCleanup(subprocess.run, ["umount", cls.near])


if __name__ == "__main__":
    unittest.main()
