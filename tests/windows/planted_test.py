#!/usr/bin/env python3
"""Libraries planted beside the setup program are not loaded, through a whole install: with the folder
browser, the shortcuts and the group that is opened.

    planted_test.py WORK PACKAGE.exe DRIVER.exe COMPILER

WORK is the folder of wine_machine.py, DRIVER is zevdrive, COMPILER the C compiler for the package's
system.
"""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import wine_machine

HERE = pathlib.Path(__file__).parent

# Libraries that programs with windows are known to load.
PLANTED = ["comctl32", "uxtheme", "version", "lz32", "dwmapi", "cryptbase", "cryptsp", "profapi",
           "userenv", "winmm", "wsock32", "iphlpapi", "netapi32", "propsys", "ntmarta", "secur32",
           "apphelp", "msimg32", "oleacc", "mpr", "linkinfo", "ntshrui", "cscapi", "srvcli", "slc",
           "shdocvw", "setupapi", "clbcatq", "sxs", "wldp", "edputil", "wtsapi32", "dbghelp",
           "urlmon", "wininet", "mswsock", "dnsapi", "usp10", "riched20", "duser", "xmllite"]

# What Wine's own window library links and finds beside any program with windows: there it is none of
# the system's known libraries, which it is on Windows.
LOADED_BY_WINE = {"version"}

SECONDS_TO_LOAD = 60
SECONDS_TO_INSTALL = 120

INSTALL = {"script": [
    {"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
    {"click": "Command4"}, {"expect": {"Form3.Visible": True}}, {"click": "Form3.Command2"},
    {"click": "Command2"},
    {"expect": {"boxes": [], "Form1.Command2.Caption": "Finish", "Form1.Command2.Enabled": True}},
    {"click": "Command2"}, {"expect": {"ended": "unload"}},
]}


class PlantedMachine(wine_machine.Machine):
    """A machine that, like Windows, takes a program's own libraries before those of Wine."""

    def environment(self):
        return super().environment() | {"WINEDLLOVERRIDES": ",".join(PLANTED) + "=n,b"}


class PlantedTest(unittest.TestCase):
    work = package = driver = compiler = None

    def setUp(self):
        self.folder = wine_machine.Template(self.work).copy()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.made = pathlib.Path(tempfile.mkdtemp(dir=self.work))
        self.addCleanup(shutil.rmtree, self.made, ignore_errors=True)

    def compile(self, source, output, *options):
        subprocess.run([self.compiler, "-O1", *options, str(HERE / source), "-o",
                        str(self.made / output)], check=True)
        return self.made / output

    def plant(self, machine):
        library = self.compile("planted_library.c", "planted.dll", "-shared")
        for name in PLANTED:
            machine.put(library, f"C:\\Downloads\\{name}.dll")

    @staticmethod
    def loaded(machine):
        """Names of the planted libraries that ran."""
        ran = machine.path("C:\\Downloads\\x").parent.glob("*.ran")
        return {file.name.removesuffix(".dll.ran").lower() for file in ran}

    def test_the_setup_program_loads_none(self):
        with PlantedMachine(self.folder) as machine:
            self.plant(machine)
            driver = machine.put(self.driver, "C:\\Driver\\zevdrive.exe")
            program = machine.put(self.package, "C:\\Downloads\\ZEVSetup.exe")
            machine.path("C:\\Driver\\install.json").write_text(json.dumps(INSTALL))
            status = machine.run(driver, "C:\\Driver\\install.json", "--program", program,
                                 "--transcript", "C:\\Driver\\told.jsonl",
                                 timeout=SECONDS_TO_INSTALL)
            links = {file.name for file in machine.drive.rglob("*ZEV Screen Recorder*/*.lnk")}
            self.assertEqual(self.loaded(machine) - LOADED_BY_WINE, set())
            self.assertEqual(status, 0, "the install was not played to its end")
            self.assertEqual(len(links), 5, links)

    def test_a_careless_program_loads_them(self):
        careless = self.compile("careless_program.c", "careless.exe", "-mwindows")
        with PlantedMachine(self.folder) as machine:
            self.plant(machine)
            process = machine.start(machine.put(careless, "C:\\Downloads\\Careless.exe"),
                                    *(f"{name}.dll" for name in PLANTED))
            self.addCleanup(wine_machine.end, process)
            end = time.monotonic() + SECONDS_TO_LOAD
            while len(self.loaded(machine)) <= len(PLANTED) // 2:
                self.assertLess(time.monotonic(), end, f"only {self.loaded(machine)} were loaded")
                time.sleep(0.2)


if __name__ == "__main__":
    PlantedTest.work, PlantedTest.package, PlantedTest.driver, PlantedTest.compiler = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
