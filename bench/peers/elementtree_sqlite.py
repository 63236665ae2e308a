#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0

"""Puts the known settings of a CDS file's components into a new SQLite database, a table a kind: what a script does in
an afternoon. usage: elementtree_sqlite.py COLUMNS FILE DATABASE"""

import sqlite3
import sys
from xml.etree import ElementTree

VALUES = {
    "text_value": lambda text: text or "",
    "hex_value": lambda text: int(text, 16),
    "integer_value": int,
    "bool_value": lambda text: text == "true",
}


def read_kinds(path):
    kinds = {}
    with open(path, encoding="utf-8") as lines:
        for group, table, setting, column in (line.rstrip("\n").split("\t") for line in lines if line[0] != "#"):
            kinds.setdefault(group, (table, {}))[1][setting] = column
    return kinds


def values_of(group, columns):
    values = dict.fromkeys(columns)
    for setting in group.iterfind("setting"):
        name, value = setting
        if name.text in values:
            values[name.text] = VALUES[value.tag](value.text)
    return tuple(values.values())


def main(columns_path, path, database_path):
    kinds = read_kinds(columns_path)
    rows = {group: [] for group in kinds}
    for group in ElementTree.parse(path).iter("setting_group"):
        name = group.findtext("name")
        if name in kinds:
            rows[name].append(values_of(group, kinds[name][1]))
    with sqlite3.connect(database_path) as database:
        for name, (table, columns) in kinds.items():
            database.execute(f"CREATE TABLE {table} (Id INTEGER PRIMARY KEY, {', '.join(columns.values())})")
            places = ", ".join("?" * len(columns))
            database.executemany(f"INSERT INTO {table} ({', '.join(columns.values())}) VALUES ({places})", rows[name])


main(*sys.argv[1:])
