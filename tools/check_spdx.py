#!/usr/bin/env python3
# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0
"""Fails on a source file that does not begin by naming its copyright holder and licence."""

import pathlib
import sys

SUFFIXES = {".h", ".cpp", ".py", ".sh", ".cmake", ".js"}
NAMES = {"CMakeLists.txt", "Makefile"}
FOLDERS = {"scripts", ".ci"}
LINES = ("SPDX-FileCopyrightText: Nightjar contributors", "SPDX-License-Identifier: Apache-2.0")


def is_source(path):
    return path.suffix in SUFFIXES or path.name in NAMES or path.parent.name in FOLDERS


def main():
    top = pathlib.Path(sys.argv[1]).resolve()
    sources = [
        path
        for path in sorted(top.rglob("*"))
        if path.is_file() and is_source(path) and not {"build", ".git", "node_modules"} & set(path.relative_to(top).parts)
    ]
    bare = []
    for path in sources:
        head = "\n".join(path.read_text(encoding="utf-8").splitlines()[:4])
        if not all(line in head for line in LINES):
            bare.append(path.relative_to(top).as_posix())
    for name in bare:
        print(f"{name}: the SPDX lines are missing")
    if not bare:
        print(f"{len(sources)} files name their licence")
    return 1 if bare or not sources else 0


if __name__ == "__main__":
    sys.exit(main())
