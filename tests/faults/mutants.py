#!/usr/bin/env python3
"""Makes small changes to the component, one at a time, and counts those that no test sees.

    mutants.py FOLDER TEST... [--long] [--part K/N] [--seed S] [--count C] [--only I,J...] [--list]

FOLDER gets a copy of the sources and a build of the library; the sources themselves are never
changed. The changes are drawn over the folders of the component by their lines, and one seed draws
the same ones from the same sources. The test programs run as they were built, with the changed
library. One that fails, ends by a signal, or takes more than ten times the processor time it
normally takes has seen the change. They run where all but their /tmp is read-only: what they test
deletes files, and a change may make it delete others.

A change that can't be seen from outside is named in judged_mutants.txt, with the reason.
"""

import argparse
import collections
import fcntl
import math
import os
import pathlib
import random
import re
import resource
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE.parent.parent
JUDGED = HERE / "judged_mutants.txt"

# The folders of the component, and the test program of each.
FOLDERS = {
    "datamanager": "core_test",
    "studyarea": "core_test",
    "collections": "core_test",
    "items": "core_test",
    "util": "core_test",
    "platform/xml": "xml_test",
    "platform/portable": "platform_test",
}
# Sees all of the component, in a second.
COMMON_TEST = "conformance_test"
MOST_SURVIVORS = 0.05
# After so many seconds a test waits for what never comes, however busy the machine is.
ASLEEP = 1800

# What is neither code nor changed: comments, texts, characters and lines of the preprocessor.
NO_CODE = re.compile(
    r'//[^\n]*|R"\((?:.|\n)*?\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'|^#[^\n]*', re.MULTILINE)
# The sources are formatted, so that operators of two operands stand between blanks and those of
# types and templates do not.
OPERATORS = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "+=": "-=", "-=": "+=", "*": "/",
}
WORDS = {"0": "1", "1": "0", "true": "false", "false": "true", "continue": "break"}
OPERATOR = re.compile(r"(?<= )(?:%s)(?=\s)" % "|".join(map(re.escape, OPERATORS)))
WORD = re.compile(r"(?<![\w.'])(?:%s)(?![\w.'])" % "|".join(WORDS))
STEP = re.compile(r"\+\+|--")
NOT = re.compile(r"!(?=[\w(*:])")
NEGATED = re.compile(r" [=!]= |!(?=[\w(*:])")
PURE = re.compile(r"(?:\)|const|override) = $")
CONDITION = re.compile(r"\b(?:if|while) \(")
RETURN = re.compile(r"\breturn (?!(?:true|false|nullptr|std::nullopt|0|1|\{\});)([^;{}]+);")
# A call or an assignment on its own.
STATEMENT = re.compile(
    r"(?<=[;{})])\s+((?!\w+\.reserve\()[\w:.>\[\]*-]+(?:\(| [-+|]?= )[^;{}]*;"
    r"|(?:\+\+|--|throw )[^;{}]*;|(?:break|continue);)")

Mutant = collections.namedtuple("Mutant", "path start end text")


def masked(source):
    """The source with blanks in place of what is no code."""
    return NO_CODE.sub(lambda found: re.sub(r"[^\n]", " ", found[0]), source)


def closing(code, start):
    """Where the bracket that opens before `start` closes."""
    depth = 1
    for at in range(start, len(code)):
        depth += (code[at] in "([{") - (code[at] in ")]}")
        if depth == 0:
            return at
    raise ValueError("a bracket that is never closed")


def changes(code):
    """All changes to a masked source: from, to, and what stands there then."""
    for found in OPERATOR.finditer(code):
        # A sum of texts has no difference.
        if found[0] not in "+-" or re.match(r"\S . *\n? *\S", code[found.start() - 2:found.end() + 40]):
            yield *found.span(), OPERATORS[found[0]]
    for found in WORD.finditer(code):
        if not PURE.search(code, found.start() - 20, found.start()):
            yield *found.span(), WORDS[found[0]]
    for found in STEP.finditer(code):
        yield *found.span(), "--" if found[0] == "++" else "++"
    for found in NOT.finditer(code):
        yield *found.span(), ""
    for found in CONDITION.finditer(code):
        end = closing(code, found.end())
        condition = code[found.end():end]
        # Where there is one comparison, it is changed itself.
        if ";" not in condition and ("&&" in condition or "||" in condition or not NEGATED.search(condition)):
            yield found.end(), end, None
    for found in RETURN.finditer(code):
        yield *found.span(1), "{}"
    for found in STATEMENT.finditer(code):
        yield *found.span(1), ";"


def mutants_of(path):
    source = (SOURCES / path).read_text()
    for start, end, text in changes(masked(source)):
        yield Mutant(path, start, end, f"!({source[start:end]})" if text is None else text)


def drawn(seed, count):
    """One list a mutant that is wanted: the change, and those that stand in if it makes no other library."""
    random_choice = random.Random(seed)
    files = {folder: sorted(path.relative_to(SOURCES) for path in (SOURCES / folder).iterdir()
                            if path.suffix in (".h", ".cpp")) for folder in FOLDERS}
    lines = {folder: sum(len((SOURCES / path).read_text().splitlines()) for path in paths)
             for folder, paths in files.items()}
    exact = {folder: count * lines[folder] / sum(lines.values()) for folder in FOLDERS}
    share = {folder: int(exact[folder]) for folder in FOLDERS}
    by_rest = sorted(FOLDERS, key=lambda folder: share[folder] - exact[folder])
    for folder in by_rest[:count - sum(share.values())]:
        share[folder] += 1
    slots = []
    for folder in FOLDERS:
        found = [mutant for path in files[folder] for mutant in mutants_of(path)]
        random_choice.shuffle(found)
        slots += [(folder, found[i::share[folder]]) for i in range(share[folder])]
    random_choice.shuffle(slots)
    return slots


def lines_of(mutant):
    """The number of its line; the lines before and after, each as one with single blanks."""
    source = (SOURCES / mutant.path).read_text()
    first = source.rfind("\n", 0, mutant.start) + 1
    last = source.find("\n", mutant.end)
    before, after = source[first:last], source[first:mutant.start] + mutant.text + source[mutant.end:last]
    return source.count("\n", 0, first) + 1, " ".join(before.split()), " ".join(after.split())


def judged():
    """The changes that nothing outside can see, each as its file, its lines before and after."""
    found = set()
    for line in JUDGED.read_text().splitlines():
        if line and not line.startswith("#"):
            change, _, reason = line.partition("  because  ")
            if not reason:
                raise SystemExit(f"{JUDGED}: no reason: {line}")
            found.add(change)
    return found


def processor_time():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


class Copy:
    """A copy of the sources, its library, and the tests of that."""

    def __init__(self, folder, tests):
        self.tree, self.build = folder / "tree", folder / "build"
        self.tests = {test: self.build / "tests" / test for test in tests}
        self.cost = {}
        folder.mkdir(parents=True, exist_ok=True)
        self.lock = os.open(folder, os.O_RDONLY)
        try:
            fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise SystemExit(f"{folder} is in use; name another folder") from None

    def update(self):
        """Makes the tree what the sources are; leaves alone what is."""
        listed = subprocess.run(
            ["git", "-C", SOURCES, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            check=True, capture_output=True, text=True).stdout.split("\0")
        wanted = {name: (SOURCES / name).read_bytes() for name in listed if (SOURCES / name).is_file()}
        for path in [path for path in self.tree.rglob("*") if path.is_file()]:
            if str(path.relative_to(self.tree)) not in wanted:
                path.unlink()
        for name, content in wanted.items():
            path = self.tree / name
            if not path.is_file() or path.read_bytes() != content:
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(content)

    def prepare(self):
        """Builds the library and learns what each test costs. They pass, or nothing can be learnt."""
        self.update()
        subprocess.run(
            ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=",
             "-DKVDM_WARNINGS_AS_ERRORS=OFF", "-DKVDM_SHARED_INTERNALS=ON",
             # Quick to compile, and large documents do not take minutes.
             "-DCMAKE_CXX_FLAGS=-O1",
             # The library uses its own copies of inline functions, not those of the tests.
             "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,-Bsymbolic,--no-undefined"],
            check=True, stdout=subprocess.DEVNULL)
        if not self.built("kvdm_internal", *self.tests):
            raise SystemExit("the sources do not build")
        self.original = self.library()
        for test in self.tests:
            before = processor_time()
            failure = self.failure(test)
            if failure:
                raise SystemExit(f"{test} fails without a change: {failure}")
            self.cost[test] = processor_time() - before
            print(f"{test}: {self.cost[test]:.1f} s")

    def built(self, *targets):
        return subprocess.run(["ninja", "-j", "2", "-C", self.build, *targets], check=False,
                              stdout=subprocess.DEVNULL).returncode == 0

    def library(self):
        return (self.build / "libkvdm_internal.so").read_bytes()

    def failure(self, test):
        """What the first failure of a test program is; None when it passes."""
        seconds = math.ceil(10 * self.cost.get(test, 60))
        memory = 8 << 30  # for a loop that adds to something and never ends

        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
            resource.setrlimit(resource.RLIMIT_AS, (memory, memory))

        try:
            outcome = subprocess.run(
                ["bwrap", "--ro-bind", "/", "/", "--dev", "/dev", "--tmpfs", "/tmp", "--die-with-parent",
                 "--chdir", "/tmp", "--setenv", "TMPDIR", "/tmp",
                 "--setenv", "RC_PARAMS", "seed=1",
                 self.tests[test], "--gtest_fail_fast", "--gtest_brief=1"], check=False,
                stdin=subprocess.DEVNULL, capture_output=True, preexec_fn=limit, timeout=ASLEEP)
        except subprocess.TimeoutExpired:
            return "waits for ever"
        if outcome.returncode == 0:
            return None
        failed = re.search(rb"\[  FAILED  \] (\S+)", outcome.stdout)
        return failed[1].decode() if failed else f"status {outcome.returncode}"

    def try_mutant(self, folder, mutant):
        """Which test sees the change: "" for none, None when it makes no other library."""
        path = self.tree / mutant.path
        original = path.read_text()
        path.write_text(original[:mutant.start] + mutant.text + original[mutant.end:])
        try:
            if not self.built("kvdm_internal") or self.library() == self.original:
                return None
            rest = sorted(set(self.tests) - {FOLDERS[folder], COMMON_TEST}, key=self.cost.get)
            for test in [FOLDERS[folder], COMMON_TEST, *rest]:
                failure = self.failure(test)
                if failure:
                    return f"{test}: {failure}"
            return ""
        finally:
            path.write_text(original)


def main():
    parser = argparse.ArgumentParser(prog="mutants")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("tests", nargs="+")
    parser.add_argument("--long", action="store_true", help="as all loops have it; there is no sample")
    parser.add_argument("--part", default="1/1")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=100)
    parser.add_argument("--only", help="numbers of mutants, with commas between them")
    parser.add_argument("--list", action="store_true", help="shows what is drawn")
    arguments = parser.parse_args()
    part, parts = map(int, arguments.part.split("/"))
    slots = list(enumerate(drawn(arguments.seed, arguments.count)))[part - 1::parts]
    if arguments.only:
        slots = [slot for slot in slots if str(slot[0]) in arguments.only.split(",")]
    print(f"seed {arguments.seed}")
    if arguments.list:
        for number, (folder, candidates) in slots:
            print(number, candidates[0].path, *lines_of(candidates[0]), sep="  ")
        return 0

    known, copy = judged(), Copy(arguments.folder.absolute(), arguments.tests)
    copy.prepare()
    survivors = 0
    for number, (folder, candidates) in slots:
        before = processor_time()
        for mutant in candidates:
            seen = copy.try_mutant(folder, mutant)
            if seen is not None:
                break
        else:
            raise SystemExit(f"{folder}: no change makes another library")
        line, was, becomes = lines_of(mutant)
        equivalent = f"{mutant.path}: {was}  ==>  {becomes}" in known
        survivors += not seen and not equivalent
        verdict = f"seen by {seen}" if seen else "judged" if equivalent else "SURVIVES"
        cost = processor_time() - before
        print(f"{number} {mutant.path}:{line}: {verdict} ({cost:.0f} s)\n  -{was}\n  +{becomes}", flush=True)
    print(f"loop mutants: tried={len(slots)} lost=0 wrong={survivors} crashed=0 outside=0")
    return 0 if survivors <= MOST_SURVIVORS * len(slots) else 1


if __name__ == "__main__":
    sys.exit(main())
