#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks how the source tree hangs together; prints each fault and fails if there is one.

  layering.py ROOT

- A file in src/ROOM includes the project's headers with their room, and only from rooms that ROOM may
  use. app/Application.h stays within app.
- Every source, script and build file names its licence in one of its first lines.
"""
import pathlib
import re
import subprocess
import sys

# Which rooms a room may include from. Arrows run one way; docs/architecture.md draws them.
MAY_USE = {
    "base": set(),
    "storage": {"base"},
    "profiles": {"storage", "base"},
    "network": {"base"},
    "system": {"network", "storage", "base"},
    "account": {"profiles", "storage", "base"},
    "stats": {"account", "system", "network", "profiles", "storage", "base"},
    "clientapi": {"stats", "account", "profiles", "storage", "base"},
}
MAY_USE["ui"] = set(MAY_USE)
MAY_USE["app"] = set(MAY_USE)

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(["<])([^">]+)[">]', re.M)
LICENCE = "SPDX-License-Identifier: GPL-3.0-or-later"
# A licence may follow the line that names the interpreter.
LICENCE_WITHIN_LINES = 3
NAMED_BY_SUFFIX = {".cpp", ".h", ".py", ".sh", ".cmake", ".sql", ".qss", ".service", ".rules",
                   ".desktop"}
NAMED_BY_NAME = {"CMakeLists.txt", ".clang-format", ".clang-tidy"}


def tracked_files(root):
    """Paths relative to `root`; of a tree without a repository, all of them but the build's."""
    listed = subprocess.run(["git", "-C", root, "ls-files", "-z", "--cached", "--others",
                             "--exclude-standard"], capture_output=True, check=False)
    if listed.returncode == 0:
        paths = (root / name.decode() for name in listed.stdout.split(b"\0") if name)
    else:
        paths = (path for path in root.rglob("*")
                 if path.relative_to(root).parts[0] not in {"build", ".git"})
    return sorted(path.relative_to(root) for path in paths if path.is_file())


def include_faults(path, text):
    """What is wrong with the includes of the file src/ROOM/..."""
    if len(path.parts) < 3:
        return [f"{path}: lies in no room"]
    room = path.parts[1]
    if room not in MAY_USE:
        return [f"{path}: the room {room} is unknown"]
    faults = []
    for quote, target in INCLUDE.findall(text):
        where = f'{path}: #include "{target}"'
        other, slash, _ = target.partition("/")
        if quote == "<":
            if other in MAY_USE and slash:
                faults.append(f"{where}: the project's own headers stand in double quotes")
        elif not slash:
            if not target.endswith(".moc"):
                faults.append(f"{where}: the room is missing")
        elif other not in MAY_USE:
            faults.append(f"{where}: the room {other} is unknown")
        elif other != room and other not in MAY_USE[room]:
            faults.append(f"{where}: {room} may not use {other}")
    return faults


def names_its_licence(path, text):
    is_script = text.startswith("#!")
    if not (is_script or path.suffix in NAMED_BY_SUFFIX or path.name in NAMED_BY_NAME):
        return True
    return any(LICENCE in line for line in text.splitlines()[:LICENCE_WITHIN_LINES])


def faults_of(root):
    faults = []
    for path in tracked_files(root):
        text = (root / path).read_text(encoding="utf-8", errors="replace")
        if not names_its_licence(path, text):
            faults.append(f"{path}: the line {LICENCE} is missing")
        if path.parts[0] == "src" and path.suffix in {".cpp", ".h"}:
            faults += include_faults(path, text)
    return faults


def main():
    root = pathlib.Path(sys.argv[1])
    if not (root / "src/base").is_dir():
        sys.exit(f"{root} is not the source tree")
    faults = faults_of(root)
    print("\n".join(faults) or "no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
