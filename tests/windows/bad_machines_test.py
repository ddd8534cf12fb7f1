#!/usr/bin/env python3
"""The real program on machines that refuse something: the boxes that it shows there, in their
order, and the way on.

    bad_machines_test.py WORK PACKAGE.exe ZEVDRIVE.exe COMPILER

WORK is the folder of wine_machine.py, COMPILER the C compiler for the program's system. Each case
has a fresh machine, on which the driver plays the script and judges what it expects.
"""

import ctypes
import json
import os
import pathlib
import shutil
import stat
import struct
import subprocess
import sys
import tempfile
import time
import unittest

import wine_machine
from compare_scenarios import BobMachine, BobTemplate
from prefix_state import read_link

HERE = pathlib.Path(__file__).parent
DATA = HERE.parent / "data"

TOOLS = "C:\\Test"
PROGRAM = "C:\\Users\\bob\\Downloads\\ZEVSetup.exe"
# What the program, of 32 bits, sees as C:\windows\system32.
SYSTEM_FOLDER = "C:\\windows\\syswow64"
INSTALL = "C:\\Program Files\\ZEV Screen Recorder 6"
TEMPORARY = "C:\\Users\\bob\\AppData\\Local\\Temp\\ZEVTMP"
OWN_PROGRAMS = "C:\\Users\\bob\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs"
SHARED_START_MENU = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu"
GROUP = "ZEV Screen Recorder 6"

SUPPORT = "support@tavorns.example"
DONE = ("Installation of ZEV Screen Recorder has been successfully completed! You can launch ZEV "
        "from the Start Menu.")
QUESTION = "Do you want to cancel the installation?"


# ---- the product


def table(name):
    """The rows of a table of the tests' data; texts are written in quotation marks."""
    lines = [line for line in (DATA / f"{name}.tsv").read_text(encoding="utf-8").splitlines()
             if line and not line.startswith("#")]
    names, *rows = (line.split("\t") for line in lines)
    return [{key: json.loads(cell) if cell.startswith('"') else cell
             for key, cell in zip(names, row)} for row in rows]


class Member:
    """One file of the product, with the boxes of its failures."""

    def __init__(self, row, packing, target, failure):
        self.row = int(row)
        self.packed, self.installed = packing["packed_name"], target["installed_name"]
        self.tail_offset, self.size = int(packing["tail_offset"]), int(packing["size"])
        self.target = target["target"]
        self.not_expanded = box(failure["expansion_text"], "Screen Recorder", 4144)
        self.not_extracted = box(failure["extraction_text"], "Screen Recorder", 4144)

    def expanded_size(self, package):
        """What its bytes in the package promise."""
        begin = len(package) - self.tail_offset - self.size
        magic, size = struct.unpack_from("<8s2xI", package, begin)
        assert magic == b"SZDD\x88\xf0'3", self.packed
        return size


def members():
    packing, target, failure = ({each["row"]: each for each in table(name)} for name in (
        "manifest_packing", "manifest_targets", "manifest_failures"))
    return [Member(row, packing[row], target[row], failure[row]) for row in target]


# ZEVUser.exe is not for machines with profiles.
NOT_LAID = {25}
# The redistributable is deleted once it has run.
NOT_LEFT = NOT_LAID | {31}


def installed_names():
    """What a whole install leaves in the directory."""
    return {each.installed for each in members()
            if each.target == "install" and each.row not in NOT_LEFT} | {"UserF.dat"}


PAGE = 4096  # bytes, what a file system in memory gives at a time


def private_mounts():
    """What is mounted from here on, nobody but this process and its children sees; it is gone with
    them."""
    new_namespace = 0x00020000
    library = ctypes.CDLL(None, use_errno=True)
    if library.unshare(new_namespace) != 0:
        raise OSError(ctypes.get_errno(), "no mounts of one's own")
    subprocess.run(["mount", "--make-rprivate", "/"], check=True, capture_output=True, text=True)


# ---- boxes


def box(text, title, style):
    return {"text": text, "title": title, "style": style}


def open_failure(words, path):
    return box(f"{words} : '{path}'", "ExpandFile - Error!", 4144)


def copy_failure(member):
    """A failure during an expansion, without a message of its own."""
    return box("Error in ExpandFile: Couldn't decompress the file! \r\n\r\n"
               f"{TEMPORARY}\\{member.packed}\r\n\r\n"
               f"Please email this error message to {SUPPORT}", "ExpandFile - Error!", 4144)


def trap(place, words):
    return box(f"Error occured during installing. Error No.{place}: {words}", "ZEV Screen Recorder",
               48)


CANCEL_QUESTION = box(QUESTION, "Screen Recorder", 4388)


# ---- scripts


TO_THE_DIRECTORY = [{"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"}]


def install(directory=None):
    typed = [{"type": ["Text2", directory]}] if directory else []
    return [*TO_THE_DIRECTORY, *typed, {"click": "Command2"}]


def finishes(boxes, left=None):
    """These boxes have come, and the run has reached its end, which is left by Finish; `left` is
    what could not be taken away from the temporary folder."""
    shown = {"boxes": boxes, "Form1.Command2.Caption": "Finish", "Form1.Command2.Enabled": True,
             "Form1.Command1.Enabled": False, "Form1.Command3.Enabled": False,
             "Form1.Label8.Caption": "100%", "Form1.Label11.Caption": DONE, "ended": None}
    return [{"expect": shown}, {"click": "Command2"},
            {"expect": {"boxes": [], "ended": "unload", f"dir:{TEMPORARY}": left}}]


def stops(boxes, percent):
    """These boxes have come, the last one the run's own: the only way on is to cancel."""
    shown = {"boxes": boxes, "Form1.Visible": True, "Form1.Command2.Caption": "Install",
             "Form1.Command2.Enabled": False, "Form1.Command1.Enabled": True,
             "Form1.Command3.Enabled": True,
             "Form1.Label8.Caption": percent, "ended": None}
    return [{"expect": shown}, {"click": "Command2"}, {"expect": {"boxes": [], "ended": None}},
            {"answer": ["yes"]}, {"click": "Command3"},
            {"expect": {"boxes": [CANCEL_QUESTION], "ended": "unload", f"dir:{TEMPORARY}": None}}]


def ends_on_the_spot(boxes):
    """These boxes have come, and the process is over without a question."""
    return [{"expect": {"boxes": boxes, "ended": "exit", f"dir:{TEMPORARY}": None}}]


# ---- the cases


class BadMachineTest(unittest.TestCase):
    work = package = driver = compiler = None

    def setUp(self):
        self.folder = BobTemplate(self.work / "usual").copy()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.machine = BobMachine(self.folder)
        self.machine.put(self.package, PROGRAM)
        self.machine.put(self.driver, f"{TOOLS}\\zevdrive.exe")
        wine_machine.give(self.machine.drive / "Users")

    def switch_on(self):
        self.machine.__enter__()
        self.addCleanup(self.machine.__exit__, None, None, None)

    def host(self, path):
        return self.machine.drive.joinpath(*path[3:].split("\\"))

    def names(self, path):
        """Names in a folder; none without it."""
        folder = self.host(path)
        return {each.name for each in folder.iterdir()} if folder.is_dir() else None

    def make_file(self, path, text):
        file = self.machine.path(path)
        file.write_text(text)
        wine_machine.give(file.parent)
        return file

    def forbid(self, path):
        """Nothing new in this folder, until the case is over."""
        folder = self.host(path)
        mode = stat.S_IMODE(folder.stat().st_mode)
        folder.chmod(0o555)
        self.addCleanup(folder.chmod, mode)

    def tool(self, source, *options, kind=".exe"):
        """A little program or library of the tests, put on the machine."""
        made = pathlib.Path(tempfile.mkdtemp(dir=self.work))
        self.addCleanup(shutil.rmtree, made, ignore_errors=True)
        name = pathlib.Path(source).with_suffix(kind).name
        subprocess.run([self.compiler, "-O1", str(HERE / source), *options, "-o", str(made / name)],
                       check=True)
        return self.machine.put(made / name, f"{TOOLS}\\{name}")

    def start_tool(self, *command):
        process = self.machine.start(*command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                     text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(wine_machine.end, process)
        return process

    def play(self, *steps):
        """Plays a script; all that it expects must have been seen, and held."""
        self.make_file(f"{TOOLS}\\script.json", json.dumps({"script": list(steps)}))
        told = self.folder / "told.txt"
        with open(told, "wb") as file:
            status = self.machine.run(
                f"{TOOLS}\\zevdrive.exe", f"{TOOLS}\\script.json", "--program", PROGRAM,
                "--timeout", "90", timeout=120, stdout=subprocess.DEVNULL, stderr=file)
        words = told.read_text("utf-8", "replace")
        self.assertEqual(status, 0, words)
        self.assertNotIn("not seen", words)

    def test_no_right_to_the_system_directory(self):
        self.forbid(SYSTEM_FOLDER)
        boxes = []
        for member in members():
            if member.target == "system":
                path = f"C:\\windows\\system32\\{member.installed}"
                boxes += [open_failure("Couldn't access to file", path), member.not_expanded]
        self.assertEqual(len(boxes), 14)
        self.switch_on()
        self.play(*install(), *finishes(boxes))
        self.assertEqual(self.names(INSTALL), installed_names())

    # ---- a full disk

    def add_small_disk(self, size):
        """Drive D: with so many bytes, as a file system in memory that only this test sees."""
        if os.getuid() != 0:
            self.skip_loudly("only root can mount a small disk")
        folder = self.folder / "small"
        folder.mkdir()
        try:
            private_mounts()
            subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "none", str(folder)],
                           check=True, capture_output=True, text=True)
        except (OSError, subprocess.CalledProcessError) as error:
            self.skip_loudly(f"no small disk can be mounted: {getattr(error, 'stderr', error)}")
        self.addCleanup(subprocess.run, ["umount", str(folder)], check=True)
        wine_machine.give(folder)
        (self.machine.prefix / "dosdevices" / "d:").symlink_to(folder)
        with open(self.machine.prefix / "system.reg", "a", encoding="utf-8") as file:
            file.write('\n[Software\\\\Wine\\\\Drives] 0\n"d:"="hd"\n')
        self.assertEqual(shutil.disk_usage(folder).free, size)
        return folder

    def skip_loudly(self, reason):
        print(f"\n*** NOT TESTED: {self.id()}: {reason}", file=sys.stderr)
        self.skipTest(reason)

    def pages_for(self, rows):
        """Bytes that these members take on a disk of pages."""
        package = self.package.read_bytes()
        return sum(-(-each.expanded_size(package) // PAGE) * PAGE for each in members()
                   if each.target == "install" and each.row in rows and each.row not in NOT_LAID)

    def test_full_disk_at_the_main_program(self):
        folder = self.add_small_disk(self.pages_for(range(1, 3)) + (1 << 20))
        self.switch_on()
        self.play(*install("D:\\ZEV"), *ends_on_the_spot([copy_failure(members()[2])]))
        self.assertEqual({each.name for each in (folder / "ZEV").iterdir()},
                         {each.installed for each in members()[:3]})
        self.assertFalse(self.host("C:\\Users\\bob\\AppData\\Local\\Tavorns").exists())

    def test_full_disk_that_is_cleared_in_time(self):
        """The sample video does not fit. While its second box shows, somebody makes room."""
        video = members()[23]
        folder = self.add_small_disk(self.pages_for(range(1, 25)) - (1 << 20))
        left = "D:\\ZEV\\" + video.installed
        self.switch_on()
        self.play({"at": {"box": 2}, "do": [{"change": {"files": {left: None}}}]},
                  *install("D:\\ZEV"), *finishes([copy_failure(video), video.not_expanded]))
        self.assertEqual({each.name for each in (folder / "ZEV").iterdir()},
                         installed_names() - {video.installed})

    def test_full_disk_that_stays_full(self):
        """From the sample video on nothing fits any more. The file that names the user's folder
        ends the run."""
        folder = self.add_small_disk(self.pages_for(range(1, 25)) - (1 << 20))
        boxes = []
        for member in members()[23:]:
            if member.target == "install" and member.row not in NOT_LAID:
                boxes += [copy_failure(member), member.not_expanded]
        self.switch_on()
        self.play(*install("D:\\ZEV"), *stops([*boxes, trap("131-61", "Disk full")], "95%"))
        self.assertEqual(shutil.disk_usage(folder).free, 0)

    # ---- files that cannot be written

    def hold(self, path):
        """Somebody has the file open without sharing."""
        process = self.start_tool(self.tool("holds_file.c"), path)
        self.assertEqual(process.stdout.readline().strip(), "held")

    def test_target_in_use(self):
        path = f"{INSTALL}\\Stop.wav"
        file = self.make_file(path, "old")
        self.switch_on()
        self.hold(path)
        boxes = [open_failure("File in use", path), members()[3].not_expanded]
        self.play(*install(), *finishes(boxes))
        self.assertEqual(file.read_text(), "old")
        self.assertEqual(self.names(INSTALL), installed_names())

    def test_main_program_in_use(self):
        path = f"{INSTALL}\\Screen Recorder 6.exe"
        file = self.make_file(path, "old")
        self.switch_on()
        self.hold(path)
        self.play(*install(), *ends_on_the_spot([open_failure("File in use", path)]))
        self.assertEqual(file.read_text(), "old")
        self.assertEqual(self.names(INSTALL), {each.installed for each in members()[:3]})

    def test_read_only_work_file(self):
        """It is told, its copy fails, and what it holds is laid. In the end it alone stays."""
        member = members()[0]
        path = f"{TEMPORARY}\\{member.packed}"
        file = self.make_file(path, "old")
        file.chmod(0o444)
        boxes = [
            box(f"Couldn't delete the file {path}", "ZEV", 48),
            box(f"Error in Extract File - 75 : File '{path}' could not be written!"
                "Path/File access error", "Error", 4144),
            member.not_extracted,
        ]
        self.switch_on()
        self.play(*install(), *finishes(boxes, left=[member.packed]))
        self.assertEqual(file.read_text(), "old")
        self.assertEqual(self.host(f"{INSTALL}\\{member.installed}").read_text(), "old")
        self.assertEqual(self.names(INSTALL), installed_names())

    # ---- services that are not there

    def test_missing_automation_object(self):
        self.switch_on()
        self.machine.import_registry("REGEDIT4\n\n[-HKEY_CLASSES_ROOT\\WScript.Shell]\n")
        self.play(*install(), *stops(
            [trap("166-429", "ActiveX component can't create object")], "97%"))
        self.assertEqual(self.names(f"{SHARED_START_MENU}\\{GROUP}"), set())
        self.assertEqual(self.names("C:\\Users\\bob\\Desktop"), set())
        self.assertEqual(self.names(INSTALL), installed_names())

    def end_program_manager(self):
        tool = self.tool("ends_program_manager.c")
        self.assertEqual(self.machine.run(tool, stdout=subprocess.DEVNULL), 0)

    def test_neither_start_menu_nor_program_manager(self):
        own = self.host(OWN_PROGRAMS).parent
        shutil.rmtree(self.host(SHARED_START_MENU))
        shutil.rmtree(own)
        self.switch_on()
        self.end_program_manager()
        self.play(*install(), *finishes([]))
        self.assertFalse(own.exists())
        self.assert_no_shortcuts()

    def refuse_shortcuts(self):
        """The shared group's folder takes no files, so that the first shortcut fails. That leads to
        Program Manager, which makes its groups elsewhere."""
        group = self.host(f"{SHARED_START_MENU}\\{GROUP}")
        group.mkdir()
        wine_machine.give(group)
        self.forbid(f"{SHARED_START_MENU}\\{GROUP}")

    def assert_no_shortcuts(self):
        """The run has gone by the shortcuts, and has laid all else."""
        self.assertIn(self.names(f"{SHARED_START_MENU}\\{GROUP}"), (None, set()))
        self.assertEqual(self.names("C:\\Users\\bob\\Desktop"), set())
        self.assertEqual(self.names(INSTALL), installed_names())

    def test_program_manager_makes_the_group(self):
        """Wine's Program Manager makes no items with arguments: two of the five stay out."""
        self.refuse_shortcuts()
        self.switch_on()
        self.play(*install(), *finishes([]))
        made = self.host(f"{OWN_PROGRAMS}\\{GROUP}")
        self.assertTrue(made.is_dir(), "no group")
        items = {each.stem: read_link(each)["TargetPath"] for each in made.iterdir()}
        self.assertEqual(items, {
            "ZEV Screen Recorder 6": f"{INSTALL}\\Screen Recorder 6.exe",
            "Screen Recorder 6 Help": f"{INSTALL}\\ZEV6.chm",
            "Uninstall Screen Recorder 6": f"{INSTALL}\\Uninstall Screen Recorder 6.exe",
        })
        self.assert_no_shortcuts()

    def test_no_program_manager_behind_a_refused_shortcut(self):
        self.refuse_shortcuts()
        self.switch_on()
        self.end_program_manager()
        self.play(*install(), *finishes([]))
        self.assertFalse(self.host(f"{OWN_PROGRAMS}\\{GROUP}").exists())
        self.assert_no_shortcuts()

    # ---- boxes that cannot be shown

    def refuse_boxes(self):
        """The windows of a running product, and no message box in any program."""
        library = self.tool("refuses_boxes.c", "-shared", "-Wl,--kill-at", kind=".dll")
        ready = f"{TOOLS}\\ready"
        self.start_tool(f"{SYSTEM_FOLDER}\\rundll32.exe", f"{library},refuse", ready)
        end = time.monotonic() + 30
        while not self.host(ready).exists():
            self.assertLess(time.monotonic(), end, "boxes are not refused")
            time.sleep(0.1)

    def test_no_box_can_ask_to_close_the_product(self):
        """The question has no answer, which counts as Cancel."""
        self.switch_on()
        self.refuse_boxes()
        self.play({"expect": {"boxes": [], "ended": "unload"}})
        self.assertFalse(self.host(INSTALL).exists())

    # ---- Cancel while the run is on

    def sizes(self, path):
        folder = self.host(path)
        return {each.name: each.stat().st_size for each in folder.iterdir()}

    def cancel_in_the_run(self, answer, *file):
        """Up to the question, which comes while the run is on: the person, and how to answer."""
        (self.machine.path(f"{INSTALL}\\x")).parent.mkdir(exist_ok=True)
        wine_machine.give(self.host(INSTALL))
        clicks = self.tool("clicks_in_the_run.c")
        self.switch_on()
        go = f"{TOOLS}\\go"
        person = self.start_tool(clicks, PROGRAM, answer, go, *file)
        self.assertEqual(person.stdout.readline().strip().split("|"),
                         ["box", "Screen Recorder", "&Yes", "&No", QUESTION])
        return person, lambda: self.make_file(go, "")

    def assert_stands_still(self):
        """The question stops the run: nothing is laid or copied while it is open."""
        before = self.sizes(INSTALL), self.sizes(TEMPORARY)
        time.sleep(0.5)
        self.assertEqual((self.sizes(INSTALL), self.sizes(TEMPORARY)), before)
        return before

    def assert_given_up(self, person, laid):
        self.assertEqual(person.stdout.read().split(), ["ended"])
        self.assertEqual(person.wait(30), 0)
        self.assertFalse(self.host(TEMPORARY).exists())
        self.assertEqual(self.sizes(INSTALL), laid)
        libraries = {each.installed for each in members() if each.target == "system"}
        self.assertFalse(libraries & self.names(SYSTEM_FOLDER))
        self.assertFalse(self.host("C:\\Users\\bob\\AppData\\Local\\Tavorns").exists())
        self.assertFalse(self.host(f"{SHARED_START_MENU}\\{GROUP}").exists())
        self.machine.stop()
        registry = (self.machine.prefix / "system.reg").read_text("utf-8", "replace")
        self.assertNotIn("ZEVScreenRecorder6", registry)

    def assert_finished(self, person):
        self.assertEqual(person.stdout.read().split(), ["finish", "ended"])
        self.assertEqual(person.wait(30), 0)
        self.assertFalse(self.host(TEMPORARY).exists())
        self.assertEqual(self.names(INSTALL), installed_names())
        self.machine.stop()
        registry = (self.machine.prefix / "system.reg").read_text("utf-8", "replace")
        self.assertIn("ZEVScreenRecorder6", registry)

    def test_install_and_cancel_together_and_yes(self):
        person, go = self.cancel_in_the_run("yes")
        self.assertEqual(self.assert_stands_still(), ({}, {}))
        go()
        self.assert_given_up(person, {})

    def test_install_and_cancel_together_and_no(self):
        person, go = self.cancel_in_the_run("no")
        self.assertEqual(self.assert_stands_still(), ({}, {}))
        go()
        self.assert_finished(person)

    def test_cancel_in_the_midst_of_the_copy_and_yes(self):
        person, go = self.cancel_in_the_run("yes", f"{INSTALL}\\Stop.wav")
        laid, work_files = self.assert_stands_still()
        self.assertIn("Stop.wav", laid)
        self.assertIn("Stop.wa_", work_files)
        go()
        self.assert_given_up(person, laid)

    def test_cancel_in_the_midst_of_the_copy_and_no(self):
        person, go = self.cancel_in_the_run("no", f"{INSTALL}\\Stop.wav")
        laid, _ = self.assert_stands_still()
        self.assertIn("Stop.wav", laid)
        go()
        self.assert_finished(person)


if __name__ == "__main__":
    BadMachineTest.work, BadMachineTest.package, BadMachineTest.driver = map(
        pathlib.Path, sys.argv[1:4])
    BadMachineTest.compiler, = sys.argv[4:]
    unittest.main(argv=sys.argv[:1], verbosity=2)
