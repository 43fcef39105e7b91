# SPDX-License-Identifier: MIT
"""Removals that meet somebody else at work: a program that saves, and a second removal. In CI the
rounds are few; QUILLMARSH_RACES=full makes many."""
import json
import os
import random
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

import oracle

FULL = os.environ.get("QUILLMARSH_RACES") == "full"
OWN_MOUNTS = ["unshare", "--mount"] + ["--user", "--map-root-user"] * (os.geteuid() != 0)
HAS_MOUNTS = subprocess.run([*OWN_MOUNTS, "true"], stderr=subprocess.DEVNULL).returncode == 0
# Another file system takes what is moved, and what has got there is shown in the end.
ON_OTHER_VOLUME = 'mount -t tmpfs none "$0/moved"; "$@"; code=$?; cp -a "$0/moved/." "$0/shown"; exit $code'

BY_NAME = ("--match", "name,size")
BY_BYTES = ("--match", "name,size,contents")
UNSEEN_BY_NAME = (*BY_NAME, "--no-verify")
UNSEEN_BY_BYTES = (*BY_BYTES, "--no-verify")


class Case(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="quillmarsh-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.chmod(self.folder, 0o777)

    def make_copies(self, count):
        """Groups of two, in A and B, years old. Answers their names, in the order of a removal."""
        for place in ("A", "B", "new", "moved", "shown"):
            shutil.rmtree(f"{self.folder}/{place}", ignore_errors=True)
            os.mkdir(f"{self.folder}/{place}")
            os.chmod(f"{self.folder}/{place}", 0o777)
        names = [f"{number:05}.txt" for number in range(count)]
        for name in names:
            self.write(f"A/{name}", f"old {name}", 1.6e9)
            self.write(f"B/{name}", f"old {name}", 1.6e9)
        return names

    def write(self, place, text, moment):
        path = f"{self.folder}/{place}"
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
        os.chmod(path, 0o666)
        os.utime(path, (moment, moment))

    def start(self, side, *options, before=(), program=oracle.PROGRAM, user=None, data="data",
              output=subprocess.DEVNULL):
        command = [*before, program, "remove", "--yes", "--format", "json", "--rule", f"folder={self.folder}/{side}",
                   *options, f"{self.folder}/A", f"{self.folder}/B"]
        return subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.PIPE,
                                user=user, env={**os.environ, "XDG_DATA_HOME": f"{self.folder}/{data}"})

    def texts(self, *places):
        """All that can be read there. Nothing may have another name than a person has given it."""
        found = set()
        for place in places:
            for name in os.listdir(f"{self.folder}/{place}"):
                self.assertFalse(name.startswith(".quillmarsh-"), f"{place}/{name} is left over")
                with open(f"{self.folder}/{place}/{name}", encoding="ascii") as file:
                    found.add(file.read())
        return found


class Saves(Case):
    """Every second file is left to the removal. When it has gone, it is the next one's turn, and
    that is saved at some moment of its turn."""

    ROWS = [
        ("replaced", "delete", BY_NAME),
        ("replaced", "delete", BY_BYTES),
        ("replaced", "delete", UNSEEN_BY_NAME),
        ("replaced", "delete", UNSEEN_BY_BYTES),
        ("replaced as old", "delete", BY_BYTES),
        ("written to", "delete", BY_NAME),
        ("written to", "delete", BY_BYTES),
        ("written to", "delete", UNSEEN_BY_BYTES),
        ("replaced", "move", BY_NAME),
        ("replaced as old", "move", BY_BYTES),
        ("replaced", "move", UNSEEN_BY_BYTES),
        ("replaced", "other volume", BY_NAME),
        ("replaced as old", "other volume", BY_BYTES),
        ("replaced", "other volume", UNSEEN_BY_BYTES),
        ("written to", "other volume", BY_NAME)]

    def race(self, how, method, options):
        """Answers what was saved while the removal ran, and what of it is gone, or is elsewhere."""
        names = self.make_copies(400)
        victims = [f"{self.folder}/B/{name}" for name in names]
        for name in names[1::2]:
            self.write(f"new/{name}", f"new {name}", 1.6e9 if how == "replaced as old" else time.time())
        handles = [os.open(victim, os.O_WRONLY) for victim in victims[1::2] if how == "written to"]
        before = [*OWN_MOUNTS, "sh", "-c", ON_OTHER_VOLUME, self.folder] if method == "other volume" else []
        process = self.start("B", "--method", "delete" if method == "delete" else f"move={self.folder}/moved",
                             *options, before=before)
        raced, shortest_turn, last = set(), 0.001, 0
        for turn in range(0, len(names) - 2, 2):
            if not os.path.lexists(victims[turn]):
                continue  # too late for this one
            while os.path.lexists(victims[turn]) and process.poll() is None:
                pass
            now = time.perf_counter()
            shortest_turn, last = min(shortest_turn, now - last), now
            until = now + random.random() * shortest_turn
            while time.perf_counter() < until:
                pass
            if how == "written to":
                os.pwrite(handles[turn // 2], f"new {names[turn + 1]}".encode(), 0)
            else:
                os.rename(f"{self.folder}/new/{names[turn + 1]}", victims[turn + 1])
            if os.path.lexists(victims[-2]):
                raced.add(f"new {names[turn + 1]}")
            if process.poll() is not None:
                break
        told = process.communicate(timeout=120)[1]
        for handle in handles:
            os.close(handle)
        self.assertIn(process.returncode, (0, 1), told)
        shutil.rmtree(f"{self.folder}/new")
        self.texts("moved", "shown")
        return raced, raced - self.texts("B")

    def test_what_is_saved_meanwhile_is_not_lost(self):
        wanted = 1000 if FULL else 30
        for row in self.ROWS:
            with self.subTest(row):
                if row[1] == "other volume" and not HAS_MOUNTS:
                    self.skipTest("mounts of one's own are refused here")
                raced, lost = set(), set()
                for turn in range(wanted * 5):
                    saved, gone = self.race(*row)
                    raced |= {(turn, text) for text in saved}
                    lost |= {(turn, text) for text in gone}
                    if len(raced) >= wanted:
                        break
                self.assertGreaterEqual(len(raced), wanted, "too few saves fell into the removal")
                self.assertEqual(len(lost), 0, f"of {len(raced)} saved files these are lost: {sorted(lost)[:5]}")


class TwoRemovals(Case):
    """One keeps the copies in A, the other those in B. Both begin at once, and are halted at random."""

    def both(self, ways, *options):
        """Answers how many files each has removed, and of what no copy is left."""
        names = self.make_copies(100)
        processes = [self.start(side, "--method", "delete", *options, data=f"data of {side} {way.get('user')}",
                                output=subprocess.PIPE, **way)
                     for side, way in zip("AB", ways)]
        while all(process.poll() is None for process in processes):
            process = random.choice(processes)
            process.send_signal(signal.SIGSTOP)
            time.sleep(random.random() * 0.002)
            process.send_signal(signal.SIGCONT)
            time.sleep(random.random() * 0.001)
        told = [process.communicate(timeout=120) for process in processes]
        self.assertTrue(all(process.returncode in (0, 1, 2) for process in processes), told)
        removed = [json.loads(output)["removed"] if output else 0 for output, _ in told]
        return removed, {f"old {name}" for name in names} - self.texts("A", "B")

    def test_a_copy_of_each_group_stays(self):
        program = oracle.copy_program(self.folder)
        os.chmod(program, 0o755)
        for row, *ways in (("data folders of their own", {}, {}),
                           ("mounts of their own", {"before": OWN_MOUNTS}, {"before": OWN_MOUNTS}),
                           ("two users", {"user": 65534}, {"user": 1}),
                           ("root and a user", {}, {"user": 65534})):
            with self.subTest(row):
                if "user" in ways[1] and os.geteuid() != 0:
                    self.skipTest("another user can be had by root only")
                if "before" in ways[1] and not HAS_MOUNTS:
                    self.skipTest("mounts of one's own are refused here")
                rounds = [self.both([dict(way, program=program) for way in random.sample(ways, 2)], *options)
                          for options in (BY_BYTES, BY_NAME, UNSEEN_BY_BYTES, UNSEEN_BY_NAME) * (26 if FULL else 2)]
                lost = [len(lost) for _, lost in rounds]
                self.assertEqual(sum(lost), 0, f"groups without a copy, in each round: {lost}")
                self.assertTrue(any(min(removed) for removed, _ in rounds), "the two never met")


if __name__ == "__main__":
    unittest.main()
