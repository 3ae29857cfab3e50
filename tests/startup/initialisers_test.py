#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails if an initialiser of a library calls anything but what links a class, a bundle or the like
into its list, or if one of those calls anything at all: no lock, no system call, no memory, nothing
that could fail before main.

usage: initialisers_test.py LIBRARY...
"""

import re
import subprocess
import sys

INITIALISER = re.compile(r"_GLOBAL__sub_I_|__static_initialization_and_destruction_0")
REGISTRATIONS = {
    "rvf::ClassRegistration::ClassRegistration",
    "rvf::NSBundleRegistration::NSBundleRegistration",
    "rvf::StoredURLRegistration::StoredURLRegistration",
}
FUNCTION = re.compile(r"[0-9a-f]+ <(.+)>:$")
BRANCH = re.compile(r"\t(?:call|j\w+|blr?|b|b\.\w+)\s+(?P<where>.+)$")
NAME = re.compile(r"<(.+?)(?:\+0x[0-9a-f]+)?>$")


def plain(symbol):
    """The qualified name without parameters, and without what a linker puts behind it."""
    return symbol.split("@")[0].split("(")[0]


def calls_of(library):
    """(function, what it calls) of all initialisers and registrations."""
    code = subprocess.run(["objdump", "-d", "-C", "-j", ".text", "--no-show-raw-insn", library],
                          capture_output=True, text=True, check=True).stdout
    function = ""
    for line in code.splitlines():
        if begin := FUNCTION.match(line):
            function = plain(begin.group(1))
        elif INITIALISER.match(function) or function in REGISTRATIONS:
            if branch := BRANCH.search(line):
                name = NAME.search(branch.group("where"))
                callee = plain(name.group(1)) if name else "by the pointer " + branch.group("where")
                if callee != function:
                    yield function, callee


def main():
    problems, count = [], 0
    for library in sys.argv[1:]:
        for function, callee in calls_of(library):
            if INITIALISER.match(function) and callee in REGISTRATIONS:
                count += 1
            elif not (INITIALISER.match(function) and INITIALISER.match(callee)):
                problems.append(f"{library}: {function} calls {callee}")
    print("\n".join([*problems, f"{count} registrations"]))
    return 1 if problems or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
