"""The state of a machine made of Wine, read from outside: the files on its drives, its registry and
its shortcuts. What has changed since a first look can be told, and taken back."""

import hashlib
import os
import pathlib
import re
import shutil
import stat
import struct

HIDDEN, READ_ONLY, SYSTEM = 2, 1, 4
ATTRIBUTES = (("hidden", HIDDEN), ("readonly", READ_ONLY), ("system", SYSTEM))


DOS_ATTRIBUTES = "user.DOSATTRIB"  # where Wine keeps what the host's mode does not tell


# ---- files


def mark_of(host_path):
    """What tells a changed entry from an unchanged one; mode and attributes first."""
    state = os.lstat(host_path)
    mark = (state.st_mode, stored_attributes(host_path))
    if stat.S_ISDIR(state.st_mode):
        return mark
    return (*mark, state.st_size, state.st_mtime_ns, state.st_ino)


def stored_attributes(host_path):
    try:
        return os.getxattr(host_path, DOS_ATTRIBUTES, follow_symlinks=False)
    except OSError:
        return b""


def take_back_mark(host_path, mark):
    """Gives an entry the mode and the attributes that it had."""
    os.chmod(host_path, stat.S_IMODE(mark[0]))
    if mark[1]:
        os.setxattr(host_path, DOS_ATTRIBUTES, mark[1])
    elif stored_attributes(host_path):
        os.removexattr(host_path, DOS_ATTRIBUTES)


class Drive:
    """One drive: its letter and the host's folder that it lies over. `left_out` are paths below it
    that nobody looks at; `views` are folders that a program sees elsewhere, by where they lie."""

    def __init__(self, letter, folder, left_out=(), views=()):
        self.letter = letter.upper()
        self.views = dict(views)
        self.folder = pathlib.Path(folder)
        self.left_out = {str(self.folder / each) for each in left_out}

    def entries(self):
        """Host paths and what tells a changed entry from an unchanged one."""
        found = {}
        self._add(str(self.folder), found)
        return found

    def _add(self, folder, found):
        with os.scandir(folder) as entries:
            for entry in entries:
                if entry.path in self.left_out:
                    continue
                found[entry.path] = mark_of(entry.path)
                if entry.is_dir(follow_symlinks=False):
                    self._add(entry.path, found)

    def windows_path(self, host_path):
        relative = os.path.relpath(host_path, self.folder)
        for folder, seen in self.views.items():
            if relative == folder or relative.startswith(folder + "/"):
                relative = seen + relative[len(folder):]
                break
        return f"{self.letter}:\\" + relative.replace("/", "\\")


# What 64-bit Windows shows to programs of 32 bits under another name.
SEEN_BY_32_BITS = {"windows/syswow64": "windows/system32",
                   "windows/system32": "windows/system32 of 64 bits"}
KEY_OF_32_BITS = "Wow6432Node"


def attributes_of(host_path):
    """Names of the attributes that Windows sees on an entry."""
    stored = stored_attributes(host_path).rstrip(b"\0")
    bits = int(stored, 16) if stored else 0
    if not os.stat(host_path).st_mode & 0o222:
        bits |= READ_ONLY
    return [name for name, bit in ATTRIBUTES if bits & bit]


def sha256_of(host_path):
    digest = hashlib.sha256()
    with open(host_path, "rb") as file:
        while block := file.read(1 << 20):
            digest.update(block)
    return digest.hexdigest()


class Files:
    """The files of all drives of a machine, against a first look at them."""

    def __init__(self, drives, template, sources):
        """`template`: the folder that drive C: is a copy of; `sources`: where the other files on it
        came from, by their paths."""
        self.drives = drives
        self.template = pathlib.Path(template)
        self.sources = sources
        self.first = {drive.letter: drive.entries() for drive in drives}
        self.now = self.first

    def look(self):
        self.now = {drive.letter: drive.entries() for drive in self.drives}

    def by_path(self):
        """Upper-case Windows path to host path, of all that is there."""
        return {drive.windows_path(path).upper(): path
                for drive in self.drives for path in self.now[drive.letter]}

    def new(self):
        """Windows path to host path of what was not there, or was another file."""
        found = {}
        for drive in self.drives:
            first = self.first[drive.letter]
            for path, mark in self.now[drive.letter].items():
                if first.get(path) != mark:
                    found[drive.windows_path(path)] = path
        return found

    def take_back(self):
        """Makes everything as it was at the first look; C: from the template, other drives were
        empty."""
        for drive in self.drives:
            first, now = self.first[drive.letter], self.now[drive.letter]
            for path in sorted(now, reverse=True):
                if first.get(path) != now[path]:
                    self._remove(path, keep_folder=path in first)
            for path in sorted(first):
                if not os.path.lexists(path):
                    self._restore(drive, path)
                    first[path] = mark_of(path)
                elif first[path] != now.get(path):
                    take_back_mark(path, first[path])

    @staticmethod
    def _remove(path, keep_folder):
        if os.path.isdir(path) and not os.path.islink(path):
            if not keep_folder:
                os.chmod(path, 0o700)
                shutil.rmtree(path)
        else:
            os.unlink(path)

    def _restore(self, drive, path):
        source = self.sources.get(path, self.template / os.path.relpath(path, drive.folder))
        if source.is_dir():
            os.mkdir(path)
            shutil.copystat(source, path)
        else:
            shutil.copy2(source, path)
        owner = os.stat(os.path.dirname(path))
        os.chown(path, owner.st_uid, owner.st_gid)


# ---- the registry


ESCAPE = re.compile(r"\\(x[0-9a-fA-F]{1,4}|.)")


def unescape(text):
    def one(match):
        code = match.group(1)
        if code[0] == "x" and len(code) > 1:
            return chr(int(code[1:], 16))
        return {"n": "\n", "r": "\r", "t": "\t", "0": "\0"}.get(code, code)
    return ESCAPE.sub(one, text)


VALUE = re.compile(r'(@|"(?:[^"\\]|\\.)*")=(.*)', re.S)


def read_value(written):
    """Type and value of one value: a text, a number, or hexadecimal digits."""
    if written.startswith('"'):
        return {"type": 1, "value": unescape(written[1:-1])}
    if written.startswith("dword:"):
        return {"type": 4, "value": int(written[6:], 16)}
    kind, data = written.split(":", 1)
    number = int(kind[kind.index("(") + 1:-1], 16) if "(" in kind else 3
    if kind.startswith("str"):
        text = unescape(data[1:-1])
        return {"type": number, "value": text.rstrip("\0") if number != 7 else text}
    digits = data.replace(",", "").replace("\\\n", "").replace(" ", "")
    if number in (1, 2):  # a text without its NUL
        return {"type": number, "value": bytes.fromhex(digits).decode("utf-16-le").rstrip("\0")}
    return {"type": number, "value": digits}


def read_values(block):
    values = {}
    lines = block.replace("\\\n", "").split("\n")
    for line in lines[1:]:
        match = VALUE.match(line)
        if match:
            name = "" if match.group(1) == "@" else unescape(match.group(1)[1:-1])
            values[name] = read_value(match.group(2))
    return values


class Registry:
    """The keys Software as the driver saves them, against a first look at them."""

    FILES = (("HKEY_LOCAL_MACHINE", "machine.reg"), ("HKEY_CURRENT_USER", "user.reg"))

    def __init__(self, folder, of_32_bits=False):
        """`of_32_bits`: as 64-bit Windows shows it to a program of 32 bits."""
        self.folder = pathlib.Path(folder)
        self.of_32_bits = of_32_bits
        self.known = {}  # by hive: what a block of text says
        self.first = self._read()
        self.now = self.first

    def look(self):
        self.now = self._read()

    def _read(self):
        """(hive, key) to the block of text that holds its values. What has not changed since the
        first look is not read again."""
        found = {}
        for hive, name in self.FILES:
            text = (self.folder / name).read_text(encoding="utf-8", errors="surrogateescape")
            blocks = text.split("\n\n")[1:]
            known = self.known.setdefault(hive, {})
            for block in blocks:
                place = known.get(block)
                if place is None and block.startswith("["):
                    place = known[block] = self._place(hive, block)
                if place is not None:
                    found[place[0]] = place[1]
        return found

    def _place(self, hive, block):
        header, _, rest = block.partition("\n")
        lines = [line for line in rest.rstrip("\n").split("\n") if not line.startswith("#time=")]
        key = header[1:header.rindex("]")]
        root = "Software"
        if self.of_32_bits and hive == "HKEY_LOCAL_MACHINE":
            first, _, rest = key.partition("\\\\")
            if first.lower() == KEY_OF_32_BITS.lower():
                key = rest
            elif first.lower() != "classes":  # which both share
                root = "Software of 64 bits"
        key = root + ("\\\\" + key if key else "")
        return (hive, key), "\n".join(["", *lines])

    def values(self, hive, key):
        """The values of a key, letter case aside; none without the key."""
        if not hasattr(self, "_upper") or self._upper_of is not self.now:
            self._upper = {(h, unescape(k).upper()): b for (h, k), b in self.now.items()}
            self._upper_of = self.now
        block = self._upper.get((hive, key.upper()))
        return None if block is None else read_values(block)

    def changed(self):
        """Keys that are new or have other values, with their values now; gone ones with none."""
        found = {}
        for place, block in self.now.items():
            if self.first.get(place) != block:
                found[place[0], unescape(place[1])] = read_values(block)
        now = self.with_parents(self.now)
        for place in self.first:
            if place not in now:
                found[place[0], unescape(place[1])] = None
        return found

    @staticmethod
    def with_parents(places):
        """All keys, those too that only hold other keys and have no block of their own."""
        found = set()
        for hive, key in places:
            while key and (hive, key) not in found:
                found.add((hive, key))
                key = key.rpartition("\\\\")[0]
        return found

    def way_back(self):
        """The `registry` of a scenario's machine that makes everything as it was."""
        back = {hive: {} for hive, _ in self.FILES}
        first = self.with_parents(self.first)
        new = self.with_parents(self.now) - first
        for hive, key in sorted(new):
            if (hive, key.rpartition("\\\\")[0]) in first:
                back[hive][unescape(key)] = None
        now = self.with_parents(self.now)
        for place, block in self.first.items():
            if self.now.get(place, "" if place in now else None) == block:
                continue
            values = {name: None for name in read_values(self.now.get(place, ""))}
            for name, value in read_values(block).items():
                key = "hex" if value["type"] not in (1, 2, 4, 7) else "text"
                values[name] = (value["value"] if value["type"] == 4 else
                                {"type": value["type"], key: value["value"]})
            back[place[0]][unescape(place[1])] = values
        return {hive: keys for hive, keys in back.items() if keys}


# ---- shortcuts


def read_link(host_path, code_page=1252):
    """The properties of a shell link that its maker set, on a machine of that code page."""
    encoding = "utf-8" if code_page == 65001 else f"cp{code_page}"
    data = pathlib.Path(host_path).read_bytes()
    size, flags = struct.unpack_from("<I16xI", data)
    show, = struct.unpack_from("<I", data, 60)
    icon_index, = struct.unpack_from("<i", data, 56)
    place = size
    if flags & 1:  # the target as a list of identifiers
        place += 2 + struct.unpack_from("<H", data, place)[0]
    target = ""
    if flags & 2:  # the target as a path
        length, _, info = struct.unpack_from("<3I", data, place)
        if info & 1:
            begin = place + struct.unpack_from("<I", data, place + 16)[0]
            target = data[begin:data.index(b"\0", begin)].decode(encoding)
        place += length
    texts = {}
    for bit, name in ((4, "Description"), (8, "Relative"), (16, "WorkingDirectory"),
                      (32, "Arguments"), (64, "Icon")):
        texts[name] = ""
        if flags & bit:
            count, = struct.unpack_from("<H", data, place)
            width = 2 if flags & 0x80 else 1
            raw = data[place + 2:place + 2 + count * width]
            texts[name] = raw.decode("utf-16-le" if width == 2 else encoding).rstrip("\0")
            place += 2 + count * width
    return {"TargetPath": target, "Arguments": texts["Arguments"], "WindowStyle": show,
            "Icon": texts["Icon"], "IconIndex": icon_index, "Description": texts["Description"],
            "WorkingDirectory": texts["WorkingDirectory"]}
