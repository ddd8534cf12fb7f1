#!/usr/bin/env python3
"""Runs a program on a fresh machine made of Wine whose system speaks another language: its code page is
that of the language.

    language_machine.py WORK CODEPAGE PROGRAM.exe [ARGUMENT...]

WORK is the folder of wine_machine.py, CODEPAGE 932, 936, 949, 950 or 65001. The program finds it in
its environment as ZEV_CODE_PAGE, to see whether the machine really has it. Ends with the program's
exit code.
"""

import argparse
import pathlib
import shutil
import signal
import sys

import scenario_machine
from compare_scenarios import BobMachine, BobTemplate, make_locales


class LanguageMachine(BobMachine):
    """A machine that tells its programs which code page they should have."""

    def __init__(self, folder, code_page, locales):
        language = scenario_machine.locale_of(code_page)
        super().__init__(folder, language, make_locales(locales, [language]))
        self.code_page = code_page

    def environment(self):
        return {**super().environment(), "ZEV_CODE_PAGE": str(self.code_page)}


def run(work, code_page, program, arguments, timeout):
    """Runs a program on a fresh machine; its exit code."""
    work = pathlib.Path(work).resolve()
    folder = BobTemplate(work / "usual").copy()
    try:
        with LanguageMachine(folder, code_page, work / "locales") as machine:
            name = machine.put(program, f"C:\\Test\\{pathlib.Path(program).name}")
            return machine.run(name, *arguments, timeout=timeout)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--timeout", type=float, default=300, help="seconds that a run may take")
    parser.add_argument("work")
    parser.add_argument("code_page", type=int, choices=(932, 936, 949, 950, 65001))
    parser.add_argument("program")
    parser.add_argument("arguments", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    return run(options.work, options.code_page, options.program, options.arguments,
               options.timeout)


if __name__ == "__main__":
    sys.exit(main())
