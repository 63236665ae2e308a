#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""usage: fleet_test.py COMMAND REAL_SERIALS [--servers N] [--observations M] [--kills K] [--pairs P] [unittest's own options] [collect_test|collect_test.Ask|...]

Tests fleet/schema.sql and fleet/zebdb-fleet on temporary PostgreSQL clusters, with N made-up servers observed M times;
COMMAND is zebdb-cds, REAL_SERIALS the program of that name. A collection is killed K times. The
matching of P pairs of inventories is compared with that of `COMMAND diff`.
"""

import argparse
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True  # nothing is left in the sources

import support

MODULES = sorted(path.stem for path in pathlib.Path(__file__).parent.glob("*_test.py") if path.name != "fleet_test.py")


def names_any(arguments):
    return any(not argument.startswith("-") for argument in arguments)


def main():
    options = argparse.ArgumentParser(usage=__doc__.split("\n", maxsplit=1)[0].removeprefix("usage: "))
    options.add_argument("command", type=pathlib.Path)
    options.add_argument("real_serials", type=pathlib.Path)
    options.add_argument("--servers", type=int, default=support.OPTIONS.servers)
    options.add_argument("--observations", type=int, default=support.OPTIONS.observations)
    options.add_argument("--kills", type=int, default=support.OPTIONS.kills)
    options.add_argument("--pairs", type=int, default=support.OPTIONS.pairs)
    _, rest = options.parse_known_args(namespace=support.OPTIONS)
    support.OPTIONS.command = support.OPTIONS.command.resolve()
    support.OPTIONS.real_serials = support.OPTIONS.real_serials.resolve()
    try:
        unittest.main(module=None, argv=[sys.argv[0], *rest, *([] if names_any(rest) else MODULES)])
    finally:
        support.stop_machines()


if __name__ == "__main__":
    main()
