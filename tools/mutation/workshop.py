"""The copy of the project that is broken: its files, its build, its suites."""

import collections
import concurrent.futures
import fcntl
import hashlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import threading

from mutation import trial
from tester import narrowed

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
HOME = ROOT / "build" / "mutate"
TREE = HOME / "tree"
BUILD = TREE / "build" / "mutate"
SCRATCH = HOME / "scratch"
PACKAGE = pathlib.Path("build") / "run" / "package"

# Where a room's suites are found when its folder of tests has another name.
OWN_SUITES = {"zevsim": {"scenario", "scenarios"}, "platform": {"contract", "runtime", "socket"},
              "simulated": {"simulated", "contract"}, "observed": {"observed", "socket"},
              "setup": {"scenarios"}}
# They look at the text of the code, which every break changes, or build it all anew.
NO_SUITES = {"house", "library"}
# Cases of ./test all: the others in more languages, on longer inputs, ended at each change.
REPEATS = "_in_all"


class Suite:
    """A suite as its build tells of it, and what of the build it is made of."""

    def __init__(self, row):
        self.name, self.room = row["name"], row["room"]
        self.of_room = row["kind"] == "gtest-room"
        self.tells_cases = row["kind"].startswith("gtest")
        self.command, self.targets, self.filter = row["command"], row["targets"], row["filter"]
        self.environment = dict(each.split("=", 1) for each in row["environment"])
        self.timeout = row["timeout"]
        self.inputs, self.programs = set(), []

    def row(self, filter_=None):
        """What a trial has to know; of a suite with a filter of its own, or of cases that another
        FILTER chooses."""
        filter_ = filter_ or self.filter
        words = [f"--gtest_filter={filter_}"] if filter_ else []
        return {"name": self.name, "kind": "gtest" if self.tells_cases else "script",
                "command": self.command + words, "environment": self.environment,
                "targets": self.targets, "programs": self.programs, "timeout": self.timeout}


def project_files():
    """Every file of the project as it lies there, kept by git or about to be."""
    listed = subprocess.run(["git", "-C", str(ROOT), "ls-files", "-z", "-co",
                             "--exclude-standard"], check=True, capture_output=True).stdout
    return sorted(name for name in listed.decode().split("\0") if name and
                  (ROOT / name).is_file())


class Workshop:
    def __init__(self, jobs, quick):
        self.jobs, self.quick = jobs, quick
        self.children = set()
        self.lock = threading.RLock()  # the end may come while it is held
        self.over = False

    # -- processes

    def run(self, command, words=None, **options):
        """Runs a command in a session of its own and gives it some words; what it prints."""
        with self.lock:
            if self.over:
                raise KeyboardInterrupt
            child = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.STDOUT, text=True, errors="replace",
                                     start_new_session=True, **options)
            self.children.add(child)
        try:
            output, _ = child.communicate(words)
        finally:
            with self.lock:
                self.children.discard(child)
        if self.over:
            raise KeyboardInterrupt
        return child.returncode, output

    def must(self, command, **options):
        status, output = self.run(command, **options)
        if status != 0:
            raise SystemExit(f"{' '.join(map(str, command[:4]))} ended with status {status}:\n"
                             + "\n".join(output.splitlines()[-30:]))
        return output

    def end_all(self):
        """Ends what runs. A trial's namespace ends with its first process."""
        with self.lock:
            self.over = True
            left = list(self.children)
        for child in left:
            try:
                os.killpg(child.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass

    # -- trials

    PATIENCE = 15  # seconds of silence that every suite is granted

    def trial(self, request):
        """What comes of a request to mutation.trial, in namespaces of its own."""
        user = [] if os.getuid() == 0 else ["--user", "--map-root-user"]
        command = ["unshare", *user, "--mount", "--pid", "--fork", "--kill-child", "--mount-proc",
                   sys.executable, "-m", "mutation.trial"]
        request |= {"tree": str(TREE), "build": str(BUILD), "scratch": str(SCRATCH)}
        status, output = self.run(command, json.dumps(request), cwd=ROOT / "tools")
        last = (output.splitlines() or [""])[-1]
        if status != 0 or not last.startswith(trial.OUTCOME):
            raise SystemExit(f"A trial ended with status {status}:\n{output[-2000:]}")
        return json.loads(last[len(trial.OUTCOME):])

    def measure(self):
        """How long each suite takes and is silent without a break; all of them must pass. What
        was measured of the very same programs and data holds."""
        kept = HOME / "measured.json"
        found = json.loads(kept.read_text()) if kept.exists() else {}
        data = self.print_of_data()

        def one(suite):
            print_of = self.print_of_suite(suite, data)
            if found.get(suite.name, {}).get("print") == print_of:
                return
            outcome = self.trial({"text": None, "suites": [suite.row()]})
            if outcome["end"]:
                raise SystemExit(f"{suite.name} fails without a break: "
                                 f"{outcome['end'][0]} {outcome['end'][1]}")
            with self.lock:
                found[suite.name] = {"print": print_of, **outcome}
                kept.write_text(json.dumps(found, indent=1))

        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            list(pool.map(one, self.suites))
        self.measured = found

    @staticmethod
    def print_of_data():
        """What programs of tests read."""
        print_of = hashlib.sha256((TREE / PACKAGE / "ZEVSetup.exe").read_bytes())
        for folder in ("tests/data", "tests/scenarios", "scenarios"):
            for path in sorted((TREE / folder).rglob("*")):
                if path.suffix in (".tsv", ".json", ".txt"):
                    print_of.update(str(path).encode() + path.read_bytes())
        return print_of.digest()

    @staticmethod
    def print_of_suite(suite, data):
        scripts = [word for word in suite.command if word.startswith(str(TREE / "tests"))]
        print_of = hashlib.sha256(data + json.dumps(suite.row()).encode())
        for file in [BUILD / program for program in suite.programs] + scripts:
            print_of.update(pathlib.Path(file).read_bytes())
        return print_of.hexdigest()

    def try_place(self, place):
        suites = self.suites_for(place)
        return self.trial({"file": place.file, "begin": place.begin, "end": place.end,
                           "text": place.text, "objects": self.objects_of(place.file),
                           "suites": suites})

    def patience(self, suite):
        """How long a suite may say nothing, in seconds; a script says nothing till its end."""
        measured = self.measured[suite.name]
        usual = measured["silence" if suite.tells_cases else "seconds"]
        return min(max(self.PATIENCE, 5 * usual), suite.timeout)

    # -- the copy

    def prepare(self, tell):
        HOME.mkdir(parents=True, exist_ok=True)
        self.held = open(HOME / "lock", "w")
        try:
            fcntl.flock(self.held, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise SystemExit("Another tools/mutate is at work here.") from None
        SCRATCH.mkdir(exist_ok=True)
        tell("making the sample package")
        self.must([str(ROOT / "tools" / "package")])
        self.copy()
        tell("building the copy (build/mutate/tree)")
        self.must(["cmake", "--preset", "mutate"], cwd=TREE)
        self.suites = self.read_suites()
        targets = sorted({target for suite in self.suites for target in suite.targets})
        self.must(["cmake", "--build", str(BUILD), "-j", str(self.jobs), "--target", *targets])
        self.read_graph()

    def copy(self):
        """Makes the copy what the project is; what has not changed keeps its time."""
        names = project_files()
        packed = [str(path.relative_to(ROOT)) for path in (ROOT / PACKAGE).rglob("*")
                  if path.is_file()]
        print_of = hashlib.sha256()
        for name in names + packed:
            content = (ROOT / name).read_bytes()
            if name in names:
                print_of.update(name.encode() + b"\0" + content)
            there = TREE / name
            if there.exists() and there.read_bytes() == content:
                continue
            there.parent.mkdir(parents=True, exist_ok=True)
            there.write_bytes(content)
            shutil.copymode(ROOT / name, there)
        wanted = set(names)
        for path in list(TREE.rglob("*")):
            name = path.relative_to(TREE)
            if name.parts[0] != "build" and path.is_file() and str(name) not in wanted:
                path.unlink()
        self.fingerprint = print_of.hexdigest()

    # -- the build

    def read_suites(self):
        rows = [json.loads(line) for line in (BUILD / "suites.json").read_text().splitlines()]
        return [Suite(row) for row in rows
                if row["room"] not in NO_SUITES and not row["name"].endswith(REPEATS)]

    def read_graph(self):
        """What each suite is made of, and which objects each file goes into."""
        listed = self.must(["ninja", "-C", str(BUILD), "-t", "targets", "all"])
        programs = {line.rsplit(": ", 1)[0] for line in listed.splitlines()
                    if "_EXECUTABLE_LINKER" in line}
        inputs, by_name = {}, {os.path.basename(each): each for each in programs}
        for suite in self.suites:
            for target in suite.targets:
                if target not in inputs:
                    found = self.must(["ninja", "-C", str(BUILD), "-t", "inputs", target])
                    inputs[target] = set(found.split("\n"))
                suite.inputs |= inputs[target]
            suite.programs = sorted({by_name[each] for each in suite.targets if each in by_name} |
                                    (suite.inputs & programs))
        self.objects = collections.defaultdict(set)
        dump = self.must(["ninja", "-C", str(BUILD), "-t", "deps"])
        for line in dump.splitlines():
            if line and not line.startswith(" "):
                current = line.split(":")[0]
            elif line.strip().startswith(str(TREE / "src")):
                name = os.path.relpath(line.strip(), TREE)
                self.objects[name].add(current)

    def objects_of(self, file):
        """The objects that a file goes into, those of suites that are run."""
        used = set().union(*(suite.inputs for suite in self.suites))
        return sorted(self.objects[file] & used)

    def suites_for(self, place):
        """The suites that a break can change, the room's own first, then the quick ones."""
        changed = set(self.objects_of(place.file))
        rooms = OWN_SUITES.get(place.room, {place.room})
        chosen = [suite for suite in self.suites if suite.inputs & changed and
                  (suite.room in rooms or not suite.of_room)]
        chosen.sort(key=lambda suite: (suite.room not in rooms,
                                       self.measured[suite.name]["seconds"]))
        parts = [part for place, suite in enumerate(chosen)
                 for part in self.parts(suite, chosen[:place])]
        return [row for late, row in sorted(parts, key=lambda part: part[0])
                if not (late and self.quick)]

    def parts(self, suite, before):
        """A suite without the cases that ran before; one with slow cases in two parts, and the slow
        one is run behind all others."""
        ran = [each.filter for each in before
               if each.of_room and each.command[0] == suite.command[0]]
        slow = self.measured[suite.name]["slow"]

        def part(filter_, patience):
            return {**suite.row(filter_), "silence": patience}

        if suite.of_room or not ran + slow:
            return [(0, part(None, self.patience(suite)))]
        if not slow:
            return [(0, part(narrowed(suite.filter, ran), self.patience(suite)))]
        return [(0, part(narrowed(suite.filter, ran + slow), self.PATIENCE)),
                (1, part(":".join(slow), self.patience(suite)))]
