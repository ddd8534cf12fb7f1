"""tools/mutate: the words of the command line, and the run."""

import argparse
import json
import signal
import sys
import threading
import time

from mutation import places, report
from mutation.choice import Choice
from mutation.known import Known
from mutation.workshop import BUILD, HOME, ROOT, TREE, Workshop

RESULTS = HOME / "results.json"
KNOWN = ROOT / "tests" / "mutants.json"


def parse():
    parser = argparse.ArgumentParser(
        prog="tools/mutate", description="""Breaks the code on purpose, one place at a time, and
        tells which breaks no test sees: conditions, constants, removed statements, swapped
        arguments, early ends. Works in a copy, build/mutate; the results are in
        build/mutate/results.json and results.md. Ends with 1 if a break survives that
        tests/mutants.json gives no reason for, or more than it allows.""")
    parser.add_argument("--count", type=int, default=200, help="how many breaks (200)")
    parser.add_argument("--seed", default="1", help="another choice of places (1)")
    parser.add_argument("--room", action="append", help="only this room of src/; may be repeated")
    parser.add_argument("--file", help="only this file")
    parser.add_argument("--line", type=int, help="only this line of the file")
    parser.add_argument("--jobs", type=int, default=2, help="how many at once (2)")
    parser.add_argument("--list", action="store_true", help="tell the places and break nothing")
    parser.add_argument("--resume", action="store_true",
                        help="take what the last run killed as killed, and go on")
    parser.add_argument("--quick", action="store_true",
                        help="leave out the slow cases of long suites: what survives they may see")
    options = parser.parse_args()
    if options.line and not options.file:
        parser.error("--line needs --file")
    return options


def wanted(found, options):
    """The places that the words ask for."""
    rooms = {each.room for each in found}
    for room in options.room or []:
        if room not in rooms:
            raise SystemExit(f"There is no room \"{room}\"; there are: {', '.join(sorted(rooms))}")
    chosen = [each for each in found
              if (not options.room or each.room in options.room)
              and (not options.file or each.file == options.file)
              and (not options.line or each.line == options.line)]
    if not chosen:
        raise SystemExit("Nothing can be broken there: it is no file that is built here, or has "
                         "no such place.")
    return chosen


class Run:
    """All breaks of a run, some at once."""

    def __init__(self, workshop, options, known, choice):
        self.workshop, self.options, self.known, self.choice = workshop, options, known, choice
        self.lock = threading.Lock()
        self.rows, self.counted, self.out = [], 0, 0
        self.of = sum(choice.wanted.values())
        self.begin = time.monotonic()
        self.before = self.earlier() if options.resume else {}
        self.failure = None

    @staticmethod
    def earlier():
        """What the last run killed, or what was no break at all."""
        if not RESULTS.exists():
            return {}
        rows = json.loads(RESULTS.read_text())["breaks"]
        return {(row["file"], row["within"], row["was"], row["becomes"]):
                {key: row[key] for key in row if key not in
                 ("file", "line", "kind", "within", "was", "becomes")}
                for row in rows if row["result"] in ("killed", "equal", "broken")}

    def work(self):
        try:
            while self.step():
                pass
        except KeyboardInterrupt:
            return
        except BaseException as error:  # told by the main thread
            self.failure = error

    def step(self):
        with self.lock:
            place = self.choice.next()
            if place is None and not self.out:
                return False
            if place is not None:
                self.out += 1
        if place is None or self.failure:
            time.sleep(0.2)
            return self.failure is None
        outcome = self.before.get(place.key) or self.workshop.try_place(place)
        self.keep(place, outcome)
        return True

    def keep(self, place, outcome):
        why = self.known.why(place)
        if outcome["result"] == "survived" and why:
            outcome = {**outcome, "result": "known", "why": why}
        with self.lock:
            self.out -= 1
            self.rows.append((place, outcome))
            if outcome["result"] in report.COUNTED:
                self.counted += 1
            else:
                self.choice.again(place)
            print(report.told(place, outcome, self.counted, self.of), flush=True)
            self.write()

    def head(self):
        return {"seed": self.options.seed, "count": self.of, "done": self.counted,
                "files": self.workshop.fingerprint,
                "seconds": round(time.monotonic() - self.begin)}

    def write(self):
        new = RESULTS.with_suffix(".new")
        new.write_text(report.as_json(self.head(), self.rows))
        new.replace(RESULTS)
        RESULTS.with_suffix(".md").write_text(report.tables(self.rows) + "\n")

    def go(self):
        workers = [threading.Thread(target=self.work, daemon=True)
                   for _ in range(self.options.jobs)]
        for each in workers:
            each.start()
        for each in workers:
            while each.is_alive():
                each.join(0.5)
        if self.failure:
            raise self.failure

    def conclude(self):
        unnamed = [place for place, outcome in self.rows if outcome["result"] == "survived"]
        survived = len(unnamed) + sum(outcome["result"] == "known" for _, outcome in self.rows)
        limit = self.known.limit(self.counted)
        print("\n" + report.tables(self.rows) + "\n")
        for place in unnamed:
            print(f"no test sees {report.line(place)}\n{report.change(place)}")
        print(f"{self.counted} breaks, {survived} survived, {limit} may; {len(unnamed)} of them "
              f"without a reason in tests/mutants.json; {report.clock(self.head()['seconds'])}")
        return 1 if unnamed or survived > limit else 0


def list_places(choice, count):
    place = choice.next()
    while place is not None and count:
        print(f"{report.line(place)}\n{report.change(place)}")
        place, count = choice.next(), count - 1


def run(options, workshop):
    def tell(text):
        print(text, flush=True)

    known = Known(KNOWN)
    workshop.prepare(tell)
    tell("reading the code")
    found = places.find(TREE, BUILD, HOME / "places.json", options.jobs)
    chosen = wanted(found, options)
    tell(f"{len(chosen)} places in {len({each.file for each in chosen})} files")
    choice = Choice(chosen, options.seed, options.count)
    gone = known.gone(found)
    for file, within, was, _ in gone:
        print(f"tests/mutants.json knows what is not there: {file}, {within}: {was}")
    if options.list:
        list_places(choice, options.count)
        return 1 if gone else 0
    tell("running all suites without a break")
    workshop.measure()
    whole = Run(workshop, options, known, choice)
    whole.go()
    return max(whole.conclude(), 1 if gone else 0)


def main():
    options = parse()
    workshop = Workshop(options.jobs, options.quick)

    def stop(*_):
        workshop.end_all()
        raise KeyboardInterrupt

    for each in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(each, stop)
    try:
        return run(options, workshop)
    except KeyboardInterrupt:
        print("Ending what runs", file=sys.stderr)
        return 130
    finally:
        workshop.end_all()


if __name__ == "__main__":
    sys.exit(main())
