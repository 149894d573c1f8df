#!/usr/bin/env python3
"""Runs a loop that works in the folder for temporary files.

    file_systems.py COMMAND... [--long] [--part K/N]

In the short form on a file system in memory, where there is one. In the long form on tmpfs, ext4
and vfat, each as far as it can be had: a file system that is not at hand is mounted, for this loop
alone, which root may do where the kernel has it. The counts are of all of them.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

IN_MEMORY = "/dev/shm"
KINDS = {"tmpfs": None, "ext4": ["mkfs.ext4", "-q"], "vfat": ["mkfs.vfat"]}
IMAGE_BYTES = 256 << 20
# A place to mount at, the number of words of mount, these words, and the command.
MOUNT_AND_RUN = 'place=$1; n=$2; shift 2; mount "${@:1:n}" "$place"; shift "$n"; exec "$@"'


def kind_of(folder):
    """The kind of the file system that a folder is on."""
    found = subprocess.run(["findmnt", "-n", "-o", "FSTYPE", "-T", folder], capture_output=True,
                           text=True, check=False)
    return found.stdout.strip()


def mounting(kind, scratch):
    """The words of mount for a new file system; None when it can't be mounted."""
    words, make = ["-t", kind, "none"], KINDS[kind]
    if make:
        image = scratch / "image"
        image.touch()
        os.truncate(image, IMAGE_BYTES)
        environment = {**os.environ, "PATH": os.environ["PATH"] + ":/usr/sbin:/sbin"}
        subprocess.run([*make, image], env=environment, stdout=subprocess.DEVNULL, check=True)
        words = ["-o", "loop", str(image)]
    (scratch / "place").mkdir()
    tried = subprocess.run(["unshare", "--mount", "mount", *words, scratch / "place"], check=False,
                           capture_output=True)
    return words if tried.returncode == 0 else None


def run(command, folder):
    return subprocess.run(command, env={**os.environ, "TMPDIR": folder}, stdout=subprocess.PIPE,
                          text=True, errors="replace", check=False)


def run_on(kind, command):
    """The command's end on a file system of this kind; None when there is none."""
    for folder in (tempfile.gettempdir(), IN_MEMORY):
        if kind_of(folder) == kind and os.access(folder, os.W_OK):
            return run(command, folder)
    with tempfile.TemporaryDirectory(prefix="kvdm-mount-") as scratch:
        try:
            words = mounting(kind, pathlib.Path(scratch))
        except (OSError, subprocess.CalledProcessError):
            words = None
        if words is None:
            return None
        place = f"{scratch}/place"
        return run(["unshare", "--mount", "bash", "-euc", MOUNT_AND_RUN, "bash", place, str(len(words)),
                    *words, *command], place)


def main(command):
    if "--long" not in command:
        folder = IN_MEMORY if os.access(IN_MEMORY, os.W_OK) else tempfile.gettempdir()
        done = run(command, folder)
        print(done.stdout, end="")
        return done.returncode
    loop, sums, status = None, {}, 0
    for kind in KINDS:
        done = run_on(kind, command)
        if done is None:
            print(f"{kind} can't be had here")
            continue
        print(f"{kind}:\n{done.stdout}", end="")
        status = status or done.returncode
        ends = re.findall(r"^loop (\S+): (.*)$", done.stdout, re.MULTILINE)
        for word in ends[-1][1].split() if ends else ():
            loop, (key, value) = ends[-1][0], word.split("=")
            sums[key] = sums.get(key, 0) + int(value)
    print(f"loop {loop}: " + " ".join(f"{key}={value}" for key, value in sums.items()))
    return status if loop else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
