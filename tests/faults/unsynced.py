#!/usr/bin/env python3
"""The power fails while a command works, and what was not synced by then is thrown away.

    unsynced.py KVDM DISTURB LIBRARY_HOST [--long] [--part K/N] [--case CASE]

What a command does to files is recorded, then done again up to some moment. Of the changes of names
that are not synced then, the disk has the first few, or in the long form any; of the bytes none, or
all. Each store must be what it was before or what it becomes, and nothing listed without its files;
a change that was reported done is there. A case is COMMAND:MOMENT:NAMES:DATA.
"""

import itertools
import os
import sys

from judge import Judge
from world import COMMANDS, Counts, Reference, World, arguments_of

MOST_MIXED = 6  # changes of names; of more not all mixtures are tried


class Node:
    """A file, folder or link: what programs see, and what the disk is sure to have."""

    def __init__(self, content=b"", is_folder=False):
        self.is_folder = is_folder
        self.content = self.lasting = content  # bytes of a file, target of a link
        self.entries, self.lasting_entries = {}, {}


class Disk:
    """What is written and what of it lasts.

    The bytes of a file last once it is synced, and a change of a name once its folder is; a new
    folder's name also with the folder itself. A rename from one folder to another is one change.
    """

    def __init__(self, world):
        self.root, self.nodes, self.pending = world.root, {}, []
        self.top = self.load(world.root)

    def load(self, path):
        is_folder = os.path.isdir(path) and not os.path.islink(path)
        number = os.lstat(path).st_ino
        if is_folder:
            node = Node(is_folder=True)
            for name in os.listdir(path):
                node.entries[name] = self.load(os.path.join(path, name))
            node.lasting_entries = dict(node.entries)
        elif os.path.islink(path):
            node = Node(os.readlink(path))
        else:
            with open(path, "rb") as file:
                node = Node(file.read())
        self.nodes[number] = node
        return node

    def place(self, path):
        """The folder of a path, and the name there; None outside of the world."""
        if not path.startswith(self.root):
            return None, path
        *folders, name = path[len(self.root):].split("/")
        node = self.top
        for folder in folders:
            node = node.entries[folder]
        return node, name

    def change(self, *steps, also=()):
        """Steps (folder, name, node) that happen together; `also` are folders whose sync is enough."""
        for folder, name, node in steps:
            self.step(folder.entries, name, node)
        self.pending.append((steps, {id(step[0]) for step in steps} | {id(node) for node in also}))

    @staticmethod
    def step(entries, name, node):
        if node is None:
            entries.pop(name, None)
        else:
            entries[name] = node

    def do(self, event):
        word, *rest = event
        getattr(self, word)(*rest)

    def create(self, path, number):
        folder, name = self.place(path)
        if folder:
            self.nodes[int(number)] = node = Node()
            self.change((folder, name, node))
            node.lasting = b""

    def mkdir(self, path, number):
        folder, name = self.place(path)
        if folder:
            self.nodes[int(number)] = node = Node(is_folder=True)
            self.change((folder, name, node), also=[node])

    def write(self, number, offset, digits):
        node, offset, data = self.nodes.get(int(number)), int(offset), bytes.fromhex(digits)
        if node:
            old = node.content.ljust(offset, b"\0")
            node.content = old[:offset] + data + old[offset + len(data):]

    def truncate(self, number, size):
        node = self.nodes.get(int(number))
        if node:
            node.content = node.content[:int(size)].ljust(int(size), b"\0")

    def rename(self, source, target):
        (source_folder, source_name), (folder, name) = self.place(source), self.place(target)
        node = source_folder.entries[source_name]
        self.change((source_folder, source_name, None), (folder, name, node))

    def link(self, source, target):
        (source_folder, source_name), (folder, name) = self.place(source), self.place(target)
        self.change((folder, name, source_folder.entries[source_name]))

    def unlink(self, path):
        folder, name = self.place(path)
        if folder:
            self.change((folder, name, None))

    rmdir = unlink

    def sync(self, number):
        node = self.nodes.get(int(number))
        if node is None:
            return
        node.lasting = node.content
        waiting = []
        for steps, folders in self.pending:
            if id(node) in folders:
                for folder, name, changed in steps:
                    self.step(folder.lasting_entries, name, changed)
            else:
                waiting.append((steps, folders))
        self.pending = waiting

    def mixtures(self, is_long):
        """Which of the pending changes of names are done: the first few, in the long form any."""
        count = len(self.pending)
        few = [tuple(range(size)) for size in range(count + 1)]
        if not is_long:
            return few
        if count > MOST_MIXED:
            return few + [(index,) for index in range(1, count)]
        return [chosen for size in range(count + 1)
                for chosen in itertools.combinations(range(count), size)]

    def image(self, names, with_data):
        """What the disk has when some changes of names were done, as World.scan gives it."""
        changed = {}
        for steps, _ in (self.pending[index] for index in names):
            for folder, name, node in steps:
                self.step(changed.setdefault(id(folder), dict(folder.lasting_entries)), name, node)
        found = {}
        self.collect(self.top, "", changed, with_data, found)
        return found

    def collect(self, folder, path, changed, with_data, found):
        for name, node in changed.get(id(folder), folder.lasting_entries).items():
            if node.is_folder:
                found[path + name] = None
                self.collect(node, path + name + "/", changed, with_data, found)
            else:
                found[path + name] = node.content if with_data else node.lasting


class Cut:
    """An image of the disk at one moment of a command."""

    def __init__(self, reference, moment, names, data, image, is_last):
        self.reference, self.image, self.is_last = reference, image, is_last
        done = "+".join(map(str, names)) or "none"
        self.case = f"{reference.name}:{moment}:{done}:{data}"

    def judge(self, world, counts):
        world.restore(self.image)
        judge = Judge(world, self.reference, world.state(), self.reference.outcome)
        if self.is_last:
            for store in self.reference.after.stores:
                if not judge.changed(store):
                    judge.fault("lost", f"reported done, and {store} is what it was")
            for path, content in self.reference.after.tree.items():
                if content is not None and judge.state.tree.get(path) != content:
                    judge.fault("lost", f"reported done, and {path} is not as it becomes")
        counts.add(self.case, judge.aftermath())


def cuts_of(world, name, is_long):
    """The different images of the disk that a command can leave when the power fails."""
    record = str(world.base / "record")
    reference = Reference(world, name)
    world.restore()
    disk, images = Disk(world), {}
    world.disturbed(reference.words, "--record", record)
    with open(record, encoding="utf-8") as lines:
        events = [line.rstrip("\n").split("\t") for line in lines]
    for moment, event in enumerate([None, *events]):
        if event:
            disk.do(event)
        for names, with_data in itertools.product(disk.mixtures(is_long), (False, True)):
            image = disk.image(names, with_data)
            is_last = moment == len(events)
            key = is_last, tuple(sorted(image.items()))
            data = "data" if with_data else "no data"
            images.setdefault(key, Cut(reference, moment, names, data, image, is_last))
    return list(images.values())


def main():
    arguments = arguments_of("unsynced")
    counts = Counts("unsynced")
    with World(*arguments.programs) as world:
        names = [arguments.case.split(":")[0]] if arguments.case else COMMANDS
        cuts = [cut for name in names for cut in cuts_of(world, name, arguments.long)]
        if arguments.case:
            cuts = [cut for cut in cuts if cut.case == arguments.case]
        for cut in cuts[arguments.part - 1::arguments.parts]:
            cut.judge(world, counts)
    return counts.end()


if __name__ == "__main__":
    sys.exit(main())
