"""One break, in a world of its own: the copy of the project lies under a layer of memory, so that the
break, what is built of it and what the tests write are gone when the world ends; and with it ends
whatever still runs.

Started by `unshare` with a request on the standard input; prints the outcome as its last line.
"""

import filecmp
import json
import os
import pathlib
import queue
import resource
import signal
import subprocess
import sys
import threading
import time

from tester import GtestReader

MEMORY = 8 << 30  # of a process: a break that eats memory without end is stopped
SLOW = 2  # seconds: cases of a long suite that are left to the end
LONG = 30  # seconds: a long suite
OUTCOME = "outcome: "


class TookTooLong(Exception):
    """Nothing was heard for too long."""


def enter(request):
    """Lays the layer over the copy; what lies below can still be seen in scratch/below."""
    scratch, tree = request["scratch"], request["tree"]
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=75%", "none", scratch], check=True)
    for name in ("below", "upper", "work", "tmp"):
        os.mkdir(f"{scratch}/{name}")
    subprocess.run(["mount", "--bind", tree, f"{scratch}/below"], check=True)
    layers = f"lowerdir={tree},upperdir={scratch}/upper,workdir={scratch}/work"
    for more in (",userxattr", ""):
        done = subprocess.run(["mount", "-t", "overlay", "-o", layers + more, "none", tree],
                              capture_output=True, text=True)
        if done.returncode == 0:
            break
    else:
        raise RuntimeError("no layer can be laid over the copy: " + done.stderr)
    os.environ["TMPDIR"] = f"{scratch}/tmp"
    os.chdir(tree)


class Build:
    """The build in this world, beside the one below."""

    def __init__(self, request):
        self.here = pathlib.Path(request["build"])
        self.below = pathlib.Path(request["scratch"], "below") / os.path.relpath(
            request["build"], request["tree"])

    def make(self, targets):
        done = subprocess.run(["ninja", "-C", self.here, "-j", "1", *targets],
                              capture_output=True, text=True, errors="replace")
        return done.returncode == 0, done.stdout

    def same(self, names):
        """Whether these came out as they are without the break."""
        return all(filecmp.cmp(self.here / name, self.below / name) for name in names)


def apply(request):
    file = pathlib.Path(request["tree"], request["file"])
    was = file.read_bytes()
    begin, end = request["begin"], request["end"]
    file.write_bytes(was[:begin] + request["text"].encode() + was[end:])


# ---- suites


def limits():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Run:
    """A suite's process, line by line."""

    def __init__(self, suite, words, silence):
        self.suite, self.words, self.silence = suite, words, silence
        self.longest = 0.0
        self.slow = []
        self.failed = None
        self.reader = GtestReader(self.told)

    def told(self, case):
        if case.result == "failed" and self.failed is None:
            self.failed = case.name
        if case.seconds > SLOW:
            self.slow.append(case.name)

    def lines(self, process):
        """What it prints; an end if it is silent too long."""
        heard = queue.Queue()

        def listen():
            for line in process.stdout:
                heard.put(line.rstrip("\r\n"))
            heard.put(None)

        threading.Thread(target=listen, daemon=True).start()
        while True:
            begin = time.monotonic()
            try:
                line = heard.get(timeout=self.silence)
            except queue.Empty:
                raise TookTooLong from None
            self.longest = max(self.longest, time.monotonic() - begin)
            if line is None:
                return
            yield line

    def go(self):
        """How it ended: None if all is well; else the way and the case that failed."""
        suite = self.suite
        environment = {**os.environ, **suite["environment"], "GTEST_COLOR": "no",
                       "GTEST_FAIL_FAST": "1"}
        process = subprocess.Popen([*suite["command"], *self.words], env=environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True, errors="replace",
                                   start_new_session=True, preexec_fn=limits)
        try:
            for line in self.lines(process):
                self.reader.read(line)
                if self.failed:
                    break
            else:
                process.wait(self.silence)
        except (TookTooLong, subprocess.TimeoutExpired):
            return "endless", self.reader.name or ""
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
        return self.verdict(process.returncode)

    def verdict(self, status):
        if self.suite["kind"] == "script":
            return None if status == 0 else ("failed", "")
        if self.failed:
            return "failed", self.failed
        if self.reader.name or not self.reader.ended or status != 0:
            return "crashed", self.reader.name or ""
        return None


def confirmed(suite, silence, end):
    """Whether what failed fails again: by itself, or with all cases before it."""
    case = end[1]
    if case and Run(suite, [f"--gtest_filter={case}"], silence).go():
        return True
    return Run(suite, [], silence).go() is not None


def try_suites(suites, build):
    """The first suite that sees the break."""
    shaky, seen = [], 0
    for suite in suites:
        built, output = build.make(suite["targets"])
        if not built:
            return {"result": "broken", "why": output[-2000:]}
        if build.same(suite["programs"]):
            continue
        seen += 1
        end = Run(suite, [], suite["silence"]).go()
        if end and confirmed(suite, suite["silence"], end):
            return {"result": "killed", "how": end[0], "suite": suite["name"], "case": end[1],
                    "suites": seen, "shaky": shaky}
        if end:
            shaky.append(f"{suite['name']}: {end[1]}")
    return {"result": "survived", "suites": seen, "shaky": shaky}


def try_break(request):
    enter(request)
    apply(request)
    build = Build(request)
    built, output = build.make(request["objects"])
    if not built:
        return {"result": "broken", "why": output[-2000:]}
    if build.same(request["objects"]):
        return {"result": "equal"}
    return try_suites(request["suites"], build)


def measure(request):
    """A suite without a break: how long it takes, and how long it is silent."""
    enter(request)
    suite = request["suites"][0]
    run = Run(suite, [], suite["timeout"])
    begin = time.monotonic()
    end = run.go()
    seconds = time.monotonic() - begin
    return {"end": end, "seconds": round(seconds, 2), "silence": round(run.longest, 2),
            "slow": run.slow if seconds > LONG else []}


def main():
    request = json.load(sys.stdin)
    begin = time.monotonic()
    outcome = measure(request) if request["text"] is None else try_break(request)
    print(OUTCOME + json.dumps({"seconds": round(time.monotonic() - begin, 2), **outcome}))


if __name__ == "__main__":
    main()
