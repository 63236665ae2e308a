// SPDX-License-Identifier: Apache-2.0

/// How one part of an inventory is called and described for people.
#ifndef TOOLS_ROWS_PART_TEXT_H
#define TOOLS_ROWS_PART_TEXT_H

#include <string>

#include "rows/table.h"

/// Where the part is, as in "CPU 1, node 0" or "0000:3b:00.0, node 0"; "unnamed" when nothing says so.
std::string place_text(const inventory_row& row);

/// What it is, as in "32 GiB, DDR4, Maker, Part number, serial number 4711"; empty when nothing is known.
std::string part_text(const inventory_row& row);

#endif
