"""Registers and unregisters the components of both word sizes in different orders, and looks at what is there each time.

    both_sizes_test.py PREFIX KVDM.dll-of-64-bits KVDM.dll-of-32-bits
"""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parents[2] / "installer")]

from checks import check, check_same  # noqa: E402
from registration import entries  # noqa: E402
from registry_dump import dump, keys, values  # noqa: E402
from wine import SYSTEM_FOLDERS, Wine, windows_path  # noqa: E402

CLASSES = r"HKLM\Software\Classes"
SCRIPT = windows_path(HERE.parent / "installer" / "client.vbs")

# The keys that each word size has for itself; those of 32 bits are below this one.
OWN_KEYS = ("clsid\\", "interface\\")
OTHER_SIDE = "wow6432node\\"

# Where the system shows type libraries to 32-bit programs, too.
MIRROR = "wow6432node\\typelib"

ORDERS = (((64, 32), (64, 32)), ((32, 64), (32, 64)), ((64, 32), (32, 64)))


class Registry:
    def __init__(self, wine):
        lines = dump(wine, CLASSES)
        self.values = {place: text for place, text in values(lines).items() if not place[0].startswith(MIRROR)}
        self.keys = {key for key in keys(lines) if not key.startswith(MIRROR)}


def entries_of(bits, dll):
    for key, name, text in entries(windows_path(dll), bits):
        key = key.lower()
        yield (OTHER_SIDE + key if bits == 32 and key.startswith(OWN_KEYS) else key, name), text


def works(wine, bits):
    return wine.output(SYSTEM_FOLDERS[bits] + "cscript.exe", "//nologo", SCRIPT).strip() == "Roads"


def check_state(what, wine, dlls, registered, before):
    wanted = dict(before.values)
    for bits in registered:
        wanted |= dict(entries_of(bits, dlls[bits]))
    yield check_same(f"{what}: the entries", wanted, Registry(wine).values)
    for bits in dlls:
        yield check(f"{what}: a script of {bits} bits", works(wine, bits) == (bits in registered))


def check_order(wine, dlls, arrivals, departures, before):
    for bits in arrivals:
        wine.regsvr32(dlls[bits], bits=bits)
    yield from check_state(f"{arrivals} registered", wine, dlls, arrivals, before)
    for position, bits in enumerate(departures):
        wine.regsvr32(dlls[bits], "/u", bits=bits)
        left = departures[position + 1 :]
        yield from check_state(f"{arrivals} registered, {left} left", wine, dlls, left, before)
    yield check("no key is left", Registry(wine).keys == before.keys)


def main(prefix, dll64, dll32):
    wine, dlls = Wine(prefix), {64: dll64, 32: dll32}
    results = []
    # What an interrupted run has left; and script hosts register themselves, when they are first used.
    for bits, dll in dlls.items():
        wine.regsvr32(dll, "/u", bits=bits)
        results.append(check(f"no class for {bits} bits before", not works(wine, bits)))
    before = Registry(wine)
    for arrivals, departures in ORDERS:
        results += check_order(wine, dlls, arrivals, departures, before)
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
