#!/usr/bin/env python3
"""Checks that the boundary of the Windows component is that of the C++ headers, and that it never changes.

    check_boundary.py            compares com/kvdm.idl with the headers and with com/frozen.txt
    check_boundary.py --freeze   adds what is new to com/frozen.txt

Every public interface must have its operations in the IDL in
the same order, with the same parameters and results. com/frozen.txt holds the identities and slots that clients were
compiled against; a line in it is final.
"""

import re
import sys

from idl import IDL, ROOT, classes as idl_classes, interfaces as idl_interfaces, objects as idl_objects, typelib, view, without_comments

FROZEN = ROOT / "com/frozen.txt"
INTERFACES = ROOT / "include/kvdm/datamanager"
HEADERS = [*sorted(INTERFACES.glob("*.h")), ROOT / "include/kvdm/platform/host.h", ROOT / "include/kvdm/platform/gis_core.h"]

# Classes of the platform headers that clients implement, and the interfaces they are in the IDL.
CLIENT_OBJECTS = ["Host", "HostPropertySet", "VariantStream", "NamedValueSet", "LayerMetadata", "Identifier", "CatalogueListener"]

# What the IDL says more than the headers: operations under another name, and held places.
RENAMED = {("IKVDataManager", "GetDatasetManager"): "get DatasetManager"}
HELD_PLACES = {"IHost": {1: "Reserved()"}}
# The host's two property sets are read as properties.
READ = {("IHost", "CurrentState"), ("IHost", "Settings")}

PARAMETERS = {
    "std::string_view": "[in] BSTR*",
    "const Value&": "[in] VARIANT*",
    "bool": "[in] VARIANT_BOOL",
}
RESULTS = {
    "std::string": "BSTR*",
    "bool": "VARIANT_BOOL*",
    "int": "long*",
    "Value": "VARIANT*",
    "NameListRef": "INameList**",
    "std::vector<Value>": "VARIANT*",
    "std::shared_ptr<DatasetManager>": "IUnknown**",
    "std::shared_ptr<NamedValueSet>": "IUnknown**",
    "std::shared_ptr<Identifier>": "IIdentifier**",
    "std::shared_ptr<HostPropertySet>": "IHostPropertySet**",
}


def header_interfaces():
    """Interface name -> its operations in the form of idl_interfaces()."""
    interfaces = {}
    for header in HEADERS:
        text = without_comments(header.read_text())
        for name, body in re.findall(r"\nclass KVDM_EXPORT (\w+)(?: : public virtual Unknown)? \{(.*?)\n\};", text, re.S):
            if name.startswith("I") and header.parent == INTERFACES or name in CLIENT_OBJECTS:
                name = name if name not in CLIENT_OBJECTS else "I" + name
                interfaces[name] = header_operations(name, body)
    return interfaces


def header_operations(interface, body):
    operations = []
    pattern = r"virtual\s+([^~;=]*?)\s(\w+)\(([^)]*)\)\s*(?:const\s*)?=\s*0;"
    for result, name, parameters in re.findall(pattern, body):
        result = " ".join(result.split())
        if name == "ListAll":  # its two lists
            parts = ["[out] VARIANT*", "[out] VARIANT*"]
        else:
            parts = [parameter_type(p) for p in parameters.split(",") if p.strip()]
            if result != "void":
                parts.append("[out, retval] " + result_type(result))
        operations.append((idl_name(interface, name, parameters), parts))
    for place, operation in HELD_PLACES.get(interface, {}).items():
        operations.insert(place, (operation.rstrip("()"), []))
    return operations


def idl_name(interface, name, parameters):
    renamed = RENAMED.get((interface, name))
    if renamed:
        return renamed
    if (interface, name) in READ:
        return "get " + name
    if name.startswith("Set") and "," not in parameters and parameters.strip():
        return "let " + name[3:]
    return name


def parameter_type(parameter):
    kind = " ".join(parameter.split()[:-1])
    if kind in PARAMETERS:
        return PARAMETERS[kind]
    if re.fullmatch(r"const std::shared_ptr<\w+>&", kind):
        return "[in] IUnknown*"
    if re.fullmatch(r"std::shared_ptr<\w+>&", kind):
        return "[in, out] IUnknown**"
    return "unknown " + kind


def result_type(result):
    match = re.fullmatch(r"std::shared_ptr<(IKV\w+)>", result)
    return match.group(1) + "**" if match else RESULTS.get(result, "unknown " + result)


def types(parts):
    """Parameters without their names."""
    return [part.rpartition(" ")[0] for part in parts]


def differently_spelled():
    """A type library knows one spelling of a name, the first: clients would see it at each place."""
    spellings = {}
    for name in re.findall(r"\w+", re.sub(r'"[^"]*"|\bid\(', "", without_comments(IDL.read_text()))):
        spellings.setdefault(name.lower(), set()).add(name)
    for names in spellings.values():
        if len(names) > 1:
            yield f"{IDL.name} spells one name differently: {', '.join(sorted(names))}"


def differences():
    idl = idl_interfaces()
    for name, operations in header_interfaces().items():
        if name not in idl:
            yield f"{name} is missing in {IDL.name}"
            continue
        # Whether an operation without parameters reads a property is said by the IDL alone.
        described = [
            (n[4:] if n.startswith("get ") and not (name, n[4:]) in READ and n not in RENAMED.values() else n, types(p))
            for n, p in idl[name][1]
        ]
        for slot in range(max(len(operations), len(described))):
            here = operations[slot] if slot < len(operations) else None
            there = described[slot] if slot < len(described) else None
            if here != there:
                yield f"{name}, operation {slot + 1}: the header has {here}, {IDL.name} has {there}"


def frozen_lines():
    yield f"library {typelib()}"
    for name, (identity, operations) in idl_interfaces().items():
        yield f"interface {name} {identity}"
        for slot, (operation, parts) in enumerate(operations, 1):
            # No client sees the name of a property's value.
            seen = types(parts) if operation.startswith("let ") else parts
            yield f"{name} {slot} {operation}({', '.join(seen)})"
    for name, (identity, interfaces) in idl_classes().items():
        yield f"class {name} {identity} {' '.join(interfaces)}"
    for name in idl_objects():
        yield "view " + " ".join(view(name))


def holds(frozen, lines):
    """Whether a frozen line is still so. A class may have got more interfaces, behind those it had."""
    return frozen in lines or frozen.startswith("class ") and any(line.startswith(frozen + " ") for line in lines)


def main(arguments):
    lines = list(frozen_lines())
    if arguments == ["--freeze"]:
        known = FROZEN.read_text().splitlines() if FROZEN.exists() else []
        FROZEN.write_text("\n".join(known + [line for line in lines if line not in known]) + "\n")
    complaints = [*differently_spelled(), *differences()]
    complaints += [f"{FROZEN.name}: no longer so: {line}" for line in FROZEN.read_text().splitlines() if not holds(line, lines)]
    complaints += [f"{FROZEN.name}: not yet frozen: {line}" for line in lines if line not in FROZEN.read_text().splitlines()]
    for complaint in complaints:
        print(f"check: {complaint}", file=sys.stderr)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
