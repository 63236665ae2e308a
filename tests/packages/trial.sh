#!/bin/sh
# SPDX-License-Identifier: Apache-2.0

# What a user does with the packages, in a folder with a CDS file and the source of a caller.
set -eux

zebdb-cds load two-socket-server.xml 2>log
[ "$(zebdb-cds show --format json | grep -c '"Socket"')" = 2 ]
ls /usr/share/man/man1/zebdb-cds.1.gz /usr/share/bash-completion/completions/zebdb-cds
zebdb-fleet --help
ls /usr/share/man/man1/zebdb-fleet.1.gz /usr/share/zebdb-cds/fleet/schema.sql
ls /usr/share/doc/zebdb-cds-doc/reference/index.html

# shellcheck disable=SC2046  # one word an option
g++ -std=c++17 caller.cpp -o caller $(pkg-config --cflags --libs zebdb_cds_parser)
./caller
