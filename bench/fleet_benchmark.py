#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""usage: fleet_benchmark.py [--ingested N] [--asked N,N,...]

Measures what keeping made-up servers, of 116 rows each, in PostgreSQL costs, on temporary clusters: ingesting N of them
beside COPY of the same rows, what they take on disk, and each question with several numbers of servers.
"""

import argparse
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


def seconds(action, *arguments):
    begin = time.monotonic()
    action(*arguments)
    return time.monotonic() - begin


def ingest(url, lines):
    clusters.psql(url, clusters.copied(lines) + INGEST)


def in_batches(url, lines, size=100):
    """The seconds that the database took; making the lines is not its business."""
    taken, batch = 0, []
    for line in lines:
        batch.append(line)
        if len(batch) == size:
            taken, batch = taken + seconds(ingest, url, batch), []
    return taken + (seconds(ingest, url, batch) if batch else 0)


def columns(url, table):
    """Those that are not made from others."""
    return ", ".join(row["attname"] for row in clusters.rows(url, f"""
        select attname from pg_attribute where attrelid = 'fleet.{table}'::regclass and attnum > 0 and not attisdropped
        and attgenerated = '' order by attnum"""))


def bare_copy(source, target, folder):
    """The same rows into the same tables with all their columns and indexes, from files that COPY wrote."""
    copies = []
    for table in TABLES:
        names, file = columns(source, table), folder / table
        clusters.psql(source, f"\\copy (select {names} from fleet.{table}) to '{file}'")
        copies.append(f"\\copy fleet.{table} ({names}) from '{file}'\n")
    return seconds(clusters.psql, target, "begin;\n" + "".join(copies) + "commit;\n")


def size(url):
    clusters.psql(url, "vacuum")
    return clusters.rows(url, """
        select sum(pg_total_relation_size(c.oid))::bigint as bytes from pg_class c
        where relnamespace = 'fleet'::regnamespace and relispartition and relkind = 'r'""")[0]["bytes"]


def place(url, partitions, on):
    subprocess.run([SOURCE / "fleet" / "zebdb-fleet", "--url", url, "place", *map(str, partitions), "--on", on], check=True,
                   stdout=subprocess.DEVNULL)


def ingesting(machines, number, folder):
    print(f"Ingesting {number} servers of 116 rows, one session (psql, in batches of 100)")
    one = new_fleet(machines[0], "one")
    servers = Servers(number)
    rows_of_disk = size(one)
    times = {"new": in_batches(one, servers.observed(0))}
    after_new = size(one)
    times["unchanged"] = in_batches(one, servers.observed(1))
    after_unchanged = size(one)
    for server in servers.servers:
        server.module_replaced()
    times["one module replaced"] = in_batches(one, servers.observed(2))
    after_changed = size(one)

    three = new_fleet(machines[0], "three")
    for machine, partitions in ((1, range(5)), (2, range(5, 10))):
        clusters.psql(machines[machine].url(), "create database part")
        place(three, partitions, machines[machine].url("part"))
    servers = Servers(number)
    times["new, partitions on three machines"] = in_batches(three, servers.observed(0))
    times["unchanged, partitions on three machines"] = in_batches(three, servers.observed(1))

    copy_source = new_fleet(machines[0], "copy_source")
    in_batches(copy_source, Servers(number).observed(0))
    bare = bare_copy(copy_source, new_fleet(machines[0], "bare"), folder)
    print(f"{'':40} {'s':>8} {'servers/s':>10} {'to COPY':>8}")
    for name, taken in [("COPY of the rows of `new`, a transaction", bare), *times.items()]:
        print(f"{name:40} {taken:8.1f} {number / taken:10.0f} {taken / bare:8.2f}")
    print()
    print("Size on disk, indexes included")
    print(f"{'':40} {'bytes':>8}")
    for name, taken in (("a server, observed once", after_new - rows_of_disk),
                        ("an unchanged observation", after_unchanged - after_new),
                        ("an observation with one module replaced", after_changed - after_unchanged)):
        print(f"{name:40} {taken / number:8.0f}")
    print(flush=True)


def fill(url, number):
    """Observed on two days; on the third a few were not, and a few lost a module of a number that no others have."""
    servers = Servers(number)
    for server in servers.servers[:FEW]:
        server.parts["memory"][0].update(PartNo="RARE", SerialNo=f"RARE{server.name}")
    for server in servers.servers:
        server.parts["memory"][1]["SerialNo"] = f"M{server.name}"
    in_batches(url, servers.observed(0))
    for server in servers.servers[:number // 10]:
        server.live()
    in_batches(url, servers.observed(1))
    few = [server for server in servers.servers[-FEW:] if server.parts["memory"]]
    for server in few:
        del server.parts["memory"][0]
    in_batches(url, servers.observed(2, servers.servers[FEW:]))
    clusters.psql(url, "vacuum analyze")


def asked(url, question):
    """The median of some times, and the rows of the answer."""
    script = f"select count(*) from fleet.{question};\n"
    said = clusters.psql(url, script * 2 + "\\timing on\n" + script * 7).split("\n")
    times = [float(line.split()[1].replace(",", ".")) for line in said if line.startswith("Time:")]
    return statistics.median(times), int(said[0])


def asking(machine, numbers):
    today, yesterday = (START + 2 * DAY).isoformat(), (START + DAY).isoformat()
    questions = [
        "part('RARE')", f"lost('{today}')", f"lost_capacity('{today}')", f"serial_history('M{observations.Server(3, 'bench', 'full').name}')",
        f"silent('{today}')", "mixed_memory()", "duplicate_serials()", "processor_models()"]
    table = {question: [] for question in questions}
    for number in numbers:
        url = new_fleet(machine, f"asked{number}")
        taken = seconds(fill, url, number)
        print(f"({number} servers observed on three days in {taken:.0f} s, {size(url) / 1e6:.0f} MB)", flush=True)
        for question in questions:
            table[question].append(asked(url, question))
    print("Milliseconds a question, and the rows of its answer (medians of 7 in one session, everything in memory)")
    print(f"{'servers':36}" + "".join(f" {number:>9} {'rows':>7}" for number in numbers))
    for question, answers in table.items():
        print(f"{question:36}" + "".join(f" {taken:9.1f} {rows:7}" for taken, rows in answers))


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
        asking(machines[0], [int(number) for number in chosen.asked.split(",")])


if __name__ == "__main__":
    main()
