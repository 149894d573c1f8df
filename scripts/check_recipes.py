#!/usr/bin/env python3
"""Names the places that a new operation or service still misses; CONTRIBUTING.md says what goes there.

The commands, which only the built program knows, are compared with their sessions by the test cli.coverage.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# The places of an interface and of each of its operations, as the texts that stand there.
INTERFACE_PLACES = {
    "com/frozen.txt": "interface {interface} ",
    "tests/datamanager/component_test.cpp": '"{interface}"',
    "tests/exports.txt": "typeinfo for kvdm::{interface}",
}
OPERATION_PLACES = {
    "com": "&Core::{operation}",
    "tests/boundary/client": " {operation}(",
    "tests/conformance": "{operation}",
    "tests/error_policy": '"{interface}.{operation}"',
    "tests/host/coverage.md": "`{interface}.{operation}`",
}
SERVICE_PLACES = {
    "platform/memory/failing_services.h": "Failing{service}",
    "platform/memory/memory_platform.h": "{service}",
    "platform/posix/posix_platform.cpp": "platform.{member} =",
    "platform/windows/windows_platform.cpp": "platform.{member} =",
    "tests/contract": "{service}",
}
EXEMPT = [
    ("platform/memory/failing_services.h", "Log"),  # whoever writes to it takes no notice of failures
    ("tests/contract", "Siblings"),  # each system has others
]


def text_of(place):
    path = ROOT / place
    files = [path] if path.is_file() else sorted(f for f in path.rglob("*") if f.suffix in (".h", ".cpp"))
    return "\n".join(file.read_text(encoding="utf-8") for file in files)


def operations():
    """Interface name -> its operations."""
    found = {}
    for header in sorted((ROOT / "include/kvdm/datamanager").glob("*.h")):
        for name, body in re.findall(r"\nclass KVDM_EXPORT (I\w+)[^{]*\{(.*?)\n\};", header.read_text(), re.S):
            found[name] = re.findall(r"\n  virtual .*?(\w+)\(", body)
    return found


def services():
    """(service, its member of Platform)"""
    return re.findall(r"\n  std::shared_ptr<(\w+)> (\w+);", text_of("include/kvdm/platform/platform.h"))


def missing(places, words):
    for place, text in places.items():
        for word in words:
            if (place, word.get("service")) not in EXEMPT and text.format(**word) not in TEXTS[place]:
                yield f"{place} has nothing of {'.'.join(word.values())}"


def main():
    interfaces = operations()
    complaints = [
        *missing(INTERFACE_PLACES, [{"interface": name} for name in interfaces]),
        *missing(OPERATION_PLACES, [{"interface": name, "operation": operation}
                                    for name, found in interfaces.items() for operation in found]),
        *missing(SERVICE_PLACES, [{"service": service, "member": member} for service, member in services()]),
    ]
    if not (interfaces and services()):
        complaints.append("no interface or no service was found in include/kvdm")
    for complaint in complaints:
        print(f"check: {complaint}; see the recipes in CONTRIBUTING.md", file=sys.stderr)
    return 1 if complaints else 0


TEXTS = {place: text_of(place) for place in {**INTERFACE_PLACES, **OPERATION_PLACES, **SERVICE_PLACES}}

if __name__ == "__main__":
    sys.exit(main())
