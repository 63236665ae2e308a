// SPDX-License-Identifier: Apache-2.0

// One row of "PCIs" for each PCI function that has an address and a place in the server.

#include <cstdint>
#include <map>

#include <vonk_log.h>
#include <zeb_db.h>

#include "pci_function_type.h"
#include "pci_keys.h"
#include "pci_rules.h"
#include "record.h"
#include "record_columns.h"
#include "zebdb_cds_parser/component.h"
#include "zebdb_cds_parser/parser.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {
namespace {

// Only the first function of each card is recorded. Both lines stand for every later one: the first is logged before
// the card is looked up.
bool is_first_of_card(const pci_function& function, std::uint32_t key,
                      std::map<std::uint32_t, std::int32_t>& device_keys) {
    vonk_log::logWarn(
        "CDS PARSER: pcie_dev Intel GUP Flex 140 vendorid %d device id %d slot %d seg_num %d bus %d dev_num %d fun_num "
        "%d  will be insert.",
        function.vendor, function.device, function.slot, function.segment, function.bus, function.device_number,
        function.function_number);
    if (device_keys.try_emplace(key, function.bus).second) {
        return true;
    }
    vonk_log::logWarn(
        "CDS PARSER: pcie_dev Ignore Intel GUP Flex 140 vendorid %d device id %d slot %d seg_num %d bus %d dev_num %d "
        "fun_num %d ",
        function.vendor, function.device, function.slot, function.segment, function.bus, function.device_number,
        function.function_number);
    return false;
}

void put_kind(zeb_db_content_values_t* content, const pci_function& function) {
    for (const number_column<pci_function>& each : device_kind_columns) {
        if (function.*each.member >= 0) {
            put_int32(content, each.name, function.*each.member);
        }
    }
}

void put_classification(zeb_db_content_values_t* content, const pci_function& function, std::uint32_t key) {
    zeb_db_content_put_uint(content, "HardwareId", key);
    zeb_db_content_put_uint(content, "HardwareTypeId",
                            hardware_type(function.vendor, function.device, function.class_code));
    zeb_db_content_put_uint(content, "FunType", function_type(function.vendor, function.device, function.class_code));
}

}  // namespace

int parser::parse_pci_device(_zeb_db_handle_t* handle, component* visited) {
    const setting_group* info = visited->get_setting_group(device_record.group);
    if (info == nullptr) {
        return 0;
    }

    const pci_function function = read_function(*info);
    if (!has_address(function)) {
        last_row_id = -1;
        return 1;
    }
    if (!has_valid_location(function)) {
        vonk_log::logWarn("CDS PARSER: Device on slot %d bus %d doesn't have valid location info.", function.slot,
                          function.bus);
        return 1;
    }
    const std::uint32_t card = device_key(node_index, function.location, function.slot);
    if (is_recorded_once(function) && !is_first_of_card(function, card, device_keys)) {
        return 1;
    }

    const std::uint32_t key =
        function_key(function.segment, function.bus, function.device_number, function.function_number);
    zeb_db_content_clear(content);
    put_row_id(content, "BridgeId", parent_id);
    put_int32(content, "NodeIndex", node_index);
    zeb_db_content_put_uint(content, "DevKey", card);
    zeb_db_content_put_uint(content, "FunKey", key);
    put_columns(content, function, device_place_columns);
    put_kind(content, function);
    put_columns<device_columns>(content, *info);
    put_classification(content, function, key);

    const int rc = zeb_db_insert(handle, device_record.table, content, 0, &last_row_id);
    if (rc != 0) {
        vonk_log::logWarn("failed to insert PCI device (seg_num=%d, bus_num=%d, dev_num=%d, fun_num=%d), rc=%d",
                          function.segment, function.bus, function.device_number, function.function_number, rc);
        return 0;
    }
    vonk_log::logInfo("CDS PARSER: find a PCI device, slot=%d, bus=%d, funNo=%d", function.slot, function.bus,
                      function.function_number);
    return 1;
}

}  // namespace cds_parser
