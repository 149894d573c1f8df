"""Unpacks the archive, and uses the component without and with registration for the user.

    archive_test.py PREFIX PACKAGE.zip CLIENT.exe

The client's manifest names the component; its tests are run beside the unpacked files.
"""

import json
import pathlib
import shutil
import sys
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parents[2] / "installer")]

from checks import check, check_same  # noqa: E402
from registration import entries  # noqa: E402
from registry_dump import dump, values  # noqa: E402
from wine import Wine  # noqa: E402

FILES = {
    *("KVDM.dll", "KVDM.Component.manifest", "LICENSE.txt", "kvdm.exe", "kvdm.idl", "kvdm.tlb"),
    *("windows.md", "errors.md"),
}
NAME = "KVDM archive"
FOLDER = "D:\\" + NAME


def users_classes(wine):
    """The values below the user's classes, which need not be there."""
    found = values(dump(wine, r"HKCU\Software"))
    return {place: text for place, text in found.items() if place[0].startswith("classes\\")}


def check_registration(wine, host):
    before = users_classes(wine)
    wine.run(host, "com", "register", "--user")
    own = entries(FOLDER + "\\KVDM.dll", 64)
    expected = before | {("classes\\" + key.lower(), name): text for key, name, text in own}
    yield check_same("the host registers the DLL beside it for the user", expected, users_classes(wine))
    info = json.loads(wine.output(host, "--json", "com", "info"))
    yield check("it says so", info["registered_for_user"] == FOLDER + "\\KVDM.dll")
    wine.run(host, "com", "unregister", "--user")
    yield check_same("nothing is left of it", before, users_classes(wine))


def check_archive(wine, archive, client):
    folder = wine.prefix / "drive_d" / NAME
    shutil.rmtree(folder, ignore_errors=True)
    with zipfile.ZipFile(archive) as opened:
        opened.extractall(folder)
    yield check("the files are there", {str(file.relative_to(folder)) for file in folder.rglob("*")} == FILES)

    shutil.copy(client, folder)
    program = FOLDER + "\\" + pathlib.Path(client).name
    yield check("a program beside them finds the classes", wine.run(program, "--gtest_brief=1", check=False) == 0)
    yield from check_registration(wine, FOLDER + "\\kvdm.exe")
    shutil.rmtree(folder)


def main(prefix, archive, client):
    return 0 if all([*check_archive(Wine(prefix), archive, client)]) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
