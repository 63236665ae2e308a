# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# What whole processes take, in turns with those of other programs.

# Runs each command of the file $1, whose lines are a name and a command, $2 times, in turns, and leaves what it took in the
# file NAME.costs. Each run finds no database.
run_in_turns() {
    local round name command
    rm -f ./*.costs
    for round in $(seq "$2"); do
        while read -r name command; do
            rm -f made.db
            # shellcheck disable=SC2086  # one word an argument
            "$programs/process_cost" $command >>"$name.costs" 2>>log || { echo "$name failed in round $round" >>log; return 1; }
        done <"$1"
    done
}

# The least and the median of column $2 of the file $1, divided by $3.
least_and_median() {
    sort -n -k "$2,$2" "$1" | awk -v column="$2" -v unit="$3" '{ all[NR] = $column / unit }
        END { printf "%9.2f %9.2f", all[1], all[int((NR + 1) / 2)] }'
}

# Prints what the commands of the file $1 took, with the median of each one's processor time beside that of the first.
print_costs() {
    local name command first now
    printf '%-14s %19s %19s %19s %10s\n' '' 'real ms' 'CPU ms' 'peak MB' 'CPU'
    printf '%-14s %9s %9s %9s %9s %9s %9s %10s\n' command least median least median least median 'to first'
    while read -r name command; do
        now=$(least_and_median "$name.costs" 2 1000 | awk '{ print $2 }')
        first=${first:-$now}
        printf '%-14s %s %s %s %10s\n' "$name" "$(least_and_median "$name.costs" 1 1000)" \
            "$(least_and_median "$name.costs" 2 1000)" "$(least_and_median "$name.costs" 3 1024)" \
            "$(quotient "$now" "$first")"
    done <"$1"
}

# Every value that the other programs put, of the rows that the command makes.
rows_of() {
    awk -F '\t' '!/^#/ { columns[$2] = columns[$2] (columns[$2] ? ", " : "") $4 }
        END { for (table in columns) print "SELECT " columns[table] " FROM " table \
            (table == "PCIs" ? " WHERE Location IS NOT NULL" : "") " ORDER BY Id;" }' "$peers/columns.tsv" | sqlite3 "$1"
}

# Fails where a program that fills a database does not do it as the command does.
require_same_rows() {
    local name command
    while read -r name command; do
        [ "$name" != xmllint ] || continue
        rm -f made.db
        $command >>log 2>&1
        rows_of made.db >"$name.rows"
        cmp load.rows "$name.rows" >>log || { echo "the rows of $name are wrong" >>log; return 1; }
    done <"$1"
    [ -s load.rows ]
}

# The command beside other programs that fill a database, and one that only reads; whole processes.
peers() {
    local servers file peers=$sources/bench/peers
    "$sources/scripts/install-packages" libpugixml-dev libxml2-utils python3 sqlite3
    "${CXX:-g++}" -std=c++17 -O2 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror "$peers/pugixml_sqlite.cpp" \
        -o pugixml_sqlite -lpugixml -lsqlite3
    ln -sfn "$zebdb_cds" "$peers" .  # commands are words, and paths may have blanks
    for servers in 1 10; do
        file=$(cds_file $servers)
        cat >commands <<END
load ./zebdb-cds load -q $file --database made.db
elementtree python3 peers/elementtree_sqlite.py peers/columns.tsv $file made.db
pugixml ./pugixml_sqlite peers/columns.tsv $file made.db
xmllint xmllint --noout $file
END
        require_same_rows commands
        run_in_turns commands 25
        echo "From a file of $servers to the rows of a new database, whole processes (25 runs each, in turns)"
        print_costs commands
    done
}

# The command that has nothing to do beside a program that does nothing, with the same libraries.
start() {
    local program
    for program in "$zebdb_cds" "$programs/empty_program"; do
        ldd "$program" | awk '{ print $1 }' | sort >"$(basename "$program").libraries"
    done
    cmp zebdb-cds.libraries empty_program.libraries >>log
    ln -sfn "$zebdb_cds" "$programs/empty_program" .
    cat >commands <<END
empty-program ./empty_program
version ./zebdb-cds --version
END
    run_in_turns commands 101
    echo "The start of the command (101 runs each, in turns)"
    print_costs commands
    echo "instructions (callgrind): $(callgrind "$programs/empty_program"), with --version $(callgrind "$zebdb_cds" --version)"
}
