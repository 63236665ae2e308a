// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "difference/difference.h"
#include "difference/difference_formats.h"
#include "difference/row_matching.h"
#include "report/anchors.h"
#include "report/change_marks.h"
#include "report/page_template.h"
#include "report/part_json.h"
#include "report/reported_inventory.h"
#include "report/sections.h"
#include "rows/column_units.h"
#include "rows/decoded_text.h"
#include "rows/field.h"
#include "rows/fields.h"
#include "rows/kinds.h"
#include "rows/part_text.h"
#include "rows/table.h"

using nlohmann::json;

namespace {

std::string value_text(const inventory_kind& kind, const std::string& column, const inventory_value& value) {
    return is_put(value) ? decoded_text(kind, column, value) : "";
}

// Writes the list of one kind.
class changes_of_kind {
public:
    changes_of_kind(const reported_inventory& reported, const table_difference& difference)
        : reported_(reported), difference_(difference), kind_(*difference.new_table.kind) {}

    json list() {
        for (const row_change& change : difference_.moved) {
            json& entry = add(moved_mark, difference_.new_table, change.rows.new_row);
            entry["from"] = place_text(inventory_row(difference_.old_table, change.rows.old_row));
            tell_columns(entry, change);
            link(entry, change.rows.new_row);
        }
        for (const row_change& change : difference_.changed) {
            json& entry = add(changed_mark, difference_.new_table, change.rows.new_row);
            tell_columns(entry, change);
            link(entry, change.rows.new_row);
        }
        for (const std::size_t row : difference_.rows.added) {
            link(add(added_mark, difference_.new_table, row), row);
        }
        for (const std::size_t row : difference_.rows.removed) {
            add(removed_mark, difference_.old_table, row);
        }
        return std::move(list_);
    }

private:
    json& add(const change_mark& mark, const inventory_table& table, std::size_t row) {
        const inventory_row changed(table, row);
        list_.push_back({{"change", mark_json(mark)}, {"place", place_text(changed)}, {"part", part_text(changed)}});
        return list_.back();
    }

    // The rows of the comparison are those of the inventory, in the same order.
    void link(json& entry, std::size_t row) const {
        entry["href"] = fragment_of(reported_.names.of(inventory_row(reported_.labelled_table(kind_), row)).id);
    }

    void tell_columns(json& entry, const row_change& change) const {
        entry["columns"] = columns(change);
        entry["any"] = !change.columns.empty();
    }

    json columns(const row_change& change) const {
        json all = json::array();
        for (const std::size_t column : change.columns) {
            const std::string& name = difference_.new_table.columns[column];
            const inventory_value& old_value = difference_.old_table.rows[change.rows.old_row][column];
            const inventory_value& new_value = difference_.new_table.rows[change.rows.new_row][column];
            const field* known = find_field(kind_, name);
            all.push_back({{"column", name},
                           {"meaning", known == nullptr ? "" : known->meaning},
                           {"old", value_text(kind_, name, old_value)},
                           {"old_raw", raw_text(name, old_value)},
                           {"new", value_text(kind_, name, new_value)},
                           {"new_raw", raw_text(name, new_value)}});
        }
        return all;
    }

    std::string raw_text(const std::string& name, const inventory_value& value) const {
        const std::string raw = column_units::plain(value);
        return raw == decoded_text(kind_, name, value) ? "" : raw;
    }

    const reported_inventory& reported_;
    const table_difference& difference_;
    const inventory_kind& kind_;
    json list_ = json::array();
};

std::string places(const inventory_table& table, const std::vector<std::size_t>& rows) {
    std::string text;
    for (const std::size_t row : rows) {
        text += (text.empty() ? "" : ", ") + place_text(inventory_row(table, row));
    }
    return text;
}

json notes(const comparison& compared) {
    json all = json::array();
    if (compared.ignored_nodes) {
        all.push_back(node_note(compared));
    }
    for (const table_difference& difference : compared.kinds) {
        for (const row_group& group : difference.rows.collisions) {
            all.push_back((group.old_rows.empty() ? places(difference.new_table, {group.new_rows.front()})
                                                  : places(difference.old_table, {group.old_rows.front()})) +
                          ": " + counted(group.old_rows.size(), "older record", "older records") + " and " +
                          counted(group.new_rows.size(), "record", "records") + " here, matched in their order.");
        }
        for (const row_group& group : difference.rows.ambiguous) {
            all.push_back("One serial number in several records, so that what moved is not known: " +
                          places(difference.old_table, group.old_rows) + " in the older inventory, " +
                          places(difference.new_table, group.new_rows) + " in this one.");
        }
    }
    return all;
}

}  // namespace

std::string changes_section(const reported_inventory& reported) {
    if (!reported.older) {
        return "";
    }
    json list = json::array();
    for (const table_difference& difference : reported.older->compared.kinds) {
        json entries = changes_of_kind(reported, difference).list();
        if (!entries.empty()) {
            list.push_back({{"title", difference.new_table.kind->title}, {"entries", std::move(entries)}});
        }
    }
    return filled("changes.html", {{"kinds", list},
                                   {"notes", notes(reported.older->compared)},
                                   {"old", source_title(reported.older->source.file)}});
}
