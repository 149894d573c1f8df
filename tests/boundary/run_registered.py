"""Runs a program while DLLs are registered. Arguments that are files are given as Wine knows them.

    run_registered.py PREFIX DLL... -- PROGRAM ARGUMENTS...

A program without a folder is the system's.
"""

import os.path
import sys

from wine import BITS, SYSTEM_FOLDERS, Wine, windows_path


def main(arguments):
    separator = arguments.index("--")
    prefix, *dlls = arguments[:separator]
    command = [windows_path(each) if os.path.isfile(each) else each for each in arguments[separator + 1 :]]
    if "\\" not in command[0]:
        command[0] = SYSTEM_FOLDERS[BITS] + command[0]
    wine = Wine(prefix)
    with wine.registered(*dlls):
        return wine.run(*command, check=False)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
