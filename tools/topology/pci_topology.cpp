// SPDX-License-Identifier: Apache-2.0

#include "topology/pci_topology.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "rows/row_text.h"
#include "rows/table.h"
#include "topology/pci_names.h"

namespace {

constexpr auto no_bridge = std::numeric_limits<std::uint64_t>::max();  // -1 with all its bits

using number = std::optional<std::uint64_t>;

// A row where it belongs; its parent is another such row, by its place among them.
struct placed_row {
    inventory_row row;
    std::size_t place;  // in its table
    bool is_bridge;
    number node;
    std::array<number, 4> address;  // segment, bus, device, function
    number id;
    number parent_id;
    bool has_parent;  // also where it is named by something that is no number
    std::optional<std::size_t> parent = std::nullopt;
    pci_problem problem = pci_problem::none;
};

using placed_rows = std::vector<placed_row>;

struct place_columns {
    const char* device;
    const char* function;
    const char* parent;
};

constexpr place_columns bridge_columns = {"DevNo", "FunNo", "ParentId"};
constexpr place_columns function_columns = {"DeviceNo", "FunctionNo", "BridgeId"};

void append(placed_rows& rows, const inventory_table& table, bool is_bridge) {
    const place_columns& columns = is_bridge ? bridge_columns : function_columns;
    for (std::size_t i = 0; i < table.rows.size(); ++i) {
        const inventory_row row(table, i);
        const inventory_value& parent = row[columns.parent];
        rows.push_back({row,
                        i,
                        is_bridge,
                        number_in(row["NodeIndex"]),
                        {number_in(row["SegNo"]), number_in(row["BusNo"]), number_in(row[columns.device]),
                         number_in(row[columns.function])},
                        number_in(row["Id"]),
                        number_in(parent),
                        text_in(parent) != nullptr || number_in(parent).value_or(no_bridge) != no_bridge});
    }
}

bool stands_before(const placed_row& first, const placed_row& second) {
    const auto place = [](const placed_row& row) {
        return std::make_tuple(row.node, row.address, !row.is_bridge, row.place);
    };
    return place(first) < place(second);
}

void find_parents(placed_rows& rows) {
    std::unordered_map<std::uint64_t, std::size_t> bridges;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (const number& id = rows[i].id; id && rows[i].is_bridge) {
            bridges.emplace(*id, i);
        }
    }
    for (placed_row& row : rows) {
        if (!row.has_parent) {
            continue;
        }
        const auto parent = row.parent_id ? bridges.find(*row.parent_id) : bridges.end();
        if (parent == bridges.end()) {
            row.problem = pci_problem::missing_bridge;
        } else {
            row.parent = parent->second;
        }
    }
}

// Makes the first row of the circle a root.
void cut_circle(placed_rows& rows, std::size_t member) {
    std::size_t first = member;
    for (std::optional<std::size_t> at = rows[member].parent; at && *at != member; at = rows[*at].parent) {
        first = std::min(first, *at);
    }
    rows[first].parent.reset();
    rows[first].problem = pci_problem::circle;
}

void cut_circles(placed_rows& rows) {
    const std::size_t never = rows.size();
    std::vector<std::size_t> reached_from(rows.size(), never);
    for (std::size_t start = 0; start < rows.size(); ++start) {
        std::optional<std::size_t> at = start;
        while (at && reached_from[*at] == never) {
            reached_from[*at] = start;
            at = rows[*at].parent;
        }
        if (at && reached_from[*at] == start) {
            cut_circle(rows, *at);
        }
    }
}

std::vector<std::size_t> roots_of(const placed_rows& rows) {
    std::vector<std::size_t> roots;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!rows[i].parent) {
            roots.push_back(i);
        }
    }
    std::stable_sort(roots.begin(), roots.end(), [&rows](std::size_t first, std::size_t second) {
        return std::tie(rows[first].node, rows[first].problem) < std::tie(rows[second].node, rows[second].problem);
    });
    return roots;
}

std::vector<std::vector<std::size_t>> children_of(const placed_rows& rows) {
    std::vector<std::vector<std::size_t>> children(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (const std::optional<std::size_t>& parent = rows[i].parent) {
            children[*parent].push_back(i);
        }
    }
    return children;
}

// Bridges may be nested as deep as a database has rows; this keeps what is left to visit in a list of its own.
std::vector<pci_part> in_tree_order(const placed_rows& rows) {
    const std::vector<std::vector<std::size_t>> children = children_of(rows);
    const std::vector<std::size_t> roots = roots_of(rows);
    std::vector<pci_part> parts;
    std::vector<std::size_t> places(rows.size());
    std::vector<std::size_t> left(roots.rbegin(), roots.rend());
    while (!left.empty()) {
        const std::size_t at = left.back();
        left.pop_back();
        left.insert(left.end(), children[at].rbegin(), children[at].rend());
        const placed_row& row = rows[at];
        pci_part part{row.row, row.is_bridge, row.problem};
        if (row.parent) {
            part.parent = places[*row.parent];
            part.depth = parts[*part.parent].depth + 1;
        }
        places[at] = parts.size();
        parts.push_back(std::move(part));
    }
    return parts;
}

void look_up_names(pci_part& part, pci_names& names) {
    const auto vendor = number_in(part.row["VendorId"]);
    const auto device = number_in(part.row[part.is_bridge ? "DevId" : "DeviceId"]);
    part.vendor_name = names.vendor(vendor);
    part.device_name = names.device(vendor, device);
}

}  // namespace

std::vector<pci_part> pci_topology(const inventory_table& bridges, const inventory_table& functions, pci_names& names) {
    placed_rows rows;
    append(rows, bridges, true);
    append(rows, functions, false);
    std::sort(rows.begin(), rows.end(), stands_before);
    find_parents(rows);
    cut_circles(rows);
    std::vector<pci_part> parts = in_tree_order(rows);
    std::for_each(parts.begin(), parts.end(), [&names](pci_part& part) { look_up_names(part, names); });
    return parts;
}

std::vector<pci_part> part_of_topology(const std::vector<pci_part>& parts, const std::string& address) {
    std::vector<bool> is_kept(parts.size());
    std::vector<bool> is_below(parts.size());  // it, or what it is behind, is at the address
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const pci_part& part = parts[i];
        const std::string here =
            part.is_bridge ? row_texts::bridge_address(part.row) : row_texts::device_address(part.row);
        is_below[i] = here == address || (part.parent && is_below[*part.parent]);
        is_kept[i] = is_below[i];
        for (std::optional<std::size_t> above = part.parent; here == address && above; above = parts[*above].parent) {
            is_kept[*above] = true;
        }
    }
    std::vector<pci_part> kept;
    std::vector<std::size_t> places(parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (is_kept[i]) {
            places[i] = kept.size();
            kept.push_back(parts[i]);
            if (const auto parent = parts[i].parent) {
                kept.back().parent = places[*parent];
            }
        }
    }
    return kept;
}
