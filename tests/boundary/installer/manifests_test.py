"""Makes the files for package managers and judges them by the rules of those that take them in.

    manifests_test.py PACKAGE.msi
"""

import hashlib
import pathlib
import re
import sys
import tempfile
import xml.etree.ElementTree

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parents[2] / "installer")]

from checks import check, check_same  # noqa: E402
from make_manifests import make, properties  # noqa: E402

WINGET = {
    "KVDM.KVDM.yaml": ("version", {"DefaultLocale"}),
    "KVDM.KVDM.locale.en-US.yaml": (
        "defaultLocale",
        {"PackageLocale", "Publisher", "PackageName", "License", "ShortDescription", "Description"},
    ),
    "KVDM.KVDM.installer.yaml": (
        "installer",
        {"InstallerType", "Scope", "MinimumOSVersion", "Installers", "Architecture", "InstallerUrl", "InstallerSha256", "ProductCode"},
    ),
}
ALWAYS = {"PackageIdentifier", "PackageVersion", "ManifestType", "ManifestVersion"}
NUSPEC = "{http://schemas.microsoft.com/packaging/2015/06/nuspec.xsd}"


def entries(file):
    """The entries of a file of the simple form that these have."""
    lines = [line for line in file.read_text().splitlines() if not line.startswith("#")]
    return dict(re.fullmatch(r"(?:- |  )?(\w+): ?(.*)", line).groups() for line in lines)


def check_winget(folder, package, address):
    checksum = hashlib.sha256(package.read_bytes()).hexdigest()
    known = properties(package)
    yield check("winget's files are there", {file.name for file in folder.iterdir()} == set(WINGET))
    for name, (kind, own) in WINGET.items():
        found = entries(folder / name)
        yield check(f"{name} has its entries", set(found) == ALWAYS | own)
        same = (found["PackageIdentifier"], found["PackageVersion"], found["ManifestType"])
        yield check(f"{name} is of this package", same == ("KVDM.KVDM", known["ProductVersion"], kind))
    yield check("texts are short enough", len(entries(folder / "KVDM.KVDM.locale.en-US.yaml")["ShortDescription"]) <= 256)
    found = entries(folder / "KVDM.KVDM.installer.yaml")
    wanted = {"InstallerUrl": address, "InstallerSha256": checksum.upper(), "ProductCode": f"'{known['ProductCode']}'"}
    yield check_same("the installer is this one", wanted, {key: found[key] for key in wanted})


def check_chocolatey(folder, package, address):
    root = xml.etree.ElementTree.parse(folder / "kvdm.nuspec").getroot()
    metadata = {child.tag.removeprefix(NUSPEC): child.text for child in root.find(NUSPEC + "metadata")}
    yield check("the package has what is asked for", {"id", "version", "authors", "description", "title"} <= set(metadata))
    yield check("its name is in small letters", metadata["id"] == metadata["id"].lower())
    yield check("it is of this version", metadata["version"] == properties(package)["ProductVersion"])
    install = (folder / "tools/chocolateyInstall.ps1").read_text()
    checksum = hashlib.sha256(package.read_bytes()).hexdigest()
    yield check("it loads this installer", f"'{address}'" in install and f"'{checksum}'" in install)
    uninstall = (folder / "tools/chocolateyUninstall.ps1").read_text()
    yield check("it removes this product", properties(package)["ProductCode"] in uninstall)
    yield check("nothing is left to fill in", not re.search(r"\{\w+\}", install + (folder / "kvdm.nuspec").read_text()))


def main(package):
    package = pathlib.Path(package)
    address = "https://downloads.example/" + package.name
    with tempfile.TemporaryDirectory() as folder:
        make(package, address, folder)
        results = [
            *check_winget(pathlib.Path(folder, "winget"), package, address),
            *check_chocolatey(pathlib.Path(folder, "chocolatey"), package, address),
        ]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
