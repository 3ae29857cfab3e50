#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs a host-loop example in a network of its own; fails unless it prints its four events and ends.
#
# usage: host_loop_test.sh PROGRAM
set -eu

events=$(QT_QPA_PLATFORM=offscreen timeout 40 unshare --net --mount sh -c '
  ip link set lo up
  mount -t tmpfs none /run  # without a discovery daemon
  exec "$0"' "$1")
echo "$events"
[ "$(echo "$events" | sort | tr '\n' ' ')" = "found host post timer " ]
