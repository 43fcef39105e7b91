# SPDX-License-Identifier: MIT
"""The groups of the console program are those of the oracle."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

import oracle
import trees

ALL = ["--no-ignore", "zero,system,hidden,temporary,windows"]
MATCHES = ["name", "size", "name,size", "size,modified", "name,modified", "size,created",
           "size,created,modified", "name,size,created,modified", "size,contents", "name,contents",
           "name,size,contents", "size,modified,contents"]
SEEDS = int(os.environ.get("QUILLMARSH_ORACLE_SEEDS", "6"))


class Case(unittest.TestCase):
    maxDiff = 4000

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="quillmarsh-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.environ["XDG_DATA_HOME"] = os.path.join(self.folder, "data home")
        self.tree = os.path.join(self.folder, "tree")

    def compare(self, files, match, *arguments, **options):
        expected = oracle.groups_of(files, match.split(","))
        found, answer = oracle.found_groups("--match", match, *arguments, **options)
        self.assertEqual(found - expected, set(), f"groups too many with --match {match} {arguments}")
        self.assertEqual(expected - found, set(), f"groups missing with --match {match} {arguments}")
        self.assertEqual(answer["duplicates"], sum(map(len, expected)))
        return answer


class RandomTrees(Case):
    def test_groups_are_those_of_the_oracle_for_every_match(self):
        for seed in range(SEEDS):
            with self.subTest(seed=seed):
                tree = f"{self.tree}{seed}"
                trees.make_random_tree(tree, seed)
                files = oracle.list_files([tree], hidden=True, with_birth=True)
                for match in MATCHES:
                    answer = self.compare(files, match, *ALL, tree)
                    self.assertEqual(answer["filesSearched"], len(files))

    def test_the_named_folders_only_without_subfolders(self):
        places = trees.make_random_tree(self.tree, 77)
        roots = [os.fsdecode(place) for place in places if b"dot" not in place][:12]
        files = oracle.list_files(roots, subfolders=False, hidden=True)
        self.compare(files, "name,size", *ALL, "--no-subfolders", *roots)

    def test_empty_hidden_and_temporary_files_are_left_out_by_default(self):
        trees.make_random_tree(self.tree, 5)
        files = [file for file in oracle.list_files([self.tree])
                 if file.size > 0 and not file.name.lower().endswith(b".tmp")]
        self.compare(files, "name,size", self.tree)
        self.compare(files, "size,modified", self.tree)

    def test_masks_choose_files_by_name(self):
        trees.make_random_tree(self.tree, 6)
        files = oracle.list_files([self.tree], hidden=True)
        wanted = [file for file in files if oracle.matches(file.name, ["*.doc", "?.txt", "file1*"])]
        self.compare(wanted, "name,size", *ALL, "--include-file", "*.doc", "--include-file", "?.txt",
                     "--include-file", "file1*", self.tree)
        kept = [file for file in files if not oracle.matches(file.name, ["*.bin", "*port*", "co:lon"])]
        self.compare(kept, "name,size", *ALL, "--exclude-file", "*.bin", "--exclude-file", "*port*",
                     "--exclude-file", "co:lon", self.tree)

    def test_folders_are_chosen_by_path(self):
        trees.make_random_tree(self.tree, 8)
        files = oracle.list_files([self.tree], hidden=True)
        excluded = next(path for path in sorted(os.scandir(self.tree), key=lambda entry: entry.name)
                        if path.is_dir(follow_symlinks=False) and path.name.isascii()).path
        kept = [file for file in files if not (file.path + b"/").startswith(os.fsencode(excluded) + b"/")]
        self.assertLess(len(kept), len(files))
        self.compare(kept, "name,size", *ALL, "--exclude-folder", excluded, self.tree)
        # Below the named folder itself, only where the path holds the text; then everything below.
        wanted = [file for file in files
                  if file.folder == os.fsencode(self.tree) or
                  os.path.relpath(file.folder, os.fsencode(self.tree)).lower().startswith(b"folder")]
        self.assertLess(len(wanted), len(files))
        self.compare(wanted, "name,size", *ALL, "--include-folder", "/folder", self.tree)


class OddPlaces(Case):
    def test_one_location_named_twice_and_by_an_alias_is_walked_once(self):
        trees.make_random_tree(self.tree, 9)
        alias = os.path.join(self.folder, "alias")
        os.symlink(self.tree, alias)
        files = oracle.list_files([self.tree], hidden=True)
        for folders in ([self.tree, self.tree], [self.tree, alias], [alias, self.tree + "/."],
                        [os.path.relpath(self.tree), self.tree + "///"]):
            self.compare(files, "name,size", *ALL, *folders)

    def test_paths_longer_than_the_system_takes_at_once_are_walked_whole(self):
        trees.make_deep_tree(self.tree)
        found, _ = oracle.found_groups("--match", "size", *ALL, self.tree)
        (group,) = found
        self.assertEqual({os.path.basename(path) for path in group}, {b"deep one.bin", b"deep two.bin"})
        self.assertGreater(min(map(len, group)), 4096)

    def test_a_folder_without_permission_is_told_and_the_rest_is_found(self):
        if os.getuid() != 0:
            self.skipTest("another user can be had by root only")
        trees.make_random_tree(self.tree, 10)
        os.chmod(self.folder, 0o755)
        closed = os.path.join(self.tree, "closed folder")
        os.mkdir(closed)
        with open(os.path.join(closed, "report.doc"), "wb") as file:
            file.write(b"x" * 10)
        os.chmod(closed, 0o700)
        # Another user may not be able to enter the folder where the program was built.
        program = oracle.copy_program(self.folder)
        as_nobody = {"user": 65534, "program": program}
        files = oracle.list_files([self.tree], hidden=True, user=65534)
        self.compare(files, "name,size", *ALL, self.tree, exit_codes=(1,), **as_nobody)
        done = oracle.run("search", *ALL, self.tree, **as_nobody)
        self.assertIn(b"closed folder", done.stderr)
        self.assertIn(b"denied", done.stderr)
        refused = oracle.run("search", closed, **as_nobody)
        self.assertIn(b"closed folder", refused.stderr)
        self.assertIn(refused.returncode, (1, 2))

    def test_a_file_without_permission_is_told_and_equals_nobody(self):
        if os.getuid() != 0:
            self.skipTest("another user can be had by root only")
        os.makedirs(self.tree)
        os.chmod(self.folder, 0o755)
        for name in ("a", "b closed", "c", "d closed"):
            path = os.path.join(self.tree, name)
            with open(path, "wb") as file:
                file.write(b"same everywhere")
            os.chmod(path, 0o600 if "closed" in name else 0o644)
        as_nobody = {"user": 65534, "program": oracle.copy_program(self.folder)}
        found, _ = oracle.found_groups("--match", "size,contents", self.tree, exit_codes=(1,), **as_nobody)
        self.assertEqual(found, {frozenset(os.fsencode(os.path.join(self.tree, name)) for name in "ac")})
        done = oracle.run("search", "--match", "size,contents", self.tree, **as_nobody)
        self.assertRegex(done.stderr.decode(), r"^.*/b closed.*denied.*\n.*/d closed.*denied.*\n.*history could not.*\n$")
        # What is not read needs no permission.
        self.assertEqual(oracle.run("search", "--match", "size", self.tree, **as_nobody).returncode, 0)

    def test_files_in_the_two_passes_of_a_repeated_hour_are_not_one_time(self):
        os.makedirs(self.tree)
        # 30 October 2022 in Berlin: half past two came twice.
        first, second = 1667089800, 1667089800 + 3600
        for name, moment in (("a", first), ("b", second), ("c", first), ("d", second)):
            path = os.path.join(self.tree, name)
            with open(path, "wb") as file:
                file.write(b"same size")
            os.utime(path, (moment, moment))
        files = oracle.list_files([self.tree])
        for zone in ("Europe/Berlin", "UTC", "America/New_York"):
            self.compare(files, "size,modified", self.tree, env={"TZ": zone})

    def test_a_tree_made_within_one_second_groups_by_whole_seconds(self):
        os.makedirs(self.tree)
        base = 1_700_000_000 * 1_000_000_000
        for number in range(300):
            path = os.path.join(self.tree, f"file{number}")
            with open(path, "wb") as file:
                file.write(b"x" * (number % 3 + 1))
            moment = base + (number % 4) * 1_000_000_000 + (number * 7_919_003) % 1_000_000_000
            os.utime(path, ns=(moment, moment))
        last = os.path.join(self.tree, "just before the next second")
        with open(last, "wb") as file:
            file.write(b"x")
        os.utime(last, ns=(base + 999_999_999, base + 999_999_999))
        files = oracle.list_files([self.tree], with_birth=True)
        for match in ("size,modified", "size,created,modified"):
            self.compare(files, match, self.tree)


class BindMounts(Case):
    """In a mount namespace of its own, so that nobody else sees the mounts."""

    def setUp(self):
        super().setUp()
        if "QUILLMARSH_IN_NAMESPACE" not in os.environ:
            test = ["unshare", "--user", "--map-root-user", "--mount", "true"]
            if subprocess.run(test, stderr=subprocess.DEVNULL).returncode != 0:
                self.skipTest("user namespaces are refused here")

    def in_namespace(self, name):
        command = ["unshare", "--user", "--map-root-user", "--mount", sys.executable, "-m", "unittest",
                   f"groups_test.BindMounts.{name}"]
        done = subprocess.run(command, env={**os.environ, "QUILLMARSH_IN_NAMESPACE": "1"},
                              cwd=os.path.dirname(os.path.abspath(__file__)), capture_output=True)
        self.assertEqual(done.returncode, 0, done.stderr.decode(errors="replace"))

    def test_a_bind_mount_is_not_entered_from_above_and_is_one_place_with_its_source(self):
        if "QUILLMARSH_IN_NAMESPACE" not in os.environ:
            return self.in_namespace(self._testMethodName)
        trees.make_random_tree(os.path.join(self.tree, "source"), 21)
        bound = os.path.join(self.tree, "bound")
        os.mkdir(bound)
        subprocess.run(["mount", "--bind", os.path.join(self.tree, "source"), bound], check=True)
        files = oracle.list_files([self.tree], pruned=[bound], hidden=True)
        self.compare(files, "name,size", *ALL, self.tree)
        # Named by either of its two names, or by both, it is the same place.
        source = os.path.join(self.tree, "source")
        below = oracle.list_files([source], hidden=True)
        for folders in ([bound], [source, bound]):
            self.compare(below, "name,size", *ALL, *folders)

    def test_another_file_system_is_entered_only_when_it_is_named(self):
        if "QUILLMARSH_IN_NAMESPACE" not in os.environ:
            return self.in_namespace(self._testMethodName)
        trees.make_random_tree(self.tree, 22)
        other = os.path.join(self.tree, "other")
        os.mkdir(other)
        subprocess.run(["mount", "-t", "tmpfs", "none", other], check=True)
        trees.make_random_tree(other, 23)
        files = oracle.list_files([self.tree], pruned=[other], hidden=True)
        self.compare(files, "name,size", *ALL, self.tree)
        self.compare(oracle.list_files([other], hidden=True), "name,size", *ALL, other)


if __name__ == "__main__":
    unittest.main()
