"""Finds the places where the code can be broken, by the compiler's own reading of it."""

import concurrent.futures
import dataclasses
import hashlib
import json
import os
import pathlib
import re
import shlex

from clang import cindex
from clang.cindex import CursorKind as Kind

VERSION = 3  # of what is found: another one reads all files anew

KINDS = ["condition", "constant", "removed", "swapped", "early end"]


@dataclasses.dataclass(frozen=True)
class Place:
    """A piece of a file, and what replaces it."""
    file: str  # from the project's folder
    begin: int  # bytes
    end: int
    text: str
    kind: str
    within: str  # the function, or the table
    line: int
    was: str  # the lines that change, as they are and as they become
    becomes: str

    @property
    def room(self):
        """The folder of src/ that it lies in; a program is a room by itself."""
        parts = self.file.split("/")
        return parts[2] if parts[1] == "programs" else parts[1]

    @property
    def key(self):
        """What it is known by, wherever its line goes."""
        return self.file, self.within, self.was, self.becomes


OTHER_OPERATOR = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
                  "&&": "||", "||": "&&", "and": "or", "or": "and"}
SYMMETRIC = {"max", "min", "swap", "equal", "equalText", "add", "multiply"}

LOOPS = {Kind.FOR_STMT, Kind.WHILE_STMT, Kind.DO_STMT, Kind.CXX_FOR_RANGE_STMT}
FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR,
             Kind.FUNCTION_TEMPLATE, Kind.CONVERSION_FUNCTION}
TYPES = {Kind.STRUCT_DECL, Kind.CLASS_DECL, Kind.CLASS_TEMPLATE}
LEAVES = {Kind.BREAK_STMT, Kind.CONTINUE_STMT}


class Source:
    """A file, and the places found in it."""

    def __init__(self, root, name):
        self.name = name
        self.path = str(root / name)
        self.bytes = (root / name).read_bytes()
        self.places = {}

    def text(self, begin, end):
        return self.bytes[begin:end].decode()

    def lines(self, begin, end, text):
        """The lines from `begin` to `end`, as they are and with the piece replaced."""
        first = self.bytes.rfind(b"\n", 0, begin) + 1
        while first and not self.text(first, begin).strip(" {}"):
            if begin != end and self.text(begin, end).strip(" {}"):
                break
            first = self.bytes.rfind(b"\n", 0, first - 1) + 1
        last = self.bytes.find(b"\n", end)
        last = len(self.bytes) if last < 0 else last
        was = self.text(first, last)
        becomes = self.text(first, begin) + text + self.text(end, last)
        return " ".join(was.split()), " ".join(becomes.split())

    def add(self, kind, begin, end, text, within):
        was, becomes = self.lines(begin, end, text)
        line = self.bytes.count(b"\n", 0, begin) + 1
        self.places.setdefault((begin, end, text), Place(
            self.name, begin, end, text, kind, within, line, was, becomes))


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def header_parts(text, begin):
    """Where the two semicolons of a for's header lie, and where the header ends."""
    depth, semicolons = 0, []
    for match in re.finditer(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])\'|[(){}\[\];]', text):
        sign = match[0]
        if sign in "({[":
            depth += 1
        elif sign in ")}]":
            depth -= 1
            if depth == 0:
                return semicolons, begin + match.start()
        elif sign == ";" and depth == 1:
            semicolons.append(begin + match.start())
    return semicolons, begin


class Finder:
    """Walks what the compiler has read of one file."""

    def __init__(self, source):
        self.source = source

    def add(self, kind, begin, end, text, within):
        self.source.add(kind, begin, end, text, within)

    def walk(self, cursor, within, parent):
        kind = cursor.kind
        if kind == Kind.STATIC_ASSERT:
            return
        if cursor.location.file is None or cursor.location.file.name != self.source.path:
            if kind not in (Kind.UNEXPOSED_EXPR, Kind.DECL_STMT):
                return
        within = self.name_of(cursor, within)
        children = list(cursor.get_children())
        self.look(cursor, children, within)
        for child in children:
            self.walk(child, within, cursor)

    @staticmethod
    def name_of(cursor, within):
        if cursor.kind in FUNCTIONS | TYPES:
            owner = cursor.semantic_parent
            if cursor.kind in FUNCTIONS and owner is not None and owner.kind in TYPES:
                return f"{owner.spelling}::{cursor.spelling}"
            return cursor.spelling or within
        if cursor.kind == Kind.VAR_DECL and not within:
            return cursor.spelling
        return within

    def look(self, cursor, children, within):
        kind = cursor.kind
        if kind == Kind.BINARY_OPERATOR and len(children) == 2:
            self.operator(children[0].extent.end.offset, children[1].extent.start.offset, within)
        elif kind == Kind.CALL_EXPR:
            self.call(cursor, children, within)
        elif kind in (Kind.IF_STMT, Kind.WHILE_STMT):
            self.branch(children, within)
        elif kind == Kind.CONDITIONAL_OPERATOR and children:
            self.negate(children[0], within)
        elif kind in (Kind.INTEGER_LITERAL, Kind.CXX_BOOL_LITERAL_EXPR):
            self.constant(cursor, within)
        elif kind in (Kind.COMPOUND_STMT, Kind.CASE_STMT, Kind.DEFAULT_STMT):
            self.statements(children[1:] if kind == Kind.CASE_STMT else children, within)
        elif kind in FUNCTIONS:
            self.function(cursor, children, within)
        if kind in LOOPS:
            self.loop(cursor, children, within)

    def operator(self, begin, end, within):
        between = self.source.text(begin, end) if begin < end else ""
        sign = between.strip()
        if sign in OTHER_OPERATOR:
            begin += between.index(sign)
            self.add("condition", begin, begin + len(sign), OTHER_OPERATOR[sign], within)

    def is_comparison(self, condition):
        """Whether negating is what changing its operator does already."""
        children = list(condition.get_children())
        if condition.kind in (Kind.UNEXPOSED_EXPR, Kind.PAREN_EXPR) and len(children) == 1:
            return self.is_comparison(children[0])
        if condition.spelling in ("operator==", "operator!="):
            return True
        if condition.kind != Kind.BINARY_OPERATOR or len(children) != 2:
            return False
        begin, end = children[0].extent.end.offset, children[1].extent.start.offset
        return begin < end and self.source.text(begin, end).strip() in ("==", "!=")

    def negate(self, condition, within):
        begin, end = span(condition)
        if begin < end and not self.is_comparison(condition):
            text = self.source.text(begin, end)
            bare = re.fullmatch(r"!([\w.:>\-]+(?:\([^()]*\))?)", text)
            self.add("condition", begin, end, bare[1] if bare else f"!({text})", within)

    def branch(self, children, within):
        """The condition of an if or a while; one that declares something cannot be negated."""
        declared = [each for each in children[:2] if each.kind.is_declaration() or
                    each.kind == Kind.DECL_STMT]
        conditions = [each for each in children if each.kind.is_expression()]
        if not conditions:
            return
        begin, end = span(conditions[0])
        if all(span(each)[1] <= begin or span(each)[0] >= end for each in declared):
            self.negate(conditions[0], within)
        bodies = [each for each in children if span(each)[0] >= end and each != conditions[0]]
        self.statements(bodies, within)

    def constant(self, cursor, within):
        begin, end = span(cursor)
        text = self.source.text(begin, end)
        if text in ("true", "false"):
            self.add("constant", begin, end, "false" if text == "true" else "true", within)
        elif match := re.fullmatch(r"([1-9]\d*|0)([uUlLzZ]*)", text):
            self.add("constant", begin, end, f"{int(match[1]) + 1}{match[2]}", within)
        elif re.fullmatch(r"0[xXbB][\da-fA-F']+[uUlLzZ]*", text):
            self.add("constant", begin, end, f"({text} + 1)", within)

    def statements(self, children, within):
        """Statements that can go: what is done for its effect, and what leaves."""
        for each in children:
            leaves = each.kind in LEAVES or (
                each.kind == Kind.RETURN_STMT and not list(each.get_children()))
            begin, end = span(each)
            if (each.kind.is_expression() or leaves) and begin < end and self.ends_there(end):
                self.add("removed", begin, end, "", within)

    def ends_there(self, end):
        return self.source.bytes[end:end + 20].lstrip().startswith(b";")

    def call(self, cursor, children, within):
        name = cursor.spelling
        if name.startswith("operator") and len(children) == 3:
            begin, end = span(children[1])
            if self.source.text(begin, end) in OTHER_OPERATOR:
                self.operator(begin, end, within)
            return
        if name in SYMMETRIC or name.startswith("operator"):
            return
        arguments = [each for each in cursor.get_arguments() if each is not None]
        for one, other in zip(arguments, arguments[1:]):
            self.swap(one, other, within)

    def swap(self, one, other, within):
        (begin, end), (other_begin, other_end) = span(one), span(other)
        if not (begin < end <= other_begin < other_end and self.alike(one.type, other.type)):
            return
        if any(each.extent.start.file is None or each.extent.start.file.name != self.source.path
               for each in (one, other)):
            return
        first, second = self.source.text(begin, end), self.source.text(other_begin, other_end)
        # A range from its end to its begin is nothing that a test can count on to fail.
        a_range = first.endswith("begin()") and second.endswith("end()")
        if first != second and not a_range:
            self.add("swapped", begin, other_end,
                     second + self.source.text(end, other_begin) + first, within)

    @staticmethod
    def alike(one, other):
        names = [re.sub(r"\bconst\b|&|\s", "", each.get_canonical().spelling)
                 for each in (one, other)]
        return names[0] == names[1] and "lambda" not in names[0]

    def function(self, cursor, children, within):
        bodies = [each for each in children if each.kind == Kind.COMPOUND_STMT]
        if not bodies or cursor.result_type.kind != cindex.TypeKind.VOID:
            return
        statements = list(bodies[-1].get_children())
        if not statements or (len(statements) == 1 and statements[0].kind.is_expression()):
            return
        begin = bodies[-1].extent.start.offset + 1
        self.add("early end", begin, begin, " return;", within)

    def loop(self, cursor, children, within):
        begin, end = span(cursor)
        if cursor.kind == Kind.FOR_STMT:
            semicolons, header_end = header_parts(self.source.text(begin, end), begin)
            for each in children:
                if len(semicolons) == 2 and semicolons[0] < span(each)[0] < semicolons[1]:
                    self.negate(each, within)
            self.statements([each for each in children if span(each)[0] > header_end], within)
        if cursor.kind == Kind.DO_STMT:
            self.negate(children[-1], within)
        body = children[0] if cursor.kind == Kind.DO_STMT else children[-1]
        self.once(body, within)

    def once(self, body, within):
        begin, end = span(body)
        if body.kind == Kind.COMPOUND_STMT:
            self.add("early end", end - 1, end - 1, " break; ", within)
        elif self.ends_there(end):
            text = self.source.text(begin, end)
            stop = self.source.bytes.index(b";", end) + 1
            self.add("early end", begin, stop, f"{{ {text}; break; }}", within)


def included(unit):
    """The file that a unit of one file consists of."""
    text = pathlib.Path(unit).read_text()
    match = re.search(r'#include "(.*)"', text) if "generated by CMake" in text else None
    return match[1] if match else unit


def units(tree, build):
    """The files of src/ that are compiled: name, the file that the compiler gets, its words."""
    found = {}
    for row in json.loads((build / "compile_commands.json").read_text()):
        file = pathlib.Path(included(row["file"]))
        if file.suffix == ".cpp" and file.is_relative_to(tree / "src"):
            words = shlex.split(row["command"])[1:]
            place = words.index("-o")
            del words[place:place + 2]
            words.remove("-c")
            words.remove(row["file"])
            found[str(file.relative_to(tree))] = (row["file"], words)
    return found


def read(tree, name, unit, words, directory):
    """All places of a file, as plain rows."""
    os.chdir(directory)
    source = Source(pathlib.Path(tree), name)
    parsed = cindex.Index.create().parse(unit, words)
    worst = [each.spelling for each in parsed.diagnostics if each.severity >= 3]
    if worst:
        raise RuntimeError(f"{name} cannot be read: {worst[0]}")
    finder = Finder(source)
    for cursor in parsed.cursor.get_children():
        file = cursor.location.file
        if file is not None and file.name == source.path:
            finder.walk(cursor, "", None)
    return [dataclasses.asdict(each) for each in source.places.values()]


def fingerprint(tree, name, words):
    content = (tree / name).read_bytes() + json.dumps([VERSION, words]).encode()
    return hashlib.sha256(content).hexdigest()


def find(tree, build, cache, jobs):
    """All places of all files, file by file; what was read before is taken from the cache."""
    known = json.loads(cache.read_text()) if cache.exists() else {}
    rows, left = {}, {}
    compiled = units(tree, build)
    for name, (unit, words) in sorted(compiled.items()):
        print_of = fingerprint(tree, name, words)
        if known.get(name, {}).get("print") == print_of:
            rows[name] = known[name]
        else:
            left[name] = (unit, words, print_of)
    with concurrent.futures.ProcessPoolExecutor(jobs) as pool:
        futures = {name: pool.submit(read, str(tree), name, unit, words, str(build))
                   for name, (unit, words, _) in left.items()}
        try:
            for name, future in futures.items():
                rows[name] = {"print": left[name][2], "places": future.result()}
        except BaseException:
            pool.shutdown(cancel_futures=True)
            raise
    cache.write_text(json.dumps(rows))
    return [Place(**row) for name in sorted(rows) for row in rows[name]["places"]]
