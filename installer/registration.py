"""The registry entries of the component, as its own registration writes them, and the manifest that stands in for them.

    registration.py manifest VERSION BITS
"""

import sys

sys.path.insert(0, __file__.rsplit("/", 2)[0] + "/scripts")
import idl  # noqa: E402

SLOT_MARSHALLER = "{00020424-0000-0000-C000-000000000046}"
DISPATCH_MARSHALLER = "{00020420-0000-0000-C000-000000000046}"
LIBRARY_VERSION = "1.0"
LIBRARY_NAME = "KVDM data manager 1.0"


def guid(identity):
    return "{" + identity + "}"


# The keys that each word size has for itself. All others are the same for both.
OWN_KEYS = ("CLSID\\", "Interface\\")


def interfaces():
    """(name, identity, marshaller) of all interfaces."""
    for name, (identity, _) in idl.interfaces().items():
        yield name, guid(identity), SLOT_MARSHALLER
    for name in idl.objects():
        view, identity = idl.view(name)
        yield view, guid(identity), DISPATCH_MARSHALLER


def entries(file, bits):
    """(key below the classes, value name or "", text) of all entries, for the DLL `file`."""
    library = guid(idl.typelib())
    for name, (identity, _) in idl.classes().items():
        program, clsid = "KVDM." + name, guid(identity)
        key = "CLSID\\" + clsid
        yield key, "", program
        yield key + "\\InprocServer32", "", file
        yield key + "\\InprocServer32", "ThreadingModel", "Apartment"
        yield key + "\\ProgID", "", program + ".1"
        yield key + "\\VersionIndependentProgID", "", program
        yield key + "\\TypeLib", "", library
        yield key + "\\Version", "", LIBRARY_VERSION
        for program_id in (program, program + ".1"):
            yield program_id, "", program
            yield program_id + "\\CLSID", "", clsid
        yield program + "\\CurVer", "", program + ".1"
    version = f"TypeLib\\{library}\\{LIBRARY_VERSION}"
    yield version, "", LIBRARY_NAME
    yield f"{version}\\0\\win{bits}", "", file
    yield version + "\\FLAGS", "", "0"
    for name, identity, marshaller in interfaces():
        key = "Interface\\" + identity
        yield key, "", name
        yield key + "\\ProxyStubClsid32", "", marshaller
        yield key + "\\TypeLib", "", library
        yield key + "\\TypeLib", "Version", LIBRARY_VERSION


def manifest(version, bits):
    """The manifest of an assembly of the DLL, by which programs find the classes without registration.

    The assembly has another name than the DLL, or the system would look for its manifest inside the DLL.
    """
    architecture = {64: "amd64", 32: "x86"}[bits]
    library = guid(idl.typelib())
    yield '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>'
    yield '<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">'
    yield (
        f'  <assemblyIdentity type="win32" name="KVDM.Component" version="{version}.0"'
        f' processorArchitecture="{architecture}"/>'
    )
    yield '  <file name="KVDM.dll">'
    for name, (identity, _) in idl.classes().items():
        yield (
            f'    <comClass clsid="{guid(identity)}" progid="KVDM.{name}.1"'
            f' threadingModel="Apartment" tlbid="{library}">'
        )
        yield f"      <progid>KVDM.{name}</progid>"
        yield "    </comClass>"
    yield f'    <typelib tlbid="{library}" version="{LIBRARY_VERSION}" helpdir=""/>'
    yield "  </file>"
    for name, identity, marshaller in interfaces():
        yield (
            f'  <comInterfaceExternalProxyStub name="{name}" iid="{identity}" tlbid="{library}"'
            f' proxyStubClsid32="{marshaller}"/>'
        )
    yield "</assembly>"


def main(form, version, bits):
    assert form == "manifest"
    print("\n".join(manifest(version, int(bits))))


if __name__ == "__main__":
    main(*sys.argv[1:])
