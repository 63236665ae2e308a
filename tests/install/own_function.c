// SPDX-License-Identifier: Apache-2.0

// A process that has a function of its own in the place of one of the platform's: the library has to call that.

#include <zeb_db.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser/entry_points.h>

#include <stdio.h>

static unsigned rows;

int zeb_db_insert(_zeb_db_handle_t* handle, const char* table, zeb_db_content_values_t* values, unsigned flags,
                  int64_t* row_id) {
    (void)handle, (void)table, (void)values, (void)flags;
    ++rows;
    if (row_id != NULL) {
        *row_id = rows;
    }
    return 0;
}

int main(int argc, char** argv) {
    _zeb_db_handle_t* database = NULL;
    if (argc != 2 || zeb_db_open(":memory:", &database) != 0 || parse_cds(database, argv[1]) != 0) {
        return 1;
    }
    zeb_db_close(database);
    printf("the library gave %u rows to its caller's own function\n", rows);
    return rows == 0;
}
