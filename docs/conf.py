"""How scripts/site makes pages of this folder."""

import json
import pathlib
import re
from xml.etree import ElementTree

from pygments.lexers import BashSessionLexer, JavascriptLexer, VbNetLexer

# A copy of the tree, in its folder build.
ROOT = pathlib.Path(__file__).resolve().parent.parent
REFERENCE = ROOT.parent / "reference/xml"

project = "KVDM"
author = "The KVDM authors"
copyright = f"2026, {author}"
extensions = ["myst_parser", "breathe"]
myst_heading_anchors = 4
myst_enable_extensions = ["deflist"]
root_doc = "docs/index"
include_patterns = ["*.md", "docs/**.md"]

breathe_projects = {"kvdm": str(REFERENCE)}
breathe_default_project = "kvdm"
breathe_show_include = False
highlight_language = "none"
smartquotes = False

html_theme = "furo"
html_title = "KVDM"
html_static_path = ["static"]
html_extra_path = ["first"]
html_css_files = ["pages.css"]
html_copy_source = False
html_show_sphinx = False

man_pages = [
    ("docs/kvdm-check", "kvdm-check", "look for what is wrong with a project of kvdm, and mend it", author, 1),
    ("docs/formats/project", "kvdm-project", "the project file of kvdm", author, 5),
    ("docs/formats/layer-metadata", "kvdm-metadata", "layer metadata and value files of kvdm", author, 5),
]


def declarations_of(header):
    """A directive for each thing that a header declares in the namespace, in its order."""
    found = []
    for entry in ElementTree.parse(REFERENCE / "index.xml").iterfind("compound"):
        if entry.get("kind") in ("class", "struct", "namespace"):
            compound = ElementTree.parse(REFERENCE / f"{entry.get('refid')}.xml").find("compounddef")
            members = compound.iter("memberdef") if entry.get("kind") == "namespace" else [compound]
            for member in members:
                place = member.find("location")
                name = member.findtext("qualifiedname") or member.findtext("compoundname")
                is_nested = name.count("::") > 1
                if place.get("declfile", place.get("file")) == str(header) and not is_nested:
                    found.append((int(place.get("declline", place.get("line"))), member.get("kind"), name))
    return [
        f"```{{doxygen{kind}}} {name}\n" + (":members:\n" if kind in ("class", "struct") else "") + "```\n"
        for _, kind, name in sorted(found)
    ]


def headers_of(folder):
    """What the public headers directly in a folder declare."""
    headers = sorted(header.relative_to(ROOT / "include") for header in (ROOT / "include" / folder).glob("*.h"))
    return "\n".join("\n".join([f"## {header}\n", *declarations_of(header)]) for header in headers)


def rules():
    """The rules of `kvdm check`, as the program lists them."""
    found = json.loads((ROOT / "docs/rules.json").read_text(encoding="utf-8"))["items"]
    return "\n".join(map(rule_text, found))


def rule_text(rule):
    text = f"`{rule['rule']}` ({rule['severity']})\n: {rule['detects'][0].upper()}{rule['detects'][1:]}."
    repair = "Repair, safe" if rule["safe"] else "Repair"
    return f"{text} {repair}: {rule['repair']}.\n" if rule["repair"] else f"{text}\n"


def fill_in(_app, _name, source):
    """Replaces "@headers FOLDER" and "@rules", each a line of its own, by what the headers and the program say."""
    source[0] = re.sub(r"^@headers (\S+)$", lambda line: headers_of(line[1]), source[0], flags=re.MULTILINE)
    source[0] = re.sub(r"^@rules$", lambda _: rules(), source[0], flags=re.MULTILINE)


def setup(app):
    app.connect("source-read", fill_in)
    for name, lexer in {"jscript": JavascriptLexer, "vb": VbNetLexer, "console": BashSessionLexer}.items():
        app.add_lexer(name, lexer)
