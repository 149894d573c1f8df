"""Programs for Windows, run in the prefix of a build."""

import contextlib
import pathlib
import subprocess

RUN = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "run-wine"


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

    def regsvr32(self, dll, *options):
        self.run("regsvr32.exe", "/s", *options, windows_path(dll))

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
