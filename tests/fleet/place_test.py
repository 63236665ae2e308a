# SPDX-License-Identifier: Apache-2.0

"""Partitions on several machines: the same history, the same answers, or the name of the machine that is away."""

import pathlib
import random
import signal
import tempfile
import threading
import time

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

    observed = 0.5  # of the observations before anything is placed

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="fleet.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.url = support.new_fleet()
        self.others = [support.new_database(machine) for machine in (1, 2)]
        self.seen = list(observations.observations(support.OPTIONS.servers // 2, support.OPTIONS.observations, seed=3))
        clusters.ingest(self.url, support.lines_of(self.early()))

    def early(self):
        return self.seen[:int(len(self.seen) * self.observed)]

    def late(self):
        return self.seen[len(self.early()):]

    def place(self, *arguments, status=0):
        done = support.zebdb_fleet(self.url, "place", *arguments, cwd=self.folder)
        self.assertEqual(done.returncode, status, done.stderr.decode())
        return done.stderr.decode()

    def spread(self):
        self.place(*range(5), "--on", self.others[0])
        self.place(*range(5, 10), "--on", self.others[1])

    def partitions(self):
        """Which partition numbers are here, and which elsewhere; those of all tables together."""
        kinds = {}
        for row in clusters.rows(self.url, PARTITIONED):
            kinds.setdefault(int(row["relname"][-2:]), set()).add((row["relkind"], row["srvname"]))
        self.assertEqual({len(each) for each in kinds.values()}, {1})
        return {number: each.pop()[1] for number, each in kinds.items()}


class Placed(PlaceTest):
    def test_histories_and_answers_are_those_of_one_machine(self):
        self.spread()
        clusters.ingest(self.url, support.lines_of(self.late()))
        fleet = expected.Fleet(self.seen)
        self.assert_histories(self.url, fleet)
        self.assert_answers(self.url, expected.Answers(fleet), support.questions_about(fleet))

    def test_the_same_partition_of_every_table_is_on_the_same_machine(self):
        self.spread()
        where = self.partitions()
        self.assertEqual([number for number, machine in where.items() if machine is None], list(range(10, 16)))
        self.assertEqual(len({where[number] for number in range(5)}), 1)
        self.assertEqual(len({where[number] for number in range(5, 10)}), 1)
        self.assertNotEqual(where[0], where[5])

    def test_rows_are_on_their_machine_alone(self):
        before = {number: clusters.rows(self.url, ROWS_AT.format(number)) for number in range(10)}
        self.spread()
        for number in range(10):
            self.assertEqual(clusters.rows(self.others[number // 5], ROWS_AT.format(number)), before[number])

    def test_partitions_elsewhere_have_their_constraints(self):
        self.spread()
        for number, url in ((0, self.others[0]), (5, self.others[1])):
            constraints = clusters.rows(url, f"""
                select conrelid::regclass::text as name from pg_constraint
                where contype = 'x' and conrelid::regclass::text like 'fleet.%_p{number:02}' order by 1""")
            self.assertEqual([row["name"] for row in constraints],
                             sorted(f"fleet.{table}_p{number:02}" for table in support.TABLES[2:]))

    def test_placing_again_changes_nothing(self):
        self.spread()
        before, where = support.contents(self.url), self.partitions()
        self.spread()
        self.assertEqual((support.contents(self.url), self.partitions()), (before, where))

    def test_back_again(self):
        before = support.contents(self.url)
        self.place(3, "--on", self.others[0])
        self.place(3, "--on", "local")
        self.assertEqual(set(self.partitions().values()), {None})
        self.assertEqual(support.contents(self.url), before)

    def test_everything_once_more_changes_nothing(self):
        self.spread()
        before = support.contents(self.url)
        clusters.ingest(self.url, support.lines_of(self.early()))
        self.assertEqual(support.contents(self.url), before)

    def test_forget_reaches_other_machines(self):
        self.place(*range(16), "--on", self.others[0])
        name = self.seen[0]["server"]
        done = support.zebdb_fleet(self.url, "forget", name, cwd=self.folder)
        self.assertEqual(done.returncode, 0, done.stderr)
        for table in support.TABLES:
            self.assert_empty(self.url, f"select server from fleet.{table} where server = :'x'", x=name)

    def test_what_is_no_partition_is_refused(self):
        for number in ("16", "-1", "x", ""):
            with self.subTest(number=number):
                self.place(number, "--on", self.others[0], status=2)
        self.assertEqual(set(self.partitions().values()), {None})

    def test_a_machine_that_is_not_there_gets_nothing(self):
        before = support.contents(self.url)
        self.assertIn("/nowhere", self.place(0, "--on", "postgresql:///x?host=/nowhere", status=2))
        self.assertEqual(support.contents(self.url), before)


class Away(PlaceTest):
    QUESTIONS = (["part", "M393A4K40CB2-CVF"], ["lost", "2020-01-01"], ["lost-capacity", "2020-01-01"], ["mixed-memory"],
                 ["duplicate-serials"], ["serial-history", "NO DIMM"], ["processor-models"], ["silent", "2030-01-01"])

    def setUp(self):
        super().setUp()
        self.spread()
        self.away = support.machines()[2]
        self.away.stop()

    def tearDown(self):
        if self.away.server.poll() is not None:
            self.away.start()

    def ask(self, *question):
        return support.zebdb_fleet(self.url, "ask", *question, "--format", "json", cwd=self.folder)

    def test_a_question_fails_with_its_name_and_never_with_a_part_of_the_answer(self):
        for question in self.QUESTIONS:
            with self.subTest(question=question):
                done = self.ask(*question)
                self.assertEqual((done.returncode, done.stdout), (2, b""))
                self.assertIn(self.away.folder.name, done.stderr.decode())

    def test_what_is_observed_meanwhile_is_whole_or_not_there(self):
        arrived = []
        for seen in self.late()[:60]:
            try:
                clusters.ingest(self.url, support.lines_of([seen]))
                arrived.append(seen)
            except clusters.Failed as error:
                self.assertIn(self.away.folder.name, str(error))
        self.assertGreater(len(arrived), 0)
        self.assertLess(len(arrived), 60)
        self.away.start()
        self.assert_histories(self.url, expected.Fleet(self.early() + arrived))

    def test_back_it_answers_again(self):
        self.ask("mixed-memory")
        self.away.start()
        fleet = expected.Fleet(self.early())
        self.assert_answers(self.url, expected.Answers(fleet), support.questions_about(fleet))


class Moving(PlaceTest):
    observed = 1

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
            self.place(*range(4), "--on", self.others[0])
            self.place(*range(2), "--on", self.others[1])
            self.place(*range(4), "--on", "local")
        self.assertGreater(asked[0], 10)
        self.assert_histories(self.url, fleet)

    def test_what_is_observed_meanwhile_is_not_lost(self):
        more = list(observations.observations(100, 3, seed=4))
        arrived = []

        def ingest():
            if len(arrived) < len(more):
                clusters.ingest(self.url, support.lines_of([more[len(arrived)]]))
                arrived.append(more[len(arrived)])

        with self.meanwhile(ingest):
            self.place(*range(6), "--on", self.others[0])
        self.assertGreater(len(arrived), 5)
        self.assert_histories(self.url, expected.Fleet(self.seen + arrived))

    def test_killed_and_run_again_it_ends_with_the_same_tables(self):
        before = support.contents(self.url)
        chance = random.Random(2)
        begin = time.monotonic()
        self.place(0, 1, "--on", self.others[0])
        takes = time.monotonic() - begin
        for number in range(support.OPTIONS.kills // 2):
            to = ("local", self.others[1], self.others[0])[number % 3]
            process = support.start_zebdb_fleet(self.url, "place", 0, 1, "--on", to, cwd=self.folder)
            time.sleep(chance.uniform(0, takes))
            support.kill_group(process, signal.SIGKILL)
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
