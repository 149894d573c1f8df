"""Installs the component where programs of both word sizes run, repairs it, replaces it by a newer one and removes it, and
lets a script of each word size use it each time.

    both_installed_test.py PREFIX PACKAGE.msi VERSION
"""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "registration")]

from both_sizes_test import CLASSES, OTHER_SIDE, OWN_KEYS, Registry, works  # noqa: E402
from checks import check, check_same  # noqa: E402
from installer_test import BOOKKEEPING, FOLDER, FOLDER32, NEWER, built, msiexec, products, remove_all  # noqa: E402
from registration import entries  # noqa: E402
from wine import Wine, windows_path  # noqa: E402

FOLDERS = {64: FOLDER, 32: FOLDER32}
REPAIR = ("REINSTALL=ALL", "REINSTALLMODE=omus")


def own(registry):
    """Its values without those by which the system knows what is installed."""
    mark = BOOKKEEPING[0].removeprefix("classes\\")
    return {place: text for place, text in registry.values.items() if not place[0].startswith(mark)}


def expected(before):
    wanted = own(before)
    for bits, folder in FOLDERS.items():
        for key, name, text in entries(folder + "KVDM.dll", bits):
            key = key.lower()
            wanted[OTHER_SIDE + key if bits == 32 and key.startswith(OWN_KEYS) else key, name] = text
    return wanted


def file_of(wine, bits):
    return wine.prefix / "drive_c" / FOLDERS[bits].removeprefix("C:\\").replace("\\", "/") / "KVDM.dll"


def check_installed(what, wine, before):
    yield check_same(f"{what}: the entries", expected(before), own(Registry(wine)))
    for bits in FOLDERS:
        yield check(f"{what}: a script of {bits} bits", file_of(wine, bits).exists() and works(wine, bits))


def check_repair(wine, package, before):
    """Each word size may lose its file and a class, or be unregistered by hand."""
    for bits in FOLDERS:
        wine.regsvr32(file_of(wine, bits), "/u", bits=bits)
        yield check(f"a script of {bits} bits finds nothing then", not works(wine, bits))
        msiexec(wine, "/i", package, *REPAIR)
        yield from check_installed(f"{bits} bits registered again", wine, before)
        file_of(wine, bits).unlink()
        msiexec(wine, "/i", package, *REPAIR)
        yield from check_installed(f"the file of {bits} bits brought back", wine, before)


def check_removed(wine, before):
    [product] = products(wine)
    msiexec(wine, "/x", product)
    yield check_same("removed: the entries", own(before), own(Registry(wine)))
    left = {key for key in Registry(wine).keys - before.keys if not key.startswith("installer")}
    yield check(f"removed: no key is left in {CLASSES}", left == set())
    for bits in FOLDERS:
        yield check(f"removed: no file of {bits} bits", not file_of(wine, bits).parent.exists())
        yield check(f"removed: no class for {bits} bits", not works(wine, bits))


def main(prefix, package, version):
    wine, package = Wine(prefix), pathlib.Path(package)
    remove_all(wine)
    # Script hosts register themselves when they are first used.
    results = [check(f"no class for {bits} bits before", not works(wine, bits)) for bits in FOLDERS]
    before = Registry(wine)
    try:
        msiexec(wine, "/i", windows_path(package))
        results += check_installed(f"version {version}", wine, before)
        results += check_repair(wine, windows_path(package), before)
        with built(package, NEWER) as newer:
            msiexec(wine, "/i", windows_path(newer))
        results += check_installed(f"version {NEWER}", wine, before)
        results += check_removed(wine, before)
    finally:
        remove_all(wine)
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
