#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""usage: fleet_test.py COMMAND REAL_SERIALS [options] [unittest's options] [collect_test | collect_test.Ask | ...]

Tests fleet/schema.sql and fleet/zebdb-fleet on temporary PostgreSQL clusters; COMMAND is zebdb-cds, REAL_SERIALS the
program of that name. Without names of tests, all of them, a process for each file of tests and --jobs of them at a time.
"""

import argparse
import concurrent.futures
import os
import pathlib
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True  # nothing is left in the sources

import support


def arguments():
    options = argparse.ArgumentParser(description=__doc__.split("\n\n")[1], usage=__doc__.split("\n")[0].removeprefix("usage: "))
    options.add_argument("command", type=lambda path: pathlib.Path(path).resolve())
    options.add_argument("real_serials", type=lambda path: pathlib.Path(path).resolve())
    options.add_argument("--jobs", type=int, default=os.cpu_count(), help="files of tests at a time")
    options.add_argument("--servers", type=int, default=support.OPTIONS.servers, help="that are made up")
    options.add_argument("--observations", type=int, default=support.OPTIONS.observations, help="of each of them")
    options.add_argument("--kills", type=int, default=support.OPTIONS.kills, help="of a collection")
    options.add_argument("--pairs", type=int, default=support.OPTIONS.pairs, help="of inventories, whose parts are matched")
    return options.parse_known_args(namespace=support.OPTIONS)[1]


def run_file(path):
    done = subprocess.run([sys.executable, *sys.argv, path.stem], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    print(f"{path.name}: {done.stdout.decode().strip()}", flush=True)
    return done.returncode == 0


def run_all():
    files = sorted(path for path in pathlib.Path(__file__).parent.glob("*_test.py") if path.name != "fleet_test.py")
    files.sort(key=lambda path: -path.stat().st_size)  # what takes long begins early
    with concurrent.futures.ThreadPoolExecutor(support.OPTIONS.jobs) as pool:
        sys.exit(not all(list(pool.map(run_file, files))))


def main():
    rest = arguments()
    if not any(not each.startswith("-") for each in rest):
        run_all()
    try:
        unittest.main(module=None, argv=[sys.argv[0], *rest])
    finally:
        support.stop_machines()


if __name__ == "__main__":
    main()
