# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# What becomes of many servers.

# Many servers in PostgreSQL, on clusters of the benchmark's own; half an hour.
fleet() {
    "$sources/scripts/install-packages" postgresql python3
    "$sources/bench/fleet_benchmark.py" 2>>log
}
