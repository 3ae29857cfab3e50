#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs a program under valgrind with an empty home; fails at an invalid access, at a decision by
# memory that nobody set, and at blocks that are lost at exit. What static objects still reach then
# is not lost.
#
# usage: clean_at_exit_test.sh PROGRAM [ARGUMENT...]
set -eu

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME="$home" TMPDIR="$home" XDG_CONFIG_HOME="$home" LC_ALL=C.UTF-8
cd "$home"

lost=definite,indirect,possible
valgrind --quiet --leak-check=full --show-leak-kinds=$lost --errors-for-leak-kinds=$lost \
  --error-exitcode=9 "$@"
