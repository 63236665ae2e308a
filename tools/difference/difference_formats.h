// SPDX-License-Identifier: Apache-2.0

/// The forms in which a difference is printed.
#ifndef TOOLS_DIFFERENCE_DIFFERENCE_FORMATS_H
#define TOOLS_DIFFERENCE_DIFFERENCE_FORMATS_H

#include <string>

#include <nlohmann/json.hpp>

#include "console/text_table.h"
#include "difference/difference.h"

/// For people: a line for each part, beneath it the columns that changed, in units. It may change at any time.
std::string difference_text(const comparison& compared, const text_style& style);

/// For people: how many parts of each kind differ, and how.
std::string difference_counts(const comparison& compared, const text_style& style);

/// A sentence about the nodes that were left out of the comparison of itself; empty where none were.
std::string node_note(const comparison& compared);

/// For programs: one object, {"schema": 2, "same": false, "processors": {"added": [...], ...}, ...}; rows in the order
/// of their inventory, columns in that of their table.
std::string difference_json(const comparison& compared);

/// The same before it is printed.
nlohmann::ordered_json difference_document(const comparison& compared);

#endif
