"""Runs the examples in a document with the component registered, and compares what they print with what it says.

    documents_test.py PREFIX KVDM.dll DOCUMENT.md COMPILER GENERATED

COMPILER compiles programs for Windows, with the header and the identities in the folder GENERATED.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))

from checks import check  # noqa: E402
from wine import BITS, SYSTEM_FOLDERS, Wine, windows_path  # noqa: E402

# An example, and behind it what it prints.
EXAMPLE = re.compile(r"```(vbscript|jscript|cpp)\n(.*?)```\n+prints\n+```text\n(.*?)```", re.S)
ENDINGS = {"vbscript": ".vbs", "jscript": ".js", "cpp": ".cpp"}
LIBRARIES = ["-lole32", "-loleaut32", "-luuid"]


def command(source, language, build):
    """What runs the example, of which programs are compiled first."""
    if language != "cpp":
        return [SYSTEM_FOLDERS[BITS] + "cscript.exe", "//nologo", windows_path(source)]
    compiler, generated = build
    program = source.with_suffix(".exe")
    subprocess.run(
        [compiler, "-std=c++20", "-Wall", "-static", f"-I{generated}", source, f"{generated}/kvdm_i.c", "-o", program]
        + LIBRARIES,
        check=True,
    )
    return [windows_path(program)]


def printed(wine, language, text, build):
    with tempfile.TemporaryDirectory(dir=wine.prefix) as folder:
        source = pathlib.Path(folder, "example" + ENDINGS[language])
        source.write_text(text)
        return wine.output(*command(source, language, build)).replace("\r\n", "\n")


def main(prefix, dll, document, *build):
    wine = Wine(prefix)
    text = pathlib.Path(document).read_text(encoding="utf-8")
    examples = EXAMPLE.findall(text)
    written = sum(text.count(f"```{language}\n") for language in ENDINGS)
    results = [check(f"each of {written} examples says what it prints", len(examples) == written > 0)]
    with wine.registered(dll):
        for language, example, expected in examples:
            shutil.rmtree(wine.prefix / "drive_d" / "Data", ignore_errors=True)
            found = printed(wine, language, example, build)
            results.append(check(f"{language} prints {found!r}", found == expected))
    shutil.rmtree(wine.prefix / "drive_d" / "Data", ignore_errors=True)
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
