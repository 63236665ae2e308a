# SPDX-License-Identifier: Apache-2.0

"""Partitions on several machines: the same history, the same answers, or the name of the machine that is away."""

import contextlib
import random
import threading
import time
import urllib.parse

import clusters
import expected
import observations
import support

PARTITIONED = """
    select c.relname, c.relkind, s.srvname
    from pg_class c left join pg_foreign_table f on f.ftrelid = c.oid left join pg_foreign_server s on s.oid = f.ftserver
    where relnamespace = 'fleet'::regnamespace and relispartition and relkind in ('r', 'f') order by 1"""
ROWS_AT = " union all ".join(f"select '{table}' as name, count(*) as rows from fleet.{table}_p{{0:02}}" for table in support.TABLES)


class PlaceTest(support.FleetTest):
    """A fleet whose partitions are placed, on machines 2 and 3 in databases of their own."""

    @classmethod
    def setUpClass(cls):
        cls.url = support.new_fleet()
        cls.others = [support.new_database(1), support.new_database(2)]
        cls.seen = list(observations.observations(support.OPTIONS.servers // 2, support.OPTIONS.observations, seed=3))

    @classmethod
    def run_fleet(cls, *arguments):
        return support.zebdb_fleet(cls.url, *arguments, cwd="/")

    def place(self, *arguments, status=0):
        done = self.run_fleet("place", *arguments)
        self.assertEqual(done.returncode, status, done.stderr.decode())
        return done.stderr.decode()

    def partitions(self):
        """Which partition numbers are here, and which elsewhere; those of all tables together."""
        kinds = {}
        for row in clusters.rows(self.url, PARTITIONED):
            kinds.setdefault(int(row["relname"][-2:]), set()).add((row["relkind"], row["srvname"]))
        self.assertEqual({len(each) for each in kinds.values()}, {1})
        return {number: each.pop()[1] for number, each in kinds.items()}


class PlacedTest(PlaceTest):
    """Half of the observations arrived before the partitions were placed, half afterwards."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        half = len(cls.seen) // 2
        clusters.ingest(cls.url, support.lines_of(cls.seen[:half]))
        cls.before = {number: clusters.rows(cls.url, ROWS_AT.format(number)) for number in range(10)}
        cls.said = [cls.run_fleet("place", *range(5), "--on", cls.others[0]),
                    cls.run_fleet("place", *range(5, 10), "--on", cls.others[1])]
        cls.after = {number: clusters.rows(cls.others[number // 5], ROWS_AT.format(number)) for number in range(10)}
        clusters.ingest(cls.url, support.lines_of(cls.seen[half:]))
        cls.fleet = expected.Fleet(cls.seen)


class Placed(PlacedTest):
    def test_placing_succeeds(self):
        self.assertEqual([(done.returncode, done.stderr) for done in self.said], [(0, b"")] * 2)

    def test_histories_are_those_of_one_machine(self):
        self.assert_histories(self.url, self.fleet)

    def test_answers_are_those_of_one_machine(self):
        self.assert_answers(self.url, expected.Answers(self.fleet), support.questions_about(self.fleet))

    def test_the_same_partition_of_every_table_is_on_the_same_machine(self):
        where = self.partitions()
        self.assertEqual([number for number, machine in where.items() if machine is None], list(range(10, 16)))
        self.assertEqual(len({where[number] for number in range(5)}), 1)
        self.assertEqual(len({where[number] for number in range(5, 10)}), 1)
        self.assertNotEqual(where[0], where[5])

    def test_all_rows_went_along(self):
        self.assertEqual(self.after, self.before)

    def test_partitions_elsewhere_have_their_constraints(self):
        for number, url in ((0, self.others[0]), (5, self.others[1])):
            constraints = clusters.rows(url, f"""
                select conrelid::regclass::text as name from pg_constraint
                where contype = 'x' and conrelid::regclass::text like 'fleet.%_p{number:02}' order by 1""")
            self.assertEqual([row["name"] for row in constraints],
                             sorted(f"fleet.{table}_p{number:02}" for table in support.TABLES[2:]))

    def test_placing_again_changes_nothing(self):
        before, where = support.contents(self.url), self.partitions()
        self.place(*range(5), "--on", self.others[0])
        self.assertEqual((support.contents(self.url), self.partitions()), (before, where))

    def test_everything_once_more_changes_nothing(self):
        before = support.contents(self.url)
        clusters.ingest(self.url, support.lines_of(self.seen))
        self.assertEqual(support.contents(self.url), before)

    def test_a_server_elsewhere_can_be_forgotten(self):
        before = support.contents(self.url)
        names = [f"forgotten {number}" for number in range(8)]
        clusters.ingest(self.url, support.lines_of({**self.seen[0], "server": name} for name in names))
        self.assertNotEqual(support.contents(self.url), before)
        for name in names:
            self.assertEqual(self.run_fleet("forget", name).returncode, 0)
        self.assertEqual(support.contents(self.url), before)


class Away(PlacedTest):
    """The machine of partitions 5 to 9 does not answer."""

    QUESTIONS = (["part", "M393A4K40CB2-CVF"], ["lost", "2020-01-01"], ["lost-capacity", "2020-01-01"], ["mixed-memory"],
                 ["duplicate-serials"], ["serial-history", "NO DIMM"], ["processor-models"], ["silent", "2030-01-01"])

    def test_a_question_fails_with_its_name_and_never_with_a_part_of_the_answer(self):
        with self.machine_away() as name:
            for question in self.QUESTIONS:
                with self.subTest(question=question):
                    done = self.run_fleet("ask", *question, "--format", "json")
                    self.assertEqual((done.returncode, done.stdout), (2, b""))
                    self.assertIn(name, done.stderr.decode())

    def test_what_is_observed_meanwhile_is_whole_or_not_there(self):
        more = list(observations.observations(20, 1, seed=5))
        arrived = []
        with self.machine_away() as name:
            for seen in more:
                try:
                    clusters.ingest(self.url, support.lines_of([{**seen, "server": f"meanwhile {seen['server']}"}]))
                    arrived.append({**seen, "server": f"meanwhile {seen['server']}"})
                except clusters.Failed as error:
                    self.assertIn(name, str(error))
        self.assertTrue(0 < len(arrived) < len(more))
        self.assert_histories(self.url, expected.Fleet(self.seen + arrived))
        for seen in arrived:
            clusters.psql(self.url, "select fleet.forget(:'x')", {"x": seen["server"]})

    @contextlib.contextmanager
    def machine_away(self):
        away = support.machine(2)
        away.stop()
        try:
            yield away.folder.name
        finally:
            away.start()


class Places(PlaceTest):
    """Where partitions can be placed."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        clusters.ingest(cls.url, support.lines_of(cls.seen[:60]))

    def test_back_again(self):
        before = support.contents(self.url)
        self.place(3, "--on", self.others[0])
        self.place(3, "--on", "local")
        self.assertEqual(set(self.partitions().values()), {None})
        self.assertEqual(support.contents(self.url), before)

    def test_what_is_no_partition_is_refused(self):
        for number in ("16", "-1", "x", ""):
            with self.subTest(number=number):
                self.place(number, "--on", self.others[0], status=2)
        self.assertEqual(set(self.partitions().values()), {None})

    def test_a_machine_that_is_not_there_gets_nothing(self):
        before = support.contents(self.url)
        self.assertIn("/nowhere", self.place(0, "--on", "postgresql:///x?host=/nowhere", status=2))
        self.assertEqual(support.contents(self.url), before)

    def by_another_name(self, url):
        folder = urllib.parse.quote(str(support.machine(1).folder), safe="")
        self.assertIn(folder, url)
        return url.replace(folder, f"{folder}%2F.")

    def test_a_machine_by_another_name_is_recognised(self):
        self.place(1, "--on", self.others[0])
        before = support.contents(self.url)
        said = support.zebdb_fleet(self.url, "place", 1, "--on", self.by_another_name(self.others[0]), cwd="/",
                                   variables={"PGOPTIONS": "-c statement_timeout=30s"})
        self.assertEqual(said.returncode, 2)
        self.assertIn("has the identity of", said.stderr.decode())
        self.assertEqual(support.contents(self.url), before)
        self.place(1, "--on", "local")

    def test_what_is_left_on_a_machine_by_another_name_is_not_taken_for_left_over(self):
        self.place(1, "--on", self.others[0])
        self.place(2, "--on", self.by_another_name(self.others[0]))
        before = support.contents(self.url)
        clusters.psql(self.url, "insert into fleet.leftover select 1, machine from fleet.placement where partition = 2;")
        self.place(1, "--on", self.others[0])
        self.assertEqual(support.contents(self.url), before)
        self.place(1, 2, "--on", "local")
        self.assert_empty(self.url, "select partition from fleet.leftover")

    def test_a_machine_is_connected_to_as_its_address_says(self):
        url = f"{support.new_database(1)}&sslmode=disable&application_name=it%27s%20%22us%22&connect_timeout=7"
        self.place(1, "--on", url)
        options = clusters.rows(self.url, "select unnest(srvoptions) as option from pg_foreign_server join fleet.placement "
                                          "on srvname = machine")
        self.assertLessEqual({"sslmode=disable", "application_name=it's \"us\"", "connect_timeout=7"},
                             {row["option"] for row in options})
        self.place(1, "--on", "local")

    def test_a_machine_whose_name_is_too_long_is_refused(self):
        name = "a" * 63  # the longest that a database can have
        clusters.psql(support.machine(1).url(), f"create database {name}")
        said = self.place(1, "--on", support.machine(1).url(name), status=2)
        self.assertIn(f"/{name}", said)
        self.assertEqual(set(self.partitions().values()), {None})

    def test_rows_of_another_fleet_are_not_touched(self):
        other = support.new_database()
        self.assertEqual(support.zebdb_fleet(other, "init", cwd="/").returncode, 0)
        clusters.ingest(other, support.lines_of(self.seen[:60]))
        self.place(1, "--on", self.others[0])
        before = support.contents(self.url)
        done = support.zebdb_fleet(other, "place", "1", "--on", self.others[0], cwd="/")
        self.assertEqual(done.returncode, 2, done.stderr.decode())
        self.assertEqual(support.contents(self.url), before)
        self.place(1, "--on", "local")


class Moving(PlaceTest):
    """Each test leaves the partitions here."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        clusters.ingest(cls.url, support.lines_of(cls.seen))

    def meanwhile(self, action):
        """Does `action` until what stands in the `with` is over; its failures are told there."""
        failures, stop = [], threading.Event()

        def repeat():
            while not stop.is_set():
                try:
                    action()
                except BaseException as error:  # pylint: disable=broad-except
                    failures.append(error)
                    return

        return Meanwhile(threading.Thread(target=repeat), stop, failures)

    def test_answers_stay_the_same(self):
        fleet = expected.Fleet(self.seen)
        answers, questions, asked = expected.Answers(fleet), support.questions_about(fleet), [0]
        wanted = {str(question): getattr(answers, question[0])(*question[1:]) for question in questions}

        def ask():
            question = questions[asked[0] % len(questions)]
            told = support.ask(self.url, *question)
            columns = support.ANSWERED[question[0]]
            self.assert_same_rows([{column: row[column] for column in columns} for row in told], wanted[str(question)], question)
            asked[0] += 1

        with self.meanwhile(ask):
            self.place(*range(3), "--on", self.others[0])
            self.place(0, "--on", self.others[1])
            self.place(*range(3), "--on", "local")
        self.assertGreater(asked[0], 10)
        self.assert_histories(self.url, fleet)

    def test_what_is_observed_meanwhile_is_not_lost(self):
        more = [{**seen, "server": f"more {seen['server']}"} for seen in observations.observations(100, 3, seed=4)]
        arrived = []

        def ingest():
            if len(arrived) < len(more):
                clusters.ingest(self.url, support.lines_of([more[len(arrived)]]))
                arrived.append(more[len(arrived)])

        with self.meanwhile(ingest):
            self.place(*range(4), "--on", self.others[0])
        self.assertGreater(len(arrived), 2)
        self.assert_histories(self.url, expected.Fleet(self.seen + arrived))
        self.place(*range(4), "--on", "local")

    def test_what_is_being_committed_goes_along_whatever_the_kind_of_transactions(self):
        url = support.new_fleet()
        support.set_for_all_sessions(url, default_transaction_isolation="'repeatable read'")
        number = clusters.psql(url, "select n from generate_series(0, 15) n where satisfies_hash_partition("
                                    "'fleet.server'::regclass, 16, n, 'server'::text);").strip()
        script = clusters.copied(support.lines_of([{**self.seen[0], "server": "server"}])) + """
            begin isolation level read committed; select fleet.ingest(line) from arriving;
            select pg_sleep(2); commit;"""
        writer = threading.Thread(target=clusters.psql, args=(url, script))
        writer.start()
        while not clusters.rows(url, "select from pg_stat_activity where query ~ 'pg_sleep' and datname = current_database() "
                                     "and pid <> pg_backend_pid()"):
            time.sleep(0.02)
        done = support.zebdb_fleet(url, "place", number, "--on", self.others[0], cwd="/")
        writer.join()
        self.assertEqual(done.returncode, 0, done.stderr.decode())
        self.assertEqual(clusters.rows(url, "select server from fleet.server"), [{"server": "server"}])

    def test_killed_and_run_again_it_ends_with_the_same_tables(self):
        before = support.contents(self.url)
        chance = random.Random(2)
        begin = time.monotonic()
        self.place(0, 1, "--on", self.others[0])
        takes = time.monotonic() - begin
        for number in range(support.OPTIONS.kills // 3 * 3 + 1):
            to = ("local", self.others[1], self.others[0])[number % 3]
            process = support.start_zebdb_fleet(self.url, "place", 0, 1, "--on", to, cwd="/")
            time.sleep(chance.uniform(0, takes))
            support.kill_session(process)
            process.communicate()
            self.assertEqual(support.contents(self.url), before)
            self.place(0, 1, "--on", to)
            self.assertEqual(support.contents(self.url), before)


class Meanwhile:
    def __init__(self, thread, stop, failures):
        self.thread, self.stop, self.failures = thread, stop, failures

    def __enter__(self):
        self.thread.start()

    def __exit__(self, *_):
        self.stop.set()
        self.thread.join()
        if self.failures:
            raise self.failures[0]
