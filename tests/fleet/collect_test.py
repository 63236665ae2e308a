# SPDX-License-Identifier: Apache-2.0

"""zebdb-fleet collects files, whatever they are called, whatever is in them, and however it ends."""

import csv
import io
import json
import os
import pathlib
import random
import re
import shutil
import signal
import tempfile
import time
from xml.sax.saxutils import escape

import clusters
import expected
import observations
import support
from observations import DAY, START

SAMPLE = (support.SOURCE / "samples" / "two-socket-server.xml").read_text()
REFUSED = (support.SOURCE / "samples" / "errors" / "setting-without-name.xml").read_text()


def server_file(folder, name, day=0, replace=(), text=SAMPLE):
    """A file of that server, as the folder got it on that day."""
    for old, new in replace:
        text = text.replace(old, escape(new))
    path = folder / f"{name}.xml"
    path.write_text(text)
    seen = (START + day * DAY).timestamp()
    os.utime(path, (seen, seen))
    return path


def with_serials_of(name):
    return [("0K2S7A10", f"{name}P"), ("03A000", f"{name}M")]


class ZebdbFleetTest(support.FleetTest):
    @classmethod
    def setUpClass(cls):
        cls.url = support.new_fleet()

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="fleet files.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "files"
        self.folder.mkdir()
        self.temporary = pathlib.Path(folder.name) / "temporary"
        self.temporary.mkdir()
        support.empty(self.url)

    def start_fleet(self, *arguments):
        return support.start_zebdb_fleet(self.url, *arguments, cwd=self.folder, variables={"TMPDIR": str(self.temporary)})

    def run_fleet(self, *arguments, status=0, url=None, **options):
        done = support.zebdb_fleet(url or self.url, *arguments, cwd=self.folder, variables={"TMPDIR": str(self.temporary)},
                                   **options)
        self.assertEqual(done.returncode, status, done.stderr.decode())
        self.assertEqual(os.listdir(self.temporary), [])
        return done

    def ask(self, *arguments):
        return json.loads(self.run_fleet("ask", *arguments, "--format", "json").stdout)

    def servers(self):
        return [row["server"] for row in clusters.rows(self.url, "select server from fleet.server order by server collate \"C\"")]


class Collect(ZebdbFleetTest):
    def test_a_folder_of_files(self):
        for number in range(3):
            server_file(self.folder, f"server{number}", replace=with_serials_of(f"S{number}"))
        said = self.run_fleet("collect", self.folder).stdout.decode()
        self.assertEqual(self.servers(), ["server0", "server1", "server2"])
        self.assertRegex(said, r"3\D+new|new\D+3")

    def test_it_is_what_export_tells(self):
        for number in range(3):
            server_file(self.folder, f"server{number}", day=number, replace=with_serials_of(f"S{number}"))
        self.run_fleet("collect", self.folder)
        told = support.run_command("export", self.folder).stdout.decode()
        self.assert_histories(self.url, expected.Fleet(json.loads(line) for line in told.splitlines()))

    def test_days_of_one_server_in_folders(self):
        days = []
        for day in (1, 0, 2):
            days.append(self.folder / f"day{day}")
            days[-1].mkdir()
            server_file(days[-1], "server", day, [("Gold 6248", f"Gold {day}")])
        self.run_fleet("collect", *days)
        models = clusters.rows(self.url, "select model, lower(valid) as t from fleet.processor where place = 'CPU 1' order by 2")
        self.assertEqual([re.search(r"Gold (\d)", row["model"])[1] for row in models], ["0", "1", "2"])

    def test_again_it_says_unchanged(self):
        server_file(self.folder, "server")
        self.run_fleet("collect", self.folder)
        before = support.contents(self.url)
        self.assertRegex(self.run_fleet("collect", self.folder).stdout.decode(), r"1\D+unchanged|unchanged\D+1")
        self.assertEqual(support.contents(self.url), before)

    def test_a_refused_file_is_named_and_makes_the_status_1(self):
        server_file(self.folder, "good")
        server_file(self.folder, "bad", text=REFUSED)
        said = self.run_fleet("collect", self.folder, status=1).stderr.decode()
        self.assertIn("bad.xml", said)
        self.assertIn("empty setting name", said)
        self.assertEqual(self.servers(), ["bad", "good"])

    def test_a_refused_file_removes_no_part(self):
        server_file(self.folder, "server")
        self.run_fleet("collect", self.folder)
        server_file(self.folder, "server", day=1, text=REFUSED)
        self.run_fleet("collect", self.folder, status=1)
        self.assertEqual(self.ask("lost", "2020-01-01"), [])

    def test_a_folder_stands_for_the_files_that_export_takes_from_it(self):
        server_file(self.folder, "file")
        server_file(self.folder, ".hidden")
        (self.folder / "dangling.xml").symlink_to("nowhere")
        (self.folder / "loop.xml").symlink_to("loop.xml")
        (self.folder / "link.xml").symlink_to("file.xml")
        (self.folder / "folder.xml").mkdir()
        os.mkfifo(self.folder / "pipe.xml")
        self.run_fleet("collect", self.folder, status=1)
        told = support.run_command("export", self.folder).stdout.decode()
        self.assertEqual(self.servers(), [json.loads(line)["server"] for line in told.splitlines()])
        self.assertEqual(self.servers(), ["dangling", "file", "link", "loop"])

    def test_a_file_that_is_not_there_is_named(self):
        said = self.run_fleet("collect", self.folder / "no such.xml", status=1).stderr.decode()
        self.assertIn("no such.xml", said)

    def test_standard_input(self):
        self.run_fleet("collect", "-", "--server", "from a pipe", "--at", "2026-01-01T00:00:00Z", input=SAMPLE.encode())
        self.assertEqual(self.servers(), ["from a pipe"])

    def test_standard_input_without_a_name_is_refused(self):
        self.assertIn("--server", self.run_fleet("collect", "-", status=2, input=SAMPLE.encode()).stderr.decode())

    def test_several_jobs_give_the_same_tables(self):
        for number in range(12):
            server_file(self.folder, f"server{number}", day=number % 3, replace=with_serials_of(f"S{number}"))
        self.run_fleet("collect", self.folder, "--jobs", "1")
        one = support.contents(self.url)
        support.empty(self.url)
        self.run_fleet("collect", self.folder, "--jobs", "3")
        self.assertEqual(support.contents(self.url), one)

    def test_hostile_file_names(self):
        names = sorted(text for text in [
            "'; drop table fleet.memory; --", "$(touch pwned)", "`touch pwned`", "a b", "-rf", "--server", "line\nbreak", "tab\t",
            "*", "?", "\\", "\\.", "\"quoted\"", ":x", "{1..3}", "~", "#", "&", "|", ";", "Größe \U0001f4be", "\x01\x02", "%s%n",
            "null", "a=b", "\u202e"] if "/" not in text)
        folder = self.folder / "in $(touch pwned)"
        folder.mkdir()
        for name in names:
            server_file(folder, name)
        self.run_fleet("collect", folder)
        self.assertEqual(self.servers(), sorted(names, key=str.encode))
        self.assertEqual(os.listdir(self.folder), [folder.name])

    def test_a_file_name_that_is_no_utf8(self):
        path = os.path.join(os.fsencode(self.folder), b"\xff\xfe.xml")
        with open(path, "w", encoding="utf-8") as file:
            file.write(SAMPLE)
        done = support.zebdb_fleet(self.url, "collect", self.folder, cwd=self.folder)
        self.assertIn(done.returncode, (0, 1), done.stderr)
        self.assertEqual(len(self.servers()), 1)

    def test_hostile_contents(self):
        for number, text in enumerate(observations.HOSTILE):
            text = "".join(letter for letter in text if letter == "\n" or letter >= " ")
            server_file(self.folder, f"server{number}", replace=[("CPU1_DIMM_A1", text), ("03A00000", text)])
        files = {path.name: path.read_bytes() for path in self.folder.iterdir()}
        self.run_fleet("collect", self.folder)
        told = support.run_command("export", self.folder).stdout.decode()
        self.assert_histories(self.url, expected.Fleet(json.loads(line) for line in told.splitlines()))
        self.assertEqual({path.name: path.read_bytes() for path in self.folder.iterdir()}, files)

    def test_one_that_cannot_be_kept_is_named_and_the_others_are_taken(self):
        server_file(self.folder, "good")
        server_file(self.folder, "\x1b[31mbad", text=SAMPLE.replace("03A00000", "".join(
            random.Random(1).choices("0123456789ABCDEF", k=9000))))
        said = self.run_fleet("collect", self.folder, status=2).stderr.decode()
        self.assertIn(r'the observation of "\u001b[31mbad" at 2026-01-01T06:00:00Z cannot be kept', said)
        self.assertNotIn("\x1b", said)
        self.assertEqual(self.servers(), ["good"])

    def test_a_time_that_the_database_does_not_know_is_named(self):
        path = server_file(self.folder, "server")
        said = self.run_fleet("collect", path, "--at", "0000-06-01T00:00:00Z", status=2).stderr.decode()
        self.assertIn('the observation of "server" at 0000-06-01T00:00:00Z cannot be kept', said)

    def test_a_table_of_that_name_elsewhere_is_not_taken_for_our_own(self):
        url = support.new_fleet()
        clusters.psql(url, "create table public.line (number serial, observation json)")
        support.set_for_all_sessions(url, search_path="public, pg_temp")
        server_file(self.folder, "server")
        self.run_fleet("collect", self.folder, url=url)
        self.assertEqual(clusters.rows(url, "select server from fleet.server"), [{"server": "server"}])
        self.assert_empty(url, "select number from public.line")

    def test_a_database_that_is_away_makes_the_status_2(self):
        server_file(self.folder, "server")
        said = self.run_fleet("collect", self.folder, status=2, url="postgresql:///none?host=/nowhere").stderr.decode()
        self.assertIn("/nowhere", said)

    def test_a_database_without_the_schema_makes_the_status_2(self):
        server_file(self.folder, "server")
        self.assertIn("fleet", self.run_fleet("collect", self.folder, status=2, url=support.new_database()).stderr.decode())

    def test_a_database_that_goes_away_makes_the_status_2(self):
        for number in range(40):
            server_file(self.folder, f"server{number}", replace=with_serials_of(f"S{number}"))
        collect = self.start_fleet("collect", self.folder)
        name = clusters.rows(self.url, "select current_database() as name")[0]["name"]
        ended = 0
        while not ended and collect.poll() is None:
            ended = clusters.rows(support.machine(0).url(), """
                select count(pg_terminate_backend(pid)) as n from pg_stat_activity where datname = :'x' and state = 'active'
                """, x=name)[0]["n"]
        said = collect.communicate()[1].decode()
        self.assertGreater(ended, 0)
        self.assertEqual(collect.returncode, 2, said)


class Ask(ZebdbFleetTest):
    def setUp(self):
        super().setUp()
        server_file(self.folder, "a server", replace=with_serials_of("A"))
        server_file(self.folder, "b'server", day=2, replace=with_serials_of("B"))
        self.run_fleet("collect", self.folder)

    def test_answers_are_those_of_the_schema(self):
        questions = {"part": ["M393A4K40CB2-CVF"], "lost": ["2020-01-01"], "lost_capacity": ["2020-01-01T00:00:00Z"],
                     "mixed_memory": [], "duplicate_serials": [], "serial_history": ["AM00"], "processor_models": [],
                     "silent": ["2026-01-02"]}
        self.assertEqual(set(questions), set(support.ANSWERED))
        for question, arguments in questions.items():
            with self.subTest(question=question):
                told = list(map(support.with_times, self.ask(question.replace("_", "-"), *arguments)))
                self.assert_same_rows(told, support.ask(self.url, question, *arguments), question)

    def test_server_and_place_are_told(self):
        answer = self.ask("part", "M393A4K40CB2-CVF")
        self.assertIn(("a server", "CPU1_DIMM_A1"), {(row["server"], row["place"]) for row in answer})

    def test_nothing_found_is_an_empty_list(self):
        self.assertEqual(self.run_fleet("ask", "part", "no such", "--format", "json").stdout.strip(), b"[]")

    def test_as_csv(self):
        told = self.run_fleet("ask", "silent", "2026-01-02", "--format", "csv").stdout.decode()
        self.assertEqual([row["server"] for row in csv.DictReader(io.StringIO(told))], ["a server"])

    def test_times_are_written_alike_whatever_the_session_has(self):
        variables = {"PGDATESTYLE": "German", "PGTZ": "Asia/Tokyo"}
        done = support.zebdb_fleet(self.url, "ask", "silent", "2026-01-02", "--format", "csv", cwd=self.folder, variables=variables)
        self.assertEqual(done.stdout.decode().splitlines()[1:], ["a server,2026-01-01 06:00:00+00"])

    def test_as_a_table(self):
        told = self.run_fleet("ask", "silent", "2030-01-01").stdout.decode()
        self.assertRegex(told, "(?s)server.*last.seen.*a server.*b'server")

    def test_hostile_arguments(self):
        for text in observations.HOSTILE:
            with self.subTest(text=text):
                self.assertEqual(self.run_fleet("ask", "part", "--format", "json", "--", text).stdout.strip(), b"[]")

    def test_a_time_of_another_zone(self):
        self.assertEqual([row["server"] for row in self.ask("silent", "2026-01-01T08:00:01+02:00")], ["a server"])
        self.assertEqual(self.ask("silent", "2026-01-01T08:00:00+02:00"), [])

    def test_what_is_no_time_is_refused(self):
        self.assertIn("soon", self.run_fleet("ask", "lost", "soon", status=2).stderr.decode())

    def test_an_unknown_question_is_refused(self):
        self.assertIn("whereabouts", self.run_fleet("ask", "whereabouts", status=2).stderr.decode())

    def test_an_argument_too_few_or_too_many_is_refused(self):
        self.run_fleet("ask", "lost", status=2)
        self.run_fleet("ask", "mixed-memory", "x", status=2)

    def test_an_unknown_format_is_refused(self):
        self.assertIn("xml", self.run_fleet("ask", "mixed-memory", "--format", "xml", status=2).stderr.decode())

    def test_a_forgotten_server_is_in_no_table(self):
        self.run_fleet("forget", "b'server")
        for table in support.TABLES:
            self.assertEqual({row["server"] for row in clusters.rows(self.url, f"select server from fleet.{table}")}, {"a server"})

    def test_forgetting_an_unknown_server_forgets_nothing(self):
        before = support.contents(self.url)
        done = support.zebdb_fleet(self.url, "forget", "%", cwd=self.folder)
        self.assertEqual(support.contents(self.url), before)
        self.assertIn("%", done.stderr.decode())


class Init(ZebdbFleetTest):
    def setUp(self):
        super().setUp()
        self.url = support.new_database()

    def test_makes_the_schema_once_and_again(self):
        self.run_fleet("init")
        self.run_fleet("init")
        self.assertEqual(self.ask("mixed-memory"), [])

    def test_the_environment_may_name_the_database(self):
        machine, name = support.machine(0), clusters.rows(self.url, "select current_database() as name")[0]["name"]
        variables = {"PGHOST": str(machine.folder), "PGUSER": clusters.USER, "PGDATABASE": name}
        done = support.zebdb_fleet(None, "init", cwd=self.folder, variables=variables)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.ask("mixed-memory"), [])


class Surroundings(ZebdbFleetTest):
    """Of the process: what it is given and what becomes of what it tells."""

    def run_by_shell(self, script):
        """With the command as its first argument; what it says goes to a file, of which nobody waits for the end."""
        said = self.folder / "said"
        with open(said, "wb") as file:
            process = support.start_zebdb_fleet(self.url, cwd=self.folder, shell=script, stderr=file)
            process.communicate()
        return process.returncode, said.read_text()

    def test_all_is_said_when_it_ends(self):
        status, said = self.run_by_shell('"$@" ask lost soon')
        self.assertEqual(status, 2)
        self.assertIn("soon", said)

    def test_no_standard_input_is_needed(self):
        server_file(self.folder, "server")
        self.assertEqual(self.run_by_shell('"$@" collect . <&-'), (0, ""))
        self.assertEqual(self.servers(), ["server"])

    def test_a_summary_that_cannot_be_written_makes_the_status_2(self):
        server_file(self.folder, "server")
        status, said = self.run_by_shell('"$@" collect . >/dev/full')
        self.assertEqual(status, 2)
        self.assertIn("No space left", said)

    def test_what_ends_it_is_seen_by_who_started_it(self):
        for number in range(20):
            server_file(self.folder, f"server{number}")
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                collect = self.start_fleet("collect", self.folder)
                while collect.poll() is None and "psql" not in support.running_in_session(collect.pid).values():
                    time.sleep(0.01)
                collect.send_signal(number)
                collect.communicate()
                self.assertEqual(collect.returncode, -number)
                self.assertEqual(support.left_over(collect), [])


class Killed(ZebdbFleetTest):
    """A collection that is killed at any moment and run again ends with the same tables."""

    def test_run_again_it_ends_with_the_same_tables(self):
        days = []
        for day in range(3):
            days.append(self.folder / f"day{day}")
            days[-1].mkdir()
            for number in range(15):
                changes = [("Gold 6248", f"Gold {day}")] if (number + day) % 3 else []
                server_file(days[-1], f"server{number}", day, with_serials_of(f"S{number}") + changes)
        server_file(days[1], "server3", 1, text=REFUSED)
        begin = time.monotonic()
        self.run_fleet("collect", *days, status=1)
        takes = time.monotonic() - begin
        whole = support.contents(self.url)
        chance = random.Random(1)
        interrupted = 0
        for number in range(support.OPTIONS.kills):
            support.empty(self.url)
            collect = self.start_fleet("collect", *days)
            time.sleep(chance.uniform(0, takes))
            interrupted += collect.poll() is None
            self.end(collect, politely=number % 2 == 0)
            self.run_fleet("collect", *days, status=1)
            self.assertEqual(support.contents(self.url), whole)
        self.assertGreater(interrupted, support.OPTIONS.kills // 4)

    def end(self, collect, politely):
        """What is told to end leaves nothing behind; what is killed can leave its temporary files."""
        if politely:
            collect.terminate()
        else:
            support.kill_session(collect)
        collect.communicate()
        self.assertEqual(support.left_over(collect), [])
        if not politely:
            shutil.rmtree(self.temporary)
            self.temporary.mkdir()
        self.assertEqual(os.listdir(self.temporary), [])
