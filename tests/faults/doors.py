"""A place with a project in which commands get what they must refuse or keep, and what they answer.

    WORLD/work/P   the project
    WORLD/outside  what no command may touch
"""

import itertools
import json
import os
import pathlib
import random
import shutil
import subprocess
import tempfile

STATUSES = {0, 1, 2, 3, 4, 8, 9}  # of docs; any other, or a signal, is a crash
TIME_LIMIT = 60  # seconds; a command that takes longer hangs


class Answer:
    def __init__(self, words, status, out, err):
        self.words, self.status, self.out, self.err = words, status, out, err

    def __str__(self):
        return f"{self.words} ends with {self.status}: {self.out[-300:]} {self.err[-300:]}"


class Place:
    """Runs commands of kvdm in a project of its own, and counts what goes wrong."""

    def __init__(self, kvdm, loop):
        self.kvdm, self.loop = os.path.abspath(kvdm), loop
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="kvdm-doors-"))
        self.counts = dict.fromkeys(("tried", "lost", "wrong", "crashed", "outside"), 0)
        self.environment = {
            "PATH": os.environ["PATH"],
            "LC_ALL": "C.UTF-8",
            "HOME": str(self.root / "home"),
            "XDG_DATA_HOME": str(self.root / "data"),
        }
        for name in ("home", "work", "outside"):
            (self.root / name).mkdir()
        (self.root / "outside/canary.txt").write_text("untouched")
        self.run("init", "P", folder="work")
        self.canaries = self.scan_outside()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.root)

    def run(self, *words, folder="work/P", text=b""):
        """Runs a command; what no command may do is counted here."""
        words = [word if isinstance(word, bytes) else os.fsencode(word) for word in words]
        try:
            done = subprocess.run([self.kvdm, *words], cwd=self.root / folder, input=text,
                                  env=self.environment, capture_output=True, timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired:
            self.wrong("crashed", f"{words} hangs")
            return Answer(words, -1, "", "")
        answer = Answer(words, done.returncode, done.stdout.decode(errors="replace"),
                        done.stderr.decode(errors="replace"))
        if done.returncode not in STATUSES:
            self.wrong("crashed", str(answer))
        options = words[: words.index(b"--")] if b"--" in words else words
        if b"--json" in options and b"--help" not in options:
            self.check_json(answer)
        return answer

    def check_json(self, answer):
        """With --json there is one object, or for a generated text none, and it is plain."""
        if answer.words[0] == b"generate" and answer.status == 0:
            return
        try:
            answer.json = json.loads(answer.out)
        except ValueError:
            self.wrong("wrong", f"no JSON: {answer}")
            return
        if not isinstance(answer.json, dict):
            self.wrong("wrong", f"no JSON object: {answer}")

    def wrong(self, kind, text):
        self.counts[kind] += 1
        print(f"{kind}: {text}".replace("\n", " "), flush=True)

    def require(self, holds, kind, text):
        if not holds:
            self.wrong(kind, str(text))

    def project(self):
        return (self.root / "work/P/P.kvdm").read_bytes()

    def folders(self):
        """The names of all that is below the working directory."""
        found = set()
        for folder, folders, files in os.walk(self.root / "work/P/KVData"):
            found.update(os.path.join(folder, name) for name in folders + files)
        return found

    def scan_outside(self):
        """All that stands beside the project's folder and the registry's."""
        found = {}
        for path in sorted(self.root.rglob("*")):
            parts = path.relative_to(self.root).parts
            if parts[0] in ("outside", "home") or parts == ("work",):
                found[str(path)] = path.read_text() if path.is_file() else None
        return found

    def end(self):
        """Prints the last line and answers the status."""
        self.require(self.scan_outside() == self.canaries, "outside", "something outside changed")
        print(f"loop {self.loop}: " + " ".join(f"{k}={v}" for k, v in self.counts.items()))
        return 1 if any(count for kind, count in self.counts.items() if kind != "tried") else 0


def part_of(cases, part):
    """The share K/N of the cases."""
    which, of = (int(number) for number in part.split("/"))
    return cases[which - 1 :: of]


PLAIN = ["North", "Größe 大", "a b", "x" * 50, "O'Neill", "a&b(c)",
         "100%", "-x", "{x}", "a.b.c", "ends.", "tab\tbed", "é" * 60, "e\u0301", "\U0001F600 shop",
         "\u202eright", "a\u200bb", "\u009b31m", "CON", "nul.txt", ".hidden", "~", "$HOME", "`x`", "[1]",
         "_x_", "__", "a;b", "#1", "@x", "=1+1", "\ufffd", "\u00a0", "İstanbul", "ß", "ﬁ", "\ufeffx",
         "\u2028line", "\u0085next", "\U0010ffff", "x ", " x", "Default", "{00000000-0000-0000-0000-000000000000}"]
ODD = ["", "x\uffffy", 'a"b', "x" * 241, "\ufffe", "\x01", b"\xff", "../../outside", "a/b", "x" * 255, ".", "..", "...", " ", " . ", "/", "\\", "..\\..\\outside", "../../outside", "a/b", "a\\b", "C:",
       "C:\\x", "\\\\server\\share", "\\\\?\\C:\\x", "a:b", "a*", "a?", 'a"b', '"', "a<b", "a>b", "a|b",
       "a\nb", "a\rb", "\x01", "x\x1by", "\x7f", "x\uffffy", "\ufffe", "x" * 241, "x" * 255, "x" * 256,
       "ü" * 121, "ü" * 250, "x" * 5000, b"\xff", b"a\xc3", b"\xed\xa0\x80", "'", "a'\"b", "]", "['x']",
       "/*[@NAME]", "-", "--", "--json", "-p", "--yes"]


def names(count, seed):
    """A list of names of every kind; the first are the same for every count."""
    chosen = []
    for pair in itertools.zip_longest(ODD, PLAIN):
        chosen += [name for name in pair if name is not None and name not in chosen]
    source = random.Random(seed)
    ranges = [(0x20, 0x7e), (0xa0, 0x24f), (0x300, 0x36f), (0x590, 0x6ff), (0x2000, 0x206f), (0x4e00, 0x4e80),
              (0xe000, 0xe010), (0xfff0, 0xffff), (0x1f600, 0x1f64f), (0x01, 0x1f)]
    while len(chosen) < count:
        chosen.append("".join(chr(source.randint(*source.choice(ranges)))
                              for _ in range(source.randint(1, 12))))
    return chosen[:count]
