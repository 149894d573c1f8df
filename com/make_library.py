"""Makes the description of which the type library is compiled: kvdm.idl, completed for people and for calls by name.

    make_library.py idl                 prints it
    make_library.py undate LIBRARY.tlb  takes the date of its making out of a compiled one

Each operation gets the first sentence that its C++ header says about it, each interface that of its comment. Each class
gets a hidden dispatch interface, the operations of all its interfaces as clients reach them by name.
"""

import pathlib
import re
import struct
import sys
import time

sys.path.insert(0, __file__.rsplit("/", 2)[0] + "/scripts")
import idl  # noqa: E402

CLASSES_MARK = "  // The classes, each with its interfaces in order"

# Operations that no header has.
HELP = {
    ("IHost", "Reserved"): "Holds the place of the host's second operation; never called.",
    ("INameList", "_NewEnum"): "The enumerator, for loops over all values.",
}

# The name of the compiler and the date, which it writes beside the date as a number.
DATED = re.compile(rb"Created by WIDL version [\d.]+ at (\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4})")


def sentence(text):
    """The first sentence of a comment, as a string of the IDL."""
    text = " ".join(text.split())
    first = re.match(r"(.*?[.:;])(?: |$)", text)
    return '"' + (first.group(1) if first else text).rstrip(".:;").replace("\\", "\\\\").replace('"', '\\"') + '."'


def header_comments():
    """(interface, operation as the IDL names it) -> what its header says."""
    comments = {}
    for header in (idl.ROOT / "include/kvdm").rglob("*.h"):
        text = header.read_text()
        for name, body in re.findall(r"\nclass (?:KVDM_EXPORT )?(\w+)(?: : public virtual Unknown)? \{(.*?)\n\};", text, re.S):
            interface = name if name.startswith("IKV") or name == "IPersistVariant" else "I" + name
            pattern = r"((?:  ///[^\n]*\n)+)  (?:virtual|\[\[nodiscard\]\])?[^;{(]*?(\w+)\(([^)]*)\)"
            for comment, operation, parameters in re.findall(pattern, body):
                said = re.sub(r"^\s*///", "", comment, flags=re.M)
                setter = operation.startswith("Set") and parameters.strip() and "," not in parameters
                comments[interface, "let " + operation[3:] if setter else operation] = said
    return comments


def help_of(comments, interface, kind, operation):
    """What people read about an operation."""
    candidates = [(interface, kind + operation), (interface, operation), (interface, "Get" + operation)]
    return next(sentence(known[c]) for known in (HELP, comments) for c in candidates if c in known)


def completed(text, comments):
    """The IDL with help strings."""

    def operation(match):
        attributes = match["attributes"] or ""
        kind = "let " if "propput" in attributes else ""
        said = help_of(comments, interface, kind, match["name"])
        parts = [part for part in (attributes, f"helpstring({said})") if part]
        return f"[{', '.join(parts)}] HRESULT {match['name']}("

    lines, comment, interface = [], [], ""
    for line in text.splitlines():
        if declared := re.match(r"  interface (\w+) : ", line):
            interface = declared[1]
            lines[-1] = lines[-1][:-1] + f", helpstring({sentence(' '.join(comment))})]"
        if line.startswith("  [object"):
            comment = []
            for above in reversed(lines):
                if not above.startswith("  //"):
                    break
                comment.insert(0, above.strip("/ "))
        lines.append(re.sub(r"(?:\[(?P<attributes>[^\]]*)\] )?HRESULT (?P<name>\w+)\(", operation, line))
    return "\n".join(lines)


def view_name(interface):
    """The dispatch interface of the objects that an operation answers as `interface`."""
    return idl.view(interface[1:])[0] if interface[1:] in idl.objects() else interface


def by_name(part):
    """A parameter as callers by name pass it."""
    part = re.sub(r"^\[in\] (BSTR|VARIANT)\*", r"[in] \1", part)
    return part.replace("[in, out] IUnknown**", "[in, out] VARIANT*")


def result_by_name(kind):
    if kind == "IUnknown**":
        return "IDispatch*"
    return view_name(kind[:-2]) + "*" if kind.endswith("**") else kind[:-1]


def view_operations(interfaces, comments):
    """The operations of the interfaces under their names; of two of one name and kind the first."""
    ids, seen = {}, set()
    for interface in interfaces:
        for operation, parts in idl.interfaces()[interface][1]:
            kind, _, name = operation.rpartition(" ")
            identifier = ids.setdefault(name, 1 + len(ids))
            if operation in seen:
                continue
            seen.add(operation)
            given = [by_name(part) for part in parts if "retval" not in part]
            result = next((result_by_name(part.split()[2]) for part in parts if "retval" in part), "void")
            attributes = [f"id({identifier})"] + {"get": ["propget"], "let": ["propput"], "": []}[kind]
            attributes.append(f"helpstring({help_of(comments, interface, 'let ' if kind == 'let' else '', name)})")
            yield f"      [{', '.join(attributes)}] {result} {name}({', '.join(given)});"


def views(comments):
    yield from (f"  dispinterface {idl.view(name)[0]};" for name in idl.objects())
    for name, interfaces in idl.objects().items():
        view, identity = idl.view(name)
        yield f'\n  [uuid({identity}), hidden, helpstring("{name} by name.")]'
        yield f"  dispinterface {view} {{\n    properties:\n    methods:"
        yield from view_operations(interfaces, comments)
        yield "  }"


def description():
    comments = header_comments()
    head, mark, tail = completed(idl.IDL.read_text(), comments).partition(CLASSES_MARK)
    return "\n".join([head + "  // What callers by name see of each class.\n", *views(comments), "", mark + tail, ""])


def undate(file):
    data = file.read_bytes()
    [date] = DATED.findall(data)
    seconds = struct.pack("<I", int(time.mktime(time.strptime(date.decode(), "%a %b %d %H:%M:%S %Y"))))
    assert data.count(seconds) == 1
    file.write_bytes(data.replace(date, b"Thu Jan  1 00:00:00 1970").replace(seconds, bytes(4)))


if __name__ == "__main__":
    if sys.argv[1] == "undate":
        undate(pathlib.Path(sys.argv[2]))
    else:
        print(description(), end="")
