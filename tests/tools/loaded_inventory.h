// SPDX-License-Identifier: Apache-2.0

/// Inventories in memory, of CDS text that a test writes.
#ifndef TESTS_TOOLS_LOADED_INVENTORY_H
#define TESTS_TOOLS_LOADED_INVENTORY_H

#include <sstream>
#include <string>

#include <zebdb_cds_parser.h>

#include "sources/inventory.h"
#include "sources/memory_inventory.h"

/// The inventory that a load of this text gives.
inline inventory loaded_inventory(const std::string& cds_text) {
    cds_parser::document document;
    std::istringstream in(cds_text);
    document.parse(in);
    return load_into_memory(document, "the inventory");
}

#endif
