#!/usr/bin/env python3
"""Checks that includes form a tree: no circle between files, and no folder of src/ includes one above it."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent / "src"

# What each folder may include besides itself, as docs/architecture.md draws it. The folder plugin holds both
# the boundary towards the host, which everything builds on, and the plug-in's own object, which builds on
# everything: its boundary files stand here as "host".
BOUNDARY = {"HostServices", "Loggers", "PluginState", "Settings"}
CORE = {"base", "host"}
MAY_INCLUDE = {
    "base": set(),
    "host": {"base"},
    "player": CORE,
    "web": CORE,
    "ui": CORE | {"player", "web", "catalogue", "plugin"},
    "catalogue": CORE | {"player", "web", "ui"},
    "pages": CORE | {"player", "web", "catalogue", "plugin"},
    "automation": CORE | {"player", "web", "catalogue", "ui"},
    "script": CORE | {"player", "web", "catalogue", "automation", "ui", "plugin"},
    "plugin": CORE | {"player", "web", "catalogue", "automation", "script", "pages", "ui"},
    "bus": {"base"},
    "platform": {"base", "ui"},
    "engine": {"base", "player"},
    "standin": {"base", "bus"},
    "desktop": CORE | {"bus", "player", "ui", "plugin"},
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def folder(path):
    parts = path.relative_to(ROOT).parts
    return "host" if parts[0] == "plugin" and path.stem in BOUNDARY else parts[0]


def main():
    files = sorted(p for p in ROOT.rglob("*") if p.suffix in (".hpp", ".cpp"))
    edges = {f: [] for f in files}
    wrong = []
    for f in files:
        for name in INCLUDE.findall(f.read_text(encoding="utf-8")):
            target = ROOT / name
            if not target.exists():
                continue  # made by the build
            edges[f].append(target)
            a, b = folder(f), folder(target)
            if a != b and b not in MAY_INCLUDE.get(a, set()):
                wrong.append(f"{f.relative_to(ROOT)} includes {name}: {a} may not build on {b}")
    done, path = set(), []

    def visit(f):
        if f in path:
            circle = path[path.index(f):] + [f]
            wrong.append("circle: " + " -> ".join(str(x.relative_to(ROOT)) for x in circle))
            return
        if f in done:
            return
        path.append(f)
        for target in edges.get(f, []):
            visit(target)
        path.pop()
        done.add(f)

    for f in files:
        visit(f)
    for line in wrong:
        print(line)
    print(f"{len(files)} files, {sum(map(len, edges.values()))} includes, {len(wrong)} wrong")
    return 1 if wrong or not files else 0


if __name__ == "__main__":
    sys.exit(main())
