// SPDX-License-Identifier: Apache-2.0

/// The database of the inventory service in a test.
#ifndef TESTS_PLATFORM_INVENTORY_SERVICE_SERVICE_DATABASE_H
#define TESTS_PLATFORM_INVENTORY_SERVICE_SERVICE_DATABASE_H

#include <string>
#include <vector>

#include "cds_parser/record_columns.h"

constexpr const char* named_database = "/tmp/named.db";

/// The tables that the service and the digest script have to know: those that the loader fills, and the adapters'.
inline std::vector<std::string> inventory_tables() {
    std::vector<std::string> tables = {"PCIAdapter"};
    for (const cds_parser::record_kind* kind : cds_parser::record_kinds) {
        tables.emplace_back(kind->table);
    }
    return tables;
}

#endif
