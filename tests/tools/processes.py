# SPDX-License-Identifier: Apache-2.0
"""A network for the tests alone, and what its processes wait for."""

import os
import re
import sys
import time


def enter_private_network(hosts=()):
    """Starts this program anew in a network with only a loopback interface; with hosts of its own
    if lines of /etc/hosts are given."""
    if os.environ.get("RVF_TEST_NETWORK") == "private":
        return
    environment = dict(os.environ, RVF_TEST_NETWORK="private", RVF_TEST_HOSTS="\n".join(hosts))
    script = "ip link set lo up && "
    if hosts:
        script += ('hosts=$(mktemp) && printf "%s\\n" "$RVF_TEST_HOSTS" >"$hosts" && '
                   'mount --bind "$hosts" /etc/hosts && rm "$hosts" && ')
    command = ["unshare", "--net", "--mount", "--", "sh", "-c", script + 'exec "$0" "$@"',
               sys.executable] + sys.argv
    os.execvpe(command[0], command, environment)


def wait_until_blocked(process, number):
    """Waits until the process handles a signal by itself."""
    for _ in range(1000):
        with open(f"/proc/{process.pid}/status", encoding="utf-8") as status:
            blocked = re.search(r"^SigBlk:\s*([0-9a-f]+)$", status.read(), re.MULTILINE)
        if int(blocked[1], 16) & 1 << number - 1:
            return
        time.sleep(0.01)
    raise RuntimeError("the signal is not blocked")
