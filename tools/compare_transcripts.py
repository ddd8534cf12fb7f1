#!/usr/bin/env python3
"""Plays scenarios with two builds of zevsim and tells whose transcripts differ.

    compare_transcripts.py OLD NEW PACKAGE [--except NAME]... FILE-OR-FOLDER...

OLD and NEW are two programs zevsim; PACKAGE is the installer's file for both. Compared byte by byte are
the transcript with every kind of event, what is seen from outside, what is printed, and the exit status.
A scenario that is named by --except may differ, and has to: a NAME is a part of its path. Exit 1 if
another one differs, or one of these does not.
"""

import argparse
import concurrent.futures
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


def differences(old, new, package, scenario):
    before, after = (played(program, package, scenario) for program in (old, new))
    return [key for key in before if before[key] != after[key]]


def scenarios_of(places):
    for place in map(pathlib.Path, places):
        yield from sorted(place.rglob("*.json")) if place.is_dir() else [place]


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("old")
    parser.add_argument("new")
    parser.add_argument("package")
    parser.add_argument("--except", dest="excepted", action="append", default=[])
    parser.add_argument("places", nargs="+")
    options = parser.parse_args()

    scenarios = list(scenarios_of(options.places))
    equal, other, wrong = 0, 0, 0
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        results = pool.map(lambda each: differences(options.old, options.new, options.package, each),
                           scenarios)
        for scenario, parts in zip(scenarios, results):
            excepted = any(name in str(scenario) for name in options.excepted)
            equal, other = equal + (not parts), other + bool(parts)
            if bool(parts) == excepted:
                continue
            wrong += 1
            print(f"{scenario}: {', '.join(parts) + ' differ' if parts else 'nothing differs'}")
    print(f"{len(scenarios)} scenarios: {equal} equal, {other} not; {wrong} against what was wanted")
    return 1 if wrong or not scenarios else 0


if __name__ == "__main__":
    sys.exit(main())
