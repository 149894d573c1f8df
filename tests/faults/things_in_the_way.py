#!/usr/bin/env python3
"""Puts things where kvdm keeps its files (links, pipes, folders, files of others) and runs commands.

    things_in_the_way.py [--long] [--part K/N] KVDM

A command either does its work, and then the next one sees it, or says that it can't and leaves the
project as it was. It never waits for a pipe, writes through a link, or makes what a link names.
"""

import argparse
import os
import pathlib
import shutil
import stat
import subprocess
import sys
import tempfile

TIME_LIMIT = 60  # seconds; a command that takes longer hangs
CANARY = "untouched"
SOMEBODY_ELSE = 65534

# The command, and the one that shows what it did, with the text that it then shows or does not.
COMMANDS = {
    "create": (["store", "create", "Shops"], ["store", "list"], "Shops", True),
    "delete": (["analysis", "delete", "Sales", "--yes"], ["analysis", "list"], "Sales", False),
    "read": (["status"], ["analysis", "list"], "Sales", True),
}
MORE_COMMANDS = {
    "init": (["init", "."], ["analysis", "list"], "Sales", True),
    "set": (["analysis", "param", "set", "Sales", "K", "V"], ["analysis", "param", "list", "Sales"], "K", True),
    "export": (["analysis", "properties", "export", "Sales", "P.json"], ["analysis", "list"], "Sales", True),
    "area": (["area", "create", "North"], ["area", "list"], "North", True),
}
PLACES = ["work/P/P.kvdm.tmp", "work/P/P.kvdm.bak", "work/P/P.kvdm.lock", "work/P/P.kvdm"]
MORE_PLACES = ["work/P/P.json", "work/data/kvdm/registry.db.lock"]


def link(place, world):
    place.symlink_to(world / "outside/canary")


def dangling_link(place, world):
    place.symlink_to(world / "outside/made")


def pipe(place, _):
    os.mkfifo(place)


def folder(place, _):
    place.mkdir()
    (place / "inside").write_text(CANARY)


def read_only(place, _):
    if not place.exists():
        place.write_text("")
    place.chmod(0o444)


def somebody_elses(place, _):
    if not place.exists():
        place.write_text("")
    if os.geteuid() == 0:
        os.chown(place, SOMEBODY_ELSE, SOMEBODY_ELSE)
    place.chmod(0o644)


THINGS = [link, dangling_link, pipe, folder, read_only, somebody_elses]
KEPT_IN_PLACE = (read_only, somebody_elses)  # which are the file that was there, if there was one


class World:
    def __init__(self, kvdm, root):
        self.kvdm, self.root = kvdm, root
        self.environment = dict(
            os.environ, HOME=str(root / "home"), XDG_DATA_HOME=str(root / "work/data"), LC_ALL="C.UTF-8"
        )
        self.environment.pop("KVDM_REGISTRY", None)

    def run(self, arguments):
        """The exit status and what was printed; no status when the command hangs."""
        command = [self.kvdm, *arguments]
        where = self.root / "work/P"
        try:
            done = subprocess.run(
                command, cwd=where, env=self.environment, stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIME_LIMIT,
            )
        except subprocess.TimeoutExpired:
            return None, ""
        return done.returncode, done.stdout.decode("utf-8", "replace")

    def set_up(self):
        for name in ("work/P", "work/data", "outside", "home"):
            (self.root / name).mkdir(parents=True)
        (self.root / "outside/canary").write_text(CANARY)
        for arguments in (["init", "."], ["analysis", "create", "Sales"], ["area", "create", "Old"]):
            status, text = self.run(arguments)
            if status != 0:
                sys.exit(f"setting up: {text}")


def state(path):
    """What is to be seen of a file, a link or a folder with all in it."""
    try:
        found = path.lstat()
    except FileNotFoundError:
        return None
    kind = stat.S_IFMT(found.st_mode)
    if stat.S_ISDIR(kind):
        return kind, sorted((entry.name, state(entry)) for entry in path.iterdir())
    content = path.read_bytes() if stat.S_ISREG(kind) else os.readlink(path) if stat.S_ISLNK(kind) else b""
    return kind, found.st_mode, found.st_uid, content


def judge(world, place, thing, command):
    """What went wrong in one case: pairs of a count's name and a sentence."""
    arguments, look, word, shows = command
    path = world.root / place
    if path.exists() and thing not in KEPT_IN_PLACE:
        path.unlink()
    thing(path, world.root)
    project = world.root / "work/P/P.kvdm"
    outside, before, put = (state(p) for p in (world.root / "outside", project, path))
    status, text = world.run(arguments)
    if status is None:
        return [("wrong", "it hangs")]
    wrong = []
    if status < 0 or status > 127:
        wrong.append(("crashed", f"status {status}"))
    if state(world.root / "outside") != outside:
        wrong.append(("outside", "what is outside has changed"))
    if status != 0 and not text.strip():
        wrong.append(("wrong", "it says nothing"))
    if status != 0 and (state(project) != before or state(path) != put):
        wrong.append(("wrong", f"it changed something and says: {text.strip()}"))
    if thing is folder and state(path) != put:
        wrong.append(("lost", "the folder is not what it was"))
    if thing is somebody_elses and path == project and state(path) and state(path)[2] != put[2]:
        wrong.append(("wrong", "the project has another owner"))
    if status == 0 and (word in world.run(look)[1]) != shows:
        wrong.append(("lost", f"it is not so: {text.strip()}"))
    if list((world.root / "work/P").glob(".kvdm-*")):
        wrong.append(("wrong", "a temporary file is left"))
    return wrong


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    parser.add_argument("kvdm", type=os.path.abspath)
    asked = parser.parse_args()
    part, parts = map(int, asked.part.split("/"))
    commands = {**COMMANDS, **MORE_COMMANDS} if asked.long else COMMANDS
    places = PLACES + MORE_PLACES if asked.long else PLACES
    cases = [(p, t, c) for p in places for t in THINGS for c in commands][part - 1 :: parts]
    counts = dict.fromkeys(("lost", "wrong", "crashed", "outside"), 0)
    with tempfile.TemporaryDirectory(prefix="kvdm-faults-") as folder_name:
        template = pathlib.Path(os.path.realpath(folder_name), "world")
        World(asked.kvdm, template).set_up()
        saved = template.with_name("saved")
        template.rename(saved)
        for place, thing, name in cases:
            shutil.copytree(saved, template, symlinks=True)
            for count, sentence in judge(World(asked.kvdm, template), place, thing, commands[name]):
                counts[count] += 1
                print(f"{count}: {place} as {thing.__name__}, {name}: {sentence}")
            shutil.rmtree(template)
    print(f"loop things_in_the_way: tried={len(cases)} " + " ".join(f"{k}={v}" for k, v in counts.items()))
    return 1 if any(counts.values()) else 0


if __name__ == "__main__":
    sys.exit(main())
