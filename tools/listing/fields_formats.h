// SPDX-License-Identifier: Apache-2.0

/// The forms in which it is told what the columns mean.
#ifndef TOOLS_LISTING_FIELDS_FORMATS_H
#define TOOLS_LISTING_FIELDS_FORMATS_H

#include <string>
#include <vector>

#include "console/text_table.h"
#include "rows/kinds.h"

using kind_list = std::vector<const inventory_kind*>;

/// For people: some lines for each column, then what the numbers stand for.
std::string fields_text(const kind_list& kinds, const text_style& style);

/// The page docs/fields.md.
std::string fields_page(const kind_list& kinds);

/// For programs: {"schema": 2, "processors": [{"column": "Id", ...}, ...], ...}.
std::string fields_json(const kind_list& kinds);

#endif
