# SPDX-License-Identifier: Apache-2.0

"""What the tests of the fleet share: the machines, databases of their own, and comparing these with what is expected."""

import argparse
import collections
import contextlib
import itertools
import os
import pathlib
import signal
import subprocess
import time
import unittest

import clusters
import expected
import observations

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SCHEMA = SOURCE / "fleet" / "schema.sql"
TABLES = ("server", "observation", "processor", "memory", "bridge", "device")
OPTIONS = argparse.Namespace(servers=30, observations=8, kills=6, pairs=12)

_open = contextlib.ExitStack()
_machines = []
_names = (f"test{number}" for number in itertools.count(1))


def machine(number):
    """One of three, started when it is needed first, for all tests. The first one has a fleet to be copied."""
    if not _machines:
        _machines.extend(_open.enter_context(clusters.Machines(3, clusters.FOR_TESTS)))
        clusters.psql(machine(0).url(), "create database empty_fleet")
        clusters.psql(machine(0).url("empty_fleet"), SCHEMA.read_text())
    _machines[number].start_first()
    return _machines[number]


def stop_machines():
    _open.close()
    _machines.clear()


def new_database(number=0, template="template1"):
    """The URL of a database that nobody else uses."""
    name = next(_names)
    clusters.psql(machine(number).url(), f"create database {name} template {template}")
    return machine(number).url(name)


def new_fleet():
    """A database with the schema and no server in it."""
    return new_database(template="empty_fleet")


def set_for_all_sessions(url, **settings):
    """What a database may have been given for each session that begins."""
    for name, value in settings.items():
        clusters.psql(url, "select format('alter database %I set %I = %s', current_database(), :'name', :'value') \\gexec",
                      {"name": name, "value": value})


def empty(url):
    """A fleet without its servers, which is faster than a new one."""
    clusters.psql(url, "".join(f"delete from fleet.{table};" for table in TABLES))


def run_command(*arguments):
    return subprocess.run([OPTIONS.command, *map(str, arguments)], capture_output=True, check=False)


def start_zebdb_fleet(url, *arguments, cwd, variables=None, **options):
    """In a session of its own, with the zebdb-cds of the build; by a script of the shell where there is one."""
    environment = {**clusters.without_pg_variables(), **(variables or {}),
                   "PATH": f"{OPTIONS.command.parent}:{os.environ['PATH']}"}
    command = ["env", "--default-signal",  # which we may have been told to ignore
               str(SOURCE / "fleet" / "zebdb-fleet"), *(["--url", url] if url else []), *map(str, arguments)]
    if "shell" in options:
        command = ["sh", "-c", options["shell"], "sh", *command]
    return subprocess.Popen(command, cwd=cwd, env=environment, stdout=subprocess.PIPE,
                            stderr=options.get("stderr", subprocess.PIPE), start_new_session=True,
                            stdin=options.get("stdin", subprocess.DEVNULL))


def zebdb_fleet(url, *arguments, cwd, variables=None, **options):
    given = options.get("input")
    process = start_zebdb_fleet(url, *arguments, cwd=cwd, variables=variables,
                                stdin=subprocess.DEVNULL if given is None else subprocess.PIPE)
    out, err = process.communicate(given)
    return subprocess.CompletedProcess(process.args, process.returncode, out, err)


def kill_session(process):
    for number in running_in_session(process.pid):
        with contextlib.suppress(ProcessLookupError):
            os.kill(number, signal.SIGKILL)


def left_over(process):
    """What still runs of its session, after some time in which what was told to end may do so."""
    deadline = time.monotonic() + 10
    while running := running_in_session(process.pid):
        if time.monotonic() > deadline:
            kill_session(process)
            break
        time.sleep(0.05)
    return list(running.values())


def running_in_session(session):
    """The commands by their numbers."""
    running = {}
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        with contextlib.suppress(OSError):
            name, _, numbers = stat.read_text().partition("(")[2].rpartition(") ")
            state, _, _, of_session, *_ = numbers.split()
            if int(of_session) == session and state != "Z":
                running[int(stat.parent.name)] = name
    return running


def lines_of(seen):
    return [observations.line_of(observation) for observation in seen]


def time_sql(time):
    return time.isoformat() if time else ""


def comparable(rows):
    """Rows without their order, of which none is lost where two are equal."""
    return collections.Counter(tuple(sorted((name, str(value)) for name, value in row.items())) for row in rows)


def contents(url):
    """How many rows each table has and the digest of them all."""
    digests = " union all ".join(
        f"select '{table}' as name, count(*) as rows, md5(coalesce(string_agg(t::text, E'\n' order by t::text collate \"C\"), ''))"
        f" as digest from fleet.{table} t" for table in TABLES)
    return {row["name"]: (row["rows"], row["digest"]) for row in clusters.rows(url, digests)}


class FleetTest(unittest.TestCase):
    maxDiff = 2000

    def assert_same_rows(self, actual, wanted, what):
        actual, wanted = comparable(actual), comparable(wanted)
        if actual != wanted:
            self.fail(f"{what}: not there {list((wanted - actual).elements())[:3]}, "
                      f"unexpected {list((actual - wanted).elements())[:3]}")

    def assert_empty(self, url, query, **variables):
        self.assertEqual(clusters.rows(url, query + " limit 3", **variables), [])

    def assert_histories(self, url, fleet):
        """The versions of all parts, the runs of all files and what was set aside are exactly the expected ones."""
        self.assert_same_rows(versions_in(url), map(version_row, fleet.versions()), "versions of parts")
        self.assert_same_rows(observations_in(url), observation_rows(fleet), "observations")
        self.assert_same_rows(
            map(with_times, clusters.rows(url, "select server, first_seen, last_seen from fleet.server")),
            [{"server": history.server, "first_seen": history.first_seen, "last_seen": history.last_seen}
             for history in fleet.histories.values()], "servers")

    def assert_answers(self, url, answers, questions):
        for name, *arguments in questions:
            with self.subTest(question=name, arguments=[str(argument) for argument in arguments]):
                wanted = getattr(answers, name)(*arguments)
                actual = ask(url, name, *arguments)
                columns = ANSWERED[name]
                self.assert_same_rows([{column: row[column] for column in columns} for row in actual], wanted, name)


VERSIONS = " union all ".join(
    f"select server, '{table}' as kind, place, ordinal, lower(valid) as seen_from, upper(valid) as seen_until, ended, behind,"
    f" raw, {'lost_mib' if table == 'memory' else 'null::bigint as lost_mib'} from fleet.{table}"
    for table in ("processor", "memory", "bridge", "device"))

ANSWERED = {
    "part": ("server", "kind", "place", "ordinal"),
    "lost": ("server", "kind", "place", "ordinal", "lost_at", "serial_no", "part_no"),
    "lost_capacity": ("server", "place", "ordinal", "before_mib", "now_mib", "server_before_mib", "server_now_mib"),
    "mixed_memory": ("server", "modules", "part_numbers", "sizes", "speeds", "manufacturers"),
    "duplicate_serials": ("serial_no", "kind", "server", "place", "ordinal"),
    "serial_history": ("server", "kind", "place", "ordinal", "seen_from", "seen_until", "ended"),
    "processor_models": ("model", "manufacturer", "processors", "servers"),
    "silent": ("server", "last_seen"),
}


def with_times(row):
    times = ("seen_from", "seen_until", "lost_at", "last_seen", "first_seen", "observed_at")
    return {name: expected.time_of(value) if name in times and value else value for name, value in row.items()}


def versions_in(url):
    for row in clusters.rows(url, VERSIONS):
        row["raw"] = tuple(sorted(row["raw"].items()))
        yield with_times(row)


def version_row(version):
    record = version.record
    return {"server": version.server, "kind": record.kind, "place": record.place, "ordinal": record.ordinal,
            "seen_from": version.seen_from, "seen_until": version.seen_until, "ended": version.ended,
            "behind": record.behind, "raw": tuple(sorted(record.raw.items())), "lost_mib": version.lost_mib or None}


def observations_in(url):
    return map(with_times, clusters.rows(url, "select server, observed_at, last_seen, status, sha256 from fleet.observation"))


def observation_rows(fleet):
    for history in fleet.histories.values():
        times = [(run.first, run.last, "loaded", run.sha256) for run in history.runs]
        times += [(time, time, "refused", sha256) for time, sha256 in history.refused]
        times += [(time, time, "aside", sha256) for time, sha256 in history.aside]
        for first, last, status, sha256 in times:
            yield {"server": history.server, "observed_at": first, "last_seen": last, "status": status, "sha256": sha256}


def ask(url, question, *arguments):
    values = {f"x{number}": time_sql(value) if hasattr(value, "isoformat") else value
              for number, value in enumerate(arguments)}
    return list(map(with_times, clusters.rows(
        url, f"select * from fleet.{question}({', '.join(':' + repr(name) for name in values)})", **values)))


def questions_about(fleet):
    """All eight, with arguments that matter: each time at which something ended is a boundary."""
    versions = fleet.versions()
    ends = sorted({version.seen_until for version in versions if version.ended in ("removed", "emptied")})
    last = sorted({history.last_seen for history in fleet.histories.values()})
    times = [observations.START - observations.DAY, ends[len(ends) // 2], ends[-1], last[-1], last[len(last) // 2]]
    texts = {column: sorted({version.record.text(column) for version in versions} - {None, ""})
             for column in ("PartNo", "SerialNo")}
    moved = [version.record.text("SerialNo") for version in versions if version.ended == "moved" and version.record.serial]
    hostile = [text for text in texts["SerialNo"] if text in map(expected.trimmed, observations.HOSTILE)]
    serials = moved[:2] + hostile[:3] + ["SHAREDM3", " SHAREDM3\t", "NO DIMM", "", "no such"]
    parts = texts["PartNo"][:: len(texts["PartNo"]) // 6 + 1] + ["  M393A4K40CB2-CVF ", "m393a4k40cb2-cvf", "'"]
    return ([("part", text) for text in parts] + [("serial_history", text) for text in serials]
            + [(name, time) for name in ("lost", "lost_capacity", "silent") for time in times]
            + [("mixed_memory",), ("duplicate_serials",), ("processor_models",)])
