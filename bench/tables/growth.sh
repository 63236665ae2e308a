# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# How what subcommands do grows with a file.

# What is read, by each subcommand that reads a CDS file or a database. FILE is a file of a shape and a size, OTHER the same
# with everything at another place, HELD a database of FILE and NEW the name of none. What check reads beyond what
# save-digest does is the two small files of an earlier refresh.
reading() {
    cat <<'END'
load load FILE --database NEW
refresh refresh OTHER --database HELD
show show FILE
show-database show HELD
tree tree FILE
tree-database tree HELD
explain explain FILE
explain-all explain --all FILE
dump dump FILE
diff diff FILE OTHER
diff-database diff HELD OTHER
report report FILE
report-against report FILE --against OTHER
export export FILE
save-digest save-digest FILE OTHER
bmc-address bmc-address --database HELD
END
}

# Leaves the instructions of one command on one file in a file of its own. $1: the name of the file without .xml, $2: that
# of the command, then its words.
count_reading() {
    local made=$1.$2 status=0 words
    words=${*:3}
    words=${words//FILE/$1.xml}
    words=${words//OTHER/$1.other.xml}
    words=${words//NEW/$made.db}
    words=${words//HELD/$made.held.db}
    cp "$1.db" "$made.held.db"
    # shellcheck disable=SC2086  # one word an argument
    "$sources/scripts/sandbox" "$made.view" valgrind --tool=callgrind --callgrind-out-file=/dev/null "$zebdb_cds" $words \
        >/dev/null 2>"$made.log" || status=$?
    if [ $status -gt 1 ] || ! awk '/Collected/ { print $4; found = 1 } END { exit !found }' "$made.log" >"$made.count"; then
        cat "$made.log" >>log
        return 1
    fi
    rm -rf "$made.view" "$made.held.db" "$made.db" "$made.log"
}

# Prints the lines of the commands on the files of the sizes $2... of a shape $1.
print_growth() {
    local shape=$1 name words
    shift
    reading | while read -r name words; do
        for n in "$@"; do
            cat "$shape-$n.$name.count"
        done | awk -v name="$name" '{ all[NR] = $1; printf NR == 1 ? sprintf("%-16s", name) : ""; printf "%10.2f", $1 / 1e6 }
            END {
                before = all[3] - all[2]  # hardly anything where a process of its own reads the file
                printf "%8.2f %10s\n", all[4] / all[3], (before > all[4] / 100 ? sprintf("%.2f", (all[4] - all[3]) / before) : "-")
            }'
    done
}

# Makes the files of a shape $1 in the sizes $2... and prints each reading of each as a line for count_reading.
make_growing_files() {
    local shape=$1 n
    shift
    for n in "$@"; do
        "$sources/bench/growing_cds.py" "$shape" "$n" >"$shape-$n.xml"
        "$sources/bench/growing_cds.py" "$shape" "$n" --changed >"$shape-$n.other.xml"
        "$zebdb_cds" load -q "$shape-$n.xml" --database "$shape-$n.db" >>log
        reading | sed "s/^/$shape-$n /"
    done
}

# Whether anything that a command does grows faster than its file. What the start of the process takes is in the ratio of
# the largest to the next, but not in that of what the last doubling added to what the one before it did.
growth() {
    local shape sizes
    "$sources/scripts/install-packages" python3 bubblewrap
    cmake --build "$sources/build/release" --target zebdb_private_places >>log
    export sources zebdb_cds
    export -f count_reading
    echo "Instructions, in millions, on files in which one thing is there n, 2n, 4n and 8n times (callgrind)"
    for shape in components group children bridges identities serials; do
        sizes=(50 100 200 400)
        [ $shape != bridges ] || sizes=(15 30 60 120)  # libxml2 refuses what is deeper
        make_growing_files $shape "${sizes[@]}" >readings
        # shellcheck disable=SC2016  # the shell that xargs starts expands it, into words
        tr '\n' '\0' <readings | xargs -0 -P "$(nproc)" -I {} bash -c 'count_reading $1' count_reading {}
        printf '%-16s%10s%10s%10s%10s%8s %10s\n' "$shape" "${sizes[@]}" ratio added
        print_growth $shape "${sizes[@]}"
    done
}
