#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""usage: fleet_benchmark.py [--ingested N] [--asked N,N,...]

Measures what keeping made-up servers, of 116 rows each, in PostgreSQL costs, on temporary clusters: ingesting N of them
beside COPY of the same rows, what they take on disk, and each question with several numbers of servers.
"""

import argparse
import contextlib
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "fleet"))

import clusters
import observations
from observations import DAY, START

SOURCE = pathlib.Path(__file__).resolve().parents[1]
TABLES = ("server", "observation", "processor", "memory", "bridge", "device")
SETTINGS = {"shared_buffers": "1GB", "max_wal_size": "8GB", "jit": "off", "log_min_messages": "fatal"}
FEW = 10  # servers that something happened to on the last day

# As zebdb-fleet does it: each observation by itself, the disk waited for at the end.
INGEST = """
set synchronous_commit = off;
select format('select fleet.ingest(line) from arriving where n = %s', n) from arriving order by n \\gexec
set synchronous_commit = on;
select from pg_logical_emit_message(true, 'bench', '');
"""


class Servers:
    """The same servers on every day."""

    def __init__(self, number):
        self.servers = [observations.Server(each, "bench", "full") for each in range(number)]

    def observed(self, day, which=None):
        for server in which or self.servers:
            yield observations.line_of(observations.loaded(server.name, server.rows(), START + day * DAY, server.touch))


def new_fleet(cluster, name):
    clusters.psql(cluster.url(), f"create database {name}")
    clusters.psql(cluster.url(name), (SOURCE / "fleet" / "schema.sql").read_text())
    return cluster.url(name)


class Taken:
    """Seconds by the clock, and seconds of processors that the sessions of all machines took."""

    def __init__(self, clock=0.0, processors=0.0):
        self.clock, self.processors = clock, processors

    def __add__(self, other):
        return Taken(self.clock + other.clock, self.processors + other.processors)


def status(process):
    """From its state on, as proc(5) tells."""
    return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(") ")[2].split()


def has_sessions(machine):
    """Or one that has ended, of which the server's process has not taken note."""
    for path in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        with contextlib.suppress(OSError):
            state, parent = status(path.parent.name)[:2]
            if parent == str(machine.server.pid) and (state == "Z" or f" {clusters.USER} ".encode() in path.read_bytes()):
                return True
    return False


class Database:
    """A fleet in a database of the first machine."""

    def __init__(self, machines, name):
        self.machines = machines
        self.url = new_fleet(machines[0], name)

    def sessions(self):
        """The processors' seconds of all sessions: the server's process takes note of them when they have ended."""
        while any(map(has_sessions, self.machines)):
            time.sleep(0.01)
        fields = [status(machine.server.pid) for machine in self.machines]
        return sum(int(each[13]) + int(each[14]) for each in fields) / os.sysconf("SC_CLK_TCK")

    def taken_by(self, script):
        processors, clock = self.sessions(), time.monotonic()
        clusters.psql(self.url, script)
        clock = time.monotonic() - clock
        return Taken(clock, self.sessions() - processors)

    def ingest(self, lines, size=100):
        """What the database took, in batches; making the lines is not its business."""
        taken, batch = Taken(), []
        for line in lines:
            batch.append(line)
            if len(batch) == size:
                taken, batch = taken + self.taken_by(clusters.copied(batch) + INGEST), []
        return taken + (self.taken_by(clusters.copied(batch) + INGEST) if batch else Taken())


def columns(url, table):
    """Those that are not made from others."""
    return ", ".join(row["attname"] for row in clusters.rows(url, f"""
        select attname from pg_attribute where attrelid = 'fleet.{table}'::regclass and attnum > 0 and not attisdropped
        and attgenerated = '' order by attnum"""))


def bare_copy(source, target, folder):
    """The same rows into the same tables with all their columns and indexes, from files that COPY wrote."""
    copies = []
    for table in TABLES:
        names, file = columns(source.url, table), folder / table
        clusters.psql(source.url, f"\\copy (select {names} from fleet.{table}) to '{file}'")
        copies.append(f"\\copy fleet.{table} ({names}) from '{file}'\n")
    return target.taken_by("begin;\n" + "".join(copies) + "commit;\n")


def size(url):
    clusters.psql(url, "vacuum")
    return clusters.rows(url, """
        select sum(pg_total_relation_size(c.oid))::bigint as bytes from pg_class c
        where relnamespace = 'fleet'::regnamespace and relispartition and relkind = 'r'""")[0]["bytes"]


def place(url, partitions, on):
    subprocess.run([SOURCE / "fleet" / "zebdb-fleet", "--url", url, "place", *map(str, partitions), "--on", on], check=True,
                   stdout=subprocess.DEVNULL)


def ingesting(machines, number, folder):
    one, three = Database(machines, "one"), Database(machines, "three")
    for machine, partitions in ((1, range(5)), (2, range(5, 10))):
        clusters.psql(machines[machine].url(), "create database part")
        place(three.url, partitions, machines[machine].url("part"))
    servers, taken, sizes = Servers(number), {}, [size(one.url)]
    taken["new"] = one.ingest(servers.observed(0))
    taken["COPY of the same rows, one transaction"] = bare = bare_copy(one, Database(machines, "bare"), folder)
    taken["new, three machines"] = three.ingest(servers.observed(0))
    sizes.append(size(one.url))
    taken["unchanged"] = one.ingest(servers.observed(1))
    taken["unchanged, three machines"] = three.ingest(servers.observed(1))
    sizes.append(size(one.url))
    for server in servers.servers:
        server.module_replaced()
    taken["one module replaced"] = one.ingest(servers.observed(2))
    sizes.append(size(one.url))

    print(f"Ingesting {number} servers of 116 rows in one session, a psql for each 100 of them")
    print(f"{'':40} {'real s':>8} {'CPU s':>8} {'servers/s':>10} {'to COPY: real':>14} {'CPU':>6}")
    for name, each in taken.items():
        print(f"{name:40} {each.clock:8.1f} {each.processors:8.1f} {number / each.clock:10.0f}"
              f" {each.clock / bare.clock:14.2f} {each.processors / bare.processors:6.2f}")
    print("\nSize on disk, indexes included")
    for name, before, after in zip(("a server, observed once", "an unchanged observation", "one module replaced"), sizes, sizes[1:]):
        print(f"{name:40} {(after - before) / number:8.0f} bytes")
    print(flush=True)


def fill(database, number):
    """Observed on two days; on the third a few were not, and a few lost a module of a number that no others have."""
    servers = Servers(number)
    for server in servers.servers[:FEW]:
        server.parts["memory"][0].update(PartNo="RARE", SerialNo=f"RARE{server.name}")
    for server in servers.servers:
        server.parts["memory"][1]["SerialNo"] = f"M{server.name}"
    database.ingest(servers.observed(0))
    for server in servers.servers[:number // 10]:
        server.live()
    database.ingest(servers.observed(1))
    few = [server for server in servers.servers[-FEW:] if server.parts["memory"]]
    for server in few:
        del server.parts["memory"][0]
    database.ingest(servers.observed(2, servers.servers[FEW:]))
    clusters.psql(database.url, "vacuum analyze")


def asked(url, question):
    """The median of some times, and the rows of the answer."""
    script = f"select count(*) from fleet.{question};\n"
    said = clusters.psql(url, script * 2 + "\\timing on\n" + script * 7).split("\n")
    times = [float(line.split()[1].replace(",", ".")) for line in said if line.startswith("Time:")]
    return statistics.median(times), int(said[0])


def asking(machines, numbers):
    today, before = (START + 2 * DAY).isoformat(), (START + 1.5 * DAY).isoformat()
    questions = ["part('RARE')", f"lost('{before}')", f"lost_capacity('{before}')", "serial_history('Mserver-000003')",
                 f"silent('{today}')", "mixed_memory()", "duplicate_serials()", "processor_models()"]
    table = {question: [] for question in questions}
    for number in numbers:
        database = Database(machines, f"asked{number}")
        fill(database, number)
        print(f"{number} servers, observed on three days: {size(database.url) / 1e6:.0f} MB", flush=True)
        for question in questions:
            table[question].append(asked(database.url, question))
    print("Milliseconds a question (medians of 7 in one session), and the rows of its answer")
    print(f"{'servers':40}" + "".join(f" {number:>9} {'rows':>7}" for number in numbers))
    for question, answers in table.items():
        print(f"{question:40}" + "".join(f" {taken:9.1f} {rows:7}" for taken, rows in answers))


def main():
    options = argparse.ArgumentParser(usage=__doc__.split("\n", maxsplit=1)[0].removeprefix("usage: "))
    options.add_argument("--ingested", type=int, default=1000)
    options.add_argument("--asked", default="200,2000,20000")
    chosen = options.parse_args()
    with clusters.Machines(3, SETTINGS) as machines, tempfile.TemporaryDirectory() as folder:
        for machine in machines:
            machine.start_first()
        print(clusters.psql(machines[0].url(), "select version()").split(" on ")[0] + ", " +
              ", ".join(f"{name} = {value}" for name, value in SETTINGS.items() if name != "log_min_messages"))
        ingesting(machines, chosen.ingested, pathlib.Path(folder))
        asking(machines, [int(number) for number in chosen.asked.split(",")])


if __name__ == "__main__":
    main()
