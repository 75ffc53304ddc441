#!/usr/bin/env python3
"""Runs the main scenarios with the installed vpagent below valgrind's memcheck.

usage: memcheck_test.py SOURCE PREFIX [CASE]

No read or write outside of what is allocated, no decision by a value that was never set, no block that
is lost, and no file that is still open at the end.
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCE, PREFIX = Path(sys.argv[1]), Path(sys.argv[2])
VPAGENT = PREFIX / "bin" / "vpagent"
EXAMPLES = SOURCE / "examples"
FAULTY = 99  # the exit status of a run that memcheck has something to say about

# Every kind, a hand-over, a restart, records that a restart must repair, the multicast holder, and access
# by name.
EVERYTHING = """\
client add bgp
client add "leaf \u00e9"
start table-size=13 reallocation=on
request bgp edge Ethernet1/1:100
request "leaf \u00e9" edge Ethernet1/1:100
request bgp vlan 7
request bgp remote 10.0.0.2@17
request bgp mlag 2001:db8::2@4294967295
request bgp efilter Port-Channel5
request bgp vlan 8
withdraw bgp vlan 7
show table
show waiting
verify
save-boot
client remove bgp
restart
client add bgp
clear-stale
verify
stop
put reference vlan 42 65535 bgp other
put waiting vlan 43
start table-size=16
clear-stale
verify
inspect references
stop
"""


def memcheck(*arguments, script=None):
    """Runs vpagent below valgrind. SQLite keeps pointers into its blocks, not to them, so that a copy of
    the process that only verifies seems to lose some: what is only possibly lost does not count."""
    return subprocess.run(
        ["valgrind", "--quiet", f"--error-exitcode={FAULTY}", "--leak-check=full",
         "--show-leak-kinds=definite,indirect", "--errors-for-leak-kinds=definite,indirect",
         VPAGENT, *arguments],
        input=script, capture_output=True, text=True, check=False)


class Memcheck(unittest.TestCase):
    """Each scenario ends as it does otherwise, and memcheck is silent."""

    def run_clean(self, *arguments, script=None, status=0):
        """Runs a scenario, which must end with this status."""
        run = memcheck(*arguments, script=script)
        self.assertEqual(run.returncode, status, run.stdout[-2000:] + run.stderr[-4000:])
        self.assertNotIn("==", run.stderr)

    def test_a_full_table(self):
        self.run_clean(EXAMPLES / "full-table.vp")

    def test_a_leaf_switch(self):
        self.run_clean(EXAMPLES / "leaf-switch.vp")

    def test_a_restart_from_a_state_file(self):
        with tempfile.TemporaryDirectory() as folder:
            state = Path(folder) / "leaf.state"
            self.run_clean("--state", state, EXAMPLES / "before-a-crash.vp")
            self.run_clean("--state", state, EXAMPLES / "after-a-crash.vp")

    def test_every_kind_by_standard_input(self):
        self.run_clean(script=EVERYTHING)

    def test_a_run_that_a_command_ends(self):
        self.run_clean(script="client add bgp\nshow clients\nno-such-command\n", status=2)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
