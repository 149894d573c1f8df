"""A place with a project in which commands get what they must refuse or keep, and what they answer.

    WORLD/work/P   the project
    WORLD/outside  what no command may touch
"""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile

STATUSES = set(range(10))  # of docs; any other, or a signal, is a crash
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
