#!/usr/bin/env python3
# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0
"""Fails on an include that looks the wrong way, on Qt where a layer has none, and on the JSON library outside its place."""

import pathlib
import re
import sys

# Each layer may include itself and the layers named here.
ALLOWED = {
    "core": set(),
    "platform": {"core"},
    "platform/linux": {"platform", "core"},
    "platform/simulated": {"platform", "core"},
    "radio": {"platform", "core"},
    "app": {"radio", "platform", "core"},
    "ui": {"app", "radio", "platform", "core"},
    "bridge": {"core"},
    "program": {"ui", "app", "radio", "platform", "platform/linux", "platform/simulated", "core"},
}
WITHOUT_QT = {"core", "platform", "platform/simulated", "radio", "bridge"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def layer_of(path):
    """The layer of a file or of an include written from the top folder; None for anything else."""
    parts = pathlib.PurePosixPath(path).parts
    if not parts:
        return None
    two = "/".join(parts[:2])
    if two in ALLOWED:
        return two
    return parts[0] if parts[0] in ALLOWED else None


def complaints(top, path):
    name = path.relative_to(top).as_posix()
    layer = layer_of(name)
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        bracket, target = match.groups()
        where = f"{name}:{number}: "
        if bracket == '"' and target.endswith(".moc"):
            continue
        if bracket == '"' and not (top / target).is_file():
            yield where + f'"{target}" is not written from the top folder, or does not exist'
        other = layer_of(target) if bracket == '"' else None
        if other and other != layer and other not in ALLOWED[layer]:
            yield where + f"{layer} may not use {other}"
        if bracket == "<" and layer in WITHOUT_QT and re.match(r"Q[A-Z]|Qt", target):
            yield where + f"{layer} is free of Qt"
        if target.startswith("simdjson") and not name.startswith("core/json/"):
            yield where + "the JSON library is named in core/json only"


def main():
    top = pathlib.Path(sys.argv[1]).resolve()
    found = []
    checked = 0
    for folder in sorted({layer.split("/")[0] for layer in ALLOWED}):
        for path in sorted((top / folder).rglob("*")):
            if path.suffix in {".h", ".cpp"}:
                checked += 1
                found += complaints(top, path)
    print("\n".join(found) if found else f"{checked} files look the right way")
    return 1 if found or checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
