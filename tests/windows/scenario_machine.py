"""Which scenarios a machine made of Wine can carry, and what has to be done for one: the machine that
it needs (language, drives), and the scenario as the driver is to play it there."""

import base64
import copy
import json
import pathlib
import re
import subprocess

USER_HOME = "C:\\Users\\bob"
PROGRAM = USER_HOME + "\\Downloads\\ZEVSetup.exe"


class LeftOut(Exception):
    """Why a scenario cannot be carried."""


# Windows as Wine plays it; None is what it plays by itself.
VERSIONS = {
    (1, 4, 10): "win98",
    (2, 4, 0): "nt40",
    (2, 5, 0): "win2k",
    (2, 5, 1): "winxp",
    (2, 5, 2): "win2003",
    (2, 6, 0): "vista",
    (2, 6, 1): None,
    (2, 6, 2): "win8",
}
BEFORE_PROFILES = ("win98", "nt40", "win2k", "winxp", "win2003")  # they do not ask for local data

# Languages of the system whose locales can be made, by their code pages.
LANGUAGES = {
    1252: {1031: "de_DE", 1033: None, 1036: "fr_FR", 3079: "de_AT", 3082: "es_ES", 4108: "fr_CH"},
    932: {1041: "ja_JP"},
    936: {2052: "zh_CN"},
    949: {1042: "ko_KR"},
    950: {1028: "zh_TW"},
    65001: {1081: "hi_IN"},
}


def locale_of(page):
    """A language of a code page that has one alone."""
    locale, = LANGUAGES[page].values()
    return locale


DRIVE_TYPES = {2: "floppy", 3: "hd", 4: "network", 5: "cdrom", 6: "ramdisk"}
PLENTY = (10 ** 9, 10 ** 12)  # bytes: enough for an install, and nothing that a figure cannot hold

# Where the shell looks up the folders of the user.
SHELL_FOLDERS = {"documents": "Personal", "desktop": "Desktop", "localAppData": "Local AppData"}
SPECIAL_FOLDERS = {"2": "Programs", "5": "Personal", "16": "Desktop", "28": "Local AppData"}
USER_SHELL_FOLDERS = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders"

USUAL_PLACES = {"temp": "\\AppData\\Local\\Temp", "documents": "\\Documents"}

USUAL_FOLDERS = (
    USER_HOME + "\\AppData\\Local\\Temp", USER_HOME + "\\Documents", USER_HOME + "\\Desktop",
    USER_HOME + "\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs",
    "C:\\Program Files", "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs",
)

# The usual values of the AVI file services.
AVI_VALUES = {
    "AVIFile\\Compressors\\vids": "{00020001-0000-0000-C000-000000000046}",
    "AVIFile\\Compressors\\auds": "{0002000F-0000-0000-C000-000000000046}",
    "AVIFile\\Extensions\\WAV": "{00020003-0000-0000-C000-000000000046}",
    "AVIFile\\Extensions\\AVI": "{00020000-0000-0000-C000-000000000046}",
    "AVIFile\\Extensions\\AU": "{00020003-0000-0000-C000-000000000046}",
    "AVIFile\\Extensions\\BMP": "{00020006-0000-0000-C000-000000000046}",
    "AVIFile\\Extensions\\DIB": "{00020006-0000-0000-C000-000000000046}",
    "AVIFile\\RIFFHandlers\\AVI": "{00020000-0000-0000-C000-000000000046}",
    "AVIFile\\RIFFHandlers\\WAVE": "{00020003-0000-0000-C000-000000000046}",
    "AVIFile\\CLSID": "{00022602-0000-0000-C000-000000000046}",
}


BROKEN_PROGRAM = "a misread program file, which starts on the simulated machine alone"

# Scenarios that a machine made of Wine could play, but to another end, and why.
KNOWN_TO_DIFFER = {
    "package/misread-member-is-rejected": BROKEN_PROGRAM,
    "package/one-byte-short": BROKEN_PROGRAM,
    "package/one-byte-short-touches-the-targets-alone": BROKEN_PROGRAM,
    "destination/colon-fails-at-the-making": "Wine makes folders with a colon in their names",
    "browser/new-folder-with-a-colon-ends-the-program":
        "Wine makes folders with a colon in their names",
    "file-type/type-among-1024-keys-is-seen": "Wine has many classes of its own",
    "shortcuts/hidden-start-menu-leads-to-program-manager":
        "Wine's Program Manager makes the group, where the simulated one notes what it is told",
    "shortcuts/vanished-programs-lead-to-program-manager":
        "Wine's Program Manager crashes without a folder of programs",
}


class Plan:
    """One scenario and what it needs."""

    def __init__(self, path, document):
        self.path = pathlib.Path(path)
        self.document = document
        self.version = None
        self.locale = None
        self.drives = {}       # letter to Wine's word for the type
        self.installer = PROGRAM
        self.package = dict(document.get("package", {}))
        # As the driver prepares it, which looks whether the code page is this one.
        self.machine = {"codePage": 1252, "files": {}, "registry": {}}
        self.without_members = False  # the package was cut to less than the image
        self.own_expectations = []  # (rule, pattern) of those that cannot hold for this one

    def configuration(self):
        """Scenarios with the same one can share a machine."""
        return self.locale or "", tuple(sorted(self.drives.items()))

    def set_value(self, hive, key, name, value):
        self.machine["registry"].setdefault(hive, {}).setdefault(key, {})[name] = value

    def driven(self):
        """The scenario as the driver gets it."""
        return {"machine": self.machine, "script": self.document.get("script", [])}


# ---- the sides of a machine


def take_version(version, plan):
    if version.get("fails"):
        raise LeftOut("a version that cannot be asked")
    whole = {"platform": 2, "major": 6, "minor": 1, "build": 7601, "csd": "", "suiteMask": 256,
             "productType": 1, **version}
    if whole["csd"] or whole["suiteMask"] != 256 or whole["productType"] != 1:
        raise LeftOut("service pack, suite or product type")
    number = whole["platform"], whole["major"], whole["minor"]
    if number not in VERSIONS:
        raise LeftOut("a version that Wine does not play")
    plan.version = VERSIONS[number]


def only(usual, reason):
    def take(value, _):
        if value != usual:
            raise LeftOut(reason)
    return take


def take_language(language, plan):
    page = plan.document["machine"].get("codePage", 1252)
    if language not in LANGUAGES.get(page, {}):
        raise LeftOut("a language without a locale of its code page")
    plan.locale = LANGUAGES[page][language]


def take_code_page(page, plan):
    if page not in LANGUAGES:
        raise LeftOut("another code page")
    plan.machine["codePage"] = page
    if "uiLanguage" not in plan.document["machine"] and page != 1252:
        plan.locale = locale_of(page)


def take_folders(folders, plan):
    for name, folder in folders.items():
        if name == "special":
            continue
        if folder is None and name == "localAppData" and plan.version in BEFORE_PROFILES:
            continue
        if folder is None:
            raise LeftOut("a folder that the system does not know")
        if name == "temp":
            if not folder.endswith("\\"):
                raise LeftOut("a temporary folder without its backslash")
            plan.machine["folders"] = {"temp": folder}
        elif name in SHELL_FOLDERS:
            set_folder(SHELL_FOLDERS[name], folder, plan)
        else:
            raise LeftOut("another Windows or system folder")
        move_away(name, folder, plan)
        plan.machine["files"][folder.rstrip("\\")] = {"directory": True}
    for number, folder in folders.get("special", {}).items():
        if folder is None or number not in SPECIAL_FOLDERS:
            raise LeftOut("a folder that the system does not know")
        set_folder(SPECIAL_FOLDERS[number], folder, plan)
        plan.machine["files"][folder.rstrip("\\")] = {"directory": True}


def move_away(name, folder, plan):
    """The usual folder is not there if the system names another one. That of the desktop stays:
    Wine's own desktop has it open."""
    if name == "desktop":
        plan.own_expectations.append(("the folder of the desktop, which Wine has open",
                                      re.compile(r"dir:C:\\+Users\\+bob\\+Desktop\"")))
    usual = USER_HOME + USUAL_PLACES.get(name, "")
    if name in USUAL_PLACES and not (folder.upper() + "\\").startswith(usual.upper() + "\\"):
        plan.machine["files"][usual] = None


def set_folder(name, folder, plan):
    plan.set_value("HKEY_CURRENT_USER", USER_SHELL_FOLDERS, name, folder)


def take_drives(drives, plan):
    for letter, drive in drives.items():
        if drive is None or letter.rstrip(":").upper() == "C" and drive:
            raise LeftOut("another drive C:")
        if set(drive) - {"type", "free"} or drive.get("type", 3) not in DRIVE_TYPES:
            raise LeftOut("clusters, labels or contents of a drive")
        if not PLENTY[0] <= drive.get("free", PLENTY[0]) <= PLENTY[1]:
            raise LeftOut("little or very much free space")
        if letter.rstrip(":").upper() != "C":
            plan.drives[letter.rstrip(":").lower()] = DRIVE_TYPES[drive.get("type", 3)]


def checked_file(entry, folder):
    """An entry of `files` as the driver can lay it."""
    if not isinstance(entry, dict):
        return entry
    if entry.get("deny"):
        raise LeftOut("what is refused on a file or folder")
    attributes = set(entry.get("attributes", []))
    if "readonly" in attributes and attributes - {"readonly"} and not entry.get("directory"):
        raise LeftOut("a hidden file that is read-only: Wine cannot show it again")
    if entry.get("locked"):
        raise LeftOut("a file whose attributes cannot change")
    if "host" in entry:
        data = (folder / entry["host"]).read_bytes()
        entry = {**entry, "base64": base64.b64encode(data).decode()}
        del entry["host"]
    return entry


def take_files(files, plan):
    for path, entry in files.items():
        if entry is None and re.fullmatch(r"C:\\(windows|users)?(\\system32)?\\?", path, re.I):
            raise LeftOut("a machine without a folder that Wine lives in")
        plan.machine["files"][path] = checked_file(entry, plan.path.parent)


def take_registry(registry, plan):
    for hive, keys in registry.items():
        if hive == "deny" or isinstance(keys, dict) and "deny" in keys:
            raise LeftOut("keys that cannot be written")
        for key, values in keys.items():
            if isinstance(values, dict):
                own = plan.machine["registry"].setdefault(hive, {})
                own[key] = {**(own.get(key) or {}), **values}
            else:
                plan.machine["registry"].setdefault(hive, {})[key] = values


def take_windows(windows, plan):
    plan.machine["windows"] = windows


def take_installer(installer, plan):
    if not installer.upper().startswith("C:\\"):
        raise LeftOut("an installer on another drive")
    if not installer.lower().endswith(".exe"):
        raise LeftOut("an installer that is no .exe")
    plan.installer = installer


def take_none(reason):
    def take(value, _):
        if value:
            raise LeftOut(reason)
    return take


def take_services(services, _):
    if not all(services.values()):
        raise LeftOut("services that are not there")


# The version comes first: other sides ask for it.
SIDES = {
    "version": take_version,
    "architecture": only(9, "another architecture"),
    "wow64": only(False, "emulation of 32 bits"),
    "metrics": take_none("metrics of the system"),
    "productInfo": only(0, "the edition"),
    "uiLanguage": take_language,
    "codePage": take_code_page,
    "user": only("bob", "another account, or none"),
    "domain": only("BOBPC", "another domain, or none"),
    "folders": take_folders,
    "drives": take_drives,
    "files": take_files,
    "registry": take_registry,
    "windows": take_windows,
    "installer": take_installer,
    "services": take_services,
    "programs": take_none("programs that do not just start and end"),
    "faults": take_none("faults"),
}


# ---- the script


CHANGES = {"files", "registry", "windows"}


def check_change(change, folder):
    for side in change:
        if side not in CHANGES:
            raise LeftOut(f"a change while it runs: {side}")
    for entry in change.get("files", {}).values():
        if isinstance(entry, dict) and "host" in entry:
            raise LeftOut("a change while it runs: files of the host")
        checked_file(entry, folder)


def check_steps(steps, folder):
    for step in steps:
        if "at" in step:
            if "box" not in step["at"]:
                raise LeftOut("points in the middle of a pass")
            check_steps(step["do"], folder)
        if "set" in step:
            raise LeftOut("globals or properties written by the script")
        if "change" in step:
            check_change(step["change"], folder)


# ---- the package


def take_package(plan, image_size, package_size):
    """What the scenario cuts must leave the image whole, or else it starts nowhere."""
    cuts = plan.package
    if "file" in cuts:
        raise LeftOut("a package of its own")
    if cuts.get("cutStart") or "keepEnd" in cuts:
        raise LeftOut("a package without the beginning of its image")
    if cuts.get("length", package_size) < image_size:
        if set(cuts) != {"length"}:
            raise LeftOut("a package without the end of its image")
        plan.package = {"length": image_size}
        plan.without_members = True
    elif cuts.get("length", 0) > package_size:
        raise LeftOut("a package with zeros in front of its image")
    if any(offset < image_size for offset in cuts.get("flip", [])):
        raise LeftOut("a package with another image")


def make_package(plan, package):
    """The bytes of the installer's file."""
    data = bytearray(package)
    cuts = plan.package
    if cuts.get("cutEnd"):
        del data[-cuts["cutEnd"]:]
    if "length" in cuts:
        del data[cuts["length"]:]
    for offset in cuts.get("flip", []):
        data[offset] ^= 0xFF
    return bytes(data)


COMMON = "common.json"  # what scenarios name


def scenarios_of(file):
    """The scenarios of a file: itself, or each of its cases, as zevsim takes them."""
    cases = json.loads(pathlib.Path(file).read_text(encoding="utf-8")).get("cases", {})
    return [pathlib.Path(f"{file}#{case}") for case in cases] or [pathlib.Path(file)]


def written_out(path, simulator):
    """A scenario as its document, in which nothing is named any more."""
    shown = subprocess.run([str(simulator), "--expand", str(path)], stdin=subprocess.DEVNULL,
                           capture_output=True, check=False)
    if shown.returncode:
        raise RuntimeError(f"zevsim --expand {path}: {shown.stderr.decode('utf-8', 'replace')}")
    return json.loads(shown.stdout.decode("utf-8"))


def plan_of(path, simulator, image_size, package_size, windows=None):
    """The plan for a scenario, on the Windows that it names or on another one; raises LeftOut."""
    document = written_out(path, simulator)
    for name, reason in KNOWN_TO_DIFFER.items():
        if str(path).replace(".json", "").replace("#", "/").endswith(f"/{name}"):
            raise LeftOut(reason)
    plan = Plan(path, document)
    machine = document.get("machine", {})
    check_steps(document.get("script", []), plan.path.parent)
    for folder in USUAL_FOLDERS:
        plan.machine["files"][folder] = {"directory": True}
    for side, take in SIDES.items():
        if side in machine:
            take(copy.deepcopy(machine[side]), plan)
    take_package(plan, image_size, package_size)
    name = plan.installer.rpartition("\\")[2]
    plan.version = windows or plan.version
    if plan.version:
        plan.set_value("HKEY_CURRENT_USER", f"Software\\Wine\\AppDefaults\\{name}", "Version",
                       plan.version)
    return plan
