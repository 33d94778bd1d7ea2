#!/usr/bin/env python3
"""Says what took longest: build steps by Ninja's own logs, tests by CTest's report.

    tools/longest.py SINCE FILE...    each a .ninja_log or a report of ctest --output-junit; steps of before SINCE
                                      (in seconds since 1970) are left out
"""
import pathlib
import sys
import xml.etree.ElementTree

MOST = 8


def steps(log, since):
    """The seconds of each step that this run has taken, by its name."""
    found = {}
    for line in log.read_text().splitlines()[1:]:
        start, end, written, name, _ = line.split("\t")
        if int(written) >= since * 1_000_000_000:
            found[name] = (int(end) - int(start)) / 1000
    return found


def tests(report):
    cases = xml.etree.ElementTree.parse(report).getroot().iter("testcase")
    return {case.get("name"): float(case.get("time")) for case in cases}


def show(title, found):
    if not found:
        return
    print(f"{title}: {len(found)}, {sum(found.values()):.0f} s one after the other; the longest:")
    for name, seconds in sorted(found.items(), key=lambda each: -each[1])[:MOST]:
        print(f"  {seconds:7.1f} s  {name}")


def main():
    since = int(sys.argv[1])
    for name in sys.argv[2:]:
        path = pathlib.Path(name)
        if not path.exists():
            continue
        if path.name == ".ninja_log":
            show(f"Build steps of {path.parent.name}", steps(path, since))
        else:
            show("Tests", tests(path))


if __name__ == "__main__":
    main()
