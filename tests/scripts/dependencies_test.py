#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails if scripts/bootstrap installs a package, or a binary links a library, that
docs/dependencies.md does not list; or if it lists a package that is not installed.

usage: dependencies_test.py BINARY...
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# The compiler's and the C library's own, and this project's.
GIVEN = re.compile(r"ld-linux-.*|lib(c|m|stdc\+\+|gcc_s|asan|ubsan|RVFPlatform|RVFoundation)\.so\..*")


def listed():
    """The words in code quotes of the document's tables."""
    document = Path(ROOT, "docs", "dependencies.md").read_text(encoding="utf-8")
    rows = "\n".join(line for line in document.splitlines() if line.startswith("|"))
    return set(re.findall(r"`([^`]+)`", rows))


def installed():
    script = Path(ROOT, "scripts", "bootstrap").read_text(encoding="utf-8")
    block = re.search(r"^packages=\(\n(.*?)^\)$", script, re.DOTALL | re.MULTILINE).group(1)
    words = (line.split("#")[0].strip() for line in block.splitlines())
    return {word for word in words if word}


def linked(binary):
    output = subprocess.run(["readelf", "-d", binary], capture_output=True, text=True, check=True)
    return set(re.findall(r"\(NEEDED\).*\[(.+)\]", output.stdout))


def main():
    names = listed()
    packages = installed()
    problems = [f"{package} is installed, but not listed" for package in packages - names]
    packaged = {name for name in names if not name.startswith("lib") or name.endswith("-dev")}
    problems += [f"{name} is listed, but not installed" for name in packaged - packages
                 if not name.startswith(("scripts/", "tests/"))]
    for binary in sys.argv[1:]:
        problems += [f"{binary} links {library}, which is not listed" for library in linked(binary)
                     if not GIVEN.fullmatch(library) and library.split(".so")[0] not in names]
    print("\n".join(sorted(problems)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
