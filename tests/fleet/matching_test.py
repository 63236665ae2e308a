# SPDX-License-Identifier: Apache-2.0

"""Which part is which, from one observation to the next: as `zebdb-cds diff` has it."""

import collections
import json
import pathlib
import re
import sqlite3
import subprocess
import tempfile

import clusters
import expected
import observations
import support

TABLES = {"processors": "Processor", "memory": "Memory", "bridges": "PCIBridge", "devices": "PCIs"}
SAMPLE = support.SOURCE / "samples" / "two-socket-server.xml"
KINDS = {rows: kind for kind, rows in expected.KINDS.items()}


def command(*arguments):
    done = support.run_command(*arguments)
    if done.returncode not in (0, 1):
        raise AssertionError(done.stderr.decode())
    return done.stdout


def write_inventory(rows, path):
    """A database of these rows as the command makes and reads them."""
    subprocess.run([support.OPTIONS.command, "load", "--quiet", support.SOURCE / "samples" / "no-hardware.xml", "--database",
                    path], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    with sqlite3.connect(path) as database:
        for kind, table in TABLES.items():
            for row in rows[kind]:
                names = ", ".join(f'"{name}"' for name in row)
                values = [value - 2**64 if isinstance(value, int) and value >= 2**63 else value for value in row.values()]
                database.execute(f"insert into {table} ({names}) values ({', '.join('?' * len(row))})", values)
    database.close()


def identity_in_words(kind, row):
    return kind, tuple(sorted((name, expected.trimmed(row.get(name))) for name in expected.IDENTITY[kind]))


def in_words(difference):
    """Sorted lists of identities: what was removed and added, what changed, and what moved from where to where."""
    words = {"removed": [], "added": [], "changed": [], "moved": []}
    for rows, kind in KINDS.items():
        of_kind = difference[rows]
        for what in ("removed", "added"):
            words[what] += [identity_in_words(kind, each["identity"]) for each in of_kind[what]]
        words["changed"] += [identity_in_words(kind, each["identity"]) for each in of_kind["changed"]]
        for each in of_kind["moved"]:  # to another node alone is a change for the database
            places = {expected.PLACE[kind](each[identity]) for identity in ("old_identity", "identity")}
            words["moved" if len(places) == 2 else "changed"].append(identity_in_words(kind, each["identity"]))
    return {what: sorted(identities, key=str) for what, identities in words.items()}


def those_that(versions, condition):
    return [(version["kind"], json.dumps(version["raw"], sort_keys=True)) for version in versions if condition(version)]


def identities(records):
    return sorted((identity_in_words(kind, json.loads(raw)) for kind, raw in records), key=str)


class Matching(support.FleetTest):
    """Two inventories, given to the command as such and to the database as observations on two days."""

    @classmethod
    def setUpClass(cls):
        cls.url = support.new_fleet()
        cls.servers = 0

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="fleet.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def assert_matched_alike(self, old, new):
        difference = json.loads(command("diff", "--format", "json", old, new))
        shown = [json.loads(command("show", "--format", "json", each)) for each in (old, new)]
        wanted = in_words(difference)
        Matching.servers += 1
        server = f"server {self.servers}"
        clusters.ingest(self.url, support.lines_of(
            observations.loaded(server, {kind: rows[kind] for kind in TABLES}, observations.START + day * observations.DAY, day)
            for day, rows in enumerate(shown)))
        versions = clusters.rows(self.url, f"select * from ({support.VERSIONS}) v where server = :'x'", x=server)
        ended = {ended: those_that(versions, lambda version: version["ended"] == ended)
                 for ended in ("removed", "changed", "emptied", "moved")}
        begun = those_that(versions, lambda version: expected.time_of(version["seen_from"]) != observations.START)
        shifted = collections.Counter(ended["moved"]) & collections.Counter(begun)  # of their place another record is gone
        self.assertEqual(identities(ended["removed"]), wanted["removed"])
        self.assertEqual(len(ended["changed"] + ended["emptied"]), len(wanted["changed"]))
        self.assertEqual(len(ended["moved"]) - shifted.total(), len(wanted["moved"]))
        self.assertEqual(identities((collections.Counter(begun) - shifted).elements()),
                         sorted(wanted["added"] + wanted["changed"] + wanted["moved"], key=str))
        return difference

    def test_of_made_up_servers(self):
        differing = 0
        for number in range(support.OPTIONS.pairs):
            server = observations.Server(number, "matching", "small")
            for _ in range(server.random.randrange(3)):
                server.live()
            old, new = self.folder / f"{number}-old.db", self.folder / f"{number}-new.db"
            write_inventory(server.rows(), old)
            for _ in range(server.random.randrange(1, 4)):
                server.random.choice(COMPARABLE)(server)
            write_inventory(server.rows(), new)
            with self.subTest(server=number):
                differing += not self.assert_matched_alike(old, new)["same"]
        self.assertGreater(differing, support.OPTIONS.pairs / 2)

    def assert_matched_alike_after(self, replacements):
        """The sample, and the same in which these texts stand for others, all at once."""
        text, times = re.subn("|".join(map(re.escape, replacements)), lambda found: replacements[found[0]], SAMPLE.read_text())
        self.assertGreaterEqual(times, len(replacements))
        new = self.folder / "new.xml"
        new.write_text(text)
        self.assertFalse(self.assert_matched_alike(SAMPLE, new)["same"])

    def test_of_a_file_with_other_processors(self):
        self.assert_matched_alike_after({"Gold 6248 CPU @ 2.50GHz": "Gold 6252 CPU @ 2.10GHz"})

    def test_of_a_file_whose_modules_are_swapped(self):
        self.assert_matched_alike_after({">03A00000<": ">03A00002<", ">03A00002<": ">03A00000<"})

    def test_of_a_file_with_a_module_in_another_slot(self):
        self.assert_matched_alike_after({">CPU1_DIMM_A1<": ">CPU1_DIMM_A2<", ">CPU1_DIMM_A2<": ">CPU1_DIMM_A1<"})

    def test_of_a_file_with_a_module_of_another_number(self):
        self.assert_matched_alike_after({">03A00004<": ">17B00004<"})


# What either calls a change. Blanks alone are one for the database, which keeps what the file had, and none for the
# command; records of one place in another order are told by where they stand.
S = observations.Server
COMPARABLE = [
    S.part_removed, S.module_added, S.module_emptied, S.module_filled, S.module_replaced, S.module_shrunk, S.modules_swapped,
    S.module_moved_to_an_empty_slot, S.locator_renamed, S.text_hostile, S.text_missing, S.numbers_big,
    S.serial_a_placeholder, S.serial_shared, S.socket_emptied, S.socket_filled, S.processor_replaced, S.bridge_added,
    S.buses_renumbered, S.card_added, S.card_replaced, S.card_behind_another_bridge, S.node_of_one_part_changed,
]
