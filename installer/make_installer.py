"""Makes the installer of a folder of files. The same files make the same bytes, wherever and whenever.

    make_installer.py VERSION FILES PACKAGE.msi
"""

import hashlib
import os
import pathlib
import re
import struct
import subprocess
import sys
import uuid
from xml.sax.saxutils import quoteattr

from registration import OWN_KEYS, entries

HERE = pathlib.Path(__file__).resolve().parent
TEMPLATE = HERE / "kvdm.wxs.in"
ENTRIES = re.compile(r"( *)<!-- entries (\w+) -->")
UPGRADE_CODE = uuid.UUID("22C24742-0644-40DF-85C7-0E613E1FFB1B")

# The DLL of each word size.
DLLS = {64: "[#KVDM.dll]", 32: "[#KVDM32.dll]"}

# How the fixed part of a version resource starts: its signature and its own version.
FIXED_FILE_INFO = struct.pack("<II", 0xFEEF04BD, 0x00010000)

ENGLISH = 1033

# The time that everything in the package has: the first of January 1980, the first day that cabinets know.
SOME_TIME = 315532800
FILE_TIME = struct.pack("<Q", (SOME_TIME + 11644473600) * 10**7)

# The folder of the host is the last one of everybody's PATH, and is taken out again with the host.
ENVIRONMENT = (
    "CREATE TABLE `Environment` (`Environment` CHAR(72) NOT NULL, `Name` CHAR(255) NOT NULL LOCALIZABLE, "
    "`Value` CHAR(255) LOCALIZABLE, `Component_` CHAR(72) NOT NULL PRIMARY KEY `Environment`)",
    "INSERT INTO `Environment` (`Environment`, `Name`, `Value`, `Component_`) "
    "VALUES ('Path', '=-*PATH', '[~];[INSTALLFOLDER]', 'Host')",
)

# A choice: the catalogue's key of each word size, which all users may then write. It stays when the product goes.
CATALOGUE = "Software\\Velk\\Kelvaro"
CATALOGUES = {
    "Catalogue": ("{6E3B5C7A-0E5C-4A37-9C53-53B2BB3D0C11}", "INSTALLFOLDER", 0x100),
    "Catalogue32": ("{B0A6C1A4-58F7-4C0E-8B57-7E0E4F7A7B62}", "INSTALLFOLDER32", 0),
}
KEYS_ARE_REGISTRY, PERMANENT, LOCAL_MACHINE, NOT_BY_DEFAULT = 0x4, 0x10, 2, 1000
# Full rights for the system and administrators; users read and write values and keys below.
RIGHTS = "D:(A;CI;KA;;;SY)(A;CI;KA;;;BA)(A;CI;KRKW;;;BU)"


def shared_catalogue():
    """Statements for the choice."""
    yield (
        "INSERT INTO `Feature` (`Feature`, `Title`, `Description`, `Display`, `Level`, `Attributes`) VALUES "
        "('SharedCatalogue', 'Catalogue for all users', "
        f"'All users of this computer may create and change study areas.', 2, {NOT_BY_DEFAULT}, 0)"
    )
    yield (
        "CREATE TABLE `MsiLockPermissionsEx` (`MsiLockPermissionsEx` CHAR(72) NOT NULL, `LockObject` CHAR(72) NOT NULL, "
        "`Table` CHAR(32) NOT NULL, `SDDLText` CHAR(0) NOT NULL, `Condition` CHAR(255) PRIMARY KEY `MsiLockPermissionsEx`)"
    )
    for name, (identity, folder, word_size) in CATALOGUES.items():
        attributes = KEYS_ARE_REGISTRY | PERMANENT | word_size
        yield (
            "INSERT INTO `Component` (`Component`, `ComponentId`, `Directory_`, `Attributes`, `KeyPath`) "
            f"VALUES ('{name}', '{identity}', '{folder}', {attributes}, '{name}')"
        )
        # The name says that the key as such is made.
        yield (
            "INSERT INTO `Registry` (`Registry`, `Root`, `Key`, `Name`, `Component_`) "
            f"VALUES ('{name}', {LOCAL_MACHINE}, '{CATALOGUE}', '+', '{name}')"
        )
        yield f"INSERT INTO `FeatureComponents` (`Feature_`, `Component_`) VALUES ('SharedCatalogue', '{name}')"
        yield (
            "INSERT INTO `MsiLockPermissionsEx` (`MsiLockPermissionsEx`, `LockObject`, `Table`, `SDDLText`) "
            f"VALUES ('{name}', '{name}', 'Registry', '{RIGHTS}')"
        )


def file_version(file):
    """The version that a program's or a library's file has, nothing for other files."""
    _, found, info = file.read_bytes().partition(FIXED_FILE_INFO)
    if not found:
        return None
    high, low = struct.unpack_from("<II", info)
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"


def versioned(files):
    """Statements that give files their version: which of two files is newer is told by that, and not by a hash.
    An installed file with a version would never give way to one without."""
    for file in files:
        if version := file_version(file):
            yield f"UPDATE `File` SET `Version` = '{version}', `Language` = '{ENGLISH}' WHERE `File` = '{file.name}'"
            yield f"DELETE FROM `MsiFileHash` WHERE `File_` = '{file.name}'"


def registry_values(which):
    """The entries of the component: those of one word size, or those that both share."""
    for bits, dll in DLLS.items():
        for key, name, text in entries(dll, bits):
            belongs = str(bits) if key.startswith(OWN_KEYS) else "shared"
            if which == belongs:
                yield key, name, text


def registry_elements(indent, which):
    for key, name, text in dict.fromkeys(registry_values(which)):
        named = f" Name={quoteattr(name)}" if name else ""
        key = quoteattr("Software\\Classes\\" + key)
        yield f'{indent}<RegistryValue Root="HKLM" Key={key}{named} Value={quoteattr(text)} Type="string"/>'


def source(version, product):
    """The lines of the installer's source: those of the template, filled in."""
    for line in TEMPLATE.read_text(encoding="utf-8").splitlines():
        if match := ENTRIES.fullmatch(line):
            yield from registry_elements(*match.groups())
        else:
            yield line.replace("@VERSION@", version).replace("@PRODUCT@", product)


def identity_of(version, files):
    """An identity that other files, or another way to pack them, do not have."""
    content = hashlib.sha256(version.encode())
    for file in [*files, TEMPLATE, pathlib.Path(__file__), HERE / "registration.py"]:
        content.update(file.read_bytes())
    return uuid.uuid5(UPGRADE_CODE, content.hexdigest())


def settle(package, identity):
    """Gives the package an identity and a time of its own in place of those of the compiler's run."""
    summary = subprocess.run(["msiinfo", "suminfo", package], check=True, capture_output=True, text=True).stdout
    [old] = re.findall(r"\(UUID\): (\{[0-9A-F-]{36}\})", summary)
    data = package.read_bytes()
    start = data.index(old.encode())
    # Both times follow the identity.
    settled = data[start : start + 128].replace(old.encode(), f"{{{identity}}}".upper().encode())
    settled, times = re.subn(rb"(?s)(\x40\0\0\0).{8}", lambda match: match[1] + FILE_TIME, settled)
    assert times == 2
    package.write_bytes(data[:start] + settled + data[start + 128 :])


def make(version, folder, package):
    """Has the package compiled, and adds what the compiler knows no elements for."""
    package = package.resolve()
    files = sorted(folder.iterdir())
    for file in files:
        os.utime(file, (SOME_TIME, SOME_TIME))
    identity = identity_of(version, files)
    wxs = package.with_suffix(".wxs")
    wxs.write_text("\n".join(source(version, str(identity).upper())), encoding="utf-8")
    subprocess.run(["wixl", "--arch", "x64", "-o", package, wxs], cwd=folder, check=True, env=os.environ | {"TZ": "UTC"})
    statements = [*ENVIRONMENT, *shared_catalogue(), *versioned(files)]
    subprocess.run(["msibuild", package, "-q", *statements], check=True)
    settle(package, uuid.uuid5(identity, "package"))


if __name__ == "__main__":
    make(sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]))
