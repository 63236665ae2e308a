// SPDX-License-Identifier: Apache-2.0

/// What became of each row since an older inventory.
#ifndef TOOLS_REPORT_CHANGE_MARKS_H
#define TOOLS_REPORT_CHANGE_MARKS_H

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "difference/difference.h"
#include "rows/table.h"

/// A word, and a mark for where there is no room for it.
struct change_mark {
    const char* word;
    const char* mark;
};

inline constexpr change_mark added_mark = {"added", "+"};
inline constexpr change_mark removed_mark = {"removed", "\u2212"};
inline constexpr change_mark changed_mark = {"changed", "~"};
inline constexpr change_mark moved_mark = {"moved", "\u2192"};

class change_marks {
public:
    /// None when there is no older inventory.
    explicit change_marks(const comparison* compared);

    /// Null where nothing has changed.
    const change_mark* of(const inventory_row& row) const;

private:
    std::map<const inventory_kind*, std::map<std::size_t, const change_mark*>> marks_;
};

/// How many parts were added, removed, changed or moved.
std::size_t count_changes(const comparison& compared);

#endif
