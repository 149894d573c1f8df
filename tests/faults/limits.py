#!/usr/bin/env python3
"""Each limit of what kvdm takes: below it, at it and above it.

    limits.py KVDM EDIT_PROJECT [--long] [--part K/N]

What is within is taken and found again; what is above is refused with a sentence that names the
limit, and nothing changes. No file makes kvdm take more memory than its limit explains.
"""

import argparse
import os
import subprocess
import sys

from doors import Place, part_of

NAME_BYTES = 240
VALUE_BYTES = 10_000_000
JSON_DEPTH = 64
XML_DEPTH = 256
ATTRIBUTES = 1000
TAG_BYTES = 50_000
PROJECT_BYTES = 256 << 20
DOCUMENT_BYTES = 64 << 20
SPARSE_BYTES = 20 << 30
MEMORY_KIB = 900 << 10


class Limits:
    def __init__(self, place, edit_project):
        self.place, self.edit = place, edit_project
        place.run("area", "create", "North")
        place.run("analysis", "create", "Sales")
        self.file = place.root / "work/P/P.kvdm"
        self.good = self.file.read_bytes()

    def check(self, answer, is_within, limit):
        place = self.place
        place.counts["tried"] += 1
        if is_within:
            place.require(answer.status == 0, "wrong", f"within {limit}: {answer}")
        else:
            place.require(answer.status in (1, 2, 9) and str(limit) in answer.err, "wrong",
                          f"over {limit}: {answer}")

    def names(self):
        """In bytes, of characters of one, two and three."""
        for kind in ("area", "analysis", "store", "customer", "data"):
            for character in ("x", "é", "大"):
                size = len(character.encode())
                for length in (NAME_BYTES - size, NAME_BYTES, NAME_BYTES + size):
                    name = character * (length // size)
                    before = self.place.folders(), self.place.project()
                    answer = self.place.run(kind, "create", name)
                    self.check(answer, length <= NAME_BYTES, NAME_BYTES)
                    if answer.status == 0:
                        shown = self.place.run(kind, "show", name)
                        self.place.require(shown.status == 0, "lost", shown)
                    else:
                        self.place.require((self.place.folders(), self.place.project()) == before,
                                           "lost", f"something changed: {answer}")
        self.file.write_bytes(self.good)

    def values(self):
        for size in (VALUE_BYTES - 1, VALUE_BYTES, VALUE_BYTES + 1):
            self.file.write_bytes(self.good)
            answer = self.place.run("analysis", "comment", "Sales", "-", text=b"v" * size)
            self.check(answer, size <= VALUE_BYTES, VALUE_BYTES)
            kept = self.place.run("analysis", "comment", "Sales").out.rstrip("\n")
            wanted = size if size <= VALUE_BYTES else 0
            self.place.require(len(kept) == wanted, "lost", f"{len(kept)} of {wanted} are kept")
        self.file.write_bytes(self.good)

    def project(self, old, new, is_within, limit):
        """A project with `new` for `old` is opened, or it stays as it is."""
        self.file.write_bytes(self.good)
        text = self.place.root / "new.txt"
        text.write_text(new)
        subprocess.run([sys.executable, self.edit, self.file, old, f"@{text}"], check=True)
        before = self.file.read_bytes()
        answer = self.place.run("area", "use", "North")
        self.check(answer, is_within, limit)
        after = self.file.read_bytes()
        if is_within:
            self.place.require(len(after) >= len(before), "lost", f"{len(before)} -> {len(after)}")
        else:
            self.place.require(after == before, "lost", f"the project changed: {answer}")

    def documents(self):
        mark = "<CUSTLAYERCOLLECTION"

        def attributes(count):
            return "<a " + " ".join(f'b{i}=\\"\\"' for i in range(count)) + "/>"

        # The root stands around what is put in.
        makers = [
            (XML_DEPTH, lambda n: "<a>" * (n - 1) + "</a>" * (n - 1)),
            (ATTRIBUTES, attributes),
            (TAG_BYTES, lambda n: f"<{'t' * n}/>"),
            (VALUE_BYTES, lambda n: f'<a b=\\"{"v" * n}\\"/>'),
            (VALUE_BYTES, lambda n: f"<a>{'v' * n}</a>"),
        ]
        for limit, make in makers:
            for size in (limit - 1, limit, limit + 1):
                self.project(mark, make(size) + mark, size <= limit, limit)
        whole = "".join(f"<a>{'v' * 9_000_000}</a>" for _ in range(8))
        self.project(mark, whole + mark, False, DOCUMENT_BYTES)

    def depth(self):
        for depth in (JSON_DEPTH - 1, JSON_DEPTH, JSON_DEPTH + 1, 100_000):
            nested = "[" * (depth - 1) + "]" * (depth - 1)
            self.file.write_bytes(self.good)
            answer = self.place.run("status")
            text = self.good.decode().replace('"drives": {}', f'"drives": {{}}, "x": {nested}')
            self.file.write_text(text)
            before = self.file.read_bytes()
            answer = self.place.run("status")
            # Within, the checksum is what is wrong.
            limit = "checksum" if depth <= JSON_DEPTH else JSON_DEPTH
            self.check(answer, False, limit)
            self.place.require(self.file.read_bytes() == before, "lost", "the project changed")
        self.file.write_bytes(self.good)

    def sizes(self, is_long):
        sizes = [PROJECT_BYTES - 1, PROJECT_BYTES, PROJECT_BYTES + 1] if is_long else []
        for size in sizes:
            self.file.write_bytes(self.good + b" " * (size - len(self.good)))
            self.check(self.place.run("status"), size <= PROJECT_BYTES, PROJECT_BYTES)
        self.sparse(self.file, ["status"], PROJECT_BYTES)
        self.file.write_bytes(self.good)
        self.sparse(self.place.root / "work/P/properties.json",
                    ["analysis", "properties", "import", "Sales", "properties.json"], "properties.json")
        side_car = self.place.root / "work/P/KVData/Analyses/Sales/Analysis.lyr.xml"
        self.sparse(side_car, ["metadata", "show", "Sales"], "Analysis.lyr", b"<LAYERMETADATA>")
        self.sparse(side_car, ["metadata", "export", "Sales"], "Analysis.lyr", b"<LAYERMETADATA>")

    def sparse(self, file, words, limit, head=b""):
        """A file that is larger than memory: refused, in bounded memory, and still there."""
        with open(file, "wb") as target:
            target.write(head)
            target.truncate(SPARSE_BYTES)
        code = ("import resource, subprocess, sys; status = subprocess.run(sys.argv[1:]).returncode; "
                "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss); sys.exit(status)")
        kvdm, self.place.kvdm = self.place.kvdm, sys.executable
        answer = self.place.run("-c", code, kvdm, *words)
        self.place.kvdm = kvdm
        self.check(answer, False, limit)
        memory = int(answer.out.split()[-1]) if answer.out.split() else 0
        self.place.require(0 < memory < MEMORY_KIB, "wrong", f"{memory} KiB of memory: {answer}")
        self.place.require(os.path.getsize(file) == SPARSE_BYTES, "lost", f"{file} changed: {answer}")
        os.unlink(file)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kvdm")
    parser.add_argument("edit_project")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    asked = parser.parse_args()
    with Place(asked.kvdm, "limits") as place:
        limits = Limits(place, asked.edit_project)
        groups = [limits.names, limits.values, limits.documents, limits.depth,
                  lambda: limits.sizes(asked.long)]
        for group in part_of(groups, asked.part):
            group()
        return place.end()


if __name__ == "__main__":
    sys.exit(main())
