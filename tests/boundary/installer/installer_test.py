"""Installs the component, repairs it, replaces it by a newer one and removes it, and looks at what is there then.

    installer_test.py PREFIX PACKAGE.msi VERSION KVDM.dll
"""

import contextlib
import json
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parents[2] / "installer")]

from checks import check, check_same  # noqa: E402
from make_installer import FIXED_FILE_INFO, make  # noqa: E402
from registration import OWN_KEYS, entries, interfaces  # noqa: E402
from registry_dump import dump, keys, values  # noqa: E402
from wine import Wine, windows_path  # noqa: E402

FOLDER = "C:\\Program Files\\KVDM\\"
FOLDER32 = "C:\\Program Files (x86)\\KVDM\\"
FILES = {"KVDM.dll", "LICENSE.txt", "kvdm.exe", "kvdm.tlb"}
FILES32 = {"KVDM.dll"}
PRODUCT = "KVDM data manager"
NEWER = "99.0.0"

CLIENT = windows_path(HERE / "client.vbs")

ENVIRONMENT = r"HKLM\System\CurrentControlSet\Control\Session Manager\Environment"

# Where Windows keeps what is installed.
PRODUCTS = "microsoft\\windows\\currentversion\\uninstall"
BOOKKEEPING = ("classes\\installer", "microsoft\\windows\\currentversion\\installer", PRODUCTS)
# What is no matter of the installer's: Wine describes the machine anew each time that it starts, and shows type
# libraries to 32-bit programs, too.
OTHERS = (
    *("microsoft\\windows nt\\", "wow6432node\\microsoft\\windows nt\\"),
    *("classes\\wow6432node\\typelib", "wow6432node\\classes\\typelib"),
)

# Under both of these names the system has the classes of 32-bit programs.
THEIR_SIDES = ["classes\\wow6432node\\", "wow6432node\\classes\\"]

# What the choice to share the catalogue makes for each word size.
CATALOGUES = {"velk\\kelvaro", "wow6432node\\velk\\kelvaro"}

REFUSED = 1603 % 256


class State:
    """What is on the computer: files, the path, and the registry's values and keys below "Software"."""

    def __init__(self, wine):
        system = wine.prefix / "drive_c"
        lines = dump(wine, r"HKLM\Software")
        self.files = {str(file.relative_to(system)) for file in system.rglob("*")}
        self.path = path(wine)
        self.values = {place: text for place, text in values(lines).items() if not place[0].startswith(OTHERS)}
        self.keys = {key for key in keys(lines) if not key.startswith(OTHERS)}

    def written(self):
        """All values but the bookkeeping."""
        return {place: text for place, text in self.values.items() if not place[0].startswith(BOOKKEEPING)}


def products(wine):
    """The versions of the installed products of this name, by their codes."""
    found = values(dump(wine, "HKLM\\Software\\" + PRODUCTS))
    return {
        key: found[key, "DisplayVersion"]
        for (key, name), text in found.items()
        if (name, text) == ("DisplayName", PRODUCT)
    }


def path(wine):
    return values(dump(wine, ENVIRONMENT))["", "PATH"]


def tidy_path(wine):
    """Takes away the semicolons that Wine leaves in it."""
    wine.run(
        *("reg.exe", "add", ENVIRONMENT, "/v", "PATH", "/t", "REG_EXPAND_SZ", "/d", path(wine).rstrip(";"), "/f"),
        quiet=True,
    )


def msiexec(wine, *operation, check=True):
    return wine.run("msiexec.exe", *operation, "/qn", check=check)


def remove_all(wine):
    for product in products(wine):
        msiexec(wine, "/x", product)
    tidy_path(wine)


def forget_marshalling(wine):
    """Takes away the interfaces for 32-bit programs, which Wine registers itself when it marshals by a library."""
    key = r"HKEY_LOCAL_MACHINE\Software\Classes\Wow6432Node\Interface"
    with tempfile.NamedTemporaryFile("w", suffix=".reg", dir=wine.prefix) as file:
        file.write("Windows Registry Editor Version 5.00\n\n")
        file.writelines(f"[-{key}\\{identity}]\n" for _, identity, _ in interfaces())
        file.flush()
        wine.run("reg.exe", "import", windows_path(file.name), quiet=True)


@contextlib.contextmanager
def built(package, version):
    """Another package with the files of this one, of which the DLL has the version, too."""
    major, minor, patch = map(int, version.split("."))
    # Not every Wine sees the folder of the system's temporary files.
    with tempfile.TemporaryDirectory(dir=package.parent) as folder:
        files = pathlib.Path(shutil.copytree(package.parent / "files", pathlib.Path(folder, "files")))
        before, mark, after = (files / "KVDM.dll").read_bytes().partition(FIXED_FILE_INFO)
        (files / "KVDM.dll").write_bytes(before + mark + struct.pack("<4H", minor, major, 0, patch) + after[8:])
        with (files / "LICENSE.txt").open("a") as licence:
            licence.write("Another build.\n")
        make(version, files, files.with_name("other.msi"))
        yield files.with_name("other.msi")


def expected(before):
    """The values after installing: those before it, and the entries of the component."""
    wanted = before.written()
    for key, name, text in entries(FOLDER + "KVDM.dll", 64):
        wanted["classes\\" + key.lower(), name] = text
    for key, name, text in entries(FOLDER32 + "KVDM.dll", 32):
        for side in THEIR_SIDES if key.startswith(OWN_KEYS) else ["classes\\"]:
            wanted[side + key.lower(), name] = text
    return wanted


def check_state(wine, before, version):
    """The version is installed, and no other."""
    after = State(wine)
    yield check_same("the entries are those of the component", expected(before), after.written())
    for folder, names in (("Program Files/KVDM", FILES), ("Program Files (x86)/KVDM", FILES32)):
        files = {folder} | {folder + "/" + name for name in names}
        yield check(f"the files are in {folder}", {name for name in after.files if name.startswith(folder)} == files)
    yield check("the catalogue's rights were not asked for", CATALOGUES & after.keys <= before.keys)
    # Wine leaves a semicolon with each package that goes.
    yield check("the path's end is the folder", re.sub(";+", ";", after.path) == before.path + ";" + FOLDER)
    yield check("it is the one product", list(products(wine).values()) == [version])


def script(wine):
    return wine.output("cscript.exe", "//nologo", CLIENT).strip()


def check_use(wine, version):
    """The host is found by its name, and sees itself installed."""
    yield check("kvdm runs", wine.output("kvdm.exe", "version").startswith("kvdm "))
    info = json.loads(wine.output("kvdm.exe", "--json", "com", "info"))
    yield check("it finds the DLL", info["dll"] == info["registered_for_machine"] == FOLDER + "KVDM.dll")
    yield check("the DLL is that of the version", info["version"] == version + ".0")
    yield check("a script finds the classes", script(wine) == "Roads")


def rows(package, table):
    """The rows of a table of the package, without those that describe its columns."""
    told = subprocess.run(["msiinfo", "export", package, table], stdout=subprocess.PIPE, check=True, text=True).stdout
    return [line.split("\t") for line in told.splitlines()[3:]]


def check_package(package, version):
    """What matters on Windows alone: there a file with a version gives way to a newer version, and to nothing else."""
    versions = {row[0]: row[4] for row in rows(package, "File") if row[0] in FILES}
    wanted = {"KVDM.dll": version + ".0", "kvdm.exe": version + ".0", "LICENSE.txt": "", "kvdm.tlb": ""}
    yield check_same("the package knows the files' versions", wanted, versions)
    # Wine sets no rights, so what it is told is looked at.
    rights = {row[1]: row[2:] for row in rows(package, "MsiLockPermissionsEx")}
    users_write = ["Registry", "D:(A;CI;KA;;;SY)(A;CI;KA;;;BA)(A;CI;KRKW;;;BU)", ""]
    yield check_same("users may write the catalogue", dict.fromkeys(("Catalogue", "Catalogue32"), users_write), rights)
    keys_made = [row[1:] for row in rows(package, "Registry") if row[0] in rights]
    yield check("of both word sizes", keys_made == [["2", r"Software\Velk\Kelvaro", "+", "", name] for name in rights])


def check_install(wine, package, version, before):
    msiexec(wine, "/i", windows_path(package))
    yield from check_state(wine, before, version)
    yield from check_use(wine, version)


def check_repair(wine, package):
    """Installs again, which needs no repair, and then repairs what is broken."""
    licence = wine.prefix / "drive_c/Program Files/KVDM/LICENSE.txt"
    licence.unlink()
    wine.run("reg.exe", "delete", r"HKLM\Software\Classes\KVDM.KVFileInfo", "/f", quiet=True)
    msiexec(wine, "/i", windows_path(package))
    # What /fomus is short for, which Wine does not know.
    msiexec(wine, "/i", windows_path(package), "REINSTALL=ALL", "REINSTALLMODE=omus")
    yield check("repairing brings back files and entries", licence.exists() and script(wine) == "Roads")


def check_shared_catalogue(wine, package):
    """The choice makes the catalogue's keys, which stay when the product goes."""
    msiexec(wine, "/i", windows_path(package), "ADDLOCAL=ALL")
    yield check("the catalogue is there for all users", CATALOGUES <= State(wine).keys)
    remove_all(wine)
    yield check("and stays there", CATALOGUES <= State(wine).keys)
    for key in (r"HKLM\Software\Velk", r"HKLM\Software\Wow6432Node\Velk"):
        wine.run("reg.exe", "delete", key, "/f", quiet=True)


def check_upgrade(wine, package, version, before):
    with built(package, version) as same, built(package, NEWER) as newer:
        msiexec(wine, "/i", windows_path(same))
        yield check("another build takes its place", list(products(wine).values()) == [version])
        msiexec(wine, "/i", windows_path(newer))
    yield from check_state(wine, before, NEWER)
    yield check("the older one is refused then", msiexec(wine, "/i", windows_path(package), check=False) == REFUSED)
    yield from check_use(wine, NEWER)


def check_removed(wine, before):
    [product] = products(wine)
    msiexec(wine, "/x", product)
    after = State(wine)
    yield check_same("no value is left", before.values, after.values)
    # Wine makes the keys and the folder of its bookkeeping when they are first needed.
    left = {key for key in after.keys - before.keys if not key.startswith(BOOKKEEPING[:2])}
    yield check("no key is left", left == set())
    yield check("no file is left", after.files - before.files <= {"windows/Installer"})
    # On Windows the path is as it was.
    yield check("Wine leaves semicolons in the path", after.path == before.path + ";;;")


def main(prefix, package, version, dll):
    wine, package = Wine(prefix), pathlib.Path(package)
    # What an interrupted run has left, and what Wine registers itself of a library that it has marshalled by.
    remove_all(wine)
    wine.regsvr32(dll, "/u")
    forget_marshalling(wine)
    # Also the script host registers itself, when it is first used.
    results = [check("a script finds no classes before", script(wine) == "")]
    before = State(wine)
    try:
        results += [
            *check_package(package, version),
            *check_install(wine, package, version, before),
            *check_repair(wine, package),
            *check_upgrade(wine, package, version, before),
            *check_removed(wine, before),
            *check_shared_catalogue(wine, package),
        ]
    finally:
        remove_all(wine)
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
