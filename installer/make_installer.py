"""Makes the installer of a folder of files.

    make_installer.py VERSION FILES PACKAGE.msi
"""

import pathlib
import struct
import subprocess
import sys
from xml.sax.saxutils import quoteattr

from registration import entries

TEMPLATE = pathlib.Path(__file__).with_name("kvdm.wxs.in")

# How the fixed part of a version resource starts: its signature and its own version.
FIXED_FILE_INFO = struct.pack("<II", 0xFEEF04BD, 0x00010000)

ENGLISH = 1033

# The folder of the host is the last one of everybody's PATH, and is taken out again with the host.
ENVIRONMENT = (
    "CREATE TABLE `Environment` (`Environment` CHAR(72) NOT NULL, `Name` CHAR(255) NOT NULL LOCALIZABLE, "
    "`Value` CHAR(255) LOCALIZABLE, `Component_` CHAR(72) NOT NULL PRIMARY KEY `Environment`)",
    "INSERT INTO `Environment` (`Environment`, `Name`, `Value`, `Component_`) "
    "VALUES ('Path', '=-*PATH', '[~];[INSTALLFOLDER]', 'Host')",
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


def registry_values(indent):
    """The entries of the component as elements of the source."""
    for key, name, text in entries("[#KVDM.dll]", 64):
        named = f" Name={quoteattr(name)}" if name else ""
        key = quoteattr("Software\\Classes\\" + key)
        yield f'{indent}<RegistryValue Root="HKLM" Key={key}{named} Value={quoteattr(text)} Type="string"/>'


def source(version):
    """The lines of the installer's source: those of the template, filled in."""
    for line in TEMPLATE.read_text(encoding="utf-8").splitlines():
        if line.strip() == "<!-- entries -->":
            yield from registry_values(line[: len(line) - len(line.lstrip())])
        else:
            yield line.replace("@VERSION@", version)


def make(version, files, package):
    """Has the package compiled, and adds what the compiler knows no elements for."""
    package = package.resolve()
    wxs = package.with_suffix(".wxs")
    wxs.write_text("\n".join(source(version)), encoding="utf-8")
    subprocess.run(["wixl", "--arch", "x64", "-o", package, wxs], cwd=files, check=True)
    statements = [*ENVIRONMENT, *versioned(sorted(files.iterdir()))]
    subprocess.run(["msibuild", package, "-q", *statements], check=True)


if __name__ == "__main__":
    make(sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]))
