"""Runs the random sequences of operations natively and with the DLL, and compares what they print.

    compare.py NATIVE_PROGRAM COMMAND...

COMMAND runs the program of the Windows build. KVDM_DIFFERENTIAL_SEQUENCES is the number of
sequences, KVDM_DIFFERENTIAL_SEED the seed of the first one.
"""

import itertools
import os
import subprocess
import sys

STEPS = 60
CONTEXT = 3


def start(command, seed, count):
    return subprocess.Popen([*command, str(seed), str(count), str(STEPS)], stdout=subprocess.PIPE,
                            encoding="utf-8", errors="backslashreplace")


def first_difference(native, windows):
    """The number of equal lines, and a report on what follows; "" when nothing does."""
    sequence, step, before = "", "", []
    count = 0
    for ours, theirs in itertools.zip_longest(native.stdout, windows.stdout):
        if ours != theirs:
            return count, "".join([sequence, step, *before, "native:  ", ours or "nothing\n",
                                   "windows: ", theirs or "nothing\n"])
        count += 1
        if ours.startswith("sequence"):
            sequence = ours
        elif not ours.startswith(" "):
            step, before = ours, []
        else:
            before = [*before, ours][-CONTEXT:]
    return count, ""


def main():
    native_program, *windows_command = sys.argv[1:]
    if not os.path.exists(native_program):
        sys.exit(f"{native_program} is missing: build it, or set KVDM_NATIVE_DIR")
    count = int(os.environ.get("KVDM_DIFFERENTIAL_SEQUENCES", "200"))
    seed = int(os.environ.get("KVDM_DIFFERENTIAL_SEED", "1"))
    native = start([native_program], seed, count)
    windows = start(windows_command, seed, count)
    lines, difference = first_difference(native, windows)
    if difference:
        for program in (native, windows):
            program.kill()
        sys.exit(f"they differ after {lines} equal lines:\n{difference}")
    codes = (native.wait(), windows.wait())
    if codes != (0, 0):
        sys.exit(f"native program: exit code {codes[0]}, DLL: exit code {codes[1]}")
    print(f"{count} sequences of {STEPS} operations from seed {seed}: {lines} equal lines")


main()
