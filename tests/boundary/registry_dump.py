"""A part of the registry as text, and what it says."""

import re
import tempfile

from wine import windows_path

KEY = re.compile(r"\[(?P<key>.*)\]")
VALUE = re.compile(r'(?:@|"(?P<name>[^"]*)")=(?P<data>.*)')
TEXT = re.compile(r'"(?P<text>.*)"')
EXPANDED_TEXT = "hex(2):"


def dump(wine, root):
    """The lines that describe a key, which comes first, and the keys below it."""
    with tempfile.NamedTemporaryFile(suffix=".reg", dir=wine.prefix) as file:
        wine.run("reg.exe", "export", root, windows_path(file.name), "/y", quiet=True)
        return file.read().decode("utf-16").replace("\\\r\n  ", "").splitlines()


def sections(lines):
    """The lines by the key that they describe, which is named from the first one, in small letters."""
    found = {}
    root = None
    for line in lines:
        if match := KEY.fullmatch(line):
            root = match["key"] if root is None else root
            section = found.setdefault(match["key"][len(root) + 1 :].lower(), [])
        elif root is not None:
            section.append(line)
    return found


def keys(lines):
    """The keys below the first one, in small letters."""
    return set(sections(lines)) - {""}


def plain(data):
    """A value's text; data of other types as it is written in the dump."""
    if match := TEXT.fullmatch(data):
        return re.sub(r"\\(.)", r"\1", match["text"])
    if data.startswith(EXPANDED_TEXT):
        return bytes.fromhex(data[len(EXPANDED_TEXT) :].replace(",", "")).decode("utf-16-le").rstrip("\0")
    return data


def values(lines):
    """(key in small letters, value name): text, of all values."""
    return {
        (key, match["name"] or ""): plain(match["data"])
        for key, section in sections(lines).items()
        for match in map(VALUE.fullmatch, section)
        if match
    }
