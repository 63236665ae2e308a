// SPDX-License-Identifier: Apache-2.0

/// What is said of a kind of row, for tests that compare all of it.
#ifndef TESTS_TOOLS_ROWS_DESCRIBED_KIND_H
#define TESTS_TOOLS_ROWS_DESCRIBED_KIND_H

#include <cstdint>
#include <string>

#include "rows/column_units.h"
#include "rows/fields.h"
#include "rows/kind_description.h"
#include "rows/kinds.h"
#include "rows/part_text.h"
#include "rows/table.h"

/// A row in which the first column holds 1, the second 2 and so on, with labels behind.
inline inventory_table numbered_row(const inventory_kind& kind) {
    inventory_table table = {&kind, {}, {{}}};
    for (const field& each : fields_of(kind)) {
        table.columns.emplace_back(each.column);
        table.rows[0].emplace_back(static_cast<std::int64_t>(table.columns.size()));
    }
    table.columns.insert(table.columns.end(), {"(name)", "(kind)"});
    table.rows[0].insert(table.rows[0].end(), {"a name", "a kind"});
    return table;
}

/// The columns of a listing, one a line, with what they hold of that row.
inline std::string listed_texts(const inventory_kind& kind) {
    const inventory_table table = numbered_row(kind);
    std::string texts;
    for (const listed_column& each : kind.description().listed) {
        texts.append(each.heading).append(": ").append(text_of(each.text, inventory_row(table, 0))).append("\n");
    }
    return texts;
}

/// The columns that have a unit, one a line, with what they hold of that row.
inline std::string texts_with_units(const inventory_kind& kind) {
    const inventory_table table = numbered_row(kind);
    std::string texts;
    for (const field& each : fields_of(kind)) {
        if (each.text != column_units::plain) {
            texts.append(each.column).append(": ").append(text_of(each.column, inventory_row(table, 0))).append("\n");
        }
    }
    return texts;
}

#endif
