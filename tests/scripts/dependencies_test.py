#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails unless docs/dependencies.md lists exactly what scripts/bootstrap installs, each package with
its licence, and whatever CMake looks for, sources include and binaries link.

usage: dependencies_test.py [BINARY...]
"""

import importlib.machinery
import importlib.util
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SOURCES = ("Platform", "RVFoundation", "tools", "examples", "tests", "benchmarks", "fuzz")
BUILD_FILES = (*SOURCES, "abi", "cmake", "po")
BY_HAND = "Used where somebody calls for it"
# The compiler's and the C library's own, and this project's.
GIVEN_LIBRARIES = re.compile(r"ld-linux-.*|lib(c|m|stdc\+\+|gcc_s)\.so\..*|"
                             r"lib(RVFPlatform|RVFoundation|GreedyInitialiser)\.so.*")
GIVEN_HEADERS = {"link.h", "malloc.h", "sysexits.h", "unwind.h"}
OWN_CMAKE_PACKAGE = "RVFoundation"
WORDS_OF_CMAKE = {"IMPORTED_TARGET", "QUIET", "REQUIRED"}
IDENTIFIER = r"\(?[A-Za-z0-9][A-Za-z0-9.-]*\)?"
SPDX_EXPRESSION = re.compile(f"{IDENTIFIER}( (AND|OR|WITH) {IDENTIFIER})*")


def tables():
    """Rows of the document: (heading of the section, {heading of the column: cell})."""
    section, columns = "", None
    for line in Path(ROOT, "docs", "dependencies.md").read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.split("|")[1:-1]]
        if line.startswith("## "):
            section = line[3:]
        if not cells:
            columns = None
        elif columns is None:
            columns = cells
        elif set(line) - set("|-"):
            yield section, dict(zip(columns, cells))


ROWS = list(tables())


def quoted(cell):
    return re.findall(r"`([^`]+)`", cell)


def listed(column):
    """What a column has in code quotes, of all tables."""
    return {word for _, row in ROWS for word in quoted(row.get(column, ""))}


def files(folders, *patterns):
    return sorted(path for folder in folders for pattern in patterns
                  for path in Path(ROOT, folder).rglob(pattern))


def compared(used, named, what):
    return ([f"{name} is {what}, but not listed" for name in sorted(used - named)]
            + [f"{name} is listed, but not {what}" for name in sorted(named - used)])


def problems_of_packages():
    script = Path(ROOT, "scripts", "bootstrap").read_text(encoding="utf-8")
    block = re.search(r"^packages=\(\n(.*?)^\)$", script, re.DOTALL | re.MULTILINE).group(1)
    installed = {line.split("#")[0].strip() for line in block.splitlines()} - {""}
    by_hand = {package for section, row in ROWS if section == BY_HAND
               for package in quoted(row["Package"])}
    licensed = {package for _, row in ROWS if "Licence" in row
                for package in quoted(row.get("Package", ""))}
    return (compared(installed, listed("Package") - by_hand, "installed")
            + [f"{package} is installed" for package in sorted(installed & by_hand)]
            + [f"{package} is listed without a licence"
               for package in sorted(listed("Package") - licensed)])


def problems_of_licences():
    return [f"'{row['Licence']}' is no SPDX expression: {row['Package']}" for _, row in ROWS
            if "Licence" in row and "Package" in row
            and not SPDX_EXPRESSION.fullmatch(row["Licence"])]


def problems_of_build_files():
    found = set()
    for path in [ROOT / "CMakeLists.txt", *files(BUILD_FILES, "CMakeLists.txt", "*.cmake")]:
        text = re.sub(r'#.*|"[^"]*"', "", path.read_text(encoding="utf-8"))
        found.update(re.findall(r"\bfind_package\s*\(\s*([\w-]+)", text))
        for words in re.findall(r"\bpkg_(?:check|search)_modules?\s*\(\s*[\w-]+\s([^)]*)\)", text):
            found.update(re.split("[<>=]", word)[0] for word in words.split())
    return compared(found - WORDS_OF_CMAKE - {OWN_CMAKE_PACKAGE}, listed("Found as"),
                    "looked for by CMake")


def check_layers():
    """The script that guards the layers, which knows the system's headers."""
    path = str(ROOT / "scripts" / "check-layers")
    loader = importlib.machinery.SourceFileLoader("check_layers", path)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    sys.dont_write_bytecode = True
    loader.exec_module(module)
    return module


def problems_of_sources():
    layers = check_layers()
    included = set()
    for path in files(SOURCES, "*.h", "*.cpp"):
        for bracket, name in layers.INCLUDE.findall(path.read_text(encoding="utf-8")):
            if bracket == "<" and layers.is_third_party(name) and name not in GIVEN_HEADERS:
                first, slash, _ = name.partition("/")
                included.add(first + slash)
    return compared(included, listed("Included as"), "included")


def problems_of_binary(binary):
    output = subprocess.run(["readelf", "-d", binary], capture_output=True, text=True, check=True)
    return [f"{binary} links {library}, which is not listed"
            for library in re.findall(r"\(NEEDED\).*\[(.+)\]", output.stdout)
            if not GIVEN_LIBRARIES.fullmatch(library)
            and library.split(".so")[0] not in listed("Links")]


def main():
    problems = (problems_of_packages() + problems_of_licences() + problems_of_build_files()
                + problems_of_sources())
    for binary in sys.argv[1:]:
        problems += problems_of_binary(binary)
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
