#!/bin/sh
# SPDX-License-Identifier: Apache-2.0

# Writes the SHA-384 of the system inventory (processors, memory) and of the PCI inventory (bridges, functions,
# adapters) to /var/vonk. Row ids are left out and rows are sorted, so that the same hardware gives the same digest.
# A failure leaves both files as they were.
set -eu

database=${ZEBDB_DATABASE:-inventory.db}
case $database in
-*) database=./$database ;;  # a file, no option
esac
folder=/var/vonk
scratch=$(mktemp -d "$folder/.digest.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# Whoever made the database, and whatever the user's own settings are.
query() {
    sqlite3 -init /dev/null -batch -readonly -safe -cmd '.timeout 5000' "$@"
}

# The columns of the table $1, each written as the SQL expression $2.
columns_of() {
    query "$database" "SELECT group_concat($2) FROM pragma_table_info('$1')
        WHERE name NOT IN ('Id', 'ArrayId', 'ParentId', 'BridgeId')"
}

print_rows() {
    names=$(columns_of "$1" name)
    columns=$(columns_of "$1" "'\"' || replace(name, '\"', '\"\"') || '\"'")
    echo "$1: $names"
    query -quote "$database" "SELECT $columns FROM $1 ORDER BY $columns"
}

write_digest() {
    target=$1
    shift
    for table in "$@"; do
        print_rows "$table" >>"$scratch/rows"
    done
    sha384sum <"$scratch/rows" >"$scratch/sum"
    read -r digest _ <"$scratch/sum"
    echo "$digest" >"$scratch/$target"
    rm "$scratch/rows"
}

write_digest sys_inventory.digest Processor Memory
write_digest pci_inventory.digest PCIBridge PCIs PCIAdapter
mv "$scratch/sys_inventory.digest" "$scratch/pci_inventory.digest" "$folder"
