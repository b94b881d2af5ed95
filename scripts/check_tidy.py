#!/usr/bin/env python3
"""Runs clang-tidy (.clang-tidy) over every source of src/ and sandbox/ that builds natively.

    scripts/check_tidy.py [--build FOLDER] [--jobs N]

FOLDER is a configured native build (build/native). A source whose text and headers have not changed since it passed is
not looked at again.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(rb'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
TIDY = "clang-tidy-14"


def text_of(path, cache={}):
    if path not in cache:
        cache[path] = path.read_bytes()
    return cache[path]


def with_headers(source):
    """The source and the project's headers that it includes, directly or not."""
    found, waiting = {source}, [source]
    while waiting:
        path = waiting.pop()
        for name in INCLUDE.findall(text_of(path)):
            for folder in (ROOT / "src", ROOT, path.parent):
                header = folder / name.decode()
                if header.is_file():
                    header = header.resolve()
                    if header not in found:
                        found.add(header)
                        waiting.append(header)
                    break
    return sorted(found)


def fingerprint(source, command):
    digest = hashlib.sha256(text_of(ROOT / ".clang-tidy") + command.encode())
    for path in with_headers(source):
        digest.update(text_of(path))
    return digest.hexdigest()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default=str(ROOT / "build" / "native"))
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    arguments = parser.parse_args()
    build = pathlib.Path(arguments.build).resolve()
    passed = build / "tidy"
    passed.mkdir(parents=True, exist_ok=True)

    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"]).resolve()
        if path.is_relative_to(ROOT / "src") or path.is_relative_to(ROOT / "sandbox"):
            commands[path] = entry["command"]

    def look_at(path):
        stamp = passed / fingerprint(path, commands[path])
        if stamp.exists():
            return path, False, ""
        # The commands are another compiler's: warning options that this one lacks are no fault of the source.
        run = subprocess.run(
            [TIDY, "-p", str(build), "--quiet", "--extra-arg=-Wno-unknown-warning-option", str(path)],
            capture_output=True, text=True, timeout=300, cwd=ROOT)
        if run.returncode == 0:
            stamp.touch()
        return path, True, run.stdout if run.returncode != 0 else ""

    looked_at = 0
    failures = []
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for path, looked, output in pool.map(look_at, sorted(commands)):
            looked_at += looked
            if output:
                failures.append(path)
                print(output.replace(str(ROOT) + "/", ""))
    print(f"{len(commands)} sources, {looked_at} of them changed, {len(failures)} with findings")
    return 1 if failures or not commands else 0


if __name__ == "__main__":
    sys.exit(main())
