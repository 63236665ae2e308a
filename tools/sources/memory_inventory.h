// SPDX-License-Identifier: Apache-2.0

/// Inventories in memory, for subcommands that ask something about a file and keep nothing.
#ifndef TOOLS_SOURCES_MEMORY_INVENTORY_H
#define TOOLS_SOURCES_MEMORY_INVENTORY_H

#include <string>
#include <vector>

#include <zebdb_cds_parser.h>

#include "rows/table.h"
#include "sources/inventory.h"
#include "sources/memory_database.h"

/// The rows that a load of `document` gives. No file is touched, and what the loader logs is not shown. Later
/// messages call the inventory `title`. Throws failure with the cause alone.
inventory load_into_memory(cds_parser::document& document, const std::string& title);

/// Loads one document after the other into the same database, which costs less than a new one for each.
class memory_loader {
public:
    /// Throws failure when there is not enough memory.
    memory_loader();

    /// The rows of all kinds that a load of `document` gives, as inventory::read_all() does. No file is touched, and
    /// what the loader logs is not shown. Throws failure with the cause alone, and is of no more use then.
    std::vector<inventory_table> load(cds_parser::document& document);

private:
    memory_database database_;
    inventory rows_;
};

/// What is in `database` at each reading, under that title in messages. Throws failure with the cause alone.
inventory read_memory(const memory_database& database, const std::string& title);

/// The inventory in the bytes of a database file, with the same title and failures.
inventory open_in_memory(const std::string& bytes, const std::string& title);

#endif
