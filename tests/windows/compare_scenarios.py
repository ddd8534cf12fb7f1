#!/usr/bin/env python3
"""Plays scenarios on the real program under Wine and on the simulated machine, and compares what can
be seen of both from outside, and what both leave behind.

    compare_scenarios.py WORK --driver zevdrive.exe --opener notes_start.exe
                         --program ZEVSetup.exe --image IMAGE.exe --simulator zevsim
                         FILE-OR-FOLDER...

A case of a table of scenarios is named behind its file, `table.json#case`.

The driver plays the script on the program's windows and writes the transcript of somebody in front of
the screen; the simulator writes the same transcript. They must be equal line by line, and so must the
end states: files with their bytes, registry, shortcuts, and what was started and opened. What Wine cannot carry is left out, by a
reason that is counted. What is Wine's own is mapped, by a rule that is counted.

Scenarios that need the same languages and drives share a machine, one after the other. Between two of
them every trace is taken back: files from the template, registry values by the driver, and what is
left running is ended. That is made sure of each time: the registry is written to the disk and must be
the first one again, the files are looked at again; a machine on which anything stays is thrown away.
"""

import argparse
import collections
import json
import os
import pathlib
import queue
import re
import shutil
import signal
import subprocess
import sys
import threading
import time

import scenario_machine
import wine_machine
from prefix_state import SEEN_BY_32_BITS, Drive, Files, Registry, attributes_of, read_link, sha256_of

TOOLS = "C:\\windows\\zevtest"  # nobody looks there
STARTS = f"{TOOLS}\\starts.txt"  # what was started notes it there
OPENER = f"{TOOLS}\\notes_start.exe"
TIMEOUT = 30
REFUSED = 4


# ---- machines


# What Wine's own shell notes again and again; no program under test asks for it.
SHELL_KEYS = re.compile(
    r"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\(?!User Shell Folders)", re.I)


# What Wine starts by itself when something asks for it.
SERVICES = re.compile(
    rb"C:\\windows\\system32\\((services|winedevice|plugplay|svchost|rpcss|conhost)\.exe"
    rb"|explorer\.exe\0/desktop)", re.I)


class BobMachine(wine_machine.Machine):
    """A machine whose user is bob, as the simulated one's is."""

    def __init__(self, folder, locale="", locales=None, width=64):
        super().__init__(folder, f"{locale}.UTF-8" if locale else "C.UTF-8", width)
        self.locales = locales

    def environment(self):
        own = {"USER": "bob", "LOGNAME": "bob", "ZEV_NOTE_STARTS": STARTS}
        if self.locales:
            own["LOCPATH"] = str(self.locales)
        return {**super().environment(), **own}


class BobTemplate(wine_machine.Template):
    """The usual machine of the scenarios: its paths are spelled as there, and the values of the AVI
    file services are as they should be."""

    def machine(self):
        return BobMachine(self.folder, width=self.width)

    def settings(self):
        return super().settings() + self.avi_values() + self.opener()

    def keep_to_itself(self, machine):
        super().keep_to_itself(machine)
        self.spell_as_usual(machine)

    @staticmethod
    def avi_values():
        lines = []
        for key, value in scenario_machine.AVI_VALUES.items():
            lines += ["", f"[HKEY_CLASSES_ROOT\\{key}]", f'@="{value}"']
        return "\n".join(lines) + "\n"

    @staticmethod
    def opener():
        """Who opens a folder: a program that notes it and has no window."""
        command = f'"{OPENER}" "%1"'.replace("\\", "\\\\").replace('"', '\\"')
        return ("\n[HKEY_CLASSES_ROOT\\Folder\\shell\\open\\command]\n"
                f'@="{command}"\n\n[-HKEY_CLASSES_ROOT\\Folder\\shell\\open\\ddeexec]\n')

    @staticmethod
    def leave_only(folder, *names):
        """What Wine puts into the folders of the user and of programs is in no scenario."""
        for entry in folder.iterdir():
            if entry.name not in names:
                shutil.rmtree(entry) if entry.is_dir() else entry.unlink()

    @staticmethod
    def spell_as_usual(machine):
        for name in ("system.reg", "user.reg", "userdef.reg"):
            file = machine.prefix / name
            text = file.read_text(encoding="utf-8", errors="surrogateescape")
            text = text.replace("C:\\\\users", "C:\\\\Users")
            text = text.replace("C:\\\\Users\\\\bob\\\\Temp",
                                "C:\\\\Users\\\\bob\\\\AppData\\\\Local\\\\Temp")
            file.write_text(text, encoding="utf-8", errors="surrogateescape")
        (machine.drive / "users").rename(machine.drive / "Users")
        BobTemplate.leave_only(machine.drive, "Program Files", "ProgramData", "Users", "windows")
        for folder in ("Program Files", "ProgramData"):
            BobTemplate.leave_only(machine.drive / folder)
        BobTemplate.leave_only(machine.drive / "Users", "bob")
        BobTemplate.leave_only(machine.drive / "Users" / "bob")
        for folder in scenario_machine.USUAL_FOLDERS:
            machine.path(folder + "\\x")
        for folder in ("Users", "ProgramData", "Program Files"):
            wine_machine.give(machine.drive / folder)
        for name in ("system.reg", "user.reg", "userdef.reg"):
            wine_machine.give(machine.prefix / name)


def make_locales(folder, names):
    """Locales that the host may not have, in a folder of their own."""
    folder.mkdir(parents=True, exist_ok=True)
    for name in names:
        target = folder / f"{name}.UTF-8"
        if not target.exists():
            subprocess.run(["localedef", "-i", name, "-f", "UTF-8", str(target)],
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if not target.exists():
            raise RuntimeError(f"localedef could not make the locale {name}")
    return folder


class Session:
    """A machine that plays one scenario after the other."""

    def __init__(self, settings, configuration):
        self.settings = settings
        self.configuration = configuration
        locale, drives = configuration
        self.template = BobTemplate(settings.work / "usual", settings.width)
        self.folder = self.template.copy()
        self.machine = BobMachine(self.folder, locale, settings.locales if locale else None,
                                  settings.width)
        # A program of 32 bits on 64-bit Windows sees folders and keys of its own.
        self.has_own_view = settings.of_32_bits and settings.width == 64
        self.drives = [Drive("C", self.machine.drive, ["windows/zevtest"],
                             SEEN_BY_32_BITS if self.has_own_view else {})]
        self.add_drives(drives)
        self.machine.__enter__()
        self.holder = self.hold()
        self.machine.put(settings.driver, f"{TOOLS}\\zevdrive.exe")
        self.machine.put(settings.opener, OPENER)
        self.machine.put(settings.program, scenario_machine.PROGRAM)
        wine_machine.give(self.machine.path(f"{TOOLS}\\x").parent)
        wine_machine.give(self.machine.path(scenario_machine.PROGRAM))
        self.warm_up()

    def hold(self):
        """A program that waits for ever: as long as one runs, Wine keeps its services and its
        desktop."""
        return self.machine.start("cmd.exe", stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL)

    def close(self):
        self.holder.stdin.close()
        wine_machine.end(self.holder)
        self.machine.__exit__(None, None, None)
        shutil.rmtree(self.folder, ignore_errors=True)

    def add_drives(self, drives):
        lines = ["", "[Software\\\\Wine\\\\Drives] 0"]
        for letter, kind in drives:
            folder = self.folder / "drives" / letter
            folder.mkdir(parents=True)
            (self.machine.prefix / "dosdevices" / f"{letter}:").symlink_to(folder)
            self.drives.append(Drive(letter, folder))
            lines.append(f'"{letter}:"="{kind}"')
        if drives:
            with open(self.machine.prefix / "system.reg", "a", encoding="utf-8") as file:
                file.write("\n".join(lines) + "\n")
            wine_machine.give(self.folder / "drives")

    def drive(self, document, *arguments):
        """Runs the driver on a scenario; its exit status and what it tells."""
        (self.machine.path(f"{TOOLS}\\s.json")).write_text(json.dumps(document))
        # A file, since what the program starts keeps a pipe open.
        told = self.folder / "told.txt"
        with open(told, "wb") as file:
            try:
                status = self.machine.run(f"{TOOLS}\\zevdrive.exe", f"{TOOLS}\\s.json",
                                          "--prepare", "--save-registry", TOOLS, *arguments,
                                          timeout=TIMEOUT + 30, stdout=subprocess.DEVNULL,
                                          stderr=file)
            except subprocess.TimeoutExpired:
                return 3, "zevdrive did not end"
        return status, told.read_text("utf-8", "replace").replace("\r\n", "\n")

    def warm_up(self):
        """Once the program has run, Wine has made whatever it makes when something runs."""
        for _ in range(2):
            self.drive({}, "--program", scenario_machine.PROGRAM, "--transcript",
                       f"{TOOLS}\\t.jsonl")
        self.processes = self.running()
        program = str(self.machine.path(scenario_machine.PROGRAM))
        self.files = Files(self.drives, self.template.folder / "prefix" / "drive_c",
                           {program: self.settings.program})
        self.registry = Registry(self.machine.path(f"{TOOLS}\\x").parent, self.has_own_view)

    def running(self):
        """Processes of this machine."""
        mark = f"WINEPREFIX={self.machine.prefix}".encode()
        found = set()
        for entry in os.listdir("/proc"):
            if not entry.isdigit():
                continue
            try:
                if mark in pathlib.Path(f"/proc/{entry}/environ").read_bytes().split(b"\0"):
                    found.add(int(entry))
            except OSError:
                continue
        return found

    def starts(self, expected):
        """What has noted its start; what was started last gets the time to."""
        file = self.machine.path(STARTS)
        end = time.monotonic() + LONGEST_NOTE
        while True:
            lines = file.read_text("utf-8").splitlines() if file.exists() else []
            if len(lines) >= expected or time.monotonic() > end:
                return [Start.noted(line) for line in lines]
            time.sleep(0.05)

    def end_what_is_left(self):
        """Ends programs that the scenario has started; Wine's own services stay."""
        for process in self.running() - self.processes:
            try:
                command = pathlib.Path(f"/proc/{process}/cmdline").read_bytes()
                if re.match(rb"[A-Za-z]:\\", command) and not SERVICES.match(command):
                    os.kill(process, signal.SIGKILL)
            except OSError:
                continue

    def play(self, plan, starts):
        """Plays a scenario: exit status, what the driver told, the transcript's lines, and what was
        started, which should be so many."""
        package = self.settings.package_of(plan)
        if package is not None or plan.installer != scenario_machine.PROGRAM:
            path = self.machine.path(plan.installer)
            path.write_bytes(package if package is not None else
                             self.settings.program.read_bytes())
            wine_machine.give(path.parent)
        transcript = self.machine.path(f"{TOOLS}\\t.jsonl")
        transcript.unlink(missing_ok=True)
        self.machine.path(STARTS).unlink(missing_ok=True)
        status, told = self.drive(plan.driven(), "--program", plan.installer, "--transcript",
                                  f"{TOOLS}\\t.jsonl", "--timeout", str(TIMEOUT))
        started = self.starts(starts)
        self.end_what_is_left()
        self.files.look()
        self.registry.look()
        lines = transcript.read_text(encoding="utf-8").splitlines() if transcript.exists() else []
        return status, told, lines, started

    def reset(self):
        """Takes every trace back. What stays nevertheless: then the machine is of no more use."""
        back = self.registry.way_back()
        if back:
            self.drive({"machine": {"registry": back}})
            self.registry.look()
        self.files.take_back()
        self.files.look()
        return ([f"{hive}\\{key}" for hive, key in self.registry.changed()
                 if not SHELL_KEYS.match(key)] + list(self.files.new()))


# ---- what was started


LONGEST_NOTE = 5  # seconds

# Programs that the package brings: they note their start. What a scenario lays under the name of a
# program is none.
NOTING = ("vcredist_x86.exe", "Screen Recorder 6.exe")


class Start(collections.namedtuple("Start", "what style directory")):
    """A program by its command line, or what was opened, by its path and without a folder."""

    @staticmethod
    def noted(line):
        style, directory, command = line.split("\t")
        if command.lower().startswith(f'"{OPENER.lower()}"'):
            return Start(command[len(OPENER) + 2:].strip().strip('"'), int(style), None)
        return Start(command.strip(), int(style), directory.rstrip("\\"))

    @staticmethod
    def expected(state):
        programs = [Start(each["command"], each["style"], each["directory"].rstrip("\\"))
                    for each in state["started"]
                    if each["command"].strip('"').endswith(NOTING)]
        return programs + [Start(each["path"], each["style"], None) for each in state["opened"]]


def compare_starts(noted, expected):
    return ([f"started only on the simulated machine: {each}" for each in expected
             if each not in noted] +
            [f"started only on the real one: {each}" for each in noted if each not in expected])


# ---- what is Wine's own


class Mapping:
    """Counts the rules that were needed."""

    def __init__(self):
        self.counts = collections.Counter()
        self.lock = threading.Lock()

    def used(self, rule):
        with self.lock:
            self.counts[rule] += 1


def usual_spelling(text):
    return re.sub(r"[Cc]:\\windows", r"C:\\Windows", text)


def mapped(line, mapping):
    """A line of a transcript with what depends on Wine's fonts and on the host's disk taken out."""
    spelled = re.sub(r"[Cc]:\\\\windows\b", r"C:\\\\Windows", line, flags=re.I)
    if spelled != line and "C:\\\\windows" in line:
        mapping.used("Wine writes C:\\windows")
    event = json.loads(spelled)
    place = event.get("control"), event.get("property")
    if place == ("Form1.Label12", "Caption") and "\\" in event["value"]:
        mapping.used("a path shortened to the width of its font")
        event["value"] = event["value"].rpartition("\\")[2]
    if place == ("Form3.Label3", "Caption"):
        mapping.used("the free space of the host's disk")
        return None
    return event


# ---- comparing


def compare_lines(real, simulated, mapping):
    ours = [event for line in real if (event := mapped(line, mapping))]
    theirs = [event for line in simulated if (event := mapped(line, mapping))]
    for place, (one, other) in enumerate(zip(ours, theirs), 1):
        if one != other:
            return [f"line {place}: real {json.dumps(one, ensure_ascii=False)[:400]}",
                    f"line {place}: simulated {json.dumps(other, ensure_ascii=False)[:400]}"]
    if len(ours) != len(theirs):
        longer, name = (ours, "real") if len(ours) > len(theirs) else (theirs, "simulated")
        first = longer[min(len(ours), len(theirs))]
        return [f"only {name}: {json.dumps(first, ensure_ascii=False)[:400]}"]
    return []


def compare_files(files, state, known, mapping):
    """`known`: sums of files that need not be read, by their upper-case paths."""
    differences = []
    present = files.by_path()
    new = {path.upper(): path for path in files.new()}
    expected = {path.upper(): (path, facts) for path, facts in state["files"].items()}
    for upper, (path, facts) in expected.items():
        host = present.get(upper)
        if host is None:
            differences.append(f"only simulated: {path}")
        elif facts.get("directory", False) != os.path.isdir(host):
            differences.append(f"file and folder: {path}")
        elif not upper.endswith(".LNK"):
            differences += compare_file(path, host, facts, known)
    for upper, path in new.items():
        if upper not in expected:
            differences.append(f"only real: {path}")
    return differences


def compare_file(path, host, facts, known):
    differences = []
    if attributes_of(host) != facts.get("attributes", []):
        differences.append(f"attributes of {path}: real {attributes_of(host)}, simulated "
                           f"{facts.get('attributes', [])}")
    if "size" in facts and os.path.getsize(host) != facts["size"]:
        differences.append(f"size of {path}: real {os.path.getsize(host)}, simulated "
                           f"{facts['size']}")
    elif "sha256" in facts and known.get(path.upper()) != facts["sha256"]:
        if sha256_of(host) != facts["sha256"]:
            differences.append(f"content of {path}")
    return differences


# Keys that Wine writes by itself while a program runs, or that were prepared for the scenario.
OWN_KEYS = re.compile(
    r"(Software\\Wine\b|System\\|Hardware\\|Volatile Environment|Control Panel\\|"
    r"Software\\Microsoft\\Windows\\CurrentVersion\\(Explorer|RunMRU)\b|"
    r"Software\\Microsoft\\Windows( NT)?\\CurrentVersion\\(Fonts|FontLink)\b)", re.I)


def compare_registry(registry, state):
    differences = []
    expected = set()
    for hive, keys in state["registry"].items():
        for key, values in keys.items():
            expected.add((hive, key.upper()))
            found = registry.values(hive, key)
            if found is None:
                if not is_link_to_nowhere(values, keys, key):
                    differences.append(f"key only simulated: {hive}\\{key}")
                continue
            differences += compare_values(f"{hive}\\{key}", found, values)
    for (hive, key), values in registry.changed().items():
        if values is None or OWN_KEYS.match(key) or (hive, key.upper()) in expected:
            continue
        differences.append(f"key only real: {hive}\\{key} {json.dumps(values)[:200]}")
    return differences


def is_link_to_nowhere(values, keys, key):
    """A key without values that is there only for keys below it: the server writes no block of its
    own for it."""
    return not values and any(each.upper().startswith(key.upper() + "\\") for each in keys)


def before_nul(value):
    """A text counts up to its first NUL."""
    if value and value["type"] in (1, 2):
        return {**value, "value": value["value"].partition("\0")[0]}
    return value


def compare_values(key, found, expected):
    differences = []
    real = {name.upper(): value for name, value in found.items()}
    for name, value in expected.items():
        mine = real.pop(name.upper(), None)
        if before_nul(mine) != before_nul(value):
            differences.append(f"value {key}|{name}: real {mine}, simulated {value}")
    return differences


def compare_links(files, state, code_page):
    differences = []
    present = files.by_path()
    for path, properties in state["shortcuts"].items():
        host = present.get(path.upper())
        if host is None:
            continue  # told among the files
        link = read_link(host, code_page)
        icon, _, index = properties["IconLocation"].rpartition(",")
        if not index.strip().lstrip("-").isdigit():
            icon, index = properties["IconLocation"], "0"
        wanted = {**properties, "Icon": icon, "IconIndex": int(index)}
        del wanted["IconLocation"]
        for name, value in wanted.items():
            if link[name] != value:
                differences.append(f"{name} of {path}: real {link[name]!r}, simulated {value!r}")
    return differences


# ---- one scenario


def is_of_32_bits(image):
    """By the machine that the header of an image names."""
    header = int.from_bytes(image[0x3C:0x40], "little")
    return image[header + 4:header + 6] == b"\x4c\x01"


class Settings:
    """What all scenarios have in common."""

    def __init__(self, options):
        self.work = pathlib.Path(options.work).resolve()
        self.driver = pathlib.Path(options.driver).resolve()
        self.opener = pathlib.Path(options.opener).resolve()
        self.program = pathlib.Path(options.program).resolve()
        self.simulator = pathlib.Path(options.simulator).resolve()
        self.package = self.program.read_bytes()
        self.program_sum = sha256_of(self.program)
        self.image_size = pathlib.Path(options.image).stat().st_size
        self.locales = self.work / "locales"
        self.width = options.width
        self.windows = options.windows
        self.of_32_bits = is_of_32_bits(self.package)

    def package_of(self, plan):
        """The bytes of a package that is not the usual one."""
        return scenario_machine.make_package(plan, self.package) if plan.package else None

    def plan(self, path):
        return scenario_machine.plan_of(path, self.simulator, self.image_size, len(self.package),
                                        self.windows)


class Simulation:
    """One play on the simulated machine."""

    def __init__(self, settings, plan, folder):
        scenario = plan.path
        if plan.without_members:
            scenario = folder / "simulated.json"
            document = {**plan.document, "package": plan.package}
            for entry in document.get("machine", {}).get("files", {}).values():
                if isinstance(entry, dict) and "host" in entry:
                    entry["host"] = str((plan.path.parent / entry["host"]).resolve())
            scenario.write_text(json.dumps(document))
        outside, state = folder / "outside.jsonl", folder / "state.json"
        played = subprocess.run(
            [str(settings.simulator), str(scenario), "--package", str(settings.program),
             "--transcript", "/dev/null", "--outside", str(outside), "--state", str(state)],
            stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
        self.status = played.returncode
        self.told = played.stderr.decode("utf-8", "replace")
        self.usable = self.status in (0, 1)
        if self.usable:
            self.lines = outside.read_text(encoding="utf-8").splitlines()
            self.state = json.loads(state.read_text(encoding="utf-8"))


class Result:
    def __init__(self, path):
        self.path = path
        self.left_out = None
        self.differences = []
        self.failed = False  # the machine may be in any state
        self.seconds = 0.0
        self.not_seen = collections.Counter()


# Expectations that cannot hold under Wine, and why.
OWN_EXPECTATIONS = (
    ("Wine's own files in the Windows folder",
     re.compile(r'"dir:C:\\+(Windows(\\+system32)?)?\\*"', re.I)),
    ("the free space of the host's disk", re.compile(r'Form3\.Label3\.Caption')),
    ("folders of all users, which Wine makes", re.compile(r'"dir:C:\\+Users\\+Public"', re.I)),
)


def failed_expectations(told):
    return set(re.findall(r"^FAILED (.*)$", told, re.M))


# What the driver does not judge, but the end of both machines tells.
COMPARED_IN_THE_END = ("shell", "opened", "shortcut")


def judge(settings, plan, session, result, mapping):
    folder = session.folder / "simulated"
    folder.mkdir(exist_ok=True)
    simulation = Simulation(settings, plan, folder)
    if not simulation.usable:
        result.differences.append(f"the simulator cannot play it: {simulation.told.strip()}")
        return
    starts = Start.expected(simulation.state)
    status, told, lines, started = session.play(plan, len(starts))
    if status == REFUSED:
        result.left_out = told.strip().removeprefix("not played: ")
        return
    if status not in (0, 1):
        result.differences.append(f"the driver ended with {status}: {told.strip()[:500]}")
        result.failed = True
    result.differences += compare_lines(lines, simulation.lines, mapping)
    known = {scenario_machine.PROGRAM.upper(): settings.program_sum} if not plan.package else {}
    result.differences += compare_files(session.files, simulation.state, known, mapping)
    result.differences += compare_registry(session.registry, simulation.state)
    result.differences += compare_links(session.files, simulation.state,
                                        plan.machine.get("codePage", 1252))
    result.differences += compare_starts(started, starts)
    for place in sorted(failed_expectations(told) - failed_expectations(simulation.told)):
        rule = next((rule for rule, pattern in [*OWN_EXPECTATIONS, *plan.own_expectations]
                     if pattern.search(place)), None)
        if rule:
            mapping.used(rule)
            continue
        result.differences.append(f"expectation that held only on the simulated machine: {place}")
    for key, count in re.findall(r"^not seen: (.*) \((\d+)\)$", told, re.M):
        kind = key.split(":")[0]
        if kind not in COMPARED_IN_THE_END:
            result.not_seen[kind] += int(count)


# ---- all of them


class Runner:
    def __init__(self, settings, mapping):
        self.settings = settings
        self.mapping = mapping
        self.work = queue.Queue()
        self.results = []
        self.lock = threading.Lock()
        self.machines = 0
        self.played_again = set()
        self.thrown_away = collections.Counter()  # by the first thing that stayed

    def run(self, plans, jobs, tell):
        for plan in sorted(plans, key=lambda each: (each.configuration(), str(each.path))):
            self.work.put(plan)
        workers = [threading.Thread(target=self.worker, args=(tell,)) for _ in range(jobs)]
        for worker in workers:
            worker.start()
        for worker in workers:
            worker.join()

    def worker(self, tell):
        session = None
        try:
            while True:
                plan = self.work.get_nowait()
                session = self.session_for(plan, session)
                session = self.one(plan, session, tell)
        except queue.Empty:
            pass
        finally:
            if session:
                session.close()

    def play_again(self, plan, result):
        """A machine can fail to start a program at all, now and then: such a play, not one that came
        to its end and differs, gets a second machine. It is told."""
        self.played_again.add(plan.path)
        print(f"PLAYED AGAIN {short(plan.path)}: {result.differences[0]}", flush=True)
        self.work.put(plan)

    def session_for(self, plan, session):
        if session and session.configuration == plan.configuration():
            return session
        if session:
            session.close()
        with self.lock:
            self.machines += 1
        return Session(self.settings, plan.configuration())

    def one(self, plan, session, tell):
        result = Result(plan.path)
        begin = time.monotonic()
        try:
            judge(self.settings, plan, session, result, self.mapping)
            stays = ["a play that failed"] if result.failed else session.reset()
        except (OSError, subprocess.SubprocessError, ValueError, KeyError) as error:
            result.differences.append(f"not compared: {type(error).__name__}: {error}")
            stays = ["an unknown state"]
            result.failed = True
        result.seconds = time.monotonic() - begin
        with self.lock:
            if result.failed and plan.path not in self.played_again:
                self.play_again(plan, result)
            else:
                self.results.append(result)
                tell(result)
        if stays:
            self.thrown_away[stays[0]] += 1
            session.close()
            return None
        return session


def scenario_files(places):
    """Those of the files, and of the files in the folders; of a table each case, but for one that is
    named (`table.json#case`)."""
    found = []
    for place in map(pathlib.Path, places):
        if ".json#" in place.name:
            found.append(place)
            continue
        for file in sorted(place.rglob("*.json")) if place.is_dir() else [place]:
            if file.name != scenario_machine.COMMON:
                found += scenario_machine.scenarios_of(file)
    return found


def short(path):
    return os.path.relpath(path)


def tell_result(result):
    if not result.differences:
        return
    print(f"DIFFERENT {short(result.path)}")
    for each in result.differences[:12]:
        print(f"    {each}")
    if len(result.differences) > 12:
        print(f"    and {len(result.differences) - 12} more")
    sys.stdout.flush()


def tell_all(runner, left_out, mapping, seconds):
    for result in runner.results:
        if result.left_out:
            left_out[result.left_out].append(result.path)
    compared = [each for each in runner.results if not each.left_out]
    different = [each for each in compared if each.differences]
    not_seen = sum((each.not_seen for each in compared), collections.Counter())
    print(f"\n{len(compared) - len(different)} compared and equal, {len(different)} different, "
          f"{sum(map(len, left_out.values()))} left out "
          f"({seconds:.0f} s, {runner.machines} machines, {sum(runner.thrown_away.values())} thrown away)")
    for reason, paths in sorted(left_out.items(), key=lambda each: -len(each[1])):
        print(f"  left out {len(paths):4}  {reason}")
    for trace, count in runner.thrown_away.most_common():
        print(f"  stays    {count:4}  {trace}")
    for rule, count in mapping.counts.most_common():
        print(f"  mapped   {count:4}  {rule}")
    for key, count in not_seen.most_common(12):
        print(f"  not seen {count:4}  {key}")
    return 1 if different or not compared else 0


# ---- how many there are at least


# A machine that fails to start a program is played again; more often than so is a fault to look at.
MOST_PLAYED_AGAIN = 3


def counts_of(runner, left_out):
    compared = sum(not each.left_out for each in runner.results)
    return {"compared": compared,
            "left out": {reason: len(paths) for reason, paths in sorted(left_out.items())}}


def below_floor(floor, now):
    """What has shrunk unseen: fewer are compared, or more are left out for one reason."""
    if now["compared"] < floor["compared"]:
        yield f"{now['compared']} scenarios were compared, {floor['compared']} are known"
    for reason, count in now["left out"].items():
        known = floor["left out"].get(reason, 0)
        if count > known:
            yield f"{count} scenarios were left out and not {known}: {reason}"


def hold_floor(path, runner, left_out, keep):
    """Holds the counts against those that are kept in a file, or keeps them; 1 if they shrink."""
    now = counts_of(runner, left_out)
    if keep:
        path.write_text(json.dumps(now, indent=2) + "\n")
        return 0
    complaints = list(below_floor(json.loads(path.read_text()), now))
    again = len(runner.played_again)
    if again > MOST_PLAYED_AGAIN:
        complaints.append(f"{again} scenarios were played again, {MOST_PLAYED_AGAIN} may be")
    for each in complaints:
        print(f"FEWER {each} ({short(path)})")
    return 1 if complaints else 0


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("work", help="folder for machines, shared with other tests")
    parser.add_argument("places", nargs="+", help="scenarios, or folders of them")
    parser.add_argument("--driver", required=True, help="zevdrive.exe")
    parser.add_argument("--opener", required=True, help="notes_start.exe")
    parser.add_argument("--program", required=True, help="the packed ZEVSetup.exe")
    parser.add_argument("--image", required=True, help="the image in front of its package")
    parser.add_argument("--simulator", required=True, help="zevsim")
    parser.add_argument("--width", type=int, choices=(32, 64), default=64, help="bits of Windows")
    parser.add_argument("--windows", help="Wine's name for the Windows that it answers as, whatever "
                        "the scenario says")
    parser.add_argument("--only", default="", help="only scenarios whose path matches this")
    parser.add_argument("--sample", type=int, default=1, help="only every n-th of them")
    parser.add_argument("--jobs", type=int, default=2, help="machines beside each other")
    parser.add_argument("--floor", type=pathlib.Path,
                        help="how many are compared and left out at least, and at most")
    parser.add_argument("--keep-floor", action="store_true", help="writes that file anew")
    parser.add_argument("--all", action="store_true", help="one that is left out is a failure")
    parser.add_argument("--list", action="store_true", help="also name those that are left out")
    return parser.parse_args()


def main():
    options = parse_arguments()
    settings = Settings(options)
    files = [each for each in scenario_files(options.places)
             if re.search(options.only, str(each))][::options.sample]
    plans, left_out = [], collections.defaultdict(list)
    for file in files:
        try:
            plans.append(settings.plan(file))
        except scenario_machine.LeftOut as reason:
            left_out[str(reason)].append(file)
    make_locales(settings.locales, {plan.locale for plan in plans if plan.locale})
    begin = time.monotonic()
    mapping = Mapping()
    runner = Runner(settings, mapping)
    runner.run(plans, options.jobs, tell_result)
    status = tell_all(runner, left_out, mapping, time.monotonic() - begin)
    if options.floor:
        status = max(status, hold_floor(options.floor, runner, left_out, options.keep_floor))
    if options.all and left_out:
        status = 1
    if options.list or options.all:
        for reason, paths in sorted(left_out.items()):
            for path in paths:
                print(f"left out: {short(path)}: {reason}")
    return status


if __name__ == "__main__":
    sys.exit(main())
