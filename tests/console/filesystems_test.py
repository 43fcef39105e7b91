# SPDX-License-Identifier: MIT
"""One file that is seen in two places is no duplicate, whatever file system shows it twice; what
really are two files may go. QUILLMARSH_FILESYSTEMS=full also tries file systems that somebody has to
install first. QUILLMARSH_TABLE=1 prints what became of all."""
import collections
import json
import os
import subprocess
import tempfile
import unittest

import oracle

# The files 1.txt to 3.txt are searched for in two places. Each must be in one of the folders `real` in the
# end, with its bytes. From the places in `removable` they have to go, since they really are second copies.
Row = collections.namedtuple("Row", "name script real removable places options", defaults=("A B", ()))

SCRIPT = """
set -e
fill() { mkdir -p "$1"; for n in 1 2 3; do echo "${2:-text} $n" > "$1/$n.txt"; done; }
overlay() {  # as the root of the program; nowhere else it is searched
  mkdir -p lower upper work B; mount -t overlay -o lowerdir=lower,upperdir=upper,workdir=work none B
  for place in /bin /lib* /usr /proc "$PROGRAM" "$PWD"; do
    mkdir -p "B$place"; mount --rbind "$place" "B$place"
  done
  enter="chroot B"; }
disk() {  # the options of mkfs; a command that mounts
  truncate -s 256M image; mkfs.$1 image > made; device=$(losetup --find --show image); mkdir disk
  $2 "$device" disk || failed=1; losetup --detach "$device"; [ -z "$failed" ]; }
on_disk() { [ "$(stat -f -c %%T .)" != tmpfs ] || { echo "all lies in memory here" >&2; exit 1; }; }
%s
code=0; $enter "$@" > report 2> told || code=$?
$enter grep -rs --exclude-dir='.Trash*' '' $LOOK > left || true
echo $code > code
"""

USUAL = [
    Row("bind mount", "fill A; mkdir B; mount --bind A B", "A", ""),
    Row("bind mounts of files", "fill A; fill B; for n in 1 2 3; do mount --bind A/$n.txt B/$n.txt; done",
        "A", ""),
    Row("hard links", "fill A; cp -al A B", "A B", ""),
    Row("tmpfs", "on_disk; fill A; mkdir B; mount -t tmpfs none B; fill B", "A", "B"),
    Row("tmpfs, allowed", "on_disk; fill A; mkdir B; mount -t tmpfs none B; fill B",
        "A B", "A B", "A B", ("--allow-volatile",)),
    Row("overlay, upper", "fill upper/T; overlay", "upper/T", "", "upper/T /T"),
    Row("overlay, lower", "fill lower/T; overlay", "lower/T", "", "lower/T /T"),
    Row("overlay, lower copied up", "fill lower/T; overlay; fill B/T", "lower/T upper/T", "", "lower/T /T"),
    Row("overlay, lower hidden", "fill lower/T; fill upper/T else; overlay", "lower/T upper/T", "", "lower/T /T"),
]
SPECIAL = [
    Row("bindfs", "fill A; mkdir B; bindfs A B", "A", ""),
    Row("bindfs twice", "fill real; mkdir A B; bindfs real A; bindfs real B", "real", ""),
    Row("mergerfs", "fill A; mkdir B C; mergerfs A:C B", "A", ""),
    Row("mergerfs, in both branches", "fill A; fill C; mkdir B; mergerfs A:C B", "A C", ""),
    Row("unionfs", "fill A; mkdir B C; unionfs -o cow A=RW:C=RO B", "A", ""),
    Row("unionfs, read-only branch", "fill A; mkdir B C; unionfs -o cow C=RW:A=RO B", "A", ""),
    Row("exfat in two spellings", "disk exfat mount.exfat-fuse; fill disk/Data/Sub", "disk/Data/Sub", "",
        "disk/Data/Sub disk/data/sub"),
    Row("folded ext4 in two spellings", "disk 'ext4 -q -O casefold' mount; mkdir disk/Data; chattr +F disk/Data; "
        "fill disk/Data/Sub", "disk/Data/Sub", "", "disk/Data/Sub disk/Data/sub"),
    Row("btrfs subvolumes", "disk btrfs mount; "
        "for n in A B; do btrfs subvolume create disk/$n; fill disk/$n; done",
        "disk/A disk/B", "disk/A disk/B", "disk/A disk/B"),
    Row("btrfs snapshots", "disk btrfs mount; btrfs subvolume create disk/A; fill disk/A; "
        "for n in B C; do btrfs subvolume snapshot disk/A disk/$n; done",
        "disk/B disk/C", "disk/B disk/C", "disk/B disk/C"),
]
METHODS = [("delete", "name,size"), ("delete", "name,size,contents"), ("move=moved", "name,size"),
           ("move=moved", "name,size,contents"), ("recycle", "name,size")]
# All that was mounted or started goes with it.
NAMESPACE = ["unshare", *["--user", "--map-root-user"] * (os.geteuid() != 0),
             "--mount", "--mount-proc", "--pid", "--fork", "--kill-child"]


class Case(unittest.TestCase):
    maxDiff = None

    def remove(self, row, side, method, match):
        """Removes the files in `side`. Answers the exit code, how many have gone, the reasons of the
        others, and the places with their files and contents."""
        with tempfile.TemporaryDirectory(prefix="quillmarsh-") as folder:
            places = row.places.split()
            command = [oracle.PROGRAM, "remove", "--yes", "--format", "json", "--quiet", "--match", match,
                       "--rule", "folder=" + os.path.join(folder, side),
                       "--method", method.replace("=", f"={folder}/"), *row.options,
                       *(os.path.join(folder, place) for place in places)]
            look = dict.fromkeys(os.path.join(folder, place) for place in places + row.real.split())
            done = subprocess.run([*NAMESPACE, "sh", "-c", SCRIPT % row.script, "sh", *command], cwd=folder,
                                  stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120,
                                  env={**os.environ, "XDG_DATA_HOME": folder + "/data", "LOOK": " ".join(look),
                                       "PROGRAM": os.path.dirname(oracle.PROGRAM)})
            if not os.path.exists(folder + "/code"):
                self.skipTest(done.stderr.strip())
            code, report, told, left = (open_text(f"{folder}/{name}") for name in ("code", "report", "told", "left"))
        files = json.loads(report)["files"] if report else []
        reasons = {file["reason"] for file in files if file["outcome"] == "left"} or {told} - {""}
        found = collections.defaultdict(set)
        for line in left.replace(folder + "/", "").splitlines():
            path, text = line.split(":", 1)
            found[os.path.dirname(path)].add((os.path.basename(path), text))
        return int(code), sum(file["outcome"] != "left" for file in files), sorted(reasons), found

    def check(self, rows):
        for row in rows:
            with self.subTest(row.name):
                results = [(side, *method, *self.remove(row, side, *method))
                           for side in row.places.split() for method in METHODS]
                faults = [self.judge(row, *result) for result in results]
                self.assertEqual([fault for fault in faults if fault], [])

    def judge(self, row, side, method, match, code, gone, reasons, found):
        kept = set().union(*(found[place] for place in row.real.split()))
        verdict = ""
        names = {name for name, _ in kept}
        if names != {"1.txt", "2.txt", "3.txt"} or any(text[5:] != name[0] for name, text in kept):
            verdict = f"what is left underneath is {sorted(kept)}"
        elif code not in (0, 1):
            verdict = f"refused: {reasons}"
        elif side in row.removable.split() and method != "recycle" and gone < 3:
            verdict = f"not removed: {reasons}"
        if "QUILLMARSH_TABLE" in os.environ:
            seen = ", ".join(f"{place}: {len(files)}" for place, files in sorted(found.items()))
            told = " ".join(" ".join(reasons).split())
            print(f"{row.name} | {side} {method} {match} | {gone} gone {told} | {seen} | {verdict or 'good'}")
        return verdict and f"{side} {method} {match}: {verdict}"


def open_text(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


class UsualPlaces(Case):
    def test_no_only_copy_goes_and_second_copies_go(self):
        self.check(USUAL)


@unittest.skipUnless(os.environ.get("QUILLMARSH_FILESYSTEMS") == "full", "only with QUILLMARSH_FILESYSTEMS=full")
class SpecialFileSystems(Case):
    def test_no_only_copy_goes_and_second_copies_go(self):
        self.check(SPECIAL)


if __name__ == "__main__":
    unittest.main()
