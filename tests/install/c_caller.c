// SPDX-License-Identifier: Apache-2.0

// A caller in C: loads a CDS file into a database in memory and prints what that holds then.

#include <inventory_service.h>
#include <inventory_service_workstation.h>
#include <zeb_db.h>
#include <zeb_db_workstation.h>
#include <zebdb_cds_parser/entry_points.h>
#include <zebdb_cds_parser/version.h>

#include <stdio.h>

enum { row_available = 9, most_columns = 4 };

// A table and some of its columns.
typedef struct {
    const char* name;
    unsigned column_count;
    const char* columns[most_columns];
} table;

static const table tables[] = {
    {"Processor", 2, {"Id", "NodeIndex"}},
    {"Memory", 2, {"NodeIndex", "MemSize"}},
    {"PCIBridge", 3, {"BusNo", "DevNo", "FunNo"}},
    {"PCIs", 4, {"BusNo", "DeviceNo", "FunctionNo", "SlotNo"}},
};

static int print_row(zeb_db_result_t* row, const table* of) {
    printf("%s", of->name);
    for (unsigned column = 0; column < of->column_count; ++column) {
        uint32_t value = 0;
        if (zeb_db_result_column_uint(row, column, &value) != 0) {
            return 1;
        }
        printf(" %s=%u", of->columns[column], (unsigned)value);
    }
    printf("\n");
    return 0;
}

static int print_table(_zeb_db_handle_t* database, const table* which) {
    zeb_db_result_t* rows = NULL;
    int failed = zeb_db_query(database, which->name, which->columns, which->column_count, NULL, NULL, 0, NULL, &rows);
    while (!failed && zeb_db_result_step(rows) == row_available) {
        failed = print_row(rows, which);
    }
    zeb_db_free_result(rows);
    return failed;
}

static int load(_zeb_db_handle_t* database, const char* path) {
    if (zeb_db_begin_transaction(database) != 0) {
        return 1;
    }
    if (parse_cds(database, path) != 0) {
        zeb_db_rollback_transaction(database);
        return 1;
    }
    return zeb_db_commit_transaction(database);
}

int main(int argc, char** argv) {
    _zeb_db_handle_t* database = NULL;
    int failed = argc != 2 || zeb_db_open(":memory:", &database) != 0 || load(database, argv[1]) != 0;
    for (size_t i = 0; !failed && i < sizeof tables / sizeof *tables; ++i) {
        failed = print_table(database, &tables[i]);
    }
    zeb_db_close(database);
    return failed;
}
