#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs a test program as a user who may not do everything: root becomes nobody, anybody else stays.

The program is copied first, since nobody may not be able to enter the folder where it was built.
"""
import os
import shutil
import subprocess
import sys
import tempfile

NOBODY = 65534


def main():
    if os.getuid() != 0:
        return subprocess.run(sys.argv[1:], check=False).returncode
    with tempfile.TemporaryDirectory(prefix="quillmarsh-program-") as folder:
        os.chmod(folder, 0o755)
        program = shutil.copy(sys.argv[1], folder)
        environment = {**os.environ, "HOME": "/nonexistent", "XDG_DATA_HOME": "", "TMPDIR": "/tmp"}
        return subprocess.run([program, *sys.argv[2:]], user=NOBODY, group=NOBODY, extra_groups=[],
                              cwd="/", env=environment, check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
