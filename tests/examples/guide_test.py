#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails unless a page of the guide shows nothing but its program's code and output.

usage: guide_test.py PAGE SOURCE PROGRAM
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path


def fences(page, language):
    return re.findall(rf"^```{language}\n(.*?)^```$", page, re.DOTALL | re.MULTILINE)


def plain(code):
    """Without indentation: a page shows the inside of a function."""
    return "\n".join(line.strip() for line in code.strip().splitlines())


def main():
    page, source = (Path(argument).read_text(encoding="utf-8") for argument in sys.argv[1:3])
    problems = [f"this is not in {sys.argv[2]}:\n{code}" for code in fences(page, "cpp")
                if plain(code) not in plain(source)]
    with tempfile.TemporaryDirectory() as folder:
        output = subprocess.run([sys.argv[3]], capture_output=True, text=True, check=True,
                                timeout=30, env={**os.environ, "LC_ALL": "C.UTF-8",
                                                 "XDG_CONFIG_HOME": folder}).stdout
    shown = "".join(fences(page, "text"))
    if output != shown:
        problems.append(f"the program prints\n{output}\nbut the page says\n{shown}")
    if not fences(page, "cpp"):
        problems.append("the page shows no code")
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
