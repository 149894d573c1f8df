#!/usr/bin/env python3
"""The long form of a fuzzer, as scripts/soak runs it: soak.py FUZZER [--long] [--part K/N]

Builds the fuzzer with clang and the sanitizers, and gives it 15 minutes, or a minute without --long,
on a copy of its corpus. The parts differ in the seed of their mutations. An input that it ends at
stays in build/fuzz/found.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOUND = ROOT / "build/fuzz/found"
SECONDS, LONG_SECONDS = 60, 900
IN_MEMORY = pathlib.Path("/dev/shm")  # where there is such a place, a sync costs nothing


def build(program):
    for command in (["cmake", "--preset", "fuzz"],
                    ["cmake", "--build", "--preset", "fuzz", "--target", program]):
        subprocess.run(command, cwd=ROOT, stdout=subprocess.DEVNULL, check=True)


def run(fuzzer, part, seconds):
    """Runs the fuzzer; answers its status and what it printed."""
    program = f"{fuzzer}_fuzzer"
    build(program)
    FOUND.mkdir(parents=True, exist_ok=True)
    place = IN_MEMORY if os.access(IN_MEMORY, os.W_OK) else None
    with tempfile.TemporaryDirectory(prefix="kvdm-fuzz-", dir=place) as folder:
        corpus = pathlib.Path(folder) / "corpus"
        shutil.copytree(ROOT / "fuzz/corpus" / fuzzer, corpus)
        done = subprocess.run(
            [ROOT / "build/fuzz/fuzz" / program, f"-max_total_time={seconds}", f"-seed={part}", "-timeout=60",
             f"-artifact_prefix={FOUND}/{fuzzer}-", "-print_final_stats=1", corpus],
            env={**os.environ, "TMPDIR": folder}, cwd=folder, stdin=subprocess.DEVNULL,
            stderr=subprocess.PIPE, stdout=subprocess.DEVNULL, text=True, errors="replace", check=False)
    return done.returncode, done.stderr


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("fuzzer")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--part", default="1/1")
    asked = parser.parse_args()
    part, parts = (int(number) for number in asked.part.split("/"))
    status, said = run(asked.fuzzer, part, LONG_SECONDS // parts if asked.long else SECONDS)
    runs = re.search(r"^stat::number_of_executed_units: *(\d+)", said, re.MULTILINE)
    tried = int(runs[1]) if runs else 0
    found = int(status != 0 or tried == 0)
    # A sanitizer or the system ended it, and not the fuzzer's own doubt.
    crashed = int(found and "deadly signal" not in said)
    print(said[-8000:] if found else said.strip().splitlines()[-1])
    print(f"loop fuzz_{asked.fuzzer}: tried={tried} lost=0 wrong={found - crashed} crashed={crashed} outside=0")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
