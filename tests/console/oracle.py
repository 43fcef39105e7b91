# SPDX-License-Identifier: MIT
"""What a search must find, worked out in the plainest way from the output of find and stat, and a
runner for the console program. Shares nothing with the program: no code, no table, no sort."""
import base64
import collections
import fnmatch
import glob
import hashlib
import json
import os
import shutil
import subprocess

PROGRAM = os.environ.get("QUILLMARSH_CLI", "quillmarsh-cli")

File = collections.namedtuple("File", "path folder name size modified created")


def fold(name):
    """Upper case by simple mappings of single UTF-16 units; what has no such mapping stays."""
    def fold_one(letter):
        upper = letter.upper()
        if len(upper) == 1 and ord(letter) < 0x10000 and ord(upper) < 0x10000:
            return upper
        return letter
    return "".join(fold_one(letter) for letter in os.fsdecode(name))


def birth_seconds(paths):
    """Birth times in whole seconds, by path; the write time where the disk keeps none."""
    out = subprocess.run(["xargs", "-0", "-r", "stat", "--printf", r"%W %Y\0"],
                         input=b"\0".join(paths), stdout=subprocess.PIPE, check=True).stdout
    rows = [row.split() for row in out.split(b"\0")[:-1]]
    return {path: int(birth) if birth not in (b"-", b"0") else int(write)
            for path, (birth, write) in zip(paths, rows, strict=True)}


def list_files(roots, pruned=(), subfolders=True, hidden=False, with_birth=False, user=None):
    """Ordinary files below the roots. Links are not followed; `pruned` folders are not entered."""
    command = ["find", "-P", *roots]
    if not subfolders:
        command += ["-maxdepth", "1"]
    if not hidden:
        # What a root itself is called does not matter.
        command += ["-mindepth", "1"]
    unwanted = []
    for path in pruned:
        unwanted += ["-path", path, "-o"]
    if not hidden:
        unwanted += ["-name", ".*", "-type", "d", "-o"]
    if unwanted:
        command += ["("] + unwanted[:-1] + [")", "-prune", "-o"]
    command += ["-type", "f", "-printf", r"%s\0%T@\0%p\0"]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, user=user)
    fields = done.stdout.split(b"\0")[:-1]
    rows = [fields[i:i + 3] for i in range(0, len(fields), 3)]
    births = birth_seconds([row[2] for row in rows]) if with_birth else {}
    files = []
    for size, modified, path in rows:
        folder, name = os.path.split(path)
        if not hidden and name.startswith(b"."):
            continue
        # The whole part is cut downwards, also before 1970: half a second before is "-1.5".
        seconds = int(modified.partition(b".")[0])
        files.append(File(path, folder, name, int(size), seconds, births.get(path)))
    return files


def matches(name, masks):
    return any(fnmatch.fnmatchcase(fold(name), fold(os.fsencode(mask))) for mask in masks)


def groups_of(files, match):
    """The set of groups, each a frozenset of paths."""
    by_key = collections.defaultdict(list)
    for file in files:
        key = []
        if "name" in match:
            key.append(fold(file.name))
        if "size" in match:
            key.append(file.size)
        if "created" in match:
            key.append(file.created)
        if "modified" in match:
            key.append(file.modified)
        if "contents" in match:
            with open(file.path, "rb") as opened:
                key.append(hashlib.sha256(opened.read()).digest())
        by_key[tuple(key)].append(file.path)
    return {frozenset(paths) for paths in by_key.values() if len(paths) > 1}


def copy_program(folder):
    """The program with its module, for a user who may not enter the folder where they were built."""
    for module in glob.glob(os.path.join(os.path.dirname(PROGRAM), "pbcrc32.*")):
        shutil.copy(module, folder)
    return shutil.copy(PROGRAM, folder)


def run(*arguments, user=None, env=None, timeout=600, program=PROGRAM, cwd=None):
    return subprocess.run([program, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          user=user, timeout=timeout, env={**os.environ, **(env or {})}, cwd=cwd)


def found_groups(*arguments, exit_codes=(0,), **options):
    """Groups that the program lists as JSON, and the whole answer."""
    done = run("search", "--format", "json", *arguments, **options)
    if done.returncode not in exit_codes:
        raise AssertionError(f"exit code {done.returncode}: {done.stderr.decode(errors='replace')}")
    answer = json.loads(done.stdout)
    groups = set()
    for group in answer["groupList"]:
        paths = frozenset(base64.b64decode(file["pathBytes"]) if "pathBytes" in file
                          else file["path"].encode() for file in group["files"])
        assert len(paths) == len(group["files"]), "a path stands twice in a group"
        groups.add(paths)
    assert len(groups) == len(answer["groupList"]) == answer["groups"]
    return groups, answer
