#!/usr/bin/env python3
"""Writes scenarios the way they are read: laid out, with names for what several say, and as tables.

    scenarios.py format FILE-OR-FOLDER...             lays files out
    scenarios.py name FILE-OR-FOLDER...               puts names of common.json where what they stand for
                                                      is written out
    scenarios.py gather TABLE FILE...                 makes a table of scenarios that differ in values;
                                                      the files are removed
    scenarios.py check FILE-OR-FOLDER...              tells files that are not laid out, and names of
                                                      common.json that no scenario uses

None of them changes what happens when a scenario is played; tools/compare_transcripts.py shows that.
docs/scenarios.md tells of names and tables.
"""

import argparse
import json
import os
import pathlib
import re
import sys

COMMON = "common.json"
PLACEHOLDER = re.compile(r"\$\(([^)]*)\)")


# ---- layout, as src/scenario/layout.cpp does it


WIDTH = 100
CLOSING = 2  # a blank and a bracket


def dumped(value):
    return json.dumps(value, ensure_ascii=False)


def on_one_line(value):
    if isinstance(value, dict):
        return "{" + ", ".join(f"{dumped(key)}: {on_one_line(each)}" for key, each in value.items()) + "}"
    if isinstance(value, list):
        return "[" + ", ".join(map(on_one_line, value)) + "]"
    return dumped(value)


def is_structured(value):
    return isinstance(value, (dict, list))


def pieces_of(value):
    """The text in front of each value in an object or a list, and the value."""
    if isinstance(value, dict):
        return [(dumped(key) + ": ", each) for key, each in value.items()]
    return [("", each) for each in value]


class Layout:
    """Writes a document piece by piece; what has no room behind a piece goes to the next line."""

    def __init__(self):
        self.lines = [""]

    def put(self, text):
        self.lines[-1] += text

    def break_line(self, indent):
        self.lines.append(" " * indent)

    def write(self, value, indent, behind):
        line = on_one_line(value)
        if not is_structured(value) or len(self.lines[-1].encode()) + len(line.encode()) + behind <= WIDTH:
            self.put(line)
        elif len(value) == 1 and is_structured(pieces_of(value)[0][1]):
            (key, inner), = pieces_of(value)
            self.put(("{" if isinstance(value, dict) else "[") + key)
            self.write(inner, indent, behind + 1)
            self.put("}" if isinstance(value, dict) else "]")
        else:
            self.write_pieces(value, indent + 2, behind)

    def write_pieces(self, value, indent, behind):
        is_object = isinstance(value, dict)
        self.put("{" if is_object else "[")
        goes_on = False
        left = len(value)
        for key, each in pieces_of(value):
            first = left == len(value)
            left -= 1
            follows = 1 if left else CLOSING + behind
            size = len((key + on_one_line(each)).encode())
            is_short = indent + size + follows <= WIDTH
            fits = len(self.lines[-1].encode()) + 1 + size + follows <= WIDTH
            if (first and is_object and (fits or not is_short)) or (goes_on and fits):
                self.put(" ")
            else:
                self.break_line(indent)
            goes_on = is_short
            self.put(key)
            self.write(each, indent, follows)
            self.put("," if left else "")
        self.put(" }" if is_object else " ]")

    def write_document(self, document):
        self.put("{ ")
        left = len(document)
        for key, value in document.items():
            if left < len(document):
                self.break_line(2)
            left -= 1
            self.put(dumped(key) + ": ")
            if key in LINE_BY_LINE and isinstance(value, dict):
                self.write_members(value)
            else:
                self.write(value, 2, 1 if left else CLOSING)
            self.put("," if left else " }")

    def write_members(self, members):
        self.put("{")
        left = len(members)
        for key, value in members.items():
            left -= 1
            self.break_line(4)
            self.put(dumped(key) + ": ")
            self.write(value, 4, 1 if left else 0)
            self.put("," if left else "")
        self.break_line(2)
        self.put("}")


# Of these each member begins a line.
LINE_BY_LINE = ("cases", "values", "machines", "steps", "expect", "boxes")


def laid_out(document):
    layout = Layout()
    if isinstance(document, dict) and len(on_one_line(document).encode()) > WIDTH:
        layout.write_document(document)
    else:
        layout.write(document, 0, 0)
    return "\n".join(layout.lines) + "\n"


# ---- files


def read(path):
    return json.loads(path.read_text(encoding="utf-8"))


def write(path, document):
    path.write_text(laid_out(document), encoding="utf-8")


def files_of(places):
    for place in map(pathlib.Path, places):
        yield from sorted(place.rglob("*.json")) if place.is_dir() else [place]


def common_of(folder):
    """The names that the scenarios of a folder can use, by their kind."""
    names = {}
    for file in (folder / COMMON, folder.parent / COMMON):
        if file.exists():
            for kind, named in read(file).items():
                names.setdefault(kind, {}).update(named)
    return names


# ---- names


def filled(value, values):
    """A value with the named values put in."""
    if isinstance(value, dict):
        return {filled(key, values): filled(each, values) for key, each in value.items()}
    if isinstance(value, list):
        return [filled(each, values) for each in value]
    if not isinstance(value, str):
        return value
    alone = PLACEHOLDER.fullmatch(value)
    if alone and alone[1] in values:
        return values[alone[1]]
    return PLACEHOLDER.sub(
        lambda found: str(values[found[1]]) if found[1] in values else found[0], value)


def resolved_values(values):
    """Named values with those that they name put in."""
    for _ in values:
        values = filled(values, {name: each for name, each in values.items() if "$(" not in str(each)})
    return values


def bind(bound, name, value):
    if name in bound and bound[name] != value:
        return False
    bound[name] = value
    return True


def unify(pattern, value, bound):
    """Whether a value reads as a pattern with something in the places of its names."""
    if isinstance(pattern, str):
        alone = PLACEHOLDER.fullmatch(pattern)
        if alone:
            return bind(bound, alone[1], value)
        return isinstance(value, str) and unify_text(pattern, value, bound)
    if isinstance(pattern, dict):
        return (isinstance(value, dict) and len(pattern) == len(value) and
                all(unify_text(mine, key, bound) and unify(each, other, bound)
                    for (mine, each), (key, other) in zip(pattern.items(), value.items())))
    if isinstance(pattern, list):
        return (isinstance(value, list) and len(pattern) == len(value) and
                all(unify(each, other, bound) for each, other in zip(pattern, value)))
    return type(pattern) is type(value) and pattern == value


def unify_text(pattern, text, bound):
    parts = PLACEHOLDER.split(pattern)
    if len(parts) == 1:
        return pattern == text
    names, expression = [], ""
    for place, part in enumerate(parts):
        if place % 2 == 0:
            expression += re.escape(part)
        elif part in names:
            expression += f"(?P=p{names.index(part)})"
        else:
            expression += f"(?P<p{len(names)}>.*?)"
            names.append(part)
    match = re.fullmatch(expression, text, re.S)
    return bool(match) and all(bind(bound, name, plain(match[f"p{place}"]))
                               for place, name in enumerate(names))


def plain(text):
    """A whole number where a text is one."""
    return int(text) if re.fullmatch(r"0|-?[1-9][0-9]{0,8}", text) else text


def call(name, bound):
    return {"use": name, **bound} if bound else name


LEAST_EACH = 3


def folded(parts):
    """Uses of one name behind each other, written once for each of the values that differ."""
    out, place = [], 0
    while place < len(parts):
        end = place
        while end < len(parts) and is_like(parts[place], parts[end]):
            end += 1
        if end - place < LEAST_EACH:
            end = place + 1
        out += fold(parts[place:end])
        place = end
    return out


def is_like(one, other):
    return (isinstance(one, dict) and isinstance(other, dict) and "use" in one and
            "each" not in one and "each" not in other and
            list(one) == list(other) and one["use"] == other["use"] and
            one.get("answer") == other.get("answer") and
            not any(is_structured(each) for each in [*one.values(), *other.values()]))


def fold(calls):
    if len(calls) == 1:
        return calls
    same, each = {}, {}
    for key in calls[0]:
        values = [one[key] for one in calls]
        if all(value == values[0] for value in values):
            same[key] = values[0]
        else:
            each[key] = counted(values) or values
    return [{**same, "each": each}] if each else calls


def counted(values):
    """{"from": .., "to": ..} for values that count up."""
    parts = [re.fullmatch(r"(.*?)([0-9]{1,6})", str(value), re.S) for value in values]
    if len(values) < 8 or not all(parts) or len({(part[1], len(part[2])) for part in parts}) > 1:
        return None
    numbers = [int(part[2]) for part in parts]
    if numbers != list(range(numbers[0], numbers[0] + len(numbers))):
        return None
    return {"from": values[0], "to": values[-1]}


class Namer:
    """Puts names into the scenarios of one folder."""

    def __init__(self, common):
        self.values = resolved_values(common.get("values", {}))
        self.order = sorted(((name, text) for name, text in self.values.items()
                             if isinstance(text, str)), key=lambda each: -len(each[1]))
        self.steps = self.patterns(common, "steps", self.flat_steps)
        self.named_boxes = common.get("boxes", {})
        self.expectations = self.patterns(common, "expect", self.flat_expectations)
        self.boxes = self.patterns(common, "boxes", self.flat_boxes)
        self.machines = self.patterns(common, "machines", lambda each: [each])

    def patterns(self, common, kind, flat):
        """(name, list of patterns), the longest first; of equally long ones those with the fewest
        places to fill."""
        named = common.get(kind, {})
        found = [(name, filled(flat(self.resolved(each, named)), self.values))
                 for name, each in named.items()]
        return sorted(found, key=lambda each: (-len(each[1]), len(PLACEHOLDER.findall(str(each[1])))))

    def resolved(self, value, named):
        """A piece with the pieces that it names in their places."""
        if isinstance(value, str) and value in named:
            return self.resolved(named[value], named)
        if isinstance(value, dict) and "use" in value:
            given = {key: each for key, each in value.items() if key != "use"}
            return filled(self.resolved(named[value["use"]], named), given)
        if isinstance(value, list):
            return [self.resolved(each, named) for each in value]
        return value

    @staticmethod
    def flat_steps(steps):
        out = []
        for each in steps if isinstance(steps, list) else [steps]:
            out += Namer.flat_steps(each) if isinstance(each, list) else [each]
        return out

    def flat_expectations(self, written):
        if isinstance(written, list):
            return [each for one in written for each in self.flat_expectations(one)]
        return [[key, self.flat_boxes(self.answered(value)) if key == "boxes" else value]
                for key, value in written.items()]

    def answered(self, boxes):
        """Boxes with those that they name in their places."""
        out = []
        for each in boxes:
            answer = {}
            if isinstance(each, dict) and "use" in each and "answer" in each:
                answer = {"answer": each["answer"]}
                each = {key: value for key, value in each.items() if key != "answer"}
            found = self.flat_boxes(self.resolved(each, self.named_boxes))
            out += [*found[:-1], {**found[-1], **answer}]
        return out

    flat_boxes = flat_steps

    @staticmethod
    def match(patterns, items, place):
        """The first of the patterns that the items at a place read as: name, bound values, length."""
        for name, pattern in patterns:
            bound = {}
            part = items[place:place + len(pattern)]
            if len(part) == len(pattern) and unify(pattern, part, bound):
                return name, bound, len(pattern)
        return None

    def scenario(self, document):
        out = {}
        for key, value in document.items():
            if key == "script":
                value = self.steps_of(value)
            elif key == "machine":
                value = self.machine(value)
            elif key == "package":
                value = self.shortened(value)
            out[key] = value
        return out

    def steps_of(self, steps):
        out, place = [], 0
        while place < len(steps):
            found = self.match(self.steps, steps, place)
            if found:
                out.append(self.shortened(call(found[0], found[1]), {"use"}))
                place += found[2]
            else:
                out.append(self.step(steps[place]))
                place += 1
        return folded(out)

    def step(self, step):
        if not isinstance(step, dict) or "use" in step:
            return step
        out = {}
        for key, value in step.items():
            out[key] = (self.steps_of(value) if key in ("do", "beside")
                        else self.expected(value) if key == "expect"
                        else self.machine(value) if key == "change" else self.shortened(value))
        return out

    def expected(self, written):
        if not isinstance(written, dict) or "use" in written:
            return written
        items = [[key, value] for key, value in written.items()]
        out, place = [], 0
        while place < len(items):
            found = self.match(self.expectations, items, place)
            if found and self.is_worth_it(found, items, place):
                out.append(self.shortened(call(found[0], found[1]), {"use"}))
                place += found[2]
                continue
            key, value = items[place]
            if key == "boxes" and isinstance(value, list):
                value = self.boxes_of(value)
            else:
                value = self.shortened(value)
            if not out or not isinstance(out[-1], dict) or "use" in out[-1]:
                out.append({})
            out[-1][self.shortened(key)] = value
            place += 1
        out = folded(out)
        return out[0] if len(out) == 1 else out or {}

    def is_worth_it(self, found, items, place):
        """One expectation reads better as it is, but for several of a kind."""
        name, bound, length = found
        if length > 1 or not bound:
            return True
        pattern = dict(self.expectations)[name]
        begin = end = place
        while begin > 0 and unify(pattern, items[begin - 1:begin], {}):
            begin -= 1
        while end < len(items) and unify(pattern, items[end:end + 1], {}):
            end += 1
        return end - begin >= LEAST_EACH

    def boxes_of(self, boxes):
        out, place = [], 0
        while place < len(boxes):
            found = self.match(self.boxes, boxes, place)
            answer = None
            if not found and isinstance(boxes[place], dict) and list(boxes[place])[-1:] == ["answer"]:
                bare = {key: value for key, value in boxes[place].items() if key != "answer"}
                found = self.match([each for each in self.boxes if len(each[1]) == 1], [bare], 0)
                answer = boxes[place]["answer"]
            if not found:
                out.append(self.shortened(boxes[place]))
                place += 1
                continue
            named = call(found[0], found[1])
            if answer is not None:
                named = {**(named if isinstance(named, dict) else {"use": named}), "answer": answer}
            out.append(self.shortened(named, {"use"}))
            place += found[2]
        return self.shortened(folded(out), {"use"})

    def machine(self, machine):
        """Members of the machine, or a part of them, that read as a named one."""
        if not isinstance(machine, dict) or "use" in machine:
            return machine
        names, rest = self.faults_of(machine)
        for name, (pattern,) in self.machines:
            bound = {}
            without = self.without(rest, pattern, bound)
            if without is not None:
                names.append(self.shortened(call(name, bound), {"use"}))
                rest = without
        rest = self.shortened(rest)
        if not names:
            return rest
        parts = names + ([rest] if rest else [])
        return parts[0] if len(parts) == 1 else parts

    def faults_of(self, machine):
        """The uses that many faults of one kind are, and what else the machine is."""
        faults = machine.get("faults", [])
        for name, (pattern,) in self.machines:
            bound = [{} for _ in faults]
            if len(faults) >= LEAST_EACH and set(pattern) == {"faults"} and all(
                    unify(pattern["faults"], [fault], each) for fault, each in zip(faults, bound)):
                calls = folded([self.shortened(call(name, each), {"use"}) for each in bound])
                return self.shortened(calls, {"use"}), {key: each for key, each in machine.items() if key != "faults"}
        return [], machine

    def without(self, machine, pattern, bound):
        """A machine without what a pattern says of it; None if it does not say that."""
        rest = dict(machine)
        for key, each in pattern.items():
            if key not in rest:
                return None
            if unify(each, rest[key], bound):
                del rest[key]
            elif isinstance(each, dict) and isinstance(rest[key], dict):
                inner = self.without(rest[key], each, bound)
                if not inner:
                    return None
                rest[key] = inner
            else:
                return None
        return rest

    def shortened(self, value, keep=()):
        """Texts with the names of values in them."""
        if isinstance(value, dict):
            return {self.shortened(key): each if key in keep else self.shortened(each)
                    for key, each in value.items()}
        if isinstance(value, list):
            for name, known in self.values.items():
                if known == value:
                    return f"$({name})"
            return [self.shortened(each) for each in value]
        if isinstance(value, str):
            for name, text in self.order:
                value = value.replace(text, f"$({name})")
        return value


# ---- tables


class Gathering:
    """What several values have in common, with names for what differs."""

    def __init__(self, count):
        self.count = count
        self.given = {}  # name: the values of all

    def general(self, values, path):
        first = values[0]
        if all(on_one_line(each) == on_one_line(first) for each in values):
            return first
        if all(isinstance(each, dict) for each in values) and self.alike(values):
            return self.general_object(values, path)
        if (all(isinstance(each, list) for each in values) and
                len({len(each) for each in values}) == 1):
            return [self.general(list(each), path + [place]) for place, each in enumerate(zip(*values))]
        if all(isinstance(each, str) for each in values):
            return self.general_text(values, path)
        return self.placeholder(values, path)

    @staticmethod
    def alike(objects):
        if len({len(each) for each in objects}) != 1:
            return False
        for keys in zip(*objects):
            if len(set(keys)) > 1 and not all(re.search(r"[\\:.]", key) for key in keys):
                return False
        return True

    def general_object(self, objects, path):
        out = {}
        for keys in zip(*objects):
            key = keys[0] if len(set(keys)) == 1 else self.general_text(list(keys), path + ["key"])
            inner = path + [keys[0] if len(set(keys)) == 1 else "value"]
            out[key] = self.general([each[own] for each, own in zip(objects, keys)], inner)
        return out

    def general_text(self, texts, path):
        begin = os.path.commonprefix(texts)
        end = os.path.commonprefix([each[len(begin):][::-1] for each in texts])[::-1]
        if "$(" in begin and begin.rfind("$(") > begin.rfind(")"):
            begin = begin[:begin.rfind("$(")]
        if ")" in end and (end.find("$(") < 0 or end.find(")") < end.find("$(")):
            end = end[end.find(")") + 1:] if any("$(" in each[len(begin):] for each in texts) else end
        begin, end = whole_words(begin, end)
        if len(begin) + len(end) < 4:
            begin = end = ""
        middles = [each[len(begin):len(each) - len(end)] for each in texts]
        return begin + self.placeholder(middles, path) + end

    def placeholder(self, values, path):
        key = [on_one_line(each) for each in values]
        for name, known in self.given.items():
            if [on_one_line(each) for each in known] == key:
                return f"$({name})"
        name = base = name_of(path)
        number = 2
        while name in self.given:
            name, number = f"{base} {number}", number + 1
        self.given[name] = values
        return f"$({name})"


def whole_words(begin, end):
    """Ends that break no word."""
    begin = re.sub(r"[\w]+$", "", begin)
    end = re.sub(r"^[\w]+", "", end)
    return begin, end


# What stands at a place of a list, and what a key is called.
PLACES = {("type", 1): "text", ("select", 1): "entry", ("select", 0): "list", ("type", 0): "control"}
CALLED = {"match": "match", "key": "path", "script": "steps", "do": "steps",
          "beside": "steps", "yield": "pass", "Dizin": "directory"}


def name_of(path):
    """A name for what stands at a path of a scenario."""
    if tuple(path[-2:]) in PLACES:
        return PLACES[tuple(path[-2:])]
    words = [each for each in path if isinstance(each, str)]
    last = words[-1] if words else "value"
    if ":" in last:
        return {"file": "content", "dir": "entries"}.get(last.split(":")[0], last.split(":")[0])
    if re.search(r"[^\w.]", last) or not last:
        return "values" if "registry" in words else "content" if "files" in words else "value"
    last = last.split(".")[-1]
    last = CALLED.get(last, last)
    last = re.sub(r"^g(?=[A-Z])", "", last)  # globals
    return re.sub(r"(?<=[a-z])[A-Z]", lambda each: " " + each[0].lower(), last[:1].lower() + last[1:])


def gathered(documents):
    """A table of scenarios by their names as cases; None if they have nothing in common."""
    gathering = Gathering(len(documents))
    bodies = [{key: value for key, value in each.items() if key != "name"}
              for each in documents.values()]
    if len({tuple(each) for each in bodies}) != 1:
        return None
    body = gathering.general(bodies, [])
    if isinstance(body, str):
        return None
    cases = {}
    for place, (case, document) in enumerate(documents.items()):
        own = {"name": document["name"]} if "name" in document else {}
        own.update({name: values[place] for name, values in gathering.given.items()})
        cases[case] = own
    return {**body, "cases": cases}


def cases_named(table, files):
    """The files by the names of their cases: without the name of the table in front."""
    stems = [file.stem for file in files]
    if all(stem.startswith(table.stem + "-") for stem in stems):
        stems = [stem[len(table.stem) + 1:] for stem in stems]
    return dict(zip(stems, files))


# ---- commands


def not_laid_out(places):
    """Files that read otherwise than they should, and how they should."""
    for file in files_of(places):
        text = file.read_text(encoding="utf-8")
        wanted = laid_out(json.loads(text))
        if text != wanted:
            yield file, wanted


def command_format(options):
    for file, wanted in not_laid_out(options.places):
        file.write_text(wanted, encoding="utf-8")
        print(f"laid out: {file}")
    return 0


def command_name(options):
    namers = {}
    for file in files_of(options.places):
        document = read(file)
        if file.name == COMMON or "cases" in document:
            continue
        if file.parent not in namers:
            namers[file.parent] = Namer(common_of(file.parent))
        write(file, namers[file.parent].scenario(document))
    return 0


def command_gather(options):
    table = pathlib.Path(options.table)
    files = cases_named(table, [pathlib.Path(each) for each in options.files])
    made = gathered({case: read(file) for case, file in files.items()})
    if made is None:
        print("these scenarios have nothing in common", file=sys.stderr)
        return 1
    for file in files.values():
        file.unlink()
    write(table, made)
    return 0


def names_used(value, used):
    if isinstance(value, dict):
        for key, each in value.items():
            names_used(key, used)
            names_used(each, used)
    elif isinstance(value, list):
        for each in value:
            names_used(each, used)
    elif isinstance(value, str):
        used.add(value)
        used.update(PLACEHOLDER.findall(value))


def unused_names(common):
    """The names of a file that no scenario uses, and neither does a name."""
    used = set()
    for file in common.parent.rglob("*.json"):
        document = read(file)
        names_used([list(named.values()) for named in document.values()] if file.name == COMMON
                   else document, used)
    for kind, named in read(common).items():
        for name in sorted(set(named) - used):
            yield f"{kind} \"{name}\""


def command_check(options):
    wrong = [f"{file}: not laid out; tools/scenarios.py format does it"
             for file, _ in not_laid_out(options.places)]
    for common in files_of(options.places):
        if common.name == COMMON:
            wrong += [f"{common}: nobody uses {each}" for each in unused_names(common)]
    print("\n".join(wrong))
    return 1 if wrong else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(dest="command", required=True)
    for name in ("format", "name", "check"):
        commands.add_parser(name).add_argument("places", nargs="+")
    gather = commands.add_parser("gather")
    gather.add_argument("table")
    gather.add_argument("files", nargs="+")
    options = parser.parse_args()
    return {"format": command_format, "name": command_name, "gather": command_gather,
            "check": command_check}[options.command](options)


if __name__ == "__main__":
    sys.exit(main())
