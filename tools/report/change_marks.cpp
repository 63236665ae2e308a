// SPDX-License-Identifier: Apache-2.0

#include "report/change_marks.h"

#include <cstddef>

#include "difference/difference.h"
#include "rows/table.h"

change_marks::change_marks(const comparison* compared) {
    if (compared == nullptr) {
        return;
    }
    for (const table_difference& difference : compared->kinds) {
        auto& marks = marks_[difference.new_table.kind];
        for (const std::size_t row : difference.rows.added) {
            marks[row] = &added_mark;
        }
        for (const row_change& change : difference.changed) {
            marks[change.rows.new_row] = &changed_mark;
        }
        for (const row_change& change : difference.moved) {
            marks[change.rows.new_row] = &moved_mark;
        }
    }
}

const change_mark* change_marks::of(const inventory_row& row) const {
    const auto kind = marks_.find(&row.kind());
    if (kind == marks_.end()) {
        return nullptr;
    }
    const auto found = kind->second.find(row.place());
    return found == kind->second.end() ? nullptr : found->second;
}

std::size_t count_changes(const comparison& compared) {
    std::size_t count = 0;
    for (const table_difference& difference : compared.kinds) {
        count += difference.rows.added.size() + difference.rows.removed.size() + difference.changed.size() +
                 difference.moved.size();
    }
    return count;
}
