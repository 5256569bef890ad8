#!/usr/bin/python3
"""Every command and option that --help names is in a manual page, and the reverse; so is each exit code.

usage: manual_test.py CMPNTCTL FOLDER_OF_PAGES
"""

import pathlib
import re
import subprocess
import sys


def help_of(program, words):
    return subprocess.run(
        [program, *words, "--help"], check=True, capture_output=True, text=True
    ).stdout


def section(text, name):
    """The lines of a section of --help, without their indent."""
    found = re.search(rf"^{name}:[^\n]*\n((?:  .*\n)*)", text, re.MULTILINE)
    return [line[2:] for line in found[1].splitlines() if line[2] != " "] if found else []


def options_of(text):
    """Each option by its longest name; --help stands on the first page alone."""
    names = [line.split()[0].split(",")[-1] for line in section(text, "Options")]
    return {name for name in names if name != "--help"}


def told_by_help(program, words=()):
    """{("db", "check"): {"--quick"}} of all commands that have no further ones below them."""
    text = help_of(program, words)
    below = [line.split()[0] for line in section(text, "Subcommands")]
    if "Example:\n  " not in text:
        sys.exit(f"{' '.join(words)} --help has no example")
    told = {} if below and words else {words: options_of(text)}
    for name in below:
        told.update(told_by_help(program, (*words, name)))
    return told


def told_by_page(path):
    """The same of a page: "*cmpntctl db check* ..." and, below it, "*--quick*"."""
    told, command = {}, None
    for line in path.read_text(encoding="utf-8").splitlines():
        heading = re.match(r"\*cmpntctl ([a-z0-9 ]+)\*(?! _OPTIONS_)", line)
        option = re.match(r"(\t*)(?:\*-[a-zA-Z]\*, )?\*(--[a-z-]+)\*", line)
        if heading:
            command = tuple(heading[1].split())
            told[command] = set()
        elif line.startswith("# "):
            command = () if line == "# OPTIONS" else None
        elif option and command is not None and len(option[1]) == (1 if command else 0):
            told.setdefault(command, set()).add(option[2])
    return told


def differences(by_help, by_pages):
    for command in sorted(by_help.keys() | by_pages.keys()):
        name = "cmpntctl " + " ".join(command)
        if command not in by_pages:
            yield f"{name}: in no manual page"
        elif command not in by_help:
            yield f"{name}: in a manual page, and no command"
        else:
            for option in sorted(by_help[command] - by_pages[command]):
                yield f"{name} {option}: not in its manual page"
            for option in sorted(by_pages[command] - by_help[command]):
                yield f"{name} {option}: in its manual page, and no option"


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    by_help = told_by_help(program)
    by_pages = {}
    for path in sorted(folder.glob("cmpntctl*.scd")):
        by_pages.update(told_by_page(path))
    by_pages[()].discard("--help")
    found = list(differences(by_help, by_pages))

    overview = (folder / "cmpntctl.1.scd").read_text(encoding="utf-8")
    for path in folder.glob("cmpntctl-*.scd"):
        if f"*{path.name[:-6]}*(1)" not in overview:
            found.append(f"{path.name}: not named by the overview")
    codes = re.search(r"Exit codes: (.*?)\n\n", help_of(program, ()), re.DOTALL)[1]
    for code in re.findall(r"\d+", codes):
        if f"\n|  {code}\n" not in overview:
            found.append(f"exit code {code}: not in the overview")

    print("\n".join(found) or f"{len(by_help) - 1} commands, each with its options in a manual page")
    return 1 if found else 0


sys.exit(main())
