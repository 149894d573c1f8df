"""Projects that go from one system to the other and back.

    cross_host.py NATIVE_KVDM WINDOWS_KVDM THROUGH_DLL WINE_PREFIX
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import zlib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "host"))
from run_cases import Windows

# What both hosts and the DLL are given, letters beyond ASCII, markup and line ends among it.
COMMANDS = [
    ["init", "Läden 大", "--name", "Shop"],
    ["analysis", "create", "Umsätze 大"],
    ["analysis", "comment", "Umsätze 大", "one\r\ntwo <&> \"three\""],
    ["analysis", "param", "set", "Umsätze 大", "radius", "5 <km>"],
    ["analysis", "create", "Costs"],
    ["analysis", "layer", "Costs", r"D:\Layers\Costs.lyr"],
    ["store", "create", "_Stores_"],
    ["store", "set", "_Stores_", "--id-field", "ID", "--internal", "yes"],
    ["store", "comment", "_Stores_", " with blanks "],
    ["customer", "create", "Clients"],
    ["customer", "set", "Clients", "--link-field", "it's"],
    ["customer", "param", "set", "Clients", "name", "€ 5"],
    ["data", "create", "Streets"],
    ["data", "set", "Streets", "--info", "1 & 2"],
    ["metadata", "export", "_Stores_", "--store"],
    ["store", "comment", "_Stores_", "--clear"],
    ["metadata", "import", "_Stores_", "--store"],
    ["analysis", "rename", "Costs", "Costs 2026"],
    ["analysis", "delete", "Umsätze 大", "--yes"],
    ["project", "save"],
]

GUID = re.compile(r"\{[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}\}")
TIME = re.compile(r"\d{1,2}/\d{1,2}/\d{4} \d{1,2}:\d\d:\d\d [AP]M")
CHECKSUM = re.compile(r"crc32:[0-9a-f]{8}")
RECORDER = re.compile(r'"(person|machine)": ".*"')  # of a working directory's record


class Host:
    """A kvdm, or another program, as a command."""

    data_folder = None

    def __init__(self, *command):
        self.command = command

    def run(self, folder, *arguments):
        environment = dict(os.environ, LC_ALL="C.UTF-8", XDG_DATA_HOME=str(Host.data_folder))
        done = subprocess.run([*self.command, *arguments], cwd=folder, env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)
        if done.returncode != 0:
            raise RuntimeError(f"{arguments}: {done.returncode} {done.stderr.decode()}")
        return done.stdout.decode().replace("\r\n", "\n")


class Project:
    """A project file, past the program that made it."""

    def __init__(self, path):
        self.path = path

    @property
    def metadata(self):
        content = json.loads(self.path.read_text(encoding="utf-8"))
        text = content["objects"][0]["values"][0]["value"]
        return text if isinstance(text, str) else "".join(text)

    @metadata.setter
    def metadata(self, text):
        content = json.loads(self.path.read_text(encoding="utf-8"))
        content["objects"][0]["values"][0]["value"] = text
        content["checksum"] = ""
        document = json.dumps(content, indent=2, ensure_ascii=False)
        content["checksum"] = f"crc32:{zlib.crc32(document.encode()):08x}"
        self.path.write_text(json.dumps(content, indent=2, ensure_ascii=False) + "\n",
                             encoding="utf-8")


def comparable(text, folder):
    """`text` without what differs from run to run."""
    for place in (str(folder), str(folder).replace("/", "\\"), str(folder).replace("/", "\\\\")):
        text = text.replace(place, "TMP")
    guids = list(dict.fromkeys(GUID.findall(text)))
    text = GUID.sub(lambda found: f"GUID{guids.index(found.group())}", text)
    text = RECORDER.sub(r'"\1": "SOMEBODY"', text)
    return CHECKSUM.sub("CHECKSUM", TIME.sub("TIME", text))


def all_files(folder):
    """What is in a folder: the names of folders, and files with their content.

    Without the history, in which each host writes the moment and paths of its own system.
    """
    return {
        str(path.relative_to(folder)): comparable(path.read_bytes().decode(), folder)
        if path.is_file() else None
        for path in sorted(folder.rglob("*"))
        if "history" not in path.parts
    }


class CrossHostTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="kvdm-cross-")
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(os.path.realpath(temporary.name))
        Host.data_folder = self.folder / "data"

    def play(self, name, *hosts):
        """All that is there after the commands, given to the hosts in turn."""
        folder = self.folder / name
        folder.mkdir()
        project = folder / "Läden 大"
        for number, command in enumerate(COMMANDS):
            place = project if project.exists() else folder
            hosts[number % len(hosts)].run(place, *command)
        return all_files(folder)

    def test_both_hosts_and_both_in_turn_leave_the_same_project(self):
        by_native = self.play("native", native)
        self.assertEqual(self.play("windows", windows), by_native)
        self.assertEqual(self.play("both", native, windows), by_native)
        self.assertEqual(self.play("turned", windows, native), by_native)

    def through_dll(self, project, *arguments):
        """Lets the DLL rewrite the project's document; answers the names that it found."""
        text_file = self.folder / "metadata.xml"
        text_file.write_bytes(project.metadata.encode())
        working_directory = "Z:" + str(self.folder / "Shop" / "KVData").replace("/", "\\")
        found = dll.run(self.folder, text_file.name, working_directory, *arguments)
        project.metadata = text_file.read_bytes().decode()
        return found.splitlines()

    def test_a_project_goes_from_the_native_host_through_the_dll_and_back(self):
        native.run(self.folder, "init", "Shop")
        shop = self.folder / "Shop"
        project = Project(shop / "Shop.kvdm")
        for command in COMMANDS[1:]:
            native.run(shop, *command)
        by_host = project.metadata
        self.assertEqual(self.through_dll(project), ["Costs 2026"])
        self.assertEqual(project.metadata, by_host)

        self.assertEqual(self.through_dll(project, "Gebäude"), ["Costs 2026"])
        by_dll = project.metadata
        self.assertNotEqual(by_dll, by_host)
        self.assertTrue((shop / "KVData" / "Analyses" / "Gebäude").is_dir())
        native.run(shop, "project", "save")
        self.assertEqual(project.metadata, by_dll)
        self.assertEqual(native.run(shop, "analysis", "param", "get", "Gebäude", "radius"),
                         "5 <km>\n")

        native.run(shop, "analysis", "delete", "Gebäude", "--yes")
        self.assertFalse((shop / "KVData" / "Analyses" / "Gebäude").exists())
        self.assertEqual(self.through_dll(project), ["Costs 2026"])


if __name__ == "__main__":
    native_program, windows_program, dll_program, prefix = map(os.path.abspath, sys.argv[1:])
    system = Windows(windows_program, prefix)
    native = Host(native_program)
    windows = Host(*system.wine, windows_program)
    dll = Host(*system.wine, dll_program)
    with system.running():
        unittest.main(argv=sys.argv[:1], verbosity=2)
