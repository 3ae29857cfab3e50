#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails unless the packages depend on what they need: the libraries on the packages of what
docs/dependencies.md says they link, headers and tool on exactly this version of the libraries, the
tool on libcurl besides.

usage: package_dependencies_test.py FOLDER-OF-PACKAGES
"""

import re
import subprocess
import sys
from pathlib import Path

DOCUMENT = Path(__file__).resolve().parents[2] / "docs" / "dependencies.md"
# The C library and the compiler's own.
GIVEN = {"libc6", "libgcc-s1", "libstdc++6"}


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()


def rows(heading):
    """The rows of a section's table: of each cell the words in code quotes."""
    section = DOCUMENT.read_text(encoding="utf-8").split(f"\n## {heading}\n")[1].split("\n## ")[0]
    for line in section.splitlines():
        cells = [re.findall(r"`([^`]+)`", cell) for cell in line.split("|")]
        if len(cells) > 1:
            yield cells


def documented():
    """What the libraries link according to the document, for example libz."""
    packages = {name for cells in rows("Linked by the libraries") for name in cells[3]}
    return {library for cells in rows("What CMake and the sources call them, and programs link")
            if packages & set(cells[1]) for library in cells[4]}


def package_of(library):
    """The package with the file that the linker takes when it is told to link the library."""
    file = Path(output_of("g++", f"-print-file-name={library}.so")).resolve()
    return output_of("dpkg-query", "--search", f"*/{file.name}").split(":")[0]


def field(package, name):
    return output_of("dpkg-deb", "--field", package, name)


def depends_of(package):
    return [word.strip() for word in field(package, "Depends").split(",") if word.strip()]


def problems_of(packages):
    runtime = next(name for name in packages if re.fullmatch(r"librvfoundation[\d.]+", name))
    same = f"{runtime} (= {field(packages[runtime], 'Version')})"
    expected = {runtime: {package_of(library) for library in documented()},
                "librvfoundation-dev": {runtime}, "rvf": {runtime, package_of("libcurl")}}
    if packages.keys() != expected.keys():
        yield f"the packages are {', '.join(sorted(packages))}"
    for package in sorted(packages.keys() & expected.keys()):
        depends = depends_of(packages[package])
        found = {word.split()[0] for word in depends}
        for name in sorted(expected[package] - found):
            yield f"{package} does not depend on {name}"
        for name in sorted(found - expected[package] - GIVEN):
            yield f"{package} depends on {name}, which it is not said to link"
        if package != runtime and same not in depends:
            yield f"{package} does not depend on {same}"


def main():
    packages = {field(file, "Package"): file for file in Path(sys.argv[1]).glob("*.deb")}
    problems = list(problems_of(packages))
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
