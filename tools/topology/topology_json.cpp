// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "rows/table.h"
#include "rows/value_json.h"
#include "topology/pci_kind.h"
#include "topology/pci_topology.h"
#include "topology/topology_formats.h"

namespace {

using json = nlohmann::ordered_json;

struct json_member {
    const char* key;
    const char* column;
};

constexpr json_member bridge_members[] = {
    {"id", "Id"},
    {"parent_id", "ParentId"},
    {"node", "NodeIndex"},
    {"segment", "SegNo"},
    {"bus", "BusNo"},
    {"device", "DevNo"},
    {"function", "FunNo"},
    {"class_code", "ClsCode"},
    {"vendor_id", "VendorId"},
    {"device_id", "DevId"},
    {"primary_bus", "PriBusNo"},
    {"secondary_bus", "SndBusNo"},
    {"subordinate_bus", "SubBusNo"},
};

constexpr json_member function_members[] = {
    {"id", "Id"},
    {"parent_id", "BridgeId"},
    {"node", "NodeIndex"},
    {"segment", "SegNo"},
    {"bus", "BusNo"},
    {"device", "DeviceNo"},
    {"function", "FunctionNo"},
    {"class_code", "ClsCode"},
    {"vendor_id", "VendorId"},
    {"device_id", "DeviceId"},
    {"slot", "SlotNo"},
    {"slot_designation", "SlotDesignation"},
};

json text_or_null(const char* text) {
    return text == nullptr ? json(nullptr) : json(text);
}

json text_or_null(const std::optional<std::string>& text) {
    return text ? json(*text) : json(nullptr);
}

json problem_json(pci_problem problem) {
    switch (problem) {
        case pci_problem::missing_bridge:
            return "missing bridge";
        case pci_problem::circle:
            return "circle";
        case pci_problem::none:
            break;
    }
    return nullptr;
}

template <std::size_t Count>
void add_members(json& object, const pci_part& part, const json_member (&members)[Count]) {
    for (const json_member& each : members) {
        object[each.key] = value_json(part.row[each.column]);
    }
}

void add_kind(json& object, const pci_part& part) {
    const auto class_code = number_in(part.row["ClsCode"]);
    const pci_kind kind = class_code ? kind_of(*class_code) : pci_kind{nullptr, nullptr};
    object["class"] = text_or_null(kind.base_class);
    object["subclass"] = text_or_null(kind.subclass);
}

json part_json(const pci_part& part) {
    json object = {
        {"type", part.is_bridge ? "bridge" : "function"},
        {"depth", part.depth},
        {"parent", part.parent ? json(*part.parent) : json(nullptr)},
        {"problem", problem_json(part.problem)},
    };
    if (part.is_bridge) {
        add_members(object, part, bridge_members);
    } else {
        add_members(object, part, function_members);
    }
    add_kind(object, part);
    object["vendor_name"] = text_or_null(part.vendor_name);
    object["device_name"] = text_or_null(part.device_name);
    return object;
}

}  // namespace

void write_topology_json(const std::vector<pci_part>& parts, std::ostream& out) {
    json document = {{"schema", json_schema}, {"parts", json::array()}};
    for (const pci_part& part : parts) {
        document["parts"].push_back(part_json(part));
    }
    out << json_text(document);
}
