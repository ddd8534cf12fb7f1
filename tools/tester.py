#!/usr/bin/env python3
"""Builds the project and runs its tests: what ./test does once the packages are there.

A stage is a preset: it is configured and built, and then its suites wait for a free worker, while the
next stage is built. What suites there are, each build says itself (suites.json). Every case is told by
its name in build/cases.tsv: preset, suite, case, result, seconds. build/times.md says where the time
went.
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

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build"
LOGS = BUILD / "logs"
FLOORS = ROOT / "tests" / "floors.json"
DURATIONS = BUILD / "durations.json"

# A stage: its preset, what it is called, and what it builds besides its suites' programs. Suites under
# Wine wait a lot, so their stage comes early: others work meanwhile.
Stage = collections.namedtuple("Stage", "preset title also only_all")
STAGES = [
    Stage("run", "programs and package", ["zevpack", "zevsim", "sample_package"], False),
    Stage("windows-x86", "program for Windows", [], False),
    Stage("check", "suites under sanitizers", [], False),
    Stage("linux-x86", "routing code on 32-bit x86", [], False),
    Stage("windows-x64", "program for 64-bit Windows", [], True),
    Stage("release", "each file by itself, and benchmarks", ["all"], True),
]

# Rooms whose tests are found under another name.
ALIASES = {"win32": "windows", "programs": "scenarios"}

SPACE_NEEDED = 8 << 30  # bytes that the builds of `all` take, with room above


def cores():
    return len(os.sched_getaffinity(0))


def clock(seconds):
    return f"{int(seconds) // 60}:{int(seconds) % 60:02d}"


# ---- what is told


class Screen:
    """Lines about stages and failures; on a terminal also one that moves."""

    def __init__(self):
        self.moving = sys.stdout.isatty()
        self.lock = threading.RLock()
        self.begin = time.monotonic()
        self.shown = False

    def line(self, text):
        with self.lock:
            self.wipe()
            print(text, flush=True)

    def wipe(self):
        if self.shown:
            print("\r\x1b[K", end="")
            self.shown = False

    def bar(self, part, text):
        if not self.moving:
            return
        with self.lock:
            width = 24
            full = int(width * min(max(part, 0), 1))
            line = f"[{'#' * full}{'.' * (width - full)}] {text}"
            columns = shutil.get_terminal_size().columns - 1
            print("\r\x1b[K" + line[:columns], end="", flush=True)
            self.shown = True


# ---- processes


def wait_for(process):
    """Waits for a process; its exit status and the processor time of it and its children, seconds."""
    try:
        _, status, usage = os.wait4(process.pid, 0)
    except ChildProcessError:  # somebody who ended it was first
        return process.wait(), 0.0
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_utime + usage.ru_stime


class Processes:
    """All that runs, so that nothing is left running."""

    def __init__(self):
        self.lock = threading.Lock()
        self.running = set()
        self.over = False

    def start(self, command, **options):
        with self.lock:
            if self.over:
                raise KeyboardInterrupt
            process = subprocess.Popen(command, cwd=ROOT, stdin=subprocess.DEVNULL,
                                       start_new_session=True, **options)
            self.running.add(process)
        return process

    def forget(self, process):
        with self.lock:
            self.running.discard(process)

    @staticmethod
    def end(process):
        """Asks the process and its children to end, and then ends them."""
        for kind, patience in ((signal.SIGTERM, 20), (signal.SIGKILL, 5)):
            try:
                os.killpg(process.pid, kind)
            except ProcessLookupError:
                return
            try:
                process.wait(patience)
            except subprocess.TimeoutExpired:
                continue
        process.wait()

    def end_all(self):
        with self.lock:
            self.over = True
            left = list(self.running)
        for process in left:
            self.end(process)


# ---- suites


class Suite:
    def __init__(self, preset, row):
        self.preset = preset
        self.name = row["name"]
        self.room = row["room"]
        self.kind = row["kind"]
        self.core = row["core"]
        self.shards = row["shards"]
        self.timeout = row["timeout"]
        self.targets = row["targets"]
        self.environment = dict(each.split("=", 1) for each in row["environment"])
        self.command = row["command"]
        self.filter = row["filter"]

    @property
    def key(self):
        return f"{self.preset}/{self.name}"

    def filter_without(self, done):
        """The words that choose this suite's cases of its program, less those done."""
        if not done:
            return [f"--gtest_filter={self.filter}"] if self.filter else []
        return [f"--gtest_filter={narrowed(self.filter, done)}"]


def narrowed(filter_, cases):
    """A filter of cases that leaves out these as well."""
    return filter_ + (":" if "-" in filter_ else "-") + ":".join(cases)


def suites_of(preset):
    path = BUILD / preset / "suites.json"
    return [Suite(preset, json.loads(line)) for line in path.read_text().splitlines() if line]


Case = collections.namedtuple("Case", "name result seconds output")

RUN = re.compile(r"^\[ RUN      \] (.+)$")
END = re.compile(r"^\[ +(OK|FAILED|SKIPPED) +\] (.+?)(?:, where .*)? \((\d+) ms\)$")
ENDED = re.compile(r"^\[==========\] \d+ tests? from \d+ test suites? ran\.")


class GtestReader:
    """Takes the lines of a GoogleTest program apart into cases."""

    def __init__(self, tell):
        self.tell = tell
        self.name = None
        self.output = []
        self.done = []
        self.ended = False

    def read(self, line):
        if match := RUN.match(line):
            self.name, self.output = match[1], []
        elif (match := END.match(line)) and match[2] == self.name:
            self.finish(match[1].lower(), int(match[3]) / 1000)
        elif ENDED.match(line):
            self.ended = True
        elif self.name:
            self.output.append(line)

    def finish(self, result, seconds):
        self.done.append(self.name)
        self.tell(Case(self.name, result, seconds, self.output))
        self.name = None


class UnittestReader:
    """Takes the lines of Python's unittest (-v) apart into cases. What failed is told at the end."""

    NAME = re.compile(r"^(test_\w+) \(([\w.]+)\)")
    RESULT = re.compile(r"(?:^|\.\.\. )(ok|FAIL|ERROR|skipped .*)$")
    FAILURE = re.compile(r"^(?:FAIL|ERROR): (\w+) \(([\w.]+)\)")
    RESULTS = {"ok": "ok", "FAIL": "failed", "ERROR": "failed"}

    def __init__(self):
        self.name = None
        self.begin = time.monotonic()
        self.cases = {}
        self.outputs = {}
        self.ended = False

    @staticmethod
    def title(match):
        """The last two of its names, in whatever module and however Python tells them."""
        names = match[2].split(".")
        if names[-1] == match[1]:
            names.pop()
        return f"{names[-1]}.{match[1]}"

    def read(self, line):
        self.ended = self.ended or line.startswith("Ran ")
        if match := self.FAILURE.match(line):
            self.name = None
            self.output = self.outputs.setdefault(self.title(match), [])
        elif self.outputs:
            self.output.append(line)
        elif match := self.NAME.match(line):
            self.name = self.title(match)
        if self.name and (match := self.RESULT.search(line)):
            self.finish(self.RESULTS.get(match[1], "skipped"))

    def finish(self, result):
        now = time.monotonic()
        self.cases[self.name] = (result, now - self.begin)
        self.begin = now
        self.name = None

    def told(self):
        """The cases, the failed ones with what they told."""
        names = [*self.cases, *(name for name in self.outputs if name not in self.cases)]
        for name in names:
            result, seconds = self.cases.get(name, ("failed", 0.0))
            output = self.outputs.get(name, [])
            yield Case(name, "failed" if output else result, seconds, output)


class Job:
    """A suite, or one of its shards, run in a process of its own."""

    def __init__(self, suite, shard, shards, words=()):
        self.suite, self.shard, self.shards = suite, shard, shards
        self.words = list(words)
        self.spent = 0.0
        number = f".{shard}" if shards > 1 else ""
        self.key = f"{suite.key}{number}"
        self.log = LOGS / suite.preset / f"{suite.name}{number}.log"

    def environment(self):
        own = dict(self.suite.environment, GTEST_COLOR="no")
        if self.shards > 1:
            own.update(GTEST_TOTAL_SHARDS=str(self.shards), GTEST_SHARD_INDEX=str(self.shard))
        return {**os.environ, **own}

    def run(self, processes, tell):
        self.log.parent.mkdir(parents=True, exist_ok=True)
        with open(self.log, "w", errors="replace") as log:
            if self.suite.kind == "gtest":
                self.run_gtest(processes, tell, log)
            elif self.suite.kind == "unittest":
                self.run_unittest(processes, tell, log)
            else:
                self.run_script(processes, tell, log)

    def process(self, processes, words, log, read):
        """Runs the command to its end; its exit status, or None if it took too long. The processor
        time is added to `spent`."""
        process = processes.start([*self.suite.command, *words], env=self.environment(),
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                  errors="replace")
        late = threading.Event()

        def stop():
            late.set()
            processes.end(process)

        timer = threading.Timer(self.suite.timeout, stop)
        timer.start()
        try:
            for line in process.stdout:
                log.write(line)
                read(line.rstrip("\r\n"))
            status, spent = wait_for(process)
            self.spent += spent
        finally:
            timer.cancel()
            processes.forget(process)
        return None if late.is_set() else status

    def run_gtest(self, processes, tell, log):
        """A crash is the failure of the case that ran; the others are run all the same."""
        done = []
        while True:
            reader = GtestReader(tell)
            words = [*self.words, *self.suite.filter_without(done)]
            status = self.process(processes, words, log, reader.read)
            done += reader.done
            if reader.name is None:
                break
            why = "took too long" if status is None else f"ended the process (status {status})"
            reader.output.append(f"The case {why}.")
            reader.finish("failed", 0)
            done.append(reader.done[-1])
            if status is None:
                break
        if not reader.ended:
            tell(Case("(end)", "failed", 0, [f"{len(done)} cases ran and then no more: "
                                             f"{self.suite.command[0]} ended with status {status}; "
                                             f"see {self.log}"]))
        elif status not in (0, 1):
            tell(Case("(end)", "failed", 0, [f"The process ended with status {status} behind its "
                                             f"last case."]))

    def run_unittest(self, processes, tell, log):
        reader = UnittestReader()
        status = self.process(processes, self.words, log, reader.read)
        failed = False
        for case in reader.told():
            failed = failed or case.result == "failed"
            tell(case)
        if not reader.ended or (status != 0 and not failed):
            why = "took too long" if status is None else f"ended with status {status}"
            tell(Case("(end)", "failed", 0, [f"The suite {why}; see {self.log}"]))

    def run_script(self, processes, tell, log):
        begin = time.monotonic()
        lines = collections.deque(maxlen=60)
        status = self.process(processes, self.words, log, lines.append)
        if status is None:
            lines.append(f"It took longer than {self.suite.timeout} s.")
        tell(Case(self.suite.name, "ok" if status == 0 else "failed", time.monotonic() - begin,
                  list(lines)))


def package_fits():
    """Whether the package of the last build is one that the tests of a room can install. Its image, which
    they do not run, may be older than its code."""
    zevpack = BUILD / "run" / "src" / "programs" / "zevpack" / "zevpack"
    package = BUILD / "run" / "package" / "ZEVSetup.exe"
    build = ["ninja", "-C", str(BUILD / "run"), "zevpack"]
    return package.exists() and all(
        subprocess.run(each, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0
        for each in (build, [zevpack, "verify", package]))


# ---- the whole


class Tester:
    def __init__(self, chosen, everything, rooms):
        self.stages, self.everything, self.rooms = chosen, everything, rooms
        self.screen = Screen()
        self.processes = Processes()
        self.jobs = queue.PriorityQueue()
        self.lock = threading.Lock()
        self.counts = collections.Counter()
        self.per_suite = collections.Counter()
        self.durations = json.loads(DURATIONS.read_text()) if DURATIONS.exists() else {}
        self.known = len(self.durations)
        self.building = ""
        self.build_part = (0, 1)
        self.jobs_left = 0
        self.order = 0
        self.shown_failures = 0
        self.cases = None
        self.built = False
        self.spent = collections.Counter()
        self.walls = {}

    # -- telling

    def told(self, suite, log, case):
        with self.lock:
            self.counts[case.result] += 1
            self.per_suite[suite.key] += 1
            self.cases.write(f"{suite.preset}\t{suite.name}\t{case.name}\t{case.result}\t"
                             f"{case.seconds:.3f}\n")
        if case.result == "failed":
            self.show_failure(f"{suite.preset}: {suite.name}: {case.name}", case.output, log)

    def show_failure(self, name, output, log):
        with self.lock:
            self.shown_failures += 1
            number = self.shown_failures
        if number > 20:
            return
        lines = [f"FAILED {name}"] + ["    " + line for line in output[-40:]]
        lines.append(f"  The whole of it: {os.path.relpath(log, os.getcwd())}")
        self.screen.line("\n".join(lines))

    def fail(self, name, reason, log=None):
        with self.lock:
            self.counts["failed"] += 1
        self.screen.line(f"FAILED {name}: {reason}")
        if log and log.exists():
            if "No space left on device" in log.read_text(errors="replace"):
                self.screen.line("    The disk is full where the project lies.")
            complaints = [line for line in log.read_text(errors="replace").splitlines()
                          if re.search(r"error|FAILED|Error|undefined reference", line)]
            tail = complaints[:20] or log.read_text(errors="replace").splitlines()[-20:]
            self.screen.line("\n".join("    " + line for line in tail))
            self.screen.line(f"  The whole of it: {os.path.relpath(log, os.getcwd())}")

    def progress(self):
        while not self.over.wait(0.5):
            number, of = self.build_part
            done = sum(self.counts.values())
            text = f"{clock(time.monotonic() - self.screen.begin)}  {done} cases"
            if self.counts["failed"]:
                text += f", {self.counts['failed']} failed"
            if self.building:
                text += f"; building the {self.building} ({number}/{of})"
            if self.jobs_left:
                text += f"; {self.jobs_left} runs left"
            self.screen.bar(self.part(), text)

    def part(self):
        whole = len(self.stages) * 2
        built = self.stages_built + (self.build_part[0] / max(self.build_part[1], 1)
                                     if self.building else 0)
        tests = len(self.stages) * (1 - self.jobs_left / max(self.order, 1)) if self.order else 0
        return (built + min(tests, built)) / whole

    # -- building

    def spend(self, what, seconds):
        with self.lock:
            self.spent[what] += seconds

    def command(self, command, log):
        with open(log, "a", errors="replace") as out:
            process = self.processes.start(command, stdout=subprocess.PIPE,
                                           stderr=subprocess.STDOUT, text=True, errors="replace")
            try:
                for line in process.stdout:
                    out.write(line)
                    if match := re.match(r"^\[(\d+)/(\d+)\]", line):
                        self.build_part = (int(match[1]), int(match[2]))
                status, spent = wait_for(process)
                self.spend(self.building, spent)
                return status
            finally:
                self.processes.forget(process)

    def build(self, stage):
        """Configures and builds a stage; its suites, or None if that failed."""
        log = LOGS / f"{stage.preset}.build.log"
        log.unlink(missing_ok=True)
        begin = time.monotonic()
        self.building, self.build_part = stage.title, (0, 1)
        if self.configure(stage, log) != 0:
            return self.fail(stage.title, "the build could not be configured", log)
        suites = self.choose(stage)
        if self.rooms and not suites:
            return []
        if self.make(stage, self.targets(stage, suites), log) != 0:
            return self.fail(stage.title, "the build failed", log)
        self.walls[stage.title] = time.monotonic() - begin
        self.screen.line(f"{clock(time.monotonic() - self.screen.begin):>6}  built the "
                         f"{stage.title} ({time.monotonic() - begin:.0f} s)")
        return suites

    def configure(self, stage, log):
        """Once; later only if what the build is made of says so, which Ninja knows but of the presets."""
        made = BUILD / stage.preset / "build.ninja"
        presets = ROOT / "CMakePresets.json"
        if not made.exists() or made.stat().st_mtime < presets.stat().st_mtime:
            return self.command(["cmake", "--preset", stage.preset], log)
        return self.command(["ninja", "-C", str(made.parent), made.name], log)

    def targets(self, stage, suites):
        if self.everything and "all" in stage.also:
            return ["all"]
        of_suites = {target for suite in suites for target in suite.targets}
        if not self.rooms:
            return sorted(of_suites | set(stage.also))
        if stage.also and not package_fits():
            of_suites |= set(stage.also)
        return sorted(of_suites)

    def make(self, stage, targets, log):
        return self.command(["nice", "-n", "5", "cmake", "--build", str(BUILD / stage.preset), "-j",
                             str(cores()), "--target", *targets], log)

    def choose(self, stage):
        suites = suites_of(stage.preset)
        if self.rooms:
            # A room that has suites of ./test all alone is tested by these.
            with_core = {each.room for each in suites if each.core}
            return [each for each in suites if each.room in self.rooms and
                    (stage.preset == "run" if each.kind == "gtest-room" or each.room in RUN_ROOMS
                     else each.core or each.room not in with_core)]
        suites = [each for each in suites if each.kind != "gtest-room"]
        if self.everything:
            return [each for each in suites if ONE_STAGE.get(each.name, each.preset) == each.preset]
        suites = [each for each in suites if each.core]
        if stage.preset == "check":
            suites = [each for each in suites if each.room not in RUN_ROOMS]
        return suites

    def make_wine(self):
        """The root with Wine, beside the first builds: on a machine that has none it takes minutes."""
        log = LOGS / "wine-root.log"
        with open(log, "w") as out:
            process = self.processes.start([ROOT / "tools" / "wine-root", "make"],
                                           stdout=out, stderr=subprocess.STDOUT)
            status, spent = wait_for(process)
            self.processes.forget(process)
        self.spend("Wine", spent)
        if status != 0:
            self.fail("this machine", "there is no Wine of both widths: the program for Windows is "
                      "built, and all suites that would run it fail", log)

    # -- running

    def add(self, suites):
        for suite in suites:
            if suite.kind == "gtest-room":
                suite.kind = "gtest"
            shards = min(suite.shards, 2 * cores()) if cores() > 1 else 1
            for shard in range(shards):
                job = Job(suite, shard, shards)
                cost = self.durations.get(job.key, suite.timeout / 10)
                with self.lock:
                    self.order += 1
                    self.jobs_left += 1
                    self.jobs.put((-cost, self.order, job))

    def work(self, number):
        """Half of the workers rest while something is built, but for a room, of which little is."""
        while True:
            if not self.built and not self.rooms and number >= max(1, cores() // 2):
                if self.over.wait(0.2):
                    return
                continue
            try:
                _, _, job = self.jobs.get(timeout=0.2)
            except queue.Empty:
                if self.built or self.over.is_set():
                    return
                continue
            begin = time.monotonic()
            try:
                job.run(self.processes, lambda case, job=job: self.told(job.suite, job.log, case))
            except KeyboardInterrupt:
                return
            except OSError as error:
                self.fail(job.key, str(error))
            with self.lock:
                self.durations[job.key] = round(time.monotonic() - begin, 2)
                self.spent[job.suite.key] += job.spent
                self.jobs_left -= 1

    def hold_floors(self, ran):
        """A suite that ran fewer cases than are known, or is not there, is a failure."""
        if self.rooms or not FLOORS.exists():
            return
        floors = json.loads(FLOORS.read_text())
        presets = {stage.preset for stage in self.stages}
        for key, row in floors.items():
            preset = key.split("/")[0]
            if preset not in presets or (not self.everything and not row["core"]):
                continue
            found = self.per_suite[key]
            if found < row["cases"] and preset not in self.failed_stages:
                self.fail(key, f"{found} cases ran, {row['cases']} are known (tests/floors.json)")

    def keep_floors(self, suites):
        floors = json.loads(FLOORS.read_text()) if FLOORS.exists() else {}
        for suite in suites:
            core = suite.core and not (suite.preset == "check" and suite.room in RUN_ROOMS)
            floors[suite.key] = {"cases": self.per_suite[suite.key], "core": core}
        rows = [f"  {json.dumps(key)}: {json.dumps(floors[key])}" for key in sorted(floors)]
        FLOORS.write_text("{\n" + ",\n".join(rows) + "\n}\n")

    def run(self, keep):
        LOGS.mkdir(parents=True, exist_ok=True)
        self.over = threading.Event()
        self.stages_built = 0
        self.failed_stages = set()
        ran = []
        self.cases = open(BUILD / "cases.tsv", "w")
        workers = [threading.Thread(target=self.work, args=[number], daemon=True)
                   for number in range(cores())]
        for each in workers:
            each.start()
        teller = threading.Thread(target=self.progress, daemon=True)
        teller.start()
        wine = threading.Thread(target=self.make_wine, daemon=True)
        if any(stage.preset.startswith("windows") for stage in self.stages):
            wine.start()
        for_wine = []  # suites that wait for it
        try:
            for stage in self.stages:
                suites = self.build(stage)
                if suites is None:
                    self.failed_stages.add(stage.preset)
                    suites = []
                self.stages_built += 1
                ran += suites
                if stage.preset.startswith("windows"):
                    for_wine += suites
                else:
                    self.add(suites)
                if not wine.is_alive():
                    self.add(for_wine)
                    for_wine = []
            while wine.is_alive():
                wine.join(0.5)
            self.add(for_wine)
            self.building = ""
            self.built = True
            for each in workers:
                while each.is_alive():
                    each.join(0.5)
        except KeyboardInterrupt:
            self.screen.line("Ending what runs")
            self.over.set()
            self.processes.end_all()
            return 130
        self.over.set()
        self.screen.wipe()
        self.cases.close()
        DURATIONS.write_text(json.dumps(self.durations, indent=0, sort_keys=True))
        if keep:
            self.keep_floors(ran)
        else:
            self.hold_floors(ran)
        return self.conclude()

    def write_times(self):
        """Where the time went, as a table: each stage's build and its dearest suites."""
        rows = ["| what | processor time, s | wall, s |", "|---|---:|---:|"]
        for stage in self.stages:
            wall = self.walls.get(stage.title)
            if wall is None:
                continue
            rows.append(f"| `{stage.preset}`: building the {stage.title} | "
                        f"{self.spent[stage.title]:.0f} | {wall:.0f} |")
            suites = [(spent, key) for key, spent in self.spent.items()
                      if key.startswith(stage.preset + "/")]
            rows.append(f"| `{stage.preset}`: its {len(suites)} suites | "
                        f"{sum(spent for spent, _ in suites):.0f} | |")
            rows += [f"| &nbsp; {key.split('/')[1]} | {spent:.0f} | |"
                     for spent, key in sorted(suites, reverse=True)[:4] if spent >= 10]
        wall = time.monotonic() - self.screen.begin
        rows.append(f"| **all** on {cores()} cores, load {os.getloadavg()[1]:.1f} | "
                    f"**{sum(self.spent.values()):.0f}** | **{wall:.0f}** |")
        (BUILD / "times.md").write_text("\n".join(rows) + "\n")

    def conclude(self):
        self.write_times()
        passed, failed = self.counts["ok"], self.counts["failed"]
        print(f"{clock(time.monotonic() - self.screen.begin):>6}  {sum(self.spent.values()):.0f} s of "
              f"processor time on {cores()} cores; each case: build/cases.tsv, times: build/times.md")
        if self.shown_failures > 20:
            print(f"{self.shown_failures} failures, of which 20 were shown")
        if self.counts["skipped"]:
            print(f"{self.counts['skipped']} skipped; why is told in build/logs")
        if passed + failed == 0:
            print("No case ran.")
            failed = 1
        print(f"{passed} passed, {failed} failed", flush=True)
        return 0 if failed == 0 else 1


# Rooms that the stage `run` tests: their suites, or what they are made of, take much longer under a
# sanitizer.
RUN_ROOMS = {"support", "sample", "zevpack", "scenario", "scenarios", "zevnet", "zevsim",
             "fuzz"}

# Rooms that need the program for Windows.
WINDOWS_ROOMS = {"windows", "win32", "attacks"}

# Suites that one stage runs for all. What they show does not depend on how the stage compiles: they look
# at sources, or compile by themselves; or they are long, and what they run, shorter cases run under
# sanitizers.
ONE_STAGE = {"whole_run_tests_in_all": "run", "whole_run_tests_once": "run",
             "sample_making_tests_once": "run", "zevpack_sample_tests": "run", "Zevnet.LongRun": "run",
             "fuzz_tests_in_all": "check", "socket_storm_tests": "check",
             "Library.Configured": "check", "Library.Taken": "check", "Library.ForWindows": "check",
             "House.EveryFileIsFormatted": "check", "House.EveryScenarioIsLaidOut": "check"}


def known_rooms():
    return sorted({path.parent.name for path in (ROOT / "tests").glob("*/CMakeLists.txt")})


def stages_for(rooms, everything, without_windows):
    stages = [each for each in STAGES if everything or not each.only_all]
    if without_windows:
        stages = [each for each in stages if not each.preset.startswith("windows")]
    if rooms:
        presets = ("run", *(["check"] if rooms - WINDOWS_ROOMS else []),
                   *(["windows"] if rooms & WINDOWS_ROOMS else []))
        stages = [each for each in stages if each.preset.startswith(presets)]
    return stages


def complaints():
    """What this machine lacks, each with what can therefore not be shown."""
    free = shutil.disk_usage(ROOT).free
    if free < SPACE_NEEDED:
        yield (f"{free >> 20} MB are free where the project lies, and its builds take up to "
               f"{SPACE_NEEDED >> 20}: the tests may not be built")
    alone = subprocess.run([ROOT / "tests/network/alone.sh", "true"], stdout=subprocess.DEVNULL,
                           stderr=subprocess.PIPE, text=True)
    if alone.returncode != 0:
        reason = (alone.stderr.strip().splitlines() or ["no reason told"])[-1]
        yield (f"this machine grants no network namespaces ({reason}): the sockets over POSIX are "
               "not tested, and their suites fail")


def parse():
    parser = argparse.ArgumentParser(
        prog="./test", formatter_class=argparse.RawDescriptionHelpFormatter,
        description="""Builds the project and runs its tests; the last line counts them.

  ./test                what proves the product, in minutes
  ./test all            also the other compilers, storms, tidy, all scenarios under Wine, pictures
  ./test ROOM...        the tests of these rooms alone
  ./test --list         which rooms there are""")
    parser.add_argument("what", nargs="*", metavar="all | ROOM")
    parser.add_argument("--list", action="store_true", help="name the rooms")
    parser.add_argument("--keep-counts", action="store_true",
                        help="take the number of cases of each suite as the least from now on")
    parser.add_argument("--without-windows", action="store_true", help=argparse.SUPPRESS)
    return parser.parse_args()


def main():
    options = parse()
    if options.list:
        print("\n".join(known_rooms()))
        return 0
    everything = options.what == ["all"]
    rooms = set() if everything else {ALIASES.get(each, each) for each in options.what}
    unknown = sorted(rooms - set(known_rooms()))
    if unknown:
        print(f"There is no room \"{unknown[0]}\"; there are: {', '.join(known_rooms())}",
              file=sys.stderr)
        return 2
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    tester = Tester(stages_for(rooms, everything, options.without_windows), everything, rooms)
    if not rooms:
        for each in complaints():
            tester.fail("this machine", each)
    if options.without_windows:
        tester.fail("this machine", "the packages for Windows could not be installed: the program "
                    "for Windows is neither built nor tested")
    return tester.run(options.keep_counts)


if __name__ == "__main__":
    sys.exit(main())
