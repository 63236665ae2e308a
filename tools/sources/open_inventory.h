// SPDX-License-Identifier: Apache-2.0

/// An inventory named on the command line, whatever it is kept in.
#ifndef TOOLS_SOURCES_OPEN_INVENTORY_H
#define TOOLS_SOURCES_OPEN_INVENTORY_H

#include <memory>
#include <string>

#include <zebdb_cds_parser.h>

#include "sources/inventory.h"
#include "sources/source_record.h"

/// The inventory in the CDS file or database of that name, told apart by their content; "-" is standard input. Nothing
/// is written anywhere. Throws failure.
inventory open_inventory(const std::string& name);

/// An inventory and what else is known of where it comes from.
struct opened_source {
    inventory rows;
    std::unique_ptr<cds_parser::document> document;  ///< what the rows were made of; null for a database
    source_record
        file;  ///< of what was named itself, without a time; a database may tell by rows.source() what it holds
};

/// The same with all that. Throws failure.
opened_source open_source(const std::string& name);

#endif
