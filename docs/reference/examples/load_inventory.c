// SPDX-License-Identifier: Apache-2.0

// Replaces the inventory in a database by what a CDS file describes, all of it or, when anything is wrong, nothing.

#include <zeb_db_workstation.h>
#include <zebdb_cds_parser/entry_points.h>

#include <stdio.h>

static int load(_zeb_db_handle_t* database, const char* path) {
    if (zeb_db_begin_transaction(database) != 0) {
        return 1;
    }
    if (parse_cds(database, path) != 0 || zeb_db_commit_transaction(database) != 0) {
        zeb_db_rollback_transaction(database);  // the log says why
        return 1;
    }
    return 0;
}

int main(int argc, char** argv) {
    if (argc != 3) {
        fprintf(stderr, "usage: %s DATABASE FILE\n", argv[0]);
        return 2;
    }
    _zeb_db_handle_t* database = NULL;
    const int failed = zeb_db_open(argv[1], &database) != 0 || load(database, argv[2]) != 0;
    zeb_db_close(database);
    return failed;
}
