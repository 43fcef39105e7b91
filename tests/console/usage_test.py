# SPDX-License-Identifier: MIT
"""How the console program answers a person: formats, exit codes, refusals, a stop."""
import csv
import io
import json
import os
import re
import select
import shutil
import signal
import subprocess
import tempfile
import threading
import time
import unittest

import oracle


class Case(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="quillmarsh-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.environ["XDG_DATA_HOME"] = os.path.join(self.folder, "data home")

    def make(self, name, contents=b"same", moment=1_700_000_000):
        path = os.path.join(os.fsencode(self.folder), os.fsencode(name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(contents)
        os.utime(path, (moment, moment))
        return path


class Formats(Case):
    def setUp(self):
        super().setUp()
        self.paths = [self.make("tree/one/li\nne \"quoted\", \xff.txt".encode("latin-1")),
                      self.make("tree/two/li\nne \"quoted\", \xff.txt".encode("latin-1"))]
        self.tree = os.path.join(self.folder, "tree")

    def test_null_gives_real_bytes_with_an_extra_null_behind_each_group(self):
        done = oracle.run("search", "--format", "null", self.tree)
        self.assertEqual(set(done.stdout.split(b"\0")), {*self.paths, b""})
        self.assertTrue(done.stdout.endswith(b"\0\0"))

    def test_csv_quotes_what_needs_it_and_gives_real_bytes(self):
        done = oracle.run("search", "--format", "csv", self.tree)
        rows = list(csv.DictReader(io.StringIO(done.stdout.decode("latin-1"), newline="")))
        self.assertEqual({row["path"].encode("latin-1") for row in rows}, set(self.paths))
        self.assertEqual({(row["group"], row["size"]) for row in rows}, {("1", "4")})
        self.assertEqual(sorted(row["marked"] for row in rows), ["false", "true"])  # one is kept

    def test_json_carries_the_bytes_of_names_that_are_no_text(self):
        found, answer = oracle.found_groups(self.tree, env={"TZ": "UTC"})
        self.assertEqual(found, {frozenset(self.paths)})
        file = answer["groupList"][0]["files"][0]
        self.assertEqual(file["modified"], "2023-11-14T22:13:20")
        self.assertEqual((file["size"], file["attributes"]), (4, 32))
        self.assertEqual(sorted(other["marked"] for other in answer["groupList"][0]["files"]), [False, True])
        self.assertEqual((answer["filesSearched"], answer["duplicates"], answer["groups"],
                          answer["totalSize"], answer["groupList"][0]["totalSize"]), (2, 2, 1, 8, 8))

    def test_text_never_lets_a_name_break_a_line(self):
        done = oracle.run("search", self.tree)
        self.assertEqual(done.stdout.decode().count("\u240a"), 2)
        self.assertEqual(len([line for line in done.stdout.split(b"\n") if b"quoted" in line]), 2)
        self.assertIn("Files searched: 2; duplicates: 2 in 1 group,", done.stdout.decode())
        quiet = oracle.run("search", "--quiet", self.tree)
        self.assertNotIn(b"searched", quiet.stdout)

    def test_no_duplicates_is_said_and_is_no_failure(self):
        empty = os.path.join(self.folder, "empty")
        os.mkdir(empty)
        done = oracle.run("search", empty)
        self.assertEqual((done.returncode, done.stdout), (0, b"No duplicates found. Files searched: 0\n"))
        self.assertEqual(json.loads(oracle.run("search", "--format", "json", empty).stdout)["groupList"], [])

    def test_output_that_cannot_be_written_is_told(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([oracle.PROGRAM, "search", self.tree], stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"No space left", done.stderr)

    def test_every_search_leaves_its_record_in_the_history(self):
        for _ in range(2):
            oracle.run("search", self.tree)
        path = os.path.join(self.folder, "data home/Harrow Fen/Quillmarsh/history.log")
        with open(path, "rb") as file:
            text = file.read().decode("utf-16-le")
        self.assertEqual((text[0], text.count("\ufeff")), ("\ufeff", 1))
        for entry in ("<Begin Duplicate Search>\r\n", f"\tLocations To Search: {self.tree}\r\n",
                      "<End Duplicate Search>\r\n"):
            self.assertEqual(text.count(entry), 2, text)

    def test_progress_goes_to_standard_error_when_asked_for(self):
        self.assertEqual(oracle.run("search", self.tree).stderr, b"")
        self.assertIn(b"Files:", oracle.run("search", "--progress", self.tree).stderr)


class Refusals(Case):
    def refused(self, *arguments):
        done = oracle.run("search", *arguments)
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertEqual(done.stdout, b"")
        return done.stderr.decode()

    def test_a_folder_that_cannot_be_searched_is_named_with_the_reason(self):
        self.make("tree/file.txt")
        file = os.path.join(self.folder, "tree/file.txt")
        missing = os.path.join(self.folder, "no such folder")
        self.assertRegex(self.refused(missing), "no such folder.*cannot find")
        self.assertRegex(self.refused(file), "file.txt.*not a folder")
        both = self.refused(os.path.join(self.folder, "tree"), missing, file)
        self.assertIn("no such folder", both)
        self.assertIn("file.txt", both)

    def test_folders_below_one_another_are_refused_unless_subfolders_are_off(self):
        self.make("tree/below/file.txt")
        above, below = os.path.join(self.folder, "tree"), os.path.join(self.folder, "tree/below")
        message = self.refused(above, below)
        self.assertIn(below, message)
        self.assertIn("--no-subfolders", message)
        self.assertEqual(oracle.run("search", "--no-subfolders", above, below).returncode, 0)

    def test_criteria_without_name_and_size_are_refused(self):
        self.assertIn("Name or Size", self.refused("--match", "modified", self.folder))

    def test_bad_usage_says_what_is_wrong(self):
        self.assertIn("--match", self.refused("--match", "colour", self.folder))
        self.assertIn("FOLDER", self.refused())
        self.assertIn("--frmat", self.refused("--frmat", "json", self.folder))
        self.assertEqual(oracle.run().returncode, 2)

    def test_a_folder_is_taken_as_it_is_called(self):
        # Brackets, blanks at the end, a dash in front, a tilde, a line break.
        names = ["[a]", "[b,c]", "blank ", "-dash", "~", "new\nline"]
        for name in ["a", "b", "c", "blank", *names]:
            self.make(f"tree/{name}/1/only here")
            self.make(f"tree/{name}/2/only here")
        for name in names:
            done = subprocess.run([oracle.PROGRAM, "search", "--format", "null", "--", name],
                                  capture_output=True, cwd=os.path.join(self.folder, "tree"))
            folders = {os.path.dirname(os.path.dirname(path)) for path in done.stdout.split(b"\0") if path}
            self.assertEqual(folders, {os.fsencode(os.path.join(self.folder, "tree", name))}, done.stderr)
        self.assertIn("no\u240asuch\u241b", self.refused(os.path.join(self.folder, "no\nsuch\x1b")))

    def test_help_names_every_option(self):
        done = oracle.run("search", "--help")
        self.assertEqual(done.returncode, 0)
        for option in ("--match", "--no-subfolders", "--include-file", "--exclude-file",
                       "--include-folder", "--exclude-folder", "--no-ignore", "--format", "--quiet",
                       "--progress"):
            self.assertIn(option, done.stdout.decode())

    def test_a_filter_that_cannot_be_meant_is_refused(self):
        self.make("tree/a/same.txt")
        tree = os.path.join(self.folder, "tree")
        self.assertIn("no such", self.refused("--exclude-folder", os.path.join(tree, "no such"), tree))
        for whole in (tree, self.folder):
            self.assertIn("lies below", self.refused("--exclude-folder", whole, tree))
        for option in ("--include-file", "--exclude-file", "--include-folder"):
            self.assertIn("empty", self.refused(option, " ", tree))

    def test_a_data_folder_that_is_none_does_not_stop_a_search(self):
        self.make("tree/a/same.txt")
        self.make("tree/b/same.txt")
        home = os.path.join(self.folder, "home")
        os.makedirs(os.path.join(home, "Harrow Fen"))
        place = os.path.join(home, "Harrow Fen", "Quillmarsh")
        for make in (lambda: os.symlink("nowhere", place), lambda: os.symlink("Quillmarsh", place),
                     lambda: open(place, "w", encoding="ascii").close()):
            make()
            done = oracle.run("search", os.path.join(self.folder, "tree"), env={"XDG_DATA_HOME": home})
            self.assertEqual(done.returncode, 0)
            self.assertRegex(done.stderr, rb"^quillmarsh-cli: the history could not be written: .*\n$")
            self.assertIn(b"same.txt", done.stdout)
            os.unlink(place)

    def test_without_its_module_the_program_does_not_start(self):
        self.make("tree/same.txt")
        alone = shutil.copy(oracle.PROGRAM, os.path.join(self.folder))
        done = oracle.run("search", os.path.join(self.folder, "tree"), program=alone)
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertIn(b"Error loading DLL - pbcrc32.so", done.stderr)

    def test_without_a_home_a_search_goes_on(self):
        self.make("tree/a/same.txt")
        self.make("tree/b/same.txt")
        # As root another user, whose home is no place: the account's own is not to be written to.
        program, user = oracle.PROGRAM, None
        if os.getuid() == 0:
            os.chmod(self.folder, 0o755)
            program, user = oracle.copy_program(self.folder), 65534
        done = subprocess.run([program, "search", os.path.join(self.folder, "tree")], user=user,
                              env={"PATH": os.environ["PATH"]}, capture_output=True, cwd="/")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn(b"same.txt", done.stdout)


class Analyze(Case):
    """The report on one file or folder, held against find and stat."""

    def analyze(self, *arguments, code=0, **options):
        done = oracle.run("analyze", *arguments, **options)
        self.assertEqual(done.returncode, code, done.stderr)
        return dict(line.split("= ", 1) for line in done.stdout.decode().split("\n") if "= " in line), done

    def test_a_tree_is_counted_as_find_counts_it(self):
        for number in range(130):
            self.make(f"tree/folder{number % 7}/below/file{number}", b"x" * number)
        tree = os.path.join(self.folder, "tree")
        os.symlink("folder1", os.path.join(tree, "link"))
        os.symlink("/etc", os.path.join(tree, "folder1/far"))
        os.mkfifo(os.path.join(tree, "fifo"))
        facts, _ = self.analyze("--recurse", tree)
        folders = subprocess.run(["find", tree, "-mindepth", "1", "-type", "d"], capture_output=True, check=True)
        self.assertEqual((facts["Number Files "], facts["Number SubFolders "], facts["Number Junction Points "]),
                         ("130", str(len(folders.stdout.splitlines())), "2"))
        self.assertEqual(facts["Size "], f"{sum(range(130)):,} bytes")
        self.assertEqual(facts["Path "], tree + "/")
        facts, done = self.analyze(tree)
        self.assertEqual(facts["Number SubFolders (Root Level) "], "7")
        self.assertNotIn(b"\r", done.stdout)
        self.assertNotIn("Drive ", facts)

    def test_a_file_is_told_and_what_its_path_leads_to(self):
        path = self.make("tree/a file ", b"12345")
        os.chmod(path, 0o444)
        os.symlink("a file ", os.path.join(self.folder, "tree/link"))
        os.symlink("tree", os.path.join(self.folder, "linked"))
        facts, _ = self.analyze(path)
        self.assertEqual((facts["Name"], facts["Size "], facts["IsReadOnly "]), ("a file ", "5", "True"))
        self.assertEqual(self.analyze(os.path.join(self.folder, "tree/link"))[0]["Name"], "a file ")
        facts, _ = self.analyze("linked", cwd=self.folder)
        self.assertEqual((facts["Name"], facts["IsDirectoryJunction "]), ("linked", "True"))
        self.assertEqual(self.analyze("linked/.", cwd=self.folder)[0]["Name"], "tree")
        os.mkfifo(os.path.join(self.folder, "fifo"))
        self.assertEqual(self.analyze(os.path.join(self.folder, "fifo"))[0]["Size "], "Unknown")

    def test_what_is_not_there_is_named(self):
        _, done = self.analyze(os.path.join(self.folder, "no\nsuch"), code=2)
        self.assertIn("no\u240asuch\": The system cannot find", done.stderr.decode())
        self.assertIn("drive letter", self.analyze("/proc/self", code=2)[1].stderr.decode())
        self.assertEqual(oracle.run("analyze").returncode, 2)

    def test_what_the_user_may_not_do_is_told(self):
        self.make("tree/open/file")
        self.make("tree/shut/file")
        self.make("tree/secret")
        tree = os.path.join(self.folder, "tree")
        os.chmod(os.path.join(tree, "secret"), 0o600)
        os.chmod(os.path.join(tree, "shut"), 0o700)
        os.chmod(self.folder, 0o755)
        os.makedirs(os.path.join(self.folder, "data home"))
        os.chmod(os.path.join(self.folder, "data home"), 0o777)
        program, user = oracle.PROGRAM, None
        if os.getuid() == 0:
            program, user = oracle.copy_program(self.folder), 65534
        else:
            os.chmod(os.path.join(tree, "secret"), 0)
            os.chmod(os.path.join(tree, "shut"), 0)
            self.addCleanup(os.chmod, os.path.join(tree, "shut"), 0o700)

        def run(*arguments):
            return subprocess.run([program, "analyze", *arguments], user=user, capture_output=True)
        self.assertIn(b"User Can Read From = False\nUser Can Write To = False\n",
                      run(os.path.join(tree, "secret")).stdout)
        counted = run("--recurse", tree)
        self.assertEqual(counted.returncode, 1)
        self.assertIn(os.path.join(tree, "shut").encode(), counted.stderr)
        self.assertIn(b"User Can Read From = False", run(os.path.join(tree, "shut")).stdout)
        self.assertIn(b"User Can Read From = True", run(os.path.join(tree, "open")).stdout)

    def test_a_stopped_count_is_not_shown(self):
        for folder in range(400):
            for number in range(20):
                self.make(f"tree/folder{folder}/below/file{number}", b"")
        # The program's own data lie beside the tree.
        tree = os.path.join(self.folder, "tree")
        process = subprocess.Popen([oracle.PROGRAM, "analyze", "--recurse", tree],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        time.sleep(0.02)
        process.send_signal(signal.SIGINT)
        output = process.communicate(timeout=30)[0]
        if process.returncode == 0:
            self.assertIn(b"Number Files = 8000\n", output)
        else:
            self.assertIn(process.returncode, (130, -signal.SIGINT))
            self.assertEqual(output, b"")


class HandMade(Case):
    def test_a_dupes_folder_named_by_hand_as_the_system_names_it_is_left_out(self):
        kept = [self.make("tree/a/same.txt"), self.make("tree/b/same.txt")]
        self.make("tree/Dupes/same.txt")
        self.make("tree/Older/below/same.txt"), self.make("tree/Older/.quillmarsh-dupes")
        home = os.path.join(self.folder, "data home", "Harrow Fen", "Quillmarsh")
        os.makedirs(home)
        with open(os.path.join(home, "quillmarsh.ini"), "w", encoding="ascii") as file:
            file.write(f"[Options]\nDUPESFolderPath={self.folder}/tree/Dupes\n")
        found, _ = oracle.found_groups(os.path.join(self.folder, "tree"))
        self.assertEqual(found, {frozenset(kept)})
        self.assertIn(f'"{self.folder}/tree/Older/" is a DUPES folder and was not searched; to search it, name it',
                      os.fsdecode(oracle.run("search", os.path.join(self.folder, "tree")).stderr))


class Stop(Case):
    """A stop at any moment ends the program quickly, with its exit code and without a list."""

    def test_a_hang_up_that_is_to_be_ignored_is_ignored(self):
        for number in range(3000):
            self.make(f"tree/a file with a name of some length {number}")
        process = subprocess.Popen([oracle.PROGRAM, "search", "--match", "size", self.folder],
                                   stdout=subprocess.PIPE,
                                   preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        # The list is longer than the pipe, so the program now waits within it.
        select.select([process.stdout], [], [], 60)
        process.send_signal(signal.SIGHUP)
        output = process.communicate(timeout=60)[0]
        self.assertEqual((process.returncode, output.count(b"a file with a name")), (0, 3000))

    def stop_after(self, seconds, *arguments):
        """Runs, interrupts after `seconds`; answers the delay to the end, or None if it was over."""
        process = subprocess.Popen([oracle.PROGRAM, "search", "--format", "json", "--no-ignore", "zero",
                                    *arguments],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        output = []
        reader = threading.Thread(target=lambda: output.append(process.stdout.read()))
        reader.start()
        try:
            process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            pass
        is_over = process.poll() is not None
        begin = time.monotonic()
        if not is_over:
            process.send_signal(signal.SIGINT)
        process.wait(timeout=30)
        delay = time.monotonic() - begin
        reader.join()
        process.stdout.close()
        process.stderr.close()
        if is_over or process.returncode == 0:
            # It was done before it saw the signal: then the list is whole.
            json.loads(output[0])
            return None
        # Before the program has taken the signal over, the system ends it.
        self.assertIn(process.returncode, (130, -signal.SIGINT))
        with self.assertRaises(ValueError):
            json.loads(output[0])
        return delay

    def delays(self, tree):
        for _ in range(2):  # the first warms up
            begin = time.monotonic()
            done = oracle.run("search", "--no-ignore", "zero", "--match", "size", tree)
            self.assertEqual(done.returncode, 0)
        whole = time.monotonic() - begin
        steps = 12
        delays = [self.stop_after(whole * step / steps, "--match", "size", tree) for step in range(steps)]
        stopped = [delay for delay in delays if delay is not None]
        self.assertGreater(len(stopped), steps // 3, "most runs were over before the stop")
        return stopped

    # The promise is 0.2 seconds. A machine that is busy otherwise may be late by itself, so one late
    # stop of a dozen is let pass, and sanitizers are given three times as long.
    def assert_quick(self, delays):
        limit = 0.2 * float(os.environ.get("QUILLMARSH_SLOWNESS", "1"))
        late = [delay for delay in delays if delay > limit]
        self.assertLessEqual(len(late), 1, f"stops took {delays}")

    def test_a_stop_while_nobody_reads_the_list_is_quick(self):
        for number in range(4000):
            self.make(f"tree/a rather long name of a file that fills a pipe soon {number}", b"x")
        process = subprocess.Popen([oracle.PROGRAM, "search", "--match", "size", self.folder],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        select.select([process.stdout], [], [], 30)  # the list has begun; a pipe takes a part of it
        with self.assertRaises(subprocess.TimeoutExpired):
            process.wait(timeout=0.3)
        begin = time.monotonic()
        process.send_signal(signal.SIGINT)
        process.wait(timeout=30)
        self.assert_quick([time.monotonic() - begin] * 2)
        self.assertEqual(process.returncode, 130)
        process.communicate()

    def test_a_stop_within_many_folders_is_quick(self):
        for folder in range(300):
            for number in range(100):
                self.make(f"tree/folder{folder}/file{number}", b"")
        self.assert_quick(self.delays(os.path.join(self.folder, "tree")))

    def test_a_stop_within_one_large_folder_is_quick(self):
        os.makedirs(os.path.join(self.folder, "tree"))
        handle = os.open(os.path.join(self.folder, "tree"), os.O_RDONLY)
        for number in range(60000):
            os.close(os.open(f"file{number}", os.O_CREAT | os.O_WRONLY, dir_fd=handle))
        os.close(handle)
        self.assert_quick(self.delays(os.path.join(self.folder, "tree")))

    def test_a_stop_within_large_contents_is_quick(self):
        for name in ("tree/a", "tree/b"):
            os.truncate(self.make(name), 64 << 30)  # without blocks, but read like any other
        arguments = ["--match", "size,contents", os.path.join(self.folder, "tree")]
        delays = [self.stop_after(0.1 + step / 10, *arguments) for step in range(6)]
        self.assertNotIn(None, delays)
        # The last one when half a second of reading has brought a text of its progress.
        process = subprocess.Popen([oracle.PROGRAM, "search", "--progress", *arguments],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        shares = (re.search(rb"of 64\.0 GB \(\d+ %\), .*/s", line) for line in process.stderr)
        self.assertTrue(any(shares), "no progress was shown")
        begin = time.monotonic()
        process.send_signal(signal.SIGINT)
        process.wait(timeout=30)
        self.assert_quick([*delays, time.monotonic() - begin])
        self.assertEqual((process.returncode, process.communicate()[0]), (130, b""))


if __name__ == "__main__":
    unittest.main()
