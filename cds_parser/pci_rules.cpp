// SPDX-License-Identifier: Apache-2.0

#include "pci_rules.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "pci_class.h"
#include "pci_device_ids.h"
#include "record.h"
#include "record_columns.h"
#include "zebdb_cds_parser/setting_group.h"

namespace cds_parser {
namespace {

bool is_misreported_accelerator(const pci_function& function) {
    return function.vendor == pci_ids::accelerator_vendor && function.device == pci_ids::accelerator_device &&
           function.has_subsystem && function.subsystem == pci_ids::accelerator_subsystem &&
           function.subsystem_vendor == pci_ids::accelerator_vendor && function.class_code == pci_class::unassigned;
}

bool is_misreported_raid(const pci_function& function) {
    constexpr std::int32_t last_plain_model = 4;
    return function.vendor == pci_ids::raid_vendor && function.device == pci_ids::raid_device &&
           (!function.has_subsystem || ((function.subsystem >> 8) & 0xFF) > last_plain_model);
}

std::int32_t corrected_class_code(const pci_function& function) {
    if (is_misreported_accelerator(function)) {
        return pci_class::accelerator;
    }
    return is_misreported_raid(function) ? pci_class::raid_controller : function.class_code;
}

bool is_on_board_storage(const pci_function& function) {
    return function.vendor == pci_ids::storage_vendor && function.device != pci_ids::storage_switch_device &&
           pci_class::base_class(function.class_code) == pci_class::mass_storage &&
           function.location == on_board_location;
}

// Only decided by: device_columns puts them.
constexpr number_column<pci_function> device_model_columns[] = {
    {"Device ID", "DeviceId", &pci_function::device, -1},
    {"Subsystem Vendor ID", "SubVendorId", &pci_function::subsystem_vendor, -1},
    {"Subsystem ID", "SubDeviceId", &pci_function::subsystem, -1},
};

// One table, so that one pass finds the settings of all.
template <const auto&... tables>
constexpr auto joined() {
    std::array<number_column<pci_function>, (std::size(tables) + ...)> all{};
    std::size_t count = 0;
    const auto append = [&](const auto& table) {
        for (const auto& each : table) {
            all[count++] = each;
        }
    };
    (append(tables), ...);
    return all;
}

constexpr auto deciding_columns = joined<device_place_columns, device_kind_columns, device_model_columns>();

}  // namespace

pci_address read_address(const setting_group& info) {
    pci_address address = {};
    read_columns<bridge_address_columns>(address, info);
    return address;
}

pci_function read_function(const setting_group& info) {
    pci_function function = {};
    read_columns<deciding_columns>(function, info);
    function.has_subsystem = info.has_setting("Subsystem ID");
    function.class_code = corrected_class_code(function);
    if (is_on_board_storage(function)) {
        function.slot = 0;
    }
    return function;
}

bool has_address(const pci_address& bridge) {
    return bridge.bus >= 0 && bridge.device >= 0 && bridge.function >= 0;
}

bool has_address(const pci_function& function) {
    return function.bus >= 0 && function.device_number >= 0 && function.function_number >= 0;
}

// NVM Express drives are recorded wherever they are.
bool has_valid_location(const pci_function& function) {
    return function.location != unknown_location || function.class_code == pci_class::nvm_express;
}

bool is_recorded_once(const pci_function& function) {
    return function.vendor == pci_ids::intel_vendor && function.device == pci_ids::flex_140_device;
}

}  // namespace cds_parser
