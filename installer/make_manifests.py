"""Makes what package managers need to install the component: three files for winget, and a package folder for Chocolatey.

    make_manifests.py PACKAGE.msi ADDRESS FOLDER

ADDRESS is where the package will be loaded from, https://.../kvdm-0.1.0-win64.msi.
"""

import hashlib
import pathlib
import subprocess
import sys
from xml.sax.saxutils import escape

IDENTIFIER = "KVDM.KVDM"
CHOCOLATEY_NAME = "kvdm"
AUTHORS = "The KVDM authors"
LICENCE = "MIT"
SUMMARY = "Keeps study areas, analyses and layers of market-analysis projects"
DESCRIPTION = SUMMARY + ": a COM component for programs and scripts of 64 and 32 bits, and the command-line host kvdm."
SCHEMA = "1.6.0"

INSTALL = """$ErrorActionPreference = 'Stop'
Install-ChocolateyPackage -PackageName '{name}' -FileType 'msi' -SilentArgs '/qn /norestart' `
  -Url64bit '{address}' -Checksum64 '{checksum}' -ChecksumType64 'sha256' -ValidExitCodes @(0, 3010)
"""
UNINSTALL = """$ErrorActionPreference = 'Stop'
Uninstall-ChocolateyPackage -PackageName '{name}' -FileType 'msi' -SilentArgs '{product} /qn /norestart'
"""
NUSPEC = """<?xml version="1.0" encoding="utf-8"?>
<package xmlns="http://schemas.microsoft.com/packaging/2015/06/nuspec.xsd">
  <metadata>
    <id>{name}</id>
    <version>{version}</version>
    <title>KVDM</title>
    <authors>{authors}</authors>
    <summary>{summary}</summary>
    <description>{description}</description>
    <tags>gis com command-line</tags>
  </metadata>
  <files>
    <file src="tools\\**" target="tools"/>
  </files>
</package>
"""


def properties(package):
    """The package's own properties, by name."""
    told = subprocess.run(["msiinfo", "export", package, "Property"], check=True, capture_output=True, text=True).stdout
    return dict(line.split("\t", 1) for line in told.splitlines()[3:])


def yaml(kind, version, entries):
    """The text of one of winget's files."""
    head = {"PackageIdentifier": IDENTIFIER, "PackageVersion": version}
    tail = {"ManifestType": kind, "ManifestVersion": SCHEMA}
    lines = [f"# yaml-language-server: $schema=https://aka.ms/winget-manifest.{kind}.{SCHEMA}.schema.json"]
    return "\n".join(lines + [f"{key}: {text}" for key, text in (head | entries | tail).items()]) + "\n"


def winget(version, product, address, checksum):
    installer = f"\n- Architecture: x64\n  InstallerUrl: {address}\n  InstallerSha256: {checksum.upper()}\n  ProductCode: '{product}'"
    locale = {
        "PackageLocale": "en-US",
        "Publisher": AUTHORS,
        "PackageName": "KVDM data manager",
        "License": LICENCE,
        "ShortDescription": SUMMARY,
        "Description": f"'{DESCRIPTION}'",
    }
    yield f"{IDENTIFIER}.yaml", yaml("version", version, {"DefaultLocale": "en-US"})
    yield f"{IDENTIFIER}.locale.en-US.yaml", yaml("defaultLocale", version, locale)
    scope = {"InstallerType": "wix", "Scope": "machine", "MinimumOSVersion": "6.1.0.0", "Installers": installer}
    yield f"{IDENTIFIER}.installer.yaml", yaml("installer", version, scope)


def chocolatey(version, product, address, checksum):
    given = {"name": CHOCOLATEY_NAME, "version": version, "product": product, "address": address, "checksum": checksum}
    texts = {"authors": AUTHORS, "summary": SUMMARY, "description": DESCRIPTION}
    yield f"{CHOCOLATEY_NAME}.nuspec", NUSPEC.format(**given, **{key: escape(text) for key, text in texts.items()})
    yield "tools/chocolateyInstall.ps1", INSTALL.format(**given)
    yield "tools/chocolateyUninstall.ps1", UNINSTALL.format(**given)


def make(package, address, folder):
    known = properties(package)
    checksum = hashlib.sha256(pathlib.Path(package).read_bytes()).hexdigest()
    given = (known["ProductVersion"], known["ProductCode"], address, checksum)
    for name, files in (("winget", winget(*given)), ("chocolatey", chocolatey(*given))):
        for file, text in files:
            place = pathlib.Path(folder, name, file)
            place.parent.mkdir(parents=True, exist_ok=True)
            place.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    make(*sys.argv[1:])
