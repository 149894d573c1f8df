"""Programs for Windows, run in the prefix of a build."""

import contextlib
import os
import pathlib
import subprocess

# The word size of the programs that are tested. Those of 32 bits have a Wine that knows both, and system programs of their
# own beside the 64-bit ones.
BITS = int(os.environ.get("KVDM_WINE_BITS", "64"))
RUN = pathlib.Path(__file__).resolve().parents[2] / "scripts" / {64: "run-wine", 32: "run-wine32"}[BITS]
SYSTEM_FOLDERS = {64: "C:\\windows\\system32\\", 32: "C:\\windows\\syswow64\\"}


def windows_path(path):
    """The path by which Wine's programs know a file."""
    return "Z:" + str(pathlib.Path(path).resolve()).replace("/", "\\")


class Wine:
    def __init__(self, prefix):
        self.prefix = pathlib.Path(prefix)

    def run(self, *command, check=True, quiet=False):
        """The status of a program; with `check` anything but success is an error. A quiet one is heard then only."""
        done = subprocess.run([RUN, self.prefix, *command], stdout=subprocess.PIPE if quiet else None)
        if check and done.returncode != 0:
            said = (done.stdout or b"").decode(errors="replace")
            raise RuntimeError(f"{' '.join(map(str, command))}: status {done.returncode} {said}")
        return done.returncode

    def output(self, *command):
        """What a program that succeeds has written."""
        return subprocess.run([RUN, self.prefix, *command], stdout=subprocess.PIPE, check=True).stdout.decode()

    def regsvr32(self, dll, *options, bits=BITS):
        self.run(SYSTEM_FOLDERS[bits] + "regsvr32.exe", "/s", *options, windows_path(dll))

    @contextlib.contextmanager
    def registered(self, *dlls):
        """While it lasts, the DLLs are registered."""
        try:
            for dll in dlls:
                self.regsvr32(dll)
            yield
        finally:
            for dll in dlls:
                self.regsvr32(dll, "/u")
