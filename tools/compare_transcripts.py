#!/usr/bin/env python3
"""Plays scenarios with two builds of zevsim and tells whose transcripts differ.

    compare_transcripts.py OLD NEW PACKAGE [--except NAME]... [--before FOLDER] FILE-OR-FOLDER...

OLD and NEW are two programs zevsim; PACKAGE is the installer's file for both. Compared byte by byte are
the transcript with every kind of event, what is seen from outside, what is printed, and the exit status.
A scenario that is named by --except may differ, and has to: a NAME is a part of its path. Exit 1 if
another one differs, or one of these does not.

Without --before both play the same files. With it OLD plays those of that folder, the scenarios of the
folder that is compared as they were written before: each is compared with the one of its name, a case
`directory.json#empty` with the case, with `directory-empty.json` or with `empty.json`. Every scenario of
one folder must have one in the other.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys
import tempfile


def played(program, package, scenario):
    """All that a play gives; its files by name."""
    with tempfile.TemporaryDirectory() as folder:
        files = {name: pathlib.Path(folder) / name for name in ("transcript", "outside")}
        command = [program, scenario, "--package", package, "--events", "all"]
        for name, file in files.items():
            command += ["--" + name, file]
        done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, timeout=600)
        told = {name: file.read_bytes() if file.exists() else None for name, file in files.items()}
        return {**told, "status": done.returncode, "output": done.stdout, "errors": done.stderr}


def differences(old, new, package, before, scenario):
    one, other = played(old, package, before), played(new, package, scenario)
    return [key for key in one if one[key] != other[key]]


def scenarios_of(places):
    """Each scenario by its name below the place, and as zevsim takes it: a file, or a case of one."""
    for place in map(pathlib.Path, places):
        for file in sorted(place.rglob("*.json")) if place.is_dir() else [place]:
            if file.name == "common.json":
                continue
            name = str((file.relative_to(place) if place.is_dir() else file).with_suffix(""))
            cases = json.loads(file.read_text(encoding="utf-8")).get("cases")
            yield from ((f"{name}#{case}", f"{file}#{case}") for case in cases or ())
            if not cases:
                yield name, str(file)


def names_before(name):
    """The names that a scenario can have had before it became a case."""
    table, _, case = name.partition("#")
    return [name, f"{table}-{case}", str(pathlib.Path(table).parent / case)] if case else [name]


def pairs_of(places, before):
    """(scenario before, scenario), and the names of those that have no other."""
    scenarios = dict(scenarios_of(places))
    if before is None:
        return [(each, each) for each in scenarios.values()], []
    earlier = dict(scenarios_of([before]))
    pairs, lonely = [], []
    for name, scenario in scenarios.items():
        found = [earlier.pop(each) for each in names_before(name) if each in earlier]
        if len(found) == 1:
            pairs.append((found[0], scenario))
        else:
            lonely.append(name)
    return pairs, lonely + list(earlier)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("old")
    parser.add_argument("new")
    parser.add_argument("package")
    parser.add_argument("--except", dest="excepted", action="append", default=[])
    parser.add_argument("--before")
    parser.add_argument("places", nargs="+")
    options = parser.parse_args()

    pairs, lonely = pairs_of(options.places, options.before)
    for name in lonely:
        print(f"{name}: only on one side")
    equal, other, wrong = 0, 0, len(lonely)
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        results = pool.map(lambda each: differences(options.old, options.new, options.package, *each),
                           pairs)
        for (_, scenario), parts in zip(pairs, results):
            excepted = any(name in scenario for name in options.excepted)
            equal, other = equal + (not parts), other + bool(parts)
            if bool(parts) == excepted:
                continue
            wrong += 1
            print(f"{scenario}: {', '.join(parts) + ' differ' if parts else 'nothing differs'}")
    print(f"{len(pairs)} scenarios: {equal} equal, {other} not; {wrong} against what was wanted")
    return 1 if wrong or not pairs else 0


if __name__ == "__main__":
    sys.exit(main())
