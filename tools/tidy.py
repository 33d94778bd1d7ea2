#!/usr/bin/env python3
"""Runs clang-tidy, several at a time, over what changed since all was clean, or over everything.

    tools/tidy.py BUILD_FOLDER           what differs from the commit at which everything was clean, which is named in
                                         tools/tidy-base
    tools/tidy.py BUILD_FOLDER --all     every file that BUILD_FOLDER's compile_commands.json names

A changed header is checked through the files that include it directly. What was found clean is remembered by its
content and that of what of ours it includes itself, and not looked at again until one of them changes.
"""
import argparse
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache")) / "vantorix-tidy"
INCLUDE = re.compile(rb'^\s*#\s*include\s+"([^"]+)"', re.M)


def git(*words):
    """A command's lines, or None when there is no history here."""
    try:
        done = subprocess.run(["git", "-c", f"safe.directory={ROOT}", *words], cwd=ROOT, capture_output=True, text=True)
    except FileNotFoundError:
        return None
    return done.stdout.splitlines() if done.returncode == 0 else None


def changed():
    """The files that differ from the commit at which everything was clean; None where the history doesn't reach back
    to it, as in an unpacked archive."""
    base = (ROOT / "tools" / "tidy-base").read_text().strip()
    names = git("diff", "--name-only", base)
    if names is None:
        return None
    return {ROOT / name for name in names + (git("ls-files", "--others", "--exclude-standard") or [])}


@functools.cache
def content(path):
    return path.read_bytes()


def included(path, folders):
    """What of ours `path` includes itself."""
    for name in INCLUDE.findall(content(path)):
        for folder in (path.parent, *folders):
            found = folder / name.decode()
            if found.is_file():
                yield found.resolve()
                break


def rules(path):
    """The rules for that file: those of its folders, from the top down."""
    folders = [folder for folder in reversed(path.parents) if folder == ROOT or ROOT in folder.parents]
    return b"".join(content(file) for folder in folders if (file := folder / ".clang-tidy").is_file())


class Unit:
    """A file and how it is compiled."""

    def __init__(self, entry):
        self.path = pathlib.Path(entry["file"]).resolve()
        self.command = entry["command"].replace(str(ROOT), "")
        words = re.findall(r"-I(\S+)", entry["command"])
        self.folders = [pathlib.Path(entry["directory"], word) for word in words]

    def key(self, tool):
        """Differs when the file, its rules or what it includes itself does: with everything below those in it, a
        change to a low header would have hundreds looked at for what hardly ever concerns them."""
        text = hashlib.sha256(tool + self.command.encode())
        for each in sorted({self.path, *included(self.path, self.folders)}):
            text.update(hashlib.sha256(content(each)).digest())
        return text.hexdigest()


def tidy(unit, build):
    start = time.monotonic()
    done = subprocess.run(["clang-tidy", "--quiet", "-p", build, str(unit.path)], capture_output=True, text=True)
    return done.returncode, done.stdout + (done.stderr if not done.stdout else ""), time.monotonic() - start


def units_of(build):
    entries = json.loads(pathlib.Path(build, "compile_commands.json").read_text())
    units = {unit.path: unit for unit in map(Unit, entries)}
    ours = [ROOT / folder for folder in ("apps", "bench", "fuzz", "src", "tests")]
    return [unit for unit in units.values() if any(folder in unit.path.parents for folder in ours)]


def main():
    wanted = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    wanted.add_argument("build")
    wanted.add_argument("--all", action="store_true")
    wanted.add_argument("--jobs", type=int, default=os.cpu_count())
    asked = wanted.parse_args()

    units = units_of(asked.build)
    total = len(units)
    if not asked.all:
        touched = changed()
        if touched is None:
            print("The history doesn't reach back to the commit at which all was clean: --all looks at every file.")
            return 0
        units = [unit for unit in units
                 if unit.path in touched or not touched.isdisjoint(included(unit.path, unit.folders))]
    tool = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    CACHE.mkdir(parents=True, exist_ok=True)
    fresh = [(unit, CACHE / unit.key(tool + rules(unit.path))) for unit in units]
    fresh = [(unit, mark) for unit, mark in fresh if not mark.exists()]
    print(f"{len(units)} of {total} files, {len(units) - len(fresh)} of them known to be clean", flush=True)

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(asked.jobs) as pool:
        running = {pool.submit(tidy, unit, asked.build): (unit, mark) for unit, mark in fresh}
        for each in concurrent.futures.as_completed(running):
            unit, mark = running[each]
            code, text, seconds = each.result()
            if code == 0:
                mark.touch()
            else:
                failed += 1
                print(f"{unit.path.relative_to(ROOT)} ({seconds:.0f} s)\n{text}", flush=True)
    if failed:
        print(f"{failed} files are not clean")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
