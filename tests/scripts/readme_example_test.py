#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails unless the C++ that README.md shows is the body of main in examples/readme.cpp."""

import difflib
import re
import sys
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def main():
    readme = Path(ROOT, "README.md").read_text(encoding="utf-8")
    program = Path(ROOT, "examples", "readme.cpp").read_text(encoding="utf-8")
    shown = re.search(r"^```cpp\n(.*?)^```$", readme, re.DOTALL | re.MULTILINE).group(1)
    body = re.search(r"^int main\(\) \{\n(.*?)^\}$", program, re.DOTALL | re.MULTILINE).group(1)
    difference = list(difflib.unified_diff(
        shown.splitlines(), textwrap.dedent(body).splitlines(), "README.md", "examples/readme.cpp",
        lineterm=""))
    print("\n".join(difference))
    return 1 if difference else 0


if __name__ == "__main__":
    sys.exit(main())
