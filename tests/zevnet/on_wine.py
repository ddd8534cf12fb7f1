#!/usr/bin/env python3
"""The cases of zevnet_test.py with zevnet on Windows, that is under Wine, and those of a console.

    on_wine.py --width 64 WORK ZEVNET.exe IN_CONSOLE.exe [CLASS...]

WORK is the folder of Wine's machines (tests/windows/wine_machine.py). Run by tests/network/alone.sh.
What a process of Windows does not have, the cases name and leave out.
"""

import argparse
import os
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "windows"))
import wine_machine  # pylint: disable=wrong-import-position
from processes import Running  # pylint: disable=wrong-import-position

CLASSES = [f"zevnet_test.{name}" for name in (
    "Http", "Streams", "Datagrams", "Failures", "WholeInput", "Ends", "Listening", "Tracing",
    "Pressure")] + ["console_test.Consoles"]


def write_starter(path, machine, *words):
    """A command of the host that runs a program on the machine."""
    settings = " ".join(f"{key}={shlex.quote(value)}" for key, value in machine.environment().items())
    command = shlex.join([str(wine_machine.WINE_ROOT), "run", wine_machine.LOADER[machine.width],
                          *words])
    path.write_text(f"#!/bin/sh\ncd {shlex.quote(str(machine.drive))}\n"
                    f"exec env {settings} {command} \"$@\"\n")
    path.chmod(0o755)
    return str(path)


def run_cases(machine, zevnet, console, cases):
    with tempfile.TemporaryDirectory() as folder:
        starters = Path(folder)
        environment = {
            "ZEVNET": write_starter(starters / "zevnet", machine, zevnet),
            "ZEVNET_SYSTEM": "windows",
            "IN_CONSOLE": write_starter(starters / "in_console", machine, console),
            "IN_CONSOLE_PROGRAM": zevnet,
            "IN_CONSOLE_FOLDER": str(machine.path(console).parent),
        }
        # Wine starts a machine with its first program and ends it behind the last one, which takes
        # longer than most cases. This one lasts as long as they do.
        lasting = Running(environment["ZEVNET"], "listen", 0, "--keep", stdin=subprocess.DEVNULL)
        try:
            lasting.line("^listening on")
            return subprocess.run([sys.executable, "-m", "unittest", "-v", *cases], cwd=HERE,
                                  env={**os.environ, **environment}, check=False).returncode
        finally:
            lasting.stop()


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--width", type=int, choices=(32, 64), default=64, help="bits of Windows")
    parser.add_argument("work")
    parser.add_argument("program")
    parser.add_argument("console")
    parser.add_argument("cases", nargs="*", default=CLASSES)
    options = parser.parse_args()
    folder = wine_machine.Template(options.work, options.width).copy()
    try:
        with wine_machine.Machine(folder, width=options.width) as machine:
            return run_cases(machine, machine.put(options.program, "C:\\Test\\zevnet.exe"),
                             machine.put(options.console, "C:\\Test\\in_console.exe"),
                             options.cases)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
