"""What is told of a run: a line for each break, the table, and build/mutate/results.json."""

import collections
import json

from mutation.places import KINDS

COUNTED = ("killed", "survived", "known")
WORDS = {"killed": "killed", "survived": "SURVIVED", "known": "known", "equal": "equal code",
         "broken": "no code"}


def clock(seconds):
    return f"{int(seconds) // 60}:{int(seconds) % 60:02d}"


def line(place):
    return f"{place.file}:{place.line}  {place.kind} in {place.within}"


def change(place):
    return f"      - {place.was}\n      + {place.becomes}"


def told(place, outcome, done, of):
    """A break and what came of it."""
    result = outcome["result"]
    text = f"{done:4}/{of} {WORDS[result]:10} {outcome['seconds']:6.1f} s  {line(place)}"
    if result == "killed":
        text += f"  by {outcome['suite']}"
        text += f", {outcome['case']}" if outcome["case"] else ""
        text += {"endless": " (took too long)", "crashed": " (crashed)"}.get(outcome["how"], "")
    if result in ("survived", "known"):
        text += "\n" + change(place)
    if result == "known":
        text += f"\n      {outcome['why']}"
    if outcome.get("shaky"):
        text += f"\n      failed once and then no more: {', '.join(outcome['shaky'])}"
    return text


def group(rows, key):
    found = collections.defaultdict(collections.Counter)
    for place, outcome in rows:
        found[key(place)][outcome["result"]] += 1
        if outcome.get("how") == "endless":
            found[key(place)]["endless"] += 1
    return found


COLUMNS = ["killed", "endless", "survived", "known", "equal", "broken"]
HEADS = ["breaks", "killed", "of these by time", "survived", "known", "equal code", "no code"]


def table(title, found):
    lines = [f"| {title} | " + " | ".join(HEADS) + " |", "|---|" + "---:|" * len(HEADS)]
    total = collections.Counter()
    for name in sorted(found):
        total += found[name]
    for name, row in [*sorted(found.items()), ("**all**", total)]:
        breaks = sum(row[each] for each in COUNTED)
        lines.append(f"| {name} | {breaks} | "
                     + " | ".join(str(row[each]) for each in COLUMNS) + " |")
    return "\n".join(lines)


def killers(rows):
    found = collections.Counter(outcome["suite"] for _, outcome in rows
                                if outcome["result"] == "killed")
    lines = ["| killed by | breaks |", "|---|---:|"]
    return "\n".join(lines + [f"| {name} | {count} |" for name, count in found.most_common()])


def tables(rows):
    return "\n\n".join([table("room", group(rows, lambda place: place.room)),
                        table("kind", group(rows, lambda place: KINDS[KINDS.index(place.kind)])),
                        killers(rows)])


def as_json(head, rows):
    return json.dumps({**head, "breaks": [
        {"file": place.file, "line": place.line, "kind": place.kind, "within": place.within,
         "was": place.was, "becomes": place.becomes, **outcome} for place, outcome in rows]},
        indent=1, ensure_ascii=False)
