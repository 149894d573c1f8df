#!/usr/bin/env python3
"""The registry is held, damaged, foreign, forbidden or something else, and commands are run on it.

    registry_states.py KVDM [--long] [--part K/N] [--case STATE:COMMAND]

A command that needs a registry that can't be read ends with 9, says why and what to do, and changes
nothing; all others do their work. What can be read and not written is listed, and a change of it
ends with 1. The list of study areas never shrinks unless one was deleted. A damaged registry can be
set aside, and then a new one is begun.
"""

import argparse
import json
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import threading

from world import Counts

TIME_LIMIT = 120  # seconds; a command that takes longer hangs
PATIENCE = 10  # seconds that the component waits for others

# Without this, permissions mean nothing to root.
AS_ANYBODY = ["setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--"]

SETTING_UP = {
    "P": [["area", "create", "North"], ["area", "create", "South"], ["area", "use", "North"],
          ["area", "comment", "North", "x" * 20_000], ["analysis", "create", "Sales"],
          ["alias", "set", "store", "Shop"]],
    "Q": [["data", "create", "Streets"]],
}

# What needs the registry, with its effect on the list. In P a study area is open, in Q none.
READS = {
    "area list": ["P", "area", "list"],
    "area show": ["P", "area", "show", "North"],
    "area use": ["P", "area", "use", "South"],
    "analysis list": ["P", "analysis", "list"],
    "analysis create": ["P", "analysis", "create", "Rent"],
    "table dir": ["P", "table", "dir"],
    "table path": ["P", "table", "path"],
    "alias show": ["P", "alias", "show"],
    "preset list": ["P", "preset", "list"],
    "project show": ["P", "project", "show"],
    "history": ["P", "catalogue", "history"],
}
WRITES = {
    "area create": ["P", "area", "create", "East"],
    "area rename": ["P", "area", "rename", "South", "Sued"],
    "area comment": ["P", "area", "comment", "South", "seen"],
    "area prop": ["P", "area", "prop", "set", "South", "TYPE", "urban"],
    "area delete": ["P", "area", "delete", "South", "--yes"],
    "alias set": ["P", "alias", "set", "store", "Kiosk"],
}
LISTED_AFTER = {"area create": ["East", "North", "South"], "area rename": ["North", "Sued"],
                "area delete": ["North"]}
FREE = {
    "status": ["P", "status"],
    "project save": ["P", "project", "save"],
    "project info": ["P", "project", "info"],
    "analysis list without": ["Q", "analysis", "list"],
    "analysis create without": ["Q", "analysis", "create", "Rent"],
    "table dir without": ["Q", "table", "dir"],
    "data list": ["Q", "data", "list"],
    "data create": ["Q", "data", "create", "Rivers"],
    "store create": ["Q", "store", "create", "Stores"],
}
COMMANDS = {**READS, **WRITES, **FREE}

# Those that say something about each state where time counts.
FEW = ["area list", "area create", "status", "data create"]


def garbage(path):
    path.write_bytes(b"not a database\n" * 1000)


def half(path):
    os.truncate(path, path.stat().st_size // 2)


def with_database(*statements):
    def make(path):
        path.unlink()
        with sqlite3.connect(path) as database:
            for statement in statements:
                database.execute(statement)
        database.close()
    return make


def newer(path):
    with sqlite3.connect(path) as database:
        database.execute("PRAGMA user_version = 3")
    database.close()


def replaced(make):
    def put(path):
        path.unlink()
        make(path)
    return put


# What is in the registry's place, and the name of that state.
UNREADABLE = {
    "garbage": (garbage, "not a database"),
    "half": (half, "damaged"),
    "cut to nothing": (lambda path: os.truncate(path, 0), "damaged"),
    "empty database": (with_database("CREATE TABLE t(a)", "DROP TABLE t"), "foreign"),
    "foreign": (with_database("CREATE TABLE t(a)", "PRAGMA application_id = 7"), "foreign"),
    "foreign of version 1": (with_database("CREATE TABLE t(a)", "PRAGMA user_version = 1"), "foreign"),
    "foreign of our version": (with_database("CREATE TABLE t(a)", "PRAGMA user_version = 2"), "foreign"),
    "newer": (newer, "newer"),
    "folder": (replaced(os.mkdir), "not a database"),
    "pipe": (replaced(os.mkfifo), "not a database"),
    "forbidden": (lambda path: path.chmod(0), "forbidden"),
    "forbidden folder": (lambda path: path.parent.chmod(0), "forbidden"),
    "dangling link": (replaced(lambda path: path.symlink_to("gone.db")), "failing"),
    "link to itself": (replaced(lambda path: path.symlink_to(path.name)), "failing"),
    ":memory:": (":memory:", "forbidden"),
    "file:": ("file:registry.db?mode=memory", "forbidden"),
}
RENEWABLE = ("damaged", "not a database")
# What needs the list of study areas itself.
UNPARSABLE = ["area list", "area show", "area use", "area create", "area rename", "area delete",
              "analysis create", "table dir"]
UNWRITABLE = {
    "read-only": lambda path: path.chmod(0o444),
    "unwritable folder": lambda path: path.parent.chmod(0o555),
}


class Place:
    """Two projects and a registry, made anew for each case."""

    def __init__(self, kvdm):
        self.base = pathlib.Path(tempfile.mkdtemp(prefix="kvdm-"))
        self.kvdm = kvdm
        self.prefix = AS_ANYBODY if os.geteuid() == 0 else []
        self.root = self.base / "place"
        self.registry = self.root / "registry" / "registry.db"
        self.named = str(self.registry)
        self.root.mkdir()
        self.registry.parent.mkdir(0o700)
        for project, commands in SETTING_UP.items():
            for words in [["init", project], *(["-p", f"{project}/{project}.kvdm", *w] for w in commands)]:
                result = self.execute(words)
                if result.returncode != 0:
                    raise SystemExit(f"{words} ends with {result.returncode}: {result.stderr}")
        # Without the lock file, which a folder that can't be written does not have either.
        pathlib.Path(str(self.registry) + ".lock").unlink()
        shutil.copytree(self.root, self.base / "template")
        self.names = self.listed()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.allow()
        shutil.rmtree(self.base)

    def allow(self):
        self.registry.parent.chmod(0o700)

    def restore(self):
        self.allow()
        shutil.rmtree(self.root)
        shutil.copytree(self.base / "template", self.root)
        self.named = str(self.registry)

    def execute(self, words, folder="."):
        return subprocess.run(
            [*self.prefix, self.kvdm, *words], cwd=self.root / folder, capture_output=True, text=True,
            timeout=TIME_LIMIT, stdin=subprocess.DEVNULL,
            env={"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "HOME": str(self.root),
                 "KVDM_REGISTRY": self.named})

    def run(self, name, *options):
        project, *words = COMMANDS[name]
        return self.execute([*options, *words], project)

    def content(self):
        """All files but locks, and what is in the registry's place, by path."""
        found = {}
        for path in sorted(self.root.rglob("*")):
            if path.suffix != ".lock":
                is_file = path.is_file() and not path.is_symlink()
                found[str(path)] = path.read_bytes() if is_file else oct(path.lstat().st_mode)
        return found

    def listed(self):
        """The names of the study areas that are stored."""
        with sqlite3.connect(f"file:{self.registry}?mode=ro", uri=True) as database:
            assert database.execute("PRAGMA integrity_check").fetchone() == ("ok",)
            rows = database.execute("SELECT data FROM registry_value WHERE name = 'StudyAreaCollection'")
            text = rows.fetchone()[0].decode()
        database.close()
        return sorted(re.findall(r'<STUDYAREA NAME="_(.*?)_"', text))


class Case:
    def __init__(self, place, counts, state, name):
        self.place, self.counts, self.name = place, counts, name
        self.case, self.faults = f"{state}:{name}", []
        place.restore()

    def check(self, kind, holds, text):
        if not holds:
            self.faults.append((kind, text))

    def run(self, *options):
        self.result = self.place.run(self.name, *options)
        self.said = f"status {self.result.returncode}: {self.result.stdout}{self.result.stderr}"
        self.check("crashed", 0 <= self.result.returncode < 128, self.said)

    def end(self):
        self.counts.add(self.case, self.faults)

    def status_is(self, status):
        self.check("wrong", self.result.returncode == status, f"not {status} but {self.said}")

    def list_is(self, names):
        now = self.place.listed()
        self.check("lost" if set(names) - set(now) else "wrong", now == names,
                   f"the list is {now}, not {names}; {self.said}")

    def done(self):
        """The command did what it does."""
        self.status_is(0)
        self.list_is(LISTED_AFTER.get(self.name, self.place.names))

    def status_tells(self, state, readable=None):
        status = json.loads(self.place.run("status", "--json").stdout or "{}")
        told = status.get("registry_state"), status.get("study_areas"), status.get("catalogue_damaged")
        count = None if readable is None else len(readable)
        damaged = None if readable is None else False
        self.check("wrong", told == (state, count, damaged), f"status tells {told}, not {state}")

    def needs_what_cant_be_read(self, before):
        self.status_is(9)
        now = self.place.content()
        changed = {path for path in before.keys() | now.keys() if before.get(path) != now.get(path)}
        self.check("wrong", not changed, f"{sorted(changed)} changed; {self.said}")
        self.check("wrong", f"The registry {self.place.named} " in self.result.stderr and
                   re.search(r"\)\. [A-Z][^.]*\.", self.result.stderr), f"no reason or advice: {self.said}")
        self.check("wrong", not self.result.stdout, f"a result: {self.said}")


def unreadable(place, counts, state, name):
    make, called = UNREADABLE[state]
    case = Case(place, counts, state, name)
    if isinstance(make, str):
        place.named = make
    else:
        make(place.registry)
    mode = place.registry.parent.stat().st_mode & 0o777
    place.allow()
    before = place.content()
    place.registry.parent.chmod(mode)
    case.run()
    place.allow()
    if name in FREE:
        case.status_is(0)
        now = place.content()
        case.check("lost", all(now.get(path) == before[path] for path in before if "/registry" in path),
                   f"the registry changed: {case.said}")
    else:
        case.needs_what_cant_be_read(before)
    litter = [path.name for path in place.root.rglob("*") if path.name.startswith((":", "file:"))]
    case.check("wrong", not litter, f"{litter} are new; {case.said}")
    place.registry.parent.chmod(mode)
    if name == "status":
        case.status_tells(called)
    case.end()


def renewed(place, counts, state):
    """What is damaged can be set aside and is kept; nothing else can."""
    make, called = UNREADABLE[state]
    if isinstance(make, str) or state == "forbidden folder":
        return
    case = Case(place, counts, state, "area create")
    make(place.registry)
    before = place.content()
    case.result = renew = place.execute(["catalogue", "renew", "--json"], "P")
    case.said = f"renew: status {renew.returncode}: {renew.stdout}{renew.stderr}"
    if called not in RENEWABLE:
        case.status_is(1)
        case.check("lost", place.content() == before, f"something changed: {case.said}")
        return case.end()
    case.status_is(0)
    aside = json.loads(renew.stdout or "{}").get("set_aside", "nowhere")
    kept = {path.replace(str(place.registry), aside): text for path, text in before.items()}
    case.check("lost", place.content() == kept, f"the old one is not kept: {case.said}")
    case.run()
    case.status_is(0)
    case.list_is(["East"])
    case.end()


def unwritable(place, counts, state, name):
    case = Case(place, counts, state, name)
    UNWRITABLE[state](place.registry)
    case.run()
    place.allow()
    case.status_is(1 if name in WRITES else 0)
    case.list_is(place.names)
    if name in WRITES:
        told = f"The registry {place.named} can be read but not written"
        case.check("wrong", told in case.result.stderr, case.said)
    if name == "status":
        UNWRITABLE[state](place.registry)
        case.status_tells("read-only", place.names)
        place.allow()
    case.end()


def unparsable(place, counts, text, name):
    """The registry is sound, and the list of study areas in it is not."""
    case = Case(place, counts, "unparsable", name)
    with sqlite3.connect(place.registry) as database:
        database.execute("UPDATE registry_value SET data = ? WHERE name = 'StudyAreaCollection'",
                         (text,))
    database.close()
    before = place.content()
    case.run()
    case.status_is(9)
    case.check("lost", place.content() == before, f"something changed: {case.said}")
    case.check("wrong", "The list of study areas in " in case.result.stderr and
               case.result.stderr.count(". ") > 0, f"no reason or advice: {case.said}")
    case.end()


def held(place, counts, seconds, lock, name):
    """Another process holds the registry for so long; 0 for longer than the command lives."""
    case = Case(place, counts, f"{lock} {seconds}", name)
    # Read first: a file that is closed here takes the locks of this process with it.
    before = place.content()
    database = sqlite3.connect(place.registry, isolation_level=None, check_same_thread=False)
    database.execute("BEGIN EXCLUSIVE" if lock == "held" else "BEGIN")
    database.execute("SELECT count(*) FROM registry_value").fetchall()
    timer = threading.Timer(seconds, database.execute, ["ROLLBACK"])
    if seconds:
        timer.start()
    case.run()
    if seconds:
        timer.join()
    else:
        database.execute("ROLLBACK")
    database.close()
    is_short = 0 < seconds < PATIENCE - 1
    if is_short or name in FREE or (lock == "read" and name in READS):
        case.done()
    elif case.result.returncode == 0 and 0 < seconds < 3 * PATIENCE:
        case.done()
    elif lock == "read":
        case.status_is(1)
        case.list_is(place.names)
    else:
        case.needs_what_cant_be_read(before)
        case.list_is(place.names)
    case.end()


def all_cases(is_long):
    for state in UNREADABLE:
        names = COMMANDS if is_long or state in ("garbage", "forbidden") else FEW
        yield from ((unreadable, state, name) for name in names)
        yield (renewed, state)
    for state in UNWRITABLE:
        yield from ((unwritable, state, name) for name in (COMMANDS if is_long else [*FEW, "alias set"]))
    for text in (b"<STUDYAREACOLLECTION><STUDYAREA", b"<A>" * 300 + b"</A>" * 300):
        yield from ((unparsable, text, name) for name in UNPARSABLE)
    for name in COMMANDS if is_long else FEW:
        yield (held, 0.3, "held", name)
    if is_long:
        for seconds in (1, 5, 12, 20, 40, 0):
            yield from ((held, seconds, lock, name) for name in FEW for lock in ("held", "read"))
    else:
        yield from ((held, 0, "held", name) for name in ("area create", "data create"))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kvdm")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    parser.add_argument("--case", help="runs the cases whose state, or state and command, this is")
    arguments = parser.parse_args()
    part, parts = map(int, arguments.part.split("/"))
    counts = Counts("registry_states")
    with Place(arguments.kvdm) as place:
        for number, (judge, *words) in enumerate(all_cases(arguments.long)):
            if arguments.case and arguments.case not in (str(words[0]), f"{words[0]}:{words[-1]}"):
                continue
            if number % parts == part - 1:
                judge(place, counts, *words)
    return counts.end()


if __name__ == "__main__":
    sys.exit(main())
