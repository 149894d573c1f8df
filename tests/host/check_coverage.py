#!/usr/bin/env python3
"""Compares coverage.md with the public operations and with the program's commands, and these with the sessions.

    check_coverage.py PROGRAM SOURCE_FOLDER
"""

import pathlib
import re
import subprocess
import sys


def declared_operations(headers):
    operations, interface = [], None
    for line in "".join(header.read_text() for header in headers).splitlines():
        if found := re.match(r"class KVDM_EXPORT (\w+)", line):
            interface = found[1]
        if interface != "Unknown" and (found := re.match(r"  virtual .*?(\w+)\(", line)):
            operations.append(f"{interface}.{found[1]}")
    return operations


def listed_rows(document):
    return re.findall(r"^\| `(\w+\.\w+)` \| (.+) \|$", document.read_text(), re.MULTILINE)


def command_problem(program, command):
    words = [word for word in command.split()[1:] if not word.startswith("--")]
    options = [word for word in command.split() if word.startswith("--")]
    help_text = subprocess.run(
        [program, *words, "--help"], capture_output=True, text=True, check=False
    )
    known = help_text.returncode == 0 and f"Usage: {' '.join(['kvdm', *words])} " in help_text.stdout
    if not known:
        return f"there is no command {command}"
    missing = [option for option in options if f"  {option} " not in help_text.stdout]
    return f"{command}: no such option" if missing else None


def row_problem(program, reached_by):
    commands = re.findall(r"`(kvdm [^`]+)`", reached_by)
    if not commands and not reached_by.startswith("*Not for people:* "):
        return "neither a command nor a reason"
    problems = filter(None, (command_problem(program, command) for command in commands))
    return next(problems, None)


def commands_without_session(program, sessions):
    """Commands that no session calls."""
    manual = subprocess.run([program, "generate", "man"], capture_output=True, text=True, check=True).stdout
    commands = re.findall(r"^\.SS \\fB(kvdm [a-z ]+)\\fR", manual, re.MULTILINE)
    called = "\n".join(session.read_text() for session in sessions)
    return [command for command in commands if not re.search(rf"{command}\b", called)], len(commands)


def unexplained_messages(program, header):
    """Messages that 'kvdm explain' does not know, and how many there are."""
    texts = re.findall(r'inline constexpr char (\w+)\[\] =\s+"([^"]+)";', header.read_text())
    messages = [text for name, text in texts if name not in ("kCaption", "kPropertyEnd")]
    explained = (
        subprocess.run([program, "explain", text], capture_output=True, check=False).returncode == 0
        for text in messages
    )
    return [text for text, is_known in zip(messages, explained) if not is_known], len(messages)


def main(program, source):
    source = pathlib.Path(source)
    declared = declared_operations((source / "include/kvdm/datamanager").glob("*.h"))
    rows = listed_rows(source / "tests/host/coverage.md")
    problems = []
    if len(declared) < 100:
        problems.append(f"only {len(declared)} operations were found")
    silent, count = commands_without_session(program, (source / "tests/host").glob("*cases/*.test"))
    problems += [f"no session calls '{command}'" for command in silent]
    if count < 50:
        problems.append(f"only {count} commands were found")
    unexplained, count = unexplained_messages(program, source / "util/messages.h")
    problems += [f"'kvdm explain' does not know '{message}'" for message in unexplained]
    if count < 70:
        problems.append(f"only {count} messages were found")
    listed = [operation for operation, _ in rows]
    if sorted(listed) != sorted(declared):
        problems.append(f"not listed: {sorted(set(declared) - set(listed))}")
        problems.append(f"listed, not declared, or listed twice: {sorted(set(listed) - set(declared))}")
    for operation, reached_by in rows:
        if problem := row_problem(program, reached_by):
            problems.append(f"{operation}: {problem}")
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
