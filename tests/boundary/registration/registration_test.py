"""Registers the component for the machine and for the user, and looks at what is there then, and afterwards.

    registration_test.py PREFIX KVDM.dll PROGRAM

The program's tests are run while the component is registered.
"""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parents[2] / "installer")]

from checks import check, check_same  # noqa: E402
from registration import entries  # noqa: E402
from registry_dump import dump, keys, values  # noqa: E402
from wine import Wine, windows_path  # noqa: E402

FOR_USER = ("/n", "/i:user")

MACHINES_CLASSES = r"HKLM\Software\Classes"
USERS_CLASSES = r"HKCU\Software\Classes"

# Where all components are; an empty one may stay.
SHARED_KEYS = {"clsid", "interface", "typelib"}

# Where 64-bit systems show type libraries to 32-bit programs, too.
OTHER_SIDE = "wow6432node\\typelib\\"


def expected(dll):
    file = windows_path(dll)
    return {(key.lower(), name): text for key, name, text in entries(file, 64)}


def added(before, after):
    old, new = values(before), values(after)
    return {
        place: text for place, text in new.items() if old.get(place) != text and not place[0].startswith(OTHER_SIDE)
    }


def check_machine(wine, dll, program, before):
    """Registers twice and unregisters twice."""
    wine.regsvr32(dll)
    wine.regsvr32(dll)
    registered = dump(wine, MACHINES_CLASSES)
    yield check_same("the entries are those of the installer", expected(dll), added(before, registered))
    yield check("the classes are found", wine.run(program, "--gtest_filter=Registered*Test.*-*User*", check=False) == 0)
    wine.regsvr32(dll, "/u")
    wine.regsvr32(dll, "/u")


def check_user(wine, dll, program, before):
    """Also that nothing of the registration for the machine is left."""
    users = dump(wine, USERS_CLASSES)
    wine.regsvr32(dll, *FOR_USER)
    wine.regsvr32(dll, *FOR_USER)
    yield check("the machine's classes are as before", before == dump(wine, MACHINES_CLASSES))
    yield check_same("the user has the same entries", expected(dll), added(users, dump(wine, USERS_CLASSES)))
    yield check("the user finds them", wine.run(program, "--gtest_filter=RegisteredForUserTest.*", check=False) == 0)
    wine.regsvr32(dll, "/u", *FOR_USER)
    wine.regsvr32(dll, "/u", *FOR_USER)
    after = dump(wine, USERS_CLASSES)
    yield check("the user's values are as before", values(users) == values(after))
    yield check("no key of the user's is left", keys(after) - keys(users) <= SHARED_KEYS)


def main(prefix, dll, program):
    wine = Wine(prefix)
    # What an interrupted run has left.
    wine.regsvr32(dll, "/u")
    wine.regsvr32(dll, "/u", *FOR_USER)
    before = dump(wine, MACHINES_CLASSES)
    results = [*check_machine(wine, dll, program, before), *check_user(wine, dll, program, before)]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
