#!/usr/bin/env python3
"""Checks that includes form a tree: no circle between files, no folder of src/ includes one that it may not build on,
none links such a one either, no permission stands here that nobody uses, and no folder holds more files than a newcomer
can look through."""
import pathlib
import re
import sys

TREE = pathlib.Path(__file__).resolve().parent.parent
ROOT = TREE / "src"
MOST_FILES = 30

# What each folder includes besides itself, lowest first, as docs/architecture.md draws it.
MAY_INCLUDE = {
    "base": "",
    "files": "base",
    "database": "base",
    "plugin/host": "base",
    "player": "base plugin/host",
    "cover": "base player plugin/host",
    "web": "base plugin/host",
    "catalogue": "base player plugin/host web",
    "automation": "base catalogue player plugin/host web",
    "pages": "base catalogue player plugin/host web",
    "ui": "base catalogue player plugin/host",
    "ui/editor": "base catalogue player plugin/host ui",
    "ui/popup": "base catalogue player plugin/host ui web",
    "script": "base catalogue player plugin/host",
    "plugin/commands": "base player plugin/host",
    "plugin/adapters": "catalogue pages player plugin/host",
    "plugin": "automation base catalogue cover player plugin/adapters plugin/commands plugin/host ui ui/editor ui/popup",
    "bus": "base files",
    "platform": "base files",
    "pictures": "base cover files platform",
    "desktop/loader": "base bus files ui ui/editor ui/popup",
    "desktop": "base bus desktop/loader ui",
    "desktop/popup": "base desktop player ui ui/popup",
    "desktop/editor": "base desktop desktop/popup ui/editor",
    "desktop/module": "desktop desktop/editor desktop/loader desktop/popup",
    "mpris/session": "base bus",
    "mpris": "base bus mpris/session",
    "engine/common": "base files",
    "engine/tags": "base engine/common files",
    "engine/scan": "base database engine/common engine/tags files",
    "engine/library": "base engine/common files engine/scan engine/tags player",
    "engine/playlists": "base engine/common files engine/library engine/scan engine/tags player",
    "engine/shown": "engine/tags",
    "engine/card": "base engine/common",
    "engine/decoder": "base engine/card engine/common engine/library engine/shown files",
    "engine/playback": "base engine/common engine/decoder engine/library player",
    "engine/queue": "base engine/common engine/library engine/playback engine/playlists files player",
    "engine/machine": "base engine/library engine/tags player",
    "engine": "base engine/card engine/common engine/decoder engine/library engine/machine engine/playback engine/playlists "
              "engine/queue player",
    "demo": "base engine/common files",
    "wire": "",
    "ear": "wire",
    "ear/decoder": "ear",
    "scripting": "base wire",
    "scripting/lua": "base scripting wire",
    "standin/text": "",
    "standin/grammar": "base standin/text",
    "standin/settings": "base files",
    "standin/pages": "base",
    "standin/house": "base database files standin/pages standin/settings",
    "standin/events": "",
    "standin/calendar": "standin/events",
    "standin/eventrun": "base standin/calendar standin/events standin/house",
    "standin/voice": "base bus standin/house",
    "standin/process": "bus files",
    "standin/ear": "bus ear standin/process",
    "standin/hostobjects": "base bus standin/house standin/voice",
    "standin/player": "base bus standin/hostobjects standin/house standin/text",
    "standin/covers": "base bus files pictures standin/house standin/player",
    "standin/coverservices": "base pictures standin/covers standin/hostobjects standin/house",
    "standin/rules": "base database standin/events standin/house standin/player",
    "standin/dialogs": "base standin/house standin/player standin/text",
    "standin/playlists": "base database standin/house standin/player",
    "standin/scripts": "base bus files scripting standin/house standin/player standin/process",
    "standin/eventworld": "base standin/eventrun standin/house standin/player standin/scripts standin/voice",
    "standin/hearing": "base bus ear standin/ear standin/grammar standin/hostobjects standin/house standin/player standin/voice",
    "standin/room": "base bus ear standin/hearing standin/house standin/process standin/voice",
    "standin/routes": "base standin/covers standin/coverservices standin/dialogs standin/events standin/grammar standin/hearing standin/hostobjects "
                      "standin/house standin/player standin/playlists standin/room standin/rules standin/scripts standin/text standin/voice",
    "standin/http": "base files standin/house standin/pages standin/player standin/routes standin/text",
    "standin": "base files",
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
LIBRARY = re.compile(r"(?:vantorix_library|target_link_libraries)\(\s*(\w+)\s(.*?)\)", re.S)


def folder(path):
    return path.parent.relative_to(ROOT).as_posix()


def circles(edges):
    """Each circle of includes once, as a line of text."""
    found, done, path = [], set(), []

    def visit(f):
        if f in path:
            circle = path[path.index(f):] + [f]
            found.append("circle: " + " -> ".join(x.relative_to(ROOT).as_posix() for x in circle))
            return
        if f in done:
            return
        path.append(f)
        for target in edges.get(f, []):
            visit(target)
        path.pop()
        done.add(f)

    for f in edges:
        visit(f)
    return found


def forbidden_links(allowed):
    """The libraries of src/ that link one of a folder that theirs may not build on, as lines of text."""
    links = []
    home = {}
    for lists in ROOT.rglob("CMakeLists.txt"):
        if "node_modules" in lists.parts:
            continue
        text = re.sub(r"#.*", "", lists.read_text(encoding="utf-8"))
        for name, rest in LIBRARY.findall(text):
            home[name] = folder(lists)
            links += [(name, word) for word in rest.split() if word.startswith("vx_")]
    return [f"{name} links {other}: {home[name]} may not build on {home.get(other, 'what is nowhere')}"
            for name, other in links
            if home.get(other) != home[name] and home.get(other) not in allowed.get(home[name], set())]


def full_folders():
    """The folders that hold too many files, as lines of text."""
    lines = []
    for top in ("src", "tests", "bench", "fuzz", "apps"):
        own = (p for p in (TREE / top).rglob("*") if "node_modules" not in p.parts)  # npm's are not ours to cut
        for place in sorted({p.parent for p in own}):
            count = sum(p.is_file() for p in place.iterdir())
            if count > MOST_FILES:
                lines.append(f"{place.relative_to(TREE)} holds {count} files")
    return lines


def main():
    files = sorted(p for p in ROOT.rglob("*") if p.suffix in (".hpp", ".cpp"))
    edges = {f: [] for f in files}
    allowed = {room: set(names.split()) for room, names in MAY_INCLUDE.items()}
    unused = {(room, name) for room, names in allowed.items() for name in names}
    wrong = []
    for f in files:
        for name in INCLUDE.findall(f.read_text(encoding="utf-8")):
            target = ROOT / name
            if not target.exists():
                continue  # made by the build
            edges[f].append(target)
            a, b = folder(f), folder(target)
            unused.discard((a, b))
            if a != b and b not in allowed.get(a, set()):
                wrong.append(f"{f.relative_to(ROOT)} includes {name}: {a} may not build on {b}")
    order = list(MAY_INCLUDE)
    for room, names in allowed.items():
        for name in names:
            if name not in allowed or order.index(name) > order.index(room):
                wrong.append(f"{room} is to build on {name}, which stands above it or nowhere")
    wrong += [f"{a} may build on {b} and does not" for a, b in sorted(unused)]
    wrong += circles(edges)
    wrong += forbidden_links(allowed)
    wrong += full_folders()
    for line in wrong:
        print(line)
    print(f"{len(files)} files, {sum(map(len, edges.values()))} includes, {len(wrong)} wrong")
    return 1 if wrong or not files else 0


if __name__ == "__main__":
    sys.exit(main())
