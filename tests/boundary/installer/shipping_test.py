"""Looks at what is shipped: that addresses can be traced, that the same files make the same packages, and signatures.

    shipping_test.py DIST VERSION
"""

import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[2]
sys.path[:0] = [str(HERE.parent), str(ROOT / "installer")]

from checks import check  # noqa: E402
from make_installer import make  # noqa: E402

BINARIES = ("KVDM.dll", "kvdm.exe")


def run(*command, **options):
    return subprocess.run(list(map(str, command)), capture_output=True, text=True, **options)


def address_of(dll, name):
    """Where an exported function is in the DLL."""
    dump = run("x86_64-w64-mingw32-objdump", "-p", dll, check=True).stdout
    exports = dump.partition("Export Address Table")[2]
    ordinal = re.search(rf"\[\s*(\d+)\].*{name}$", dump, re.MULTILINE)[1]
    return re.search(rf"^\s*\[\s*{ordinal}\] \+base\[\s*\d+\] ([0-9a-f]+)", exports, re.MULTILINE)[1]


def check_traces(dist):
    dll, symbols = dist / "files/KVDM.dll", dist / "symbols/KVDM.dll.debug"
    trace = [ROOT / "scripts/trace-address", "--of"]
    address = address_of(dll, "DllGetClassObject")
    told = run(*trace, dll, symbols, address, check=True).stdout
    yield check(f"an address is traced: {told.strip()}", re.search(r"DllGetClassObject.* at com/dll\.cpp:\d+", told))
    other = run(*trace, dist / "files/kvdm.exe", symbols, address)
    yield check("not by the symbols of another file", other.returncode != 0 and "is not of the build" in other.stderr)
    sections = run("x86_64-w64-mingw32-objdump", "-h", dll, check=True).stdout
    yield check("what is shipped has no debug information", ".debug" not in sections)


def check_same_bytes(dist, version):
    """In another folder and at another time."""
    with tempfile.TemporaryDirectory() as folder:
        packages = []
        for name in ("one", "another"):
            files = pathlib.Path(shutil.copytree(dist / "files", pathlib.Path(folder, name)))
            packages.append(files.with_suffix(".msi"))
            make(version, files, packages[-1])
            time.sleep(1.1)
        yield check("the same files make the same installer", packages[0].read_bytes() == packages[1].read_bytes())
    for name in BINARIES:
        dump = run("x86_64-w64-mingw32-objdump", "-p", dist / "files" / name, check=True).stdout
        stamp = re.search(r"^Time/Date\s+(.*)$", dump, re.MULTILINE)[1]
        yield check(f"{name} has no time: {stamp}", "1970" in stamp)
        traces = str(ROOT).encode()
        yield check(f"{name} names no folder of its build", traces not in (dist / "files" / name).read_bytes())


def check_icon(dist):
    """The programs and the installer have the one icon, in the sizes that the system asks for."""
    icon = (dist / "files/kvdm.ico").read_bytes()
    [count] = struct.unpack_from("<H", icon, 4)
    images = [struct.unpack_from("<BBBBHHII", icon, 6 + 16 * number) for number in range(count)]
    yield check("the icon has its sizes", [image[0] for image in images] == [16, 24, 32, 48, 0])
    for name in BINARIES:
        data = (dist / "files" / name).read_bytes()
        shown = all(icon[place : place + size] in data for *_, size, place in images)
        yield check(f"{name} has it", shown)
    [package] = dist.glob("kvdm-*.msi")
    told = subprocess.run(["msiinfo", "extract", package, "Icon.kvdm.ico"], stdout=subprocess.PIPE, check=True).stdout
    yield check("the installer has it", told == icon)


def certificate(folder):
    """A certificate made for this test, with its key."""
    key, made, packed = (folder / name for name in ("key.pem", "certificate.pem", "certificate.p12"))
    run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=KVDM test",
        "-addext", "extendedKeyUsage=codeSigning", "-keyout", key, "-out", made, check=True)  # fmt: skip
    run("openssl", "pkcs12", "-export", "-inkey", key, "-in", made, "-out", packed, "-passout", "pass:secret", check=True)
    (folder / "password").write_text("secret")
    return made, {"KVDM_SIGN_CERTIFICATE": str(packed), "KVDM_SIGN_PASSWORD_FILE": str(folder / "password")}


def is_signed(file, by):
    return run("osslsigncode", "verify", "-CAfile", by, "-in", file).returncode == 0


def check_signing(dist, version):
    sign = ROOT / "scripts/sign-windows"
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        made, chosen = certificate(folder)
        for file in [dist / "files" / name for name in BINARIES] + list(dist.glob(f"kvdm-{version}-*.msi")):
            copy = pathlib.Path(shutil.copy(file, folder))
            run(sign, copy, check=True)
            yield check(f"{file.name} stays as it is without a certificate", copy.read_bytes() == file.read_bytes())
            run(sign, copy, check=True, env=os.environ | chosen)
            yield check(f"{file.name} is signed with one", is_signed(copy, made) and not is_signed(file, made))


def main(dist, version):
    dist = pathlib.Path(dist)
    results = [
        *check_traces(dist),
        *check_same_bytes(dist, version),
        *check_icon(dist),
        *check_signing(dist, version),
    ]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
