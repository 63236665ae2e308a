// SPDX-License-Identifier: Apache-2.0

#include "topology/topology_phrases.h"

#include <string>

#include "rows/column_units.h"
#include "rows/row_text.h"
#include "rows/table.h"
#include "topology/pci_kind.h"
#include "topology/pci_topology.h"

namespace {

std::string bridge_text(const inventory_row& row) {
    const std::string buses = row_texts::bus_range(row);
    return buses == "-" ? "bridge" : "bridge [" + buses + ']';
}

std::string kind_text(const inventory_row& row) {
    const auto class_code = number_in(row["ClsCode"]);
    if (!class_code) {
        return "function";
    }
    const pci_kind kind = kind_of(*class_code);
    if (kind.base_class == nullptr) {
        return "class " + column_units::class_code(row["ClsCode"]);
    }
    return kind.subclass == nullptr ? kind.base_class : std::string(kind.base_class) + " (" + kind.subclass + ')';
}

}  // namespace

std::string node_text(const inventory_row& row) {
    const std::string index = column_units::plain(row["NodeIndex"]);
    return index == "-" ? "No node" : "Node " + index;
}

std::string group_text(const pci_part& root) {
    switch (root.problem) {
        case pci_problem::missing_bridge:
            return "Behind a missing bridge";
        case pci_problem::circle:
            return "Bridges in a circle";
        case pci_problem::none:
            break;
    }
    return "Segment " + column_units::segment(root.row["SegNo"]);
}

std::string address_text(const pci_part& part) {
    return part.is_bridge ? row_texts::bridge_address(part.row) : row_texts::device_address(part.row);
}

std::string purpose_text(const pci_part& part) {
    return part.is_bridge ? bridge_text(part.row) : kind_text(part.row);
}

std::string slot_text(const pci_part& part) {
    const std::string slot = column_units::plain(part.row["SlotNo"]);
    const std::string designation = stripped(column_units::plain(part.row["SlotDesignation"]));
    const std::string number = slot == column_units::none ? "" : "slot " + slot;
    return number + (number.empty() || designation.empty() ? "" : ", ") + designation;
}

std::string name_text(const pci_part& part) {
    const std::string ids = part.is_bridge ? row_texts::bridge_id(part.row) : row_texts::device_id(part.row);
    const std::string known_by_ids = '[' + ids + ']';
    if (part.vendor_name) {
        return *part.vendor_name + ' ' + part.device_name.value_or(known_by_ids);
    }
    return ids == column_units::none ? "" : known_by_ids;
}

std::string description_text(const pci_part& part) {
    const std::string slot = slot_text(part);
    const std::string name = name_text(part);
    return purpose_text(part) + (slot.empty() ? "" : ", " + slot) + (name.empty() ? "" : ": " + name);
}
