"""A place with a project, a registry and files, in which commands are disturbed, and what is left of it.

    WORLD/work/P      the project, with study areas, analyses, layers and files in their folders
    WORLD/work/data   the registry
    WORLD/outside     what no command may touch; a link in a study area's folder leads there
    WORLD/home, tmp   empty, and to stay so
"""

import argparse
import json
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import tempfile
import threading

TIME_LIMIT = 60  # seconds; a command that takes longer hangs
ENOUGH = 20  # cases of one kind that are printed in full

REGISTRY = "work/data/kvdm/registry.db"
PROJECT = "work/P/P.kvdm"
CATALOGUE = "catalogue"

GUID = re.compile(r"\{[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}\}")
TIME = re.compile(r"\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d{2}:\d{2} [AP]M")
# Folders that are made at once and, when that fails, later when something goes there.
ON_DEMAND = re.compile(r"/KVData/(KelvaroTemp|StoreLayers|CustLayers|Data)$")
# Where the folder of an item is when it is deleted: the number of the change, and its name.
TRASH = re.compile(r"^(.*/\.kvdm-trash/(\d+)/[^/]+)(.*)$")
# The records of changes, of which those that were begun and not ended have another suffix.
RECORD = "work/P/KVData/.kvdm/history/"
# What may be left beside stores and side-cars.
LITTER = re.compile(r"(^|/)\.kvdm-[^/]*$|\.kvdm-trash/\d+$|/\.kvdm(/.*)?$|\.~\d+~$|"
                    r"\.(tmp|bak|lock)$|\.db-journal$|\.kvdm\.[^/]*$")

SETTING_UP = [
    ["area", "create", "North"],
    ["area", "create", "South"],
    ["area", "use", "North"],
    ["analysis", "create", "Sales"],
    ["analysis", "create", "Rent"],
    ["analysis", "param", "set", "Sales", "Radius", "500"],
    ["store", "create", "Stores"],
    ["customer", "create", "Members"],
    ["data", "create", "Streets"],
    ["metadata", "export", "Sales"],
    ["analysis", "param", "set", "Sales", "Radius", "600"],
    ["analysis", "create", "Old"],
]
# The last thing that was done before, so that there is something to undo.
DELETION = ["analysis", "delete", "Old", "--yes"]

DATA = "work/P/KVData/"
FILES = {
    "outside/canary.txt": "untouched",
    "work/P/properties.json": '{"Comments": "From a file", "Radius": "800"}',
    DATA + "StudyAreas/North/map.txt": "the north",
    DATA + "StudyAreas/North/Analyses/Rent/result.txt": "rents",
    DATA + "StudyAreas/North/Analyses/Rent/maps/deep.txt": "deep",
    DATA + "StudyAreas/North/Analyses/Sales/result.txt": "sales",
    DATA + "StudyAreas/North/Analyses/Old/result.txt": "of last year",
    DATA + "StudyAreas/South/map.txt": "the south",
    DATA + "StudyAreas/South/maps/deep.txt": "deep",
    DATA + "StoreLayers/Stores.lyr": "stores",
    DATA + "CustLayers/Members.lyr": "members",
    DATA + "Data/Streets.shp": "streets",
}
# What another program keeps there.
SIDE_CAR = DATA + "StudyAreas/North/Analyses/Sales/Analysis.lyr.xml"
FOREIGN_ENTRY = '<ENTRY PATH="Other/Title" TYPE="Text" VALUE="Sales by shop"/>\n'

# The commands that are disturbed, by name.
COMMANDS = {
    "init": ["init", "../New"],
    "area create": ["area", "create", "East"],
    "area rename": ["area", "rename", "South", "Sued"],
    "area rename current": ["area", "rename", "North", "Nord"],
    "area set": ["area", "set", "South", "--layer-file", "Z:\\maps\\South.lyr"],
    "area comment": ["area", "comment", "South", "Checked in May"],
    "area prop": ["area", "prop", "set", "South", "TYPE", "urban"],
    "area use": ["area", "use", "South"],
    "area delete": ["area", "delete", "South", "--yes"],
    "area delete current": ["area", "delete", "North", "--yes"],
    "area list": ["area", "list"],
    "analysis create": ["analysis", "create", "Traffic"],
    "analysis rename": ["analysis", "rename", "Rent", "Rents"],
    "analysis set": ["analysis", "set", "Rent", "--created", "2026-01-31"],
    "analysis comment": ["analysis", "comment", "Rent", "Within 500 metres"],
    "analysis delete": ["analysis", "delete", "Rent", "--yes"],
    "param set": ["analysis", "param", "set", "Sales", "Radius", "700"],
    "properties import": ["analysis", "properties", "import", "Sales", "properties.json"],
    "properties export": ["analysis", "properties", "export", "Sales", "sales.json"],
    "store create": ["store", "create", "Kiosks"],
    "store set": ["store", "set", "Stores", "--id-field", "ID", "--name-field", "NAME"],
    "store rename": ["store", "rename", "Stores", "Shops"],
    "store delete": ["store", "delete", "Stores", "--yes"],
    "customer create": ["customer", "create", "Clients"],
    "customer delete": ["customer", "delete", "Members", "--yes"],
    "data create": ["data", "create", "Rivers"],
    "data set": ["data", "set", "Streets", "--info", "of 2026"],
    "data rename": ["data", "rename", "Streets", "Roads"],
    "metadata export": ["metadata", "export", "Sales"],
    "metadata import": ["metadata", "import", "Sales"],
    "undo": ["undo"],
    "trash empty": ["trash", "empty", "--yes"],
    "log": ["log"],
    "status": ["status"],
    "library": None,  # the library host, which is no command
}
# The catalogue lists what these delete, where else the project does.
LISTED_IN_CATALOGUE = ("area delete", "area delete current")


class Outcome:
    """What a program answered: its status, texts, and what the disturbance reported."""

    def __init__(self, status, out, err, calls=0, disturbed=0, name="none"):
        self.status, self.out, self.err = status, out, err
        self.calls, self.disturbed, self.name = calls, disturbed, name


class State:
    """What stands in the stores and folders; times and new identifiers are left out."""

    def __init__(self, stores, tree, trash, outside, is_unfinished):
        self.stores, self.tree, self.trash, self.outside = stores, tree, trash, outside
        self.is_unfinished = is_unfinished

    def everything(self):
        """What stands in the folders or in the trash, by where it was."""
        return {**self.trash, **self.tree}


class World:
    def __init__(self, kvdm, disturb, library_host):
        self.kvdm, self.disturb, self.library_host = kvdm, disturb, library_host
        memory = "/dev/shm"
        base = memory if os.access(memory, os.W_OK) else None
        self.base = pathlib.Path(tempfile.mkdtemp(prefix="kvdm-", dir=base))
        self.root = str(self.base / "world") + "/"
        self.report = str(self.base / "report")
        self.known = {}
        self.guids = set()
        self.environment = {
            "PATH": os.environ["PATH"],
            "LC_ALL": "C.UTF-8",
            "HOME": self.root + "home",
            "LOGNAME": "ada",
            "TMPDIR": self.root + "tmp",
            "XDG_DATA_HOME": self.root + "work/data",
        }
        self.build()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.base)

    def build(self):
        for folder in ("home", "tmp", "outside", "work/data"):
            os.makedirs(self.root + folder)
        self.require(["init", "P"], "work")
        for command in SETTING_UP:
            self.require(command)
        for path, text in FILES.items():
            os.makedirs(os.path.dirname(self.root + path), exist_ok=True)
            pathlib.Path(self.root + path).write_text(text)
        side_car = pathlib.Path(self.root + SIDE_CAR)
        side_car.write_text(side_car.read_text().replace("</LAYER", FOREIGN_ENTRY + "</LAYER"))
        self.require(DELETION)
        os.symlink(self.root + "outside", self.root + DATA + "StudyAreas/South/link")
        self.files = self.scan()
        for content in self.files.values():
            if isinstance(content, bytes):
                self.guids.update(GUID.findall(content.decode(errors="replace")))

    def require(self, command, folder="work/P"):
        outcome = self.run([self.kvdm, *command], folder)
        if outcome.status != 0:
            raise SystemExit(f"{command} ends with {outcome.status}: {outcome.err}")

    def run(self, words, folder="work/P"):
        """Runs a program; status -1 when it hangs, and minus the number of the signal that ended it."""
        process = subprocess.Popen(
            words, cwd=self.root + folder, env=self.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, close_fds=False)
        try:
            out, err = process.communicate(timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            return Outcome(-1, "", "hangs")
        return Outcome(process.returncode, out.decode(errors="replace"), err.decode(errors="replace"))

    def words(self, name):
        """The program and its arguments for a name of COMMANDS."""
        command = COMMANDS[name]
        if command is None:
            return [self.library_host, self.root + "work/P/KVData"]
        return [self.kvdm, *command]

    def disturbed(self, words, *options):
        report = f"{self.report}-{threading.get_ident()}"
        outcome = self.run([self.disturb, "--report", report, *options, "--", *words])
        if outcome.status != -1:
            calls, disturbed, outcome.name = pathlib.Path(report).read_text().split()
            outcome.calls, outcome.disturbed = int(calls), int(disturbed)
        return outcome

    def scan(self):
        """Everything below the root: bytes for a file, None for a folder, the target of a link."""
        found, folders = {}, [""]
        while folders:
            folder = folders.pop()
            with os.scandir(self.root + folder) as entries:
                for entry in entries:
                    path = folder + entry.name
                    if entry.is_symlink():
                        found[path] = os.readlink(entry.path)
                    elif entry.is_dir():
                        found[path] = None
                        folders.append(path + "/")
                    else:
                        with open(entry.path, "rb") as file:
                            found[path] = file.read()
        return found

    def restore(self, files=None):
        """Makes the world what it was, or what `files` says."""
        wanted = self.files if files is None else files
        now = self.scan()
        for path in sorted(now, reverse=True):
            if path not in wanted or wanted[path] != now[path]:
                if now[path] is None:
                    os.rmdir(self.root + path)
                else:
                    os.unlink(self.root + path)
                del now[path]
        for path in sorted(wanted):
            if path in now:
                continue
            if wanted[path] is None:
                os.mkdir(self.root + path)
            elif isinstance(wanted[path], str):
                os.symlink(wanted[path], self.root + path)
            else:
                with open(self.root + path, "wb") as file:
                    file.write(wanted[path])

    def plain(self, content):
        """A text without times and new identifiers."""
        text = content.decode(errors="replace") if isinstance(content, bytes) else content
        text = GUID.sub(lambda guid: guid[0] if guid[0] in self.guids else "{NEW}", text)
        return TIME.sub("TIME", text)

    def project(self, content):
        try:
            project = json.loads(content)
            project.pop("checksum")
        except (ValueError, KeyError, AttributeError) as error:
            return f"damaged: {error}"
        return self.plain(json.dumps(project, sort_keys=True))

    def catalogue(self, files):
        """The rows of the registry's values; reads a copy, so that nothing is recovered by reading."""
        database, journal = files.get(REGISTRY), files.get(REGISTRY + "-journal")
        if database is None:
            return "none"
        copy = str(self.base / "copy.db")
        for path, content in ((copy, database), (copy + "-journal", journal)):
            if content is not None:
                pathlib.Path(path).write_bytes(content)
        try:
            connection = sqlite3.connect(copy)
            try:
                sound = connection.execute("PRAGMA integrity_check").fetchall()
                if sound != [("ok",)]:
                    return f"damaged: {sound}"
                rows = connection.execute("SELECT key, name, type, data FROM registry_value ORDER BY 1, 2")
                return "\n".join(self.plain(str(row)) for row in rows)
            finally:
                connection.close()
        except sqlite3.Error as error:
            return "none" if not database else f"damaged: {error}"
        finally:
            for path in (copy, copy + "-journal"):
                if os.path.exists(path):
                    os.unlink(path)

    def once(self, key, content, read):
        """What `read` makes of a content; looked up when that was asked before."""
        if (key, content) not in self.known:
            self.known[key, content] = read()
        return self.known[key, content]

    def place_before(self, match, files):
        """Where the path of a match of TRASH was before, by the record of the change."""
        folder, number, rest = match.groups()
        for suffix in ".json", ".begun":
            for move in json.loads(files.get(RECORD + number + suffix) or "{}").get("moves", []):
                place = move["folder"].removeprefix("Z:").replace("\\", "/").removeprefix(self.root)
                if move["name"] == os.path.basename(folder):
                    return place + rest
        return folder + rest

    def state(self):
        files = self.scan()
        stores, tree, trash, outside = {}, {}, {}, {}
        stores[CATALOGUE] = self.once(
            CATALOGUE, (files.get(REGISTRY), files.get(REGISTRY + "-journal")),
            lambda: self.catalogue(files))
        for path, content in files.items():
            if not path.startswith("work"):
                outside[path] = content
            elif path == REGISTRY or LITTER.search(path):
                continue
            elif path.endswith(".kvdm") and content is not None:  # the folder of that name holds records
                stores[path] = self.once("project", content, lambda c=content: self.project(c))
            else:
                moved = TRASH.match(path)
                folders, name = (trash, self.place_before(moved, files)) if moved else (tree, path)
                is_file = isinstance(content, bytes)
                folders[name] = self.once(
                    "text", content, lambda c=content: self.plain(c)) if is_file else content
        return State(stores, tree, trash, outside, any(path.endswith(".begun") for path in files))


class Reference:
    """A command as it goes undisturbed: the states before and after, and what it says."""

    def __init__(self, world, name):
        self.name, self.words = name, world.words(name)
        world.restore()
        self.before = world.state()
        self.outcome = world.disturbed(self.words)
        if self.outcome.status != 0:
            raise SystemExit(f"{name} ends with {self.outcome.status}: {self.outcome.err}")
        self.after = world.state()
        self.out = world.plain(self.outcome.out)

    def calls(self, world, kind):
        """How many calls of a kind the command makes."""
        world.restore()
        return world.disturbed(self.words, "--count", kind).calls


def next_commands(world):
    """Runs a command that reads and one that saves; answers what they said and what went wrong."""
    said, faults = "", []
    for command in ["status"], ["project", "save"]:
        outcome = world.run([world.kvdm, *command])
        said += outcome.out + outcome.err
        if outcome.status != 0:
            faults.append(("wrong", f"{command} then ends with {outcome.status}: {outcome.err}"))
    return said, faults


def arguments_of(loop):
    """The arguments that all loops have."""
    parser = argparse.ArgumentParser(prog=loop)
    parser.add_argument("programs", nargs=3, metavar="PROGRAM")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    parser.add_argument("--case")
    arguments = parser.parse_args()
    arguments.part, arguments.parts = map(int, arguments.part.split("/"))
    return arguments


class Counts:
    """The counts of a loop, and its cases that went wrong."""

    def __init__(self, loop):
        self.loop, self.tried, self.shown = loop, 0, {}
        self.sums = {"lost": 0, "wrong": 0, "crashed": 0, "outside": 0}

    def add(self, case, faults, tried=1):
        self.tried += tried
        for kind in {kind for kind, _ in faults}:
            self.sums[kind] += 1
        key = case.split(":")[0], tuple(kind for kind, _ in faults)
        if faults:
            self.shown[key] = self.shown.get(key, 0) + 1
            if self.shown[key] <= ENOUGH:
                for kind, text in faults:
                    print(f"{case}: {kind}: {text}".replace("\n", " "), flush=True)

    def end(self):
        """Prints the last line and answers the status."""
        sums = " ".join(f"{kind}={count}" for kind, count in self.sums.items())
        print(f"loop {self.loop}: tried={self.tried} {sums}")
        return 1 if any(self.sums.values()) else 0
