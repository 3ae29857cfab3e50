#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Runs the program that README.md shows beside a shop server, in a network of their own; fails
# unless it prints the server's base URL, nothing else, and ends.
#
# usage: readme_test.sh README STOREFRONT
set -eu

if [ "${3-}" != --inside ]; then
  exec unshare --net --mount -- "$0" "$@" --inside
fi
ip link set lo up
mount -t tmpfs none /run # without a discovery daemon

"$2" --products 10 --port 9642 >&2 &
server=$!
trap 'kill $server; wait $server || true' EXIT

printed=$(timeout 90 "$1")
echo "$printed"
[ "$printed" = "https://127.0.0.1:9642/" ]
