# SPDX-License-Identifier: MIT
"""The console program for Windows, run by Wine on real files, held against the same program on the
simulated machine: every byte that either writes must be the same, but for the times in the history.
"""
import hashlib
import json
import os
import random
import re
import shutil
import subprocess
import tempfile
import unittest

WINE = os.environ.get("QUILLMARSH_WINE", "wine64")
PROGRAM = os.environ.get("QUILLMARSH_WINDOWS_CLI", "")
SIMULATED = os.environ.get("QUILLMARSH_SIMULATED_CLI", "")
DRIVES = os.path.join(os.environ.get("WINEPREFIX", ""), "dosdevices")

ALL = ["--no-ignore", "zero,system,hidden,temporary,windows"]
NAMES = ["report.doc", "Übung €.txt", "\U0001F4BE disk.bin", "no ending", "trailing.", "trailing ", "NUL.txt",
         "[x](1).jpg", "-dash", "semi;colon, comma", "%20 & ^.dat", "日本語.png", ".dot", "x" * 200 + ".txt"]
CONTENTS = [b"", b"x", b"same", b"also", b"x" * 5000, b"x" * 4999 + b"y", b"z" * 131071, b"z" * 131070 + b"y"]
TICKS_BEFORE_1970 = 116444736000000000
HISTORY_TIME = re.compile(rb"(\d\x00|/\x00|:\x00| \x00|[AP]\x00M\x00)+ \x00<\x00")


class Disk:
    """Two drives in a temporary folder, which Wine shows as M: and N:; N: lies on another file system
    where there is one."""

    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="quillmarsh-")
        other = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.other = tempfile.mkdtemp(prefix="quillmarsh-", dir=other)
        self.roots = {"M": os.path.join(self.folder, "drive"), "N": self.other}
        os.mkdir(self.roots["M"])
        for letter, root in self.roots.items():
            link = os.path.join(DRIVES, letter.lower() + ":")
            if os.path.islink(link):
                os.unlink(link)
            os.symlink(root, link)
        self.image = os.path.join(self.folder, "disk.json")

    def close(self):
        for letter in self.roots:
            os.unlink(os.path.join(DRIVES, letter.lower() + ":"))
        shutil.rmtree(self.folder)
        shutil.rmtree(self.other)

    def native(self, path):
        return os.path.join(self.roots[path[0]], *path[3:].split("\\"))

    def make(self, path, contents, moment, read_only=False):
        native = self.native(path)
        os.makedirs(os.path.dirname(native), exist_ok=True)
        with open(native, "wb") as file:
            file.write(contents)
        os.utime(native, (moment, moment))
        if read_only:
            os.chmod(native, 0o444)

    def files(self):
        """Everything on both drives by its path there."""
        for letter, root in self.roots.items():
            for folder, _, names in os.walk(root):
                for name in names:
                    native = os.path.join(folder, name)
                    yield letter + ":\\" + os.path.relpath(native, root).replace("/", "\\"), native

    def describe(self):
        """The same disk for the simulated machine. Wine shows files whose names begin with a point as
        hidden ones."""
        entries = []
        for path, native in self.files():
            facts = os.stat(native)
            ticks = facts.st_mtime_ns // 100 + TICKS_BEFORE_1970
            attributes = 0x20 | (0 if facts.st_mode & 0o200 else 1) | (2 if os.path.basename(native)[0] == "." else 0)
            with open(native, "rb") as file:
                entries.append({"path": path, "attributes": attributes, "created": ticks, "written": ticks,
                                "bytes": file.read().hex()})
        with open(self.image, "w", encoding="ascii") as file:
            json.dump({"drives": ["C:\\", "M:\\", "N:\\"], "localData": "M:\\local data", "entries": entries}, file)


def journalled(data):
    """What the journal says of each file, without run numbers, times and file numbers."""
    lines = [line.split("\t") for line in data.decode("utf-16").splitlines()]
    return [(line[3], line[4], line[6], line[7]) for line in lines if line[0] == "plan"]


def without_history_times(data):
    return HISTORY_TIME.sub(b"", data)


class Windows(unittest.TestCase):
    maxDiff = 3000

    def setUp(self):
        self.disk = Disk()
        self.addCleanup(self.disk.close)
        data_home = os.path.join(self.disk.folder, "data home")  # Wine makes the trash in it, but not the folder
        os.mkdir(data_home)
        self.environment = dict(os.environ, XDG_DATA_HOME=data_home, TZ="UTC",
                                LC_ALL="C.UTF-8", QUILLMARSH_SIMULATED_DISK=self.disk.image)
        # Where the program keeps its files is read from here by Wine.
        subprocess.run([WINE, "reg", "add", r"HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders",
                        "/v", "Local AppData", "/t", "REG_SZ", "/d", r"M:\local data", "/f"],
                       env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)

    def run_program(self, command, arguments):
        done = subprocess.run([*command, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120, check=False)
        complaints = b"".join(line for line in done.stderr.splitlines(True) if not line.startswith(b"wine: "))
        return done.returncode, done.stdout, complaints

    def both(self, *arguments, code=0, has_system_words=False):
        """Runs both programs and answers what they wrote, which is the same. Wine has words of its own for
        the system's errors, which come last."""
        windows = self.run_program([WINE, PROGRAM], arguments)
        simulated = self.run_program([SIMULATED], arguments)
        if has_system_words:
            windows, simulated = ((ran[0], ran[1], ran[2].rpartition(b": ")[0]) for ran in (windows, simulated))
            self.assertTrue(windows[2])
        self.assertEqual(windows, simulated, arguments)
        self.assertEqual(windows[0], code, windows[2])
        return windows[1].decode()

    def assert_same_disks(self):
        with open(self.disk.image, encoding="utf-8") as file:
            image = json.load(file)
        simulated = {entry["path"]: bytes.fromhex(entry["bytes"]) for entry in image["entries"]
                     if "bytes" in entry and entry["path"][0] in "MN" and "$Recycle.Bin" not in entry["path"]}
        windows = {}
        for path, native in self.disk.files():
            with open(native, "rb") as file:
                windows[path] = file.read()
        self.assertEqual(sorted(simulated), sorted(windows))
        for path, contents in windows.items():
            if path.endswith("history.log"):
                contents, simulated[path] = without_history_times(contents), without_history_times(simulated[path])
            if path.endswith("removal.journal"):
                contents, simulated[path] = journalled(contents), journalled(simulated[path])
            self.assertEqual(contents, simulated[path], path)
        return windows, image.get("recycled", {})

    def make_random_tree(self, seed, left_out=()):
        rng = random.Random(seed)
        names = [name for name in NAMES if name not in left_out]
        folders = ["M:\\tree", "M:\\tree\\Ünter", "M:\\tree\\a b\\c", "M:\\tree\\deep" + "\\" + "d" * 100 + "\\" + "e" * 100]
        moment = 1_600_000_000
        for folder in folders:
            for name in rng.sample(names, 10):
                moment += rng.randrange(1, 100_000)  # no two at one time
                self.disk.make(folder + "\\" + name, rng.choice(CONTENTS), moment, rng.random() < 0.1)
        self.disk.describe()

    def test_every_command_writes_the_same_bytes_as_on_the_simulated_machine(self):
        plans = [("keep-newest", "dupes", "name,size"), ("keep-oldest", "dupes=N:\\DUPES", "size,contents"),
                 ("keep-newest", "move=M:\\moved\\here", "size,contents"), ("oldest", "move=N:\\moved", "name"),
                 ("keep-oldest", "delete", "size,contents"), ("keep-newest", "recycle", "name"),
                 ("newest", "recycle", "size,contents"), ("mask=*.doc;*.bin", "delete", "name")]
        for seed, (rule, method, match) in enumerate(plans):
            with self.subTest(rule=rule, method=method, match=match):
                for root in self.disk.roots.values():
                    for entry in os.scandir(root):
                        shutil.rmtree(entry.path) if entry.is_dir() else os.unlink(entry.path)
                os.mkdir(self.disk.native("M:\\local data"))
                # None of these goes to the bin: a name that the shell takes for a device, which the simulated
                # one does not know, names that it would shorten, and paths that are too long for it.
                refused = ["NUL.txt", "trailing.", "trailing ", "x" * 200 + ".txt"]
                self.make_random_tree(seed, refused if method == "recycle" else [])
                self.check_plan(rule, method, match)

    def check_plan(self, rule, method, match):
        search = ["--match", match, *ALL, "M:\\tree"]
        for output in ("text", "json", "csv", "null"):
            self.both("search", "--format", output, *search)
        self.both("search", "--match", match, "m:/TREE/.")
        selected = json.loads(self.both("select", "--rule", rule, "--format", "json", *search))
        marked = {file["path"] for group in selected["groupList"] for file in group["files"] if file["marked"]}
        self.assertTrue(marked)
        self.both("export", "--output", "M:\\report.txt", *search)
        before, _ = self.assert_same_disks()
        self.both("remove", "--rule", rule, "--method", method, "--dry-run", *search)
        self.both("remove", "--rule", rule, "--method", method, "--yes", "--format", "json", *search)
        after, recycled = self.assert_same_disks()
        self.assertEqual({path for path in before if path not in after}, marked)
        if not method.startswith("delete"):
            kept = list(after.values()) + [bytes.fromhex(data) for data in recycled.values()]
            for path in marked:
                self.assertIn(before[path], kept)
        if method == "recycle":
            self.assertEqual(self.trashed(), sorted(hashlib.sha256(before[path]).hexdigest() for path in marked))
        self.assertIn("Begin Duplicate Removal", self.run_program([WINE, PROGRAM], ["history"])[1].decode())

    def trashed(self):
        """Digests of what lies in the trash, in which Wine keeps its Recycle Bin; empties it."""
        trash = os.path.join(self.disk.folder, "data home", "Trash")
        digests = []
        for entry in os.scandir(os.path.join(trash, "files")):
            with open(entry.path, "rb") as file:
                digests.append(hashlib.sha256(file.read()).hexdigest())
        shutil.rmtree(trash)
        return sorted(digests)

    def test_mistakes_are_told_in_the_same_words(self):
        self.disk.make("M:\\tree\\a.txt", b"x", 1_600_000_000)
        self.disk.describe()
        for arguments in (["search"], ["search", "M:\\tree\\a.txt"], ["search", "--match", "x", "M:\\"]):
            self.both(*arguments, code=2)
        for arguments in (["search", "M:\\none"], ["remove", "--method", "move=Q:\\none", "--yes", "M:\\tree"],
                          ["export", "--output", "M:\\none\\report.txt", "M:\\tree"]):
            self.both(*arguments, code=2, has_system_words=True)
        self.both("--version")
        self.both("remove", "--help")


if __name__ == "__main__":
    unittest.main()
