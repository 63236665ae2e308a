// SPDX-License-Identifier: Apache-2.0

#include "difference/row_matching.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "rows/kind_description.h"
#include "rows/serial_number.h"
#include "rows/table.h"

namespace {

using row_key = std::vector<inventory_value>;
using row_groups = std::map<row_key, row_group>;

// What rows are grouped by; rows without a key are in no group.
class key_maker {
public:
    key_maker(std::vector<std::string> columns, bool with_serial)
        : columns_(std::move(columns)), with_serial_(with_serial) {}

    std::optional<row_key> operator()(const inventory_table& table, std::size_t row) const {
        const inventory_row values(table, row);
        row_key key = values.values(columns_);
        std::for_each(key.begin(), key.end(), trim);
        if (with_serial_) {
            const auto serial = serial_of(values);
            if (!serial) {
                return std::nullopt;
            }
            key.emplace_back(*serial);
        }
        return key;
    }

private:
    // What one firmware pads with blanks, another does not.
    static void trim(inventory_value& value) {
        if (auto* text = std::get_if<std::string>(&value)) {
            *text = without_blanks_around(*text);
        }
    }

    static std::optional<std::string> serial_of(const inventory_row& row) {
        const std::string* text = text_in(row["SerialNo"]);
        return text == nullptr ? std::nullopt : real_serial_number(*text);
    }

    std::vector<std::string> columns_;
    bool with_serial_;
};

std::optional<row_key> whole_row(const inventory_table& table, std::size_t row) {
    return table.rows[row];
}

bool is_unique(const row_group& group) {
    return group.old_rows.size() == 1 && group.new_rows.size() == 1;
}

bool has_several(const row_group& group) {
    return group.old_rows.size() > 1 || group.new_rows.size() > 1;
}

bool is_on_both_sides(const row_group& group) {
    return !group.old_rows.empty() && !group.new_rows.empty();
}

bool is_matched_by_order(const row_group& group) {
    return has_several(group) && is_on_both_sides(group);
}

// The surest signs first; each row is taken by the first that finds it a partner.
class matcher {
public:
    matcher(const inventory_table& old_table, const inventory_table& new_table)
        : old_(old_table), new_(new_table), old_left_(old_table.rows.size()), new_left_(new_table.rows.size()) {
        std::iota(old_left_.begin(), old_left_.end(), std::size_t{0});
        std::iota(new_left_.begin(), new_left_.end(), std::size_t{0});
    }

    row_matching match() {
        const row_identity& identity = new_.kind->description().identity;
        const key_maker by_identity(identity.columns, false);
        note_groups(by_identity, has_several, matching_.collisions);
        const row_groups owners_of_serials = grouped(key_maker({}, true));
        keep_in_order(key_maker(identity.columns, true));
        match_moved(owners_of_serials);
        if (!matching_.collisions.empty()) {
            keep_in_order(whole_row);  // so that one of several equal records can go without a trace on the others
        }
        keep_in_order(by_identity);
        if (!identity.columns_without_node.empty()) {
            const key_maker by_address(identity.columns_without_node, false);
            note_groups(by_address, is_matched_by_order, matching_.collisions);
            keep_in_order(by_address);
        }
        return result();
    }

private:
    // The rows that are left.
    template <class Key>
    row_groups grouped(const Key& key_of) const {
        row_groups groups;
        for (const std::size_t row : old_left_) {
            if (const auto key = key_of(old_, row)) {
                groups[*key].old_rows.push_back(row);
            }
        }
        for (const std::size_t row : new_left_) {
            if (const auto key = key_of(new_, row)) {
                groups[*key].new_rows.push_back(row);
            }
        }
        return groups;
    }

    void note_groups(const key_maker& key_of, bool (*is_noted)(const row_group&), std::vector<row_group>& notes) const {
        for (const auto& [key, group] : grouped(key_of)) {
            if (is_noted(group)) {
                notes.push_back(group);
            }
        }
    }

    template <class Key>
    void keep_in_order(const Key& key_of) {
        std::vector<row_pair> found;
        for (const auto& [key, group] : grouped(key_of)) {
            const std::size_t pairs = std::min(group.old_rows.size(), group.new_rows.size());
            for (std::size_t i = 0; i < pairs; ++i) {
                found.push_back({group.old_rows[i], group.new_rows[i]});
            }
        }
        take(found, matching_.kept);
    }

    // `owners` are those in the whole inventories: a number that was ever given twice recognises nothing.
    void match_moved(const row_groups& owners) {
        std::vector<row_pair> found;
        for (const auto& [serial, group] : grouped(key_maker({}, true))) {
            if (!is_on_both_sides(group)) {
                continue;
            }
            const row_group& all = owners.at(serial);
            if (is_unique(all)) {
                found.push_back({group.old_rows.front(), group.new_rows.front()});
            } else {
                matching_.ambiguous.push_back(all);
            }
        }
        take(found, matching_.moved);
    }

    void take(const std::vector<row_pair>& found, std::vector<row_pair>& pairs) {
        std::vector<bool> old_taken(old_.rows.size());
        std::vector<bool> new_taken(new_.rows.size());
        for (const row_pair& pair : found) {
            old_taken[pair.old_row] = true;
            new_taken[pair.new_row] = true;
        }
        remove_taken(old_left_, old_taken);
        remove_taken(new_left_, new_taken);
        pairs.insert(pairs.end(), found.begin(), found.end());
    }

    static void remove_taken(std::vector<std::size_t>& rows, const std::vector<bool>& taken) {
        rows.erase(std::remove_if(rows.begin(), rows.end(), [&taken](std::size_t row) { return taken[row]; }),
                   rows.end());
    }

    row_matching result() {
        const auto by_new_row = [](const row_pair& a, const row_pair& b) { return a.new_row < b.new_row; };
        std::sort(matching_.kept.begin(), matching_.kept.end(), by_new_row);
        std::sort(matching_.moved.begin(), matching_.moved.end(), by_new_row);
        matching_.removed = old_left_;
        matching_.added = new_left_;
        return std::move(matching_);
    }

    const inventory_table& old_;
    const inventory_table& new_;
    std::vector<std::size_t> old_left_;
    std::vector<std::size_t> new_left_;
    row_matching matching_;
};

}  // namespace

row_matching match_rows(const inventory_table& old_table, const inventory_table& new_table) {
    return matcher(old_table, new_table).match();
}
