#!/usr/bin/env python3
"""Tells which cases of an earlier state are not run any more.

    compare_cases.py PRESET=LIST... [build/cases.tsv]

A LIST is what `ctest -N` printed in the build of an earlier state; PRESET is where its cases are run
now. Each is looked for by its name, in the cases that the last ./test ran. Exit 1 if one is missing.
"""

import collections
import pathlib
import re
import sys


def earlier(path):
    """The names in a listing of CTest's."""
    found = re.findall(r"^ *Test +#\d+: (.+?)(?: \(Disabled\))?$", pathlib.Path(path).read_text(), re.M)
    return set(found)


def present(path):
    """The names of cases by preset; a suite's own name counts too."""
    names = collections.defaultdict(set)
    for line in pathlib.Path(path).read_text().splitlines():
        preset, suite, case, *_ = line.split("\t")
        names[preset] |= {suite, case}
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
        gone = sorted(before - now[preset])
        missing += len(gone)
        print(f"{preset}: {len(before)} before, {len(before) - len(gone)} of them now, "
              f"{len(now[preset] - before)} others")
        for name in gone:
            print(f"  {name}")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
