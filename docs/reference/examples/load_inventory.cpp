// SPDX-License-Identifier: Apache-2.0

// Replaces the inventory in a database by what a CDS file describes, all of it or, when anything is wrong, nothing.

#include <zeb_db_workstation.h>
#include <zebdb_cds_parser.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s DATABASE FILE\n", argv[0]);
        return 2;
    }
    _zeb_db_handle_t* database = nullptr;
    bool loaded = false;
    if (zeb_db_open(argv[1], &database) == 0 && zeb_db_begin_transaction(database) == 0) {
        loaded = parse_cds(database, argv[2]) == 0 && zeb_db_commit_transaction(database) == 0;
        if (!loaded) {
            zeb_db_rollback_transaction(database);  // the log says why
        }
    }
    zeb_db_close(database);
    return loaded ? 0 : 1;
}
