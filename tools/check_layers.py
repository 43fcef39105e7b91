#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds every #include of src/ against the order of the rooms.

A room may include itself and the rooms before it. The platform's implementations are known only to
the entries, and system headers only to them. Prints each wrong arrow and exits 1 if there is one.
"""
import pathlib
import re
import sys

ORDER = [
    "base", "platform", "frame", "fsobjects", "settings", "filetypes", "search/results",
    "removal/history", "selection", "search", "removal", "settings/optionsfile",
]
ENTRIES = ["console", "ui", "frame/startup"]
IMPLEMENTATIONS = ["platform/posix", "platform/win32", "platform/simulated"]
# Rooms beside the order: what each may include.
BESIDE = {"pbcrc32": set()}
FACES_KNOWN = {"fsobjects": {"pbcrc32"}}  # the host of the checksum library

SYSTEM_HEADER = re.compile(
    r"^(windows|winbase|winnt|shlobj|shlwapi|shellapi|objbase|bcrypt|io|unistd|fcntl|dirent|poll|dlfcn|pwd|langinfo|glib|gio|"
    r"linux|sys|netinet)(/.*)?(\.h)?$|^(gio|glib|glib-object)[./]")


def room_of(path):
    """The longest room name that the path lies below."""
    rooms = ORDER + ENTRIES + IMPLEMENTATIONS + list(BESIDE)
    matches = [room for room in rooms if path.startswith(room + "/")]
    return max(matches, key=len, default=None)


def allowed_rooms(room):
    if room in BESIDE:
        return BESIDE[room] | {room}
    if room in IMPLEMENTATIONS:
        return {"base", "platform", room}
    if room == "frame/startup":
        return set(ORDER) | set(IMPLEMENTATIONS) | {"ui", room}
    if room == "ui":
        return set(ORDER) | {room}
    if room == "console":
        return set(ORDER) | set(IMPLEMENTATIONS) | {room}
    return set(ORDER[: ORDER.index(room) + 1]) | FACES_KNOWN.get(room, set())


def wrong_arrows(source_folder):
    for path in sorted(source_folder.rglob("*")):
        if path.suffix not in (".h", ".cpp", ".inc"):
            continue
        name = path.relative_to(source_folder).as_posix()
        room = room_of(name)
        if room is None:
            yield f"{name}: lies in no room"
            continue
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            found = re.match(r'\s*#\s*include\s+(["<])([^">]+)[">]', line)
            if not found:
                continue
            target = found.group(2)
            if found.group(1) == '"':
                target_room = room_of(target)
                if target_room is None:
                    yield f"{name}:{number}: {target} lies in no room"
                elif target_room not in allowed_rooms(room):
                    yield f"{name}:{number}: {room} may not know {target_room} ({target})"
            elif target.startswith("Q") and room not in ("ui", "frame/startup"):
                yield f"{name}:{number}: {room} may not know the toolkit ({target})"
            elif SYSTEM_HEADER.match(target) and room not in IMPLEMENTATIONS:
                yield f"{name}:{number}: system header in {room} ({target})"


def main():
    source_folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "src")
    arrows = list(wrong_arrows(source_folder))
    for arrow in arrows:
        print(arrow)
    print(f"{len(arrows)} wrong arrows")
    return 1 if arrows else 0


if __name__ == "__main__":
    sys.exit(main())
