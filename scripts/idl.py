"""Reads com/kvdm.idl: the interfaces and classes of the Windows component."""

import functools
import pathlib
import re
import uuid

ROOT = pathlib.Path(__file__).resolve().parent.parent
IDL = ROOT / "com/kvdm.idl"


def without_comments(text):
    return re.sub(r"//.*", "", text)


def typelib():
    """The identity of the type library."""
    return re.search(r"uuid\(([0-9A-F-]{36})\),\s*version", IDL.read_text()).group(1)


@functools.cache
def interfaces():
    """Interface name -> (identity, [("get Name", ["[out, retval] BSTR* result"]), ...])."""
    text = without_comments(IDL.read_text())
    found = {}
    for identity, name, body in re.findall(
        r"\[object, uuid\(([0-9A-F-]{36})\)[^\]]*\]\s*interface (\w+) : \w+ \{(.*?)\n  \}", text, re.S
    ):
        operations = []
        for attributes, operation, parameters in re.findall(
            r"(?:\[([^\]]*)\]\s*)?HRESULT (\w+)\((.*?)\);", body, re.S
        ):
            kinds = {"propget": "get ", "propput": "let "}
            prefix = next((kinds[a.strip()] for a in attributes.split(",") if a.strip() in kinds), "")
            parts = re.findall(r"(\[[^\]]*\] \w+\** \w+)", " ".join(parameters.split()))
            operations.append((prefix + operation, parts))
        found[name] = (identity, operations)
    return found


@functools.cache
def classes():
    """Class name -> (identity, its interfaces)."""
    pattern = r"\[uuid\(([0-9A-F-]{36})\)[^\]]*\]\s*coclass (\w+) \{(.*?)\}"
    return {
        name: (identity, re.findall(r"interface (\w+);", body))
        for identity, name, body in re.findall(pattern, without_comments(IDL.read_text()), re.S)
    }


def objects():
    """What clients are handed that has no dispatch interface of its own: name -> its interfaces."""
    plain = {"Identifier": ["IIdentifier"], "NamedValueSet": ["INamedValueSet"]}
    return {name: interfaces for name, (_, interfaces) in classes().items()} | plain


def view(name):
    """The dispatch interface by which such an object is called by name, and its identity, which follows from the name."""
    return "_" + name, str(uuid.uuid5(uuid.UUID(typelib()), "_" + name)).upper()
