#!/usr/bin/env python3
"""The cases of zevnet_test.py with zevnet on Windows, that is under Wine.

    on_wine.py --width 64 WORK ZEVNET.exe [CLASS...]

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


def write_starter(path, machine, program):
    """A command of the host that runs the program on the machine."""
    settings = " ".join(f"{key}={shlex.quote(value)}" for key, value in machine.environment().items())
    loader = wine_machine.LOADER[machine.width]
    path.write_text(f"#!/bin/sh\ncd {shlex.quote(str(machine.drive))}\n"
                    f"exec env {settings} {wine_machine.WINE_ROOT} run {loader} "
                    f"{shlex.quote(program)} \"$@\"\n")
    path.chmod(0o755)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--width", type=int, choices=(32, 64), default=64, help="bits of Windows")
    parser.add_argument("work")
    parser.add_argument("program")
    parser.add_argument("cases", nargs="*")
    options = parser.parse_args()
    folder = wine_machine.Template(options.work, options.width).copy()
    starters = Path(tempfile.mkdtemp())
    try:
        with wine_machine.Machine(folder, width=options.width) as machine:
            program = machine.put(options.program, "C:\\Test\\zevnet.exe")
            write_starter(starters / "zevnet", machine, program)
            machine.run(program, "--help", stdout=subprocess.DEVNULL)  # starts the machine
            environment = {**os.environ, "ZEVNET": str(starters / "zevnet"),
                           "ZEVNET_SYSTEM": "windows"}
            return subprocess.run([sys.executable, HERE / "zevnet_test.py", *options.cases],
                                  env=environment, check=False).returncode
    finally:
        shutil.rmtree(folder, ignore_errors=True)
        shutil.rmtree(starters, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
