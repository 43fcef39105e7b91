# SPDX-License-Identifier: MIT
"""Selecting, removing and exporting with the console program, on real disks."""
import hashlib
import json
import os
import pty
import random
import select
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

import oracle
import trees

ALL = ["--no-ignore", "zero,system,hidden,temporary,windows"]


class Case(unittest.TestCase):
    maxDiff = 4000

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="quillmarsh-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.environ["XDG_DATA_HOME"] = os.path.join(self.folder, "data home")
        self.tree = os.path.join(self.folder, "tree")

    def make(self, path, contents="x", days_old=0):
        whole = os.path.join(self.folder, path)
        os.makedirs(os.path.dirname(whole), exist_ok=True)
        with open(whole, "w", encoding="utf-8") as file:
            file.write(contents)
        moment = time.time() - days_old * 86400
        os.utime(whole, (moment, moment))
        return whole

    def call(self, *arguments, code=0):
        done = oracle.run(*arguments)
        self.assertEqual(done.returncode, code, done.stderr)
        return os.fsdecode(done.stdout), os.fsdecode(done.stderr)

    def make_copies(self):
        return [self.make(f"tree/{side}/a.txt", "same", age)
                for side, age in (("new", 1), ("middle", 5), ("old", 9))]


def contents_below(*roots):
    found = {}
    for root in roots:
        for folder, _, names in os.walk(os.fsencode(root)):
            for name in names:
                path = os.path.join(folder, name)
                if os.path.isfile(path) and not os.path.islink(path):
                    with open(path, "rb") as file:
                        found[path] = hashlib.sha256(file.read()).digest()
    return found


def real_path(entry, key):
    import base64
    if key + "Bytes" in entry:
        return base64.b64decode(entry[key + "Bytes"])
    return os.fsencode(entry[key])


class RandomForests(Case):
    """Whatever the rule and the method: a copy of each group stays, nothing else is touched, and
    what was moved is where the report says."""

    def test_a_copy_stays_and_nothing_else_is_touched(self):
        rng = random.Random(4)
        rules = ["newest", "oldest", "keep-newest", "keep-oldest", "smallest", "largest",
                 "keep-smallest", "keep-largest", "larger-than=0", "older-than=2100-01-01",
                 "mask=*", "not-mask=*.zzz", "drive=/", "drive=C", "folder=", "not-folder="]
        for seed, rule in enumerate(rules):
            method = ["delete", "recycle", "dupes", "move=" + os.path.join(self.folder, "moved")][seed % 4]
            with self.subTest(rule=rule, method=method):
                shutil.rmtree(self.folder)
                trees.make_random_tree(self.tree, seed, folders=12, files=150, hard_to_read=False)
                for path in contents_below(self.tree):
                    if os.stat(path).st_mtime < 1e9:  # too old to count as newest
                        os.utime(path, (1e9, 1e9))
                if rule.endswith("folder="):
                    rule += rng.choice([entry.path for entry in os.scandir(self.tree) if entry.is_dir()])
                match = rng.choice(["name,size", "size", "size,contents", "name,contents"])
                self.check_removal(rule, method, match)

    def check_removal(self, rule, method, match):
        listed = json.loads(self.call("select", "--rule", rule, "--match", match, "--format", "json",
                                      *ALL, self.tree)[0])
        groups = [[(real_path(file, "path"), file["marked"]) for file in group["files"]]
                  for group in listed["groupList"]]
        self.assertTrue(groups)
        before = contents_below(self.tree)
        report = json.loads(self.call("remove", "--yes", "--rule", rule, "--method", method, "--match", match,
                                      "--format", "json", *ALL, self.tree)[0])
        after = contents_below(self.folder)
        gone = set()
        for entry in report["files"]:
            path = real_path(entry, "path")
            self.assertNotEqual(entry["outcome"], "left", entry)
            self.assertNotIn(path, after)
            gone.add(path)
            if entry["outcome"] == "moved":
                self.assertEqual(after[real_path(entry, "target")], before[path])
        self.assertTrue(gone)
        self.assertEqual(gone, {path for group in groups for path, marked in group if marked})
        self.assertEqual(len(gone), report["removed"])
        for path, digest in before.items():
            if path not in gone:
                self.assertEqual(after.get(path), digest, path)
        for group in groups:
            self.assertTrue(any(path in after for path, _ in group), group)


class Commands(Case):
    def test_a_selection_shows_boxes_and_its_null_form_only_what_is_selected(self):
        new, middle, old = self.make_copies()
        text = self.call("select", self.tree)[0]
        self.assertIn(f"[ ] {new}\n", text)
        self.assertIn(f"[x] {middle}\n", text)
        self.assertIn("Selected: 2, 8 bytes", text)
        self.assertEqual(self.call("select", "--rule", "oldest", "--format", "null", self.tree)[0],
                         f"{old}\0\0")
        whole = self.call("select", "--rule", "folder=" + self.tree, "--allow-all", self.tree)[0]
        self.assertIn("every file is selected", whole)

    def test_the_last_copy_goes_only_when_that_is_allowed(self):
        copies = self.make_copies()
        refused = ["remove", "--yes", "--method", "delete", "--rule", "keep-newest", self.tree]
        for path in copies:
            os.utime(path, (0, 0))  # older than any file that counts as newest
        self.assertIn("1 group would be left without a copy", self.call(*refused, code=2)[1])
        self.assertTrue(all(map(os.path.exists, copies)))
        self.call(*refused, "--allow-all")
        self.assertFalse(any(map(os.path.exists, copies)))

    def test_from_a_terminal_nothing_goes_without_a_yes(self):
        copies = self.make_copies()
        ours, theirs = pty.openpty()
        done = subprocess.run([oracle.PROGRAM, "remove", "--method", "delete", self.tree], stdin=theirs,
                              capture_output=True, timeout=60)
        os.close(ours), os.close(theirs)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(done.stdout, b"".join(f"delete  {copy}\n".encode() for copy in copies[1:]))
        self.assertIn(b"nothing was removed; --yes removes", done.stderr)
        self.call("remove", "--method", "delete", "--dry-run", self.tree)
        self.assertTrue(all(map(os.path.exists, copies)))
        out = self.call("remove", "--method", "delete", self.tree)[0]
        self.assertIn("Removed: 2 files, 8 bytes. Left: 0 files.", out)
        self.assertEqual(list(map(os.path.exists, copies)), [True, False, False])

    def test_each_method_takes_the_file_where_it_says(self):
        for method, place in (("dupes=" + self.folder + "/D", f"D/[C DRIVE]{self.tree}/old/a.txt"),
                              ("dupes", f"data home/Harrow Fen/Quillmarsh/DUPES/[C DRIVE]{self.tree}/old/a.txt"),
                              ("move=" + self.folder + "/M/deep", "M/deep/a.txt"),
                              ("recycle", "data home/Trash/files/a.txt")):
            with self.subTest(method=method):
                shutil.rmtree(self.folder)
                old = self.make_copies()[2]
                self.call("remove", "--yes", "--rule", "oldest", "--method", method, self.tree)
                self.assertFalse(os.path.exists(old))
                with open(os.path.join(self.folder, place), encoding="utf-8") as file:
                    self.assertEqual(file.read(), "same")
                history = self.call("history")[0]
                self.assertIn(old, history)
                self.assertTrue(place.startswith("data home/Trash") or place.split("/")[-1] in history)

    def test_what_is_in_the_dupes_folder_is_not_overwritten_by_other_bytes(self):
        old = self.make_copies()[2]
        place = self.make(f"D/[C DRIVE]{self.tree}/old/a.txt", "else")
        out = self.call("remove", "--yes", "--rule", "oldest", "--method", f"dupes={self.folder}/D", self.tree)[0]
        self.assertIn(f"moved  {old} --> {place[:-4]}(1).txt\n", out)
        with open(place, encoding="utf-8") as file:
            self.assertEqual(file.read(), "else")

    def test_what_the_trash_refuses_is_left_unless_it_may_go_for_good(self):
        old = self.make_copies()[2]
        # Neither the home trash nor one at the top of the volume can be made: a file stands there,
        # and an ordinary user may not write there.
        self.make("data home/Trash", "no folder")
        user = "nobody" if os.getuid() == 0 else None
        if user:
            subprocess.run(["chown", "-R", user, self.folder], check=True)
        top = subprocess.run(["stat", "--printf=%m", self.tree], stdout=subprocess.PIPE, check=True).stdout
        if os.stat(top).st_mode & 0o002:
            self.skipTest("anybody can make a trash at the top of this volume")
        blocked = ["remove", "--yes", "--rule", "oldest", "--method", "recycle", self.tree]
        program = oracle.copy_program(self.folder)
        done = oracle.run(*blocked, user=user, program=program)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn(f'left "{old}"', os.fsdecode(done.stderr))
        self.assertTrue(os.path.exists(old))
        done = oracle.run(*blocked, "--allow-permanent", user=user, program=program)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn(f"deleted  {old}\n", os.fsdecode(done.stdout))
        self.assertFalse(os.path.exists(old))

    def test_an_export_replaces_an_older_one_and_other_forms_go_into_the_file_too(self):
        self.make_copies()
        output = self.make("report.txt", "older")
        self.call("export", "--output", output, self.tree)
        with open(output, encoding="utf-16") as file:
            lines = file.read().split("\n")
        self.assertEqual(lines[0], "PATHS CHECKED (SUBFOLDERS INCLUDED):")
        self.assertEqual(sum('"a.txt"' in line for line in lines), 3)
        self.call("export", "--format", "json", "--output", output, self.tree)
        with open(output, encoding="utf-8") as file:
            self.assertEqual(json.load(file)["duplicates"], 3)
        self.call("export", "--output", self.folder + "/none/report.txt", self.tree, code=2)
        self.call("export", "--output", self.tree, self.tree, code=2)
        told = self.call("export", "--output", self.tree + "/new/a.txt", self.tree, code=2)[1]
        self.assertIn("it is one of the files that were searched", told)

    def test_mistakes_are_told_and_change_nothing(self):
        copies = self.make_copies()
        for told, *arguments in (
                ("there is none of that name", "--rule", "oldset", "--method", "delete"),
                ("write it as older-than=DATE", "--rule", "older-than", "--method", "delete"),
                ("a date is written as", "--rule", "older-than=yesterday", "--method", "delete"),
                ("a size is a number", "--rule", "larger-than=5X", "--method", "delete"),
                ("no file is that large", "--rule", "larger-than=999999999999999G", "--method", "delete"),
                ("it takes nothing", "--rule", "newest=3", "--method", "delete"),
                ("cannot find", "--rule", "folder=/no/such", "--method", "delete"),
                ("it is a file", "--rule", "folder=" + copies[0], "--method", "delete"),
                ("there is no such drive", "--rule", "not-drive=Q", "--method", "delete"),
                ("an empty mask", "--rule", "not-mask= ;", "--method", "delete"),
                ("a date is written as", "--rule", "older-than=01/02/2024", "--method", "delete"),
                ("it is a file", "--method", "move=" + copies[0]),
                ("it lies in the DUPES folder", "--method", "dupes=" + self.folder),
                ("write it as move=FOLDER", "--method", "move"),
                ("there are delete, recycle", "--method", "shred"),
                ("--method is required",)):
            with self.subTest(told):
                self.assertIn(told, self.call("remove", "--yes", *arguments, self.tree, code=2)[1])
        self.assertTrue(all(map(os.path.exists, copies)))

    def test_nothing_is_removed_that_cannot_be_reported_or_written_down(self):
        copies = self.make_copies()
        remove = [oracle.PROGRAM, "remove", "--yes", "--method", "delete", self.tree]
        for form in ("text", "json", "csv", "null"):
            with self.subTest(form=form), open("/dev/full", "w", encoding="utf-8") as full:
                done = subprocess.run([*remove, "--format", form], stdin=subprocess.DEVNULL, stdout=full,
                                      stderr=subprocess.PIPE)
                self.assertEqual(done.returncode, 2, done.stderr)
                self.assertTrue(all(map(os.path.exists, copies)))
        os.environ["XDG_DATA_HOME"] = os.path.join(self.folder, "no history")
        os.makedirs(os.path.join(os.environ["XDG_DATA_HOME"], "Harrow Fen/Quillmarsh/history.log"))
        out, told = self.call(*remove[1:], "--format", "json", code=2)
        self.assertIn("Use --no-history to remove without it", told)
        self.assertEqual(json.loads(out)["removed"], 0)
        self.assertTrue(all(map(os.path.exists, copies)))
        self.assertEqual(json.loads(self.call(*remove[1:], "--format", "json", "--no-history")[0])["removed"], 2)

    def test_a_stop_ends_behind_a_file_and_is_in_the_history(self):
        for i in range(3000):
            self.make(f"tree/a/{i}")
            self.make(f"tree/b/{i}")
        process = subprocess.Popen([oracle.PROGRAM, "remove", "--yes", "--method", "dupes", self.tree],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL)
        # The report is longer than the pipe, so the program waits in the middle of the removal.
        select.select([process.stdout], [], [], 60)
        process.send_signal(signal.SIGINT)
        output, told = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 130, told)
        self.assertIn(b"the other files were not touched", told)
        moved = sum(line.startswith(b"moved") for line in output.splitlines())
        left = len(os.listdir(self.tree + "/a")) + len(os.listdir(self.tree + "/b"))
        self.assertTrue(0 < moved < 3000)
        self.assertEqual(moved + left, 6000)
        self.assertIn("User cancelled", self.call("history")[0])


if __name__ == "__main__":
    unittest.main()
