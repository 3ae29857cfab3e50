#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails if one of the shared libraries given exports more than this project's own names.

Weak instances of the C++ library's templates are let through: the compiler must be able to merge
them between libraries.
"""

import re
import subprocess
import sys

OWN = re.compile(
    r"((vtable|VTT|typeinfo|typeinfo name|guard variable) for |construction vtable for "
    r"|(non-virtual|virtual) thunk to |covariant return thunk to |TLS (init|wrapper) function for )?"
    r"rvf::")
FOREIGN = re.compile(r"([^(<]*\s)?(fmt|boost|nlohmann|CLI)::")
WEAK_KINDS = "VWu"


def foreign_symbols(library):
    listing = subprocess.run(["nm", "-DC", "--defined-only", library], capture_output=True,
                             text=True, check=True).stdout
    symbols = [line.split(maxsplit=2)[1:] for line in listing.splitlines()]
    if not any(OWN.match(name) for _, name in symbols):
        yield "no symbol of its own at all"
    for kind, name in symbols:
        if not OWN.match(name) and (kind not in WEAK_KINDS or FOREIGN.match(name)):
            yield f"{kind} {name}"


def main():
    failed = False
    for library in sys.argv[1:]:
        for symbol in foreign_symbols(library):
            print(f"{library} exports: {symbol}")
            failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
