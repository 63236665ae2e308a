// SPDX-License-Identifier: Apache-2.0

/// How one part of an inventory is called and described for people.
#ifndef TOOLS_ROWS_PART_TEXT_H
#define TOOLS_ROWS_PART_TEXT_H

#include <string>

#include "rows/shown_text.h"
#include "rows/table.h"

/// "-" stands for what there is not.
std::string text_of(const shown_text& shown, const inventory_row& row);

/// Whether it is a column without a unit in rows of that kind.
bool is_plain(const shown_text& shown, const inventory_kind& kind);

/// Where the part is, as in "CPU 1, node 0" or "0000:3b:00.0, node 0"; "unnamed" when nothing says so.
std::string place_text(const inventory_row& row);

/// What it is, as in "32 GiB, DDR4, Maker, Part number, serial number 4711"; empty when nothing is known.
std::string part_text(const inventory_row& row);

#endif
