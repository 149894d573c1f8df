"""Runs the scripts in a document with the component registered, and compares what they print with what it says.

    documents_test.py PREFIX KVDM.dll DOCUMENT.md
"""

import pathlib
import re
import shutil
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))

from checks import check  # noqa: E402
from wine import BITS, SYSTEM_FOLDERS, Wine, windows_path  # noqa: E402

# A script, and behind it what it prints.
EXAMPLE = re.compile(r"```(vbscript|jscript)\n(.*?)```\n+prints\n+```text\n(.*?)```", re.S)
ENDINGS = {"vbscript": ".vbs", "jscript": ".js"}


def printed(wine, language, script):
    with tempfile.NamedTemporaryFile("w", suffix=ENDINGS[language], dir=wine.prefix) as file:
        file.write(script)
        file.flush()
        return wine.output(SYSTEM_FOLDERS[BITS] + "cscript.exe", "//nologo", windows_path(file.name)).replace("\r\n", "\n")


def main(prefix, dll, document):
    wine = Wine(prefix)
    text = pathlib.Path(document).read_text(encoding="utf-8")
    examples = EXAMPLE.findall(text)
    scripts = sum(text.count(f"```{language}\n") for language in ENDINGS)
    results = [check(f"each of {scripts} scripts says what it prints", len(examples) == scripts > 0)]
    with wine.registered(dll):
        for language, script, expected in examples:
            shutil.rmtree(wine.prefix / "drive_d" / "Data", ignore_errors=True)
            found = printed(wine, language, script)
            results.append(check(f"{language} prints {found!r}", found == expected))
    shutil.rmtree(wine.prefix / "drive_d" / "Data", ignore_errors=True)
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
