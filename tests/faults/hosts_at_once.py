#!/usr/bin/env python3
"""Programs change the list of study areas at the same time: commands and library hosts.

    hosts_at_once.py KVDM SHARING_HOST [--long] [--part K/N]

Each value that is set is another one, and each program tells which one it replaced. Afterwards each
change that was answered as done is in the list; or a program that knew it changed it further or
deleted the study area; or it is in the history, and a log line told so. No two study areas share a
folder, and the registry is sound.
"""

import argparse
import json
import os
import pathlib
import random
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import threading
import xml.etree.ElementTree as ElementTree

from world import Counts

COMMAND_HOSTS, LIBRARY_HOSTS = 4, 4
SHORT, LONG = 20, 1000  # changes of each
TIME_LIMIT = 3600
GUID = re.compile(r"\{[0-9A-F-]{36}\}")


class Change:
    """One that was answered as done; the field is "" for a study area that is made or deleted."""

    def __init__(self, kind, guid, field="", old="", new="", known=()):
        self.kind, self.guid, self.field, self.old, self.new = kind, guid, field, old, new
        self.known = dict(known)


class Place:
    def __init__(self, kvdm, sharing_host):
        self.kvdm, self.sharing_host = kvdm, sharing_host
        memory = "/dev/shm"
        self.root = pathlib.Path(tempfile.mkdtemp(
            prefix="kvdm-", dir=memory if os.access(memory, os.W_OK) else None))
        self.registry = self.root / "registry.db"
        self.environment = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "HOME": str(self.root),
                            "KVDM_REGISTRY": str(self.registry)}
        self.changes, self.notes, self.failures = [], [], []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.root)

    def run(self, words):
        result = subprocess.run(words, cwd=self.root, env=self.environment, capture_output=True,
                                text=True, timeout=TIME_LIMIT, stdin=subprocess.DEVNULL)
        self.notes += [line for line in result.stderr.splitlines() if "The study area" in line]
        if result.returncode < 0 or result.returncode >= 128:
            self.failures.append(("crashed", f"{words} ends with {result.returncode}"))
        return result

    def library_host(self, name, seed, count):
        result = self.run([self.sharing_host, str(self.root / "library"), name, str(seed), str(count)])
        if result.returncode != 0:
            self.failures.append(("wrong", f"{name} ends with {result.returncode}: {result.stderr}"))
        for line in result.stdout.splitlines():
            kind, *rest = line.split("\t")
            if kind == "note":
                self.notes.append(rest[0])
            elif kind == "create":
                self.changes.append(Change("create", rest[0], "name", new=rest[1]))
            elif kind == "set":
                self.changes.append(Change("set", *rest))
            else:
                known = [part.split("=", 1) for part in rest[1:]]
                self.changes.append(Change("delete", rest[0], known=known))

    def command_host(self, name, seed, count):
        """Commands on a project of their own; properties that only this one sets."""
        draw = random.Random(seed)
        project = f"{name}/{name}.kvdm"

        def command(*words):
            result = self.run([self.kvdm, "--debug", "--json", "-p", project, *words])
            return json.loads(result.stdout) if result.returncode == 0 else None

        if self.run([self.kvdm, "init", name]).returncode != 0:
            self.failures.append(("wrong", f"{name} can't be made"))
            return
        for number in range(count):
            areas = (command("area", "list", "--all") or {}).get("items", [])
            areas = [area for area in areas if not area["name"].startswith("shared")]
            text = f"{name}-{number}"
            kind = draw.choice(["create", "set", "set", "delete"]) if areas else "create"
            guid = draw.choice(areas)["guid"] if areas else ""
            if kind == "create":
                done = command("area", "create", text)
                if done:
                    self.changes.append(Change("create", done["guid"], "name", new=text))
            elif kind == "set" and command("area", "prop", "set", "--foreign", guid, text, text):
                self.changes.append(Change("set", guid, text, "", text))
            elif kind == "delete" and command("area", "delete", guid, "--yes", "--foreign", "--outside"):
                # What it knew is not told; it held everything that was stored when it began.
                self.changes.append(Change("delete", guid))

    def stored(self):
        """The study areas in the list, the same of the history, by identifier."""
        with sqlite3.connect(self.registry) as database:
            sound = database.execute("PRAGMA integrity_check").fetchall()
            text, = database.execute(
                "SELECT data FROM registry_value WHERE name = 'StudyAreaCollection'").fetchone()
            kept = [row[0] for row in database.execute("SELECT data FROM registry_history")]
        database.close()
        if sound != [("ok",)]:
            self.failures.append(("wrong", f"the registry is damaged: {sound}"))
        listed = [fields_of(area) for area in ElementTree.fromstring(text).iter("STUDYAREA")]
        return listed, [fields_of(ElementTree.fromstring(element)) for element in kept]


def fields_of(area):
    fields = {"guid": area.get("GUID"), "name": area.get("NAME")[1:-1], "folder": area.get("DIRNAME")}
    fields["comments"] = area.findtext("COMMENTS", "")
    for one in area.iter("PROPERTY"):
        fields[one.get("NAME")] = one.get("VALUE")
    return fields


class Judge:
    def __init__(self, place):
        self.changes, self.notes = place.changes, place.notes
        self.listed, self.kept = place.stored()
        self.by_guid = {area["guid"]: area for area in self.listed}
        self.told = {guid for note in self.notes for guid in GUID.findall(note)}

    def stands(self, change):
        """Whether it is in the list or the history; of two that were made in one folder the study
        area that stays holds what was set of either."""
        return any((change.kind == "set" or area["guid"] == change.guid) and
                   area.get(change.field) == change.new for area in self.listed + self.kept)

    def was_known(self, change):
        """Whether a program that knew the value replaced or deleted it."""
        for other in self.changes:
            if other.kind == "set" and (other.field, other.old) == (change.field, change.new):
                return True
            if other.kind == "delete" and other.guid == change.guid:
                if other.known.get(change.field, change.new) == change.new:
                    return True
        return False

    def fault(self, change):
        area = self.by_guid.get(change.guid)
        if change.kind == "delete":
            if area and change.guid not in self.told:
                return "is deleted, but in the list, and nobody was told"
        elif not self.stands(change) and not self.was_known(change):
            return "is neither in the list nor in the history"
        return None


def judge(place, counts):
    for kind, text in place.failures:
        counts.add("host:" + text, [(kind, text)])
    judge_of = Judge(place)
    for change in place.changes:
        fault = judge_of.fault(change)
        what = f"{change.kind} {change.guid} {change.field} {change.new}"
        counts.add("change:" + what, [("lost", f"{what} {fault}")] if fault else [])
    folders = [area["folder"].rstrip("\\").lower() for area in judge_of.listed]
    twice = {folder for folder in folders if folders.count(folder) > 1}
    counts.add("folders", [("wrong", f"several study areas are in {twice}")] if twice else [])
    told = sum("kept in the history" in note for note in judge_of.notes)
    untold = told < len(judge_of.kept)
    counts.add("history", [("lost", f"{len(judge_of.kept)} kept, {told} told")] if untold else [])
    print(f"{len(place.changes)} changes done, {len(judge_of.listed)} study areas are listed, "
          f"{len(judge_of.kept)} kept")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", nargs=2)
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    arguments = parser.parse_args()
    part, parts = map(int, arguments.part.split("/"))
    count = LONG // parts if arguments.long else SHORT
    counts = Counts("hosts_at_once")
    print(f"seed {part}")
    with Place(*arguments.programs) as place:
        threads = [threading.Thread(target=place.command_host, args=(f"c{n}", 100 * part + n, count))
                   for n in range(COMMAND_HOSTS)]
        threads += [threading.Thread(target=place.library_host, args=(f"l{n}", 100 * part + n, count))
                    for n in range(LIBRARY_HOSTS)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        judge(place, counts)
    return counts.end()


if __name__ == "__main__":
    sys.exit(main())
