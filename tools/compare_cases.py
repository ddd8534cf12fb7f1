#!/usr/bin/env python3
"""Tells which cases of an earlier state are not run any more.

    compare_cases.py PRESET=LIST... [build/cases.tsv]

A LIST is what `ctest -N` printed in the build of an earlier state; PRESET is where its cases are run
now. Each is looked for by its name, in the cases that the last ./test ran, and there have to be at
least as many of a name; of a case with parameters, which CTest names by their values, the number
counts. Exit 1 if one is missing.
"""

import collections
import pathlib
import re
import sys


def plain(name):
    """The name without the value or number of a parameter."""
    return name if name.startswith("scenario.") else re.sub(r"(\.[^/]+)/.*", r"\1", name)


def earlier(path):
    """How often each name stands in a listing of CTest's."""
    lines = pathlib.Path(path).read_text().splitlines()
    found = (re.match(r"^ *Test +#\d+: (.+)$", line) for line in lines)
    return collections.Counter(plain(match[1]) for match in found if match)


def present(path):
    """How often each name was run, by preset; a suite's own name counts too."""
    names = collections.defaultdict(collections.Counter)
    suites = set()
    for line in pathlib.Path(path).read_text().splitlines():
        preset, suite, case, *_ = line.split("\t")
        names[preset][plain(case)] += 1
        if suite != case and (preset, suite) not in suites:
            names[preset][suite] += 1
            suites.add((preset, suite))
    return names


def main():
    pairs = [each.split("=", 1) for each in sys.argv[1:] if "=" in each]
    files = [each for each in sys.argv[1:] if "=" not in each] or ["build/cases.tsv"]
    if not pairs or len(files) != 1:
        sys.exit(__doc__)
    now = present(files[0])
    missing = 0
    for preset, listing in pairs:
        before = earlier(listing)
        gone = before - now[preset]
        missing += gone.total()
        print(f"{preset}: {before.total()} before, {before.total() - gone.total()} of them now")
        for name, count in sorted(gone.items()):
            print(f"  {name} ({count})")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
