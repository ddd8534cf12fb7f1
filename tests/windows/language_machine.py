#!/usr/bin/env python3
"""Runs a program on a fresh machine made of Wine whose system speaks another language: its code page is
that of the language.

    language_machine.py WORK LANGUAGE PROGRAM.exe [ARGUMENT...]

WORK is the folder of wine_machine.py, LANGUAGE the name of a locale of the host, such as ja_JP (code
page 932), zh_CN (936), ko_KR (949), zh_TW (950), or hi_IN (65001). Ends with the program's exit code.
"""

import argparse
import pathlib
import shutil
import signal
import sys

from compare_scenarios import BobMachine, BobTemplate, make_locales


def run(work, language, program, arguments, timeout):
    """Runs a program on a fresh machine; its exit code."""
    work = pathlib.Path(work).resolve()
    locales = make_locales(work / "locales", [language])
    folder = BobTemplate(work / "usual").copy()
    try:
        with BobMachine(folder, language, locales) as machine:
            name = machine.put(program, f"C:\\Test\\{pathlib.Path(program).name}")
            return machine.run(name, *arguments, timeout=timeout)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--timeout", type=float, default=300, help="seconds that a run may take")
    parser.add_argument("work")
    parser.add_argument("language")
    parser.add_argument("program")
    parser.add_argument("arguments", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    return run(options.work, options.language, options.program, options.arguments,
               options.timeout)


if __name__ == "__main__":
    sys.exit(main())
