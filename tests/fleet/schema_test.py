# SPDX-License-Identifier: Apache-2.0

"""What the schema keeps true of any observations, and what it takes in and what not, each thing by itself."""

import copy
import random
import subprocess

import clusters
import expected
import observations
import support
from observations import DAY, START, bridge, function, loaded, module, processor, refused

# One row a record that was observed, with its server and the time.
OBSERVED = """
    select line ->> 'server' as server, (line ->> 'observed_at')::timestamptz as time, kind,
           jsonb_strip_nulls(row - 'Id' - 'ArrayId' - 'ParentId' - 'BridgeId') as raw
    from arriving,
         lateral (values ('processor', 'processors'), ('memory', 'memory'), ('bridge', 'bridges'), ('device', 'devices'))
             as kinds (kind, key),
         lateral jsonb_array_elements(line -> key) as row"""

COLUMNS = {
    "processor": {"node_index": "NodeIndex", "socket": "Socket", "manufacturer": "Manufacturer", "model": "Version",
                  "processor_id": "ProcId", "status": "Status", "serial_no": "SerialNo", "asset_tag": "AssetTag",
                  "part_no": "PartNo", "cores": "CoreCount", "threads": "ThreadCount"},
    "memory": {"node_index": "NodeIndex", "slot_no": "SlotNo", "size_mib": "MemSize", "locator": "DevLocator",
               "bank_locator": "BankLocator", "memory_type": "MemType", "max_speed": "MaxSpeed", "speed": "ClockSpeed",
               "manufacturer": "Manufacturer", "serial_no": "SerialNo", "part_no": "PartNo", "capacity": "Capacity"},
    "bridge": {"node_index": "NodeIndex", "vendor_id": "VendorId", "device_id": "DevId", "class_code": "ClsCode",
               "primary_bus": "PriBusNo", "secondary_bus": "SndBusNo", "subordinate_bus": "SubBusNo"},
    "device": {"node_index": "NodeIndex", "vendor_id": "VendorId", "device_id": "DeviceId", "class_code": "ClsCode",
               "slot_no": "SlotNo", "slot_designation": "SlotDesignation", "lanes": "LanesInUse"},
}


class AnyObservations(support.FleetTest):
    """Properties, told by SQL itself of what was observed and what is in the tables."""

    @classmethod
    def setUpClass(cls):
        cls.seen = list(observations.observations(support.OPTIONS.servers, support.OPTIONS.observations, seed=2))
        cls.fleet = expected.Fleet(cls.seen)
        cls.url = support.new_fleet()
        clusters.ingest(cls.url, support.lines_of(cls.seen))
        cls.known = [seen for seen in cls.seen if seen["status"] == "loaded" and cls.fleet.knows(seen)]

    def differences(self, observed, held):
        """How many rows either query has more than the other, all known observations being in `arriving`."""
        script = f"""
            with observed as ({observed}), held as ({held}),
                 missing as (select * from observed except all select * from held),
                 added as (select * from held except all select * from observed)
            select (select count(*) from observed), (select count(*) from missing), (select count(*) from added);"""
        return clusters.psql(self.url, clusters.copied(support.lines_of(unique(self.known))) + script).strip().split("|")

    def test_no_two_versions_of_a_record_hold_at_one_time(self):
        for table in support.TABLES[2:]:
            self.assert_empty(self.url, f"""
                select a.server, a.place, a.ordinal from fleet.{table} a join fleet.{table} b using (server, place, ordinal)
                where a.valid && b.valid and a.valid <> b.valid
                union all
                select server, place, ordinal from fleet.{table} group by server, place, ordinal, valid
                having count(*) > 1""")

    def test_what_is_open_is_the_newest_observation(self):
        rows, missing, added = self.differences(
            f"""select server, kind, raw from ({OBSERVED}) o
                join (select line ->> 'server' as server, max((line ->> 'observed_at')::timestamptz) as time
                      from arriving group by 1) newest using (server, time)""",
            f"select server, kind, raw from ({support.VERSIONS}) v where seen_until is null")
        self.assertGreater(int(rows), 0)
        self.assertEqual((missing, added), ("0", "0"))

    def test_history_at_each_time_is_what_was_observed_then(self):
        rows, missing, added = self.differences(
            f"select server, time, kind, raw from ({OBSERVED}) o",
            f"""select v.server, time, kind, raw
                from ({support.VERSIONS}) v
                join (select line ->> 'server' as server, (line ->> 'observed_at')::timestamptz as time from arriving) o
                  on o.server = v.server and seen_from <= time and (seen_until is null or time < seen_until)""")
        self.assertGreater(int(rows), 0)
        self.assertEqual((missing, added), ("0", "0"))

    def test_overlapping_versions_cannot_be_inserted(self):
        for table in support.TABLES[2:]:
            with self.assertRaisesRegex(clusters.Failed, "exclusion constraint"):
                clusters.psql(self.url, f"""
                    insert into fleet.{table} (server, place, ordinal, valid, raw)
                    select server, place, ordinal, tstzrange(lower(valid) - interval '1 hour', null), raw
                    from fleet.{table} where upper_inf(valid) limit 1;""")

    def test_each_partition_of_a_part_has_its_exclusion_constraint(self):
        constraints = clusters.rows(self.url, """
            select c.relname from pg_class c join pg_namespace n on n.oid = relnamespace join pg_constraint x on conrelid = c.oid
            where nspname = 'fleet' and relispartition and relkind = 'r' and contype = 'x' order by 1""")
        self.assertEqual([row["relname"] for row in constraints],
                         sorted(f"{table}_p{number:02}" for table in support.TABLES[2:] for number in range(16)))

    def test_typed_columns_are_the_raw_values_trimmed(self):
        for table, columns in COLUMNS.items():
            versions = clusters.rows(self.url, f"select {', '.join(columns)}, raw from fleet.{table}")
            self.assertGreater(len(versions), 0)
            for version in versions:
                for column, key in columns.items():
                    self.assertEqual(version[column], expected.trimmed(version["raw"].get(key)), (table, column))

    def test_everything_once_more_changes_nothing(self):
        before = support.contents(self.url)
        clusters.ingest(self.url, support.lines_of(random.Random(1).sample(self.seen, len(self.seen))))
        self.assertEqual(support.contents(self.url), before)

    def test_any_order_of_arrival_gives_the_same_tables(self):
        forwards = sorted(unique(self.known), key=lambda seen: seen["observed_at"])
        orders = [forwards, forwards[::-1], random.Random(1).sample(forwards, len(forwards))]
        tables = []
        for order in orders:
            url = support.new_fleet()
            clusters.ingest(url, support.lines_of(order))
            tables.append(support.contents(url))
        self.assertEqual(tables[0], tables[1])
        self.assertEqual(tables[0], tables[2])

    def test_sessions_side_by_side_give_the_same_tables(self):
        url = support.new_fleet()
        seen = unique(self.known)
        script = "select fleet.ingest(line) from (select line from arriving order by n) a \\g /dev/null\n"
        scripts = [clusters.copied(support.lines_of(seen[first::3])) + script for first in range(3)]
        command = ["psql", "-X", "-q", "-v", "ON_ERROR_STOP=1", "-d", url, "-c", "set deadlock_timeout = '100ms'", "-f", "-"]
        sessions = [subprocess.Popen(command, stdin=subprocess.PIPE, stderr=subprocess.PIPE, env=clusters.without_pg_variables())
                    for _ in scripts]
        for session, lines in zip(sessions, scripts):
            session.stdin.write(each_by_itself(lines).encode())
            session.stdin.close()
        for session in sessions:
            with session.stderr:
                self.assertEqual(session.stderr.read(), b"")
            self.assertEqual(session.wait(), 0)
        self.assert_histories(url, expected.Fleet(sorted(seen, key=lambda each: each["observed_at"])))


def unique(seen):
    return list({(each["server"], each["observed_at"], each["source"]["sha256"]): each for each in seen}.values())


def each_by_itself(script):
    """Each observation in a transaction of its own, as sessions beside each other have to."""
    head, _, _ = script.rpartition("select fleet.ingest")
    return head + ("select count(*) as n from arriving \\gset\n"
                   "select format('select fleet.ingest(line) from arriving where n = %s', g) from generate_series(1, :n) g "
                   "\\g (format=unaligned tuples_only=on) /dev/null\n"
                   "\\o /dev/null\n"
                   "select format('select fleet.ingest(line) from arriving where n = %s', g) from generate_series(1, :n) g "
                   "\\gexec\n")


class OneServer(support.FleetTest):
    """A server whose parts are these, on one day after the other."""

    @classmethod
    def setUpClass(cls):
        cls.url = support.new_fleet()

    def setUp(self):
        support.empty(self.url)
        root = bridge(0, 1, 0)
        self.parts = {
            "processors": [processor("CPU 1", "P1", ("Model", "Maker"))],
            "memory": [module("DIMM 1", "BANK", 1, "M1", ("PART", "Maker", 1024, 2933)),
                       module("DIMM 2", "BANK", 2, "M2", ("PART", "Maker", 1024, 2933))],
            "bridges": [root],
            "devices": [function(1, 0, 1, (5555, 1), root)]}

    def observed(self, day, parts=None):
        rows = parts or self.parts
        ids = {part: place + 1 for each in rows.values() for place, part in enumerate(each)}
        rows = {kind: [observations.row_of(part, ids) for part in each] for kind, each in rows.items()}
        return loaded("server", rows, START + day * DAY)

    def without(self, kind):
        return {**self.parts, kind: []}

    def ingest(self, *seen):
        return clusters.ingest(self.url, support.lines_of(seen))

    def open_places(self):
        return sorted(row["place"] for row in clusters.rows(
            self.url, f"select place from ({support.VERSIONS}) v where seen_until is null"))

    ALL = ["0000:00:01.0", "0000:01:00.0", "CPU 1", "DIMM 1", "DIMM 2"]

    def test_the_same_file_again_only_moves_last_seen(self):
        self.assertEqual(self.ingest(self.observed(0), self.observed(1)), ["new", "unchanged"])
        self.assertEqual(len(list(support.versions_in(self.url))), 5)
        self.assertEqual([row["last_seen"] for row in support.observations_in(self.url)], [START + DAY])

    def test_last_seen_never_moves_back(self):
        self.ingest(self.observed(3), self.observed(1))
        self.assertEqual(support.ask(self.url, "silent", START + 3 * DAY), [])
        self.assertEqual(support.ask(self.url, "silent", START + 4 * DAY)[0]["last_seen"], START + 3 * DAY)

    def test_a_b_a_is_two_changes(self):
        self.assertEqual(self.ingest(self.observed(0), self.observed(1, self.without("devices")), self.observed(2)),
                         ["new", "changed", "changed"])
        ranges = [(row["seen_from"], row["seen_until"]) for row in support.versions_in(self.url) if row["kind"] == "device"]
        self.assertCountEqual(ranges, [(START, START + DAY), (START + 2 * DAY, None)])

    def test_a_late_b_makes_a_b_a_of_what_was_a(self):
        self.ingest(self.observed(0), self.observed(2), self.observed(1, self.without("devices")))
        ranges = [(row["seen_from"], row["seen_until"]) for row in support.versions_in(self.url) if row["kind"] == "device"]
        self.assertCountEqual(ranges, [(START, START + DAY), (START + 2 * DAY, None)])

    def test_a_late_one_leaves_what_is_newer(self):
        self.ingest(self.observed(2), self.observed(1, self.without("memory")))
        self.assertEqual(self.open_places(), self.ALL)

    def test_a_refused_file_removes_nothing(self):
        self.assertEqual(self.ingest(self.observed(0), refused("server", START + DAY, "line 5: empty setting name")),
                         ["new", "refused"])
        self.assertEqual(self.open_places(), self.ALL)

    def test_a_file_that_could_not_be_read_removes_nothing(self):
        self.ingest(self.observed(0), refused("server", START + DAY, "cannot open it", readable=False))
        self.assertEqual(self.open_places(), self.ALL)

    def test_a_server_that_was_only_refused_is_known(self):
        self.ingest(refused("server", START, "line 5: empty setting name"))
        self.assertEqual([row["server"] for row in support.ask(self.url, "silent", START + DAY)], ["server"])

    def test_an_inventory_without_rows_removes_all(self):
        self.ingest(self.observed(0), self.observed(1, {kind: [] for kind in observations.KINDS}))
        self.assertEqual(self.open_places(), [])
        self.assertEqual({row["ended"] for row in support.versions_in(self.url)}, {"removed"})

    def test_another_file_of_the_same_time_is_set_aside(self):
        self.assertEqual(self.ingest(self.observed(0), self.observed(0, self.without("memory"))), ["new", "aside"])
        self.assertEqual(self.open_places(), self.ALL)
        reasons = clusters.rows(self.url, "select reason from fleet.observation where status = 'aside'")
        self.assertTrue(reasons[0]["reason"])

    def test_a_part_that_is_back_is_not_lost(self):
        self.ingest(self.observed(0), self.observed(1, self.without("memory")))
        self.assertEqual(len(support.ask(self.url, "lost", START)), 2)
        self.ingest(self.observed(2))
        self.assertEqual(support.ask(self.url, "lost", START), [])

    def test_a_part_in_another_slot_is_moved(self):
        self.ingest(self.observed(0))
        self.parts["memory"][1]["DevLocator"] = "DIMM 9"
        self.ingest(self.observed(1))
        self.assertEqual([row["ended"] for row in support.versions_in(self.url) if row["place"] == "DIMM 2"], ["moved"])
        self.assertEqual([(row["place"], row["ended"]) for row in support.ask(self.url, "serial_history", "M2")],
                         [("DIMM 2", "moved"), ("DIMM 9", None)])

    def test_placeholders_recognise_no_part(self):
        self.parts["memory"][1]["SerialNo"] = "NO DIMM"
        self.ingest(self.observed(0))
        self.parts["memory"][1]["DevLocator"] = "DIMM 9"
        self.ingest(self.observed(1))
        self.assertEqual([row["ended"] for row in support.versions_in(self.url) if row["place"] == "DIMM 2"], ["removed"])

    def test_records_of_one_place_are_told_apart(self):
        self.parts["memory"][1]["DevLocator"] = "DIMM 1"
        self.ingest(self.observed(0))
        self.assertEqual([(row["ordinal"], row["raw"]) for row in support.versions_in(self.url) if row["place"] == "DIMM 1"],
                         [(i + 1, tuple(sorted((name, value) for name, value in self.parts["memory"][i].items()
                                               if value is not None))) for i in range(2)])

    def test_behind_a_second_bridge_of_one_address_is_told(self):
        second = bridge(0, 1, 0)
        self.parts["bridges"].append(second)
        self.parts["devices"][0].parent = second
        self.ingest(self.observed(0))
        self.assertEqual([row["behind"] for row in support.versions_in(self.url) if row["kind"] == "device"],
                         ["0000:00:01.0~2"])

    def test_another_bridge_before_it_does_not_change_a_device(self):
        self.ingest(self.observed(0))
        self.parts["bridges"].insert(0, bridge(9, 9, 0))
        self.ingest(self.observed(1))
        self.assertEqual([row["ended"] for row in support.versions_in(self.url) if row["kind"] == "device"], [None])

    def test_numbers_of_64_bits_are_kept(self):
        self.parts["processors"][0]["ProcId"] = 2**64 - 1
        self.ingest(self.observed(0))
        self.assertEqual(clusters.psql(self.url, "select processor_id from fleet.processor;"), f"{2**64 - 1}\n")

    def test_hostile_texts_are_kept_to_the_byte(self):
        for text in observations.HOSTILE:
            self.parts["memory"][0].update(DevLocator=text, SerialNo=text, PartNo=text)
            self.ingest({**self.observed(0), "server": text})
            with self.subTest(text=text):
                rows = clusters.rows(self.url, "select raw, part_no from fleet.memory where server = :'x' and raw->>'SlotNo' = '1'",
                                     x=text)
                self.assertEqual([(row["raw"]["DevLocator"], row["part_no"]) for row in rows], [(text, expected.trimmed(text))])
                self.assertIn(text, [row["server"] for row in support.ask(self.url, "part", text)])


class Refusals(support.FleetTest):
    """What is no observation is refused whole, and people are told why."""

    @classmethod
    def setUpClass(cls):
        cls.url = support.new_fleet()
        cls.good = next(observations.observations(1, 1))
        cls.later = loaded(cls.good["server"], {kind: cls.good[kind] for kind in observations.KINDS}, START + 9 * DAY, 1)

    def assert_refused(self, observation, words):
        before = support.contents(self.url)
        with self.assertRaisesRegex(clusters.Failed, words):
            clusters.ingest(self.url, support.lines_of([self.good, observation]))
        self.assertEqual(support.contents(self.url), before)

    def test_another_schema_of_observations(self):
        self.assert_refused({**self.later, "schema": 2}, "schema")

    def test_each_key_is_needed(self):
        for key in self.later:
            with self.subTest(key=key):
                self.assert_refused({name: value for name, value in self.later.items() if name != key}, key)

    def test_each_type_is_checked(self):
        for key in self.later.keys() - {"reason"}:
            with self.subTest(key=key):
                self.assert_refused({**self.later, key: True}, key)

    def test_a_time_that_is_none(self):
        self.assert_refused({**self.later, "observed_at": "yesterday's evening"}, "observed_at|time")

    def test_an_unknown_status(self):
        self.assert_refused({**self.later, "status": "lost"}, "status")

    def test_a_row_that_is_none(self):
        self.assert_refused({**self.later, "memory": [7]}, "memory")

    def test_text_where_a_number_belongs(self):
        wrong = copy.deepcopy(self.later)
        wrong["memory"][0]["MemSize"] = "much"
        self.assert_refused(wrong, "much|MemSize")

    def test_a_transaction_that_does_not_see_what_others_did_meanwhile(self):
        for isolation in ("repeatable read", "serializable"):
            with self.subTest(isolation=isolation), self.assertRaisesRegex(clusters.Failed, "READ COMMITTED"):
                clusters.psql(self.url, clusters.copied(support.lines_of([self.good])) + f"""
                    begin isolation level {isolation}; select fleet.ingest(line) from arriving; commit;""")
        self.assert_empty(self.url, "select server from fleet.server where server = :'x'", x=self.good["server"])

    def test_what_is_no_object(self):
        self.assert_refused([1], "object|observation")


class Installation(support.FleetTest):
    def test_running_it_again_changes_nothing(self):
        url = support.new_fleet()
        clusters.ingest(url, support.lines_of(observations.observations(3, 3)))
        before = support.contents(url)
        clusters.psql(url, support.SCHEMA.read_text())
        self.assertEqual(support.contents(url), before)

    def test_a_newer_version_is_left_alone(self):
        url = support.new_fleet()
        clusters.psql(url, "insert into fleet.version (number) values (1000);")
        with self.assertRaisesRegex(clusters.Failed, "1000"):
            clusters.psql(url, support.SCHEMA.read_text())

    def test_nothing_outside_its_schema_is_touched(self):
        url = support.new_fleet()
        outside = clusters.rows(url, """
            select relname from pg_class where relnamespace = 'public'::regnamespace and relkind in ('r', 'p', 'v', 'm', 'S')
            union all select proname from pg_proc p where pronamespace = 'public'::regnamespace
              and not exists (select from pg_depend d where d.objid = p.oid and deptype = 'e')""")
        self.assertEqual(outside, [])

    def test_it_works_whatever_the_search_path(self):
        url = support.new_fleet()
        clusters.psql(url, "create schema other; create table other.memory (x int); create table other.server (x int);")
        support.set_for_all_sessions(url, search_path="other")
        seen = list(observations.observations(3, 3))
        clusters.ingest(url, support.lines_of(seen))
        self.assert_histories(url, expected.Fleet(seen))

    def test_it_works_however_sessions_read_strings_and_write_times(self):
        url = support.new_fleet()
        support.set_for_all_sessions(url, standard_conforming_strings="off", datestyle="German, DMY", intervalstyle="iso_8601")
        seen = list(observations.observations(8, 4))
        self.assertEqual(clusters.ingest(url, support.lines_of(seen)), expected.Fleet(seen).outcomes)
        clusters.psql(url, "do $$ begin execute format('alter database %I reset all', current_database()); end $$;")
        self.assert_histories(url, expected.Fleet(seen))

    def test_thinning_keeps_the_current_state(self):
        url = support.new_fleet()
        seen = list(observations.observations(10, 6))
        clusters.ingest(url, support.lines_of(seen))
        now = f"select * from ({support.VERSIONS}) v where seen_until is null"
        before = clusters.rows(url, now)
        middle = START + 3 * DAY
        clusters.psql(url, f"call fleet.thin('{middle.isoformat()}');")
        self.assert_same_rows(clusters.rows(url, now), before, "current state")
        self.assert_empty(url, f"select 1 from ({support.VERSIONS}) v where seen_until <= '{middle.isoformat()}'")
        self.assertGreater(len(list(support.versions_in(url))), len(before))
