// SPDX-License-Identifier: Apache-2.0

/// An inventory named on the command line, whatever it is kept in.
#ifndef TOOLS_SOURCES_OPEN_INVENTORY_H
#define TOOLS_SOURCES_OPEN_INVENTORY_H

#include <string>

#include "sources/inventory.h"

/// The inventory in the CDS file or database of that name, told apart by their content; "-" is standard input. Nothing
/// is written anywhere. Throws failure.
inventory open_inventory(const std::string& name);

#endif
