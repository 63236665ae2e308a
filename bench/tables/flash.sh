# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# What loads and refreshes write.

# Prints the file $1 with the serial number of its part $2 changed to $3.
with_serial_number() {
    awk -v part="$2" -v serial="$3" '/<name>Serial Number</ && ++parts == part { hit = 1 }
        hit && /<text_value>/ { sub(/>[^<]*</, sprintf(">%08X<", serial)); hit = 0 } { print }' "$1"
}

# Runs a command and leaves the system calls by which it writes in the file trace.
trace_writes() {
    strace --seccomp-bpf -f -qq -y -s 0 -e trace=write,pwrite64,fsync,fdatasync -e signal=none -o trace "$@" >>log 2>&1
    ! grep -q unfinished trace  # nothing is written at the same time
}

# Prints what the file trace tells under the name $1, divided by $2: bytes written to the database and to its journal, the
# blocks of 4096 bytes that were dirty when they were synchronised, in bytes, and how often that was done.
print_writes() {
    awk -v name="$1" -v times="$2" -v folder="$PWD" '
        { path = $0; sub(/^[^<]*</, "", path); sub(/>.*/, "", path) }
        /^[0-9]+ +f(data)?sync/ { ++syncs; blocks += dirty[path]; dirty[path] = 0; ++generation[path]; next }
        index(path, folder "/held.db") != 1 { next }
        {
            bytes[path == folder "/held.db"] += $NF
            offset = $0; sub(/\) += [0-9]+$/, "", offset); sub(/.*, /, "", offset)
            for (block = int(offset / 4096); block * 4096 < offset + $NF; ++block) {
                if (seen[path, block] != generation[path] + 1) {
                    seen[path, block] = generation[path] + 1
                    ++dirty[path]
                }
            }
        }
        END { printf "%-28s %9.0f %9.0f %9.0f %9.0f %8.1f\n", name, bytes[1] / times, bytes[0] / times,
            (bytes[0] + bytes[1]) / times, 4096 * blocks / times, syncs / times }' trace
}

# Makes the file held.db, an inventory of one server in pages of $1 bytes with the journal mode $2.
make_held_database() {
    rm -f held.db
    "$zebdb_cds" load -q 0.xml --database held.db >>log
    sqlite3 held.db "PRAGMA page_size=$1; VACUUM; PRAGMA journal_mode=$2" >>log
}

# 100 refreshes, in each of which one part changed, a process each.
refresh_a_hundred_times() {
    # shellcheck disable=SC2016  # the traced shell expands it
    trace_writes "$sources/scripts/sandbox" view bash -ec \
        'for n in $(seq 100); do "$0" refresh -q "$n.xml" --database held.db; done' "$zebdb_cds"
    # The mode and the pages are still those that were asked for.
    [ "$(sqlite3 held.db 'PRAGMA page_size; PRAGMA journal_mode' | tr '\n' ' ')" = "$1 $2 " ]
}

# In the place of the digest script, which reads the database and starts many programs for that: after each refresh the
# system inventory has changed and the PCI inventory has not.
make_digest_script() {
    mkdir -p view/bin
    cat >view/bin/pci_digest.sh <<'END'
#!/bin/sh
date +%s%N >/var/vonk/sys_inventory.digest
echo the same >/var/vonk/pci_inventory.digest
END
    chmod +x view/bin/pci_digest.sh
}

# What loads and refreshes write to a database that stands in flash.
flash() {
    local page mode holder n
    "$sources/scripts/install-packages" strace sqlite3 bubblewrap
    cmake --build "$sources/build/release" --target zebdb_private_places >>log
    cp "$(cds_file 1)" 0.xml
    for n in $(seq 100); do
        with_serial_number $((n - 1)).xml $((1 + n % 26)) "$n" >"$n.xml"
    done
    echo "Bytes written for one server, $(stat -c %s 0.xml) bytes of CDS file"
    printf '%-28s %9s %9s %9s %9s %8s\n' '' database journal both blocks syncs
    make_digest_script
    make_held_database 1024 delete
    trace_writes "$zebdb_cds" load -q 0.xml --database held.db
    print_writes 'load of the same' 1
    trace_writes "$zebdb_cds" load -q 1.xml --database held.db
    print_writes 'load, one part changed' 1
    trace_writes "$sources/scripts/sandbox" view "$zebdb_cds" refresh -q 1.xml --database held.db
    print_writes 'refresh, one part changed' 1
    for mode in delete wal; do
        for page in 1024 4096 8192; do
            make_held_database $page $mode
            refresh_a_hundred_times $page $mode
            print_writes "refreshes, $mode, $page" 100
        done
    done
    # As a service that keeps its handle does, another program has the database open, so that nobody closes it last.
    make_held_database 1024 wal
    coproc holder { sqlite3 held.db; }
    echo 'SELECT count(*) FROM Memory;' >&"${holder[1]}"
    read -r n <&"${holder[0]}"
    refresh_a_hundred_times 1024 wal
    print_writes "refreshes, wal held, 1024" 100
    eval "exec ${holder[1]}>&-"
    wait
}
