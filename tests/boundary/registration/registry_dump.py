"""A part of the registry as text, and what it says."""

import re
import tempfile

from wine import windows_path

KEY = re.compile(r"\[(?P<root>HKEY_\w+\\Software\\Classes)\\?(?P<key>.*)\]")
VALUE = re.compile(r'(?:@|"(?P<name>[^"]*)")="(?P<text>.*)"')


def dump(wine, root):
    """The lines that describe the classes of HKLM or HKCU."""
    with tempfile.NamedTemporaryFile(suffix=".reg") as file:
        wine.run("reg.exe", "export", root + r"\Software\Classes", windows_path(file.name), "/y", quiet=True)
        return file.read().decode("utf-16").splitlines()


def keys(lines):
    """The keys below the classes, in small letters."""
    return {match["key"].lower() for match in map(KEY.fullmatch, lines) if match} - {""}


def texts(lines):
    """(key below the classes in small letters, value name): text, of all values that are texts."""
    found = {}
    key = None
    for line in lines:
        if match := KEY.fullmatch(line):
            key = match["key"].lower()
        elif match := VALUE.fullmatch(line):
            found[key, match["name"] or ""] = match["text"].replace('\\"', '"').replace("\\\\", "\\")
    return found
